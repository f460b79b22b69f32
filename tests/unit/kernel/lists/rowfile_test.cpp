// SPDX-License-Identifier: Apache-2.0
//
// The operations on lists whose rows stand in a file.
#include "unit/kernel/filelists_fixture.h"

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

class RowFiles : public FileLists {
protected:
    static void put(ListValue& l, std::int32_t position, const ValueModel& value) {
        const OddValue v(value);
        ListPut(v.at(), value.kind, position, l.get());
    }
    static void append(ListValue& l, const ValueModel& value) {
        const OddValue v(value);
        ListAppend(v.at(), value.kind, l.get());
    }
    // "" when the element is this one, else what differs.
    static std::string differs(const ListValue& l, std::int32_t position, const ValueModel& value) {
        OddValue v(model::Emptied(value));
        ListGet(l.get(), position, v.at(), value.kind);
        return model::Differs(value, v.at());
    }
};

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

// ---- the order of checks ----

TEST_F(RowFiles, ElementAccessChecksInOrder) {
    ListValue open = numbers("/d/a.tab", {1}), unopened = listOf(Number(KindInteger, 0)),
              gone = numbers("/d/gone.tab", {1, 2}), full = numbers("/d/full.tab", {1}, 1),
              goneFull = numbers("/d/gonefull.tab", {1}, 1);
    files_.remove("/d/gone.tab");
    files_.remove("/d/gonefull.tab");
    std::int32_t number = 5;
    String text("text");
    const StringDescriptor damaged{-1, TagString, 0, UNBOUNDED, 0, 0};
    struct Case {
        ListDescriptor* l;
        const void* v;
        Kind kind;
        std::int32_t position, get, put, append;
    };
    const Case cases[] = {
        {nullptr, nullptr, KindNone, 0, 761, 761, 761},
        {unopened.get(), nullptr, KindNone, 0, 661, 661, 661},
        {open.get(), nullptr, KindInteger, 0, 610, 610, 610},
        {open.get(), &number, KindNone, 0, 610, 610, 610},
        {open.get(), &damaged, KindString, 0, 610, 610, 610},
        {open.get(), text.get(), KindString, 0, 611, 611, 611},
        {open.get(), &number, KindInteger, 0, 603, 603, 0},
        {open.get(), &number, KindInteger, 9, 603, 603, 0},
        {gone.get(), text.get(), KindString, 0, 611, 611, 611},
        {gone.get(), &number, KindInteger, 3, 603, 603, 653},
        {gone.get(), &number, KindInteger, 2, 653, 653, 653},
        {full.get(), text.get(), KindString, 1, 611, 611, 611},
        {full.get(), &number, KindInteger, 1, 0, 0, 618},
        {goneFull.get(), &number, KindInteger, 1, 653, 653, 618},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(&c - cases);
        number = 5;
        ListPut(c.v, c.kind, c.position, c.l);
        EXPECT_EQ(takeError(), c.put);
        ListAppend(c.v, c.kind, c.l);
        EXPECT_EQ(takeError(), c.append);
        ListGet(c.l, c.position, const_cast<void*>(c.v), c.kind);
        EXPECT_EQ(takeError(), c.get);
        if (c.v == &number && c.kind == KindInteger && c.get != 0) {
            EXPECT_EQ(number, 0);
        }
        if (c.v == text.get()) {
            EXPECT_EQ(text.view(), "");
            text.assign("text");
        }
    }
}

TEST_F(RowFiles, WhatOnlyAListInMemoryCanDoIsRefused) {
    ListValue l = texts("/d/a.tab", {"a"}), n = numbers("/d/n.tab", {1});
    const String text("b");
    const std::function<void()> uses[] = {
        [&] { EXPECT_EQ(ListRef(l.get(), 1), nullptr); },
        [&] { EXPECT_EQ(ListRef(l.get(), 9), nullptr); },
        [&] { EXPECT_EQ(ListAppendEmpty(l.get()), nullptr); },
        [&] { ListInsert(1, text.get(), l.get()); },
        [&] { ListInsert(9, nullptr, l.get()); },
        [&] { ListSort(n.get(), true, true); },
        [&] { EXPECT_EQ(ListStringFind(n.get(), nullptr, true), 0); },
    };
    for (const auto& use : uses) {
        use();
        EXPECT_EQ(takeError(), 761) << &use - uses;
    }
    EXPECT_EQ(textsIn(l), (Texts{"a"}));
    EXPECT_TRUE(ListIsInFile(l.get()));
    EXPECT_EQ(ListElementKind(l.get()), KindString);
}

