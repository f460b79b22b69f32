// SPDX-License-Identifier: Apache-2.0
//
// How a line of the debugger's list looks: a margin that stays in place when the list is scrolled sideways, with the
// marks, the line's number and the picture that expands it, and behind it the text.
//
// Cost: a line is turned into text when it is drawn; the width of the longest one is counted by letters, and only lines
// that are not plain ASCII are measured.
#pragma once

#include "platform/model/debugger/debugwindow.h"

#include <QAbstractListModel>
#include <QStyledItemDelegate>

namespace tarn::platform::qt {

// A line as it is shown: tabs reach to the next fourth column, other control characters have pictures, and what is beyond
// 4,096 letters is left out.
QString shownDebugLine(std::string_view bytes);

class DebugRows : public QAbstractListModel {
public:
    explicit DebugRows(QObject* parent) : QAbstractListModel(parent) {}
    void setWindow(const DebugWindow* window);  // null: no lines
    [[nodiscard]] const DebugWindow* window() const { return window_; }
    [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;

private:
    const DebugWindow* window_ = nullptr;
};

// Where the parts of a line are, in pixels from the left edge of the list.
struct DebugColumns {
    int numbers = 0, markers = 0, text = 0;
};

class DebugRowPainter : public QStyledItemDelegate {
public:
    DebugRowPainter(const DebugRows& rows, QWidget* list)
        : QStyledItemDelegate(list), rows_(rows), list_(*list) {}
    [[nodiscard]] DebugColumns columns() const;
    [[nodiscard]] int longest() const;          // pixels of the longest line
    void paintGround(QWidget& viewport) const;  // the margin where no lines are
    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override;
    [[nodiscard]] QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override;

private:
    [[nodiscard]] int side() const;  // of a mark
    void paintMargin(QPainter& painter, const QRect& row, int line) const;

    const DebugRows& rows_;
    const QWidget& list_;
};

}  // namespace tarn::platform::qt
