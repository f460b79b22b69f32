// SPDX-License-Identifier: GPL-3.0-or-later
//
// Where the parts of a drawn dialog lie, and what is under the mouse. Without a screen a letter is 6 by 13 pixels.
#include "ide/designer/drawing/geometry.h"

#include "library/designer/proputil.h"
#include "support/ide_fixture.h"

#include <array>

namespace tarn {

// The names of what tests print stand with the types.
namespace platform::types {
static std::ostream& operator<<(std::ostream& out, const Rect& r) {
    return out << r.x << " " << r.y << " " << r.w << " " << r.h;
}
}  // namespace platform::types

namespace {

constexpr char Resources[] = R"(
Design DIALOG
  POSITION=0 0 200 200
  FONTNAME="Serif"
  FONTSIZE=12
  Listbox datalist 101
  Edit other 102
END
)";

class Geometry : public IdeTest {
protected:
    const Object window{"Design"}, datalist{"Design", 101};

    void SetUp() override {
        IdeTest::SetUp();
        ASSERT_TRUE(os::saveFile(dir + "design.rc", Resources, os::Durability::Unsynced).ok());
        ASSERT_EQ(Load(window, dir + "design.rc", "Design"), "");
    }
    void TearDown() override {
        EXPECT_EQ(GetFontName(window), "Serif") << "the window has its own font again";
        EXPECT_EQ(GetFontSize(window), 12);
        EXPECT_EQ(ErrorCell(), 0) << ErrorDetails();
        IdeTest::TearDown();
    }
    // 100 by 80 units are 150 by 130 pixels.
    static std::string dialog(const std::string& border, const std::string& caption, const std::string& menu,
                              const std::string& position = "8 16 100 80") {
        return "NAME=Main\nTYPEOF=Dialog\nPOSITION=" + position + "\nCAPTION=\"" + caption +
               "\"\nMENU=" + menu + "\nBORDERSTYLE=" + border + "\n";
    }
    int at(int mode, int x, int y, const Margin& margin = {10, 10, 10, 10}) const {
        return GETCLICKINDEX(window, datalist, mode, margin, x, y);
    }
    void fill(const std::vector<std::string>& items) const {
        Clear(datalist);
        for (const std::string& item : items) AddItem(datalist, item.substr(0, item.size() - 1));
    }
    static std::string control(const std::string& position) {
        return "NAME=Label1\nTYPEOF=Label\nPOSITION=" + position + "\n";
    }
};

TEST_F(Geometry, TheRectanglesOfEachMode) {
    struct Case {
        const char* what;
        int mode;
        const char *border, *caption, *menu;
        std::array<Rect, 4> rects;  // client, frame, caption, menu
    };
    constexpr Rect none{}, plain{0, 0, 150, 130};
    const Case cases[] = {
        {"client only", 0, "2", "Main", "Menu1", {plain, plain, none, none}},
        {"client and menu",
         1,
         "2",
         "Main",
         "Menu1",
         {Rect{0, 21, 150, 130}, {0, 0, 150, 151}, none, {0, 0, 150, 20}}},
        {"client and no menu", 1, "2", "Main", "", {plain, plain, none, none}},
        {"full frame",
         2,
         "2",
         "Main",
         "Menu1",
         {Rect{4, 43, 150, 130}, {0, 0, 158, 177}, {4, 4, 150, 18}, {4, 22, 150, 21}}},
        {"without a menu",
         2,
         "1",
         "Main",
         "",
         {Rect{4, 22, 150, 130}, {0, 0, 158, 156}, {4, 4, 150, 18}, none}},
        {"without a caption",
         2,
         "1",
         "",
         "Menu1",
         {Rect{4, 25, 150, 130}, {0, 0, 158, 159}, none, {4, 4, 150, 21}}},
        {"with a border alone", 2, "1", "", "", {Rect{4, 4, 150, 130}, {0, 0, 158, 138}, none, none}},
        {"no border has no caption", 2, "0", "Main", "", {plain, plain, none, none}},
        {"no border has a menu",
         2,
         "0",
         "Main",
         "Menu1",
         {Rect{0, 21, 150, 130}, {0, 0, 150, 151}, none, {0, 0, 150, 21}}},
        {"a negative border is one", 2, "-1", "", "", {Rect{4, 4, 150, 130}, {0, 0, 158, 138}, none, none}},
        {"no mode", 3, "2", "Main", "Menu1", {}},
        {"no mode below", -1, "2", "Main", "Menu1", {}},
    };
    for (const Case& one : cases) {
        const FrameRects rects = CALCOFFSETS(window, dialog(one.border, one.caption, one.menu), one.mode);
        EXPECT_EQ(rects.position, (Rect{12, 26, 150, 130})) << one.what;
        EXPECT_EQ(rects.client, one.rects[0]) << one.what;
        EXPECT_EQ(rects.frame, one.rects[1]) << one.what;
        EXPECT_EQ(rects.caption, one.rects[2]) << one.what;
        EXPECT_EQ(rects.menu, one.rects[3]) << one.what;
    }
}

TEST_F(Geometry, TheHeightsOfThePartsOfAFrame) {
    for (const int style : {1, 2, -1, 100}) EXPECT_EQ(GETBORDERHEIGHT(window, style), 4) << style;
    EXPECT_EQ(GETBORDERHEIGHT(window, 0), 0);
    EXPECT_EQ(GETCAPTIONHEIGHT(window, 1, "x"), 18);
    EXPECT_EQ(GETCAPTIONHEIGHT(window, 0, "x"), 0);
    EXPECT_EQ(GETCAPTIONHEIGHT(window, 1, ""), 0);
    EXPECT_EQ(GETMENUHEIGHT(window, "Menu1"), 21);
    EXPECT_EQ(GETMENUHEIGHT(window, ""), 0);
}

TEST_F(Geometry, AListWithoutPropertiesIsADialogOfNoSize) {
    const FrameRects rects = CALCOFFSETS(window, "", FULL_FRAME);
    for (const Rect& rect : {rects.position, rects.client, rects.frame, rects.caption, rects.menu})
        EXPECT_EQ(rect, Rect{});
}

TEST_F(Geometry, AMarginIsFourNumbers) {
    const auto numbers = [](std::string_view text) {
        const Margin m = GETMARGIN(text);
        return std::array{m.left, m.top, m.right, m.bottom};
    };
    EXPECT_EQ(numbers("10 20 30 40"), (std::array{10, 20, 30, 40}));
    EXPECT_EQ(numbers("  5   6"), (std::array{5, 6, 0, 0}));
    EXPECT_EQ(numbers(""), (std::array{0, 0, 0, 0}));
    EXPECT_EQ(numbers("-3 x 7 8"), (std::array{-3, 0, 0, 0})) << "what is no number ends them";
}

TEST_F(Geometry, TheClientAreaInTheWindowAndWhatStandsAroundIt) {
    const Margin margin = {1, 2, 30, 40};
    const std::string list = dialog("2", "Main", "Menu1");
    EXPECT_EQ(CALCOFFSETS(window, list, CLIENT_ONLY, margin), (Rect{1, 2, 31, 42}));
    EXPECT_EQ(CALCOFFSETS(window, list, CLIENT_AND_MENU, margin), (Rect{1, 23, 31, 63}));
    EXPECT_EQ(CALCOFFSETS(window, list, FULL_FRAME, margin), (Rect{5, 45, 39, 89}));
}

// ---- what is under the mouse ----

TEST_F(Geometry, WhereControlsOverlapTheLaterOneIsMeant) {
    fill({dialog("2", "Main", "Menu1"), control("0 0 40 40"), control("20 20 40 40")});
    // The client area begins at 14, 53; 20 units are 30 by 32 pixels.
    EXPECT_EQ(at(FULL_FRAME, 14 + 30, 53 + 32), 3);
    EXPECT_EQ(at(FULL_FRAME, 14 + 29, 53 + 32), 2);
    EXPECT_EQ(at(FULL_FRAME, 14 + 30, 53 + 31), 2);
    EXPECT_EQ(at(FULL_FRAME, 14 + 30 + 59, 53 + 32 + 64), 3) << "the last pixel";
    EXPECT_EQ(at(FULL_FRAME, 14 + 30 + 60, 53 + 32 + 64), 1) << "the one behind it";
}

TEST_F(Geometry, TheClientAreaIsTheDialogAndTheBarIsTheMenu) {
    fill({dialog("2", "Main", "Menu1")});
    struct Case {
        const char* what;
        int x, y, index;
    };
    const Case cases[] = {
        {"client area", 20, 60, 1},
        {"menu bar", 14, 32, -1},
        {"last of the menu bar", 163, 52, -1},
        {"caption", 20, 20, 1},
        {"border", 10, 10, 1},
        {"beside the menu bar", 164, 40, 1},
        {"margin", 9, 10, 0},
        {"last of the frame", 167, 186, 1},
        {"below the frame", 167, 187, 0},
        {"far away", 5000, 5000, 0},
        {"before everything", -1, -1, 0},
    };
    for (const Case& one : cases) EXPECT_EQ(at(FULL_FRAME, one.x, one.y), one.index) << one.what;
}

TEST_F(Geometry, AControlMayReachOutOfTheDialog) {
    fill({dialog("2", "Main", ""), control("90 10 400 10"), control("-20 0 10 10")});
    EXPECT_EQ(at(FULL_FRAME, 400, 32 + 16), 2);
    EXPECT_EQ(at(FULL_FRAME, 14 - 30, 32), 3) << "to the left of it too";
}

TEST_F(Geometry, OnlyADialogWithAListIsAsked) {
    fill({dialog("2", "Main", ""), control("0 0 10 10")});
    EXPECT_EQ(GETCLICKINDEX(datalist, datalist, FULL_FRAME, {}, 5, 30), 0);
    EXPECT_EQ(GETCLICKINDEX(window, Object("Design", 102), FULL_FRAME, {}, 5, 30), 0);
    EXPECT_NE(GETCLICKINDEX(window, datalist, FULL_FRAME, {}, 5, 30), 0);
    Clear(datalist);
    EXPECT_EQ(at(FULL_FRAME, 20, 60), 0) << "no dialog";
}

TEST_F(Geometry, AControlWithoutASizeIsNeverHit) {
    fill({dialog("2", "Main", ""), control("10 10 0 0"), control("10 10 -5 -5")});
    EXPECT_EQ(at(FULL_FRAME, 14 + 15, 32 + 16), 1);
}

}  // namespace
}  // namespace tarn
