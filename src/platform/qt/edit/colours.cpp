// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/qt/edit/colours.h"

#include <algorithm>
#include <cmath>

namespace tarn::platform::qt {

namespace {

constexpr double Enough = 4.5;  // the contrast at which small text reads well

double luminance(const QColor& colour) {
    const auto linear = [](double value) {
        return value <= 0.03928 ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4);
    };
    const auto part = [&](float value) { return linear(static_cast<double>(value)); };
    return 0.2126 * part(colour.redF()) + 0.7152 * part(colour.greenF()) + 0.0722 * part(colour.blueF());
}

}  // namespace

double contrast(const QColor& a, const QColor& b) {
    const double la = luminance(a), lb = luminance(b);
    return (std::max(la, lb) + 0.05) / (std::min(la, lb) + 0.05);
}

QColor readable(const QColor& colour, const QColor& background) {
    const float step = luminance(background) < 0.18 ? 0.02F : -0.02F;
    float hue = 0, saturation = 0, lightness = 0;
    colour.getHslF(&hue, &saturation, &lightness);
    QColor result = colour;
    while (contrast(result, background) < Enough && lightness + step >= 0 && lightness + step <= 1) {
        lightness += step;
        // With the 8 bits of the screen, which may be just too few.
        result = QColor(QColor::fromHslF(std::max(hue, 0.0F), saturation, lightness).rgb());
    }
    return result;
}

QColor mixed(const QColor& a, const QColor& b, double share) {
    const auto part = [share](int x, int y) { return static_cast<int>(std::lround(x + (y - x) * share)); };
    return {part(a.red(), b.red()), part(a.green(), b.green()), part(a.blue(), b.blue())};
}

}  // namespace tarn::platform::qt
