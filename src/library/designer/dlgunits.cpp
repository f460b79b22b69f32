// SPDX-License-Identifier: Apache-2.0
#include "library/designer/dlgunits.h"

#include "kernel/run/errors.h"

#include <algorithm>
#include <cstdint>
#include <limits>

MODULE("dlgedit", tarn::DefaultErrorHandler, tarn::LeaveErrors)

namespace tarn {
namespace {

constexpr std::string_view letters = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz";

int divided(std::int64_t a, std::int64_t b) {
    if (b == 0) {
        SetError(ERR_DIVISION_BY_ZERO);
        return 0;
    }
    const std::int64_t quotient = a / b - (a % b != 0 && (a < 0) != (b < 0) ? 1 : 0);
    using Limits = std::numeric_limits<int>;
    return static_cast<int>(std::clamp<std::int64_t>(quotient, Limits::min(), Limits::max()));
}

}  // namespace

LetterSize LETTERSIZE(const Object& window) {
    FRAME(LETTERSIZE);
    STAMP();
    const int width = TextWidth(window, letters);
    const int average = width / static_cast<int>(letters.size());
    return {width > 0 ? std::max(average, 1) : 0, TextHeight(window, letters)};
}

Rect RCUNITSTOPIXELS(const LetterSize& letter, const UnitRect& units) {
    const auto across = [&](int n) { return divided(std::int64_t{n} * letter.width, 4); };
    const auto down = [&](int n) { return divided(std::int64_t{n} * letter.height, 8); };
    return {across(units.x), down(units.y), across(units.w), down(units.h)};
}

UnitRect PIXELSTORCUNITS(const LetterSize& letter, const Rect& pixels) {
    const auto across = [&](int n) { return divided(std::int64_t{n} * 4 + 3, letter.width); };
    const auto down = [&](int n) { return divided(std::int64_t{n} * 8 + 7, letter.height); };
    return {across(pixels.x), down(pixels.y), across(pixels.w), down(pixels.h)};
}

Rect RCUNITSTOPIXELS(const Object& window, const UnitRect& units) {
    FRAME(RCUNITSTOPIXELS);
    STAMP();
    return RCUNITSTOPIXELS(LETTERSIZE(window), units);
}

UnitRect PIXELSTORCUNITS(const Object& window, const Rect& pixels) {
    FRAME(PIXELSTORCUNITS);
    STAMP();
    return PIXELSTORCUNITS(LETTERSIZE(window), pixels);
}

}  // namespace tarn
