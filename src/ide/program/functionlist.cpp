// SPDX-License-Identifier: GPL-3.0-or-later
#include "ide/program/functionlist.h"

#include "ide/editor/textedit.h"
#include "ide/shell/idecore.h"
#include "ide/shell/windows.h"
#include "ide/shell/windowtable.h"
#include "library/dialogs/dialogshape.h"
#include "library/settings/profstr.h"
#include "library/source/symbols.h"
#include "library/system/system.h"
#include "os/text/ascii.h"

#include <algorithm>

MODULE("viewmenu")

namespace tarn {
namespace {

// What the source scan is asked for.
enum ScanFlag : int { Parentheses = 1024, Lines = 2048, EventHandlers = 4096, Declarations = 8192 };

int wantedItems(const Object& window) {
    return (GetValue(FINDCONTROL(window, "checkbox1")) != 0 ? EventHandlers : 0) |
           (GetValue(FINDCONTROL(window, "checkbox2")) != 0 ? Declarations : 0);
}

struct Place {
    std::string name;
    int line = 0;  // 0: there is none
};

Place placeOf(const std::string& listed) {
    Place place{STRWORD(listed, 1), 0};
    bool ok = false;
    const int line = CVTI(STRWORD(listed, 2), ok);
    if (ok) place.line = line;
    return place;
}

int lineOfCaret() {
    const std::string text = GetText(SDIEdit);
    const auto before = std::min(static_cast<std::size_t>(GetSelection(SDIEdit).start - 1), text.size());
    return static_cast<int>(
               std::count(text.begin(), text.begin() + static_cast<std::ptrdiff_t>(before), '\n')) +
           1;
}

// The row of the last item that begins at or above the caret, the first one where there is none.
int rowOfCaret(int items) {
    const std::string places = SYMSCANSOURCE(GetText(SDIEdit), Lines | items);
    const int caret = lineOfCaret();
    int row = places.empty() ? 0 : 1, n = 0;
    for (std::string_view rest = places; !rest.empty();) {
        ++n;
        if (placeOf(std::string(ascii::takeLine(rest))).line <= caret) row = n;
    }
    return row;
}

void fillList(const Object& window) {
    const Object list = FINDCONTROL(window, "listbox1");
    const int items = wantedItems(window);
    const std::string functions = SYMSCANSOURCE(GetText(SDIEdit), Parentheses | items);
    Clear(list);
    for (std::string_view rest = functions; !rest.empty();)
        AddItem(list, ascii::withoutLineEnd(ascii::takeLine(rest)));
    SetListIndex(list, rowOfCaret(items));
}

// Goes to the line of the row that is chosen and closes; without one the window stays.
void goToFunction(const Object& window) {
    const int row = GetListIndex(FINDCONTROL(window, "listbox1"));
    const std::string places = SYMSCANSOURCE(GetText(SDIEdit), Lines | wantedItems(window));
    const Place place = placeOf(STRLINE(places, row));
    if (place.line == 0) return Sound();
    EDITWNDSELECTLINE(SDIEdit, place.line);
    Unload(window);
    Show(SDIEdit, false);
}

constexpr DialogShape shape{.showHelp = SHOWWINDOWHELP, .load = [](const Object& window) {
                                LOADINIFILE(GETIDEINIFILE(), window);
                                fillList(window);
                            }};
const RegisteredWindow registered("GotoFuncDlg", GOTOFUNCDLG);

bool handle(const Object& window, int event, const Object& control, int parameter) {
    const std::string name = event == COMMAND_EVENT || event == DBLCLICK_EVENT ? GetName(control) : "";
    if (event == CLOSE_EVENT) {
        SAVEINIFILE(GETIDEINIFILE(), window);  // also when nothing was chosen
        return false;
    }
    if (name == "pushbutton1" || (event == DBLCLICK_EVENT && name == "listbox1"))
        goToFunction(window);
    else if (name == "checkbox1" || name == "checkbox2")
        fillList(window);
    else
        return DIALOGSHAPEEVENT(shape, window, event, control, parameter);
    return true;
}

}  // namespace

bool GOTOFUNCDLG(const Object& window, int event, const Object& control, int parameter) {
    FRAME(GOTOFUNCDLG);
    STAMP();
    const bool result = handle(window, event, control, parameter);
    STAMP();
    return result;
}

void GOTOFUNCDIALOG() {
    FRAME(GOTOFUNCDIALOG);
    STAMP();
    if (EDITWNDGETFILENAME(SDIEdit).empty()) return Sound();
    Load(GotoFuncDlg);
    STAMP();
    Show(GotoFuncDlg, true);
    STAMP();
}

}  // namespace tarn
