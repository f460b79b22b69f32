// SPDX-License-Identifier: Apache-2.0
//
// Tables in memory: which error comes when several things are wrong, and what a check of a table finds.
#include "kernel/lists/lists.h"
#include "unit/kernel/tables_fixture.h"

#include <functional>

namespace tarn {
namespace {

// ---- errors and their order ----

TEST_F(Tables, ErrorsComeInTheirOrder) {
    make(twoIndexes);
    fill(1);
    TableValue inFile;
    TableInit(inFile.get(), UNBOUNDED, recordOf(row(0, "")).get(), twoIndexes, "", true);
    EXPECT_EQ(AdtCheck(inFile.get(), KindTable), "");
    TableDescriptor zero{};
    ListValue list;
    ListInit(list.get(), UNBOUNDED, nullptr, KindInteger, false);
    auto* noTable = reinterpret_cast<TableDescriptor*>(list.get());
    const RecordValue good = recordOf(row(1, "n1")), otherShape = recordOf({integer(1)}),
                      key = recordOf({integer(1)}), badKey = recordOf({real(1)});
    RecordDescriptor malformed = *otherShape.get();
    malformed.size = 3;
    using Row = const RecordDescriptor*;
    using Operation = std::function<void(TableDescriptor*, Row, std::int32_t, Row)>;
    const auto reading = [](auto read) {
        return [read](TableDescriptor* table, Row like, std::int32_t n, Row key) {
            // a copy, for the row is cleared
            RecordValue out;
            RecordDescriptor bad{};
            if (like != nullptr && like->size != 3) AdtCopy(like, out.get(), KindRecord);
            if (like != nullptr && like->size == 3) bad = *like;
            RecordDescriptor* row = like == nullptr ? nullptr : bad.tag != 0 ? &bad : out.get();
            read(table, row, n, key);
        };
    };
    struct Named {
        const char* name;
        Operation run;
        bool takesKey;
    };
    const Named operations[] = {
        {"add", [](auto* t, Row r, int n, Row) { TableAdd(t, n, r); }, false},
        {"update", [](auto* t, Row r, int n, Row k) { TableUpdate(r, n, k, t); }, true},
        {"read", reading([](auto* t, auto* r, int n, Row k) { TableRead(t, n, k, r); }), true},
        {"find", reading([](auto* t, auto* r, int n, Row k) {
             bool found = true;
             TableFind("EQ", t, n, k, r, found);
             EXPECT_FALSE(found);
         }),
         true},
        {"key",
         [](auto* t, Row r, int n, Row) {
             RecordValue out;
             TableKeyFromRow(t, n, r, out.get());
         },
         false},
    };
    for (const Named& operation : operations) {
        SCOPED_TRACE(operation.name);
        const auto error = [&](TableDescriptor* table, Row r, std::int32_t n, Row k) {
            operation.run(table, r, n, k);
            return takeError();
        };
        EXPECT_EQ(error(nullptr, nullptr, 9, nullptr), 762);
        EXPECT_EQ(error(&zero, nullptr, 9, nullptr), 762);
        EXPECT_EQ(error(noTable, nullptr, 9, nullptr), 762);
        EXPECT_EQ(error(inFile.get(), nullptr, 9, nullptr), 661);
        EXPECT_EQ(error(t(), nullptr, 9, nullptr), 610);
        EXPECT_EQ(error(t(), &malformed, 9, nullptr), 610);
        EXPECT_EQ(error(t(), otherShape.get(), 9, nullptr), 611);
        for (const int n : {0, 3, 6, -1}) EXPECT_EQ(error(t(), good.get(), n, key.get()), 636);
        if (!operation.takesKey) continue;
        EXPECT_EQ(error(t(), good.get(), 1, nullptr), 636);
        EXPECT_EQ(error(t(), good.get(), 1, badKey.get()), 636);
        EXPECT_EQ(error(t(), good.get(), 2, key.get()), 636);
    }
    expectWhole();
}

TEST_F(Tables, ARowWhoseKeyIsMalformedIsRefused) {
    make(twoIndexes);
    fill(3);
    RecordValue bad = recordOf(row(9, "nine"));
    auto* name = static_cast<StringDescriptor*>(RecordFieldAddress(bad.get(), 2));
    const auto good = ReadAt<StringDescriptor>(name);
    name->length = 99;  // beyond its capacity
    TableAdd(t(), 1, bad.get());
    EXPECT_EQ(takeError(), 610);
    TableUpdate(bad.get(), 1, recordOf({integer(2)}).get(), t());
    EXPECT_EQ(takeError(), 610);
    WriteAt(name, good);
    EXPECT_EQ(numbers(), (Numbers{1, 2, 3}));
    expectWhole();
}

TEST_F(Tables, OperationsWithoutARowCheckTheirTable) {
    make(twoIndexes);
    fill(1);
    TableValue inFile;
    TableInit(inFile.get(), UNBOUNDED, recordOf(row(0, "")).get(), twoIndexes, "", true);
    TableDescriptor zero{};
    for (TableDescriptor* bad : {static_cast<TableDescriptor*>(nullptr), &zero}) {
        const std::function<void()> calls[] = {
            [&] { TableDelete(bad, 9, nullptr); },
            [&] { TableClear(bad); },
            [&] { TableRebuild(bad); },
            [&] { EXPECT_EQ(TableCount(bad), 0); },
            [&] { EXPECT_EQ(TableIndexCount(bad), 0); },
            [&] { EXPECT_EQ(TableIndexFor(bad, nullptr), 0); },
            [&] { TableRow(bad, 9, nullptr); },
        };
        for (const auto& call : calls) {
            call();
            EXPECT_EQ(takeError(), 762);
        }
        EXPECT_EQ(TableRows(bad), nullptr);
        EXPECT_EQ(TableRoot(bad, 1), nullptr);
        EXPECT_EQ(TableTypeInfo(bad), nullptr);
        EXPECT_EQ(TableKeyMap(bad, 1), 0);
        EXPECT_EQ(takeError(), 0);
    }
    TableDelete(inFile.get(), 9, nullptr);
    EXPECT_EQ(takeError(), 661);
    TableClear(inFile.get());
    EXPECT_EQ(takeError(), 661);
    TableRebuild(inFile.get());
    EXPECT_EQ(takeError(), 661);
    TableRow(inFile.get(), 1, nullptr);
    EXPECT_EQ(takeError(), 661);
    EXPECT_EQ(TableCount(inFile.get()), 0);
    EXPECT_EQ(takeError(), 661);
    EXPECT_EQ(TableIndexCount(inFile.get()), 2);
    TableDelete(t(), 6, recordOf({integer(1)}).get());
    EXPECT_EQ(takeError(), 636);
    TableDelete(t(), 1, recordOf({text("")}).get());
    EXPECT_EQ(takeError(), 636);
    EXPECT_EQ(TableRoot(t(), 0), nullptr);
    EXPECT_EQ(TableRoot(t(), 6), nullptr);
}

TEST_F(Tables, AnOlderErrorDoesNotChangeWhatIsDone) {
    make(twoIndexes);
    SetError(ERR_ASSERT);
    add(row(1, "a"));
    add(row(2, "b"));
    TableUpdate(recordOf(row(3, "c")).get(), 1, recordOf({integer(2)}).get(), t());
    add(row(1, "d"));
    TableDelete(t(), 1, recordOf({integer(1)}).get());
    EXPECT_EQ(takeError(), 687);
    EXPECT_EQ(numbers(), (Numbers{3}));
    expectWhole();
}

// ---- checking ----

TEST_F(Tables, CheckFindsWhatIsWrong) {
    make(twoIndexes);
    fill(7);
    const Offset root = TableRoot(t(), 1)->data;
    const Offset left = ReadAt<RecordDescriptor>(At(root) + 16).data;
    struct Damage {
        const char* what;
        void* at;
        std::int32_t value;
    };
    const Damage damages[] = {
        {"the count of the table", &t()->count, 6},
        {"the capacity of the table", &t()->maxlength, 9},
        {"a row number", At(left), 1},
        {"a row number outside", At(left), 8},
        {"a balance", At(left) + 4, 1},
        {"a reserved word", At(left) + 8, 1},
        {"a link's tag", At(left) + 20, 15},
        {"a link's size", At(left) + 16, 91},
        {"a link's kinds", At(left) + 16 + 12, 0},
        {"a cut link", At(root) + 16 + 8, 0},
        {"a key", At(left) + 88, 99},
        {"a key map", At(headerData()) + 228, 0x02000000},
        {"a third index", At(headerData()) + 236, 0x01000000},
    };
    for (const Damage& damage : damages) {
        const auto was = ReadAt<std::int32_t>(damage.at);
        WriteAt(damage.at, damage.value);
        EXPECT_NE(AdtCheck(t(), KindTable), "") << damage.what;
        WriteAt(damage.at, was);
        expectWhole();
    }
}

}  // namespace
}  // namespace tarn
