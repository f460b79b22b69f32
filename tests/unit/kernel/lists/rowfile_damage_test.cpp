// SPDX-License-Identifier: Apache-2.0
//
// Lists whose rows stand in a file that somebody else has changed, cut or damaged.
#include "unit/kernel/rowfile_fixture.h"

#include <functional>

namespace tarn {
namespace {

using model::List;
using model::Number;
using model::Real;
using model::Record;
using model::Set;
using model::Text;

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

}  // namespace
}  // namespace tarn