TEST_F(RowFiles, RemovingChecksInOrder) {
    ListValue empty = numbers("/d/a.tab"), gone = numbers("/d/b.tab", {1}), noRows = numbers("/d/c.tab");
    files_.remove("/d/b.tab");
    files_.remove("/d/c.tab");
    ListDelete(1, 1, nullptr);
    EXPECT_EQ(takeError(), 761);
    ListDelete(1, 1, listOf(Number(KindInteger, 0)).get());
    EXPECT_EQ(takeError(), 661);
    ListDelete(0, 0, gone.get());
    EXPECT_EQ(takeError(), 603);
    ListDelete(2, 1, gone.get());
    EXPECT_EQ(takeError(), 603);
    ListDelete(1, 0, gone.get());
    EXPECT_EQ(takeError(), 0);
    ListDelete(1, 1, gone.get());
    EXPECT_EQ(takeError(), 653);
    ListRemoveLast(empty.get());
    EXPECT_EQ(takeError(), 603);
    ListRemoveLast(noRows.get());
    EXPECT_EQ(takeError(), 603);
    ListRemoveLast(gone.get());
    EXPECT_EQ(takeError(), 653);
    ListClear(gone.get());
    EXPECT_EQ(takeError(), 653);
    EXPECT_EQ(gone.get()->count, 1);
}

TEST_F(RowFiles, ResizingChecksInOrder) {
    const ValueModel row = Record({Number(KindInteger, 0)});
    ListValue l = opened("/d/a.tab", row, 2), gone = opened("/d/b.tab", row, 2);
    append(l, row);
    append(gone, row);
    files_.remove("/d/b.tab");
    OddValue good(row), other(Record({Text("", 2)}));
    const String text("a");
    struct Case {
        ListDescriptor* l;
        std::int32_t n;
        const void* fill;
        std::int32_t error;
    };
    const Case cases[] = {
        {l.get(), -1, nullptr, 603},      {gone.get(), -1, nullptr, 603},  {l.get(), 3, nullptr, 610},
        {l.get(), 3, text.get(), 611},    {l.get(), 3, other.at(), 618},   {l.get(), 2, other.at(), 611},
        {gone.get(), 2, other.at(), 611}, {gone.get(), 3, good.at(), 618}, {gone.get(), 2, good.at(), 653},
        {gone.get(), 0, nullptr, 653},
    };
    for (const Case& c : cases) {
        ListResize(c.n, c.fill, c.l);
        EXPECT_EQ(takeError(), c.error) << &c - cases;
        EXPECT_EQ(c.l->count, 1);
    }
}

// ---- files that others have changed ----

TEST_F(RowFiles, AFileThatHasNotTheCountedRowsIsNotChanged) {
    struct Case {
        std::int32_t capacity;
        std::string bytes;
    };
    const Case cases[] = {
        {UNBOUNDED, fromHex("00000001")},
        {UNBOUNDED, fromHex("00000001 00000002 00000003")},
        {UNBOUNDED, fromHex("00000001 00000002 00")},
        {UNBOUNDED, ""},
        {4, fromHex("00000001 00000001 00000002 00000000 00000000")},
        {4, fromHex("00000003 00000001 00000002 00000000 00000000")},
        {4, fromHex("00000002 00000001")},
        {4, fromHex("00000002 00000001 00000002 00")},
        {UNBOUNDED, fromHex("00000001 00000002 1A")},
        {4, fromHex("0000")},
        {4, ""},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(&c - cases);
        const ListValue made = numbers("/d/a.tab", {1, 2}, c.capacity);
        files_.put("/d/a.tab", c.bytes);
        ListDescriptor* const l = const_cast<ListDescriptor*>(made.get());
        const std::int32_t value = 9;
        const std::function<void()> uses[] = {
            [&] { ListAppend(&value, KindInteger, l); },
            [&] { ListRemoveLast(l); },
            [&] { ListDelete(1, 1, l); },
            [&] { ListDelete(1, 2, l); },
            [&] { ListResize(1, nullptr, l); },
            [&] { ListResize(3, &value, l); },
        };
        for (const auto& use : uses) {
            use();
            EXPECT_EQ(takeError(), 655) << &use - uses;
            EXPECT_EQ(l->count, 2);
            EXPECT_EQ(bytesOf("/d/a.tab"), c.bytes);
        }
        EXPECT_NE(check(made), "");
        files_.remove("/d/a.tab");
    }
}

TEST_F(RowFiles, ARowThatIsNotThereCannotBeReadOrReplaced) {
    ListValue l = numbers("/d/a.tab", {1, 2, 3});
    files_.put("/d/a.tab", fromHex("00000001 0000"));
    std::int32_t value = 9;
    for (const std::int32_t position : {2, 3}) {
        ListGet(l.get(), position, &value, KindInteger);
        EXPECT_EQ(takeError(), 651);
        EXPECT_EQ(value, 0);
        ListPut(&value, KindInteger, position, l.get());
        EXPECT_EQ(takeError(), 655);
    }
    EXPECT_EQ(bytesOf("/d/a.tab"), fromHex("00000001 0000"));
    EXPECT_EQ(check(l), "list: File on disk is the wrong size");
}

TEST_F(RowFiles, ClearingMendsATornFile) {
    ListValue plain = numbers("/d/a.tab", {1, 2}), fixed = numbers("/d/b.tab", {1, 2}, 3);
    files_.put("/d/a.tab", fromHex("00000001 00"));
    files_.put("/d/b.tab", fromHex("00000002 00000001 00"));
    ListClear(plain.get());
    ListClear(fixed.get());
    EXPECT_EQ(bytesOf("/d/a.tab"), "");
    EXPECT_EQ(bytesOf("/d/b.tab"), fromHex("00000000"));
    EXPECT_EQ(check(plain) + check(fixed), "");
}

