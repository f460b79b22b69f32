// SPDX-License-Identifier: Apache-2.0
#include "platform/qt/debugger/debughost.h"

#include "platform/qt/debugger/debugview.h"

#include <QApplication>
#include <QKeyEvent>
#include <QWidget>
#include <QWindow>

#include <utility>

namespace tarn::platform::qt {

namespace {

// What the user does to a window, as the window system tells it.
bool isDone(QEvent::Type type) {
    switch (type) {
    case QEvent::KeyPress:
    case QEvent::KeyRelease:
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonRelease:
    case QEvent::MouseButtonDblClick:
    case QEvent::Wheel:
    case QEvent::TouchBegin:
    case QEvent::TouchUpdate:
    case QEvent::TouchEnd:
    case QEvent::Close: return true;
    default: return false;
    }
}

// What it becomes on its way to a widget.
bool isHeard(QEvent::Type type) {
    switch (type) {
    case QEvent::ShortcutOverride:
    case QEvent::Shortcut:
    case QEvent::MouseMove:
    case QEvent::ContextMenu:
    case QEvent::DragEnter:
    case QEvent::Drop:
    case QEvent::HoverEnter:
    case QEvent::Enter:
    case QEvent::ToolTip: return true;
    default: return isDone(type);
    }
}

// Who works in the program's own windows goes on there.
bool isAct(QEvent::Type type) {
    return type == QEvent::KeyPress || type == QEvent::MouseButtonPress || type == QEvent::TouchBegin;
}

// The window systems of the desktop have a key symbol for it that the toolkit does not name.
constexpr quint32 breakSymbol = 0xff6b;

bool isBreak(const QEvent& event) {
    if (event.type() != QEvent::KeyPress) return false;
    const auto& key = static_cast<const QKeyEvent&>(event);
    const bool named =
        key.key() == Qt::Key_Pause || key.key() == Qt::Key_Cancel || key.nativeVirtualKey() == breakSymbol;
    return named && key.modifiers().testFlag(Qt::ControlModifier);
}

const QWidget* widgetOf(const QObject* receiver) {
    if (receiver->isWidgetType()) return static_cast<const QWidget*>(receiver);
    if (!receiver->isWindowType()) return nullptr;
    for (const QWidget* widget : QApplication::topLevelWidgets())
        if (widget->windowHandle() == receiver) return widget;
    return nullptr;
}

// A menu or a list that is open has the keys and the mouse to itself.
void closePopups() {
    for (int most = 16; most > 0 && QApplication::activePopupWidget() != nullptr; --most)
        QApplication::activePopupWidget()->close();
    if (QWidget* const grabber = QWidget::mouseGrabber()) grabber->releaseMouse();
    if (QWidget* const grabber = QWidget::keyboardGrabber()) grabber->releaseKeyboard();
}

}  // namespace

DebugHost::DebugHost() = default;

DebugHost::~DebugHost() {
    if (view_ != nullptr) view_->release();
    delete view_;
}

QWidget* DebugHost::window() const {
    return view_;
}

void DebugHost::changed(DebugWindow& window, DebugPart part) {
    if (part == DebugPart::Made) {
        view_ = new DebugView(window);
        return;
    }
    if (view_ == nullptr) return;
    switch (part) {
    case DebugPart::Gone:
        view_->release();
        view_->hide();
        std::exchange(view_, nullptr)->deleteLater();
        break;
    case DebugPart::Shown: view_->refresh(); break;
    case DebugPart::Tip: view_->showTip(); break;
    case DebugPart::Running: view_->setStopped(window.stopped); break;
    default: view_->note(part); break;
    }
}

void DebugHost::stop(const std::function<void()>& loop) {
    if (view_ == nullptr) return;
    closePopups();
    view_->bringUp();
    stopped_ = true;
    loop();
    stopped_ = false;
    QMetaObject::invokeMethod(
        this, [this] { handOn(); }, Qt::QueuedConnection);
}

void DebugHost::pump() {
    if (view_ == nullptr || pumping_ || stopped_) return;
    const ProgramRest rest;
    pumping_ = true;
    view_->noteBusy();
    QCoreApplication::processEvents(QEventLoop::AllEvents | QEventLoop::X11ExcludeTimers);
    pumping_ = false;
    if (!kept_.empty())
        QMetaObject::invokeMethod(
            this, [this] { handOn(); }, Qt::QueuedConnection);
}

bool DebugHost::takes(QObject* receiver, QEvent& event) {
    if (view_ == nullptr) return false;
    if (!stopped_ && isBreak(event)) {
        if (DebugWindow* const window = debugWindow()) userDebugBreak(*window);
        return true;
    }
    if (!isHeard(event.type()) || isOurs(receiver)) return false;
    if (!stopped_ && event.spontaneous() && isAct(event.type()))
        if (DebugWindow* const window = debugWindow()) forgetTyped(*window);
    if (!stopped_ && !pumping_) return false;
    if (pumping_) return keep(receiver, event);
    if (!receiver->isWidgetType()) return false;  // the widget that it is for will be asked
    if (event.type() == QEvent::Close) event.ignore();
    return true;
}

// What comes for a window as a whole is kept there, and goes its way from the beginning; a widget gets nothing meanwhile.
bool DebugHost::keep(QObject* receiver, const QEvent& event) {
    if (receiver->isWindowType() && isDone(event.type()))
        kept_.push_back({receiver, std::unique_ptr<QEvent>(event.clone())});
    return receiver->isWindowType() ? isDone(event.type()) : receiver->isWidgetType();
}

void DebugHost::handOn() {
    while (!programRests() && !kept_.empty()) {
        const Kept next = std::move(kept_.front());
        kept_.pop_front();
        if (!next.receiver.isNull()) QCoreApplication::sendEvent(next.receiver, next.event.get());
    }
}

bool DebugHost::isOurs(const QObject* receiver) const {
    const QWidget* widget = widgetOf(receiver);
    if (widget == nullptr) return !receiver->isWindowType();  // no window of the program either
    for (widget = widget->window(); widget != nullptr;) {
        if (widget == view_) return true;
        const QWidget* const parent = widget->parentWidget();
        if (parent == nullptr) return (widget->windowFlags() & Qt::WindowType_Mask) == Qt::Popup;
        widget = parent->window();
    }
    return false;
}

}  // namespace tarn::platform::qt
