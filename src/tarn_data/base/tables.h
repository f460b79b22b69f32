// SPDX-License-Identifier: Apache-2.0
//
// Table files and the index files beside them, as they stand on the disk. Nothing here opens a table: that
// may write.
#pragma once

#include "kernel/index/index_file.h"
#include "tarn_data/base/files.h"
#include "tarn_data/base/rowtype.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace tarn::datatool {

struct TableFacts {
    std::int32_t rowBytes = 0;
    std::int64_t headerBytes = 0, size = 0;
    std::int64_t counted = -1;  // by the header; -1 where there is none
    std::int64_t whole = 0;     // rows that the file has room for
    std::int64_t behind = 0;    // bytes behind them; below 0: the header is not whole
    RowNote note;               // what these bytes are, when a row was being written over
    [[nodiscard]] std::int64_t rows() const { return counted >= 0 && counted < whole ? counted : whole; }
    // The row that is about to be written over by what stands in the note; 0 for none.
    [[nodiscard]] std::int32_t replacing() const {
        return note.position >= 1 && note.position <= rows() ? note.position : 0;
    }
    [[nodiscard]] bool good() const { return behind == 0 && counted <= whole; }
};
Problem tableFacts(const std::string& file, const RowType& type, TableFacts& facts);
// What is to be done about a table file whose declaration is not given.
Problem typeIsMissing(const std::string& file);

// ---- rows ----

// Looks into the bytes of rows, field by field.
class RowBytes {
public:
    explicit RowBytes(const RowType& type);
    // The first field, from 1, that the bytes of a row cannot be; 0 for none.
    std::int32_t badField(std::string_view row);
    // The first text, likewise, that has other bytes than 0 behind its end. The row has no bad field.
    [[nodiscard]] std::int32_t oddText(std::string_view row) const;
    // The row, until the next is asked for; null when it has a bad field.
    const RecordDescriptor* record(std::string_view row) { return badField(row) == 0 ? row_.get() : nullptr; }

private:
    RecordValue row_;
    std::vector<std::size_t> offsets_;  // of the fields, and of the end
};

// ---- keys ----

std::vector<std::string> fieldNames(std::string_view columns);  // without those inside of others
std::string joined(const std::vector<std::string>& names);      // "a, b"
// A key map of the row for each key. The keys are those of --keys.
Problem keyMapsOf(const std::vector<std::vector<std::string>>& keys, const RowType& type,
                  std::vector<std::int32_t>& maps);

// ---- index files ----

struct IndexFile {
    std::string path, keyText, tableName;
    std::vector<std::string> fields;  // of the key
    RecordValue key;                  // an empty one
    std::string wrong;                // "" or why the key is not known
    std::string odd;                  // "" or what does no harm to its use
    [[nodiscard]] KeyView shape() const;
};
// Reads the header. A file that is none gives `wrong`.
IndexFile readIndexFile(const std::string& path);
struct IndexNumbers {
    std::int32_t nodes = -1, freeRecords = -1, recordBytes = 0;  // -1: damaged
};
IndexNumbers countNodes(const IndexFile& index);

struct IndexBeside {
    std::int32_t number = 0;
    IndexFile file;           // that there is; with an empty path there is none
    bool aside = false;       // it stepped aside for a new one that was never finished
    bool begun = false;       // that new one, or another without a header, is there
    std::int32_t keyMap = 0;  // of the row; 0, and file.wrong says why, when it does not fit
    std::string owner;        // the table file that it belongs to, where that is another one
};
// Those of a table file with such rows, by their numbers; none behind the last that is there.
std::vector<IndexBeside> indexesBeside(const std::string& file, const RowType& type);
// What is wrong with an index file that belongs to another table file.
std::string ownedBy(const std::string& owner);
// "orders.~i1" for "orders.i1".
std::string asideName(const std::string& indexFile);

}  // namespace tarn::datatool
