// SPDX-License-Identifier: GPL-3.0-or-later
#include "ide/program/members/confirmremove.h"

#include "ide/program/projwindow.h"
#include "ide/shell/idecore.h"
#include "ide/shell/windowtable.h"
#include "library/dialogs/dialogshape.h"
#include "library/dialogs/dlgutil.h"
#include "library/settings/profstr.h"
#include "library/system/system.h"

MODULE("projedit", tarn::PROJECT_ONERROR)

namespace tarn {
namespace {

const Object ConfirmRemoveDlg("ConfirmRemoveDlg");
const RegisteredWindow registered("ConfirmRemoveDlg", CONFIRMREMOVEDLG);
constexpr const char* RemoveResult = "Remove";

Object part(std::string_view name) {
    return FINDCONTROL(ConfirmRemoveDlg, name);
}

void load(const Object& window) {
    LOADINIFILE(GETIDEINIFILE(), window, true, false);
}

// The only place that writes the result.
void accept(const Object& window) {
    SetCaption(part("lblresult"), RemoveResult);
    SAVEINIFILE(GETIDEINIFILE(), window, true, false);
}

constexpr DialogShape shape{.showHelp = SHOWWINDOWHELP, .load = load, .accept = accept, .hides = true};

void offer(std::string_view name, bool possible) {
    SetValue(part(name), 0);
    SetEnabled(part(name), possible);
}

bool isTicked(std::string_view name) {
    return GetEnabled(part(name)) && GetValue(part(name)) == 1;
}

}  // namespace

bool CONFIRMREMOVEDLG(const Object& window, int event, const Object& control, int parameter) {
    FRAME(CONFIRMREMOVEDLG);
    STAMP();
    const bool result = DIALOGSHAPEEVENT(shape, window, event, control, parameter);
    STAMP();
    return result;
}

RemoveChoice CONFIRMREMOVEDIALOG(const std::string& title, const std::string& text, bool canRemove,
                                 bool canDelete) {
    FRAME(CONFIRMREMOVEDIALOG);
    RemoveChoice choice;
    STAMP();
    Load(ConfirmRemoveDlg);
    STAMP();
    if (!IsLoaded(ConfirmRemoveDlg)) return choice;
    SetCaption(part("label1"), PLAINCAPTION(title));
    SetCaption(part("label2"), PLAINCAPTION(text));
    SetCaption(part("lblresult"), "");
    offer("checkbox1", canRemove);
    offer("checkbox2", canDelete);
    STAMP();
    Show(ConfirmRemoveDlg, true);
    STAMP();
    if (!IsLoaded(ConfirmRemoveDlg)) return choice;
    choice.remove = GetCaption(part("lblresult")) == RemoveResult;
    choice.alsoRemove = choice.remove && isTicked("checkbox1");
    choice.alsoDelete = choice.remove && isTicked("checkbox2");
    Unload(ConfirmRemoveDlg);
    STAMP();
    return choice;
}

}  // namespace tarn
