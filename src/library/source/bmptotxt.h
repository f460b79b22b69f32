// SPDX-License-Identifier: Apache-2.0
//
// Bytes as source text: a small bitmap, or any other file, as a constant of the language made of strings and `Chr(n)`,
//
//     "BM"+Chr(102)+Chr(0)+ ...
//
// in lines of little more than 80 characters; and the sixteen standard colours by number, value and name. A value has
// blue in its high byte and red in its low one. Cost: linear in the text.
#pragma once

#include "kernel/windows/windowing.h"
#include "library/system/constants.h"

#include <array>
#include <string>
#include <string_view>

namespace tarn {

// ---- bytes ----

inline constexpr int MAX_BITMAP_FILE = 7500;  // bytes of a file that becomes a text

// Puts the text of the file into a control that takes texts. False, with the reason in a box, for a file that is too
// large, is empty or does not exist, and for a control whose greatest length is too small, which then stays as it was.
// A file that cannot be read sets the error cell (651).
bool BMPFILETOTEXT(const std::string& file, const Object& control);
// The text of any bytes, without a limit.
std::string BYTESTRINGTOLITERAL(std::string_view bytes);
// The bytes that such a text stands for. A number is a byte, its lowest one; a string is what it holds, two quotes in it
// one; all else is passed over. So numbers alone, separated by anything, are read as well.
std::string LITERALTOBYTESTRING(std::string_view text);

// ---- colours ----

struct NamedColour {
    int value;
    std::string_view name;
};
// By their numbers, 0 to 15.
inline constexpr std::array<NamedColour, 16> STANDARDCOLOURS = {{{BLACK, "Black"},
                                                                 {DARKBLUE, "Dark blue"},
                                                                 {DARKGREEN, "Dark green"},
                                                                 {DARKCYAN, "Dark cyan"},
                                                                 {DARKRED, "Dark red"},
                                                                 {DARKMAGENTA, "Dark magenta"},
                                                                 {DARKYELLOW, "Dark yellow"},
                                                                 {DARKGREY, "Dark grey"},
                                                                 {LIGHTGREY, "Light grey"},
                                                                 {LIGHTBLUE, "Light blue"},
                                                                 {LIGHTGREEN, "Light green"},
                                                                 {LIGHTCYAN, "Light cyan"},
                                                                 {LIGHTRED, "Light red"},
                                                                 {LIGHTMAGENTA, "Light magenta"},
                                                                 {LIGHTYELLOW, "Light yellow"},
                                                                 {WHITE, "White"}}};

// A number or a value that is none of these leaves the result as it was.
void CLRNUMTORGB(int number, int& value);
void RGBTOCLRNUM(int value, int& number);
std::string RGBTOSTR(int value);     // the name; empty for a value that is none of these
std::string RGBTOHEXSTR(int value);  // "RRGGBB", of any value

}  // namespace tarn
