// SPDX-License-Identifier: GPL-3.0-or-later
//
// The load of the environment: which sections the settings lack, trace, place of the windows, toolbar, and the opening action;
// DO_LOAD is their order.
#include "ide/shell/ide.h"

#include "ide/build/compiler.h"
#include "ide/editor/backup.h"
#include "ide/editor/textedit.h"
#include "ide/menus/filemenu.h"
#include "ide/menus/viewmenu.h"
#include "ide/options/shortcuts.h"
#include "ide/program/changes.h"
#include "ide/program/newprogram.h"
#include "ide/shell/commands.h"
#include "ide/shell/idecore.h"
#include "ide/shell/rescue.h"
#include "ide/shell/session.h"
#include "ide/shell/startup.h"
#include "ide/shell/undomenu.h"
#include "ide/shell/welcome.h"
#include "ide/shell/windowplace.h"
#include "ide/shell/windows.h"
#include "library/dialogs/commdlgs.h"
#include "library/dialogs/dlgutil.h"
#include "library/settings/profstr.h"
#include "library/system/system.h"
#include "os/files.h"

#include <algorithm>

MODULE("ide", tarn::IDE_ONERROR)

namespace tarn {

// ---- settings check ----

namespace {

constexpr std::string_view requiredSections[] = {"Edit_Find",
                                                 "Edit_Replace",
                                                 "ordo",
                                                 "Compoptionsdlg",
                                                 "Debugoptionsdlg",
                                                 "Editoroptionsdlg",
                                                 "Genoptionsdlg",
                                                 "Pathsoptionsdlg",
                                                 "Sdiedit",
                                                 "Viewdlg",
                                                 "Projecteditordlg",
                                                 "Main",
                                                 "Gotofuncdlg",
                                                 "debug",
                                                 "Argumentsdlg",
                                                 "Confirmremovedlg",
                                                 "BrowseInfoDlg",
                                                 "MRU"};

// These have the class extension behind them.
constexpr std::string_view requiredStems[] = {"Hilite",
                                              "Template.NewNonMainClass",
                                              "Template.NewMainClass",
                                              "Template.NewDialog",
                                              "Template.FunctionBody",
                                              "Template.DialogBody",
                                              "Template.DataViewDialog",
                                              "Template.TableDeclaration",
                                              "Template.DatabaseDialog"};

void checkSettings(const std::string& ini) {
    const std::string backup = FILECHANGEEXT(ini, ".bak");
    const std::string missing = CHECKINIFILE(ini);
    if (missing.empty()) return;
    const std::string backupLine =
        FileSize(backup) > 0 ? "(There is a backup INI file in '" + backup + "')" : "";
    Sound();
    const std::string answer = MsgBox(
        "Error",
        "The INI file '" + ini + "' is missing or invalid.\n" +
            "One or more of the following sections are missing:\n\n" + INDENTLINES(LIMITLINES(missing)) +
            "\nThis may prevent the compiler from working, or may cause the IDE\n"
            "to run slowly. The INI file should be restored from a backup.\n" +
            backupLine,
        "Halt\nContinue", BoxIcon::Error);
    if (answer == "Halt") Halt();
}

}  // namespace

std::string CHECKINIFILE(const std::string& iniFile) {
    FRAME(CHECKINIFILE);
    STAMP();
    const std::string names = "\n" + PROFILESTRSECTIONS(iniFile);
    std::string missing;
    const auto require = [&](const std::string& section) {
        if (STRFIND("\n" + section + "\n", names) == 0) missing += section + "\n";
    };
    for (const std::string_view section : requiredSections) require(std::string(section));
    for (const std::string_view stem : requiredStems)
        require(std::string(stem) + std::string(ClassExtension));
    return missing;
}

// ---- load ----

namespace {

void setTraceFromSettings(const std::string& ini) {
    const std::string level = PROFILESTRGET(ini, "DebugOptionsDlg", "Traceide");
    bool ok = false;
    const int mode = CVTI(level, ok);
    if (ISDIGITS(level) && ok && level != STR(GetTraceMode())) SetTraceMode(mode);
}

void placeMainWindow(const std::string& ini) {
    constexpr int margin = 20;  // keeps a window reachable that overlaps the edge of the screen
    const std::string text = PROFILESTRGET(ini, "Main", "_Position");
    const Rect screen = ScreenSize();
    int n[4] = {};
    bool numbers = !text.empty();
    for (int i = 0; i < 4; i++) {
        bool ok = false;
        n[i] = CVTI(STRWORD(text, i + 1), ok);
        numbers = numbers && ok;
    }
    const bool honoured = numbers && n[0] >= -margin && n[0] <= screen.w - margin && n[1] >= -margin &&
                          n[1] <= screen.h - margin && n[2] > 0 && n[3] > 0;
    SetPosition(Main, WINDOW_UNIT,
                honoured ? Rect{n[0], n[1], n[2], n[3]} : Rect{screen.x, screen.y, screen.w, 1});
}

int frameWidth() {
    return GetPosition(Main, WINDOW_UNIT).w - GetPosition(Main, CLIENT_UNIT).w;
}

// The window manager has to frame the main window before its height is known, and may take its time. Where nobody frames
// windows that is the whole wait.
void waitForFrame() {
    constexpr int first = 60, step = 20, most = 300;  // milliseconds
    WaitEvents(first, false);
    for (int waited = first; waited < most && IsLoaded(Main) && frameWidth() == 0; waited += step)
        WaitEvents(step, false);
    if (IsLoaded(Main) && frameWidth() != 0) WaitEvents(step, false);  // for what follows from it
}

// Of the Program Window, as it opens at first.
int programWidth() {
    const Object measured("MeasureDlg");  // without its function, and never shown
    if (!Load(measured, ApplicationResources(), ProjectEditorDlg.window()).empty()) return 0;
    const int width = GetPosition(measured, CLIENT_UNIT).w + frameWidth();
    Unload(measured);
    return width;
}

// At the first start the Code window takes the room below the main window, and leaves the error window's at the bottom and
// the Program Window's at the right.
void placeCodeWindow() {
    if (HASPLACE("Sdiedit") || !IsLoaded(Main) || !IsLoaded(SDIEdit))
        return;  // the user may have closed them
    const Rect screen = ScreenSize(), main = GetPosition(Main, WINDOW_UNIT);
    const int top = main.y + main.h;
    const int width = std::max(screen.w - std::max(programWidth(), screen.w / 4), screen.w / 2);
    EDITWNDSETMAXSIZE(SDIEdit, Main);
    SetPosition(SDIEdit, WINDOW_UNIT, Rect{screen.x, top, width, (screen.y + screen.h - top) * 3 / 4});
}

void showToolbarAsSet(const std::string& ini) {
    const Object item = MAINCONTROL("view_std_toolbar");
    SetChecked(item, PROFILESTRGET(ini, "Main", "VIEW_STD_TOOLBAR") != "1");
    DO_STD_TOOLBAR(Main, MAINCONTROL("codelabel"), item);
}

void openFiles(const std::vector<std::string>& files) {
    for (const std::string& file : files) {
        if (FileSize(file) >= 0)
            DO_OPEN(file, MAINCONTROL("programlabel"));
        else
            MsgBox("File-Open", MISSINGFILETEXT(file), "OK", BoxIcon::Error);
    }
}

void chooseOpeningAction(const std::string& ini, const std::vector<std::string>& files) {
    if (!files.empty()) return openFiles(files);
    const auto chosen = [&](std::string_view key) { return PROFILESTRGET(ini, "GenOptionsDlg", key) == "1"; };
    if (chosen("rbStartup1")) return DO_NEW_TEXTFILE(MAINCONTROL("codelabel"));
    if (chosen("rbStartup2"))
        return PROJECTNEWMAIN(ProjectEditorDlg, MAINCONTROL("codelabel"), "New Program", false);
    if (chosen("rbStartup3")) return STARTUPDIALOG();
    if (chosen("rbStartup4")) return RESTORESESSION();
    WELCOMEATSTART();
}

void goToLastFolder(const std::string& ini) {
    const std::string last = PROFILESTRGET(ini, "Main", "LastPath");
    const bool wanted = PROFILESTRGET(ini, "GenOptionsDlg", "SavePath") == "1" && !last.empty();
    if (wanted && os::infoOf(last).folder) SETCURDIR(last);  // it may have gone since
}

// ---- the steps of the load, in their order ----

void loadSettings(const std::string& ini) {
    FRAME(LOADSETTINGS);
    STAMP();
    checkSettings(ini);
    STAMP();
    setTraceFromSettings(ini);
    STAMP();
    PREPARESETTINGS();
    STAMP();
    REFRESHCOMMANDLINE();
    STAMP();
}

void prepareMainWindow(const std::string& ini) {
    FRAME(PREPAREMAINWINDOW);
    STAMP();
    Assert(GetName(MAINCONTROL("CodeLabel")) == "codelabel" &&
           GetName(MAINCONTROL("ProgramLabel")) == "programlabel");
    STAMP();
    SetCaption(Main, GETMAINCAPTIONSTR());
    STAMP();
    APPLYSHORTCUTS(Main);
    STAMP();
    placeMainWindow(ini);
    STAMP();
    showToolbarAsSet(ini);
    STAMP();
    NOTEUNDOITEMS();
    STAMP();
}

// It stays hidden.
void prepareCodeWindow() {
    FRAME(PREPARECODEWINDOW);
    STAMP();
    Load(SDIEdit);
    STAMP();
    EDITWNDSETMAXSIZE(SDIEdit, Main);
    STAMP();
    EDITWNDSETTIMER(SDIEdit, MAINCONTROL("lblautobackuptimer"), EDITWNDGETINTERVAL());
    STAMP();
    AppIcon(GETAPPDIR() + std::string(ProductIcon));
    STAMP();
}

void showMainWindow() {
    FRAME(SHOWMAINWINDOW);
    STAMP();
    DISABLEUNHANDLED();
    STAMP();
    Show(Main, false);
    STAMP();
    SPLASHDLG_UNLOAD();
    STAMP();
    if (!HASPLACE("Sdiedit")) waitForFrame();
    STAMP();
    placeCodeWindow();
    STAMP();
}

// What a halt has left comes ahead of what the user has chosen for the start.
void open(const std::string& ini, const std::vector<std::string>& files) {
    FRAME(OPENATSTART);
    STAMP();
    static_cast<void>(FINISHCHANGES());
    STAMP();
    const bool restored = OFFERRESCUEDTEXT();
    STAMP();
    if (!restored) chooseOpeningAction(ini, files);
    STAMP();
    UPDATEMAINWINDOW();
    STAMP();
}

}  // namespace

void DO_LOAD() {
    FRAME(DO_LOAD);
    STAMP();
    const std::string ini = GETIDEINIFILE();
    SPLASHDLG_SHOWWITHBUTTONS("");
    STAMP();
    loadSettings(ini);
    prepareMainWindow(ini);
    prepareCodeWindow();
    STAMP();
    const std::vector<std::string> files = GETCOMMANDLINEFILES();
    goToLastFolder(ini);
    STAMP();
    showMainWindow();
    const Rect placed = IsLoaded(SDIEdit) ? GetPosition(SDIEdit, WINDOW_UNIT) : Rect{};
    STAMP();
    if (IsLoaded(Main)) open(ini, files);
    STAMP();
    // The frame of the main window may have come late; where the user has put the Code window it stays.
    if (IsLoaded(SDIEdit) && GetPosition(SDIEdit, WINDOW_UNIT) == placed) placeCodeWindow();
    STAMP();
}

}  // namespace tarn
