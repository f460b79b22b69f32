// SPDX-License-Identifier: GPL-3.0-or-later
#include "ide/build/runinfo.h"

#include "ide/build/compiler.h"
#include "ide/build/toolrun.h"
#include "ide/program/projedit.h"
#include "ide/shell/idecore.h"
#include "ide/shell/windows.h"
#include "ide/shell/windowtable.h"
#include "library/dialogs/dialogshape.h"
#include "library/dialogs/dlgutil.h"
#include "library/source/symbolfiles.h"
#include "library/source/symbols.h"
#include "library/system/system.h"
#include "os/text/ascii.h"

MODULE("runmenu", tarn::TOOL_ONERROR)

namespace tarn {
namespace {

constexpr const char* Title = "Run-Program Information";

constexpr DialogShape shape{.showHelp = SHOWWINDOWHELP};
const RegisteredWindow registered("RunInfoDlg", RUNINFODLG);

struct ProgramInfo {
    std::string file;
    bool hasResources = false;
    std::string classes, levels;  // one a line
    bool upToDate = false;
    std::string error;  // why the make tool cannot tell
};

bool holdsResourceFile(const std::string& files) {
    for (std::string_view rest = files; !rest.empty();)
        if (STREQUAL(FILEGETEXT(ascii::withoutLineEnd(ascii::takeLine(rest))), ResourceExtension))
            return true;
    return false;
}

ProgramInfo gather(const std::string& file) {
    ProgramInfo info;
    info.file = file;
    const DependencyList inputs = LOADDEPLIST(file, "/fs", true);
    STAMP();
    const DependencyList all = LOADDEPLIST(file, "/fa", true);
    STAMP();
    info.error = inputs.error.empty() ? all.error : inputs.error;
    if (!info.error.empty()) return info;
    const DependencyList changed = LOADDEPLIST(file, "/fq", true);
    STAMP();
    info.hasResources = holdsResourceFile(inputs.files);
    info.classes = all.files;
    info.levels = SYMGETDEBUGLEVELS(all.files);
    info.upToDate = changed.files.empty() && changed.error.empty();
    return info;
}

std::string details(const std::string& file, std::string_view verb) {
    const std::int64_t size = FileSize(file);
    if (size <= 0) return "(missing or empty)";
    return std::to_string(size) + " byte(s), " + std::string(verb) + " " + FILETIME(file);
}

std::string debugStatus(const ProgramInfo& info) {
    if (!info.upToDate) return "Not available, EXE file is not up to date";
    const DebugFlags flags = SYMGETDEBUGFLAGS(info.levels);
    if (flags.all2) return "All classes compiled with full debug info (-D2)";
    if (flags.all1) return "All classes compiled with diagnostic info (-D1)";
    if (flags.all0) return "All classes compiled without debug info";
    return "Classes compiled with mixed debug levels";
}

Object part(std::string_view name) {
    return FINDCONTROL(RunInfoDlg, name);
}

void showClasses(const ProgramInfo& info) {
    const Object list = part("lstinherit");
    for (int i = 1; i <= STRLINES(info.classes); ++i) {
        const std::string name = FILEBASENAME(STRLINE(info.classes, i));
        AddItem(list, name + (STRLINE(info.levels, i) == "2" ? " (+debug info)" : ""));
    }
    if (GetListCount(list) > 0) SetListIndex(list, 1);
}

void fill(const ProgramInfo& info) {
    const std::string exe = FILECHANGEEXT(info.file, ".exe"), rcx = FILECHANGEEXT(info.file, ".rcx");
    showClasses(info);
    SetCaption(part("lblclassfile"), PLAINCAPTION(info.file));
    SetCaption(part("lblclassdetails"), details(info.file, "saved"));
    SetCaption(part("lblexefile"), PLAINCAPTION(exe));
    SetCaption(part("lblexedetails"), details(exe, "built"));
    SetCaption(part("lblrcxfile"), info.hasResources ? PLAINCAPTION(rcx) : "(none required)");
    SetCaption(part("lblrcxdetails"), info.hasResources ? details(rcx, "built") : "");
    SetCaption(part("lbldebug"), debugStatus(info));
}

}  // namespace

bool RUNINFODLG(const Object& window, int event, const Object& control, int parameter) {
    FRAME(RUNINFODLG);
    STAMP();
    const bool result = DIALOGSHAPEEVENT(shape, window, event, control, parameter);
    STAMP();
    return result;
}

void RUNINFODIALOG() {
    FRAME(RUNINFODIALOG);
    STAMP();
    const std::string file = COMPILERGETMAINFILE();
    const ProgramInfo info = gather(file);
    STAMP();
    if (!info.error.empty())
        return MSGBOX(Title, "It is not possible to see the program information.\n" + info.error);
    if (!ISMAINCLASS(file))
        return MSGBOX(Title,
                      "File '" + file +
                          "' is not a main class.\nIt is only possible to see program information for a "
                          "main class.");
    STAMP();
    Load(RunInfoDlg);
    STAMP();
    fill(info);
    STAMP();
    Show(RunInfoDlg, true);
    STAMP();
}

}  // namespace tarn
