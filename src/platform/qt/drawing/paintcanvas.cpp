// SPDX-License-Identifier: Apache-2.0
#include "platform/qt/drawing/paintcanvas.h"

#include "platform/qt/controls/controlpicture.h"
#include "platform/qt/controls/widgets.h"
#include "platform/qt/drawing/palettes.h"
#include "platform/qt/drawing/pictures.h"
#include "platform/qt/drawing/surface.h"
#include "platform/qt/texts.h"
#include "platform/qt/windows/frame.h"

#include <QApplication>
#include <QFontMetrics>
#include <QPixmap>
#include <qdrawutil.h>

#include <algorithm>
#include <cmath>
#include <iterator>

namespace tarn::platform::qt {

namespace {

constexpr int Corner = 8;  // pixels of a round rectangle's corner

QPen penOf(const QColor& colour, int width) {
    if (!colour.isValid()) return {Qt::NoPen};
    return QPen(colour, width, Qt::SolidLine, Qt::SquareCap, Qt::MiterJoin);
}

// A frame of whole pixels, without the painter's pen, which would count half of itself to the outside.
void frameRect(QPainter& painter, const QRect& r, const QColor& colour, int width) {
    const int w = std::min({width, r.width(), r.height()});
    painter.fillRect(r.x(), r.y(), r.width(), w, colour);
    painter.fillRect(r.x(), r.bottom() - w + 1, r.width(), w, colour);
    painter.fillRect(r.x(), r.y(), w, r.height(), colour);
    painter.fillRect(r.right() - w + 1, r.y(), w, r.height(), colour);
}

void paintRound(QPainter& painter, ShapeKind kind, const QRect& r, const QColor& fore, const QColor& back,
                int width) {
    const qreal half = width / 2.0;
    const QRectF edge = QRectF(r).adjusted(half, half, -half, -half);
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(penOf(fore, width));
    painter.setBrush(back.isValid() ? QBrush(back) : QBrush(Qt::NoBrush));
    if (kind == ELLIPSE_SHAPE)
        painter.drawEllipse(edge);
    else
        painter.drawRoundedRect(edge, Corner * width, Corner * width);
    painter.restore();
}

}  // namespace

namespace {

bool isOfWindow(std::string_view properties) {
    constexpr std::string_view types[] = {"TYPEOF=Dialog\n", "TYPEOF=Editwindow\n",
                                          "TYPEOF=Richeditwindow\n"};
    return std::any_of(std::begin(types), std::end(types), [properties](std::string_view type) {
        return properties.find(type) != std::string_view::npos;
    });
}

}  // namespace

QColor colourOf(int value) {
    return {value & 0xFF, value >> 8 & 0xFF, value >> 16 & 0xFF};
}

void paintShape(QPainter& painter, ShapeKind kind, const QRect& r, const QColor& fore, const QColor& back,
                int width) {
    const int w = std::min({width, r.width(), r.height()});
    switch (kind) {
    case ROUNDRECTANGLE_SHAPE:
    case ELLIPSE_SHAPE: return paintRound(painter, kind, r, fore, back, width);
    case HORIZONTALLINE_SHAPE:
        if (fore.isValid()) painter.fillRect(r.x(), r.y() + (r.height() - w) / 2, r.width(), w, fore);
        return;
    case VERTICALLINE_SHAPE:
        if (fore.isValid()) painter.fillRect(r.x() + (r.width() - w) / 2, r.y(), w, r.height(), fore);
        return;
    default:
        if (back.isValid()) painter.fillRect(r, back);
        if (fore.isValid() && fore != back) frameRect(painter, r, fore, width);
    }
}

void paintBorder(QPainter& painter, const QRect& rect, const QPalette& palette, int border,
                 const QColor& line) {
    if (border == 1)
        paintShape(painter, RECTANGLE_SHAPE, rect, line.isValid() ? line : palette.color(QPalette::Mid),
                   QColor());
    if (border == 2) qDrawShadePanel(&painter, rect, palette, true, 1);
}

QRect PaintCanvas::placed(const Rect& rect) const {
    const Rect r = onClient(rect, scale_);
    return {r.x, r.y, r.w, r.h};
}

void PaintCanvas::line(int x1, int y1, int x2, int y2, Ink ink) {
    if (!ready()) return;
    const QColor colour = foreOf(ink);
    if (x1 == x2 || y1 == y2) {
        const Rect all = {std::min(x1, x2), std::min(y1, y2), std::abs(x2 - x1) + width_,
                          std::abs(y2 - y1) + width_};
        return painter_.fillRect(placed(all), colour);
    }
    const QRect from = placed({x1, y1, width_, width_}), to = placed({x2, y2, width_, width_});
    painter_.setPen(penOf(colour, std::min(from.width(), to.width())));
    painter_.drawLine(from.topLeft(), to.topLeft());
}

void PaintCanvas::point(int x, int y, Ink ink) {
    if (ready()) painter_.fillRect(placed({x, y, width_, width_}), foreOf(ink));
}

void PaintCanvas::shape(ShapeKind kind, const Rect& r, Ink ink) {
    if (!ready()) return;
    paintShape(painter_, kind, placed(r), foreOf(ink), ink.back < 0 ? QColor() : colourOf(ink.back),
               std::max(1, static_cast<int>(width_ * factor())));
}

// The letters are those of the scale, at the places that the measures of the unscaled ones give them.
void PaintCanvas::text(int x, int y, std::string_view line, const Font& font, Ink ink) {
    if (!ready()) return;
    if (font_ != font) {
        painter_.setFont(qtFont(font, QApplication::font()));
        font_ = font;
    }
    const QString text = shown(line);
    const QFontMetrics metrics = painter_.fontMetrics();
    if (ink.back >= 0)
        painter_.fillRect(placed({x, y, metrics.horizontalAdvance(text), metrics.height()}),
                          colourOf(ink.back));
    painter_.setPen(foreOf(ink));
    const QTransform unscaled = painter_.transform();
    if (scale_ != 100) painter_.scale(factor(), factor());
    painter_.drawText(x, y + metrics.ascent(), text);
    painter_.setTransform(unscaled);
}

void PaintCanvas::picture(const Rect& r, const std::string& name) {
    if (!ready()) return;
    const PaletteScope scope(colours_);
    const QRect place = placed(r);
    const QPixmap pixmap = pictureScaled(name, place.size(), painter_.device()->devicePixelRatioF());
    if (!pixmap.isNull()) painter_.drawPixmap(place, pixmap);
}

void PaintCanvas::window(int x, int y, const Window& window) {
    Frame* const frame = frameOf(window);
    if (!ready() || frame == nullptr) return;
    const QPixmap pixmap = frame->client().grab();
    const QSize size = frame->client().size() * width_;
    painter_.drawPixmap(placed({x, y, size.width(), size.height()}), pixmap);
}

void PaintCanvas::control(const Rect& r, std::string_view properties, const Font& font) {
    if (!ready()) return;
    const PaletteScope scope(colours_);
    if (isOfWindow(properties)) return painter_.fillRect(placed(r), paletteInForce().window());
    // A picture between pixels would be blurred, so it begins at a whole one of the device.
    const qreal device = painter_.device()->devicePixelRatioF(), ratio = device * factor();
    const QPointF corner = QPointF(r.x, r.y) * ratio, whole(std::floor(corner.x()), std::floor(corner.y()));
    PixelGrid grid{ratio, corner - whole, deviceRect()};
    if (!grid.seen.isNull()) grid.seen.translate(-whole.toPoint());
    const auto [pixmap, part] = controlPicture(properties, {r.w, r.h}, font, grid);
    if (pixmap.isNull()) return;
    const QSizeF pixels = pixmap.size();
    painter_.drawPixmap(QRectF((whole + part) / device, pixels / device), pixmap, QRectF({}, pixels));
}

// In its pixels; null where what is drawn falls elsewhere.
QRect PaintCanvas::deviceRect() const {
    const QPaintDevice& device = *painter_.device();
    if (device.devType() != QInternal::Image || !painter_.transform().isIdentity()) return {};
    return {0, 0, device.width(), device.height()};
}

}  // namespace tarn::platform::qt
