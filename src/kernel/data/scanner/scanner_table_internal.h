// SPDX-License-Identifier: Apache-2.0
//
// What the scanner itself needs to know of symbol tables beyond scanner.h.
#pragma once

#include "kernel/data/scanner/scanner.h"

#include <cstdint>
#include <string_view>

namespace tarn {

// In the order of the table of class names.
enum SymbolClass : std::uint8_t {
    ClassId,
    ClassXmlId,
    ClassSqStr,
    ClassDqStr,
    ClassMlSqStr,
    ClassMlDqStr,
    ClassWhitespace,
    ClassEol,
    ClassReal,
    ClassFixed,
    ClassInteger,
    ClassHex,
    ClassNone,  // of a text that only looks like a number
};
inline constexpr std::int32_t SymbolClassCount = ClassNone;

// "##ID" and so on.
std::string_view symbolClassKey(SymbolClass symbolClass);

// The id under which the table has a class; SymbolUnknown without one.
std::int32_t symbolClassId(const SymbolTable* table, SymbolClass symbolClass);

// Grows with every change of any table. Not seen outside of the library, so that it is reached directly.
[[gnu::visibility("hidden")]] extern std::uint64_t symbolTableChanges;

}  // namespace tarn
