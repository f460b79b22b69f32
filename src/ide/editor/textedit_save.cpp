// SPDX-License-Identifier: GPL-3.0-or-later
//
// How the text of the Code window gets to the disk, and what is asked before: the name, what another program has written
// meanwhile, the name of the class in the text, changes that would be lost.
#include "ide/editor/textedit.h"

#include "ide/debug/codemarks.h"
#include "ide/editor/recentfiles.h"
#include "ide/editor/seenfile.h"
#include "ide/shell/idecore.h"
#include "ide/shell/rescue.h"
#include "ide/shell/windows.h"
#include "library/source/symbols.h"
#include "library/system/system.h"

#include <iterator>

MODULE("textedit", tarn::TEXTEDIT_ONERROR)

namespace tarn {

namespace {

std::string proposedName(const Object& window, const std::string& name) {
    if (name != Untitled) return name;
    const std::string folder = FILEADDSEPARATOR(GETCURDIR());
    const std::string className = SYMGETCLASSNAME(0, GetText(window), ProductWord);
    if (!className.empty()) return folder + className + std::string(ClassExtension);
    return FILETEMPNAME(folder, STRNAMECASE("new"), ".txt");
}

// The name to save under; empty when the user cancels.
std::string askForName(const Object& window, const std::string& name) {
    return SaveAsDialog("Save File", proposedName(window, name), "Class (*.cls)|*.cls|All files (*)|*|");
}

bool isClassName(const std::string& name) {
    constexpr std::size_t Most = 40;
    return name.size() <= Most && STRTOIDENTIFIER(name, "", "_") == name && !ISRESERVEDWORD(name) &&
           !ISFUTURERESERVEDWORD(name);
}

// Brings the class name in the text into line with the file's, if the user wants that; false on Cancel.
bool agreeOnClassName(const Object& window, const std::string& file) {
    if (!ISCLASSFILE(file)) return true;
    std::string text = GetText(window);
    const std::string base = FILEBASENAME(file);
    const std::string className = SYMGETCLASSNAME(0, text, ProductWord);
    if (className.empty() || STREQUAL(className, base)) return true;
    if (!isClassName(base))
        return MsgBox("Save File",
                      "The classname '" + className + "' does not match the file being saved (" + base +
                          ".cls).\nIt cannot be changed to match, because '" + base +
                          "' is no name of a class.",
                      "&Save\n&Cancel", BoxIcon::Question) == "&Save";
    const int answer = MsgBoxEx("Save File",
                                "The classname '" + className + "' does not match the file being saved (" +
                                    base + ".cls).\nDo you want the classname to be changed to match?",
                                3 + 32);
    if (answer == 7) return true;
    if (answer != 6) return false;
    const std::string error = SYMSETCLASSNAME(base, 0, ProductWord, text);
    if (!error.empty()) MSGBOX("Save File", error);
    if (!EDITWNDHASROOM(window, std::ssize(text) - GetTextLength(window))) return false;
    EDITWNDCHANGETEXT(window, text);
    SetModify(window, true);
    return true;
}

bool writeText(const Object& window, const std::string& file) {
    if (!SAVEFILE(file, GetText(window))) return false;
    DROPRESCUEDTEXT(file);
    EDITWNDNOTELOADED(window, file);
    return true;
}

// What another program has written meanwhile, or what stood there when the window got the name, goes only if the user says so.
bool maySaveOver(const Object& window, const std::string& file) {
    if (!CHANGEDOUTSIDE(window, file)) return true;
    NOTECHANGEASKED(window, file);
    const std::string what =
        ISFILEUNSEEN(window, file)
            ? "The following file exists, and its text is another one:"
            : "The following file was changed by another program after it was read here:";
    return MsgBox("File-Save",
                  what + "\n\n\t" + file + "\n\nTo keep both, cancel and use File-Save As with another name.",
                  "&Save over it\n&Cancel", BoxIcon::Warning) == "&Save over it";
}

// Cancel leaves the text with a name that the user has chosen and with nothing stored under it.
void keepNameAlone(const Object& window, const std::string& file) {
    SetModify(window, true);
    NOTEFILEUNSEEN(window, file);
}

// A text that could not be stored under its new name keeps the old one, and the class in it too.
void takeBackName(const Object& window, const std::string& name, const std::string& text) {
    EDITWNDCHANGETEXT(window, text);
    SetModify(window, true);
    EDITWNDSETFILENAME(window, name);
    EDITWNDSETTOKENS(window, GETTOKENLEVEL());
}

}  // namespace

void EDITWNDSAVE(const Object& window, bool saveAs) {
    FRAME(EDITWNDSAVE);
    const FileWork work;
    STAMP();
    const std::string before = EDITWNDGETFILENAME(window);
    if (before.empty()) return MSGBOX("File-Save", "There is no file to save.");
    const std::string textBefore = GetText(window);
    std::string file = before;
    STAMP();
    if (before == Untitled || saveAs) file = askForName(window, before);
    bool go = !file.empty();
    STAMP();
    if (go && file != before) {
        EDITWNDSETFILENAME(window, file);
        EDITWNDSETTOKENS(window, GETTOKENLEVEL());
    }
    STAMP();
    go = go && (file != before || maySaveOver(window, file));
    STAMP();
    go = go && agreeOnClassName(window, file);
    STAMP();
    const bool written = go && writeText(window, file);
    STAMP();
    if (go && !written) takeBackName(window, before, textBefore);
    if (!go && !file.empty() && file != before) keepNameAlone(window, file);
    STAMP();
    if (written && file != before) SAVEMRUITEM(GETIDEINIFILE(), "MRU", 5, file);
    if (written && file == before) KEEPBREAKPOINTS(window);
    if (written && file != before) SHOWBREAKPOINTS(window);
    STAMP();
    DRAWMODIFYINDICATOR(window);
}

void EDITWNDCLOSE(const Object& window, bool hide) {
    FRAME(EDITWNDCLOSE);
    const FileWork work;
    STAMP();
    if (!IsLoaded(window)) return;
    bool discard = false;
    if (GetModify(window)) {
        const std::string answer = MsgBox(
            "Save Changes?",
            EDITWNDGETFILENAME(window) + "\nThis file has been changed. Do you want to save the changes?",
            "&Yes\n&No\n&Cancel", BoxIcon::Question);
        STAMP();
        if (answer == "&Yes") EDITWNDSAVE(window, false);
        discard = answer == "&No";
    }
    STAMP();
    if (!discard && GetModify(window)) return;
    if (discard) DROPRESCUEDTEXT(EDITWNDGETFILENAME(window));
    if (hide) Hide(window);
    STAMP();
    INITFILE(window);
}

}  // namespace tarn
