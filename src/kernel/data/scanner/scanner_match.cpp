// SPDX-License-Identifier: Apache-2.0
//
// The tables by which the scanner finds the longest symbol at a place.
#include "kernel/data/scanner/scanner_match_internal.h"

#include "kernel/data/scanner/scanner_bytes.h"
#include "os/text/ascii.h"

namespace tarn {

constexpr SymbolMatcher::Columns SymbolMatcher::columnsOf(bool ignoreCase) {
    Columns result{};
    for (std::size_t c = 32; c <= 126; ++c) {
        const char byte = static_cast<char>(c);
        result[c] = static_cast<std::uint8_t>((ignoreCase ? ascii::upper(byte) : byte) - 31);
    }
    return result;
}
constinit const SymbolMatcher::Columns SymbolMatcher::exact = columnsOf(false);
constinit const SymbolMatcher::Columns SymbolMatcher::folded = columnsOf(true);

void SymbolMatcher::build(const SymbolTable* table, bool ignoreCase) {
    table_ = table;
    changes_ = symbolTableChanges;
    ignoreCase_ = ignoreCase;
    columns_ = ignoreCase ? &folded : &exact;
    for (std::size_t c = 0; c < SymbolClassCount; ++c)
        classIds_[c] = symbolClassId(table, static_cast<SymbolClass>(c));
    classIds_[ClassNone] = SymbolUnknown;
    one_.fill({});
    for (auto& row : two_) row.fill({});
    // Keys are indexed as they stand: a small letter in one is never met when case is ignored.
    for (std::int32_t i = 0; table != nullptr && i < table->count; ++i) {
        const char* const key = table->entries[static_cast<std::size_t>(i)].key;
        const std::size_t first = exact[static_cast<unsigned char>(key[0])];
        const std::size_t second = exact[static_cast<unsigned char>(key[1])];
        one_[first].take(static_cast<std::uint8_t>(i));
        if (second != 0) two_[first][second].take(static_cast<std::uint8_t>(i));
    }
    one_[0] = {};
}

// The entries of the range whose key has the byte at `index`. All of them have the same bytes before it, so
// they are sorted by it, and a key that ends there comes first.
SymbolMatcher::Range SymbolMatcher::narrow(Range range, std::int32_t index, unsigned char c) const {
    const std::size_t column = columnOf(c);
    if (column == 0) return {};
    const auto columnAt = [&](std::uint8_t entry) {
        const char byte = table_->entries[static_cast<std::size_t>(entry)].key[index];
        return static_cast<std::size_t>(exact[static_cast<unsigned char>(byte)]);
    };
    while (range.low < range.high && columnAt(range.low) < column) ++range.low;
    while (range.low < range.high && columnAt(range.high) > column) --range.high;
    return columnAt(range.low) == column ? range : Range{};
}

// With each byte of the text the range shrinks to the keys that go on with it.
SymbolMatch SymbolMatcher::longestOf(Range range, const unsigned char* at) const {
    SymbolMatch best{false, 0, 0, ""};
    std::int32_t length = 1;
    for (;;) {
        const SymbolEntry& entry = table_->entries[range.low];
        if (entry.key[length] == '\0') {
            if (range.single()) return {true, length, entry.id, entry.terminator};
            best = {true, length, entry.id, ""};
        }
        range = length == 1 ? two_[columnOf(at[0])][columnOf(at[1])] : narrow(range, length, at[length]);
        if (range.empty()) return best.found ? best : SymbolMatch{false, length, 0, ""};
        ++length;
    }
}

}  // namespace tarn
