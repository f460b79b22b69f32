// SPDX-License-Identifier: Apache-2.0
//
// Marks of whole lines, as modules call them: thin wrappers of platform/operations/linemarks.h that put a failure into the
// error cell.
#pragma once

#include "kernel/windows/windowing.h"
#include "platform/operations/linemarks.h"

#include <vector>

namespace tarn {

using platform::KEY_MARGIN_CLICK;
using platform::LineMark;
using platform::LINEMARK_BREAKPOINT;
using platform::LINEMARK_CURRENT;
using platform::LINEMARK_RULE;

inline void SetLineMarks(const Object& window, const std::vector<LineMark>& marks) {
    detail::note(platform::SetLineMarks(window, marks));
}
inline std::vector<LineMark> GetLineMarks(const Object& window) {
    return detail::bare(platform::GetLineMarks(window));
}
inline void SetMarkMargin(const Object& window, bool shown) {
    detail::note(platform::SetMarkMargin(window, shown));
}
inline bool GetMarkMargin(const Object& window) {
    return detail::bare(platform::GetMarkMargin(window));
}
inline int GetClickedLine(const Object& window) {
    return detail::bare(platform::GetClickedLine(window));
}

}  // namespace tarn
