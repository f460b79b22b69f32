// SPDX-License-Identifier: Apache-2.0
//
// The debugger at a terminal: what is typed reaches the handler, and what the window would show is written.
#include "platform/model/debugger/debugwindow.h"

#include "platform/windowing.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <memory>
#include <string>
#include <unistd.h>
#include <utility>
#include <vector>

namespace tarn::platform {
namespace {

// Puts another file in the place of a standard one for a while.
class Redirected {
public:
    Redirected(int standard, int file) : standard_(standard), former_(::dup(standard)) {
        ::dup2(file, standard);
    }
    ~Redirected() {
        ::dup2(former_, standard_);
        ::close(former_);
    }
    Redirected(const Redirected&) = delete;
    Redirected& operator=(const Redirected&) = delete;

private:
    int standard_, former_;
};

class TerminalTest : public ::testing::Test {
protected:
    std::unique_ptr<View> before = useView(makeHeadlessView());
    DebugWindow* window = nullptr;
    std::vector<std::string> done;
    std::function<void(const DebugEvent&)> act;

    void SetUp() override {
        window = StartDebug(
            Object(), "Integrated Debugger", "", "",
            [this](DebugWindow&, const DebugEvent& event) {
                constexpr const char* names[] = {"command", "double click", "help", "edit", "hover", "close"};
                done.push_back(names[static_cast<int>(event.message)] + (" " + std::to_string(event.number)));
                if (act) act(event);
                if (event.message == DebugMessage::Command && event.number <= 104) LeaveDebug(*window);
            },
            {});
        SetDebugStatus(*window, "File a, function MAIN, line 2");
        DebugAddstrings(*window, "one\ntwo\nthree\n");
    }
    void TearDown() override {
        EndDebug(debugWindow());
        useView(std::move(before));
    }
    // Stops with these lines typed; what was written.
    std::string typed(const std::string& lines) {
        int ends[2];
        EXPECT_EQ(::pipe(ends), 0);
        EXPECT_EQ(::write(ends[1], lines.data(), lines.size()), static_cast<ssize_t>(lines.size()));
        ::close(ends[1]);
        std::FILE* const output = std::tmpfile();
        {
            const Redirected in(STDIN_FILENO, ends[0]), out(STDERR_FILENO, ::fileno(output));
            ActivateDebug(*window);
            left = std::string(4096, '\0');
            left.resize(static_cast<std::size_t>(std::max<ssize_t>(::read(0, left.data(), left.size()), 0)));
        }
        ::close(ends[0]);
        std::rewind(output);
        std::string text;
        for (int c = std::fgetc(output); c != EOF; c = std::fgetc(output)) text += static_cast<char>(c);
        std::fclose(output);
        return text;
    }
    std::string left;  // of the input
};

using Done = std::vector<std::string>;

int numberOf(const std::string& word) {
    for (const DebugCommand& command : debugCommands)
        if (word == command.word) return command.number;
    return 0;
}

bool has(const std::string& text, const std::string& part) {
    return text.find(part) != std::string::npos;
}

TEST_F(TerminalTest, AStopShowsTheStatusAndTheLinesWithTheirMarks) {
    SetDebugFlags(*window, 1, DEBUG_BREAKPOINT);
    SetDebugFlags(*window, 2, DEBUG_CURRENT | DEBUG_RULE | DEBUG_BREAKPOINT | DEBUG_CHANGED);
    SetDebugMarker(*window, 2, DebugMarker::Collapse);
    SetDebugMarker(*window, 3, DebugMarker::Expand);
    DebugSelect(*window, 2, true);
    EXPECT_EQ(typed("run\n"), "Integrated Debugger: File a, function MAIN, line 2\n"
                              "  *      1  one\n"
                              ">=?!-    2  two\n"
                              "    +    3  three\n"
                              "debug> ");
    EXPECT_EQ(done, (Done{"command 102"}));
}

TEST_F(TerminalTest, EachCommandIsGivenByItsWord) {
    std::string lines;
    Done wanted;
    for (const DebugCommand& command : debugCommands) {
        if (command.number <= 104) continue;  // those end the stop
        lines += std::string(command.word) + "\n";
        wanted.push_back("command " + std::to_string(command.number));
    }
    for (const char* word : {"stop", "run", "into", "step"}) {
        done.clear();
        typed(lines + word + "\n");
        Done all = wanted;
        all.push_back("command " + std::to_string(numberOf(word)));
        EXPECT_EQ(done, all);
    }
}

TEST_F(TerminalTest, ABeginningThatOnlyOneWordHasWillDo) {
    const std::string text = typed("va\n  ST  \nsta\nnothing\n\nST?\nstep\n");
    EXPECT_EQ(done, (Done{"command 107", "command 106", "command 104"}));
    EXPECT_TRUE(has(text, "That may be stop, step, stack.\n")) << text;
    EXPECT_TRUE(has(text, "There is no \"nothing\"; ? shows the words.\n")) << text;
}

TEST_F(TerminalTest, ANumberSelectsALine) {
    std::string text = typed("3\nopen\nline 2\nedit\nbreak 1\n9\nbreak 9\nline\nr\n");
    EXPECT_EQ(done, (Done{"double click 3", "edit 2", "command 105", "command 102"}));
    EXPECT_EQ(DebugSelected(*window), 1);
    EXPECT_TRUE(has(text, "There is no such line.\n"));
    DebugSelect(*window, 0, false);
    text = typed("open\nr\n");
    EXPECT_TRUE(has(text, "No line is selected.\n"));
}

TEST_F(TerminalTest, ANumberBehindOpenAndEditIsTheLine) {
    DebugSelect(*window, 1, true);
    const std::string text = typed("open 3\nedit 2\nopen 99\nedit 0\nr\n");
    EXPECT_EQ(done, (Done{"double click 3", "edit 2", "edit 2", "command 102"}));
    EXPECT_TRUE(has(text, "There is no such line.\n")) << text;
}

TEST_F(TerminalTest, ALongListIsShownInPieces) {
    std::string lines;
    for (int line = 1; line <= 8000; ++line) lines += "text " + std::to_string(line) + "\n";
    DebugAddstrings(*window, lines);
    DebugSelect(*window, 4000, true);
    const std::string text = typed("list 100\nlist\nlist 7995\nlist\nr\n");
    EXPECT_FALSE(has(text, "text 3994\n"));
    EXPECT_TRUE(has(text, "text 3995\n"));
    EXPECT_TRUE(has(text, "text 4005\n"));
    EXPECT_FALSE(has(text, "text 4006\n"));
    EXPECT_TRUE(has(text, "text 100\n"));
    EXPECT_TRUE(has(text, "text 139\n"));
    EXPECT_FALSE(has(text, "text 140\n"));
    EXPECT_TRUE(has(text, "text 8000\n"));
}

TEST_F(TerminalTest, OfALongListWithoutASelectionThereIsAPageAndHowMuchFollows) {
    act = [this](const DebugEvent& event) {
        std::string lines;
        for (int line = 1; line <= event.number - 80; ++line) lines += "text " + std::to_string(line) + "\n";
        DebugAddstrings(*window, lines);
    };
    std::string text = typed("values\nlist\nr\n");  // 27 lines
    EXPECT_TRUE(has(text, "text 20\n(7 more lines: list shows the next ones.)\ndebug> ")) << text;
    EXPECT_EQ(text.find("text 21\n"), text.find("debug> ", text.find("more lines")) + 7 + 12) << text;
    EXPECT_TRUE(has(text, "text 27\ndebug> ")) << text;
    act = [this](const DebugEvent&) { DebugAddstrings(*window, std::string(21, '\n')); };
    EXPECT_TRUE(has(typed("values\nr\n"), "(1 more line: list shows it.)\n"));
    DebugAddstrings(*window, "one");
    act = [this](const DebugEvent&) { DebugAddstrings(*window, std::string(20, '\n')); };
    EXPECT_FALSE(has(typed("values\nr\n"), "more line"));
}

TEST_F(TerminalTest, TheWordsAreTold) {
    const std::string text = typed("?\nr\n");
    for (const DebugCommand& command : debugCommands) EXPECT_TRUE(has(text, command.title)) << command.word;
    EXPECT_TRUE(has(text, "open      ")) << text;
}

TEST_F(TerminalTest, TheEndOfTheInputRunsOn) {
    typed("");
    EXPECT_TRUE(done.empty());
    EXPECT_FALSE(window->stopped);
    typed("stack");  // without an end of its line
    EXPECT_EQ(done, (Done{"command 106"}));
    EXPECT_FALSE(window->stopped);
}

TEST_F(TerminalTest, WithoutATerminalNobodyIsAskedAndNothingIsWritten) {
    const int nothing = ::open("/dev/null", O_RDONLY);
    std::FILE* const output = std::tmpfile();
    {
        const Redirected in(STDIN_FILENO, nothing), out(STDERR_FILENO, ::fileno(output));
        ActivateDebug(*window);
    }
    EXPECT_EQ(std::fseek(output, 0, SEEK_END), 0);
    EXPECT_EQ(std::ftell(output), 0);
    std::fclose(output);
    ::close(nothing);
}

TEST_F(TerminalTest, TheLinesBehindThoseOfTheStopAreTheProgramsOwn) {
    typed("step\nan answer for the program\n");
    EXPECT_EQ(left, "an answer for the program\n");
}

TEST_F(TerminalTest, ABoxIsAskedThere) {
    std::string answer;
    act = [&](const DebugEvent& event) {
        if (event.number == 105) answer = MsgBox("Title", "Really?", "&Yes\n&No\nNever");
        if (event.number == 106) answer = InputBox("Title", "A name:", "first");
        if (event.number == 107) answer = ListBox("Title", "Which?", "red\ngreen");
        if (event.number == 108) answer = MsgBox("Title", "Told.", "OK");
    };
    const struct {
        const char *lines, *answer, *written;
    } cases[] = {
        {"break\nYes\nr\n", "&Yes", "Title: Really?\n[Yes/No/Never] "},
        {"break\ny\nr\n", "&Yes", ""},
        {"break\nn\nr\n", "", ""},
        {"break\nno\nr\n", "&No", ""},
        {"break\nnev\nr\n", "Never", ""},
        {"break\nwhat\nr\n", "", ""},
        {"break", "", ""},
        {"stack\na name \nr\n", "a name ", "Title: A name:\n> "},
        {"stack\n\nr\n", "", ""},
        {"values\ngr\nr\n", "green", "Title: Which?\n  red\n  green\n> "},
        {"code\nr\n", "OK", "Title: Told.\n"},
    };
    for (const auto& one : cases) {
        answer = "none";
        const std::string text = typed(one.lines);
        EXPECT_EQ(answer, one.answer) << one.lines;
        EXPECT_TRUE(has(text, one.written)) << text;
    }
}

// In a process of its own, which the key may end.
TEST_F(TerminalTest, TheInterruptKeyBreaksIntoTheProgramAndThenEndsIt) {
    EndDebug(window);
    int ends[2];
    ASSERT_EQ(::pipe(ends), 0);
    const Redirected in(STDIN_FILENO, ends[0]);
    const auto debugged = [] {
        std::signal(SIGINT, SIG_DFL);
        StartDebug(Object(), "", "", "", {}, {});
        static_cast<void>(std::raise(SIGINT));
    };
    EXPECT_EXIT((debugged(), std::_Exit(GetUserBreak() == 1 ? 7 : 8)), ::testing::ExitedWithCode(7), "");
    EXPECT_EXIT((debugged(), std::raise(SIGINT), std::_Exit(8)), ::testing::KilledBySignal(SIGINT), "");
    EXPECT_EXIT((debugged(), EndDebug(debugWindow()), std::raise(SIGINT), std::_Exit(8)),
                ::testing::KilledBySignal(SIGINT), "");
    ::close(ends[0]);
    ::close(ends[1]);
}

TEST_F(TerminalTest, AVeryLongLineIsCut) {
    const std::string text = typed(std::string(60000, 'x') + "\nr\n");
    EXPECT_TRUE(has(text, "There is no \"xxx"));
    EXPECT_LT(text.size(), 5000U);
    EXPECT_EQ(done, (Done{"command 102"}));
}

}  // namespace
}  // namespace tarn::platform
