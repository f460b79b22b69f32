// SPDX-License-Identifier: Apache-2.0
//
// Lists as values as a whole: copies, comparison, shapes, sorting, and what is left when memory is short.
#include "kernel/lists/lists.h"
#include "unit/kernel/lists_fixture.h"

#include <algorithm>
#include <cstddef>
#include <functional>

using namespace tarn;

namespace {

class ListValues : public Lists {
protected:
    static void copy(const ListValue& from, ListValue& to) { AdtCopy(from.get(), to.get(), KindList); }
    static bool equal(const ListValue& a, const ListValue& b) {
        const bool equals = AdtCompare("EQ", a.get(), b.get(), KindList);
        EXPECT_EQ(AdtCompare("NE", a.get(), b.get(), KindList), !equals);
        return equals;
    }
};

// ---- copies ----

TEST_F(ListValues, ACopyIsDeep) {
    for (const std::int32_t maxlength : {UNBOUNDED, std::int32_t{3}}) {
        const ListValue from = records({"a", "b"}, maxlength);
        ListValue shapeless, filled = records({"x", "y", "z"}, maxlength), unbound = untyped();
        for (ListValue* to : {&shapeless, &filled, &unbound}) {
            copy(from, *to);
            EXPECT_TRUE(equal(from, *to));
            EXPECT_EQ(check(*to), "");
            ListPut(record(1, "changed").get(), KindRecord, 1, to->get());
            EXPECT_EQ(recordsIn(*to), (Texts{"changed", "b"}));
        }
        EXPECT_EQ(recordsIn(from), (Texts{"a", "b"}));
        EXPECT_EQ(shapeless.get()->maxlength, maxlength);
        EXPECT_EQ(unbound.get()->maxlength, UNBOUNDED);
    }
}

TEST_F(ListValues, FixedAndUnboundedListsCopyToEachOther) {
    const ListValue unbounded = texts({"a", "b"}), fixed = texts({"c", "d", "e"}, 4);
    ListValue toFixed = texts({"x", "y", "z"}, 3), toUnbounded = texts({"w"});
    copy(unbounded, toFixed);
    EXPECT_EQ(textsIn(toFixed), (Texts{"a", "b"}));
    EXPECT_EQ(toFixed.get()->maxlength, 3);
    copy(fixed, toUnbounded);
    EXPECT_EQ(textsIn(toUnbounded), (Texts{"c", "d", "e"}));
    EXPECT_EQ(toUnbounded.get()->size, 3 * 24);
    copy(fixed, toFixed);
    EXPECT_EQ(textsIn(toFixed), (Texts{"c", "d", "e"}));
    for (const ListValue* l : {&toFixed, &toUnbounded}) EXPECT_EQ(check(*l), "");
    ListValue n = numbers({1, 2, 3}, 3);
    copy(numbers({7}), n);
    EXPECT_EQ(numbersIn(n), (Numbers{7}));
}

TEST_F(ListValues, AFixedListThatIsTooSmallIsNotChanged) {
    ListValue to = texts({"x", "y"}, 2);
    const std::string before = bytesOf(to);
    copy(texts({"a", "b", "c"}), to);
    EXPECT_EQ(takeError(), 618);
    EXPECT_EQ(bytesOf(to), before);
    EXPECT_EQ(textsIn(to), (Texts{"x", "y"}));
}

TEST_F(ListValues, AnEmptyListEmptiesItsTarget) {
    ListValue unbounded = texts({"a"}), fixed = texts({"a"}, 2), n = numbers({1});
    copy(texts(), unbounded);
    copy(texts(), fixed);
    copy(untyped(), n);
    for (const ListValue* l : {&unbounded, &fixed, &n}) {
        EXPECT_EQ(ListCount(l->get()), 0);
        EXPECT_EQ(check(*l), "");
    }
    EXPECT_EQ(n.get()->tag, 3);
    EXPECT_EQ(unbounded.get()->data, 0U);
    ListValue u = untyped(), shapeless;
    copy(untyped(), u);
    copy(untyped(), shapeless);
    EXPECT_EQ(u.get()->tag, 0);
    EXPECT_EQ(bytesOf(u), bytesOf(shapeless));
}

TEST_F(ListValues, ElementsOfAnotherKindAreOfTheWrongType) {
    ListValue n = numbers({1}), r = records({"a"});
    copy(texts({"a"}), n);
    EXPECT_EQ(takeError(), 611);
    EXPECT_EQ(numbersIn(n), (Numbers{1}));
    ListValue others;
    RecordValue like;
    RecordInit(like.get(), TagRecord, MakeFieldKinds({KindInteger}));
    ListInit(others.get(), UNBOUNDED, like.get(), KindRecord, false);
    ListAppend(like.get(), KindRecord, others.get());
    copy(others, r);
    EXPECT_EQ(takeError(), 611);
    EXPECT_EQ(recordsIn(r), (Texts{"a"}));
    EXPECT_EQ(check(r), "");
}

TEST_F(ListValues, TextsAreCutToTheCapacityOfTheTarget) {
    ListValue to = texts({"x"}, UNBOUNDED, 2);
    copy(texts({"abc", "de"}), to);
    EXPECT_EQ(takeError(), 615);
    EXPECT_EQ(textsIn(to), (Texts{"ab", "de"}));
    EXPECT_EQ(check(to), "");
}

TEST_F(ListValues, AListMayBeCopiedToItselfAndToItsOwnElement) {
    ListValue l = texts({"a", "b"});
    copy(l, l);
    EXPECT_EQ(textsIn(l), (Texts{"a", "b"}));
    ListValue outer = untyped();
    for (int i = 0; i < 3; ++i) ListAppend(outer.get(), KindList, outer.get());
    auto* element = static_cast<ListDescriptor*>(ListRef(outer.get(), 1));
    AdtCopy(outer.get(), element, KindList, 1);  // the copy changes its source
    EXPECT_EQ(ListCount(element), 3);
    EXPECT_EQ(check(outer), "");
    AdtCopy(ListRef(outer.get(), 3), outer.get(), KindList, 1);
    EXPECT_EQ(ListCount(outer.get()), 2);
    EXPECT_EQ(check(outer), "");
}

TEST_F(ListValues, DamagedDescriptorsAreNotCopied) {
    ListValue l = numbers({1});
    ListDescriptor lying{4, KindInteger, 0, UNBOUNDED, 2, 0};
    AdtCopy(&lying, l.get(), KindList);
    EXPECT_EQ(takeError(), 761);
    AdtCopy(l.get(), &lying, KindList);
    EXPECT_EQ(takeError(), 761);
    AdtCopy(nullptr, l.get(), KindList);
    EXPECT_EQ(takeError(), 761);
    EXPECT_EQ(numbersIn(l), (Numbers{1}));
}

TEST_F(ListValues, InitAndClearKeepTheShape) {
    for (const std::int32_t maxlength : {UNBOUNDED, std::int32_t{3}}) {
        ListValue l = texts({"a", "b"}, maxlength, 4), other;
        AdtInit(other.get(), l.get(), KindList);
        EXPECT_EQ(ListCount(other.get()), 0);
        EXPECT_TRUE(AdtSameShape(l.get(), other.get(), KindList));
        EXPECT_EQ(check(other), "");
        AdtClear(l.get(), KindList);
        EXPECT_EQ(ListCount(l.get()), 0);
        EXPECT_TRUE(AdtSameShape(l.get(), other.get(), KindList));
        EXPECT_EQ(check(l), "");
        AdtFree(l.get(), KindList);
        AdtFree(l.get(), KindList);
        EXPECT_EQ(bytesOf(l), std::string(sizeof(ListDescriptor), '\0'));
    }
}

// ---- comparison ----

TEST_F(ListValues, ListsAreEqualByContent) {
    const ListValue a = texts({"a", "b"});
    EXPECT_TRUE(equal(a, texts({"a", "b"})));
    EXPECT_TRUE(equal(a, texts({"a", "b"}, 5)));
    EXPECT_TRUE(equal(a, texts({"a", "b"}, UNBOUNDED, 9)));
    EXPECT_FALSE(equal(a, texts({"a"})));
    EXPECT_FALSE(equal(a, texts({"a", "b", "c"})));
    EXPECT_FALSE(equal(a, texts({"b", "a"})));
    EXPECT_FALSE(equal(a, texts({"a", "B"})));
    EXPECT_FALSE(equal(a, numbers({1, 2})));
    EXPECT_TRUE(equal(texts(), untyped()));
    EXPECT_TRUE(equal(texts(), numbers()));
    EXPECT_TRUE(equal(records({"a"}), records({"a"}, 3)));
    EXPECT_FALSE(equal(records({"a"}), records({"b"})));
    for (const char* op : {"GT", "LT", "GE", "LE", "", "E", "XX"})
        EXPECT_FALSE(AdtCompare(op, a.get(), a.get(), KindList)) << op;
    EXPECT_TRUE(AdtCompare("eq", a.get(), a.get(), KindList));
}

TEST_F(ListValues, RealsAreEqualByTheirValue) {
    ListValue a, b;
    const double zero = 0.0, minusZero = -0.0;
    for (ListValue* l : {&a, &b}) ListInit(l->get(), UNBOUNDED, nullptr, KindReal, false);
    ListAppend(&zero, KindReal, a.get());
    ListAppend(&minusZero, KindReal, b.get());
    EXPECT_TRUE(equal(a, b));
}

TEST_F(ListValues, SlotsBehindTheCountDoNotMatter) {
    ListValue a = texts({"a", "b", "c"}, 3), b = texts({"a"}, 3);
    ListDelete(2, 2, a.get());
    EXPECT_TRUE(equal(a, b));
}

TEST_F(ListValues, ShapesDifferByCapacityKindElementsAndPlace) {
    const ListValue l = texts({"a"});
    const auto same = [&](const ListValue& other) { return AdtSameShape(l.get(), other.get(), KindList); };
    EXPECT_TRUE(same(texts()));
    EXPECT_FALSE(same(texts({}, 3)));
    EXPECT_FALSE(same(texts({}, UNBOUNDED, 3)));
    EXPECT_FALSE(same(numbers()));
    EXPECT_TRUE(same(untyped()));  // it may take the kind
    EXPECT_FALSE(same(inFile(KindString)));
    EXPECT_TRUE(AdtSameShape(numbers().get(), numbers({1}).get(), KindList));
    EXPECT_TRUE(AdtSameShape(records().get(), records({"a"}).get(), KindList));
}

TEST_F(ListValues, CheckFindsWhatIsWrong) {
    const auto wrong = [&](ListValue& l, const std::function<void(ListDescriptor&)>& damage) {
        const ListDescriptor before = *l.get();
        damage(*l.get());
        const bool found = !check(l).empty();
        *l.get() = before;
        EXPECT_EQ(check(l), "");
        return found;
    };
    ListValue unbounded = texts({"a", "b"}), fixed = texts({"a", "b"}, 3), file = inFile(), u = untyped();
    for (ListValue* l : {&unbounded, &fixed}) {
        EXPECT_TRUE(wrong(*l, [](ListDescriptor& d) { d.count = -1; }));
        EXPECT_TRUE(wrong(*l, [](ListDescriptor& d) { d.count = 4; }));
        EXPECT_TRUE(wrong(*l, [](ListDescriptor& d) { d.size -= 1; }));
        EXPECT_TRUE(wrong(*l, [](ListDescriptor& d) { d.size = 0; }));
        EXPECT_TRUE(wrong(*l, [](ListDescriptor& d) { d.data = 0; }));
        EXPECT_TRUE(wrong(*l, [](ListDescriptor& d) { d.prototype = 0; }));
        EXPECT_TRUE(wrong(*l, [](ListDescriptor& d) { d.tag = KindInteger; }));
        EXPECT_TRUE(wrong(*l, [](ListDescriptor& d) { d.maxlength = -7; }));
    }
    EXPECT_TRUE(wrong(unbounded, [](ListDescriptor& d) { d.count = 1; }));
    EXPECT_TRUE(wrong(unbounded, [](ListDescriptor& d) { d.prototype = d.data; }));
    EXPECT_TRUE(wrong(fixed, [](ListDescriptor& d) { d.prototype += 24; }));
    EXPECT_TRUE(wrong(file, [](ListDescriptor& d) { d.size = 254; }));
    EXPECT_TRUE(wrong(u, [](ListDescriptor& d) { d.count = 1; }));
    auto& element = *static_cast<StringDescriptor*>(ListRef(fixed.get(), 2));
    const StringDescriptor before = element;
    element.length = -1;
    EXPECT_EQ(check(fixed), "list element 2: string: length out of range");
    element = {};
    EXPECT_EQ(check(fixed), "list element 2: no shape");
    element = before;
}

// ---- sorting and finding ----

TEST_F(ListValues, SortOrdersByCharacters) {
    const struct {
        bool ascending, ignoreCase;
        Texts expected;
    } rows[] = {
        {true, false, {"", "AZZ", "B", "a", "ab", "\xE4"}},
        {false, false, {"\xE4", "ab", "a", "B", "AZZ", ""}},
        {true, true, {"", "a", "ab", "AZZ", "B", "\xE4"}},
        {false, true, {"\xE4", "B", "AZZ", "ab", "a", ""}},
    };
    for (const auto& row : rows) {
        for (const std::int32_t maxlength : {UNBOUNDED, std::int32_t{8}}) {
            ListValue l = texts({"ab", "\xE4", "B", "", "a", "AZZ"}, maxlength);
            ListSort(l.get(), row.ascending, row.ignoreCase);
            EXPECT_EQ(textsIn(l), row.expected);
            EXPECT_EQ(check(l), "");
        }
    }
}

TEST_F(ListValues, SortOfNoneOneAndEqualTexts) {
    for (const Texts& values : {Texts{}, Texts{"a"}, Texts{"a", "a"}, Texts(50, "same")}) {
        ListValue l = texts(values);
        ListSort(l.get(), true, false);
        EXPECT_EQ(textsIn(l), values);
    }
    ListValue l = texts({"a", "A", "a"});
    ListSort(l.get(), true, true);
    EXPECT_EQ(ListCount(l.get()), 3);
}

TEST_F(ListValues, SortMovesNoText) {
    ListValue l = texts({"c", "b", "a"});
    const Offset last = static_cast<StringDescriptor*>(ListRef(l.get(), 3))->data;
    FailAllocation(0);
    ListSort(l.get(), true, false);
    FailAllocation(-1);
    EXPECT_EQ(static_cast<StringDescriptor*>(ListRef(l.get(), 1))->data, last);
}

TEST_F(ListValues, SortOfManyTextsThatDifferOnlyAtTheirEnd) {
    SetMemoryChecking(false);
    ListValue l;
    const String like;
    ListInit(l.get(), UNBOUNDED, like.get(), KindString, false);
    for (std::int32_t n = 0; n < 30000; ++n)
        append(l, std::string(200, 'x') + std::to_string(100000 + n * 7919 % 30000));
    ListSort(l.get(), true, false);
    const Texts sorted = textsIn(l);
    EXPECT_TRUE(std::is_sorted(sorted.begin(), sorted.end()));
    EXPECT_EQ(sorted.size(), 30000U);
}

TEST_F(ListValues, OnlyListsOfTextsAreSortedAndSearched) {
    ListValue n = numbers({2, 1}), r = records({"b", "a"});
    const String text("a");
    for (ListValue* l : {&n, &r}) {
        ListSort(l->get(), true, false);
        EXPECT_EQ(takeError(), 761);
        EXPECT_EQ(ListStringFind(l->get(), text.get(), false), 0);
        EXPECT_EQ(takeError(), 761);
        ListInsert(1, text.get(), l->get());
        EXPECT_EQ(takeError(), 761);
    }
    EXPECT_EQ(numbersIn(n), (Numbers{2, 1}));
}

TEST_F(ListValues, FindGivesTheFirstPosition) {
    for (const std::int32_t maxlength : {UNBOUNDED, std::int32_t{6}}) {
        const ListValue l = texts({"one", "Two", "two", "", "two"}, maxlength);
        const struct {
            std::string_view text;
            bool ignoreCase;
            std::int32_t position;
        } rows[] = {{"one", false, 1}, {"two", false, 3}, {"two", true, 2},
                    {"TWO", true, 2},  {"TWO", false, 0}, {"", false, 4},
                    {"tw", true, 0},   {"twoo", true, 0}, {"three", true, 0}};
        for (const auto& row : rows) {
            const String text(row.text);
            EXPECT_EQ(ListStringFind(l.get(), text.get(), row.ignoreCase), row.position) << row.text;
        }
    }
    EXPECT_EQ(ListStringFind(texts().get(), String("a").get(), false), 0);
}

TEST_F(ListValues, FindChecksTheTextAfterTheList) {
    const ListValue l = texts({"a"}), n = numbers();
    const StringDescriptor damaged{-1, TagString, 0, UNBOUNDED, 0, 0}, zero{};
    const struct {
        const ListDescriptor* l;
        const StringDescriptor* text;
        std::int32_t error;
    } rows[] = {{nullptr, nullptr, 761},
                {n.get(), nullptr, 761},
                {l.get(), nullptr, 610},
                {l.get(), &damaged, 610},
                {l.get(), &zero, 611}};
    for (const auto& row : rows) {
        EXPECT_EQ(ListStringFind(row.l, row.text, false), 0);
        EXPECT_EQ(takeError(), row.error);
    }
}

// ---- lists of lists ----

TEST_F(ListValues, ListsNest) {
    const ListValue likeRow = texts({}, UNBOUNDED, 3);
    ListValue table;
    ListInit(table.get(), 4, likeRow.get(), KindList, false);
    for (const Texts& row : {Texts{"a"}, Texts{"b", "c"}, Texts{}})
        ListAppend(texts(row).get(), KindList, table.get());
    const auto* second = static_cast<const ListDescriptor*>(ListRef(table.get(), 2));
    EXPECT_EQ(ListCount(second), 2);
    EXPECT_EQ(StringMaxLength(static_cast<const StringDescriptor*>(ListRef(second, 2))), 3);
    ListValue copied;
    copy(table, copied);
    EXPECT_TRUE(equal(table, copied));
    ListDelete(1, 1, copied.get());
    EXPECT_FALSE(equal(table, copied));
    EXPECT_EQ(check(table), "");
    EXPECT_EQ(check(copied), "");
    ListAppend(numbers().get(), KindList, table.get());
    EXPECT_EQ(takeError(), 611);
    ListAppend(inFile(KindString).get(), KindList, table.get());
    EXPECT_EQ(takeError(), 661);
    EXPECT_EQ(ListCount(table.get()), 3);
    EXPECT_EQ(check(table), "");
}

// ---- when memory is short ----

TEST_F(ListValues, ALackOfMemoryLeavesTheListAsItWas) {
    const String text("a text that is new");
    const RecordValue rec = record(3, "new");
    const ListValue three = texts({"1", "2", "3"}), threeRecords = records({"1", "2", "3"}),
                    ints = numbers({1, 2});
    const std::int32_t number = 7;
    struct Operation {
        const char* name;
        std::function<ListValue()> make;
        std::function<void(ListDescriptor*)> run;
        int requests;  // at least
    };
    const auto appendText = [&](ListDescriptor* l) { ListAppend(text.get(), KindString, l); };
    const auto appendRecord = [&](ListDescriptor* l) { ListAppend(rec.get(), KindRecord, l); };
    const auto copyTexts = [&](ListDescriptor* l) { AdtCopy(three.get(), l, KindList); };
    const auto copyRecords = [&](ListDescriptor* l) { AdtCopy(threeRecords.get(), l, KindList); };
    const Operation operations[] = {
        {"append number", [] { return numbers({1}); }, [&](auto* l) { ListAppend(&number, KindInteger, l); },
         1},
        {"append text", [] { return texts({"a"}); }, appendText, 2},
        {"append fixed text", [] { return texts({"a"}, UNBOUNDED, 40); }, appendText, 2},
        {"append text, fixed list", [] { return texts({"a"}, 2); }, appendText, 1},
        {"append record", [] { return records({"a"}); }, appendRecord, 3},
        {"append record, fixed list", [] { return records({"a"}, 2); }, appendRecord, 2},
        {"first number", [] { return untyped(); }, [&](auto* l) { ListAppend(&number, KindInteger, l); }, 1},
        {"first text", [] { return untyped(); }, appendText, 3},
        {"first record", [] { return untyped(); }, appendRecord, 5},
        {"put text",
         [] {
             return texts({"a", "b"});
         },
         [&](auto* l) { ListPut(text.get(), KindString, 2, l); }, 1},
        {"put record",
         [] {
             return records({"a", "b"});
         },
         [&](auto* l) { ListPut(rec.get(), KindRecord, 2, l); }, 2},
        {"put record, fixed list",
         [] {
             return records({"a", "b"}, 3);
         },
         [&](auto* l) { ListPut(rec.get(), KindRecord, 1, l); }, 2},
        {"insert",
         [] {
             return texts({"a", "b"});
         },
         [&](auto* l) { ListInsert(1, text.get(), l); }, 2},
        {"insert, fixed list",
         [] {
             return texts({"a", "b"}, 3);
         },
         [&](auto* l) { ListInsert(1, text.get(), l); }, 1},
        {"copy texts", [] { return texts({"a"}); }, copyTexts, 4},
        {"copy texts to a fixed list", [] { return texts({"a"}, 3); }, copyTexts, 4},
        {"copy texts to an untyped list", [] { return untyped(); }, copyTexts, 5},
        {"copy texts to no list", [] { return ListValue(); }, copyTexts, 5},
        {"copy records", [] { return records({"a"}); }, copyRecords, 7},
        {"copy records to a fixed list", [] { return records({"a"}, 3); }, copyRecords, 7},
        {"copy numbers", [] { return numbers({5}); }, [&](auto* l) { AdtCopy(ints.get(), l, KindList); }, 1},
        {"clear to shape", [] { return records({"a"}, 3); }, [](auto* l) { AdtClear(l, KindList); }, 0},
    };
    for (const Operation& operation : operations) {
        SCOPED_TRACE(operation.name);
        int n = 0;
        for (bool failed = true; failed; ++n) {
            ASSERT_LT(n, 50);
            ListValue l = operation.make(), before;
            if (l.get()->maxlength != 0) copy(l, before);
            const std::string bytes = bytesOf(l);
            const std::int64_t blocks = LiveBlocks();
            FailAllocation(n);
            operation.run(l.get());
            FailAllocation(-1);
            failed = ErrorCell() == 802;
            EXPECT_EQ(takeError(), failed ? 802 : 0);
            EXPECT_EQ(check(l), "");
            if (!failed) continue;
            EXPECT_EQ(bytesOf(l), bytes);
            EXPECT_EQ(LiveBlocks(), blocks);
            EXPECT_TRUE(l.get()->maxlength == 0 || equal(l, before));
        }
        EXPECT_GT(n, operation.requests);
    }
}

TEST_F(ListValues, ALackOfMemoryLeavesNothingOfANewList) {
    const RecordValue like = record(1, "a");
    const ListValue fixed = records({}, 2), unbounded = records(), file = inFile(KindString);
    const String text;
    const std::function<void(ListDescriptor*)> operations[] = {
        [&](auto* l) { ListInit(l, UNBOUNDED, like.get(), KindRecord, false); },
        [&](auto* l) { ListInit(l, 3, like.get(), KindRecord, false); },
        [&](auto* l) { ListInit(l, 3, nullptr, KindInteger, false); },
        [&](auto* l) { ListInit(l, 3, text.get(), KindString, true); },
        [&](auto* l) { ListInit(l, UNBOUNDED, nullptr, KindReal, true); },
        [&](auto* l) { AdtInit(l, fixed.get(), KindList); },
        [&](auto* l) { AdtInit(l, unbounded.get(), KindList); },
        [&](auto* l) { AdtInit(l, file.get(), KindList); },
    };
    for (const auto& operation : operations) {
        SCOPED_TRACE(&operation - operations);
        int n = 0;
        for (bool failed = true; failed; ++n) {
            ASSERT_LT(n, 50);
            ListValue l;
            const std::int64_t blocks = LiveBlocks();
            FailAllocation(n);
            operation(l.get());
            FailAllocation(-1);
            failed = ErrorCell() == 802;
            EXPECT_EQ(takeError(), failed ? 802 : 0);
            EXPECT_EQ(check(l), failed ? "" : check(l));
            if (!failed) continue;
            EXPECT_EQ(bytesOf(l), std::string(sizeof(ListDescriptor), '\0'));
            EXPECT_EQ(LiveBlocks(), blocks);
        }
        EXPECT_GT(n, 1);
    }
}

TEST_F(ListValues, AReadingThatGetsNoMemoryLeavesAnEmptyValue) {
    const ListValue t = texts({"a text"}), r = records({"a text"});
    for (int n = 0; n < 2; ++n) {
        String text("before");
        FailAllocation(n);
        ListGet(t.get(), 1, text.get(), KindString);
        FailAllocation(-1);
        EXPECT_EQ(takeError(), n == 0 ? 802 : 0);
        EXPECT_EQ(text.view(), n == 0 ? "" : "a text");
    }
    RecordValue rec = record(5, "before");
    FailAllocation(0);
    ListGet(r.get(), 1, rec.get(), KindRecord);
    FailAllocation(-1);
    EXPECT_EQ(takeError(), 802);
    EXPECT_TRUE(AdtCompare("EQ", rec.get(), record(0, "").get(), KindRecord));
}

TEST_F(ListValues, RemovingNeedsNoMemory) {
    for (const std::int32_t maxlength : {UNBOUNDED, std::int32_t{40}}) {
        ListValue l = texts(Texts(40, "text"), maxlength);
        FailAllocation(0);
        ListDelete(3, 30, l.get());
        ListRemoveLast(l.get());
        EXPECT_EQ(ErrorCell(), 0);
        EXPECT_EQ(ListCount(l.get()), 9);
        ListClear(l.get());
        EXPECT_EQ(ErrorCell(), 0);
        FailAllocation(-1);
        EXPECT_EQ(check(l), "");
    }
}

}  // namespace
