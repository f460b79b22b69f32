// SPDX-License-Identifier: Apache-2.0
//
// Values as the tests of the debugger name them.
#pragma once

#include "unit/kernel/values_fixture.h"

#include <string_view>
#include <vector>

namespace tarn::debugged {

using model::Array;
using model::List;
using model::Number;
using model::Real;
using model::Record;
using model::Set;
using model::Text;

inline ValueModel integer(std::int64_t number) {
    return Number(KindInteger, number);
}
inline ValueModel integers(const std::vector<std::int64_t>& numbers, std::int32_t maxlength = UNBOUNDED) {
    std::vector<ValueModel> parts;
    for (const std::int64_t number : numbers) parts.push_back(integer(number));
    return List(integer(0), parts, maxlength);
}
// An array of characters from 1.
inline ValueModel characters(std::string_view text, std::int32_t maxlength = 0) {
    std::vector<ValueModel> parts;
    for (const char c : text) parts.push_back(Number(KindEnum, static_cast<unsigned char>(c)));
    return Array({{1, static_cast<std::int32_t>(text.size())}}, Number(KindEnum, 0), parts, maxlength);
}

}  // namespace tarn::debugged
