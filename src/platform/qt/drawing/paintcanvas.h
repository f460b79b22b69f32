// SPDX-License-Identifier: Apache-2.0
//
// Drawing with the toolkit's painter, the same on screens and on paper. Cost: fonts and pens are set when they
// change.
#pragma once

#include "platform/model/canvas.h"
#include "platform/model/drawscale.h"

#include <QColor>
#include <QFont>
#include <QPainter>
#include <QPalette>

#include <optional>

namespace tarn::platform::qt {

QColor colourOf(int value);  // 0xBBGGRR

// Draws a shape so that it covers exactly `rect`; a fore or back colour that is not valid is left out.
void paintShape(QPainter& painter, ShapeKind kind, const QRect& rect, const QColor& fore, const QColor& back,
                int lineWidth = 1);

// The border of a control inside the edges of `rect`: 0 none, 1 a line, 2 sunken. A colour that is not valid is the
// desktop's for lines.
void paintBorder(QPainter& painter, const QRect& rect, const QPalette& palette, int border,
                 const QColor& line = {});

class PaintCanvas : public Canvas {
public:
    // The desktop's fore colour, how wide lines are, and how large and in which colours is drawn: lines and boxes begin at
    // whole pixels, texts and controls are drawn at the scale.
    PaintCanvas(QColor fore, int lineWidth, const DrawLook& look = {})
        : fore_(std::move(fore)), width_(lineWidth), scale_(look.scale), colours_(look.colours) {}
    void line(int x1, int y1, int x2, int y2, Ink ink) override;
    void point(int x, int y, Ink ink) override;
    void shape(ShapeKind kind, const Rect& rect, Ink ink) override;
    void text(int x, int y, std::string_view line, const Font& font, Ink ink) override;
    void picture(const Rect& rect, const std::string& name) override;
    void window(int x, int y, const Window& window) override;
    void control(const Rect& rect, std::string_view properties, const Font& font) override;

protected:
    [[nodiscard]] virtual bool ready() { return painter_.isActive(); }
    QPainter painter_;

private:
    [[nodiscard]] QRect placed(const Rect& rect) const;
    [[nodiscard]] QRect deviceRect() const;
    [[nodiscard]] qreal factor() const { return scale_ / 100.0; }
    [[nodiscard]] QColor foreOf(Ink ink) const { return ink.fore < 0 ? fore_ : colourOf(ink.fore); }

    QColor fore_;
    int width_, scale_;
    DrawColours colours_;
    std::optional<Font> font_;  // that the painter has
};

}  // namespace tarn::platform::qt
