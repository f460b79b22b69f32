// SPDX-License-Identifier: Apache-2.0
//
// How often the user has acted, as modules ask it (platform/model/useracts.h). Programs do not have it.
#pragma once

#include "platform/model/useracts.h"

namespace tarn {

using platform::userActs;

}  // namespace tarn
