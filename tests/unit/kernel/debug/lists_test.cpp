// SPDX-License-Identifier: Apache-2.0
//
// What the list shows beside sources, and help.
#include "unit/kernel/debug/debug_fixture.h"

#include "kernel/text/systeminfo.h"
#include "platform/operations/system.h"

namespace tarn {
namespace {

using platform::DebugMessage;

class DebugLists : public StoppedProgram {};

int flagsAt(platform::DebugWindow& window, int line) {
    return platform::DebugFlags(window, line);
}

// ---- other lists ----

TEST_F(DebugLists, TheCallStackIsShownFromTheTop) {
    const Called outer("Main", "MAIN", 1);
    stampAt(7);
    const Called middle("Sums", "DO_ADD", 2);
    stampAt(9);
    const Called inner("Other", "LEAF", 30);
    stampAt(33);
    hands().push_back([](platform::DebugWindow& window) {
        command(window, DEBUG_STACK);
        EXPECT_EQ(listOf(window), "Other(33):leaf()\nSums(9):do_add()\nMain(7):main()");
        event(window, DebugMessage::DoubleClick, 2);
        EXPECT_EQ(platform::DebugLine(window, 1), "Sums 1");
        EXPECT_EQ(platform::DebugSelected(window), 9);
        EXPECT_EQ(flagsAt(window, 9), 0) << "the current line is one of the top frame's class";
        command(window, DEBUG_STACK);
        event(window, DebugMessage::DoubleClick, 4);
        EXPECT_EQ(platform::DebugCount(window), 3) << "a line that is none shows nothing";
    });
    SetError(601);
    stampAt(34);
    EXPECT_EQ(stopsText(), "Main7/1 Other33/3");
}

TEST_F(DebugLists, TheClassesAreShownWithTheirSources) {
    write("one.cls", "x");
    RegisterClass(folder / "one.cls", "One");
    RegisterClass("/nowhere/none.cls", "None");
    const std::int64_t size = os::sizeOf(folder / "Sums.cls");
    const std::string text = "Sums " + folder / "Sums.cls" + " (" + std::to_string(size) + " bytes)\nOne " +
                             folder / "one.cls" +
                             " (1 byte)\nNone ---not found, should be in: /nowhere/none.cls---";
    stopAndDo([&text](platform::DebugWindow& window) {
        command(window, DEBUG_CLASSES);
        EXPECT_EQ(listOf(window), text);
        event(window, DebugMessage::DoubleClick, 2);
        EXPECT_EQ(listOf(window), "x");
        EXPECT_EQ(platform::DebugSelected(window), 1);
        command(window, DEBUG_CLASSES);
        event(window, DebugMessage::DoubleClick, 3);
        EXPECT_TRUE(listOf(window).starts_with("(Cannot load \"None\")")) << listOf(window);
    });
}

TEST_F(DebugLists, TheInformationNamesErrorAndSettings) {
    const std::string file = "Debugger INI file = " + folder / "ide.ini" + "\n\nApplication directory = ";
    stopAndDo([&file](platform::DebugWindow& window) {
        command(window, DEBUG_INFORMATION);
        EXPECT_TRUE(listOf(window).starts_with("Current exception = None (Error 0).\n" + file))
            << listOf(window);
        const int beeps = platform::headlessBeeps();
        event(window, DebugMessage::DoubleClick, 1);
        EXPECT_EQ(platform::headlessBeeps(), beeps + 1);
    });
    const Called f("Sums", "DO_ADD", 2);
    hands().push_back([&file](platform::DebugWindow& window) {
        command(window, DEBUG_INFORMATION);
        EXPECT_TRUE(
            listOf(window).starts_with("Current exception = 643, Division by zero (Error 643).\n" + file))
            << listOf(window);
        EXPECT_EQ(ErrorCell(), 643);
    });
    SetError(643);
    stampAt(9);
    EXPECT_EQ(stops().size(), 2U);
}

// ---- help ----

TEST_F(DebugLists, HelpWithoutAnErrorSaysThatThereIsNone) {
    stopAndDo([](platform::DebugWindow& window) { command(window, DEBUG_HELP); });
    EXPECT_EQ(boxes(),
              std::vector<std::string>{"Integrated Debugger|At the moment there is no error.\nYou are "
                                       "stopped in the debugger because of a "
                                       "breakpoint,\nor because of stepping through some code.|Sorry"});
}

class HelpedDebugger : public DebugLists {
protected:
    static std::vector<std::string>& shown() {
        static std::vector<std::string> all;
        return all;
    }
    void SetUp() override {
        DebugLists::SetUp();
        shown().clear();
        platform::SetHelpViewer([](const std::string& file, const std::string& key) {
            shown().push_back(file + "#" + key);
            return true;
        });
    }
    void TearDown() override {
        platform::SetHelpViewer(nullptr);
        DebugLists::TearDown();
    }
    // The help that is called for an error, with these settings.
    void helpWith(const std::string& entries) {
        write("ide.ini", "[debug]\r\nSingleStep=1\r\n" + entries);
        const Called f("Sums", "F", 1);
        stampAt(3);
        hands().push_back([](platform::DebugWindow& window) { command(window, DEBUG_HELP); });
        SetError(643);
        stampAt(5);
    }
};

TEST_F(HelpedDebugger, TheErrorIsATopicOfTheProgramsHelpFile) {
    hands().push_back([](platform::DebugWindow&) {});
    helpWith("[PathsOptionsDlg]\r\nEdit2=/opt/help\r\n[GenOptionsDlg]\r\nHelpFileTypes=.chm;.hlp\r\n");
    EXPECT_EQ(shown(), std::vector<std::string>{"/opt/help/Tarnwick.chm#643"});
}

TEST_F(HelpedDebugger, ATypeMayLackItsFullStopAndAFolderHaveItsEnd) {
    hands().push_back([](platform::DebugWindow&) {});
    helpWith("[PathsOptionsDlg]\r\nEdit2=/opt/help/\r\n[GenOptionsDlg]\r\nHelpFileTypes=qch;htm\r\n");
    EXPECT_EQ(shown(), std::vector<std::string>{"/opt/help/Tarnwick.qch#643"});
}

TEST_F(HelpedDebugger, WithoutAViewerThePageBesideItOpensInTheBrowser) {
    platform::SetHelpViewer(nullptr);
    write("Tarnwick.htm", "x");
    hands().push_back([](platform::DebugWindow&) {});
    helpWith("[PathsOptionsDlg]\r\nEdit2=" + folder.path() + "\r\n[GenOptionsDlg]\r\nHelpFileTypes=qch\r\n");
    EXPECT_EQ(platform::lastHeadlessUrl(), "file://" + folder / "Tarnwick.htm" + "#643");
}

TEST_F(HelpedDebugger, WhatNobodyShowsBeeps) {
    platform::SetHelpViewer(nullptr);
    const int beeps = platform::headlessBeeps();
    hands().push_back([](platform::DebugWindow&) {});
    helpWith("[PathsOptionsDlg]\r\nEdit2=" + folder.path() + "\r\n[GenOptionsDlg]\r\nHelpFileTypes=qch\r\n");
    EXPECT_EQ(platform::headlessBeeps(), beeps + 1);
}

TEST_F(HelpedDebugger, AnyOtherTypeBeeps) {
    const int beeps = platform::headlessBeeps();
    hands().push_back([](platform::DebugWindow&) {});
    helpWith("[PathsOptionsDlg]\r\nEdit2=/opt/help\r\n[GenOptionsDlg]\r\nHelpFileTypes=.doc\r\n");
    EXPECT_TRUE(shown().empty());
    EXPECT_EQ(platform::headlessBeeps(), beeps + 1);
}

TEST_F(HelpedDebugger, TheHelpKeyShowsTheDebuggersTopic) {
    write("ide.ini", "[PathsOptionsDlg]\r\nEdit2=/opt/help\r\n[GenOptionsDlg]\r\nHelpFileTypes=qch\r\n");
    stopAndDo([](platform::DebugWindow& window) { event(window, DebugMessage::Help, 0); });
    EXPECT_EQ(shown(), std::vector<std::string>{"/opt/help/Tarnwick.qch#Debugger"});
}

}  // namespace
}  // namespace tarn
