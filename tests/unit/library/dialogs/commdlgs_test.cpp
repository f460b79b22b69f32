// SPDX-License-Identifier: Apache-2.0
//
// The splash window without a screen: its buttons, its answer, its place and size, and that nothing waits. What it
// shows is tested with the view.
#include "library/dialogs/commdlgs.h"

#include "kernel/run/runtime.h"
#include "library/system/system.h"
#include "os/clock.h"
#include "os/files.h"
#include "platform/model/model.h"
#include "platform/model/view.h"
#include "support/bitmap.h"
#include "support/resources.h"
#include "support/steerable.h"
#include "support/tempfolder.h"

#include <gtest/gtest.h>

namespace tarn {
namespace {

constexpr const char* resource = R"(SplashDlg DIALOG
  POSITION=0 0 200 100
  BORDERSTYLE=0
  Label lblselectedbutton 101
    VISIBLE=0
  Pushbutton pushbutton1 201
    POSITION=10 80 20 12
  Pushbutton pushbutton2 202
    POSITION=40 80 20 12
  Pushbutton pushbutton3 203
    POSITION=70 80 20 12
END
)";

class SplashTest : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_EQ(useResources(folder_, resource), "");
        view_ = platform::useView(platform::makeHeadlessView());
        clockBefore_ = os::useClock(&clock_);
        ClearError();
    }
    void TearDown() override {
        platform::DestroyAllWindows();
        platform::useView(std::move(view_));
        os::useClock(clockBefore_);
        SetApplicationResources("");
        EXPECT_EQ(ErrorCell(), 0);
        ClearError();
    }
    static Object in(const char* name) { return FINDCONTROL(SplashDlg, name); }
    // "caption" of each button, in brackets if it is disabled, "-" if it is hidden.
    static std::string buttons() {
        std::string text;
        for (const char* name : {"pushbutton1", "pushbutton2", "pushbutton3"}) {
            const std::string caption = GetCaption(in(name));
            text += text.empty() ? "" : " ";
            text += !GetVisible(in(name)) ? "-" : GetEnabled(in(name)) ? caption : "[" + caption + "]";
        }
        return text;
    }
    // What the user does while the window is modal.
    static void play(std::function<void()> act) { platform::view().setIdle(std::move(act)); }
    [[nodiscard]] std::string picture(int width, int height) const {
        const std::string file = folder_ / "logo.bmp";
        EXPECT_TRUE(os::saveFile(file, bitmap(width, height, 0x204060), os::Durability::Unsynced).ok());
        return file;
    }

    TempFolder folder_;
    os::SteeredClock clock_;
    os::Clock* clockBefore_ = nullptr;
    std::unique_ptr<platform::View> view_;
};

TEST_F(SplashTest, EachButtonHasItsLineAndTheOthersAreHidden) {
    const std::pair<const char*, const char*> cases[] = {
        {"", "- - -"},           {"&Yes", "&Yes - -"},       {"A\nB", "A B -"},   {"A\nB\n", "A B -"},
        {"A\r\nB\r\n", "A B -"}, {"A\nB\nC\nD\nE", "A B C"}, {"A\n\nC", "A - C"}, {"\n", "- - -"},
    };
    for (const auto& [captions, shown] : cases) {
        SPLASHDLG_LOAD(captions);
        EXPECT_EQ(buttons(), shown) << captions;
    }
}

TEST_F(SplashTest, LoadingAgainClearsWhatWasThere) {
    SPLASHDLG_LOAD("A\nB");
    SetEnabled(in("pushbutton1"), false);
    SetCaption(in("lblselectedbutton"), "B");
    SPLASHDLG_LOAD("C");
    EXPECT_EQ(buttons(), "C - -");
    EXPECT_EQ(GetCaption(in("lblselectedbutton")), "");
}

TEST_F(SplashTest, AStarDisablesItsButtonAndIsNotShown) {
    const std::pair<const char*, const char*> cases[] = {
        {"A\n*B\nC", "A [B] C"}, {"*A\n*B\n*C", "[A] [B] [C]"}, {"A*\nB * C", "A B  C -"}, {"**A", "[A] - -"},
        {"*\nB", "- B -"},       {"A\nB\nC\n*D", "A B C"},
    };
    for (const auto& [list, shown] : cases) {
        std::string seen;
        play([&] {
            seen = buttons();
            platform::userKey(*platform::findWindow(SplashDlg), nullptr, KEY_ESCAPE);
        });
        EXPECT_EQ(SPLASHDLG_SHOWWITHBUTTONS(list), "");
        EXPECT_EQ(seen, shown) << list;
    }
}

TEST_F(SplashTest, ThePressedButtonsCaptionComesBack) {
    play([] {
        EXPECT_TRUE(IsModal(SplashDlg));
        Command(GetHandle(SplashDlg), 202, "");
    });
    EXPECT_EQ(SPLASHDLG_SHOWWITHBUTTONS("&Try\n&Buy\n*Later"), "&Buy");
    EXPECT_TRUE(IsLoaded(SplashDlg));
    EXPECT_FALSE(GetVisible(SplashDlg));
    EXPECT_EQ(GetCaption(in("lblselectedbutton")), "&Buy");
    EXPECT_FALSE(GetVisible(in("lblselectedbutton")));
    SPLASHDLG_UNLOAD();
    EXPECT_FALSE(IsLoaded(SplashDlg));
}

TEST_F(SplashTest, EscOrAWindowThatGoesPressesNoButton) {
    play([] { platform::userKey(*platform::findWindow(SplashDlg), nullptr, KEY_ESCAPE); });
    EXPECT_EQ(SPLASHDLG_SHOWWITHBUTTONS("A"), "");
    EXPECT_TRUE(IsLoaded(SplashDlg));
    play([] { Unload(SplashDlg); });
    EXPECT_EQ(SPLASHDLG_SHOWWITHBUTTONS("A"), "");
    EXPECT_FALSE(IsLoaded(SplashDlg));
}

