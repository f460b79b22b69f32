// SPDX-License-Identifier: Apache-2.0
#include "library/dialogs/dlgutil.h"

#include "kernel/windows/resources.h"
#include "library/settings/profstr.h"
#include "library/system/system.h"
#include "os/text/ascii.h"

MODULE("dlgutil")

namespace tarn {

int GETVISUALOBJECTINFO(const std::string& resourceFile, const std::string& dialog,
                        const std::string& control) {
    FRAME(GETVISUALOBJECTINFO);
    if (resourceFile.empty() || dialog.empty() || control.empty()) return 0;
    const std::string lines = ResourceInfo(resourceFile, "Controls", dialog).text;
    for (int i = 1; i <= STRLINES(lines); i++) {
        const std::string line = STRLINE(lines, i);
        if (!STREQUAL(STRTOKEN(line, 1), control)) continue;
        bool ok = false;
        const int number = CVTI(STRTOKEN(line, 2), ok);
        return ok ? number : 0;
    }
    return 0;
}

int GETVISUALOBJECTINFO(const std::string& executable, const std::string& control) {
    FRAME(GETVISUALOBJECTINFO);
    return GETVISUALOBJECTINFO(FILECHANGEEXT(executable, ".rcx"), "Main", control);
}

OtherControl FINDOTHERCONTROL(const std::string& executable, const std::string& caption,
                              const std::string& control) {
    FRAME(FINDOTHERCONTROL);
    OtherControl found;
    STAMP();
    found.window = FindWindowHandle(WindowClassName("Dialog"), caption);
    found.control = GETVISUALOBJECTINFO(executable, control);
    return found;
}

void SETENABLEDRANGE(const Object& window, const Object& first, const Object& last, bool enabled) {
    FRAME(SETENABLEDRANGE);
    static constexpr std::string_view types =
        ";Checkbox;Combobox;Edit;Listbox;Menuitem;Pushbutton;Radiobutton;Scrollbar;Iconlist;Bitmapbutton;";
    STAMP();
    if (GetTypeof(window) != "Dialog") return;
    bool inside = false;
    for (const Object& control : ControlList(window)) {
        STAMP();
        inside = inside || control == first;
        if (inside && STRFIND(";" + GetTypeof(control) + ";", types) > 0) SetEnabled(control, enabled);
        if (inside && control == last) return;
    }
}

// ---- places ----

std::string PLAINCAPTION(std::string_view text) {
    FRAME(PLAINCAPTION);
    return STRREPLACE(std::string(text), "&", "&&");
}

std::string INDENTLINES(const std::string& lines) {
    FRAME(INDENTLINES);
    std::string text;
    for (std::string_view rest = lines; !rest.empty();)
        text.append("\t").append(ascii::withoutLineEnd(ascii::takeLine(rest))).append("\n");
    return text;
}

namespace {

// Whether the "&" at `at` marks what follows: a letter, which may be one of several bytes, or a digit.
bool isMark(std::string_view caption, std::size_t at) {
    if (at + 1 >= caption.size()) return false;
    const char next = caption[at + 1];
    return ascii::isLetter(next) || ascii::isDigit(next) || static_cast<unsigned char>(next) >= 0x80;
}

// The place behind an "&" that is none: two of them are one letter.
std::size_t behindLetter(std::string_view caption, std::size_t at) {
    return at + (caption.substr(at, 2) == "&&" ? 2 : 1);
}

}  // namespace

std::string SHOWNCAPTION(std::string_view caption) {
    FRAME(SHOWNCAPTION);
    std::string shown;
    for (std::size_t at = 0; at < caption.size();) {
        if (caption[at] != '&' || !isMark(caption, at)) shown += caption[at];
        at = caption[at] != '&' || isMark(caption, at) ? at + 1 : behindLetter(caption, at);
    }
    return shown;
}

int FINDMNEMONIC(std::string_view caption) {
    FRAME(FINDMNEMONIC);
    for (std::size_t at = caption.find('&'); at != std::string_view::npos;
         at = caption.find('&', behindLetter(caption, at)))
        if (isMark(caption, at)) return static_cast<int>(at) + 1;
    return 0;
}

void AUTOPOSITION(const Object& control, int x, int y, int w, int h) {
    FRAME(AUTOPOSITION);
    STAMP();
    const Rect now = GetPosition(control, CLIENT_UNIT);
    STAMP();
    SetPosition(control, CLIENT_UNIT,
                {x < 0 ? now.x : x, y < 0 ? now.y : y, w < 0 ? now.w : w, h < 0 ? now.h : h});
}

int GETX(const Object& control) {
    FRAME(GETX);
    return GetPosition(control, CLIENT_UNIT).x;
}

int GETY(const Object& control) {
    FRAME(GETY);
    return GetPosition(control, CLIENT_UNIT).y;
}

int GETWIDTH(const Object& control) {
    FRAME(GETWIDTH);
    return GetPosition(control, CLIENT_UNIT).w;
}

int GETHEIGHT(const Object& control) {
    FRAME(GETHEIGHT);
    return GetPosition(control, CLIENT_UNIT).h;
}

// ---- rows ----

namespace {

int findRow(const Object& control, std::string_view text, int start, bool whole) {
    const int count = GetListCount(control), length = static_cast<int>(text.size());
    const int before = start < 1 || start > count ? 0 : start;
    for (int step = 0; step < count; ++step) {
        const int row = (before + step) % count + 1;
        const std::string each = GetList(control, row);
        if (STREQUAL(whole ? each : STRLEFT(each, length), text)) return row;
    }
    return 0;
}

}  // namespace

int FINDSTRING(const Object& control, std::string_view text, int start) {
    FRAME(FINDSTRING);
    STAMP();
    return findRow(control, text, start, false);
}

int FINDSTRINGEXACT(const Object& control, std::string_view text, int start) {
    FRAME(FINDSTRINGEXACT);
    STAMP();
    return findRow(control, text, start, true);
}

}  // namespace tarn
