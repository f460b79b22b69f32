// SPDX-License-Identifier: GPL-3.0-or-later
#include "ide/shell/welcome.h"

#include "ide/menus/filemenu.h"
#include "ide/shell/examples.h"
#include "ide/shell/ide.h"
#include "ide/shell/idecore.h"
#include "ide/shell/windows.h"
#include "ide/shell/windowtable.h"
#include "kernel/windows/focus.h"
#include "library/dialogs/commdlgs_examples.h"
#include "library/dialogs/dialogshape.h"
#include "library/dialogs/dlgutil.h"
#include "library/settings/profstr.h"
#include "library/source/symbols.h"
#include "library/system/system.h"

#include <algorithm>
#include <map>
#include <string>
#include <vector>

MODULE("ide", tarn::IDE_ONERROR)

namespace tarn {
namespace {

constexpr int RecentFiles = 5;

Object part(std::string_view name) {
    return FINDCONTROL(WelcomeDlg, name);
}

PlaceholderFolders places() {
    return {GETRESOURCEDIR(), GETCOMPILERDIR()};
}

// ---- filling ----

void fillRecent() {
    const Object list = part("lstrecent");
    for (int i = 1; i <= RecentFiles; ++i) {
        const std::string file = STRTRIM(PROFILESTRGET(GETIDEINIFILE(), "MRU", STR(i)));
        if (!file.empty() && ISMAINCLASS(file)) AddItem(list, file);
    }
    if (GetListCount(list) > 0) return SetListIndex(list, 1);
    AddItem(list, "(none yet)");
    SetEnabled(list, false);
}

void fillExamples() {
    const Object list = part("iconlist1");
    for (const std::string& name : EXAMPLESIN(GETEXAMPLEDIR()))
        AddItem(list, name, GETAPPDIR() + "open2.bmp");
    if (GetListCount(list) > 0) SetListIndex(list, 1);
}

// The text of the example that is chosen; empty if none is.
std::string chosenReadme() {
    const Object list = part("iconlist1");
    const int row = GetListIndex(list);
    return row == 0 ? "" : GETEXAMPLEDIR() + FILEADDSEPARATOR(GetList(list, row)) + "readme.txt";
}

void showExample() {
    const std::string readme = chosenReadme();
    const ExampleFields fields = readme.empty() ? ExampleFields() : SETEXAMPLEFIELDS(readme, places());
    SetCaption(part("lbltitle"), PLAINCAPTION(fields.title));
    SetCaption(part("lbltext"), PLAINCAPTION(fields.description));
    DRAWPICTUREONTOIMAGE(part("image1"), fields.picture);
}

// It belongs to no window, so it has to say itself that its place is the middle.
void place() {
    const Rect screen = ScreenSize(), own = GetPosition(WelcomeDlg, WINDOW_UNIT);
    SetPosition(WelcomeDlg, WINDOW_UNIT,
                Rect{screen.x + std::max(0, (screen.w - own.w) / 2),
                     screen.y + std::max(0, (screen.h - own.h) / 2), own.w, own.h});
}

void load(const Object&) {
    place();
    SetFontBold(part("lbltitle"), true);
    SetValue(part("checkbox1"), PROFILESTRGET(GETIDEINIFILE(), "Welcome", "AtStart") == "1" ? 1 : 0);
    fillRecent();
    fillExamples();
    showExample();
    if (!GetEnabled(part("lstrecent"))) SetFocus(part("btnprogram"));
}

// ---- what can be chosen ----

struct Action {
    std::string_view choice;
    void (*run)(const std::string& file);
};

// As the menu has it, which tells that a program has gone and takes it off its list.
void openRecent(const std::string& file) {
    const Object first = MAINCONTROL("file_mru_1");
    DO_MRU(first, first, file, MAINCONTROL("programlabel"));
}

constexpr Action actions[] = {
    {"lstrecent", openRecent},
    {"iconlist1", [](const std::string& file) { OPENEXAMPLE("Welcome", file); }},
    {"btnprogram",
     [](const std::string&) { DO_NEW_PROGRAM(MAINCONTROL("programlabel"), MAINCONTROL("codelabel")); }},
    {"btnopen", [](const std::string&) { DO_OPEN("", MAINCONTROL("programlabel")); }},
    {"btntour", [](const std::string&) { SHOWHELP("Getting Started"); }},
};

void choose(std::string_view choice, const std::string& file) {
    Unload(WelcomeDlg);
    for (const Action& action : actions)
        if (choice == action.choice) action.run(file);
    UPDATEMAINWINDOW();
}

// ---- events ----

// The row of a list; false for any other control.
bool chooseRow(const std::string& list) {
    if (list == "lstrecent" && GetEnabled(part(list)))
        choose(list, GetList(part(list), GetListIndex(part(list))));
    else if (list == "iconlist1" && !chosenReadme().empty())
        choose(list, EXAMPLEMAINFILE(chosenReadme(), places()));
    else
        return false;
    return true;
}

bool press(const std::string& control) {
    const bool own = control == "btnprogram" || control == "btnopen" || control == "btntour";
    if (own) choose(control, "");
    return own;
}

void keepTick(bool ticked) {
    const std::string value = ticked ? "1" : "0";
    if (PROFILESTRGET(GETIDEINIFILE(), "Welcome", "AtStart") != value)
        PROFILESTRPUT(GETIDEINIFILE(), "Welcome", "AtStart", value);
}

constexpr DialogShape shape{.ok = "", .showHelp = SHOWWINDOWHELP, .load = load};
const RegisteredWindow registered("WelcomeDlg", WELCOMEDLG);

// The windows that were there when it was shown, by their captions.
std::map<std::string, std::string>& captionsBefore() {
    static std::map<std::string, std::string> captions;
    return captions;
}

bool isNew(const Object& window) {
    if (!ISSDIWINDOW(window)) return false;
    const auto before = captionsBefore().find(GetName(window));
    return before == captionsBefore().end() || before->second != GetCaption(window);
}

void noteWindows() {
    captionsBefore().clear();
    for (const Object& window : SDIWINDOWS())
        if (ISSDIWINDOW(window)) captionsBefore()[GetName(window)] = GetCaption(window);
}

}  // namespace

bool WELCOMEDLG(const Object& window, int event, const Object& control, int parameter) {
    FRAME(WELCOMEDLG);
    STAMP();
    const std::string name = GetName(control);
    bool result = false;
    if (event == CHANGE_EVENT && name == "iconlist1")
        showExample();
    else if (event == DBLCLICK_EVENT || (event == KEYPRESS_EVENT && parameter == KEY_RETURN))
        result = chooseRow(name);
    else if (event == COMMAND_EVENT && name == "checkbox1")
        keepTick(GetValue(control) == 1);
    else if (event == COMMAND_EVENT)
        result = press(name);
    STAMP();
    result = result || DIALOGSHAPEEVENT(shape, window, event, control, parameter);
    STAMP();
    return result;
}

void WELCOMEDIALOG() {
    FRAME(WELCOMEDIALOG);
    STAMP();
    if (!IsLoaded(WelcomeDlg)) noteWindows();
    STAMP();
    Load(WelcomeDlg);
    STAMP();
    if (IsLoaded(WelcomeDlg)) Show(WelcomeDlg, false);
    STAMP();
}

void CLOSEWELCOME() {
    FRAME(CLOSEWELCOME);
    STAMP();
    if (!IsLoaded(WelcomeDlg)) return;
    const std::vector<Object>& windows = SDIWINDOWS();
    if (std::any_of(windows.begin(), windows.end(), isNew)) Unload(WelcomeDlg);
    STAMP();
}

void WELCOMEATSTART() {
    FRAME(WELCOMEATSTART);
    STAMP();
    if (PROFILESTRGET(GETIDEINIFILE(), "Welcome", "AtStart") != "1") return;
    WELCOMEDIALOG();
    STAMP();
}

}  // namespace tarn
