// SPDX-License-Identifier: GPL-3.0-or-later
//
//   second instance and errors   the hand-over of a file to the copy that runs; what happens to an error at the top
//   unload                       what is kept
//   bringing up to date          menus, hidden labels and enabled states
//   events, the program          MAIN, and RUNIDE, which runs all of it
#include "ide/shell/ide.h"

#include "ide/build/output.h"
#include "ide/designer/objects/dlgmenu.h"
#include "ide/designer/properties/propwindow.h"
#include "ide/designer/toolbox.h"
#include "ide/editor/backup.h"
#include "ide/editor/changedfile.h"
#include "ide/editor/recentfiles.h"
#include "ide/editor/textedit.h"
#include "ide/menus/filemenu.h"
#include "ide/program/projedit.h"
#include "ide/program/projlive.h"
#include "ide/shell/commands.h"
#include "ide/shell/idecore.h"
#include "ide/shell/rescue.h"
#include "ide/shell/session.h"
#include "ide/shell/undomenu.h"
#include "ide/shell/welcome.h"
#include "ide/shell/windows.h"
#include "ide/shell/windowtable.h"
#include "library/dialogs/dlgutil.h"
#include "library/settings/profstr.h"
#include "library/system/system.h"
#include "os/process.h"

#include <algorithm>
#include <vector>

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

// Gives the file to the copy that runs, or says that there is none; false if that copy does not take it.
bool passOn(const OtherControl& other, const std::string& file) {
    if (FileSize(file) > 0) return taken(other, file);
    Sound();
    MsgBox("Error", MISSINGFILETEXT(file), "OK", BoxIcon::Error);
    return true;
}

// Gives the files of the command line to the copy that runs, or says why not.
void handOver() {
    const std::string reason = ErrorDetails();
    const std::vector<std::string> files = GETCOMMANDLINEFILES();
    if (IsLoaded(Main)) SetCaption(Main, "");  // so that the search cannot find this copy
    const OtherControl found = FINDOTHERCONTROL(os::executablePath(), GETMAINCAPTIONSTR(), "File_Open");
    if (found.window != 0 && found.control != 0 && !files.empty()) {
        bool done = true;
        for (const std::string& file : files) done = passOn(found, file) && done;
        if (done) return;
    }
    Sound();
    MsgBox("Error 807",
           reason + "\nThe copy that runs has its own windows: look for them among those of your desktop.\n"
                    "To open a file there, start with its name or use File-Open.",
           "OK", BoxIcon::Error);
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

const std::vector<Object>& SDIWINDOWS() {
    static const std::vector<Object> windows = {ProjectEditorDlg, SDIEdit, DialogDlg, BrowseInfoDlg, ViewDlg};
    return windows;
}

bool ISSDIWINDOW(const Object& window) {
    FRAME(ISSDIWINDOW);
    if (!IsLoaded(window)) return false;
    STAMP();
    const std::vector<Object>& all = SDIWINDOWS();
    return GetVisible(window) && std::find(all.begin(), all.end(), window) != all.end();
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
    enable("window_output", ISSHOWN(OutputDlg));
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
