// SPDX-License-Identifier: Apache-2.0
//
// Where programs stop. A program is written as its functions, each with the statements that one run of it comes to, and
// calls the run-time just as a compiled one does.
//
//     A.main@1: 2 >B.f 3      function main of class A, whose head is line 1: line 2, which calls f of class B, then line 3
//     >f*3   calls f with 3   ^  calls the same function with one less, unless that is -1: the last one has 0
//     [3 5 6 ]  three times   x  out of the loop, xx out of two   x@2  in the second time only   i@2  on to the next time
//     ?1 5 :  line 5 if the function was called with 1, else nothing, up to the colon
//     !601   sets an error    /  returns     c9  stamps line 9 with action 1     l9  with action 2     h9  with a handler
//
// A stop is told as class, line and depth: "A2/1".
#include "unit/kernel/debug/debug_fixture.h"

#include "kernel/run/errors.h"

#include <charconv>
#include <map>
#include <random>
#include <sstream>

namespace tarn {
namespace {

int handled = 0;  // errors that a handler of a program took

void handler(std::int32_t) {
    ++handled;
    ContinueAfterError();
}

int numberIn(std::string_view text) {
    int number = 0;
    std::from_chars(text.data(), text.data() + text.size(), number);
    return number;
}

struct Function {
    std::string className, name;
    int head = 0;
    std::vector<std::string> words;
};

class Program {
public:
    explicit Program(const std::vector<std::string>& functions) {
        for (const std::string& text : functions) add(text);
    }
    void run() { call(first_, 0); }

private:
    void add(const std::string& text) {
        std::istringstream words(text);
        std::string head;
        words >> head;
        const std::size_t dot = head.find('.'), at = head.find('@');
        Function function{
            head.substr(0, dot), head.substr(dot + 1, at - dot - 1), numberIn(head.substr(at + 1)), {}};
        for (std::string word; words >> word;) function.words.push_back(word);
        if (first_.empty()) first_ = function.name;
        functions_[function.name] = std::move(function);
    }

    void call(const std::string& name, int argument) {
        const Function& function = functions_.at(name);
        const Called frame(function.className.c_str(), function.name.c_str(), function.head);
        leaving_ = 0;
        std::size_t at = 0;
        runWords(function, at, argument, 1);
        leaving_ = 0;
        returning_ = false;
    }

    // Runs to the end, or to the "]" of the loop whose words these are.
    void runWords(const Function& function, std::size_t& at, int argument, int time) {
        while (at < function.words.size()) {
            const std::string& word = function.words[at++];
            if (word == "]") return;
            if (word.front() == '[')
                loop(function, at, argument, numberIn(word.substr(1)));
            else
                runWord(function, word, at, argument, time);
            if (returning_ || leaving_ > 0 || iterating_) {
                skipToEnd(function, at);
                return;
            }
        }
    }
    void loop(const Function& function, std::size_t& at, int argument, int times) {
        std::size_t end = at;
        skipToEnd(function, end);
        for (int time = 1; time <= times; ++time) {
            std::size_t here = at;
            runWords(function, here, argument, time);
            iterating_ = false;
            if (returning_) break;
            if (leaving_ > 0) {
                --leaving_;
                break;
            }
        }
        at = end;
    }
    static void skipToEnd(const Function& function, std::size_t& at) {
        for (int depth = 1; at < function.words.size() && depth > 0; ++at)
            depth += function.words[at].front() == '[' ? 1 : function.words[at] == "]" ? -1 : 0;
    }
    void runWord(const Function& function, const std::string& word, std::size_t& at, int argument, int time) {
        const std::string rest = word.substr(1);
        const std::size_t sign = rest.find_first_of("*@");
        const int number = sign == std::string::npos ? 0 : numberIn(rest.substr(sign + 1));
        const bool now = sign == std::string::npos || number == time;
        switch (word.front()) {
        case '>': return call(rest.substr(rest.find('.') + 1, sign - (rest.find('.') + 1)), number);
        case '^':
            if (argument > 0) call(function.name, argument - 1);
            return;
        case 'x':
            if (now) leaving_ = rest.starts_with('x') ? 2 : 1;
            return;
        case 'i': iterating_ = now; return;
        case '?':
            if (numberIn(rest) != argument)
                while (at < function.words.size() && function.words[at++] != ":") {}
            return;
        case ':': return;
        case '!': return SetError(numberIn(rest));
        case '/': returning_ = true; return;
        case 'c': return stampAt(numberIn(rest), ClearErrors);
        case 'l': return stampAt(numberIn(rest), LeaveErrors);
        case 'h': return stampAt(numberIn(rest), ReportErrors, handler);
        default: return stampAt(numberIn(word));
        }
    }

