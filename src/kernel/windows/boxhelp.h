// SPDX-License-Identifier: Apache-2.0
//
// For modules: what F1 does in boxes, and in windows that leave it alone.
#pragma once

#include "platform/operations/boxhelp.h"

namespace tarn {

using platform::SetBoxHelp;

}  // namespace tarn
