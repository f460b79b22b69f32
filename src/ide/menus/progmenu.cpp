// SPDX-License-Identifier: GPL-3.0-or-later
#include "ide/menus/progmenu.h"

#include "ide/program/progprops.h"
#include "ide/program/projedit.h"
#include "ide/program/projwindow.h"
#include "ide/ship/packager.h"
#include "library/system/system.h"

MODULE("progmenu")

namespace tarn {

void DO_EDIT_PROPERTIES() {
    FRAME(DO_EDIT_PROPERTIES);
    STAMP();
    const std::string mainFile = PROJECTGETMAINFILE();
    STAMP();
    PROGRAMPROPERTIESDIALOG("Program-Edit Program Properties", mainFile, FIRSTVERSIONINFO(mainFile));
    STAMP();
}

void DO_REFRESH() {
    FRAME(DO_REFRESH);
    STAMP();
    PROJECTREFRESH(ProjectEditorDlg);
    STAMP();
}

void DO_COPY_EXE() {
    FRAME(DO_COPY_EXE);
    STAMP();
    COPYEXE("Program-Copy EXE File", COMPILERGETMAINFILE());
    STAMP();
}

}  // namespace tarn
