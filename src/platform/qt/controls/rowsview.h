// SPDX-License-Identifier: Apache-2.0
//
// What the views of rows have in common, whether a row is one text or cells: the user acts on rows that are
// up to date, a double click counts on a row only, and nothing unselects a row, for which the model has no
// event.
#pragma once

#include "platform/model/model.h"

#include <QAbstractItemView>
#include <QMouseEvent>

#include <functional>

namespace tarn::platform::qt {

// `Base` is one of the toolkit's item views.
template <class Base>
class RowsViewOf : public Base {
public:
    explicit RowsViewOf(QWidget* parent) : Base(parent) {
        this->setEditTriggers(QAbstractItemView::NoEditTriggers);
        this->setHorizontalScrollMode(QAbstractItemView::ScrollPerPixel);
    }
    std::function<void(QPoint)> doubleClicked;
    std::function<void()> refreshed;  // brings the rows up to date before the user acts on them

protected:
    void mousePressEvent(QMouseEvent* event) override {
        if (refreshed) refreshed();
        Base::mousePressEvent(event);
    }
    void keyPressEvent(QKeyEvent* event) override {
        if (refreshed) refreshed();
        Base::keyPressEvent(event);
    }
    void mouseDoubleClickEvent(QMouseEvent* event) override {
        if (refreshed) refreshed();
        const bool onRow = this->indexAt(event->pos()).isValid();
        Base::mouseDoubleClickEvent(event);
        if (event->button() == Qt::LeftButton && onRow && doubleClicked) doubleClicked(event->pos());
    }
    // Ctrl would unselect the row.
    QItemSelectionModel::SelectionFlags selectionCommand(const QModelIndex& index,
                                                         const QEvent* event) const override {
        const auto command = Base::selectionCommand(index, event);
        const bool takes =
            command.testFlag(QItemSelectionModel::Toggle) || command.testFlag(QItemSelectionModel::Deselect);
        if (!takes) return command;
        const bool whole = this->selectionBehavior() == QAbstractItemView::SelectRows;
        return whole ? QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows
                     : QItemSelectionModel::SelectionFlags(QItemSelectionModel::ClearAndSelect);
    }
};

}  // namespace tarn::platform::qt
