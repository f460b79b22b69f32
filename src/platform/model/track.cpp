// SPDX-License-Identifier: Apache-2.0
#include "platform/model/track.h"

#include "platform/model/access_internal.h"
#include "platform/operations/position.h"

#include <algorithm>

namespace tarn::platform {

namespace {

// One direction of a rectangle: from `low` to before `high`.
struct Stretch {
    int low = 0, high = 0;
};

struct Axis {
    Stretch bounds;
    int step = 1, least = 1;

    // The nearest place on the grid.
    [[nodiscard]] int snap(int place) const {
        if (step <= 1) return place;
        const int from = place - bounds.low + step / 2;
        const int steps = from >= 0 ? from / step : -((step - 1 - from) / step);
        return bounds.low + steps * step;
    }
    // A rectangle that is larger than its bounds stays at their lower end.
    [[nodiscard]] Stretch moved(Stretch span, int by) const {
        if (by == 0) return span;
        const int size = span.high - span.low;
        const int low = std::max(std::min(snap(span.low + by), bounds.high - size), bounds.low);
        return {low, low + size};
    }
    [[nodiscard]] Stretch resized(Stretch span, int edge, int by) const {
        if (by == 0) return span;
        if (edge < 0) {
            span.low = std::max(std::min(snap(span.low + by), span.high - least), bounds.low);
        } else {
            span.high = std::min(std::max(snap(span.high + by), span.low + least), bounds.high);
        }
        return span;
    }
    [[nodiscard]] Stretch drawn(int from, int to) const {
        const auto inside = [&](int place) {
            return std::clamp(snap(place), bounds.low, std::max(bounds.low, bounds.high));
        };
        Stretch span = {std::min(inside(from), inside(to)), std::max(inside(from), inside(to))};
        if (span.high - span.low < least) span.high = span.low + least;
        if (span.high > bounds.high)
            span = {std::max(bounds.low, span.low - (span.high - bounds.high)), bounds.high};
        return span;
    }
    [[nodiscard]] Stretch follow(const Track& track, Stretch span, int edge, int pressed, int now) const {
        if (track.mode == TRACK_NEW) return drawn(pressed, now);
        return edge == 0 ? span : resized(span, edge, now - pressed);
    }
};

int edgeAt(int place, Stretch span, int handle) {
    if (place < span.low + handle) return -1;
    return place >= span.high - handle ? 1 : 0;
}

Stretch across(const Rect& r) {
    return {r.x, r.x + r.w};
}
Stretch down(const Rect& r) {
    return {r.y, r.y + r.h};
}

}  // namespace

Point trackHandle(const Track& track) {
    const Rect& r = track.start;
    const bool inside = track.pressed.x >= r.x && track.pressed.x < r.x + r.w && track.pressed.y >= r.y &&
                        track.pressed.y < r.y + r.h;
    if (track.mode != TRACK_MOVE || !inside) return {};
    return {edgeAt(track.pressed.x, across(r), track.limits.handle),
            edgeAt(track.pressed.y, down(r), track.limits.handle)};
}

Rect tracked(const Track& track, Point now) {
    const Point edge = trackHandle(track);
    const Axis x = {across(track.bounds), track.limits.step, std::max(track.limits.width, 1)};
    const Axis y = {down(track.bounds), track.limits.step, std::max(track.limits.height, 1)};
    Stretch h = across(track.start), v = down(track.start);
    if (track.mode == TRACK_MOVE && edge.x == 0 && edge.y == 0) {
        h = x.moved(h, now.x - track.pressed.x);
        v = y.moved(v, now.y - track.pressed.y);
    } else {
        h = x.follow(track, h, edge.x, track.pressed.x, now.x);
        v = y.follow(track, v, edge.y, track.pressed.y, now.y);
    }
    return {h.low, v.low, h.high - h.low, v.high - v.low};
}

Answer<Rect> TrackRect(const Object& object, TrackMode mode, const TrackLimits& limits, const Rect& bounds,
                       const Rect& rect) {
    Window* const window = findWindow(object);
    if (window == nullptr) return {rect, WindowNotLoaded};
    return {view().track(*window, {mode, limits, bounds, rect, {}}), Ok};
}

}  // namespace tarn::platform
