// SPDX-License-Identifier: GPL-3.0-or-later
#include "ide/options/editoroptions.h"

#include "ide/editor/backup.h"
#include "ide/editor/textedit.h"
#include "ide/options/colours.h"
#include "ide/shell/idecore.h"
#include "ide/shell/windows.h"
#include "ide/shell/windowtable.h"
#include "library/data/dbutil_windows.h"
#include "library/dialogs/dialogshape.h"
#include "library/dialogs/dlgutil.h"
#include "library/settings/profstr.h"
#include "library/system/system.h"

MODULE("toolmenu")

namespace tarn {
namespace {

// The settings of highlighting and their controls.
constexpr struct {
    std::string_view key, list, radio, label;
} kinds[] = {{"Keywords", "lstkeywords", "rbkeywords1", "lblkeywords"},
             {"Strings", "lststrings", "rbstrings1", "lblstrings"},
             {"Comments", "lstcomments", "rbcomments1", "lblcomments"},
             {"FutureKeywords", "lstfuturekeywords", "rbfuturekeywords1", "lblfuturekeywords"}};

constexpr struct {
    std::string_view control, name;
    int most;
} numbers[] = {{"autobackupinterval", "Minutes between backups", 60},
               {"autobackupmaxfiles", "Backups kept of a file", 99}};

Object in(const Object& window, std::string_view control) {
    return FINDCONTROL(window, control);
}

bool isOn(const Object& window, std::string_view control) {
    return GetValue(in(window, control)) != 0;
}

void enableColours(const Object& window) {
    SETENABLEDRANGE(window, in(window, "rbkeywords1"), in(window, "lstfuturekeywords"),
                    isOn(window, "hiliteon"));
}

void load(const Object& window) {
    LOADINIFILE(GETIDEINIFILE(), window);
    const std::string section = "Hilite" + std::string(ClassExtension);
    for (const auto& kind : kinds) {
        const Object list = in(window, kind.list);
        ADDCOLORITEMS(list);
        LOADHILITEVALUES(GETIDEINIFILE(), section, kind.key, list, in(window, kind.radio),
                         in(window, kind.label));
    }
    enableColours(window);
}

std::string problem(const Object& window) {
    for (const auto& number : numbers) {
        const std::string fault = DLGCHECKINTFIELD(in(window, number.control), number.name, 0, number.most);
        if (!fault.empty()) return fault;
    }
    return {};
}

// Writes the colours that have changed into the sections of all languages; true if there were any.
bool saveColours(const Object& window) {
    const std::string file = GETIDEINIFILE(), sections = PROFILESTRSECTIONS(file);
    bool any = false;
    for (const auto& kind : kinds) {
        const Object list = in(window, kind.list), radio = in(window, kind.radio);
        if (!HILITEVALUESCHANGED(list, radio, in(window, kind.label))) continue;
        any = true;
        for (int i = 1; i <= STRLINES(sections); i++) {
            const std::string section = STRLINE(sections, i);
            if (STREQUAL(STRLEFT(section, 6), "Hilite"))
                SAVEHILITEVALUES(file, section, kind.key, list, radio);
        }
    }
    return any;
}

void accept(const Object& window) {
    const bool hilite = isOn(window, "hiliteon");
    const bool switched = hilite != (GETTOKENLEVEL() == 1);
    const bool recoloured = saveColours(window);
    if (IsLoaded(SDIEdit)) {
        EDITWNDSETSTATUS(SDIEdit, isOn(window, "statusbaron"));
        EDITWNDSETNUMBERS(SDIEdit, isOn(window, "numberbaron"));
        EDITWNDSETAUTOINDENT(SDIEdit, isOn(window, "autoindenton"));
        if (switched || recoloured) EDITWNDSETTOKENS(SDIEdit, hilite ? 1 : 0);
    }
    SAVEINIFILE(GETIDEINIFILE(), window);
}

constexpr DialogShape shape{.showHelp = SHOWWINDOWHELP, .load = load, .problem = problem, .accept = accept};
const RegisteredWindow registered("EditorOptionsDlg", EDITOROPTIONSDLG);

bool isNumber(std::string_view control) {
    for (const auto& number : numbers)
        if (number.control == control) return true;
    return false;
}

bool handle(const Object& window, int event, const Object& control, int parameter) {
    const std::string name = event == COMMAND_EVENT || event == CHANGE_EVENT ? GetName(control) : "";
    if (event == CHANGE_EVENT && isNumber(name)) {
        const std::string text = GetText(control);
        if (!text.empty() && !ISDIGITS(text)) Sound();
    } else if (name == "hiliteon") {
        enableColours(window);
    } else if (name == "btnautobackupdelete") {
        EDITWNDDELETEBACKUPS(GetCaption(window));
    } else {
        return DIALOGSHAPEEVENT(shape, window, event, control, parameter);
    }
    return true;
}

}  // namespace

bool EDITOROPTIONSDLG(const Object& window, int event, const Object& control, int parameter) {
    FRAME(EDITOROPTIONSDLG);
    STAMP();
    const bool result = handle(window, event, control, parameter);
    STAMP();
    return result;
}

void EDITOROPTIONSDIALOG(const Object& mainWindow, const Object& timerLabel) {
    FRAME(EDITOROPTIONSDIALOG);
    STAMP();
    const int before = EDITWNDGETINTERVAL();
    Load(EditorOptionsDlg);
    STAMP();
    const int ok = in(EditorOptionsDlg, shape.ok).number();
    const bool accepted = Show(EditorOptionsDlg, true) == ok;
    STAMP();
    if (!accepted) return;
    EDITWNDSETMAXSIZE(SDIEdit, mainWindow);
    STAMP();
    const int now = EDITWNDGETINTERVAL();
    if (now == before) return;
    EDITWNDKILLTIMER(SDIEdit, timerLabel);
    STAMP();
    EDITWNDSETTIMER(SDIEdit, timerLabel, now);
    STAMP();
}

}  // namespace tarn
