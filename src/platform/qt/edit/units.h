// SPDX-License-Identifier: GPL-3.0-or-later
//
// Bytes as UTF-16 units, in the way in which the text control counts them: a byte that is not part of sound
// UTF-8 is one unit. Cost: linear; runs of ASCII go eight at a time.
#pragma once

#include <QString>

#include <string_view>

namespace tarn::platform::qt {

int unitsIn(std::string_view bytes);
// How many bytes the first `units` units take; the middle of a pair of surrogates counts as its start.
int bytesOfUnits(std::string_view bytes, int units);
QString unitsOf(std::string_view bytes);  // a lone byte as its Latin-1 character

}  // namespace tarn::platform::qt
