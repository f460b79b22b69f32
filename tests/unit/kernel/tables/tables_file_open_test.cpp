// SPDX-License-Identifier: Apache-2.0
//
// Tables whose rows stand in a file: what is opened again, and what cannot be.
#include "kernel/data/typeinfo/typeinfo.h"
#include "unit/kernel/tablesinfiles_fixture.h"

namespace tarn {
namespace {

// ---- opening and closing ----

TEST_F(TablesInFiles, AClosedTableOpensAgainAsItWas) {
    make();
    fill(10);
    EXPECT_EQ(remove(1, {integer(4)}), 0);
    const Rows before = rows();
    close();
    EXPECT_FALSE(FileExists(t(), KindTable));
    EXPECT_EQ(t()->count, 0);
    ASSERT_EQ(open(), 0);
    EXPECT_TRUE(same(rows(), before));
    EXPECT_EQ(find("EQ", 2, {text("n7")}), 7);
    expectWhole();
}

TEST_F(TablesInFiles, AClosedTableIsOnTheDisk) {
    make();
    fill(10);
    EXPECT_EQ(remove(1, {integer(4)}), 0);
    EXPECT_EQ(rebuild(), 0);
    const Rows before = rows();
    close();
    files().afterMachineDeath(os::SteeredFiles::Names::Lost);
    ASSERT_EQ(open(), 0);
    EXPECT_TRUE(same(rows(), before));
    expectWhole();
}

TEST_F(TablesInFiles, AnIndexThatIsMissingOrTooShortOrOfTheWrongSizeIs656) {
    make();
    fill(3);
    close();
    const std::string whole = bytes("a.i2");
    struct Case {
        const char* what;
        std::string bytes;
        std::int32_t error;
    };
    const Case cases[] = {
        {"whole", whole, 0},
        {"a node less", whole.substr(0, whole.size() - 36), 656},
        {"a node more", whole + std::string(36, '\0'), 0},
        {"a byte more", whole + "x", 656},
        {"no nodes", whole.substr(0, 1104), 656},
        {"half a header", whole.substr(0, 500), 656},
        {"nothing", "", 656},
    };
    for (const Case& c : cases) {
        files().put("/d/a.i2", c.bytes);
        EXPECT_EQ(open(), c.error) << c.what;
        EXPECT_EQ(FileExists(t(), KindTable), c.error == 0) << c.what;
        if (c.error == 0) close();
    }
    (void)files().remove("/d/a.i2");
    EXPECT_EQ(open(), 656);
    files().putFolder("/d/a.i2");
    EXPECT_EQ(open(), 656);
}

TEST_F(TablesInFiles, TheIndexesOfAnEmptyTableAreMadeAnew) {
    make();
    close();
    (void)files().remove("/d/a.i1");
    files().put("/d/a.i2", std::string(3000, 'x'));
    ASSERT_EQ(open(), 0);
    expectWhole();
    EXPECT_EQ(add(row(1, "a")), 0);
    expectWhole();
}

TEST_F(TablesInFiles, AnIndexOfTheWrongSizeFailsInEachOperation) {
    make({byNumber});
    fill(3);
    files().put("/d/a.i1", bytes("a.i1") + "x");
    EXPECT_EQ(add(row(4, "d")), 656);
    EXPECT_EQ(find("FIRST", 1, {integer(0)}), -1);
    EXPECT_EQ(takeError(), 656);
    EXPECT_EQ(update(1, {integer(1)}, row(5, "e")), 656);
    EXPECT_EQ(remove(1, {integer(1)}), 656);
    EXPECT_EQ(numbers(), (Numbers{1, 2, 3}));
    EXPECT_EQ(rebuild(), 0);
    expectWhole();
}

TEST_F(TablesInFiles, AnotherTypeTextIs762) {
    const char* const text = "number : integer\nname : string[8]\nweight : real\ncode : Tchars[1:3]\n";
    const std::string wrong = "number : integer\nname : string[9]\nweight : real\ncode : Tchars[1:3]\n";
    table = closedTable({byNumber}, UNBOUNDED, row(0, ""), text);
    EXPECT_EQ(open(), 0);
    table = closedTable({byNumber}, UNBOUNDED, row(0, ""), wrong);
    EXPECT_EQ(open("/d/b.tab"), 762);
    EXPECT_FALSE(files().has("/d/b.tab"));
}

TEST_F(TablesInFiles, NamesThatAreNoIdentifiersStandInQuotes) {
    const std::string fields =
        "\"A B\" : integer\n\"end\" : string[8]\n\"1ST\" : real\n\"a;b\" : Tchars[1:3]\n";
    std::string inner = fields;
    TypeInfoChangeIndent(1, inner, MaxTypeInfo);
    int n = 0;
    for (const std::string& text : {fields, "T : record\n" + inner + "end record\n"}) {
        table = closedTable({byNumber}, UNBOUNDED, row(0, ""), text);
        const std::string name = "/d/q" + std::to_string(++n) + ".tab";
        EXPECT_EQ(open(name), 0) << text;
        close();
    }
    std::string wrong = fields;
    wrong.replace(wrong.find('8'), 1, "9");
    table = closedTable({byNumber}, UNBOUNDED, row(0, ""), wrong);
    EXPECT_EQ(open("/d/w.tab"), 762);
}

TEST_F(TablesInFiles, WhatCannotBeOpenedSaysWhy) {
    make({byNumber}, 5);
    fill(5);
    close();
    TableValue small = closedTable({byNumber}, 4), memory;
    FileOpen(small.get(), KindTable, "/d/a.tab");
    EXPECT_EQ(takeError(), 619);
    TableInit(memory.get(), UNBOUNDED, recordOf(row(0, "")).get(), {byNumber}, "", false);
    FileOpen(memory.get(), KindTable, "/d/a.tab");
    EXPECT_EQ(takeError(), 660);
    const Cells free = {integer(0), text("")};
    TableValue unpackable = closedTable({byNumber}, UNBOUNDED, free);
    FileOpen(unpackable.get(), KindTable, "/d/c.tab");
    EXPECT_EQ(takeError(), 660);
    EXPECT_EQ(open(""), 661);
    EXPECT_EQ(open("/d/"), 657);
    EXPECT_EQ(open("/d/" + std::string(250, 'x') + ".tab"), 657);
    EXPECT_EQ(open("/d/a.dbf"), 658);
    ASSERT_EQ(open(), 0);
    EXPECT_EQ(open(), 764);
    close();
    files().put("/d/a.tab", bytes("a.tab").substr(0, 100));
    EXPECT_EQ(open(), 655);
    EXPECT_EQ(names(), (Names{"a.i1", "a.tab"}));
}

TEST_F(TablesInFiles, AKeyOfFreeTextCannotStandInAFile) {
    table = closedTable({0x02000000}, UNBOUNDED, {integer(0), text("")});
    EXPECT_EQ(open(), 660);
    EXPECT_EQ(names(), Names());
}

}  // namespace
}  // namespace tarn
