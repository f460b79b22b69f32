// SPDX-License-Identifier: Apache-2.0
//
// How often the user has acted: pressed or picked something, typed a key, clicked, closed a window. What has to be told
// once for each thing that the user does, however often it happens meanwhile, compares two of these numbers.
#pragma once

#include <cstdint>

namespace tarn::platform {

void noteUserAct();  // called where a view tells what the user did
std::uint64_t userActs();

}  // namespace tarn::platform
