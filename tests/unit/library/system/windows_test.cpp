// SPDX-License-Identifier: Apache-2.0
//
// The window family on the object model without a screen.
#include "library/system/windows.h"

#include "library/system/constants.h"
#include "os/files.h"
#include "os/process.h"
#include "platform/model/model.h"
#include "platform/model/view.h"
#include "support/errorcell.h"
#include "support/steerable.h"
#include "support/tempfolder.h"

#include <gtest/gtest.h>

namespace tarn {
namespace {

const char* const Resources = "Dlg DIALOG\n"
                              "    POSITION=10 10 200 100\n"
                              "    CAPTION=\"A dialog\"\n"
                              "    BORDERSTYLE=2\n"
                              "    Pushbutton btnok\n"
                              "        POSITION=10 60 40 14\n"
                              "    Radiobutton rbone\n"
                              "        ARRAY=rb\n"
                              "    Radiobutton rbtwo\n"
                              "        ARRAY=rb\n"
                              "    Label lbl\n"
                              "END\n";

struct Event {
    Object window, sender;
    int event, parameter;
    bool operator==(const Event&) const = default;
};
std::vector<Event> events;
std::function<void()> during;

bool windowFunction(const Object& window, int event, const Object& control, int parameter) {
    if (event == LOAD_EVENT || event == CLOSE_EVENT || event == ACTIVATE_EVENT) return false;
    events.push_back({window, control, event, parameter});
    if (during) std::exchange(during, nullptr)();
    return true;
}

class WindowFamily : public ::testing::Test {
protected:
    void SetUp() override {
        ClearError();
        events.clear();
        before_ = platform::useView(platform::makeHeadlessView([this](const platform::Question& question) {
            asked.push_back(question);
            return answer;
        }));
        ASSERT_TRUE(os::saveFile(folder / "x.rc", Resources).ok());
        RegisterWindow(dialog, windowFunction);
    }
    void TearDown() override {
        during = nullptr;
        platform::DestroyAllWindows();
        RegisterWindow(dialog, nullptr);
        platform::useView(std::move(before_));
        EXPECT_EQ(takeError(), 0);
    }
    void load() { ASSERT_EQ(Load(dialog, folder / "x.rc", "Dlg"), ""); }

