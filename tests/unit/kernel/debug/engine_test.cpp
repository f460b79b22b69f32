// SPDX-License-Identifier: Apache-2.0
//
// Start and end of the debugger, and what it keeps in the settings file.
#include "unit/kernel/debug/debug_fixture.h"

#include "os/files.h"
#include "platform/model/debugger/debugwindow.h"

namespace tarn {
namespace {

class Debugger : public DebuggedProgram {};

// ---- start and end ----

TEST_F(Debugger, ModesZeroAndOneHaveNoWindow) {
    for (const int mode : {0, 1}) {
        DebugStart(mode, "Tarnwick", "1.3", "2207", folder / "main.cls");
        EXPECT_EQ(tarn_debugger_window, nullptr);
        DebugEnd();
    }
}

TEST_F(Debugger, ModeTwoWithoutItsSourceHasNoWindow) {
    DebugStart(2, "Tarnwick", "1.3", "2207", folder / "main.cls");
    EXPECT_EQ(tarn_debugger_window, nullptr);
    EXPECT_EQ(DebugMode(), 1);
    write("main.cls", "");
    DebugEnd();
    DebugStart(2, "Tarnwick", "1.3", "2207", folder / "main.cls");
    EXPECT_EQ(tarn_debugger_window, nullptr);
}

TEST_F(Debugger, TheWindowIsInactiveWhileTheProgramRuns) {
    settings("SingleStep=1\r\n");
    start();
    EXPECT_EQ(platform::GetDebugCaption(window()), "Integrated Debugger [inactive]");
    const Called f("A", "F", 1);
    stampAt(2);
    ASSERT_EQ(stops().size(), 1U);
    EXPECT_EQ(stops()[0].caption, "Integrated Debugger");
    EXPECT_EQ(platform::GetDebugCaption(window()), "Integrated Debugger [inactive]");
    DebugEnd();
    EXPECT_EQ(tarn_debugger_window, nullptr);
    stampAt(3);
    EXPECT_EQ(stops().size(), 1U);
}

TEST_F(Debugger, TheSettingsSayWhereTheWindowStandsAndWhatIsTraced) {
    settings("_Position=10 20 300 400\r\nTraceProgram=1\r\n");
    start();
    EXPECT_EQ(window().wanted, (platform::DebugPlace{10, 20, 300, 400}));
    EXPECT_EQ(GetTraceMode(), 1);
    SetTraceMode(0);
}

TEST_F(Debugger, ATraceModeThatIsNoneIsNotTaken) {
    settings("TraceProgram=7\r\n");
    start();
    EXPECT_EQ(GetTraceMode(), 0);
}

TEST_F(Debugger, WithoutSingleStepItRunsOn) {
    settings("SingleStep=0\r\n");
    start();
    const Called f("A", "F", 1);
    stampAt(2);
    EXPECT_TRUE(stops().empty());
}

TEST_F(Debugger, WhatIsSavedAtTheEnd) {
    write("ide.ini",
          "[Main]\r\nx=1\r\n[debug]\r\nbreakpoints=a 3 gone 7\r\nSingleStep=1\r\n_Position=1 2 300 400\r\n");
    start();
    addClass("A", 20, {3, 5, 7});
    hands().push_back([](platform::DebugWindow& window) {
        platform::DebugSelect(window, 7, true);
        command(window, DEBUG_TOGGLE);
        command(window, DEBUG_RUN);
    });
    {
        const Called f("A", "F", 1);
        stampAt(5);
    }
    DebugEnd();
    EXPECT_EQ(read("ide.ini"),
              "[Main]\r\nx=1\r\n[debug]\r\nbreakpoints=A 3 7 \r\nSingleStep=0\r\n_Position=1 2 300 400\r\n");
}

TEST_F(Debugger, ThePlaceIsThatOfTheWindowOnItsScreen) {
    settings("_Position=1 2 300 400\r\n");
    start();
    window().place = {5, -6, 700, 80};
    DebugEnd();
    EXPECT_EQ(setting("_Position"), "5 -6 700 80");
}

TEST_F(Debugger, AtATerminalThePlaceIsLeftAlone) {
    for (const char* place : {"1 2 300", "x", "", "1 2 300 400 5"}) {
        settings(std::string("_Position=") + place + "\r\n");
        start();
        DebugEnd();
        EXPECT_EQ(setting("_Position"), place);
    }
    settings("_Position=1 2 300 400\r\n");
    start();
    settings("_Position=5 6 700 80\r\n");  // another program has ended meanwhile
    DebugEnd();
    EXPECT_EQ(setting("_Position"), "5 6 700 80");
}

TEST_F(Debugger, TheWindowIsToldWhereTheCodeWindowStands) {
    struct Case {
        const char* beside;
        platform::DebugPlace place;
    };
    for (const Case& c : {Case{"10 20 800 600", {10, 20, 800, 600}}, Case{"", {}}, Case{"a b c", {}},
                          Case{"1 2 3", {1, 2, 3, 0}}}) {
        settings(std::string("Beside=") + c.beside + "\r\n");
        start();
        EXPECT_EQ(window().beside, c.place) << c.beside;
        EXPECT_EQ(window().wanted, platform::DebugPlace());
        DebugEnd();
    }
}

TEST_F(Debugger, BreakpointsThatHaveNotChangedAreNotWritten) {
    settings("breakpoints=a 3   gone 7\r\n");
    start();
    addClass("A", 20, {3});
    DebugEnd();
    EXPECT_EQ(setting("breakpoints"), "a 3   gone 7");
}

TEST_F(Debugger, ABreakpointOfAClassThatIsNotThereIsDroppedOnSaving) {
    settings("breakpoints=gone 7 a 3\r\nSingleStep=1\r\n");
    start();
    addClass("A", 20, {5});
    const Called f("A", "F", 1);
    stampAt(5);  // shows the class, in which line 3 has no code any more
    DebugEnd();
    EXPECT_EQ(setting("breakpoints"), "");
}

TEST_F(Debugger, ASettingsFileThatIsMissingIsNotMade) {
    start();
    addClass("A", 20, {3});
    DebugEnd();
    EXPECT_LT(os::sizeOf(folder / "ide.ini"), 0);
}

TEST_F(Debugger, ASettingsFileThatMayNotBeWrittenIsToldInTheOutput) {
    settings("SingleStep=1\r\n");
    ASSERT_EQ(::chmod((folder / "ide.ini").c_str(), 0444), 0);
    start();
    addClass("A", 20, {3});
    hands().push_back([](platform::DebugWindow& window) {
        platform::DebugSelect(window, 3, true);
        command(window, DEBUG_TOGGLE);
    });
    {
        const Called f("A", "F", 1);
        stampAt(3);
    }
    ::testing::internal::CaptureStderr();
    DebugEnd();
    EXPECT_EQ(::testing::internal::GetCapturedStderr(),
              "The breakpoints were not saved in '" + folder / "ide.ini" + "'. " +
                  std::string(os::describe(os::FileError::Denied)) + "\n");
    EXPECT_EQ(setting("breakpoints"), "");
}

TEST_F(Debugger, WithoutARegistryThereIsNoSettingsFile) {
    const TempFolder other;
    const Variable config("XDG_CONFIG_HOME", other.path());
    settings("SingleStep=1\r\n");
    start();
    const Called f("A", "F", 1);
    stampAt(2);
    EXPECT_TRUE(stops().empty());
    DebugEnd();
    EXPECT_EQ(setting("SingleStep"), "1");
}

TEST_F(Debugger, BrokenSettingsAreNone) {
    static constexpr char Text[] =
        "\0[debug\n[debug]\nbreakpoints=\xff\xff 1\n_Position=a b c d\nTraceProgram==\n"
        "Rules=;;\"\nStopCodes=x\nWatches=\"\n";
    write("ide.ini", {Text, sizeof Text - 1});
    start();
    const Called f("A", "F", 1);
    stampAt(1);
    EXPECT_TRUE(stops().empty());
}

TEST_F(Debugger, ASecondEndDoesNothing) {
    start();
    DebugEnd();
    DebugEnd();
    EXPECT_EQ(tarn_debugger_window, nullptr);
}

class DebuggerEnds : public StoppedProgram {};

using platform::DebugMessage;

// ---- the end of the program ----

TEST_F(DebuggerEnds, StopEndsTheProgramAndSaves) {
    hands().push_back([](platform::DebugWindow& window) {
        command(window, DEBUG_TOGGLE);
        command(window, DEBUG_HALT);
    });
    EnterProgramFunction("Sums", "F", 1);
    EXPECT_EQ(endOf([] { stampAt(5); }), 0);
    EXPECT_EQ(setting("breakpoints"), "Sums 5 ");
    EXPECT_EQ(setting("SingleStep"), "0");
    EXPECT_EQ(tarn_debugger_window, nullptr);
}

TEST_F(DebuggerEnds, AClosedWindowLetsTheProgramRunOnAlone) {
    stopAndDo([](platform::DebugWindow& window) {
        command(window, DEBUG_TOGGLE);
        event(window, DebugMessage::Close, 0);
    });
    EXPECT_EQ(tarn_debugger_window, nullptr);
    EXPECT_EQ(setting("breakpoints"), "Sums 5 ");
    const Called f("Sums", "F", 1);
    for (const int line : {3, 5, 9}) stampAt(line);
    EXPECT_EQ(stops().size(), 1U);
    answer() = "Continue";
    SetError(922);
    stampAt(12);
    EXPECT_EQ(log().back(),
              "box|Error 922|Printer not ready\nFile Sums, function f, line 9\n|Continue\nHalt");
}

}  // namespace
}  // namespace tarn
