// SPDX-License-Identifier: Apache-2.0
//
// The source in the list, and the breakpoints that are set there.
#include "unit/kernel/debug/debug_fixture.h"

#include "os/process.h"

namespace tarn {
namespace {

using platform::DebugMessage;

class SourceList : public StoppedProgram {};

int flagsAt(platform::DebugWindow& window, int line) {
    return platform::DebugFlags(window, line);
}

TEST_F(SourceList, TheListShowsTheSourceAndTheLine) {
    stopAndDo([](platform::DebugWindow& window) {
        EXPECT_EQ(platform::DebugCount(window), 40);
        EXPECT_EQ(platform::DebugLine(window, 1), "Sums 1");
        EXPECT_EQ(platform::DebugLine(window, 40), "Sums 40");
        EXPECT_EQ(platform::DebugSelected(window), 5);
        EXPECT_EQ(flagsAt(window, 5), platform::DEBUG_CURRENT);
        command(window, DEBUG_STEP_INTO);
    });
    hands().push_back([](platform::DebugWindow& window) {
        EXPECT_EQ(flagsAt(window, 5), 0);
        EXPECT_EQ(flagsAt(window, 9), platform::DEBUG_CURRENT);
        EXPECT_EQ(platform::DebugSelected(window), 9);
    });
    const Called f("sums", "NEXT", 2);
    stampAt(9);
    EXPECT_EQ(stops().size(), 2U);
}

TEST_F(SourceList, AClassThatIsNotInTheTableCannotBeLoaded) {
    hands().push_back([](platform::DebugWindow& window) {
        EXPECT_EQ(listOf(window),
                  "(Cannot load \"Other\")\n(Its source code was searched for in the following places:)\n" +
                      os::executableFolder() + "Other.cls");
    });
    const Called f("Other", "F", 1);
    stampAt(5);
    EXPECT_EQ(stopsText(), "Other5/1");
}

TEST_F(SourceList, ASourceThatIsGoneIsToldWithItsPlaces) {
    ASSERT_EQ(os::files().remove(folder / "Sums.cls"), os::FileError::None);
    const std::string text =
        "(Cannot load \"Sums\")\n(Its source code was searched for in the following places:)\n" +
        folder / "Sums.cls" + "\n" + os::executableFolder() + "Sums.cls";
    stopAndDo([&text](platform::DebugWindow& window) { EXPECT_EQ(listOf(window), text); });
}

TEST_F(SourceList, ASourceThatGoesWhileItIsShownStaysInTheList) {
    stopAndDo([this](platform::DebugWindow& window) {
        os::files().remove(folder / "Sums.cls");
        command(window, DEBUG_CODE);
        EXPECT_EQ(platform::DebugCount(window), 40);
        command(window, DEBUG_STACK);
        command(window, DEBUG_CODE);
        EXPECT_TRUE(platform::DebugLine(window, 1).starts_with("(Cannot load")) << listOf(window);
    });
}

TEST_F(SourceList, ASourceThatChangesMeanwhileIsReadWhenItsClassIsShownAgain) {
    stopAndDo([this](platform::DebugWindow& window) {
        write("Sums.cls", "new\n");
        command(window, DEBUG_CODE);
        EXPECT_EQ(platform::DebugLine(window, 1), "Sums 1");
        command(window, DEBUG_STACK);
        command(window, DEBUG_CODE);
        EXPECT_EQ(listOf(window), "new");
        EXPECT_EQ(platform::DebugSelected(window), 0) << "the current line is none of the text";
        platform::DebugSelect(window, 1, true);
        answers() = {"Yes"};
        command(window, DEBUG_TOGGLE);
        EXPECT_EQ(boxes().back(), "Integrated Debugger|No code was generated at line 1 in Sums.\nWould you like to "
                                  "toggle a breakpoint at line 3 instead?|Yes No");
    });
}

TEST_F(SourceList, ASourceBesideTheProgramIsTheSecondPlace) {
    const std::string name = "tarnwick_engine_test";
    const std::string file = os::executableFolder() + name + ".cls";
    ASSERT_TRUE(os::saveFile(file, "one\ntwo", os::Durability::Unsynced).ok());
    RegisterClass(folder / "nowhere.cls", name);
    hands().push_back([](platform::DebugWindow& window) { EXPECT_EQ(listOf(window), "one\ntwo"); });
    {
        const Called f(name.c_str(), "F", 1);
        stampAt(2);
    }
    os::files().remove(file);
    EXPECT_EQ(stops().size(), 1U);
}

TEST_F(SourceList, ALineBehindTheEndOfTheSourceIsNotMarked) {
    hands().push_back([](platform::DebugWindow& window) {
        for (int line = 1; line <= 40; ++line) EXPECT_EQ(flagsAt(window, line), 0);
    });
    const Called f("Sums", "F", 1);
    stampAt(4000);
    EXPECT_EQ(stopsText(), "Sums4000/1");
}

// ---- breakpoints in the window ----

TEST_F(SourceList, ABreakpointIsToggledAtTheSelectedLine) {
    stopAndDo([](platform::DebugWindow& window) {
        platform::DebugSelect(window, 9, true);
        command(window, DEBUG_TOGGLE);
        EXPECT_EQ(flagsAt(window, 9), platform::DEBUG_BREAKPOINT);
        platform::DebugSelect(window, 5, true);
        command(window, DEBUG_TOGGLE);
        EXPECT_EQ(flagsAt(window, 5), platform::DEBUG_BREAKPOINT | platform::DEBUG_CURRENT);
        command(window, DEBUG_TOGGLE);
        EXPECT_EQ(flagsAt(window, 5), platform::DEBUG_CURRENT);
        event(window, DebugMessage::DoubleClick, 12);
        EXPECT_EQ(flagsAt(window, 12), platform::DEBUG_BREAKPOINT);
        command(window, DEBUG_RUN);
    });
    const Called f("SUMS", "F", 1);
    for (const int line : {3, 5, 9, 12}) stampAt(line);
    EXPECT_EQ(stopsText(), "Sums5/1 SUMS9/1 SUMS12/1");
    DebugEnd();
    EXPECT_EQ(setting("breakpoints"), "Sums 9 12 ");
}

TEST_F(SourceList, AtALineWithoutCodeTheNextOneIsOffered) {
    answers() = {"Yes"};
    stopAndDo([](platform::DebugWindow& window) {
        platform::DebugSelect(window, 6, true);
        command(window, DEBUG_TOGGLE);
        EXPECT_EQ(platform::DebugSelected(window), 9);
        EXPECT_EQ(flagsAt(window, 9), platform::DEBUG_BREAKPOINT);
        EXPECT_EQ(flagsAt(window, 6), 0);
    });
    EXPECT_EQ(boxes(),
              std::vector<std::string>{
                  "Integrated Debugger|No code was generated at line 6 in Sums.\nWould you like to toggle a "
                  "breakpoint at line 9 instead?|Yes No"});
}

TEST_F(SourceList, AtALineWithoutCodeNoMeansNothing) {
    for (const char* reply : {"No", ""}) {
        answers() = {reply};
        stopAndDo([](platform::DebugWindow& window) {
            platform::DebugSelect(window, 6, true);
            command(window, DEBUG_TOGGLE);
            EXPECT_EQ(platform::DebugSelected(window), 6);
            EXPECT_EQ(flagsAt(window, 9), 0);
            command(window, DEBUG_STEP_INTO);
        });
    }
    EXPECT_EQ(boxes().size(), 2U);
}

TEST_F(SourceList, BehindTheLastLineWithCodeNothingCanBePut) {
    const int beeps = platform::headlessBeeps();
    stopAndDo([](platform::DebugWindow& window) {
        platform::DebugSelect(window, 13, true);
        command(window, DEBUG_TOGGLE);
    });
    EXPECT_EQ(platform::headlessBeeps(), beeps + 1);
    EXPECT_EQ(boxes(),
              std::vector<std::string>{"Integrated Debugger|No code was generated at line 13 in Sums.\nA "
                                       "breakpoint cannot be put here.|OK"});
}

TEST_F(SourceList, WithoutALineOrInAnotherListItBeeps) {
    stopAndDo([](platform::DebugWindow& window) {
        int beeps = platform::headlessBeeps();
        platform::DebugSelect(window, 0, false);
        command(window, DEBUG_TOGGLE);
        EXPECT_EQ(platform::headlessBeeps(), ++beeps);
        command(window, DEBUG_RUN_TO);
        EXPECT_EQ(platform::headlessBeeps(), ++beeps);
        command(window, DEBUG_STACK);
        platform::DebugSelect(window, 1, false);
        command(window, DEBUG_TOGGLE);
        EXPECT_EQ(platform::headlessBeeps(), ++beeps);
        for (const int line : {0, -1, 41}) {
            event(window, DebugMessage::DoubleClick, line);
            EXPECT_EQ(platform::headlessBeeps(), ++beeps) << line;
        }
    });
    EXPECT_TRUE(boxes().empty());
}

TEST_F(SourceList, ABreakpointOfALineWithoutCodeGoesWhenItsClassIsShown) {
    DebugEnd();
    settings("breakpoints=sums 5 sums 6 other 6 sums 9\r\nSingleStep=1\r\n");
    start();
    addClass("Sums", 40, {3, 5, 9, 12});
    stopAndDo([](platform::DebugWindow& window) {
        EXPECT_EQ(flagsAt(window, 5), platform::DEBUG_BREAKPOINT | platform::DEBUG_CURRENT);
        EXPECT_EQ(flagsAt(window, 6), 0);
        EXPECT_EQ(flagsAt(window, 9), platform::DEBUG_BREAKPOINT);
    });
    DebugEnd();
    EXPECT_EQ(setting("breakpoints"), "Sums 5 9 ");
}

TEST_F(SourceList, AFullTableTakesNoMore) {
    DebugEnd();
    std::string all = "breakpoints=x";
    for (int line = 1; line <= 200; ++line) all += " " + std::to_string(line);
    settings(all + "\r\nSingleStep=1\r\n");
    start();
    addClass("Sums", 40, {3, 5, 9, 12});
    stopAndDo([](platform::DebugWindow& window) {
        const int beeps = platform::headlessBeeps();
        command(window, DEBUG_TOGGLE);
        EXPECT_EQ(platform::headlessBeeps(), beeps + 1);
        EXPECT_EQ(flagsAt(window, 5), platform::DEBUG_CURRENT);
    });
}

}  // namespace
}  // namespace tarn
