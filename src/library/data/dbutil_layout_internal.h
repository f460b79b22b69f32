// SPDX-License-Identifier: Apache-2.0
//
// What the windows of data files have in common: a list "iconlist1" above a line of buttons.
#pragma once

#include "kernel/windows/windowing.h"

#include <string>
#include <string_view>

namespace tarn::detail {

// The list takes the room that the window gains. The two buttons stay in the corner below it. The list's left
// edge is the margin on every side.
void layOutList(const Object& window, std::string_view firstButton, std::string_view lastButton);
// Lets a control reach to the right margin.
void stretchToMargin(const Object& window, std::string_view name);
// The window gets no smaller than that part of what it is now.
void limitSize(const Object& window, int percent);
std::string countText(int rows, int columns);

}  // namespace tarn::detail
