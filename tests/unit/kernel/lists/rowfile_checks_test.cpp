// SPDX-License-Identifier: Apache-2.0
//
// Lists whose rows stand in a file: which error comes when several things are wrong.
#include "unit/kernel/rowfile_fixture.h"

#include <functional>

namespace tarn {
namespace {

using model::Number;
using model::Record;
using model::Text;

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

}  // namespace
}  // namespace tarn
