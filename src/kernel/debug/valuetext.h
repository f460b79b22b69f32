// SPDX-License-Identifier: Apache-2.0
//
// Values as text and back: what the debugger's list shows, what its user types, and the compact form of values in data
// views.
//
//   boolean           True, False                       string   "text", with the sequences below
//   enum              its ordinal                       set      [1..3,7]
//   integer           decimal, or 0x and eight digits   others   {element, element}
//   fixed             four decimals                              the rows of a table are its elements
//   real              exponent form, all its digits
//
// In quotes a tab, LF and CR stand as \t, \n, \r, a backslash and a double quote twice, and any other byte below 32 or
// from 127 up as \xNN. Elements of an array of more dimensions stand in storage order; bounds and capacities are no part
// of a text.
//
// A descriptor that is all zero inside of a value is an empty value. What stands in a file is read by the operations of
// its kind, which may fail (653 and the other codes of files): the text then ends before the element. A list or table in a
// file that is not open has no elements, without an error.
//
// Cost: linear in the text, not in the value; writing stops where the text is full.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace tarn {

// Flags of a conversion.
enum ValueTextFlag : std::uint32_t {
    VALUE_NEWLINES = 0x100,      // a newline after each element
    VALUE_BRACES = 0x200,        // "{" and "}" around composites
    VALUE_BLANKS = 0x400,        // a blank after each comma, but for one at the end of a line
    VALUE_INDENT = 0x1000,       // three blanks at each level, where elements begin lines
    VALUE_ROWS = 0x10000,        // of a table, or of a list of rows: the rows without the braces around them
    VALUE_CHARACTERS = 0x40000,  // arrays of enums with one dimension as text in quotes
    VALUE_TO_NUL = 0x80000,      // the same arrays end before their first NUL
    VALUE_HEX = 0x100000,        // integers in hexadecimal
};

inline constexpr std::size_t MaxValueText = 65535;  // characters

// The text of the value of `kind` (1 to 12) at `value` into a string of the language, whose descriptor `dest` is: at most
// MaxValueText characters, or as many as a fixed one holds; the rest is dropped. 764: no value, no kind, a descriptor of
// another kind. 756: `dest` is no string. Nothing is changed then.
void ValueText(const void* value, std::int32_t kind, std::uint32_t flags, void* dest);
// The same; empty where the other gives an error.
std::string ValueText(const void* value, std::int32_t kind, std::uint32_t flags);

// Reads a value from `text` at `position` (1-based), which is left behind it; what follows does not matter. Blanks and
// line ends may stand between, integers in either form, sets with ".." or ':', arrays of characters in either form,
// booleans also as "Yes" and "No". Composites stand in braces; those of the outermost value may be missing. Elements that
// are empty, and those that a record or an array has left, get their default: 0, nothing. A dynamic array of one
// dimension gets as many elements as there are, from the lower bound that it had, or 1; one that gets none, of any
// dimensions, has no bounds afterwards.
//
// False, with the value as it was, if the text does not fit the kind or the value's shape (more elements or characters
// than it holds, a row whose key is there); `position` is then where it does not. Also with an error in the cell: 764 as
// above, 802, and the codes of files.
bool ValueFromText(std::string_view text, std::int32_t& position, void* value, std::int32_t kind);

// Where a text does not fit, and what would.
struct ValueMisfit {
    std::int32_t position = 1;
    std::int32_t kind = 0;       // of the value, or of the one inside of it, that begins or goes on there
    std::int32_t capacity = 0;   // of a fixed string for which the text is too long
    std::int32_t highest = 255;  // of an enum
    std::string kept;            // of a number that would be cut or rounded: what it would become
    // In words that tell what to do, where more is known: goes on behind "at character 3 ".
    std::string why{};
};
// The same for a text that a user has typed, where what is left out may have been forgotten. It is one value from its
// beginning to its end, but for blanks. Composites have their braces; a record, or an array whose elements do not come and
// go, has as many elements as commas tell, or none at all; a set has no empty members. A number that would be cut or
// rounded does not fit, nor an ordinal beyond the names of its enum, as far as `names` tell those (fieldnames.h).
bool ValueFromWholeText(std::string_view text, void* value, std::int32_t kind, ValueMisfit& misfit,
                        std::string_view names = {});

}  // namespace tarn
