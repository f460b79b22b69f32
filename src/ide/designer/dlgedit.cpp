// SPDX-License-Identifier: GPL-3.0-or-later
//
//   the changed state, the picture     what the window shows
//   opening                            DIALOGOPEN and its steps
//   the rest of the environment        the settings, the Program Window
#include "ide/designer/dlgedit.h"

#include "ide/designer/dlgdisk.h"
#include "ide/designer/dlghistory.h"
#include "ide/designer/dlgstep.h"
#include "ide/designer/drawing/dlgview.h"
#include "ide/designer/drawing/dlgzoom.h"
#include "ide/designer/drawing/drawing.h"
#include "ide/designer/drawing/geometry.h"
#include "ide/designer/objects/dlglock.h"
#include "ide/designer/objects/dlgtab.h"
#include "ide/designer/properties/propwindow.h"
#include "ide/designer/toolbox.h"
#include "ide/shell/idecore.h"
#include "ide/shell/statusline.h"
#include "ide/shell/windows.h"
#include "kernel/windows/resources.h"
#include "library/designer/proputil.h"
#include "library/dialogs/dlgutil.h"
#include "library/settings/profstr.h"
#include "library/system/system.h"

MODULE("dlgedit")

namespace tarn {

// ---- the changed state ----

namespace {

constexpr std::string_view Mark = " *";

}  // namespace

void SETCHANGEDFLAG(const Object& window, const Object& checkbox, bool changed) {
    FRAME(SETCHANGEDFLAG);
    STAMP();
    if (!STREQUAL(GetTypeof(window), "Dialog") || !STREQUAL(GetTypeof(checkbox), "Checkbox")) return;
    STAMP();
    std::string caption = GetCaption(window);
    if (changed && !caption.ends_with(Mark)) caption += Mark;
    if (!changed && caption.ends_with(Mark)) caption.resize(caption.size() - Mark.size());
    SetCaption(window, caption);
    SetValue(checkbox, changed ? 1 : 0);
    STAMP();
}

std::string DIALOGGETFILENAME() {
    return DESIGNTEXT("rcfile");
}

std::string DIALOGGETDLGNAME() {
    return DESIGNTEXT("dlgname");
}

bool DIALOGGETMODIFY() {
    FRAME(DIALOGGETMODIFY);
    if (!IsLoaded(DialogDlg)) return false;
    STAMP();
    return GetValue(DESIGNCONTROL("changedflag")) != 0;
}

void DIALOGSETMODIFY(bool changed) {
    FRAME(DIALOGSETMODIFY);
    if (!IsLoaded(DialogDlg)) return;
    STAMP();
    SETCHANGEDFLAG(DialogDlg, DESIGNCONTROL("changedflag"), changed);
    if (changed) TELLSTATUS("");  // what it told of the last save
}

// ---- the picture ----

namespace {

bool drawing = false;

}  // namespace

Margin DIALOGGETMARGIN() {
    FRAME(DIALOGGETMARGIN);
    STAMP();
    const Rect scrolled = DESIGNSCROLLED();
    Margin margin = GETMARGIN(DESIGNTEXT("marginstr"));
    margin.left -= scrolled.x;
    margin.right += scrolled.x;
    margin.top -= scrolled.y;
    margin.bottom += scrolled.y;
    return margin;
}

int DIALOGGETMODE() {
    FRAME(DIALOGGETMODE);
    STAMP();
    bool ok = false;
    const int mode = CVTI(DESIGNTEXT("modestr"), ok);
    return ok ? mode : CLIENT_ONLY;
}

bool DIALOGDRAWING() {
    return drawing;
}

DesignPicture DIALOGPICTURE() {
    FRAME(DIALOGPICTURE);
    DesignPicture picture;
    if (!IsLoaded(DialogDlg)) return picture;
    STAMP();
    picture.dialog = TSTRINGARRAY(DATALIST());
    picture.menu = TSTRINGARRAY(MENULIST());
    picture.grid = DESIGNTEXT("gridstr");
    picture.margin = DIALOGGETMARGIN();
    picture.mode = DIALOGGETMODE();
    picture.link = DESIGNTEXT("linkstr") == "1";
    picture.resourceFolder = DESIGNTEXT("resourcedir");
    picture.compilerFolder = DESIGNTEXT("compilerdir");
    picture.resourceFile = DESIGNTEXT("rcfile");
    picture.selection = SELECTEDOBJECT();
    picture.others = DESIGNLISTS().others;
    picture.locked = LOCKEDOBJECTS();
    if (TABORDERISON()) picture.tabOrder = TABORDERNOW();
    picture.clicked = TABORDERCHOSEN();
    STAMP();
    return picture;
}

void DIALOGREDRAW() {
    FRAME(DIALOGREDRAW);
    if (!IsLoaded(DialogDlg) || GetListCount(DATALIST()) == 0) return;
    STAMP();
    DesignPicture picture = DIALOGPICTURE();
    STAMP();
    drawing = true;
    LAYOUTDESIGNVIEW(picture);
    picture.margin = DIALOGGETMARGIN();
    STAMP();
    DRAWWINDOW(DialogDlg, picture);
    drawing = false;
    STAMP();
    REFRESHPROPERTYWINDOW();
}

// ---- opening ----

namespace {

// A position that does not come back from pixels: the user would move it by looking at it.
std::string positionFault(const std::string& list, const LetterSize& letter) {
    const UnitRect start = GETPROPPOSITION(list);
    const UnitRect again = PIXELSTORCUNITS(letter, RCUNITSTOPIXELS(letter, start));
    if (start == again) return {};
    return "Position of " + GETPROPVALUE(list, "NAME") +
           " is not invertible.\nStart position=" + POSITIONTEXT(start) +
           "\nRecalculated position=" + POSITIONTEXT(again) + "\n";
}

void fill(const Object& list, const ObjectArray& objects) {
    for (const std::string& one : objects) {
        if (one.empty()) break;
        ADDDESIGNITEM(list, one);
    }
}

void loadEditor(const DialogOpening& opening) {
    FRAME(LOADEDITOR);
    const bool modal = (opening.flags & OPEN_MODAL) != 0;
    STAMP();
    if (modal && IsLoaded(DialogDlg)) Unload(DialogDlg);
    STAMP();
    if (!modal) TOOLBOXOPEN(opening.helpFile, opening.toolboxHelpKey);
    if (modal)
        PROPERTYWINDOWCLOSE();
    else
        PROPERTYWINDOWOPEN();
    STAMP();
    Load(DialogDlg);
    STAMP();
    DIALOGSETZOOM(100);
    SetCaption(DialogDlg, opening.caption);
    DIALOGSETMODIFY(false);
    const std::pair<std::string_view, std::string> labels[] = {
        {"marginstr", "10 10 10 10"},
        {"modestr", STR(FULL_FRAME)},
        {"gridstr", opening.grid},
        {"linkstr", "1"},
        {"resourcedir", GETRESOURCEDIR()},
        {"compilerdir", GETCOMPILERDIR()},
        {"locks", ""},
        {"taborder", ""},
        {"rcfile", opening.file},
        {"dlgname", opening.dialog},
        {"helpfile", opening.helpFile},
        {"helpkey", opening.helpKey},
        {"prophelpkey", opening.propertyHelpKey},
        {"menuhelpkey", opening.menuHelpKey},
        {"ctlprotectstr", (opening.flags & OPEN_LOCK_DELETION) != 0 ? "1" : "0"},
    };
    for (const auto& [label, text] : labels) SETDESIGNTEXT(label, text);
    STAMP();
    SetFontName(DialogDlg, "");  // a dialog without a font of its own must not get that of the one before
    SetFontSize(DialogDlg, 0);
    STAMP();
}

void tellLoadError(const DialogOpening& opening, const std::string& error) {
    MSGBOX(DialogEditorTitle,
           "Can't load properties for '" + opening.dialog + "' from file '" + opening.file + "'.\n" + error);
}

// False, and told, if the dialog cannot be edited.
bool fillDialog(const DialogOpening& opening, const ObjectArray& objects) {
    FRAME(FILLDIALOG);
    STAMP();
    Clear(DATALIST());
    Clear(MENULIST());
    const LetterSize letter = LETTERSIZE(DialogDlg);
    std::string fault;
    for (const std::string& one : objects) {
        if (one.empty() || !fault.empty()) break;
        fault = positionFault(one, letter);
    }
    STAMP();
    if (!fault.empty()) return tellLoadError(opening, fault), false;
    fill(DATALIST(), objects);
    SELECTOBJECT(0);
    STAMP();
    return true;
}

// False if the user does not want the dialog without its menu.
bool fillMenu(const DialogOpening& opening, const std::string& menu) {
    FRAME(FILLMENU);
    if (menu.empty()) return true;
    ObjectArray objects;
    const std::string error = ResourceRead(opening.file, menu, objects);
    STAMP();
    fill(MENULIST(), objects);
    STAMP();
    if (error.empty()) return true;
    Sound();
    const std::string answer = MsgBox("Error",
                                      "An error occurred while loading the menu of '" + opening.dialog +
                                          "' from file '" + opening.file + "'.\n" + error +
                                          "\n\nDo you want to continue loading '" + opening.dialog + "'?\n",
                                      "&Yes\n&No", BoxIcon::Error);
    STAMP();
    return answer == "&Yes";
}

}  // namespace

void DIALOGOPEN(const DialogOpening& opening) {
    FRAME(DIALOGOPEN);
    STAMP();
    DIALOGSAVEIFMODIFIED();
    STAMP();
    if (DIALOGGETMODIFY() || opening.file.empty() || opening.dialog.empty()) return;
    ObjectArray objects;
    const std::string error = ResourceRead(opening.file, opening.dialog, objects);
    STAMP();
    if (!error.empty()) {
        tellLoadError(opening, error);
        objects.fill("");
    }
    STAMP();
    bool opened = !objects[0].empty();
    if (opened) {
        loadEditor(opening);
        opened = fillDialog(opening, objects) && fillMenu(opening, GETPROPVALUE(objects[0], "MENU"));
    }
    STAMP();
    if (!opened) {
        if (IsLoaded(DialogDlg)) Unload(DialogDlg);
        STAMP();
        return;
    }
    NOTEDIALOGSEEN(opening.file, opening.dialog);
    DIALOGHISTORYSTART((opening.flags & OPEN_AS_CHANGED) == 0);
    LIMITDESIGNSIZE(objects[0]);
    if ((opening.flags & OPEN_AS_CHANGED) != 0) DIALOGSETMODIFY(true);
    STAMP();
    DIALOGREDRAW();
    STAMP();
    Show(DialogDlg, (opening.flags & OPEN_MODAL) != 0);
    STAMP();
}

// ---- the rest of the environment ----

void OPENDIALOG(const std::string& file, const std::string& dialog, int flags) {
    FRAME(OPENDIALOG);
    const auto setting = [](std::string_view key) {
        return PROFILESTRGET(GETIDEINIFILE(), "GenOptionsDlg", key);
    };
    STAMP();
    DialogOpening opening;
    opening.caption = std::string(DialogEditorTitle) + " (" + dialog + ")";
    opening.helpFile = GETHELPFILE();
    opening.helpKey = DialogEditorTitle;
    opening.toolboxHelpKey = "Toolbox";
    opening.propertyHelpKey = "Properties";
    opening.menuHelpKey = "Menu Editor";
    const std::string width = setting("GridWidth"), height = setting("GridHeight");
    opening.grid = ISDIGITS(width) && ISDIGITS(height) ? width + " " + height : "0 0";
    opening.flags = flags;
    opening.file = file;
    opening.dialog = dialog;
    STAMP();
    DIALOGOPEN(opening);
}

void AUTOREFRESHPROJECT() {
    FRAME(AUTOREFRESHPROJECT);
    if (!IsLoaded(ProjectEditorDlg)) return;
    STAMP();
    const int button =
        GETVISUALOBJECTINFO(ApplicationResources(), ProjectEditorDlg.window(), "bitmapbutton1");
    STAMP();
    if (button != 0) Command(GetHandle(ProjectEditorDlg), button, "");
    STAMP();
}

}  // namespace tarn
