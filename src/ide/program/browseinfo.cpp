// SPDX-License-Identifier: GPL-3.0-or-later
#include "ide/program/browseinfo.h"

#include "ide/build/compiler.h"
#include "ide/build/toolrun.h"
#include "ide/editor/textedit.h"
#include "ide/program/projedit.h"
#include "ide/shell/idecore.h"
#include "ide/shell/windowplace.h"
#include "ide/shell/windows.h"
#include "ide/shell/windowtable.h"
#include "library/dialogs/dialogshape.h"
#include "library/dialogs/dlgutil.h"
#include "library/settings/profstr.h"
#include "library/source/symbolfiles.h"
#include "library/system/system.h"

#include <algorithm>

MODULE("viewmenu", tarn::TOOL_ONERROR)

namespace tarn {

// ---- lines ----

namespace {

const std::string BrowserTemplate = "$NAME$\t$SORT$\t$CLASSNAME$\t$FILENAME$\t$DECLINE$\t$TYPENAME$";
constexpr std::string_view Headings = "Name\tSort\tClass\tFilename\tLine\tType";

int tokenNumber(std::string_view placeholder) {
    const int count = STRTOKENCOUNT(BrowserTemplate);
    for (int n = 1; n <= count; ++n)
        if (STRTOKEN(BrowserTemplate, n) == placeholder) return n;
    return 0;
}

// What stands in a line where the template has the placeholder.
std::string valueOf(const std::string& line, std::string_view placeholder) {
    return STRTOKEN(line, tokenNumber(placeholder));
}

std::string fileOf(const std::string& line) {
    return STRREMOVEQUOTES(valueOf(line, "$FILENAME$"));
}

// Stands for a class of which there are no symbols: as many tokens as the line of a symbol has, so that it leads to the
// class.
std::string lineWithoutSymbols(const std::string& classFile) {
    const std::string name = FILEBASENAME(classFile);
    return "* " + name + "\t\t" + name + "\t" + STRADDQUOTES(classFile) + "\t1\t";
}

std::string selectedLine(const Object& list) {
    const int row = GetListIndex(list);
    return row == 0 ? std::string() : GetList(list, row);
}

}  // namespace

void VIEWCODE(const Object& window, const Object& list) {
    FRAME(VIEWCODE);
    STAMP();
    const std::string line = selectedLine(list);
    if (line.empty()) return Sound();
    bool ok = false;
    const int place = CVTI(valueOf(line, "$DECLINE$"), ok);
    STAMP();
    EDITWNDOPEN(SDIEdit, fileOf(line), true, ok ? place : 0);
    STAMP();
    Show(window, false);
    SetCaption(MAINCONTROL("CodeLabel"), EDITWNDGETFILENAME(SDIEdit));
}

// ---- more information ----

namespace {

constexpr DialogShape moreShape{.cancel = "", .showHelp = SHOWWINDOWHELP};
const RegisteredWindow registeredMore("MoreInfoDlg", MOREINFODLG);

}  // namespace

bool MOREINFODLG(const Object& window, int event, const Object& control, int parameter) {
    FRAME(MOREINFODLG);
    STAMP();
    const bool result = DIALOGSHAPEEVENT(moreShape, window, event, control, parameter);
    STAMP();
    return result;
}

void MOREINFODIALOG(const std::string& line) {
    FRAME(MOREINFODIALOG);
    STAMP();
    if (line.empty()) return Sound();
    Load(MoreInfoDlg);
    STAMP();
    const std::string file = fileOf(line);
    const std::int64_t size = FileSize(file);
    const std::pair<std::string_view, std::string> values[] = {
        {"label2", valueOf(line, "$NAME$")},
        {"label4", valueOf(line, "$SORT$")},
        {"label6", valueOf(line, "$DECLINE$")},
        {"label8", file},
        {"label10", valueOf(line, "$CLASSNAME$")},
        {"label12", size < 0 ? "(missing)" : std::to_string(size) + " Byte(s)"},
        {"label14", FILETIME(file)},
    };
    for (const auto& [label, value] : values)
        SetCaption(FINDCONTROL(MoreInfoDlg, label), PLAINCAPTION(value));
    STAMP();
    Show(MoreInfoDlg, true);
    STAMP();
}

// ---- the classes ----

namespace {

std::string REMOVECLASS(const std::string& files, std::string_view name) {
    std::string left;
    for (int n = 1; n <= STRLINES(files); ++n) {
        const std::string file = STRLINE(files, n);
        if (!STREQUAL(FILEBASENAME(file), name)) left += file + "\n";
    }
    return left;
}

constexpr std::string_view LibraryClass = "system";

// The classes of the program; false, and told, if they cannot be browsed.
bool findClasses(const std::string& title, const std::string& file, std::string& classes) {
    const DependencyList all = LOADDEPLIST(file, "/fa", true);
    std::string problem = all.error;
    if (problem.empty() && !ISCLASSFILE(file)) problem = "'" + file + "' is not a class and has no symbols.";
    if (!problem.empty()) MSGBOX(title, "It is not possible to browse the symbols.\n" + problem);
    classes = REMOVECLASS(all.files, LibraryClass);
    return problem.empty();
}

// The classes that have changed since they were compiled.
DependencyList staleClasses(const std::string& file) {
    DependencyList list = LOADDEPLIST(file, "/fq", true);
    list.files = REMOVECLASS(list.files, LibraryClass);
    return list;
}

// Whether the user takes symbols that may be older than the classes.
bool acceptsAge(const std::string& title, const std::string& file) {
    const std::string stale = staleClasses(file).files;
    if (stale.empty()) return true;
    const std::string answer = MsgBox(
        title,
        "Browse info may be inaccurate for the following class(s):\n" + LIMITLINES(stale) +
            "\nThese classes are out of date and need to be re-compiled.\nDo you still want to view the "
            "browse information?",
        "&Yes\n&No", BoxIcon::Question);
    return answer == "&Yes";
}

std::string boundsOf(const SymbolRecord& record) {
    const bool array = STREQUAL(record.sort, "visualobject") && (record.lb1 != 0 || record.ub1 != 0);
    return array ? "[" + STR(record.lb1) + ".." + STR(record.ub1) + "]" : "";
}

// An array of controls has the line of its first member; from the row on, the later of the two gets the bounds.
void TELLARRAYS(const Object& list, int from, const std::string& symbols, const std::string& classFile) {
    FRAME(TELLARRAYS);
    STAMP();
    for (const SymbolRecord& record : SYMLOAD(symbols)) {
        const std::string bounds = boundsOf(record);
        if (bounds.empty()) continue;
        const std::string line =
            STRREPLACE(SYMFORMATSTR(record, BrowserTemplate), "$FILENAME$", STRADDQUOTES(classFile));
        int row = GetListCount(list);
        while (row >= from && GetList(list, row) != line) --row;
        STAMP();
        if (row >= from) SetList(list, row, line + bounds);
    }
    STAMP();
}

bool HASCONTROLS(const Object& list, int from) {
    FRAME(HASCONTROLS);
    STAMP();
    bool found = false;
    for (int row = from; row <= GetListCount(list) && !found; ++row)
        found = STREQUAL(valueOf(GetList(list, row), "$SORT$"), "visualobject");
    return found;
}

void addClass(const Object& list, const std::string& classFile, const std::string& symbols) {
    const int from = GetListCount(list) + 1;
    SYMADDSYMBOLS(symbols, classFile, BrowserTemplate, "const type function visualobject class", list);
    if (HASCONTROLS(list, from)) TELLARRAYS(list, from, symbols, classFile);
}

void fillList(const Object& list, const std::string& classes) {
    SetCaption(list, Headings);
    for (int n = 1; n <= STRLINES(classes); ++n) {
        const std::string file = STRLINE(classes, n), symbols = FILECHANGEEXT(file, ".sym");
        if (FileSize(symbols) > 0)
            addClass(list, file, symbols);
        else
            AddItem(list, lineWithoutSymbols(file), "symclass");
    }
    SetListIndex(list, std::min(GetListCount(list), 1));
}

}  // namespace

// ---- the window ----

namespace {

// The size of the client area for which the controls lie where they do stands in the window.
constexpr std::string_view SizeValue = "size";

void noteSize(const Object& window) {
    const Rect now = GetPosition(window, CLIENT_UNIT);
    SetArrayValue(window, SizeValue, STR(now.w) + " " + STR(now.h));
}

void layOut(const Object& window) {
    const std::string size = GetArrayValue(window, SizeValue);
    bool ok = false, tooOk = false;
    const Rect before{0, 0, CVTI(STRWORD(size, 1), ok), CVTI(STRWORD(size, 2), tooOk)};
    if (!ok || !tooOk) return;
    for (const std::string_view name :
         {"label1", "iconlist1", "label2", "pushbutton1", "pushbutton2", "pushbutton3"})
        ADJUSTCONTROLPOS(window, FINDCONTROL(window, name), before);
    noteSize(window);
}

// Where it was last; at first a little below the main window.
void place(const Object& window) {
    const std::string ini = GETIDEINIFILE();
    const Rect smallest = GetPosition(window, CLIENT_UNIT), main = GetPosition(Main, WINDOW_UNIT);
    SetMinPosition(window, Rect{0, 0, smallest.w, smallest.h});
    noteSize(window);
    Rect frame = GetPosition(window, WINDOW_UNIT);
    frame.x = main.x + 40;
    frame.y = main.y + main.h + 40;
    if (!HASPLACE("BrowseInfoDlg")) SetPosition(window, WINDOW_UNIT, frame);
    LOADINIFILE(ini, window, true, false);
    layOut(window);
}

void load(const Object& window) {
    const std::string file = COMPILERGETMAINFILE(), title = GetCaption(window);
    std::string classes;
    place(window);
    if (!findClasses(title, file, classes) || !acceptsAge(title, file)) return Unload(window);
    const Object list = FINDCONTROL(window, "iconlist1");
    SetCaption(FINDCONTROL(window, "label1"), PLAINCAPTION("Browse info for '" + file + "'"));
    fillList(list, classes);
    SetCaption(FINDCONTROL(window, "label2"),
               STR(GetListCount(list)) + " line(s), " + STR(STRLINES(classes)) + " class(es)");
}

bool press(const Object& window, const std::string& button) {
    const Object list = FINDCONTROL(window, "iconlist1");
    if (button == "pushbutton1")
        MOREINFODIALOG(selectedLine(list));
    else if (button == "pushbutton2")
        VIEWCODE(window, list);
    else if (button == "pushbutton3")
        SHOWWINDOWHELP(window);
    else
        return false;
    return true;
}

bool pressKey(const Object& window, int key) {
    if (key == KEY_ESCAPE) Unload(window);
    if (key == KEY_F1) SHOWWINDOWHELP(window);
    return key == KEY_ESCAPE || key == KEY_F1;
}

const RegisteredWindow registered("BrowseInfoDlg", BROWSEINFODLG);

}  // namespace

bool BROWSEINFODLG(const Object& window, int event, const Object& control, int parameter) {
    FRAME(BROWSEINFODLG);
    STAMP();
    bool result = true;
    switch (event) {
    case LOAD_EVENT: load(window); break;
    case RESIZE_EVENT: layOut(window); break;
    case COMMAND_EVENT: result = press(window, GetName(control)); break;
    case DBLCLICK_EVENT:
        if (GetName(control) == "iconlist1") VIEWCODE(window, control);
        break;
    case KEYPRESS_EVENT: result = pressKey(window, parameter); break;
    case CLOSE_EVENT:
        SAVEINIFILE(GETIDEINIFILE(), window, true, false);
        result = false;
        break;
    default: result = false;
    }
    STAMP();
    return result;
}

bool BROWSEINFOISFRESH() {
    FRAME(BROWSEINFOISFRESH);
    STAMP();
    const std::string file = COMPILERGETMAINFILE();
    if (!ISCLASSFILE(file)) return false;
    STAMP();
    const DependencyList stale = staleClasses(file);
    return stale.error.empty() && stale.files.empty();
}

void BROWSEINFODIALOG() {
    FRAME(BROWSEINFODIALOG);
    STAMP();
    if (IsLoaded(BrowseInfoDlg)) Unload(BrowseInfoDlg);
    STAMP();
    Load(BrowseInfoDlg);
    STAMP();
    if (IsLoaded(BrowseInfoDlg)) Show(BrowseInfoDlg, false);
}

}  // namespace tarn
