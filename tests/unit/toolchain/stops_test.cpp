// SPDX-License-Identifier: Apache-2.0
//
// Where compiled programs stop: class text, the commands that are given at the terminal, and the list of stops as class,
// line and depth. Each class is written with its line numbers counted from the text's first line.
#include "support/toolchain_folder.h"

#include <regex>
#include <sstream>
#include <string>
#include <vector>

namespace tarn::toolchain {
namespace {

struct Row {
    const char* what;
    const char*
        classes;  // "main" alone, or two, parted by a line "----"; the second is class Part in part.cls
    const char* breakpoints;  // "S" ahead: the program starts with a step
    const char* commands;     // words of the terminal; behind the last one the program runs on
    const char* stops;
};

// The number of the line is the first thing on it, for the reader; it is taken out.
const char Sums[] = "1  Tarnwick Class Main\n"
                    "2  private var total : integer := 3\n"
                    "3  function add(a : integer) return integer\n"
                    "4      var i : integer\n"
                    "5      for i from 1 to a loop\n"
                    "6          total := total + i\n"
                    "7      end loop\n"
                    "8      return total\n"
                    "9  end function\n"
                    "10 function main()\n"
                    "11     total := 0\n"
                    "12     total := add(2)\n"
                    "13     total := add(1)\n"
                    "14 end function\n"
                    "15 End class\n";

const char Factorial[] = "1  Tarnwick Class Main\n"
                         "2  function f(n : integer) return integer\n"
                         "3      if n <= 1 then\n"
                         "4          return 1\n"
                         "5      end if\n"
                         "6      return n * f(n - 1)\n"
                         "7  end function\n"
                         "8  function main()\n"
                         "9      var x : integer\n"
                         "10     x := f(3)\n"
                         "11     x := 0\n"
                         "12 end function\n"
                         "13 End class\n";

const char Choices[] = "1  Tarnwick Class Main\n"
                       "2  function f(n : integer)\n"
                       "3      var s : integer\n"
                       "4      if n = 1 then\n"
                       "5          s := 1\n"
                       "6      elseif n = 2 then\n"
                       "7          s := 2\n"
                       "8      elseif n = 3 then\n"
                       "9          s := 3\n"
                       "10     else\n"
                       "11         s := 4\n"
                       "12     end if\n"
                       "13     select s\n"
                       "14     case 1 =>\n"
                       "15         s := 10\n"
                       "16     case 2, 3 =>\n"
                       "17         s := 20\n"
                       "18     else\n"
                       "19         s := 30\n"
                       "20     end select\n"
                       "21     s := 0\n"
                       "22 end function\n"
                       "23 function main()\n"
                       "24     f(1)\n"
                       "25     f(3)\n"
                       "26     f(9)\n"
                       "27 end function\n"
                       "28 End class\n";

const char Loops[] = "1  Tarnwick Class Main\n"
                     "2  function main()\n"
                     "3      var i, j : integer\n"
                     "4      while i < 2 loop\n"
                     "5          i := i + 1\n"
                     "6          loop\n"
                     "7              j := j + 1\n"
                     "8              exit when j > 1\n"
                     "9              iterate when j = 1\n"
                     "10             j := 99\n"
                     "11         end loop\n"
                     "12     end loop\n"
                     "13     i := 0\n"
                     "14 end function\n"
                     "15 End class\n";

const char Errors[] = "1  Tarnwick Class Main\n"
                      "2  private var told : integer\n"
                      "3  function half(n : integer) return integer\n"
                      "4      var x : integer\n"
                      "5      x := 10 div n\n"
                      "6      return x\n"
                      "7  end function\n"
                      "8  function onerror(number : integer)\n"
                      "9      told := number\n"
                      "10 end function\n"
                      "11 function main()\n"
                      "12     var x : integer\n"
                      "13     x := half(0)\n"
                      "14     x := half(5)\n"
                      "15     PRINT(\"told \" + STR(told))\n"
                      "16 end function\n"
                      "17 End class\n";

const char TwoClasses[] = "1  Tarnwick Class Main\n"
                          "2  Uses part\n"
                          "3  private var here : integer := 1\n"
                          "4  function main()\n"
                          "5      here := COUNTED(2)\n"
                          "6      here := 0\n"
                          "7  end function\n"
                          "8  End class\n"
                          "----\n"
                          "1  Tarnwick Class Part\n"
                          "2  private var there : integer := 2\n"
                          "3  public function COUNTED(n : integer) return integer\n"
                          "4      there := there + n\n"
                          "5      return there\n"
                          "6  end function\n"
                          "7  End class\n";

const char Library[] = "1  Tarnwick Class Main\n"
                       "2  function main()\n"
                       "3      var s : string\n"
                       "4      SAVEFILE(\"out\", \"text\")\n"
                       "5      LOADFILE(\"out\", s)\n"
                       "6      PRINT(STRUPPER(s))\n"
                       "7  end function\n"
                       "8  End class\n";

const char Endless[] = "1  Tarnwick Class Main\n"
                       "2  function deep(n : integer) return integer\n"
                       "3      return deep(n + 1) + 1\n"
                       "4  end function\n"
                       "5  function main()\n"
                       "6      PRINT(STR(deep(1)))\n"
                       "7  end function\n"
                       "8  End class\n";

const Row rows[] = {
    {"what the library does is one statement", Library, "S", "into*9", "Main4/1 Main5/1 Main6/1"},
    {"every line", Sums, "S", "into*40",
     "Main2/1 Main11/1 Main12/1 Main5/2 Main6/2 Main5/2 Main6/2 Main5/2 Main8/2 Main13/1 Main5/2 Main6/2 "
     "Main5/2 Main8/2"},
    {"over calls", Sums, "S", "step*40", "Main2/1 Main11/1 Main12/1 Main13/1"},
    {"out of a call", Sums, "S main 6", "run out run", "Main2/1 Main6/2 Main6/2 Main13/1 Main6/2"},
    {"a breakpoint each time", Sums, "main 6", "", "Main6/2 Main6/2 Main6/2"},
    {"a breakpoint at an initial value", Sums, "main 2", "", "Main2/1"},
    {"breakpoints where there is no code go", Sums, "main 3 4 7 9 10 15 13", "", "Main13/1"},
    {"to a line", Sums, "S", "until:13 run", "Main2/1 Main13/1"},
    {"to a line without code", Sums, "S", "until:9 run", "Main2/1 Main11/1"},
    {"recursion", Factorial, "S", "into*40",
     "Main10/1 Main3/2 Main6/2 Main3/3 Main6/3 Main3/4 Main4/4 Main11/1"},
    {"over in recursion", Factorial, "S", "into step*40", "Main10/1 Main3/2 Main6/2 Main11/1"},
    {"a breakpoint in recursion", Factorial, "main 6", "", "Main6/2 Main6/3"},
    {"out of recursion", Factorial, "main 4", "out*9", "Main4/4 Main11/1"},
    {"arms of elseif and case", Choices, "main 5 7 9 11 15 17 19", "",
     "Main5/2 Main15/2 Main9/2 Main17/2 Main11/2 Main19/2"},
    {"the chain of conditions is stepped through", Choices, "main 24", "into*7",
     "Main24/1 Main4/2 Main5/2 Main13/2 Main15/2 Main21/2 Main25/1 Main4/2"},
    {"exits and iterates", Loops, "S", "into*40",
     "Main4/1 Main5/1 Main6/1 Main7/1 Main8/1 Main9/1 Main6/1 Main7/1 Main8/1 Main4/1 Main5/1 Main6/1 "
     "Main7/1 Main8/1 "
     "Main4/1 Main13/1"},
    {"what a loop never comes to", Loops, "main 10 13", "", "Main13/1"},
    {"an error passes its handler", Errors, "", "", "Main5/2"},
    {"behind an error", Errors, "", "into*2", "Main5/2 Main6/2 Main14/1"},
    {"a handler's lines are none", Errors, "main 9", "", "Main5/2"},
    {"across classes, with the initialisers of both", TwoClasses, "S", "into*40",
     "Part2/1 Main3/1 Main5/1 Part4/2 Part5/2 Main6/1"},
    {"a breakpoint in another class", TwoClasses, "part 5", "out", "Part5/2 Main6/1"},
    {"over the other class", TwoClasses, "main 5", "step*2", "Main5/1 Main6/1"},
};

class CompiledStops : public ToolchainTest {
protected:
    static std::string withoutNumbers(const std::string& text) {
        return std::regex_replace(text, std::regex("(^|\n)[0-9]+ {1,2}"), "$1");
    }
    // "into*3" is three of them, "until:13" the command for that line; the stack is asked for at each stop.
    static std::string handedIn(const std::string& commands) {
        std::istringstream words(commands);
        std::string text;
        for (std::string word; words >> word;) {
            const std::size_t star = word.find('*'), colon = word.find(':');
            const int times = star == std::string::npos ? 1 : std::stoi(word.substr(star + 1));
            std::string command = word.substr(0, std::min(star, colon));
            if (colon != std::string::npos) command = "code\n" + command + " " + word.substr(colon + 1);
            for (int i = 0; i < times; ++i) text += "stack\n" + command + "\n";
        }
        for (int i = 0; i < 50; ++i) text += "stack\nrun\n";
        return text;
    }
    // From what the terminal shows: a line for each frame of the stack that was asked for at a stop.
    static std::string stopsIn(const std::string& shown) {
        static const std::regex frame("^.....\\s*(\\d+)  (\\w+)\\((\\d+)\\):\\w+\\(\\)$");
        std::istringstream lines(shown);
        std::string text, top;
        int depth = 0;
        const auto close = [&] {
            if (depth > 0) text += (text.empty() ? "" : " ") + top + "/" + std::to_string(depth);
            depth = 0;
        };
        for (std::string line; std::getline(lines, line);) {
            if (line.starts_with("debug> ")) line.erase(0, 7);
            std::smatch match;
            if (!std::regex_match(line, match, frame)) {
                close();
                continue;
            }
            if (match[1] == "1") {
                close();
                top = match[2].str() + match[3].str();
            }
            ++depth;
        }
        close();
        return text;
    }
    void build(const std::string& classes) {
        const std::size_t line = classes.find("----\n");
        write("main.cls", withoutNumbers(classes.substr(0, line)));
        if (line != std::string::npos) write("part.cls", withoutNumbers(classes.substr(line + 5)));
        write("config/tarnwick/registry.ini",
              "[SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\App Paths\\ide.exe]\n=" + dir +
                  "environment/ide\n");
        write("environment/ide.ini", "[ordo]\nCLS=\"" + dir + "tools/quarn.exe\" /p2 /d2 /q ^.cls\n");
        ASSERT_EQ(ordo({"-fm", dir + "main.cls", "-o" + dir + "o"}), 0) << errors();
    }
    // What the debugger shows while the program runs with these settings and commands.
    std::string debugged(const std::string& settings, const std::string& commands) {
        write("environment/ide.ini", "[debug]\n" + settings);
        os::StartRequest request{dir + "main.exe", {}, dir, dir + "output"};
        request.inputFile = write("commands", commands);
        os::StartError error = os::StartError::None;
        const auto child = os::processes().start(request, error);
        if (child == nullptr) return "not started";
        const os::ExitState state = child->wait(20000);
        if (!state.ended) child->stop(0);
        EXPECT_TRUE(state.ended);
        EXPECT_EQ(state.code, 0);
        EXPECT_EQ(state.signal, 0);
        return read("output");
    }
};

TEST_F(CompiledStops, AreWhereTheyMustBe) {
    const char* built = nullptr;
    for (const Row& row : rows) {
        SCOPED_TRACE(row.what);
        if (built != row.classes) build(row.classes);
        built = row.classes;
        const std::string breakpoints = row.breakpoints;
        const bool step = breakpoints.starts_with('S');
        const std::string shown = debugged("breakpoints=" + breakpoints.substr(step ? 1 : 0) +
                                               "\nSingleStep=" + (step ? "1" : "0") + "\n",
                                           handedIn(row.commands));
        EXPECT_EQ(stopsIn(shown), row.stops) << shown;
    }
}

TEST_F(CompiledStops, ConditionsLogsAndHitsWorkOnVariables) {
    build(Sums);
    const std::string shown =
        debugged("breakpoints=main 6 main 8\n"
                 "Rules=Main 6 log \"i is {i}, total {total}\" ; Main 8 if \"a = 1\" ;\n",
                 handedIn(""));
    EXPECT_EQ(stopsIn(shown), "Main8/2") << shown;
    for (const char* line : {"i is 1, total 0\n", "i is 2, total 1\n", "i is 1, total 3\n"})
        EXPECT_NE(shown.find(line), std::string::npos) << line << shown;
}

TEST_F(CompiledStops, TheResultIsToldBehindAStepOut) {
    build(Sums);
    const std::string shown = debugged("breakpoints=main 8\n", "out\nrun\nrun\n");
    EXPECT_NE(shown.find("File Main, function main, line 13\nResult of add() : Integer = 3"),
              std::string::npos)
        << shown;
}

TEST_F(CompiledStops, AChangedValueHasItsEffect) {
    build(Factorial);
    const std::string shown =
        debugged("breakpoints=main 6 main 11\n", "values\n1\nedit\n1\nrun\nvalues\nrun\nrun\n");
    EXPECT_NE(shown.find("x : Integer = 1\n"), std::string::npos) << shown;
}

TEST_F(CompiledStops, ChosenErrorsStopAndOthersReachTheHandler) {
    build(Errors);
    EXPECT_EQ(stopsIn(debugged("StopCodes=601\nbreakpoints=main 14\n", handedIn(""))), "Main14/1");
    const std::string shown = debugged("StopCodes=643\n", handedIn(""));
    EXPECT_EQ(stopsIn(shown), "Main5/2");
    EXPECT_NE(shown.find("told 643"), std::string::npos) << "behind the stop it reaches the handler" << shown;
    EXPECT_NE(debugged("", "run\nrun\n").find("told 0"), std::string::npos) << "without a choice none does";
}

TEST_F(CompiledStops, BreakpointsAreSavedAtTheEndAndAtAHalt) {
    build(Sums);
    debugged("SingleStep=1\n", "code\nbreak 13\nrun\nrun\n");
    EXPECT_NE(read("environment/ide.ini").find("breakpoints=Main 13 \r\n"), std::string::npos);
    debugged("SingleStep=1\n", "code\nbreak 12\nstop\n");
    EXPECT_NE(read("environment/ide.ini").find("breakpoints=Main 12 \r\n"), std::string::npos);
}

TEST_F(CompiledStops, BehindAFullStackTheProgramEnds) {
    build(Endless);
    const std::string shown = debugged("", "stack\nrun\nrun\nrun\n");
    EXPECT_TRUE(std::regex_search(shown, std::regex("Error 803, Program ran out of stack space\nFile Main, function "
                                                    "deep, line 2, [0-9]{4,} calls deep\n")))
        << shown;
    EXPECT_NE(shown.find("    1  Main(2):deep()\n"), std::string::npos) << shown;
    EXPECT_NE(shown.find("    2  Main(3):deep()\n"), std::string::npos) << shown;
}

TEST_F(CompiledStops, AwayFromItsSourceAProgramRunsAlone) {
    build(Sums);
    std::filesystem::rename(dir + "main.cls", dir + "away.cls");
    EXPECT_EQ(debugged("SingleStep=1\n", "stop\n"), "");
}

TEST_F(CompiledStops, ASourceThatIsGoneWhileTheProgramIsStoppedIsSaid) {
    build(TwoClasses);
    std::filesystem::remove(dir + "part.cls");
    const std::string shown = debugged("breakpoints=part 4\n", "run\n");
    EXPECT_NE(shown.find("(Cannot load \"Part\")"), std::string::npos) << shown;
}

TEST_F(CompiledStops, WithDamagedSymbolsNoLineHasCode) {
    build(Sums);
    write("main.sym", "\"debug\",2,\"\",\"debug");
    const std::string shown = debugged("SingleStep=1\n", "break 12\nrun\n");
    EXPECT_NE(shown.find("No code was generated at line 12 in Main.\nA breakpoint cannot be put here."),
              std::string::npos)
        << shown;
}

}  // namespace
}  // namespace tarn::toolchain
