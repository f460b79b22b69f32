// SPDX-License-Identifier: Apache-2.0
//
// What is known of a file of rows before it is mended, and whether it may be: a declaration that is not that
// of the rows would cut them up.
#pragma once

#include "tarn_data/base/tables.h"
#include "tarn_data/commands/commands.h"

#include <cstdint>
#include <string>
#include <vector>

namespace tarn::datatool {

struct Patient {
    std::string name;  // as it was given
    std::string file;  // that is worked on: a copy for a dry run
    RowType type;
    std::int64_t rowBytes = 0, headerBytes = 0, size = 0, counted = -1, whole = 0, behind = 0;
    RowNote note;                    // what stands behind, when a row was being written over
    std::int32_t replacing = 0;      // which, when the note is whole
    std::int64_t takenIn = 0;        // whole rows of an Xbase file behind those that its header counts
    std::vector<std::int64_t> torn;  // rows that cannot be read, and will be dropped
    std::vector<std::vector<std::string>> keys;
    std::vector<std::int32_t> maps;
    std::size_t indexesBefore = 0;
};
// With `name` and `file` set.
Problem examine(const Arguments& arguments, bool xbase, Patient& patient);

}  // namespace tarn::datatool
