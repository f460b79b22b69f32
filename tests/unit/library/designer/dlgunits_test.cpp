// SPDX-License-Identifier: Apache-2.0
//
// Resource units and pixels.
#include "library/designer/dlgunits.h"

#include "kernel/run/errors.h"
#include "os/files.h"
#include "platform/model/view.h"
#include "support/tempfolder.h"

#include <gtest/gtest.h>

#include <climits>

namespace tarn {
namespace {

class Dlgunits : public ::testing::Test {
protected:
    void SetUp() override { ClearError(); }
    void TearDown() override { ClearError(); }
};

TEST_F(Dlgunits, UnitsBecomePixels) {
    const LetterSize letter = {6, 13};
    EXPECT_EQ(RCUNITSTOPIXELS(letter, {4, 8, 4, 8}), (Rect{6, 13, 6, 13}));
    EXPECT_EQ(RCUNITSTOPIXELS(letter, {1, 1, 3, 3}), (Rect{1, 1, 4, 4}));
    EXPECT_EQ(RCUNITSTOPIXELS(letter, {-1, -1, 0, 0}), (Rect{-2, -2, 0, 0}));
    EXPECT_EQ(RCUNITSTOPIXELS(letter, {INT_MAX, INT_MIN, 0, 0}), (Rect{INT_MAX, INT_MIN, 0, 0}));
}

TEST_F(Dlgunits, PixelsBecomeUnitsRoundedUp) {
    const LetterSize letter = {6, 13};
    EXPECT_EQ(PIXELSTORCUNITS(letter, {6, 13, 1, 1}), (UnitRect{4, 8, 1, 1}));
    EXPECT_EQ(PIXELSTORCUNITS(letter, {0, 0, 0, 0}), UnitRect{});
    EXPECT_EQ(PIXELSTORCUNITS(LetterSize{3, 7}, {0, 0, 0, 0}), (UnitRect{1, 1, 1, 1}));
    EXPECT_EQ(PIXELSTORCUNITS(LetterSize{4, 8}, {0, 0, 0, 0}), UnitRect{});
    EXPECT_EQ(PIXELSTORCUNITS(LetterSize{1, 1}, {INT_MAX, INT_MIN, 0, 0}).x, INT_MAX);
}

TEST_F(Dlgunits, TheWayToPixelsAndBackLosesNoUnit) {
    for (int width = 4; width <= 40; ++width)
        for (int height = 8; height <= 80; height += 3)
            for (int n = 0; n <= 300; n += 7) {
                const LetterSize letter = {width, height};
                EXPECT_GE(PIXELSTORCUNITS(letter, RCUNITSTOPIXELS(letter, {n, n, n, n})).w, n);
                EXPECT_GE(PIXELSTORCUNITS(letter, RCUNITSTOPIXELS(letter, {n, n, n, n})).h, n);
            }
}

TEST_F(Dlgunits, ASizeOfNothingIsDivisionByZero) {
    EXPECT_EQ(PIXELSTORCUNITS(LetterSize{}, {1, 2, 3, 4}), UnitRect{});
    EXPECT_EQ(ErrorCell(), ERR_DIVISION_BY_ZERO);
}

TEST_F(Dlgunits, AWindowIsMeasured) {
    auto before = platform::useView(platform::makeHeadlessView());
    const TempFolder folder;
    const Object window("UnitDlg");
    EXPECT_EQ(RCUNITSTOPIXELS(window, {4, 8, 4, 8}), Rect{});
    EXPECT_EQ(ErrorCell(), ERR_WINDOW_NOT_LOADED);
    ClearError();
    ASSERT_TRUE(os::saveFile(folder / "x.rc", "UnitDlg DIALOG\n  POSITION=0 0 200 96\nEND\n").ok());
    ASSERT_EQ(Load(window, folder / "x.rc", "UnitDlg"), "");
    const LetterSize letter = LETTERSIZE(window);
    EXPECT_GT(letter.width, 0);
    EXPECT_EQ(RCUNITSTOPIXELS(window, {4, 8, 400, 800}),
              (Rect{letter.width, letter.height, 100 * letter.width, 100 * letter.height}));
    const Rect client = GetPosition(window, CLIENT_UNIT);
    EXPECT_EQ(PIXELSTORCUNITS(window, client).w, 200) << "as the window was made";
    EXPECT_EQ(PIXELSTORCUNITS(window, client).h, 96);
    EXPECT_EQ(ErrorCell(), 0);
    platform::DestroyAllWindows();
    platform::useView(std::move(before));
}

}  // namespace
}  // namespace tarn
