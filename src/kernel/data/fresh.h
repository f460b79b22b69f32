// SPDX-License-Identifier: Apache-2.0
//
// A file, or a text that a user gives, is read into a fresh value, which takes the target's place when all went
// well. Only the modules of data files and the debugger's reader of values include this.
#pragma once

#include "kernel/lists/rowfile.h"
#include "kernel/values/adt.h"

#include <memory>
#include <string>

namespace tarn {

// An empty value of a target's shape; all zero, and an error in the cell, when it could not be made.
//
// Where the target is an open list or table that is held in a file, the fresh one is open too: on a scratch
// file in the same folder with the same extension, so that the formats are the same. Its rows are gathered
// (RowBatch). The target keeps its name, and its rows and indexes until the new ones take their places.
class FreshValue {
public:
    FreshValue(void* target, Kind kind);
    ~FreshValue();  // which of the two did not stay with the target
    FreshValue(const FreshValue&) = delete;
    FreshValue& operator=(const FreshValue&) = delete;

    void* get() { return bytes_; }
    // The bounds of the target for an array or set whose type has none, where the file does not tell them.
    void takeBounds();
    // Once. False, with the error set and the target as it was, when the files could not be moved; only when
    // the indexes of new rows could then not be made either, the target has the new rows without them.
    bool replaceTarget();

private:
    struct Shaped {};
    FreshValue(void* target, Kind kind, Shaped);
    bool replaceFiles(ListDescriptor& rows);

    void* target_;
    Kind kind_;
    std::string scratch_;  // the name of the file beside, once there is one
    alignas(8) char bytes_[sizeof(ArrayDescriptor)] = {};
    std::unique_ptr<RowBatch> batch_;
};

}  // namespace tarn
