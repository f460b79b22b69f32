// SPDX-License-Identifier: Apache-2.0
//
// Index files: their names, sizes and bytes, the order of keys, and searching.
#include "kernel/index/index_file.h"
#include "kernel/index/index_filetree.h"
#include "unit/kernel/index_cases.h"
#include "unit/kernel/index_file_fixture.h"

using namespace tarn;
using namespace tarn::indexcases;

namespace {

std::string keyTextIn(const std::string& bytes) {
    return std::string(bytes.substr(IndexTextAt, MaxIndexText + 1).c_str());
}

// Bytes written as hexadecimal digits, with blanks anywhere.
std::string hex(std::string_view digits) {
    std::string bytes;
    int high = -1;
    for (const char c : digits) {
        if (c == ' ' || c == '\n') continue;
        const int digit = c <= '9' ? c - '0' : c - 'A' + 10;
        if (high >= 0) bytes += static_cast<char>(high * 16 + digit);
        high = high >= 0 ? -1 : digit;
    }
    return bytes;
}

std::int32_t sizeOfKey(const Cells& cells) {
    const RecordValue key = recordOf(cells);
    KeyView view;
    return KeyOfRecord(key.get(), view) ? IndexRecordSize(view) : -1;
}

// ---- names and sizes ----

TEST_F(IndexFiles, TheNameIsTheTablesWithTheNumberInItsExtension) {
    struct Case {
        const char* table;
        int index;
        const char* name;
    };
    constexpr Case cases[] = {
        {"orders.tab", 2, "orders.i2"},       {"folder/orders.tab", 1, "folder/orders.i1"},
        {"orders", 5, "orders.i5"},           {"a.b/orders", 3, "a.b/orders.i3"},
        {"a.b\\orders", 3, "a.b\\orders.i3"}, {"orders.old.tab", 4, "orders.old.i4"},
        {"orders.", 1, "orders.i1"},          {".tab", 1, ".i1"},
        {"d/orders.~sv", 2, "d/orders.~sv2"}, {"orders.~", 1, "orders.~1"},
    };
    for (const Case& c : cases) EXPECT_EQ(IndexFileName(c.table, c.index), c.name);
    EXPECT_EQ(MarkedIndexName("a.b/orders.i2", "~n"), "a.b/orders.~n2");
    EXPECT_EQ(MarkedIndexName("a.b/orders.~sv2", "~n"), "a.b/orders.~sv~n2");
}

TEST_F(IndexFiles, ARecordIsTheHeadAndThePackedKey) {
    struct Case {
        Cells key;
        std::int32_t size;
    };
    const Case cases[] = {
        {{flag(true)}, 25},
        {{ordinal(1)}, 25},
        {{integer(1)}, 28},
        {{fixedNumber(1)}, 32},
        {{real(1)}, 32},
        {{text("a", 10)}, 38},
        {{characters("a", 7)}, 31},
        {{integer(1), text("a", 3), characters("a", 2), real(1)}, 24 + 4 + 7 + 2 + 8},
        {{text("a")}, 0},
        {{integer(1), text("a")}, 0},
    };
    for (const Case& c : cases) EXPECT_EQ(sizeOfKey(c.key), c.size);
}

TEST_F(IndexFiles, ABlockTellsHowItsIndexIsHeld) {
    const IndexBlock held = IndexFileBlock("a.i1", recordOf({integer(0), text("", 5)}).get());
    EXPECT_EQ(held.headerSize, 1104);
    EXPECT_EQ(held.recordSize, 37);
    EXPECT_EQ(held.fileName, "a.i1");
    EXPECT_EQ(IndexFileBlock("a.i1", nullptr).recordSize, -1);
    EXPECT_EQ(IndexFileBlock("a.i1", recordOf({text("")}).get()).recordSize, -1);
    const IndexBlock memory;
    EXPECT_EQ(memory.headerSize, 0);
    EXPECT_EQ(memory.recordSize, 0);
}

// ---- the bytes ----

TEST_F(IndexFiles, ANewFileIsItsHeader) {
    disk.putFolder("/d");
    EXPECT_TRUE(
        CreateIndexFile("/d/orders.i2", "/d/orders.tab", "Index2 : record\n\tid : integer\nend record\n"));
    std::string expected = hex("00000450 00000000") + "orders.tab";
    expected.resize(49);
    expected += "Index2 : record\n\tid : integer\nend record\n";
    expected.resize(1104);
    EXPECT_TRUE(disk.contents("/d/orders.i2") == expected);
    EXPECT_EQ(keyTextIn(disk.contents("/d/orders.i2")), "Index2 : record\n\tid : integer\nend record\n");
}

TEST_F(IndexFiles, ANewFileTakesThePlaceOfAnOldOne) {
    disk.put(path, std::string(5000, 'x'));
    EXPECT_TRUE(CreateIndexFile(path, "t.tab", ""));
    EXPECT_EQ(bytes().size(), 1104U);
    EXPECT_EQ(bytes().substr(8, 41), "t.tab" + std::string(36, '\0'));
}

TEST_F(IndexFiles, LongNamesAreCutAndLongTextsEndBehindALine) {
    disk.putFolder("/d");
    const std::string line(99, 'a');
    std::string tenLines, text;
    for (int i = 0; i < 10; ++i) tenLines += line + "\n";
    text = tenLines + std::string(23, 'b') + "\n";  // as long as it may be
    EXPECT_TRUE(CreateIndexFile(path, "/d/" + std::string(41, 'n'), text));
    EXPECT_EQ(bytes().substr(8, 41), std::string(40, 'n') + '\0');
    EXPECT_EQ(keyTextIn(bytes()), text);
    EXPECT_EQ(bytes().substr(1073, 7), std::string(7, '\0'));
    EXPECT_TRUE(CreateIndexFile(path, "d\\" + std::string(40, 'n'), tenLines + std::string(24, 'b') + "\n"));
    EXPECT_EQ(bytes().substr(8, 41), std::string(40, 'n') + '\0');
    EXPECT_EQ(keyTextIn(bytes()), tenLines);
    EXPECT_TRUE(CreateIndexFile(path, "t", std::string(1025, 'c')));
    EXPECT_EQ(keyTextIn(bytes()), "");
    EXPECT_EQ(bytes().size(), 1104U);
}

TEST_F(IndexFiles, AFileThatIsNoIndexNamesNoTable) {
    EXPECT_EQ(IndexTableName("/d/none"), "");
    disk.put(path, std::string(1103, 'x'));
    EXPECT_EQ(IndexTableName(path), "");
    disk.put(path, std::string(1104, 'x'));
    EXPECT_EQ(IndexTableName(path), "");
    disk.put(path, hex("00000450") + std::string(1100, 'x'));  // without an end
    EXPECT_EQ(IndexTableName(path), std::string(40, 'x'));
}

TEST_F(IndexFiles, NodesStandBehindTheHeaderInTheOrderOfTheirMaking) {
    make({integer(0), text("", 3)});
    EXPECT_EQ(insert({integer(5), text("b", 3)}, 1), 0);
    EXPECT_EQ(insert({integer(-2), text("abc", 3)}, 2), 0);
    EXPECT_EQ(insert({integer(9), text("", 3)}, 300), 0);
    EXPECT_EQ(bytes().substr(1080), hex("00000000 00000000 00000001 00000000 00000000 00000000"
                                        "00000001 00000000 00000000 00000000 00000002 00000003"
                                        "00000005 00000001 620000"
                                        "00000002 00000000 00000000 00000000 00000000 00000000"
                                        "FFFFFFFE 00000003 616263"
                                        "0000012C 00000000 00000000 00000000 00000000 00000000"
                                        "00000009 00000000 000000"));
}

TEST_F(IndexFiles, FreeRecordsAreADoubleList) {
    make({integer(0)});
    for (const int key : {5, 3, 9}) EXPECT_EQ(insert({integer(key)}, key), 0);
    remove({integer(3)});
    EXPECT_EQ(bytes().substr(1080), hex("00000000 00000000 00000001 00000002 00000000 00000000"
                                        "00000005 00000001 00000000 00000000 00000000 00000003 00000005"
                                        "00000003 FFFFFC19 00000000 00000000 00000000 00000000 00000003"
                                        "00000009 00000000 00000000 00000000 00000000 00000000 00000009"));
    remove({integer(5)});
    EXPECT_EQ(bytes().substr(1080), hex("00000000 00000000 00000003 00000001 00000000 00000000"
                                        "00000005 FFFFFC19 00000000 00000000 00000000 00000002 00000005"
                                        "00000003 FFFFFC19 00000000 00000000 00000001 00000000 00000003"
                                        "00000009 00000000 00000000 00000000 00000000 00000000 00000009"));
    EXPECT_EQ(check(), "");
    remove({integer(9)});
    EXPECT_EQ(bytes().substr(1080), std::string(24, '\0'));
}

TEST_F(IndexFiles, NumbersAreBigEndianButReals) {
    make({flag(false), ordinal(0), fixedNumber(0), real(0)});
    EXPECT_EQ(insert({flag(true), ordinal(254), fixedNumber(-12500), real(1.5)}, 1), 0);
    EXPECT_EQ(bytes().substr(1128), hex("01 FE FFFFFFFFFFFFCF2C 000000000000F83F"));
    make({characters("", 4), integer(0)});
    EXPECT_EQ(insert({characters("ab", 4), integer(66051)}, 1), 0);
    EXPECT_EQ(bytes().substr(1128), hex("61622020 00010203"));
}

TEST_F(IndexFiles, AFileOfAnyMakerIsRead) {
    std::string file = hex("00000450 00000000") + "t.tab";
    file.resize(1080);
    file += hex("00000000 00000000 00000002 00000000 00000000 00000000"
                "00000007 00000000 00000000 00000000 00000000 00000000 00000001"
                "00000008 00000000 00000000 00000000 00000001 00000003 00000002"
                "00000009 00000000 00000000 00000000 00000000 00000000 00000003");
    make({integer(0)});
    put(file);
    for (const int key : {1, 2, 3}) EXPECT_EQ(find("EQ", {integer(key)}), key + 6);
    EXPECT_EQ(picture(), "|-[1 0]\n[2 0]\n|-[3 0]");
    EXPECT_EQ(check(), "");
    EXPECT_EQ(check(9), "Row 1 has no node.");
}

// ---- keys ----

TEST_F(IndexFiles, KeysOfEveryKindHaveTheirOrder) {
    for (const std::vector<Cells>& keys : ascendingKeys()) {
        make(keys[0]);
        for (std::size_t i = keys.size(); i-- > 0;)
            EXPECT_EQ(insert(keys[i], static_cast<std::int32_t>(i)), 0);
        for (std::size_t i = 0; i < keys.size(); ++i) {
            const auto row = static_cast<std::int32_t>(i);
            EXPECT_EQ(insert(keys[i], 99), 635);
            EXPECT_EQ(find("EQ", keys[i]), row);
            EXPECT_EQ(find("LT", keys[i]), row - 1);
            EXPECT_EQ(find("GT", keys[i]), i + 1 < keys.size() ? row + 1 : -1);
            RecordValue found = recordOf(shape);
            EXPECT_TRUE(IndexFind("EQ", &root, block, recordOf(keys[i]).get(), found.get()).found);
            EXPECT_TRUE(sameCells(cellsOf(found.get(), shape), keys[i]));
        }
        EXPECT_EQ(check(), "");
    }
}

TEST_F(IndexFiles, ZerosOfBothSignsAreOneKey) {
    make({real(0)});
    EXPECT_EQ(insert({real(0.0)}, 1), 0);
    EXPECT_EQ(insert({real(-0.0)}, 2), 635);
    EXPECT_EQ(insert({real(-NaN)}, 2), 0);
    EXPECT_EQ(insert({real(NaN)}, 3), 635);
}

TEST_F(IndexFiles, WideCharactersStandAndCompareWhole) {
    CharacterWidth = 2;
    make({text("", 3)});
    EXPECT_EQ(block.recordSize, 24 + 4 + 6);
    EXPECT_EQ(insert({text("b", 3)}, 1), 0);
    EXPECT_EQ(insert({text("ab", 3)}, 2), 0);
    EXPECT_EQ(bytes().substr(1128, 10), hex("00000001 620000000000"));
    RecordValue wide = recordOf({text("a", 3)});
    auto* s = static_cast<StringDescriptor*>(RecordFieldAddress(wide.get(), 1));
    WriteAt(At(s->data), std::uint16_t{0x0161});  // above "b", though its low byte is not
    EXPECT_EQ(IndexFind("LT", &root, block, wide.get()).row, 1);
    EXPECT_EQ(find("GT", {text("a", 3)}), 2);
    EXPECT_EQ(find("EQ", {text("ab", 3)}), 2);
    RecordValue found = recordOf({text("", 3)});
    EXPECT_TRUE(IndexFind("FIRST", &root, block, nullptr, found.get()).found);
    EXPECT_EQ(cellsOf(found.get(), shape)[0].text, std::string("a\0b\0", 4));
    EXPECT_EQ(check(), "");
    CharacterWidth = 1;
}

TEST_F(IndexFiles, KeysMayBeLargerThanWhatIsReadAtOnce) {
    const auto key = [](char at3000, int number, const std::string& second) {
        std::string first(5000, 'a');
        first[3000] = at3000;
        return Cells{text(first, 5000), characters(second, 1500), integer(number)};
    };
    make(key('a', 0, ""));
    const std::vector<Cells> ascending = {
        {text("a", 5000), characters("", 1500), integer(1)},
        {text(std::string(2999, 'a'), 5000), characters("", 1500), integer(1)},
        key('a', 1, std::string(1499, 'x')),
        key('a', 1, std::string(1500, 'x')),
        key('a', 2, std::string(1500, 'x')),
        key('b', -1, ""),
        key('b', 1, ""),
    };
    for (std::size_t i = ascending.size(); i-- > 0;)
        EXPECT_EQ(insert(ascending[i], static_cast<std::int32_t>(i)), 0);
    for (std::size_t i = 0; i < ascending.size(); ++i) {
        const auto row = static_cast<std::int32_t>(i);
        EXPECT_EQ(find("EQ", ascending[i]), row);
        EXPECT_EQ(find("LT", ascending[i]), row - 1);
        RecordValue found = recordOf(shape);
        EXPECT_EQ(IndexFind("GE", &root, block, recordOf(ascending[i]).get(), found.get()).row, row);
        EXPECT_TRUE(sameCells(cellsOf(found.get(), shape), ascending[i]));
    }
    EXPECT_EQ(check(), "");
    remove(ascending[3]);
    EXPECT_EQ(find("GT", ascending[2]), 4);
    EXPECT_EQ(check(), "");
}

// ---- searching ----

TEST_F(IndexFiles, OperatorsFindNeighbours) {
    makeIntegers({10, 20, 30, 40, 50});
    for (const Search& c : searches) EXPECT_EQ(find(c.op, {integer(c.key)}), c.row) << c.op << " " << c.key;
}

TEST_F(IndexFiles, FirstAndLastTakeNoKey) {
    makeIntegers({1, 2});
    EXPECT_EQ(IndexFind("FIRST", &root, block, nullptr).row, 10);
    EXPECT_EQ(IndexFind("LAST", &root, block, recordOf({text("x")}).get()).row, 20);
    RecordValue found = recordOf({integer(0)});
    EXPECT_EQ(IndexFind("LAST", &root, block, nullptr, found.get()).row, 20);
    EXPECT_EQ(cellsOf(found.get(), shape)[0].number, 2);
}

TEST_F(IndexFiles, TheKeyThatWasFoundIsGiven) {
    make({integer(0), text("", 8)});
    EXPECT_EQ(insert({integer(5), text("five", 8)}, 1), 0);
    EXPECT_EQ(insert({integer(5), text("fix", 8)}, 2), 0);
    const RecordValue key = recordOf({integer(5), text("fj", 8)});
    RecordValue found = recordOf({integer(0), text("", 8)});
    EXPECT_EQ(IndexFind("LT", &root, block, key.get(), found.get()).row, 2);
    EXPECT_TRUE(sameCells(cellsOf(found.get(), shape), {integer(5), text("fix", 8)}));
    EXPECT_EQ(IndexFind("LT", &root, block, found.get(), found.get()).row, 1);
    EXPECT_FALSE(IndexFind("LT", &root, block, found.get(), found.get()).found);
    EXPECT_TRUE(sameCells(cellsOf(found.get(), shape), {integer(5), text("five", 8)}));
    EXPECT_EQ(AdtCheck(found.get(), KindRecord), "");
}

TEST_F(IndexFiles, RowsOfKeysCanBeChanged) {
    makeIntegers({1, 2, 3});
    IndexUpdateRow(&root, block, recordOf({integer(3)}).get(), 77);
    EXPECT_EQ(find("EQ", {integer(3)}), 77);
    EXPECT_EQ(check(), "");
    IndexUpdateRow(&root, block, recordOf({integer(4)}).get(), 77);
    EXPECT_EQ(takeError(), 604);
}

TEST_F(IndexFiles, AbsentAndDuplicateKeysChangeNothing) {
    makeIntegers({1, 2, 3});
    const std::string before = bytes();
    EXPECT_EQ(insert({integer(2)}, 99), 635);
    EXPECT_EQ(takeError(), 0);
    remove({integer(4)});
    EXPECT_EQ(takeError(), 604);
    EXPECT_TRUE(bytes() == before);
}

}  // namespace
