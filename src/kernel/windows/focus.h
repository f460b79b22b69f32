// SPDX-License-Identifier: Apache-2.0
//
// Where the keys of a window go, as modules call it: like windowing.h these put a failure
// into the error cell. What they do is told in platform/operations/focus.h. Programs do not have them.
#pragma once

#include "kernel/windows/windowing.h"
#include "platform/operations/focus.h"

#include <utility>
#include <vector>

namespace tarn {

using platform::GetFocus;
using platform::LEAVE_EVENT;

inline void WatchFocus(const Object& window) {
    detail::note(platform::WatchFocus(window));
}

inline void TakeKeys(const Object& window, std::vector<int> keys) {
    detail::note(platform::TakeKeys(window, std::move(keys)));
}

inline void SetFocus(const Object& control) {
    detail::note(platform::SetFocus(control));
}

}  // namespace tarn
