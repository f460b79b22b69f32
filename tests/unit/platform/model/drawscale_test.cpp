// SPDX-License-Identifier: Apache-2.0
//
// The scale of a window's drawing: which pixels of the drawing are under the mouse, what a drag gives back, and which pixels
// of the window show a rectangle.
#include "platform/model/drawscale.h"
#include "platform/model/view.h"
#include "platform/operations/drawscale.h"
#include "platform/windowing.h"
#include "support/resources.h"
#include "support/tempfolder.h"

#include <gtest/gtest.h>

#include <optional>
#include <vector>

namespace tarn::platform {
namespace {

constexpr char Resources[] =
    "Main DIALOG\n  POSITION=0 0 100 100\n  Image picture 101\n  Label text 102\nEND\nOther DIALOG\nEND\n";

struct Heard {
    int event, x, y;
    friend bool operator==(const Heard&, const Heard&) = default;
    friend std::ostream& operator<<(std::ostream& out, const Heard& one) {
        return out << one.event << " at " << one.x << ", " << one.y;
    }
};
std::vector<Heard> heard;
std::optional<Rect> dragged;  // the rectangle of a drag that begins with a press

bool listen(const Object& window, int event, const Object&, int parameter) {
    if (event == MOUSEDOWN_EVENT || event == DBLCLICK_EVENT || event == INFO_EVENT)
        heard.push_back({event, static_cast<std::int16_t>(parameter & 0xFFFF),
                         static_cast<std::int16_t>(parameter >> 16 & 0xFFFF)});
    if (event == MOUSEDOWN_EVENT && dragged)
        dragged = TrackRect(window, TRACK_MOVE, {4, 12, 12, 1}, {0, 0, 400, 400}, *dragged).value;
    return event != CLOSE_EVENT;
}

class DrawScale : public ::testing::Test {
protected:
    const Object main{"Main"}, other{"Other"};
    TempFolder folder;
    std::unique_ptr<View> before;

