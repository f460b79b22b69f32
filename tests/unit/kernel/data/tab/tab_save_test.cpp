// SPDX-License-Identifier: Apache-2.0
//
// Writing values as delimited text.
#include "unit/kernel/tab_fixture.h"

#include <vector>

namespace tarn {
namespace {

class TabSaving : public Tab {
protected:
    // What a value that was read from `text` is saved as; "code" when it cannot be.
    std::string saved(std::string_view text, std::string_view declaration,
                      const DataOptions& options = CommaRows, std::string_view names = {}) {
        files_.put("/d/in", std::string(text));
        Typed value(declaration);
        EXPECT_EQ(TabLoad("/d/in", CommaRows, value.get(), value.kind()).code, 0);
        const DataResult result = TabSave("/d/out", options, value.get(), value.kind(), names);
        rows_ = result.rows;
        return result.code == 0 ? files_.contents("/d/out") : std::to_string(result.code);
    }
    static constexpr const char* pairs =
        "x : list\n\tr : record\n\t\ta : integer\n\t\tb : string[20]\n\tend record\nend list\n";
    std::int32_t rows_ = 0;
};

TEST_F(TabSaving, EveryKindHasItsForm) {
    const std::string all = "x : record\n\ta : boolean\n\tb : enum\n\tc : integer\n\td : fixed\n\te : real\n"
                            "\tf : string[9]\n\tg : set[1:9]\n\th : Tchars[1:5]\nend record\n";
    EXPECT_EQ(saved("true,200,-7,1.5,0.125,ab,[1..3,7],xy\n", all),
              "True,200,-7,1.5000,+1.2500000000000000E-0001,ab,[1..3,7],xy\n");
    EXPECT_EQ(saved("\n", all), "False,0,0,0.0000,+0.0000000000000000E+0000,,[],\n");
}

TEST_F(TabSaving, TextsGoOutAsTheyStandWithoutTheirSeparators) {
    EXPECT_EQ(saved("1,\"a,b \"\"c\"\",\"\n2,\" d\"\n", pairs), "1,a?b \"c\"?\n2, d\n");
    EXPECT_EQ(saved("1,\"a,b\tc\"\n", pairs, {0, 0, '\t', -1}), "1\ta,b?c\n");
    EXPECT_EQ(saved("[1,3]\n", "x : set[1:5]\n"), "[1,3]\n");
}

TEST_F(TabSaving, HeaderAndFooterLinesFrameTheRows) {
    EXPECT_EQ(saved("1,a\n2,b\n", pairs, {1, 0, ',', -1}), "FIELD1,FIELD2\n1,a\n2,b\n");
    EXPECT_EQ(saved("1,a\n2,b\n", pairs, {2, 1, ',', -1}),
              "FIELD1,FIELD2\n------,------\n1,a\n2,b\n(2 rows affected)\n");
    EXPECT_EQ(saved("1,a\n", pairs, {2, 2, '\t', -1}),
              "FIELD1\tFIELD2\n------\t------\n1\ta\n\n(1 row affected)\n");
    EXPECT_EQ(saved("", pairs, {0, 2, ',', -1}), "\n(0 rows affected)\n");
    EXPECT_EQ(saved("7\n", "x : list\n\ti : integer\nend list\n", {1, 0, ',', -1}), "FIELD1\n7\n");
    EXPECT_EQ(saved("1,a\n", pairs, {1, 0, ',', -1}, "one\n\"tw,o\"\n"), "one,tw?o\n1,a\n");
    EXPECT_EQ(saved("1,a\n", pairs, {1, 0, ',', -1}, std::string(50, 'n') + "\n"),
              std::string(40, 'n') + ",FIELD2\n1,a\n");
}

TEST_F(TabSaving, WholeTextsGoOutUnchanged) {
    const char* const text = "x : string[90]\n";
    EXPECT_EQ(saved("a,b\n c", text), "a,b\n c\n");
    EXPECT_EQ(rows_, 2);
    EXPECT_EQ(saved("a,b\n", text, {1, 1, ',', -1}), "FIELD1\na,b\n(1 row affected)\n");
    EXPECT_EQ(saved("", text, {0, 1, ',', -1}), "(0 rows affected)\n");
    EXPECT_EQ(saved("a,b\n c", text, DefaultDataOptions(1)), "a,b\n c\n");
}

TEST_F(TabSaving, ATableGivesItsOwnNames) {
    TableValue table;
    TypeInfoToTable(String("t : table\n\tr : record\n\t\tid : integer\n\t\t\"first name\" : "
                           "string[20]\n\tend record\nend table\n")
                        .get(),
                    table.get());
    ASSERT_EQ(ErrorCell(), 0);
    files_.put("/d/in", "2,b\n1,a\n");
    ASSERT_EQ(TabLoad("/d/in", CommaRows, table.get(), KindTable).code, 0);
    ASSERT_EQ(TabSave("/d/out", {1, 1, ';', -1}, table.get(), KindTable, "x\ny\n").code, 0);
    EXPECT_EQ(files_.contents("/d/out"), "id;first name\n2;b\n1;a\n(2 rows affected)\n");
}

TEST_F(TabSaving, ScalarsAndArraysHaveRowsToo) {
    const std::int32_t number = 5;
    EXPECT_EQ(TabSave("/d/out", {1, 1, ',', -1}, &number, KindInteger).code, 0);
    EXPECT_EQ(files_.contents("/d/out"), "FIELD1\n5\n(1 row affected)\n");
    Typed characters("x : Tchars[1:3]\n");
    EXPECT_EQ(TabSave("/d/out", CommaRows, characters.get(), KindArray).code, 0);
    EXPECT_EQ(files_.contents("/d/out"), "0\n0\n0\n");
}

TEST_F(TabSaving, WhatHasNoCellsIsRefused) {
    Typed lists("x : list\n\ty : list\n\t\ti : integer\n\tend list\nend list\n");
    EXPECT_EQ(TabSave("/d/out", CommaRows, lists.get(), KindList).code, 658);
    EXPECT_EQ(TabSave("/d/out", {0, 0, '"', -1}, lists.get(), KindList).code, 757);
    EXPECT_EQ(TabSave("/d/out", CommaRows, nullptr, KindList).code, 764);
    EXPECT_FALSE(files_.has("/d/out"));
}

// ---- what goes wrong ----

TEST_F(TabSaving, AFailureAtAnyCallLeavesTheOldFileWhole) {
    Typed list("x : list\n\ti : integer\nend list\n");
    const std::int32_t number = 7;
    ListAppend(&number, KindInteger, list.get<ListDescriptor>());
    int failures = 0;
    for (int call = 1;; ++call) {
        files_.put("/d/out", "old\n");
        files_.failAt(call, os::FileError::DiskFull);
        const DataResult result = TabSave("/d/out", CommaRows, list.get(), KindList);
        files_.stopFailing();
        ASSERT_LT(call, 50);
        if (result.code == 0 && files_.contents("/d/out") == "7\n" && call > 12) break;
        if (result.code == 0) continue;
        ++failures;
        EXPECT_TRUE(result.code == 654 || result.code == 652) << call << " " << result.code;
        EXPECT_EQ(result.rows, 0);
        const std::string now = files_.contents("/d/out");
        EXPECT_TRUE(now == "old\n" || now == "7\n") << call;
    }
    EXPECT_GE(failures, 4);
}

TEST_F(TabSaving, AFullDiskAFolderAndAReadOnlyFileAreTold) {
    Typed list("x : list\n\ti : integer\nend list\n");
    const std::int32_t number = 7;
    ListAppend(&number, KindInteger, list.get<ListDescriptor>());
    files_.put("/d/out", "old\n", 0444);
    EXPECT_EQ(TabSave("/d/out", CommaRows, list.get(), KindList).code, 652);
    EXPECT_EQ(files_.contents("/d/out"), "old\n");
    EXPECT_EQ(TabSave("/d", CommaRows, list.get(), KindList).code, 652);
    EXPECT_EQ(TabSave("/none/out", CommaRows, list.get(), KindList).code, 652);
    EXPECT_EQ(TabSave("", CommaRows, list.get(), KindList).code, 657);
    files_.put("/d/other", "old\n");
    files_.setFreeBytes(1);
    EXPECT_EQ(TabSave("/d/other", CommaRows, list.get(), KindList).code, 654);
    EXPECT_EQ(files_.contents("/d/other"), "old\n");
}

TEST_F(TabSaving, AStoppedSaveLeavesTheOldFile) {
    Typed list("x : list\n\ts : string[1000]\nend list\n");
    const String text(std::string(1000, 'x'));
    for (int i = 0; i < 3000; ++i) ListAppend(text.get(), KindString, list.get<ListDescriptor>());
    files_.put("/d/out", "old\n");
    UseProgress([](std::int64_t done, std::int64_t total) { return done < total / 2; });
    const DataResult result = TabSave("/d/out", CommaRows, list.get(), KindList);
    EXPECT_TRUE(result.stopped);
    EXPECT_EQ(files_.contents("/d/out"), "old\n");
}

}  // namespace
}  // namespace tarn
