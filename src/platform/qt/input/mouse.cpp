// SPDX-License-Identifier: Apache-2.0
#include "platform/qt/input/mouse.h"

#include "platform/model/guides.h"
#include "platform/qt/drawing/surface.h"
#include "platform/qt/windows/frame.h"

#include <QContextMenuEvent>
#include <QMouseEvent>
#include <QScrollBar>
#include <QWheelEvent>

#include <cstdlib>
#include <optional>

namespace tarn::platform::qt {

namespace {

QPoint pressed;
constexpr int KEY_CTRL_PLUS = 0x1000 + 187, KEY_CTRL_MINUS = 0x1000 + 189;

// Where an event of the mouse is on the screen; none for other events, and other buttons.
std::optional<QPoint> placeOf(const QEvent& event) {
    if (event.type() == QEvent::ContextMenu) return static_cast<const QContextMenuEvent&>(event).globalPos();
    if (event.type() != QEvent::MouseButtonPress && event.type() != QEvent::MouseButtonDblClick) return {};
    const auto& mouse = static_cast<const QMouseEvent&>(event);
    if (mouse.button() != Qt::LeftButton) return {};
    return mouse.globalPosition().toPoint();
}

// An event that a widget ignores climbs to its parents; it is heard once, where it starts. A key asks for the
// menu of what has the focus, wherever the mouse is.
bool startsAt(const QWidget& receiver, const Frame& frame, const QEvent& event, QPoint global) {
    const bool byKey = event.type() == QEvent::ContextMenu &&
                       static_cast<const QContextMenuEvent&>(event).reason() == QContextMenuEvent::Keyboard;
    const QWidget* const start = byKey ? frame.focusWidget() : frame.childAt(frame.mapFromGlobal(global));
    return &receiver == start;
}

// A double click on these is no more than two clicks, or is told by the widget itself.
bool hearsDoubleClick(const Control& control) {
    switch (control.type) {
    case Type::Dialog:
    case Type::Label:
    case Type::Groupbox:
    case Type::Shape:
    case Type::Icon:
    case Type::Image:
    case Type::Progressbar: return true;
    default: return false;
    }
}

int keysOf(const QEvent& event) {
    const auto held = static_cast<const QMouseEvent&>(event).modifiers();
    return (held.testFlag(Qt::ControlModifier) ? MOUSE_CTRL : 0) |
           (held.testFlag(Qt::ShiftModifier) ? MOUSE_SHIFT : 0);
}

bool tell(Control& control, const QEvent& event, QPoint at) {
    switch (event.type()) {
    case QEvent::MouseButtonPress:
        userMouseKeys(keysOf(event));
        return userMouseDown(control, at.x(), at.y());
    case QEvent::MouseButtonDblClick:
        if (hearsDoubleClick(control)) userDoubleClick(control, at.x(), at.y());
        return false;
    default:
        // The text of an edit window has a menu of its own; its status bar tells for itself.
        return !isEditWindowType(control.type) && userInfo(control, at.x(), at.y());
    }
}

}  // namespace

bool hearMouse(QWidget& receiver, QEvent& event) {
    const std::optional<QPoint> global = placeOf(event);
    Frame* const frame = global ? frameOfWidget(&receiver) : nullptr;
    if (frame == nullptr || frame->model() == nullptr) return false;
    const QWidget& client = frame->client();
    if (&receiver != &client && !client.isAncestorOf(&receiver)) return false;
    if (!startsAt(receiver, *frame, event, *global)) return false;
    if (event.type() == QEvent::MouseButtonPress) pressed = *global;
    Control* control = frame->controlOf(&receiver);
    if (control == nullptr || !control->enabled) control = frame->model();
    const QPointer<QWidget> alive(&receiver);
    const bool handled = tell(*control, event, client.mapFromGlobal(*global));
    return handled || alive.isNull() || frameOfWidget(&receiver) == nullptr;
}

namespace {

// The bar that scrolls in that direction what is drawn on the window; null without one.
QScrollBar* barOf(const Frame& frame, Qt::Orientation orientation) {
    for (QScrollBar* const bar : frame.client().findChildren<QScrollBar*>(Qt::FindDirectChildrenOnly))
        if (bar->isVisible() && bar->isEnabled() && bar->orientation() == orientation) return bar;
    return nullptr;
}

// Over a drawing the wheel turns its scroll bar, with Shift the one that goes sideways.
bool scrollDrawing(const Frame& frame, const QWheelEvent& wheel) {
    const bool shift = wheel.modifiers() == Qt::ShiftModifier;
    if ((wheel.modifiers() != Qt::NoModifier && !shift) || !frame.client().isDrawnOn()) return false;
    const QPoint by = wheel.angleDelta();
    const bool sideways = shift || std::abs(by.x()) > std::abs(by.y());
    QScrollBar* const bar = barOf(frame, sideways ? Qt::Horizontal : Qt::Vertical);
    if (bar == nullptr) return false;
    constexpr int notch = 120, lines = 3;
    static int turned = 0;  // that was not yet a line
    turned += (sideways && by.x() != 0 ? by.x() : by.y()) * lines;
    bar->setValue(bar->value() - turned / notch);
    turned %= notch;
    return true;
}

}  // namespace

bool hearWheel(const QWidget& receiver, const QEvent& event) {
    if (event.type() != QEvent::Wheel) return false;
    const auto& wheel = static_cast<const QWheelEvent&>(event);
    Frame* const frame = frameOfWidget(&receiver);
    const bool own = frame != nullptr && frame->model() != nullptr && &receiver == &frame->client();
    if (own && scrollDrawing(*frame, wheel)) return true;
    if (!own || wheel.modifiers() != Qt::ControlModifier || wheel.angleDelta().y() == 0) return false;
    constexpr int notch = 120;  // touch pads turn the wheel in small parts
    static int turned = 0;
    if ((turned > 0) != (wheel.angleDelta().y() > 0)) turned = 0;
    turned += wheel.angleDelta().y();
    if (std::abs(turned) < notch) return true;
    const int key = turned > 0 ? KEY_CTRL_PLUS : KEY_CTRL_MINUS;
    turned = 0;
    return userKey(*frame->model(), nullptr, key);
}

QPoint lastPress() {
    return pressed;
}

}  // namespace tarn::platform::qt
