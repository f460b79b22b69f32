// SPDX-License-Identifier: GPL-3.0-or-later
//
// The browser: the symbols of all classes of the program, as the compiler left them beside the classes. A line leads to
// the declaration of its symbol.
//
// A line is tokens (STRTOKEN); which token is what is told by the browser's template, whose columns are parted by tabs.
//
// Cost: asks the make tool twice, and reads the symbol files of all classes.
#pragma once

#include "kernel/windows/windowing.h"

#include <string>

namespace tarn {

bool BROWSEINFODLG(const Object& window, int event, const Object& control, int parameter);
// Shows the symbols of the program anew. What stands in the way is told, and there is no browser then.
void BROWSEINFODIALOG();
// Whether it would come without a word: all symbols are there and as new as their classes.
bool BROWSEINFOISFRESH();

bool MOREINFODLG(const Object& window, int event, const Object& control, int parameter);
void MOREINFODIALOG(const std::string& line);  // what is known of the symbol of a line

// Opens the file at the declaration of the symbol that is selected in `list`, and puts `window` in front of it.
void VIEWCODE(const Object& window, const Object& list);

}  // namespace tarn
