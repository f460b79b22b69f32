// SPDX-License-Identifier: Apache-2.0
//
// The symbol file of a class; docs/formats/sym.md describes it.
#pragma once

#include "toolchain/language/tree.h"

#include <array>
#include <string>
#include <string_view>
#include <vector>

namespace tarn::toolchain {

inline constexpr std::size_t CodeLineBytes = 1000;  // of the bitmap: lines 1 to 8000

struct Symbol {
    std::string name;
    int scope = 1;  // 1 public, 2 private, 3 local to a function
    std::string signature, sort;
    int decline = 0, impline = 0, useline = 0;
    std::string classname;
    std::array<int, 6> bounds{};  // lower and upper of up to three dimensions; a capacity is the first
    std::string disambig;         // the kinds of a function's parameters
    std::string typeName;
    int compno = 0;
    std::int32_t constvalue = 0;
    std::string comment;
};

// The symbols of a checked class in the order of the file, without the two special records.
std::vector<Symbol> symbolsOf(const ClassTree& tree);
// The bit of line L lies in byte (L - 1) / 8 and is 1 << (L - 1) % 8.
std::string codeLineBitmap(const std::vector<bool>& codeLines);
// A text as it stands in a cell.
std::string quotedCell(std::string_view text);
// The whole file. `options` as in "-d2 -p0".
std::string symbolFile(const ClassTree& tree, std::string_view options, const std::vector<bool>& codeLines);

}  // namespace tarn::toolchain
