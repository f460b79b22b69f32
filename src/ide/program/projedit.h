// SPDX-License-Identifier: GPL-3.0-or-later
//
// The open program: which file is compiled, which window a Save means, on which resource a command acts, and the
// commands that create things.
//
// The window itself is projeditor.h, its rows projwindow.h. A save that fails tells it. Cost: a
// look at windows and rows.
#pragma once

#include "ide/program/projwindow.h"

#include <string>

namespace tarn {

std::string COMPILERGETMAINFILE();  // the main file of the Program Window, or the file in the Code window
std::string GETSAVEWINDOW();        // lower-case name of the window that a Save means; may be empty
void SAVEALL();                     // the Code window and the dialog editor, each if it is changed

struct CurrentResource {
    std::string file, dialog;
};
// What commands on resources mean: the dialog that is open, else what the selected row of the Program Window stands for,
// else the resource file beside a class. Both may be empty.
CurrentResource GETCURRENTRESOURCE();

void PROJECTNEWTEXTFILE();

}  // namespace tarn
