// SPDX-License-Identifier: Apache-2.0
//
// Rows with bold parts: in the text of an icon list's row the character 2 switches bold on and off. Assistive programs,
// and keys that look for a row by its letters, get the text without the marks.
//
// All rows have one size, by which the scroll bar goes: that of the widest among the rows with the longest texts, so that
// thousands of them are measured as fast as a few. Cost: a row with marks is measured and drawn part by part.
#pragma once

#include <QString>
#include <QStyledItemDelegate>

#include <functional>
#include <vector>

namespace tarn::platform::qt {

inline constexpr char16_t BoldMark = 2;
// The role in which a model has the text with its marks; empty for a row without any.
inline constexpr int MarkedTextRole = Qt::UserRole + 2;

class MarkedRows : public QStyledItemDelegate {
public:
    using QStyledItemDelegate::QStyledItemDelegate;
    std::function<std::vector<int>()> longest;  // the rows with the longest texts
    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override;
    [[nodiscard]] QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override;

private:
    [[nodiscard]] QSize sizeOf(const QStyleOptionViewItem& option, const QModelIndex& index) const;
};

}  // namespace tarn::platform::qt
