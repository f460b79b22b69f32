// SPDX-License-Identifier: GPL-3.0-or-later
//
// The dialog editor: a dialog of a resource file as two lists of property lists, held by invisible controls of the
// window DialogDlg. There is no other store; every operation reads them.
//
//   datalist       item 1 the dialog, then its controls; later ones lie on top of earlier ones
//   menulist       item 1 the menu, then its items; empty without a menu
//   hilite1        the selected object: 0 none, 1 the dialog, n > 1 item n of datalist, -1 the menu
//   hilites        the controls that are selected beside it, parted by blanks
//   locks          those that are locked (dlglock.h)
//   taborder       the clicks of a new order, while there are some (dlgtab.h)
//   sclacross, scldown   how far the design is scrolled (drawing/dlgview.h)
//   marginstr, modestr, gridstr, linkstr, ctlprotectstr, changedflag, resourcedir, compilerdir, rcfile, dlgname,
//   helpfile, helpkey, prophelpkey, menuhelpkey
//
// Errors are texts in boxes; none of these operations leaves a file damaged. A save writes the lines that have changed,
// and asks before it writes over what another program has made of the dialog meanwhile.
//
//   dlgedit.cpp    opening, the picture, the changed state
//   dlgevents.cpp  the window's events: the table of its keys
//   dlgsave.cpp    saving and closing
//
// The lists change through DESIGNSTEP (dlgstep.h) alone. Cost: a read or a write of the resource file, and a redraw.
#pragma once

#include "ide/designer/drawing/geometry.h"
#include "kernel/windows/windowing.h"

#include <string>

namespace tarn {

struct DesignPicture;

inline constexpr int OPEN_MODAL = 1;          // no Toolbox; shown modally
inline constexpr int OPEN_LOCK_DELETION = 2;  // objects cannot be deleted
inline constexpr int OPEN_AS_CHANGED = 4;     // marked as changed

struct DialogOpening {
    std::string caption, helpFile, helpKey, toolboxHelpKey, propertyHelpKey, menuHelpKey;
    std::string grid;  // "4 4"
    int flags = 0;
    std::string file, dialog;
};
// Asks about changes of the dialog that is open, which stays if they do. A dialog that cannot be read is told, and closes
// the editor; one whose menu cannot be read is opened without it if the user wants that.
void DIALOGOPEN(const DialogOpening& opening);
// With the captions, help keys and the grid of the environment's settings.
void OPENDIALOG(const std::string& file, const std::string& dialog, int flags = 0);

void DIALOGSAVE();                // the dialog stays marked as changed where it could not be saved
bool DIALOGSAVEIFMODIFIED();      // asks first; always true: DIALOGGETMODIFY tells what the user chose
std::string DIALOGGETFILENAME();  // empty if no dialog is open
std::string DIALOGGETDLGNAME();
bool DIALOGGETMODIFY();
void DIALOGSETMODIFY(bool changed);
// The mark in the caption of a window, and the flag in its check box.
void SETCHANGEDFLAG(const Object& window, const Object& checkbox, bool changed);

// Asks about changes. True: the window may go.
bool DIALOGMAYCLOSE();

// The user was in the dialog editor last, and its window is there.
bool DIALOGISINFRONT();
// As the keys F2 and Delete do.
void DIALOGEDITSELECTED();
void DIALOGDELETESELECTED();
void DIALOGSELECTALL();  // all controls

// The window's events, by a table.
bool DIALOGDLG(const Object& window, int event, const Object& control, int parameter);

// Redraws the open dialog from its lists.
void DIALOGREDRAW();
DesignPicture DIALOGPICTURE();  // what it draws; empty lists without a dialog
Margin DIALOGGETMARGIN();       // around the picture in the window; what is scrolled out of it counts below 0
int DIALOGGETMODE();            // which parts of the frame are drawn: a FrameMode
bool DIALOGDRAWING();           // a redraw is under way, which may give the window another size

// Tells the Program Window, if it is there, to read its files again.
void AUTOREFRESHPROJECT();

}  // namespace tarn
