// SPDX-License-Identifier: GPL-3.0-or-later
//
//   second instance and errors   the hand-over of a file to the copy that runs; what happens to an error at the top
//   settings check               which sections the settings lack
//   load                         trace, place of the windows, toolbar, the opening action; DO_LOAD is their order
//   unload                       what is kept
//   bringing up to date          menus, hidden labels and enabled states
//   events, the program          MAIN, and RUNIDE, which runs all of it
#include "ide/shell/ide.h"

#include "ide/build/compiler.h"
#include "ide/build/textview.h"
#include "ide/designer/objects/dlgmenu.h"
#include "ide/designer/properties/propwindow.h"
#include "ide/designer/toolbox.h"
#include "ide/editor/backup.h"
#include "ide/editor/changedfile.h"
#include "ide/editor/recentfiles.h"
#include "ide/editor/textedit.h"
#include "ide/menus/filemenu.h"
#include "ide/menus/runmenu.h"
#include "ide/menus/viewmenu.h"
#include "ide/options/shortcuts.h"
#include "ide/program/changes.h"
#include "ide/program/newprogram.h"
#include "ide/program/projedit.h"
#include "ide/program/projlive.h"
#include "ide/shell/commands.h"
#include "ide/shell/idecore.h"
#include "ide/shell/rescue.h"
#include "ide/shell/session.h"
#include "ide/shell/startup.h"
#include "ide/shell/undomenu.h"
#include "ide/shell/welcome.h"
#include "ide/shell/windows.h"
#include "ide/shell/windowtable.h"
#include "library/dialogs/commdlgs.h"
#include "library/dialogs/dlgutil.h"
#include "library/settings/profstr.h"
#include "library/system/system.h"
#include "os/files.h"
#include "os/process.h"

#include <algorithm>

MODULE("ide", tarn::IDE_ONERROR)

