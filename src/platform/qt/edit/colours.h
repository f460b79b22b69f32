// SPDX-License-Identifier: GPL-3.0-or-later
//
// Colours that stay readable: a colour chosen for white paper keeps its hue on a dark background and changes
// its lightness until the contrast suffices.
#pragma once

#include <QColor>

namespace tarn::platform::qt {

double contrast(const QColor& a, const QColor& b);  // 1 to 21, of relative luminances
QColor readable(const QColor& colour, const QColor& background);
QColor mixed(const QColor& a, const QColor& b, double share);  // `share` of b

}  // namespace tarn::platform::qt
