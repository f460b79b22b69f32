// SPDX-License-Identifier: Apache-2.0
#include "tarn_data/base/files.h"

#include "kernel/data/format.h"
#include "kernel/data/xbase/xbase.h"
#include "kernel/index/index_file.h"
#include "kernel/run/runtime.h"
#include "kernel/tables/tables.h"
#include "os/paths.h"
#include "tarn_data/base/shown.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <unistd.h>
#include <vector>

namespace tarn::datatool {

std::string fileWord(const std::string& file) {
    return "File '" + shown(file) + "' ";
}

Problem unreadable(const std::string& file, os::FileError error) {
    return {fileWord(file) + "cannot be read: " + std::string(os::describe(error)),
            "Look whether you may read it and whether it is still there."};
}

namespace {

constexpr const char* isLoop = "It is a link that leads back to itself: remove it, or give the file itself.";

// A name that cannot be followed to its end.
bool isLinkLoop(const std::string& path) {
    os::FileInfo info;
    std::error_code code;
    return os::files().info(path, info) == os::FileError::BadName && std::filesystem::is_symlink(path, code);
}

}  // namespace

Problem problemOfName(const std::string& file) {
    const os::FileInfo info = os::infoOf(os::native(file));
    const std::string what = fileWord(file) + "cannot be read.";
    std::error_code code;
    if (isLinkLoop(os::native(file))) return {what, isLoop};
    if (!info.exists && std::filesystem::is_symlink(os::native(file), code))
        return {what, "It is a link to '" + std::filesystem::read_symlink(os::native(file), code).string() +
                          "', which is not there."};
    if (!info.exists) return {what, "There is no such file: look at its name and folder."};
    if (info.folder) return {what, "It is a folder; give a file in it."};
    if (info.special) return {what, "It is no regular file: write its content to one first."};
    return {};
}

Problem problemOfTarget(const std::string& file) {
    const os::FileInfo info = os::infoOf(os::native(file));
    const std::string what = fileWord(file) + "cannot be written.";
    if (isLinkLoop(os::native(file))) return {what, isLoop};
    if (info.folder) return {what, "It is a folder: give the name of a file in it."};
    if (info.special) return {what, "It is no regular file: give the name of one."};
    return {};
}

std::string beginningOf(const std::string& file) {
    constexpr std::size_t enough = 4096;
    FileRows rows;
    std::string bytes;
    if (!rows.open(file) || !rows.read(0, enough, bytes)) bytes.clear();
    return bytes;
}

// ---- kinds ----

namespace {

bool beginsAsIndex(std::string_view bytes) {
    static_assert(IndexHeaderBytes == 0x450);
    return bytes.starts_with(std::string_view("\0\0\x04\x50", 4));
}

// The signature and the date. Other bytes are what the reading of a header looks at.
bool beginsAsXbase(std::string_view bytes) {
    constexpr std::string_view signatures = "\x03\x04\x05\x30\x83\x8B";
    constexpr unsigned months = 12, days = 31;
    if (bytes.size() < 4 || signatures.find(bytes[0]) == std::string_view::npos) return false;
    const auto month = static_cast<unsigned char>(bytes[2]), day = static_cast<unsigned char>(bytes[3]);
    return month >= 1 && month <= months && day >= 1 && day <= days;
}

// Lines of digits may begin so, too: what is called a text must have a whole header.
bool isXbase(const std::string& file, std::string_view bytes) {
    XbaseHeader header;
    return beginsAsXbase(bytes) &&
           (!RowsAreLines(DataFormatOf(file)) || XbaseDecodeHeader(bytes, header).empty());
}

}  // namespace

bool isIndexName(std::string_view file) {
    const std::string_view name = paths::fileName(file);
    return name.size() > 3 && name[name.size() - 3] == '.' && name[name.size() - 2] == 'i' &&
           name.back() >= '1' && name.back() < '1' + MaxIndexes;
}

FileKind kindOf(const std::string& file) {
    const std::string bytes = beginningOf(file);
    if (beginsAsIndex(bytes)) return FileKind::Index;
    return XbaseFileName(file) || isXbase(file, bytes) ? FileKind::Xbase : FileKind::Other;
}

bool isTableByIndex(const std::string& file) {
    constexpr std::size_t nameAt = 8, nameEnd = 49;
    const std::string index = IndexFileName(file, 1);
    if (XbaseFileName(file) || index == file || !os::infoOf(os::native(index)).exists) return false;
    const std::string bytes = beginningOf(index);
    if (!beginsAsIndex(bytes) || bytes.size() < nameEnd) return false;
    const std::string_view name = paths::fileName(file).substr(0, MaxIndexTableName);
    return std::string_view(bytes).substr(nameAt, name.size() + 1) == std::string(name) + '\0';
}

// ---- reading ----

FileRows::~FileRows() {
    if (handle_ < 0) return;
    try {
        os::files().close(handle_);
    } catch (...) {  // the end of the process, in a test
    }
}

bool FileRows::open(const std::string& file) {
    error_ = os::files().open(os::native(file), os::OpenMode::Read, 0, handle_);
    if (error_ == os::FileError::None) error_ = os::files().size(handle_, size_);
    return error_ == os::FileError::None;
}

bool FileRows::read(std::int64_t offset, std::size_t count, std::string& bytes) {
    const std::int64_t there = std::max<std::int64_t>(size_ - offset, 0);
    bytes.resize(static_cast<std::size_t>(std::min<std::int64_t>(there, static_cast<std::int64_t>(count))));
    std::size_t done = 0, got = 1;
    while (done < bytes.size() && got != 0 && error_ == os::FileError::None) {
        error_ = os::files().read(handle_, offset + static_cast<std::int64_t>(done), bytes.data() + done,
                                  bytes.size() - done, got);
        done += got;
    }
    bytes.resize(done);
    return error_ == os::FileError::None;
}

void FileRows::goTo(std::int64_t offset, std::size_t rowBytes, std::int64_t rows) {
    at_ = offset;
    rowBytes_ = rowBytes;
    rowsLeft_ = rows;
    unread_ = {};
}

bool FileRows::fill() {
    constexpr std::size_t blockBytes = std::size_t{256} * 1024;
    const auto most = static_cast<std::int64_t>(std::max<std::size_t>(blockBytes / rowBytes_, 1));
    const std::int64_t rows = std::min(rowsLeft_, most);
    const std::size_t wanted = static_cast<std::size_t>(rows) * rowBytes_;
    if (!read(at_, wanted, block_)) return false;
    if (block_.size() != wanted) error_ = os::FileError::Vanished;  // it was longer
    at_ += static_cast<std::int64_t>(wanted);
    unread_ = block_;
    return error_ == os::FileError::None;
}

bool FileRows::next(std::string_view& row) {
    if (rowsLeft_ <= 0 || error_ != os::FileError::None || (unread_.empty() && !fill())) return false;
    --rowsLeft_;
    row = unread_.substr(0, rowBytes_);
    unread_.remove_prefix(rowBytes_);
    return true;
}

Problem findNote(const std::string& file, std::int64_t headerBytes, std::int32_t rowBytes, RowNote& note) {
    const bool read = FindRowNote(os::native(file), headerBytes, rowBytes, note);
    ClearError();
    return read ? Problem() : unreadable(file, os::FileError::ReadFailed);
}

// ---- folders ----

WorkFolder::WorkFolder() : error_(os::FileError::Exists) {
    constexpr std::uint32_t onlyMine = 0700;
    constexpr int attempts = 100;
    static int count = 0;
    const char* const folder = std::getenv("TMPDIR");
    const std::string start = folder != nullptr && *folder != 0 ? folder : "/tmp";
    for (int i = 0; i < attempts && error_ == os::FileError::Exists; ++i) {
        path_ = start + "/tarn-data-" + std::to_string(::getpid()) + "-" + std::to_string(++count);
        error_ = os::files().makeFolder(path_);
    }
    if (error_ == os::FileError::None) error_ = os::files().setMode(path_, onlyMine);
}

WorkFolder::~WorkFolder() {
    std::vector<std::string> names;
    if (error_ == os::FileError::Exists || os::files().list(path_, names) != os::FileError::None) return;
    for (const std::string& name : names) os::files().remove(path_ + "/" + name);
    os::files().removeFolder(path_);
}

void WorkFolder::take(const std::string& file) {
    constexpr std::size_t step = std::size_t{1} << 20;
    constexpr std::uint32_t onlyMine = 0600;
    FileRows from;
    os::Handle to = -1;
    if (error_ != os::FileError::None || !os::infoOf(os::native(file)).exists) return;
    if (!from.open(file)) {
        error_ = from.error();
        return;
    }
    error_ = os::files().open(path_ + "/" + std::string(paths::fileName(file)), os::OpenMode::CreateNew,
                              onlyMine, to);
    if (error_ != os::FileError::None) return;
    std::string bytes;
    for (std::int64_t at = 0; at < from.size() && error_ == os::FileError::None;
         at += static_cast<std::int64_t>(step))
        error_ = from.read(at, step, bytes) ? os::files().write(to, at, bytes) : from.error();
    os::files().close(to);
}

}  // namespace tarn::datatool
