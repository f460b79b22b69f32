// SPDX-License-Identifier: GPL-3.0-or-later
#include "ide/designer/dlgstep.h"

#include "ide/designer/dlgedit.h"
#include "ide/designer/dlghistory.h"
#include "ide/designer/objects/dlglock.h"
#include "ide/designer/objects/dlgmenu.h"
#include "ide/designer/properties/propwindow.h"
#include "ide/shell/windows.h"
#include "library/designer/proputil.h"
#include "library/system/system.h"

#include <algorithm>
#include <utility>

MODULE("dlgedit")

namespace tarn {

Object DESIGNCONTROL(std::string_view name) {
    return FINDCONTROL(DialogDlg, name);
}

std::string DESIGNTEXT(std::string_view label) {
    FRAME(DESIGNTEXT);
    if (!IsLoaded(DialogDlg)) return {};
    STAMP();
    return GetCaption(DESIGNCONTROL(label));
}

void SETDESIGNTEXT(std::string_view label, std::string_view text) {
    FRAME(SETDESIGNTEXT);
    if (!IsLoaded(DialogDlg)) return;
    STAMP();
    SetCaption(DESIGNCONTROL(label), text);
}

std::vector<int> DESIGNNUMBERS(std::string_view label) {
    FRAME(DESIGNNUMBERS);
    STAMP();
    const std::string text = DESIGNTEXT(label);
    std::vector<int> numbers;
    for (std::size_t at = 1; at <= text.size();) {
        const std::size_t before = at;
        const int number = GETINT(text, at);
        if (at == before) break;
        numbers.push_back(number);
    }
    return numbers;
}

void SETDESIGNNUMBERS(std::string_view label, const std::vector<int>& numbers) {
    FRAME(SETDESIGNNUMBERS);
    STAMP();
    std::string text;
    for (const int number : numbers) text += (text.empty() ? "" : " ") + STR(number);
    SETDESIGNTEXT(label, text);
    STAMP();
}

void DESIGNHELP(const std::string& helpFile, const std::string& helpKey) {
    FRAME(DESIGNHELP);
    constexpr int showTopic = 257;
    STAMP();
    MULTIHELP(0, helpFile, showTopic, helpKey);
}

// ---- the lists ----

namespace {

std::string withoutLineEnd(std::string properties) {
    if (properties.ends_with('\n')) properties.pop_back();
    return properties;
}

}  // namespace

Object DATALIST() {
    return DESIGNCONTROL("datalist");
}

Object MENULIST() {
    return DESIGNCONTROL("menulist");
}

std::string DESIGNITEM(int index) {
    FRAME(DESIGNITEM);
    if (!IsLoaded(DialogDlg)) return {};
    STAMP();
    const Object list = index == -1 ? MENULIST() : DATALIST();
    const int item = index == -1 ? 1 : index;
    return item >= 1 && item <= GetListCount(list) ? GETDESIGNITEM(list, item) : std::string();
}

std::string GETDESIGNITEM(const Object& list, int item) {
    FRAME(GETDESIGNITEM);
    STAMP();
    return GetList(list, item) + "\n";
}

void SETDESIGNITEM(const Object& list, int item, std::string properties) {
    FRAME(SETDESIGNITEM);
    STAMP();
    SetList(list, item, withoutLineEnd(std::move(properties)));
    STAMP();
}

void ADDDESIGNITEM(const Object& list, std::string properties) {
    FRAME(ADDDESIGNITEM);
    STAMP();
    AddItem(list, withoutLineEnd(std::move(properties)));
    STAMP();
}

// ---- changes ----

namespace {

std::vector<std::string> itemsOf(const Object& list) {
    std::vector<std::string> items(static_cast<std::size_t>(GetListCount(list)));
    for (std::size_t i = 0; i < items.size(); ++i) items[i] = GetList(list, static_cast<int>(i) + 1);
    return items;
}

bool sameContent(const DesignLists& a, const DesignLists& b) {
    return a.dialog == b.dialog && a.menu == b.menu;
}

int stepDepth = 0;

}  // namespace

DesignLists DESIGNLISTS() {
    FRAME(DESIGNLISTS);
    if (!IsLoaded(DialogDlg)) return {};
    STAMP();
    std::vector<int> others = SELECTEDOBJECTS();
    if (!others.empty()) others.erase(others.begin());
    STAMP();
    return {itemsOf(DATALIST()), itemsOf(MENULIST()), SELECTEDOBJECT(), others};
}

bool DESIGNSTEP(const std::function<void()>& action) {
    FRAME(DESIGNSTEP);
    if (!IsLoaded(DialogDlg)) return false;
    STAMP();
    const DesignLists before = DESIGNLISTS();
    const int dialog = DIALOGHISTORYNUMBER();
    ++stepDepth;
    action();
    --stepDepth;
    STAMP();
    if (!IsLoaded(DialogDlg) || dialog != DIALOGHISTORYNUMBER()) return false;
    const DesignLists after = DESIGNLISTS();
    if (sameContent(before, after)) return false;
    STAMP();
    if (stepDepth == 0) {
        CARRYLOCKS(before, after);
        DIALOGSETMODIFY(true);
        NOTEDESIGNSTEP(before, after);
    }
    STAMP();
    return true;
}

bool INDESIGNSTEP() {
    return stepDepth > 0;
}

// ---- the selection ----

int SELECTEDOBJECT() {
    FRAME(SELECTEDOBJECT);
    bool ok = false;
    const int index = CVTI(DESIGNTEXT("hilite1"), ok);
    return ok ? index : 0;
}

std::string OBJECTTITLE(int index) {
    FRAME(OBJECTTITLE);
    STAMP();
    const std::string list = DESIGNITEM(index);
    return list.empty() ? "" : GETPROPVALUE(list, "NAME") + ":" + GETPROPVALUE(list, "TYPEOF");
}

namespace {

bool isControl(int index) {
    return index > 1 && index <= GetListCount(DATALIST());
}

void addOnce(std::vector<int>& indexes, int index) {
    if (std::find(indexes.begin(), indexes.end(), index) == indexes.end()) indexes.push_back(index);
}

std::string hintFor(const std::vector<int>& selected) {
    if (selected.empty()) return {};
    const std::string title = OBJECTTITLE(selected[0]);
    if (title.empty()) return {};
    const std::string hint = "Selected: " + STRREPLACE(title, ":", ", ");
    return selected.size() == 1 ? hint
                                : hint + ", and " + STR(static_cast<int>(selected.size()) - 1) + " more";
}

}  // namespace

std::vector<int> SELECTEDOBJECTS() {
    FRAME(SELECTEDOBJECTS);
    const int first = SELECTEDOBJECT();
    STAMP();
    if (first == 0) return {};
    std::vector<int> selected = {first};
    if (!isControl(first)) return selected;
    for (const int index : DESIGNNUMBERS("hilites"))
        if (isControl(index)) addOnce(selected, index);
    STAMP();
    return selected;
}

void SELECTOBJECTS(const std::vector<int>& indexes) {
    FRAME(SELECTOBJECTS);
    if (!IsLoaded(DialogDlg)) return;
    STAMP();
    std::vector<int> selected;
    for (const int index : indexes)
        if (indexes.size() == 1 || isControl(index)) addOnce(selected, index);
    STAMP();
    SETDESIGNTEXT("hilite1", STR(selected.empty() ? 0 : selected[0]));
    if (!selected.empty()) selected.erase(selected.begin());
    SETDESIGNNUMBERS("hilites", selected);
    SetHint(DialogDlg, hintFor(SELECTEDOBJECTS()));
    UPDATEDIALOGMENU();
    STAMP();
    REFRESHPROPERTYWINDOW();
}

void SELECTOBJECT(int index) {
    FRAME(SELECTOBJECT);
    STAMP();
    SELECTOBJECTS({index});
    STAMP();
}

}  // namespace tarn