    void SetUp() override {
        ASSERT_EQ(useResources(folder, Resources), "");
        before = useView(makeHeadlessView());
        for (const Object& window : {main, other}) {
            RegisterWindow(window, listen);
            ASSERT_EQ(Load(window), Ok);
        }
        Show(main, false);
        heard.clear();
        dragged.reset();
    }
    void TearDown() override {
        DestroyAllWindows();
        useView(std::move(before));
        SetApplicationResources("");
        for (const Object& window : {main, other}) RegisterWindow(window, nullptr);
    }
    Window& window() const { return *findWindow(main); }
};

TEST_F(DrawScale, Is100UntilItIsSetAndGoesWithItsWindow) {
    EXPECT_EQ(GetDrawScale(main).value, 100);
    EXPECT_EQ(SetDrawScale(main, 250), Ok);
    EXPECT_EQ(GetDrawScale(main).value, 250);
    EXPECT_EQ(GetDrawScale(other).value, 100);
    Unload(main);
    EXPECT_EQ(GetDrawScale(main).code, WindowNotLoaded);
    EXPECT_EQ(SetDrawScale(main, 250), WindowNotLoaded);
    ASSERT_EQ(Load(main), Ok);
    EXPECT_EQ(GetDrawScale(main).value, 100);
}

TEST_F(DrawScale, OfAnImageIsItsOwn) {
    const Object picture("Main", 101), text("Main", 102);
    EXPECT_EQ(SetDrawScale(picture, 200), Ok);
    EXPECT_EQ(GetDrawScale(picture).value, 200);
    EXPECT_EQ(GetDrawScale(main).value, 100) << "the window's places of the mouse stay";
    EXPECT_EQ(drawScale(*findControl(picture)), 100);
    EXPECT_EQ(drawLook(*findControl(picture)).scale, 200);
    EXPECT_EQ(SetDrawScale(main, 300), Ok);
    EXPECT_EQ(GetDrawScale(picture).value, 200);
    EXPECT_EQ(SetDrawScale(text, 200), WindowNotLoaded) << "nothing is drawn on a label";
    Unload(main);
    ASSERT_EQ(Load(main), Ok);
    EXPECT_EQ(GetDrawScale(picture).value, 100);
}

TEST_F(DrawScale, HasColoursBeside) {
    const Object picture("Main", 101), text("Main", 102);
    EXPECT_EQ(GetDrawColours(main).value, DESKTOP_COLOURS);
    EXPECT_EQ(SetDrawColours(picture, DARK_COLOURS), Ok);
    EXPECT_EQ(SetDrawScale(picture, 200), Ok);
    EXPECT_EQ(GetDrawColours(picture).value, DARK_COLOURS);
    EXPECT_EQ(GetDrawColours(main).value, DESKTOP_COLOURS);
    EXPECT_EQ(SetDrawColours(picture, LIGHT_COLOURS), Ok);
    EXPECT_EQ(GetDrawScale(picture).value, 200);
    EXPECT_EQ(SetDrawColours(text, DARK_COLOURS), WindowNotLoaded);
    Unload(main);
    EXPECT_EQ(GetDrawColours(main).code, WindowNotLoaded);
}

TEST_F(DrawScale, HasLimits) {
    for (const auto& [asked, given] : {std::pair{0, 10}, {-100, 10}, {1, 10}, {1000000, 1000}}) {
        EXPECT_EQ(SetDrawScale(main, asked), Ok);
        EXPECT_EQ(GetDrawScale(main).value, given) << asked;
    }
}

TEST_F(DrawScale, TellsPlacesOfTheDrawing) {
    SetDrawScale(main, 200);
    userMouseDown(window(), 41, 20);
    userDoubleClick(window(), 40, 21);
    userInfo(window(), -1, -3);
    SetDrawScale(main, 50);
    userMouseDown(window(), 7, 9);
    SetDrawScale(main, 100);
    userMouseDown(window(), 7, 9);
    const std::vector<Heard> expected = {{MOUSEDOWN_EVENT, 20, 10},
                                         {DBLCLICK_EVENT, 20, 10},
                                         {INFO_EVENT, -1, -2},
                                         {MOUSEDOWN_EVENT, 14, 18},
                                         {MOUSEDOWN_EVENT, 7, 9}};
    EXPECT_EQ(heard, expected);
}

TEST_F(DrawScale, DragsByPixelsOfTheDrawing) {
    const auto drag = [&](int scale, Point from, Point to) {
        SetDrawScale(main, scale);
        dragged = Rect{100, 100, 40, 20};
        userDrag(from, to);
        userMouseDown(window(), from.x, from.y);
        return *dragged;
    };
    EXPECT_EQ(drag(200, {240, 220}, {260, 210}), (Rect{110, 95, 40, 20}));
    EXPECT_EQ(drag(50, {60, 55}, {70, 50}), (Rect{120, 90, 40, 20}));
    EXPECT_EQ(drag(200, {279, 239}, {299, 259}), (Rect{100, 100, 50, 30})) << "the corner";
    EXPECT_EQ(drag(50, {60, 55}, {5000, 55}), (Rect{360, 100, 40, 20})) << "inside the bounds";
}

TEST(DrawScalePlaces, AreRoundedDown) {
    struct Row {
        int client, percent, drawing;
    };
    for (const auto& [client, percent, drawing] :
         {Row{0, 67, 0}, Row{1, 67, 1}, Row{2, 67, 2}, Row{3, 150, 2}, Row{4, 150, 2}, Row{-1, 150, -1},
          Row{-1, 400, -1}, Row{7, 400, 1}, Row{32767, 50, 65534}})
        EXPECT_EQ(onDrawing({client, client}, percent).x, drawing) << client << " at " << percent;
}

TEST(DrawScalePlaces, OfNeighboursAreNeighboursAndNothingVanishes) {
    for (const int percent : {10, 50, 67, 75, 100, 125, 150, 200, 300, 400, 1000}) {
        for (int x = -5; x < 50; ++x) {
            const Rect one = onClient({x, x, 3, 1}, percent), next = onClient({x + 3, x + 1, 3, 1}, percent);
            EXPECT_GE(one.w, 1);
            EXPECT_GE(one.h, 1);
            if (percent >= 100) {
                EXPECT_EQ(one.x + one.w, next.x) << x << " at " << percent;
                EXPECT_EQ(one.y + one.h, next.y) << x << " at " << percent;
                EXPECT_EQ(onDrawing({one.x, one.y}, percent).x, x) << "at " << percent;
                EXPECT_EQ(onDrawing({one.x + one.w - 1, one.y}, percent).x, x + 2) << "at " << percent;
            }
        }
    }
    EXPECT_EQ(onClient({5, 6, 0, 0}, 300), (Rect{15, 18, 0, 0}));
    EXPECT_EQ(onClient({5, 6, 7, 8}, 100), (Rect{5, 6, 7, 8}));
}

}  // namespace
}  // namespace tarn::platform
