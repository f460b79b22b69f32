// SPDX-License-Identifier: Apache-2.0
#include "platform/model/track.h"

#include "platform/model/access_internal.h"
#include "platform/model/guides.h"
#include "platform/operations/position.h"

#include <algorithm>
#include <cstdlib>
#include <initializer_list>

namespace tarn::platform {

namespace {

// One direction of a rectangle: from `low` to before `high`.
struct Stretch {
    int low = 0, high = 0;
};

struct Axis {
    Stretch bounds;
    int step = 1, least = 1;
    const std::vector<int>& guides;

    // The nearest place on the grid.
    [[nodiscard]] int snap(int place) const {
        if (step <= 1) return place;
        const int from = place - bounds.low + step / 2;
        const int steps = from >= 0 ? from / step : -((step - 1 - from) / step);
        return bounds.low + steps * step;
    }
    // The way to the nearest guide from one of some places; 0 if none is near.
    [[nodiscard]] int toGuide(std::initializer_list<int> places) const {
        int way = GUIDE_REACH + 1;
        for (const int guide : guides)
            for (const int place : places)
                if (std::abs(guide - place) < std::abs(way)) way = guide - place;
        return std::abs(way) <= GUIDE_REACH ? way : 0;
    }
    // A rectangle that is larger than its bounds stays at their lower end.
    [[nodiscard]] Stretch moved(Stretch span, int by) const {
        if (by == 0) return span;
        const int size = span.high - span.low;
        int low = snap(span.low + by);
        low += toGuide({low, low + size, low + size / 2});
        low = std::max(std::min(low, bounds.high - size), bounds.low);
        return {low, low + size};
    }
    [[nodiscard]] Stretch resized(Stretch span, int edge, int by) const {
        if (by == 0) return span;
        int& moving = edge < 0 ? span.low : span.high;
        moving = snap(moving + by);
        moving += toGuide({moving});
        if (edge < 0)
            span.low = std::max(std::min(span.low, span.high - least), bounds.low);
        else
            span.high = std::min(std::max(span.high, span.low + least), bounds.high);
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

// The bounds of one that takes others along: what they leave it, so that they stay inside too. Whoever is outside already
// holds it up no further than where it stands.
Stretch boundsWith(const Track& track, const std::vector<Rect>& along, Stretch (*direction)(const Rect&)) {
    const Stretch own = direction(track.start), bounds = direction(track.bounds);
    int before = 0, behind = 0;  // how far others reach beyond it
    for (const Rect& other : along) {
        before = std::max(before, own.low - direction(other).low);
        behind = std::max(behind, direction(other).high - own.high);
    }
    return {std::min(bounds.low + before, std::max(bounds.low, own.low)),
            std::max(bounds.high - behind, std::min(bounds.high, own.high))};
}

int guideAt(const std::vector<int>& guides, Stretch span) {
    for (const int guide : guides)
        if (guide == span.low || guide == span.high || guide == span.low + (span.high - span.low) / 2)
            return guide;
    return -1;
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
    return tracked(track, now, {});
}

Rect tracked(const Track& track, Point now, const DragGuides& guides, bool free) {
    static const std::vector<int> none;
    const TrackLimits& limits = track.limits;
    const Point edge = trackHandle(track);
    const Axis x = {boundsWith(track, guides.along, across), limits.step, std::max(limits.width, 1),
                    free ? none : guides.x};
    const Axis y = {boundsWith(track, guides.along, down), limits.step, std::max(limits.height, 1),
                    free ? none : guides.y};
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

std::vector<Rect> trackedAlong(const Track& track, const Rect& rect, const DragGuides& guides) {
    std::vector<Rect> along = guides.along;
    for (Rect& other : along) {
        other.x += rect.x - track.start.x;
        other.y += rect.y - track.start.y;
        other.w = std::max(other.w + rect.w - track.start.w, 1);
        other.h = std::max(other.h + rect.h - track.start.h, 1);
    }
    return along;
}

Point guidesAt(const Rect& rect, const DragGuides& guides) {
    return {guideAt(guides.x, across(rect)), guideAt(guides.y, down(rect))};
}

// ---- the operations ----

namespace {

DragGuides underWay;
int mouseKeys = 0;

}  // namespace

const DragGuides& dragGuides() {
    return underWay;
}

void userMouseKeys(int keys) {
    mouseKeys = keys;
}

int GetMouseKeys() {
    return mouseKeys;
}

Answer<Rect> TrackRect(const Object& object, TrackMode mode, const TrackLimits& limits, const Rect& bounds,
                       const Rect& rect) {
    return TrackRect(object, mode, limits, bounds, rect, {});
}

Answer<Rect> TrackRect(const Object& object, TrackMode mode, const TrackLimits& limits, const Rect& bounds,
                       const Rect& rect, const DragGuides& guides) {
    Window* const window = findWindow(object);
    if (window == nullptr) return {rect, WindowNotLoaded};
    underWay = guides;
    const Rect result = view().track(*window, {mode, limits, bounds, rect, {}});
    underWay = {};
    return {result, Ok};
}

}  // namespace tarn::platform
