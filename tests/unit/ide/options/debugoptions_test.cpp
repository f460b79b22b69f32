// SPDX-License-Identifier: GPL-3.0-or-later
#include "ide/options/debugoptions.h"

#include "ide/debug/ruledlg.h"
#include "kernel/debug/stopnotice.h"
#include "kernel/run/trace.h"
#include "support/ide_fixture.h"
#include "support/tempfolder.h"

#include <sys/stat.h>

namespace tarn {
namespace {

class DebugOptions : public IdeTest {
protected:
    void SetUp() override {
        ASSERT_EQ(::chmod(runtimeFolder_.path().c_str(), 0700), 0);
        IdeTest::SetUp();
        start();
    }
    void TearDown() override {
        EndStopNotice();
        SetTraceMode(0);
        IdeTest::TearDown();
    }
    void load(const std::string& breakpoints = {}) {
        PROFILESTRPUT(ini(), "debug", "breakpoints", breakpoints);
        Load(DebugOptionsDlg);
        ASSERT_TRUE(IsLoaded(DebugOptionsDlg)) << ErrorDetails();
        Show(DebugOptionsDlg, false);
    }
    static Object in(std::string_view control) { return FINDCONTROL(DebugOptionsDlg, control); }
    static void press(std::string_view button) { platform::userCommand(*platform::findControl(in(button))); }
    static void choose(std::string_view list, int row) {
        platform::userRow(*platform::findControl(in(list)), row);
    }
    static Object list() { return in("lstbreakpoints"); }