namespace tarn {

// ---- second instance and errors ----

namespace {

// Whether the copy that runs has taken the file; one that is on its way out, or busy for long, has not.
bool taken(const OtherControl& other, const std::string& file) {
    ClearError();  // the error that brought us here, so that the command's own can be seen
    Command(other.window, other.control, file);
    return ErrorCell() == 0;
}

// Gives the file of the command line to the copy that runs, or says why not.
void handOver() {
    const std::string file = GETCOMMANDLINEFILE(), reason = ErrorDetails();
    if (IsLoaded(Main)) SetCaption(Main, "");  // so that the search cannot find this copy
    const OtherControl found = FINDOTHERCONTROL(os::executablePath(), GETMAINCAPTIONSTR(), "File_Open");
    if (found.window != 0 && found.control != 0) {
        const bool content = FileSize(file) > 0;
        if (content && taken(found, file)) return;
        if (!content && !file.empty()) {
            Sound();
            MsgBox("Error",
                   "The following file:\n\n\t'" + file +
                       "'\n\ndoes not exist and cannot be opened. Try again with another file.",
                   "OK", BoxIcon::Error);
            return;
        }
    }
    Sound();
    MsgBox("Error 807", reason, "OK", BoxIcon::Error);
}

bool mayContinue(std::int32_t code) {
    return code == 687 || code == 727 || (code >= 901 && code <= 992);
}

}  // namespace

void IDE_ONERROR(std::int32_t code) {
    const Reporting report;
    if (!report.entered()) return;
    if (code == 807) {
        handOver();
        Halt();
    }
    const bool offer = mayContinue(code);
    if (!offer) RESCUETEXT();  // the user may never close the box
    Sound();
    const std::string answer =
        MsgBox("Error " + STR(code), ErrorDetails(), offer ? "Continue\nHalt" : "OK", BoxIcon::Error);
    if (!offer || answer != "Continue") {
        RESCUETEXT();
        Halt();
    }
    ContinueAfterError();
}

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

std::string indented(const std::string& lines) {
    std::string result;
    for (int i = 1; i <= STRLINES(lines); i++) result += "\t" + STRLINE(lines, i) + "\n";
    return result;
}

void checkSettings(const std::string& ini) {
    const std::string backup = FILECHANGEEXT(ini, ".bak");
    const std::string missing = CHECKINIFILE(ini);
    if (missing.empty()) return;
    const std::string backupLine =
        FileSize(backup) > 0 ? "(There is a backup INI file in '" + backup + "')" : "";
    Sound();
    const std::string answer =
        MsgBox("Error",
               "The INI file '" + ini + "' is missing or invalid.\n" +
                   "One or more of the following sections are missing:\n\n" + indented(LIMITLINES(missing)) +
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

// At the first start the Code window takes the room below the main window and leaves the error window's at
// the bottom.
void placeCodeWindow(const std::string& ini) {
    if (!PROFILESTRGET(ini, "Sdiedit", "_Position").empty()) return;
    WaitEvents(60, false);  // the window manager has to frame the main window before its height is known
    if (!IsLoaded(Main)) return;  // the user has closed it meanwhile
    const Rect screen = ScreenSize(), main = GetPosition(Main, WINDOW_UNIT);
    const int top = main.y + main.h;
    EDITWNDSETMAXSIZE(SDIEdit, Main);
    SetPosition(SDIEdit, WINDOW_UNIT,
                Rect{screen.x, top, screen.w * 3 / 4, (screen.y + screen.h - top) * 3 / 4});
}

void showToolbarAsSet(const std::string& ini) {
    const Object item = MAINCONTROL("view_std_toolbar");
    SetChecked(item, PROFILESTRGET(ini, "Main", "VIEW_STD_TOOLBAR") != "1");
    DO_STD_TOOLBAR(Main, MAINCONTROL("codelabel"), item);
}

void chooseOpeningAction(const std::string& ini, const std::string& file) {
    if (!file.empty()) return DO_OPEN(file, MAINCONTROL("programlabel"));
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

void readSettings(const std::string& ini) {
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

void prepareCodeWindow() {
    STAMP();
    Load(SDIEdit);
    STAMP();
    EDITWNDSETMAXSIZE(SDIEdit, Main);
    STAMP();
    EDITWNDSETTIMER(SDIEdit, MAINCONTROL("lblautobackuptimer"), EDITWNDGETINTERVAL());
    STAMP();
}

}  // namespace

void DO_LOAD() {
    FRAME(DO_LOAD);
    STAMP();
    const std::string ini = GETIDEINIFILE();
    SPLASHDLG_SHOWWITHBUTTONS("");
    STAMP();
    readSettings(ini);
    prepareMainWindow(ini);
    prepareCodeWindow();
    STAMP();
    AppIcon(GETAPPDIR() + std::string(ProductIcon));
    STAMP();
    const std::string file = GETCOMMANDLINEFILE();
    goToLastFolder(ini);
    STAMP();
    DISABLEUNHANDLED();
    STAMP();
    Show(Main, false);
    STAMP();
    SPLASHDLG_UNLOAD();
    STAMP();
    placeCodeWindow(ini);
    STAMP();
    if (!IsLoaded(Main)) return;
    static_cast<void>(FINISHCHANGES());
    STAMP();
    const bool restored = OFFERRESCUEDTEXT();
    STAMP();
    if (!restored) chooseOpeningAction(ini, file);
    STAMP();
    UPDATEMAINWINDOW();
    STAMP();
}

// ---- unload ----

void DO_UNLOAD() {
    FRAME(DO_UNLOAD);
    const std::string ini = GETIDEINIFILE();
    STAMP();
    EDITWNDKILLTIMER(SDIEdit, MAINCONTROL("lblautobackuptimer"));
    STAMP();
    PROFILESTRPUT(ini, "Main", "LastPath", "\"" + GETCURDIR() + "\"");
    STAMP();
    const Rect place = GetPosition(Main, WINDOW_UNIT);
    PROFILESTRPUT(ini, "Main", "_Position",
                  STR(place.x) + " " + STR(place.y) + " " + STR(place.w) + " " + STR(place.h));
    STAMP();
}

// ---- bringing the window up to date ----

bool ISSDIWINDOW(const Object& window) {
    FRAME(ISSDIWINDOW);
    if (!IsLoaded(window)) return false;
    STAMP();
    if (!GetVisible(window)) return false;
    for (const Object& sdi : {ProjectEditorDlg, SDIEdit, DialogDlg, BrowseInfoDlg, ViewDlg}) {
        if (window == sdi) return true;
    }
    return false;
}

void REACTIVATELASTWINDOW() {
    FRAME(REACTIVATELASTWINDOW);
    if (!IsLoaded(Main)) return;
    const Object label = MAINCONTROL("lbllastactive");
    STAMP();
    const std::string name = GetCaption(label);
    if (name.empty()) return;
    const Object last = FindWindow(name);
    STAMP();
    if (!ISSDIWINDOW(ActiveWindow()) && IsLoaded(last) && GetVisible(last)) Show(last, false);
    STAMP();
    SetCaption(label, name);  // showing the window has changed it
}

namespace {

void enable(std::string_view control, bool on) {
    SetEnabled(MAINCONTROL(control), on && HASHANDLER(control));
}

void enableCommands(bool programIsClass, bool codeIsClass) {
    const Object program = MAINCONTROL("program_add_dialog");
    for (int i = ControlLbound(program); i <= ControlUbound(program); i++) {
        const Object item = ControlElement(program, i);
        if (STREQUAL(GetTypeof(item), "Menuitem"))
            SetEnabled(item, programIsClass && HASHANDLER(GetName(item)));
    }
    for (const std::string_view name :
         {"run_quickbuild", "run_rebuild", "run_compile", "run_start", "run_debug", "run_info"})
        enable(name, programIsClass || codeIsClass);
    enable("window_program", ISSHOWN(ProjectEditorDlg));
    enable("window_code", ISSHOWN(SDIEdit));
    enable("window_dialog", ISSHOWN(DialogDlg));
    enable("window_browser", ISSHOWN(BrowseInfoDlg));
    enable("window_error", ISSHOWN(ViewDlg));
    SetEnabled(MAINCONTROL("edit_dialog"), ISSHOWN(DialogDlg));
    UPDATEDIALOGMENU();
}

}  // namespace

void UPDATEMAINWINDOW() {
    FRAME(UPDATEMAINWINDOW);
    if (!IsLoaded(Main)) return;
    STAMP();
    const std::string program = PROJECTGETMAINFILE();
    const std::string code = EDITWNDGETFILENAME(SDIEdit);
    SetCaption(MAINCONTROL("programlabel"), program);
    SetCaption(MAINCONTROL("codelabel"), code);
    STAMP();
    LOADMRULIST(GETIDEINIFILE(), "MRU", 5, MAINCONTROL("file_mru_1"));
    STAMP();
    enable("view_toolbox", ISSHOWN(DialogDlg));
    SetChecked(MAINCONTROL("view_toolbox"), TOOLBOXGETVISIBLE());
    SetChecked(MAINCONTROL("edit_dialog_properties"), PROPERTYWINDOWVISIBLE());
    STAMP();
    UPDATEUNDOMENU();
    STAMP();
    enableCommands(ISCLASSFILE(program), ISCLASSFILE(code));
    STAMP();
}

// ---- events ----

namespace {

void activated(int handle) {
    if (!ISSHOWN(Main)) return;  // the splash window, while Main loads, which ends with an update
    const Object window = FindHandle(handle);
    if (ISSDIWINDOW(window)) {
        SetCaption(MAINCONTROL("lbllastactive"), GetName(window));
        CLOSEWELCOME();
    }
    UPDATEMAINWINDOW();
    if (window == SDIEdit || window == Main) ASKABOUTCHANGEOUTSIDE(SDIEdit);
    if (window == ProjectEditorDlg) static_cast<void>(PROJECTCAMEFORWARD(window));
}

bool keyPressed(int key) {
    if (key == KEY_F1) SHOWHELP("Developer Environment");
    if (key == KEY_ESCAPE) REACTIVATELASTWINDOW();
    return key == KEY_F1 || key == KEY_ESCAPE;
}

// How far the Code window may grow follows the height of this one, whose frame comes after it is shown.
void resized() {
    if (IsLoaded(SDIEdit)) EDITWNDSETMAXSIZE(SDIEdit, Main);
}

// Each window asks its own question about saving; the first that stays vetoes.
bool closeVetoed() {
    const Session session = CURRENTSESSION();  // before the windows go
    if (!CLOSEALL()) return true;
    KEEPSESSION(session);
    DO_UNLOAD();
    return false;
}

}  // namespace

bool MAIN(const Object&, int event, const Object& control, int parameter) {
    FRAME(MAIN);
    STAMP();
    bool result = true;
    switch (event) {
    case LOAD_EVENT: DO_LOAD(); break;
    case ACTIVATE_EVENT: activated(parameter); break;
    case KEYPRESS_EVENT: result = keyPressed(parameter); break;
    case COMMAND_EVENT: DO_COMMAND(control, parameter); break;
    case RESIZE_EVENT: resized(); break;
    case TIMER_EVENT: PLAYSECONDSOUND(); break;
    case CLOSE_EVENT: result = closeVetoed(); break;
    default: result = false;
    }
    STAMP();
    return result;
}

// ---- the program ----

namespace {

const RegisteredWindow registered("Main", MAIN);

}  // namespace

void RUNIDE() {
    ProcessStart(false);
    DebugStart(1, ProductWord, ProductVersion, ProductBuild, "");
    REGISTERWINDOWS();
    SetRescueHook(RESCUETEXT);
    {
        FRAME(RUNIDE);
        STAMP();  // a second copy ends here, without a view
        ListenForEnd();
        STAMP();
        Load(Main);
        STAMP();
        MainLoop(Main);
    }
    DebugEnd();
    ProcessStop();
}

}  // namespace tarn
