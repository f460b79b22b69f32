// SPDX-License-Identifier: GPL-3.0-or-later
//
// Commands that write a file which may stand in the Code window. Before they read it, the window and the disk have to
// agree, else what the user has typed and what the command writes would part ways; behind the write the window shows what
// stands on the disk then, so that the write is not taken for one of another program:
//
//     if (!ASKCODEWINDOW(file)) return;
//     ... write the file ...
//     SHOWOWNWRITE(file);
//
// Nothing happens where the file does not stand in the Code window.
#pragma once

#include <string>

namespace tarn {

// Brings the disk and the Code window together where that shows the file: saves as File-Save does. False if they still
// differ, because the user has cancelled or it failed: then a command that writes the file must end.
[[nodiscard]] bool SETTLECODEWINDOW(const std::string& file);
// The same, but a text that is not saved is asked about first.
[[nodiscard]] bool ASKCODEWINDOW(const std::string& file);
// The Code window gets the text that the file has now, by an edit that Undo takes back.
void SHOWOWNWRITE(const std::string& file);

}  // namespace tarn
