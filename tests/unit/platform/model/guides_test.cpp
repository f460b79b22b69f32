// SPDX-License-Identifier: Apache-2.0
//
// How a drag follows its guides, and takes others along.
#include "platform/model/guides.h"

#include <gtest/gtest.h>

namespace tarn::platform {
namespace {

constexpr Rect bounds{10, 20, 200, 100}, box{50, 50, 40, 30};

struct Drag {
    const char* what;
    Point from, to;
    DragGuides guides;
    Rect result;
};

class Guides : public ::testing::TestWithParam<Drag> {};

TEST_P(Guides, DrawTheRectangle) {
    const Drag& one = GetParam();
    const Track track{TRACK_MOVE, {4, 12, 12, 1}, bounds, box, one.from};
    const Rect result = tracked(track, one.to, one.guides);
    EXPECT_EQ(result, one.result) << result.x << " " << result.y << " " << result.w << " " << result.h;
}

INSTANTIATE_TEST_SUITE_P(
    All, Guides,
    ::testing::Values(
        Drag{"left edge of one that moves", {70, 65}, {76, 65}, {{}, {60}, {}}, {60, 50, 40, 30}},
        Drag{"right edge of one that moves", {70, 65}, {76, 65}, {{}, {99}, {}}, {59, 50, 40, 30}},
        Drag{"middle of one that moves", {70, 65}, {76, 65}, {{}, {73}, {}}, {53, 50, 40, 30}},
        Drag{"just near enough", {70, 65}, {76, 65}, {{}, {60}, {}}, {60, 50, 40, 30}},
        Drag{"a pixel too far", {70, 65}, {75, 65}, {{}, {60}, {}}, {55, 50, 40, 30}},
        Drag{"the nearest of several", {70, 65}, {76, 65}, {{}, {60, 57, 53}, {}}, {57, 50, 40, 30}},
        Drag{"upper edge", {70, 65}, {70, 62}, {{}, {}, {45}}, {50, 45, 40, 30}},
        Drag{"both directions", {70, 65}, {76, 62}, {{}, {60}, {45}}, {60, 45, 40, 30}},
        Drag{"right edge that is sized", {89, 65}, {99, 65}, {{}, {102}, {}}, {50, 50, 52, 30}},
        Drag{"left edge that is sized", {50, 65}, {45, 65}, {{}, {43}, {}}, {43, 50, 47, 30}},
        Drag{"no middle of one that is sized", {89, 65}, {99, 65}, {{}, {75}, {}}, {50, 50, 50, 30}},
        Drag{"none outside the bounds", {70, 65}, {-99, 65}, {{}, {8}, {}}, {10, 50, 40, 30}},
        Drag{"none where it has not moved", {70, 65}, {70, 65}, {{}, {52}, {52}}, box}),
    [](const auto& info) {
        std::string name = info.param.what;
        for (char& c : name)
            if (c == ' ') c = '_';
        return name;
    });

TEST(GuidesOfADrag, AreLetBe) {
    const Track track{TRACK_MOVE, {4, 12, 12, 1}, bounds, box, {70, 65}};
    EXPECT_EQ(tracked(track, {76, 65}, {{}, {60}, {}}, true), (Rect{56, 50, 40, 30}));
    EXPECT_EQ(tracked(track, {76, 65}), (Rect{56, 50, 40, 30}));
}

TEST(GuidesOfADrag, AreToldWhereTheyHold) {
    const DragGuides guides{{}, {60, 70}, {20}};
    EXPECT_EQ(guidesAt({70, 50, 40, 30}, guides).x, 70);
    EXPECT_EQ(guidesAt({70, 50, 40, 30}, guides).y, -1);
    EXPECT_EQ(guidesAt({50, 5, 20, 30}, guides).x, 60) << "the middle";
    EXPECT_EQ(guidesAt({40, 5, 30, 30}, guides).x, 70) << "the right edge";
    EXPECT_EQ(guidesAt({40, 5, 30, 30}, guides).y, 20);
}

TEST(WhatGoesAlong, KeepsTheRectangleWhereAllAreInside) {
    const Track track{TRACK_MOVE, {4, 12, 12, 1}, bounds, box, {70, 65}};
    const DragGuides guides{{{30, 60, 20, 20}, {100, 40, 20, 20}}, {}, {}};
    EXPECT_EQ(tracked(track, {-500, -500}, guides), (Rect{30, 30, 40, 30}))
        << "the others reach 20 and 10 further";
    EXPECT_EQ(tracked(track, {900, 900}, guides), (Rect{140, 90, 40, 30})) << "and 30 to the right";
    const std::vector<Rect> along = trackedAlong(track, {30, 30, 40, 30}, guides);
    ASSERT_EQ(along.size(), 2U);
    EXPECT_EQ(along[0], (Rect{10, 40, 20, 20}));
    EXPECT_EQ(along[1], (Rect{80, 20, 20, 20}));
}

TEST(WhatGoesAlong, GrowsAndIsNeverEmpty) {
    const Track track{TRACK_MOVE, {4, 12, 12, 1}, bounds, box, {89, 79}};
    const DragGuides guides{{{60, 60, 20, 20}}, {}, {}};
    const Rect small = tracked(track, {0, 0}, guides);
    EXPECT_EQ(small, (Rect{50, 50, 12, 12}));
    EXPECT_EQ(trackedAlong(track, small, guides)[0], (Rect{60, 60, 1, 2}));
}

TEST(WhatGoesAlong, HoldsNothingUpFromOutside) {
    const Track track{TRACK_MOVE, {4, 12, 12, 1}, bounds, box, {70, 65}};
    const DragGuides guides{{{-500, 60, 20, 20}, {900, 60, 20, 20}}, {}, {}};
    EXPECT_EQ(tracked(track, {71, 75}, guides), (Rect{50, 60, 40, 30}))
        << "only where they would go further out";
    const Track sized{TRACK_MOVE, {4, 12, 12, 1}, bounds, box, {50, 65}};
    EXPECT_EQ(tracked(sized, {70, 65}, guides).w, 20);
}

}  // namespace
}  // namespace tarn::platform
