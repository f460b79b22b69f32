// SPDX-License-Identifier: Apache-2.0
//
// What the modules of rowfile.h share: an open file of rows, a change of it that can be taken back, and the
// state of a batch.
#pragma once

#include "kernel/lists/rowfile.h"
#include "kernel/lists/rowfile_xbase_internal.h"
#include "kernel/lists/rowformat.h"
#include "os/files.h"
#include "os/tinylimits.h"

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

namespace tarn {

// How many bytes are written, read ahead and gathered at a time.
inline constexpr std::size_t RowBlockBytes = limits::RowBlockBytes;

// 653 for a file that is not there, otherwise as fileerrors.h.
bool RefuseRead(os::FileError error);
bool RefuseWrite(os::FileError error);

// The file of a list while it is open. Operations that give bool have set the error; those that give a
// FileError leave it to the caller.
class RowFile {
public:
    RowFile() = default;
    ~RowFile();
    RowFile(const RowFile&) = delete;
    RowFile& operator=(const RowFile&) = delete;

    // 660, 653, 651 or 652; for an Xbase file, whose header is read, also 655 and 658. Where it shall be
    // written, its fields must be those of the rows (658): another program may have changed them.
    bool open(const ListDescriptor& l, os::OpenMode mode);
    [[nodiscard]] bool isOpen() const { return handle_ >= 0; }
    [[nodiscard]] bool canWrite() const { return isOpen() && mode_ == os::OpenMode::ReadWrite; }
    os::FileError close();

    [[nodiscard]] RowFormat format() const { return format_; }
    [[nodiscard]] std::int32_t rowBytes() const { return rowBytes_; }
    [[nodiscard]] std::int64_t offsetOf(std::int64_t position) const {
        return headerBytes_ + (position - 1) * rowBytes_;
    }
    [[nodiscard]] const XbaseRows* xbase() const { return xbase_.get(); }

    // The count of rows that the file holds by its own account, and its size. 655 for a size that no such file has;
    // then 619 for a count above `most`, and 655 for one of more rows than are there. `trailing` unless null: a byte
    // 26 behind the last row of an Xbase file, which then does not count in the size.
    bool measure(std::int32_t& count, std::int64_t& size, bool* trailing = nullptr,
                 std::int32_t most = INT32_MAX);
    // The rows from `position` on, appended to `bytes`; 651 when one is not there.
    bool read(std::int32_t position, std::int32_t rows, std::string& bytes);
    os::FileError write(std::int64_t position, std::string_view rows);
    os::FileError writeCount(std::int32_t count);  // nothing for a format that has none
    os::FileError cutTo(std::int64_t size);
    os::FileError size(std::int64_t& bytes);
    os::FileError readEndMark(std::int64_t size, bool& there) const;  // a last byte 26
    os::FileError sync();
    // Whether a path still leads to it.
    [[nodiscard]] bool hasName() const;

    // Appends the bytes of an element of the list's shape; 611 when it has another, 658, 802.
    bool pack(const void* element, std::string& bytes) const;
    bool unpack(std::string_view bytes, void* element) const;  // 651, 658, 802
    // The bytes before the first row, with a count of 0; 651.
    bool readHeader(std::string& bytes);

private:
    bool readXbaseHeader();
    os::FileError readCount(std::int64_t& count) const;

    os::Handle handle_ = -1;
    os::OpenMode mode_ = os::OpenMode::Read;
    RowFormat format_ = RowsPlain;
    Kind kind_ = KindNone;
    std::int32_t headerBytes_ = 0, rowBytes_ = 0;
    std::unique_ptr<XbaseRows> xbase_;
};

// A change of a list and its file: begun, written, ended. When a step of it fails, `end` puts back what was
// there: the size, the stored count, the row that was copied. The count of the descriptor is then what the file
// holds.
class RowChange {
public:
    explicit RowChange(ListDescriptor& l);

    // What must be known of the file: nothing, when no row comes or goes; its size; that it has the rows that
    // the descriptor counts (655).
    enum class Know { Nothing, Size, Rows };
    // Opens the file for writing, unless a batch has it open.
    bool begin(Know what);
    [[nodiscard]] RowFile& file() { return *file_; }
    [[nodiscard]] std::int64_t size() const { return size_; }  // without a byte 26; unless nothing is known
    bool copyBefore(std::int32_t position);  // a row that will be overwritten or cut off; 651
    // Rows that will be written where none was counted.
    void adding(std::int32_t first, std::int32_t last) {
        firstAdded_ = first;
        lastAdded_ = last;
    }
    // Rows were cut off that were not copied: there is no way back.
    void cut() { cut_ = true; }
    // Ends it with this count, or takes it back when `error` says that it failed, or closing does.
    bool end(os::FileError error, std::int32_t count);

private:
    void takeBack();
    bool restoreRows();
    void recount();

    ListDescriptor& list_;
    RowFile own_;
    RowFile* file_ = &own_;
    bool closes_ = true;      // the file, at the end
    std::int64_t size_ = -1;  // unless it is known
    std::int32_t copied_ = 0, firstAdded_ = 0, lastAdded_ = 0;
    bool cut_ = false;
};

// What the operations know of the batch of a list.
class BatchOfRows {
public:
    BatchOfRows(ListDescriptor& l, RowBatch::Use use);
    ~BatchOfRows();
    BatchOfRows(const BatchOfRows&) = delete;
    BatchOfRows& operator=(const BatchOfRows&) = delete;

    // The youngest one of the list; null: there is none.
    static BatchOfRows* of(const ListDescriptor& l);
    // The same for all of its batches: before another file takes the place of this one, and at the list's end.
    static bool finishAll(const ListDescriptor& l);
    static void forgetAll(const ListDescriptor& l);  // their files stay open
    static void closeForgotten();

    [[nodiscard]] bool gathers() const { return use_ == RowBatch::Use::Gather; }
    void endWithNext() { endsWithNext_ = true; }
    [[nodiscard]] bool endsWithNext() const { return endsWithNext_; }

    bool read(const ListDescriptor& l, std::int32_t position, void* element);
    bool append(ListDescriptor& l, const void* element);
    bool flush();    // writes what was gathered
    bool prepare();  // flushes, and opens the file for writing
    bool openToRead();
    bool finish();
    [[nodiscard]] RowFile& file() { return file_; }

private:
    [[nodiscard]] std::int32_t written() const { return list_->count - gatheredRows_; }
    void forget();  // drops what was gathered: the list ends
    void lookAgain();
    bool fillBlock(std::int32_t position);

    ListDescriptor* list_;
    Offset name_;  // which tells the list
    RowBatch::Use use_;
    bool endsWithNext_ = false;
    RowFile file_;
    std::string gathered_, block_;
    std::int32_t gatheredRows_ = 0, blockFirst_ = 0, blockRows_ = 0, lastRead_ = 0;
    bool accepted_ = false;
    BatchOfRows* next_;
};

// Appends rows that were not written yet.
void AddEmptyRows(std::string_view name, std::size_t rowBytes, std::int32_t rows, std::string& bytes);
// Bytes of one row, for one use at a time; empty.
std::string& RowBytes();

}  // namespace tarn
