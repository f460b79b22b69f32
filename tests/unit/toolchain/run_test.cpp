// SPDX-License-Identifier: Apache-2.0
//
// What compiled programs do: each case is built, run, and its output compared. Memory is checked (debug level
// 2 in the class that holds main), so that a string that is not freed shows as error 826.
#include "support/places.h"
#include "support/toolchain_folder.h"

#include <string>
#include <utility>
#include <vector>

namespace tarn::toolchain {
namespace {

struct File {
    const char* name;
    std::string text;
};

class Run : public ToolchainTest {
protected:
    // Builds main.cls and runs it; its output, or the messages of the build.
    std::string runProgram(const std::vector<File>& files, const std::vector<std::string>& arguments = {}) {
        for (const File& file : files) write(file.name, file.text);
        write("environment/ide.ini", "[ordo]\nCLS=\"" + dir + "tools/quarn.exe\" /p2 /d2 /q ^.cls\n");
        write("config/tarnwick/registry.ini",
              "[SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\App Paths\\ide.exe]\n=" + dir +
                  "environment/ide.exe\n");
        if (ordo({"-fm", dir + "main.cls", "-o" + dir + "o"}) != 0) return errors();
        // Away from its source it runs without a debugger.
        std::filesystem::rename(dir + "main.cls", dir + "away.cls");
        code = run(dir + "main.exe", arguments);
        return output;
    }
    static std::string program(const std::string& functions, const std::string& statements) {
        return "Tarnwick Class Main\n" + functions +
               "function main()\nvar i, j, k : integer\n s, t, u : string\n"
               " b, c : boolean\n" +
               statements + "\nend function\nEnd class\n";
    }
    int code = 0;
};

TEST_F(Run, Arithmetic) {
    EXPECT_EQ(
        runProgram(
            {{"main.cls",
              program(
                  "",
                  "PRINT(STR(7 div 2) + \" \" + STR(-7 div 2) + \" \" + STR(7 mod -2) + \" \" + STR(-7 mod "
                  "2))\n"
                  "i := 7\nj := -2\nPRINT(STR(i div j) + \" \" + STR(i mod j) + \" \" + STR(-i div 2))\n"
                  "i := 2147483647\nPRINT(STR(i + 1) + \" \" + STR(i * 2) + \" \" + STR(-(-2147483648)))\n"
                  "PRINT(STR(1 + 2 * 3 - 4) + \" \" + STR((1 + 2) * 3) + \" \" + STR(- - 5) + \" \" + STR(10 "
                  "- 3 - 2))\n"
                  "PRINT(STR(0xFFFFFFFF) + \" \" + STR(0x7fL))\n"
                  "b := not 1 = 2 and 2 > 1 or false\nPRINT(STR(b) + STR(not b))")}}),
        "3 -4 -1 1\n-4 -1 -4\n-2147483648 -2 -2147483648\n3 9 5 5\n-1 127\nTrueFalse\n");
}

TEST_F(Run, TextsAndComparison) {
    EXPECT_EQ(
        runProgram(
            {{"main.cls",
              program(
                  "",
                  "s := \"a\"\"b\" + Chr(9) + \"c\"\nPRINT(s)\nt := s\ns[1] := 120\nPRINT(s + t + STR(s[2]) "
                  "+ STR(LENGTH(s)))\n"
                  "PRINT(STR(\"a\" < \"b\") + STR(\"b\" < \"a\") + STR(\"a\" < \"aa\") + STR(s = t) + STR(s "
                  "<> t))\n"
                  "s := s + s + s\nPRINT(STR(LENGTH(s)))\n"
                  "s := \"\"\nt := s + \"\"\nPRINT(\"[\" + t + \"]\")\n"
                  "PRINT(STRUPPER(\"abc\") + STRMID(\"abcdef\", 2, 3) + STRLEFT(\"abc\", 1) + "
                  "STRRIGHT(\"abc\", 1))\n"
                  "s := \"aXbX\"\nSTRREPLACE(\"X\", \"--\", false, s)\nPRINT(s + STR(STRFIND(s, \"b\")))\n"
                  "PRINT(STR(CVTI(\"42\") + ORD(\"A\")) + STRMAKE(3, 46) + STRTRIM(\"  x \") + \"|\")")}}),
        "a\"b\tc\nx\"b\tca\"b\tc345\n"
        "TrueFalseTrueFalseTrue\n15\n[]\nABCbcdac\na--b--4\n107...x|\n");
}

TEST_F(Run, LoopsAndSelections) {
    EXPECT_EQ(
        runProgram(
            {{"main.cls",
              program("", "for i from 1 to 10 by 4 loop\ns := s + STR(i) + \",\"\nend loop\n"
                          "for i from 3 downto 1 loop\ns := s + STR(i) + \",\"\nend loop\n"
                          "for i from 2 to 1 loop\ns := s + \"never\"\nend loop\n"
                          "for i from 2147483646 to 2147483647 loop\nj := j + 1\nend loop\n"
                          "k := 0\nfor i from 1 to 5 by k loop\ns := s + \"never\"\nend loop\n"
                          "for i from 1 to 5 loop\niterate when i = 2\nexit when i = 4\ns := s + STR(i)\ni "
                          ":= 100\nend loop\n"
                          "PRINT(s + \" \" + STR(j))\n"
                          "while k < 3 loop\nk := k + 1\nif k = 1 then\niterate\nelseif k = 2 "
                          "then\nPRINT(\"two\")\nelse\nPRINT(\"three\")\n"
                          "end if\nend loop\n"
                          "for i from 0 to 4 loop\nselect i\ncase 0 =>\nPRINT(\"zero\")\ncase 1 to 2, 4 "
                          "=>\nPRINT(\"some\")\nelse\nPRINT(\"else\")\n"
                          "end select\nend loop\n"
                          "select \"x\" + \"y\"\ncase \"xy\" =>\nPRINT(\"text\")\ncase \"\" =>\nend select\n"
                          "loop\nloop\nexit\nend loop\nexit\nend loop")}}),
        "1,5,9,3,2,1,13 2\ntwo\nthree\nzero\nsome\nsome\nelse\nsome\ntext\n");
}

TEST_F(Run, TheRightOperandIsLeftOutWhenTheLeftOneDecides) {
    EXPECT_EQ(runProgram(
                  {{"main.cls",
                    program("function YES(x : string) return boolean\nPRINT(x)\nreturn true\nend function\n"
                            "function NO(x : string) return boolean\nPRINT(x)\nreturn false\nend function\n",
                            "b := NO(\"1\") and YES(\"2\")\nb := YES(\"3\") or NO(\"4\")\nc := YES(\"5\") "
                            "and (NO(\"6\") or YES(\"7\")) and NO(\"8\") and YES(\"9\")\n"
                            "PRINT(STR(b) + STR(c))\nif i <> 0 and 10 div i > 1 then\nPRINT(\"no\")\nend if\n"
                            "while NO(\"a\" + \"b\") or NO(\"c\") loop\nend loop")}}),
              "1\n3\n5\n6\n7\n8\nTrueFalse\nab\nc\n");
}

TEST_F(Run, ParametersOfEachModeAndAliasesAreRight) {
    EXPECT_EQ(
        runProgram(
            {{"main.cls",
              program("private var g : string := \"g\"\n  n : integer := 5\n"
                      "function SWAP(inout a : string, inout b : string)\nvar t : string\nt := a\na := b\nb "
                      ":= t\nend function\n"
                      "function KEEP(a : string, out b : string)\nb := \"new\"\nb := a + b\nend function\n"
                      "function CHANGE(a : string) return string\ng := \"changed\"\nreturn a\nend function\n"
                      "function BOTH(inout a : string, inout b : string)\na := a + \"1\"\nb := b + "
                      "\"2\"\nend function\n"
                      "function BUMP(inout x : integer) return integer\nx := x + 1\nn := n + 10\nreturn "
                      "x\nend function\n"
                      "function SHORT(a : string[3], out x : integer, out y : boolean) return "
                      "string\nPRINT(STR(x) + STR(y))\nx := 9\n"
                      "y := true\nreturn a + \"!\"\nend function\n",
                      "s := \"s\"\nt := \"t\"\nSWAP(s, t)\nPRINT(s + t)\nSWAP(s, s)\nKEEP(s, "
                      "s)\nPRINT(s)\nPRINT(CHANGE(g) + g)\n"
                      "BOTH(t, t)\nPRINT(t)\nSWAP(g, t)\nPRINT(g + t)\n"
                      "i := 1\nPRINT(STR(i + BUMP(i) * 10 + i) + STR(i))\nPRINT(STR(n + BUMP(n)) + STR(n))\n"
                      "PRINT(t + CHANGE(t) + g + CHANGE(g + g) + g)\nj := 3\nb := true\nPRINT(SHORT(\"abc\", "
                      "j, b) + STR(j) + STR(b))")}}),
        "ts\ntnew\ngchanged\ns12\ns12changed\n232\n4126\n"
        "changedchangedchangedchangedchangedchanged\n0False\nabc!9True\n");
}

TEST_F(Run, RecursionKeepsEachCallsValues) {
    EXPECT_EQ(runProgram({{"main.cls",
                           program("function FACT(n : integer) return integer\nif n < 2 then\nreturn 1\nend "
                                   "if\nreturn n * FACT(n - 1)\nend function\n"
                                   "function NEST(text : string, n : integer) return string\nvar own : "
                                   "string\nif n = 0 then\nreturn text\nend if\n"
                                   "own := text + STR(n)\nreturn own + NEST(own, n - 1) + own\nend function\n"
                                   "function EVEN(n : integer) return boolean\nif n = 0 then\nreturn "
                                   "true\nend if\nreturn ODD(n - 1)\nend function\n"
                                   "function ODD(n : integer) return boolean\nif n = 0 then\nreturn "
                                   "false\nend if\nreturn EVEN(n - 1)\nend function\n",
                                   "PRINT(STR(FACT(10)) + \" \" + NEST(\"\", 3) + \" \" + "
                                   "STR(EVEN(601)))\nPRINT(NEST(NEST(\"a\", 1), 1))")}}),
              "3628800 3"
              "32"
              "321"
              "321"
              "321"
              "32"
              "3 False\n"
              "a1a1a11a1a1a11a1a1a11\n");
}

TEST_F(Run, ClassesInitialiseOnceDependenciesFirstAlsoInACircle) {
    EXPECT_EQ(
        runProgram(
            {{"main.cls", "Tarnwick Class Main\nUses a b\nprivate var x : string := SAY(\"main \" + A_TEXT)\n"
                          "function main()\nA_TEXT := A_TEXT + \"!\"\nPRINT(A_TEXT + STR(b.COUNT) + "
                          "STR(a.LIMIT))\nSHOW()\nend function\nEnd class"},
             {"a.cls",
              "Tarnwick Class A\nUses b\npublic const LIMIT = B_LIMIT * 2\npublic var A_TEXT : string[20] := "
              "SAY(\"a\")\n"
              "public function GIVE() return string\nreturn \"[\" + A_TEXT + \"]\"\nend function\nEnd class"},
             {"b.cls", "Tarnwick Class B\nUses a\npublic const B_LIMIT = 21\npublic var COUNT : integer\n"
                       "private var early : string := SAY(\"b\" + GIVE())\n"
                       "public function SAY(text : string) return string\nCOUNT := COUNT + "
                       "1\nPRINT(text)\nreturn text\nend function\n"
                       "public function SHOW()\nPRINT(early)\nend function\nEnd class"}}),
        "b[]\na\nmain a\na!342\nb[]\n");
}

TEST_F(Run, ALibraryOfLiteralsHoldsAnyByte) {
    std::string text = "s := \"\"";
    for (int n = 0; n < 256; ++n) text += " + Chr(" + std::to_string(n) + ")";
    EXPECT_EQ(
        runProgram(
            {{"main.cls", program("", text + "\nSAVEFILE(\"" + dir + "bytes\", s)\nLOADFILE(\"" + dir +
                                          "bytes\", t)\nPRINT(STR(s = t) + STR(LENGTH(t)) + STR(FILESIZE(\"" +
                                          dir + "bytes\")))")}}),
        "True256256\n");
    const std::string bytes = read("bytes");
    ASSERT_EQ(bytes.size(), 256U);
    for (int n = 0; n < 256; ++n)
        EXPECT_EQ(static_cast<unsigned char>(bytes[static_cast<std::size_t>(n)]), n);
}

TEST_F(Run, ArgumentsReachTheProgram) {
    EXPECT_EQ(runProgram({{"main.cls", program("", "PRINT(ARGUMENTS())")}}, {"one", "two"}), "one two\n");
}

TEST_F(Run, AFatalErrorNamesClassFunctionAndLine) {
    const std::string said = runProgram(
        {{"main.cls",
          program(
              "function F(n : integer) return integer\n    PRINT(\"in\")\n    return 1 div n\nend function\n",
              "PRINT(\"before\")\ni := F(0)\nPRINT(\"after\")")}});
    EXPECT_NE(said.find("Division by zero"), std::string::npos) << said;
    EXPECT_NE(said.find("File Main, function f, line 4"), std::string::npos) << said;
    EXPECT_EQ(said.find("after"), std::string::npos) << said;
}

TEST_F(Run, ConditionsOfFunctionsAreTested) {
    const std::string functions =
        "function F(n : integer) return integer\nprecond n > 0\npostcond F < 10\nreturn n\nend function\n";
    EXPECT_NE(runProgram({{"main.cls", program(functions, "PRINT(STR(F(1)))\ni := F(0)")}})
                  .find("File Main, function f, line 3"),
              std::string::npos)
        << output;
    EXPECT_NE(output.find("Preconditions not satisfied"), std::string::npos) << output;
    EXPECT_NE(runProgram({{"main.cls", program(functions, "PRINT(STR(F(1)))\ni := F(10)")}})
                  .find("File Main, function f, line 4"),
              std::string::npos)
        << output;
    EXPECT_NE(output.find("Postconditions not satisfied"), std::string::npos) << output;
}

TEST_F(Run, OnerrorTakesTheErrorsOfItsRangeAndTheProgramGoesOn) {
    const std::string handler =
        "function onerror(n : integer) from 601 to 983\nvar s : string\n"
        "s := \"handled \" + STR(n)\nPRINT(s + \" \" + ERRORMESSAGE(n))\nend function\n"
        "function BAD() return integer\nreturn CVTI(\"x\")\nend function\n";
    EXPECT_EQ(
        runProgram({{"main.cls",
                     program(handler, "i := BAD()\nj := 1 div 0 * k\nPRINT(\"on\")\n i := CVTI(\"y\")")}}),
        "handled 983 Integer type conversion error\nhandled 643 Division by zero\non\n"
        "handled 983 Integer type conversion error\n");
}

TEST_F(Run, AssertionsAndErrorsAreInTheHandsOfTheProgram) {
    const std::string handler =
        "function onerror(n : integer) from 687 to 687\nPRINT(ERRORDETAILS())\nend function\n";
    EXPECT_EQ(
        runProgram({{"main.cls", program(handler, "ASSERT(1 = 1)\nASSERT(true, \"no\")\nPRINT(\"ok\")\n"
                                                  "ASSERT(1 = 2, \"one \" + \"two\")\n"
                                                  "PRINT(ERRORDETAILS())\nCLEARERROR()\n"
                                                  "PRINT(\"[\" + ERRORDETAILS() + \"]\")\nASSERT(false)")}}),
        "ok\nAssert check failed\nFile Main, function main, line 12\none two\n\n"
        "Assert check failed\n[]\nAssert check failed\nFile Main, function main, line 16\n\n");
}

TEST_F(Run, LongConstantsAreJoinedWhenTheProgramRuns) {
    EXPECT_EQ(runProgram({{"main.cls", program("const A = \"" + std::string(2500000, 'x') + "\"\n",
                                               "s := t + A + \"y\" + \"z\"\nPRINT(STR(LENGTH(s)))\n"
                                               "PRINT(\"here\")\ns := t + A + A\nPRINT(\"never\")")}}),
              "2500002\nhere\nError 804: Memory block is too large\nFile Main, function main, line 10\n\n");
}

TEST_F(Run, SignsInFrontOfTheLeastInteger) {
    EXPECT_EQ(runProgram({{"main.cls",
                           program("", "PRINT(STR(- -2147483648) + \" \" + STR(-+-5) + \" \" + STR(- - -5) "
                                       "+ \" \" + STR(+-5) + \" \" + STR(-+5) + \" \" + STR(1 - -2))")}}),
              "-2147483648 5 -5 -5 -5 3\n");
}

TEST_F(Run, EndlessRecursionIsReportedWithItsFunction) {
    EXPECT_EQ(runProgram({{"main.cls", program("function onerror(n : integer)\nend function\n"
                                               "function DOWN(n : integer) return integer\nvar s : string\n"
                                               "s := STR(n) + \"x\"\nreturn DOWN(n + 1) + 1\nend function\n",
                                               "i := DOWN(1)\nPRINT(\"never\")")}}),
              "Error 803: Program ran out of stack space\nFile Main, function down, line 4\n\n");
    EXPECT_NE(code, 139);
    EXPECT_EQ(runProgram(
                  {{"main.cls", program("function DOWN(n : integer) return integer\nif n = 0 then\nreturn 0\n"
                                        "end if\nreturn DOWN(n - 1) + 1\nend function\n",
                                        "PRINT(STR(DOWN(20000)))")}}),
              "20000\n");
}

// ---- the examples; those with windows are worked in tests/examples ----

class Examples : public ToolchainTest {
protected:
    // Builds a program in a copy of the folder of an example; its output, or the messages of the build.
    std::string example(const std::string& name, const std::vector<std::string>& arguments = {}) {
        if (!std::filesystem::exists(dir + name))
            std::filesystem::copy(SOURCE_DIR "/examples/" + name, dir + name);
        return build(name, name, arguments);
    }
    std::string build(const std::string& folder, const std::string& name,
                      const std::vector<std::string>& arguments = {}) {
        const std::string path = dir + folder + "/" + name;
        if (ordo({"-fa", path + ".cls", "-o" + dir + "o"}) != 0) return errors();
        run(path + ".exe", arguments);
        return output;
    }
};

TEST_F(Examples, HelloGreets) {
    EXPECT_NE(example("hello", {"Tarn"}).find("Hello, Tarn!"), std::string::npos) << output;
    EXPECT_NE(example("hello").find("Hello, world!"), std::string::npos) << output;
}

TEST_F(Examples, WordcountCounts) {
    EXPECT_EQ(example("wordcount", {dir + "wordcount/sample.txt"}),
              "29 words: see " + dir + "wordcount/sample.txt.count\n");
    EXPECT_EQ(
        read("wordcount/sample.txt.count"),
        "Word count of " + dir +
            "wordcount/sample.txt\n\n     3  lines\n    29  words\n    18  different words\n\n"
            "     6  the\n     4  sea\n     2  is\n     2  wide\n     2  counts\n     1  and\n     1  sky\n"
            "     1  above\n     1  too\n     1  a\n");
}

TEST_F(Examples, WordcountTellsOfAMissingFileAndCountsAnEmptyOne) {
    EXPECT_NE(example("wordcount", {dir + "nothing.txt"}).find("There is no file"), std::string::npos)
        << output;
    write("empty.txt", "");
    EXPECT_EQ(example("wordcount", {dir + "empty.txt"}), "0 words: see " + dir + "empty.txt.count\n");
    const std::string longWord(100, 'x');
    write("long.txt", longWord + " it's " + longWord);
    EXPECT_EQ(example("wordcount", {dir + "long.txt"}), "3 words: see " + dir + "long.txt.count\n");
    EXPECT_NE(read("long.txt.count").find("     2  " + longWord.substr(0, 40) + "\n     1  it's\n"),
              std::string::npos);
}

TEST_F(Examples, DetectiveHasFiveFaultsAndTheFixesOfItsLessonsSolveAll) {
    EXPECT_EQ(example("detective"), "Case 1: the letters s in 'mississippis': 4, and should be 5.\n"
                                    "Case 2: the sum of the digits of 1994: 22, and should be 23.\n"
                                    "Case 3: the sum of 12, 7 pence and 5: 12, and should be 17.\n"
                                    "Case 4: the guest of 31 years: Bob, and should be Ann.\n"
                                    "Case 5: the middle of a mirrored row: 0, and should be 3.\n"
                                    "5 cases are left.\n");
    constexpr std::pair<const char*, const char*> Fixes[] = {
        {"for i from 0 to LENGTH(text) - 1 loop", "for i from 1 to LENGTH(text) loop"},
        {"return 0", "return number"},
        {"number := CVTI(text)", "failed := false\n number := CVTI(text)"},
        {"TABFIND(\"EQ\", guests, key, guest)", "TABFIND(\"EQ\", guests, key, guest, byage)"},
        {"    a := a + b\n    b := a - b\n    a := a - b\n",
         "var old : integer\n old := a\n a := b\n b := old\n"}};
    std::string text = read("detective/detective.cls");
    int left = static_cast<int>(std::size(Fixes));
    for (const auto& [fault, fix] : Fixes) {
        const std::size_t place = text.find(fault);
        ASSERT_NE(place, std::string::npos) << fault;
        text.replace(place, std::string_view(fault).size(), fix);
        write("detective/detective.cls", text);
        --left;
        const std::string last =
            left == 0 ? "All cases are solved.\n" : std::to_string(left) + " cases are left.\n";
        EXPECT_TRUE(example("detective").ends_with("\n" + last)) << output;
    }
}

// The rules of the cells behind the clock: a row of three turns round, a glider moves, and the edge is none.
TEST_F(Examples, TheCellsOfTheClockLiveByTheirRules) {
    std::filesystem::copy(SOURCE_DIR "/examples/clock", dir + "clock");
    write("clock/main.cls", R"(Tarnwick Class Main
Uses life
function TELL(field : TField)
    var row, column : integer
        cells : string
    for row from 1 to SIDE loop
        for column from 1 to SIDE loop
            if field[row, column] then
                cells := cells + " " + STR(row) + "," + STR(column)
            end if
        end loop
    end loop
    PRINT(STR(LIVING(field)) + ":" + cells)
end function
function main()
    var field : TField
        i : integer
    SOW(1, field)
    PRINT(STR(LIVING(field)))
    NEXTGENERATION(field)
    TELL(field)
    field[1, 32] := true
    field[1, 1] := true
    field[1, 2] := true
    NEXTGENERATION(field)
    TELL(field)
    field[32, 1] := false
    field[1, 1] := false
    field[2, 1] := false
    field[1, 2] := true
    field[2, 3] := true
    for i from 1 to 3 loop
        field[3, i] := true
    end loop
    for i from 1 to 4 loop
        NEXTGENERATION(field)
    end loop
    TELL(field)
end function
End class
)");
    EXPECT_EQ(build("clock", "main"), "1024\n0:\n3: 1,1 2,1 32,1\n5: 2,3 3,4 4,2 4,3 4,4\n");
}

// Without a display a program with windows loads its window and ends, as nobody can do anything.
TEST_F(Examples, NotepadAndCustomersStartWithoutADisplay) {
    EXPECT_EQ(example("notepad"), "");
    EXPECT_EQ(example("customers"), "");
    EXPECT_GT(std::filesystem::file_size(dir + "customers/customers.table"), 0u);
}

// Every example has a text that begins with what it is, and no results of builds.
TEST_F(Examples, EachTellsWhatItIs) {
    int count = 0;
    for (const auto& folder : std::filesystem::directory_iterator(SOURCE_DIR "/examples")) {
        if (!folder.is_directory()) continue;
        ++count;
        const std::string name = folder.path().filename();
        std::string text;
        os::readFile(folder.path() / "readme.txt", text);
        EXPECT_NE(text.find("<title type=\"string\">"), std::string::npos) << name;
        EXPECT_NE(text.find("Open " + name + ".cls and choose Run-Start"), std::string::npos) << name;
    }
    EXPECT_EQ(count, 6);
}

}  // namespace
}  // namespace tarn::toolchain
