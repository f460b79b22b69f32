// SPDX-License-Identifier: Apache-2.0
//
// The words of the language that cannot be names, in any case: the one table of them; what each means to the
// grammar is the toolchain's matter (toolchain/language/words.h). Cost: a binary search.
#pragma once

#include <string_view>
#include <vector>

namespace tarn {

// In alphabetical order.
// clang-format off
inline constexpr std::string_view ReservedWords[] = {
    "adt",     "and",    "array",   "asc",      "boolean", "by",      "call",   "callback", "case",
    "class",   "code",   "const",   "desc",     "div",     "downto",  "each",   "else",     "elseif",
    "end",     "enum",   "exit",    "external", "false",   "fixed",   "for",    "from",     "function",
    "if",      "in",     "index",   "inout",    "integer", "iterate", "list",   "loop",     "me",
    "mod",     "not",    "of",      "onerror",  "or",      "order",   "out",    "postcond", "precond",
    "private", "public", "real",    "record",   "return",  "run",     "select", "set",      "string",
    "table",   "then",   "through", "to",       "true",    "type",    "union",  "uses",     "var",
    "when",    "where",  "while",   "with"};
// clang-format on

bool IsReservedWord(std::string_view word);
// Kept for later versions of the language and for generated code.
bool IsFutureReservedWord(std::string_view word);
std::vector<std::string_view> FutureReservedWordList();

}  // namespace tarn