    TempFolder folder;
    const Object dialog{"Dlg"};
    std::vector<platform::Question> asked;
    std::string answer;

private:
    std::unique_ptr<platform::View> before_;
};

TEST_F(WindowFamily, ObjectsAreFoundByNameHandleAndCaption) {
    EXPECT_FALSE(ISLOADED(dialog));
    EXPECT_TRUE(FINDWINDOW("Dlg").empty());
    EXPECT_TRUE(FINDCONTROL(dialog, "btnok").empty());
    EXPECT_TRUE(FINDCONTROL(dialog, "rb", 1).empty());
    EXPECT_EQ(FINDWINDOWHANDLE("A dialog"), 0);
    load();
    EXPECT_TRUE(ISLOADED(dialog));
    EXPECT_TRUE(ACTIVEWINDOW().empty()) << "it is not shown";
    EXPECT_EQ(FINDWINDOW("DLG"), dialog);
    EXPECT_EQ(FINDWINDOW(GetHandle(dialog)), dialog);
    const Object button = FINDCONTROL(dialog, "BTNOK");
    EXPECT_EQ(GetTypeof(button), "Pushbutton");
    EXPECT_TRUE(FINDWINDOW(GetHandle(button)).empty()) << "a control is no window";
    EXPECT_TRUE(FINDWINDOW(0).empty());
    EXPECT_EQ(FINDWINDOWHANDLE("A dialog"), GetHandle(dialog));
    EXPECT_EQ(FINDWINDOWHANDLE("a dialog"), 0) << "the caption as it is";
    EXPECT_EQ(FINDWINDOWHANDLE(WindowClassName("Dialog"), "A dialog"), GetHandle(dialog));
    EXPECT_EQ(FINDWINDOWHANDLE("Other", "A dialog"), 0);
}

TEST_F(WindowFamily, ElementsOfAnArrayAreFoundByTheirPlace) {
    load();
    const Object first = FINDCONTROL(dialog, "RB", 1), second = FINDCONTROL(dialog, "rb", 2);
    ASSERT_FALSE(first.empty());
    EXPECT_EQ(Controlarraypos(first), 1);
    EXPECT_EQ(Controlarraypos(second), 2);
    for (const int outside : {0, 3, -1}) EXPECT_TRUE(FINDCONTROL(dialog, "rb", outside).empty()) << outside;
    EXPECT_TRUE(FINDCONTROL(dialog, "btnok", 1).empty()) << "no array";
}

TEST_F(WindowFamily, BoxesGoToTheUserAndTheirAnswersComeBack) {
    MSGBOX("text");
    EXPECT_EQ(asked.back().title, "library_test");
    EXPECT_EQ(asked.back().text, "text");
    EXPECT_EQ(asked.back().buttons, (std::vector<std::string>{"OK"}));
    MSGBOX("title", "text");
    EXPECT_EQ(asked.back().title, "title");
    answer = "&Yes";
    EXPECT_EQ(MSGBOX("t", "x", "&Yes\n&No"), "&Yes");
    EXPECT_EQ(asked.back().buttons, (std::vector<std::string>{"&Yes", "&No"}));
    EXPECT_EQ(MSGBOX("t", "x", "&Yes\n&No", BoxIcon::Warning), "&Yes");
    EXPECT_EQ(asked.back().icon, BoxIcon::Warning);
    EXPECT_EQ(MSGBOX("t", "x", "&Yes\n&No", BoxIcon::Question, 2), "&Yes");
    EXPECT_EQ(asked.back().defaultButton, 2);
    EXPECT_TRUE(MSGBOX("t", "x", "&Yes\n&No", "&Yes"));
    EXPECT_FALSE(MSGBOX("t", "x", "&Yes\n&No", "&No"));
    EXPECT_EQ(MSGBOX("t", "x", 4), 6) << "Yes of Yes and No";
    answer = "";
    EXPECT_EQ(MSGBOX("t", "x", "&Yes\n&No"), "") << "closed";
    answer = "typed";
    EXPECT_EQ(INPUTBOX("t", "prompt", "default"), "typed");
    EXPECT_EQ(asked.back().kind, platform::Question::Kind::Input);
    EXPECT_EQ(asked.back().value, "default");
    INPUTBOX("t", "prompt");
    EXPECT_EQ(asked.back().value, "");
    answer = "b";
    EXPECT_EQ(LISTBOX("t", "prompt", "a\nb\n"), "b");
    EXPECT_EQ(asked.back().rows, (std::vector<std::string>{"a", "b"}));
}

TEST_F(WindowFamily, PrintersAreListedAndChosen) {
    EXPECT_EQ(PRINTERS(), "Print to file\n");
    EXPECT_TRUE(PRINTDIALOG(Object()).printer.empty()) << "cancelled";
    EXPECT_EQ(asked.back().kind, platform::Question::Kind::Print);
    PRINTDIALOG(Object("None"));
    EXPECT_EQ(takeError(), 702);
}

TEST_F(WindowFamily, TimersSendEventsUntilTheyAreKilled) {
    os::SteeredClock clock;
    const os::Steered steered(clock);
    EXPECT_FALSE(SETTIMER(dialog, 100));
    EXPECT_FALSE(KILLTIMER(dialog));
    load();
    const Object button = FINDCONTROL(dialog, "btnok");
    EXPECT_TRUE(SETTIMER(dialog, 100));
    EXPECT_TRUE(SETTIMER(dialog, button.number(), 250));
    const auto count = [&] {
        int timers = 0;
        for (const Event& one : events) timers += one.event == TIMER_EVENT ? 1 : 0;
        events.clear();
        return timers;
    };
    clock.advance(150'000'000);
    DoEvents();
    EXPECT_EQ(count(), 1);
    clock.advance(150'000'000);
    DoEvents();
    EXPECT_EQ(count(), 2) << "the window's and the control's";
    EXPECT_TRUE(KILLTIMER(dialog));
    clock.advance(300'000'000);
    DoEvents();
    EXPECT_EQ(count(), 1);
    EXPECT_TRUE(KILLTIMER(dialog, button.number()));
    clock.advance(1'000'000'000);
    DoEvents();
    EXPECT_EQ(count(), 0);
    EXPECT_FALSE(SETTIMER(dialog, 9999, 100)) << "no such control";
}

TEST_F(WindowFamily, PostedEventsComeLaterAndInOrder) {
    POSTMESSAGE(dialog, INFO_EVENT, 1);
    EXPECT_EQ(takeError(), 702);
    load();
    const Object button = FINDCONTROL(dialog, "btnok");
    POSTMESSAGE(dialog, INFO_EVENT, 1);
    POSTMESSAGE(button, COMMAND_EVENT, 2);
    POSTMESSAGE(dialog, 40000, -3);
    EXPECT_TRUE(events.empty()) << "not at once";
    for (int i = 0; i < 4; ++i) DoEvents();
    EXPECT_EQ(events, (std::vector<Event>{{dialog, dialog, INFO_EVENT, 1},
                                          {dialog, button, COMMAND_EVENT, 2},
                                          {dialog, dialog, 40000, -3}}));
}

TEST_F(WindowFamily, ALoopInsideOfAPostedEventGoesOnWithTheNext) {
    load();
    POSTMESSAGE(dialog, INFO_EVENT, 1);
    POSTMESSAGE(dialog, INFO_EVENT, 2);
    during = [] {
        DoEvents();
        EXPECT_EQ(events.size(), 2U);
    };
    for (int i = 0; i < 3; ++i) DoEvents();
    ASSERT_EQ(events.size(), 2U);
    EXPECT_EQ(events[1].parameter, 2);
    during = [this] { POSTMESSAGE(dialog, INFO_EVENT, 4); };
    POSTMESSAGE(dialog, INFO_EVENT, 3);
    for (int i = 0; i < 3; ++i) DoEvents();
    EXPECT_EQ(events.size(), 4U) << "one that is posted by a handler";
}

TEST_F(WindowFamily, AWindowThatHasGoneGetsNoEventNorDoesItsSuccessor) {
    load();
    POSTMESSAGE(dialog, INFO_EVENT, 1);
    platform::DestroyAllWindows();
    load();
    POSTMESSAGE(dialog, INFO_EVENT, 2);
    for (int i = 0; i < 3; ++i) DoEvents();
    ASSERT_EQ(events.size(), 1U);
    EXPECT_EQ(events[0].parameter, 2);
}

TEST_F(WindowFamily, EventsThatWaitWhenTheViewChangesComeWithTheNext) {
    load();
    POSTMESSAGE(dialog, INFO_EVENT, 1);
    const std::unique_ptr<platform::View> former = platform::useView(platform::makeHeadlessView());
    POSTMESSAGE(dialog, INFO_EVENT, 2);
    for (int i = 0; i < 3; ++i) DoEvents();
    EXPECT_EQ(events.size(), 2U);
}

TEST_F(WindowFamily, PlacesAreSetInPixels) {
    SETWINDOWPOS(dialog, 1, 2, 300, 200);
    EXPECT_EQ(takeError(), 702);
    load();
    SETWINDOWPOS(dialog, 11, 22, 333, 222);
    EXPECT_EQ(GetPosition(dialog, WINDOW_UNIT), (Rect{11, 22, 333, 222}));
    STARTGRAPH(Object("None"));
    EXPECT_EQ(takeError(), 702);
}

TEST_F(WindowFamily, EachEdgeFollowsTheSideOfTheCentreThatItLayOn) {
    const Rect before{0, 0, 200, 100}, wider{0, 0, 260, 130}, smaller{0, 0, 150, 60};
    struct Case {
        const char* what;
        Rect control, after, to;
    };
    const Case cases[] = {
        {"left and top", {10, 10, 40, 20}, wider, {10, 10, 40, 20}},
        {"right and bottom", {150, 80, 40, 15}, wider, {210, 110, 40, 15}},
        {"spans both", {10, 10, 180, 80}, wider, {10, 10, 240, 110}},
        {"spans the width below", {10, 60, 180, 20}, wider, {10, 90, 240, 20}},
        {"ends at the centre", {60, 10, 40, 40}, wider, {60, 10, 40, 40}},
        {"begins at the centre", {100, 50, 40, 20}, wider, {100, 50, 100, 50}},
        {"begins behind it", {101, 51, 40, 20}, wider, {161, 81, 40, 20}},
        {"smaller", {150, 80, 40, 15}, smaller, {100, 40, 40, 15}},
        {"smaller, spanning", {10, 10, 180, 80}, smaller, {10, 10, 130, 40}},
        {"never negative", {90, 45, 20, 10}, {0, 0, 100, 20}, {90, 45, 0, 0}},
        {"the same size", {33, 44, 55, 11}, before, {33, 44, 55, 11}},
    };
    for (const Case& c : cases) EXPECT_EQ(ADJUSTEDPOS(c.control, before, c.after), c.to) << c.what;
}

TEST_F(WindowFamily, AControlIsMovedWhenItsWindowHasGrown) {
    load();
    const Object button = FINDCONTROL(dialog, "btnok");
    const Rect before = GetPosition(dialog, CLIENT_UNIT), place = GetPosition(button, WINDOW_UNIT);
    const Rect frame = GetPosition(dialog, WINDOW_UNIT);
    SETWINDOWPOS(dialog, frame.x, frame.y, frame.w + 100, frame.h + 50);
    const Rect after = GetPosition(dialog, CLIENT_UNIT);
    ADJUSTCONTROLPOS(dialog, button, before);
    EXPECT_EQ(GetPosition(button, WINDOW_UNIT), ADJUSTEDPOS(place, before, after));
    EXPECT_EQ(GetPosition(button, WINDOW_UNIT).y, place.y + 50) << "it lay in the lower half";
    ADJUSTCONTROLPOS(dialog, Object("Dlg", 9999), before);
    EXPECT_NE(takeError(), 0);
    ADJUSTCONTROLPOS(Object("None"), button, before);
    EXPECT_EQ(takeError(), 702);
}

TEST_F(WindowFamily, TheBeepIsHeardAndNothingElse) {
    SOUND();
    EXPECT_TRUE(asked.empty());
}

}  // namespace
}  // namespace tarn
