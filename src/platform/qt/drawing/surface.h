// SPDX-License-Identifier: Apache-2.0
//
// A widget with a picture that programs draw on: the client area of a window, or an image. The picture is as
// large as the widget has ever been and has the screen's own pixels, so that it stays sharp at any scale.
// Cost: a picture only once something is drawn; a repaint copies what is uncovered.
#pragma once

#include "platform/model/canvas.h"
#include "platform/model/drawscale.h"

#include <QImage>
#include <QWidget>

#include <memory>

namespace tarn::platform::qt {

class SurfaceWidget : public QWidget {
public:
    using QWidget::QWidget;
    // Draws into the picture until it is finished or deleted; one at a time. It may outlive the widget.
    std::unique_ptr<Canvas> canvas(const DrawLook& look = {});
    void wipe();  // nothing is drawn any more
    [[nodiscard]] bool isDrawnOn() const { return picture_ != nullptr; }

protected:
    void paintEvent(QPaintEvent* event) override;  // the picture

private:
    friend class SurfaceCanvas;
    void prepare();  // a picture that covers the widget, with what was drawn before

    std::shared_ptr<QImage> picture_;  // null: nothing was drawn
    bool drawing_ = false;
};

}  // namespace tarn::platform::qt
