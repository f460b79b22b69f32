// SPDX-License-Identifier: Apache-2.0
//
// Drawings that are shown larger or smaller than they are drawn, as modules call it: like windowing.h these put a failure
// into the error cell. What they do is told in platform/operations/drawscale.h.
#pragma once

#include "kernel/windows/windowing.h"
#include "platform/operations/drawscale.h"

namespace tarn {

inline int GetDrawScale(const Object& window) {
    return detail::bare(platform::GetDrawScale(window));
}
inline void SetDrawScale(const Object& window, int percent) {
    detail::note(platform::SetDrawScale(window, percent));
}

}  // namespace tarn
