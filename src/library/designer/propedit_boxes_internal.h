// SPDX-License-Identifier: Apache-2.0
//
// The windows in which one value is chosen, as EXTRAPROPS shows them: modal, with their frame at x and y but
// on the screen. Each gives the answer, or nothing if the user cancelled.
#pragma once

#include "kernel/windows/windowing.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tarn::detail {

struct BoxPlace {
    int x = 0, y = 0;  // screen pixels
    std::string title;
    Object owner{};  // the window that the place belongs to
};

std::optional<int> chooseBasicColour(const BoxPlace& place, int colour);
// The row, from 1; `selected` is the one to begin with, 0 for none.
std::optional<int> chooseLine(const BoxPlace& place, const std::vector<std::string_view>& lines,
                              int selected);
// The union of the bits of the lines that are checked. Lines beyond the check boxes there are lose theirs.
std::optional<int> chooseBits(const BoxPlace& place, const std::vector<std::string_view>& lines, int bits);

}  // namespace tarn::detail
