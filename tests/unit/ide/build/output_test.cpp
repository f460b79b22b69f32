// SPDX-License-Identifier: GPL-3.0-or-later
//
// The output window over programs that are shell scripts of the test.
#include "ide/build/output.h"

#include "ide/build/runexe.h"
#include "support/ide_fixture.h"

#include <functional>

namespace tarn {
namespace {

class Output : public IdeTest {
protected:
    void SetUp() override {
        IdeTest::SetUp();
        loadWindows();
    }
    void run(const std::string& body, const std::string& name = "prog.exe") {
        write(name, "#!/bin/sh\n" + body + "\n");
        std::filesystem::permissions(dir + name, std::filesystem::perms(0755));
        RUNPROGRAM("Run-Start", dir + name, "", dir);
        Stamp(0, ReportErrors, DefaultErrorHandler);
    }
    static Object part(const char* name) { return FINDCONTROL(OutputDlg, name); }
    static std::string text() { return IsLoaded(OutputDlg) ? GetText(part("edit1")) : ""; }
    static std::string state() { return IsLoaded(OutputDlg) ? GetCaption(part("label2")) : ""; }
    static bool isShown() { return ISSHOWN(OutputDlg); }
    // Lets time go by until that holds; false if it never does.
    static bool until(const std::function<bool()>& holds, int milliseconds = 10000) {
        for (int waited = 0; !holds() && waited < milliseconds; waited += 10) DoEvents(), usleep(10000);
        return holds();
    }
    static bool untilState(const std::string& begin) {
        return until([&] { return state().starts_with(begin); });
    }
    static void press(const char* name) { platform::userCommand(*platform::findControl(part(name))); }
    static void send(const std::string& line) {
        SetText(part("edit2"), line);
        press("pushbutton1");
    }
    static int count(const std::string& text, char c) {
        return static_cast<int>(std::count(text.begin(), text.end(), c));
    }
};

TEST_F(Output, ComesUpWhenAProgramWrites) {
    run("echo one; echo two >&2; exit 0");
    ASSERT_TRUE(untilState("Ended")) << state();
    EXPECT_TRUE(isShown());
    EXPECT_EQ(GetCaption(OutputDlg), "Run-Output");
    EXPECT_EQ(text(), "one\ntwo\n");
    EXPECT_EQ(state(), "Ended with exit code 0");
    EXPECT_EQ(GetCaption(part("label1")), dir + "prog.exe");
    for (const char* name : {"edit2", "pushbutton1", "pushbutton2", "pushbutton3"})
        EXPECT_FALSE(GetEnabled(part(name))) << name;
    EXPECT_TRUE(GetEnabled(part("pushbutton4")));
}

TEST_F(Output, DoesNotComeUpForAProgramThatIsSilentAndSucceeds) {
    run("touch ran");
    ASSERT_TRUE(until([&] { return std::filesystem::exists(dir + "ran"); }));
    until([] { return false; }, 300);
    EXPECT_FALSE(isShown());
    EXPECT_TRUE(asked.empty());
}

TEST_F(Output, TellsHowAProgramEnded) {
    const std::pair<const char*, const char*> cases[] = {{"exit 3", "Ended with exit code 3"},
                                                         {"kill -SEGV $$", "Ended by signal 11"},
                                                         {"echo x; kill -9 $$", "Ended by signal 9"}};
    for (const auto& [body, end] : cases) {
        run(body);
        EXPECT_TRUE(until([&, wanted = end] { return state() == wanted; })) << body << " " << state();
        EXPECT_TRUE(isShown()) << body;
    }
    EXPECT_EQ(text(), "x\n") << "each begins with an empty text";
}

TEST_F(Output, AWindowThatIsOpenTurnsToTheNextProgramAtOnce) {
    run("echo old");
    ASSERT_TRUE(untilState("Ended"));
    run("sleep 0.3");
    EXPECT_TRUE(state().starts_with("Running")) << state();
    until([] { return text().empty(); }, 1000);
    EXPECT_EQ(text(), "");
    ASSERT_TRUE(untilState("Ended with exit code 0"));
    EXPECT_TRUE(asked.empty());
}

TEST_F(Output, ShowsTheArgumentsAndTheProgramsFolder) {
    write("prog.exe", "#!/bin/sh\npwd\nprintf '%s\\n' \"$@\"\n");
    std::filesystem::permissions(dir + "prog.exe", std::filesystem::perms(0755));
    PROFILESTRPUT(ini(), "ArgumentsDlg", "Edit1", "one \"two words\"");
    RUNEXEFILE("Run-Start", dir + "prog.exe", 0, false);
    ASSERT_TRUE(untilState("Ended"));
    EXPECT_EQ(FILEADDSEPARATOR(STRLINE(text(), 1)), dir);
    EXPECT_EQ(STRLINE(text(), 2) + "|" + STRLINE(text(), 3), "one|two words");
    EXPECT_EQ(GetCaption(part("label1")), dir + "prog.exe one \"two words\"");
}

TEST_F(Output, TheProgramIsToldWhereTheCodeWindowStands) {
    write("prog.exe", "#!/bin/sh\n");
    std::filesystem::permissions(dir + "prog.exe", std::filesystem::perms(0755));
    const auto beside = [this] {
        RUNEXEFILE("Run-Start", dir + "prog.exe", 0, true);
        return PROFILESTRGET(ini(), "debug", "Beside");
    };
    Hide(SDIEdit);
    EXPECT_EQ(beside(), "");
    SetPosition(SDIEdit, WINDOW_UNIT, {10, 20, 700, 500});
    Show(SDIEdit, false);
    EXPECT_EQ(beside(), "10 20 700 500");
    PROFILESTRPUT(ini(), "debug", "_Position", "1 2 300 400");
    SetPosition(SDIEdit, WINDOW_UNIT, {30, 40, 700, 500});
    EXPECT_EQ(beside(), "10 20 700 500") << "the debugger's window has a place of its own";
}

TEST_F(Output, GoesWhereTheArgumentsSendIt) {
    write("prog.exe", "#!/bin/sh\necho to the file\n");
    std::filesystem::permissions(dir + "prog.exe", std::filesystem::perms(0755));
    RUNPROGRAM("Run-Start", dir + "prog.exe", "> \"" + dir + "out.txt\"", dir);
    ASSERT_TRUE(until([&] { return read(dir + "out.txt") == "to the file\n"; }));
    until([] { return false; }, 200);
    EXPECT_FALSE(isShown());
}

TEST_F(Output, SendsLinesAndTheEndOfInput) {
    run("echo name?; read -r a; echo \"<$a>\"; cat; echo done");
    ASSERT_TRUE(until([] { return text() == "name?\n"; }));
    EXPECT_TRUE(state().starts_with("Running, process ")) << state();
    send("Tarn $HOME \"x\"");
    ASSERT_TRUE(until([] { return text().find("<Tarn $HOME \"x\">\n") != std::string::npos; })) << text();
    EXPECT_EQ(GetText(part("edit2")), "");
    send("more");
    ASSERT_TRUE(until([] { return text().ends_with("more\nmore\n"); })) << text();
    press("pushbutton2");
    ASSERT_TRUE(untilState("Ended with exit code 0")) << state();
    EXPECT_TRUE(text().ends_with("more\nmore\ndone\n")) << text();
}

TEST_F(Output, ReturnSendsAndABlankLineIsALine) {
    run("echo ?; read -r a; echo \"[$a]\"");
    ASSERT_TRUE(until([] { return text() == "?\n"; }));
    platform::userKey(*platform::findWindow(OutputDlg), platform::findControl(part("edit2")), KEY_RETURN);
    ASSERT_TRUE(untilState("Ended"));
    EXPECT_EQ(text(), "?\n\n[]\n");
}

TEST_F(Output, StopEndsAProgramAndWhatItStarted) {
    run("echo up; sleep 20 & echo $! > child; wait");
    ASSERT_TRUE(until([&] { return text() == "up\n" && !read(dir + "child").empty(); }));
    press("pushbutton3");
    ASSERT_TRUE(untilState("Stopped")) << state();
    EXPECT_TRUE(os::waitForProcess(std::atoi(read(dir + "child").c_str()), 2000));
    EXPECT_FALSE(GetEnabled(part("pushbutton3")));
}

TEST_F(Output, WithoutEndNeitherHoldsUpTheWindowsNorFillsTheMemory) {
    run("while :; do echo 0123456789012345678901234567890123456789012345678901234567890123456789; done");
    int turns = 0;
    const bool came = until([&] { return ++turns > 20 && text().starts_with("... "); });
    EXPECT_TRUE(came) << text().substr(0, 100);
    EXPECT_LT(text().size(), 500'000U);
    press("pushbutton3");
    EXPECT_TRUE(untilState("Stopped"));
}

TEST_F(Output, OfManyMegabytesIsReadToItsEnd) {
    run("head -c 30000000 /dev/zero | tr '\\0' 'x' | fold -w 99; echo; echo the end");
    ASSERT_TRUE(until([] { return state().starts_with("Ended"); }, 60000)) << state();
    EXPECT_TRUE(text().ends_with("\nthe end\n")) << text().substr(text().size() - 100);
    EXPECT_TRUE(text().starts_with("... ")) << text().substr(0, 60);
    EXPECT_LT(text().size(), 500'000U);
}

TEST_F(Output, ShowsBytesThatAreNoText) {
    run("printf 'a\\377\\000b\\033[1m\\303\\244\\n'");
    ASSERT_TRUE(untilState("Ended"));
    EXPECT_EQ(text(), "a\\xFF\\x00b\\x1B[1m\xC3\xA4\n");
}

TEST_F(Output, AsksBeforeAnotherStartWhileAProgramRuns) {
    run("echo first; sleep 20");
    ASSERT_TRUE(until([] { return text() == "first\n"; }));
    answers = {"&Cancel"};
    run("echo second", "other.exe");
    ASSERT_EQ(asked.size(), 1U);
    EXPECT_EQ(lastText(),
              "The program 'prog.exe' is still running, and its output is shown.\nDo you want to stop it and "
              "start again?");
    EXPECT_EQ(asked[0].title, "Run-Start");
    EXPECT_TRUE(state().starts_with("Running")) << "it runs on";
    answers = {""};
    run("echo second", "other.exe");
    EXPECT_TRUE(state().starts_with("Running")) << "a box that is closed is no yes";
    answers = {"&Stop and Start"};
    run("echo second", "other.exe");
    ASSERT_TRUE(untilState("Ended with exit code 0"));
    EXPECT_EQ(text(), "second\n");
}

TEST_F(Output, AProgramThatIsSilentIsNoReasonToAsk) {
    run("sleep 5");
    run("echo second", "other.exe");
    ASSERT_TRUE(untilState("Ended"));
    EXPECT_TRUE(asked.empty());
    EXPECT_EQ(text(), "second\n");
}

TEST_F(Output, OfTwoProgramsIsToldApart) {
    run("sleep 0.5; echo late; exit 4", "late.exe");
    run("echo early; sleep 20", "early.exe");
    ASSERT_TRUE(until([] { return text().find("late\n") != std::string::npos; })) << text();
    EXPECT_TRUE(text().starts_with("early\n[late.exe, process ")) << text();
}

TEST_F(Output, ClosingAsksWhatBecomesOfAProgramThatRuns) {
    run("echo up; trap 'touch stopped; exit' TERM; while :; do sleep 0.1; done");
    ASSERT_TRUE(until([] { return text() == "up\n"; }));
    answers = {"&Cancel"};
    press("pushbutton4");
    EXPECT_TRUE(isShown());
    EXPECT_EQ(
        lastText(),
        "The program 'prog.exe' is still running.\nDo you want to stop it, or to let it run without this "
        "window?");
    answers = {"&Stop It"};
    press("pushbutton4");
    EXPECT_FALSE(isShown());
    EXPECT_TRUE(std::filesystem::exists(dir + "stopped"));
}

TEST_F(Output, AProgramThatIsLetRunGoesOnWithoutAWindow) {
    run("echo up; i=0; while [ $i -lt 2000 ]; do echo $i 0123456789012345678901234567890123456789; "
        "i=$((i+1)); done; "
        "sleep 0.3; echo again; touch done");
    ASSERT_TRUE(until([] { return text().starts_with("up\n"); }));
    answers = {"&Let It Run"};
    press("pushbutton4");
    EXPECT_FALSE(isShown());
    EXPECT_TRUE(until([&] { return std::filesystem::exists(dir + "done"); })) << "it is read on";
    EXPECT_FALSE(isShown());
}

TEST_F(Output, AProgramGoesOnWhenNobodyReadsIt) {
    run("echo up; sleep 0.5; echo on; echo on; touch done");
    ASSERT_TRUE(until([] { return text() == "up\n"; }));
    platform::DestroyAllWindows();  // as at a halt
    REGISTERWINDOWS();
    Load(OutputDlg);  // what was read before is let go
    for (int i = 0; i < 300 && !std::filesystem::exists(dir + "done"); i++) usleep(10000);
    EXPECT_TRUE(std::filesystem::exists(dir + "done"));
}

TEST_F(Output, EscClosesWhatHasEndedWithoutAQuestion) {
    run("echo x");
    ASSERT_TRUE(untilState("Ended"));
    platform::userKey(*platform::findWindow(OutputDlg), nullptr, KEY_ESCAPE);
    EXPECT_FALSE(IsLoaded(OutputDlg));
    EXPECT_TRUE(asked.empty());
    run("echo y");
    ASSERT_TRUE(untilState("Ended"));
    EXPECT_EQ(text(), "y\n");
}

TEST_F(Output, ComesUpWhereItWasLast) {
    run("echo x");
    ASSERT_TRUE(untilState("Ended"));
    platform::userMoved(*platform::findWindow(OutputDlg), {123, 234, 800, 600}, 0);
    const Rect text = GetPosition(part("edit1"), CLIENT_UNIT);
    Unload(OutputDlg);
    ASSERT_FALSE(IsLoaded(OutputDlg));
    run("echo y");
    ASSERT_TRUE(untilState("Ended"));
    const Rect place = GetPosition(OutputDlg, WINDOW_UNIT), again = GetPosition(part("edit1"), CLIENT_UNIT);
    EXPECT_EQ(STR(place.x) + " " + STR(place.y) + " " + STR(place.w) + " " + STR(place.h), "123 234 800 600");
    EXPECT_EQ(STR(again.w) + " " + STR(again.h), STR(text.w) + " " + STR(text.h))
        << "the text follows the window";
}

TEST_F(Output, WhatCannotBeStartedIsToldAndShowsNothing) {
    write("prog.exe", "no program");
    RUNPROGRAM("Run-Start", dir + "prog.exe", "", dir);
    Stamp(0, ReportErrors, DefaultErrorHandler);
    ASSERT_EQ(asked.size(), 1U);
    EXPECT_NE(lastText().find("Cannot run external program."), std::string::npos) << lastText();
    EXPECT_FALSE(isShown());
}

TEST_F(Output, KeepsWhatTheUserHasMarked) {
    run("echo first; read -r a; echo second");
    ASSERT_TRUE(until([] { return text() == "first\n"; }));
    SetSelection(part("edit1"), 1, 5);
    send("");
    ASSERT_TRUE(untilState("Ended"));
    EXPECT_EQ(text(), "first\n\nsecond\n");
    EXPECT_EQ(GetSelText(part("edit1")), "first");
}

}  // namespace
}  // namespace tarn
