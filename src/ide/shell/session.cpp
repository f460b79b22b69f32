// SPDX-License-Identifier: GPL-3.0-or-later
#include "ide/shell/session.h"

#include "ide/build/textview.h"
#include "ide/designer/dlgedit.h"
#include "ide/designer/files/dlgtest.h"
#include "ide/editor/textedit.h"
#include "ide/menus/viewmenu.h"
#include "ide/program/browseinfo.h"
#include "ide/program/projwindow.h"
#include "ide/shell/ide.h"
#include "ide/shell/idecore.h"
#include "ide/shell/windows.h"
#include "kernel/windows/textedits.h"
#include "library/settings/profstr.h"
#include "library/source/symbols.h"
#include "library/system/system.h"

#include <algorithm>

MODULE("ide", tarn::IDE_ONERROR)

namespace tarn {
namespace {

constexpr std::string_view Section = "Session";

void put(std::string_view key, const std::string& value) {
    PROFILESTRPUT(GETIDEINIFILE(), Section, key, value);
}

// Between double quotes blanks at the ends are kept.
void putPath(std::string_view key, const std::string& path) {
    put(key, path.empty() ? "" : "\"" + path + "\"");
}

std::string get(std::string_view key) {
    return PROFILESTRGET(GETIDEINIFILE(), Section, key);
}

int number(const std::string& text) {
    bool ok = false;
    const int value = CVTI(text, ok);
    return ok ? value : 0;
}

Session keptSession() {
    Session session{
        get("Program"), get("File"),          get("Rcfile"),        get("Dialog"), get("Active"), {}, {},
        get("Folds"),   get("Errors") == "1", get("Browser") == "1"};
    session.row = {number(get("Top")), number(get("Sub"))};
    const StringPair caret = STRSPLIT(get("Caret"));
    session.selection = {number(caret.left), number(caret.right)};
    return session;
}

std::string textOf(const std::vector<int>& numbers) {
    std::string text;
    for (const int each : numbers) text += " " + STR(each);
    return STRLTRIM(text);
}

std::vector<int> numbersOf(const std::string& text) {
    std::vector<int> numbers;
    for (StringPair parts = STRSPLIT(text); !parts.left.empty(); parts = STRSPLIT(parts.right))
        numbers.push_back(number(parts.left));
    return numbers;
}

// ---- opening ----

bool isThere(const std::string& file) {
    return !file.empty() && FileSize(file) >= 0;
}

void tellMissing(const Session& session) {
    std::string missing;
    for (const std::string& file : {session.program, session.file, session.resourceFile}) {
        const std::string line = "\t'" + file + "'\n";
        if (!file.empty() && !isThere(file) && missing.find(line) == std::string::npos) missing += line;
    }
    if (!missing.empty())
        MSGBOX("Last Session", "These files of the last session were not found:\n\n" + STRRTRIMCRLF(missing));
}

void openProgram(const Session& session) {
    if (!ISMAINCLASS(session.program)) return;
    PROJECTOPEN(ProjectEditorDlg, "Program Window", session.program, MAINCONTROL("programlabel"));
    STAMP();
    // The children of a top item are rows only while one of them is selected.
    if (IsLoaded(ProjectEditorDlg) && session.row.top > 0)
        static_cast<void>(PROJECTRELOAD(ProjectEditorDlg, session.row));
}

// The text may have become shorter since.
void openCode(const Session& session) {
    if (!isThere(session.file)) return;
    EDITWNDOPEN(SDIEdit, session.file, false, 0);
    STAMP();
    if (EDITWNDGETFILENAME(SDIEdit) != session.file) return;
    SetFolds(SDIEdit, numbersOf(session.folds));
    const int length = GetTextLength(SDIEdit);
    const int start = std::clamp(session.selection.start, 1, length + 1);
    SetSelection(SDIEdit, start, std::clamp(session.selection.length, 0, length + 1 - start));
}

void openDialog(const Session& session) {
    if (isThere(session.resourceFile) && ISINRESOURCEFILE(session.resourceFile, "DIALOG", session.dialog))
        OPENDIALOG(session.resourceFile, session.dialog);
}

void openErrors(const Session& session) {
    if (session.errors) DO_ERRORS();
}

// Nothing is asked at a start.
void openBrowser(const Session& session) {
    if (session.browser && BROWSEINFOISFRESH()) BROWSEINFODIALOG();
}

// The one that the user was in comes last: a window manager gives the focus to windows in the order in which they come.
struct Part {
    const Object& window;
    void (*open)(const Session& session);
};
const Part parts[] = {{ProjectEditorDlg, openProgram},
                      {SDIEdit, openCode},
                      {DialogDlg, openDialog},
                      {ViewDlg, openErrors},
                      {BrowseInfoDlg, openBrowser}};

}  // namespace

Session CURRENTSESSION() {
    FRAME(CURRENTSESSION);
    STAMP();
    Session session;
    session.program = PROJECTGETMAINFILE();
    session.row = PROJECTITEMGETPOS(ProjectEditorDlg, PROJECTITEMINFO(ProjectEditorDlg).row);
    STAMP();
    const std::string file = EDITWNDGETFILENAME(SDIEdit);
    if (FILECHK(file) && GetVisible(SDIEdit)) {
        session.file = file;
        session.selection = GetSelection(SDIEdit);
        session.folds = textOf(GetFolds(SDIEdit));
    }
    STAMP();
    session.resourceFile = DIALOGGETFILENAME();
    session.dialog = DIALOGGETDLGNAME();
    session.errors = ISSHOWN(ViewDlg) && GetCaption(ViewDlg) == ErrorsTitle;
    session.browser = ISSHOWN(BrowseInfoDlg);
    STAMP();
    session.active = GetCaption(MAINCONTROL("lbllastactive"));
    return session;
}

void KEEPSESSION(const Session& session) {
    FRAME(KEEPSESSION);
    STAMP();
    if (PROFILESTRGET(GETIDEINIFILE(), "GenOptionsDlg", "rbStartup4") != "1") return;
    STAMP();
    putPath("Program", session.program);
    put("Top", STR(session.row.top));
    put("Sub", STR(session.row.sub));
    putPath("File", session.file);
    put("Caret", STR(session.selection.start) + " " + STR(session.selection.length));
    put("Folds", session.folds);
    putPath("Rcfile", session.resourceFile);
    put("Dialog", session.dialog);
    put("Errors", session.errors ? "1" : "0");
    put("Browser", session.browser ? "1" : "0");
    put("Active", session.active);
    STAMP();
}

void RESTORESESSION() {
    FRAME(RESTORESESSION);
    STAMP();
    const Session session = keptSession();
    for (const bool last : {false, true}) {
        for (const Part& part : parts) {
            STAMP();
            if (STREQUAL(session.active, part.window.window()) == last) part.open(session);
        }
    }
    STAMP();
    tellMissing(session);
    STAMP();
    const Object active = FindWindow(session.active);
    if (ISSDIWINDOW(active)) Show(active, false);
    STAMP();
}

}  // namespace tarn
