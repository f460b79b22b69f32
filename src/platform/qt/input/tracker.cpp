// SPDX-License-Identifier: Apache-2.0
#include "platform/qt/input/tracker.h"

#include <QApplication>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QRubberBand>

namespace tarn::platform::qt {

Tracker::Tracker(QWidget& client, const Track& track)
    : client_(&client), band_(new QRubberBand(QRubberBand::Rectangle, &client)), track_(track),
      rect_(track.start) {
    qApp->installEventFilter(this);
}

Tracker::~Tracker() {
    qApp->removeEventFilter(this);
    delete band_.data();
}

void Tracker::follow(QPoint global) {
    if (client_.isNull()) return;
    const QPoint at = client_->mapFromGlobal(global);
    rect_ = tracked(track_, {at.x(), at.y()});
    if (band_.isNull()) return;
    band_->setGeometry(rect_.x, rect_.y, rect_.w, rect_.h);
    band_->show();
}

// All input is the drag's until it ends.
bool Tracker::eventFilter(QObject*, QEvent* event) {
    switch (event->type()) {
    case QEvent::MouseMove: follow(static_cast<QMouseEvent*>(event)->globalPosition().toPoint()); return true;
    case QEvent::MouseButtonRelease:
        if (static_cast<QMouseEvent*>(event)->button() == Qt::LeftButton) {
            follow(static_cast<QMouseEvent*>(event)->globalPosition().toPoint());
            done_ = true;
        }
        return true;
    case QEvent::ShortcutOverride:
    case QEvent::KeyPress:
        if (static_cast<QKeyEvent*>(event)->key() == Qt::Key_Escape) {
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
