// SPDX-License-Identifier: Apache-2.0
//
// Tables in files on a disk that fails, or in a process or on a machine that dies: the tables, what is done
// to them, what their rows are then, and how it ends.
#pragma once

#include "kernel/tables/tables_file_check.h"
#include "kernel/tables/tables_file_mend.h"
#include "unit/kernel/filetables_fixture.h"

#include <algorithm>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace tarn {

struct Layout {
    const char* name;
    KeyMaps maps;
    std::int32_t maxlength;
    const char* file;
};
inline constexpr Layout layouts[] = {
    {"one index", {0x01000000}, UNBOUNDED, "/d/a.tab"},
    {"two indexes", {0x01000000, 0x02000000}, UNBOUNDED, "/d/a.tab"},
    {"five indexes, fixed", {0x01000000, 0x02000000, 0x04010000, 0x02010000, 0x01020304}, 12, "/d/a.tab"},
    {"no index", {}, UNBOUNDED, "/d/a.tab"},
};

class TableDeaths : public FileTables {
protected:
    // What is done to the table, and what its rows are then.
    struct Operation {
        const char* name;
        std::function<std::int32_t()> run;
        std::function<void(Rows&)> model;
    };
    static int numberOf(const Cells& cells) { return static_cast<int>(cells[0].number); }
    static Cells newRow(int number) { return row(number, "n" + std::to_string(number), number / 4.0, "c"); }
    static void removeRow(Rows& rows, int number) {
        const auto at =
            std::find_if(rows.begin(), rows.end(), [&](const Cells& r) { return numberOf(r) == number; });
        *at = rows.back();
        rows.pop_back();
    }
    static void updateRow(Rows& rows, int number, const Cells& cells) {
        *std::find_if(rows.begin(), rows.end(), [&](const Cells& r) { return numberOf(r) == number; }) =
            cells;
    }

    void start(const Layout& layout, int count) {
        newDisk();
        layout_ = &layout;
        table = closedTable(layout.maps, layout.maxlength);
        ASSERT_EQ(open(layout.file), 0);
        model_.clear();
        for (int i = 1; i <= count; ++i) {
            ASSERT_EQ(add(newRow(i)), 0);
            model_.push_back(newRow(i));
        }
    }
    static bool same(const Rows& a, const Rows& b) {
        return a.size() == b.size() && std::equal(a.begin(), a.end(), b.begin(), sameCells);
    }

    // Records are made ahead, so that what fails is the operation.
    static std::shared_ptr<RecordValue> made(const Cells& cells) {
        return std::make_shared<RecordValue>(recordOf(cells));
    }
    Operation updating(const char* name, int number, const Cells& cells) {
        return {name,
                [=, this, key = made({integer(number)}), row = made(cells)] {
                    TableUpdate(row->get(), 1, key->get(), t());
                    return takeError();
                },
                [=](Rows& rows) { updateRow(rows, number, cells); }};
    }
    Operation deleting(int number) {
        return {"delete",
                [this, key = made({integer(number)})] {
                    TableDelete(t(), 1, key->get());
                    return takeError();
                },
                [=](Rows& rows) { removeRow(rows, number); }};
    }
    std::vector<Operation> operations() {
        const auto adds = [this, row = made(newRow(50))] {
            TableAdd(t(), layout_->maps[0] == 0 ? 0 : 1, row->get());
            return takeError();
        };
        std::vector<Operation> all = {
            {"add", adds, [](Rows& rows) { rows.push_back(newRow(50)); }},
            {"clear", [this] { return clear(); }, [](Rows& rows) { rows.clear(); }},
            {"rebuild", [this] { return rebuild(); }, [](Rows&) {}},
        };
        if (layout_->maps[0] == 0) return all;
        all.push_back(updating("update a key", 2, newRow(60)));
        all.push_back(updating("update no key", 3, row(3, "n3", 99, "c")));
        for (const int number : {1, 4, 6}) all.push_back(deleting(number));
        return all;
    }

    // Each operation by its number on a table of each layout, until one fails.
    template <class Visit>
    void eachOperation(Visit visit) {
        for (const Layout& layout : layouts) {
            start(layout, 6);
            const std::size_t count = operations().size();
            for (std::size_t which = 0; which < count && !HasFailure(); ++which) visit(layout, which);
        }
    }

