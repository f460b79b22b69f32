// SPDX-License-Identifier: Apache-2.0
#include "kernel/index/index_filedisk.h"

#include "kernel/index/index_file.h"
#include "kernel/run/errors.h"
#include "kernel/run/fileerrors.h"

#include <algorithm>
#include <cstring>
#include <new>
#include <utility>

namespace tarn {

namespace {

// The file that stays open between operations. It is of use to the file system that has opened it alone.
struct LeftOpen {
    os::Handle handle = -1;
    os::OpenMode mode = os::OpenMode::Read;
    const os::FileSystem* system = nullptr;
    std::string path;
    std::uint64_t device = 0, inode = 0;
};

LeftOpen& leftOpen() {
    static LeftOpen file;
    return file;
}

bool isLeftOpen(std::string_view path) {
    return leftOpen().handle >= 0 && leftOpen().system == &os::files() && leftOpen().path == path;
}

// Whether its name still stands for it.
bool isStillThere() {
    const os::FileInfo info = os::infoOf(leftOpen().path);
    return info.exists && info.device == leftOpen().device && info.inode == leftOpen().inode;
}

// Also without a process that could close anything: that of a test that plays a death.
void closeQuietly(os::Handle handle) noexcept {
    try {
        os::files().close(handle);
    } catch (...) {}
}

void closeLeftOpen() {
    const os::Handle handle = std::exchange(leftOpen().handle, -1);
    if (handle >= 0 && leftOpen().system == &os::files()) closeQuietly(handle);
}

bool setLeftOpen(os::Handle handle, os::OpenMode mode, const std::string& path, std::uint64_t device,
                 std::uint64_t inode) noexcept {
    closeLeftOpen();
    try {
        leftOpen() = {handle, mode, &os::files(), path, device, inode};
    } catch (const std::bad_alloc&) {
        return false;
    }
    return true;
}

}  // namespace

void LetGoOfIndex() {
    HeldIndex::letGo();
    closeLeftOpen();
}

void LetGoOfIndex(std::string_view path) {
    HeldIndex::letGo(path);
    if (isLeftOpen(path)) closeLeftOpen();
}

// ---- opening ----

// Takes the file over that is held or left open, if there is one that serves.
std::int32_t IndexDisk::adopt(std::int64_t& size) {
    changed_ = false;
    held_ = HeldIndex::of(path_);
    if (held_ != nullptr) {
        const std::int32_t code = held_->take(mode_, handle_, size);
        if (code != 0) held_ = nullptr;
        if (code == 0) records_ = &held_->records();
        return code;
    }
    staysOpen_ = isLeftOpen(path_) && isStillThere();
    device_ = staysOpen_ ? leftOpen().device : 0;
    inode_ = staysOpen_ ? leftOpen().inode : 0;
    os::FileError error = os::FileError::None;
    if (staysOpen_ && (leftOpen().mode == mode_ || leftOpen().mode == os::OpenMode::ReadWrite)) {
        mode_ = leftOpen().mode;
        handle_ = std::exchange(leftOpen().handle, -1);
    } else {
        closeLeftOpen();
        error = os::files().open(path_, mode_, 0, handle_);
    }
    if (error != os::FileError::None) return IndexOpenCode(error, mode_);
    error = os::files().infoOpen(handle_, info_);
    size = info_.size;
    return FileReadCode(error);
}

std::int32_t IndexDisk::open(const std::string& path, os::OpenMode mode) {
    close();
    path_ = path;
    mode_ = mode;
    peekedAt_ = -aroundBytes - 1;
    ofUse_ = false;
    changes_.clear();
    const std::int32_t code = adopt(size_);
    if (code != 0) close();
    return code;
}

void IndexDisk::leaveOpen() {
    if (held_ != nullptr) return;
    const os::FileInfo info = os::infoOf(path_);
    staysOpen_ = info.exists;
    device_ = info.device;
    inode_ = info.inode;
}

std::int32_t IndexDisk::reopen() {
    std::int64_t size = 0;
    std::int32_t code = adopt(size);
    if (code == 0 && size != size_) code = ERR_INDEX_FILE_SIZE;
    if (code != 0) close();
    return code;
}

IndexDisk::~IndexDisk() {
    leaveRecords();
    if (handle_ < 0 || giveBack()) return;
    if (!(staysOpen_ && setLeftOpen(handle_, mode_, path_, device_, inode_))) closeQuietly(handle_);
}

void IndexDisk::leaveRecords() noexcept {
    if (records_ != nullptr && held_ == nullptr) LeaveRecords(records_);
    records_ = nullptr;
}

// Whether the file was a held one.
bool IndexDisk::giveBack() noexcept {
    if (held_ == nullptr) return false;
    try {
        std::exchange(held_, nullptr)->giveBack(changed_);
    } catch (...) {  // the end of the process, in a test
    }
    return true;
}

std::int32_t IndexDisk::close() {
    inBuffer_ = inFront_ = 0;
    if (changed_ && held_ == nullptr && records_ != nullptr) StampRecords(records_, handle_);
    leaveRecords();
    const os::Handle handle = std::exchange(handle_, -1);
    if (handle < 0 || giveBack()) return 0;
    if (staysOpen_ && setLeftOpen(handle, mode_, path_, device_, inode_)) return 0;
    if (mode_ != os::OpenMode::Read) return FileWriteCode(os::files().close(handle));
    closeQuietly(handle);
    return 0;
}

void IndexDisk::useRecords(std::int32_t recordSize, std::int32_t nearBytes) {
    if (held_ == nullptr) records_ = RecallRecords(info_, mode_ == os::OpenMode::ReadWrite);
    if (records_ != nullptr) records_->shape(recordSize, nearBytes);
}

// ---- reading ----

std::int32_t IndexDisk::read(std::int64_t offset, char* into, std::int32_t count) {
    if (!isOpen()) return ERR_FILE_NOT_OPEN;
    if (offset < 0 || offset + count > size_) return ERR_FILE_READ;
    return ReadWhole(handle_, offset, into, static_cast<std::size_t>(count));
}

// Reads these bytes, and those around them when that looks worth while: they are near the ones before, or
// what was read around those was of use.
std::int32_t IndexDisk::fill(std::int64_t offset, std::int32_t count) {
    if (!isOpen()) return ERR_FILE_NOT_OPEN;
    if (offset < 0 || offset + count > size_) return ERR_FILE_READ;
    const std::int64_t distance = offset - peekedAt_;
    const bool near = distance >= -aroundBytes && distance <= aroundBytes;
    const std::int32_t around = near || ofUse_ ? aroundBytes : 0;
    const std::int64_t start = std::max<std::int64_t>(offset - around, 0);
    const std::int64_t end = std::min(offset + count + around, size_);
    inBuffer_ = 0;
    ofUse_ = false;
    bufferAt_ = start;
    peekedAt_ = offset;
    const std::int32_t code = ReadWhole(handle_, start, buffer_, static_cast<std::size_t>(end - start));
    if (code == 0) inBuffer_ = static_cast<std::int32_t>(end - start);
    return code;
}

const char* IndexDisk::peek(std::int64_t offset, std::int32_t count, std::int32_t& code) {
    if (const char* const known = peekKnown(offset, count); known != nullptr) return code = 0, known;
    const bool inFront = offset + count <= inFront_,
               there = inFront || (offset >= bufferAt_ && offset + count <= bufferAt_ + inBuffer_);
    code = there ? 0 : fill(offset, count);
    // Of the front the first records tell, which are the highest nodes of an index that was written at once.
    ofUse_ = ofUse_ || (there && offset >= IndexHeaderBytes && (!inFront || offset + count <= mostPeek));
    if (code != 0) return nullptr;
    const char* const bytes = inFront ? front_ + offset : buffer_ + (offset - bufferAt_);
    if (records_ != nullptr) records_->put(offset, bytes, count);
    return bytes;
}

std::int32_t IndexDisk::readFront() {
    if (!isOpen()) return ERR_FILE_NOT_OPEN;
    const auto count = static_cast<std::int32_t>(std::min<std::int64_t>(frontBytes, size_));
    const std::int32_t code = ReadWhole(handle_, 0, front_, static_cast<std::size_t>(count));
    inFront_ = code == 0 ? count : 0;
    return code;
}

const char* IndexDisk::peekKnown(std::int64_t offset, std::int32_t count) {
    return records_ != nullptr && offset + count <= size_ ? records_->find(offset, count) : nullptr;
}

// ---- changes ----

void IndexDisk::begin() {
    changes_.clear();
    before_.clear();
    sizeBefore_ = size_;
}

std::int32_t IndexDisk::note(std::int64_t offset, std::string_view before) {
    try {
        changes_.push_back({offset, before_.size(), before.size()});
        before_ += before;
    } catch (const std::bad_alloc&) {
        return ERR_OUT_OF_MEMORY;
    }
    return 0;
}

std::int32_t IndexDisk::bytesAt(std::int64_t offset, std::int64_t count, std::string& bytes) {
    try {
        bytes.resize(static_cast<std::size_t>(count));
    } catch (const std::bad_alloc&) {
        return ERR_OUT_OF_MEMORY;
    }
    return ReadWhole(handle_, offset, bytes.data(), bytes.size());
}

void IndexDisk::changing() {
    inBuffer_ = inFront_ = 0;
    if (!changed_ && held_ == nullptr && records_ != nullptr) ChangeRecords(records_);
    changed_ = true;
}

std::int32_t IndexDisk::write(std::int64_t offset, std::string_view bytes, std::string_view before) {
    if (!isOpen()) return ERR_FILE_NOT_OPEN;
    if (const std::int32_t code = note(offset, before); code != 0) return code;
    changing();
    const std::int32_t code = FileWriteCode(os::files().write(handle_, offset, bytes));
    if (records_ != nullptr) code == 0 ? records_->wrote(offset, bytes) : records_->forget();
    size_ = std::max(size_, offset + static_cast<std::int64_t>(bytes.size()));
    return code;
}

std::int32_t IndexDisk::write(std::int64_t offset, std::string_view bytes) {
    const auto count = static_cast<std::int64_t>(bytes.size());
    std::string before;
    const std::int32_t code = bytesAt(offset, std::clamp<std::int64_t>(size_ - offset, 0, count), before);
    return code != 0 ? code : write(offset, bytes, before);
}

std::int32_t IndexDisk::cut(std::int64_t size) {
    if (!isOpen()) return ERR_FILE_NOT_OPEN;
    std::string tail;
    if (const std::int32_t code = bytesAt(size, size_ - size, tail); code != 0) return code;
    if (const std::int32_t code = note(size, tail); code != 0) return code;
    return cutForGood(size);
}

std::int32_t IndexDisk::cutForGood(std::int64_t size) {
    if (!isOpen()) return ERR_FILE_NOT_OPEN;
    changing();
    const std::int32_t code = FileWriteCode(os::files().truncate(handle_, size));
    if (code == 0) size_ = size;
    return code;
}

std::int32_t IndexDisk::takeBack() {
    if (!isOpen()) return ERR_FILE_NOT_OPEN;
    std::int32_t first = 0;
    changing();
    if (records_ != nullptr) records_->forget();
    const auto tell = [&](os::FileError error) {
        if (first == 0) first = FileWriteCode(error);
    };
    for (; !changes_.empty(); changes_.pop_back()) {
        const Change& change = changes_.back();
        if (change.size == 0) continue;
        tell(os::files().write(handle_, change.offset,
                               std::string_view(before_).substr(change.at, change.size)));
    }
    if (size_ > sizeBefore_) tell(os::files().truncate(handle_, sizeBefore_));
    size_ = sizeBefore_;
    inBuffer_ = 0;
    return first;
}

}  // namespace tarn
