// SPDX-License-Identifier: Apache-2.0
//
// The box of last resort, as a seam: tests put a function of their own there. Modules need none of this.
#pragma once

namespace tarn {

// Shows the box of last resort and waits until it is closed. It runs after hardware faults too, so a function
// here must not allocate. By default the text goes to standard error and, where there is a screen, to the
// program tarnwick-fatal.
using FatalBox = void (*)(const char* title, const char* text);
FatalBox SetFatalBox(FatalBox box);  // returns the one before; null means the default
void ShowFatalBox(const char* title, const char* text);
// Finds out where tarnwick-fatal stands, while this can still be asked safely.
void LocateFatalProgram();

}  // namespace tarn
