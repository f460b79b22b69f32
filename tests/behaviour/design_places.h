// SPDX-License-Identifier: GPL-3.0-or-later
//
// Where the objects of the open dialog are on the dialog editor's window, for the hands of each mode.
#pragma once

#include "platform/model/track.h"

#include <string>

namespace tarn {

// The middle of an object, or its right lower corner where it is resized. "-" is the dialog, "menu" its menu bar, "margin" what
// is neither. False if there is no such object.
bool designPoint(const std::string& name, bool corner, platform::Point& point);
// So many resource units, in pixels.
platform::Point designDistance(int x, int y);

}  // namespace tarn
