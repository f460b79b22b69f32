// SPDX-License-Identifier: GPL-3.0-or-later
#include "ide/options/pathsoptions.h"

#include "ide/build/compiler.h"
#include "ide/shell/idecore.h"
#include "ide/shell/windows.h"
#include "ide/shell/windowtable.h"
#include "library/dialogs/dialogshape.h"
#include "library/dialogs/dlgutil.h"
#include "library/settings/profstr.h"
#include "library/system/system.h"
#include "os/process.h"

#include <algorithm>

MODULE("toolmenu")

namespace tarn {
namespace {

constexpr int Boxes = 5;
constexpr std::size_t LongPath = 255;  // with its separator, a path may not have as many bytes
constexpr int MostShown = 20;          // lines of paths in the question

Object boxOf(const Object& window, int number) {
    return FINDCONTROL(window, "edit" + STR(number));
}

bool isList(int box) {
    return box == 1 || box == 5;
}

// Calls `each` with every path of a list, as it stands.
template <class Each>
void eachPath(std::string_view paths, Each each) {
    while (!paths.empty()) {
        const std::size_t end = std::min(paths.find(';'), paths.size());
        each(paths.substr(0, end));
        paths.remove_prefix(std::min(end + 1, paths.size()));
    }
}

std::string pathLines(const Object& window) {
    std::string lines;
    const auto add = [&](std::string_view path) { lines += std::string(path) + "\n"; };
    for (int box = 1; box <= Boxes; box++) {
        const std::string text = GetText(boxOf(window, box));
        if (isList(box))
            eachPath(text, add);
        else
            add(text);
    }
    return lines;
}

bool isBad(const std::string& path) {
    const std::string folder = FILEADDSEPARATOR(path);
    return folder.size() >= LongPath || DiskSpace(folder) == -1;
}

void addDrives(const Object& window) {
    const std::string drive = FILEGETDRIVE(os::executablePath());
    for (int box = 1; box <= Boxes; box++) {
        const std::string before = GetText(boxOf(window, box));
        const std::string paths = ADDDRIVELETTERS(drive, before);
        if (paths != before) SetText(boxOf(window, box), paths);
    }
}

void acceptPaths(const Object& window) {
    addDrives(window);
    if (!CHECKPATHS(GetCaption(window), pathLines(window))) return;
    SAVEINIFILE(GETIDEINIFILE(), window);
    REFRESHCOMMANDLINE();
    Unload(window);
}

std::string lastOf(const std::string& paths) {
    std::string last;
    eachPath(paths, [&](std::string_view path) { last = STRTRIM(path); });
    return last;
}

// A folder that is chosen goes behind those of a list, and otherwise takes the place of the one that is there.
void browse(const Object& window, int box) {
    const std::string paths = GetText(boxOf(window, box));
    const std::string folder =
        OpenFolderDialog(GetCaption(window), isList(box) ? lastOf(paths) : STRTRIM(paths));
    if (folder.empty()) return;
    bool known = false;
    eachPath(paths, [&](std::string_view path) {
        known = known || FILEADDSEPARATOR(STRTRIM(path)) == FILEADDSEPARATOR(folder);
    });
    if (!isList(box) || STRTRIM(paths).empty())
        SetText(boxOf(window, box), folder);
    else if (!known)
        SetText(boxOf(window, box), paths + (paths.ends_with(';') ? "" : ";") + folder);
}

// OK has a check of its own, which is a question.
constexpr DialogShape shape{.ok = "", .settings = GETIDEINIFILE, .showHelp = SHOWWINDOWHELP};
const RegisteredWindow registered("PathsOptionsDlg", PATHSOPTIONSDLG);

bool handle(const Object& window, int event, const Object& control, int parameter) {
    if (event != COMMAND_EVENT) return DIALOGSHAPEEVENT(shape, window, event, control, parameter);
    const std::string name = GetName(control);
    for (int box = 1; box <= Boxes; box++)
        if (name == "btnbrowse" + STR(box)) return browse(window, box), true;
    if (name == "pushbutton1") return acceptPaths(window), true;
    return DIALOGSHAPEEVENT(shape, window, event, control, parameter);
}

}  // namespace

bool PATHSOPTIONSDLG(const Object& window, int event, const Object& control, int parameter) {
    FRAME(PATHSOPTIONSDLG);
    STAMP();
    const bool result = handle(window, event, control, parameter);
    STAMP();
    return result;
}

void PATHSOPTIONSDIALOG() {
    FRAME(PATHSOPTIONSDIALOG);
    STAMP();
    Load(PathsOptionsDlg);
    STAMP();
    Show(PathsOptionsDlg, true);
    STAMP();
}

bool CHECKPATHS(const std::string& title, const std::string& paths) {
    FRAME(CHECKPATHS);
    std::string bad;
    const std::string lines = paths + "\n";
    for (int i = 1; i <= STRLINES(lines); i++) {
        STAMP();
        const std::string path = STRTRIM(STRLINE(lines, i));
        if (!path.empty() && isBad(path)) bad += path + "\n";
    }
    if (bad.empty()) return true;
    Sound();
    return MsgBox(title,
                  "The following path(s) are too long or do not exist:\n" +
                      INDENTLINES(LIMITLINES(bad, MostShown)) +
                      "Do you want to save them anyway (OK), or go back and fix them (Cancel)?",
                  "OK\nCancel", BoxIcon::Warning) == "OK";
}

std::string ADDDRIVELETTERS(std::string_view drive, std::string_view paths) {
    FRAME(ADDDRIVELETTERS);
    if (drive.empty()) return std::string(paths);
    std::string result;
    eachPath(paths, [&](std::string_view path) {
        const std::string bare = STRTRIM(path);
        const bool needsNone = bare.empty() || bare[0] == '/' || !FILEGETDRIVE(bare).empty();
        result += (needsNone ? std::string(path) : std::string(drive) + bare) + ";";
    });
    if (!paths.ends_with(';') && !result.empty()) result.pop_back();
    return result;
}

namespace {

bool mayAdd(const std::string& title, const std::string& folder) {
    return MsgBox(title,
                  "'" + folder +
                      "' should be added to the inherited class path.\nDo you want to add it now?\n"
                      "If not, you should add it later using the Tools-Options-Paths command.",
                  "Yes\nNo", BoxIcon::Question) == "Yes";
}

}  // namespace

void UPDATEINHERITPATHS(const std::string& title, const std::string& file, bool ask) {
    FRAME(UPDATEINHERITPATHS);
    const std::string folder = FILEGETDIR(file);
    STAMP();
    if (folder.empty() || !ISCLASSFILE(file)) return;
    if (("\n" + GETINHERITEDPATHSML()).find("\n" + folder + "\n") != std::string::npos) return;
    STAMP();
    if (ask && !mayAdd(title, folder)) return;
    STAMP();
    const std::string paths = GETINHERITEDPATHS();
    // The first folder of the list is the library's: where there is none it stays so.
    PROFILESTRPUT(GETIDEINIFILE(), "PathsOptionsDlg", "Edit1",
                  paths + (paths.ends_with(';') ? "" : ";") + folder);
    STAMP();
    REFRESHCOMMANDLINE();
    STAMP();
}

}  // namespace tarn
