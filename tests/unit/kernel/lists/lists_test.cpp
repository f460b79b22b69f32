// SPDX-License-Identifier: Apache-2.0
//
// The life of lists and their elements, lists without a type, and values that go into their own list.
#include "unit/kernel/lists_fixture.h"

#include "kernel/lists/lists.h"
#include "kernel/values/arrays.h"
#include "kernel/values/sets.h"

using namespace tarn;

namespace {

// ---- life ----

TEST_F(Lists, TheUntypedListHasNeitherKindNorBlock) {
    const ListValue l = untyped();
    EXPECT_EQ(l.get()->size, 0);
    EXPECT_EQ(l.get()->tag, 0);
    EXPECT_EQ(l.get()->data, 0U);
    EXPECT_EQ(l.get()->maxlength, UNBOUNDED);
    EXPECT_EQ(l.get()->count, 0);
    EXPECT_EQ(l.get()->prototype, 0U);
    EXPECT_EQ(ListElementKind(l.get()), KindNone);
    EXPECT_EQ(ListCount(l.get()), 0);
    EXPECT_FALSE(ListIsInFile(l.get()));
    EXPECT_EQ(check(l), "");
}

TEST_F(Lists, AnUnboundedListHasNoBlockAtFirstAndItsPrototypeApart) {
    const ListValue l = numbers();
    EXPECT_EQ(l.get()->tag, 3);
    EXPECT_EQ(l.get()->size, 0);
    EXPECT_EQ(l.get()->data, 0U);
    EXPECT_EQ(l.get()->prototype, 0U);
    EXPECT_EQ(LiveBlocks(), 0);
    const ListValue t = texts({}, UNBOUNDED, 7);
    EXPECT_EQ(t.get()->tag, 6);
    EXPECT_EQ(t.get()->data, 0U);
    ASSERT_NE(t.get()->prototype, 0U);
    EXPECT_EQ(StringMaxLength(reinterpret_cast<StringDescriptor*>(At(t.get()->prototype))), 7);
    EXPECT_EQ(LiveBlocks(), 2);
    EXPECT_EQ(check(t), "");
}

TEST_F(Lists, AFixedListHasAllItsSlotsShapedAndTheFirstAsPrototype) {
    const ListValue l = texts({}, 3, 5);
    EXPECT_EQ(l.get()->size, 3 * 24);
    EXPECT_EQ(l.get()->maxlength, 3);
    EXPECT_EQ(l.get()->count, 0);
    ASSERT_NE(l.get()->data, 0U);
    EXPECT_EQ(l.get()->prototype, l.get()->data);
    for (int i = 0; i < 3; ++i)
        EXPECT_EQ(StringMaxLength(reinterpret_cast<StringDescriptor*>(At(l.get()->data) + 24 * i)), 5);
    EXPECT_EQ(check(l), "");
    const ListValue n = numbers({}, 4);
    EXPECT_EQ(n.get()->size, 16);
    EXPECT_EQ(n.get()->prototype, 0U);
    for (int i = 0; i < 4; ++i) EXPECT_EQ(ReadAt<std::int32_t>(At(n.get()->data) + 4 * i), 0);
    EXPECT_EQ(check(n), "");
}

TEST_F(Lists, ThePrototypeIsCopiedWithoutItsContent) {
    const String like("some text");
    ListValue l;
    ListInit(l.get(), UNBOUNDED, like.get(), KindString, false);
    EXPECT_EQ(reinterpret_cast<StringDescriptor*>(At(l.get()->prototype))->length, 0);
    EXPECT_EQ(like.view(), "some text");
}

TEST_F(Lists, InitRefusesWhatIsNoList) {
    const String like;
    const StringDescriptor damaged{-1, TagString, 0, UNBOUNDED, 0, 0}, zero{};
    const struct {
        std::int32_t maxlength;
        const void* prototype;
        std::int32_t kind;
        bool inFile;
        std::int32_t error;
    } rows[] = {
        {UNBOUNDED, like.get(), KindNone, false, 761},
        {5, nullptr, KindNone, false, 761},
        {UNBOUNDED, nullptr, KindNone, true, 761},
        {UNBOUNDED, nullptr, 13, false, 761},
        {UNBOUNDED, nullptr, -1, false, 761},
        {0, nullptr, KindInteger, false, 761},
        {-1, nullptr, KindInteger, false, 761},
        {DYNAMIC_BOUNDS, nullptr, KindInteger, false, 761},
        {0, nullptr, KindInteger, true, 761},
        {UNBOUNDED, nullptr, KindString, false, 761},
        {UNBOUNDED, nullptr, KindTable, false, 761},
        {3, nullptr, KindString, false, 761},
        {UNBOUNDED, nullptr, KindString, true, 761},
        {UNBOUNDED, like.get(), KindRecord, false, 761},
        {UNBOUNDED, &damaged, KindString, false, 761},
        {UNBOUNDED, &zero, KindString, false, 761},
        {1024001, nullptr, KindInteger, false, 804},
        {INT32_MAX, nullptr, KindReal, false, 804},
        {INT32_MAX, like.get(), KindString, false, 804},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(&row - rows);
        ListDescriptor l{1, 2, 3, 4, 5, 6};
        const ListDescriptor zeroes{};
        ListInit(&l, row.maxlength, row.prototype, static_cast<Kind>(row.kind), row.inFile);
        EXPECT_EQ(takeError(), row.error);
        EXPECT_EQ(std::memcmp(&l, &zeroes, sizeof l), 0);
    }
    ListInit(nullptr, UNBOUNDED, nullptr, KindInteger, false);
    EXPECT_EQ(takeError(), 761);
}

TEST_F(Lists, TheLargestFixedListFillsABlock) {
    ListValue l;
    ListInit(l.get(), 1024000, nullptr, KindInteger, false);
    EXPECT_EQ(l.get()->size, MaxBlock);
    EXPECT_EQ(check(l), "");
}

// ---- elements ----

TEST_F(Lists, NumbersOfEveryKindComeBack) {
    constexpr Kind kinds[] = {KindBoolean, KindEnum, KindInteger, KindFixed, KindReal};
    const char first[9] = "\x01\x23\x45\x67\x89\xAB\xCD\xEF", second[9] = "\x02\x13\x24\x35\x46\x57\x68\x79";
    for (const Kind kind : kinds) {
        for (const std::int32_t maxlength : {UNBOUNDED, std::int32_t{3}}) {
            SCOPED_TRACE(kind);
            const auto size = static_cast<std::size_t>(KindSize[kind]);
            ListValue l;
            ListInit(l.get(), maxlength, nullptr, kind, false);
            ListAppend(first, kind, l.get());
            ListAppend(second, kind, l.get());
            char v[9] = "........";
            ListGet(l.get(), 1, v, kind);
            EXPECT_EQ(std::memcmp(v, first, size), 0);
            ListGet(l.get(), 2, v, kind);
            EXPECT_EQ(std::memcmp(v, second, size), 0);
            EXPECT_EQ(v[size], size == 8 ? '\0' : '.');
            ListPut(second, kind, 1, l.get());
            EXPECT_EQ(std::memcmp(ListRef(l.get(), 1), second, size), 0);
            EXPECT_EQ(ListElementKind(l.get()), kind);
            EXPECT_EQ(check(l), "");
        }
    }
}

TEST_F(Lists, TextsComeBack) {
    for (const std::int32_t maxlength : {UNBOUNDED, std::int32_t{4}}) {
        ListValue l = texts({"one", "", "three"}, maxlength);
        EXPECT_EQ(textsIn(l), (Texts{"one", "", "three"}));
        String v("before");
        ListGet(l.get(), 3, v.get(), KindString);
        EXPECT_EQ(v.view(), "three");
        const String other("a longer text");
        ListPut(other.get(), KindString, 2, l.get());
        EXPECT_EQ(textsIn(l), (Texts{"one", "a longer text", "three"}));
        EXPECT_EQ(check(l), "");
    }
}

TEST_F(Lists, RecordsComeBackAsCopies) {
    for (const std::int32_t maxlength : {UNBOUNDED, std::int32_t{2}}) {
        ListValue l = records({"a", "b"}, maxlength);
        RecordValue v = record(9, "x");
        ListGet(l.get(), 2, v.get(), KindRecord);
        EXPECT_TRUE(AdtCompare("EQ", v.get(), ListRef(l.get(), 2), KindRecord));
        v = record(7, "changed");
        EXPECT_EQ(recordsIn(l), (Texts{"a", "b"}));
        ListPut(v.get(), KindRecord, 1, l.get());
        EXPECT_EQ(recordsIn(l), (Texts{"changed", "b"}));
        RecordValue shapeless;
        ListGet(l.get(), 1, shapeless.get(), KindRecord);
        EXPECT_TRUE(AdtCompare("EQ", v.get(), shapeless.get(), KindRecord));
        EXPECT_EQ(check(l), "");
    }
}

TEST_F(Lists, AnUnboundedListHasExactlyTheBytesInUse) {
    ListValue l = texts();
    for (int n = 1; n <= 100; ++n) {
        append(l, std::to_string(n));
        ASSERT_EQ(l.get()->size, n * 24);
        ASSERT_EQ(ListCount(l.get()), n);
    }
    ListDelete(11, 80, l.get());
    EXPECT_EQ(l.get()->size, 20 * 24);
    ListRemoveLast(l.get());
    EXPECT_EQ(l.get()->size, 19 * 24);
    ListDelete(1, 19, l.get());
    EXPECT_EQ(l.get()->size, 0);
    EXPECT_EQ(l.get()->data, 0U);
    EXPECT_EQ(check(l), "");
}

TEST_F(Lists, NumbersOfEveryWidthAreAppendedThroughAllSizesOfBlocks) {
    SetMemoryChecking(false);
    for (const Kind kind : {KindBoolean, KindEnum, KindInteger, KindFixed, KindReal}) {
        ListValue list;
        ListInit(list.get(), UNBOUNDED, nullptr, kind, false);
        std::int64_t value = 0;
        for (std::int32_t n = 1; n <= 3000; ++n) {
            value = n % 2;
            ListAppend(&value, kind, list.get());
            ASSERT_EQ(list.get()->count, n);
            ASSERT_EQ(list.get()->size, n * KindSize[kind]);
        }
        EXPECT_EQ(AdtCheck(list.get(), KindList), "");
        for (std::int32_t n = 1; n <= 3000; ++n) {
            value = 0;
            ListGet(list.get(), n, &value, kind);
            ASSERT_EQ(value, n % 2);
        }
        // What does not fit is told as ever.
        ListAppend(nullptr, kind, list.get());
        EXPECT_EQ(takeError(), 610);
        ListAppend(&value, kind == KindReal ? KindFixed : KindReal, list.get());
        EXPECT_EQ(takeError(), 611);
        EXPECT_EQ(list.get()->count, 3000);
    }
}

TEST_F(Lists, AnAppendThatTheHeapRefusesChangesNothing) {
    SetMemoryChecking(false);
    ListValue list;
    ListInit(list.get(), UNBOUNDED, nullptr, KindInteger, false);
    const std::int32_t value = 7;
    for (int n = 0; n < 3; ++n) ListAppend(&value, KindInteger, list.get());
    FailAllocation(0);
    ListAppend(&value, KindInteger, list.get());
    FailAllocation(-1);
    EXPECT_EQ(takeError(), 802);
    EXPECT_EQ(list.get()->count, 3);
    EXPECT_EQ(list.get()->size, 12);
}

TEST_F(Lists, AFullFixedListTakesNoMore) {
    ListValue l = numbers({1, 2}, 2);
    const std::string before = bytesOf(l);
    const std::int32_t three = 3;
    ListAppend(&three, KindInteger, l.get());
    EXPECT_EQ(takeError(), 618);
    EXPECT_EQ(bytesOf(l), before);
    EXPECT_EQ(numbersIn(l), (Numbers{1, 2}));
    ListValue t = texts({"a", "b"}, 2);
    append(t, "c");
    EXPECT_EQ(takeError(), 618);
    const String c("c");
    for (int position = 1; position <= 3; ++position) {
        ListInsert(position, c.get(), t.get());
        EXPECT_EQ(takeError(), 618);
    }
    EXPECT_EQ(textsIn(t), (Texts{"a", "b"}));
}

TEST_F(Lists, ATextThatDoesNotFitItsElementIsCut) {
    ListValue l = texts({"abc"}, UNBOUNDED, 3);
    append(l, "defg");
    EXPECT_EQ(takeError(), 615);
    const String longer("vwxyz");
    ListPut(longer.get(), KindString, 1, l.get());
    EXPECT_EQ(takeError(), 615);
    EXPECT_EQ(textsIn(l), (Texts{"vwx", "def"}));
    String small(2);
    ListGet(l.get(), 1, small.get(), KindString);
    EXPECT_EQ(takeError(), 615);
    EXPECT_EQ(small.view(), "vw");
}

TEST_F(Lists, ARecordOfOtherFieldsIsOfTheWrongType) {
    ListValue l = records({"a"});
    RecordValue other;
    RecordInit(other.get(), TagRecord, MakeFieldKinds({KindInteger}));
    ListAppend(other.get(), KindRecord, l.get());
    EXPECT_EQ(takeError(), 611);
    ListPut(other.get(), KindRecord, 1, l.get());
    EXPECT_EQ(takeError(), 611);
    ListGet(l.get(), 1, other.get(), KindRecord);
    EXPECT_EQ(takeError(), 611);
    EXPECT_EQ(recordsIn(l), (Texts{"a"}));
    EXPECT_EQ(check(l), "");
}

// ---- the untyped list ----

TEST_F(Lists, TheFirstValueGivesAnUntypedListItsKindAndShape) {
    ListValue l = untyped();
    const String first = fixedString(3, "abc");
    ListAppend(first.get(), KindString, l.get());
    EXPECT_EQ(l.get()->tag, 6);
    EXPECT_EQ(textsIn(l), (Texts{"abc"}));
    append(l, "defg");
    EXPECT_EQ(takeError(), 615);
    const std::int32_t number = 1;
    ListAppend(&number, KindInteger, l.get());
    EXPECT_EQ(takeError(), 611);
    EXPECT_EQ(check(l), "");

    ListValue n = untyped();
    ListAppend(&number, KindInteger, n.get());
    EXPECT_EQ(n.get()->tag, 3);
    EXPECT_EQ(numbersIn(n), (Numbers{1}));
    ListClear(n.get());
    EXPECT_EQ(n.get()->tag, 3);
}

TEST_F(Lists, AnUntypedListTakesEveryValueButHasNoPosition) {
    ListValue l = untyped();
    const String text("abc");
    String out("before");
    ListGet(l.get(), 1, out.get(), KindString);
    EXPECT_EQ(takeError(), 603);
    EXPECT_EQ(out.view(), "");
    ListPut(text.get(), KindString, 1, l.get());
    EXPECT_EQ(takeError(), 603);
    ListRemoveLast(l.get());
    EXPECT_EQ(takeError(), 603);
    ListInsert(2, text.get(), l.get());
    EXPECT_EQ(takeError(), 603);
    EXPECT_EQ(ListStringFind(l.get(), text.get(), false), 0);
    ListSort(l.get(), true, false);
    ListClear(l.get());
    EXPECT_EQ(l.get()->tag, 0);
    ListInsert(1, text.get(), l.get());
    EXPECT_EQ(textsIn(l), (Texts{"abc"}));
}

TEST_F(Lists, AnUntypedListMayTakeItself) {
    ListValue l = untyped();
    ListAppend(l.get(), KindList, l.get());
    EXPECT_EQ(ListElementKind(l.get()), KindList);
    ASSERT_EQ(ListCount(l.get()), 1);
    EXPECT_EQ(static_cast<ListDescriptor*>(ListRef(l.get(), 1))->tag, 0);
    ListAppend(l.get(), KindList, l.get());
    ASSERT_EQ(ListCount(l.get()), 2);
    EXPECT_EQ(ListCount(static_cast<ListDescriptor*>(ListRef(l.get(), 2))), 1);
    ListPut(l.get(), KindList, 1, l.get());
    EXPECT_EQ(ListCount(static_cast<ListDescriptor*>(ListRef(l.get(), 1))), 2);
    ListGet(l.get(), 2, l.get(), KindList);
    EXPECT_EQ(ListCount(l.get()), 1);
    EXPECT_EQ(check(l), "");
}

// ---- a value in the list itself ----

TEST_F(Lists, AnElementMayBeAppendedToItsOwnList) {
    ListValue n = numbers({5}), t = texts({"text"}), r = records({"rec"});
    for (int i = 1; i <= 100; ++i) {
        ListAppend(ListRef(n.get(), i), KindInteger, n.get());
        ListAppend(ListRef(t.get(), i), KindString, t.get());
        ListAppend(ListRef(r.get(), i), KindRecord, r.get());
    }
    EXPECT_EQ(numbersIn(n), Numbers(101, 5));
    EXPECT_EQ(textsIn(t), Texts(101, "text"));
    EXPECT_EQ(recordsIn(r), Texts(101, "rec"));
    EXPECT_EQ(check(t), "");
    EXPECT_EQ(check(r), "");
}

TEST_F(Lists, AListOrAnArrayMayBeAppendedToItsOwnList) {
    ListValue lists, arrays;
    const ListValue inner = texts({"x", "y"});
    ListInit(lists.get(), UNBOUNDED, inner.get(), KindList, false);
    ListAppend(inner.get(), KindList, lists.get());
    ArrayValue array;
    const std::int32_t seven = 7;
    ArrayInit(array.get(), KindInteger, 1, 4, nullptr);
    ArrayPut(array.get(), 2, &seven, KindInteger);
    ListInit(arrays.get(), UNBOUNDED, array.get(), KindArray, false);
    ListAppend(array.get(), KindArray, arrays.get());
    for (int i = 1; i <= 40; ++i) {
        ListAppend(ListRef(lists.get(), i), KindList, lists.get());
        ListAppend(ListRef(arrays.get(), i), KindArray, arrays.get());
    }
    for (int i = 1; i <= 41; ++i) {
        EXPECT_TRUE(AdtCompare("EQ", inner.get(), ListRef(lists.get(), i), KindList));
        EXPECT_TRUE(AdtCompare("EQ", array.get(), ListRef(arrays.get(), i), KindArray));
    }
    EXPECT_EQ(check(lists), "");
    EXPECT_EQ(check(arrays), "");
}

TEST_F(Lists, ASetOrAUnionMayBeAppendedToItsOwnList) {
    OwnedSet set;
    SetInit(set.get(), -10, 10);
    SetInclude(7, set.get());
    RecordValue variant = record(4, "variant");
    variant.get()->tag = TagUnion;
    const struct {
        const void* value;
        Kind kind;
    } rows[] = {{set.get(), KindSet}, {variant.get(), KindUnion}};
    for (const auto& row : rows) {
        ListValue l;
        ListInit(l.get(), UNBOUNDED, row.value, row.kind, false);
        ListAppend(row.value, row.kind, l.get());
        for (int i = 1; i <= 40; ++i) ListAppend(ListRef(l.get(), i), row.kind, l.get());
        for (int i = 1; i <= 41; ++i) EXPECT_TRUE(AdtCompare("EQ", row.value, ListRef(l.get(), i), row.kind));
        EXPECT_EQ(check(l), "");
    }
    RecordFree(variant.get());
}

TEST_F(Lists, AnElementMayBePutInsertedAndReadWithinItsList) {
    for (const std::int32_t maxlength : {UNBOUNDED, std::int32_t{5}}) {
        ListValue t = texts({"a", "b", "c"}, maxlength);
        const auto element = [&](int i) { return static_cast<StringDescriptor*>(ListRef(t.get(), i)); };
        ListPut(element(1), KindString, 1, t.get());
        ListPut(element(3), KindString, 2, t.get());
        EXPECT_EQ(textsIn(t), (Texts{"a", "c", "c"}));
        ListInsert(1, element(3), t.get());
        ListInsert(5, element(2), t.get());
        EXPECT_EQ(textsIn(t), (Texts{"c", "a", "c", "c", "a"}));
        ListGet(t.get(), 2, element(4), KindString);
        ListGet(t.get(), 2, element(2), KindString);
        EXPECT_EQ(textsIn(t), (Texts{"c", "a", "c", "a", "a"}));
        EXPECT_EQ(ListStringFind(t.get(), element(4), false), 2);
        EXPECT_EQ(check(t), "");
    }
}

}  // namespace
