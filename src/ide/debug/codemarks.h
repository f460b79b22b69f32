// SPDX-License-Identifier: GPL-3.0-or-later
//
// The breakpoints of the class in the Code window, as marks in its margin, and the line where its program stands. The
// settings have the lines of the class as it was saved last; while the text is edited the marks move with it, and each save
// brings the settings after them. What was deleted with its line is gone then.
//
// Only classes have the margin. Cost: the settings file; SHOWBREAKPOINTS also looks for the name of the class in the text.
#pragma once

#include "kernel/windows/windowing.h"

#include <string>

namespace tarn {

// The window has another file, or the settings have changed: marks what stands there.
void SHOWBREAKPOINTS(const Object& window);
// The text was saved: what has moved with it goes to the settings, rules too.
void KEEPBREAKPOINTS(const Object& window);
// Sets or removes one. Where the compiler has told that a line has no code, the next that has some is taken, and the
// status line says so; without one it beeps, as it does for what is no class, or where there is no room.
void TOGGLEBREAKPOINT(const Object& window, int line);
// Asks for the rule of the breakpoint at the line, and sets one there if there is none.
void ASKBREAKPOINTRULE(const Object& window, int line);

// The program stands there; 0: nowhere in this text.
void MARKCURRENTLINE(const Object& window, int line);

// The class in the window; empty if it shows no class.
std::string CLASSINWINDOW(const Object& window);
int CARETLINE(const Object& window);

}  // namespace tarn
