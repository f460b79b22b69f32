// SPDX-License-Identifier: GPL-3.0-or-later
//
// Find in Files: every line that holds the text, in the files of the program's folder, the inherited folders or any other
// one. The lines come into the error window in the form of messages, "file(line): column: text", so that a double click
// goes to them; how many there are, and what was passed over, stands behind them. Files that are changed in the Code
// window are searched as they stand there.
#pragma once

#include "ide/search/filechoices.h"

#include <string>

namespace tarn {

inline const Object FindFilesDlg("FindFilesDlg");

bool FINDFILESDLG(const Object& window, int event, const Object& control, int parameter);
void FINDFILESDIALOG();

// The lines for the window. Cost: reads all files; events are handled meanwhile, and the user can stop it.
std::string FINDINFILES(const FileChoices& choices);

}  // namespace tarn
