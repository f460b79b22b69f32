// SPDX-License-Identifier: Apache-2.0
//
// The compiler as a program: options, results and the symbol file.
#include "support/toolchain_folder.h"
#include "toolchain/build/options.h"
#include "toolchain/language/lexer.h"
#include "toolchain/output/symfile.h"

#include <string>
#include <sys/stat.h>
#include <unistd.h>

namespace tarn::toolchain {
namespace {

using Quarn = ToolchainTest;

CompilerOptions options(const std::vector<std::string>& arguments, std::size_t errors = 0) {
    Messages messages;
    const CompilerOptions result = readCompilerOptions(arguments, messages);
    EXPECT_EQ(messages.count(), errors) << messages.report("");
    return result;
}

TEST(CompilerOptions, TheWholeLineOfTheEnvironmentIsUnderstood) {
    const CompilerOptions read = options({"/p2", "/d1", "/q", "/v", "/om", "/os", "/s3000", "/i/a b;/c",
                                          "/r/res", "/lw1", "/gdv10", "/tmp/x.cls"});
    EXPECT_EQ(read.files, std::vector<std::string>{"/tmp/x.cls"});
    EXPECT_EQ(read.precond, 2);
    EXPECT_EQ(read.debug, 1);
    EXPECT_TRUE(read.quiet);
    EXPECT_EQ(read.maxSymbols, 3000);
    EXPECT_EQ(read.inheritedPath, (std::vector<std::string>{"/a b", "/c"}));
    EXPECT_EQ(describeOptions(read), "-d1 -p2 -q -s3000 -v -om -os -lw1 -gdv10");
}

TEST(CompilerOptions, PathsThatLookLikeOptionsArePaths) {
    for (const char* file :
         {"/p1.cls", "/d2/x.cls", "/inn/x.cls", "/root/x.cls", "/q.cls", "/s3/x.CLS", "/gx/y.cls"})
        EXPECT_EQ(options({file}).files, std::vector<std::string>{file});
    EXPECT_EQ(options({"-D2", "-P1", "x.cls"}).debug, 2);
    EXPECT_EQ(describeOptions(options({"x.cls"})), "-d0 -p0");
}

TEST(CompilerOptions, UnknownOnesAreErrors) {
    options({"-p3", "x.cls"}, 1);
    options({"-zz", "x.cls"}, 1);
    options({"x.txt"}, 1);
    options({}, 1);
}

TEST_F(Quarn, ACleanCompileSaysSoAndLeavesItsFiles) {
    write("a.cls", "Tarnwick Class A\nEnd class\n");
    EXPECT_EQ(quarn({dir + "a.cls"}), 0);
    EXPECT_EQ(errors(), dir + "a.cls : 0 errors.\n");
    EXPECT_EQ(output, errors());
    EXPECT_TRUE(exists("a.sym"));
    EXPECT_TRUE(exists(".tarnwick/a.o"));
}

TEST_F(Quarn, QuietMeansNothingToStandardOutput) {
    write("a.cls", "Tarnwick Class A\nEnd class\n");
    EXPECT_EQ(quarn({"/q", dir + "a.cls"}), 0);
    EXPECT_EQ(output, "");
}

TEST_F(Quarn, AFailureTakesTheOldObjectAway) {
    write("a.cls", "Tarnwick Class A\nEnd class\n");
    EXPECT_EQ(quarn({dir + "a.cls"}), 0);
    write("a.cls", "Tarnwick Class A\nconst x = y\nEnd class\n");
    EXPECT_EQ(quarn({dir + "a.cls"}), 1);
    EXPECT_EQ(errors(), dir + "a.cls(2) : error 1201 'y' is not declared\n> " + dir + "a.cls has 1 error.\n");
    EXPECT_FALSE(exists(".tarnwick/a.o"));
}

TEST_F(Quarn, AMissingFileIsAnError) {
    EXPECT_EQ(quarn({dir + "none.cls"}), 1);
    EXPECT_NE(errors().find("error 1901"), std::string::npos);
}

TEST_F(Quarn, TooManySymbolsAreAnError) {
    write("a.cls", "Tarnwick Class A\nconst b = 1\nconst c = 1\nEnd class\n");
    EXPECT_EQ(quarn({"/s3", dir + "a.cls"}), 0);
    EXPECT_EQ(quarn({"/s2", dir + "a.cls"}), 1);
    EXPECT_NE(errors().find("a.cls(1) : error 1907 the class has 3 symbols, and the limit is 2"),
              std::string::npos)
        << errors();
}

TEST_F(Quarn, ResultsThatCannotBeWrittenAreNotPassedOver) {
    std::filesystem::create_directory(dir + "tools/sarn.err");
    write("a.cls", "Tarnwick Class A\nEnd class\n");
    EXPECT_EQ(quarn({dir + "a.cls"}), 2);
    EXPECT_NE(output.find("cannot write"), std::string::npos);
}

// Tools of an installation, which stand in a folder that the user cannot write to.
class ToolsOfAnInstallation : public ToolchainTest {
protected:
    static constexpr unsigned Nobody = 65534;

