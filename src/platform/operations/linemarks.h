// SPDX-License-Identifier: Apache-2.0
//
// Windowing operations on marks of whole lines: in a margin of their own in front of the text, and the line where a
// program stands also behind its text. They are for modules of this system, not for programs.
//
// Marks stay with their lines while the text is edited; those of lines that are deleted as a whole go with them, and
// SetText takes all of them away. Lines count from 1. 702 and 727 as everywhere; an object that is no edit window answers
// with nothing and takes none, and a text with lines so long that they stand in rows shows none. Cost: linear in the marks;
// what an edit does to them is constant on a screen, and linear in the marks without one.
#pragma once

#include "platform/object.h"

#include <vector>

namespace tarn::platform {

namespace types {

// Of a line, any of these together.
enum LineMarkKind : int {
    LINEMARK_BREAKPOINT = 1,
    LINEMARK_RULE = 2,
    LINEMARK_CURRENT = 4,
    LINEMARK_ALL = 7
};

struct LineMark {
    int line = 1;
    int kinds = 0;
    friend bool operator==(const LineMark&, const LineMark&) = default;
};

// What a window function gets for a click in the margin, as KEYPRESS_EVENT; GetClickedLine tells the line.
inline constexpr int KEY_MARGIN_CLICK = 0x1002;

}  // namespace types

// These marks, and no others. Several may be of one line.
Code SetLineMarks(const Object& window, const std::vector<LineMark>& marks);
// The marks as they were set, in that order, each with the line where it is now: 0 if it has gone, or its line was none of
// the text. Empty behind SetText, and where there is no room for marks.
Answer<std::vector<LineMark>> GetLineMarks(const Object& window);
// Whether there is room for them, where the user can click.
Code SetMarkMargin(const Object& window, bool shown);
Answer<bool> GetMarkMargin(const Object& window);
Answer<int> GetClickedLine(const Object& window);  // of the last click in the margin; 0: there was none

}  // namespace tarn::platform