TEST_F(SplashTest, AnotherPressIsNotTheAnswerOfTheOneBefore) {
    play([] { Command(GetHandle(SplashDlg), 201, ""); });
    EXPECT_EQ(SPLASHDLG_SHOWWITHBUTTONS("A\nB"), "A");
    play([] { platform::userKey(*platform::findWindow(SplashDlg), nullptr, KEY_ESCAPE); });
    EXPECT_EQ(SPLASHDLG_SHOWWITHBUTTONS("A\nB"), "");
}

TEST_F(SplashTest, WithoutAScreenNothingIsWaitedFor) {
    const std::int64_t start = clock_.steady();
    EXPECT_EQ(SPLASHDLG_SHOWWITHBUTTONS(""), "");
    EXPECT_EQ(clock_.steady(), start);
    EXPECT_EQ(SPLASHDLG_SHOWWITHBUTTONS("A\nB"), "") << "nobody is there to press one";
    EXPECT_EQ(clock_.steady(), start);
}

TEST_F(SplashTest, WithoutButtonsItStaysUntilItIsUnloaded) {
    EXPECT_EQ(SPLASHDLG_SHOWWITHBUTTONS(""), "");
    EXPECT_TRUE(GetVisible(SplashDlg));
    EXPECT_FALSE(IsModal(SplashDlg));
    EXPECT_EQ(buttons(), "- - -");
    SPLASHDLG_UNLOAD();
    EXPECT_FALSE(IsLoaded(SplashDlg));
    SPLASHDLG_UNLOAD();
}

TEST_F(SplashTest, TheWindowHasThePicturesSizeInTheMiddleOfTheScreen) {
    const std::pair<Rect, Rect> cases[] = {
        {{0, 0, 480, 300}, {720, 390, 480, 300}},
        {{0, 0, 481, 301}, {719, 389, 481, 301}},  // half pixels are left out
        {{0, 0, 1, 1}, {959, 539, 1, 1}},
    };
    for (const auto& [size, place] : cases) {
        SPLASHDLG_LOAD("");
        SPLASHDLG_DRAWBMP(picture(size.w, size.h));
        EXPECT_EQ(GetPosition(SplashDlg, WINDOW_UNIT), place) << size.w;
    }
}

TEST_F(SplashTest, WithoutAPictureThatCanBeReadItKeepsItsSize) {
    ASSERT_TRUE(os::saveFile(folder_ / "bad.bmp", "BM?", os::Durability::Unsynced).ok());
    for (const char* file : {"none.bmp", "bad.bmp"}) {
        SPLASHDLG_LOAD("A");
        const Rect before = GetPosition(SplashDlg, WINDOW_UNIT);
        SPLASHDLG_DRAWBMP(folder_ / file);
        const Rect now = GetPosition(SplashDlg, WINDOW_UNIT);
        EXPECT_EQ(now, (Rect{(1920 - before.w) / 2, (1080 - before.h) / 2, before.w, before.h})) << file;
    }
    SPLASHDLG_DRAWBMP("");
    EXPECT_TRUE(IsLoaded(SplashDlg));
}

TEST_F(SplashTest, TheButtonsAreARowAboveTheLowerEdgeOfThePicture) {
    SPLASHDLG_LOAD("A\nB\nC");
    SPLASHDLG_DRAWBMP(picture(640, 400));
    const Rect first = GetPosition(in("pushbutton1"), CLIENT_UNIT),
               last = GetPosition(in("pushbutton3"), CLIENT_UNIT);
    EXPECT_EQ(first.y + first.h, 400 - 8);
    EXPECT_EQ(last.y, first.y);
    EXPECT_EQ(first.x, 640 - last.x - last.w) << "as much room on both sides";
}

TEST_F(SplashTest, ALineIsAsLargeAsItsBandLetsItBe) {
    SPLASHDLG_LOAD("");
    SetFontSize(SplashDlg, 9);
    // Without a screen a letter is 6 pixels wide and 13 high in every size.
    EXPECT_EQ(GETBIGGESTFONTSIZE(SplashDlg, "Tarnwick", 48, 13), 13) << "no more points than pixels";
    EXPECT_EQ(GETBIGGESTFONTSIZE(SplashDlg, "Tarnwick", 48, 1000), 144);
    EXPECT_EQ(GETBIGGESTFONTSIZE(SplashDlg, "Tarnwick", 47, 13), 1) << "too wide in any size";
    EXPECT_EQ(GETBIGGESTFONTSIZE(SplashDlg, "Tarnwick", 48, 12), 1) << "too high in any size";
    EXPECT_EQ(GETBIGGESTFONTSIZE(SplashDlg, "Tarnwick", 48, -5), 1);
    EXPECT_EQ(GETBIGGESTFONTSIZE(SplashDlg, "", 0, 13), 13);
    EXPECT_EQ(GetFontSize(SplashDlg), 9) << "the window keeps its own";
}

TEST_F(SplashTest, ThePictureMayBeSmallerThanTheLinesMargins) {
    SPLASHDLG_LOAD("");
    SPLASHDLG_DRAWBMP(picture(10, 10));
    SPLASHDLG_SPLASHTEXT("one", "", std::string(2000, 'x'));
    EXPECT_EQ(GetFontName(SplashDlg), "") << "the window keeps its own font";
    EXPECT_EQ(GetFontSize(SplashDlg), 0);
}

}  // namespace
}  // namespace tarn
