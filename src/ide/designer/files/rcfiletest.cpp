// SPDX-License-Identifier: GPL-3.0-or-later
#include "ide/designer/files/rcfiletest.h"

#include "ide/designer/files/dlgtest.h"
#include "ide/designer/files/scratch.h"
#include "ide/shell/idecore.h"
#include "ide/shell/windows.h"
#include "ide/shell/windowtable.h"
#include "kernel/windows/manyfiles.h"
#include "library/dialogs/dialogshape.h"
#include "library/system/system.h"

MODULE("toolmenu")

namespace tarn {
namespace {

const RegisteredWindow registered("RcFileTestDlg", RCFILETESTDLG);

constexpr std::string_view Untested = "rcuntested", Passed = "rcpassed", Failed = "rcfailed";
constexpr std::string_view Suffix = " window(s)>";

Object part(const Object& window, std::string_view name) {
    return FINDCONTROL(window, name);
}
void setStatus(const Object& window, const std::string& text) {
    SetText(part(window, "lblstatus"), text);
}

// A row without the result that a test has put behind it. A "<" in a path is none.
std::string fileOf(const std::string& row) {
    const std::size_t mark = row.rfind('<');
    return STRTRIM(row.ends_with(Suffix) && mark != std::string::npos ? row.substr(0, mark) : row);
}

void CHOOSEFILES(const Object& window) {
    FRAME(CHOOSEFILES);
    STAMP();
    const std::vector<std::string> files =
        OpenFilesDialog(GetCaption(window), "", "Resource files (*.rc)|*.rc|");
    if (files.empty()) return;
    const Object list = part(window, "iconlist1");
    STAMP();
    Clear(list);
    for (const std::string& file : files) AddItem(list, file, Untested);
    setStatus(window, "");
    STAMP();
}

void RESETROWS(const Object& list) {
    FRAME(RESETROWS);
    for (int row = 1; row <= GetListCount(list); ++row) {
        STAMP();
        SetList(list, row, fileOf(GetList(list, row)), Untested);
    }
}

struct FileTest {
    int windows = 0;
    std::string last, error;  // the window that was tested last, and what was wrong with it
};
FileTest TESTFILE(const std::string& file) {
    FRAME(TESTFILE);
    STAMP();
    FileTest test;
    const ResourceText names = RESOURCENAMES(file, "DIALOG");
    test.error = FileSize(file) < 0 ? "The file does not exist." : names.error;
    test.windows = STRLINES(names.text);
    for (int n = 1; n <= test.windows && test.error.empty(); ++n) {
        STAMP();
        test.last = STRLINE(names.text, n);
        test.error = TESTPROPERTIES(file, test.last).error;
    }
    return test;
}

std::string statusOf(const std::string& file, const FileTest& test) {
    const bool none = test.error.empty() && test.windows == 0;
    return "File: " + file + "\n" + (none ? "No Windows" : "Window: " + test.last) +
           "\nResult: " + (test.error.empty() ? "OK" : test.error) + "\n";
}

// False if the file has failed.
bool TESTROW(const Object& window, const Object& list, int row) {
    FRAME(TESTROW);
    STAMP();
    SetListIndex(list, row);
    const std::string file = GetList(list, row);
    const FileTest test = TESTFILE(file);
    STAMP();
    setStatus(window, statusOf(file, test));
    SetList(list, row, file + " <" + STR(test.windows) + std::string(Suffix),
            test.error.empty() ? Passed : Failed);
    if (!test.error.empty()) Sound();
    STAMP();
    return test.error.empty();
}

void RUNTESTS(const Object& window) {
    FRAME(RUNTESTS);
    STAMP();
    const Object list = part(window, "iconlist1");
    setStatus(window, "");
    RESETROWS(list);
    for (int row = 1; row <= GetListCount(list); ++row) {
        STAMP();
        if (!TESTROW(window, list, row)) break;
    }
}

constexpr DialogButton buttons[] = {{"pushbutton1", CHOOSEFILES}, {"pushbutton2", RUNTESTS}};
constexpr DialogShape shape{
    .ok = "", .cancel = "pushbutton3", .help = "pushbutton4", .showHelp = SHOWWINDOWHELP, .buttons = buttons};

}  // namespace

bool RCFILETESTDLG(const Object& window, int event, const Object& control, int parameter) {
    FRAME(RCFILETESTDLG);
    STAMP();
    const bool handled = DIALOGSHAPEEVENT(shape, window, event, control, parameter);
    STAMP();
    return handled;
}

}  // namespace tarn
