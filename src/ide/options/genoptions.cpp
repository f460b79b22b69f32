// SPDX-License-Identifier: GPL-3.0-or-later
#include "ide/options/genoptions.h"

#include "ide/program/projwindow.h"
#include "ide/shell/idecore.h"
#include "ide/shell/windows.h"
#include "ide/shell/windowtable.h"
#include "library/dialogs/dialogshape.h"
#include "library/settings/profstr.h"
#include "library/system/system.h"

MODULE("toolmenu")

namespace tarn {
namespace {

constexpr std::string_view products[] = {" Developer Studio v", " Developer Belvedere v"};

std::string stored(std::string_view key) {
    return PROFILESTRGET(GETIDEINIFILE(), "GenOptionsDlg", key);
}

// The start takes the first action that is on, so that is the one to show.
void showOpeningAction(const Object& window) {
    for (int i = 4; i >= 0; i--) {
        const std::string name = "rbStartup" + STR(i);
        if (stored(name) == "1") SetValue(FINDCONTROL(window, name), 1);
    }
}

void load(const Object& window) {
    const Object captions = FINDCONTROL(window, "combo1");
    for (const std::string_view product : products)
        AddItem(captions, std::string(ProductWord) + std::string(product) + std::string(ProductVersion));
    LOADINIFILE(GETIDEINIFILE(), window);
    showOpeningAction(window);
}

constexpr DialogShape shape{.showHelp = SHOWWINDOWHELP, .load = load, .accept = [](const Object& window) {
                                SAVEINIFILE(GETIDEINIFILE(), window);
                            }};
const RegisteredWindow registered("GenOptionsDlg", GENOPTIONSDLG);

void setDesignGrid() {
    const std::string width = stored("GridWidth"), height = stored("GridHeight");
    if (!IsLoaded(DialogDlg) || !ISDIGITS(width) || !ISDIGITS(height)) return;
    SetCaption(FINDCONTROL(DialogDlg, "gridstr"), width + " " + height);
}

}  // namespace

bool GENOPTIONSDLG(const Object& window, int event, const Object& control, int parameter) {
    FRAME(GENOPTIONSDLG);
    STAMP();
    const bool result = DIALOGSHAPEEVENT(shape, window, event, control, parameter);
    STAMP();
    return result;
}

void GENOPTIONSDIALOG(const Object& mainWindow) {
    FRAME(GENOPTIONSDIALOG);
    STAMP();
    Load(GenOptionsDlg);
    STAMP();
    Show(GenOptionsDlg, true);
    STAMP();
    setDesignGrid();
    STAMP();
    if (IsLoaded(ProjectEditorDlg)) PROJECTREFRESH(ProjectEditorDlg);
    STAMP();
    SetCaption(mainWindow, GETMAINCAPTIONSTR());
    STAMP();
}

}  // namespace tarn
