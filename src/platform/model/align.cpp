// SPDX-License-Identifier: Apache-2.0
//
// Rows of buttons put in order again after their window has changed its size.
#include "platform/model/access_internal.h"
#include "platform/operations/position.h"

#include <algorithm>

namespace tarn::platform {

namespace {

constexpr int Margin = 8;    // pixels between the lowest row and the edge
constexpr int UsualGap = 8;  // between two buttons that touch or overlap

using ButtonRow = std::vector<Control*>;

// The visible push buttons, from top to bottom; those that share some height stand in one row, from left to
// right.
std::vector<ButtonRow> rowsOf(const Window& window) {
    ButtonRow all;
    for (const auto& control : window.controls)
        if (control->type == Type::Pushbutton && control->visible) all.push_back(control.get());
    std::stable_sort(all.begin(), all.end(),
                     [](const Control* a, const Control* b) { return a->position.y < b->position.y; });
    std::vector<ButtonRow> rows;
    int bottom = 0;
    for (Control* const button : all) {
        const Rect& r = button->position;
        if (rows.empty() || r.y >= bottom) rows.emplace_back();
        bottom = rows.back().empty() ? r.y + r.h : std::max(bottom, r.y + r.h);
        rows.back().push_back(button);
    }
    for (ButtonRow& row : rows)
        std::stable_sort(row.begin(), row.end(),
                         [](const Control* a, const Control* b) { return a->position.x < b->position.x; });
    return rows;
}

void place(Control& button, const Rect& rect) {
    if (!assign(button.position, rect)) return;
    view().changed(button, Property::Position);
}

void alignRow(const ButtonRow& row, int width, int by) {
    int gap = UsualGap;
    if (row.size() > 1) gap = row[1]->position.x - row[0]->position.x - row[0]->position.w;
    if (gap < 1) gap = UsualGap;
    int all = gap * (static_cast<int>(row.size()) - 1);
    for (const Control* const button : row) all += button->position.w;
    int x = std::max((width - all) / 2, 0);
    const int y = row.front()->position.y + by;
    for (Control* const button : row) {
        place(*button, {x, y, button->position.w, button->position.h});
        x += button->position.w + gap;
    }
}

}  // namespace

Code AlignItems(const Object& object) {
    const Window* const window = findWindow(object);
    if (window == nullptr) return WindowNotLoaded;
    const std::vector<ButtonRow> rows = rowsOf(*window);
    if (rows.empty()) return Ok;
    const Rect client = GetPosition(window->object, CLIENT_UNIT).value;
    int lowest = 0;
    for (const Control* const button : rows.back())
        lowest = std::max(lowest, rows.back().front()->position.y + button->position.h);
    for (const ButtonRow& row : rows) alignRow(row, client.w, client.h - Margin - lowest);
    return Ok;
}

}  // namespace tarn::platform
