// SPDX-License-Identifier: Apache-2.0
//
// Where programs stop. written_program.h tells how they are written. A stop is told as class, line and depth: "A2/1".
#include "unit/kernel/debug/written_program.h"

namespace tarn {
namespace {

class Stops : public WrittenProgram {};

struct Row {
    const char* what;
    std::vector<std::string> program;
    const char *breakpoints, *commands;  // "S" ahead of the commands: the program starts with a step
    const char* stops;
};

const std::vector<std::string> Straight = {"A.main@1: 2 3 4"};
const std::vector<std::string> Calls = {"A.main@1: 2 >B.f 3 >C.g 4", "B.f@10: 11 >C.g 12", "C.g@20: 21 22"};
const std::vector<std::string> Recursion = {"A.main@1: 2 >A.f*3 3", "A.f@10: 11 ^ 12"};
const std::vector<std::string> Loop = {"A.main@1: 2 [3 3 4 ] 5"};
const std::vector<std::string> CallLoop = {"A.main@1: 2 [3 3 >B.f ] 4", "B.f@10: 11"};
const std::vector<std::string> Nested = {"A.main@1: 2 [3 3 [3 4 5 xx@2 6 ] 7 ] 8"};
const std::vector<std::string> Choice = {"A.main@1: 2 >A.f*1 3 >A.f*2 4 >A.f*9 5",
                                         "A.f@10: 11 ?1 12 : ?2 13 14 : ?9 13 15 16 : 17"};
const std::vector<std::string> Errors = {"A.main@1: 2 >B.f 3 4", "B.f@10: 11 !601 12 13"};
const std::vector<std::string> Handled = {"A.main@1: h2 !901 h3 h4"};
const std::vector<std::string> Starts = {"A.initialise@1: 1 >B.begin >C.begins >A.main", "B.begin@1: 5",
                                         "C.begins@1: 6 7", "A.main@30: 31 32"};
const std::vector<std::string> Events = {"A.loop@1: 2 >B.click >B.click 3", "B.click@10: 11 >C.work 12",
                                         "C.work@20: 21"};

const Row rows[] = {
    // ---- nothing asked ----
    {"runs through", Straight, "", "", ""},
    {"runs through calls", Calls, "", "", ""},
    // ---- the first step ----
    {"stops at the first line", Straight, "", "S", "A2/1"},
    {"stops in the first initialiser", Starts, "", "S", "A1/1"},
    {"into every line", Straight, "", "S i9", "A2/1 A3/1 A4/1"},
    {"into every line of calls", Calls, "", "S i20", "A2/1 B11/2 C21/3 C22/3 B12/2 A3/1 C21/2 C22/2 A4/1"},
    {"into every line of initialisers", Starts, "", "S i20", "A1/1 B5/2 C6/2 C7/2 A31/2 A32/2"},
    {"into recursion", Recursion, "", "S i20", "A2/1 A11/2 A11/3 A11/4 A11/5 A12/5 A12/4 A12/3 A12/2 A3/1"},
    {"into a loop", Loop, "", "S i20", "A2/1 A3/1 A4/1 A3/1 A4/1 A3/1 A4/1 A5/1"},
    {"into a loop of calls", CallLoop, "", "S i20", "A2/1 A3/1 B11/2 A3/1 B11/2 A3/1 B11/2 A4/1"},
    {"into the arms of a choice", Choice, "", "S i30",
     "A2/1 A11/2 A12/2 A17/2 A3/1 A11/2 A13/2 A14/2 A17/2 A4/1 A11/2 A13/2 A15/2 A16/2 A17/2 A5/1"},
    {"into nested loops that are left together", Nested, "", "S i20",
     "A2/1 A3/1 A4/1 A5/1 A6/1 A4/1 A5/1 A8/1"},
    {"into functions that a loop of events calls", Events, "", "S i20",
     "A2/1 B11/2 C21/3 B12/2 B11/2 C21/3 B12/2 A3/1"},
    // ---- over ----
    {"over lines without calls is into", Straight, "", "S o9", "A2/1 A3/1 A4/1"},
    {"over calls", Calls, "", "S o9", "A2/1 A3/1 A4/1"},
    {"into one call, over the next", Calls, "", "S i o9", "A2/1 B11/2 B12/2 A3/1 A4/1"},
    {"over recursion", Recursion, "", "S o9", "A2/1 A3/1"},
    {"over the rest of a recursion", Recursion, "", "S i2 o9", "A2/1 A11/2 A11/3 A12/3 A12/2 A3/1"},
    {"over a loop's lines", Loop, "", "S o9", "A2/1 A3/1 A4/1 A3/1 A4/1 A3/1 A4/1 A5/1"},
    {"over calls in a loop", CallLoop, "", "S o9", "A2/1 A3/1 A3/1 A3/1 A4/1"},
    {"over the last line of a function goes to the caller", Calls, "", "S i o1 o1 o",
     "A2/1 B11/2 B12/2 A3/1 A4/1"},
    {"over initialisers", Starts, "", "S o9", "A1/1"},
    {"over events", Events, "", "S o9", "A2/1 A3/1"},
    {"over inside of an event stops in the next one", Events, "", "S i o9",
     "A2/1 B11/2 B12/2 B11/2 B12/2 A3/1"},
    {"at depth 3 no deeper line stops, the first one back at 3 does",
     {"A.main@1: 2 >A.f 3", "A.f@5: 6 >A.g 7", "A.g@10: 11 >A.h 12", "A.h@20: 21 22 23"},
     "",
     "S i2 o",
     "A2/1 A6/2 A11/3 A12/3"},
    {"over, out of the function, at the first line above",
     {"A.main@1: 2 >A.f 3", "A.f@5: 6 >A.g", "A.g@10: 11"},
     "",
     "S i2 o",
     "A2/1 A6/2 A11/3 A3/1"},
    // ---- out ----
    {"out of a function", Calls, "", "S i u", "A2/1 B11/2 A3/1"},
    {"out of two functions", Calls, "", "S i2 u u", "A2/1 B11/2 C21/3 B12/2 A3/1"},
    {"out of recursion, one by one", Recursion, "", "S i3 u9", "A2/1 A11/2 A11/3 A11/4 A12/3 A12/2 A3/1"},
    {"out of the bottom runs on", Straight, "", "S u", "A2/1"},
    {"out of a function in a loop", CallLoop, "", "S i2 u", "A2/1 A3/1 B11/2 A3/1"},
    {"out of an event", Events, "", "S i u", "A2/1 B11/2 A3/1"},
    {"out passes the loop of the function",
     {"A.main@1: 2 >B.f 3", "B.f@10: 11 [5 12 ] 13"},
     "",
     "S i u",
     "A2/1 B11/2 A3/1"},
    {"out stops at a breakpoint on the way", Calls, "C 22", "S i2 u", "A2/1 B11/2 C21/3 C22/3 B12/2 C22/2"},
    // ---- breakpoints ----
    {"at a line", Straight, "A 3", "", "A3/1"},
    {"at the first and the last line", Straight, "A 2 4", "", "A2/1 A4/1"},
    {"at a line that is not reached", Straight, "A 9", "", ""},
    {"at the head of a function, which is no statement", Straight, "A 1", "", ""},
    {"in another class", Calls, "B 12", "", "B12/2"},
    {"in a class that is called from two places", Calls, "C 21", "", "C21/3 C21/2"},
    {"of a line in the right class only", Calls, "A 21 B 21", "", ""},
    {"each time in a loop", Loop, "A 4", "", "A4/1 A4/1 A4/1"},
    {"at the head of a loop", Loop, "A 3", "", "A3/1 A3/1 A3/1"},
    {"at every depth of a recursion", Recursion, "A 11", "", "A11/2 A11/3 A11/4 A11/5"},
    {"on the way back of a recursion", Recursion, "A 12", "", "A12/5 A12/4 A12/3 A12/2"},
    {"in an arm of a choice", Choice, "A 14", "", "A14/2"},
    {"in the arm of another case", Choice, "A 16 12", "", "A12/2 A16/2"},
    {"behind a choice", Choice, "A 17", "", "A17/2 A17/2 A17/2"},
    {"behind nested loops", Nested, "A 8", "", "A8/1"},
    {"in a line that an exit passes", Nested, "A 6 7", "", "A6/1"},
    {"in an initialiser", Starts, "C 7", "", "C7/2"},
    {"in main behind the initialisers", Starts, "A 31", "", "A31/2"},
    {"in an event", Events, "B 12", "", "B12/2 B12/2"},
    {"names in another case", Calls, "c 22", "", "C22/3 C22/2"},
    {"two of one class and one of another", Calls, "C 22 A 3 4", "", "C22/3 A3/1 C22/2 A4/1"},
    {"run from one to the next", Calls, "A 2 B 12 A 4", "r9", "A2/1 B12/2 A4/1"},
    {"a step from a breakpoint", Calls, "B 11", "i", "B11/2 C21/3"},
    {"over from a breakpoint", Calls, "B 11", "o2", "B11/2 B12/2 A3/1"},
    {"over stops at a breakpoint in the call", Calls, "C 22", "S o", "A2/1 C22/3 A3/1 C22/2"},
    {"a step and a breakpoint at one line are one stop", Straight, "A 3", "S i2", "A2/1 A3/1 A4/1"},
    {"in a function that returns early",
     {"A.main@1: 2 >A.f*1 3 >A.f*2 4", "A.f@10: 11 ?1 12 / : 13"},
     "A 12 13",
     "",
     "A12/2 A13/2"},
    {"behind an iterate", {"A.main@1: 2 [3 3 i@2 4 ] 5"}, "A 4", "", "A4/1 A4/1"},
    {"above line 8000", {"A.main@1: 9000 9001"}, "A 9001", "", "A9001/1"},
    {"at line 1", {"A.main@1: 1 2"}, "A 1", "", "A1/1"},
    // ---- run to a line ----
    {"to a line", Straight, "", "S t4", "A2/1 A4/1"},
    {"to a line, once", Loop, "", "S t4 r", "A2/1 A4/1"},
    {"to a line in a deeper call", Recursion, "", "S t12", "A2/1 A12/5"},
    {"to a line, but a breakpoint comes first", Straight, "A 3", "S t4 r", "A2/1 A3/1"},
    {"to a line that is not reached", Straight, "", "S t50", "A2/1"},
    {"to a line of another class is one of the class shown", Calls, "B 11", "t12 r", "B11/2 B12/2"},
    // ---- errors ----
    {"an error stops at the line that set it", Errors, "", "", "B11/2"},
    {"a step from an error", Errors, "", "i9", "B11/2 B12/2 B13/2 A3/1 A4/1"},
    {"an error and a breakpoint at the next line", Errors, "B 12", "", "B11/2 B12/2"},
    {"an error in a call that is stepped over", Errors, "", "S o r", "A2/1 B11/2 A3/1"},
    {"an error at the end of a function stops in the caller",
     {"A.main@1: 2 >B.f 3", "B.f@10: 11 !601"},
     "",
     "",
     "A2/1"},
    {"an error of a function that returned stops at the line of the call",
     {"A.main@1: 2 >B.f 3 4", "B.f@10: 11 !601 /"},
     "",
     "i",
     "A2/1 A3/1"},
    {"an error that a stamp clears", {"A.main@1: 2 !601 c3 4"}, "", "", ""},
    {"an error that a stamp leaves for a later one", {"A.main@1: 2 !601 l3 l4 5"}, "", "", "A4/1"},
    {"a breakpoint where an error is left", {"A.main@1: 2 !601 l3 l4 5"}, "A 3", "", "A3/1 A4/1"},
    {"an error does not reach its handler", Handled, "", "", "A2/1"},
    {"two errors one after the other", {"A.main@1: 2 !601 3 !643 4 5"}, "", "", "A2/1 A3/1"},
    {"an error in a loop", {"A.main@1: 2 [2 3 !601 4 ] 5"}, "", "", "A3/1 A3/1"},
    {"an error in recursion",
     {"A.main@1: 2 >A.f*2 3", "A.f@10: 11 ^ ?0 !601 : 12"},
     "",
     "o2",
     "A11/4 A12/4 A12/3"},
    {"an error that a stamp of line 0 reports", {"A.main@1: 2 !601 0 3"}, "", "", "A2/1"},
    // ---- lines that are none ----
    {"line 0 does not stop", {"A.main@1: 0 2 0 3"}, "A 0", "S i9", "A2/1 A3/1"},
    {"line 0 does not end a step over", {"A.main@1: 2 >B.f 0 3", "B.f@10: 11"}, "", "S o", "A2/1 A3/1"},
};

TEST_F(Stops, AreWhereTheyMustBe) {
    int number = 0;
    for (const Row& row : rows) {
        SCOPED_TRACE(std::to_string(++number) + ": " + row.what);
        std::string commands = row.commands;
        const bool step = commands.starts_with('S');
        begin(row.breakpoints, step);
        setHands(commands.substr(step ? 1 : 0));
        Program(row.program).run();
        EXPECT_EQ(stopsText(), row.stops);
        EXPECT_EQ(FrameCount(), 0);
        DebugEnd();
        ClearError();
        stops().clear();
    }
    EXPECT_GE(std::size(rows), 80U);
}

}  // namespace
}  // namespace tarn
