// SPDX-License-Identifier: Apache-2.0
//
// Values as text and back: what the debugger's list shows, what its user types, and the compact form of values in data
// views.
//
// Cost: linear in the text; reading a value that stands in a file reads the file by the operations of its kind.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace tarn {

// Flags of a conversion.
enum ValueTextFlag : std::uint32_t {
    VALUE_NEWLINES = 0x100,      // a newline after each element
    VALUE_BRACES = 0x200,        // "{" and "}" around composites
    VALUE_BLANKS = 0x400,        // a blank after each comma
    VALUE_INDENT = 0x1000,       // three blanks at each level
    VALUE_ROWS = 0x10000,        // within a table: the row list without its own braces
    VALUE_CHARACTERS = 0x40000,  // a character array as text in quotes
    VALUE_TO_NUL = 0x80000,      // a character array up to its first NUL
    VALUE_HEX = 0x100000,        // integers also in hexadecimal
};

// The text of the value of `kind` (1 to 12) at `value`, of at most 65535 characters; into a string of the language: `dest`
// is its descriptor, and what is beyond a fixed capacity is dropped. Null: 764; a `dest` that is no string: 756, and
// nothing is changed.
void ValueText(const void* value, std::int32_t kind, std::uint32_t flags, void* dest);
std::string ValueText(const void* value, std::int32_t kind, std::uint32_t flags);

// Reads a value from `text` at `position` (1-based), which is left behind it. Elements that are empty keep their default.
// False, with the value as it was, if the text does not fit the kind; `position` is then where it does not.
bool ValueFromText(std::string_view text, std::int32_t& position, void* value, std::int32_t kind);

}  // namespace tarn
