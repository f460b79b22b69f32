// SPDX-License-Identifier: Apache-2.0
//
// Operations on arrays, named values, menus, positions, the system's objects, and the mouse, without a screen.
#include "os/files.h"
#include "platform/model/model.h"
#include "platform/model/view.h"
#include "platform/operations/boxhelp.h"
#include "platform/operations/printjob.h"
#include "platform/windowing.h"
#include "support/resources.h"
#include "support/tempfolder.h"

#include <gtest/gtest.h>

#include <deque>
#include <functional>
#include <unistd.h>

namespace tarn::platform {
namespace {

const std::string resources = R"(
Main DIALOG
  CAPTION="Main window"
  POSITION=0 0 200 100
  MENU=Menu
  Radiobutton one 101
    ARRAY=choice
  Radiobutton two 102
    ARRAY=Choice
    VALUE=1
  Radiobutton three 103
    ARRAY=choice
  Radiobutton alone 104
  Pushbutton ok 105
    POSITION=4 80 40 12
  Pushbutton cancel 106
    POSITION=50 80 40 12
  Pushbutton help 107
    POSITION=4 60 60 12
  Pushbutton hidden 108
    POSITION=4 90 60 12
    VISIBLE=0
  Label label 109
    POSITION=1 2 3 4
  Listbox list 110
    ROWS="a\nb"
  Image image 111
END
Menu MENU
  Menuitem file 201
    POSITION=1
  Menuitem first 202
    POSITION=2
    CAPTION="first"
    ARRAY=items
  Menuitem last 203
    POSITION=2
    ARRAY=others
  Menuitem free 204
    POSITION=2
END
Page DIALOG
  Pushbutton next 1
  Pushbutton cancel 2
  Pushbutton back 4
END
)";

struct Heard {
    int event;
    Object sender;
    int parameter;
    friend bool operator==(const Heard&, const Heard&) = default;
};
std::vector<Heard> heard;
std::function<bool(int, const Object&)> answer;

bool listen(const Object&, int event, const Object& sender, int parameter) {
    heard.push_back({event, sender, parameter});
    return answer && answer(event, sender);
}

class OperationsTest : public ::testing::Test {
protected:
    const Object main{"Main"}, page{"Page"};
    TempFolder folder;
    std::unique_ptr<View> before;
    std::deque<std::string> answers;
    std::vector<Question> asked;

