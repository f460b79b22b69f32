// SPDX-License-Identifier: GPL-3.0-or-later
#include "ide/rescue.h"

#include "ide/textedit.h"
#include "ide/windows.h"
#include "library/system.h"
#include "os/files.h"

#include <unistd.h>

#include <vector>

MODULE("rescue")

namespace tarn {
namespace {

constexpr std::string_view textEnd = ".text", nameEnd = ".name";

std::string rescueStem(const std::string& file) {
    const std::string base = file == Untitled ? "untitled" : FILEGETFNAME(file);
    return os::rescueFolder() + base + "." + STR(static_cast<int>(getpid()));
}

// Shows the rescued text as an unsaved change of its file.
bool bringBack(const std::string& file, const std::string& text) {
    EDITWNDCLOSE(SDIEdit, false);
    if (!EDITWNDGETFILENAME(SDIEdit).empty()) return false;
    if (file != Untitled && FileSize(file) >= 0) EDITWNDOPEN(SDIEdit, file, false, 0);
    else EDITWNDNEW(SDIEdit, "");
    if (EDITWNDGETFILENAME(SDIEdit).empty()) return false;
    if (file != Untitled) SetCaption(SDIEdit, file);
    SetText(SDIEdit, text);
    SetModify(SDIEdit, true);
    SETMODIFYPRIVATE(SDIEdit, true);
    DRAWMODIFYINDICATOR(SDIEdit);
    Show(SDIEdit, false);
    return true;
}

void offer(const std::string& stem) {
    std::string file, text;
    const bool whole = os::readFile(stem + std::string(nameEnd), file) == os::FileError::None &&
                       os::readFile(stem + std::string(textEnd), text) == os::FileError::None;
    if (!whole) return;
    const std::string answer = MsgBox(
        "Rescued Text",
        "The environment was stopped by an error while the following file had unsaved changes:\n\n\t'" + file +
            "'\n\nIts text was kept. Restore it as an unsaved change, delete it, or be asked again at the next start?",
        "&Restore\n&Delete\n&Later", BoxIcon::Question);
    const bool restored = answer == "&Restore" && bringBack(file, text);
    if (!restored && answer != "&Delete") return;
    FILEDELETE(stem + std::string(nameEnd));
    FILEDELETE(stem + std::string(textEnd));
}

// A copy that a save left because it was interrupted while it wrote the file in place.
void offerCopy(const std::string& copy) {
    const std::string answer = MsgBox("Rescued Text",
                                      "A save was interrupted while it wrote its file in place. The whole new text was "
                                      "kept in the following file:\n\n\t'" +
                                          copy + "'\n\nOpen it, delete it, or be asked again at the next start?",
                                      "&Open\n&Delete\n&Later", BoxIcon::Question);
    if (answer == "&Open") EDITWNDOPEN(SDIEdit, copy, false, 0);
    if (answer == "&Delete") FILEDELETE(copy);
}

}  // namespace

void RESCUETEXT() {
    if (!IsLoaded(SDIEdit) || !GetModify(SDIEdit)) return;
    const std::string file = EDITWNDGETFILENAME(SDIEdit);
    const std::string stem = rescueStem(file);
    os::makeFolders(os::rescueFolder());
    if (os::saveFile(stem + std::string(textEnd), GetText(SDIEdit)).ok())
        static_cast<void>(os::saveFile(stem + std::string(nameEnd), file));
}

void OFFERRESCUEDTEXT() {
    FRAME(OFFERRESCUEDTEXT);
    std::vector<std::string> names;
    os::files().list(os::rescueFolder(), names);
    for (const std::string& name : names) {
        STAMP();
        const std::string path = os::rescueFolder() + name;
        if (name.ends_with(nameEnd)) offer(path.substr(0, path.size() - nameEnd.size()));
        else if (!name.ends_with(textEnd)) offerCopy(path);
    }
    STAMP();
}

}  // namespace tarn
