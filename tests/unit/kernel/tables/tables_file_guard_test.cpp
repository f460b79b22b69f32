// SPDX-License-Identifier: Apache-2.0
//
// Deletions move rows. Whatever part of what was written since the last sync the disk has when the machine
// dies, and in whatever order: rows that were synced, and neither deleted nor changed since, come back.
#include "kernel/lists/rowfile_access.h"
#include "kernel/tables/tables_file_check.h"
#include "kernel/tables/tables_file_guard.h"
#include "kernel/tables/tables_file_mend.h"
#include "unit/kernel/filetables_fixture.h"

#include <algorithm>
#include <random>
#include <set>

namespace tarn {
namespace {

using os::FileCall;
using os::FileError;
using os::SteeredFiles;
using Names = std::vector<std::string>;

struct Layout {
    const char* name;
    KeyMaps maps;
    std::int32_t maxlength;
    std::int32_t width;  // of a text in the row: few wide rows are guarded at a time
};
constexpr Layout layouts[] = {
    {"narrow rows", {0x01000000}, UNBOUNDED, 8},
    {"two indexes", {0x01000000, 0x02000000}, UNBOUNDED, 10},
    {"wide rows", {0x01000000, 0x02010000}, UNBOUNDED, 20000},
    {"fixed", {0x01000000}, 40, 8},
};

class TablesThatMoveRows : public FileTables {
protected:
    void start(const Layout& layout, int count) {
        newDisk();
        layout_ = &layout;
        table = closedTable(layout.maps, layout.maxlength, cells(0, 0));
        ASSERT_EQ(open(), 0);
        live_.clear();
        for (int i = 1; i <= count; ++i) addRow(i);
        sync();
    }
    void sync() {
        close();
        ASSERT_EQ(open(), 0);
        lasting_ = live_;
    }
    [[nodiscard]] Cells cells(int number, int version) const {
        return {integer(number), integer(version), text(std::to_string(number), layout_->width)};
    }
    // As it stands in the file.
    [[nodiscard]] std::string packed(int number, int version) const {
        std::string bytes(8, '\0');
        const std::string name = std::to_string(number);
        for (int i = 0; i < 4; ++i) {
            bytes[static_cast<std::size_t>(i)] = static_cast<char>(number >> (24 - 8 * i));
            bytes[static_cast<std::size_t>(4 + i)] = static_cast<char>(version >> (24 - 8 * i));
        }
        bytes += std::string(3, '\0') + static_cast<char>(name.size()) + name;
        bytes.resize(static_cast<std::size_t>(12 + layout_->width), '\0');
        return bytes;
    }
    void addRow(int number) {
        const std::int32_t error = add(cells(number, number));
        ASSERT_EQ(error, 0) << number;
        live_.insert({number, number});
    }
    // The row is not what it was when it was synced: neither it nor its absence is promised.
    void touch(int number) {
        std::erase_if(lasting_, [=](const auto& row) { return row.first == number; });
        std::erase_if(live_, [=](const auto& row) { return row.first == number; });
    }
    void removeRow(int number) {
        touch(number);
        ASSERT_EQ(remove(1, {integer(number)}), 0);
    }
    void updateRow(int number, int newNumber) {
        touch(number);
        ASSERT_EQ(update(1, {integer(number)}, cells(newNumber, ++version_)), 0);
        live_.insert({newNumber, version_});
    }
    int anyRow(std::mt19937& random) {
        return std::next(live_.begin(), static_cast<std::ptrdiff_t>(random() % live_.size()))->first;
    }
    void anyOperation(std::mt19937& random) {
        const auto choice = random() % 20;
        if (choice == 0) return sync();
        if (live_.empty() || (choice < 6 && live_.size() < 38)) return addRow(++highest_);
        if (choice < 8) return updateRow(anyRow(random), ++highest_);
        if (choice < 10) {
            const int number = anyRow(random);
            return updateRow(number, number);
        }
        removeRow(anyRow(random));
    }
    // Those that were synced and not touched since, but are not in the file.
    Names missing() {
        const std::string all = bytes("a.tab");
        const std::size_t header = layout_->maxlength == UNBOUNDED ? 0 : 4, size = packed(0, 0).size();
        std::set<std::string> there;
        for (std::size_t at = header; at + size <= all.size(); at += size) there.insert(all.substr(at, size));
        Names lost;
        for (const auto& [number, version] : lasting_)
            if (!there.contains(packed(number, version))) lost.push_back(std::to_string(number));
        return lost;
    }
    // A new process: a table that opens and is found whole has all rows, and a rebuilding brings all back.
    void lookAndMend() {
        takeError();
        abandon();
        table = closedTable(layout_->maps, layout_->maxlength, cells(0, 0));
        const std::int32_t error = open();
        if (error == 0) {
            EXPECT_EQ(missing(), Names{});
            abandon();
        }
        // What is left of a change or an addition can look like a row that cannot be read. Where no row was
        // moved, it stays.
        const bool guards = files().has("/d/a.~d1");
        const RebuiltTable result = RebuildTableFile(*t(), "/d/a.tab");
        ++mended_[result.error];
        restored_ += result.rowsRestored;
        EXPECT_TRUE(result.error == 0 || result.error == 637 || (result.error == 651 && !guards))
            << result.error;
        EXPECT_EQ(missing(), Names{});
        if (result.error == 0) {
            ASSERT_EQ(open(), 0);
            EXPECT_EQ(CheckTableFile(*t()), "");
            close();
            for (const std::string& name : names()) EXPECT_EQ(name.find('~'), std::string::npos) << name;
        }
    }

