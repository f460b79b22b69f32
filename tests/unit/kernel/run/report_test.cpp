// SPDX-License-Identifier: Apache-2.0
#include "unit/kernel/runtime_fixture.h"

#include "kernel/api/api.h"
#include "kernel/run/errors.h"
#include "kernel/run/report.h"
#include "platform/windowing.h"

using namespace tarn;

namespace {

class Report : public Runtime {
protected:
    void SetUp() override {
        Runtime::SetUp();
        DebugStart(1, ProductWord, ProductVersion, ProductBuild, "");
    }
    static std::vector<std::int32_t>& handled() {
        static std::vector<std::int32_t> codes;
        return codes;
    }
    static void note(std::int32_t code) { handled().push_back(code); }
};

TEST_F(Report, AStampMovesTheLine) {
    Stamp(7, ReportErrors, nullptr);
    EXPECT_EQ(tarn_current_line, 7);
    Stamp(0, ReportErrors, nullptr);
    EXPECT_EQ(tarn_current_line, 7);
}

TEST_F(Report, AStampReportsBeforeItMovesTheLine) {
    static std::int32_t lineSeen;
    Stamp(7, ReportErrors, nullptr);
    SetError(901);
    Stamp(8, ReportErrors, [](std::int32_t) { lineSeen = tarn_current_line; });
    EXPECT_EQ(lineSeen, 7);
    EXPECT_EQ(tarn_current_line, 8);
}

TEST_F(Report, StampZeroReportsAndLeavesTheLine) {
    tarn_current_line = 44;
    SetError(901);
    handled().clear();
    Stamp(0, ReportErrors, note);
    EXPECT_EQ(handled(), std::vector<std::int32_t>{901});
    EXPECT_EQ(tarn_current_line, 44);
}

TEST_F(Report, ActionsOfAStamp) {
    constexpr struct {
        std::int32_t action;
        std::size_t reports;
        std::int32_t left;
    } rows[] = {{0, 1, 901}, {1, 0, 0}, {2, 0, 901}, {3, 0, 901}, {100, 0, 901}};
    for (const auto& row : rows) {
        handled().clear();
        ClearError();
        SetError(901);
        Stamp(5, row.action, note);
        EXPECT_EQ(handled().size(), row.reports) << row.action;
        EXPECT_EQ(ErrorCell(), row.left) << row.action;
        EXPECT_EQ(LastError(), 0);
        EXPECT_EQ(tarn_current_line, 5);
    }
}

TEST_F(Report, AnErrorLeftPendingSurfacesAtTheCallersStamp) {
    answer() = "Continue";
    FunctionEnter("caller", "WORK", 10);
    Stamp(11, ReportErrors, nullptr);
    FunctionEnter("system", "CHR", 120);
    Stamp(121, LeaveErrors, nullptr);
    SetError(983);
    Stamp(122, LeaveErrors, nullptr);
    EXPECT_TRUE(log().empty());
    FunctionLeave();
    Stamp(12, ReportErrors, nullptr);
    EXPECT_EQ(
        log(),
        (Log{"beep", "box|Error 983|Integer type conversion error\nFile caller, function work, line 11\n|"
                     "Continue\nHalt"}));
}

TEST_F(Report, DetailsWithAnEmptyStackAreTheMessageAndANewline) {
    SetError(601);
    EXPECT_EQ(ErrorDetails(), "Set reference out of bounds\n");
}

TEST_F(Report, DetailsNameThePlace) {
    FunctionEnter("filemenu", "DO_LOAD", 10);
    Stamp(15, ReportErrors, nullptr);
    SetError(651);
    EXPECT_EQ(ErrorDetails(), "Cannot read from file\nFile filemenu, function do_load, line 15\n");
}

TEST_F(Report, DetailsEndWithTheAssertText) {
    Assert(false, "n > 0");
    EXPECT_EQ(ErrorDetails(), "Assert check failed\nn > 0\n");
    ClearError();
    Assert(false);
    EXPECT_EQ(ErrorDetails(), "Assert check failed\n");
    ClearError();
    Assert(false, "kept");
    ClearError();
    SetError(601);
    EXPECT_EQ(ErrorDetails(), "Set reference out of bounds\n");
}

TEST_F(Report, DetailsHaveAtMost1024Characters) {
    FunctionEnter(std::string(40, 'c').c_str(), std::string(40, 'f').c_str(), 2000000000);
    Assert(false, std::string(255, 't'));
    // The longest details there can be are not cut; what would be longer is.
    EXPECT_EQ(ErrorDetails(), "Assert check failed\nFile " + std::string(40, 'c') + ", function " +
                                  std::string(40, 'f') + ", line 2000000000\n" + std::string(255, 't') +
                                  "\n");
    for (const std::size_t size : {0U, 1U, 1023U, 1024U})
        EXPECT_EQ(CutReport(std::string(size, 'x')), std::string(size, 'x'));
    for (const std::size_t size : {1025U, 100000U})
        EXPECT_EQ(CutReport(std::string(size, 'x')), std::string(1024, 'x'));
}

TEST_F(Report, DetailsWithoutAnErrorAreEmpty) {
    EXPECT_EQ(ErrorDetails(), "");
}

TEST_F(Report, ContinueClearsTheCellAndKeepsTheLastError) {
    answer() = "Continue";
    FunctionEnter("c", "F", 1);
    SetError(901);
    Stamp(2, ReportErrors, nullptr);
    EXPECT_EQ(ErrorCell(), 0);
    EXPECT_EQ(LastError(), 901);
    EXPECT_EQ(ErrorDetails(), "Executable file or path not found");
    Stamp(3, ReportErrors, nullptr);
    EXPECT_EQ(log().size(), 2U);
}

TEST_F(Report, ContinuableCodesOfferContinueAndHaltAndOthersOnlyOk) {
    constexpr struct {
        std::int32_t code;
        bool continuable;
    } rows[] = {{900, false}, {901, true},  {910, true}, {992, true},       {993, false},
                {5, false},   {807, false}, {-1, false}, {INT32_MAX, false}};
    for (const auto& row : rows) {
        log().clear();
        ClearError();
        SetError(row.code);
        answer() = "Continue";
        const int code = endOf([] { Stamp(1, ReportErrors, nullptr); });
        EXPECT_EQ(code, row.continuable ? -1 : 0) << row.code;
        ASSERT_GE(log().size(), 2U);
        EXPECT_EQ(log()[0], "beep");
        EXPECT_EQ(log()[1], "box|Error " + std::to_string(row.code) + "|" + ErrorMessage(row.code) +
                                (row.continuable ? "\n|Continue\nHalt" : "\n|OK"));
    }
}

TEST_F(Report, AnyOtherAnswerHalts) {
    for (const char* text : {"Halt", "", "OK", "continue", "&Continue"}) {
        log().clear();
        answer() = text;
        ClearError();
        SetError(901);
        EXPECT_EQ(endOf([] { Stamp(1, ReportErrors, nullptr); }), 0) << text;
        EXPECT_EQ(log().back(), "end 0");
    }
}

TEST_F(Report, TheRescueComesBeforeAHaltAndNotBeforeAContinue) {
    const auto rescue = [] { log().emplace_back("rescue"); };
    SetRescueHook(rescue);
    answer() = "Continue";
    SetError(901);
    Stamp(1, ReportErrors, nullptr);
    EXPECT_EQ(log(), (Log{"beep", "box|Error 901|Executable file or path not found\n|Continue\nHalt"}));

    log().clear();
    answer() = "Halt";
    SetError(901);
    EXPECT_EQ(endOf([] { Stamp(1, ReportErrors, nullptr); }), 0);
    EXPECT_EQ(log(), (Log{"beep", "box|Error 901|Executable file or path not found\n|Continue\nHalt",
                          "rescue", "close", "end 0"}));

    log().clear();
    SetRescueHook(rescue);
    ClearError();
    SetError(601);
    EXPECT_EQ(endOf([] { Stamp(1, ReportErrors, nullptr); }), 0);
    EXPECT_EQ(log(),
              (Log{"rescue", "beep", "box|Error 601|Set reference out of bounds\n|OK", "close", "end 0"}));
}

TEST_F(Report, TheRescueRunsOnce) {
    SetRescueHook([] { log().emplace_back("rescue"); });
    RescueOnce();
    RescueOnce();
    EXPECT_EQ(log(), (Log{"rescue"}));
}

TEST_F(Report, AReportNeverRaisesASecondOne) {
    const Reporting outer;
    ASSERT_TRUE(outer.entered());
    const Reporting inner;
    EXPECT_FALSE(inner.entered());
    SetError(901);
    Stamp(1, ReportErrors, nullptr);
    EXPECT_TRUE(log().empty());
    EXPECT_EQ(ErrorCell(), 901);
}

TEST_F(Report, TheErrorOfABlockedReportComesAtALaterStamp) {
    answer() = "Continue";
    {
        const Reporting outer;
        SetError(901);
        Stamp(1, ReportErrors, nullptr);
    }
    Stamp(2, ReportErrors, nullptr);
    EXPECT_EQ(log().size(), 2U);
    EXPECT_EQ(ErrorCell(), 0);
}

TEST_F(Report, AModulesOwnHandlerContinues) {
    static const auto handler = [](std::int32_t code) {
        if (code < ERR_FIRST_EXECUTABLE || code > ERR_LAST_EXECUTABLE) return DefaultErrorHandler(code);
        const Reporting report;
        if (!report.entered()) return;
        log().push_back(ErrorMessage(code) + " (error " + std::to_string(code) +
                        ").\nCannot run external program.");
        ContinueAfterError();
    };
    SetError(902);
    Stamp(1, ReportErrors, +handler);
    EXPECT_EQ(log(), (Log{"Invalid executable file format (error 902).\nCannot run external program."}));
    EXPECT_EQ(ErrorCell(), 0);
    EXPECT_EQ(LastError(), 902);
    answer() = "Continue";
    SetError(922);
    Stamp(1, ReportErrors, +handler);
    EXPECT_EQ(log().size(), 3U);
}

// A debugger that is only a window and a list of its stops.
class Debugged : public Report {
protected:
    void SetUp() override {
        Report::SetUp();
        handled().clear();
        tarn_debugger_window = &window_;
        DebugStop = [](bool force) {
            log().push_back((force ? "stop " : "look ") + std::to_string(tarn_current_line) + " " +
                            std::to_string(ErrorCell()));
        };
    }
    void TearDown() override {
        DebugStop = nullptr;
        tarn_debugger_window = nullptr;
        platform::SetUserBreak(0);
        Report::TearDown();
    }

private:
    int window_ = 0;
};

TEST_F(Debugged, EveryStampLooksBehindTheNewLine) {
    Stamp(7, ReportErrors, note);
    Stamp(8, LeaveErrors, note);
    EXPECT_EQ(log(), (Log{"look 7 0", "look 8 0"}));
    EXPECT_EQ(tarn_current_line, 8);
}

TEST_F(Debugged, AnErrorIsAForcedStopOnItsOwnLineAndThenTheLastError) {
    Stamp(7, ReportErrors, note);
    SetError(601);
    Stamp(8, ReportErrors, note);
    EXPECT_EQ(log(), (Log{"look 7 0", "stop 7 601", "look 8 0"}));
    EXPECT_TRUE(handled().empty());
    EXPECT_EQ(ErrorCell(), 0);
    EXPECT_EQ(LastError(), 601);
}

TEST_F(Debugged, ErrorsAreClearedAndLeftAsWithoutADebugger) {
    SetError(901);
    Stamp(5, LeaveErrors, note);
    EXPECT_EQ(ErrorCell(), 901);
    Stamp(6, ClearErrors, note);
    EXPECT_EQ(ErrorCell(), 0);
    EXPECT_EQ(LastError(), 0);
    EXPECT_EQ(log(), (Log{"look 5 901", "look 6 0"}));
}

TEST_F(Debugged, TheUsersBreakStopsOnce) {
    platform::SetUserBreak(1);
    Stamp(7, ReportErrors, note);
    EXPECT_EQ(platform::GetUserBreak(), 0);
    Stamp(8, ReportErrors, note);
    EXPECT_EQ(log(), (Log{"stop 7 0", "look 8 0"}));
}

TEST_F(Debugged, StampZeroOnlyReports) {
    platform::SetUserBreak(1);
    Stamp(0, ReportErrors, note);
    EXPECT_TRUE(log().empty());
    EXPECT_EQ(platform::GetUserBreak(), 1);
    SetError(601);
    Stamp(0, ReportErrors, note);
    EXPECT_EQ(log(), (Log{"stop 0 601"}));
}

TEST_F(Debugged, AWindowWithoutADebuggerBehindItReportsInABox) {
    DebugStop = nullptr;
    SetError(601);
    Stamp(4, ReportErrors, note);
    EXPECT_EQ(handled(), std::vector<std::int32_t>{601});
    EXPECT_EQ(tarn_current_line, 4);
}

// A handler of compiled code, which fails with each of `troubles` in turn.
class CompiledHandler : public Report {
protected:
    static std::vector<std::int32_t>& troubles() {
        static std::vector<std::int32_t> codes;
        return codes;
    }
    static void handler(std::int32_t code) {
        if (tarn_report_begin() == 0) return;
        log().push_back("handler " + std::to_string(code) + " " + ErrorDetails());
        tarn_enter("c", "onerror", 20);
        for (const std::int32_t trouble : troubles()) {
            SetError(trouble);
            tarn_stamp(21, 0, handler);
        }
        tarn_leave();
        tarn_report_end();
    }
    void TearDown() override {
        troubles().clear();
        Report::TearDown();
    }
};

TEST_F(CompiledHandler, SeesTheErrorAsTheLastOne) {
    tarn_enter("c", "F", 9);
    SetError(905);
    tarn_stamp(10, 0, handler);
    tarn_leave();
    EXPECT_EQ(log(), (Log{"handler 905 File loaded but won't run\nFile c, function f, line 9\n"}));
    EXPECT_EQ(ErrorCell(), 0);
    EXPECT_EQ(LastError(), 905);
    EXPECT_EQ(ErrorDetails(), ErrorMessage(905)) << "behind the handler the text alone is left";
}

TEST_F(CompiledHandler, ThatFailsIsReportedWithItsPlaceAndCallsNoHandler) {
    answer() = "Continue";
    troubles() = {983, 984};
    tarn_enter("c", "F", 9);
    SetError(905);
    tarn_stamp(10, 0, handler);
    tarn_leave();
    ASSERT_EQ(log().size(), 5U);
    EXPECT_EQ(log()[2].substr(0, 13), "box|Error 983");
    EXPECT_NE(log()[2].find("File c, function onerror, line 20\n"), std::string::npos) << log()[2];
    EXPECT_EQ(log()[4].substr(0, 13), "box|Error 984");
    EXPECT_EQ(LastError(), 984);
    EXPECT_EQ(ErrorCell(), 0);
}

TEST_F(CompiledHandler, IsCalledAgainForTheNextError) {
    answer() = "Continue";
    troubles() = {983};
    for (int time = 0; time < 2; ++time) {
        SetError(905);
        tarn_stamp(10, 0, handler);
    }
    EXPECT_EQ(log().size(), 6U);
    EXPECT_EQ(log()[3].substr(0, 11), "handler 905");
}

TEST_F(CompiledHandler, IsNotCalledWhileAReportIsShown) {
    const Reporting outer;
    SetError(905);
    tarn_stamp(1, 0, handler);
    EXPECT_TRUE(log().empty());
    EXPECT_EQ(ErrorCell(), 905);
}

TEST_F(CompiledHandler, MayForgetTheErrorThatItHandles) {
    SetError(905);
    ASSERT_EQ(tarn_report_begin(), 1);
    tarn_clear_error();
    EXPECT_EQ(ErrorDetails(), "");
    tarn_report_end();
    EXPECT_EQ(LastError(), 0);
}

TEST_F(Report, TheCInterfaceReportsTheSameWay) {
    answer() = "Continue";
    tarn_enter("c", "F", 9);
    tarn_set_error(905);
    tarn_stamp(10, 0, tarn_default_onerror);
    tarn_leave();
    EXPECT_EQ(log(), (Log{"beep", "box|Error 905|File loaded but won't run\nFile c, function f, line 9\n|"
                                  "Continue\nHalt"}));
}

}  // namespace
