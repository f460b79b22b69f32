// SPDX-License-Identifier: Apache-2.0
//
// The exit code of a program: 0 whatever happened, as ever; under `--strict` 1 if an error was reported.
#include "support/toolchain_folder.h"

#include <string>

namespace tarn::toolchain {
namespace {

class Strict : public ToolchainTest {
protected:
    int runProgram(const std::string& text, const std::vector<std::string>& arguments) {
        write("p.cls", "Tarnwick Class P\n" + text + "End class\n");
        EXPECT_EQ(ordo({"-fm", dir + "p.cls", "-o" + dir + "o"}), 0) << errors();
        return run(dir + "p.exe", arguments);
    }
};

const char* const Clean = "function main()\nPRINT(\"[\" + ARGUMENTS() + \"]\")\nend function\n";
const char* const Fails = "function main()\nvar i : integer\ni := 1 div i\nPRINT(\"behind\")\nend function\n";
const char* const Continues =
    "function main()\nvar i : integer\ni := CVTI(\"x\")\nPRINT(\"behind\")\nend function\n";
const char* const Handles =
    "function main()\nvar i : integer\ni := 1 div i\nPRINT(\"behind\")\nend function\n"
    "function onerror(number : integer)\nPRINT(STR(number))\nend function\n";

TEST_F(Strict, WithoutItTheExitCodeIsZero) {
    for (const char* text : {Clean, Fails, Continues, Handles}) EXPECT_EQ(runProgram(text, {}), 0) << text;
}

TEST_F(Strict, AReportedErrorMakesItOne) {
    EXPECT_EQ(runProgram(Fails, {"--strict"}), 1) << output;
    EXPECT_NE(output.find("643"), std::string::npos) << output;
    EXPECT_EQ(runProgram(Continues, {"--strict"}), 1) << output;
}

TEST_F(Strict, WithoutAReportItIsZero) {
    EXPECT_EQ(runProgram(Clean, {"--strict"}), 0) << output;
    EXPECT_EQ(runProgram(Handles, {"--strict"}), 0) << output;
    EXPECT_EQ(output, "643\nbehind\n");
}

TEST_F(Strict, ItIsNoArgumentOfTheProgramWhereItStandsFirst) {
    EXPECT_EQ(runProgram(Clean, {"--strict", "a", "--strict"}), 0);
    EXPECT_EQ(output, "[a --strict]\n");
    EXPECT_EQ(runProgram(Clean, {"a", "--strict"}), 0);
    EXPECT_EQ(output, "[a --strict]\n");
    EXPECT_EQ(runProgram(Clean, {"--STRICT"}), 0);
    EXPECT_EQ(output, "[--STRICT]\n");
}

}  // namespace
}  // namespace tarn::toolchain
