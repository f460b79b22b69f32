// SPDX-License-Identifier: Apache-2.0
//
// What is known of a file of rows before it is mended, and whether it may be: a declaration that is not that
// of the rows would cut them up.
#pragma once

#include "tarn_data/base/tables.h"
#include "tarn_data/base/xbase.h"
#include "tarn_data/commands/commands.h"

#include <cstdint>
#include <string>
#include <vector>

namespace tarn::datatool {

// What rebuilding a table does not set right in an Xbase file.
struct XbaseDamage {
    struct Mark {
        std::int64_t row;
        char byte;
    };
    std::int32_t rows = -1;        // that the file has; -1 for a table file
    std::int64_t padding = 0;      // bytes behind its mark of the end
    std::int64_t headerShort = 0;  // bytes that its header lacks
    std::int64_t endAt = 0;        // where its list of fields has no end and should have; or 0
    std::vector<Mark> marks;       // bytes where marks of deletion should stand
    [[nodiscard]] bool any() const { return headerShort > 0 || endAt > 0 || !marks.empty(); }
};

struct Patient {
    std::string name;  // as it was given
    std::string file;  // that is worked on: a copy for a dry run
    RowType type;
    std::int64_t rowBytes = 0, headerBytes = 0, size = 0, counted = -1, whole = 0, behind = 0;
    RowNote note;                // what stands behind, when a row was being written over
    std::int32_t replacing = 0;  // which, when the note is whole
    XbaseDamage xbase;
    std::vector<std::int64_t> torn;  // rows that cannot be read, and will be dropped
    std::vector<std::vector<std::string>> keys;
    std::vector<std::int32_t> maps;
    std::size_t indexesBefore = 0;
};
// With `name` and `file` set.
Problem examine(const Arguments& arguments, bool xbase, Patient& patient);

// ---- Xbase files (mendxbase.cpp) ----

Problem findDamage(XbaseFile& file, const std::string& name, XbaseDamage& damage);
// Sets it right in the file.
Problem mendDamage(const Patient& patient);
std::string damageReport(const Patient& patient);  // what was done, a line each

}  // namespace tarn::datatool
