// SPDX-License-Identifier: Apache-2.0
//
// The colours in which controls and pictures are drawn now: the desktop's, and while a drawing in other colours is made,
// those (operations/drawscale.h). What is on the screen keeps the desktop's.
#pragma once

#include "platform/operations/drawscale.h"

#include <QPalette>

namespace tarn::platform::qt {

bool isDark(const QPalette& palette);  // its letters are lighter than their ground

// Of a desktop that is light or dark; its own where it is so itself.
QPalette paletteOf(DrawColours colours);
QPalette paletteInForce();

// Has these colours in force for a scope.
class PaletteScope {
public:
    explicit PaletteScope(DrawColours colours);
    ~PaletteScope();
    PaletteScope(const PaletteScope&) = delete;
    PaletteScope& operator=(const PaletteScope&) = delete;

private:
    DrawColours before_;
};

}  // namespace tarn::platform::qt