    std::map<std::string, Function> functions_;
    std::string first_;
    int leaving_ = 0;  // loops that are still to be left
    bool iterating_ = false, returning_ = false;
};

class Stops : public DebuggedProgram {
protected:
    // i into, o over, u out, r run, tN run to line N of the class that is shown.
    static Hand handFor(const std::string& word) {
        static const std::map<char, int> numbers = {
            {'i', DEBUG_STEP_INTO}, {'o', DEBUG_STEP_OVER}, {'u', DEBUG_STEP_OUT}, {'r', DEBUG_RUN}};
        if (word.front() == 't')
            return [line = numberIn(word.substr(1))](platform::DebugWindow& window) {
                platform::DebugSelect(window, line, true);
                command(window, DEBUG_RUN_TO);
            };
        return
            [number = numbers.at(word.front())](platform::DebugWindow& window) { command(window, number); };
    }
    static void setHands(const std::string& commands) {
        std::istringstream words(commands);
        hands().clear();
        for (std::string word; words >> word;) {
            const int times = word.front() == 't' ? 1 : std::max(numberIn(word.substr(1)), 1);
            for (int i = 0; i < times; ++i) hands().push_back(handFor(word));
        }
    }
    void begin(const std::string& breakpoints, bool step, const std::string& more = {}) {
        settings("breakpoints=" + breakpoints + "\r\nSingleStep=" + (step ? "1" : "0") + "\r\n" + more);
        start();
        std::vector<int> all;
        for (int line = 1; line <= 99; ++line) all.push_back(line);
        for (const char* name : {"A", "B", "C"}) addClass(name, 99, all);
    }
};

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
    {"out stops at a breakpoint on the way", Calls, "C 22", "S i2 u",
     "A2/1 B11/2 C21/3 C22/3 B12/2 C22/2"},
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

TEST_F(Stops, OfRandomProgramsAreThoseOfTheRules) {
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
                FunctionEnter(at.className.c_str(), "F", 50);
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

TEST_F(Stops, ARuleOfHitsPassesTheFirstOnes) {
    begin("A 4", false, "Rules=A 4 hits 3 ;\r\n");
    Program({"A.main@1: 2 [5 3 4 ] 5"}).run();
    EXPECT_EQ(stopsText(), "A4/1 A4/1 A4/1");
}

TEST_F(Stops, ARuleWithoutItsBreakpointRests) {
    begin("A 5", false, "Rules=A 4 hits 2 ; B 11 log x ;\r\n");
    Program(Loop).run();
    EXPECT_EQ(stopsText(), "A5/1");
}

TEST_F(Stops, ALogIsWrittenAndTheProgramGoesOn) {
    begin("A 4 A 5", false, "Rules=a 4 hits 2 log \"at {{4\" ;\r\n");
    ::testing::internal::CaptureStderr();
    Program(Loop).run();
    EXPECT_EQ(::testing::internal::GetCapturedStderr(), "at {4\nat {4\n");
    EXPECT_EQ(stopsText(), "A5/1");
}

TEST_F(Stops, ALogIsWrittenWhereAStepStops) {
    begin("A 3", true, "Rules=a 3 log x ;\r\n");
    setHands("i9");
    ::testing::internal::CaptureStderr();
    Program(Straight).run();
    EXPECT_EQ(::testing::internal::GetCapturedStderr(), "x\n");
    EXPECT_EQ(stopsText(), "A2/1 A3/1 A4/1");
}

TEST_F(Stops, HitsGoOnCountingWhenAnotherBreakpointIsSet) {
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

TEST_F(Stops, WithChosenErrorsTheOthersGoToTheirHandlers) {
    handled = 0;
    begin("", false, "StopCodes=601 910-920\r\n");
    Program({"A.main@1: h2 !901 h3 !601 h4 !915 h5 !643 h6"}).run();
    EXPECT_EQ(stopsText(), "A3/1 A4/1");
    EXPECT_EQ(handled, 2);
}

TEST_F(Stops, AnErrorThatNoHandlerTakesAlwaysStops) {
    begin("", false, "StopCodes=601\r\n");
    Program({"A.main@1: 2 !643 3 4"}).run();
    EXPECT_EQ(stopsText(), "A2/1");
    EXPECT_EQ(ErrorCell(), 0);
}

// ---- deep and many ----

TEST_F(Stops, FramesBeyondFiveHundredStopBySteps) {
    begin("A 11", true);
    setHands("o");
    Program({"A.main@1: 2 >A.f*501 3", "A.f@10: ^ 11"}).run();
    ASSERT_EQ(stops().size(), 501U) << "the breakpoint in the recorded frames, and the two ends of the step";
    EXPECT_EQ(stops()[1].depth, 500);
    EXPECT_EQ(stops()[500].line, 3);
}

TEST_F(Stops, TwoHundredBreakpointsOfAsManyClassesAreAllFound) {
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
