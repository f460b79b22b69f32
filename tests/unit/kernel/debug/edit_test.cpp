// SPDX-License-Identifier: Apache-2.0
//
// What the debugger's user changes and asks for: rules of breakpoints, values, watches, the line to run to first, and the
// result of what was stepped out of.
#include "unit/kernel/debug/debug_fixture.h"

#include "kernel/debug/fieldnames.h"
#include "kernel/debug/results.h"
#include "kernel/values/values.h"
#include "platform/model/debugger/debugwindow.h"
#include "platform/operations/system.h"

#include <utility>

namespace tarn {
namespace {

using platform::DebugMessage;

class DebugEdits : public StoppedProgram {
protected:
    static int flagsAt(platform::DebugWindow& window, int line) { return platform::DebugFlags(window, line); }
    // A loop at line 9 in which x goes from 1 to `last`.
    void countTo(std::int32_t last) {
        std::int32_t x = 0;
        const Called f("Sums", "COUNT", 8);
        RegisterVariable("x", 'V', KindInteger, &x);
        for (x = 1; x <= last; ++x) stampAt(9);
        reached_ = x;
    }
    std::int32_t reached_ = 0;
};

// ---- rules ----

TEST_F(DebugEdits, ARuleIsTypedAtALine) {
    answers() = {"if x > 3 log x is {x}"};
    stopAndDo([](platform::DebugWindow& window) {
        event(window, DebugMessage::Edit, 9);
        EXPECT_EQ(flagsAt(window, 9), platform::DEBUG_BREAKPOINT | platform::DEBUG_RULE);
    });
    EXPECT_EQ(boxes(),
              std::vector<std::string>{
                  "Integrated Debugger|When does the breakpoint at line 9 of Sums stop?\n(always, or: if "
                  "CONDITION hits NUMBER log TEXT)|always"});
    ::testing::internal::CaptureStderr();
    countTo(5);
    EXPECT_EQ(::testing::internal::GetCapturedStderr(), "x is 4\nx is 5\n");
    EXPECT_EQ(stops().size(), 1U);
    DebugEnd();
    EXPECT_EQ(setting("breakpoints"), "Sums 9 ");
    EXPECT_EQ(setting("Rules"), "Sums 9 if \"x > 3\" log \"x is {x}\" ;");
}

TEST_F(DebugEdits, ARuleGoesWithAlwaysOrWithItsBreakpoint) {
    answers() = {"hits 2", "always", "hits 3"};
    stopAndDo([](platform::DebugWindow& window) {
        event(window, DebugMessage::Edit, 9);
        event(window, DebugMessage::Edit, 9);
        EXPECT_EQ(flagsAt(window, 9), platform::DEBUG_BREAKPOINT);
        event(window, DebugMessage::Edit, 9);
        EXPECT_EQ(flagsAt(window, 9), platform::DEBUG_BREAKPOINT | platform::DEBUG_RULE);
        platform::DebugSelect(window, 9, true);
        command(window, DEBUG_TOGGLE);
        EXPECT_EQ(flagsAt(window, 9), 0);
        command(window, DEBUG_TOGGLE);
        EXPECT_EQ(flagsAt(window, 9), platform::DEBUG_BREAKPOINT);
    });
    ASSERT_EQ(boxes().size(), 3U);
    EXPECT_TRUE(boxes()[1].ends_with("|hits 2")) << boxes()[1];
    DebugEnd();
    EXPECT_EQ(setting("Rules"), "");
}

TEST_F(DebugEdits, ARuleThatDoesNotFitIsRefused) {
    answers() = {"when x", "", "if x >", ""};
    stopAndDo([](platform::DebugWindow& window) {
        event(window, DebugMessage::Edit, 9);
        event(window, DebugMessage::Edit, 9);
        EXPECT_EQ(flagsAt(window, 9), 0);
    });
    ASSERT_EQ(boxes().size(), 4U);
    EXPECT_EQ(boxes()[1], "Integrated Debugger|'when' is none of the words if, hits and log.|OK");
    EXPECT_TRUE(boxes()[3].starts_with("Integrated Debugger|The condition 'x >' cannot be tested. "))
        << boxes()[3];
}

TEST_F(DebugEdits, ARuleThatIsNotTypedChangesNothing) {
    stopAndDo([](platform::DebugWindow& window) {
        event(window, DebugMessage::Edit, 9);
        EXPECT_EQ(flagsAt(window, 9), 0);
        const int beeps = platform::headlessBeeps();
        for (const int line : {8, 0, 41}) event(window, DebugMessage::Edit, line);
        EXPECT_EQ(platform::headlessBeeps(), beeps + 3);
    });
    EXPECT_EQ(boxes().size(), 1U);
}

TEST_F(DebugEdits, AConditionStopsWhereItHolds) {
    DebugEnd();
    settings("breakpoints=sums 9\r\nRules=SUMS 9 if \"x = 2 or x > 4\" ;\r\n");
    start();
    addClass("Sums", 40, {9});
    countTo(6);
    EXPECT_EQ(stops().size(), 3U);
    EXPECT_EQ(reached_, 7);
}

TEST_F(DebugEdits, HitsCountWhereTheConditionHolds) {
    DebugEnd();
    settings("breakpoints=sums 9\r\nRules=SUMS 9 if \"x > 2\" hits 3 ;\r\n");
    start();
    addClass("Sums", 40, {9});
    countTo(6);
    EXPECT_EQ(stops().size(), 2U);
}

TEST_F(DebugEdits, AConditionThatCannotBeToldStops) {
    DebugEnd();
    settings("breakpoints=sums 9\r\nRules=SUMS 9 if \"nobody > 2\" ;\r\n");
    start();
    addClass("Sums", 40, {9});
    countTo(2);
    EXPECT_EQ(stops().size(), 2U);
}

TEST_F(DebugEdits, AConditionThatIsBrokenStopsAndSaysWhy) {
    DebugEnd();
    settings("breakpoints=sums 9\r\nRules=SUMS 9 if \"x >\" ;\r\n");
    start();
    addClass("Sums", 40, {9});
    countTo(1);
    ASSERT_EQ(stops().size(), 1U);
    EXPECT_TRUE(stops()[0].status.starts_with(
        "File Sums, function count, line 9\nThe condition 'x >' of this breakpoint cannot be tested. "))
        << stops()[0].status;
}

TEST_F(DebugEdits, WhatIsWrongWithAConditionIsToldAtItsOwnStopAlone) {
    DebugEnd();
    settings("breakpoints=sums 9\r\nRules=SUMS 9 if \"x >\" ;\r\n");
    start();
    addClass("Sums", 40, {5, 9});
    hands().push_back([](platform::DebugWindow& window) { command(window, DEBUG_STEP_INTO); });
    countTo(1);
    const Called f("Sums", "F", 1);
    stampAt(5);
    EXPECT_EQ(stops().back().status, "File Sums, function f, line 5");
}

TEST_F(DebugEdits, RulesOfOtherProgramsStay) {
    DebugEnd();
    settings("breakpoints=sums 9\r\nRules=OTHER 5 hits 2 ; SUMS 9 hits 2 ;\r\nSingleStep=1\r\n");
    start();
    addClass("Sums", 40, {5, 9});
    stopAndDo([](platform::DebugWindow& window) {
        platform::DebugSelect(window, 9, true);
        command(window, DEBUG_TOGGLE);
    });
    DebugEnd();
    EXPECT_EQ(setting("Rules"), "OTHER 5 hits 2 ;");
}

// ---- values ----

TEST_F(DebugEdits, AValueIsChanged) {
    answers() = {"41", "much"};
    std::int32_t x = 7;
    hands().push_back([](platform::DebugWindow& window) {
        command(window, DEBUG_VALUES);
        EXPECT_EQ(listOf(window), "x : Integer = 7");
        event(window, DebugMessage::Edit, 1);
        EXPECT_EQ(listOf(window), "x : Integer = 41");
        event(window, DebugMessage::Edit, 1);
        EXPECT_EQ(listOf(window), "x : Integer = 41");
    });
    const Called f("Sums", "F", 1);
    RegisterVariable("x", 'V', KindInteger, &x);
    stampAt(5);
    EXPECT_EQ(x, 41);
    ASSERT_EQ(boxes().size(), 3U);
    EXPECT_EQ(boxes()[0], "Integrated Debugger|New value of x : Integer:|7");
    EXPECT_TRUE(boxes()[2].ends_with("|OK")) << boxes()[2];
}

TEST_F(DebugEdits, ANumberThatWouldBeCutOrRoundedIsRefusedWithWhatWouldBeKept) {
    std::int64_t fixed = 12500;
    double real = 0.5;
    answers() = {"1.23456", "", "2.34560", "0.1234567890123456789", "", "1E-400", "", "0.1"};
    hands().push_back([](platform::DebugWindow& window) {
        command(window, DEBUG_VALUES);
        for (const int line : {1, 1, 2, 2, 2}) event(window, DebugMessage::Edit, line);
    });
    const Called f("Sums", "F", 1);
    RegisterVariable("f", 'V', KindFixed, &fixed);
    RegisterVariable("r", 'V', KindReal, &real);
    stampAt(5);
    EXPECT_EQ(fixed, 23456);
    EXPECT_EQ(real, 0.1);
    ASSERT_EQ(boxes().size(), 8U);
    EXPECT_EQ(boxes()[1], "Integrated Debugger|The value was not changed: of the number at character 1, "
                          "1.2345 would be kept.|OK");
    EXPECT_EQ(boxes()[4], "Integrated Debugger|The value was not changed: of the number at character 1, "
                          "+1.2345678901234568E-0001 would be kept.|OK");
    EXPECT_EQ(boxes()[6], "Integrated Debugger|The value was not changed: of the number at character 1, "
                          "+0.0000000000000000E+0000 would be kept.|OK");
}

TEST_F(DebugEdits, AnOrdinalBeyondTheNamesOfAnEnumIsRefused) {
    std::uint8_t colour = 1, any = 1;
    answers() = {"3", "", "2", "256", "", "255", "1.0", ""};
    hands().push_back([](platform::DebugWindow& window) {
        command(window, DEBUG_VALUES);
        for (const int line : {1, 1, 2, 2, 1}) event(window, DebugMessage::Edit, line);
    });
    const Called f("Sums", "F", 1);
    RegisterVariable("colour", 'V', KindEnum, &colour);
    NameFields(&colour, "#2");
    RegisterVariable("any", 'V', KindEnum, &any);
    NameFields(&any, "");
    stampAt(5);
    EXPECT_EQ(colour, 2);
    EXPECT_EQ(any, 255);
    ASSERT_EQ(boxes().size(), 8U);
    EXPECT_EQ(
        boxes()[1],
        "Integrated Debugger|The value was not changed: at character 1 it takes a number from 0 to 2.|OK");
    EXPECT_EQ(
        boxes()[7],
        "Integrated Debugger|The value was not changed: at character 2 it takes a number from 0 to 2.|OK");
    EXPECT_EQ(
        boxes()[4],
        "Integrated Debugger|The value was not changed: at character 1 it takes a number from 0 to 255.|OK");
}

TEST_F(DebugEdits, TheValuesAreThoseOfTheChosenFrame) {
    std::int32_t outer = 1, inner = 2;
    const Called f("Sums", "OUTER", 1);
    RegisterVariable("a", 'V', KindInteger, &outer);
    hands().push_back([](platform::DebugWindow&) {});
    stampAt(3);
    hands().push_back([](platform::DebugWindow& window) {
        command(window, DEBUG_VALUES);
        EXPECT_EQ(listOf(window), "b : Integer = 2");
        command(window, DEBUG_STACK);
        event(window, DebugMessage::DoubleClick, 2);
        command(window, DEBUG_VALUES);
        EXPECT_EQ(listOf(window), "a : Integer = 1");
    });
    const Called g("Sums", "INNER", 4);
    RegisterVariable("b", 'V', KindInteger, &inner);
    stampAt(5);
    platform::SetUserBreak(1);
    stampAt(9);
    EXPECT_EQ(stops().size(), 2U);
}

TEST_F(DebugEdits, WithoutVariablesThatIsSaid) {
    stopAndDo([](platform::DebugWindow& window) {
        command(window, DEBUG_VALUES);
        EXPECT_EQ(listOf(window), " Either there are no values in scope here,\n or the file was compiled "
                                  "without debug information.\n"
                                  " (To enable debug information, use Tools-Options-Compiler,\n  select Full "
                                  "Debugging, then recompile "
                                  "the file).");
    });
}

TEST_F(DebugEdits, ANameUnderThePointerTellsItsValue) {
    std::int32_t x = 7;
    hands().push_back([](platform::DebugWindow& window) {
        const std::pair<const char*, const char*> rows[] = {
            {"x", "x = 7"}, {"", ""}, {"for", ""}, {"12", ""}};
        for (const auto& [text, tip] : rows) {
            event(window, DebugMessage::Hover, 5, text);
            EXPECT_EQ(window.tip, tip) << text;
        }
        command(window, DEBUG_STACK);
        event(window, DebugMessage::Hover, 1, "x");
        EXPECT_EQ(window.tip, "") << "only in sources";
        EXPECT_EQ(ErrorCell(), 0);
    });
    const Called f("Sums", "F", 1);
    RegisterVariable("x", 'V', KindInteger, &x);
    stampAt(5);
    EXPECT_EQ(stops().size(), 1U);
}

// ---- watches ----

TEST_F(DebugEdits, ExpressionsAreWatched) {
    std::int32_t x = 7;
    answers() = {"x + 1", "x >", "", "x * 2", "Yes"};
    hands().push_back([](platform::DebugWindow& window) {
        command(window, DEBUG_WATCH);
        EXPECT_EQ(listOf(window), "x + 1 = 8");
        command(window, DEBUG_WATCH);
        EXPECT_EQ(listOf(window), "x + 1 = 8") << "what is none is refused";
        event(window, DebugMessage::Edit, 1);
        EXPECT_EQ(listOf(window), "x * 2 = 14");
        event(window, DebugMessage::DoubleClick, 1);
        EXPECT_EQ(listOf(window), "");
    });
    const Called f("Sums", "F", 1);
    RegisterVariable("x", 'V', KindInteger, &x);
    stampAt(5);
    ASSERT_EQ(boxes().size(), 5U);
    EXPECT_EQ(boxes()[0], "Integrated Debugger|Expression to watch:|");
    EXPECT_EQ(boxes()[3], "Integrated Debugger|Expression to watch:|x + 1");
    EXPECT_EQ(boxes()[4], "Integrated Debugger|Do you want to watch 'x * 2' no more?|Yes No");
}

TEST_F(DebugEdits, WatchesAreKeptInTheSettings) {
    DebugEnd();
    settings("SingleStep=1\r\nWatches=1 + 1 ; nobody ;\r\n");
    start();
    addClass("Sums", 40, {5});
    answers() = {"2 * 3"};
    stopAndDo([](platform::DebugWindow& window) {
        command(window, DEBUG_WATCH);
        EXPECT_EQ(platform::DebugCount(window), 3);
        EXPECT_EQ(platform::DebugLine(window, 1), "1 + 1 = 2");
        EXPECT_EQ(platform::DebugLine(window, 3), "2 * 3 = 6");
    });
    DebugEnd();
    EXPECT_EQ(setting("Watches"), "1 + 1 ; nobody ; 2 * 3 ;");
}

// ---- the line to run to first ----

TEST_F(DebugEdits, ALineThatWasToldIsRunToOnce) {
    DebugEnd();
    settings("SingleStep=0\r\nRunTo=SUMS 9\r\n");
    start();
    addClass("Sums", 40, {5, 9});
    countTo(3);
    EXPECT_EQ(stopsText(), "Sums9/1");
    EXPECT_EQ(setting("RunTo"), "");
}

TEST_F(DebugEdits, ALineWithoutCodeBecomesTheNextOne) {
    DebugEnd();
    settings("RunTo=SUMS 6\r\n");
    start();
    addClass("Sums", 40, {5, 9});
    countTo(3);
    EXPECT_EQ(stopsText(), "Sums9/1");
}

// ---- results ----

TEST_F(DebugEdits, TheResultOfAFunctionThatIsSteppedOutOfIsTold) {
    std::int32_t result = 0;
    const Called f("Sums", "MAIN", 1);
    hands().push_back([](platform::DebugWindow& window) { command(window, DEBUG_STEP_INTO); });
    stampAt(3);
    {
        const Called g("Sums", "ADD", 8);
        RegisterResult(KindInteger, &result);
        hands().push_back([](platform::DebugWindow& window) { command(window, DEBUG_STEP_OUT); });
        stampAt(9);
        result = 42;
        stampAt(0);
    }
    stampAt(5);
    ASSERT_EQ(stopsText(), "Sums3/1 Sums9/2 Sums5/1");
    EXPECT_EQ(stops()[2].status, "File Sums, function main, line 5\nResult of add() : Integer = 42");
    hands().push_back([](platform::DebugWindow&) {});
    platform::SetUserBreak(1);
    stampAt(12);
    EXPECT_EQ(stops()[3].status, "File Sums, function main, line 12");
}

TEST_F(DebugEdits, OfARecursionTheResultIsThatOfTheCallThatWasLeft) {
    std::int32_t outer = 0, inner = 0;
    const Called f("Sums", "MAIN", 1);
    hands().push_back([](platform::DebugWindow& window) { command(window, DEBUG_STEP_INTO); });
    stampAt(3);
    {
        const Called g("Sums", "ADD", 8);
        RegisterResult(KindInteger, &outer);
        hands().push_back([](platform::DebugWindow& window) { command(window, DEBUG_STEP_OUT); });
        stampAt(9);
        {
            const Called h("Sums", "ADD", 8);
            RegisterResult(KindInteger, &inner);
            stampAt(9);
            inner = 1;
            stampAt(0);
        }
        outer = 2;
        stampAt(0);
    }
    stampAt(5);
    ASSERT_EQ(stopsText(), "Sums3/1 Sums9/2 Sums5/1");
    EXPECT_EQ(stops()[2].status, "File Sums, function main, line 5\nResult of add() : Integer = 2");
}

TEST_F(DebugEdits, AFunctionThatTellsNoResultHasNone) {
    const Called f("Sums", "MAIN", 1);
    hands().push_back([](platform::DebugWindow& window) { command(window, DEBUG_STEP_INTO); });
    stampAt(3);
    {
        const Called g("Sums", "ADD", 20);
        hands().push_back([](platform::DebugWindow& window) { command(window, DEBUG_STEP_OUT); });
        stampAt(9);
        stampAt(0);
    }
    stampAt(5);
    EXPECT_EQ(stops().back().status, "File Sums, function main, line 5");
}

}  // namespace
}  // namespace tarn
