// SPDX-License-Identifier: GPL-3.0-or-later
#include "ide/menus/editmenu.h"

#include "ide/designer/dlgchanges.h"
#include "ide/designer/dlgedit.h"
#include "ide/designer/dlghistory.h"
#include "ide/designer/drawing/dlgpreview.h"
#include "ide/designer/objects/dlgclip.h"
#include "ide/editor/restore.h"
#include "ide/shell/undomenu.h"
#include "ide/shell/windows.h"
#include "library/system/system.h"

MODULE("editmenu")

namespace tarn {

void DO_UNDO_TYPING() {
    FRAME(DO_UNDO_TYPING);
    STAMP();
    if (DIALOGISINFRONT()) return DIALOGUNDO();
    if (!CANUNDOTYPING()) return Sound();
    Undo(SDIEdit);
    STAMP();
}

void DO_REDO_TYPING() {
    FRAME(DO_REDO_TYPING);
    STAMP();
    if (DIALOGISINFRONT()) return DIALOGREDO();
    if (!CANREDOTYPING()) return Sound();
    Redo(SDIEdit);
    STAMP();
}

void DO_UNDO(const std::string& title, const std::string& backupFile, const Object& timerLabel) {
    FRAME(DO_UNDO);
    STAMP();
    Precondition(STREQUAL(GetTypeof(timerLabel), "Label"));
    STAMP();
    RESTOREFROMBACKUP(title, backupFile, timerLabel);
}

void DO_PROPERTIES() {
    FRAME(DO_PROPERTIES);
    STAMP();
    if (!DIALOGISINFRONT()) return Sound();
    STAMP();
    DIALOGEDITSELECTED();
}

void DO_DIALOG_CHANGES() {
    FRAME(DO_DIALOG_CHANGES);
    STAMP();
    SHOWSAVECHANGES();
}

void DO_DIALOG_PREVIEW() {
    FRAME(DO_DIALOG_PREVIEW);
    STAMP();
    SHOWPREVIEW();
}

void DO_DIALOG_DUPLICATE() {
    FRAME(DO_DIALOG_DUPLICATE);
    STAMP();
    DIALOGDUPLICATE();
}

}  // namespace tarn
