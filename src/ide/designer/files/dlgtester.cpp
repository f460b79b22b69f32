// SPDX-License-Identifier: GPL-3.0-or-later
//
// The test window: a dialog as its program will show it.
#include "ide/designer/files/dlgtest.h"

#include "ide/designer/files/scratch.h"
#include "ide/shell/idecore.h"
#include "ide/shell/windows.h"
#include "ide/shell/windowtable.h"
#include "library/designer/proputil.h"
#include "library/settings/placeholders.h"
#include "library/system/system.h"
#include "os/files.h"

#include <algorithm>
#include <array>
#include <vector>

MODULE("dlgedit")

namespace tarn {
namespace {

const RegisteredWindow registered("TestDlg", TESTDLG);

// ---- pictures ----

// The path at the end of a line of the list of files: in double quotes, with backslashes doubled.
std::string pathIn(const std::string& line) {
    const std::size_t quote = line.find('"');
    if (quote == std::string::npos) return {};
    return STRREPLACE(STRREMOVEQUOTES(STRTRIM(line.substr(quote))), "\\\\", "\\");
}

// The file of a BITMAP of the resource file; empty if it has none of that name.
std::string BITMAPFILE(const std::string& file, const std::string& name) {
    FRAME(BITMAPFILE);
    STAMP();
    const ResourceText info = ResourceInfo(file, "BITMAP", name);
    return info.error.empty() ? pathIn(info.text) : "";
}

// A program finds its pictures by their names in its own resources, and files from its own folder on. Neither is at hand
// in another program, so they get whole paths.
std::string RESOLVEPICTURES(const std::string& source, const std::string& scratch,
                            const std::string& dialog) {
    FRAME(RESOLVEPICTURES);
    STAMP();
    const PlaceholderFolders folders{GETRESOURCEDIR(), GETCOMPILERDIR()};
    return CHANGEOBJECTS(scratch, dialog, [&](DialogObjects& objects) {
        bool changed = false;
        for (ObjectArray* const all : {&objects.dialog, &objects.menu})
            for (std::string& object : *all) {
                const std::string picture = GETPROPVALUE(object, "PICTURE");
                if (picture.empty()) continue;
                const std::string bitmap = BITMAPFILE(source, picture);
                std::string path = FILERESOLVEPATHS(bitmap.empty() ? picture : bitmap, folders);
                if (!ISROOTED(path)) path = FILEGETDIR(source) + os::native(path);
                if (path == picture || FileSize(path) < 0) continue;
                SETPROPVALUE("PICTURE", "\"" + path + "\"", object);
                changed = true;
            }
        return changed;
    });
}

// ---- the window ----

std::string MAKETESTFILE(const std::string& file, const std::string& dialog, ScratchFile& scratch) {
    FRAME(MAKETESTFILE);
    DialogObjects objects;
    STAMP();
    std::string error = READOBJECTS(file, dialog, objects);
    STAMP();
    if (error.empty()) error = scratch.make(file, objects);
    if (error.empty()) error = FIXPROPERTY_OWNER(scratch.path(), dialog);
    STAMP();
    if (error.empty()) error = FIXPROPERTY_POSITION(scratch.path(), dialog);
    if (error.empty())
        error = FIXPROPERTY_PICTURE(scratch.path(), dialog, GETRESOURCEDIR(), GETCOMPILERDIR());
    STAMP();
    if (error.empty()) error = RESOLVEPICTURES(file, scratch.path(), dialog);
    return error.empty() ? scratch.rename(dialog) : error;
}

// The window blocks all others, so one without a size, or wholly to the left of the screen or above it, comes into sight.
void bringIntoSight(const Object& window) {
    constexpr int Least = 40;  // pixels
    const Rect screen = ScreenSize(), client = GetPosition(window, CLIENT_UNIT),
               now = GetPosition(window, WINDOW_UNIT);
    Rect at = now;
    at.w += std::max(Least - client.w, 0);
    at.h += std::max(Least - client.h, 0);
    if (at.x + at.w < screen.x + Least) at.x = screen.x;
    if (at.y + at.h < screen.y + Least) at.y = screen.y;
    if (at != now) SetPosition(window, WINDOW_UNIT, at);
}

// The first of a group, if none is set.
void setFirst(const std::vector<Object>& group) {
    const auto isSet = [](const Object& button) { return GetValue(button) != 0; };
    if (!group.empty() && std::none_of(group.begin(), group.end(), isSet)) SetValue(group.front(), 1);
}

// Radio buttons exclude each other in their array; those in none exclude their neighbours.
void SETRADIOBUTTONS(const Object& window) {
    FRAME(SETRADIOBUTTONS);
    STAMP();
    std::vector<Object> neighbours;
    for (const Object& control : ControlList(window)) {
        const bool radio = GetTypeof(control) == "Radiobutton", inArray = !ControlElement(control, 1).empty();
        if (radio && !inArray) {
            neighbours.push_back(control);
            continue;
        }
        setFirst(neighbours);
        neighbours.clear();
        if (!radio || control != ControlElement(control, 1)) continue;
        std::vector<Object> array;
        for (int i = 1; i <= ControlUbound(control); ++i) array.push_back(ControlElement(control, i));
        setFirst(array);
        STAMP();
    }
    setFirst(neighbours);
}

bool pressKey(const Object& window, int key) {
    constexpr std::array<int, 4> arrows = {KEY_LEFT, KEY_UP, KEY_RIGHT, KEY_DOWN};
    if (std::find(arrows.begin(), arrows.end(), key) != arrows.end()) return false;
    if (key == KEY_ESCAPE || key == KEY_RETURN)
        Unload(window);
    else
        Sound();
    return true;
}

bool pressControl(const Object& control) {
    constexpr std::array<std::string_view, 3> types = {"Pushbutton", "Bitmapbutton", "Menuitem"};
    const std::string type = GetTypeof(control);
    const bool told = std::find(types.begin(), types.end(), type) != types.end();
    if (told) MSGBOX("Test Window", "This is a test window. Press Escape to close it.");
    return told;
}

}  // namespace

bool TESTDLG(const Object& window, int event, const Object& control, int parameter) {
    FRAME(TESTDLG);
    STAMP();
    bool handled = false;
    if (event == LOAD_EVENT) SETRADIOBUTTONS(window);
    if (event == KEYPRESS_EVENT) handled = pressKey(window, parameter);
    if (event == COMMAND_EVENT) handled = pressControl(control);
    STAMP();
    return handled;
}

// The file goes as soon as the window is there, so that none stays whatever becomes of the window.
std::string WINDOWTESTERDIALOG(const std::string& title, const std::string& file, const std::string& dialog,
                               bool keep) {
    FRAME(WINDOWTESTERDIALOG);
    ScratchFile scratch;
    STAMP();
    std::string error = MAKETESTFILE(file, dialog, scratch);
    STAMP();
    if (error.empty()) error = Load(TestDlg, scratch.path(), NameOfTests);
    const std::string kept = keep ? scratch.keep() : "";
    scratch.drop();
    STAMP();
    if (!error.empty()) {
        MSGBOX(title, error);
        return kept;
    }
    bringIntoSight(TestDlg);
    Show(TestDlg, true);
    STAMP();
    if (IsLoaded(TestDlg)) Unload(TestDlg);
    STAMP();
    return kept;
}

}  // namespace tarn
