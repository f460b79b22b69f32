// SPDX-License-Identifier: GPL-3.0-or-later
#include "ide/designer/dlgstep.h"

#include "ide/designer/dlgedit.h"
#include "ide/shell/windows.h"
#include "library/designer/proputil.h"
#include "library/system/system.h"

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

std::string DESIGNITEM(int index) {
    FRAME(DESIGNITEM);
    if (!IsLoaded(DialogDlg)) return {};
    STAMP();
    const Object list = DESIGNCONTROL(index == -1 ? "menulist" : "datalist");
    const int item = index == -1 ? 1 : index;
    return item >= 1 && item <= GetListCount(list) ? GetList(list, item) + "\n" : std::string();
}

void DESIGNHELP(const std::string& helpFile, const std::string& helpKey) {
    FRAME(DESIGNHELP);
    constexpr int showTopic = 257;
    STAMP();
    MULTIHELP(0, helpFile, showTopic, helpKey);
}

// ---- the lists ----

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
    return {itemsOf(DESIGNCONTROL("datalist")), itemsOf(DESIGNCONTROL("menulist")), SELECTEDOBJECT()};
}

bool DESIGNSTEP(const std::function<void()>& action) {
    FRAME(DESIGNSTEP);
    if (!IsLoaded(DialogDlg)) return false;
    STAMP();
    const DesignLists before = DESIGNLISTS();
    ++stepDepth;
    action();
    --stepDepth;
    STAMP();
    if (!IsLoaded(DialogDlg) || sameContent(before, DESIGNLISTS())) return false;
    if (stepDepth == 0) DIALOGSETMODIFY(true);
    STAMP();
    return true;
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

void SELECTOBJECT(int index) {
    FRAME(SELECTOBJECT);
    if (!IsLoaded(DialogDlg)) return;
    STAMP();
    SETDESIGNTEXT("hilite1", STR(index));
    const std::string title = OBJECTTITLE(index);
    SetHint(DialogDlg, title.empty() ? "" : "Selected: " + STRREPLACE(title, ":", ", "));
    STAMP();
}

}  // namespace tarn
