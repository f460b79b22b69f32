// SPDX-License-Identifier: GPL-3.0-or-later
#include "ide/menus/progmenu.h"

#include "ide/program/projwindow.h"
#include "library/system/system.h"

MODULE("progmenu")

namespace tarn {

void DO_REFRESH() {
    FRAME(DO_REFRESH);
    STAMP();
    PROJECTREFRESH(ProjectEditorDlg);
    STAMP();
}

}  // namespace tarn
