// SPDX-License-Identifier: Apache-2.0
//
// What lists refuse, inserting and removing, lists held in a file, and growth.
#include "unit/kernel/lists_fixture.h"

#include "kernel/lists/lists.h"

#include <functional>

using namespace tarn;

namespace {

// ---- errors ----

TEST_F(Lists, TheFirstOfSeveralFaultsIsReported) {
    ListValue good = numbers({1, 2}), full = numbers({1}, 1), file = inFile();
    std::int32_t number = 5;
    String text("text");
    StringDescriptor damaged{-1, TagString, 0, UNBOUNDED, 0, 0};
    ListDescriptor zero{}, damagedList{-1, KindInteger, 0, UNBOUNDED, 0, 0};
    ListDescriptor lyingList{4, KindInteger, 0, UNBOUNDED, 2, 0};
    const auto kind13 = static_cast<Kind>(13);
    const struct {
        ListDescriptor* l;
        void* v;
        Kind kind;
        std::int32_t position, error, appendError;
    } rows[] = {
        {nullptr, nullptr, kind13, 9, 761, 761},
        {&zero, nullptr, kind13, 9, 761, 761},
        {&damagedList, nullptr, kind13, 9, 761, 761},
        {&lyingList, nullptr, kind13, 9, 761, 761},
        {reinterpret_cast<ListDescriptor*>(text.get()), nullptr, kind13, 9, 761, 761},
        {file.get(), nullptr, kind13, 9, 661, 661},
        {good.get(), nullptr, KindString, 9, 610, 610},
        {good.get(), &number, KindNone, 9, 610, 610},
        {good.get(), &number, kind13, 9, 610, 610},
        {good.get(), &damaged, KindString, 9, 610, 610},
        {good.get(), text.get(), KindString, 9, 611, 611},
        {good.get(), &number, KindEnum, 9, 611, 611},
        {good.get(), &number, KindInteger, 0, 603, 0},
        {good.get(), &number, KindInteger, 4, 603, 0},
        {good.get(), &number, KindInteger, INT32_MAX, 603, 0},
        {good.get(), &number, KindInteger, INT32_MIN, 603, 0},
        {full.get(), nullptr, KindInteger, 9, 610, 610},
        {full.get(), text.get(), KindString, 9, 611, 611},
        {full.get(), &number, KindInteger, 9, 603, 618},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(&row - rows);
        ListPut(row.v, row.kind, row.position, row.l);
        EXPECT_EQ(takeError(), row.error);
        ListGet(row.l, row.position, row.v, row.kind);
        EXPECT_EQ(takeError(), row.error);
        number = 5;
        ListAppend(row.v, row.kind, row.l);
        EXPECT_EQ(takeError(), row.appendError);
        if (row.appendError == 0) ListRemoveLast(row.l);
    }
    EXPECT_EQ(numbersIn(good), (Numbers{1, 2}));
    EXPECT_EQ(numbersIn(full), (Numbers{1}));
}

TEST_F(Lists, ADescriptorOfAnotherKindThanItIsSaidToBeIsOfTheWrongType) {
    ListValue t = texts({"a"}), r = records({"a"});
    RecordValue rec = record(1, "x");
    StringDescriptor zero{};
    for (void* v : {static_cast<void*>(rec.get()), static_cast<void*>(&zero)}) {
        ListPut(v, KindString, 1, t.get());
        EXPECT_EQ(takeError(), 611);
        ListAppend(v, KindString, t.get());
        EXPECT_EQ(takeError(), 611);
        ListGet(t.get(), 1, v, KindString);
        EXPECT_EQ(takeError(), 611);
    }
    const RecordDescriptor shapeless{};
    ListAppend(&shapeless, KindRecord, r.get());
    EXPECT_EQ(takeError(), 611);
    ListValue u = untyped();
    ListAppend(&shapeless, KindRecord, u.get());
    EXPECT_EQ(takeError(), 611);
    RecordDescriptor out{};
    ListGet(t.get(), 1, &out, KindRecord);
    EXPECT_EQ(takeError(), 611);
}

TEST_F(Lists, AFailedReadingClearsItsOutput) {
    const ListValue n = numbers({1}), t = texts({"a"}), file = inFile();
    const struct {
        const ListDescriptor* l;
        std::int32_t position, error;
    } rows[] = {
        {nullptr, 1, 761}, {file.get(), 1, 661}, {t.get(), 1, 611}, {n.get(), 0, 603}, {n.get(), 2, 603}};
    for (const auto& row : rows) {
        std::int32_t number = 99;
        ListGet(row.l, row.position, &number, KindInteger);
        EXPECT_EQ(takeError(), row.error);
        EXPECT_EQ(number, 0);
    }
    String text("text"), fixed = fixedString(5, "text");
    for (String* s : {&text, &fixed}) {
        ListGet(t.get(), 2, s->get(), KindString);
        EXPECT_EQ(takeError(), 603);
        EXPECT_EQ(s->view(), "");
        EXPECT_EQ(AdtCheck(s->get(), KindString), "");
    }
    EXPECT_EQ(StringMaxLength(fixed.get()), 5);
    RecordValue r = record(1, "text");
    ListGet(n.get(), 1, r.get(), KindRecord);
    EXPECT_EQ(takeError(), 611);
    EXPECT_TRUE(AdtCompare("EQ", r.get(), record(0, "").get(), KindRecord));
}

TEST_F(Lists, WhatIsNoListGives761EverywhereElse) {
    const String text("a");
    ListDescriptor zero{};
    for (ListDescriptor* l : {static_cast<ListDescriptor*>(nullptr), &zero}) {
        const std::function<void()> uses[] = {
            [&] { EXPECT_EQ(ListCount(l), 0); },
            [&] { EXPECT_EQ(ListElementKind(l), KindNone); },
            [&] { EXPECT_FALSE(ListIsInFile(l)); },
            [&] { EXPECT_EQ(ListRef(l, 1), nullptr); },
            [&] { ListInsert(1, text.get(), l); },
            [&] { ListDelete(1, 1, l); },
            [&] { ListRemoveLast(l); },
            [&] { ListClear(l); },
            [&] { ListResize(1, nullptr, l); },
            [&] { ListSort(l, true, true); },
            [&] { EXPECT_EQ(ListStringFind(l, text.get(), true), 0); },
        };
        for (const auto& use : uses) {
            use();
            EXPECT_EQ(takeError(), 761) << &use - uses;
        }
    }
}

TEST_F(Lists, AReferenceOutsideTheListIsNull) {
    ListValue l = numbers({7, 8});
    EXPECT_EQ(ReadAt<std::int32_t>(ListRef(l.get(), 2)), 8);
    for (const std::int32_t position : {0, -1, 3, INT32_MAX, INT32_MIN}) {
        EXPECT_EQ(ListRef(l.get(), position), nullptr);
        EXPECT_EQ(takeError(), 603);
    }
}

// ---- inserting and removing ----

TEST_F(Lists, InsertMovesTheRestUp) {
    for (const std::int32_t maxlength : {UNBOUNDED, std::int32_t{5}}) {
        const struct {
            std::int32_t position;
            Texts expected;
            std::int32_t error;
        } rows[] = {
            {1, {"new", "a", "b", "c"}, 0}, {2, {"a", "new", "b", "c"}, 0}, {3, {"a", "b", "new", "c"}, 0},
            {4, {"a", "b", "c", "new"}, 0}, {5, {"a", "b", "c"}, 603},      {0, {"a", "b", "c"}, 603},
            {-1, {"a", "b", "c"}, 603},
        };
        for (const auto& row : rows) {
            ListValue l = texts({"a", "b", "c"}, maxlength);
            const String text("new");
            ListInsert(row.position, text.get(), l.get());
            EXPECT_EQ(takeError(), row.error);
            EXPECT_EQ(textsIn(l), row.expected);
            EXPECT_EQ(check(l), "");
        }
    }
}

TEST_F(Lists, InsertChecksInOrder) {
    ListValue n = numbers({1}), full = texts({"a"}, 1), file = inFile(KindString), t = texts({"a"});
    const String text("b");
    const StringDescriptor damaged{-1, TagString, 0, UNBOUNDED, 0, 0}, zero{};
    const RecordValue rec = record(1, "");
    const auto* notString = reinterpret_cast<const StringDescriptor*>(rec.get());
    const struct {
        ListDescriptor* l;
        const StringDescriptor* v;
        std::int32_t position, error;
    } rows[] = {{file.get(), nullptr, 9, 661},    {n.get(), nullptr, 9, 761},      {t.get(), nullptr, 9, 610},
                {t.get(), &damaged, 9, 610},      {t.get(), notString, 9, 611},    {t.get(), &zero, 9, 611},
                {full.get(), text.get(), 9, 603}, {full.get(), text.get(), 1, 618}};
    for (const auto& row : rows) {
        ListInsert(row.position, row.v, row.l);
        EXPECT_EQ(takeError(), row.error) << &row - rows;
    }
    EXPECT_EQ(textsIn(full), (Texts{"a"}));
}

TEST_F(Lists, DeleteRemovesAStretch) {
    const struct {
        std::int32_t position, n;
        Numbers expected;
        std::int32_t error;
    } rows[] = {
        {1, 1, {2, 3, 4, 5}, 0},
        {2, 3, {1, 5}, 0},
        {5, 1, {1, 2, 3, 4}, 0},
        {1, 5, {}, 0},
        {1, 6, {}, 0},
        {4, INT32_MAX, {1, 2, 3}, 0},
        {3, 0, {1, 2, 3, 4, 5}, 0},
        {3, -1, {1, 2, 3, 4, 5}, 0},
        {3, INT32_MIN, {1, 2, 3, 4, 5}, 0},
        {0, 1, {1, 2, 3, 4, 5}, 603},
        {6, 1, {1, 2, 3, 4, 5}, 603},
        {-1, 3, {1, 2, 3, 4, 5}, 603},
        {0, 0, {1, 2, 3, 4, 5}, 603},
    };
    for (const auto& row : rows) {
        for (const std::int32_t maxlength : {UNBOUNDED, std::int32_t{6}}) {
            SCOPED_TRACE(&row - rows);
            ListValue n = numbers({1, 2, 3, 4, 5}, maxlength), t = texts({}, maxlength),
                      r = records({"1", "2", "3", "4", "5"}, maxlength);
            Texts expected;
            for (const std::int32_t number : row.expected) expected.push_back(std::to_string(number));
            for (const char* text : {"1", "2", "3", "4", "5"}) append(t, text);
            for (ListValue* l : {&n, &t, &r}) {
                ListDelete(row.position, row.n, l->get());
                EXPECT_EQ(takeError(), row.error);
                EXPECT_EQ(check(*l), "");
            }
            EXPECT_EQ(numbersIn(n), row.expected);
            EXPECT_EQ(textsIn(t), expected);
            EXPECT_EQ(recordsIn(r), expected);
        }
    }
}

TEST_F(Lists, RemoveLastDropsTheLastUntilThereIsNone) {
    for (const std::int32_t maxlength : {UNBOUNDED, std::int32_t{2}}) {
        ListValue l = texts({"a", "b"}, maxlength);
        ListRemoveLast(l.get());
        EXPECT_EQ(textsIn(l), (Texts{"a"}));
        ListRemoveLast(l.get());
        EXPECT_EQ(ListCount(l.get()), 0);
        EXPECT_EQ(check(l), "");
        ListRemoveLast(l.get());
        EXPECT_EQ(takeError(), 603);
        append(l, "c");
        EXPECT_EQ(textsIn(l), (Texts{"c"}));
    }
}

TEST_F(Lists, TheSlotsOfAFixedListStayShapedWhateverIsDeleted) {
    ListValue l = texts({"a", "b", "c", "d"}, 5, 3);
    ListDelete(1, 2, l.get());
    ListRemoveLast(l.get());
    EXPECT_EQ(l.get()->size, 5 * 24);
    for (int i = 0; i < 5; ++i) {
        const auto* slot = reinterpret_cast<StringDescriptor*>(At(l.get()->data) + 24 * i);
        EXPECT_EQ(StringMaxLength(slot), 3);
        EXPECT_EQ(AdtCheck(slot, KindString), "");
    }
    for (const char* text : {"e", "f", "g", "h"}) append(l, text);
    EXPECT_EQ(textsIn(l), (Texts{"c", "e", "f", "g", "h"}));
    EXPECT_EQ(check(l), "");
}

TEST_F(Lists, ClearKeepsKindCapacityAndPrototype) {
    ListValue l = texts({"a", "b"}, UNBOUNDED, 4);
    const Offset prototype = l.get()->prototype;
    ListClear(l.get());
    EXPECT_EQ(l.get()->size, 0);
    EXPECT_EQ(l.get()->data, 0U);
    EXPECT_EQ(l.get()->tag, 6);
    EXPECT_EQ(l.get()->maxlength, UNBOUNDED);
    EXPECT_EQ(l.get()->prototype, prototype);
    EXPECT_EQ(LiveBlocks(), 2);
    append(l, "abcd");
    EXPECT_EQ(textsIn(l), (Texts{"abcd"}));
    ListClear(l.get());
    ListClear(l.get());
    EXPECT_EQ(check(l), "");
}

TEST_F(Lists, ClearOfAFixedListOnlySetsItsCount) {
    ListValue l = texts({"a", "b"}, 3);
    ListDescriptor expected = *l.get();
    expected.count = 0;
    const std::int64_t blocks = LiveBlocks();
    ListClear(l.get());
    EXPECT_EQ(std::memcmp(l.get(), &expected, sizeof expected), 0);
    EXPECT_EQ(LiveBlocks(), blocks);
    append(l, "new");
    EXPECT_EQ(textsIn(l), (Texts{"new"}));
    EXPECT_EQ(check(l), "");
}

TEST_F(Lists, OnlyAListInAFileCanBeResized) {
    ListValue l = numbers({1}), file = inFile();
    const std::int32_t fill = 0;
    ListResize(3, &fill, l.get());
    EXPECT_EQ(takeError(), 761);
    EXPECT_EQ(numbersIn(l), (Numbers{1}));
    ListResize(3, &fill, file.get());
    EXPECT_EQ(takeError(), 661);
}

// ---- held in a file ----

TEST_F(Lists, AListInAFileHasAnEmptyNameAndItsPrototypeApart) {
    const ListValue l = inFile(KindString, 9);
    EXPECT_EQ(l.get()->tag, 22);
    EXPECT_EQ(l.get()->size, 255);
    EXPECT_EQ(l.get()->maxlength, 9);
    EXPECT_EQ(l.get()->count, 0);
    for (int i = 0; i < 255; ++i) ASSERT_EQ(At(l.get()->data)[i], '\0');
    EXPECT_NE(l.get()->prototype, l.get()->data);
    EXPECT_EQ(KindOf(At(l.get()->prototype)), KindString);
    EXPECT_EQ(LiveBlocks(), 2);
    EXPECT_EQ(ListElementKind(l.get()), KindString);
    EXPECT_TRUE(ListIsInFile(l.get()));
    EXPECT_EQ(check(l), "");
    const ListValue n = inFile(KindReal);
    EXPECT_EQ(n.get()->tag, 21);
    EXPECT_EQ(n.get()->prototype, 0U);
    EXPECT_EQ(check(n), "");
}

TEST_F(Lists, AListInAFileThatIsNotOpenRefusesEveryUse) {
    ListValue l = inFile(KindString), memory = texts({"m"});
    String text("a");
    ListValue zero;
    const std::string before = bytesOf(l);
    const std::function<void()> uses[] = {
        [&] { EXPECT_EQ(ListCount(l.get()), 0); },
        [&] { EXPECT_EQ(ListRef(l.get(), 1), nullptr); },
        [&] { ListGet(l.get(), 1, text.get(), KindString); },
        [&] { ListPut(text.get(), KindString, 1, l.get()); },
        [&] { ListAppend(text.get(), KindString, l.get()); },
        [&] { ListInsert(1, text.get(), l.get()); },
        [&] { ListDelete(1, 1, l.get()); },
        [&] { ListRemoveLast(l.get()); },
        [&] { ListClear(l.get()); },
        [&] { ListResize(1, text.get(), l.get()); },
        [&] { ListSort(l.get(), true, true); },
        [&] { ListStringFind(l.get(), text.get(), true); },
        [&] { AdtCopy(l.get(), memory.get(), KindList); },
        [&] { AdtCopy(memory.get(), l.get(), KindList); },
        [&] { EXPECT_FALSE(AdtCompare("EQ", l.get(), memory.get(), KindList)); },
        [&] { EXPECT_FALSE(AdtCompare("NE", memory.get(), l.get(), KindList)); },
    };
    for (const auto& use : uses) {
        use();
        EXPECT_EQ(takeError(), 661) << &use - uses;
        EXPECT_EQ(bytesOf(l), before);
    }
    EXPECT_EQ(textsIn(memory), (Texts{"m"}));
    AdtCopy(l.get(), zero.get(), KindList);  // which has no content to copy
    EXPECT_EQ(takeError(), 0);
    EXPECT_EQ(zero.get()->tag, l.get()->tag);
}

TEST_F(Lists, NumbersDoNotLookAtAPrototype) {
    ListValue l;
    const String like("x");
    ListInit(l.get(), UNBOUNDED, like.get(), KindInteger, false);
    EXPECT_EQ(takeError(), 0);
    EXPECT_EQ(l.get()->prototype, 0U);
}

TEST_F(Lists, AListInAFileIsShapedAndFreedLikeAnyOther) {
    const ListValue l = inFile(KindString, 4);
    ListValue other;
    AdtInit(other.get(), l.get(), KindList);
    EXPECT_TRUE(AdtSameShape(l.get(), other.get(), KindList));
    EXPECT_NE(other.get()->data, l.get()->data);
    EXPECT_NE(other.get()->prototype, l.get()->prototype);
    EXPECT_EQ(check(other), "");
    AdtClear(other.get(), KindList);
    EXPECT_EQ(check(other), "");
    AdtFree(other.get(), KindList);
    EXPECT_EQ(bytesOf(other), std::string(sizeof(ListDescriptor), '\0'));
}

// ---- growth ----

TEST(ListGrowth, AHundredThousandAppendsMoveTheBlockSeldom) {
    ASSERT_EQ(LiveBlocks(), 0);
    ClearError();
    {
        ListValue l;
        ListInit(l.get(), UNBOUNDED, nullptr, KindInteger, false);
        int moves = 0;
        for (std::int32_t n = 1; n <= 100000; ++n) {
            const Offset before = l.get()->data;
            ListAppend(&n, KindInteger, l.get());
            moves += l.get()->data != before ? 1 : 0;
        }
        EXPECT_EQ(ListCount(l.get()), 100000);
        EXPECT_EQ(l.get()->size, 400000);
        EXPECT_EQ(ReadAt<std::int32_t>(ListRef(l.get(), 77777)), 77777);
        // Four classes for each doubling, from 16 bytes to 400000.
        EXPECT_LE(moves, 4 * 16);
        EXPECT_EQ(ErrorCell(), 0);
    }
    EXPECT_EQ(LiveBlocks(), 0);
}

TEST(ListGrowth, AListEndsWhereABlockDoes) {
    ASSERT_EQ(LiveBlocks(), 0);
    ClearError();
    {
        ListValue l;
        const String like(std::string_view("element"));
        ListInit(l.get(), UNBOUNDED, like.get(), KindString, false);
        constexpr std::int32_t most = MaxBlock / 24;
        for (std::int32_t n = 1; n <= most; ++n) ListAppend(like.get(), KindString, l.get());
        ASSERT_EQ(ErrorCell(), 0);
        const ListDescriptor before = *l.get();
        const std::int64_t blocks = LiveBlocks();
        ListAppend(like.get(), KindString, l.get());
        EXPECT_EQ(ErrorCell(), 804);
        ClearError();
        ListInsert(1, like.get(), l.get());
        EXPECT_EQ(ErrorCell(), 804);
        ClearError();
        EXPECT_EQ(std::memcmp(&before, l.get(), sizeof before), 0);
        EXPECT_EQ(LiveBlocks(), blocks);
        EXPECT_EQ(AdtCheck(l.get(), KindList), "");
        EXPECT_EQ(StringView(static_cast<const StringDescriptor*>(ListRef(l.get(), most))), "element");
    }
    EXPECT_EQ(LiveBlocks(), 0);
}

}  // namespace
