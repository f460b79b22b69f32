// SPDX-License-Identifier: Apache-2.0
//
// A modal window whose size is not the user's to change, and that is larger than the screen, as dialogs are with large letters
// on a small one: the frame takes what room there is and its content scrolls, by bars, by the wheel, and to where the focus
// goes. The model knows nothing of it: to the program the window has its whole size. Others can be moved until the user
// sees what he wants of them, since they can be left; what is drawn on them stands where the program drew it.
#include "platform/qt/drawing/surface.h"
#include "platform/qt/windows/frame_internal.h"

#include <QApplication>
#include <QMenuBar>
#include <QScreen>
#include <QScrollBar>
#include <QStyle>
#include <QWheelEvent>

#include <algorithm>

namespace tarn::platform::qt {

namespace {

QScrollBar* makeBar(Qt::Orientation orientation, QWidget* parent, const char* name) {
    auto* const bar = new QScrollBar(orientation, parent);
    bar->setObjectName(QString::fromLatin1(name));
    bar->setFocusPolicy(Qt::NoFocus);
    return bar;
}

int thickness(const QWidget& widget) {
    return widget.style()->pixelMetric(QStyle::PM_ScrollBarExtent, nullptr, &widget);
}

void setRange(QScrollBar& bar, int content, int room) {
    constexpr int step = 20;
    bar.setRange(0, std::max(content - room, 0));
    bar.setPageStep(room);
    bar.setSingleStep(step);
    bar.setVisible(content > room);
}

}  // namespace

QSize Frame::contentSize() const {
    const Rect margins = extents();
    return {std::max(window_->position.w - margins.w, 1),
            std::max(window_->position.h - margins.h, 0) + barHeight()};
}

bool Frame::mayScroll() const {
    return window_ != nullptr && window_->modal && window_->borderStyle != 2;
}

// What the screen has room for, and beside it, where it is less than the whole, room for the other direction's bar.
QSize Frame::fitted(const QSize& content) const {
    if (!mayScroll()) return content;
    QMargins frame = knownMargins(window_->borderStyle);
    if (frame.isNull()) frame = assumed_;
    const QSize room = screen()->availableGeometry().marginsRemoved(frame).size();
    QSize size = content.boundedTo(room);
    if (content.height() > room.height()) size.rwidth() += thickness(*this);
    if (content.width() > room.width()) size.rheight() += thickness(*this);
    return size.boundedTo(room);
}

bool Frame::isCut() const {
    if (!mayScroll()) return false;
    const QSize content = contentSize(), size = fitted(content);
    return size.width() < content.width() || size.height() < content.height();
}

// All of what can be seen of it stands on the screen.
void Frame::keepInReach() {
    const QRect room = screen()->availableGeometry().marginsRemoved(knownMargins(window_->borderStyle));
    const QSize content = contentSize();
    QPoint corner = pos();
    if (height() < content.height()) corner.setY(screen()->availableGeometry().top());
    if (corner.x() + width() > room.right()) corner.setX(std::max(room.left(), room.right() - width()));
    if (corner != pos()) move(corner);
}

void Frame::makeScrollBars() {
    if (down_ != nullptr) return;
    down_ = makeBar(Qt::Vertical, this, "scrolldown");
    across_ = makeBar(Qt::Horizontal, this, "scrollacross");
    for (QScrollBar* const bar : {down_, across_})
        connect(bar, &QScrollBar::valueChanged, this, [this] { layOut(); });
    connect(qApp, &QApplication::focusChanged, this, [this](QWidget*, const QWidget* now) {
        if (window_ != nullptr && now != nullptr && client_->isAncestorOf(now) && isCut()) scrollTo(*now);
    });
}

void Frame::layOutScrolled(int bar) {
    makeScrollBars();
    const QSize content(contentSize().width(), contentSize().height() - bar);
    const int wide = thickness(*this);
    const bool scrollsDown = height() - bar < content.height(), scrollsAcross = width() < content.width();
    const QSize room(width() - (scrollsDown ? wide : 0), height() - bar - (scrollsAcross ? wide : 0));
    setRange(*down_, content.height(), room.height());
    setRange(*across_, content.width(), room.width());
    down_->setGeometry(room.width(), bar, wide, room.height());
    across_->setGeometry(0, bar + room.height(), room.width(), wide);
    client_->setGeometry(-across_->value(), bar - down_->value(), content.width(), content.height());
    for (QWidget* const above :
         {static_cast<QWidget*>(bar_), static_cast<QWidget*>(down_), static_cast<QWidget*>(across_)})
        above->raise();
}

void Frame::scrollTo(const QWidget& widget) {
    constexpr int gap = 8;
    const QRect place(widget.mapTo(client_, QPoint()), widget.size());
    const auto bring = [](QScrollBar& bar, int first, int last) {
        const int lowest = last + gap - bar.pageStep();
        bar.setValue(std::clamp(bar.value(), std::min(lowest, first - gap), first - gap));
    };
    bring(*down_, place.top(), place.bottom() + 1);
    bring(*across_, place.left(), place.right() + 1);
}

void Frame::wheelEvent(QWheelEvent* event) {
    if (window_ == nullptr || !isCut() || down_ == nullptr) return QWidget::wheelEvent(event);
    QApplication::sendEvent(down_, event);
}

}  // namespace tarn::platform::qt
