// SPDX-License-Identifier: GPL-3.0-or-later
//
// What the Code window shows around its text, as the settings have it (section EditorOptionsDlg), and the items of the
// View menu that switch it. A setting that is not there counts as it is shipped.
#pragma once

#include "kernel/windows/windowing.h"

#include <string>
#include <string_view>

namespace tarn {

// Brings the window, and the check marks of the menu, to what the settings say.
void EDITWNDAPPLYLOOKS(const Object& window);
// Switches a look by the name of its setting, such as "BlanksOn".
void SWITCHLOOK(const Object& window, std::string_view setting);
void CHOOSETABWIDTH(const Object& window, int columns);
// By so many points, 0: back to the size of the font.
void ZOOMBY(const Object& window, int points);
void KEEPZOOM(const Object& window);  // in the settings
// Beeps where the text has endless lines, which keep theirs.
void CHOOSELINEENDS(const Object& window, int ends);
// What can be folded in a file, for SetBlocks; empty for texts that are no classes.
std::string BLOCKRULES(std::string_view file);

}  // namespace tarn
