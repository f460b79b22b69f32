// SPDX-License-Identifier: Apache-2.0
//
// The lines of the program's classes that have code, as the symbols of each class tell them (docs/formats/sym.md): those
// that can take a breakpoint. breakpoints.h has the two questions about them.
#pragma once

#include "kernel/debug/breakpoints.h"

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

namespace tarn {

// A set of the lines 1 to 8000.
class CodeLineSet {
public:
    static constexpr std::size_t Bytes = MaxCodeLine / 8;
    [[nodiscard]] bool has(std::int32_t line) const {
        if (line < 1 || line > MaxCodeLine) return false;
        const auto at = static_cast<std::size_t>(line - 1);
        return ((bits_[at / 8] >> (at % 8)) & 1) != 0;
    }
    // The first one behind `line`; 0 for none.
    [[nodiscard]] std::int32_t next(std::int32_t line) const;
    void assign(std::string_view bitmap);  // one of another length than 1000 bytes is empty

private:
    std::array<std::uint8_t, Bytes> bits_{};
};

struct CodeLineEntry {
    char className[MaxName + 1];
    CodeLineSet lines;
};

struct CodeLineTable {
    std::int32_t count;
    CodeLineEntry entries[MaxClasses];
};
extern CodeLineTable* codeLineTable;  // null while there is no debugger

// The symbols of a class: beside its source, else beside the program; empty if there are none.
std::string SymbolFileOf(std::string_view className, std::string_view sourcePath);
// Reads the lines from the symbols beside the source, else from those beside the program. A file that is missing or
// damaged has none. Cost: one pass over the file.
void LoadCodeLines(std::string_view className, std::string_view sourcePath, CodeLineSet& lines);
// Adds the class to the table, if there is one and it has room, with its lines.
void AddCodeLines(std::string_view className, std::string_view sourcePath);

}  // namespace tarn
