// SPDX-License-Identifier: GPL-3.0-or-later
//
// What is drawn for a design, call by call. Without a screen a letter is 6 by 13 pixels, whatever its font.
#include "ide/designer/drawing/drawing.h"

#include "ide/designer/drawing/dlgdraw.h"
#include "library/designer/proputil.h"
#include "support/ide_fixture.h"
#include "support/recording_view.h"

#include <algorithm>

namespace tarn {
namespace {

constexpr char Resources[] = R"(
Design DIALOG
  POSITION=0 0 200 200
  Edit StatusText 101
  Label other 102
END
Bare DIALOG
  POSITION=0 0 200 200
  Label StatusText 101
END
)";

using Calls = std::vector<std::string>;

class Drawing : public IdeTest {
protected:
    const Object window{"Design"};
    platform::RecordingView* view = nullptr;
    std::unique_ptr<platform::View> before;

    void SetUp() override {
        IdeTest::SetUp();
        auto recording = std::make_unique<platform::RecordingView>();
        view = recording.get();
        before = platform::useView(std::move(recording));
        ASSERT_TRUE(os::saveFile(dir + "design.rc", Resources, os::Durability::Unsynced).ok());
        for (const char* name : {"Design", "Bare"})
            ASSERT_EQ(Load(Object(name), dir + "design.rc", name), "");
    }
    void TearDown() override {
        EXPECT_EQ(ErrorCell(), 0) << ErrorDetails();
        platform::DestroyAllWindows();
        platform::useView(std::move(before));
        IdeTest::TearDown();
    }
    Calls& calls() const { return view->calls; }
    // What `draw` draws from the corner of the window on.
    template <class Draw>
    Calls drawn(Draw draw) {
        calls().clear();
        StartGraph(window);
        draw();
        EndGraph(window);
        return calls();
    }
    Calls redrawn(const DesignPicture& picture) {
        calls().clear();
        view->lists.clear();
        DRAWWINDOW(window, picture);
        return calls();
    }
    static Calls of(const Calls& all, std::string_view word) {
        Calls out;
        for (const std::string& call : all)
            if (call.starts_with(word)) out.push_back(call);
        return out;
    }
    static std::size_t place(const Calls& all, const std::string& call) {
        return static_cast<std::size_t>(std::find(all.begin(), all.end(), call) - all.begin());
    }

