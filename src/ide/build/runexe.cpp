// SPDX-License-Identifier: GPL-3.0-or-later
#include "ide/build/runexe.h"

#include "ide/build/output.h"
#include "ide/build/toolrun.h"
#include "ide/shell/idecore.h"
#include "kernel/debug/debugsettings.h"
#include "kernel/debug/runto.h"
#include "library/settings/profstr.h"
#include "library/system/system.h"

MODULE("runexe", tarn::TOOL_ONERROR)

namespace tarn {

void RUNEXEFILE(const std::string& title, const std::string& exe, int trace, bool singleStep,
                const std::string& runTo) {
    FRAME(RUNEXEFILE);
    const std::string ini = GETIDEINIFILE();
    STAMP();
    PROFILESTRPUT(ini, DebugSection, TraceProgramKey, STR(trace));
    PROFILESTRPUT(ini, DebugSection, SingleStepKey, singleStep ? "1" : "0");
    if (PROFILESTRGET(ini, DebugSection, RunToKey) != runTo)
        PROFILESTRPUT(ini, DebugSection, RunToKey, runTo);
    STAMP();
    // A program runs in its own folder, where the files lie that it names without one.
    RUNPROGRAM(title, exe, PROFILESTRGET(ini, "ArgumentsDlg", "Edit1"), FILEGETDIR(exe));
    STAMP();
}

}  // namespace tarn
