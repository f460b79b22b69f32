// SPDX-License-Identifier: Apache-2.0
//
// The relations of the language as texts: "EQ", "NE", "GT", "LT", "GE", "LE", in any case; what stands behind
// the first two letters does not count. Operators are read here and nowhere else.
#pragma once

#include <cstdint>
#include <string_view>

namespace tarn {

// Bits: the relation holds when the left side is less, equal, greater. No text of an operator: no bit.
enum Relation : std::uint8_t {
    RelationNone = 0,
    RelationLess = 1,
    RelationEqual = 2,
    RelationGreater = 4,
    RelationDifferent = RelationLess | RelationGreater,
};

constexpr std::uint8_t RelationOf(std::string_view op) {
    constexpr auto key = [](char first, char second) {
        // All that is a letter of an operator once its bit of small letters is gone is that letter.
        const auto upper = [](char c) { return static_cast<unsigned char>(c) & 0xDFU; };
        return upper(first) * 256 + upper(second);
    };
    if (op.size() < 2) return RelationNone;
    switch (key(op[0], op[1])) {
    case key('E', 'Q'): return RelationEqual;
    case key('N', 'E'): return RelationDifferent;
    case key('G', 'T'): return RelationGreater;
    case key('L', 'T'): return RelationLess;
    case key('G', 'E'): return RelationGreater | RelationEqual;
    case key('L', 'E'): return RelationLess | RelationEqual;
    default: return RelationNone;
    }
}

// `order`: below 0, 0 or above 0, as the left side is less, equal or greater.
constexpr bool RelationHolds(std::uint8_t relation, std::int32_t order) {
    return (relation & (order < 0 ? RelationLess : order == 0 ? RelationEqual : RelationGreater)) != 0;
}

}  // namespace tarn
