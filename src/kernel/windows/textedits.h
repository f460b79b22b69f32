// SPDX-License-Identifier: Apache-2.0
//
// Edits and marks of many places of a text, as modules call them: thin wrappers of platform/operations/textedits.h that
// put a failure into the error cell.
#pragma once

#include "kernel/windows/windowing.h"
#include "platform/operations/textedits.h"

#include <vector>

namespace tarn {

using platform::TextEdit;

inline void ReplaceParts(const Object& object, const std::vector<TextEdit>& edits) {
    detail::note(platform::ReplaceParts(object, edits));
}
inline void SetMarks(const Object& object, const std::vector<Selection>& places) {
    detail::note(platform::SetMarks(object, places));
}
inline void SetFolds(const Object& object, const std::vector<int>& lines) {
    detail::note(platform::SetFolds(object, lines));
}
inline std::vector<int> GetFolds(const Object& object) {
    return detail::bare(platform::GetFolds(object));
}
inline std::vector<Selection> GetMarks(const Object& object) {
    return detail::bare(platform::GetMarks(object));
}

}  // namespace tarn
