// SPDX-License-Identifier: Apache-2.0
//
// Finds the symbol of a table that the bytes at a place begin with.
//
// Since a table is sorted, the keys that begin with a given text are a range of it. An index has these ranges
// for one byte and for two, so most bytes of a file cost one look, and it has the ids of the classes. Cost of
// building it: some microseconds, at the first scan after a change of a table.
#pragma once

#include "kernel/data/scanner/scanner_table_internal.h"

#include <array>
#include <cstdint>

namespace tarn {

struct SymbolMatch {
    bool found;
    std::int32_t length;  // of the text: the symbol's; or, with none found, of what was tried
    std::int32_t id;
    const char* terminator;  // "" for an ordinary symbol
};

class SymbolMatcher {
public:
    // To be called before each scan.
    void use(const SymbolTable* table, bool ignoreCase) {
        if (table == table_ && symbolTableChanges == changes_ && ignoreCase == ignoreCase_) [[likely]]
            return;
        build(table, ignoreCase);
    }
    // The table may go away, or become another one by other means than its operations.
    void forget() { changes_ = ~std::uint64_t{0}; }

    [[nodiscard]] std::int32_t classId(SymbolClass symbolClass) const { return classIds_[symbolClass]; }

    // The longest symbol at `at`, where there must be a byte that no key holds (a line end) sooner or later.
    // A terminator comes only with a key that is no prefix of another. What was tried in vain counts in
    // `length` too: a key may have begun there.
    [[nodiscard]] SymbolMatch longest(const unsigned char* at) const {
        const Range first = one_[columnOf(*at)];
        return first.empty() ? SymbolMatch{false, 0, 0, ""} : longestOf(first, at);
    }

private:
    // Of entries; `low` above `high`: empty.
    struct Range {
        std::uint8_t low = 1, high = 0;
        [[nodiscard]] bool empty() const { return low > high; }
        [[nodiscard]] bool single() const { return low == high; }
        void take(std::uint8_t entry) {
            if (empty()) low = entry;
            high = entry;
        }
    };
    // What can stand in keys, 32 to 126, has the columns 1 to 95; everything else has the column 0.
    static constexpr std::size_t columns = 96;
    using Columns = std::array<std::uint8_t, 256>;
    static constexpr Columns columnsOf(bool ignoreCase);
    static const Columns exact, folded;

    [[nodiscard]] std::size_t columnOf(unsigned char c) const { return (*columns_)[c]; }
    void build(const SymbolTable* table, bool ignoreCase);
    [[nodiscard]] SymbolMatch longestOf(Range range, const unsigned char* at) const;
    [[nodiscard]] Range narrow(Range range, std::int32_t index, unsigned char c) const;

    const SymbolTable* table_ = nullptr;
    std::uint64_t changes_ = ~std::uint64_t{0};
    bool ignoreCase_ = false;
    const Columns* columns_ = &exact;
    std::array<Range, columns> one_{};
    std::array<std::array<Range, columns>, columns> two_;  // built before it is read
    std::array<std::int32_t, SymbolClassCount + 1> classIds_{};
};

}  // namespace tarn
