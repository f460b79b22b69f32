// SPDX-License-Identifier: Apache-2.0
//
// The back ends: that programs do the same by all of them, also by several in one program, and what the quick one
// needs of the machine.
#include "support/toolchain_folder.h"
#include "toolchain/build/backend.h"
#include "toolchain/build/elf.h"
#include "toolchain/build/tcc.h"

#include <string>
#include <vector>

namespace tarn::toolchain {
namespace {

std::vector<std::string> backEnds() {
    std::vector<std::string> names{"gcc-O0", "gcc-O2"};
    if (tccIsThere()) names.emplace_back("tcc");
    return names;
}

const char* const Program =
    "Tarnwick Class Main\n"
    "Uses words\n"
    "private var total : integer := 2147483647\n"
    "function tally(n : integer, inout text : string) return integer\n"
    "    text := text + STR(n)\n"
    "    if n = 0 then\n        return 0\n    end if\n"
    "    return n + tally(n - 1, text)\n"
    "end function\n"
    "function main()\n"
    "var i : integer  s : string  short : string[3]\n"
    "    i := tally(5, s)\n"
    "    PRINT(s + \" \" + STR(i) + \" \" + STR(total + i) + \" \" + STR(-7 div 2) + STR(-7 mod 2))\n"
    "    for i from 1 to 3 loop\n        s[i] := 64 + i\n    end loop\n"
    "    PRINT(s + WORD(2) + STR(LENGTH(s)) + CHR(200))\n"
    "    short := \"abcdef\"\n"
    "    i := 1 div (i - i)\n"
    "    PRINT(ARGUMENTS())\n"
    "end function\n"
    "function onerror(number : integer)\n    PRINT(\"error \" + STR(number))\nend function\n"
    "End class\n";
const char* const Words =
    "Tarnwick Class Words\n"
    "public function WORD(n : integer) return string\n"
    "    select n\n    case 1 =>\n        return \"one\"\n    case 2 =>\n        return \"two\"\n"
    "    else\n        return \"many\"\n    end select\n"
    "end function\nEnd class\n";
const char* const Printed = "543210 15 -2147483634 -41\nABC210two6\xC8\nerror 615\nerror 643\nx\n";

class BackEnds : public ToolchainTest {
protected:
    void SetUp() override {
        ToolchainTest::SetUp();
        write("main.cls", Program);
        write("words.cls", Words);
    }
    int make(const char* mode = "-fm") { return ordo({mode, dir + "main.cls", "-o" + dir + "o"}); }
    void expectPrinted(const std::string& about) {
        EXPECT_EQ(run(dir + "main.exe", {"x"}), 0) << about;
        EXPECT_EQ(output, Printed) << about;
    }
    void level(int debug) {
        write("tools/ide.ini",
              "[ordo]\nCLS=\"" + dir + "tools/quarn.exe\" /p1 /d" + std::to_string(debug) + " ^.cls\n");
    }
    std::string by(const char* symbols) const {
        const std::string text = read(symbols);
        const std::size_t at = text.find(" by=");
        return at == std::string::npos ? "" : text.substr(at + 4, text.find(' ', at + 4) - at - 4);
    }
};

TEST_F(BackEnds, ProgramsDoTheSameByEachOfThemAtEachLevel) {
    for (const std::string& name : backEnds())
        for (const int debug : {0, 1}) {
            const Variable chosen("TARNWICK_CC", name);
            level(debug);
            ASSERT_EQ(make("-fa"), 0) << errors();
            EXPECT_EQ(by("main.sym"), name == "tcc" ? "tcc" : "cc");
            expectPrinted(name);
        }
}

TEST_F(BackEnds, ObjectsOfSeveralMakeOneProgram) {
    for (const std::string& first : backEnds())
        for (const std::string& second : backEnds()) {
            {
                const Variable chosen("TARNWICK_CC", first);
                ASSERT_EQ(make("-fa"), 0) << errors();
            }
            const Variable chosen("TARNWICK_CC", second);
            ASSERT_EQ(quarn({"/d1", dir + "words.cls"}), 0) << errors();
            ASSERT_EQ(make(), 0) << errors();
            expectPrinted(first + " and " + second);
        }
}

TEST_F(BackEnds, TheLevelChoosesAmongThem) {
    const Variable free("TARNWICK_CC", nullptr);
    EXPECT_EQ(chooseBackEnd(0), BackEnd::Best);
    for (const int debug : {1, 2})
        EXPECT_EQ(chooseBackEnd(debug), tccIsThere() ? BackEnd::Quick : BackEnd::Plain);
    level(1);
    ASSERT_EQ(make(), 0) << errors();
    EXPECT_EQ(by("main.sym"), tccIsThere() ? "tcc" : "cc");
    level(0);
    ASSERT_EQ(make("-fa"), 0) << errors();
    EXPECT_EQ(by("main.sym"), "cc");
    expectPrinted("level 0");
}

TEST_F(BackEnds, AnUnknownNameIsAnError) {
    const Variable chosen("TARNWICK_CC", "msc");
    EXPECT_EQ(make(), 1);
    EXPECT_NE(errors().find("error 1912 TARNWICK_CC names the C compiler 'msc'"), std::string::npos)
        << errors();
}

TEST_F(BackEnds, TheQuickOneNeedsNothingOfTheMachine) {
    if (!tccIsThere()) GTEST_SKIP();
    const Variable path("PATH", dir + "empty"), free("TARNWICK_CC", nullptr);
    for (const int debug : {0, 1}) {
        level(debug);
        ASSERT_EQ(make("-fa"), 0) << errors();
        EXPECT_EQ(by("main.sym"), "tcc");
        expectPrinted("level " + std::to_string(debug));
    }
}

TEST_F(BackEnds, NoProgramHasAStackThatHoldsCode) {
    for (const std::string& name : backEnds()) {
        const Variable chosen("TARNWICK_CC", name);
        ASSERT_EQ(make("-fa"), 0) << errors();
        int stacks = 0;
        for (const Elf64_Phdr& part : programParts(read("main.exe"))) {
            EXPECT_NE(part.p_flags & (PF_W | PF_X), PF_W | PF_X) << name;
            if (part.p_type != PT_GNU_STACK) continue;
            ++stacks;
            EXPECT_EQ(part.p_flags & PF_X, 0U) << name;
        }
        EXPECT_EQ(stacks, 1) << name;
    }
}

TEST_F(BackEnds, AProgramFindsItsLibraryWhereItWasLinkedAndBesideItself) {
    for (const std::string& name : backEnds()) {
        const Variable chosen("TARNWICK_CC", name);
        const std::string folder = dir + "to,ol \"s' " + name + "/";
        std::filesystem::create_directories(folder + "x");
        for (const char* file : {"quarn.exe", "ordo.exe", "libtarnwick.so"})
            std::filesystem::copy_file(std::string(BINARY_DIR "/") + file, folder + file);
        ASSERT_EQ(run(folder + "ordo.exe", {"-fa", dir + "main.cls", "-o" + dir + "o"}), 0)
            << output << read("o");
        expectPrinted(name);
        std::filesystem::rename(folder + "libtarnwick.so", dir + "libtarnwick.so");
        expectPrinted(name);
        std::filesystem::remove(dir + "libtarnwick.so");
        EXPECT_NE(run(dir + "main.exe", {}), 0) << name;
    }
}

TEST_F(BackEnds, AMainClassThatIsUsedIsNotTheProgram) {
    write("other.cls",
          "Tarnwick Class Other\nUses main words\nfunction main()\nPRINT(\"other\")\nend function\n"
          "End class\n");
    for (const std::string& name : backEnds()) {
        const Variable chosen("TARNWICK_CC", name);
        ASSERT_EQ(ordo({"-fa", dir + "other.cls", "-o" + dir + "o"}), 0) << errors();
        EXPECT_EQ(run(dir + "other.exe", {}), 0) << output;
        EXPECT_EQ(output, "other\n") << name;
    }
}

TEST_F(BackEnds, RecursionThatFillsTheStackIsAnErrorByEachOfThem) {
    write("main.cls",
          "Tarnwick Class Main\nfunction deep(n : integer) return integer\nreturn deep(n + 1) + 1\n"
          "end function\nfunction main()\nPRINT(STR(deep(0)))\nend function\nEnd class\n");
    for (const std::string& name : backEnds()) {
        const Variable chosen("TARNWICK_CC", name);
        ASSERT_EQ(make("-fa"), 0) << errors();
        EXPECT_EQ(run(dir + "main.exe", {"--strict"}), 1) << name;
        EXPECT_NE(output.find("803"), std::string::npos) << name << output;
    }
}

TEST(QuickBackEnd, WhatFailsIsToldAndTheNextOneWorks) {
    if (!tccIsThere()) GTEST_SKIP();
    const Made broken = tccCompile("int f(void) { return missing; }");
    EXPECT_TRUE(broken.bytes.empty());
    EXPECT_NE(broken.failure.find("missing"), std::string::npos) << broken.failure;
    const Made object = tccCompile("int f(void) { return 1; }");
    EXPECT_EQ(object.failure, "");
    const std::string library = BINARY_DIR "/libtarnwick.so";
    for (const std::string& bytes : {std::string("no object"), std::string(), object.bytes.substr(0, 100)})
        EXPECT_NE(tccLink({bytes}, library).failure, "") << bytes.size();
    EXPECT_NE(tccLink({object.bytes}, library).failure, "") << "it has no start";
    EXPECT_NE(tccLink({object.bytes}, "/nowhere/libtarnwick.so").failure, "");
    EXPECT_EQ(tccCompile("int f(void) { return 1; }").bytes, object.bytes);
}

TEST(QuickBackEnd, OnlyALibraryHasNames) {
    EXPECT_NE(namesOfLibrary(BINARY_DIR "/libtarnwick.so"), "");
    for (const char* file : {"/dev/null", "/nowhere", "/etc/passwd"})
        EXPECT_EQ(namesOfLibrary(file), "") << file;
    std::string text = "no program";
    EXPECT_FALSE(forbidStackCode(text));
}

}  // namespace
}  // namespace tarn::toolchain
