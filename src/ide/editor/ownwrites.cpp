// SPDX-License-Identifier: GPL-3.0-or-later
#include "ide/editor/ownwrites.h"

#include "ide/editor/seenfile.h"
#include "ide/editor/sourcefile.h"
#include "ide/editor/textedit.h"
#include "ide/shell/windows.h"
#include "library/system/system.h"
#include "os/files.h"

MODULE("textedit", tarn::TEXTEDIT_ONERROR)

namespace tarn {

bool SETTLECODEWINDOW(const std::string& file) {
    FRAME(SETTLECODEWINDOW);
    STAMP();
    if (!ISINEDITOR(file)) return true;
    const auto differs = [&] { return GetModify(SDIEdit) || CHANGEDOUTSIDE(SDIEdit, file); };
    if (differs()) EDITWNDSAVE(SDIEdit, false);
    STAMP();
    return !differs();
}

bool ASKCODEWINDOW(const std::string& file) {
    FRAME(ASKCODEWINDOW);
    STAMP();
    if (!ISINEDITOR(file)) return true;
    const bool unsaved = GetModify(SDIEdit);
    if (unsaved &&
        MsgBox("Save Changes?", file + "\nThis file has been changed. Do you want to save the changes?",
               "&Yes\n&Cancel", BoxIcon::Question) != "&Yes")
        return false;
    STAMP();
    return SETTLECODEWINDOW(file);
}

void SHOWOWNWRITE(const std::string& file) {
    FRAME(SHOWOWNWRITE);
    STAMP();
    std::string text;
    if (!ISINEDITOR(file) || GetModify(SDIEdit) ||
        os::readFile(os::native(file), text) != os::FileError::None)
        return;
    STAMP();
    if (text != GetText(SDIEdit)) EDITWNDCHANGETEXT(SDIEdit, text);
    STAMP();
    EDITWNDNOTELOADED(SDIEdit, EDITWNDGETFILENAME(SDIEdit));
    STAMP();
}

}  // namespace tarn
