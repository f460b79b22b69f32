// SPDX-License-Identifier: Apache-2.0
//
// What the debugger shows where the run-time's own tables end: calls beyond 500, classes beyond 200, variables beyond 1000.
#include "unit/kernel/debug/debug_fixture.h"

#include "kernel/debug/stopnotice.h"
#include "platform/operations/system.h"

#include <unistd.h>

namespace tarn {
namespace {

using platform::DebugMessage;

// ---- calls ----

class DeepCalls : public DebuggedProgram {
protected:
    void SetUp() override {
        DebuggedProgram::SetUp();
        settings("");
        start();
        addClass("Deep", 40, {3, 5});
    }
    void TearDown() override {
        leaveTo(0);
        DebuggedProgram::TearDown();
    }
    // Calls until so many are open; the caller of depth n stands at line n + 1000.
    static void enterTo(int depth) {
        while (FrameCount() < depth) {
            if (FrameCount() > 0) tarn_current_line = FrameCount() + 1000;
            EnterProgramFunction("Deep", ("F" + std::to_string(FrameCount() + 1)).c_str(), 2);
        }
    }
    static void leaveTo(int depth) {
        while (FrameCount() > depth) FunctionLeave();
    }
    static std::string nameAt(int depth) {
        const FrameRecord* const frame = FrameAtDepth(depth);
        return frame != nullptr ? frame->functionName() : "";
    }
    static void breakAt(std::int32_t line, Hand hand) {
        hands() = {std::move(hand)};
        stops().clear();
        platform::SetUserBreak(1);
        stampAt(line);
        ASSERT_EQ(stops().size(), 1U);
    }
};

TEST_F(DeepCalls, TheFirstFiveHundredAndTheInnermostFourHundredAreKnown) {
    enterTo(2000);
    for (const int depth : {1, 500, 1601, 2000}) EXPECT_EQ(nameAt(depth), "f" + std::to_string(depth));
    for (const int depth : {0, 501, 1600, 2001}) EXPECT_EQ(nameAt(depth), "") << depth;
}

TEST_F(DeepCalls, ThatReturnLeaveThePlacesOfOthersUnknown) {
    enterTo(2000);
    leaveTo(1500);
    for (const int depth : {1500, 1101}) EXPECT_EQ(nameAt(depth), "") << depth;
    enterTo(1502);
    EXPECT_EQ(nameAt(1502), "f1502");
    EXPECT_EQ(nameAt(1500), "");
    leaveTo(500);
    EXPECT_EQ(tarn_current_line, 1500);
    EXPECT_EQ(nameAt(500), "f500");
}

TEST_F(DeepCalls, AreStoppedInWithTheirPlace) {
    enterTo(501);
    breakAt(7, [](platform::DebugWindow&) {});
    EXPECT_EQ(stops()[0].status, "File Deep, function f501, line 7, 501 calls deep");
    SetError(803);
    stops().clear();
    EXPECT_EQ(endOf([] { stampAt(9); }), 0);
    ASSERT_EQ(stops().size(), 1U);
    EXPECT_EQ(stops()[0].status, "Error 803, Program ran out of stack space\n"
                                 "File Deep, function f501, line 7, 501 calls deep");
}

TEST_F(DeepCalls, ShowTheirSourceAndAreToldToOthers) {
    enterTo(700);
    breakAt(5, [](platform::DebugWindow& window) {
        EXPECT_EQ(platform::DebugLine(window, 1), "Deep 1");
        EXPECT_EQ(platform::DebugSelected(window), 5);
        EXPECT_NE(platform::DebugFlags(window, 5) & platform::DEBUG_CURRENT, 0);
        const StopPlace place = ReadStopNotice(::getpid()).place;
        EXPECT_EQ(place.className + "." + place.functionName + " " + std::to_string(place.line),
                  "Deep.f700 5");
        EXPECT_FALSE(place.sourcePath.empty());
    });
}

TEST_F(DeepCalls, AreListedFromTheInnermost) {
    enterTo(2000);
    breakAt(7, [](platform::DebugWindow& window) {
        command(window, DEBUG_STACK);
        ASSERT_EQ(platform::DebugCount(window), 500);
        EXPECT_EQ(platform::DebugLine(window, 1), "Deep(7):f2000()");
        EXPECT_EQ(platform::DebugLine(window, 2), "Deep(2999):f1999()");
        EXPECT_EQ(platform::DebugLine(window, 400), "Deep(2601):f1601()");
        EXPECT_EQ(platform::DebugLine(window, 401), "(1501 calls are left out here)");
        EXPECT_EQ(platform::DebugLine(window, 402), "Deep(1099):f99()");
        EXPECT_EQ(platform::DebugLine(window, 500), "Deep(1001):f1()");
    });
}

TEST_F(DeepCalls, TheirListHasFiveHundredLinesAtMost) {
    struct Case {
        int depth, lines;
        const char* gap;
        int at;
    };
    for (const Case& c :
         {Case{499, 499, "", 0}, Case{500, 500, "", 0}, Case{501, 500, "(2 calls are left out here)", 401},
          Case{900, 500, "(401 calls are left out here)", 401},
          Case{901, 500, "(402 calls are left out here)", 401}}) {
        enterTo(c.depth);
        breakAt(7, [&c](platform::DebugWindow& window) {
            command(window, DEBUG_STACK);
            EXPECT_EQ(platform::DebugCount(window), c.lines);
            EXPECT_EQ(platform::DebugLine(window, c.at), c.gap);
        });
    }
}

TEST_F(DeepCalls, ThatAreForgottenAreOneLine) {
    enterTo(2000);
    leaveTo(1500);
    breakAt(7, [](platform::DebugWindow& window) {
        EXPECT_EQ(platform::GetDebugStatus(window), "1500 calls deep");
        command(window, DEBUG_STACK);
        EXPECT_EQ(platform::DebugCount(window), 500);
        EXPECT_EQ(platform::DebugLine(window, 1), "(1001 calls are left out here)");
        EXPECT_EQ(platform::DebugLine(window, 2), "Deep(1499):f499()");
    });
}

TEST_F(DeepCalls, ThatWereMadeBehindForgottenOnesAreListedAboveTheOneLine) {
    enterTo(2000);
    leaveTo(1500);
    enterTo(1502);
    breakAt(7, [](platform::DebugWindow& window) {
        command(window, DEBUG_STACK);
        ASSERT_EQ(platform::DebugCount(window), 500);
        EXPECT_EQ(platform::DebugLine(window, 2), "Deep(2501):f1501()");
        EXPECT_EQ(platform::DebugLine(window, 3), "(1003 calls are left out here)");
        EXPECT_EQ(platform::DebugLine(window, 4), "Deep(1497):f497()");
        EXPECT_EQ(platform::DebugLine(window, 500), "Deep(1001):f1()");
    });
}

TEST_F(DeepCalls, AreOpenedFromTheList) {
    addClass("Other", 3, {2});
    enterTo(1999);
    tarn_current_line = 4;
    EnterProgramFunction("Other", "LAST", 1);
    breakAt(2, [](platform::DebugWindow& window) {
        command(window, DEBUG_STACK);
        event(window, DebugMessage::DoubleClick, 2);
        EXPECT_EQ(platform::DebugLine(window, 1), "Deep 1");
        EXPECT_EQ(platform::DebugSelected(window), 4);
        command(window, DEBUG_STACK);
        log().clear();
        event(window, DebugMessage::DoubleClick, 401);
        EXPECT_EQ(platform::DebugLine(window, 401), "(1501 calls are left out here)") << "it opens nothing";
        command(window, DEBUG_VALUES);
        EXPECT_EQ(platform::DebugCount(window), 4);
    });
}

TEST_F(DeepCalls, OfTheRunTimeHaveNoLinesToStopAt) {
    settings("");
    enterTo(600);
    FunctionEnter("system", "SAVEFILE", 1);
    platform::SetUserBreak(1);
    stampAt(7);
    EXPECT_TRUE(stops().empty());
    FunctionLeave();
    stampAt(8);
    EXPECT_EQ(stops().size(), 1U);
}

TEST_F(DeepCalls, HaveNoBreakpoints) {
    hands() = {[](platform::DebugWindow& window) {
        platform::DebugSelect(window, 5, true);
        command(window, DEBUG_TOGGLE);
    }};
    enterTo(1);
    platform::SetUserBreak(1);
    stampAt(3);
    stops().clear();
    enterTo(501);
    stampAt(5);
    EXPECT_TRUE(stops().empty());
    leaveTo(500);
    stampAt(5);
    EXPECT_EQ(stops().size(), 1U);
}

// ---- values ----

TEST_F(DeepCalls, HaveNoValuesAndSaySo) {
    std::int32_t number = 1;
    enterTo(501);
    RegisterVariable("n", 'V', 3, &number);
    breakAt(7, [](platform::DebugWindow& window) {
        command(window, DEBUG_VALUES);
        EXPECT_EQ(platform::DebugCount(window), 5);
        EXPECT_EQ(platform::DebugLine(window, 5),
                  " (Only the first 500 calls have their values here: this one is number 501.)");
    });
    leaveTo(500);
    RegisterVariable("n", 'V', 3, &number);
    breakAt(7, [](platform::DebugWindow& window) {
        command(window, DEBUG_VALUES);
        EXPECT_EQ(listOf(window), "n : Integer = 1");
    });
}

TEST_F(DeepCalls, AFullTableOfValuesIsTold) {
    std::int32_t number = 1;
    constexpr char full[] =
        " (The table of values is full: it holds 1000, and those of this call may be missing.)";
    enterTo(1);
    for (int i = 1; i < 1000; ++i) RegisterVariable("n", 'V', 3, &number);
    enterTo(2);
    RegisterVariable("first", 'V', 3, &number);
    breakAt(7, [](platform::DebugWindow& window) {
        command(window, DEBUG_VALUES);
        EXPECT_EQ(listOf(window), "first : Integer = 1") << "the table is full, and nothing is missing";
    });
    RegisterVariable("second", 'V', 3, &number);
    breakAt(7, [&](platform::DebugWindow& window) {
        command(window, DEBUG_VALUES);
        EXPECT_EQ(listOf(window), std::string("first : Integer = 1\n") + full);
        event(window, DebugMessage::Edit, 2);
        EXPECT_TRUE(boxes().empty()) << "that line is no value";
    });
    enterTo(3);
    RegisterVariable("third", 'V', 3, &number);
    breakAt(7, [&](platform::DebugWindow& window) {
        command(window, DEBUG_VALUES);
        EXPECT_EQ(platform::DebugCount(window), 5);
        EXPECT_EQ(platform::DebugLine(window, 5), full);
        command(window, DEBUG_STACK);
        event(window, DebugMessage::DoubleClick, 3);
        command(window, DEBUG_VALUES);
        EXPECT_EQ(platform::DebugCount(window), 999) << "an outer call has all of its own";
    });
    leaveTo(1);
    enterTo(2);
    breakAt(7, [](platform::DebugWindow& window) {
        command(window, DEBUG_VALUES);
        EXPECT_EQ(platform::DebugCount(window), 4);
    });
}

// ---- classes ----

class ManyClasses : public DebuggedProgram {
protected:
    void begin(const std::string& breakpoints) {
        settings("breakpoints=" + breakpoints + "\r\n");
        start();
        for (int i = 1; i <= 200; ++i) RegisterClass(folder / "none.cls", "C" + std::to_string(i));
        ::testing::internal::CaptureStderr();
        addClass("Last", 20, {5});
        told = ::testing::internal::GetCapturedStderr();
    }
    std::string told;
};

TEST_F(ManyClasses, TheLastHasNoBreakpoints) {
    begin("last 5 c1 3");
    EXPECT_EQ(told, "Breakpoints of Last do not stop: the debugger takes 200 classes.\n");
    EXPECT_EQ(ErrorCell(), 0);
    for (int i = 0; i < 2; ++i) {
        const Called f("Last", "F", 1);
        stampAt(5);
    }
    EXPECT_TRUE(stops().empty());
    const Called g("C1", "G", 1);
    stampAt(3);
    EXPECT_EQ(stopsText(), "C13/1");
}

TEST_F(ManyClasses, WithoutBreakpointsInTheLastNothingIsTold) {
    begin("c1 3");
    EXPECT_EQ(told, "");
}

TEST_F(ManyClasses, TheListNamesThoseThatAreLeftOut) {
    begin("");
    RegisterClass(folder / "more.cls", "More");
    const Called f("C1", "F", 1);
    hands() = {[](platform::DebugWindow& window) {
        command(window, DEBUG_CLASSES);
        EXPECT_EQ(platform::DebugCount(window), 201);
        EXPECT_EQ(platform::DebugLine(window, 201),
                  "(Only 200 classes can have breakpoints. These cannot: Last, More)");
        event(window, DebugMessage::DoubleClick, 201);
        EXPECT_EQ(platform::DebugCount(window), 201) << "it opens nothing";
    }};
    platform::SetUserBreak(1);
    stampAt(2);
    EXPECT_EQ(stops().size(), 1U);
}

}  // namespace
}  // namespace tarn
