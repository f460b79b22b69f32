// SPDX-License-Identifier: GPL-3.0-or-later
//
// The program: without a display it says so and ends; else the environment runs in the frame that catches faults.
#include "ide/help/helpviewer.h"
#include "ide/shell/ide.h"
#include "kernel/run/runtime.h"
#include "os/process.h"

#include <cstdio>

namespace {

bool hasScreen() {
    for (const char* name : {"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM"}) {
        if (!tarn::os::environment(name).empty()) return true;
    }
    return false;
}

}  // namespace

int main(int argc, char** argv) {
    tarn::os::setCommandLine(argc, argv);
    if (!hasScreen()) {
        std::fputs("ide: there is no display. Start it in a desktop session, or set DISPLAY.\n", stderr);
        return 1;
    }
    tarn::USEHELPWINDOW();
    tarn::USEBOXHELP();
    tarn::RunProtected(tarn::RUNIDE);
    return 0;
}
