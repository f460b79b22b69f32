// SPDX-License-Identifier: GPL-3.0-or-later
#include "ide/program/projlive.h"

#include "ide/editor/sourcefile.h"
#include "ide/program/projwindow.h"
#include "ide/shell/ide.h"
#include "library/system/system.h"
#include "os/files.h"

#include <algorithm>
#include <vector>

MODULE("projedit", tarn::IDE_ONERROR)

namespace tarn {
namespace {

// Named values of the window: the files that it was made of, and how they stood on the disk.
constexpr std::string_view FilesValue = "files", StampsValue = "stamps";
// A double click that brings the window to the front ends before the rows change under it.
constexpr int Patience = 400;

std::string stampOf(const std::string& file) {
    const os::FileInfo info = os::infoOf(file);
    if (!info.exists) return "\n";
    return std::to_string(info.modified) + " " + std::to_string(info.size) + " " +
           std::to_string(info.inode) + "\n";
}

// A resource file that appears beside a class, or goes, is a change of the program too.
std::string stampsOf(const std::string& files) {
    std::string stamps;
    for (std::size_t at = 0; at < files.size();) {
        const std::size_t end = std::min(files.find('\n', at), files.size());
        const std::string file = files.substr(at, end - at);
        stamps += stampOf(file);
        if (ISCLASSFILE(file)) stamps += stampOf(TWINFILE(file, ResourceExtension));
        at = end + 1;
    }
    return stamps;
}

// What a row stands for, whatever its place.
std::string identityOf(const ProjectItem& item) {
    return STR(item.level) + "\n" + item.type + "\n" + item.name + "\n" + item.file;
}

struct Place {
    std::vector<std::string> open;
    std::string selected;
    int row = 0;
};

Place placeOf(const Object& window) {
    Place place;
    const ProjectRow selected = PROJECTITEMINFO(window);
    place.selected = identityOf(selected.item);
    place.row = selected.row;
    for (int row = 1; PROJECTITEMAT(window, row).row > 0; ++row)
        if (PROJECTITEMISOPEN(window, row)) place.open.push_back(identityOf(PROJECTITEMAT(window, row).item));
    return place;
}

void restore(const Object& window, const Place& place) {
    const Object rows = FINDCONTROL(window, "Iconlist1");
    int found = 0, row = 1;
    for (; PROJECTITEMAT(window, row).row > 0; ++row) {
        const std::string identity = identityOf(PROJECTITEMAT(window, row).item);
        if (found == 0 && identity == place.selected) found = row;
        const bool open = std::find(place.open.begin(), place.open.end(), identity) != place.open.end();
        if (open && !PROJECTITEMISOPEN(window, row)) static_cast<void>(PROJECTITEMSELECT(window, rows, row));
    }
    SetListIndex(rows, found > 0 ? found : std::min(place.row, row - 1));
}

}  // namespace

void NOTEPROJECTFILES(const Object& window, const std::string& files) {
    FRAME(NOTEPROJECTFILES);
    STAMP();
    SetArrayValue(window, FilesValue, files);
    SetArrayValue(window, StampsValue, stampsOf(files));
}

void NOTEPROJECTFILES(const Object& window) {
    FRAME(NOTEPROJECTFILES);
    STAMP();
    NOTEPROJECTFILES(window, GetArrayValue(window, FilesValue));
}

bool PROJECTCAMEFORWARD(const Object& window) {
    FRAME(PROJECTCAMEFORWARD);
    STAMP();
    if (!IsLoaded(window)) return false;
    const std::string files = GetArrayValue(window, FilesValue);
    if (files.empty() || stampsOf(files) == GetArrayValue(window, StampsValue)) return false;
    STAMP();
    return SETTIMER(window, Patience);
}

void PROJECTFOLLOWFILES(const Object& window) {
    FRAME(PROJECTFOLLOWFILES);
    STAMP();
    KILLTIMER(window);
    if (ActiveWindow() != window) return;  // the user has gone on: not while something is typed elsewhere
    const Place place = placeOf(window);
    STAMP();
    if (PROJECTRELOAD(window, {1, 0}).empty() && IsLoaded(window)) restore(window, place);
    STAMP();
}

}  // namespace tarn
