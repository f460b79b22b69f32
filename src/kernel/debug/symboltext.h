// SPDX-License-Identifier: Apache-2.0
//
// Texts in the cells of symbol files (docs/formats/sym.md), in which the compiler has made every byte printable.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace tarn {

// The places, from 1, of the fields of a record.
enum SymbolColumn {
    SymbolName = 1,
    SymbolSort = 4,
    SymbolBodyLine = 6,
    SymbolTypeName = 16,
    SymbolValue = 18,
    SymbolComment = 19
};

// A text as it was before; at most `most` bytes of it. A sequence that is none stands for itself. Cost: linear.
std::string SymbolText(std::string_view cell, std::size_t most);

}  // namespace tarn
