// SPDX-License-Identifier: Apache-2.0
//
// Lists in files when calls fail, the disk is full, the process dies.
#include "kernel/tables/tables_file_mend.h"
#include "unit/kernel/filelists_fixture.h"

#include <functional>

namespace tarn {
namespace {

using model::Number;

using namespace std::string_literals;

// A kind of file with two rows, and what is done to it.
struct Subject {
    const char* name;
    std::int32_t capacity;
};
constexpr Subject subjects[] = {
    {"/d/plain.tab", UNBOUNDED}, {"/d/fixed.tab", 4}, {"/d/open.dbf", UNBOUNDED}, {"/d/room.dbf", 4}};

class RowFailures : public FileLists {
protected:
    struct Operation {
        const char* name;
        std::function<void(ListValue&)> run;
        std::vector<int> rows;  // that are there afterwards
    };

    static bool isXbase(const Subject& subject) { return std::string_view(subject.name).ends_with("dbf"); }
    static ValueModel row(const Subject& subject, int n) {
        if (!isXbase(subject)) return Number(KindInteger, n);
        return n == 0 ? xbaseRow() : xbaseRow(std::to_string(100 + n), ' ');
    }
    static void add(ListDescriptor* l, const ValueModel& value) {
        const OddValue v(value);
        ListAppend(v.at(), value.kind, l);
    }

    ListValue make(const Subject& subject) {
        if (files_.has(subject.name)) files_.remove(subject.name);
        ListValue l = opened(subject.name, row(subject, 0), subject.capacity);
        for (const int n : {2, 1}) add(l.get(), row(subject, n));
        EXPECT_EQ(takeError(), 0);
        return l;
    }
    std::vector<int> rowsIn(const Subject& subject, const ListValue& l) {
        std::vector<int> rows;
        for (std::int32_t i = 1; i <= ListCount(l.get()); ++i) {
            OddValue v(row(subject, 0));
            ListGet(l.get(), i, v.at(), v.kind());
            int found = -1;
            for (int n = 0; n < 10; ++n) {
                if (model::Differs(row(subject, n), v.at()).empty()) found = n;
            }
            rows.push_back(found);
        }
        return rows;
    }

    std::vector<Operation> operations(const Subject& subject) {
        const auto value = [=](int n) { return row(subject, n); };
        return {
            {"append", [=](ListValue& l) { add(l.get(), value(3)); }, {2, 1, 3}},
            {"put",
             [=](ListValue& l) {
                 const OddValue v(value(3));
                 ListPut(v.at(), v.kind(), 1, l.get());
             },
             {3, 1}},
            {"remove", [](ListValue& l) { ListRemoveLast(l.get()); }, {2}},
            {"delete", [](ListValue& l) { ListDelete(1, 1, l.get()); }, {1}},
            {"clear", [](ListValue& l) { ListClear(l.get()); }, {}},
            {"shrink", [](ListValue& l) { ListResize(1, nullptr, l.get()); }, {2}},
            {"grow",
             [=](ListValue& l) {
                 const OddValue v(value(4));
                 ListResize(4, v.at(), l.get());
             },
             {2, 1, 4, 4}},
            {"batch",
             [=](ListValue& l) {
                 RowBatch batch(*l.get());
                 add(l.get(), value(5));
                 if (ErrorCell() == 0) add(l.get(), value(6));
                 batch.finish();
             },
             {2, 1, 5, 6}},
            {"copy",
             [=](ListValue& l) {
                 ListValue other;
                 const OddValue like(value(0));
                 ListInit(other.get(), UNBOUNDED, like.at(), like.kind(), false);
                 add(other.get(), value(7));
                 add(other.get(), value(8));
                 AdtCopy(other.get(), l.get(), KindList, 1);
             },
             {7, 8}},
        };
    }

