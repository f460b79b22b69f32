// SPDX-License-Identifier: GPL-3.0-or-later
#include "ide/program/testtemplate.h"

#include "ide/build/toolrun.h"
#include "ide/editor/lineends.h"
#include "ide/editor/textedit.h"
#include "ide/shell/idecore.h"
#include "ide/shell/windows.h"
#include "ide/shell/windowtable.h"
#include "library/designer/propedit_sheet.h"
#include "library/dialogs/dialogshape.h"
#include "library/dialogs/dlgutil.h"
#include "library/source/codewiz.h"
#include "library/system/system.h"

MODULE("codewiz", tarn::TOOL_ONERROR)

namespace tarn {
namespace {

const Object TemplateTextDlg("TemplateTextDlg");
constexpr const char* Title = "Tools-Test Template";
constexpr const char* CodeFont = "monospace";  // what the desktop has under that name

constexpr DialogShape shape{.ok = "", .showHelp = SHOWWINDOWHELP};
const RegisteredWindow registered("TemplateTextDlg", TEMPLATETEXTDLG);

Object part(std::string_view name) {
    return FINDCONTROL(TemplateTextDlg, name);
}

void tell(const std::string& message) {
    MsgBox(Title, message, "OK", BoxIcon::Error);
}

// Without a file in the Code window there is no caret.
void insertAtCaret() {
    const std::string text = GetText(part("edit1"));
    if (EDITWNDGETFILENAME(SDIEdit).empty()) return Sound();
    if (!EDITWNDHASROOM(SDIEdit, static_cast<std::int64_t>(text.size()))) return;
    Unload(TemplateTextDlg);
    SetSelText(SDIEdit, ADOPTLINEENDS(text, GetText(SDIEdit)));
}

void showText(const std::string& section, const std::string& text) {
    Load(TemplateTextDlg);
    STAMP();
    if (!IsLoaded(TemplateTextDlg)) return;
    SetCaption(part("label2"), PLAINCAPTION(section));
    SetFontName(part("edit1"), CodeFont);
    SetText(part("edit1"), text);
    SetEnabled(part("pushbutton4"), !EDITWNDGETFILENAME(SDIEdit).empty());
    STAMP();
    Show(TemplateTextDlg, true);
}

}  // namespace

TemplateChoice OPENTEMPLATEDIALOG(std::string filename) {
    FRAME(OPENTEMPLATEDIALOG);
    STAMP();
    if (filename.empty())
        filename =
            OpenFileDialog(Title, FILEGETDIR(GETIDEINIFILE()) + "*.ini", "Template files (*.ini)|*.ini|");
    if (filename.empty()) return {};
    STAMP();
    if (FileSize(filename) <= 0) {
        tell("Can't load INI file '" + filename + "'\nFile is empty or does not exist.");
        return {};
    }
    const std::string sections = TEMPLATESECTIONS(filename);
    STAMP();
    if (sections.empty()) {
        tell("INI file '" + filename + "' contains no templates.");
        return {};
    }
    const std::string section = LISTBOX(Title, "Choose a template from the list below:", sections);
    STAMP();
    if (section.empty()) return {};
    return {filename, section};
}

std::string TESTTEMPLATE(const std::string& filename, const std::string& section) {
    FRAME(TESTTEMPLATE);
    STAMP();
    const TemplateText loaded = LOADTEMPLATE(filename, section);
    STAMP();
    if (!loaded.message.empty()) {
        tell(loaded.message);
        return {};
    }
    TemplateParameters list = TEMPLATETOPROPLIST(loaded.text);
    STAMP();
    if (!list.names.empty() &&
        !PROPERTIESDIALOG(section, GETHELPFILE(), HELPTOPIC(Title), list.names, list.types, list.values))
        return {};
    STAMP();
    const TemplateText result = UPDATETEMPLATE(list, loaded.text, false);
    STAMP();
    if (!result.message.empty())
        tell(result.message);
    else
        showText(section, result.text);
    STAMP();
    return result.text;
}

bool TEMPLATETEXTDLG(const Object& window, int event, const Object& control, int parameter) {
    FRAME(TEMPLATETEXTDLG);
    STAMP();
    const std::string name = event == COMMAND_EVENT ? GetName(control) : "";
    if (name == "pushbutton1") SetText(clipboard, STRNL2CRNL(GetText(part("edit1"))));
    STAMP();
    if (name == "pushbutton4") insertAtCaret();
    STAMP();
    const bool own = name == "pushbutton1" || name == "pushbutton4";
    const bool result = own || DIALOGSHAPEEVENT(shape, window, event, control, parameter);
    STAMP();
    return result;
}

}  // namespace tarn
