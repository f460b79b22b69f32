// SPDX-License-Identifier: Apache-2.0
#include "platform/qt/controls/picturepeer.h"

#include "platform/qt/drawing/paintcanvas.h"
#include "platform/qt/drawing/pictures.h"
#include "platform/qt/drawing/surface.h"

#include <QIcon>
#include <QPainter>

#include <algorithm>

namespace tarn::platform::qt {

namespace {

// A shape, or a picture as large as its place allows, in its own proportions; an icon is not made larger than
// it is. What is drawn on an image stands above its picture.
class PictureWidget : public SurfaceWidget {
public:
    PictureWidget(const Control& control, QWidget* parent)
        : SurfaceWidget(parent), shape_(control.type == Type::Shape ? control.shape : -1),
          border_(control.border), grows_(control.type == Type::Image) {
        if (shape_ >= 0) setAttribute(Qt::WA_TransparentForMouseEvents);
    }
    void setPicture(const std::string& name) {
        icon_ = iconOf(name);
        update();
    }
    void setColours(int fore, int back) {
        fore_ = fore;
        back_ = back;
        update();
    }

protected:
    void paintEvent(QPaintEvent* event) override {
        QPainter painter(this);
        if (shape_ >= 0)
            paintOutline(painter);
        else
            paintPicture(painter);
        painter.end();
        SurfaceWidget::paintEvent(event);
    }

private:
    void paintOutline(QPainter& painter) const {
        const QColor fore = fore_ >= 0 ? colourOf(fore_) : palette().color(QPalette::WindowText);
        const QColor back = back_ >= 0 ? colourOf(back_) : QColor();
        const bool line = shape_ == HORIZONTALLINE_SHAPE || shape_ == VERTICALLINE_SHAPE;
        // A filled shape has an outline only if it asks for one; any other would not be seen without.
        const bool outlined = border_ != 0 || !back.isValid() || line;
        if (border_ == 2) return paintSunken(painter, back);
        paintShape(painter, static_cast<ShapeKind>(shape_), rect(), outlined ? fore : back, back);
    }
    // Dark where the light, which comes from the upper left, does not reach.
    void paintSunken(QPainter& painter, const QColor& back) const {
        const QRect r = rect();
        const QPalette colours = palette();
        const QColor dark = colours.color(QPalette::Dark), light = colours.color(QPalette::Light);
        const auto kind = static_cast<ShapeKind>(shape_);
        if (kind == HORIZONTALLINE_SHAPE || kind == VERTICALLINE_SHAPE) {
            const QPoint beside = kind == HORIZONTALLINE_SHAPE ? QPoint(0, 1) : QPoint(1, 0);
            paintShape(painter, kind, r, dark, QColor());
            return paintShape(painter, kind, r.translated(beside), light, QColor());
        }
        paintShape(painter, kind, r, dark, back);
        QPolygon lower;
        lower << r.bottomLeft() + QPoint(0, 1) << r.topRight() + QPoint(1, 0)
              << r.bottomRight() + QPoint(1, 1);
        painter.setClipRegion(QRegion(lower));
        paintShape(painter, kind, r, light, QColor());
    }
    void paintPicture(QPainter& painter) const {
        if (back_ >= 0) painter.fillRect(rect(), colourOf(back_));
        const QRect inner = rect().adjusted(border_, border_, -border_, -border_);
        const QSize own = icon_.actualSize(grows_ ? QSize(4096, 4096) : inner.size());
        const QSize size = !own.isEmpty() ? own.scaled(inner.size(), Qt::KeepAspectRatio) : QSize();
        if (!size.isEmpty()) {
            QRect place(QPoint(), grows_ ? size : own.boundedTo(size));
            place.moveCenter(inner.center());
            const auto mode = isEnabled() ? QIcon::Normal : QIcon::Disabled;
            QPixmap pixmap = icon_.pixmap(place.size(), devicePixelRatioF(), mode);
            painter.setRenderHint(QPainter::SmoothPixmapTransform);
            painter.drawPixmap(place, pixmap);
        }
        paintBorder(painter, rect(), palette(), border_, fore_ >= 0 ? colourOf(fore_) : QColor());
    }

    QIcon icon_;
    int shape_;  // as in the model; -1: a picture
    int border_;
    bool grows_;
    int fore_ = -1, back_ = -1;
};

class ImagePeer : public Peer {
public:
    ImagePeer(Control& control, PictureWidget& picture) : Peer(control, picture), picture_(picture) {
        picture.setColours(control.foreColour, control.backColour);
    }
    void apply(Property property) override {
        if (property == Property::Picture) picture_.setPicture(control_->picture);
        if (property == Property::Colour) picture_.setColours(control_->foreColour, control_->backColour);
    }

private:
    PictureWidget& picture_;
};

}  // namespace

Peer* makePicturePeer(Control& control, QWidget* parent) {
    return new ImagePeer(control, *new PictureWidget(control, parent));
}

}  // namespace tarn::platform::qt
