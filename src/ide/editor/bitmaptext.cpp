// SPDX-License-Identifier: GPL-3.0-or-later
#include "ide/editor/bitmaptext.h"

#include "ide/editor/lineends.h"
#include "ide/editor/textedit.h"
#include "ide/shell/idecore.h"
#include "ide/shell/windows.h"
#include "ide/shell/windowtable.h"
#include "library/dialogs/dialogshape.h"
#include "library/dialogs/dlgutil.h"
#include "library/source/bmptotxt.h"
#include "library/system/system.h"

MODULE("textedit", tarn::TEXTEDIT_ONERROR)

namespace tarn {
namespace {

const RegisteredWindow registered("ConvertBmpDlg", CONVERTBMPDLG);

std::string literal() {
    return GetText(FINDCONTROL(ConvertBmpDlg, "edit1"));
}

// Without a file in the Code window there is no caret.
void insertAtCaret() {
    if (EDITWNDGETFILENAME(SDIEdit).empty()) return Sound();
    const std::string text = literal();
    Unload(ConvertBmpDlg);
    SetSelText(SDIEdit, ADOPTLINEENDS(text, GetText(SDIEdit)));
}

constexpr DialogButton buttons[] = {
    {"pushbutton1", [](const Object&) { SetText(clipboard, STRNL2CRNL(literal())); }},
    {"pushbutton4", [](const Object&) { insertAtCaret(); }},
};
constexpr DialogShape shape{.ok = "", .showHelp = SHOWWINDOWHELP, .buttons = buttons};

}  // namespace

bool CONVERTBMPDLG(const Object& window, int event, const Object& control, int parameter) {
    FRAME(CONVERTBMPDLG);
    STAMP();
    const bool result = DIALOGSHAPEEVENT(shape, window, event, control, parameter);
    STAMP();
    return result;
}

void CONVERTBMPDIALOG(const std::string& file) {
    FRAME(CONVERTBMPDIALOG);
    STAMP();
    Load(ConvertBmpDlg);
    STAMP();
    const bool converted = BMPFILETOTEXT(file, FINDCONTROL(ConvertBmpDlg, "edit1"));
    STAMP();
    if (!converted) return Unload(ConvertBmpDlg);
    SetCaption(FINDCONTROL(ConvertBmpDlg, "label2"), PLAINCAPTION(file));
    SetEnabled(FINDCONTROL(ConvertBmpDlg, "pushbutton4"), !EDITWNDGETFILENAME(SDIEdit).empty());
    STAMP();
    Show(ConvertBmpDlg, true);
    STAMP();
}

}  // namespace tarn