    // What a plain file or one with a count holds when it is opened anew; "655" and so on when it is refused.
    std::string reopened(const Subject& subject) {
        ListValue l = listOf(row(subject, 0), subject.capacity);
        FileOpen(l.get(), KindList, subject.name);
        if (const std::int32_t error = takeError(); error != 0) return std::to_string(error);
        EXPECT_EQ(check(l), "");
        return shown(rowsIn(subject, l));
    }
    static std::string shown(const std::vector<int>& rows) {
        std::string text;
        for (const int n : rows) text += std::to_string(n) + " ";
        return text;
    }
};

const std::vector<int> before{2, 1};

TEST_F(RowFailures, EachCallThatFailsLeavesTheRowsAsTheyWere) {
    for (const Subject& subject : subjects) {
        for (const Operation& operation : operations(subject)) {
            for (int call = 1;; ++call) {
                SCOPED_TRACE(std::string(subject.name) + " " + operation.name + " call " +
                             std::to_string(call));
                ListValue l = make(subject);
                const std::string bytes = bytesOf(subject.name);
                files_.failAt(call, os::FileError::WriteFailed);
                operation.run(l);
                const bool failed = files_.calls() >= call;
                const bool closing = failed && files_.log()[static_cast<std::size_t>(call) - 1] == "close";
                files_.stopFailing();
                if (!failed) {
                    EXPECT_EQ(takeError(), 0);
                    EXPECT_EQ(rowsIn(subject, l), operation.rows);
                    EXPECT_EQ(check(l), "");
                    break;
                }
                EXPECT_EQ(takeError(), 652);
                EXPECT_EQ(check(l), "");
                // What was cut off before the file could not be closed is gone.
                const bool cut = operation.name == "clear"s || operation.name == "shrink"s;
                if (closing && cut) {
                    EXPECT_EQ(rowsIn(subject, l), operation.rows);
                } else if (closing && operation.name == "batch"s) {
                    EXPECT_GE(rowsIn(subject, l).size(), before.size());
                    continue;
                } else {
                    EXPECT_EQ(rowsIn(subject, l), before);
                    EXPECT_EQ(bytesOf(subject.name), bytes);
                }
                operation.run(l);
                EXPECT_EQ(takeError(), 0);
            }
        }
    }
}

TEST_F(RowFailures, AFullDiskLeavesTheRowsAsTheyWere) {
    for (const Subject& subject : subjects) {
        for (const Operation& operation : operations(subject)) {
            for (std::int64_t room = 0;; ++room) {
                SCOPED_TRACE(std::string(subject.name) + " " + operation.name + " room " +
                             std::to_string(room));
                ListValue l = make(subject);
                const std::string bytes = bytesOf(subject.name);
                files_.setFreeBytes(room);
                operation.run(l);
                files_.stopFailing();
                const std::int32_t error = takeError();
                EXPECT_EQ(check(l), "");
                if (error == 0) {
                    EXPECT_EQ(rowsIn(subject, l), operation.rows);
                    break;
                }
                EXPECT_EQ(error, 654);
                EXPECT_EQ(rowsIn(subject, l), before);
                EXPECT_EQ(bytesOf(subject.name), bytes);
                ASSERT_LT(room, 200);
            }
        }
    }
}

// Rows stand before the count that includes them, so the file opens with the old or the new rows; a torn row
// makes it 655 where the size is the count, and so does a note of a row that was being replaced.
TEST_F(RowFailures, TheDeathOfTheProcessLeavesWholeRows) {
    for (const Subject& subject : subjects) {
        for (const Operation& operation : operations(subject)) {
            for (const bool midway : {false, true}) {
                int torn = 0;
                for (int call = 1;; ++call) {
                    SCOPED_TRACE(std::string(subject.name) + " " + operation.name + " call " +
                                 std::to_string(call) + (midway ? " midway" : ""));
                    ListValue l = make(subject);
                    files_.dieAt(call, midway);
                    bool died = false;
                    try {
                        operation.run(l);
                    } catch (const os::ProcessDeath&) {
                        died = true;
                    }
                    files_.revive();
                    files_.stopFailing();
                    takeError();
                    if (!died) break;
                    std::string rows = reopened(subject);
                    if ((rows == "655" || midway) && operation.name == "put"s) {
                        ListValue list = listOf(row(subject, 0), subject.capacity);
                        EXPECT_EQ(MendRows(*list.get(), subject.name).error, 0);
                        rows = reopened(subject);
                    }
                    const bool whole = rows == shown(before) || rows == shown(operation.rows);
                    const bool grew = rows.starts_with("2 1 ") && shown(operation.rows).starts_with(rows);
                    if (rows == "655") {
                        EXPECT_TRUE(midway);
                        ++torn;
                    } else {
                        EXPECT_TRUE(whole || grew) << rows;
                    }
                    for (const std::string& file : files_.allFiles()) {
                        if (file.find(".tarnwick-") != std::string::npos) files_.remove(file);
                    }
                }
                EXPECT_LE(torn, 1);
            }
        }
    }
}

TEST_F(RowFailures, AReadThatFailsIsTold) {
    for (const Subject& subject : subjects) {
        ListValue l = make(subject);
        for (int read = 1; read <= (isXbase(subject) ? 4 : 2); ++read) {
            files_.failAt(os::FileCall::Read, read, os::FileError::ReadFailed);
            OddValue v(row(subject, 5));
            ListGet(l.get(), 1, v.at(), v.kind());
            files_.stopFailing();
            const std::int32_t error = takeError();
            EXPECT_TRUE(error == 0 || error == 651) << error;
            EXPECT_EQ(model::Differs(error == 0 ? row(subject, 2) : row(subject, 0), v.at()), "");
            if (read == 1) {
                EXPECT_EQ(error, 651);
            }
        }
        files_.failAlways(os::FileCall::OpenRead, os::FileError::Denied);
        OddValue v(row(subject, 5));
        ListGet(l.get(), 1, v.at(), v.kind());
        EXPECT_EQ(takeError(), 651);
        files_.stopFailing();
    }
}

TEST_F(RowFailures, AFileThatVanishesIsToldByEachOperation) {
    for (const Subject& subject : subjects) {
        for (const Operation& operation : operations(subject)) {
            SCOPED_TRACE(std::string(subject.name) + " " + operation.name);
            ListValue l = make(subject);
            files_.remove(subject.name);
            operation.run(l);
            EXPECT_EQ(takeError(), 653);
            EXPECT_EQ(l.get()->count, 2);
            EXPECT_FALSE(files_.has(subject.name));
        }
    }
}

// When what was written cannot be taken back either, the count is what the file holds.
TEST_F(RowFailures, TheCountIsWhatStandsInTheFile) {
    ListValue l = numbers("/d/a.tab", {1, 2});
    files_.failAlways(os::FileCall::Close, os::FileError::WriteFailed);
    files_.failAlways(os::FileCall::Truncate, os::FileError::WriteFailed);
    const std::int32_t value = 3;
    ListAppend(&value, KindInteger, l.get());
    files_.stopFailing();
    EXPECT_EQ(takeError(), 652);
    EXPECT_EQ(numbersIn(l), (Numbers{1, 2, 3}));
    EXPECT_EQ(check(l), "");
}

// ---- batches ----

TEST_F(RowFailures, RowsThatWereGatheredAreSeenAndReachTheFileAtTheEnd) {
    for (const std::int32_t capacity : {UNBOUNDED, std::int32_t{5}}) {
        ListValue l = numbers("/d/a.tab", {1}, capacity);
        const std::string bytes = bytesOf("/d/a.tab");
        {
            RowBatch batch(*l.get());
            for (std::int32_t n = 2; n <= 4; ++n) ListAppend(&n, KindInteger, l.get());
            EXPECT_EQ(numbersIn(l), (Numbers{1, 2, 3, 4}));
            EXPECT_EQ(bytesOf("/d/a.tab"), bytes);
            EXPECT_TRUE(batch.finish());
            EXPECT_NE(bytesOf("/d/a.tab"), bytes);
            const std::int32_t five = 5, nine = 9;
            ListAppend(&five, KindInteger, l.get());
            ListPut(&nine, KindInteger, 5, l.get());
            ListPut(&nine, KindInteger, 1, l.get());
            EXPECT_EQ(numbersIn(l), (Numbers{9, 2, 3, 4, 9}));
            ListRemoveLast(l.get());
            EXPECT_EQ(check(l), "");
        }
        EXPECT_EQ(numbersIn(l), (Numbers{9, 2, 3, 4}));
        EXPECT_EQ(takeError(), 0);
        FileClose(l.get(), KindList);
        files_.remove("/d/a.tab");
    }
}

TEST_F(RowFailures, ABatchWritesAndReadsInBlocks) {
    ListValue l = texts("/d/a.tab", {}, UNBOUNDED, 96);
    files_.clearLog();
    {
        RowBatch batch(*l.get());
        for (int n = 0; n < 2000; ++n) append(l, std::to_string(n));
        EXPECT_TRUE(batch.finish());
    }
#ifndef TARNWICK_TINY
    EXPECT_LE(files_.calls(), 10);
#endif
    const RowBatch batch(*l.get());
    for (int n = 0; n < 2000; ++n) {
        String text;
        ListGet(l.get(), n + 1, text.get(), KindString);
        ASSERT_EQ(text.view(), std::to_string(n));
    }
    for (int n = 1999; n >= 0; n -= 7) {
        String text;
        ListGet(l.get(), n + 1, text.get(), KindString);
        ASSERT_EQ(text.view(), std::to_string(n));
    }
}

TEST_F(RowFailures, RowsThatCannotBeWrittenAtTheEndDoNotCount) {
    for (const std::int32_t capacity : {UNBOUNDED, std::int32_t{5}}) {
        ListValue l = numbers("/d/a.tab", {1}, capacity);
        {
            RowBatch batch(*l.get());
            for (std::int32_t n = 2; n <= 4; ++n) ListAppend(&n, KindInteger, l.get());
            files_.failAlways(os::FileCall::Write, os::FileError::DiskFull);
            EXPECT_FALSE(batch.finish());
            files_.stopFailing();
            EXPECT_EQ(takeError(), 654);
        }
        EXPECT_EQ(numbersIn(l), (Numbers{1}));
        EXPECT_EQ(check(l), "");
        FileClose(l.get(), KindList);
        files_.remove("/d/a.tab");
    }
}

TEST_F(RowFailures, AListThatIsClosedOrFreedEndsItsBatch) {
    {
        ListValue l = numbers("/d/a.tab", {1});
        const RowBatch batch(*l.get());
        const std::int32_t two = 2;
        ListAppend(&two, KindInteger, l.get());
        FileClose(l.get(), KindList);
        EXPECT_EQ(bytesOf("/d/a.tab"), fromHex("00000001 00000002"));
    }
    {
        ListValue l = numbers("/d/a.tab");
        const RowBatch batch(*l.get());
        const std::int32_t three = 3;
        ListAppend(&three, KindInteger, l.get());
        AdtFree(l.get(), KindList);
        EXPECT_EQ(bytesOf("/d/a.tab"), fromHex("00000001 00000002 00000003"));
    }
    {
        ListValue l = numbers("/d/a.~ab");
        const RowBatch batch(*l.get());
        const std::int32_t three = 3;
        ListAppend(&three, KindInteger, l.get());
        AdtFree(l.get(), KindList);
        EXPECT_FALSE(files_.has("/d/a.~ab"));
    }
    EXPECT_EQ(takeError(), 0);
}

TEST_F(RowFailures, BatchesOfOtherListsDoNothingAndSeveralDoNotMix) {
    ListValue memory, unopened = listOf(Number(KindInteger, 0)), a = numbers("/d/a.tab"),
                      b = numbers("/d/b.tab");
    ListInit(memory.get(), UNBOUNDED, nullptr, KindInteger, false);
    RowBatch ofMemory(*memory.get()), ofUnopened(*unopened.get()), ofA(*a.get()), again(*a.get()),
        ofB(*b.get());
    for (const std::int32_t n : {1, 2}) {
        ListAppend(&n, KindInteger, memory.get());
        ListAppend(&n, KindInteger, a.get());
        const std::int32_t other = n * 10;
        ListAppend(&other, KindInteger, b.get());
    }
    EXPECT_TRUE(ofMemory.finish() && ofUnopened.finish() && again.finish() && ofA.finish() && ofB.finish());
    EXPECT_EQ(numbersIn(a), (Numbers{1, 2}));
    EXPECT_EQ(numbersIn(b), (Numbers{10, 20}));
    EXPECT_EQ(ListCount(memory.get()), 2);
}

TEST_F(RowFailures, ABatchTellsThatTheFileHasNotItsRows) {
    ListValue l = numbers("/d/a.tab", {1});
    files_.put("/d/a.tab", fromHex("00000001 00"));
    const RowBatch batch(*l.get());
    const std::int32_t two = 2;
    ListAppend(&two, KindInteger, l.get());
    EXPECT_EQ(takeError(), 655);
    EXPECT_EQ(l.get()->count, 1);
}

}  // namespace
}  // namespace tarn
