// SPDX-License-Identifier: Apache-2.0
#include "platform/model/drawscale.h"

#include "platform/model/access_internal.h"

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

DrawLook drawLook(const Control& drawnOn) {
    const auto& looks = state().drawLooks;
    const auto found = looks.find(drawnOn.handle);
    return found == looks.end() ? DrawLook{} : found->second;
}

int drawScale(const Control& control) {
    const Window* const window = state().drawLooks.empty() ? nullptr : findWindow(control.object.owner());
    return window == nullptr ? Whole : drawLook(*window).scale;
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

namespace {

// A window, or an image of one; null for anything else.
const Control* surface(const Object& object) {
    const Control* const control = findControl(object);
    const bool takesDrawing =
        control != nullptr && (isWindowType(control->type) || control->type == Type::Image);
    return takesDrawing ? control : nullptr;
}

template <class T>
Answer<T> askLook(const Object& object, T DrawLook::*part) {
    const Control* const found = surface(object);
    if (found == nullptr) return {DrawLook{}.*part, WindowNotLoaded};
    return {drawLook(*found).*part, Ok};
}

template <class T>
Code setLook(const Object& object, T DrawLook::*part, T value) {
    const Control* const found = surface(object);
    if (found == nullptr) return WindowNotLoaded;
    state().drawLooks[found->handle].*part = value;
    return Ok;
}

}  // namespace

Answer<int> GetDrawScale(const Object& object) {
    return askLook(object, &DrawLook::scale);
}

Code SetDrawScale(const Object& object, int percent) {
    return setLook(object, &DrawLook::scale, std::clamp(percent, LEAST_DRAW_SCALE, MOST_DRAW_SCALE));
}

Answer<DrawColours> GetDrawColours(const Object& object) {
    return askLook(object, &DrawLook::colours);
}

Code SetDrawColours(const Object& object, DrawColours colours) {
    return setLook(object, &DrawLook::colours, colours);
}

}  // namespace tarn::platform
