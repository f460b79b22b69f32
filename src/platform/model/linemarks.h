// SPDX-License-Identifier: Apache-2.0
//
// Marks of lines in a text that no control keeps, and the user's click beside a line.
#pragma once

#include "platform/model/model.h"
#include "platform/operations/linemarks.h"

#include <cstddef>
#include <string_view>
#include <vector>

namespace tarn::platform {

// What becomes of the marks when `count` bytes of the text, from the place `from` on (from 0), give way to others.
void moveLineMarks(std::vector<LineMark>& marks, std::string_view before, std::size_t from, std::size_t count,
                   std::string_view comes);

// On the margin of an edit window. Nothing where the window shows none, or takes no input.
void userMarginClick(Control& control, int line);

}  // namespace tarn::platform
