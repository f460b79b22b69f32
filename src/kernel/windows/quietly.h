// SPDX-License-Identifier: Apache-2.0
//
// Windows that come up without the focus, as modules call it: like windowing.h this puts a failure into the error cell.
// What it does is told in platform/operations/quietly.h. Programs do not have it.
#pragma once

#include "kernel/windows/windowing.h"
#include "platform/operations/quietly.h"

namespace tarn {

inline void ShowQuietly(const Object& window, bool behind) {
    detail::note(platform::ShowQuietly(window, behind));
}

}  // namespace tarn