    // One sequence of operations, and the death of the machine.
    void sequence(unsigned seed) {
        std::mt19937 random(seed);
        const Layout& layout = layouts[random() % std::size(layouts)];
        SCOPED_TRACE("seed " + std::to_string(seed) + ", " + layout.name);
        start(layout, 5 + static_cast<int>(random() % 20));
        const auto steps = 1 + random() % 12;
        for (std::uint32_t i = 0; i < steps; ++i) anyOperation(random);
        const auto share = random() % 5;
        const auto names = random() % 2 != 0 ? SteeredFiles::Names::Kept : SteeredFiles::Names::Lost;
        files().afterMachineDeath(names, [&] { return random() % 4 < share; });
        lookAndMend();
    }

    const Layout* layout_ = nullptr;
    std::set<std::pair<int, int>> live_, lasting_;  // numbers and versions
    int highest_ = 1000, version_ = 100000;
    std::map<std::int32_t, int> mended_;
    int restored_ = 0;
};

TEST_F(TablesThatMoveRows, RowsThatWereSyncedComeBackWhateverOfTheRestIsOnTheDisk) {
    for (unsigned seed = 1; seed <= 900 && !HasFailure(); ++seed) sequence(seed);
    EXPECT_GT(restored_, 200);
    EXPECT_GT(mended_[0], 800);
}

// The same many times more: takes a minute.
TEST_F(TablesThatMoveRows, DISABLED_RowsThatWereSyncedComeBackManyTimes) {
    for (unsigned seed = 1; seed <= 40000 && !HasFailure(); ++seed) sequence(seed);
    std::printf("whole %d, 637 %d, 651 %d, restored %d\n", mended_[0], mended_[637], mended_[651], restored_);
}

// Deaths in the middle of an operation, and a process that goes on where another had died.
TEST_F(TablesThatMoveRows, TheyComeBackAfterADeathAtAnyCall) {
    for (unsigned seed = 1; seed <= 600 && !HasFailure(); ++seed) {
        std::mt19937 random(seed);
        const Layout& layout = layouts[random() % std::size(layouts)];
        SCOPED_TRACE("seed " + std::to_string(seed) + ", " + layout.name);
        start(layout, 5 + static_cast<int>(random() % 20));
        for (auto i = random() % 6; i != 0; --i) anyOperation(random);
        files().dieAt(1 + static_cast<int>(random() % 30), random() % 2 != 0);
        try {
            for (int i = 0; i < 4; ++i) anyOperation(random);
        } catch (const os::ProcessDeath&) {}
        if (random() % 3 == 0) {
            files().revive();
            takeError();
            abandon();
            table = closedTable(layout.maps, layout.maxlength, cells(0, 0));
            if (open() == 0) {
                EXPECT_EQ(missing(), Names{});
            }
            takeError();
        }
        files().afterMachineDeath(SteeredFiles::Names::Kept, [&] { return random() % 2 != 0; });
        lookAndMend();
    }
}

// ---- the file beside ----

TEST_F(TablesThatMoveRows, TheFirstRowThatMovesIsGuardedAndTheFileIsGoneWhenTheTableIsClosed) {
    start(layouts[0], 6);
    removeRow(6);
    EXPECT_EQ(names(), (Names{"a.i1", "a.tab"}));
    removeRow(2);
    EXPECT_EQ(names(), (Names{"a.i1", "a.tab", "a.~d1"}));
    close();
    EXPECT_EQ(names(), (Names{"a.i1", "a.tab"}));
    ASSERT_EQ(open(), 0);
    removeRow(1);
    EXPECT_EQ(clear(), 0);
    EXPECT_EQ(names(), (Names{"a.i1", "a.tab"}));
}

TEST_F(TablesThatMoveRows, ManyDeletionsWaitForTheDiskOnce) {
    start(layouts[0], 500);
    files().clearLog();
    for (int number = 1; number <= 200; ++number) removeRow(number);
    const std::vector<std::string>& log = files().log();
    EXPECT_EQ(std::count(log.begin(), log.end(), "sync"), RowBlockBytes > 20000 ? 1 : 200 / (64 / 20 + 1));
    EXPECT_EQ(std::count_if(log.begin(), log.end(),
                            [](const std::string& call) { return call.starts_with("syncfolder"); }),
              1);
}

TEST_F(TablesThatMoveRows, GuardedRowsHaveTheRightsOfTheTable) {
    start(layouts[0], 6);
    (void)files().setMode("/d/a.tab", 0600);
    removeRow(2);
    os::FileInfo info;
    EXPECT_EQ(files().info("/d/a.~d1", info), FileError::None);
    EXPECT_EQ(info.mode, 0600U);
}

TEST_F(TablesThatMoveRows, ADeadProcessDeletesForGood) {
    start(layouts[0], 6);
    for (const int number : {2, 5, 1}) removeRow(number);
    updateRow(3, 9);
    abandon();
    const RebuiltTable result = RebuildTableFile(*t(), "/d/a.tab");
    EXPECT_EQ(result.error, 0);
    EXPECT_EQ(result.rowsRestored, 0);
    EXPECT_EQ(result.rows, 3);
    EXPECT_EQ(missing(), Names{});
    EXPECT_EQ(names(), (Names{"a.i1", "a.tab"}));
}

TEST_F(TablesThatMoveRows, WithoutAFileBesideEachDeletionWaitsForTheDisk) {
    start(layouts[0], 9);
    (void)files().makeFolder("/d/a.~d1");
    files().clearLog();
    for (const int number : {2, 3, 4}) removeRow(number);
    const std::vector<std::string>& log = files().log();
    EXPECT_GE(std::count(log.begin(), log.end(), "sync"), 3);
    files().afterMachineDeath(SteeredFiles::Names::Kept, SteeredFiles::Overwritten::Lost);
    EXPECT_EQ(missing(), Names{});
    takeError();
    abandon();
    (void)files().removeFolder("/d/a.~d1");
}

TEST_F(TablesThatMoveRows, ADeletionThatFailsIsNotNoted) {
    start(layouts[0], 6);
    removeRow(1);
    const std::string noted = bytes("a.~d1");
    for (const int cut : {1, 2}) {
        files().failAt(FileCall::Truncate, cut, FileError::WriteFailed);
        EXPECT_EQ(remove(1, {integer(2)}), 652);
        files().stopFailing();
        expectWhole();
        EXPECT_EQ(TableCount(t()), 5);
        EXPECT_EQ(bytes("a.~d1"), noted);
    }
    files().failAt(FileCall::Write, 2, FileError::WriteFailed);
    EXPECT_EQ(update(1, {integer(2)}, cells(2, 77)), 652);
    EXPECT_EQ(bytes("a.~d1"), noted);
    removeRow(3);
    files().afterMachineDeath(SteeredFiles::Names::Kept, SteeredFiles::Overwritten::Lost);
    lookAndMend();
}

TEST_F(TablesThatMoveRows, AFileBesideThatCannotBeReadGivesWayToASync) {
    start(layouts[0], 8);
    removeRow(1);
    files().put("/d/a.~d1", "something else");
    files().clearLog();
    removeRow(2);
    EXPECT_EQ(names(), (Names{"a.i1", "a.tab"}));
    const std::vector<std::string>& log = files().log();
    EXPECT_EQ(std::count(log.begin(), log.end(), "sync"), 3);  // rows, the file, rows before the cut
    removeRow(3);
    EXPECT_EQ(names(), (Names{"a.i1", "a.tab", "a.~d1"}));
}

TEST_F(TablesThatMoveRows, OpeningATableThatMissesAGuardedRowIsRefused) {
    start(layouts[0], 6);
    removeRow(2);  // 6 moves to its place
    const std::string guarded = bytes("a.~d1");
    close();
    files().put("/d/a.~d1", guarded);
    ASSERT_EQ(open(), 0);
    removeRow(6);
    close();
    files().put("/d/a.~d1", guarded);
    EXPECT_EQ(open(), 656);
    EXPECT_FALSE(FileExists(t(), KindTable));
    const RebuiltTable result = RebuildTableFile(*t(), "/d/a.tab");
    EXPECT_EQ(result.error, 0);
    EXPECT_EQ(result.rowsRestored, 1);
    EXPECT_EQ(result.rows, 5);
    ASSERT_EQ(open(), 0);
    RecordValue row;
    TableRead(t(), 1, recordOf({integer(6)}).get(), row.get());
    expectWhole();
}

TEST_F(TablesThatMoveRows, DamageOfTheFileBesideDoesNoHarm) {
    std::mt19937 random(3);
    for (int round = 0; round < 300; ++round) {
        start(layouts[0], 8);
        for (const int number : {2, 5, 1}) removeRow(number);
        std::string guarded = bytes("a.~d1");
        if (round % 3 == 0)
            guarded.resize(random() % guarded.size());
        else
            guarded[random() % guarded.size()] = static_cast<char>(random());
        files().put("/d/a.~d1", guarded);
        if (round % 2 != 0) removeRow(3);
        abandon();
        const RebuiltTable result = RebuildTableFile(*t(), "/d/a.tab");
        EXPECT_EQ(result.error, 0);
        EXPECT_EQ(missing(), Names{});
        ASSERT_EQ(open(), 0);
        expectWhole();
    }
}

}  // namespace
}  // namespace tarn
