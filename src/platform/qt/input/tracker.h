// SPDX-License-Identifier: Apache-2.0
//
// Lets the user drag a rectangle: a rubber band follows the mouse until its button is released, with a label beside the
// pointer that tells place and size, and a pointer that tells what is taken hold of. Escape gives the rectangle back as it
// was, and so does a mouse that has hardly moved: a click moves nothing. Bands show what goes along, and a line the guide
// that has drawn the rectangle; with Alt held down guides draw nothing.
//
// Cost: a step moves two small widgets; what lies below is copied, not drawn again.
#pragma once

#include "platform/model/guides.h"

#include <QLabel>
#include <QPointer>
#include <QRubberBand>

#include <vector>

class QEvent;
class QMouseEvent;

namespace tarn::platform::qt {

class Tracker {
public:
    // `client` is the area whose pixels the rectangles count, at a scale in per cent; `pressed` is where the button went
    // down.
    Tracker(QWidget& client, const Track& track, DragGuides guides, int scale);
    ~Tracker();
    Tracker(const Tracker&) = delete;
    Tracker& operator=(const Tracker&) = delete;
    // All events of the program are the drag's until it ends; true for those that nobody else hears. The view hands them
    // on: a filter of the drag's own, put before the view's while that hears the press, would have it hear the press again.
    bool hear(QEvent& event);
    [[nodiscard]] bool done() const { return done_ || client_.isNull() || !client_->isVisible(); }
    [[nodiscard]] Rect result() const { return rect_; }

private:
    void follow(const QMouseEvent& event);
    void showAt(QPoint pointer);
    void showAlong();
    void showGuides(bool free);

    QPointer<QWidget> client_;
    QPointer<QRubberBand> band_;
    QPointer<QLabel> label_;
    std::vector<QPointer<QRubberBand>> along_;
    QPointer<QFrame> guideX_, guideY_;  // the line that draws the rectangle now
    bool moved_ = false;                // farther than a click may
    Track track_;
    DragGuides guides_;
    int scale_;
    Rect rect_;
    bool done_ = false;
};

}  // namespace tarn::platform::qt
