// SPDX-License-Identifier: Apache-2.0
//
// The wrappers of the operations in platform/operations/focus.h.
#pragma once

#include "kernel/windows/windowing.h"
#include "platform/operations/focus.h"

namespace tarn {

using platform::GetFocus;
using platform::LEAVE_EVENT;

inline void WatchFocus(const Object& window) {
    detail::note(platform::WatchFocus(window));
}

inline void SetFocus(const Object& control) {
    detail::note(platform::SetFocus(control));
}

}  // namespace tarn
