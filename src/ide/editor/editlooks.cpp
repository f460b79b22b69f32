// SPDX-License-Identifier: GPL-3.0-or-later
#include "ide/editor/editlooks.h"

#include "ide/editor/textedit.h"
#include "ide/shell/idecore.h"
#include "ide/shell/windows.h"
#include "library/settings/profstr.h"
#include "library/system/system.h"

#include <cstdint>

MODULE("textedit")

namespace tarn {
namespace {

constexpr std::string_view Section = "EditorOptionsDlg";

struct LookRow {
    std::string_view setting, item;
    int look;
    bool shipped;
};
constexpr LookRow looks[] = {
    {"CurrentLineOn", "view_current_line", LOOK_LINE, true},
    {"BracketsOn", "view_brackets", LOOK_BRACKETS, true},
    {"BlanksOn", "view_blanks", LOOK_BLANKS, false},
    {"FoldsOn", "view_folds", LOOK_FOLDS, true},
    {"ChangesOn", "view_changes", LOOK_CHANGES, true},
    {"ChoicesOn", "view_choices", LOOK_CHOICES, true},
};

struct WidthRow {
    std::string_view item;
    int columns;
};
constexpr WidthRow widths[] = {{"view_tab_2", 2}, {"view_tab_3", 3}, {"view_tab_4", 4}, {"view_tab_8", 8}};

bool isOn(const LookRow& row) {
    const std::string value = PROFILESTRGET(GETIDEINIFILE(), Section, row.setting);
    return value.empty() ? row.shipped : value == "1";
}

int numberSetting(std::string_view key, int shipped) {
    bool ok = false;
    const int value = CVTI(PROFILESTRGET(GETIDEINIFILE(), Section, key), ok);
    return ok ? value : shipped;
}

void check(std::string_view item, bool on) {
    if (IsLoaded(Main)) SetChecked(MAINCONTROL(item), on);
}

// The bytes that a text has more with a pair at each line end.
std::int64_t growthByPairs(std::string_view text) {
    std::int64_t growth = 0;
    for (std::size_t i = 0; i < text.size(); i++) {
        const bool pair = text.substr(i, 2) == "\r\n";
        if (!pair && (text[i] == '\r' || text[i] == '\n')) growth++;
        if (pair) i++;
    }
    return growth;
}

void setTabWidth(const Object& window, int columns) {
    SetTabWidth(window, columns);
    for (const WidthRow& row : widths) check(row.item, row.columns == columns);
}

}  // namespace

void EDITWNDAPPLYLOOKS(const Object& window) {
    FRAME(EDITWNDAPPLYLOOKS);
    STAMP();
    int bits = 0;
    for (const LookRow& row : looks) {
        const bool on = isOn(row);
        if (on) bits |= row.look;
        check(row.item, on);
    }
    STAMP();
    SetLooks(window, bits);
    setTabWidth(window, numberSetting("TabWidth", 4));
    SetZoom(window, numberSetting("Zoom", 0));
    STAMP();
}

void SWITCHLOOK(const Object& window, std::string_view setting) {
    FRAME(SWITCHLOOK);
    STAMP();
    for (const LookRow& row : looks)
        if (row.setting == setting) PROFILESTRPUT(GETIDEINIFILE(), Section, setting, isOn(row) ? "0" : "1");
    STAMP();
    EDITWNDAPPLYLOOKS(window);
}

void CHOOSETABWIDTH(const Object& window, int columns) {
    FRAME(CHOOSETABWIDTH);
    STAMP();
    PROFILESTRPUT(GETIDEINIFILE(), Section, "TabWidth", STR(columns));
    STAMP();
    setTabWidth(window, columns);
}

void ZOOMBY(const Object& window, int points) {
    FRAME(ZOOMBY);
    STAMP();
    SetZoom(window, points == 0 ? 0 : GetZoom(window) + points);
    STAMP();
    KEEPZOOM(window);
}

void KEEPZOOM(const Object& window) {
    FRAME(KEEPZOOM);
    STAMP();
    const int zoom = GetZoom(window);
    if (zoom != numberSetting("Zoom", 0)) PROFILESTRPUT(GETIDEINIFILE(), Section, "Zoom", STR(zoom));
    STAMP();
}

void CHOOSELINEENDS(const Object& window, int ends) {
    FRAME(CHOOSELINEENDS);
    STAMP();
    if (EDITWNDGETFILENAME(window).empty()) return Sound();
    const int before = GetLineEnds(window);
    STAMP();
    if (ends == ENDS_CRLF && !EDITWNDHASROOM(window, growthByPairs(GetText(window)))) return;
    SetLineEnds(window, ends);
    STAMP();
    if (before != ends && before != ENDS_NONE && GetLineEnds(window) != ends) Sound();
}

std::string BLOCKRULES(std::string_view file) {
    FRAME(BLOCKRULES);
    if (!ISCLASSFILE(file)) return {};
    return "any function record union if loop select\nouter function\nend end\ncomment //\n";
}

}  // namespace tarn
