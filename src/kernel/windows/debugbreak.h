// SPDX-License-Identifier: Apache-2.0
//
// For modules: the signal that breaks into a program under the debugger, see platform/operations/debugger.h. A process that
// is not, or no longer, debugged takes no notice of it.
#pragma once

#include "platform/operations/debugger.h"

namespace tarn {

using platform::DebugBreakSignal;

}  // namespace tarn
