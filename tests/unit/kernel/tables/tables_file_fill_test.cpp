// SPDX-License-Identifier: Apache-2.0
//
// Indexes of tables with so many rows that they are written at once: all must be as if the rows had been
// entered one by one, duplicates and unreadable rows too.
#include "kernel/index/index_filecheck.h"
#include "kernel/run/progress.h"
#include "kernel/tables/tables_file_fill.h"
#include "kernel/tables/tables_file_mend.h"
#include "unit/kernel/filetables_fixture.h"

#include <algorithm>
#include <random>

namespace tarn {
namespace {

using os::FileCall;
using os::FileError;

class FilledTables : public FileTables {
protected:
    static constexpr std::int32_t many = 1100, few = IndexFill::leastAtOnce + 100;
    static_assert(many >= IndexFill::leastAtOnce + 100);
    using Numbers = std::vector<std::int32_t>;

    static std::string rowOf(std::int32_t number) {
        std::string bytes;
        const std::string name = std::to_string(number);
        for (int shift = 24; shift >= 0; shift -= 8) bytes += static_cast<char>(number >> shift);
        bytes += std::string(3, '\0') + static_cast<char>(name.size());
        bytes += name + std::string(8 - name.size(), '\0');
        return bytes + std::string(8, '\0') + "abc";
    }
    // An open table whose rows have these numbers, with indexes that are empty.
    void makeWith(const Numbers& rowNumbers, const KeyMaps& maps = {byNumber, byName}) {
        newDisk();
        make(maps);
        std::string all;
        for (const std::int32_t number : rowNumbers) all += rowOf(number);
        files().put("/d/a.tab", all);
        TableRows(t())->count = t()->count = static_cast<std::int32_t>(rowNumbers.size());
    }
    // From 1 to count, each once, in an order of their own.
    static Numbers shuffled(std::int32_t count, unsigned seed = 1) {
        Numbers all;
        for (std::int32_t i = 1; i <= count; ++i) all.push_back(i);
        std::shuffle(all.begin(), all.end(), std::mt19937(seed));
        return all;
    }
    std::string checkIndex(std::int32_t index, std::int32_t rowCount) {
        const RecordValue key = recordOf({index == 1 ? integer(0) : text("", 8)});
        KeyView shape;
        EXPECT_TRUE(KeyOfRecord(key.get(), shape));
        return CheckIndexFile("/d/a.i" + std::to_string(index), shape, rowCount);
    }
    Filled fillFirst(std::size_t sortBytes, DuplicateKey& duplicate, std::int32_t& badRow) {
        const TableHeader& header = HeaderOf(*t());
        IndexFill fill(header, 0, sortBytes);
        ListReader reader(header.rows);
        EXPECT_TRUE(fill.open("/d/a.i1"));
        const Filled result = fill.run(reader, 1, header.rows.count, nullptr);
        EXPECT_TRUE(fill.close());
        duplicate = fill.duplicate();
        badRow = fill.badRow();
        return result;
    }
};

TEST_F(FilledTables, ARebuildingGivesWholeIndexes) {
    for (const std::int32_t count : {IndexFill::leastAtOnce - 1, IndexFill::leastAtOnce, many, 4000}) {
        makeWith(shuffled(count));
        EXPECT_EQ(rebuild(), 0);
        expectWhole();
        for (std::int32_t i = 1; i <= count; i += 7) EXPECT_EQ(find("EQ", 1, {integer(i)}), i);
        EXPECT_EQ(find("FIRST", 2, {text("")}), 1);
        EXPECT_EQ(names(), (std::vector<std::string>{"a.i1", "a.i2", "a.tab"}));
        EXPECT_EQ(add(row(count + 1, "new")), 0);
        EXPECT_EQ(remove(2, {text("3", 8)}), 0);
        expectWhole();
    }
}

TEST_F(FilledTables, AnIndexHoldsTheRowsBeforeTheFirstDuplicateAndTheNextNone) {
    std::mt19937 random(5);
    for (int round = 0; round < 20; ++round) {
        Numbers all = shuffled(many, static_cast<unsigned>(round));
        // Some rows get the keys of others.
        for (std::uint32_t n = random() % 4 + 1; n-- != 0;)
            all[random() % all.size()] = all[random() % all.size()];
        std::size_t repeated = 1;
        while (repeated < all.size() &&
               std::find(all.begin(), all.begin() + static_cast<std::ptrdiff_t>(repeated), all[repeated]) ==
                   all.begin() + static_cast<std::ptrdiff_t>(repeated))
            ++repeated;
        const bool unique = repeated == all.size();
        makeWith(all);
        SCOPED_TRACE(round);
        EXPECT_EQ(rebuild(), unique ? 0 : 637);
        EXPECT_EQ(checkIndex(1, static_cast<std::int32_t>(repeated)), "");
        EXPECT_EQ(checkIndex(2, unique ? many : 0), "");
        EXPECT_EQ(names(), (std::vector<std::string>{"a.i1", "a.i2", "a.tab"}));
    }
}

TEST_F(FilledTables, KeysThatMemoryDoesNotHoldAreSortedInAFile) {
    for (const std::size_t bytes : {std::size_t{1} << 20, std::size_t{5000}, std::size_t{200}}) {
        DuplicateKey duplicate;
        std::int32_t badRow = 0;
        makeWith(shuffled(many));
        EXPECT_EQ(fillFirst(bytes, duplicate, badRow), Filled::Whole);
        EXPECT_EQ(checkIndex(1, many), "");
        Numbers twice = shuffled(many);
        twice[901] = twice[900];
        twice[1003] = twice[20];
        twice[700] = twice[600];
        makeWith(twice);
        EXPECT_EQ(fillFirst(bytes, duplicate, badRow), Filled::Duplicate);
        EXPECT_EQ(duplicate.index, 1);
        EXPECT_EQ(duplicate.row, 701);
        EXPECT_EQ(duplicate.first, 601);
        EXPECT_EQ(checkIndex(1, 700), "");
        EXPECT_EQ(names(), (std::vector<std::string>{"a.i1", "a.i2", "a.tab"}));
        EXPECT_EQ(files().openHandles(), 0);
    }
}

TEST_F(FilledTables, WithoutRoomForTheSortingTheRowsAreEnteredOneByOne) {
    // Opened to be written are the index, the scratch file, and the index again.
    for (int call = 2; call <= 4; ++call) {
        DuplicateKey duplicate;
        std::int32_t badRow = 0;
        makeWith(shuffled(many));
        files().failAt(FileCall::Open, call, FileError::DiskFull);
        const Filled result = fillFirst(5000, duplicate, badRow);
        files().stopFailing();
        EXPECT_EQ(result, call == 3 ? Filled::Failed : Filled::Whole) << call;
        EXPECT_EQ(takeError(), call == 3 ? 654 : 0);
        EXPECT_EQ(checkIndex(1, call == 3 ? 0 : many), "");
    }
}

TEST_F(FilledTables, ARowThatCannotBeReadEndsItUnlessADuplicateComesBefore) {
    for (const bool repeated : {false, true}) {
        Numbers all = shuffled(many);
        if (repeated) all[500] = all[400];
        makeWith(all);
        std::string rows = bytes("a.tab");
        rows[999 * rowBytes + 4] = '\x7F';  // the length of a name
        files().put("/d/a.tab", rows);
        DuplicateKey duplicate;
        std::int32_t badRow = 0;
        EXPECT_EQ(fillFirst(1 << 20, duplicate, badRow), repeated ? Filled::Duplicate : Filled::Failed);
        EXPECT_EQ(takeError(), repeated ? 0 : 651);
        EXPECT_EQ(badRow, repeated ? 0 : 1000);
        EXPECT_EQ(duplicate.row, repeated ? 501 : 0);
        makeWith(all);
        files().put("/d/a.tab", rows);
        EXPECT_EQ(rebuild(), repeated ? 637 : 651);
    }
}

TEST_F(FilledTables, AMendingTellsOfAllDuplicatesInTheOrderOfTheirRows) {
    Numbers all = shuffled(many);
    all[701] = all[7];
    all[350] = all[349];
    all[1050] = all[7];
    makeWith(all);
    close();
    const RebuiltTable result = RebuildTableFile(*t(), "/d/a.tab");
    EXPECT_EQ(result.error, 637);
    const DuplicateKey expected[] = {{1, 351, 350}, {1, 702, 8}, {1, 1051, 8},
                                     {2, 351, 350}, {2, 702, 8}, {2, 1051, 8}};
    ASSERT_EQ(result.duplicates.size(), std::size(expected));
    for (std::size_t i = 0; i < std::size(expected); ++i) {
        EXPECT_EQ(result.duplicates[i].index, expected[i].index);
        EXPECT_EQ(result.duplicates[i].row, expected[i].row);
        EXPECT_EQ(result.duplicates[i].first, expected[i].first);
    }
}

int callsLeft = 0;
std::int64_t lastDone = 0;
bool stopThen(std::int64_t done, std::int64_t total) {
    EXPECT_LE(done, total);
    EXPECT_LE(lastDone, done);
    lastDone = done;
    return --callsLeft != 0;
}

TEST_F(FilledTables, ARebuildingCanBeStoppedWhileKeysAreGatheredAndWhileTheyAreWritten) {
    const Cells wide = {integer(0), text("", 6000)};
    table = closedTable({0x01000000}, UNBOUNDED, wide);
    ASSERT_EQ(open(), 0);
    std::string all;
    for (const std::int32_t number : shuffled(many))
        all += rowOf(number).substr(0, 4) + std::string(6004, '\0');
    files().put("/d/a.tab", all);
    TableRows(t())->count = t()->count = many;
    EXPECT_EQ(rebuild(), 0);
    files().put("/d/a.i1", bytes("a.i1") + std::string(28, '\0'));
    const std::string before = bytes("a.i1");
    const ProgressHook hook = UseProgress(stopThen);
    int calls = 0;
    for (bool stopped = true; stopped; ++calls) {
        callsLeft = calls + 1;
        lastDone = 0;
        EXPECT_EQ(rebuild(), 0);
        stopped = callsLeft == 0;
        EXPECT_EQ(bytes("a.i1") == before, stopped);
        EXPECT_EQ(names(), (std::vector<std::string>{"a.i1", "a.tab"}));
    }
    UseProgress(hook);
    EXPECT_EQ(calls, many * 6008 / (1 << 20) + 1);
    expectWhole();
}

// ---- failures and deaths ----

TEST_F(FilledTables, AfterAFailureAtAnyCallTheIndexesAreAsTheyWere) {
    for (const FileError failure : {FileError::WriteFailed, FileError::DiskFull}) {
        std::int32_t error = 652;
        bool failed = true;
        for (int call = 1; failed; ++call) {
            makeWith(shuffled(few));
            ASSERT_EQ(rebuild(), 0);
            files().failAt(call, failure);
            error = rebuild();
            failed = files().calls() >= call;
            files().stopFailing();
            EXPECT_TRUE(error == 0 || error == 652 || error == 654) << error;
            expectWhole();
            EXPECT_EQ(files().openHandles(), 0);
        }
        EXPECT_EQ(error, 0);
    }
}

TEST_F(FilledTables, AfterADeathAtAnyCallOpeningTellsOrTheTableIsWhole) {
    for (const bool midway : {false, true}) {
        bool died = true;
        for (int call = 1; died && !HasFailure(); ++call) {
            makeWith(shuffled(few));
            files().dieAt(call, midway);
            try {
                EXPECT_EQ(rebuild(), 0);
            } catch (const os::ProcessDeath&) {}
            died = files().dead();
            files().revive();
            abandon();
            takeError();
            const std::int32_t error = open();
            EXPECT_TRUE(error == 656 || error == 0) << error;
            if (error == 0) {
                expectWhole();
                abandon();
            }
            const RebuiltTable result = RebuildTableFile(*t(), "/d/a.tab");
            EXPECT_EQ(result.error, 0);
            EXPECT_EQ(result.rows, few);
            ASSERT_EQ(open(), 0);
            expectWhole();
            close();
        }
    }
}

}  // namespace
}  // namespace tarn
