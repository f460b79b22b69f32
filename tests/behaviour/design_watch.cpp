// SPDX-License-Identifier: GPL-3.0-or-later
#include "behaviour/design_watch.h"

#include "ide/designer/dlgchanges.h"
#include "ide/designer/dlgedit.h"
#include "ide/designer/dlghistory.h"
#include "ide/designer/objects/dlgtab.h"
#include "ide/shell/windows.h"
#include "kernel/windows/resources.h"
#include "library/designer/proputil.h"
#include "platform/resources/properties.h"

#include <algorithm>

namespace tarn {
namespace {

constexpr int MostSteps = 1000;  // that the editor keeps

bool dialogIsOpen() {
    return IsLoaded(DialogDlg) && !DESIGNITEM(1).empty();
}

// The first object that differs, as both have it; empty if none does.
std::string firstDifference(const std::string& what, const std::vector<std::string>& a,
                            const std::vector<std::string>& b) {
    for (std::size_t i = 0; i < std::max(a.size(), b.size()); ++i) {
        const std::string left = i < a.size() ? a[i] : "(none)", right = i < b.size() ? b[i] : "(none)";
        if (left != right)
            return what + ", object " + std::to_string(i + 1) + ":\n" + left + "\n---- but expected ----\n" +
                   right;
    }
    return "";
}

std::string difference(const std::string& what, const DesignLists& a, const DesignLists& b) {
    const std::string dialog = firstDifference(what, a.dialog, b.dialog);
    return dialog.empty() ? firstDifference(what + ", menu", a.menu, b.menu) : dialog;
}

// The objects as entries of a list have them.
std::string inFile(const std::string& file, const std::string& name, std::vector<std::string>& items) {
    ObjectArray objects;
    const std::string error = ResourceRead(file, name, objects);
    for (const std::string& one : objects) {
        if (one.empty()) break;
        items.push_back(one.ends_with('\n') ? one.substr(0, one.size() - 1) : one);
    }
    return error;
}

// What the editor adds has its choices and empty texts in another form ("1-Yes") than what a file has.
void normalise(std::vector<std::string>& items) {
    for (std::string& item : items) {
        const platform::ParsedList list = platform::parsePropertyList(item + "\n");
        item = platform::makePropertyList(list.name, list.type, list.properties);
    }
}

}  // namespace

void DesignWatch::fileIsForeign() {
    foreign_ = FILETEXT(DIALOGGETFILENAME());
}

std::string DesignWatch::compare() const {
    DesignLists file, now = DESIGNLISTS();
    const std::string error = inFile(DIALOGGETFILENAME(), GETPROPVALUE(DESIGNITEM(1), "NAME"), file.dialog);
    if (!error.empty()) return "the dialog is not in its file: " + error;
    const std::string menu = GETPROPVALUE(DESIGNITEM(1), "MENU");
    // A menu that could not be read stays away from the editor.
    if (menu.empty() || now.menu.empty())
        file.menu = now.menu;
    else if (const std::string fault = inFile(DIALOGGETFILENAME(), menu, file.menu); !fault.empty())
        return "the menu is not in its file: " + fault;
    for (auto* items : {&file.dialog, &file.menu, &now.dialog, &now.menu}) normalise(*items);
    return difference("the file", file, now);
}

void DesignWatch::meet() {
    number_ = DIALOGHISTORYNUMBER();
    foreign_.reset();
    bytes_.clear();
    wasChanged_ = DIALOGGETMODIFY();
    opening_.reset();
    if (!DIALOGCANUNDO()) opening_ = DESIGNLISTS();
}

std::string DesignWatch::look() {
    if (!dialogIsOpen()) return number_ = -1, "";
    if (DIALOGHISTORYNUMBER() != number_) meet();
    const std::string bytes = FILETEXT(DIALOGGETFILENAME());
    const bool changed = DIALOGGETMODIFY(), news = wasChanged_ || bytes != bytes_;
    wasChanged_ = changed;
    bytes_ = bytes;
    if (changed || !news || bytes == foreign_) return "";
    foreign_.reset();
    return compare();
}

std::string DesignWatch::undoAll() {
    if (!dialogIsOpen() || DIALOGHISTORYNUMBER() != number_ || !opening_ || TABORDERISON()) return "";
    const DesignLists before = DESIGNLISTS();
    int steps = 0;
    for (; DIALOGCANUNDO() && steps <= MostSteps; ++steps) DIALOGUNDO();
    const std::string back = steps < MostSteps ? difference("undo of all", DESIGNLISTS(), *opening_) : "";
    for (int step = 0; step < steps; ++step) DIALOGREDO();
    return back.empty() ? difference("redo of all", DESIGNLISTS(), before) : back;
}

}  // namespace tarn
