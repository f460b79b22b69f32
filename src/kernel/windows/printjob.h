// SPDX-License-Identifier: Apache-2.0
//
// Printing with a heading, a part of the pages or several copies, as modules call it: like windowing.h these put a failure
// into the error cell. What they do is told in platform/operations/printjob.h.
#pragma once

#include "kernel/windows/windowing.h"
#include "platform/operations/printjob.h"

#include <string>

namespace tarn {

using platform::PrintJob;

inline void StartPrint(const Object& printer, const PrintJob& job) {
    detail::note(platform::StartPrint(printer, job));
}
inline void CancelPrint(const Object& printer) {
    detail::note(platform::CancelPrint(printer));
}
inline PrintChoice PrintDialog(const Object& owner, int flags, const std::string& printer) {
    return detail::bare(platform::PrintDialog(owner, flags, printer));
}

}  // namespace tarn
