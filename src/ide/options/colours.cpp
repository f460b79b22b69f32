// SPDX-License-Identifier: GPL-3.0-or-later
#include "ide/options/colours.h"

#include "library/designer/propedit.h"
#include "library/settings/profstr.h"
#include "library/system/system.h"

#include <charconv>

MODULE("toolmenu")

namespace tarn {
namespace {

constexpr int NoColour = -1, MostColour = 0xFFFFFF;
enum Style : int { Normal, Bold, Italic };  // in the order of the radio buttons

// In the order of BasicColours.
constexpr std::string_view names[] = {"Black",      "Dark blue",     "Dark green",   "Dark cyan",
                                      "Dark red",   "Dark magenta",  "Dark yellow",  "Dark grey",
                                      "Light grey", "Light blue",    "Light green",  "Light cyan",
                                      "Light red",  "Light magenta", "Light yellow", "White"};
static_assert(std::size(names) == BasicColours.size());

struct Choice {
    int colour = NoColour;
    Style style = Normal;
    friend bool operator==(const Choice&, const Choice&) = default;
};

std::string hexText(int colour) {
    return "0x" + HEXSTR(colour, 6);
}

// "0x" and hexadecimal digits, or decimal ones.
int colourFromText(std::string_view text) {
    const bool hex = text.size() > 2 && STREQUAL(text.substr(0, 2), "0x");
    if (hex) text.remove_prefix(2);
    int colour = NoColour;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), colour, hex ? 16 : 10);
    const bool good = error == std::errc() && end == text.data() + text.size() && !text.empty();
    return good && colour >= 0 && colour <= MostColour ? colour : NoColour;
}

Choice choiceFromText(const std::string& setting) {
    Choice choice;
    const int words = STRWORDCOUNT(setting);
    for (int i = words; i > 0; i--) {
        const std::string word = STRWORD(setting, i);
        if (i == 1) choice.colour = colourFromText(word);
        if (STREQUAL(word, "ITALIC") && choice.style == Normal) choice.style = Italic;
        if (STREQUAL(word, "BOLD")) choice.style = Bold;
    }
    return choice;
}

int colourOfRow(const std::string& row) {
    for (std::size_t i = 0; i < std::size(names); i++)
        if (row == names[i]) return static_cast<int>(BasicColours[i]);
    return colourFromText(row);
}

int rowOfColour(const Object& list, int colour) {
    const int rows = GetListCount(list);
    for (int row = 1; row <= rows; row++)
        if (colourOfRow(GetList(list, row)) == colour) return row;
    return 0;
}

Choice choiceIn(const Object& list, const Object& radio) {
    Choice choice;
    if (const int row = GetListIndex(list); row > 0) choice.colour = colourOfRow(GetList(list, row));
    const int place = Controlselectionpos(radio);
    if (place > 0) choice.style = static_cast<Style>(place - 1);
    return choice;
}

void showColour(const Object& list, int colour) {
    if (colour != NoColour && rowOfColour(list, colour) == 0) AddItem(list, hexText(colour));
    SetListIndex(list, colour == NoColour ? 0 : rowOfColour(list, colour));
}

}  // namespace

void ADDCOLORITEMS(const Object& list) {
    FRAME(ADDCOLORITEMS);
    STAMP();
    Clear(list);
    for (std::size_t i = 0; i < std::size(names); i++) {
        STAMP();
        const std::string number = STR(static_cast<int>(i) + 1);
        AddItem(list, names[i], "colour" + std::string(number.size() < 2 ? "0" : "") + number);
    }
}

std::string HILITEVALUESTOSTR(const Object& list, const Object& radio) {
    FRAME(HILITEVALUESTOSTR);
    STAMP();
    const Choice choice = choiceIn(list, radio);
    if (choice.colour == NoColour) return "0";
    static constexpr std::string_view styles[] = {"", " BOLD", " ITALIC"};
    return hexText(choice.colour) + std::string(styles[choice.style]);
}

void LOADHILITEVALUES(const std::string& file, std::string_view section, std::string_view key,
                      const Object& list, const Object& radio, const Object& label) {
    FRAME(LOADHILITEVALUES);
    STAMP();
    const std::string setting = PROFILESTRGET(file, section, key);
    SetCaption(label, setting);
    const Choice choice = choiceFromText(setting);
    STAMP();
    showColour(list, choice.colour);
    SetValue(ControlElement(radio, choice.style + 1), 1);
    STAMP();
}

bool HILITEVALUESCHANGED(const Object& list, const Object& radio, const Object& label) {
    FRAME(HILITEVALUESCHANGED);
    STAMP();
    return choiceIn(list, radio) != choiceFromText(GetCaption(label));
}

void SAVEHILITEVALUES(const std::string& file, std::string_view section, std::string_view key,
                      const Object& list, const Object& radio) {
    FRAME(SAVEHILITEVALUES);
    STAMP();
    PROFILESTRPUT(file, section, key, HILITEVALUESTOSTR(list, radio));
}

}  // namespace tarn
