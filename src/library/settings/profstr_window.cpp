// SPDX-License-Identifier: Apache-2.0
//
// The controls, position and font of a window kept in a settings file. The file is read once a call, and
// saved once.
#include "library/settings/profstr.h"

#include "os/text/initext.h"
#include "library/settings/profstr_file_internal.h"
#include "library/system/system.h"
#include "os/text/ascii.h"

MODULE("profstr", tarn::detail::settingsError, tarn::LeaveErrors)

namespace tarn {
namespace {

constexpr int DropDownList = 2;   // the combo box style without an edit field
constexpr int SizableBorder = 2;  // the border style of a window that the user may size
constexpr int Maximised = 2;      // window state

enum class Kept { Nothing, Number, Text, Combo };

Kept keptBy(const Object& control) {
    const std::string type = STRUPPER(GetTypeof(control));
    if (type == "CHECKBOX" || type == "RADIOBUTTON") return Kept::Number;
    if (type == "EDIT") return Kept::Text;
    if (type == "COMBOBOX") return Kept::Combo;
    return Kept::Nothing;
}

bool takesPart(const Object& control) {
    return GetEnabled(control) || GetVisible(control);
}

int number(std::string_view text) {
    bool ok = false;
    const int value = CVTI(text, ok);
    return ok ? value : 0;
}

// "compOptionsDlg" to "Compoptionsdlg".
std::string sectionName(const Object& window) {
    std::string name = STRLOWER(GetName(window));
    if (!name.empty()) name[0] = ascii::upper(name[0]);
    return name;
}

void selectEqualItem(const Object& list, std::string_view text) {
    const int rows = GetListCount(list);
    for (int row = 1; row <= rows; ++row) {
        if (!STREQUAL(GetList(list, row), text)) continue;
        SetListIndex(list, row);
        return;
    }
}

void loadControl(const Object& control, std::string_view value) {
    switch (keptBy(control)) {
    case Kept::Number: SetValue(control, number(value)); break;
    case Kept::Text: SetText(control, value); break;
    case Kept::Combo:
        if (GetCombostyle(control) == DropDownList)
            selectEqualItem(control, value);
        else
            SetCombotext(control, value);
        break;
    case Kept::Nothing: break;
    }
}

// Reading takes a pair of quotes off, so a text that has one of its own gets another around it.
std::string protectedQuotes(const std::string& text) {
    const bool quoted = text.size() > 1 && text.front() == '"' && text.back() == '"';
    return quoted ? "\"" + text + "\"" : text;
}

// What is stored of a control; false if nothing is.
bool storedText(const Object& control, std::string& value) {
    switch (keptBy(control)) {
    case Kept::Number: value = STR(GetValue(control)); return true;
    case Kept::Text: value = protectedQuotes(GetText(control)); return true;
    case Kept::Combo:
        if (GetCombostyle(control) != DropDownList) {
            value = protectedQuotes(GetCombotext(control));
            return true;
        }
        value = GetListIndex(control) > 0 ? GetList(control, GetListIndex(control)) : std::string();
        return true;
    case Kept::Nothing: break;
    }
    return false;
}

void loadPosition(const Object& window, std::string_view text) {
    if (STRWORDCOUNT(text) < 4) return;  // never stored, or not a position
    const Rect old = GetPosition(window, WINDOW_UNIT);
    Rect r{number(STRWORD(text, 1)), number(STRWORD(text, 2)), number(STRWORD(text, 3)),
           number(STRWORD(text, 4))};
    if (GetBorderStyle(window) != SizableBorder) {
        r.w = old.w;
        r.h = old.h;
    }
    const Rect screen = ScreenSize();
    const auto right = std::int64_t{r.x} + r.w, bottom = std::int64_t{r.y} + r.h;
    if (r.x < screen.w && right > 0 && r.y < screen.h && bottom > 0) SetPosition(window, WINDOW_UNIT, r);
}

// A maximised window keeps the old text, so that its last normal size survives.
std::string positionText(const Object& window, std::string_view old) {
    const Rect r = GetPosition(window, WINDOW_UNIT);
    Rect most = GetMaxPosition(window);
    if (most.w == 0) most.w = ScreenSize().w;
    if (most.h == 0) most.h = ScreenSize().h;
    const bool maximised = GetWindowState(window) == Maximised || (r.w == most.w && r.h == most.h);
    const Rect kept = maximised ? Rect{number(STRWORD(old, 1)), number(STRWORD(old, 2)),
                                       number(STRWORD(old, 3)), number(STRWORD(old, 4))}
                                : r;
    return STR(kept.x) + " " + STR(kept.y) + " " + STR(kept.w) + " " + STR(kept.h);
}

void loadFont(const Object& window, std::string_view text, std::string_view section) {
    const std::string_view name = ini::get(text, section, "_Fontname");
    const int size = number(ini::get(text, section, "_Fontsize"));
    if (name.empty() || size == 0) return;
    SetFontName(window, name);
    SetFontSize(window, size);
    SetFontBold(window, ini::get(text, section, "_Fontbold") == "1");
    SetFontItalic(window, ini::get(text, section, "_Fontitalic") == "1");
}

void storeFont(const Object& window, std::string& text, std::string_view section) {
    ini::put(text, section, "_Fontbold", GetFontBold(window) ? "1" : "0");
    ini::put(text, section, "_Fontitalic", GetFontItalic(window) ? "1" : "0");
    ini::put(text, section, "_Fontname", GetFontName(window));
    ini::put(text, section, "_Fontsize", STR(GetFontSize(window)));
}

}  // namespace

void LOADINIFILE(const std::string& file, const Object& window, bool withPosition, bool withFont) {
    FRAME(LOADINIFILE);
    if (file.empty() || !IsLoaded(window)) return;
    bool readable = false;
    STAMP();
    // A copy: what is set below runs window functions, which may read settings themselves.
    const std::string text(detail::readProfile(file, readable));
    if (!readable) return;  // empty controls would be saved over what the file holds
    STAMP();
    const std::string section = sectionName(window);
    for (const Object& control : ControlList(window)) {
        STAMP();
        if (takesPart(control)) loadControl(control, ini::get(text, section, GetName(control)));
    }
    STAMP();
    if (withPosition) loadPosition(window, ini::get(text, section, "_Position"));
    STAMP();
    if (withFont) loadFont(window, text, section);
}

void SAVEINIFILE(const std::string& file, const Object& window, bool withPosition, bool withFont) {
    FRAME(SAVEINIFILE);
    if (file.empty() || !IsLoaded(window)) return;
    bool readable = false;
    STAMP();
    std::string text = detail::textToChange(file, readable);
    if (!readable) return;
    const std::string before = text;
    STAMP();
    const std::string section = sectionName(window);
    for (const Object& control : ControlList(window)) {
        STAMP();
        std::string key = GetName(control), value;
        if (key.empty() || !takesPart(control) || !storedText(control, value)) continue;
        key[0] = ascii::upper(key[0]);
        ini::put(text, section, key, value);
    }
    STAMP();
    if (withPosition)
        ini::put(text, section, "_Position",
                 positionText(window, std::string(ini::get(text, section, "_Position"))));
    STAMP();
    if (withFont) storeFont(window, text, section);
    STAMP();
    if (text != before) detail::writeProfile(file, text);
}

}  // namespace tarn
