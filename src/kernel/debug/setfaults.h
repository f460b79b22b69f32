// SPDX-License-Identifier: Apache-2.0
//
// What is wrong with a set that a user has typed, in words that tell what to do about it. What is no set at all is told by
// whoever reads it (values/sets.h); members that are left out, which that allows, are slips of a hand here.
//
// Cost: linear in the text of the set.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace tarn {

struct SetFault {
    std::size_t at = 0;  // in the text, from 0
    std::string why;     // goes on behind "at character 3 "
};

// The first fault of the set whose "[" stands at `at`, with these bounds: a member that is missing before a comma or a
// bracket, one outside of the bounds, or a range that goes down.
std::optional<SetFault> FaultOfSet(std::string_view text, std::size_t at, std::int32_t lower,
                                   std::int32_t upper);

}  // namespace tarn
