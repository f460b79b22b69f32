// SPDX-License-Identifier: Apache-2.0
//
// Files as they stand: what one is at first sight, and its bytes in rows of equal length.
#pragma once

#include "kernel/tables/tables_file_note.h"
#include "os/files.h"
#include "tarn_data/base/problem.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace tarn::datatool {

// Why a file cannot be read, by its name: it is not there, no regular file, or a link that leads nowhere.
Problem problemOfName(const std::string& file);
// Why it cannot be written. One that is not there can.
Problem problemOfTarget(const std::string& file);
Problem unreadable(const std::string& file, os::FileError error);
// The beginning of a file, as much as tells text from other things.
std::string beginningOf(const std::string& file);

// By its name and its first bytes. Others are text, XML, table files and what is not known.
enum class FileKind { Other, Index, Xbase };
FileKind kindOf(const std::string& file);
bool isIndexName(std::string_view file);  // its extension is one of i1 to i5
// A file that cannot be told from others by its bytes, but has an index file beside it that names it. Xbase
// files can be told.
bool isTableByIndex(const std::string& file);

// A file that is read from one place on.
class FileRows {
public:
    FileRows() = default;
    ~FileRows();
    FileRows(const FileRows&) = delete;
    FileRows& operator=(const FileRows&) = delete;

    // False, here and below: `error` tells why, or is None at the end.
    bool open(const std::string& file);
    [[nodiscard]] std::int64_t size() const { return size_; }
    [[nodiscard]] os::FileError error() const { return error_; }
    // As many bytes as there are, at most `count`.
    bool read(std::int64_t offset, std::size_t count, std::string& bytes);
    // From now on `next` gives so many rows from there, one after another; each is valid until the next.
    void goTo(std::int64_t offset, std::size_t rowBytes, std::int64_t rows);
    bool next(std::string_view& row);

private:
    bool fill();

    os::Handle handle_ = -1;
    os::FileError error_ = os::FileError::None;
    std::int64_t size_ = 0, at_ = 0, rowsLeft_ = 0;
    std::size_t rowBytes_ = 1;
    std::string block_;
    std::string_view unread_;
};

// Looks for a row that was being written over when a process died: it stands behind the others.
Problem findNote(const std::string& file, std::int64_t headerBytes, std::int32_t rowBytes, RowNote& note);

// A folder of its own in $TMPDIR or /tmp, which nobody else may enter; gone with all files in it at the end.
class WorkFolder {
public:
    WorkFolder();
    ~WorkFolder();
    WorkFolder(const WorkFolder&) = delete;
    WorkFolder& operator=(const WorkFolder&) = delete;

    [[nodiscard]] const std::string& path() const { return path_; }
    [[nodiscard]] os::FileError error() const { return error_; }
    // Copies a file; nothing for one that is not there.
    void take(const std::string& file);

private:
    std::string path_;
    os::FileError error_;
};

}  // namespace tarn::datatool
