// SPDX-License-Identifier: Apache-2.0
//
// Rows with bold parts: in the text of an icon list's row the character 2 switches bold on and off. Assistive programs,
// and keys that look for a row by its letters, get the text without the marks. Cost: a row without marks costs as ever;
// one with marks is measured part by part.
#pragma once

#include <QString>
#include <QStyledItemDelegate>

namespace tarn::platform::qt {

inline constexpr char16_t BoldMark = 2;
// The role in which a model has the text with its marks; empty for a row without any.
inline constexpr int MarkedTextRole = Qt::UserRole + 2;

class MarkedRows : public QStyledItemDelegate {
public:
    using QStyledItemDelegate::QStyledItemDelegate;
    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override;
    [[nodiscard]] QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override;
};

}  // namespace tarn::platform::qt