TEST_F(RowFiles, AFileThatMayNotBeWrittenCanBeRead) {
    { const ListValue l = texts("/d/a.tab", {"b", "a"}); }
    files_.put("/d/a.tab", bytesOf("/d/a.tab"), 0444);
    files_.putFolder("/d", 0555);
    ListValue l = texts("/d/a.tab");
    EXPECT_EQ(takeError(), 0);
    EXPECT_EQ(textsIn(l), (Texts{"b", "a"}));
    const String text("a");
    EXPECT_EQ(ListStringFind(l.get(), text.get(), false), 2);
    const std::function<void()> uses[] = {
        [&] { ListAppend(text.get(), KindString, l.get()); },
        [&] { ListPut(text.get(), KindString, 1, l.get()); },
        [&] { ListRemoveLast(l.get()); },
        [&] { ListClear(l.get()); },
        [&] { ListResize(1, nullptr, l.get()); },
        [&] { ListSort(l.get(), true, false); },
    };
    for (const auto& use : uses) {
        use();
        EXPECT_EQ(takeError(), 652) << &use - uses;
        EXPECT_EQ(textsIn(l), (Texts{"b", "a"}));
    }
    FileClose(l.get(), KindList);
    EXPECT_EQ(takeError(), 0);
    files_.putFolder("/d", 0755);
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

// ---- damage ----

TEST_F(RowFiles, DamagedRowsAreErrorsOrValuesOfLegalShape) {
    const ValueModel row = Record({Number(KindBoolean, 1), Text("abc", 4), Set(3, 12, {3, 5, 12}), Real(1.5),
                                   List(Number(KindInteger, 0), {Number(KindInteger, 4)}, 2)});
    for (const std::int32_t capacity : {UNBOUNDED, std::int32_t{3}}) {
        ListValue l = opened("/d/a.tab", model::Emptied(row), capacity);
        append(l, row);
        append(l, row);
        FileClose(l.get(), KindList);
        const std::string good = bytesOf("/d/a.tab");
        int refused = 0, unread = 0;
        for (std::size_t at = 0; at < good.size(); ++at) {
            for (int bit = 0; bit < 8; ++bit) {
                std::string bytes = good;
                bytes[at] = static_cast<char>(bytes[at] ^ (1 << bit));
                files_.put("/d/a.tab", bytes);
                FileOpen(l.get(), KindList, "/d/a.tab");
                const std::int32_t error = takeError();
                ASSERT_TRUE(error == 0 || error == 655 || error == 619) << at << " " << error;
                refused += error != 0 ? 1 : 0;
                for (std::int32_t n = 1; n <= l.get()->count; ++n) {
                    OddValue v(model::Emptied(row));
                    ListGet(l.get(), n, v.at(), KindRecord);
                    const std::int32_t unreadable = takeError();
                    ASSERT_TRUE(unreadable == 0 || unreadable == 651) << at;
                    ASSERT_EQ(AdtCheck(v.at(), KindRecord), "");
                    unread += unreadable != 0 ? 1 : 0;
                }
                ASSERT_EQ(bytesOf("/d/a.tab"), bytes);
                FileClose(l.get(), KindList);
            }
        }
        EXPECT_GT(unread, 0);
        EXPECT_EQ(refused > 0, capacity != UNBOUNDED);
        files_.remove("/d/a.tab");
    }
}

TEST_F(RowFiles, ATruncatedFileHoldsWholeRowsOrIsRefused) {
    for (const std::int32_t capacity : {UNBOUNDED, std::int32_t{3}}) {
        ListValue l = texts("/d/a.tab", {"ab", "cd"}, capacity, 2);
        FileClose(l.get(), KindList);
        const std::string good = bytesOf("/d/a.tab");
        for (std::size_t size = 0; size < good.size(); ++size) {
            files_.put("/d/a.tab", good.substr(0, size));
            FileOpen(l.get(), KindList, "/d/a.tab");
            const bool whole = capacity == UNBOUNDED ? size % 6 == 0 : size >= 16 && (size - 4) % 6 == 0;
            EXPECT_EQ(takeError(), whole ? 0 : 655) << size;
            if (whole) {
                EXPECT_EQ(check(l), "");
            }
            FileClose(l.get(), KindList);
        }
        files_.remove("/d/a.tab");
    }
}

TEST_F(RowFiles, ATruncatedXbaseFileIsRefused) {
    ListValue l = opened("/d/a.dbf", xbaseRow());
    append(l, xbaseRow("ann", ' '));
    append(l, xbaseRow("bob", ' '));
    FileClose(l.get(), KindList);
    const std::string good = bytesOf("/d/a.dbf");
    for (std::size_t size = 0; size < good.size(); ++size) {
        files_.put("/d/a.dbf", good.substr(0, size));
        FileOpen(l.get(), KindList, "/d/a.dbf");
        EXPECT_EQ(takeError(), 655) << size;
    }
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
