// SPDX-License-Identifier: Apache-2.0
//
// The decision of a stamp, and the stop itself.
#pragma once

namespace tarn::debug {

// Stops if a step, a breakpoint or `force` asks for it, and returns when the user has left the stop.
void StopIfAsked(bool force);

}  // namespace tarn::debug
