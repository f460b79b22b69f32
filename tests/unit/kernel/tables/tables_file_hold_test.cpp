// SPDX-License-Identifier: Apache-2.0
//
// Tables whose files are held open: they do and leave what other tables do, whatever fails or dies, and they notice
// what another program changes.
#include "unit/kernel/filedeaths_fixture.h"

#include <algorithm>
#include <random>

namespace tarn {
namespace {

using os::FileCall;
using os::FileError;

class HeldTables : public TableEnds {
protected:
    std::int32_t hold() {
        TableHold(t());
        return takeError();
    }
    std::int32_t release() {
        TableRelease(t());
        return takeError();
    }
    void startHeld(const Layout& layout) {
        start(layout, 6);
        ASSERT_EQ(hold(), 0);
        for (int i = 1; i <= 6 && layout.maps[0] != 0; ++i) ASSERT_EQ(find("EQ", 1, {integer(i)}), i);
    }
    // Another value on the same files, which is another program to the held one: it opens what it uses itself.
    TableValue other(const char* name) {
        TableValue made = closedTable(layout_->maps, layout_->maxlength);
        FileOpen(made.get(), KindTable, name);
        EXPECT_EQ(takeError(), 0);
        return made;
    }
    static void dropOther(TableValue& value) {
        FileClose(value.get(), KindTable);
        EXPECT_EQ(takeError(), 0);
    }
};

// ---- what can be held ----

TEST_F(HeldTables, OnlyOpenTablesAreHeld) {
    TableHold(nullptr);
    EXPECT_EQ(takeError(), 762);
    TableRelease(nullptr);
    EXPECT_EQ(takeError(), 762);
    table = closedTable({byNumber});
    EXPECT_EQ(hold(), 661);
    EXPECT_EQ(release(), 661);
}

TEST_F(HeldTables, ATableInMemoryIsAsItWas) {
    TableInit(t(), UNBOUNDED, recordOf(row(0, "")).get(), {byNumber}, "", false);
    EXPECT_EQ(hold(), 0);
    fill(3);
    EXPECT_EQ(release(), 0);
    EXPECT_EQ(find("EQ", 1, {integer(2)}), 2);
}

TEST_F(HeldTables, FilesAreOpenWhileTheyAreHeld) {
    start(layouts[1], 3);
    EXPECT_EQ(files().openHandles(), 0);
    EXPECT_EQ(hold(), 0);
    EXPECT_EQ(hold(), 0);
    EXPECT_EQ(add(newRow(4)), 0);
    EXPECT_EQ(files().openHandles(), 3);
    EXPECT_EQ(release(), 0);
    EXPECT_EQ(files().openHandles(), 0);
    EXPECT_EQ(release(), 0);
    EXPECT_EQ(add(newRow(5)), 0);
    EXPECT_EQ(files().openHandles(), 0);
    expectWhole();
}

TEST_F(HeldTables, ClosingReleases) {
    start(layouts[1], 3);
    hold();
    EXPECT_EQ(add(newRow(4)), 0);
    close();
    EXPECT_EQ(files().openHandles(), 0);
    ASSERT_EQ(open(), 0);
    EXPECT_EQ(numbers(), (std::vector<int>{1, 2, 3, 4}));
    EXPECT_EQ(files().openHandles(), 0);
}

TEST_F(HeldTables, TheEndOfTheTableReleases) {
    start(layouts[1], 3);
    hold();
    EXPECT_EQ(add(newRow(4)), 0);
    table = TableValue();
    EXPECT_EQ(files().openHandles(), 0);
}

TEST_F(HeldTables, AScratchFileGoesAtTheEndOfItsTable) {
    make({byNumber, byName}, UNBOUNDED, "/d/a.~sv");
    hold();
    fill(3);
    table = TableValue();
    EXPECT_EQ(files().openHandles(), 0);
    EXPECT_TRUE(names().empty());
}

TEST_F(HeldTables, OperationsOpenNothingAgain) {
    startHeld(layouts[1]);
    ASSERT_EQ(add(newRow(7)), 0);
    files().clearLog();
    EXPECT_EQ(find("EQ", 2, {text("n7", 8)}), 7);
    EXPECT_EQ(add(newRow(8)), 0);
    EXPECT_EQ(update(1, {integer(3)}, newRow(30)), 0);
    EXPECT_EQ(remove(1, {integer(8)}), 0);  // the last row: none moves
    for (const std::string& call : files().log()) EXPECT_FALSE(call.starts_with("open ")) << call;
    EXPECT_EQ(release(), 0);
}

// ---- what is written ----

// Both tables after each operation, but for their names.
TEST_F(HeldTables, TheFilesAreThoseOfATableThatIsNotHeld) {
    for (const Layout& layout : layouts) {
        if (layout.maps[0] == 0) continue;
        SCOPED_TRACE(layout.name);
        newDisk();
        layout_ = &layout;
        TableValue tables[2] = {closedTable(layout.maps, layout.maxlength),
                                closedTable(layout.maps, layout.maxlength)};
        const char* const files[2] = {"/d/a.tab", "/d/b.tab"};
        for (int i = 0; i < 2; ++i) FileOpen(tables[i].get(), KindTable, files[i]);
        TableHold(tables[0].get());
        std::mt19937 random(11);
        for (int step = 0; step < 400 && !HasFailure(); ++step) {
            const auto choice = random() % 40;
            const int number = static_cast<int>(random() % 11), to = static_cast<int>(random() % 11);
            std::int32_t errors[2];
            int found[2] = {};
            for (int i = 0; i < 2; ++i) {
                std::swap(table, tables[i]);
                if (choice == 0)
                    errors[i] = clear();
                else if (choice == 1)
                    errors[i] = rebuild();
                else if (choice < 18)
                    errors[i] = add(newRow(number));
                else if (choice < 26)
                    errors[i] = update(1, {integer(number)}, newRow(to));
                else
                    errors[i] = remove(1, {integer(number)});
                found[i] = find("GE", 1, {integer(to)});
                std::swap(table, tables[i]);
            }
            EXPECT_EQ(errors[0], errors[1]) << step;
            EXPECT_EQ(found[0], found[1]) << step;
            EXPECT_EQ(bytes("a.tab"), bytes("b.tab")) << step;
            for (int n = 1; n <= TableIndexCount(tables[0].get()); ++n) {
                const std::string end = ".i" + std::to_string(n);
                EXPECT_EQ(bytes("a" + end).substr(49), bytes("b" + end).substr(49)) << step << end;
            }
        }
        for (TableValue& one : tables) {
            EXPECT_EQ(CheckTableFile(*one.get()), "");
            FileClose(one.get(), KindTable);
        }
        EXPECT_EQ(takeError(), 0);
        EXPECT_EQ(this->files().openHandles(), 0);
    }
}

// ---- other programs ----

TEST_F(HeldTables, AnotherProgramSeesEachRowAtOnce) {
    startHeld(layouts[1]);
    ASSERT_EQ(add(newRow(7)), 0);
    TableValue reader = other("/d/./a.tab");
    std::swap(table, reader);
    EXPECT_EQ(find("LAST", 1, {integer(0)}), 7);
    expectWhole();
    std::swap(table, reader);
    dropOther(reader);
}

TEST_F(HeldTables, WhatAnotherProgramChangesIsNoticed) {
    startHeld(layouts[1]);
    TableValue writer = other("/d/./a.tab");
    std::swap(table, writer);
    ASSERT_EQ(update(1, {integer(3)}, newRow(33)), 0);
    std::swap(table, writer);
    EXPECT_EQ(find("EQ", 1, {integer(3)}), -1);
    EXPECT_EQ(find("EQ", 1, {integer(33)}), 33);
    ASSERT_EQ(add(newRow(7)), 0);
    expectWhole();
    dropOther(writer);
}

TEST_F(HeldTables, RowsOfAnotherProgramAreNeverOverwritten) {
    startHeld(layouts[1]);
    TableValue writer = other("/d/./a.tab");
    std::swap(table, writer);
    ASSERT_EQ(add(newRow(7)), 0);
    std::swap(table, writer);
    EXPECT_EQ(add(newRow(8)), 655);
    EXPECT_EQ(remove(1, {integer(2)}), 655);
    dropOther(writer);
}

TEST_F(HeldTables, FilesThatGaveWayToOthersAreOpenedAnew) {
    startHeld(layouts[1]);
    for (const char* name : {"a.tab", "a.i1", "a.i2"}) {
        SCOPED_TRACE(name);
        const std::string path = std::string("/d/") + name;
        files().put("/d/new", bytes(name));
        ASSERT_EQ(files().rename("/d/new", path), FileError::None);
        const int number = static_cast<int>(TableCount(t())) + 1;
        ASSERT_EQ(add(newRow(number)), 0);
        expectWhole();
        EXPECT_EQ(find("LAST", 2, {text("", 8)}), number);
    }
}

TEST_F(HeldTables, AnIndexThatIsGoneIsAnError) {
    startHeld(layouts[1]);
    ASSERT_EQ(files().remove("/d/a.i2"), FileError::None);
    EXPECT_EQ(add(newRow(7)), 653);
    EXPECT_EQ(TableCount(t()), 6);
    EXPECT_EQ(rebuild(), 0);
    EXPECT_EQ(add(newRow(7)), 0);
    expectWhole();
}

TEST_F(HeldTables, FilesThatMayOnlyBeReadAreRead) {
    start(layouts[1], 3);
    close();
    for (const char* name : {"/d/a.tab", "/d/a.i1", "/d/a.i2"}) files().setMode(name, 0444);
    ASSERT_EQ(open(), 0);
    EXPECT_EQ(hold(), 0);
    EXPECT_EQ(find("EQ", 2, {text("n2", 8)}), 2);
    EXPECT_EQ(find("NEXT", 1, {integer(2)}), 3);
    EXPECT_EQ(add(newRow(4)), 652);
    for (const char* name : {"/d/a.tab", "/d/a.i1", "/d/a.i2"}) files().setMode(name, 0644);
    EXPECT_EQ(add(newRow(4)), 0);
    expectWhole();
}

// Records of an index that nobody has changed for a while are remembered without holding it.
TEST_F(HeldTables, WhatAnotherProgramChangesIsSeenByOneThatRemembers) {
    os::SteeredClock clock;
    const os::Steered steered(clock);
    start(layouts[1], 6);
    for (int round = 0; round < 20; ++round) {
        const int number = 1 + round % 6, old = round < 6 ? number : number * 100 + round - 6;
        clock.advance(4'000'000'000);
        EXPECT_EQ(find("EQ", 1, {integer(old)}), old);
        EXPECT_EQ(find("EQ", 1, {integer(old)}), old);
        TableValue writer = other("/d/./a.tab");
        std::swap(table, writer);
        ASSERT_EQ(update(1, {integer(old)}, newRow(number * 100 + round)), 0);
        std::swap(table, writer);
        EXPECT_EQ(find("EQ", 1, {integer(old)}), -1);
        EXPECT_EQ(find("EQ", 1, {integer(number * 100 + round)}), number * 100 + round);
        dropOther(writer);
    }
    expectWhole();
}

// ---- failing and dying ----

TEST_F(HeldTables, AfterAFailureAtAnyCallTheTableIsAsItWas) {
    eachOperation([this](const Layout& layout, std::size_t which) {
        for (const FileError failure : {FileError::WriteFailed, FileError::DiskFull}) {
            bool failed = true;
            for (int call = 1; failed && !HasFailure(); ++call) {
                startHeld(layout);
                const Operation operation = operations()[which];
                SCOPED_TRACE(std::string(layout.name) + ", " + operation.name + ", call " +
                             std::to_string(call));
                std::int32_t error = 0;
                failed = runFailing(operation, call, failure, error);
                expectWhole();
                EXPECT_EQ(release(), 0);
                expectDoneOrNot(operation, error);
            }
        }
    });
}

TEST_F(HeldTables, AfterAReadingThatFailsTheTableIsAsItWas) {
    eachOperation([this](const Layout& layout, std::size_t which) {
        for (const FileCall kind : {FileCall::Read, FileCall::OpenRead}) {
            int quiet = 0;  // calls behind the last are not there
            for (int call = 1; quiet < 3 && !HasFailure(); ++call) {
                startHeld(layout);
                const Operation operation = operations()[which];
                SCOPED_TRACE(std::string(layout.name) + ", " + operation.name + ", call " +
                             std::to_string(call));
                files().failAt(kind, call, FileError::ReadFailed);
                const std::int32_t error = operation.run();
                files().stopFailing();
                quiet = error == 0 ? quiet + 1 : 0;
                EXPECT_TRUE(error == 0 || error == 651) << error;
                EXPECT_EQ(release(), 0);
                expectDoneOrNot(operation, error);
            }
        }
    });
}

TEST_F(HeldTables, OnADiskThatIsFullAtAnyByteTheTableIsAsItWas) {
    eachOperation([this](const Layout& layout, std::size_t which) {
        std::int32_t error = 654;
        for (std::int64_t free = 0; error != 0 && !HasFailure(); free += 7) {
            startHeld(layout);
            const Operation operation = operations()[which];
            SCOPED_TRACE(std::string(layout.name) + ", " + operation.name + ", free " + std::to_string(free));
            files().setFreeBytes(free);
            error = operation.run();
            files().stopFailing();
            files().setFreeBytes(std::int64_t{1} << 40);
            EXPECT_TRUE(error == 0 || error == 654 || error == 652) << error;
            failedCall_.clear();
            EXPECT_EQ(release(), 0);
            expectDoneOrNot(operation, error);
        }
    });
}

TEST_F(HeldTables, AfterADeathAtAnyCallEveryRowComesBack) {
    eachOperation([this](const Layout& layout, std::size_t which) {
        for (const Ending& ending : endings) {
            eachDeath(
                layout, which, ending, [this] { ASSERT_EQ(hold(), 0); },
                [&](bool died, const Rows& after) {
                    if (!died) {
                        files().dieAt(0);
                        EXPECT_EQ(release(), 0);
                    }
                    end(ending);
                    const bool good = look().empty();
                    EXPECT_TRUE(!good || same(rows(), model_) || same(rows(), after));
                    mend();
                    EXPECT_TRUE(same(rows(), model_) || same(rows(), after)) << rows().size();
                });
        }
    });
}

TEST_F(HeldTables, AReleaseThatCannotCloseSaysSo) {
    startHeld(layouts[1]);
    ASSERT_EQ(add(newRow(7)), 0);
    files().failAt(FileCall::Close, 1, FileError::WriteFailed);
    EXPECT_EQ(release(), 652);
    files().stopFailing();
    EXPECT_EQ(files().openHandles(), 0);
    expectWhole();
}

}  // namespace
}  // namespace tarn
