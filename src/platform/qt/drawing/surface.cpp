// SPDX-License-Identifier: Apache-2.0
#include "platform/qt/drawing/surface.h"

#include "platform/qt/drawing/paintcanvas.h"
#include "platform/qt/drawing/palettes.h"

#include <QPaintEvent>
#include <QPointer>

namespace tarn::platform::qt {

class SurfaceCanvas : public PaintCanvas {
public:
    SurfaceCanvas(SurfaceWidget& widget, const DrawLook& look)
        : PaintCanvas(coloursOf(widget, look).color(QPalette::WindowText), 1, look), widget_(&widget),
          picture_(widget.picture_) {
        widget.drawing_ = true;
        painter_.begin(picture_.get());
    }
    ~SurfaceCanvas() override { SurfaceCanvas::finish(); }
    bool finish() override {
        if (painter_.isActive()) painter_.end();
        if (widget_ == nullptr) return true;
        widget_->drawing_ = false;
        widget_->update();
        widget_ = nullptr;
        return true;
    }

protected:
    bool ready() override { return widget_ != nullptr && painter_.isActive(); }

private:
    static QPalette coloursOf(const SurfaceWidget& widget, const DrawLook& look) {
        return look.colours == DESKTOP_COLOURS ? widget.palette() : paletteOf(look.colours);
    }
    QPointer<SurfaceWidget> widget_;
    std::shared_ptr<QImage> picture_;  // the widget may go first
};

std::unique_ptr<Canvas> SurfaceWidget::canvas(const DrawLook& look) {
    if (drawing_ || size().isEmpty()) return nullptr;
    prepare();
    return std::make_unique<SurfaceCanvas>(*this, look);
}

void SurfaceWidget::prepare() {
    const qreal ratio = devicePixelRatioF();
    const QSize wanted = size() * ratio;
    QSize had;
    if (picture_ != nullptr) {
        had = (picture_->deviceIndependentSize() * ratio).toSize();
        const bool covers = had.width() >= wanted.width() && had.height() >= wanted.height();
        if (covers && qFuzzyCompare(picture_->devicePixelRatio(), ratio)) return;
    }
    auto larger = std::make_shared<QImage>(wanted.expandedTo(had), QImage::Format_ARGB32_Premultiplied);
    larger->setDevicePixelRatio(ratio);
    larger->fill(Qt::transparent);
    if (picture_ != nullptr) QPainter(larger.get()).drawImage(QPointF(), *picture_);
    picture_ = std::move(larger);
}

void SurfaceWidget::wipe() {
    if (drawing_)
        picture_->fill(Qt::transparent);
    else
        picture_ = nullptr;
    update();
}

void SurfaceWidget::paintEvent(QPaintEvent* event) {
    if (picture_ == nullptr) return;
    QPainter painter(this);
    painter.setClipRegion(event->region());
    painter.drawImage(QPointF(), *picture_);
}

}  // namespace tarn::platform::qt
