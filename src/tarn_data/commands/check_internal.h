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

// The keys of the rows of a file, beside those that nodes have.
class RowKeys {
public:
    using KeyOf = std::function<std::string(std::string_view row)>;
    RowKeys(FileRows& file, std::int64_t first, std::int64_t bytes, KeyOf keyOf)
        : file_(file), first_(first), bytes_(bytes), keyOf_(std::move(keyOf)) {}
    // "" or what is wrong.
    std::string compare(std::int32_t row, std::string_view key);

private:
    FileRows& file_;
    std::int64_t first_, bytes_;
    KeyOf keyOf_;
    std::string row_;
};
// What looks at the nodes of an index with that key map.
using IndexCheck = std::function<SeenNode(std::int32_t keyMap)>;
void checkIndexes(const std::string& file, const std::vector<IndexBeside>& indexes, std::int64_t rows,
                  const IndexCheck& keysOf, Findings& findings);

// The indexes that --keys asks for.
Problem checkWanted(const Arguments& arguments, const RowType& type, const std::vector<IndexBeside>& indexes,
                    Findings& findings);

int checkXbase(const Arguments& arguments);

}  // namespace tarn::datatool