    static std::string dialog(const std::string& more, const std::string& border = "2") {
        return "NAME=Main\nTYPEOF=Dialog\nPOSITION=0 0 100 80\nBORDERSTYLE=" + border + "\n" + more;
    }
    static std::string control(const std::string& name, const std::string& position,
                               const std::string& type = "Label") {
        return "NAME=" + name + "\nTYPEOF=" + type + "\nPOSITION=" + position + "\nCAPTION=\"Text\"\n";
    }
    // One of 100 by 80 units, which are 150 by 130 pixels.
    static DesignPicture picture(const std::string& more, std::vector<std::string> controls = {}) {
        DesignPicture p;
        p.dialog[0] = dialog(more);
        std::copy(controls.begin(), controls.end(), p.dialog.begin() + 1);
        p.margin = {10, 10, 10, 10};
        return p;
    }
    static std::string item(int level, const std::string& caption) {
        return "NAME=Item\nTYPEOF=Menuitem\nPOSITION=" + STR(level) + "\nCAPTION=\"" + caption + "\"\n";
    }
};

// ---- primitives ----

constexpr Bevel bevel = {0x010101, 0x020202, 0x030303, 0x040404, 0x050505};

TEST_F(Drawing, ABevelIsFilledAndThenLitFromTheUpperLeft) {
    EXPECT_EQ(
        drawn([&] { DRAWCOLOREDRECT(window, 10, 20, 19, 29, bevel); }),
        (Calls{"shape 0 10 20 10 10 050505 050505", "line 10 20 19 20 010101", "line 10 20 10 29 010101",
               "line 11 21 18 21 020202", "line 11 21 11 28 020202", "line 11 28 18 28 030303",
               "line 18 21 18 28 030303", "line 10 29 19 29 040404", "line 19 20 19 29 040404"}));
}

TEST_F(Drawing, AColourThatIsNoneLeavesOutItsPairOfLines) {
    struct Case {
        const char* what;
        int Bevel::*colour;
        const char* ink;
    };
    for (const Case& one :
         {Case{"outer light", &Bevel::lightOuter, "010101"},
          Case{"inner light", &Bevel::lightInner, "020202"}, Case{"inner dark", &Bevel::darkInner, "030303"},
          Case{"outer dark", &Bevel::darkOuter, "040404"}, Case{"fill", &Bevel::fill, "050505"}}) {
        Bevel part = bevel;
        part.*(one.colour) = NO_COLOUR;
        const Calls all = drawn([&] { DRAWCOLOREDRECT(window, 0, 0, 9, 9, part); });
        EXPECT_EQ(all.size(), one.colour == &Bevel::fill ? 8U : 7U) << one.what;
        for (const std::string& call : all)
            EXPECT_EQ(call.find(one.ink), std::string::npos) << one.what << call;
    }
}

TEST_F(Drawing, ASmallBevelIsItsFillAlone) {
    struct Case {
        int x2, y2;
        std::size_t calls;
    };
    for (const Case& one : {Case{2, 2, 1}, Case{3, 2, 1}, Case{2, 30, 1}, Case{3, 3, 9}, Case{0, 0, 1},
                            Case{-1, 5, 0}, Case{5, -1, 0}, Case{-9, -9, 0}})
        EXPECT_EQ(drawn([&] { DRAWCOLOREDRECT(window, 0, 0, one.x2, one.y2, bevel); }).size(), one.calls)
            << one.x2 << " " << one.y2;
    EXPECT_EQ(drawn([&] { DRAWCOLOREDRECT(window, 0, 0, 2, 2, bevel); }),
              (Calls{"shape 0 0 0 3 3 050505 050505"}));
}

TEST_F(Drawing, HandlesStandInTheCornersAndTheMiddles) {
    EXPECT_EQ(drawn([&] {
                  DRAWHANDLERECT(window, {10, 20, 40, 30}, 4, BLACK, NO_COLOUR);
              }),
              (Calls{"shape 0 10 20 40 30 000000 -", "shape 0 10 20 4 4 000000 000000",
                     "shape 0 28 20 4 4 000000 000000", "shape 0 46 20 4 4 000000 000000",
                     "shape 0 10 33 4 4 000000 000000", "shape 0 46 33 4 4 000000 000000",
                     "shape 0 10 46 4 4 000000 000000", "shape 0 28 46 4 4 000000 000000",
                     "shape 0 46 46 4 4 000000 000000"}));
    EXPECT_EQ(drawn([&] {
                  DRAWHANDLERECT(window, {0, 0, 40, 30}, 4, BLACK, WHITE);
              })[0],
              "shape 0 0 0 40 30 000000 ffffff");
}

TEST_F(Drawing, HandlesDoNotLeaveTheirRectangle) {
    for (const Rect& rect :
         {Rect{10, 10, 3, 3}, Rect{10, 10, 1, 40}, Rect{10, 10, 40, 2}, Rect{10, 10, 5, 5}})
        for (const std::string& call : drawn([&] { DRAWHANDLERECT(window, rect, 4, BLACK, NO_COLOUR); })) {
            Rect r;
            ASSERT_EQ(std::sscanf(call.c_str(), "shape 0 %d %d %d %d", &r.x, &r.y, &r.w, &r.h), 4);
            EXPECT_TRUE(r.x >= rect.x && r.y >= rect.y && r.x + r.w <= rect.x + rect.w &&
                        r.y + r.h <= rect.y + rect.h)
                << call;
        }
}

TEST_F(Drawing, AnArrowsDirectionIsAWordInAnyCase) {
    const auto arrow = [&](const char* word) {
        return drawn([&] { DRAWARROWTEXT(window, {0, 0, 9, 9}, word, BLACK); });
    };
    EXPECT_EQ(arrow("UP"), (Calls{"line 4 2 4 2 000000", "line 3 3 5 3 000000", "line 2 4 6 4 000000",
                                  "line 1 5 7 5 000000"}));
    EXPECT_EQ(arrow("Down")[0], "line 4 6 4 6 000000");
    EXPECT_EQ(arrow("left"), (Calls{"line 2 4 2 4 000000", "line 3 3 3 5 000000", "line 4 2 4 6 000000",
                                    "line 5 1 5 7 000000"}));
    EXPECT_EQ(arrow("RIGHT")[0], "line 6 4 6 4 000000");
    for (const char* word : {"", "UPWARDS", "U"}) EXPECT_EQ(arrow(word), Calls{}) << word;
}

TEST_F(Drawing, TextStandsByItsAlignmentAndEndsWithDotsWhereItIsTooLong) {
    const auto text = [&](const char* words, int alignment) {
        return drawn([&] { DRAWCONTROLTEXT(window, {10, 20, 60, 33}, words, alignment); });
    };
    EXPECT_EQ(text("four", 0), (Calls{"text 10 30 \"four\"  0"}));
    EXPECT_EQ(text("four", 1), (Calls{"text 46 30 \"four\"  0"}));
    EXPECT_EQ(text("four", 2), (Calls{"text 28 30 \"four\"  0"}));
    EXPECT_EQ(text("0123456789", 0), (Calls{"text 10 30 \"0123456789\"  0"}));
    EXPECT_EQ(text("0123456789a", 0), (Calls{"text 10 30 \"0123456...\"  0"}));
    EXPECT_EQ(text("one\ntwo", 0), (Calls{"text 10 30 \"one\"  0"}));
}

TEST_F(Drawing, ScrollBarsLeaveTheRestOfTheRectangle) {
    const Rect whole = {0, 0, 100, 80};
    const auto rest = [&](int bars) {
        Rect left;
        drawn([&] { left = DRAWSCROLLBARS(window, whole, bars); });
        return left;
    };
    EXPECT_EQ(rest(0), whole);
    EXPECT_TRUE(calls().empty());
    EXPECT_EQ(rest(1), (Rect{0, 0, 100, 64}));
    EXPECT_EQ(rest(2), (Rect{0, 0, 84, 80}));
    EXPECT_EQ(rest(3), (Rect{0, 0, 84, 64}));
    EXPECT_EQ(calls().back(), "shape 0 84 64 16 16 c0c0c0 c0c0c0") << "the corner between them";
}

TEST_F(Drawing, LampsHaveTheColourOfTheirWord) {
    for (const auto& [word, ink] :
         {std::pair{"RED", "0000e0"}, {"amber", "00a5ff"}, {"Green", "00b000"}, {"", "c0c0c0"}})
        EXPECT_EQ(drawn([&, word = word] {
                      DRAWPANELLAMP(window, {5, 5, 20, 10}, word);
                  }),
                  (Calls{std::string("shape 2 10 5 10 10 808080 ") + ink}))
            << word;
}

TEST_F(Drawing, TheStatusTextIsThatOfAnEdit) {
    drawn([&] { DRAWSTATUSTEXT(window, {0, 0, 10, 10}, "RED", "Stopped"); });
    EXPECT_EQ(GETSTATUSTEXT(window), "Stopped");
    EXPECT_EQ(GetText(FindControl(window, "StatusText")), "Stopped");
    StartGraph(Object("Bare"));
    DRAWSTATUSTEXT(Object("Bare"), {0, 0, 10, 10}, "RED", "Stopped");
    EndGraph(Object("Bare"));
    EXPECT_EQ(GETSTATUSTEXT(Object("Bare")), "") << "a label";
    EXPECT_EQ(GetCaption(Object("Bare", 101)), "");
}

TEST_F(Drawing, OtherSignsStayInTheirRectangles) {
    const Rect rect = {10, 10, 40, 20};
    struct Case {
        const char* what;
        std::function<void()> draw;
    };
    for (const Case& one : {Case{"cells", [&] { DRAWCELLS(window, rect, 7, 6, BLACK); }},
                            Case{"sizing corner", [&] { DRAWSIZINGCORNER(window, rect); }},
                            Case{"landscape", [&] { DRAWLANDSCAPE(window, rect); }},
                            Case{"circle", [&] { DRAWCIRCLE(window, rect, BLACK, WHITE); }},
                            Case{"close", [&] { DRAWNCBUTTON(window, rect, NcButton::Close); }},
                            Case{"maximise", [&] { DRAWNCBUTTON(window, rect, NcButton::Maximise); }},
                            Case{"minimise", [&] { DRAWNCBUTTON(window, rect, NcButton::Minimise); }}}) {
        const Calls all = drawn(one.draw);
        EXPECT_FALSE(all.empty()) << one.what;
        for (const std::string& call : all) {
            const bool line = call.starts_with("line");
            Rect r;
            ASSERT_EQ(std::sscanf(call.c_str(), line ? "line %d %d %d %d" : "shape %*d %d %d %d %d", &r.x,
                                  &r.y, &r.w, &r.h),
                      4);
            const int right = line ? std::max(r.x, r.w) : r.x + r.w - 1,
                      bottom = line ? std::max(r.y, r.h) : r.y + r.h - 1;
            EXPECT_TRUE(std::min(r.x, line ? r.w : r.x) >= 10 && right <= 49) << one.what << ": " << call;
            EXPECT_TRUE(std::min(r.y, line ? r.h : r.y) >= 10 && bottom <= 29) << one.what << ": " << call;
        }
    }
}

// ---- the whole ----

TEST_F(Drawing, TheWindowHasTheDialogsFontFromThenOn) {
    redrawn(picture("FONTNAME=\"Serif\"\nFONTSIZE=12\nFONTBOLD=1\nCAPTION=\"x\"\nMENU=Menu1\n"));
    EXPECT_EQ(GetFontName(window), "Serif");
    EXPECT_EQ(GetFontSize(window), 12);
    EXPECT_TRUE(GetFontBold(window));
    EXPECT_FALSE(GetFontItalic(window));
    redrawn(picture(""));
    EXPECT_EQ(GetFontName(window), "") << "the desktop's, as the program will have";
    EXPECT_EQ(GetFontSize(window), 0);
}

TEST_F(Drawing, ALinkedWindowTakesTheSizeOfThePicture) {
    DesignPicture p = picture("CAPTION=\"x\"\n");
    p.margin = {1, 2, 3, 4};
    const Rect was = GetPosition(window, CLIENT_UNIT);
    redrawn(p);
    EXPECT_EQ(GetPosition(window, CLIENT_UNIT), was);
    p.link = true;
    redrawn(p);
    EXPECT_EQ(GetPosition(window, CLIENT_UNIT), (Rect{was.x, was.y, 1 + 158 + 3, 2 + 156 + 4}));
}

TEST_F(Drawing, WhatWasDrawnBeforeIsWiped) {
    EXPECT_EQ(redrawn(picture(""))[0], "wipe");
}

TEST_F(Drawing, TheGridHasHorizontalLinesAndThenVerticalOnes) {
    DesignPicture p = picture("", {control("Label1", "0 0 10 10")});
    p.mode = CLIENT_ONLY;
    p.grid = "40 40";  // 60 by 65 pixels
    EXPECT_EQ(redrawn(p), (Calls{"wipe", "line 10 10 159 10 909090", "line 10 75 159 75 909090",
                                 "line 10 10 10 139 909090", "line 70 10 70 139 909090",
                                 "line 130 10 130 139 909090", "control 10 10 15 16 Label1 Label"}));
    for (const char* grid : {"0 0", "4 0", "0 4", "", "-4 -4", "x", "4"}) {
        p.grid = grid;
        EXPECT_TRUE(of(redrawn(p), "line").empty()) << grid;
    }
}

TEST_F(Drawing, ControlsAreDrawnInTheOrderOfTheList) {
    DesignPicture p =
        picture("", {control("Label1", "0 0 10 10"), control("Button1", "2 2 400 10", "Pushbutton"),
                     control("Label3", "-10 8 10 10")});
    EXPECT_EQ(of(redrawn(p), "control"),
              (Calls{"control 14 14 15 16 Label1 Label", "control 17 17 600 16 Button1 Pushbutton",
                     "control -1 27 15 16 Label3 Label"}))
        << "one wider than the dialog is clipped only by the window";
}

TEST_F(Drawing, EveryTypeHasItsRoutine) {
    for (const char* type :
         {"Bitmapbutton", "Checkbox", "Combobox", "Edit", "Groupbox", "Icon", "Iconlist", "Image", "Label",
          "Listbox", "Progressbar", "Pushbutton", "Radiobutton", "Scrollbar", "Shape"}) {
        const Calls all = redrawn(picture("", {control("Some1", "0 0 10 10", type)}));
        EXPECT_EQ(of(all, "control"), (Calls{std::string("control 14 14 15 16 Some1 ") + type}));
    }
    const Calls strange = redrawn(picture("", {control("Some1", "0 0 60 10", "Spinner")}));
    EXPECT_TRUE(of(strange, "control").empty());
    EXPECT_EQ(of(strange, "text"), (Calls{"text 44 15 \"Some1\"  0"}));
}

TEST_F(Drawing, AControlWithNothingToShowHasAnOutline) {
    struct Case {
        const char* list;
        bool outlined;
    };
    for (const Case& one :
         {Case{"TYPEOF=Label\nCAPTION=\"\"\n", true}, Case{"TYPEOF=Label\nCAPTION=\"x\"\n", false},
          Case{"TYPEOF=Label\nCAPTION=\"\"\nBORDERSTYLE=1\n", false},
          Case{"TYPEOF=Image\nPICTURE=\"\"\n", true},
          Case{"TYPEOF=Image\nPICTURE=\"\"\nBORDERSTYLE=2\n", false}, Case{"TYPEOF=Icon\n", true},
          Case{"TYPEOF=Icon\nPICTURE=\"a.ico\"\n", false}, Case{"TYPEOF=Edit\n", false}}) {
        DesignPicture p = picture("", {std::string("NAME=Some1\nPOSITION=0 0 10 10\n") + one.list});
        p.mode = CLIENT_ONLY;
        EXPECT_EQ(of(redrawn(p), "shape"), one.outlined ? Calls{"shape 0 10 10 15 16 909090 -"} : Calls{})
            << one.list;
    }
}

TEST_F(Drawing, PicturesAreLookedForWhereTheyStand) {
    ASSERT_TRUE(
        os::saveFile(dir + "some.rc", "disc BITMAP \"pictures/disc.png\"\n", os::Durability::Unsynced).ok());
    const auto shown = [&](const std::string& picture, const std::string& file) {
        DesignPicture p =
            this->picture("", {"NAME=Icon1\nTYPEOF=Icon\nPOSITION=0 0 10 10\nPICTURE=\"" + picture + "\"\n"});
        p.resourceFolder = "/res/";
        p.compilerFolder = "/tools/";
        p.resourceFile = file;
        redrawn(p);
        return GETPROPVALUE(view->lists.back(), "PICTURE");
    };
    EXPECT_EQ(shown("/a/b.png", ""), "/a/b.png");
    EXPECT_EQ(shown("<RESOURCEDIR>\\b.png", ""), "/res/b.png");
    EXPECT_EQ(shown("<COMPILERDIR>\\b.png", dir + "some.rc"), "/tools/b.png");
    EXPECT_EQ(shown("b.png", ""), "/res/b.png");
    EXPECT_EQ(shown("b.png", dir + "some.rc"), dir + "b.png");
    EXPECT_EQ(shown("disc", dir + "some.rc"), dir + "pictures/disc.png") << "declared by the file";
    EXPECT_EQ(shown("none", dir + "some.rc"), dir + "none");
}

TEST_F(Drawing, BitmapButtonsBesideAMenuAreThoseOfAToolbar) {
    const std::string button = "NAME=Tool1\nTYPEOF=Bitmapbutton\nPOSITION=0 0 10 10\nCAPTION=\"x\"\n";
    redrawn(picture("", {button}));
    EXPECT_EQ(view->lists.back().find("MENU="), std::string::npos);
    redrawn(picture("MENU=Menu1\n", {button}));
    EXPECT_NE(view->lists.back().find("\nMENU="), std::string::npos);
}

TEST_F(Drawing, ALabelsMnemonicLeadsWhereTheNextControlTakesTheFocus) {
    const auto led = [&](const std::string& next) {
        redrawn(picture("", {control("Label1", "0 0 10 10"), next}));
        return view->lists[0].ends_with("BUDDY=1\n");
    };
    for (const char* type : {"Edit", "Listbox", "Pushbutton"})
        EXPECT_TRUE(led(control("x", "0 0 9 9", type))) << type;
    for (const char* type : {"Label", "Groupbox", "Shape", "Icon", "Image", "Progressbar"})
        EXPECT_FALSE(led(control("x", "0 0 9 9", type))) << type;
    EXPECT_FALSE(led("")) << "the last one";
}

TEST_F(Drawing, NoGridShowsBetweenLetters) {
    for (const char* type : {"Label", "Checkbox", "Radiobutton", "Shape"}) {
        DesignPicture p = picture("", {control("Some1", "0 0 10 10", type)});
        redrawn(p);
        EXPECT_EQ(view->lists[0].find("GROUND"), std::string::npos) << type;
        p.grid = "4 4";
        redrawn(p);
        EXPECT_EQ(view->lists[0].find("GROUND") != std::string::npos, std::string_view(type) != "Shape")
            << type;
    }
}

TEST_F(Drawing, TheSelectedControlHasHandlesAboveAllOthers) {
    DesignPicture p = picture("", {control("Label1", "0 0 20 10"), control("Label2", "0 0 20 10")});
    p.mode = CLIENT_ONLY;
    p.selection = 2;
    const Calls all = redrawn(p);
    EXPECT_EQ(all[3], "shape 0 10 10 30 16 000000 -");
    EXPECT_EQ(of(all, "shape").size(), 9U);
    for (const int none : {0, 1, 4, 256, 257, 1000, -1, -7}) {
        p.selection = none;
        EXPECT_TRUE(of(redrawn(p), "shape").empty()) << none;
    }
}

TEST_F(Drawing, OtherSelectedControlsHaveHollowHandlesBelowThoseOfTheFirst) {
    DesignPicture p = picture("", {control("Label1", "0 0 20 10"), control("Label2", "40 0 20 10")});
    p.mode = CLIENT_ONLY;
    p.selection = 2;
    p.others = {3, 0, 1, 99};
    const Calls all = of(redrawn(p), "shape");
    ASSERT_EQ(all.size(), 18U);
    EXPECT_EQ(all[0], "shape 0 70 10 30 16 000000 -");
    EXPECT_EQ(all[1], "shape 0 70 10 4 4 000000 ffffff");
    EXPECT_EQ(all[8], "shape 0 96 22 4 4 000000 ffffff");
    EXPECT_EQ(all[9], "shape 0 10 10 30 16 000000 -");
    EXPECT_EQ(all[10], "shape 0 10 10 4 4 000000 000000");
    view->dark = true;
    EXPECT_EQ(of(redrawn(p), "shape")[1], "shape 0 70 10 4 4 ffffff 000000");
}

TEST_F(Drawing, ALockedControlHasAMark) {
    DesignPicture p = picture("", {control("Label1", "0 0 20 10"), control("Label2", "40 0 20 10")});
    p.mode = CLIENT_ONLY;
    p.locked = {3, 7};
    EXPECT_EQ(of(redrawn(p), "shape"),
              (Calls{"shape 0 85 14 11 11 ffffff ffffff", "shape 0 88 15 5 6 000000 -",
                     "shape 0 86 19 9 5 000000 000000"}));
}

TEST_F(Drawing, NumbersOfAnOrderStandInPlaceOfHandles) {
    DesignPicture p = picture("", {control("Label1", "0 0 20 10"), control("Label2", "40 0 20 10")});
    p.mode = CLIENT_ONLY;
    p.selection = 2;
    p.tabOrder = {3, 2};
    p.clicked = 1;
    const Calls all = redrawn(p);
    EXPECT_EQ(of(all, "shape"),
              (Calls{"shape 0 70 10 15 15 2a7a2a 2a7a2a", "shape 0 10 10 15 15 8c5f3a 8c5f3a"}));
    const Calls texts = of(all, "text");
    ASSERT_EQ(texts.size(), 2U);
    EXPECT_NE(texts[0].find("\"1\" Microsoft Sans Serif 8"), std::string::npos) << texts[0];
    EXPECT_NE(texts[1].find("\"2\" Microsoft Sans Serif 8"), std::string::npos) << texts[1];
}

TEST_F(Drawing, TheCaptionBarHasTheButtonsThatTheDialogHas) {
    const auto bar = [&](const std::string& more) { return redrawn(picture("CAPTION=\"Hello\"\n" + more)); };
    EXPECT_EQ(of(bar(""), "text"), (Calls{"text 17 16 \"Hello\" Microsoft Sans Serif 8"}));
    const auto buttons = [&](const std::string& more) {
        const Calls all = bar(more);
        Calls out;
        for (const std::string& call : of(all, "shape 0"))
            if (call.ends_with(" 16 16 c0c0c0 c0c0c0")) out.push_back(call.substr(8, 6));
        return out;
    };
    EXPECT_EQ(buttons(""), Calls{});
    EXPECT_EQ(buttons("CLOSEBOX=1\n"), (Calls{"147 15"}));
    EXPECT_EQ(buttons("CLOSEBOX=1\nMAXBUTTON=1\nMINBUTTON=1\n"), (Calls{"147 15", "130 15", "113 15"}));
    EXPECT_EQ(buttons("MINBUTTON=1\n"), (Calls{"147 15"}));
    EXPECT_TRUE(of(redrawn(picture("CAPTION=\"\"\nCLOSEBOX=1\n")), "text").empty()) << "no caption, no bar";
}

TEST_F(Drawing, TheMenuBarShowsTheItemsOfTheFirstLevel) {
    DesignPicture p = picture("MENU=Menu1\n");
    const auto text = [&] { return of(redrawn(p), "text"); };
    p.menu[0] = "NAME=Menu1\nTYPEOF=Menu\n";
    EXPECT_EQ(text(), (Calls{"text 17 18 \"<<No Menuitems>>\" Microsoft Sans Serif 8"}));
    p.menu[1] = item(1, "&File");
    p.menu[2] = item(2, "&Open");
    p.menu[3] = item(1, "Save && &quit");
    EXPECT_EQ(text(), (Calls{"text 17 18 \"File  Save & quit\" Microsoft Sans Serif 8"}));
    for (const auto& [caption, shown] : {std::pair{"File&", "File&"},
                                         {"&&&&x&", "&&x&"},
                                         {"a & b", "a & b"},
                                         {"&", "&"},
                                         {"&&", "&"},
                                         {"R&D", "RD"},
                                         {"&&&x", "&x"}}) {
        p.menu[1] = item(1, caption);
        p.menu[3] = item(2, "Deep");
        EXPECT_EQ(text(), (Calls{"text 17 18 \"" + std::string(shown) + "\" Microsoft Sans Serif 8"}))
            << caption;
    }
    p.menu[1] = p.menu[3] = item(2, "Deep");
    EXPECT_EQ(text(), (Calls{"text 17 18 \"\" Microsoft Sans Serif 8"})) << "an empty bar";
    p.dialog[0] = dialog("");
    EXPECT_EQ(text(), Calls{}) << "no menu";
}

TEST_F(Drawing, TheSelectedMenuHasHandles) {
    DesignPicture p = picture("MENU=Menu1\n");
    p.selection = -1;
    const Calls shapes = of(redrawn(p), "shape");
    ASSERT_EQ(shapes.size(), 9U);
    EXPECT_EQ(shapes[0], "shape 0 14 14 150 21 000000 -");
}

TEST_F(Drawing, TheFullFrameHasTwoBevelsAroundAll) {
    const Calls all = redrawn(picture(""));
    EXPECT_EQ(Calls(all.end() - 16, all.end()),
              (Calls{"line 10 10 167 10 e0e0e0", "line 10 10 10 147 e0e0e0", "line 11 11 166 11 ffffff",
                     "line 11 11 11 146 ffffff", "line 11 146 166 146 808080", "line 166 11 166 146 808080",
                     "line 10 147 167 147 000000", "line 167 10 167 147 000000", "line 12 12 165 12 c0c0c0",
                     "line 12 12 12 145 c0c0c0", "line 13 13 164 13 c0c0c0", "line 13 13 13 144 c0c0c0",
                     "line 13 144 164 144 c0c0c0", "line 164 13 164 144 c0c0c0", "line 12 145 165 145 c0c0c0",
                     "line 165 12 165 145 c0c0c0"}));
    for (const int mode : {CLIENT_ONLY, CLIENT_AND_MENU}) {
        DesignPicture p = picture("");
        p.mode = mode;
        EXPECT_TRUE(of(redrawn(p), "line").empty()) << mode;
    }
    DesignPicture bare = picture("");
    bare.dialog[0] = dialog("", "0");
    EXPECT_TRUE(of(redrawn(bare), "line").empty()) << "no border";
}

TEST_F(Drawing, OnADarkDesktopTheFrameIsDark) {
    view->dark = true;
    EXPECT_TRUE(of(redrawn(picture("")), "line 10 10 167 10 e0e0e0").empty());
}

TEST_F(Drawing, TheStepsHaveTheirOrder) {
    DesignPicture p = picture("CAPTION=\"Cap\"\nMENU=Menu1\n", {control("Label1", "0 0 10 10")});
    p.grid = "40 40";
    p.selection = 2;
    const Calls all = redrawn(p);
    const std::vector<std::size_t> places = {
        place(all, "wipe"),
        place(all, "line 14 53 163 53 909090"),
        place(all, "control 14 53 15 16 Label1 Label"),
        place(all, "shape 0 14 53 15 16 000000 -"),
        place(all, "text 17 16 \"Cap\" Microsoft Sans Serif 8"),
        place(all, "text 17 36 \"<<No Menuitems>>\" Microsoft Sans Serif 8"),
        place(all, "line 10 10 167 10 e0e0e0"),
    };
    EXPECT_TRUE(std::is_sorted(places.begin(), places.end()));
    EXPECT_LT(places.back(), all.size());
}

TEST_F(Drawing, AnEmptyPictureHarmsNothing) {
    EXPECT_EQ(redrawn({}), (Calls{"wipe"}));
    DesignPicture p;
    p.dialog[0] = "rubbish";
    p.dialog[1] = "TYPEOF=\n";
    p.mode = 99;
    p.grid = "2147483647 2147483647";
    p.selection = -1;
    redrawn(p);
}

TEST_F(Drawing, AFullDialogIsDrawnToItsLastControl) {
    DesignPicture p = picture("");
    for (std::size_t i = 1; i < p.dialog.size(); ++i)
        p.dialog[i] = control("Label" + STR(static_cast<int>(i)), "0 0 9 9");
    p.selection = 256;
    const Calls all = redrawn(p);
    EXPECT_EQ(of(all, "control").size(), 255U);
    EXPECT_EQ(of(all, "shape").size(), 9U) << "the last one can be selected";
}

}  // namespace
}  // namespace tarn
