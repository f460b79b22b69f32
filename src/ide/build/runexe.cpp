// SPDX-License-Identifier: GPL-3.0-or-later
#include "ide/build/runexe.h"

#include "ide/build/output.h"
#include "ide/build/toolrun.h"
#include "ide/shell/idecore.h"
#include "library/settings/profstr.h"
#include "library/system/system.h"

MODULE("runexe", tarn::TOOL_ONERROR)

namespace tarn {

void RUNEXEFILE(const std::string& exe, int trace, bool singleStep) {
    FRAME(RUNEXEFILE);
    const std::string ini = GETIDEINIFILE();
    STAMP();
    PROFILESTRPUT(ini, "debug", "TraceProgram", STR(trace));
    PROFILESTRPUT(ini, "debug", "SingleStep", singleStep ? "1" : "0");
    STAMP();
    // A program runs in its own folder, where the files lie that it names without one.
    RUNPROGRAM("Run-Start", exe, PROFILESTRGET(ini, "ArgumentsDlg", "Edit1"), FILEGETDIR(exe));
    STAMP();
}

}  // namespace tarn
