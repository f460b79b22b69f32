// SPDX-License-Identifier: Apache-2.0
//
// The debugger's window without a screen: its list, its stops, and what the rest of the program hears meanwhile.
#include "platform/model/debugger/debugwindow.h"

#include "os/clock.h"
#include "platform/model/model.h"
#include "platform/windowing.h"
#include "support/recording_view.h"
#include "support/resources.h"
#include "support/tempfolder.h"

#include <gtest/gtest.h>

#include <csignal>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace tarn::platform {
namespace {

const Object Form("Form"), Button("Form", 101);
std::vector<int> heard;

bool hear(const Object&, int event, const Object&, int) {
    heard.push_back(event);
    return false;
}

class DebugWindowTest : public ::testing::Test {
protected:
    TempFolder folder;
    std::unique_ptr<View> before;
    DebugWindow* window = nullptr;
    std::vector<DebugEvent> events;
    std::function<void(const DebugEvent&)> act;

    void SetUp() override {
        const std::string text = "Form DIALOG\n  POSITION=0 0 100 50\n  PUSHBUTTON one 101\nEND\n";
        ASSERT_EQ(useResources(folder, text), "");
        before = useView(makeHeadlessView([](const Question& question) { return question.buttons.front(); }));
        RegisterWindow(Form, hear);
        ASSERT_EQ(Load(Form), Ok);
        Show(Form, false);
        heard.clear();
        window = StartDebug(Form, "Integrated Debugger", "stop\nrun\n\ncode3\n", "BUG",
                            [this](DebugWindow&, const DebugEvent& event) {
                                events.push_back(event);
                                if (act) act(event);
                            },
                            {10, 20, 300, 200});
        ASSERT_NE(window, nullptr);
    }
    void TearDown() override {
        setHeadlessDebugger({});
        EndDebug(debugWindow());
        DestroyAllWindows();
        useView(std::move(before));
        SetApplicationResources("");
        SetUserBreak(0);
    }
    // Stops, with `user` at the window.
    void stop(HeadlessDebugger user) {
        setHeadlessDebugger(std::move(user));
        ActivateDebug(*window);
    }
    static DebugEvent command(int number) { return {DebugMessage::Command, number, ""}; }
    [[nodiscard]] std::vector<int> numbers() const {
        std::vector<int> all;
        for (const DebugEvent& event : events) all.push_back(event.number);
        return all;
    }
};

using Numbers = std::vector<int>;

TEST_F(DebugWindowTest, AProcessHasOne) {
    EXPECT_EQ(StartDebug(Form, "", "", "", {}, {}), nullptr);
    EXPECT_EQ(debugWindow(), window);
    EndDebug(nullptr);
    EndDebug(window);
    EXPECT_EQ(debugWindow(), nullptr);
    window = StartDebug(Form, "again", "", "", {}, {});
    ASSERT_NE(window, nullptr);
    EXPECT_EQ(GetDebugCaption(*window), "again");
}

TEST_F(DebugWindowTest, IsNoWindowOfTheProgram) {
    EXPECT_EQ(WindowList().size(), 1U);
}

TEST_F(DebugWindowTest, KeepsCaptionStatusAndPlace) {
    EXPECT_EQ(GetDebugCaption(*window), "Integrated Debugger");
    SetDebugCaption(*window, "Integrated Debugger [inactive]");
    SetDebugStatus(*window, "one\ntwo");
    EXPECT_EQ(GetDebugCaption(*window), "Integrated Debugger [inactive]");
    EXPECT_EQ(GetDebugStatus(*window), "one\ntwo");
    EXPECT_EQ(window->wanted, (DebugPlace{10, 20, 300, 200}));
    EXPECT_EQ(GetDebugPlace(*window), DebugPlace()) << "no view has shown it";
    window->place = {1, 2, 30, 40};
    EXPECT_EQ(GetDebugPlace(*window), (DebugPlace{1, 2, 30, 40}));
    EXPECT_EQ(window->pictures, (std::vector<std::string>{"stop", "run", "", "code3"}));
}

TEST_F(DebugWindowTest, TakesLinesByTheirEnds) {
    const struct {
        const char* text;
        std::vector<std::string> lines;
    } cases[] = {
        {"", {}},
        {"\n", {""}},
        {"a", {"a"}},
        {"a\n", {"a"}},
        {"a\n\nb", {"a", "", "b"}},
        {"a\r\nb", {"a\r", "b"}},
        {"\n\n", {"", ""}},
    };
    for (const auto& one : cases) {
        DebugAddstrings(*window, one.text);
        std::vector<std::string> lines;
        for (int line = 1; line <= DebugCount(*window); ++line) lines.push_back(DebugLine(*window, line));
        EXPECT_EQ(lines, one.lines) << one.text;
    }
}

TEST_F(DebugWindowTest, MarksStandAtTheirLines) {
    DebugAddstrings(*window, "a\nb\nc\n");
    SetDebugFlags(*window, 2, DEBUG_BREAKPOINT | DEBUG_CURRENT);
    SetDebugMarker(*window, 3, DebugMarker::Expand);
    EXPECT_EQ(DebugFlags(*window, 1), 0);
    EXPECT_EQ(DebugFlags(*window, 2), 3);
    EXPECT_EQ(GetDebugMarker(*window, 3), DebugMarker::Expand);
    EXPECT_TRUE(window->lines.hasMarkers());
    SetDebugMarker(*window, 3, DebugMarker::None);
    EXPECT_FALSE(window->lines.hasMarkers());
}

TEST_F(DebugWindowTest, ALineThatDoesNotExistIsEmptyAndTakesNothing) {
    DebugAddstrings(*window, "a\nb");
    for (const int line : {-1, 0, 3, 1000000}) {
        EXPECT_EQ(DebugLine(*window, line), "");
        SetDebugFlags(*window, line, 1);
        EXPECT_EQ(DebugFlags(*window, line), 0);
        SetDebugMarker(*window, line, DebugMarker::Collapse);
        EXPECT_EQ(GetDebugMarker(*window, line), DebugMarker::None);
        SetDebugTop(*window, line);
        EXPECT_EQ(DebugTop(*window), 1);
    }
    DebugSelect(*window, 2, true);
    DebugSelect(*window, 3, true);
    DebugSelect(*window, -1, true);
    EXPECT_EQ(DebugSelected(*window), 2);
    DebugSelect(*window, 0, false);
    EXPECT_EQ(DebugSelected(*window), 0);
}

TEST_F(DebugWindowTest, NewLinesHaveNoMarksAndNoSelection) {
    DebugAddstrings(*window, "a\nb\nc");
    SetDebugFlags(*window, 1, 15);
    SetDebugMarker(*window, 1, DebugMarker::Expand);
    SetDebugNumbers(*window, true);
    DebugExtent(*window);
    DebugSelect(*window, 3, true);
    SetDebugTop(*window, 2);
    DebugAddstrings(*window, "a\nb\nc");
    EXPECT_EQ(DebugFlags(*window, 1), 0);
    EXPECT_EQ(GetDebugMarker(*window, 1), DebugMarker::None);
    EXPECT_EQ(DebugSelected(*window), 0);
    EXPECT_EQ(DebugTop(*window), 1);
    EXPECT_FALSE(window->numbers);
    EXPECT_FALSE(window->extent);
}

TEST_F(DebugWindowTest, AStopLastsUntilTheHandlerLeavesIt) {
    act = [this](const DebugEvent& event) {
        if (event.number == 102) LeaveDebug(*window);
    };
    bool leftEarly = true, left = false;
    stop([&](DebugWindow& stopped) {
        userDebug(stopped, command(106));
        leftEarly = stopped.left;
        userDebug(stopped, command(102));
        left = stopped.left;
    });
    EXPECT_FALSE(leftEarly);
    EXPECT_TRUE(left);
    EXPECT_FALSE(window->stopped);
    EXPECT_EQ(numbers(), (Numbers{106, 102}));
}

TEST_F(DebugWindowTest, AllThatTheUserDoesReachesTheHandlerAsItIs) {
    const DebugEvent all[] = {{DebugMessage::Command, 101, ""},  {DebugMessage::DoubleClick, 7, ""},
                              {DebugMessage::Help, 0, ""},       {DebugMessage::Edit, 3, ""},
                              {DebugMessage::Hover, 4, "count"}, {DebugMessage::Close, 0, ""}};
    stop([&](DebugWindow& stopped) {
        for (const DebugEvent& event : all) userDebug(stopped, event);
    });
    ASSERT_EQ(events.size(), std::size(all));
    for (std::size_t i = 0; i < events.size(); ++i) {
        EXPECT_EQ(events[i].message, all[i].message);
        EXPECT_EQ(events[i].number, all[i].number);
        EXPECT_EQ(events[i].text, all[i].text);
    }
}

TEST_F(DebugWindowTest, WhileTheProgramRunsOnlyTheStopCommandIsHeard) {
    for (int number = 101; number <= 114; ++number) userDebug(*window, command(number));
    userDebug(*window, {DebugMessage::DoubleClick, 1, ""});
    EXPECT_EQ(numbers(), (Numbers{101}));
}

TEST_F(DebugWindowTest, ACommandBehindTheOneThatLeavesBelongsToTheNextStop) {
    act = [this](const DebugEvent&) { LeaveDebug(*window); };
    stop([&](DebugWindow& stopped) {
        for (const int number : {104, 103, 105}) userDebug(stopped, command(number));
        userDebug(stopped, {DebugMessage::DoubleClick, 1, ""});
    });
    EXPECT_EQ(numbers(), (Numbers{104}));
    bool asked = false;
    const auto user = [&](DebugWindow&) { asked = true; };
    stop(user);
    EXPECT_EQ(numbers(), (Numbers{104, 103}));
    stop(user);
    EXPECT_EQ(numbers(), (Numbers{104, 103, 105}));
    EXPECT_FALSE(asked);
    stop(user);
    EXPECT_TRUE(asked);
}

TEST_F(DebugWindowTest, WhatIsTypedWhileTheProgramRunsBelongsToTheNextStop) {
    act = [this](const DebugEvent& event) {
        if (event.number == 104) LeaveDebug(*window);
    };
    DebugAddstrings(*window, "a\nb\nc");
    DebugSelect(*window, 2, true);
    for (const int number : {106, 104, 107}) userDebug(*window, command(number));
    for (const DebugMessage message : {DebugMessage::Edit, DebugMessage::DoubleClick, DebugMessage::Help})
        userDebug(*window, {message, 0, ""});
    // The mouse has clicked on what is not there at the next stop.
    for (const DebugMessage message : {DebugMessage::Edit, DebugMessage::DoubleClick, DebugMessage::Hover})
        userDebug(*window, {message, 1, ""});
    EXPECT_TRUE(events.empty());
    stop([](DebugWindow&) {});
    EXPECT_EQ(numbers(), (Numbers{106, 104}));
    DebugSelect(*window, 3, true);
    stop([](DebugWindow&) {});
    EXPECT_EQ(numbers(), (Numbers{106, 104, 107, 3, 3, 0})) << "the line that is selected by then";
}

TEST_F(DebugWindowTest, TwentyStepsThatAreTypedAtOnceAreTwentySteps) {
    act = [this](const DebugEvent&) { LeaveDebug(*window); };
    for (int i = 0; i < 7; ++i) userDebug(*window, command(104));
    int stops = 0;
    bool asked = false;
    while (!asked) {
        ++stops;
        stop([&](DebugWindow& stopped) {
            asked = events.size() == 20;
            if (events.size() == 7)
                for (int i = 0; i < 13; ++i) userDebug(stopped, command(104));
        });
    }
    EXPECT_EQ(events.size(), 20U);
    EXPECT_EQ(stops, 21);
}

TEST_F(DebugWindowTest, ABreakForgetsWhatWasTypedBeforeIt) {
    for (int i = 0; i < 5; ++i) userDebug(*window, command(104));
    userDebugBreak(*window);
    EXPECT_EQ(GetUserBreak(), 1);
    SetUserBreak(0);
    userDebug(*window, command(106));
    stop([](DebugWindow&) {});
    EXPECT_EQ(numbers(), (Numbers{106}));
}

TEST_F(DebugWindowTest, KeysThatNobodyWillReadAreForgotten) {
    for (int i = 0; i < 100000; ++i) userDebug(*window, command(106));
    EXPECT_LE(window->early.size(), 1000U);
}

TEST_F(DebugWindowTest, AHandlerIsNotCalledInsideOfItself) {
    act = [this](const DebugEvent& event) {
        if (event.number == 106) userDebug(*window, command(107));
        ActivateDebug(*window);  // does nothing
    };
    stop([&](DebugWindow& stopped) { userDebug(stopped, command(106)); });
    EXPECT_EQ(numbers(), (Numbers{106}));
}

TEST_F(DebugWindowTest, AHandlerMayAskTheUser) {
    std::string answer;
    act = [&](const DebugEvent&) { answer = MsgBox("Integrated Debugger", "Really?", "Yes\nNo"); };
    stop([&](DebugWindow& stopped) { userDebug(stopped, command(105)); });
    EXPECT_EQ(answer, "Yes");
}

TEST_F(DebugWindowTest, AHandlerMayEndTheWindow) {
    act = [this](const DebugEvent&) { EndDebug(window); };
    stop([&](DebugWindow& stopped) {
        userDebug(stopped, command(101));
        EXPECT_TRUE(stopped.left);
        userDebug(stopped, command(106));
    });
    EXPECT_EQ(debugWindow(), nullptr);
    EXPECT_EQ(numbers(), (Numbers{101}));
}

TEST_F(DebugWindowTest, AStopThatNobodyLeavesEnds) {
    stop([](DebugWindow&) {});
    EXPECT_FALSE(window->stopped);
    EXPECT_TRUE(events.empty());
}

TEST_F(DebugWindowTest, TheProgramsWindowsAreDeafDuringAStop) {
    SetTimer(Form, 1);
    EXPECT_EQ(PostMessage(Form, COMMAND_EVENT, 0), Ok);
    Window& form = *findWindow(Form);
    stop([&](DebugWindow&) {
        EXPECT_FALSE(takesInput(form));
        userCommand(*findControl(Button));
        userKey(form, nullptr, KEY_F1);
        userClose(form);
        userActivate(form);
        timerFired(form);
        Rect frame = form.position;
        frame.w += 10;
        userMoved(form, frame, 0);
        frame.w += 10;
        userMoved(form, frame, 0);
        DoEvents();
        EXPECT_EQ(heard, (Numbers{}));
    });
    EXPECT_TRUE(takesInput(form));
    EXPECT_TRUE(IsLoaded(Form));
    EXPECT_EQ(heard, (Numbers{}));
    SetTimer(Form, 0);
    for (int i = 0; i < 4; ++i) DoEvents();
    EXPECT_EQ(heard, (Numbers{COMMAND_EVENT, RESIZE_EVENT})) << "what was posted, and one change of size";
}

TEST_F(DebugWindowTest, ClosingItBreaksIntoAProgramThatRuns) {
    userDebugClose(*window);
    EXPECT_EQ(GetUserBreak(), 1);
    SetUserBreak(0);
    stop([](DebugWindow& stopped) { userDebugClose(stopped); });
    EXPECT_EQ(GetUserBreak(), 0);
    ASSERT_EQ(events.size(), 1U);
    EXPECT_EQ(events[0].message, DebugMessage::Close);
}

TEST_F(DebugWindowTest, TheSignalIsTheUsersBreak) {
    EXPECT_EQ(GetUserBreak(), 0);
    ASSERT_EQ(::raise(DebugBreakSignal), 0);
    EXPECT_EQ(GetUserBreak(), 1);
    SetUserBreak(0);
    EndDebug(window);
    ASSERT_EQ(::raise(DebugBreakSignal), 0) << "and does no harm without the window";
    EXPECT_EQ(GetUserBreak(), 0);
}

TEST_F(DebugWindowTest, EachCommandHasAWordATitleAndKeysOfItsOwn) {
    for (const DebugCommand& one : debugCommands) {
        EXPECT_EQ(debugCommand(one.number), &one);
        for (const DebugCommand& other : debugCommands) {
            if (&one == &other) continue;
            EXPECT_STRNE(one.word, other.word);
            EXPECT_STRNE(one.title, other.title);
            EXPECT_STRNE(one.keys, other.keys);
        }
    }
    EXPECT_EQ(debugCommand(100), nullptr);
    EXPECT_EQ(debugCommand(debugCommands.back().number + 1), nullptr);
}

// A headless view that counts how often the program lets the debugger work.
class PumpView : public RecordingView {
public:
    int pumps = 0;
    void debugPump() override { ++pumps; }
};

void beBusy(int milliseconds) {
    const std::int64_t end = os::clock().steady() + milliseconds * std::int64_t{1'000'000};
    while (os::clock().steady() < end) static_cast<void>(GetUserBreak());
}

TEST_F(DebugWindowTest, ABusyProgramLooksForItsUserNowAndThen) {
    auto own = std::make_unique<PumpView>();
    const PumpView& view = *own;
    const auto headless = useView(std::move(own));
    SetUserBreak(0);
    DoEvents();
    beBusy(20);
    EXPECT_EQ(view.pumps, 0) << "an event loop has just run";
    beBusy(250);
    EXPECT_GE(view.pumps, 2);
    EXPECT_LE(view.pumps, 5);
    const int before = view.pumps;
    {
        const ProgramRest rest;
        beBusy(120);
    }
    EXPECT_EQ(view.pumps, before) << "it is stopped";
    EndDebug(window);
    beBusy(120);
    EXPECT_EQ(view.pumps, before) << "nobody debugs it";
}

}  // namespace
}  // namespace tarn::platform
