// SPDX-License-Identifier: GPL-3.0-or-later
#include "ide/shell/startup.h"

#include "ide/menus/filemenu.h"
#include "ide/program/newprogram.h"
#include "ide/shell/ide.h"
#include "ide/shell/idecore.h"
#include "ide/shell/windows.h"
#include "ide/shell/windowtable.h"
#include "library/dialogs/dialogshape.h"
#include "library/dialogs/dlgutil.h"
#include "library/settings/profstr.h"
#include "library/system/system.h"

MODULE("ide", tarn::IDE_ONERROR)

namespace tarn {
namespace {

// The choices of the radio group, in its order.
enum Choice { LastProgram = 1, NewTextFile, NewProgram, GettingStarted, Examples };

Object choices(const Object& window, int which) {
    return ControlElement(FINDCONTROL(window, "rblastprogram"), which);
}

void restore(const Object& window) {
    SetValue(FINDCONTROL(window, "checkbox1"), 0);
    const std::string last = STRTRIM(PROFILESTRGET(GETIDEINIFILE(), "MRU", "1"));
    SetCaption(FINDCONTROL(window, "label1"), last.empty() ? "" : PLAINCAPTION("'" + last + "'"));
    const Object first = choices(window, LastProgram);
    if (!last.empty()) return;
    if (Controlselectionpos(first) == LastProgram) SetValue(choices(window, NewTextFile), 1);
    SetEnabled(first, false);
}

// Stores what every later start begins with; nothing is carried out now.
void storeChoice(const Object& window) {
    int chosen = 0;
    if (GetValue(FINDCONTROL(window, "rbnewtextfile")) == 1)
        chosen = 1;
    else if (GetValue(FINDCONTROL(window, "rbnewprogram")) == 1)
        chosen = 2;
    for (int i = 0; i <= 4; i++)
        PROFILESTRPUT(GETIDEINIFILE(), "GenOptionsDlg", "rbStartup" + STR(i), i == chosen ? "1" : "0");
}

void carryOut(int choice) {
    const Object program = MAINCONTROL("programlabel");
    const Object recent = MAINCONTROL("file_mru_1");
    if (choice == LastProgram) DO_MRU(recent, recent, PROFILESTRGET(GETIDEINIFILE(), "MRU", "1"), program);
    if (choice == NewTextFile) DO_NEW_TEXTFILE(MAINCONTROL("codelabel"));
    if (choice == NewProgram)
        PROJECTNEWMAIN(ProjectEditorDlg, MAINCONTROL("codelabel"), "New Program", false);
    if (choice == GettingStarted) SHOWHELP("Getting Started");
    if (choice == Examples) DO_OPEN_EXAMPLES("Examples and Tutorials", program);
}

constexpr DialogShape shape{
    .settings = GETIDEINIFILE, .showHelp = SHOWWINDOWHELP, .load = restore, .hides = true};
const RegisteredWindow registered("StartupDlg", STARTUPDLG);

}  // namespace

bool STARTUPDLG(const Object& window, int event, const Object& control, int parameter) {
    FRAME(STARTUPDLG);
    STAMP();
    const bool result = DIALOGSHAPEEVENT(shape, window, event, control, parameter);
    STAMP();
    return result;
}

void STARTUPDIALOG() {
    FRAME(STARTUPDIALOG);
    STAMP();
    Load(StartupDlg);
    STAMP();
    Show(StartupDlg, true);
    STAMP();
    if (!IsLoaded(StartupDlg)) return;
    const bool store = GetValue(FINDCONTROL(StartupDlg, "checkbox1")) == 1;
    const int choice = Controlselectionpos(choices(StartupDlg, LastProgram));
    STAMP();
    if (store)
        storeChoice(StartupDlg);
    else
        carryOut(choice);
    STAMP();
    if (IsLoaded(StartupDlg)) Unload(StartupDlg);
    STAMP();
}

}  // namespace tarn
