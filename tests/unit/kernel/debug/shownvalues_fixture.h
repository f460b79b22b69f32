// SPDX-License-Identifier: Apache-2.0
//
// Values that tests of the debugger show.
#pragma once

#include "unit/kernel/debug/debuggedvalues.h"
#include "unit/kernel/debug/framevariables_fixture.h"

namespace tarn {

using debugged::integer;
inline ValueModel integers(std::int32_t count) {
    std::vector<ValueModel> parts;
    for (std::int32_t i = 1; i <= count; ++i) parts.push_back(integer(i));
    return model::List(integer(0), parts);
}

}  // namespace tarn
