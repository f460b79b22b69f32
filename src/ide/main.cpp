// SPDX-License-Identifier: GPL-3.0-or-later
#include "ide/ide.h"
#include "kernel/runtime.h"
#include "os/process.h"

int main(int argc, char** argv) {
    tarn::os::setCommandLine(argc, argv);
    tarn::RunProtected(tarn::RUNIDE);
    return 0;
}
