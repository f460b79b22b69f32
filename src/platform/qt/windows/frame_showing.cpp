// SPDX-License-Identifier: Apache-2.0
//
// How a frame comes to the front: modality, the first focus, and the toolkit's events.
#include "platform/qt/controls/widgets.h"
#include "platform/qt/drawing/surface.h"
#include "platform/qt/windows/frame_internal.h"

#include <QApplication>
#include <QCloseEvent>
#include <QMenuBar>
#include <QScreen>
#include <QTimer>
#include <QWindow>

#include <algorithm>

namespace tarn::platform::qt {

namespace {

bool isButton(Type type) {
    return type == Type::Pushbutton || type == Type::Bitmapbutton;
}

// Before a window of that border has shown its frame, another's tells best.
QMargins likelyMargins(int borderStyle) {
    QMargins margins = knownMargins(borderStyle);
    for (int other = 2; margins.isNull() && borderStyle != 0 && other > 0; --other)
        margins = knownMargins(other);
    return margins;
}

}  // namespace

// What belonged to this window when it was shown last may be what it is to belong to now; the toolkit never comes to the
// end of such a ring.
void Frame::leaveRing() {
    if (isVisible()) return;
    for (QWindow* const other : QGuiApplication::allWindows())
        if (other->transientParent() == windowHandle()) other->setTransientParent(nullptr);
}

// A window of its own kind says to the window system that it waits on the one below it, and is neither lost behind that one
// nor minimised by its title.
void Frame::applyKind() {
    const Qt::WindowFlags kind = window_->modal ? Qt::Dialog : Qt::Window;
    if (isVisible() || (windowFlags() & Qt::WindowType_Mask) == kind) return;
    setWindowFlags((windowFlags() & ~Qt::WindowType_Mask) | kind);
}

void Frame::applyModality() {
    const Qt::WindowModality wanted = window_->modal ? Qt::ApplicationModal : Qt::NonModal;
    if (windowModality() != wanted) {
        if (isVisible()) hide();  // the toolkit takes a new modality only while a window is hidden
        setWindowModality(wanted);
    }
    const bool onTop = window_->onTop || (window_->modal && staysOnTop());
    if (!isVisible() && onTop != windowFlags().testFlag(Qt::WindowStaysOnTopHint))
        setWindowFlag(Qt::WindowStaysOnTopHint, onTop);
    applyKind();
    Frame* below = frameOfWidget(QApplication::activeWindow());
    winId();
    leaveRing();
    if (window_->owned && !window_->modal)
        if (const Window* main = findWindow(Object("Main")); main != nullptr) below = frameOf(*main);
    const bool owned = (window_->modal || window_->owned) && below != nullptr && below != this;
    windowHandle()->setTransientParent(owned ? below->windowHandle() : nullptr);
    if (!window_->modal || seen_ || window_->position.x != 0 || window_->position.y != 0) return;
    // A dialog that says nothing of its place opens over the window it belongs to.
    const QRect over = below != nullptr ? below->frameGeometry() : screen()->availableGeometry();
    QRect mine(QPoint(), size());
    mine.moveCenter(over.center());
    // What is placed is the area inside the frame, whose title has to stay on the screen.
    const QRect room = screen()->availableGeometry().marginsRemoved(likelyMargins(window_->borderStyle));
    mine.moveLeft(std::clamp(mine.left(), room.left(), std::max(room.left(), room.right() - mine.width())));
    mine.moveTop(std::clamp(mine.top(), room.top(), std::max(room.top(), room.bottom() - mine.height())));
    window_->position.x = mine.x();
    window_->position.y = mine.y();
    move(mine.topLeft());
}

void Frame::open() {
    const Flag quiet(applying_);
    const bool first = !isVisible();
    if (!seen_ && assumed_ != knownMargins(window_->borderStyle)) {
        takeMargins(knownMargins(window_->borderStyle), false);
        if (window_->position != first_) place();
    }
    makeEditor();
    layOut();
    applyModality();
    if (window_->state == 1 && first) window_->state = 0;
    if (isMinimized()) showNormal();
    if (window_->state == 2 && !capped() && first)
        showMaximized();
    else
        show();
    seen_ = true;
    if (window_->state == 2 && capped() && !large_) maximiseWithin();
}

void Frame::bringUp() {
    const bool first = !isVisible();
    open();
    raise();
    activateWindow();
    if (first) begin();
}

void Frame::showQuietly(bool behind) {
    if (isVisible()) return;
    setAttribute(Qt::WA_ShowWithoutActivating);
    open();
    setAttribute(Qt::WA_ShowWithoutActivating, false);
    if (behind) lower();  // desktops differ in where they put a window that does not ask for the focus
    QApplication::alert(this);
    begin();
}

void Frame::begin() {
    nameControls();  // the program may have filled its labels since it loaded the window
    focusFirst();
}

void Frame::focusFirst() {
    if (Peer* editor = Peer::of(*client_); editor != nullptr) return editor->focusWidget()->setFocus();
    if (focusWidget() != nullptr && focusWidget() != this) return;
    for (const auto& control : window_->controls) {
        if (!control->visible || !control->enabled || !control->tabStop || !takesFocus(*control)) continue;
        if (control->type == Type::Radiobutton && control->value == 0 && !control->checked) continue;
        if (!window_->menuItems.empty() && isButton(control->type)) continue;
        QWidget* widget = peerOf(*control)->focusWidget();
        widget->setFocus(Qt::TabFocusReason);
        return;
    }
    setFocus();
}

void Frame::showEvent(QShowEvent* event) {
    QWidget::showEvent(event);
    layOut();
    // The window system tells the width of the frame in its own time, and not always with an event.
    for (const int milliseconds : {60, 250, 1000})
        QTimer::singleShot(milliseconds, this, [this] { settle(); });
}

void Frame::closeEvent(QCloseEvent* event) {
    event->ignore();  // the model decides, and hides or destroys the frame itself
    if (window_ == nullptr || !takesInput(*window_)) return;
    const QPointer<Frame> self(this);
    userClose(*window_);
    // A desktop that ends its session asks each window, and takes a refusal as a wish to stay.
    if (self.isNull() || self->window_ == nullptr || !self->window_->shown) event->accept();
}

void Frame::moveEvent(QMoveEvent* event) {
    QWidget::moveEvent(event);
    calm_.start();
    report();
}

void Frame::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    calm_.start();
    layOut();
    report();
}

// What a program has drawn stays in the old colours. It hears what it draws again for at another size.
void Frame::coloursChanged() {
    if (!isVisible() || !client_->isDrawnOn()) return;
    QTimer::singleShot(0, this, [this] {
        if (window_ != nullptr) userColours(*window_);
    });
}

void Frame::changeEvent(QEvent* event) {
    QWidget::changeEvent(event);
    if (window_ != nullptr && event->type() == QEvent::PaletteChange) {
        for (const auto& control : window_->controls)
            if (control->type == Type::Edit && peerOf(*control) != nullptr) applyColours(*control);
        coloursChanged();
    }
    if (window_ == nullptr || event->type() != QEvent::WindowStateChange || applying_) return;
    const bool wasLarge =
        static_cast<QWindowStateChangeEvent*>(event)->oldState().testFlag(Qt::WindowMaximized);
    if (wasLarge && !isMaximized()) waitForFrame();
    if (!isMaximized() || !capped()) return report();
    // The window system has taken the whole screen: shrink to the largest position, or go back from it.
    QTimer::singleShot(0, this, [this] {
        if (window_ == nullptr || !isMaximized()) return;
        if (large_)
            goBack();
        else
            maximiseWithin();
        report();
    });
}

}  // namespace tarn::platform::qt
