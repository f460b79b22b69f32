// SPDX-License-Identifier: GPL-3.0-or-later
//
// What makes a copied dialog fit its new home.
#include "ide/designer/files/dlgtest.h"

#include "ide/designer/files/scratch.h"
#include "kernel/windows/windowing.h"
#include "library/designer/dlgunits.h"
#include "library/designer/proputil.h"
#include "library/settings/placeholders.h"
#include "library/settings/profstr.h"
#include "library/system/system.h"

#include <algorithm>
#include <set>

MODULE("dlgedit")

namespace tarn {
namespace {

const Object MeasureDlg("MeasureDlg");  // a window of the dialog's font, which is never shown
constexpr int LeastInSight = 40;        // resource units
constexpr int MostMenus = 10000;

// The screen in units of the dialog's own font.
struct ScreenUnits {
    UnitRect size;
    std::string error;
};
ScreenUnits MEASURESCREEN(const std::string& file, const std::string& dialog) {
    FRAME(MEASURESCREEN);
    STAMP();
    ScreenUnits screen;
    screen.error = Load(MeasureDlg, file, dialog);
    if (!screen.error.empty()) return screen;
    const Rect pixels = ScreenSize();
    screen.size = PIXELSTORCUNITS(MeasureDlg, {0, 0, pixels.w, pixels.h});
    Unload(MeasureDlg);
    STAMP();
    return screen;
}

// The first word of each line, in upper case.
std::set<std::string> wordsOf(std::string_view lines) {
    std::set<std::string> words;
    for (std::size_t at = 0; at < lines.size();) {
        const std::size_t end = std::min(lines.find('\n', at), lines.size());
        words.insert(STRUPPER(STRTOKEN(lines.substr(at, end - at), 1)));
        at = end + 1;
    }
    return words;
}

// Whether another dialog of the file shows the menu, or may do so because it cannot be read.
bool ISSHAREDMENU(const std::string& file, const std::string& dialog, const std::string& menu) {
    FRAME(ISSHAREDMENU);
    STAMP();
    const ResourceText names = RESOURCENAMES(file, "DIALOG");
    ObjectArray objects;
    for (int n = 1; n <= STRLINES(names.text); ++n) {
        STAMP();
        const std::string name = STRLINE(names.text, n);
        if (STREQUAL(name, dialog)) continue;
        const bool read = ResourceRead(file, name, objects).empty();
        if (!read || STREQUAL(GETPROPVALUE(objects[0], "MENU"), menu)) return true;
    }
    return !names.error.empty();
}

// Resources are deleted by their name, which those of another kind may have too.
bool ISONLYMENU(const std::string& file, const std::string& menu) {
    FRAME(ISONLYMENU);
    STAMP();
    const std::string all = RESOURCENAMES(file, "*").text;
    int found = 0;
    for (int n = 1; n <= STRLINES(all); ++n) found += STREQUAL(STRTOKEN(STRLINE(all, n), 1), menu) ? 1 : 0;
    return found == 1 && ISINRESOURCEFILE(file, "MENU", menu);
}

}  // namespace

std::string FIXPROPERTY_OWNER(const std::string& file, const std::string& dialog) {
    FRAME(FIXPROPERTY_OWNER);
    STAMP();
    return CHANGEOBJECTS(file, dialog, [](DialogObjects& objects) {
        const bool owned = GETPROPINT(objects.dialog[0], "OWNER") != 0;
        if (owned) SETPROPINT("OWNER", 0, objects.dialog[0]);
        return owned;
    });
}

std::string FIXPROPERTY_POSITION(const std::string& file, const std::string& dialog) {
    FRAME(FIXPROPERTY_POSITION);
    ScreenUnits screen;
    STAMP();
    const std::string error = CHANGEOBJECTS(file, dialog, [&](DialogObjects& objects) {
        UnitRect at = GETPROPPOSITION(objects.dialog[0]);
        if (at.x <= 0 && at.y <= 0) return false;  // no screen is so small, so none is measured
        screen = MEASURESCREEN(file, dialog);
        const UnitRect& size = screen.size;
        if (!screen.error.empty() || (at.x <= size.w - LeastInSight && at.y <= size.h - LeastInSight))
            return false;
        MSGBOX("Dialog Editor", "The window is off the edge of the screen (Position = " + POSITIONTEXT(at) +
                                    ")\nIt will be moved back on the screen to make it visible.\n");
        at.x = std::max((size.w - at.w) / 2, LeastInSight);
        at.y = std::max((size.h - at.h) / 2, LeastInSight);
        SETPROPPOSITION(objects.dialog[0], at);
        return true;
    });
    return error.empty() ? screen.error : error;
}

std::string FIXPROPERTY_PICTURE(const std::string& file, const std::string& dialog,
                                const std::string& resourceFolder, const std::string& compilerFolder) {
    FRAME(FIXPROPERTY_PICTURE);
    STAMP();
    const PlaceholderFolders folders{FILEADDSEPARATOR(resourceFolder), FILEADDSEPARATOR(compilerFolder)};
    return CHANGEOBJECTS(file, dialog, [&](DialogObjects& objects) {
        bool changed = false;
        for (ObjectArray* const all : {&objects.dialog, &objects.menu})
            for (std::string& object : *all) {
                const std::string picture = GETPROPVALUE(object, "PICTURE");
                if (picture.find('<') == std::string::npos) continue;
                const std::string resolved = FILERESOLVEPATHS(picture, folders);
                changed = changed || resolved != picture;
                SETPROPVALUE("PICTURE", "\"" + resolved + "\"", object);
            }
        return changed;
    });
}

std::string DROPMENU(const std::string& file, const std::string& menu) {
    FRAME(DROPMENU);
    STAMP();
    if (menu.empty() || !ISONLYMENU(file, menu)) return {};
    STAMP();
    return ISSHAREDMENU(file, "", menu) ? std::string() : ResourceDelete(file, menu);
}

// A menu that this dialog alone shows is renamed in its place; one that others show too is copied.
std::string FIXPROPERTY_MENU(const std::string& file, const std::string& dialog, const std::string& names) {
    FRAME(FIXPROPERTY_MENU);
    std::string old, free;
    STAMP();
    std::set<std::string> taken = wordsOf(names);
    const std::string error = CHANGEOBJECTS(file, dialog, [&](DialogObjects& objects) {
        old = GETPROPVALUE(objects.dialog[0], "MENU");
        if (old.empty() || !taken.contains(STRUPPER(old))) return false;
        taken.merge(wordsOf(RESOURCENAMES(file, "*").text));
        for (int n = 1; n <= MostMenus && free.empty(); ++n) {
            const std::string name = dialog + "_Menu" + STR(n);
            if (!taken.contains(STRUPPER(name))) free = name;
        }
        if (free.empty() || !ISSHAREDMENU(file, dialog, old)) return false;
        SETPROPVALUE("MENU", free, objects.dialog[0]);
        SETPROPVALUE("NAME", free, objects.menu[0]);
        free.clear();
        return true;
    });
    STAMP();
    return error.empty() && !free.empty() ? ResourceRename(file, old, free) : error;
}

}  // namespace tarn
