// SPDX-License-Identifier: GPL-3.0-or-later
#include "ide/menus/helpmenu.h"

#include "ide/shell/about.h"
#include "ide/shell/idecore.h"
#include "ide/shell/welcome.h"
#include "library/system/product.h"
#include "library/system/system.h"

MODULE("helpmenu")

namespace tarn {

void DO_FILECONTENTS() {
    FRAME(DO_FILECONTENTS);
    STAMP();
    SHOWHELP("Help File Contents");
}

void DO_FILEINDEX() {
    FRAME(DO_FILEINDEX);
    STAMP();
    SHOWHELP("Help_Index");
}

void DO_USING_HELP() {
    FRAME(DO_USING_HELP);
    STAMP();
    SHOWHELP("Help_Using Help");
}

void DO_DEVELOPER_ENV() {
    FRAME(DO_DEVELOPER_ENV);
    STAMP();
    SHOWHELP("Developer Environment");
}

void DO_KEYBOARD() {
    FRAME(DO_KEYBOARD);
    STAMP();
    SHOWHELP("Help_Keyboard Commands");
}

void DO_GETTING_STARTED() {
    FRAME(DO_GETTING_STARTED);
    STAMP();
    SHOWHELP("Getting Started");
}

void DO_EXAMPLE_PROGS() {
    FRAME(DO_EXAMPLE_PROGS);
    STAMP();
    SHOWHELP("Help_Example Programs");
}

void DO_HOW_DO_I() {
    FRAME(DO_HOW_DO_I);
    STAMP();
    SHOWHELP("Help_How Do I");
}

void DO_COMPILER_ERRORS() {
    FRAME(DO_COMPILER_ERRORS);
    STAMP();
    SHOWHELP("Help_Compiler Errors");
}

void DO_RUN_TIME_ERRORS() {
    FRAME(DO_RUN_TIME_ERRORS);
    STAMP();
    SHOWHELP("Help_Run-time Errors");
}

void DO_TECH_SUPPORT() {
    FRAME(DO_TECH_SUPPORT);
    STAMP();
    SHOWHELP("Help_Technical Support");
}

void DO_WELCOME() {
    FRAME(DO_WELCOME);
    STAMP();
    WELCOMEDIALOG();
    STAMP();
}

void DO_ABOUT(const Object& mainWindow) {
    FRAME(DO_ABOUT);
    STAMP();
    Precondition(IsLoaded(mainWindow));
    STAMP();
    ABOUTDIALOG("Help-About", std::string(ProductIcon), GETABOUTTEXT(), GETABOUTBOXBUTTONS());
    STAMP();
}

void DO_PRODUCTS(const std::string& title) {
    FRAME(DO_PRODUCTS);
    STAMP();
    const std::string website = GETWEBSITE();
    if (website.empty())
        return MSGBOX(
            title,
            "There is no address of a website in the settings.\nPut one there, in the section 'Product' "
            "under 'Website'.");
    OPENBROWSER(0, website);
    STAMP();
}

}  // namespace tarn
