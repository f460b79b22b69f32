// SPDX-License-Identifier: GPL-3.0-or-later
#include "ide/menus/progmenu.h"

#include "ide/program/members/addclass.h"
#include "ide/program/members/adddialog.h"
#include "ide/program/members/addfile.h"
#include "ide/program/members/addresource.h"
#include "ide/program/members/removeitem.h"
#include "ide/program/members/showfiles.h"
#include "ide/program/progprops.h"
#include "ide/program/projedit.h"
#include "ide/program/projwindow.h"
#include "ide/ship/packager.h"
#include "library/system/system.h"

MODULE("progmenu", tarn::PROJECT_ONERROR)

namespace tarn {

// ---- add ----

void DO_ADD_CLASS() {
    FRAME(DO_ADD_CLASS);
    STAMP();
    PROJECTADDCLASS("Program-Add Class");
    STAMP();
}

void DO_ADD_RCFILE() {
    FRAME(DO_ADD_RCFILE);
    STAMP();
    PROJECTADDRESOURCE("Program-Add Resource File");
    STAMP();
}

void DO_ADD_DIALOG() {
    FRAME(DO_ADD_DIALOG);
    STAMP();
    PROJECTADDDIALOG("Program-Add Dialog Window");
    STAMP();
}

void DO_ADD_FILE() {
    FRAME(DO_ADD_FILE);
    STAMP();
    PROJECTADDFILE("Program-Add File");
    STAMP();
}

// ---- the program as it is ----

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

void DO_REMOVE_FILE() {
    FRAME(DO_REMOVE_FILE);
    STAMP();
    PROJECTITEMDELETE(ProjectEditorDlg);
    STAMP();
}

void DO_SHOW_INPUT() {
    FRAME(DO_SHOW_INPUT);
    STAMP();
    SHOWINPUTFILES("Program-Show Input Files", COMPILERGETMAINFILE());
    STAMP();
}

void DO_SHOW_OUTPUT() {
    FRAME(DO_SHOW_OUTPUT);
    STAMP();
    SHOWOUTPUTFILES("Program-Show Output Files", COMPILERGETMAINFILE());
    STAMP();
}

void DO_COPY_EXE() {
    FRAME(DO_COPY_EXE);
    STAMP();
    COPYEXE("Program-Copy EXE File", COMPILERGETMAINFILE());
    STAMP();
}

}  // namespace tarn
