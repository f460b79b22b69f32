// SPDX-License-Identifier: Apache-2.0
#include "platform/qt/drawing/palettes.h"

#include <QApplication>
#include <QColor>

#include <utility>

namespace tarn::platform::qt {

namespace {

DrawColours inForce = DESKTOP_COLOURS;

// What desktops of either kind have in common.
struct Shades {
    QRgb ground, paper, other, ink, button, light, midlight, mid, dark, shadow, highlight, link, faint;
};
constexpr Shades lightShades = {0xFFEFEFEF, 0xFFFFFFFF, 0xFFF7F7F7, 0xFF000000, 0xFFEFEFEF,
                                0xFFFFFFFF, 0xFFCACACA, 0xFFB8B8B8, 0xFF9F9F9F, 0xFF767676,
                                0xFF308CC6, 0xFF0000FF, 0xFFBEBEBE};
constexpr Shades darkShades = {0xFF2D2D2D, 0xFF1E1E1E, 0xFF262626, 0xFFE6E6E6, 0xFF383838,
                               0xFF505050, 0xFF484848, 0xFF414141, 0xFF141414, 0xFF0A0A0A,
                               0xFF2A6496, 0xFF6AB0F3, 0xFF7A7A7A};

// Each role of each group, so that nothing is left to the desktop's palette.
QPalette made(const Shades& s) {
    const std::pair<QPalette::ColorRole, QRgb> roles[] = {
        {QPalette::Window, s.ground},
        {QPalette::WindowText, s.ink},
        {QPalette::Base, s.paper},
        {QPalette::AlternateBase, s.other},
        {QPalette::Text, s.ink},
        {QPalette::BrightText, 0xFFFFFFFF},
        {QPalette::Button, s.button},
        {QPalette::ButtonText, s.ink},
        {QPalette::Light, s.light},
        {QPalette::Midlight, s.midlight},
        {QPalette::Mid, s.mid},
        {QPalette::Dark, s.dark},
        {QPalette::Shadow, s.shadow},
        {QPalette::Highlight, s.highlight},
        {QPalette::HighlightedText, 0xFFFFFFFF},
        {QPalette::Link, s.link},
        {QPalette::LinkVisited, s.link},
        {QPalette::ToolTipBase, s.other},
        {QPalette::ToolTipText, s.ink},
        {QPalette::PlaceholderText, s.faint},
    };
    QPalette palette;
    for (const auto& [role, colour] : roles) palette.setColor(role, QColor::fromRgb(colour));
    for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText})
        palette.setColor(QPalette::Disabled, role, QColor::fromRgb(s.faint));
    palette.setColor(QPalette::Disabled, QPalette::Base, QColor::fromRgb(s.ground));
    return palette;
}

}  // namespace

bool isDark(const QPalette& palette) {
    return palette.color(QPalette::Window).lightness() < palette.color(QPalette::WindowText).lightness();
}

QPalette paletteOf(DrawColours colours) {
    static const QPalette light = made(lightShades), dark = made(darkShades);
    const QPalette desktop = QApplication::palette();
    if (colours == DESKTOP_COLOURS || isDark(desktop) == (colours == DARK_COLOURS)) return desktop;
    return colours == DARK_COLOURS ? dark : light;
}

QPalette paletteInForce() {
    return paletteOf(inForce);
}

PaletteScope::PaletteScope(DrawColours colours) : before_(std::exchange(inForce, colours)) {}

PaletteScope::~PaletteScope() {
    inForce = before_;
}

}  // namespace tarn::platform::qt
