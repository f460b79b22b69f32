// SPDX-License-Identifier: Apache-2.0
#include "kernel/index/index_file.h"

#include "kernel/index/index_filecheck.h"
#include "kernel/index/index_filedisk.h"
#include "kernel/index/index_filetree.h"
#include "support/tempfolder.h"
#include "unit/kernel/index_cases.h"
#include "unit/kernel/index_file_fixture.h"

using namespace tarn;
using namespace tarn::indexcases;

namespace {

using os::FileCall;
using os::FileError;

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

// ---- shape ----

TEST_F(IndexFiles, AHeaderAloneIsAnEmptyTree) {
    make({integer(0)});
    EXPECT_FALSE(IndexFind("FIRST", &root, block, nullptr).found);
    EXPECT_FALSE(IndexFind("LAST", &root, block, nullptr).found);
    EXPECT_EQ(find("EQ", {integer(1)}), -1);
    EXPECT_EQ(find("GE", {integer(1)}), -1);
    EXPECT_EQ(IndexCount(&root, block), 0);
    EXPECT_EQ(IndexHeight(&root, block).height, 0);
    EXPECT_EQ(picture(), "Index is empty.");
    EXPECT_EQ(check(0), "");
}

TEST_F(IndexFiles, InsertingTurnsAsTheBalancesSay) {
    for (const Insertion& c : insertions) {
        makeIntegers(c.keys);
        EXPECT_EQ(form(), c.form);
        EXPECT_EQ(check(), "");
        EXPECT_EQ(IndexHeight(&root, block).bad, 0U);
    }
}

TEST_F(IndexFiles, DeletingTurnsAsTheBalancesSay) {
    for (const Deletion& c : deletions) {
        SCOPED_TRACE(c.what);
        makeIntegers(c.keys);
        remove({integer(c.gone)});
        EXPECT_EQ(form(), c.form);
        EXPECT_EQ(check(), "");
        EXPECT_EQ(IndexCount(&root, block), static_cast<std::int32_t>(c.keys.size()) - 1);
    }
}

TEST_F(IndexFiles, DeletingTheOnlyKeyLeavesTheHeader) {
    makeIntegers({1});
    EXPECT_EQ(bytes().size(), 1132U);
    remove({integer(1)});
    EXPECT_EQ(bytes().size(), 1104U);
    EXPECT_EQ(rootRecord(), 0);
}

TEST_F(IndexFiles, AFreedRecordIsUsedBeforeTheFileGrows) {
    makeIntegers({1, 2, 3, 4, 5});
    remove({integer(2)});
    remove({integer(3)});
    EXPECT_EQ(firstFree(), 3);
    EXPECT_EQ(insert({integer(8)}, 80), 0);
    EXPECT_EQ(firstFree(), 2);
    EXPECT_EQ(word(at(2, 4)), 0);  // none before it now
    EXPECT_EQ(word(at(3) + 24), 8);
    EXPECT_EQ(insert({integer(9)}, 90), 0);
    EXPECT_EQ(firstFree(), 0);
    EXPECT_EQ(records(), 5);
    EXPECT_EQ(insert({integer(10)}, 100), 0);
    EXPECT_EQ(records(), 6);
    EXPECT_EQ(check(), "");
}

TEST_F(IndexFiles, TheLastRecordGoesWithTheFreeOnesBeforeIt) {
    makeIntegers({1, 2, 3, 4, 5, 6});
    for (const int key : {5, 2, 4}) remove({integer(key)});
    EXPECT_EQ(records(), 6);
    EXPECT_EQ(firstFree(), 4);
    remove({integer(6)});  // 4 was the first of the list, 5 the last
    EXPECT_EQ(records(), 3);
    EXPECT_EQ(firstFree(), 2);
    EXPECT_EQ(check(), "");
    remove({integer(3)});
    EXPECT_EQ(records(), 1);
    EXPECT_EQ(firstFree(), 0);
    EXPECT_EQ(check(), "");
}

TEST_F(IndexFiles, ARecordInTheMiddleOfTheFreeListCanBeCutOff) {
    makeIntegers({1, 2, 3, 4, 5, 6, 7});
    for (const int key : {2, 6, 4}) remove({integer(key)});  // 4, 6, 2 in the list
    remove({integer(7)});
    EXPECT_EQ(records(), 5);
    EXPECT_EQ(firstFree(), 4);
    EXPECT_EQ(word(at(4, 5)), 2);
    EXPECT_EQ(word(at(2, 4)), 4);
    EXPECT_EQ(check(), "");
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

// ---- errors ----

using Call = std::function<void()>;

TEST_F(IndexFiles, ANullRootComesBeforeAllElse) {
    const IndexBlock nowhere = IndexFileBlock("/d/none", nullptr);
    String text;
    const Call calls[] = {
        [&] { IndexOpen(nullptr, nowhere, nullptr); },
        [&] { IndexInsert(nullptr, nowhere, nullptr, 1); },
        [&] { IndexDelete(nullptr, nowhere, nullptr); },
        [&] { IndexUpdateRow(nullptr, nowhere, nullptr, 1); },
        [&] { EXPECT_FALSE(IndexFind("XX", nullptr, nowhere, nullptr).found); },
        [&] { EXPECT_EQ(IndexCount(nullptr, nowhere), 0); },
        [&] { EXPECT_EQ(IndexHeight(nullptr, nowhere).height, 0); },
        [&] { IndexPrint(nullptr, nowhere, text.get()); },
        [&] { IndexClear(nullptr, nowhere); },
    };
    for (const Call& call : calls) {
        call();
        EXPECT_EQ(takeError(), 763);
    }
}

TEST_F(IndexFiles, AWrongKeyComesBeforeTheFile) {
    make({integer(0)});
    disk.putFolder("/d");
    EXPECT_EQ(disk.remove(path), FileError::None);
    IndexFind("XX", &root, block, nullptr);
    EXPECT_EQ(takeError(), 636);
    const Cells wrong[] = {
        {text("a", 4)}, {fixedNumber(1)}, {integer(1), integer(2)}, {text("a")}, {real(1)}};
    for (const Cells& key : wrong) {
        RecordValue record = recordOf(key);
        const Call calls[] = {
            [&] { IndexOpen(&root, block, record.get()); },
            [&] { IndexInsert(&root, block, record.get(), 1); },
            [&] { IndexDelete(&root, block, record.get()); },
            [&] { IndexUpdateRow(&root, block, record.get(), 1); },
            [&] { IndexFind("EQ", &root, block, record.get()); },
            [&] { IndexFind("FIRST", &root, block, nullptr, record.get()); },
        };
        for (const Call& call : calls) {
            call();
            EXPECT_EQ(takeError(), 636);
        }
    }
    IndexOpen(&root, block, nullptr);
    EXPECT_EQ(takeError(), 636);
    IndexFind("EQ", &root, block, nullptr);
    EXPECT_EQ(takeError(), 636);
}

// A key of the same size and another kind: the kinds are part of the block.
TEST_F(IndexFiles, AKeyOfTheSameSizeAndAnotherKindIsAnError) {
    make({fixedNumber(0)});
    EXPECT_EQ(insert({real(1)}, 1), 0);
    EXPECT_EQ(takeError(), 636);
    make({text("", 3), text("", 5)});
    EXPECT_EQ(insert({text("", 5), text("", 3)}, 1), 0);
    EXPECT_EQ(takeError(), 636);
}

class EachOperation : public IndexFiles {
protected:
    // Runs every operation that opens the file, with the error that it must give.
    void expectAll(std::int32_t error) {
        const RecordValue key = recordOf(shape);
        const Call calls[] = {
            [&] { IndexOpen(&root, block, key.get()); },
            [&] { IndexInsert(&root, block, key.get(), 1); },
            [&] { IndexDelete(&root, block, key.get()); },
            [&] { IndexUpdateRow(&root, block, key.get(), 1); },
            [&] { EXPECT_FALSE(IndexFind("EQ", &root, block, key.get()).found); },
            [&] { EXPECT_FALSE(IndexFind("FIRST", &root, block, nullptr).found); },
            [&] { EXPECT_EQ(IndexCount(&root, block), 0); },
            [&] { EXPECT_EQ(IndexHeight(&root, block).height, 0); },
            [&] { IndexClear(&root, block); },
        };
        for (const Call& call : calls) {
            call();
            EXPECT_EQ(takeError(), error);
            EXPECT_EQ(disk.openHandles(), 0);
        }
        EXPECT_EQ(picture(), "Cannot open table index.");
        EXPECT_EQ(takeError(), 0);
        EXPECT_NE(check(), "");
    }
};

TEST_F(EachOperation, FindsThatTheFileIsGone) {
    make({integer(0)});
    EXPECT_EQ(disk.remove(path), FileError::None);
    expectAll(653);
    block.fileName = "/none/t.i1";
    expectAll(653);
}

TEST_F(EachOperation, FindsASizeThatIsNotThatOfWholeNodes) {
    makeIntegers({1, 2, 3});
    const std::string whole = bytes();
    for (const std::size_t size : {0U, 1U, 1103U, 1105U, 1131U, 1104U + 3 * 28 - 1}) {
        put(whole.substr(0, size));
        expectAll(656);
    }
    put(whole + "x");
    expectAll(656);
}

TEST_F(EachOperation, FindsADamagedHeader) {
    makeIntegers({1, 2, 3});
    const std::string whole = bytes();
    struct Damage {
        std::int64_t at;
        std::int32_t value;
    };
    constexpr Damage damages[] = {{0, 1105}, {0, 0}, {1088, 4}, {1088, -1}, {1092, 4}, {1092, -1}};
    for (const Damage& damage : damages) {
        putWord(damage.at, damage.value);
        expectAll(763);
        put(whole);
    }
}

TEST_F(IndexFiles, AFileThatCannotBeReadOrWrittenIsAnError) {
    makeIntegers({1, 2});
    disk.put(path, bytes(), 0444);
    EXPECT_EQ(find("EQ", {integer(1)}), 10);
    EXPECT_EQ(insert({integer(3)}, 30), 0);
    EXPECT_EQ(takeError(), 652);
    disk.put(path, bytes(), 0);
    EXPECT_EQ(find("EQ", {integer(1)}), -1);
    EXPECT_EQ(takeError(), 651);
    disk.put(path, bytes(), 0644);
    block.fileName = "/d";
    EXPECT_EQ(find("EQ", {integer(1)}), -1);
    EXPECT_EQ(takeError(), 651);
    block.fileName = "";
    EXPECT_EQ(find("EQ", {integer(1)}), -1);
    EXPECT_EQ(takeError(), 657);
    block.fileName = path;
}

// ---- keeping the file open ----

TEST_F(IndexFiles, IndexOpenKeepsTheFileOpenForWhatFollows) {
    makeIntegers({1, 2, 3});
    const RecordValue key = recordOf(shape);
    IndexOpen(&root, block, key.get());
    EXPECT_EQ(disk.openHandles(), 1);
    disk.failAlways(FileCall::OpenRead, FileError::Denied);
    EXPECT_EQ(find("EQ", {integer(2)}), 20);
    EXPECT_EQ(find("LAST", {integer(2)}), 30);
    disk.stopFailing();
    EXPECT_EQ(insert({integer(4)}, 40), 0);  // opens it for writing, and keeps that
    disk.failAlways(FileCall::OpenRead, FileError::Denied);
    disk.failAlways(FileCall::Open, FileError::Denied);
    EXPECT_EQ(insert({integer(5)}, 50), 0);
    EXPECT_EQ(find("EQ", {integer(5)}), 50);
    EXPECT_EQ(disk.openHandles(), 1);
    IndexClose(block);
    EXPECT_EQ(disk.openHandles(), 0);
    EXPECT_EQ(find("EQ", {integer(5)}), -1);
    EXPECT_EQ(takeError(), 651);
    disk.stopFailing();
    EXPECT_EQ(check(), "");
}

TEST_F(IndexFiles, OneFileIsKeptOpenAtATime) {
    makeIntegers({1, 2, 3});
    const RecordValue key = recordOf(shape);
    const IndexBlock first = block;
    disk.put("/d/t.i2", bytes());
    block.fileName = "/d/t.i2";
    IndexOpen(&root, first, key.get());
    EXPECT_EQ(find("EQ", {integer(2)}), 20);  // of another file
    EXPECT_EQ(disk.openHandles(), 0);
    IndexOpen(&root, first, key.get());
    IndexOpen(&root, block, key.get());
    EXPECT_EQ(disk.openHandles(), 1);
    IndexClose(first);
    EXPECT_EQ(disk.openHandles(), 1);
    IndexClose(block);
    EXPECT_EQ(disk.openHandles(), 0);
    IndexOpen(&root, first, key.get());
    EXPECT_TRUE(CreateIndexFile(path, "t.tab", ""));
    EXPECT_EQ(disk.openHandles(), 0);
    EXPECT_EQ(IndexCount(&root, first), 0);
    IndexClose(first);
}

TEST_F(IndexFiles, OpeningAnIndexInMemoryDoesNothing) {
    IndexOpen(nullptr, IndexBlock{}, nullptr);
    IndexClose(IndexBlock{});
}

// ---- height, picture, clearing ----

TEST_F(IndexFiles, HeightNamesTheFirstBadBalance) {
    makeIntegers({4, 2, 6, 1, 3, 5, 7, 8});
    EXPECT_EQ(IndexCount(&root, block), 8);
    EXPECT_EQ(IndexHeight(&root, block).height, 4);
    EXPECT_EQ(IndexHeight(&root, block).bad, 0U);
    for (const std::int32_t wrong : {-1, 0, 5, -999}) {
        putWord(at(3, 1), wrong);  // of the node with key 6
        EXPECT_EQ(IndexHeight(&root, block).height, 4);
        EXPECT_EQ(IndexHeight(&root, block).bad, 3U);
    }
}

TEST_F(IndexFiles, PrintDrawsTheTree) {
    makeIntegers({2, 1, 4, 3, 6, 5, 7});
    EXPECT_EQ(picture(), "  |-[1 0]\n"
                         "|-[2 0]\n"
                         "| |-[3 0]\n"
                         "[4 0]\n"
                         "| |-[5 0]\n"
                         "|-[6 0]\n"
                         "  |-[7 0]");
}

TEST_F(IndexFiles, PrintShowsKeysOfSeveralFieldsOnOneLine) {
    make({flag(false), ordinal(0), fixedNumber(0), text("", 5)});
    EXPECT_EQ(insert({flag(true), ordinal(3), fixedNumber(12500), text("a\nb", 5)}, 1), 0);
    EXPECT_EQ(picture(), "[True,3,1.2500,a.b 0]");
    make({real(0), characters("", 3)});
    EXPECT_EQ(insert({real(-0.5), characters("xy", 3)}, 1), 0);
    EXPECT_EQ(picture(), "[-5.0000000000000000E-0001,xy  0]");
}

TEST_F(IndexFiles, PrintRefusesMoreThan32Nodes) {
    make({integer(0)});
    for (int i = 1; i <= 32; ++i) EXPECT_EQ(insert({integer(i)}, i), 0);
    EXPECT_NE(picture().find("[32 0]"), std::string::npos);
    EXPECT_EQ(insert({integer(33)}, 33), 0);
    EXPECT_EQ(picture(), "Cannot print, too many nodes (maximum is 32).");
}

TEST_F(IndexFiles, PrintOfADamagedTreeIsAnError) {
    makeIntegers({2, 1, 3});
    putWord(at(1, 5), 1);  // the root's right child is the root
    EXPECT_EQ(picture(), "");
    EXPECT_EQ(takeError(), 763);
}

TEST_F(IndexFiles, PrintThatCannotOpenTheFileLeavesAnErrorThatIsThere) {
    make({integer(0)});
    EXPECT_EQ(disk.remove(path), FileError::None);
    SetError(604);
    EXPECT_EQ(picture(), "Cannot open table index.");
    EXPECT_EQ(takeError(), 604);
}

TEST_F(IndexFiles, ClearingLeavesTheHeader) {
    makeIntegers({1, 2, 3, 4});
    const std::string text = bytes().substr(0, 1080);
    remove({integer(2)});
    IndexClear(&root, block);
    EXPECT_TRUE(bytes() == text + std::string(24, '\0'));
    IndexClear(&root, block);
    EXPECT_EQ(bytes().size(), 1104U);
    EXPECT_EQ(insert({integer(1)}, 1), 0);
    EXPECT_EQ(check(1), "");
}

// ---- memory and reading ----

TEST_F(IndexFiles, NoOperationNeedsMemoryForValues) {
    make({integer(0), text("", 9), characters("", 3)});
    const auto key = [](int i) { return Cells{integer(i), text("t", 9), characters("v", 3)}; };
    const RecordValue one = recordOf(key(1)), two = recordOf(key(2));
    RecordValue found = recordOf(key(0));
    FailAllocation(0);
    EXPECT_EQ(IndexInsert(&root, block, one.get(), 1), 0);
    EXPECT_EQ(IndexInsert(&root, block, two.get(), 2), 0);
    EXPECT_TRUE(IndexFind("GE", &root, block, one.get(), found.get()).found);
    IndexUpdateRow(&root, block, two.get(), 7);
    IndexDelete(&root, block, one.get());
    EXPECT_EQ(IndexCount(&root, block), 1);
    IndexClear(&root, block);
    FailAllocation(-1);
    EXPECT_EQ(takeError(), 0);
}

// The number of calls of a kind that an operation makes.
int callsOf(os::SteeredFiles& disk, FileCall kind, const Call& operation) {
    int calls = 0;
    for (bool failed = true; failed; ++calls) {
        disk.failAt(kind, calls + 1, FileError::ReadFailed);
        ClearError();
        operation();
        failed = ErrorCell() != 0;
    }
    disk.stopFailing();
    ClearError();
    return calls - 1;
}

TEST_F(IndexFiles, ASearchReadsNoMoreThanItsWay) {
    make({integer(0)});
    KeyView view;
    const RecordValue like = recordOf(shape);
    KeyOfRecord(like.get(), view);
    FileTree tree;
    EXPECT_TRUE(tree.open(path, view, os::OpenMode::ReadWrite));
    constexpr int nodes = 4095;
    for (int i = 0; i < nodes; ++i) {
        const RecordValue record = recordOf({integer(i * 1663 % nodes)});  // neighbours stand far apart
        FilePath way;
        EXPECT_TRUE(KeyOfRecord(record.get(), view) && FindFileKey(tree, view, way));
        LinkAt(tree, way, tree.add(view, i));
    }
    EXPECT_TRUE(tree.commit() && tree.close());
    EXPECT_EQ(check(), "");
    const std::int32_t height = IndexHeight(&root, block).height;
    const RecordValue key = recordOf({integer(777)});
    const int reads = callsOf(disk, FileCall::Read, [&] { IndexFind("EQ", &root, block, key.get()); });
    EXPECT_LE(reads, height + 2);
    EXPECT_EQ(callsOf(disk, FileCall::OpenRead, [&] { IndexFind("EQ", &root, block, key.get()); }), 1);
}

TEST_F(IndexFiles, WhatChangesIsWrittenOnce) {
    makeIntegers({2, 1, 3, 4});
    disk.clearLog();
    EXPECT_EQ(insert({integer(5)}, 50), 0);  // 3 sinks, 4 rises, 5 is new
    const std::vector<std::string> expected = {
        "open /d/t.i1 change",         "write 28", "write 24", "write 24", "write 24",
        "setmodified of an open file", "close"};
    EXPECT_EQ(disk.log(), expected);
    disk.clearLog();
    EXPECT_EQ(insert({integer(5)}, 50), 635);
    EXPECT_EQ(disk.log(), (std::vector<std::string>{"open /d/t.i1 change", "close"}));
}

// ---- a file that is kept open ----

TEST_F(IndexFiles, AKeptFileIsTheOneThatItsNameStandsForNow) {
    disk.putFolder("/p");
    disk.putFolder("/q");
    const RecordValue key = recordOf({integer(5)});
    for (const char* folder : {"/p/", "/q/"})
        EXPECT_TRUE(CreateIndexFile(std::string(folder) + "a.i1", "a.tab", ""));
    const IndexBlock relative = IndexFileBlock("a.i1", key.get());
    const auto sizeIn = [&](const char* folder) {
        return disk.contents(std::string(folder) + "a.i1").size();
    };
    disk.setCurrentFolder("/p");
    IndexOpen(&root, relative, key.get());
    disk.setCurrentFolder("/q");
    EXPECT_EQ(IndexInsert(&root, relative, key.get(), 1), 0);
    EXPECT_EQ(sizeIn("/p/"), 1104U);
    EXPECT_EQ(sizeIn("/q/"), 1104U + 28);
    IndexOpen(&root, relative, key.get());
    disk.put("/q/n", disk.contents("/p/a.i1"));
    disk.rename("/q/n", "/q/a.i1");
    EXPECT_EQ(IndexInsert(&root, relative, key.get(), 1), 0);
    EXPECT_EQ(sizeIn("/q/"), 1104U + 28);
    EXPECT_EQ(IndexCount(&root, relative), 1);
    IndexClose(relative);
    EXPECT_EQ(takeError(), 0);
    EXPECT_EQ(disk.openHandles(), 0);
}

// ---- renaming ----

TEST_F(IndexFiles, RenamingWritesTheOtherTablesName) {
    makeIntegers({1, 2});
    const std::string before = bytes();
    EXPECT_TRUE(RenameIndexFile(path, "/d/other.i1", "/d/other.table"));
    EXPECT_FALSE(disk.has(path));
    std::string expected = before;
    expected.replace(8, 41, "other.table" + std::string(30, '\0'));
    EXPECT_TRUE(disk.contents("/d/other.i1") == expected);
}

TEST_F(IndexFiles, RenamingThatFailsLeavesBothFilesAsTheyWere) {
    makeIntegers({1, 2});
    const std::string before = bytes();
    disk.put("/d/other.i1", "old");
    int failures = 0;
    for (;; ++failures) {
        disk.failAt(failures + 1, FileError::WriteFailed);
        if (RenameIndexFile(path, "/d/other.i1", "other.tab")) break;
        EXPECT_EQ(takeError(), 652);
        EXPECT_TRUE(bytes() == before);
        EXPECT_EQ(disk.contents("/d/other.i1"), "old");
        EXPECT_EQ(disk.openHandles(), 0);
    }
    EXPECT_EQ(failures, 4);  // open, write, close, rename
    disk.stopFailing();
    EXPECT_FALSE(RenameIndexFile("/d/none", "/d/other.i1", "other.tab"));
    EXPECT_EQ(takeError(), 653);
    disk.put("/d/short", "x");
    EXPECT_FALSE(RenameIndexFile("/d/short", "/d/other.i1", "other.tab"));
    EXPECT_EQ(takeError(), 656);
}

TEST_F(IndexFiles, AFileThatCannotBeMadeIsNotThere) {
    disk.putFolder("/d");
    int failures = 0;
    for (;; ++failures) {
        disk.failAt(failures + 1, FileError::DiskFull);
        if (CreateIndexFile(path, "t.tab", "")) break;
        EXPECT_EQ(takeError(), 654);
        EXPECT_FALSE(disk.has(path));
        EXPECT_EQ(disk.openHandles(), 0);
    }
    EXPECT_EQ(failures, 3);  // open, write, close
    const std::string whole = bytes();
    disk.put(path, "old");
    for (failures = 0;; ++failures) {
        disk.failAt(failures + 1, FileError::DiskFull);
        if (CreateIndexFile(path, "t.tab", "")) break;
        EXPECT_EQ(takeError(), 654);
        EXPECT_EQ(bytes(), "old");
    }
    EXPECT_EQ(failures, 5);  // two opened, write, close, rename
    EXPECT_TRUE(bytes() == whole);
    EXPECT_EQ(disk.allFiles(), std::vector<std::string>{path});
    disk.stopFailing();
    EXPECT_FALSE(CreateIndexFile("/none/t.i1", "t.tab", ""));
    EXPECT_EQ(takeError(), 652);
    EXPECT_FALSE(CreateIndexFile("", "t.tab", ""));
    EXPECT_EQ(takeError(), 657);
}

TEST_F(IndexFiles, TheRealFileSystemServesAsWell) {
    const os::Steered real(os::realFiles());
    const TempFolder folder;
    block = IndexFileBlock(folder / "t.i1", recordOf({integer(0)}).get());
    EXPECT_TRUE(CreateIndexFile(block.fileName, "t.tab", ""));
    for (int i = 0; i < 500; ++i) EXPECT_EQ(insert({integer(i * 7 % 500)}, i), 0);
    for (int i = 0; i < 500; i += 2) remove({integer(i)});
    EXPECT_EQ(IndexCount(&root, block), 250);
    EXPECT_EQ(find("GE", {integer(250)}), 251 * 143 % 500);
    const RecordValue like = recordOf({integer(0)});
    KeyView view;
    EXPECT_TRUE(KeyOfRecord(like.get(), view));
    EXPECT_EQ(CheckIndexFile(block.fileName, view, -1), "");
    for (int i = 499; i >= 0; --i) remove({integer(i)});
    EXPECT_EQ(takeError(), 604);
    EXPECT_EQ(os::sizeOf(block.fileName), 1104);
}

}  // namespace