    // Runs an operation whose call of that number fails. False when it makes no such call.
    bool runFailing(const Operation& operation, int call, os::FileError failure, std::int32_t& error) {
        files().failAt(call, failure);
        error = operation.run();
        const bool failed = files().calls() >= call;
        failedCall_ = failed ? files().log()[static_cast<std::size_t>(call) - 1] : "";
        files().stopFailing();
        EXPECT_TRUE(error == 0 || error == 652 || error == 654) << error;
        EXPECT_TRUE(failed || error == 0);
        return failed;
    }
    // The operation has either worked or changed nothing.
    void expectDoneOrNot(const Operation& operation, std::int32_t error) {
        Rows after = model_;
        if (error == 0) operation.model(after);
        EXPECT_EQ(TableCount(t()), static_cast<std::int32_t>(after.size()));
        EXPECT_TRUE(same(rows(), after)) << "error " << error;
        expectWhole();
        // A file that could not be removed stays, and does no harm. Rows that are moved are kept beside.
        const bool mayStay = failedCall_.starts_with("remove ");
        for (const std::string& name : names()) {
            const bool left = (name.find('~') != std::string::npos && name != "a.~d1") ||
                              name.find(".tarnwick") != std::string::npos;
            EXPECT_TRUE(!left || (mayStay && error == 0)) << name;
        }
        EXPECT_EQ(files().openHandles(), 0);
        EXPECT_EQ(takeError(), 0);
    }

    const Layout* layout_ = nullptr;
    Rows model_;
    std::string failedCall_;
};

// How it ends: the process alone, or the machine, with what of it is on the disk.
struct Ending {
    const char* name;
    bool machine = false;
    os::SteeredFiles::Names names = os::SteeredFiles::Names::Kept;
    os::SteeredFiles::Overwritten overwritten = os::SteeredFiles::Overwritten::Kept;
};
inline constexpr Ending endings[] = {
    {"process"},
    {"machine, all kept", true},
    {"machine, bytes lost", true, os::SteeredFiles::Names::Kept, os::SteeredFiles::Overwritten::Lost},
    {"machine, names lost", true, os::SteeredFiles::Names::Lost, os::SteeredFiles::Overwritten::Kept},
    {"machine, all lost", true, os::SteeredFiles::Names::Lost, os::SteeredFiles::Overwritten::Lost},
};

class TableEnds : public TableDeaths {
protected:
    // True when the operation ended, false when the process has died in it.
    bool dieIn(const Operation& operation, int call, bool midway) {
        files().dieAt(call, midway);
        try {
            EXPECT_EQ(operation.run(), 0);
        } catch (const os::ProcessDeath&) {}
        return !files().dead();
    }
    // An operation on six rows that dies before and in each of its file calls, and lives when none is left. `ready` runs ahead
    // of it; `ended` gets whether it died and the rows that it was to leave, and ends the process.
    template <class Ready, class Ended>
    void eachDeath(const Layout& layout, std::size_t which, const Ending& ending, Ready ready, Ended ended) {
        for (const bool midway : {false, true}) {
            bool died = true;
            for (int call = 1; died && !HasFailure(); ++call) {
                start(layout, 6);
                close();
                ASSERT_EQ(open(layout.file), 0);
                ready();
                const Operation operation = operations()[which];
                SCOPED_TRACE(std::string(layout.name) + ", " + operation.name + ", " + ending.name +
                             (midway ? ", in call " : ", before call ") + std::to_string(call));
                Rows after = model_;
                operation.model(after);
                died = !dieIn(operation, call, midway);
                ended(died, after);
            }
        }
    }
    void end(const Ending& ending) {
        abandon();
        takeError();
        if (ending.machine)
            files().afterMachineDeath(ending.names, ending.overwritten);
        else
            files().revive();
        table = TableValue();
        takeError();
    }
    // What a new process makes of the files: opened and checked, "" or what is wrong.
    std::string look() {
        table = closedTable(layout_->maps, layout_->maxlength);
        const std::int32_t error = open(layout_->file);
        return error != 0 ? "error " + std::to_string(error) : CheckTableFile(*t());
    }
    void mend() {
        if (FileExists(t(), KindTable)) abandon();
        const RebuiltTable result = RebuildTableFile(*t(), layout_->file);
        EXPECT_EQ(result.error, 0);
        EXPECT_TRUE(result.duplicates.empty());
        ASSERT_EQ(open(layout_->file), 0);
        EXPECT_EQ(result.rows, TableCount(t()));
        expectWhole();
    }
};

}  // namespace tarn
