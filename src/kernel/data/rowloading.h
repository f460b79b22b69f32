// SPDX-License-Identifier: Apache-2.0
//
// How whole values are read from files of rows, whatever the form of these: into a fresh value of the
// target's shape, which takes the target's place when the reading came to its end. So a target is never half
// full, and two values are in memory at most. Elements of lists in memory are filled where they stand.
//
// Only the modules of data files include this.
#pragma once

#include "kernel/data/tab/tabular.h"
#include "kernel/values/values.h"

#include <cstdint>
#include <string_view>

namespace tarn {

// A form of files derives from this; the file is open and its header is read.
class RowLoading {
public:
    explicit RowLoading(std::int32_t mostRows) : mostRows_(mostRows) {}  // -1 for all
    virtual ~RowLoading() = default;
    RowLoading(const RowLoading&) = delete;
    RowLoading& operator=(const RowLoading&) = delete;

    // Once. The first cell or row that does not fit is told, and the load goes on behind it. After a lack of
    // memory, a failure of a file or a stop no row counts, and the target is as it was.
    DataResult into(void* target, Kind kind);

protected:
    // The next row of the file; false behind the last one, and when one of the two below tells why.
    virtual bool nextInFile(std::string_view& row) = 0;
    [[nodiscard]] virtual std::int32_t fileCode() const = 0;
    [[nodiscard]] virtual bool stopped() const = 0;
    // A row into a value. 0 or the first failure, a lack of memory ahead of others; the error cell is clear
    // before and after.
    virtual std::int32_t fill(std::string_view row, void* value, Kind kind) = 0;
    virtual void readText(StringDescriptor& text) = 0;
    virtual void readSet(SetDescriptor& set);  // here: from one row

    bool next(std::string_view& row);  // no more than are wanted, and none after a failure of the whole
    void note(std::int32_t code);      // of the row that was read last; 0 for none
    void failWhole(std::int32_t code);
    [[nodiscard]] bool goesOn() const { return !failed_ && (mostRows_ < 0 || row_ < mostRows_); }

    std::int32_t row_ = 0;  // that was read last
    DataResult result_;

private:
    void read(void* value, Kind kind);
    void readOne(void* value, Kind kind);
    void readList(ListDescriptor& list);
    void readTable(TableDescriptor& table);

    std::int32_t mostRows_;
    bool failed_ = false;
};

}  // namespace tarn
