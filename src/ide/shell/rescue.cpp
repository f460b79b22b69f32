// SPDX-License-Identifier: GPL-3.0-or-later
#include "ide/shell/rescue.h"

#include "ide/designer/dlgchanges.h"
#include "ide/designer/dlgedit.h"
#include "ide/editor/textedit.h"
#include "ide/shell/windows.h"
#include "library/system/system.h"
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

std::vector<std::string> rescuedFiles() {
    std::vector<std::string> names;
    os::files().list(os::rescueFolder(), names);
    for (std::string& name : names) name = os::rescueFolder() + name;
    return names;
}

// A failure is no reason to disturb the user: the file is offered again.
void removePair(const std::string& stem) {
    os::files().remove(stem + std::string(nameEnd));
    os::files().remove(stem + std::string(textEnd));
}

// Shows the rescued text as an unsaved change of its file; false if the user keeps another text.
bool bringBack(const std::string& file, const std::string& text) {
    EDITWNDNEW(SDIEdit, "");
    if (EDITWNDGETFILENAME(SDIEdit) != Untitled) return false;
    EDITWNDSETFILENAME(SDIEdit, file);
    EDITWNDSETTOKENS(SDIEdit, GETTOKENLEVEL());
    SetText(SDIEdit, text);
    SetModify(SDIEdit, true);
    SETMODIFYPRIVATE(SDIEdit, true);
    DRAWMODIFYINDICATOR(SDIEdit);
    Show(SDIEdit, false);
    return true;
}

bool offerPair(const std::string& stem) {
    std::string file, text;
    const bool whole = os::readFile(stem + std::string(nameEnd), file) == os::FileError::None &&
                       os::readFile(stem + std::string(textEnd), text) == os::FileError::None;
    if (!whole) return false;
    const std::string answer = MsgBox(
        "Rescued Text",
        "The environment was stopped while the following file had unsaved changes:\n\n\t'" + file +
            "'\n\nIts text was kept. Restore it as an unsaved change, delete it, or be asked again at the "
            "next start?",
        "&Restore\n&Delete\n&Later", BoxIcon::Question);
    if (answer == "&Delete") removePair(stem);
    return answer == "&Restore" && bringBack(file, text);
}

void removeCopy(const std::string& copy) {
    os::files().remove(copy);
    os::files().remove(os::rescueNameFile(copy));
}

// A copy that a save left because it was interrupted while it wrote the file in place. It comes back as a change
// of that file; one whose name was lost opens as it is.
bool offerCopy(const std::string& copy) {
    std::string file, text;
    const bool named = os::readFile(os::rescueNameFile(copy), file) == os::FileError::None && !file.empty() &&
                       os::readFile(copy, text) == os::FileError::None;
    const std::string answer =
        MsgBox("Rescued Text",
               "A save was interrupted before it had finished. The whole text was kept in the "
               "following file:\n\n\t'" +
                   copy + "'\n\n" + (named ? "It belongs to:\n\n\t'" + file + "'\n\n" : "") +
                   "Open it, delete it, or be asked again at the next start?",
               "&Open\n&Delete\n&Later", BoxIcon::Question);
    if (answer == "&Delete") removeCopy(copy);
    if (answer != "&Open") return false;
    if (named) return bringBack(file, text);
    EDITWNDOPEN(SDIEdit, copy, false, 0);
    return EDITWNDGETFILENAME(SDIEdit) == copy;
}

bool isRescueName(const std::string& path) {
    return FILEGETFNAME(path).starts_with('.') && path.ends_with(nameEnd);
}

}  // namespace

namespace {

void keep(const std::string& file, const std::string& text) {
    const std::string stem = rescueStem(file);
    os::makeFolders(os::rescueFolder());
    // The name first: a text that is there at all can then be given back to its file.
    if (os::saveFile(stem + std::string(nameEnd), file).ok() &&
        !os::saveFile(stem + std::string(textEnd), text).ok())
        removePair(stem);
}

}  // namespace

void RESCUETEXT() {
    if (IsLoaded(SDIEdit) && GetModify(SDIEdit)) keep(EDITWNDGETFILENAME(SDIEdit), GetText(SDIEdit));
    if (!DIALOGGETMODIFY()) return;
    const SaveTexts dialog = SAVETEXTS();
    if (dialog.error.empty() && dialog.after != dialog.before) keep(DIALOGGETFILENAME(), dialog.after);
}

bool OFFERRESCUEDTEXT() {
    FRAME(OFFERRESCUEDTEXT);
    bool shown = false;
    for (const std::string& path : rescuedFiles()) {
        STAMP();
        if (shown) break;  // the others are offered at the next start: one text fits in the window
        // Those that the answer to another question has deleted are not asked about any more.
        if (isRescueName(path) || !os::infoOf(path).exists) continue;
        const std::string stem = path.substr(0, path.size() - textEnd.size());
        const bool hasName = os::infoOf(stem + std::string(nameEnd)).exists;
        if (path.ends_with(nameEnd))
            shown = offerPair(stem);
        else if (!path.ends_with(textEnd) || !hasName)
            shown = offerCopy(path);
    }
    STAMP();
    return shown;
}

void DROPRESCUEDTEXT(const std::string& file) {
    FRAME(DROPRESCUEDTEXT);
    for (const std::string& path : rescuedFiles()) {
        std::string name;
        const bool pair = path.ends_with(nameEnd) && !isRescueName(path);
        const std::string nameFile = pair ? path : os::rescueNameFile(path);
        if (os::readFile(nameFile, name) != os::FileError::None || name != file) continue;
        if (pair)
            removePair(path.substr(0, path.size() - nameEnd.size()));
        else
            removeCopy(path);
    }
}

}  // namespace tarn
