// SPDX-License-Identifier: GPL-3.0-or-later
#include "ide/menus/runmenu.h"

#include "ide/build/build.h"
#include "ide/build/runinfo.h"
#include "ide/build/start.h"
#include "ide/build/toolrun.h"
#include "ide/debug/codemarks.h"
#include "ide/debug/debugwatch.h"
#include "ide/program/projedit.h"
#include "ide/shell/windows.h"

MODULE("runmenu", tarn::TOOL_ONERROR)

namespace tarn {
// ---- build ----

namespace {

void build(const std::string& title, const std::string& options, bool showMessage, bool& ok) {
    std::string file = COMPILERGETMAINFILE();
    RUN_BUILD(title, options, file, ok);
    if (ok && showMessage)
        MsgBox(title, "Finished rebuilding '" + file + "'\nThe class was rebuilt with no errors.", "OK",
               BoxIcon::Information);
}

}  // namespace

void DO_QUICKBUILD(bool showMessage, bool& ok) {
    FRAME(DO_QUICKBUILD);
    STAMP();
    build("Run-Quickbuild", "-fm", showMessage, ok);
}

void DO_REBUILD() {
    FRAME(DO_REBUILD);
    bool ok = false;
    STAMP();
    build("Run-Full Rebuild", "-fa", true, ok);
}

void DO_COMPILE() {
    FRAME(DO_COMPILE);
    STAMP();
    RUN_COMPILE(SDIEdit);
}

void DO_START() {
    FRAME(DO_START);
    STAMP();
    RUN_START("Run-Start", false, COMPILERGETMAINFILE());
}

void DO_START_EXAMPLE(const std::string& file) {
    FRAME(DO_START_EXAMPLE);
    STAMP();
    RUN_START("Run-Example program", false, file);
}

void DO_DEBUG() {
    FRAME(DO_DEBUG);
    STAMP();
    RUN_START("Run-Start in Debugger", true, COMPILERGETMAINFILE());
}

// ---- debugging ----

void DO_TOGGLE_BREAKPOINT() {
    FRAME(DO_TOGGLE_BREAKPOINT);
    STAMP();
    TOGGLEBREAKPOINT(SDIEdit, CARETLINE(SDIEdit));
}

void DO_BREAKPOINT_RULE() {
    FRAME(DO_BREAKPOINT_RULE);
    STAMP();
    ASKBREAKPOINTRULE(SDIEdit, CARETLINE(SDIEdit));
}

void DO_RUN_TO_CURSOR() {
    FRAME(DO_RUN_TO_CURSOR);
    STAMP();
    const std::string className = CLASSINWINDOW(SDIEdit);
    if (className.empty()) return Sound();
    STAMP();
    RUN_TO_LINE("Run-Run to Cursor", COMPILERGETMAINFILE(), className, CARETLINE(SDIEdit));
    STAMP();
}

void DO_BREAK() {
    FRAME(DO_BREAK);
    STAMP();
    BREAKDEBUGGED();
}

// ---- arguments ----

void DO_ARGUMENTS() {
    FRAME(DO_ARGUMENTS);
    STAMP();
    Load(ArgumentsDlg);
    STAMP();
    Show(ArgumentsDlg, true);
}

// ---- information ----

void DO_INFO() {
    FRAME(DO_INFO);
    STAMP();
    RUNINFODIALOG();
    STAMP();
}

}  // namespace tarn
