// SPDX-License-Identifier: Apache-2.0
//
// The controls of a window as widgets: making one, bringing a property of the model to it, and reporting what
// the user does to it. While the model writes to a widget the widget's signals are blocked, so nothing comes
// back.
#pragma once

#include "platform/model/model.h"

#include <QObject>
#include <QWidget>

#include <functional>
#include <memory>
#include <string>

class QAbstractScrollArea;

namespace tarn::platform::qt {

// A widget for one control. Owned by its widget: both die together, before or after the control.
class Peer : public QObject {
public:
    Peer(Control& control, QWidget& widget);
    static Peer* of(const QWidget& widget);     // null for a widget that shows no control
    virtual void apply(Property property) = 0;  // brings one property of the model to the widget
    virtual QWidget* focusWidget() { return widget_; }
    virtual void catchUp() {}  // does now what waits for a quiet moment
    void release() {  // the control is about to go: from now on nothing is read from it or told to it
        letGo();
        control_ = nullptr;
    }
    [[nodiscard]] QWidget* widget() const { return widget_; }
    [[nodiscard]] Control& control() const { return *control_; }

protected:
    // A place in one of the peer's widgets, in the client area of its window.
    [[nodiscard]] QPoint inWindow(const QWidget& from, QPoint at) const {
        return from.mapTo(widget_->parentWidget(), at);
    }
    virtual void letGo() {}
    Control* control_;  // null once released
    QWidget* widget_;
};

// Makes the widget of `control` with all its properties. `flat` is the look of a toolbar's button.
Peer* makePeer(Control& control, QWidget* parent, bool flat);
Peer* peerOf(const Control& control);  // null for a control without a widget and for menu items

// Border and scroll bars as the resource file has them. A bar that it has shows where it is needed.
void applyBars(QAbstractScrollArea& area, const Control& control);
void applyFont(QWidget& widget, const Font& own, const Font& inherited);
QFont qtFont(const Font& font, const QFont& base);
// The colours of a control, or of the client area of a window.
void applyColours(QWidget& widget, const Control& control);
// Where the widget stands. Drop-down boxes have the height of their line; a resource file gives them that of the dropped
// list.
QRect placeOf(const Control& control, const QWidget& widget);

}  // namespace tarn::platform::qt
