// SPDX-License-Identifier: Apache-2.0
//
// Helpers for dialogs and for finding the controls of a running program.
#pragma once

#include "kernel/windows/windowing.h"

#include <string>
#include <string_view>

namespace tarn {

// The number of a control of a dialog in a resource file; 0 if there is none or an argument is empty. Cost:
// reads the file.
int GETVISUALOBJECTINFO(const std::string& resourceFile, const std::string& dialog,
                        const std::string& control);

// The same of the dialog Main of a program, by the path of its executable.
int GETVISUALOBJECTINFO(const std::string& executable, const std::string& control);

struct OtherControl {
    int window = 0;   // the handle of the window with that caption; 0 if no other copy has one
    int control = 0;  // the control's number, 0 if it has none of that name
};
// The window of another running copy of the program `executable` by its caption, and a control of its dialog
// Main.
OtherControl FINDOTHERCONTROL(const std::string& executable, const std::string& caption,
                              const std::string& control);

// Enables or disables the controls of a dialog from `first` to `last` in the order of its control list: those that the
// user works with, not labels, groups and pictures. Does nothing unless `window` is a dialog and holds `first`.
void SETENABLEDRANGE(const Object& window, const Object& first, const Object& last, bool enabled);

// A text as the caption of a label: a single "&" there marks a mnemonic.
std::string PLAINCAPTION(std::string_view text);
// What is shown of a caption: "&" before a letter or a digit marks that and is not seen, "&&" is a "&", and any other "&"
// stands for itself.
std::string SHOWNCAPTION(std::string_view caption);
// The 1-based place of the first "&" that marks a mnemonic; 0 if there is none.
int FINDMNEMONIC(std::string_view caption);

// The lines as a message lists them: each behind a tab, and ended.
std::string INDENTLINES(const std::string& lines);

// ---- places of controls, in pixels of their window ----

// Where the control lies; each number that is below 0 keeps what it is.
void AUTOPOSITION(const Object& control, int x, int y, int w, int h);
int GETX(const Object& control);
int GETY(const Object& control);
int GETWIDTH(const Object& control);
int GETHEIGHT(const Object& control);

// ---- rows of list controls, in any case ----

// The first row behind `start` that begins with the text, then from the first row on; 0 if there is none.
int FINDSTRING(const Object& control, std::string_view text, int start);
int FINDSTRINGEXACT(const Object& control, std::string_view text, int start);  // the whole row

}  // namespace tarn
