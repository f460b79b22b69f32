// SPDX-License-Identifier: Apache-2.0
#include "platform/model/drawscale.h"

#include "platform/model/access_internal.h"
#include "platform/operations/drawscale.h"

#include <algorithm>

namespace tarn::platform {

namespace {

constexpr int Whole = 100;

// Rounded down, below 0 too.
int times(int number, int factor, int divisor) {
    const long long product = static_cast<long long>(number) * factor;
    const long long down = product >= 0 ? product / divisor : -((divisor - 1 - product) / divisor);
    return static_cast<int>(down);
}

}  // namespace

int drawScale(const Control& control) {
    const auto& scales = state().drawScales;
    const Window* const window = scales.empty() ? nullptr : findWindow(control.object.owner());
    if (window == nullptr) return Whole;
    const auto found = scales.find(window->handle);
    return found == scales.end() ? Whole : found->second;
}

Point onDrawing(Point client, int percent) {
    return {times(client.x, Whole, percent), times(client.y, Whole, percent)};
}

Rect onClient(const Rect& drawing, int percent) {
    const auto first = [percent](int pixel) { return -times(-pixel, percent, Whole); };  // rounded up
    const int x = first(drawing.x), y = first(drawing.y);
    const int w = first(drawing.x + drawing.w) - x, h = first(drawing.y + drawing.h) - y;
    return {x, y, std::max(w, drawing.w > 0 ? 1 : 0), std::max(h, drawing.h > 0 ? 1 : 0)};
}

Answer<int> GetDrawScale(const Object& window) {
    const Window* const found = findWindow(window);
    if (found == nullptr) return {Whole, WindowNotLoaded};
    return {drawScale(*found), Ok};
}

Code SetDrawScale(const Object& window, int percent) {
    const Window* const found = findWindow(window);
    if (found == nullptr) return WindowNotLoaded;
    state().drawScales[found->handle] = std::clamp(percent, LEAST_DRAW_SCALE, MOST_DRAW_SCALE);
    return Ok;
}

}  // namespace tarn::platform
