// SPDX-License-Identifier: Apache-2.0
//
// What the modules share that look for faults.
#pragma once

#include "kernel/data/xbase/xbase.h"
#include "kernel/index/index_filecheck.h"
#include "tarn_data/base/tables.h"
#include "tarn_data/commands/commands.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace tarn::datatool {

// Lines for faults, and for notes: what is odd, but does no harm. The first hundred of each are told.
class Findings {
public:
    void fault(const std::string& file, const std::string& what);
    void note(const std::string& file, const std::string& what);
    [[nodiscard]] std::int64_t faults() const { return faults_; }
    // Prints them, or that the file is whole; gives the status.
    [[nodiscard]] int print(const std::string& file, const std::string& contents) const;

private:
    static constexpr std::int64_t most_ = 100;
    void put(const std::string& text, std::int64_t number);
    [[nodiscard]] std::string text(const std::string& file, const std::string& contents) const;

    std::int64_t faults_ = 0, notes_ = 0;
    std::string lines_;
};

// A row that was being written over.
void checkNote(const std::string& file, const RowNote& note, std::int32_t replacing, Findings& findings);

// The rows of a file, and what makes a record of the bytes of one: null for bytes that are none.
struct RowsOfFile {
    FileRows& file;
    std::int64_t first, bytes, count;  // where they begin, the length of each, and their number
    std::function<const RecordDescriptor*(std::string_view row)> record;
};
// The keys of rows, as the kernel compares them, beside those that the nodes of an index have.
class RowKeys {
public:
    RowKeys(const RowsOfFile& rows, std::int32_t keyMap)
        : rows_(rows), keyMap_(keyMap), steps_(rows.count * rows.bytes) {}
    // "" or what is wrong, or that the user stopped it.
    std::string compare(std::int32_t row, std::string_view key);

private:
    const RowsOfFile& rows_;
    std::int32_t keyMap_;
    Steps steps_;
    std::string row_;
};
void checkIndexes(const std::string& file, const std::vector<IndexBeside>& indexes, const RowsOfFile& rows,
                  Findings& findings);

// ", 2 indexes", behind the rows: those of the file, without such as belong to another one; "" for none.
std::string indexCount(const std::vector<IndexBeside>& indexes);

// The indexes that --keys asks for.
Problem checkWanted(const Arguments& arguments, const RowType& type, const std::vector<IndexBeside>& indexes,
                    Findings& findings);

int checkXbase(const Arguments& arguments);

}  // namespace tarn::datatool
