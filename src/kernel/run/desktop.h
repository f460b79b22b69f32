// SPDX-License-Identifier: Apache-2.0
//
// What the run-time itself shows, as a seam: tests put functions of their own there. Modules need none of
// this.
#pragma once

#include <string>

namespace tarn {

// What the kernel itself needs of the desktop. By default the operations of the platform.
struct Desktop {
    void (*sound)();  // the beep
    // A box; gives the caption of the button pressed.
    std::string (*box)(const std::string& title, const std::string& text, const std::string& buttons);
    void (*setTrace)(int mode);  // is told of every change of the trace mode
    void (*close)();             // for the halt: stops sounds and destroys all windows
};
Desktop UseDesktop(const Desktop& desktop);  // returns the one before
const Desktop& TheDesktop();

}  // namespace tarn