    TempFolder runtimeFolder_;
    Variable runtime_{"XDG_RUNTIME_DIR", runtimeFolder_.path()};
};

TEST_F(DebugOptions, TheListIsMadeOfTheValueAndBack) {
    load();
    struct Case {
        const char *value, *back;
    };
    for (const Case& c : {Case{"ide 10 20 textedit 5", "ide 10 20 textedit 5"},
                          {"10 20", ""},
                          {"", ""},
                          {"a 1 A 2 b 3 a 4", "a 1 2 b 3 a 4"},
                          {"  a   1  ", "a 1"}}) {
        SETBREAKPOINTS(list(), c.value);
        EXPECT_EQ(GETBREAKPOINTS(list()), c.back) << c.value;
    }
    SETBREAKPOINTS(list(), "ide 10");
    EXPECT_EQ(GetList(list(), 1), "ide\t10") << "an item has two sub-fields";
}

TEST_F(DebugOptions, AnyListBoxWillDo) {
    load();
    const Object plain = in("lsttraceide");
    SETBREAKPOINTS(plain, "ide 10 20");
    EXPECT_EQ(GETBREAKPOINTS(plain), "ide 10 20");
    const Object button = in("btnadd");
    SETBREAKPOINTS(button, "ide 10 20");
    EXPECT_EQ(GETBREAKPOINTS(button), "");
}

TEST_F(DebugOptions, ABreakpointIsFoundByItsClassAndLine) {
    load("ide 10 20 textedit 10");
    EXPECT_EQ(FINDBREAKPOINT(list(), "IDE", 20), 2);
    EXPECT_EQ(FINDBREAKPOINT(list(), "textedit", 10), 3);
    EXPECT_EQ(FINDBREAKPOINT(list(), "textedit", 20), -1);
    EXPECT_EQ(FINDBREAKPOINT(list(), "", 10), -1);
}

TEST_F(DebugOptions, ANewOneIsAskedFor) {
    load("ide 10");
    answers = {"textedit 5"};
    press("btnadd");
    EXPECT_EQ(asked.back().title, "Tools-Options-Debug");
    EXPECT_EQ(asked.back().text, "Enter the Class name and Line number of the new breakpoint:");
    EXPECT_EQ(GETBREAKPOINTS(list()), "ide 10 textedit 5");
    EXPECT_EQ(GetListIndex(list()), 2);
}

TEST_F(DebugOptions, ANewOneIsAClassAndALine) {
    for (const char* text :
         {"ide", "10", "10 ide", "ide ten", "ide 10 20", "i-de 10", "ide 0", "ide -1", "function 3"}) {
        load("a 1");
        asked.clear();
        answers = {text};
        press("btnadd");
        EXPECT_EQ(asked.size(), 2U) << text;
        EXPECT_EQ(GETBREAKPOINTS(list()), "a 1") << text;
        Unload(DebugOptionsDlg);
    }
}

TEST_F(DebugOptions, OneThatIsThereIsNotAddedTwice) {
    load("ide 10 20");
    answers = {"IDE 10"};
    press("btnadd");
    EXPECT_EQ(GETBREAKPOINTS(list()), "ide 10 20");
    EXPECT_EQ(GetListIndex(list()), 1);
}

TEST_F(DebugOptions, OkStoresAndCancelDoesNot) {
    load("ide 10 20");
    press("btnremoveall");
    press("pushbutton2");
    EXPECT_EQ(PROFILESTRGET(ini(), "debug", "breakpoints"), "ide 10 20");
    load("ide 10 20");
    choose("lstbreakpoints", 1);
    press("btnremove");
    press("pushbutton1");
    EXPECT_EQ(PROFILESTRGET(ini(), "debug", "breakpoints"), "ide 20");
}

std::string breakpointsUpTo(int count) {
    std::string value = "A";
    for (int i = 1; i <= count; i++) value += " " + std::to_string(i);
    return value;
}

TEST_F(DebugOptions, ATwoHundredAndFirstIsRefusedWithoutABox) {
    load(breakpointsUpTo(200));
    answers = {"A 201"};
    press("btnadd");
    EXPECT_EQ(asked.size(), 1U) << "nothing is asked but the breakpoint itself";
    EXPECT_EQ(GetListCount(list()), 200);
    EXPECT_EQ(GetCaption(in("lblwarning")), "A program takes at most 200 breakpoints.");
    choose("lstbreakpoints", 1);
    press("btnremove");
    EXPECT_EQ(GetCaption(in("lblwarning")), "");
    press("pushbutton1");
    EXPECT_FALSE(IsLoaded(DebugOptionsDlg));
}

TEST_F(DebugOptions, MoreOfThemInTheSettingsAreToldAndKept) {
    load(breakpointsUpTo(201));
    EXPECT_EQ(GetCaption(in("lblwarning")), "A program takes at most 200 breakpoints.");
    press("pushbutton1");
    EXPECT_FALSE(IsLoaded(DebugOptionsDlg));
    EXPECT_EQ(PROFILESTRGET(ini(), "debug", "breakpoints"), breakpointsUpTo(201));
}

TEST_F(DebugOptions, ErrorsThatStopAreStoredByOk) {
    PROFILESTRPUT(ini(), "debug", "StopCodes", "601");
    for (const char* button : {"pushbutton2", "pushbutton1"}) {
        load();
        EXPECT_EQ(GetCaption(in("lblerrors")), "1 error stops.");
        bool done = false;
        platform::view().setIdle([&done] {
            const Object errors("StopErrorsDlg");
            if (!IsLoaded(errors) || std::exchange(done, true)) return;
            SetText(FINDCONTROL(errors, "edtothers"), "1000");
            platform::userCommand(*platform::findControl(FINDCONTROL(errors, "pushbutton1")));
        });
        press("btnerrors");
        platform::view().setIdle({});
        EXPECT_EQ(GetCaption(in("lblerrors")), "1 error stops, and others.");
        EXPECT_EQ(PROFILESTRGET(ini(), "debug", "StopCodes"), "601");
        press(button);
    }
    EXPECT_EQ(PROFILESTRGET(ini(), "debug", "StopCodes"), "601 1000");
}

TEST_F(DebugOptions, WarnsWhileAProgramIsUnderTheDebugger) {
    load();
    EXPECT_EQ(GetCaption(in("lblwarning")), "");
    Unload(DebugOptionsDlg);
    NoteRunning(dir + "a.cls");
    load();
    EXPECT_EQ(GetCaption(in("lblwarning")),
              "Warning: Breakpoints are not accurate because the debugger is running. \n"
              "Set the breakpoints using the debugger instead.");
}

TEST_F(DebugOptions, TheTraceFileIsToldAndOpened) {
    load();
    EXPECT_EQ(GetCaption(in("lbltrace")), "(not there)");
    press("btntrace");
    EXPECT_EQ(lastText(), "The file '" + TraceFile() + "' does not exist.");
    Unload(DebugOptionsDlg);
    std::filesystem::create_directories(std::filesystem::path(TraceFile()).parent_path());
    EXPECT_TRUE(os::saveFile(TraceFile(), "12345", os::Durability::Unsynced).ok());
    load();
    EXPECT_EQ(GetCaption(in("lbltrace")), "5 byte(s)");
}

TEST_F(DebugOptions, TraceLevelsAreNumbersInTheSettings) {
    PROFILESTRPUT(ini(), "DebugOptionsDlg", "Traceprogram", "2");
    PROFILESTRPUT(ini(), "DebugOptionsDlg", "Traceide", "odd");
    load();
    EXPECT_EQ(GetListIndex(in("lsttraceprogram")), 3);
    EXPECT_EQ(GetListIndex(in("lsttraceide")), 1);
    choose("lsttraceprogram", 1);
    choose("lsttraceide", 3);
    press("pushbutton1");
    EXPECT_EQ(PROFILESTRGET(ini(), "DebugOptionsDlg", "Traceprogram"), "0");
    EXPECT_EQ(PROFILESTRGET(ini(), "DebugOptionsDlg", "Traceide"), "2");
    EXPECT_EQ(GetTraceMode(), 2) << "from now on";
}

TEST_F(DebugOptions, TheSettingsGetNoKeysBesideTheirOwn) {
    load();
    press("pushbutton1");
    for (const char* key : {"lsttraceprogram", "lsttraceide", "lstbreakpoints"})
        EXPECT_EQ(PROFILESTRGET(ini(), "DebugOptionsDlg", key), "") << key;
}

TEST_F(DebugOptions, ARuleIsShownWithItsBreakpoint) {
    PROFILESTRPUT(ini(), "debug", "Rules", "ide 20 if \"x > 3\" ;");
    load("ide 10 20");
    EXPECT_EQ(GetCaption(in("lblrule")), "");
    choose("lstbreakpoints", 2);
    EXPECT_NE(GetCaption(in("lblrule")).find("x > 3"), std::string::npos);
}

TEST_F(DebugOptions, RulesOfBreakpointsThatAreRemovedGo) {
    PROFILESTRPUT(ini(), "debug", "Rules", "ide 10 if \"x > 3\" ; ide 20 hits 5 ;");
    load("ide 10 20");
    choose("lstbreakpoints", 1);
    press("btnremove");
    press("pushbutton1");
    EXPECT_EQ(PROFILESTRGET(ini(), "debug", "Rules"), "ide 20 hits 5 ;");
}

}  // namespace
}  // namespace tarn
