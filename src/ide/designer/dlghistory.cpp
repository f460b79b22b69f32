// SPDX-License-Identifier: GPL-3.0-or-later
//
//   the steps      DesignHistory, on lists alone
//   the window     the history of the dialog that is open, and undo and redo in its window
#include "ide/designer/dlghistory.h"

#include "ide/designer/dlgedit.h"
#include "ide/designer/listdelta.h"
#include "ide/designer/objects/dlglock.h"
#include "ide/designer/objects/dlgtab.h"
#include "ide/shell/undomenu.h"
#include "ide/shell/windows.h"
#include "library/system/system.h"

#include <functional>

MODULE("dlgedit")

namespace tarn {

// ---- the steps ----

namespace {

std::size_t digestOf(const DesignLists& lists) {
    std::size_t digest = lists.dialog.size();
    for (const auto* list : {&lists.dialog, &lists.menu})
        for (const std::string& item : *list)
            digest = digest * 0x9e3779b97f4a7c15U + std::hash<std::string>()(item);
    return digest;
}

// A signed number as one from 0 on.
std::size_t folded(int number) {
    return number < 0 ? static_cast<std::size_t>(-(static_cast<long>(number) + 1)) * 2 + 1
                      : static_cast<std::size_t>(number) * 2;
}
int unfolded(std::size_t number) {
    const auto half = static_cast<int>(number / 2);
    return number % 2 == 1 ? -half - 1 : half;
}

std::string selectionText(const DesignLists& lists) {
    std::string bytes;
    PUTNUMBER(bytes, folded(lists.selection));
    for (const int other : lists.others) PUTNUMBER(bytes, folded(other));
    return bytes;
}

void setSelection(DesignLists& lists, std::string_view bytes) {
    lists.selection = unfolded(TAKENUMBER(bytes));
    lists.others.clear();
    while (!bytes.empty()) lists.others.push_back(unfolded(TAKENUMBER(bytes)));
}

constexpr std::size_t NodeSize = 96;  // of a kept text beside its bytes

}  // namespace

DesignHistory::Texts::iterator DesignHistory::keep(std::string text) {
    const auto [place, isNew] = texts_.try_emplace(std::move(text), 0);
    ++place->second;
    if (isNew) bytes_ += place->first.size() + NodeSize;
    return place;
}

void DesignHistory::letGo(Texts::iterator text) {
    if (--text->second > 0) return;
    bytes_ -= text->first.size() + NodeSize;
    texts_.erase(text);
}

DesignHistory::Side DesignHistory::sideOf(const DesignLists& from, const DesignLists& to) {
    const std::string dialog = LISTDELTA(from.dialog, to.dialog);
    std::string lists;
    PUTNUMBER(lists, dialog.size());
    lists += dialog + LISTDELTA(from.menu, to.menu);
    return {keep(std::move(lists)), keep(selectionText(to))};
}

void DesignHistory::drop(const Step& step) {
    for (const Side& side : {step.back, step.forth}) {
        letGo(side.lists);
        letGo(side.selection);
    }
    bytes_ -= sizeof(Step);
}

void DesignHistory::clear() {
    steps_.clear();
    texts_.clear();
    done_ = bytes_ = 0;
}

void DesignHistory::trim() {
    while (steps_.size() > mostSteps_ || (steps_.size() > 1 && bytes_ > mostBytes_)) {
        drop(steps_.front());
        steps_.pop_front();
        --done_;
    }
}

void DesignHistory::note(const DesignLists& before, const DesignLists& after) {
    while (steps_.size() > done_) {
        drop(steps_.back());
        steps_.pop_back();
    }
    if (digestOf(before) != present_) clear();
    steps_.push_back({sideOf(after, before), sideOf(before, after)});
    bytes_ += sizeof(Step);
    done_ = steps_.size();
    present_ = digestOf(after);
    trim();
}

std::optional<DesignLists> DesignHistory::go(const DesignLists& now, const Side& side) {
    if (digestOf(now) != present_) return clear(), std::nullopt;
    std::string_view bytes = side.lists->first;
    const std::size_t size = TAKENUMBER(bytes);
    const std::string_view dialog = bytes.substr(0, size), menu = bytes.substr(dialog.size());
    DesignLists lists{DELTAAPPLIED(now.dialog, dialog), DELTAAPPLIED(now.menu, menu), 0, {}};
    setSelection(lists, side.selection->first);
    present_ = digestOf(lists);
    return lists;
}

std::optional<DesignLists> DesignHistory::undo(const DesignLists& now) {
    if (!canUndo()) return std::nullopt;
    std::optional<DesignLists> lists = go(now, steps_[done_ - 1].back);
    if (lists) --done_;
    return lists;
}

std::optional<DesignLists> DesignHistory::redo(const DesignLists& now) {
    if (!canRedo()) return std::nullopt;
    std::optional<DesignLists> lists = go(now, steps_[done_].forth);
    if (lists) ++done_;
    return lists;
}

// ---- the window ----

namespace {

struct OpenDialog {
    DesignHistory history;
    std::optional<std::size_t> inFile;  // the digest of what the file has; none if that is unknown
    ResourcePast past;
    int number = 0;
};

OpenDialog& opened() {
    static OpenDialog dialog;
    return dialog;
}

// Writes what differs, so that a step on one object touches one entry.
void store(const Object& list, const std::vector<std::string>& items) {
    for (int item = GetListCount(list); item > static_cast<int>(items.size()); --item) RemoveItem(list, item);
    const int there = GetListCount(list);
    for (int item = 1; const std::string& text : items) {
        if (item > there)
            AddItem(list, text);
        else if (GetList(list, item) != text)
            SetList(list, item, text);
        ++item;
    }
}

void show(const DesignLists& lists) {
    FRAME(SHOW);
    CARRYLOCKS(DESIGNLISTS(), lists);
    STAMP();
    store(DATALIST(), lists.dialog);
    store(MENULIST(), lists.menu);
    STAMP();
    std::vector<int> selected = {lists.selection};
    selected.insert(selected.end(), lists.others.begin(), lists.others.end());
    SELECTOBJECTS(selected);
    STAMP();
    DIALOGSETMODIFY(digestOf(lists) != opened().inFile);
    STAMP();
    DIALOGREDRAW();
    STAMP();
    UPDATEUNDOTYPINGITEMS();
    STAMP();
}

using Direction = std::optional<DesignLists> (DesignHistory::*)(const DesignLists& now);

void go(Direction direction) {
    FRAME(GO);
    if (!IsLoaded(DialogDlg) || INDESIGNSTEP() || TABORDERISON()) return Sound();
    STAMP();
    const std::optional<DesignLists> lists = (opened().history.*direction)(DESIGNLISTS());
    if (!lists) {
        Sound();
        UPDATEUNDOTYPINGITEMS();
        return;
    }
    STAMP();
    show(*lists);
}

}  // namespace

void DIALOGHISTORYSTART(bool inFile) {
    FRAME(DIALOGHISTORYSTART);
    STAMP();
    OpenDialog& dialog = opened();
    dialog.history.clear();
    dialog.past.clear();
    dialog.inFile.reset();
    ++dialog.number;
    if (inFile) dialog.inFile = digestOf(DESIGNLISTS());
    STAMP();
    UPDATEUNDOTYPINGITEMS();
    STAMP();
}

void DIALOGHISTORYEND() {
    opened().history.clear();
    opened().past.clear();
    ++opened().number;
}

void DIALOGHISTORYSAVED() {
    FRAME(DIALOGHISTORYSAVED);
    STAMP();
    opened().inFile = digestOf(DESIGNLISTS());
}

void DIALOGHISTORYAPART() {
    opened().inFile.reset();
}

ResourcePast& DIALOGHISTORYPAST() {
    return opened().past;
}

int DIALOGHISTORYNUMBER() {
    return opened().number;
}

void NOTEDESIGNSTEP(const DesignLists& before, const DesignLists& after) {
    FRAME(NOTEDESIGNSTEP);
    STAMP();
    opened().history.note(before, after);
    UPDATEUNDOTYPINGITEMS();
    STAMP();
}

bool DIALOGCANUNDO() {
    FRAME(DIALOGCANUNDO);
    STAMP();
    return IsLoaded(DialogDlg) && opened().history.canUndo();
}

bool DIALOGCANREDO() {
    FRAME(DIALOGCANREDO);
    STAMP();
    return IsLoaded(DialogDlg) && opened().history.canRedo();
}

void DIALOGUNDO() {
    FRAME(DIALOGUNDO);
    STAMP();
    go(&DesignHistory::undo);
    STAMP();
}

void DIALOGREDO() {
    FRAME(DIALOGREDO);
    STAMP();
    go(&DesignHistory::redo);
    STAMP();
}

}  // namespace tarn
