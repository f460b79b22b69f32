// SPDX-License-Identifier: Apache-2.0
//
// Two programs that take turns with the files of one table, on the disk of this machine: neither waits for the times of
// files to move on, and neither must take for true what it remembers of an index that the other has changed.
#include "kernel/run/errors.h"
#include "kernel/tables/filevalues.h"
#include "kernel/tables/tables.h"
#include "kernel/tables/tables_file_check.h"
#include "support/errorcell.h"
#include "support/tempfolder.h"
#include "unit/kernel/runtime_fixture.h"
#include "unit/kernel/table_rows.h"

#include <string>
#include <sys/wait.h>
#include <unistd.h>

namespace tarn {
namespace {

constexpr int rowCount = 40, turns = 600;

Cells row(int number, const std::string& name) {
    return {integer(number), text(name, 8)};
}

// Rows get a new name in their order, again and again.
std::string nameAt(int turn) {
    return (turn < 0 ? "n" : "t") + std::to_string(turn < 0 ? turn + rowCount : turn);
}

TableValue openTable(const std::string& path) {
    TableValue table;
    TableInit(table.get(), UNBOUNDED, recordOf(row(0, "")).get(), {MakeKeyMap(1), MakeKeyMap(2)}, "", true);
    FileOpen(table.get(), KindTable, path);
    return table;
}

// Finds the row of this turn by the name that it got `rowCount` turns before, and gives it another.
bool takeTurn(TableValue& table, int turn) {
    const int number = turn % rowCount;
    RecordValue found;
    TableRead(table.get(), 2, recordOf({text(nameAt(turn - rowCount), 8)}).get(), found.get());
    if (takeError() != 0 || cellsOf(found.get(), row(0, ""))[0].number != number) return false;
    TableUpdate(recordOf(row(number, nameAt(turn))).get(), 1, recordOf({integer(number)}).get(), table.get());
    return takeError() == 0;
}

struct Pipe {
    int ends[2] = {-1, -1};
    Pipe() { EXPECT_EQ(::pipe(ends), 0); }
    ~Pipe() {
        ::close(ends[0]);
        ::close(ends[1]);
    }
    [[nodiscard]] bool wait() const {
        char token = 0;
        return ::read(ends[0], &token, 1) == 1 && token == 'y';
    }
    void pass(bool good) const { EXPECT_EQ(::write(ends[1], good ? "y" : "n", 1), 1); }
};

using SharedTables = Runtime;

TEST_F(SharedTables, ProgramsThatTakeTurnsSeeWhatTheOtherHasDone) {
    const TempFolder folder;
    const std::string path = folder.path() + "/a.tab";
    TableValue table = openTable(path);
    for (int i = 0; i < rowCount; ++i) {
        TableAdd(table.get(), 1, recordOf(row(i, nameAt(i - rowCount))).get());
        ASSERT_EQ(takeError(), 0);
    }
    const Pipe there, back;
    const pid_t child = ::fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
        bool good = true;
        for (int turn = 1; turn < turns && good; turn += 2) {
            good = there.wait() && takeTurn(table, turn);
            back.pass(good);
        }
        ::_exit(good ? 0 : 1);
    }
    bool good = true;
    for (int turn = 0; turn < turns && good; turn += 2) {
        good = takeTurn(table, turn);
        there.pass(good);
        EXPECT_TRUE(good) << turn;
        good = good && back.wait();
        EXPECT_TRUE(good) << turn + 1;
    }
    int status = 0;
    EXPECT_EQ(::waitpid(child, &status, 0), child);
    EXPECT_EQ(status, 0);
    EXPECT_EQ(CheckTableFile(*table.get()), "");
    FileClose(table.get(), KindTable);
    EXPECT_EQ(takeError(), 0);
}

}  // namespace
}  // namespace tarn
