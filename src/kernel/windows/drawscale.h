// SPDX-License-Identifier: Apache-2.0
//
// Drawings that are shown larger or smaller than they are drawn, or in other colours, as modules call it: like windowing.h
// these put a failure into the error cell. What they do is told in platform/operations/drawscale.h.
#pragma once

#include "kernel/windows/windowing.h"
#include "platform/operations/drawscale.h"

namespace tarn {

using platform::DARK_COLOURS;
using platform::DESKTOP_COLOURS;
using platform::DrawColours;
using platform::LIGHT_COLOURS;

inline int GetDrawScale(const Object& object) {
    return detail::bare(platform::GetDrawScale(object));
}
inline void SetDrawScale(const Object& object, int percent) {
    detail::note(platform::SetDrawScale(object, percent));
}
inline DrawColours GetDrawColours(const Object& object) {
    return detail::bare(platform::GetDrawColours(object));
}
inline void SetDrawColours(const Object& object, DrawColours colours) {
    detail::note(platform::SetDrawColours(object, colours));
}

}  // namespace tarn
