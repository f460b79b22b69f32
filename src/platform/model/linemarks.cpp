// SPDX-License-Identifier: Apache-2.0
//
// Marks of lines: the operations, and how they move where no control moves them.
#include "platform/model/linemarks.h"

#include "platform/model/access_internal.h"

#include <algorithm>

namespace tarn::platform {

namespace {

bool isEdit(const Control& control) {
    return isEditWindowType(control.type) && control.text != nullptr;
}

int linesIn(std::string_view text) {
    return static_cast<int>(std::count(text.begin(), text.end(), '\n'));
}

}  // namespace

Code SetLineMarks(const Object& window, const std::vector<LineMark>& marks) {
    Control* const control = findControl(window);
    if (control == nullptr) return missing(window);
    if (isEdit(*control) && control->markMargin) control->text->setLineMarks(marks);
    return Ok;
}

Answer<std::vector<LineMark>> GetLineMarks(const Object& window) {
    return ask<std::vector<LineMark>>(
        window, [](const Control& c) { return isEdit(c) ? c.text->lineMarks() : std::vector<LineMark>(); });
}

Code SetMarkMargin(const Object& window, bool shown) {
    return tell(window, Property::MarkMargin, [&](Control& c) {
        if (!isEdit(c) || !assign(c.markMargin, shown)) return false;
        if (!shown) c.text->setLineMarks({});
        return true;
    });
}

Answer<bool> GetMarkMargin(const Object& window) {
    return ask<bool>(window, [](const Control& c) { return c.markMargin; });
}

Answer<int> GetClickedLine(const Object& window) {
    return ask<int>(window, [](const Control& c) { return c.clickedLine; });
}

void userMarginClick(Control& control, int line) {
    Window* const window = findWindow(control.object);
    if (window == nullptr || !control.markMargin || !takesInput(*window)) return;
    control.clickedLine = line;
    static_cast<void>(userKey(*window, &control, KEY_MARGIN_CLICK));
}

void moveLineMarks(std::vector<LineMark>& marks, std::string_view before, std::size_t from, std::size_t count,
                   std::string_view comes) {
    if (marks.empty()) return;
    const int line = linesIn(before.substr(0, from)) + 1, gone = linesIn(before.substr(from, count)),
              added = linesIn(comes);
    const bool atStart = from == 0 || before[from - 1] == '\n';
    const int firstGone = atStart ? line : line + 1;  // of the lines that go as a whole
    for (LineMark& mark : marks) {
        if (mark.line == 0) continue;
        if (mark.line >= firstGone && mark.line < line + gone) {
            mark.line = 0;
            continue;
        }
        if (mark.line > line) mark.line -= gone;
        if (mark.line > line || (mark.line == line && atStart)) mark.line += added;
    }
}

}  // namespace tarn::platform
