// SPDX-License-Identifier: GPL-3.0-or-later
//
// What a save of the open dialog changes in its resource file: the file's text as it is, and as the save would leave it.
// The second is made in a scratch file among the settings, so that nothing beside the user's files is touched, and a folder
// that cannot be written may be asked about too.
//
// Errors: those of a save, as texts. Cost: that of a save.
#pragma once

#include <string>

namespace tarn {

struct SaveTexts {
    std::string before, after;
    std::string error;  // why a save could not write; `after` is no answer then
};
SaveTexts SAVETEXTS();  // empty without a dialog

// The lines in the window of differences, or in a box that there are none.
void SHOWSAVECHANGES();

std::string FILETEXT(const std::string& file);  // empty where it cannot be read
// Tells in the status line how many lines a save has changed in the file that had that text.
void TELLSAVED(const std::string& before, const std::string& file);

}  // namespace tarn
