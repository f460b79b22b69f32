// SPDX-License-Identifier: GPL-3.0-or-later
#include "ide/editor/fileinfo.h"

#include "ide/editor/textedit.h"
#include "ide/shell/idecore.h"
#include "ide/shell/windows.h"
#include "ide/shell/windowtable.h"
#include "library/dialogs/dlgutil.h"
#include "library/settings/profstr.h"
#include "library/source/symbols.h"
#include "library/system/system.h"

MODULE("textedit", tarn::TEXTEDIT_ONERROR)

namespace tarn {

namespace {

std::string sizeText(const std::string& text) {
    const auto length = static_cast<int>(text.size());
    return STR(length) + (length == 1 ? " Byte" : " Bytes") + ", " + STR(STRLINES(text)) + " lines";
}

void fillFileInfo(const Object& dialog) {
    const std::string file = EDITWNDGETFILENAME(SDIEdit);
    const std::string text = GetText(SDIEdit);
    const std::string className = SYMGETCLASSNAME(0, text, ProductWord);
    const bool isMain = STRFIND("\nmain()\n", "\n" + SYMSCANSOURCE(text, 1024)) != 0;
    const std::string time = FILETIME(file);
    const std::pair<std::string_view, std::string> values[] = {
        {"label2", file},
        {"label4", className},
        {"label6", className.empty() ? ""
                   : isMain          ? "Main class"
                                     : "Non-main class"},
        {"label8", sizeText(text)},
        {"label10", time.empty() ? "(not saved)" : time},
        {"label12", STR(GetModify(SDIEdit) ? 1 : 0)},
        {"label14", FLAGSTOSTR(GetFlags(SDIEdit))},
    };
    for (const auto& [label, value] : values) SetCaption(FINDCONTROL(dialog, label), PLAINCAPTION(value));
}

}  // namespace

namespace {

const RegisteredWindow registered("FileInfoDlg", FILEINFODLG);

}  // namespace

bool FILEINFODLG(const Object& window, int event, const Object& control, int parameter) {
    FRAME(FILEINFODLG);
    STAMP();
    const std::string name = event == COMMAND_EVENT ? GetName(control) : "";
    const int key = event == KEYPRESS_EVENT ? parameter : 0;
    STAMP();
    if (event == LOAD_EVENT) fillFileInfo(window);
    if (key == KEY_F1 || name == "pushbutton3") SHOWHELP(HELPTOPIC(GetCaption(window)));
    STAMP();
    if (key == KEY_ESCAPE || name == "pushbutton1") Unload(window);
    STAMP();
    return event == LOAD_EVENT || event == COMMAND_EVENT || key == KEY_F1 || key == KEY_ESCAPE;
}

void FILEINFODIALOG() {
    FRAME(FILEINFODIALOG);
    STAMP();
    Load(FileInfoDlg);
    STAMP();
    Show(FileInfoDlg, true);
}

}  // namespace tarn
