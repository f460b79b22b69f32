// SPDX-License-Identifier: Apache-2.0
//
// Where a frame stands: limits, places in the units of the model, states, and telling the model where the frame is.
#include "platform/qt/controls/widgets.h"
#include "platform/qt/drawing/surface.h"
#include "platform/qt/windows/frame_internal.h"

#include <QMenuBar>
#include <QScreen>
#include <QScrollBar>
#include <QTimer>
#include <QWindow>

#include <algorithm>

namespace tarn::platform::qt {

QMargins& knownMargins(int borderStyle) {
    static QMargins known[3];
    return known[std::clamp(borderStyle, 0, 2)];
}

int Frame::barHeight() const {
    if (window_ == nullptr || window_->menuItems.empty()) return 0;
    const int height = bar_->heightForWidth(std::max(width(), 1));
    return height > 0 ? height : bar_->sizeHint().height();
}

Rect Frame::extents() const {
    QMargins margins = assumed_;
    if (windowHandle() != nullptr && isVisible()) margins = windowHandle()->frameMargins();
    const int bar = barHeight();
    return {margins.left(), margins.top() + bar, margins.left() + margins.right(),
            margins.top() + margins.bottom() + bar};
}

bool Frame::capped() const {
    return window_->maximum_.w > 0 && window_->maximum_.h > 0;
}

void Frame::applyLimits() {
    const Rect &low = window_->minimum_, &high = window_->maximum_;
    const int bar = barHeight();
    if (window_->borderStyle != 2) return;
    setMinimumSize(std::max(low.w, 0), low.h > 0 ? low.h + bar : 0);
    setMaximumSize(high.w > 0 ? std::max(high.w, low.w) : QWIDGETSIZE_MAX,
                   high.h > 0 ? std::max(high.h, low.h) + bar : QWIDGETSIZE_MAX);
}

void Frame::place() {
    if (window_->state != 0 && seen_) return;
    applyLimits();
    const Rect margins = extents();
    const Rect& frame = window_->position;
    const int bar = barHeight();
    const QSize size(std::max(frame.w - margins.w, 1), std::max(frame.h - margins.h, 0) + bar);
    if (window_->borderStyle == 2)
        resize(size);
    else
        setFixedSize(fitted(size));
    move(frame.x, frame.y);
    if (isCut()) keepInReach();
    layOut();
}

void Frame::layOut() {
    if (window_ == nullptr) return;
    const int bar = barHeight();
    bar_->setGeometry(0, 0, width(), bar);
    if (isCut()) return layOutScrolled(bar);
    client_->setGeometry(0, bar, width(), std::max(height() - bar, 0));
    if (down_ != nullptr) {
        down_->hide();
        across_->hide();
    }
    if (const Peer* editor = Peer::of(*client_); editor != nullptr)
        editor->widget()->setGeometry(client_->rect());
}

// The frame counts too: its lower edge has to stay on the screen. It is the usual one, not that of a window that
// the window system has just maximised.
QSize Frame::largestSize() const {
    const Rect& to = window_->maximum_;
    const QRect room = screen()->availableGeometry();
    const int bar = barHeight();
    const int width = room.right() + 1 - to.x - assumed_.left() - assumed_.right();
    const int height = room.bottom() + 1 - to.y - assumed_.top() - assumed_.bottom() - bar;
    return {std::min(to.w, width), std::min(to.h, height) + bar};
}

void Frame::maximiseWithin() {
    const Flag quiet(applying_);
    if (!large_ && !isMaximized()) normal_ = geometry();
    if (normal_.isEmpty()) normal_ = normalGeometry();  // made large ahead of coming to rest
    large_ = true;
    if (isMaximized()) waitForFrame();
    showNormal();
    resize(largestSize());
    move(window_->maximum_.x, window_->maximum_.y);
    // A window system that has just taken the whole screen may place the window by the frame it had there.
    for (const int milliseconds : {100, 400})
        QTimer::singleShot(milliseconds, this, [this] { settleLarge(); });
}

// A window system that makes a window large tells of its size ahead of its state. So what counts as the place to come back
// to is one that the window has had for a while.
void Frame::noteNormal() {
    if (window_ != nullptr && isVisible() && !large_ && windowState() == Qt::WindowNoState)
        normal_ = geometry();
}

void Frame::goBack() {
    const Flag quiet(applying_);
    large_ = false;
    waitForFrame();
    showNormal();
    if (!normal_.isEmpty()) setGeometry(normal_);
}

void Frame::waitForFrame() {
    constexpr int milliseconds = 300;
    ++waits_;
    QTimer::singleShot(milliseconds, this, [this] {
        if (--waits_ == 0) settle();
    });
}

void Frame::settleLarge() {
    if (window_ == nullptr || !large_ || !capped() || isMaximized()) return;
    const Flag quiet(applying_);
    if (size() != largestSize()) resize(largestSize());
    const QPoint corner(window_->maximum_.x, window_->maximum_.y);
    if (frameGeometry().topLeft() != corner) move(corner);
}

void Frame::applyState() {
    const int state = window_->state;
    if (state == 2 && capped()) {
        if (isVisible()) maximiseWithin();  // else when it is brought up
        return;
    }
    if (state == 0 && large_) {
        large_ = false;
        setGeometry(normal_);
    }
    if (!seen_) return;
    const Qt::WindowStates wanted = state == 1   ? Qt::WindowMinimized
                                    : state == 2 ? Qt::WindowMaximized
                                                 : Qt::WindowNoState;
    if (isMaximized() && state != 2) waitForFrame();
    if (isVisible()) setWindowState((windowState() & ~(Qt::WindowMinimized | Qt::WindowMaximized)) | wanted);
}

void Frame::report() {
    if (window_ == nullptr || applying_ || waits_ > 0 || !isVisible() || window_->closing) return;
    // Until the frame has been seen, what the widget tells is not the size of the window.
    const QMargins margins = windowHandle() != nullptr ? windowHandle()->frameMargins() : assumed_;
    if (margins.isNull() && !assumed_.isNull()) return;  // settle() will look again
    if (margins != assumed_ && !isMaximized()) return settle();
    const int state = isMinimized() ? 1 : isMaximized() || large_ ? 2 : 0;
    const QRect frame = frameGeometry();
    Rect now = state == 1 ? window_->position : Rect{frame.x(), frame.y(), frame.width(), frame.height()};
    if (isCut()) now = {now.x, now.y, window_->position.w, window_->position.h};
    if (now == window_->position && state == window_->state) return;
    userMoved(*window_, now, state);
}

// The frame is another than was thought, so either the frame or the area inside it is no longer as large as it was given.
// Where the program gave the size of the client area, the frame follows, since the controls were measured for what is inside;
// where it gave the place of the frame, that stays. A window with a menu keeps its frame in both cases: others are placed
// below it, and it would grow over them. `keepsClient`: none of that counts, the client area stays.
void Frame::takeMargins(const QMargins& margins, bool keepsClient) {
    const QMargins news = margins - assumed_;
    const bool grows = window_->menuItems.empty();
    if (keepsClient || (grows && window_->clientWide)) window_->position.w += news.left() + news.right();
    if (keepsClient || (grows && window_->clientHigh)) window_->position.h += news.top() + news.bottom();
    assumed_ = margins;
}

// The width of the frame is known only once the window system has drawn it. A window as its resources made it, and one whose
// size the user cannot change, keeps its client area.
void Frame::settle() {
    if (window_ == nullptr || windowHandle() == nullptr || !isVisible() || waits_ > 0) return;
    if (isMaximized()) return report();  // with another frame, or none
    const QMargins margins = windowHandle()->frameMargins();
    const bool news = margins != assumed_;
    const QSize before(window_->position.w - assumed_.left() - assumed_.right(),
                       window_->position.h - assumed_.top() - assumed_.bottom() - barHeight());
    knownMargins(window_->borderStyle) = margins;
    if (news && window_->state == 0 && !isMaximized() && !large_) {
        const Flag quiet(applying_);
        takeMargins(margins, before == QSize(first_.w, first_.h) || window_->borderStyle != 2);
        const bool dragged = !isCut() && size() != QSize(before.width(), before.height() + barHeight());
        if (!dragged) place();  // else the user has sized it meanwhile, and the model is told below
    }
    assumed_ = margins;
    report();
}

}  // namespace tarn::platform::qt
