// SPDX-License-Identifier: Apache-2.0
//
// For modules: what F1 does in boxes.
#pragma once

#include "platform/operations/boxhelp.h"

namespace tarn {

using platform::SetBoxHelp;

}  // namespace tarn
