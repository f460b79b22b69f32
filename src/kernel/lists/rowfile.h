// SPDX-License-Identifier: Apache-2.0
//
// The rows of a list that is held in a file, as one operation sees them. Only the modules of lists, tables
// and data files include this, and tools; filevalues.h tells the formats.
//
// All operations give false when they failed; the error is then set: 653 the file is gone, 655 it has not the
// rows that the descriptor counts, 651 and 652 it cannot be read or written, 654 the disk is full, 658 a row
// that is not of the file's fields, 802. A writing that failed has left the file as it was, as far as it can
// be written; the count of the descriptor is in any case what stands in the file.
//
// A row is written before the count that includes it, and the count before rows are cut off. So the death of
// the process leaves whole rows, but for one behind the count or, where the size is the count, a torn last
// one; or behind them a note of one that was being replaced.
#pragma once

#include "kernel/values/values.h"

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

namespace tarn {

// `l` is a list that is held in a file and open. Positions are checked by the caller. The words of the
// descriptor (count) are kept up to date. Elements have the shape of the list's prototype.
bool ReadRow(const ListDescriptor& l, std::int32_t position, void* element);
bool WriteRow(ListDescriptor& l, std::int32_t position, const void* element);
// The same, with a note of the new row (tables_file_note.h), so that a death in the middle loses neither;
// also 655. A row of one byte needs no note.
bool ReplaceRow(ListDescriptor& l, std::int32_t position, const void* element);
bool AppendRow(ListDescriptor& l, const void* element);  // 618 when a fixed list is full
bool RemoveLastRow(ListDescriptor& l);
// Also mends a file that has not its size: only the header must be there.
bool ClearRows(ListDescriptor& l);
// `fill` may be null when no rows are added. 603 for a count below 0, 618 for one above the capacity.
bool ResizeRows(ListDescriptor& l, std::int32_t count, const void* fill);

// The file half of FileOpen, for the rows alone; `l` is held in a file and not open. `created` tells that the
// file was made. The type text gives the fields of a new Xbase file their names.
bool OpenRows(ListDescriptor& l, std::string_view fileName, std::string_view typeText, bool& created);
// Cuts off a byte 26 behind the rows of an Xbase file, after all else was accepted. Where the file may not be
// written it stays; rows that are written later take its place.
bool CutEndMark(const ListDescriptor& l);
// Lets the disk begin with what CloseRows will wait for. Sets no error.
void StartRowSync(const ListDescriptor& l);
// Syncs and blanks the name, also when the syncing fails. Nothing for a list that is not open.
bool CloseRows(ListDescriptor& l);
// The end of a list: as CloseRows, but a scratch file (its extension begins with '~') is deleted, and a file
// that is gone is no error.
void ReleaseRows(ListDescriptor& l);
// Blanks the name and leaves the file as it is, without what was gathered.
void DropRows(ListDescriptor& l);
bool IsScratchFile(const ListDescriptor& l);
std::string_view RowFileName(const ListDescriptor& l);  // "" when not open; valid until it is closed
// Whether two open lists stand in one file.
bool IsSameFile(const ListDescriptor& a, const ListDescriptor& b);
// 655 unless the file holds as many rows as the list counts: another value may have changed it.
bool AcceptRows(const ListDescriptor& l);
// `to`, which stands in the file of `from`, counts the rows that are there.
bool TakeRowCount(const ListDescriptor& from, ListDescriptor& to);
// "" or what is wrong with the file of an open list. Sets no error.
std::string CheckRows(const ListDescriptor& l);

// While it lives, the operations above on this list share one handle; rows that are read one after another
// are read in blocks, and rows that are appended are gathered and written in blocks: for loading and reading
// many rows. Rows that are gathered count and can be read, and are lost when they cannot be written: the
// append or `finish` that finds out fails, and the count is that of the rows before them.
//
// One that shares the handle alone reads each row when it is asked for and writes it when it is given, so that
// nothing is kept from others; it opens the file for writing where that is allowed. One that holds the file does
// so for many operations, and opens it anew when it has lost its name.
//
// The list stays at its address while the batch lives. A list in memory, or one that is not open, or has a
// batch, is not touched; one that only shares its handle may get one that gathers.
class RowBatch {
public:
    enum class Use { Gather, ShareHandle, Hold };
    explicit RowBatch(ListDescriptor& l, Use use = Use::Gather);
    explicit RowBatch(const ListDescriptor& l);  // for reading
    ~RowBatch();                                 // as finish; one that shares the handle just closes it
    RowBatch(const RowBatch&) = delete;
    RowBatch& operator=(const RowBatch&) = delete;
    bool finish();  // writes what is left, and closes the file
    // The next change of the list, the last one of an operation, closes the file and counts as failed when that
    // fails, as without a batch. Nothing for a list that had a batch already.
    void endWithNext();

private:
    std::unique_ptr<class BatchOfRows> batch_;
};

// ---- files that take the place of others ----

// A file without rows beside that of an open list, with the same extension and header; its name. 652, 654,
// 657 and the codes of reading.
bool MakeRowsBeside(const ListDescriptor& l, std::string& name);
// Renames a file of rows, which is closed, to that of `l`, which gets this count. The old rows are gone, or,
// when it fails, as they were.
bool PutRowsInPlace(const std::string& name, ListDescriptor& l, std::int32_t count);
void RemoveRows(const std::string& name);  // if it is there

// An open list of the same shape, on a file beside, that is filled under a batch and then takes the place of
// the old rows. What did not take the place is deleted.
class RowsBeside {
public:
    explicit RowsBeside(ListDescriptor& target) : target_(target) {}
    ~RowsBeside();
    RowsBeside(const RowsBeside&) = delete;
    RowsBeside& operator=(const RowsBeside&) = delete;
    bool make();  // first
    ListDescriptor& rows() { return rows_; }
    bool takePlace();

private:
    ListDescriptor& target_;
    ListDescriptor rows_{};
    std::string name_;
    std::unique_ptr<RowBatch> batch_;
};

}  // namespace tarn
