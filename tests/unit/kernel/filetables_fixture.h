// SPDX-License-Identifier: Apache-2.0
//
// What the tests of tables in files share: a disk in memory that fails, fills up and dies when told, a table
// on it, and the rows that it must have.
#pragma once

#include "kernel/lists/lists.h"
#include "kernel/lists/rowformat.h"
#include "kernel/run/errors.h"
#include "kernel/tables/filevalues.h"
#include "kernel/tables/tables.h"
#include "kernel/tables/tables_file_check.h"
#include "support/errorcell.h"
#include "support/steerable.h"
#include "unit/kernel/runtime_fixture.h"
#include "unit/kernel/table_rows.h"

#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace tarn {

class FileTables : public Runtime {
protected:
    using Rows = std::vector<Cells>;

    void SetUp() override {
        Runtime::SetUp();
        newDisk();
    }
    void TearDown() override {
        FailAllocation(-1);
        files().stopFailing();
        table = TableValue();
        EXPECT_EQ(takeError(), 0);
        EXPECT_EQ(files().openHandles(), 0);
        Runtime::TearDown();
    }

    // ---- the disk ----

    os::SteeredFiles& files() { return *files_; }
    void newDisk() {
        steered_.reset();
        files_ = std::make_unique<os::SteeredFiles>();
        steered_ = std::make_unique<os::Steered>(*files_);
        files_->putFolder("/d");
    }
    // The files of the table, without the folder.
    std::vector<std::string> names() {
        std::vector<std::string> all = files().allFiles();
        for (std::string& name : all) name.erase(0, std::string("/d/").size());
        return all;
    }
    std::string bytes(const std::string& name) { return files().contents("/d/" + name); }

    // ---- rows of 27 bytes: an integer, a name, a real, three characters ----

    static Cells row(int number, const std::string& name, double weight = 0, const std::string& code = "") {
        return {integer(number), text(name, 8), real(weight), characters(code, 3)};
    }
    static constexpr std::int32_t rowBytes = 4 + 12 + 8 + 3;
    static constexpr std::int32_t byNumber = 0x01000000, byName = 0x02000000;

    // ---- the table ----

    TableDescriptor* t() { return table.get(); }
    static TableValue closedTable(const KeyMaps& maps, std::int32_t maxlength = UNBOUNDED,
                                  const Cells& like = row(0, ""), std::string_view typeText = {}) {
        TableValue made;
        TableInit(made.get(), maxlength, recordOf(like).get(), maps, typeText, true);
        return made;
    }
    std::int32_t open(const std::string& name = "/d/a.tab") {
        FileOpen(t(), KindTable, name);
        return takeError();
    }
    void make(const KeyMaps& maps = {byNumber, byName}, std::int32_t maxlength = UNBOUNDED,
              const std::string& name = "/d/a.tab") {
        table = closedTable(maps, maxlength);
        ASSERT_EQ(open(name), 0);
    }
    void close() {
        FileClose(t(), KindTable);
        EXPECT_EQ(takeError(), 0);
    }
    // A table whose process has died: its files are let alone.
    void abandon() {
        SetRowFileName(*TableRows(t()), {});
        TableRows(t())->count = t()->count = 0;
    }

    std::int32_t add(const Cells& cells) {
        TableAdd(t(), TableIndexCount(t()) == 0 ? 0 : 1, recordOf(cells).get());
        return takeError();
    }
    void fill(int count) {
        for (int i = 1; i <= count; ++i) ASSERT_EQ(add(row(i, "n" + std::to_string(i))), 0);
    }
    std::int32_t update(int index, const Cells& key, const Cells& cells) {
        TableUpdate(recordOf(cells).get(), index, recordOf(key).get(), t());
        return takeError();
    }
    std::int32_t remove(int index, const Cells& key) {
        TableDelete(t(), index, recordOf(key).get());
        return takeError();
    }
    std::int32_t clear() {
        TableClear(t());
        return takeError();
    }
    std::int32_t rebuild() {
        TableRebuild(t());
        return takeError();
    }

    Rows rows(const Cells& like = row(0, "")) {
        Rows all;
        RecordValue out;
        for (std::int32_t n = 1; n <= TableCount(t()); ++n) {
            TableRow(t(), n, out.get());
            all.push_back(cellsOf(out.get(), like));
        }
        return all;
    }
    std::vector<int> numbers() {
        std::vector<int> all;
        for (const Cells& cells : rows()) all.push_back(static_cast<int>(cells[0].number));
        return all;
    }
    // The number in the row that was found; -1 for none.
    int find(const char* op, int index, const Cells& key) {
        RecordValue out;
        bool found = false;
        TableFind(op, t(), index, recordOf(key).get(), out.get(), found);
        return found ? static_cast<int>(cellsOf(out.get(), row(0, ""))[0].number) : -1;
    }
    void expectWhole() { EXPECT_EQ(CheckTableFile(*t()), ""); }

    TableValue table;

private:
    std::unique_ptr<os::SteeredFiles> files_;
    std::unique_ptr<os::Steered> steered_;
};

}  // namespace tarn
