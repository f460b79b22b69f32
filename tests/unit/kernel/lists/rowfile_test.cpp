// SPDX-License-Identifier: Apache-2.0
//
// Lists whose rows stand in a file: the bytes of the rows, and the operations that work on many.
#include "unit/kernel/rowfile_fixture.h"

#include <functional>

namespace tarn {
namespace {

using model::Array;
using model::List;
using model::Number;
using model::Real;
using model::Record;
using model::Set;
using model::Text;

using namespace std::string_literals;

// ---- layouts ----

// An element of each kind that a file can hold, and its bytes.
struct Layout {
    ValueModel element;
    const char* bytes;
};

std::vector<Layout> layouts() {
    const ValueModel integer = Number(KindInteger, 0), letter = Number(KindEnum, 0);
    return {
        {Number(KindBoolean, 1), "01"},
        {Number(KindEnum, 200), "C8"},
        {Number(KindInteger, 258), "00000102"},
        {Number(KindInteger, -2), "FFFFFFFE"},
        {Number(KindFixed, 10001), "0000000000002711"},
        {Number(KindFixed, -1), "FFFFFFFFFFFFFFFF"},
        {Real(1.0), "000000000000F03F"},
        {Text("ab", 3), "00000002 616200"},
        {Text("abc", 3), "00000003 616263"},
        {Record({Number(KindBoolean, 1), Number(KindInteger, 1), Text("x", 2)}), "01 00000001 00000001 7800"},
        {Record({Number(KindInteger, 7)}, KindUnion), "00000007"},
        {Set(1, 9, {1, 9}), "8080"},
        {Array({{1, 3}}, letter, {Number(KindEnum, 'a'), Number(KindEnum, 'b'), letter}), "616200"},
        {Array({{0, 1}, {1, 1}}, integer, {Number(KindInteger, 5), Number(KindInteger, 6)}),
         "00000005 00000006"},
        {List(integer, {Number(KindInteger, 9)}, 2), "00000001 00000009 00000000"},
    };
}

TEST_F(RowFiles, APlainFileIsItsRows) {
    for (const Layout& layout : layouts()) {
        SCOPED_TRACE(layout.bytes);
        ListValue l = opened("/d/a.tab", model::Emptied(layout.element));
        append(l, model::Emptied(layout.element));
        append(l, layout.element);
        const std::string row = fromHex(layout.bytes);
        EXPECT_EQ(bytesOf("/d/a.tab"), std::string(row.size(), '\0') + row);
        EXPECT_EQ(differs(l, 2, layout.element), "");
        EXPECT_EQ(differs(l, 1, model::Emptied(layout.element)), "");
        EXPECT_EQ(check(l), "");
        FileClose(l.get(), KindList);
        files_.remove("/d/a.tab");
    }
}

TEST_F(RowFiles, AFixedFileIsItsCountItsRowsAndEmptyOnes) {
    for (const Layout& layout : layouts()) {
        SCOPED_TRACE(layout.bytes);
        ListValue l = opened("/d/a.tab", model::Emptied(layout.element), 3);
        append(l, layout.element);
        append(l, layout.element);
        const std::string row = fromHex(layout.bytes), empty(row.size(), '\0');
        EXPECT_EQ(bytesOf("/d/a.tab"), "\0\0\0\2"s + row + row + empty);
        ListRemoveLast(l.get());
        EXPECT_EQ(bytesOf("/d/a.tab"), "\0\0\0\1"s + row + empty + empty);
        EXPECT_EQ(differs(l, 1, layout.element), "");
        EXPECT_EQ(check(l), "");
        FileClose(l.get(), KindList);
        files_.remove("/d/a.tab");
    }
}

TEST_F(RowFiles, AnXbaseFileHoldsTheMarkAndTheCharacters) {
    ListValue l = opened("/d/a.dbf", xbaseRow());
    append(l, xbaseRow("ann", ' '));
    append(l, xbaseRow("bo", '*'));
    EXPECT_EQ(bytesOf("/d/a.dbf").substr(65), " ann*bo ");
    EXPECT_EQ(bytesOf("/d/a.dbf").substr(4, 4), fromHex("02000000"));
    put(l, 1, xbaseRow("eve", '*'));
    EXPECT_EQ(bytesOf("/d/a.dbf").substr(65), "*eve*bo ");
    EXPECT_EQ(differs(l, 2, xbaseRow("bo", '*')), "");
    ListRemoveLast(l.get());
    EXPECT_EQ(bytesOf("/d/a.dbf").substr(65), "*eve");
    EXPECT_EQ(bytesOf("/d/a.dbf").substr(4, 4), fromHex("01000000"));
    EXPECT_EQ(check(l), "");
}

TEST_F(RowFiles, AFixedXbaseFileKeepsItsRoom) {
    ListValue l = opened("/d/a.dbf", xbaseRow(), 2);
    append(l, xbaseRow("ann", ' '));
    append(l, xbaseRow("bob", ' '));
    append(l, xbaseRow("eve", ' '));
    EXPECT_EQ(takeError(), 618);
    EXPECT_EQ(bytesOf("/d/a.dbf").substr(65), " ann bob");
    ListRemoveLast(l.get());
    EXPECT_EQ(bytesOf("/d/a.dbf").substr(65), " ann*   ");
    EXPECT_EQ(check(l), "");
}

// ---- elements of another shape ----

TEST_F(RowFiles, TextsAreCutToTheCapacityAndReadIntoAny) {
    ListValue l = texts("/d/a.tab", {"abc"}, UNBOUNDED, 3);
    FileLists::append(l, "abcd");
    EXPECT_EQ(takeError(), 615);
    EXPECT_EQ(textsIn(l), (Texts{"abc", "abc"}));
    const String longer("xyzz");
    ListPut(longer.get(), KindString, 1, l.get());
    EXPECT_EQ(takeError(), 615);
    EXPECT_EQ(textsIn(l), (Texts{"xyz", "abc"}));
    String small(2), large(9);
    ListGet(l.get(), 1, small.get(), KindString);
    EXPECT_EQ(takeError(), 615);
    EXPECT_EQ(small.view(), "xy");
    ListGet(l.get(), 1, large.get(), KindString);
    EXPECT_EQ(large.view(), "xyz");
    EXPECT_EQ(StringMaxLength(large.get()), 9);
}

TEST_F(RowFiles, ARecordOfAnotherShapeIsRefusedAndOneWithoutAShapeTakesIt) {
    const ValueModel row = Record({Number(KindInteger, 7), Text("ab", 3)});
    ListValue l = opened("/d/a.tab", model::Emptied(row));
    append(l, row);
    append(l, Record({Number(KindInteger, 7)}));
    EXPECT_EQ(takeError(), 611);
    put(l, 1, Record({Text("", 3), Number(KindInteger, 7)}));
    EXPECT_EQ(takeError(), 611);
    EXPECT_EQ(ListCount(l.get()), 1);
    append(l, Record({Number(KindInteger, 8), Text("c")}));  // whose text fits the capacity
    EXPECT_EQ(takeError(), 0);
    EXPECT_EQ(differs(l, 2, Record({Number(KindInteger, 8), Text("c", 3)})), "");
    RecordValue shapeless;
    ListGet(l.get(), 1, shapeless.get(), KindRecord);
    EXPECT_EQ(model::Differs(row, shapeless.get()), "");
    OddValue other(Record({Number(KindInteger, 5)}));
    ListGet(l.get(), 1, other.at(), KindRecord);
    EXPECT_EQ(takeError(), 611);
    EXPECT_EQ(model::Differs(Record({Number(KindInteger, 0)}), other.at()), "");
}

// ---- clearing and resizing ----

TEST_F(RowFiles, ClearingCutsTheFileToItsHeader) {
    ListValue plain = numbers("/d/a.tab", {1, 2}), fixed = numbers("/d/b.tab", {1, 2}, 3),
              xbase = opened("/d/c.dbf", xbaseRow());
    append(xbase, xbaseRow("ann", ' '));
    for (ListValue* l : {&plain, &fixed, &xbase}) {
        ListClear(l->get());
        EXPECT_EQ(ListCount(l->get()), 0);
        EXPECT_EQ(check(*l), "");
    }
    EXPECT_EQ(bytesOf("/d/a.tab"), "");
    EXPECT_EQ(bytesOf("/d/b.tab"), fromHex("00000000"));
    EXPECT_EQ(bytesOf("/d/c.dbf").size(), 65U);
    for (std::int32_t n = 1; n <= 4; ++n) ListAppend(&n, KindInteger, fixed.get());
    EXPECT_EQ(takeError(), 618);
    EXPECT_EQ(numbersIn(fixed), (Numbers{1, 2, 3}));
}

TEST_F(RowFiles, DeletingAStretchWorksAsInMemory) {
    struct Case {
        std::int32_t position, n;
        Numbers left;
    };
    const Case cases[] = {
        {1, 1, {2, 3, 4, 5}},
        {2, 1, {1, 3, 4, 5}},
        {2, 3, {1, 5}},
        {5, 1, {1, 2, 3, 4}},
        {4, 2, {1, 2, 3}},
        {4, 9, {1, 2, 3}},
        {1, 5, {}},
        {1, INT32_MAX, {}},
        {3, INT32_MAX, {1, 2}},
        {3, 0, {1, 2, 3, 4, 5}},
        {3, -1, {1, 2, 3, 4, 5}},
        {3, INT32_MIN, {1, 2, 3, 4, 5}},
    };
    for (const std::int32_t capacity : {UNBOUNDED, 5}) {
        for (const Case& c : cases) {
            SCOPED_TRACE(&c - cases);
            ListValue l = numbers("/d/a.tab", {1, 2, 3, 4, 5}, capacity);
            ListDelete(c.position, c.n, l.get());
            EXPECT_EQ(takeError(), 0);
            EXPECT_EQ(numbersIn(l), c.left);
            EXPECT_EQ(check(l), "");
            const std::int32_t more = 6;
            if (ListCount(l.get()) < 5) ListAppend(&more, KindInteger, l.get());
            EXPECT_EQ(takeError(), 0);
            FileClose(l.get(), KindList);
            EXPECT_EQ(check(numbers("/d/a.tab", {}, capacity)), "");
            files_.remove("/d/a.tab");
        }
    }
}

TEST_F(RowFiles, DeletingKeepsTheRightsAndTheFieldsOfAFile) {
    ListValue l = opened("/d/a.dbf", xbaseRow());
    for (const char* name : {"one", "two", "six"}) append(l, xbaseRow(name, '*'));
    const std::string fields = bytesOf("/d/a.dbf").substr(8, 57);
    EXPECT_EQ(files_.setMode("/d/a.dbf", 0640), os::FileError::None);
    ListDelete(1, 2, l.get());
    EXPECT_EQ(takeError(), 0);
    EXPECT_EQ(differs(l, 1, xbaseRow("six", '*')), "");
    EXPECT_EQ(ListCount(l.get()), 1);
    EXPECT_EQ(bytesOf("/d/a.dbf").substr(8, 57), fields);
    EXPECT_EQ(os::infoOf("/d/a.dbf").mode, 0640U);
}

TEST_F(RowFiles, ResizingCutsOrFills) {
    struct Case {
        std::int32_t capacity, n;
        Numbers expected;
    };
    const Case cases[] = {
        {UNBOUNDED, 0, {}}, {UNBOUNDED, 1, {1}}, {UNBOUNDED, 2, {1, 2}}, {UNBOUNDED, 5, {1, 2, 9, 9, 9}},
        {5, 0, {}},         {5, 1, {1}},         {5, 5, {1, 2, 9, 9, 9}}};
    for (const Case& c : cases) {
        ListValue l = numbers("/d/a.tab", {1, 2}, c.capacity);
        const std::int32_t fill = 9;
        ListResize(c.n, &fill, l.get());
        EXPECT_EQ(takeError(), 0);
        EXPECT_EQ(numbersIn(l), c.expected);
        EXPECT_EQ(check(l), "");
        FileClose(l.get(), KindList);
        FileOpen(l.get(), KindList, "/d/a.tab");
        EXPECT_EQ(numbersIn(l), c.expected);
        FileClose(l.get(), KindList);
        files_.remove("/d/a.tab");
    }
}

TEST_F(RowFiles, ResizingFillsInBlocks) {
    ListValue l = numbers("/d/a.tab", {1});
    const std::int32_t fill = 0x01020304;
    ListResize(50001, &fill, l.get());
    EXPECT_EQ(ListCount(l.get()), 50001);
    std::string expected = fromHex("00000001");
    for (int i = 0; i < 50000; ++i) expected += "\1\2\3\4";
    EXPECT_EQ(bytesOf("/d/a.tab"), expected);
    ListValue large = texts("/d/b.tab", {"a"}, UNBOUNDED, 100000);
    const String text("xyz");
    ListResize(3, text.get(), large.get());
    EXPECT_EQ(textsIn(large), (Texts{"a", "xyz", "xyz"}));
}

// ---- sorting and finding ----

TEST_F(RowFiles, SortingAndFindingWorkAsInMemory) {
    for (const std::int32_t capacity : {UNBOUNDED, std::int32_t{6}}) {
        ListValue l = texts("/d/a.tab", {"b", "C", "a", "", "B"}, capacity);
        ListSort(l.get(), true, false);
        EXPECT_EQ(textsIn(l), (Texts{"", "B", "C", "a", "b"}));
        ListSort(l.get(), false, false);
        EXPECT_EQ(textsIn(l), (Texts{"b", "a", "C", "B", ""}));
        ListSort(l.get(), true, true);
        EXPECT_EQ(textsIn(l).front() + textsIn(l).back(), "C");
        EXPECT_EQ(check(l), "");
        const String c("c"), none("d");
        EXPECT_EQ(ListStringFind(l.get(), c.get(), true), 5);
        EXPECT_EQ(ListStringFind(l.get(), c.get(), false), 0);
        EXPECT_EQ(ListStringFind(l.get(), none.get(), true), 0);
        EXPECT_EQ(takeError(), 0);
        FileClose(l.get(), KindList);
        files_.remove("/d/a.tab");
    }
}

TEST_F(RowFiles, SortingKeepsPermissionsAndLinks) {
    files_.put("/e/real.tab", fromHex("00000001 62 00000001 61"), 0640);
    files_.putLink("/e/real.tab", "/d/a.tab");
    ListValue l = texts("/d/a.tab", {}, UNBOUNDED, 1);
    ListSort(l.get(), true, false);
    EXPECT_EQ(bytesOf("/e/real.tab"), fromHex("00000001 61 00000001 62"));
    EXPECT_EQ(os::infoOf("/e/real.tab").mode, 0640U);
    EXPECT_EQ(files_.allFiles(), (Texts{"/d/a.tab", "/e/real.tab"}));
}

TEST_F(RowFiles, SortingAndFindingTellWhatCannotBeRead) {
    ListValue l = texts("/d/a.tab", {"b", "a"});
    files_.remove("/d/a.tab");
    const String text("a");
    ListSort(l.get(), true, true);
    EXPECT_EQ(takeError(), 653);
    EXPECT_EQ(ListStringFind(l.get(), text.get(), true), 0);
    EXPECT_EQ(takeError(), 653);
}

// ---- memory ----

TEST_F(RowFiles, ALackOfMemoryChangesNothing) {
    const String text("new");
    const std::function<void(ListValue&)> uses[] = {
        [&](ListValue& l) { ListAppend(text.get(), KindString, l.get()); },
        [&](ListValue& l) { ListPut(text.get(), KindString, 1, l.get()); },
        [](ListValue& l) { ListSort(l.get(), true, true); },
        [&](ListValue& l) { ListResize(3, text.get(), l.get()); },
        [](ListValue& l) {
            ListValue other;
            AdtInit(other.get(), l.get(), KindList);
            FileOpen(other.get(), KindList, "/d/other.tab");
            AdtCopy(other.get(), l.get(), KindList);
        },
        [](ListValue& l) {
            String read;
            ListGet(l.get(), 1, read.get(), KindString);
            if (ErrorCell() != 0) {
                EXPECT_EQ(read.view(), "");
            }
        },
    };
    texts("/d/other.tab", {"x", "y"});
    for (const auto& use : uses) {
        SCOPED_TRACE(&use - uses);
        failEveryRequest(
            [&] {
                FailAllocation(-1);
                files_.put("/d/a.tab", "");
                return texts("/d/a.tab", {"b", "a"});
            },
            use,
            [&](ListValue& l, bool failed) {
                if (failed) {
                    EXPECT_EQ(textsIn(l), (Texts{"b", "a"}));
                }
                EXPECT_EQ(check(l), "");
            });
    }
}

}  // namespace
}  // namespace tarn
