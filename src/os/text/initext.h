// SPDX-License-Identifier: Apache-2.0
//
// The text of a settings file: finding, listing and changing its sections and entries, without touching the
// disk.
//
// A line ends at LF; a CR before it belongs to the line end. A header is a line "[name]" from column 1, with
// letters, digits, underscore, blank and full stop in the name; no other line that starts with "[" can be
// found, but it ends the section above it. An entry is key=value from column 1. A key begins with a letter, a
// digit or an underscore, and goes on with these or any other of the characters 33 to 126 but "="; so
// "key =value" is no entry. A line whose first character is ";" is a comment. Names compare without regard to
// the case of ASCII letters.
//
// What is written ends in CR LF; lines that are not written keep their bytes. Line ends inside a name or a
// value that is written become blanks, so that an entry always stays one line.
//
// Cost: reading operations are one pass without allocation but for the result; writing ones build the new
// text once.
#pragma once

#include <string>
#include <string_view>

namespace tarn::ini {

// The value of a key as it is read (less its enclosing quotes); empty if absent. A view into `text`.
std::string_view get(std::string_view text, std::string_view section, std::string_view key);
// All values of a section up to its first blank line, a newline behind each.
std::string values(std::string_view text, std::string_view section);
std::string keys(std::string_view text, std::string_view section);  // one per line
std::string sections(std::string_view text);                        // one per line

// Whether a key can be found again; no other key is ever written.
bool isKey(std::string_view key);
// Changes nothing if `key` is no key.
void put(std::string& text, std::string_view section, std::string_view key, std::string_view value);
// The entries and comments at the head of the section become the numbered lines of `value`.
void putList(std::string& text, std::string_view section, std::string_view value);
// An entry, or with an empty key the section with its header. False when there is no such thing.
bool remove(std::string& text, std::string_view section, std::string_view key);

}  // namespace tarn::ini
