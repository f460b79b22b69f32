// SPDX-License-Identifier: Apache-2.0
//
// Stops of random programs, held against the words of the rules; rules of breakpoints; errors that are chosen; limits.
#include "unit/kernel/debug/written_program.h"

#include "kernel/run/report.h"

#include <random>

namespace tarn {
namespace {

class StopRules : public WrittenProgram {};

// ---- random programs, held against the rules as such ----

struct Stamped {
    std::string className;
    std::int32_t line, depth;
};

// Notes what would be stamped, and what is decided by the words of the rules: no maps, no marks at frames.
class Rules {
public:
    Rules(std::map<std::pair<std::string, int>, bool> breakpoints, std::string commands, bool step)
        : breakpoints_(std::move(breakpoints)), commands_(std::move(commands)), flag_(step) {}
    void stamped(const Stamped& at) {
        const bool breakpoint = breakpoints_.contains({at.className, at.line});
        const bool back = depth_ != 0 && at.depth <= depth_;
        if (!flag_ && !back && !breakpoint) return;
        flag_ = false;
        if (back) depth_ = 0;
        text_ += (text_.empty() ? "" : " ") + at.className + std::to_string(at.line) + "/" +
                 std::to_string(at.depth);
        const char command = next_ < commands_.size() ? commands_[next_++] : 'r';
        if (command == 'i') flag_ = true;
        if (command == 'o') depth_ = at.depth;
        if (command == 'u') depth_ = at.depth > 1 ? at.depth - 1 : 0;
    }
    [[nodiscard]] const std::string& text() const { return text_; }

private:
    std::map<std::pair<std::string, int>, bool> breakpoints_;
    std::string commands_;
    std::size_t next_ = 0;
    bool flag_;
    std::int32_t depth_ = 0;
    std::string text_;
};

// A tree of calls: what is stamped, in order, with the depths.
void grow(std::mt19937& random, std::int32_t depth, std::vector<Stamped>& out, const std::string& className) {
    const int lines = static_cast<int>(random() % 5);
    for (int i = 0; i < lines && out.size() < 300; ++i) {
        out.push_back({className, static_cast<std::int32_t>(random() % 12 + 1), depth});
        if (random() % 3 == 0 && depth < 7)
            grow(random, depth + 1, out, std::string(1, static_cast<char>('A' + random() % 3)));
    }
}

TEST_F(StopRules, OfRandomProgramsAreThoseOfTheRules) {
    for (unsigned seed = 1; seed <= 300; ++seed) {
        std::mt19937 random(seed);
        std::vector<Stamped> run{{"A", 1, 1}};
        grow(random, 1, run, "A");
        std::string breakpoints, commands, spaced;
        std::map<std::pair<std::string, int>, bool> set;
        for (unsigned long i = random() % 6; i > 0; --i) {
            const std::string name(1, static_cast<char>('A' + random() % 3));
            const int line = static_cast<int>(random() % 12 + 1);
            breakpoints += name + " " + std::to_string(line) + " ";
            set[{name, line}] = true;
        }
        for (int i = 0; i < 40; ++i) commands += "iour"[random() % 4];
        for (const char c : commands) spaced += std::string(1, c) + " ";
        const bool step = random() % 2 == 0;

        begin(breakpoints, step);
        setHands(spaced);
        Rules rules(set, commands, step);
        std::vector<std::string> open;
        for (const Stamped& at : run) {
            while (static_cast<std::int32_t>(open.size()) > at.depth ||
                   (static_cast<std::int32_t>(open.size()) == at.depth && open.back() != at.className)) {
                FunctionLeave();
                open.pop_back();
            }
            while (static_cast<std::int32_t>(open.size()) < at.depth) {
                EnterProgramFunction(at.className.c_str(), "F", 50);
                open.push_back(at.className);
            }
            stampAt(at.line);
            rules.stamped(at);
        }
        while (!open.empty()) {
            FunctionLeave();
            open.pop_back();
        }
        EXPECT_EQ(stopsText(), rules.text()) << "seed " << seed;
        DebugEnd();
        stops().clear();
    }
}

// ---- rules of breakpoints, errors that are chosen ----

TEST_F(StopRules, ARuleOfHitsPassesTheFirstOnes) {
    begin("A 4", false, "Rules=A 4 hits 3 ;\r\n");
    Program({"A.main@1: 2 [5 3 4 ] 5"}).run();
    EXPECT_EQ(stopsText(), "A4/1 A4/1 A4/1");
}

TEST_F(StopRules, ARuleWithoutItsBreakpointRests) {
    begin("A 5", false, "Rules=A 4 hits 2 ; B 11 log x ;\r\n");
    Program({"A.main@1: 2 [3 3 4 ] 5"}).run();
    EXPECT_EQ(stopsText(), "A5/1");
}

TEST_F(StopRules, ALogIsWrittenAndTheProgramGoesOn) {
    begin("A 4 A 5", false, "Rules=a 4 hits 2 log \"at {{4\" ;\r\n");
    ::testing::internal::CaptureStderr();
    Program({"A.main@1: 2 [3 3 4 ] 5"}).run();
    EXPECT_EQ(::testing::internal::GetCapturedStderr(), "at {4\nat {4\n");
    EXPECT_EQ(stopsText(), "A5/1");
}

TEST_F(StopRules, ALogIsWrittenWhereAStepStops) {
    begin("A 3", true, "Rules=a 3 log x ;\r\n");
    setHands("i9");
    ::testing::internal::CaptureStderr();
    Program({"A.main@1: 2 3 4"}).run();
    EXPECT_EQ(::testing::internal::GetCapturedStderr(), "x\n");
    EXPECT_EQ(stopsText(), "A2/1 A3/1 A4/1");
}

TEST_F(StopRules, HitsGoOnCountingWhenAnotherBreakpointIsSet) {
    begin("A 4", true, "Rules=A 4 hits 3 ;\r\n");
    hands() = {handFor("t3"), [](platform::DebugWindow& window) {
                   platform::DebugSelect(window, 99, true);
                   command(window, DEBUG_TOGGLE);
                   platform::DebugSelect(window, 3, true);
                   command(window, DEBUG_RUN_TO);
               }};
    Program({"A.main@1: 2 [5 3 4 ] 5"}).run();
    EXPECT_EQ(stopsText(), "A2/1 A3/1 A3/1 A4/1 A4/1 A4/1");
}

TEST_F(StopRules, WithChosenErrorsAllGoToTheirHandlersThoseBehindAStop) {
    handled = 0;
    begin("", false, "StopCodes=601 910-920\r\n");
    Program({"A.main@1: h2 !901 h3 !601 h4 !915 h5 !643 h6"}).run();
    EXPECT_EQ(stopsText(), "A3/1 A4/1");
    EXPECT_EQ(handled, 4);
    EXPECT_EQ(ErrorCell(), 0);
}

TEST_F(StopRules, WithoutAChoiceNoHandlerIsCalled) {
    handled = 0;
    begin("", false);
    Program({"A.main@1: h2 !901 h3 !601 h4"}).run();
    EXPECT_EQ(stopsText(), "A2/1 A3/1");
    EXPECT_EQ(handled, 0);
}

TEST_F(StopRules, AChosenErrorWithoutAHandlerStopsOnce) {
    begin("", false, "StopCodes=601\r\n");
    Program({"A.main@1: 2 !601 3 !601 4"}).run();
    EXPECT_EQ(stopsText(), "A2/1 A3/1");
    EXPECT_EQ(ErrorCell(), 0);
    EXPECT_EQ(LastError(), 601);
}

TEST_F(StopRules, AHandlerThatHandsAChosenErrorOnStopsOnce) {
    begin("", false, "StopCodes=601\r\n");
    const Called f("A", "F", 1);
    stampAt(2);
    SetError(601);
    stampAt(3, ReportErrors, [](std::int32_t code) { DefaultErrorHandler(code); });
    SetError(643);
    stampAt(4, ReportErrors, [](std::int32_t code) { DefaultErrorHandler(code); });
    EXPECT_EQ(stopsText(), "A2/1 A3/1");
    EXPECT_EQ(ErrorCell(), 0);
}

// The frame of a handler of compiled code.
void handleWithError(std::int32_t code) {
    if (!BeginHandler()) return;
    ++handled;
    SetError(code + 1);
    Stamp(50, ReportErrors, handleWithError);
    EndHandler();
}

TEST_F(StopRules, AnErrorInAHandlerOfAChosenOneStopsByItself) {
    struct Case {
        const char *codes, *stops;
    };
    for (const Case& c : {Case{"601", "A2/1 A2/1"}, Case{"601 602", "A2/1 A2/1"}, Case{"602", "A2/1"}}) {
        handled = 0;
        begin("", false, std::string("StopCodes=") + c.codes + "\r\n");
        const Called f("A", "F", 1);
        stampAt(2);
        SetError(601);
        stampAt(3, ReportErrors, handleWithError);
        EXPECT_EQ(stopsText(), c.stops) << c.codes;
        EXPECT_EQ(handled, 1) << c.codes;
        EXPECT_EQ(ErrorCell(), 0);
        DebugEnd();
        stops().clear();
    }
}

TEST_F(StopRules, AWindowThatIsClosedAtAChosenErrorLeavesItToTheHandler) {
    handled = 0;
    begin("", false, "StopCodes=601\r\n");
    hands() = {[](platform::DebugWindow& window) { event(window, platform::DebugMessage::Close, 0); }};
    const Called f("A", "F", 1);
    stampAt(2);
    SetError(601);
    stampAt(3, ReportErrors, handler);
    EXPECT_EQ(handled, 1);
    EXPECT_EQ(tarn_debugger_window, nullptr);
}

TEST_F(StopRules, AnErrorThatNoHandlerTakesAlwaysStops) {
    begin("", false, "StopCodes=601\r\n");
    Program({"A.main@1: 2 !643 3 4"}).run();
    EXPECT_EQ(stopsText(), "A2/1");
    EXPECT_EQ(ErrorCell(), 0);
}

// ---- deep and many ----

TEST_F(StopRules, FramesBeyondFiveHundredStopBySteps) {
    begin("A 11", true);
    setHands("o");
    Program({"A.main@1: 2 >A.f*501 3", "A.f@10: ^ 11"}).run();
    ASSERT_EQ(stops().size(), 501U) << "the breakpoint in the recorded frames, and the two ends of the step";
    EXPECT_EQ(stops()[1].depth, 500);
    EXPECT_EQ(stops()[500].line, 3);
}

TEST_F(StopRules, TwoHundredBreakpointsOfAsManyClassesAreAllFound) {
    std::string breakpoints;
    for (int i = 1; i <= 200; ++i) breakpoints += "c" + std::to_string(i) + " 5 ";
    begin(breakpoints, false);
    int found = 0;
    for (int i = 1; i <= 210; ++i) {
        const Called f(("C" + std::to_string(i)).c_str(), "F", 1);
        stampAt(4);
        stampAt(5);
        found += static_cast<int>(stops().size());
        stops().clear();
    }
    // The value holds 1024 characters.
    EXPECT_EQ(found, 161);
}

}  // namespace
}  // namespace tarn
