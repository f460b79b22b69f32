// SPDX-License-Identifier: Apache-2.0
//
// The names that a class text declares, with their heads and lines, found by its words alone; so the text need not
// compile. What completion and the way to a declaration go by; the text of the library's own class is read in the same
// way. Cost: one pass over the text.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace tarn {

enum class NameKind { Function, Constant, Type, Variable, Window, Class, Word };

struct DeclaredName {
    std::string name;
    NameKind kind = NameKind::Function;
    bool isPublic = false;
    std::string head;  // "ADD(a : integer, b : integer) return integer", "LIMIT = 10"; blanks as one
    int line = 0;      // from 1
    // Of parameters and variables of a function its first and last line; else 0.
    int first = 0, last = 0;
};

// In the order of the text. Forms of a function that differ in their parameters stand each for itself.
std::vector<DeclaredName> SYMGETNAMES(std::string_view text);

// The call in which a text ends: what is called, which argument comes next (from 0), and where its parenthesis stands
// (from 1); an empty name if it ends in none. Strings and comments do not count.
struct OpenCall {
    std::string name;
    int argument = 0;
    int parenthesis = 0;
};
OpenCall SYMGETOPENCALL(std::string_view text);
// Whether a line ends inside of a string or a comment.
bool SYMENDSINTEXT(std::string_view line);
// Where an argument stands in a head; start from 1, length 0 if there is no such argument.
struct HeadPart {
    int start = 0, length = 0;
};
HeadPart SYMGETARGUMENT(std::string_view head, int argument);

}  // namespace tarn
