// SPDX-License-Identifier: Apache-2.0
#include "platform/qt/input/tracker.h"

#include "platform/model/drawscale.h"

#include <QApplication>
#include <QKeyEvent>
#include <QLabel>
#include <QMouseEvent>
#include <QToolTip>

#include <algorithm>
#include <utility>

namespace tarn::platform::qt {

namespace {

constexpr int ClickSlack = 3;    // pixels that the mouse may move in a click
constexpr int LabelOffset = 16;  // of the label from the pointer

// By what is taken hold of, column by column: the left edge, neither, the right edge.
constexpr Qt::CursorShape cursors[3][3] = {
    {Qt::SizeFDiagCursor, Qt::SizeHorCursor, Qt::SizeBDiagCursor},
    {Qt::SizeVerCursor, Qt::SizeAllCursor, Qt::SizeVerCursor},
    {Qt::SizeBDiagCursor, Qt::SizeHorCursor, Qt::SizeFDiagCursor},
};

Qt::CursorShape cursorOf(const Track& track) {
    if (track.mode != TRACK_MOVE) return Qt::CrossCursor;
    const Point edge = trackHandle(track);
    return cursors[edge.x + 1][edge.y + 1];
}

QLabel* makeLabel(QWidget& client) {
    auto* const label = new QLabel(&client);
    label->setObjectName(QStringLiteral("track"));
    label->setAttribute(Qt::WA_TransparentForMouseEvents);
    label->setPalette(QToolTip::palette());
    label->setBackgroundRole(QPalette::ToolTipBase);
    label->setForegroundRole(QPalette::ToolTipText);
    label->setAutoFillBackground(true);
    label->setFrameStyle(QFrame::Box | QFrame::Plain);
    label->setMargin(2);
    return label;
}

QFrame* makeGuide(QWidget& client) {
    auto* const line = new QFrame(&client);
    line->setObjectName(QStringLiteral("guide"));
    line->setAttribute(Qt::WA_TransparentForMouseEvents);
    line->setAutoFillBackground(true);
    QPalette palette = line->palette();
    palette.setColor(QPalette::Window, palette.color(QPalette::Highlight));
    line->setPalette(palette);
    return line;
}

}  // namespace

Tracker::Tracker(QWidget& client, const Track& track, DragGuides guides, int scale)
    : client_(&client), band_(new QRubberBand(QRubberBand::Rectangle, &client)), label_(makeLabel(client)),
      guideX_(makeGuide(client)), guideY_(makeGuide(client)), track_(track), guides_(std::move(guides)),
      scale_(scale), rect_(track.start) {
    for (std::size_t i = 0; i < guides_.along.size(); ++i)
        along_.emplace_back(new QRubberBand(QRubberBand::Rectangle, &client));
    QApplication::setOverrideCursor(cursorOf(track_));
}

Tracker::~Tracker() {
    QApplication::restoreOverrideCursor();
    delete band_.data();
    delete label_.data();
    delete guideX_.data();
    delete guideY_.data();
    for (const auto& band : along_) delete band.data();
}

void Tracker::follow(const QMouseEvent& event) {
    if (client_.isNull()) return;
    const bool free = event.modifiers().testFlag(Qt::AltModifier);
    const QPoint at = client_->mapFromGlobal(event.globalPosition().toPoint());
    const Point place = onDrawing({at.x(), at.y()}, scale_);
    const QPoint way = QPoint(place.x - track_.pressed.x, place.y - track_.pressed.y) * scale_ / 100;
    if (!moved_ && track_.mode == TRACK_MOVE && way.manhattanLength() < ClickSlack) return;
    moved_ = true;
    rect_ = tracked(track_, place, guides_, free);
    showAlong();
    showGuides(free);
    showAt(at);
}

void Tracker::showAlong() {
    const std::vector<Rect> rects = trackedAlong(track_, rect_, guides_);
    for (std::size_t i = 0; i < rects.size(); ++i) {
        if (along_[i].isNull()) continue;
        const Rect band = onClient(rects[i], scale_);
        along_[i]->setGeometry(band.x, band.y, band.w, band.h);
        along_[i]->show();
    }
}

void Tracker::showGuides(bool free) {
    if (guideX_.isNull() || guideY_.isNull()) return;
    const Rect& area = track_.bounds;
    const Point at = free ? Point{-1, -1} : guidesAt(rect_, guides_);
    const Rect x = onClient({at.x, area.y, 1, area.h}, scale_),
               y = onClient({area.x, at.y, area.w, 1}, scale_);
    guideX_->setGeometry(x.x, x.y, 1, x.h);
    guideY_->setGeometry(y.x, y.y, y.w, 1);
    guideX_->setVisible(at.x >= 0);
    guideY_->setVisible(at.y >= 0);
}

// The label stands where it covers neither the pointer nor the edge of the window.
void Tracker::showAt(QPoint pointer) {
    if (band_.isNull() || label_.isNull()) return;
    const Rect band = onClient(rect_, scale_);
    band_->setGeometry(band.x, band.y, band.w, band.h);
    band_->show();
    label_->setText(QStringLiteral("%1, %2   %3 \u00D7 %4")
                        .arg(rect_.x - track_.bounds.x)
                        .arg(rect_.y - track_.bounds.y)
                        .arg(rect_.w)
                        .arg(rect_.h));
    label_->adjustSize();
    const auto beside = [](int at, int size, int room) {
        return at + LabelOffset + size <= room ? at + LabelOffset : std::max(at - LabelOffset - size, 0);
    };
    label_->move(beside(pointer.x(), label_->width(), client_->width()),
                 beside(pointer.y(), label_->height(), client_->height()));
    label_->raise();
    label_->show();
}

bool Tracker::hear(QEvent& event) {
    switch (event.type()) {
    case QEvent::MouseMove: follow(static_cast<QMouseEvent&>(event)); return true;
    case QEvent::MouseButtonRelease:
        if (static_cast<QMouseEvent&>(event).button() == Qt::LeftButton) {
            follow(static_cast<QMouseEvent&>(event));
            done_ = true;
        }
        return true;
    case QEvent::ShortcutOverride:
    case QEvent::KeyPress:
        if (static_cast<QKeyEvent&>(event).key() == Qt::Key_Escape) {
            rect_ = track_.start;
            done_ = true;
        }
        return true;
    case QEvent::KeyRelease:
    case QEvent::Shortcut:
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonDblClick:
    case QEvent::Wheel:
    case QEvent::ContextMenu: return true;
    case QEvent::ApplicationDeactivate: done_ = true; return false;
    default: return false;
    }
}

}  // namespace tarn::platform::qt
