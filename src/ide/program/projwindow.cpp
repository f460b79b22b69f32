// SPDX-License-Identifier: GPL-3.0-or-later
#include "ide/program/projwindow.h"

#include "ide/build/compiler.h"
#include "ide/build/toolrun.h"
#include "ide/program/projlive.h"
#include "ide/shell/ide.h"
#include "ide/shell/idecore.h"
#include "library/system/system.h"

#include <algorithm>

MODULE("projedit", tarn::PROJECT_ONERROR)

namespace tarn {

void PROJECT_ONERROR(std::int32_t code) {
    const bool tool = code >= 901 && code <= 909;
    return tool || ISFILEERROR(code) ? TOOL_ONERROR(code) : IDE_ONERROR(code);
}

namespace {

struct Controls {
    Object mainFile, rows, map, data;
    bool complete = false;
};

Controls controlsOf(const Object& window) {
    Controls found;
    if (!IsLoaded(window)) return found;
    const auto find = [&](std::string_view name, std::string_view type, Object& control) {
        control = FINDCONTROL(window, name);
        return !control.empty() && STREQUAL(GetTypeof(control), type);
    };
    found.complete = find("Mainfile", "Label", found.mainFile) && find("Iconlist1", "Iconlist", found.rows) &&
                     find("Maplist1", "Iconlist", found.map) && find("Datalist1", "Iconlist", found.data);
    return found;
}

int numberOfRow(const Object& map, int row) {
    bool ok = false;
    const int number = row < 1 || row > GetListCount(map) ? 0 : CVTI(GetList(map, row), ok);
    return ok ? number : 0;
}

ProjectItem itemAt(const Object& data, int number) {
    return PARSEPROJECTITEM(GetList(data, number));
}

// Only the level of an item, without reading the rest.
int levelAt(const Object& data, int number) {
    const std::string line = GetList(data, number);
    std::size_t position = 1;
    bool ok = false;
    const int level = CVTI(NextWord(line, position), ok);
    return ok ? level : 0;
}

// The pictures are resources of this program, whose names have no extension.
std::string resourceOf(std::string_view picture) {
    return FILEBASENAME(picture);
}

std::string pictureOf(const ProjectItem& item, bool open) {
    return resourceOf(open && !item.openPicture.empty() ? item.openPicture : item.picture);
}

std::string joined(const std::vector<std::string>& items) {
    std::string text;
    for (const std::string& item : items) text += item + "\n";
    return text;
}

bool isLabel(const Object& control) {
    return !control.empty() && STREQUAL(GetTypeof(control), "Label");
}

}  // namespace

// ---- the window ----

namespace {

// What stands in the list until it is made.
void showLoading(const Object& window) {
    const Object rows = FINDCONTROL(window, "Iconlist1");
    Clear(rows);
    AddItem(rows, "Loading.....", resourceOf("class0.bmp"));
}

}  // namespace

void PROJECTOPEN(const Object& window, const std::string& caption, const std::string& mainFile,
                 const Object& label) {
    FRAME(PROJECTOPEN);
    STAMP();
    if (!IsLoaded(window)) Load(window);
    STAMP();
    Show(window, false);
    SetCaption(window, caption);
    showLoading(window);
    STAMP();
    const DependencyList list = LOADDEPLIST(mainFile, "/fs", true);
    STAMP();
    if (!IsLoaded(window)) return;
    if (!list.error.empty()) {
        Clear(FINDCONTROL(window, "Iconlist1"));
        MSGBOX(caption, "The Program Window cannot be opened or updated.\n" + list.error);
        return Unload(window);
    }
    NOTEPROJECTFILES(window, list.files);
    const std::vector<std::string> items = MAKEPROJECTLIST(GETPROJECTVIEW(), mainFile, list.files);
    STAMP();
    UPDATEPROJECTWINDOW(window, mainFile, joined(items), FINDMAINFILE(items, mainFile));
    STAMP();
    if (isLabel(label)) SetCaption(label, mainFile);
}

void PROJECTCLOSE(const Object& window) {
    FRAME(PROJECTCLOSE);
    STAMP();
    if (IsLoaded(window)) Unload(window);
}

void PROJECTREFRESH(const Object& window) {
    FRAME(PROJECTREFRESH);
    STAMP();
    if (!IsLoaded(window)) return Sound();
    const ProjectPlace place = PROJECTITEMGETPOS(window, PROJECTITEMINFO(window).row);
    STAMP();
    const std::string error = PROJECTRELOAD(window, place);
    STAMP();
    if (!error.empty()) MSGBOX(GetCaption(window), "It is not possible to open/update the window.\n" + error);
}

std::string PROJECTRELOAD(const Object& window, const ProjectPlace& place) {
    FRAME(PROJECTRELOAD);
    const std::string mainFile = PROJECTGETMAINFILE(window);
    STAMP();
    if (FileSize(mainFile) < 0) return NOTEPROJECTFILES(window), "The file '" + mainFile + "' was not found.";
    STAMP();
    const DependencyList list = LOADDEPLIST(mainFile, "/fs", true);
    STAMP();
    if (!list.error.empty()) return NOTEPROJECTFILES(window), list.error;
    NOTEPROJECTFILES(window, list.files);
    const std::vector<std::string> items = MAKEPROJECTLIST(GETPROJECTVIEW(), mainFile, list.files);
    STAMP();
    UPDATEPROJECTWINDOW(window, mainFile, joined(items), place);
    STAMP();
    const Object label = IsLoaded(Main) ? MAINCONTROL("Main") : Object();
    if (isLabel(label)) SetCaption(label, mainFile);
    return {};
}

std::string PROJECTGETMAINFILE(const Object& window) {
    FRAME(PROJECTGETMAINFILE);
    if (!IsLoaded(window)) return {};
    STAMP();
    const Object label = FINDCONTROL(window, "Mainfile");
    return isLabel(label) ? GetCaption(label) : std::string();
}

// ---- rows ----

ProjectRow PROJECTITEMAT(const Object& window, int row) {
    FRAME(PROJECTITEMAT);
    const Controls controls = controlsOf(window);
    STAMP();
    const int number = controls.complete ? numberOfRow(controls.map, row) : 0;
    if (number < 1 || number > GetListCount(controls.data)) return {};
    STAMP();
    return {row, number, itemAt(controls.data, number)};
}

ProjectRow PROJECTITEMINFO(const Object& window) {
    FRAME(PROJECTITEMINFO);
    const Controls controls = controlsOf(window);
    STAMP();
    return controls.complete ? PROJECTITEMAT(window, GetListIndex(controls.rows)) : ProjectRow();
}

ProjectPlace PROJECTITEMGETPOS(const Object& window, int row) {
    FRAME(PROJECTITEMGETPOS);
    const Controls controls = controlsOf(window);
    ProjectPlace place{0, 0};
    STAMP();
    int number = controls.complete ? numberOfRow(controls.map, row) : 0;
    for (; number > 0 && levelAt(controls.data, number) == 2; --number) ++place.sub;
    for (; number > 0; --number)
        if (levelAt(controls.data, number) == 1) ++place.top;
    return place;
}

std::string PROJECTITEMGETPARENT(const Object& window, int row) {
    FRAME(PROJECTITEMGETPARENT);
    STAMP();
    for (; row > 0; --row) {
        const ProjectRow above = PROJECTITEMAT(window, row);
        if (above.item.level == 1 && ISCLASSFILE(above.item.file)) return above.item.file;
    }
    return {};
}

namespace {

// The items under one: the first of them, and the one behind the last.
struct Run {
    int first = 0, end = 0;
    [[nodiscard]] bool empty() const { return first >= end; }
};

Run childrenOf(const Object& data, int number) {
    if (number < 1) return {};
    const int level = levelAt(data, number), count = GetListCount(data);
    Run run{number + 1, number + 1};
    while (run.end <= count && levelAt(data, run.end) > level) ++run.end;
    return run;
}

bool isOpen(const Controls& controls, int row, const Run& children) {
    return !children.empty() && numberOfRow(controls.map, row + 1) == children.first;
}

void setPicture(const Object& rows, int row, const std::string& picture) {
    if (!picture.empty()) SetList(rows, row, GetList(rows, row), resourceOf(picture));
}

void closeRow(const Controls& controls, int row, const Run& children) {
    for (;;) {
        const int number = numberOfRow(controls.map, row + 1);
        if (number < children.first || number >= children.end) return;
        RemoveItem(controls.rows, row + 1);
        RemoveItem(controls.map, row + 1);
    }
}

void openRow(const Controls& controls, int row, const Run& children, int level) {
    for (int number = children.first; number < children.end; ++number) {
        const ProjectItem child = itemAt(controls.data, number);
        if (child.level != level + 1) continue;
        ++row;
        AddItem(controls.rows, row, child.title, pictureOf(child, false));
        AddItem(controls.map, row, STR(number));
    }
}

}  // namespace

bool PROJECTITEMISOPEN(const Object& window, int row) {
    FRAME(PROJECTITEMISOPEN);
    const Controls controls = controlsOf(window);
    STAMP();
    return controls.complete &&
           isOpen(controls, row, childrenOf(controls.data, numberOfRow(controls.map, row)));
}

bool PROJECTITEMSELECT(const Object& window, const Object& iconlist, int row) {
    FRAME(PROJECTITEMSELECT);
    Controls controls = controlsOf(window);
    controls.rows = iconlist;
    STAMP();
    const int number = controls.complete ? numberOfRow(controls.map, row) : 0;
    const Run children = childrenOf(controls.data, number);
    if (children.empty()) return false;
    STAMP();
    const ProjectItem item = itemAt(controls.data, number);
    const bool open = isOpen(controls, row, children);
    setPicture(iconlist, row, open ? item.picture : item.openPicture);
    STAMP();
    if (open)
        closeRow(controls, row, children);
    else
        openRow(controls, row, children, item.level);
    STAMP();
    return true;
}

namespace {

// The files of the top items, one a line. `isMeant` says which.
template <class Meant>
std::string topFiles(const Object& window, const Meant& isMeant) {
    const Controls controls = controlsOf(window);
    std::string files;
    const int count = controls.complete ? GetListCount(controls.data) : 0;
    for (int number = 1; number <= count; ++number) {
        const ProjectItem item = itemAt(controls.data, number);
        if (item.level == 1 && !item.file.empty() && isMeant(item.file)) files += item.file + "\n";
    }
    return files;
}

}  // namespace

std::string PROJECTGETLIST(const Object& window) {
    FRAME(PROJECTGETLIST);
    const std::string files = topFiles(window, [](const std::string& file) {
        STAMP();
        const bool exists = FileSize(file) >= 0;
        if (!exists) Assert(false, "'" + file + "' should be a full path.");
        return exists;
    });
    STAMP();
    return files;
}

std::string PROJECTGETFILES(const Object& window) {
    FRAME(PROJECTGETFILES);
    STAMP();
    return topFiles(window, [](const std::string& file) { return FileSize(file) >= 0; });
}

// ---- filling ----

int UPDATEITEMS(const Object& iconlist, const Object& maplist, const Object& datalist,
                const ProjectPlace& place) {
    FRAME(UPDATEITEMS);
    STAMP();
    Clear(iconlist);
    Clear(maplist);
    int top = 0, children = 0;
    const int count = GetListCount(datalist);
    for (int number = 1; number <= count; ++number) {
        const int level = levelAt(datalist, number);
        const bool isTop = level == 1;
        if (isTop) ++top;
        const bool chosen = top == place.top, open = chosen && place.sub > 0;
        if (chosen && level == 2) ++children;
        if (!isTop && !open) continue;
        const ProjectItem item = itemAt(datalist, number);
        AddItem(iconlist, item.title, pictureOf(item, isTop && open));
        AddItem(maplist, STR(number));
    }
    STAMP();
    return children;
}

void UPDATEPROJECTWINDOW(const Object& window, const std::string& mainFile, std::string_view items,
                         const ProjectPlace& place) {
    FRAME(UPDATEPROJECTWINDOW);
    const Controls controls = controlsOf(window);
    STAMP();
    if (!controls.complete) return;
    SetCaption(controls.mainFile, mainFile);
    Clear(controls.data);
    while (!items.empty()) {
        const std::size_t end = std::min(items.find('\n'), items.size());
        AddItem(controls.data, items.substr(0, end));
        items.remove_prefix(std::min(end + 1, items.size()));
    }
    STAMP();
    const int children = UPDATEITEMS(controls.rows, controls.map, controls.data, place);
    const int rows = GetListCount(controls.rows);
    const int row = std::min(place.top, rows) + std::min(place.sub, children);
    STAMP();
    SetListIndex(controls.rows, std::min(row, rows));
}

}  // namespace tarn
