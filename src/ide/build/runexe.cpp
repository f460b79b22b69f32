// SPDX-License-Identifier: GPL-3.0-or-later
#include "ide/build/runexe.h"

#include "ide/build/output.h"
#include "ide/build/toolrun.h"
#include "ide/shell/idecore.h"
#include "ide/shell/windows.h"
#include "kernel/debug/debugsettings.h"
#include "kernel/debug/runto.h"
#include "library/settings/profstr.h"
#include "library/system/system.h"

MODULE("runexe", tarn::TOOL_ONERROR)

namespace tarn {

namespace {

// Where the Code window stands, for a debugger's window that has no place of its own yet.
std::string codeWindowPlace() {
    if (!ISSHOWN(SDIEdit)) return {};
    const Rect frame = GetPosition(SDIEdit, WINDOW_UNIT);
    return STR(frame.x) + " " + STR(frame.y) + " " + STR(frame.w) + " " + STR(frame.h);
}

void put(std::string_view key, const std::string& value) {
    const std::string ini = GETIDEINIFILE();
    if (PROFILESTRGET(ini, DebugSection, key) != value) PROFILESTRPUT(ini, DebugSection, key, value);
}

}  // namespace

void RUNEXEFILE(const std::string& title, const std::string& exe, int trace, bool singleStep,
                const std::string& runTo) {
    FRAME(RUNEXEFILE);
    const std::string ini = GETIDEINIFILE();
    STAMP();
    PROFILESTRPUT(ini, DebugSection, TraceProgramKey, STR(trace));
    PROFILESTRPUT(ini, DebugSection, SingleStepKey, singleStep ? "1" : "0");
    put(RunToKey, runTo);
    if (PROFILESTRGET(ini, DebugSection, DebugPositionKey).empty()) put(DebugBesideKey, codeWindowPlace());
    STAMP();
    // A program runs in its own folder, where the files lie that it names without one.
    RUNPROGRAM(title, exe, PROFILESTRGET(ini, "ArgumentsDlg", "Edit1"), FILEGETDIR(exe));
    STAMP();
}

}  // namespace tarn
