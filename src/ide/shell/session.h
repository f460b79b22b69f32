// SPDX-License-Identifier: GPL-3.0-or-later
//
// The session: what was open when the environment was left, so that the next start can open it again. It is kept in the
// section Session of the settings when the main window closes, if the start is to begin with it (rbStartup4 of the page
// General):
//
//     Program    the main file of the Program Window, with Top and Sub, the place of its selected row
//     File       that of the Code window, with Caret, the start and the length of the selection, and Folds, the lines
//                whose blocks are folded
//     Rcfile     that of the dialog editor, with Dialog, the name of the dialog
//     Errors     1: the error window, with the messages of the compiler
//     Browser    1: the class browser, where the symbols are those of the classes then
//     Active     the window that the user was in
//
// Places and sizes of the windows are their own settings. Cost: that of opening the files.
#pragma once

#include "ide/program/projlist.h"
#include "kernel/windows/windowing.h"

#include <string>

namespace tarn {

struct Session {
    std::string program, file, resourceFile, dialog, active;
    ProjectPlace row;
    Selection selection;
    std::string folds;
    bool errors = false, browser = false;
};
Session CURRENTSESSION();
void KEEPSESSION(const Session& session);  // nothing if no start wants it
// Opens what was kept. Files that are no longer there are told, and the others come all the same.
void RESTORESESSION();

}  // namespace tarn
