// SPDX-License-Identifier: Apache-2.0
//
// Resource units and pixels. A horizontal unit is a quarter of the average width, and a vertical one an
// eighth of the height, of the letters A to Z and a to z in the window's font. Divisions round down, but the average
// letter of the smallest fonts still has a pixel.
//
// A size of 0, as of a window that is not loaded, gives 0 and sets 643 unless measuring has set an error.
// Cost: one measure of a text for each call that takes a window; who converts many places measures once.
#pragma once

#include "kernel/windows/windowing.h"

namespace tarn {

struct UnitRect {
    int x = 0, y = 0, w = 0, h = 0;  // resource units
    friend bool operator==(const UnitRect&, const UnitRect&) = default;
};

struct LetterSize {
    int width = 0, height = 0;  // pixels, of the average letter
};
LetterSize LETTERSIZE(const Object& window);

Rect RCUNITSTOPIXELS(const Object& window, const UnitRect& units);
Rect RCUNITSTOPIXELS(const LetterSize& letter, const UnitRect& units);
// Rounds up, so that the way from pixels and back never loses a unit of size.
UnitRect PIXELSTORCUNITS(const Object& window, const Rect& pixels);
UnitRect PIXELSTORCUNITS(const LetterSize& letter, const Rect& pixels);

}  // namespace tarn