    void SetUp() override {
        ASSERT_EQ(useResources(folder, resources), "");
        before = useView(makeHeadlessView([this](const Question& question) {
            asked.push_back(question);
            if (answers.empty()) return std::string();
            const std::string one = answers.front();
            answers.pop_front();
            return one;
        }));
        for (const Object& window : {main, page}) RegisterWindow(window, listen);
        ASSERT_EQ(Load(main), Ok);
        Show(main, false);
        heard.clear();
    }
    void TearDown() override {
        answer = nullptr;
        SetHelpViewer(nullptr);
        DestroyAllWindows();
        useView(std::move(before));
        SetApplicationResources("");
    }
    static Object in(int number) { return Object("Main", number); }
    static Control& control(int number) { return *findControl(in(number)); }
    std::vector<std::string> menu() const {
        std::vector<std::string> rows;
        for (const auto& item : findWindow(main)->menuItems)
            rows.push_back(std::to_string(item->object.number()) + " " + item->array +
                           std::to_string(item->index) + " " + item->caption);
        return rows;
    }
};

using Texts = std::vector<std::string>;

// ---- arrays ----

TEST_F(OperationsTest, AnArrayIsReachedByAnyOfItsElements) {
    for (const int number : {101, 102, 103}) {
        EXPECT_EQ(ControlLbound(in(number)).value, 1);
        EXPECT_EQ(ControlUbound(in(number)).value, 3);
        EXPECT_EQ(Controlarraypos(in(number)).value, number - 100);
        EXPECT_EQ(Controlselection(in(number)).value, in(102));
        EXPECT_EQ(Controlselectionpos(in(number)).value, 2);
        EXPECT_EQ(ControlElement(in(number), 3), in(103));
    }
    EXPECT_EQ(Controlarray(in(101)).value, "choice");
    EXPECT_EQ(Controlarray(in(102)).value, "Choice");
    SetValue(in(102), 0);
    EXPECT_TRUE(Controlselection(in(101)).value.empty());
    EXPECT_EQ(Controlselection(in(101)).code, Ok);
    EXPECT_EQ(Controlselectionpos(in(101)).value, 0);
}

TEST_F(OperationsTest, WhatIsInNoArraySaysSo) {
    for (const Object& none : {in(104), in(105), main, Sysscreen, in(204)})
        for (const Code code :
             {ControlLbound(none).code, ControlUbound(none).code, Controlarray(none).code,
              Controlarraypos(none).code, Controlselection(none).code, Controlselectionpos(none).code,
              AddMenuitem(none, ""), AddMenuitems(none, "a\nb"), RemoveMenuitem(none),
              RemoveMenuitems(none, none), RemoveMenuitems(in(202), none)})
            EXPECT_EQ(code, NotAControlArray) << none.number();
    EXPECT_EQ(AddMenuitem(in(101), "x"), NotAControlArray) << "an array, but none of menu items";
    EXPECT_EQ(menu().size(), 4U);
}

TEST_F(OperationsTest, MenuItemsComeAndGo) {
    EXPECT_EQ(AddMenuitems(in(202), "a\r\nb\n\nc"), Ok);
    EXPECT_EQ(menu(), (Texts{"201 0 ", "202 items1 first", "205 items2 a", "206 items3 b", "207 items4 ",
                             "208 items5 c", "203 others1 ", "204 0 "}));
    EXPECT_EQ(ControlUbound(in(202)).value, 5);
    EXPECT_EQ(AddMenuitems(in(202), ""), Ok);
    EXPECT_EQ(ControlUbound(in(202)).value, 5) << "no line, no item";
    EXPECT_EQ(RemoveMenuitems(ControlElement(in(202), 2), ControlElement(in(202), 4)), Ok);
    EXPECT_EQ(menu(), (Texts{"201 0 ", "202 items1 first", "208 items2 c", "203 others1 ", "204 0 "}));
    EXPECT_EQ(GetCaption(in(206)).code, ControlInvalid);
    EXPECT_EQ(RemoveMenuitems(in(202), in(203)), NotAControlArray) << "two arrays";
    EXPECT_EQ(RemoveMenuitems(in(208), in(202)), Ok) << "from a later one to an earlier one there is none";
    EXPECT_EQ(ControlUbound(in(202)).value, 2);
    EXPECT_EQ(AddMenuitem(in(208), "d"), Ok);
    EXPECT_EQ(menu()[3], "209 items3 d");
}

// ---- rows and named values ----

TEST_F(OperationsTest, ARowTakesATextWithOrWithoutAPicture) {
    const Control& list = control(110);
    EXPECT_EQ(SetList(in(110), 1, "one", "open"), Ok);
    EXPECT_EQ(list.rows[0].text + "/" + list.rows[0].picture, "one/open");
    SetList(in(110), 1, "two");
    EXPECT_EQ(list.rows[0].text + "/" + list.rows[0].picture, "two/open");
    SetList(in(110), 1, "two", "");
    EXPECT_EQ(list.rows[0].picture, "");
    EXPECT_EQ(SetList(in(110), 3, "x", "y"), Ok);
    EXPECT_EQ(SetList(in(110), 0, "x", "y"), Ok);
    EXPECT_EQ(list.rows.size(), 2U) << "there is no such row";
    const std::string thousand(1024, 'x');
    AddItem(in(110), thousand + "\n");
    EXPECT_EQ(GetList(in(110), 3).value, thousand);
}

TEST_F(OperationsTest, NamedValuesKeepTheirOrderAndFirstName) {
    EXPECT_EQ(SetArrayValues(main, {"Name=a", "empty=", "x=1=2", "bare", "=lost", "NAME=b"}), Ok);
    EXPECT_EQ(GetArrayValues(main, "*").value, (Texts{"Name=b", "empty=", "x=1=2", "bare="}));
    EXPECT_EQ(GetArrayValue(main, "X").value, "1=2");
    SetArrayValue(main, "", "lost");
    SetArrayValue(main, "last", "l\nm");
    EXPECT_EQ(GetArrayValues(main, "*").value.back(), "last=l\nm");
    struct Case {
        const char* pattern;
        Texts names;
    };
    const Case cases[] = {{"name", {"Name=b"}},
                          {"?", {"x=1=2"}},
                          {"*a*", {"Name=b", "bare=", "last=l\nm"}},
                          {"", {}},
                          {"*e", {"Name=b", "bare="}},
                          {"ba??", {"bare="}},
                          {"**", {"Name=b", "empty=", "x=1=2", "bare=", "last=l\nm"}},
                          {"nam", {}}};
    for (const Case& one : cases)
        EXPECT_EQ(GetArrayValues(main, one.pattern).value, one.names) << one.pattern;
}

TEST_F(OperationsTest, AWindowHasItsValuesWhenItIsToldThatItIsLoaded) {
    Texts seen;
    answer = [&](int event, const Object&) {
        if (event == LOAD_EVENT) seen = GetArrayValues(page, "*").value;
        return false;
    };
    EXPECT_EQ(Load(page, {"a=1", "b=2"}), Ok);
    EXPECT_EQ(seen, (Texts{"a=1", "b=2"}));
    EXPECT_EQ(Load(page, {"a=3"}), Ok);
    EXPECT_EQ(GetArrayValue(page, "a").value, "1") << "it was loaded already";
}

TEST_F(OperationsTest, AModalWindowAnswersWithTheButtonThatEndedIt) {
    struct Case {
        int press;
        bool unload;
        int result;
    };
    for (const Case& one : {Case{1, false, 1}, {2, true, 2}, {4, false, 4}, {0, true, 0}}) {
        Load(page);
        answer = [&](int event, const Object& sender) {
            if (event == ACTIVATE_EVENT && sender == page && IsLoaded(page)) {
                if (one.press == 0) return userClose(*findWindow(page)), false;
                userCommand(*findControl(Object("Page", one.press)));
            } else if (event == COMMAND_EVENT && one.unload) {
                static_cast<void>(Unload(page));
            } else if (event == COMMAND_EVENT) {
                static_cast<void>(Hide(page));
            }
            return false;
        };
        EXPECT_EQ(Show(page, true).value, one.result);
        answer = nullptr;
        static_cast<void>(Unload(page));
    }
    Load(page);
    EXPECT_EQ(Show(page, false).value, 0);
}

// ---- positions ----

TEST_F(OperationsTest, SizesOfWindowsControlsAndTheScreen) {
    const Rect frame = GetPosition(main, WINDOW_UNIT).value, label = GetPosition(in(109), CLIENT_UNIT).value;
    EXPECT_EQ(WindowWidth(main).value, frame.w);
    EXPECT_EQ(WindowHeight(main).value, frame.h);
    EXPECT_EQ(GetPageWidth(main).value, GetPosition(main, CLIENT_UNIT).value.w);
    EXPECT_EQ(GetPageHeight(in(109)).value, label.h);
    EXPECT_EQ(WindowWidth(in(109)).value, label.w);
    EXPECT_EQ(GetPageWidth(Sysscreen).value, 1920);
    EXPECT_EQ(GetPageHeight(Sysscreen).value, 1080);
    EXPECT_EQ(GetPosition(Sysscreen, CLIENT_UNIT).value, ScreenSize());
    EXPECT_EQ(SetPosition(Sysscreen, WINDOW_UNIT, {1, 2, 3, 4}), Ok);
    EXPECT_EQ(GetPageWidth(Sysscreen).value, 1920) << "the screen stays as it is";
    EXPECT_EQ(GetDpiX(main).value, 96);
    EXPECT_EQ(GetDpiY(in(109)).value, 96);
}

TEST_F(OperationsTest, RowsOfButtonsFollowTheSizeOfTheWindow) {
    SetPosition(main, CLIENT_UNIT, {0, 0, 400, 300});
    const Rect label = GetPosition(in(109), WINDOW_UNIT).value,
               hidden = GetPosition(in(108), WINDOW_UNIT).value;
    EXPECT_EQ(AlignItems(main), Ok);
    const Rect ok = GetPosition(in(105), WINDOW_UNIT).value, cancel = GetPosition(in(106), WINDOW_UNIT).value;
    const Rect help = GetPosition(in(107), WINDOW_UNIT).value;
    EXPECT_EQ(ok.y, cancel.y);
    EXPECT_EQ(ok.y + ok.h, 292);
    EXPECT_EQ(cancel.x - ok.x - ok.w, 6 * 6 / 4) << "the gap stays";
    EXPECT_NEAR(ok.x, 400 - cancel.x - cancel.w, 1) << "centred";
    EXPECT_EQ(help.x, (400 - help.w) / 2);
    EXPECT_LT(help.y, ok.y);
    EXPECT_EQ(GetPosition(in(109), WINDOW_UNIT).value, label);
    EXPECT_EQ(GetPosition(in(108), WINDOW_UNIT).value, hidden);
    const Rect again = ok;
    AlignItems(main);
    EXPECT_EQ(GetPosition(in(105), WINDOW_UNIT).value, again);
    Load(page);
    for (const int number : {1, 2, 4}) SetVisible(Object("Page", number), false);
    EXPECT_EQ(AlignItems(page), Ok) << "nothing to align";
}

// ---- dragging ----

struct Drag {
    const char* what;
    TrackMode mode;
    int step;
    Rect start;
    Point from, to;
    Rect result;
};

class Dragging : public OperationsTest, public ::testing::WithParamInterface<Drag> {};

TEST_P(Dragging, FollowsTheMouseWithinItsLimits) {
    const Drag& one = GetParam();
    userDrag(one.from, one.to);
    const Answer<Rect> result =
        TrackRect(main, one.mode, {4, 12, 12, one.step}, {10, 20, 200, 100}, one.start);
    EXPECT_EQ(result.code, Ok);
    EXPECT_EQ(result.value.x, one.result.x);
    EXPECT_EQ(result.value.y, one.result.y);
    EXPECT_EQ(result.value.w, one.result.w);
    EXPECT_EQ(result.value.h, one.result.h);
}

constexpr Rect box{50, 50, 40, 30};
INSTANTIATE_TEST_SUITE_P(
    All, Dragging,
    ::testing::Values(
        Drag{"moved", TRACK_MOVE, 1, box, {70, 65}, {75, 60}, {55, 45, 40, 30}},
        Drag{"not moved", TRACK_MOVE, 8, box, {70, 65}, {70, 65}, box},
        Drag{"left and up to the bounds", TRACK_MOVE, 1, box, {70, 65}, {-500, -500}, {10, 20, 40, 30}},
        Drag{"right and down to the bounds", TRACK_MOVE, 1, box, {70, 65}, {900, 900}, {170, 90, 40, 30}},
        Drag{"on the grid", TRACK_MOVE, 8, box, {70, 65}, {73, 65}, {50, 50, 40, 30}},
        Drag{"on the next place of the grid", TRACK_MOVE, 8, box, {70, 65}, {75, 65}, {58, 50, 40, 30}},
        Drag{"right edge", TRACK_MOVE, 1, box, {89, 65}, {99, 80}, {50, 50, 50, 30}},
        Drag{"right edge past the bounds", TRACK_MOVE, 1, box, {86, 65}, {999, 65}, {50, 50, 160, 30}},
        Drag{"right edge below the least", TRACK_MOVE, 1, box, {89, 65}, {0, 65}, {50, 50, 12, 30}},
        Drag{"left edge", TRACK_MOVE, 1, box, {50, 65}, {45, 65}, {45, 50, 45, 30}},
        Drag{"left edge past the bounds", TRACK_MOVE, 1, box, {53, 65}, {-99, 65}, {10, 50, 80, 30}},
        Drag{"left edge below the least", TRACK_MOVE, 1, box, {50, 65}, {200, 65}, {78, 50, 12, 30}},
        Drag{"upper edge", TRACK_MOVE, 1, box, {70, 50}, {70, 40}, {50, 40, 40, 40}},
        Drag{"lower right corner", TRACK_MOVE, 1, box, {89, 79}, {99, 89}, {50, 50, 50, 40}},
        Drag{"upper left corner", TRACK_MOVE, 1, box, {50, 50}, {40, 45}, {40, 45, 50, 35}},
        Drag{"pressed outside moves", TRACK_MOVE, 1, box, {0, 0}, {5, 5}, {55, 55, 40, 30}},
        Drag{"larger than the bounds",
             TRACK_MOVE,
             1,
             {10, 20, 500, 400},
             {100, 100},
             {130, 130},
             {10, 20, 500, 400}},
        Drag{"new", TRACK_NEW, 1, {}, {30, 40}, {80, 60}, {30, 40, 50, 20}},
        Drag{"new to the left and up", TRACK_NEW, 1, {}, {80, 60}, {30, 40}, {30, 40, 50, 20}},
        Drag{"new and too small", TRACK_NEW, 1, {}, {30, 40}, {31, 41}, {30, 40, 12, 12}},
        Drag{"new in the last corner", TRACK_NEW, 1, {}, {209, 119}, {500, 500}, {198, 108, 12, 12}},
        Drag{"new on the grid", TRACK_NEW, 10, {}, {33, 44}, {78, 61}, {30, 40, 50, 20}}),
    [](const auto& info) {
        std::string name = info.param.what;
        for (char& c : name)
            if (c == ' ') c = '_';
        return name;
    });

TEST_F(OperationsTest, WithoutAMouseARectangleStays) {
    EXPECT_EQ(TrackRect(main, TRACK_MOVE, {}, {0, 0, 99, 99}, box).value, box);
    userDrag({70, 65}, {75, 65});
    EXPECT_NE(TrackRect(main, TRACK_MOVE, {}, {0, 0, 99, 99}, box).value, box);
    EXPECT_EQ(TrackRect(main, TRACK_MOVE, {}, {0, 0, 99, 99}, box).value, box) << "one drag, once";
    EXPECT_EQ(TrackRect(page, TRACK_MOVE, {}, {0, 0, 99, 99}, box).code, WindowNotLoaded);
}

// ---- the mouse ----

TEST_F(OperationsTest, TheMouseTellsItsPlaceInTwoWords) {
    Control& window = *findControl(main);
    EXPECT_FALSE(userMouseDown(window, 3, 4));
    EXPECT_FALSE(userInfo(control(110), -2, 70000 & 0xffff));
    userDoubleClick(control(109), 5, -1);
    EXPECT_EQ(heard,
              (std::vector<Heard>{{MOUSEDOWN_EVENT, main, 4 << 16 | 3},
                                  {INFO_EVENT, in(110), static_cast<int>((70000U & 0xffffU) << 16 | 0xfffeU)},
                                  {DBLCLICK_EVENT, in(109), static_cast<int>(0xffff0005U)}}));
    answer = [](int, const Object&) { return true; };
    EXPECT_TRUE(userMouseDown(window, 0, 0));
    EXPECT_TRUE(userInfo(window, 0, 0));
    SetEnabled(in(110), false);
    heard.clear();
    EXPECT_FALSE(userMouseDown(control(110), 0, 0));
    EXPECT_TRUE(heard.empty()) << "a control that is off";
    SetBusy(true);
    EXPECT_FALSE(userMouseDown(window, 0, 0));
    EXPECT_FALSE(userInfo(window, 0, 0));
    SetBusy(false);
    EXPECT_TRUE(heard.empty()) << "nobody is heard while the program is busy";
}

// ---- the system ----

TEST_F(OperationsTest, TheSystemHasItsObjects) {
    EXPECT_EQ(GetTypeof(Sysscreen), "Screen");
    EXPECT_EQ(GetTypeof(Sysprinter), "Printer");
    EXPECT_EQ(GetTypeof(Sysclipboard), "Clipboard");
    EXPECT_TRUE(IsLoaded(Sysscreen));
    EXPECT_EQ(GetName(Sysscreen).value, "Sysscreen");
    for (const Object& one : {Sysscreen, Sysprinter, Sysclipboard}) {
        EXPECT_EQ(GetBorderStyle(one).code, Ok);
        EXPECT_EQ(GetVisible(one).code, Ok);
        EXPECT_EQ(Show(one, false).code, WindowNotLoaded);
        EXPECT_EQ(Hide(one), WindowNotLoaded);
        EXPECT_EQ(Unload(one), WindowNotLoaded);
        EXPECT_EQ(ControlList(one).code, WindowNotLoaded);
        EXPECT_EQ(SetValue(one, 1), Ok);
        EXPECT_EQ(SetCaption(one, "x"), Ok);
        EXPECT_EQ(SetCaption(one, ""), Ok);
        EXPECT_EQ(FindHandle(GetHandle(one).value).window(), one.window());
    }
    EXPECT_EQ(GetTypeof(Object("Sysscreen", 3)), "");
}

TEST_F(OperationsTest, TheClipboardHoldsAText) {
    EXPECT_EQ(SetText(Sysclipboard, "copied"), Ok);
    EXPECT_EQ(GetText(Sysclipboard).value, "copied");
    EXPECT_EQ(GetTextLength(Sysclipboard).value, 6);
    SetText(Sysclipboard, "");
    EXPECT_EQ(GetText(Sysclipboard).value, "");
}

TEST_F(OperationsTest, WindowsAndProcessesAreListed) {
    EXPECT_EQ(ApplicationList(), (Texts{"Main window"}));
    static_cast<void>(Hide(main));
    EXPECT_TRUE(ApplicationList().empty());
    bool found = false;
    int last = 0;
    for (const Process& process : ProcessList()) {
        EXPECT_GT(process.id, last);
        last = process.id;
        found = found || (process.id == ::getpid() && process.name.starts_with("platform_test"));
    }
    EXPECT_TRUE(found);
    EXPECT_EQ(GetFuncptr(main).value, &listen);
    EXPECT_EQ(RaiseGuiRtx(710), 710);
}

// ---- dialogs ----

TEST_F(OperationsTest, AColourIsChosenOrStays) {
    for (const auto& [said, colour] :
         {std::pair("0x0000FF", 0xFF), {"", 0x123456}, {"nonsense", 0x123456}, {"16777215", 0xFFFFFF}}) {
        answers = {said};
        EXPECT_EQ(ColourDialog(main, 0x123456).value, colour) << said;
        EXPECT_EQ(asked.back().value, "0x123456");
    }
    EXPECT_EQ(ColourDialog(page, 7).code, WindowNotLoaded);
    EXPECT_EQ(ColourDialog(page, 7).value, 7);
    EXPECT_EQ(asked.size(), 4U) << "nobody was asked for a window that is not there";
    EXPECT_EQ(ColourDialog(Object(), 7).code, Ok) << "no owner";
}

TEST_F(OperationsTest, AFontIsChosenOrStays) {
    const Font mono{"Mono", 12, true, false};
    answers = {"Sans\t9\ti", "Serif", ""};
    EXPECT_EQ(FontDialog(main, mono).value, (Font{"Sans", 9, false, true}));
    EXPECT_EQ(asked.back().value, "Mono\t12\tb");
    EXPECT_EQ(FontDialog(main, mono).value, (Font{"Serif", 12, true, false})) << "what is not said stays";
    EXPECT_EQ(FontDialog(main, mono).value, mono);
    EXPECT_EQ(FontDialog(page, mono).code, WindowNotLoaded);
}

TEST(SoundTest, SilenceMakesNoView) {
    std::unique_ptr<View> before = useView(nullptr);
    PlaySound({});
    EXPECT_EQ(useView(std::move(before)), nullptr)
        << "a program without windows shall not load one at its end";
}

TEST_F(OperationsTest, APrinterIsChosenOrNone) {
    answers = {"Print to file\tselection\t2\t5\t3", "Print to file", "Print to file\tselection", ""};
    PrintChoice choice = PrintDialog(main, PRINT_SELECTION).value;
    EXPECT_EQ(GetName(choice.printer).value, "Print to file");
    EXPECT_EQ(choice.flags, PRINT_SELECTION);
    EXPECT_EQ(choice.from, 2);
    EXPECT_EQ(choice.to, 5);
    EXPECT_EQ(choice.copies, 3);
    choice = PrintDialog(main, PRINT_SELECTION).value;
    EXPECT_EQ(choice.flags, 0);
    EXPECT_EQ(choice.copies, 1);
    EXPECT_EQ(PrintDialog(main, 0).value.flags, 0) << "the selection was not offered";
    EXPECT_TRUE(PrintDialog(main, 0).value.printer.empty());
    PrintDialog(main, PRINT_SELECTION, "Laser");
    EXPECT_EQ(asked.back().value, "Laser\tselection") << "what is chosen at first";
    EXPECT_EQ(PrintDialog(page, 0).code, WindowNotLoaded);
}

TEST_F(OperationsTest, HelpGoesToTheHelpWindowOrTheBrowser) {
    ASSERT_TRUE(os::saveFile(folder / "a.htm", "x", os::Durability::Unsynced).ok());
    EXPECT_TRUE(HtmlHelpApi(folder / "a.htm", "topic"));
    EXPECT_FALSE(HtmlHelpApi(folder / "b.htm", "topic"));
    EXPECT_FALSE(HtmlHelpApi(folder / "a.rc", "topic"));
    static std::string shown;
    SetHelpViewer([](const std::string& file, const std::string& key) {
        shown = file.substr(file.rfind('/') + 1) + "#" + key;
        return file.ends_with(".qch");
    });
    EXPECT_TRUE(HtmlHelpApi("help/a.qch", "key"));
    EXPECT_EQ(shown, "a.qch#key");
    EXPECT_FALSE(HtmlHelpApi("a.chm", ""));
}

TEST_F(OperationsTest, HelpOnBoxesAndOnWindowsThatLeaveTheKeyAloneIsWithWhoeverHasIt) {
    static std::string asked;
    Window& window = *findWindow(main);
    SetCaption(main, "A-B");
    EXPECT_FALSE(userKey(window, nullptr, KEY_F1)) << "nobody has help";
    SetBoxHelp([](const std::string& title, const std::string& text) { asked = title + "|" + text; });
    EXPECT_TRUE(userKey(window, nullptr, KEY_F1));
    EXPECT_EQ(asked, "A-B|");
    Question question;
    question.title = "Title";
    question.text = "error 651";
    userBoxHelp(question);
    EXPECT_EQ(asked, "Title|error 651");
    asked.clear();
    EXPECT_FALSE(userKey(window, nullptr, KEY_F2)) << "other keys are not help";
    EXPECT_EQ(asked, "");
    SetBoxHelp(nullptr);
}

}  // namespace
}  // namespace tarn::platform
