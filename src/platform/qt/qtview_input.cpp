// SPDX-License-Identifier: Apache-2.0
//
// What the view does with the events of the whole program: who hears a key or the mouse, and in which order.
#include "platform/model/model.h"
#include "platform/operations/focus.h"
#include "platform/qt/input/keys.h"
#include "platform/qt/input/mouse.h"
#include "platform/qt/input/tracker.h"
#include "platform/qt/qtview.h"
#include "platform/qt/windows/frame.h"
#include "platform/qt/windows/menus.h"

#include <QAbstractButton>
#include <QApplication>
#include <QKeyEvent>
#include <QMenuBar>
#include <QShortcutEvent>
#include <QTimer>

namespace tarn::platform::qt {

namespace {

bool isInput(QEvent::Type type) {
    switch (type) {
    case QEvent::KeyPress:
    case QEvent::KeyRelease:
    case QEvent::ShortcutOverride:
    case QEvent::Shortcut:
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonRelease:
    case QEvent::MouseButtonDblClick:
    case QEvent::Wheel:
    case QEvent::TouchBegin:
    case QEvent::TouchEnd:
    case QEvent::ContextMenu:
    case QEvent::Drop:
    case QEvent::DragEnter:
    case QEvent::Close:
    case QEvent::HoverEnter:
    case QEvent::Enter: return true;
    default: return false;
    }
}

// The window whose menu holds for the whole program.
Frame* mainFrame() {
    static const Object name("Main");
    if (Window* window = findWindow(name); window != nullptr) return frameOf(*window);
    return nullptr;
}

// The letter of a button presses it at once, so that what is typed fast behind it finds it done, and a second press within
// the time in which the toolkit would show the first is one of its own.
bool pressByLetter(QWidget& widget, const QShortcutEvent& letter) {
    auto* const button = qobject_cast<QAbstractButton*>(&widget);
    if (button == nullptr || letter.isAmbiguous() || !button->isEnabled()) return false;
    if (button->isCheckable() && (button->focusPolicy() & Qt::ClickFocus) != 0) button->setFocus();
    button->click();
    return true;
}

bool isKeyField(const Control* control) {
    return control != nullptr && control->type == Type::Edit && (control->flags & KEYFIELD) != 0;
}

bool nameKeys(Control& field, const PressedKeys& keys) {
    if (!keys.named) return true;
    field.text->setText(shortcutName(keys.shortcut));
    userChange(field);
    return true;
}

}  // namespace

namespace {

constexpr int WindowSystemsTime = 300;  // milliseconds, to minimise all that belongs together

// A modal dialog that is minimised while another window of the program can still be seen comes back: that one would look
// alive and take nothing. When all are minimised it waits until one of them returns.
void reviveModal() {
    QWidget* const modal = QApplication::activeModalWidget();
    if (modal == nullptr || !modal->isMinimized()) return;
    const QWidgetList all = QApplication::topLevelWidgets();
    const bool seen = std::any_of(all.begin(), all.end(), [](const QWidget* other) {
        return other->isVisible() && !other->isMinimized() && frameOfWidget(other) != nullptr;
    });
    if (!seen) return;
    modal->setWindowState(modal->windowState() & ~Qt::WindowMinimized);
    modal->raise();
    modal->activateWindow();
}

}  // namespace

bool QtView::eventFilter(QObject* receiver, QEvent* event) {
    if (debugger_.takes(receiver, *event)) return true;
    if (tracking_ != nullptr && tracking_->hear(*event)) return true;
    const auto type = event->type();
    if (type == QEvent::FocusIn) noteFocus(receiver);
    if (type == QEvent::WindowStateChange) QTimer::singleShot(WindowSystemsTime, this, reviveModal);
    if (!isInput(type)) return false;
    if (type == QEvent::KeyPress || type == QEvent::MouseButtonPress) {
        input_ = true;
        broughtUp_ = nullptr;
    }
    auto* widget = receiver->isWidgetType() ? static_cast<QWidget*>(receiver) : nullptr;
    if (widget == nullptr) return false;
    const Frame* const over = frameOfWidget(widget);
    const bool below = over != nullptr && topModal() != nullptr && topModal() != &over->window();
    if ((busy_ && over != nullptr) || below) {
        if (type == QEvent::Close) event->ignore();
        return true;
    }
    if (hearMouse(*widget, *event) || hearWheel(*widget, *event)) return true;
    if (type == QEvent::Shortcut) return pressByLetter(*widget, *static_cast<QShortcutEvent*>(event));
    // The focus follows a click in the window system's own time, which may be after the command of a button;
    // the command has to know where its user was.
    if (type == QEvent::MouseButtonPress && over != nullptr) enter(*frameOfWidget(widget));
    return type == QEvent::KeyPress && key(receiver, *static_cast<QKeyEvent*>(event));
}

void QtView::noteFocus(QObject* receiver) {
    auto* widget = receiver->isWidgetType() ? static_cast<QWidget*>(receiver) : nullptr;
    const Frame* const frame = widget != nullptr ? frameOfWidget(widget) : nullptr;
    Control* const control = frame != nullptr ? frame->controlOf(widget) : nullptr;
    if (control != nullptr) userFocus(*control);
}

bool QtView::key(QObject* receiver, QKeyEvent& event) {
    auto* widget = static_cast<QWidget*>(receiver);
    Frame* frame = frameOfWidget(widget);
    if (frame == nullptr || frame->window().widget == nullptr) return false;
    // A key that a widget ignores climbs to its parents; it is looked at once, where it starts.
    const QWidget* focus = frame->focusWidget();
    if (widget != (focus != nullptr ? focus : frame)) return false;
    const QPointer<Frame> alive(frame);
    if (Control* field = frame->controlOf(focus); isKeyField(field))
        if (const PressedKeys keys = keysPressed(event); keys.taken) return nameKeys(*field, keys);
    if (windowHears(focus, event)) {
        Control* control = frame->controlOf(focus);
        if (userKey(frame->window(), control, modelKey(event.key()))) return true;
        if (alive.isNull() || frame->window().widget == nullptr) return true;
    }
    if (focus == nullptr || !widgetNeeds(*focus, event)) {
        if (takesKey(frame->window(), modelShortcut(event)))
            return userKey(frame->window(), frame->controlOf(focus), modelShortcut(event)), true;
        if (typeAhead(*frame, event)) return true;
        if (command(*frame, modelShortcut(event))) return true;
        if (openMainMenu(*frame, event)) return true;
    }
    const bool alone = focus == nullptr || focus == frame;
    return alone && windowHearsLast(event) && userKey(frame->window(), nullptr, modelShortcut(event));
}

// The window system gives a window the focus in its own time; what is typed meanwhile still comes to the main
// window, where the command was picked, and is meant for the one that the model counts as active.
bool QtView::typeAhead(Frame& frame, QKeyEvent& event) {
    Frame* next = order_.empty() ? nullptr : order_.back().data();
    if (&frame != mainFrame() || next == nullptr || next == &frame || !next->isVisible() ||
        next->window().widget == nullptr || !takesInput(next->window()))
        return false;
    QWidget* focus = next->focusWidget();
    if (focus == nullptr || !widgetNeeds(*focus, event)) return false;
    QApplication::sendEvent(focus, &event);
    return true;
}

bool QtView::command(Frame& frame, int shortcut) {
    Control* item = findShortcut(frame.window(), shortcut);
    Frame* main = mainFrame();
    // The editing keys of Main's menu would change a text in which the user is not.
    if (item == nullptr && main != nullptr && main != &frame && takesInput(main->window()) &&
        !isTextKey(shortcut))
        item = findShortcut(main->window(), shortcut);
    if (item == nullptr) return false;
    userCommand(*item);
    return true;
}

bool QtView::openMainMenu(Frame& frame, QKeyEvent& event) {
    Frame* main = mainFrame();
    if (main == nullptr || main == &frame || event.modifiers() != Qt::AltModifier ||
        !frame.window().menuItems.empty())
        return false;
    if (!main->isVisible() || !takesInput(main->window()) || event.key() < Qt::Key_A ||
        event.key() > Qt::Key_Z)
        return false;
    const QKeySequence wanted(QKeyCombination(Qt::AltModifier, static_cast<Qt::Key>(event.key())));
    for (QAction* action : main->bar().actions()) {
        if (QKeySequence::mnemonic(action->text()) != wanted || !action->isEnabled()) continue;
        main->raise();
        main->activateWindow();
        enter(*main);  // a key may pick from the menu before the window system has given the focus
        main->bar().setActiveAction(action);
        return true;
    }
    return false;
}

}  // namespace tarn::platform::qt