    void SetUp() override {
        ToolchainTest::SetUp();
        if (::geteuid() == 0) {
            ASSERT_EQ(::chown(dir.c_str(), Nobody, Nobody), 0);
        }
        write("a.cls", "Tarnwick Class A\nfunction main()\nPRINT(\"a\")\nend function\nEnd class\n");
    }
    void TearDown() override {
        std::filesystem::permissions(dir + "tools", std::filesystem::perms::owner_all);
        ToolchainTest::TearDown();
    }
    // Calls a tool as a user for whom permissions count. `stale` is what lies beside the tools from another time.
    int call(const std::string& tool, std::vector<std::string> arguments, const std::string& stale = {}) {
        if (!stale.empty()) write("tools/sarn.err", stale);
        ::chmod((dir + "tools").c_str(), 0555);
        arguments.insert(arguments.begin(), dir + "tools/" + tool);
        if (::geteuid() == 0)
            arguments.insert(arguments.begin(),
                             {"/usr/bin/setpriv", "--reuid=65534", "--regid=65534", "--clear-groups"});
        const std::string program = arguments.front();
        arguments.erase(arguments.begin());
        std::filesystem::remove(dir + "output");
        return run(program, arguments);
    }
    std::string own() const { return read("tarnwick/sarn.err"); }
};

TEST_F(ToolsOfAnInstallation, LeaveTheirMessagesInTheUsersFolder) {
    EXPECT_EQ(call("quarn.exe", {"/q", dir + "a.cls"}), 0) << output;
    EXPECT_EQ(own(), dir + "a.cls : 0 errors.\n");
    EXPECT_FALSE(exists("tools/sarn.err"));
}

TEST_F(ToolsOfAnInstallation, BuildAProgramWhateverLiesBesideThem) {
    EXPECT_EQ(call("ordo.exe", {"-fm", dir + "a.cls"}, "a.cls(1) : error 1201 of long ago\n"), 0) << output;
    EXPECT_EQ(own(), dir + "a.cls : 0 errors.\n");
    EXPECT_EQ(run(dir + "a.exe", {}), 0);
    EXPECT_EQ(output, "a\n");
    EXPECT_EQ(errors(), "a.cls(1) : error 1201 of long ago\n");
}

TEST_F(ToolsOfAnInstallation, TakeNoOldSuccessForTheirOwn) {
    write("a.cls", "Tarnwick Class A\nfunction main()\nx := 1\nend function\nEnd class\n");
    EXPECT_EQ(call("ordo.exe", {"-fm", dir + "a.cls"}, dir + "a.cls : 0 errors.\n"), 1) << output;
    EXPECT_NE(own().find("a.cls(3) : error 1201 'x' is not declared\n"), std::string::npos) << own();
    EXPECT_NE(output.find("error 1201"), std::string::npos) << output;
    EXPECT_FALSE(exists("a.exe"));
}

TEST(SymbolFile, TheBitmapHasABitForEachLineOfCode) {
    std::vector<bool> lines(9001);
    for (const std::size_t line : {1U, 8U, 9U, 8000U, 8001U, 9000U}) lines[line] = true;
    const std::string bitmap = codeLineBitmap(lines);
    ASSERT_EQ(bitmap.size(), 1000U);
    EXPECT_EQ(static_cast<unsigned char>(bitmap[0]), 0x81);
    EXPECT_EQ(static_cast<unsigned char>(bitmap[1]), 0x01);
    EXPECT_EQ(static_cast<unsigned char>(bitmap[999]), 0x80);
    EXPECT_EQ(std::count(bitmap.begin(), bitmap.end(), '\0'), 997);
}

TEST(SymbolFile, CellsAreOneLineOfPrintableCharacters) {
    EXPECT_EQ(quotedCell(""), "\"\"");
    EXPECT_EQ(quotedCell("a\"b\\c\td\ne\rf"), "\"a\"\"b\\\\c\\td\\ne\\rf\"");
    EXPECT_EQ(quotedCell(std::string("\0\x1F\x7F\xFF", 4)), "\"\\x00\\x1F\\x7F\\xFF\"");
}

TEST_F(Quarn, TheSymbolFileNamesItemsOptionsAndLinesOfCode) {
    write("a.cls", "Tarnwick Class A\n"                                        // 1
                   "public const C = 7\n"                                      // 2
                   "private var v : string[9] := \"x\"\n"                      // 3
                   "function f(x : integer, out y : string) return boolean\n"  // 4
                   "precond x > 0\n"                                           // 5
                   "    if x > C then\n"                                       // 6
                   "        return true\n"                                     // 7
                   "    end if\n"                                              // 8
                   "    return v = \"\"\n"                                     // 9
                   "end function\n"                                            // 10
                   "End class\n");
    EXPECT_EQ(quarn({"/d2", "/p1", dir + "a.cls"}), 0) << errors();
    std::vector<bool> lines(10);
    for (const std::size_t line : {3U, 5U, 6U, 7U, 9U}) lines[line] = true;
    const std::string symbols = read("a.sym");
    const std::size_t record = symbols.rfind("\"digest\",2,");
    ASSERT_NE(record, std::string::npos) << symbols;
    EXPECT_EQ(symbols.substr(0, record),
              "\"A\",1,\"\",\"class\",1,1,0,\"A\",0,0,0,0,0,0,\"\",\"\",0,0,\"\"\n"
              "\"C\",1,\"public const C = 7\",\"const\",2,2,6,\"A\",0,0,0,0,0,0,\"\",\"integer\",0,7,\"\"\n"
              "\"v\",2,\"private var v : "
              "string[9]\",\"variable\",3,3,9,\"A\",9,0,0,0,0,0,\"\",\"string\",0,0,\"\"\n"
              "\"f\",2,\"function f(x : integer, out y : string) return "
              "boolean\",\"function\",4,4,0,\"A\",0,0,0,0,0,0,"
              "\"integer,string\",\"boolean\",0,0,\"\"\n"
              "\"x\",3,\"x : integer\",\"variable\",4,4,5,\"A\",0,0,0,0,0,0,\"\",\"integer\",0,0,\"f\"\n"
              "\"y\",3,\"y : string\",\"variable\",4,4,0,\"A\",0,0,0,0,0,0,\"\",\"string\",0,0,\"f\"\n"
              "\"program\",2,\"\",\"program\",0,0,0,\"A\",0,0,0,0,0,0,\"\",\"\",0,0,\"-d2 -p1\"\n"
              "\"debug\",2,\"\",\"debug\",0,0,0,\"A\",0,0,0,0,0,0,\"\",\"\",0,0," +
                  quotedCell(codeLineBitmap(lines)) + "\n");
}

TEST(Scanner, CountsLinesAndMarksTheFirstOfEach) {
    Messages messages;
    const auto tokens = scan("a // b\r\n\n  c\"x\"\"y\"", "f", messages);
    ASSERT_EQ(tokens.size(), 4U);
    EXPECT_EQ(tokens[1].line, 3);
    EXPECT_TRUE(tokens[1].firstOnLine);
    EXPECT_FALSE(tokens[2].firstOnLine);
    EXPECT_EQ(stringValue(tokens[2].text), "x\"y");
}

}  // namespace
}  // namespace tarn::toolchain
