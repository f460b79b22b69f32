// SPDX-License-Identifier: Apache-2.0
//
// Lets the user drag a rectangle: a rubber band follows the mouse until its button is released. Escape gives
// the rectangle back as it was.
#pragma once

#include "platform/model/track.h"

#include <QObject>
#include <QPointer>
#include <QRubberBand>

namespace tarn::platform::qt {

class Tracker : public QObject {
public:
    // `client` is the area whose pixels the rectangles count; `pressed` is where the button went down.
    Tracker(QWidget& client, const Track& track);
    ~Tracker() override;
    [[nodiscard]] bool done() const { return done_ || client_.isNull() || !client_->isVisible(); }
    [[nodiscard]] Rect result() const { return rect_; }

protected:
    bool eventFilter(QObject* receiver, QEvent* event) override;

private:
    void follow(QPoint global);

    QPointer<QWidget> client_;
    QPointer<QRubberBand> band_;
    Track track_;
    Rect rect_;
    bool done_ = false;
};

}  // namespace tarn::platform::qt
