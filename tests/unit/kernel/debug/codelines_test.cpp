// SPDX-License-Identifier: Apache-2.0
#include "kernel/debug/codelines.h"

#include "os/process.h"
#include "unit/kernel/debug/debug_fixture.h"

#include <memory>
#include <string>
#include <vector>

namespace tarn {
namespace {

class CodeLines : public DebuggedProgram {
protected:
    // The lines that a symbol file names, by its text.
    std::vector<int> linesOf(const std::string& symbols) {
        write("c.sym", symbols);
        const auto set = std::make_unique<CodeLineSet>();
        LoadCodeLines("c", folder / "c.cls", *set);
        std::vector<int> lines;
        for (int line = set->next(0); line != 0; line = set->next(line)) lines.push_back(line);
        return lines;
    }
};

using Lines = std::vector<int>;

TEST_F(CodeLines, AreTheBitsOfTheSymbols) {
    const Lines lines = {1, 8, 9, 4000, 7999, 8000};
    EXPECT_EQ(linesOf(bitmapRecord(lines)), lines);
}

TEST_F(CodeLines, AreThoseOfTheFirstRecordOfThatName) {
    const std::string other = "\"debug\",1,\"\",\"const\",0,0,0,\"\",0,0,0,0,0,0,\"\",\"\",0,0,\"x\"\n";
    EXPECT_EQ(linesOf(other + bitmapRecord({5}) + bitmapRecord({6})), Lines{5});
}

TEST_F(CodeLines, ABitmapOfAnotherLengthIsEmpty) {
    for (const std::size_t bytes : {std::size_t{2}, std::size_t{999}, std::size_t{1001}, std::size_t{1500}})
        EXPECT_EQ(linesOf(bitmapRecord({5}, bytes)), Lines()) << bytes;
    EXPECT_EQ(linesOf(bitmapRecord({5}, 2) + bitmapRecord({6})), Lines()) << "the first record counts";
}

TEST_F(CodeLines, ADamagedFileHasNone) {
    for (const std::string text : {"", "\n\n\n", "\"debug", "\"debug\",2", ",,,,,,,,,,,,,,,,,,,,,,,,\n",
                                   "\xff\xfe\xfd", "\"program\",1,\"\",\"program\"\n"})
        EXPECT_EQ(linesOf(text), Lines()) << text;
    EXPECT_EQ(linesOf(std::string(100000, '"')), Lines());
    EXPECT_EQ(linesOf(bitmapRecord({7}).substr(0, 2000)), Lines());
    EXPECT_EQ(ErrorCell(), 0);
}

TEST_F(CodeLines, OfEveryCutFileNothingButTheLinesComesOut) {
    const std::string whole = bitmapRecord({3, 4});
    for (std::size_t size = 0; size < whole.size(); size += 37) {
        const Lines lines = linesOf(whole.substr(0, size));
        EXPECT_TRUE(lines.empty()) << size;
    }
}

TEST_F(CodeLines, AnErrorThatIsPendingStays) {
    SetError(601);
    EXPECT_EQ(linesOf(bitmapRecord({5})), Lines{5});
    EXPECT_EQ(ErrorCell(), 601);
    ClearError();
}

TEST_F(CodeLines, WithoutSymbolsThereAreNone) {
    const auto set = std::make_unique<CodeLineSet>();
    LoadCodeLines("nobody", folder / "nobody.cls", *set);
    EXPECT_EQ(set->next(0), 0);
    EXPECT_FALSE(set->has(1));
}

TEST_F(CodeLines, TheSymbolsBesideTheProgramAreTheSecondPlace) {
    const std::string name = "tarnwick_codelines_test";
    const std::string file = os::executableFolder() + name + ".sym";
    ASSERT_TRUE(os::saveFile(file, bitmapRecord({12}), os::Durability::Unsynced).ok());
    const auto set = std::make_unique<CodeLineSet>();
    LoadCodeLines(name, folder / "elsewhere.cls", *set);
    os::files().remove(file);
    EXPECT_TRUE(set->has(12));
}

TEST_F(CodeLines, OutsideOfOneToEightThousandThereAreNone) {
    const auto set = std::make_unique<CodeLineSet>();
    set->assign(std::string(1000, '\xff'));
    for (const int line : {-1, 0, 8001, 2147483647}) EXPECT_FALSE(set->has(line)) << line;
    EXPECT_EQ(set->next(-5), 1);
    EXPECT_EQ(set->next(8000), 0);
    EXPECT_EQ(set->next(2147483647), 0);
}

TEST_F(CodeLines, TheClassesOfTheProgramAreAskedInAnyCase) {
    start();
    addClass("Sums", 20, {3, 5});
    EXPECT_TRUE(LineHasCode("SUMS", 3));
    EXPECT_FALSE(LineHasCode("sums", 4));
    EXPECT_EQ(NextCodeLine("sUms", 3), 5);
    EXPECT_EQ(NextCodeLine("sums", 5), 0);
    EXPECT_FALSE(LineHasCode("other", 3));
    EXPECT_EQ(NextCodeLine("other", 3), 0);
    DebugEnd();
    EXPECT_FALSE(LineHasCode("sums", 3));
}

TEST_F(CodeLines, TheTwoHundredAndFirstClassHasNone) {
    start();
    for (int i = 1; i <= 200; ++i) RegisterClass("/nowhere/c.cls", "c" + std::to_string(i));
    addClass("late", 20, {3});
    EXPECT_EQ(classTable->count, 200);
    EXPECT_EQ(codeLineTable->count, 200);
    EXPECT_FALSE(LineHasCode("late", 3));
    EXPECT_EQ(ErrorCell(), 0);
}

}  // namespace
}  // namespace tarn
