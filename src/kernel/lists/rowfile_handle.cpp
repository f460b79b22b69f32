// SPDX-License-Identifier: Apache-2.0
//
// An open file of rows, and changes of it.
#include "kernel/data/xbase/xbase.h"
#include "kernel/lists/packing.h"
#include "kernel/lists/rowfile_access.h"
#include "kernel/run/fileerrors.h"

#include <algorithm>
#include <limits>

namespace tarn {

bool RefuseRead(os::FileError error) {
    return Refuse(IsMissing(error) ? std::int32_t{ERR_FILE_VANISHED} : FileReadCode(error));
}
bool RefuseWrite(os::FileError error) {
    return Refuse(IsMissing(error) ? std::int32_t{ERR_FILE_VANISHED} : FileWriteCode(error));
}

std::string& RowBytes() {
    static std::string bytes;
    bytes.clear();
    return bytes;
}

// ---- open and close ----

// What has been written is closed where its failure can be told.
RowFile::~RowFile() {
    try {
        close();
    } catch (...) {  // the end of the process, in a test
    }
}

bool RowFile::open(const ListDescriptor& l, os::OpenMode mode) {
    close();
    const std::string_view name = RowFileName(l);
    mode_ = mode;
    format_ = RowFormatOf(name, l.maxlength);
    kind_ = ElementKindOf(l);
    headerBytes_ = format_ == RowsFixed ? FixedHeaderBytes : 0;
    rowBytes_ = PackedRowBytes(l);
    if (rowBytes_ == 0) return false;
    const os::FileError error = os::files().open(std::string(name), mode, 0, handle_);
    if (error != os::FileError::None) {
        handle_ = -1;
        return mode == os::OpenMode::Read ? RefuseRead(error) : RefuseWrite(error);
    }
    if (format_ != RowsXbase) return true;
    if (readXbaseHeader() && (mode == os::OpenMode::Read || xbase_->accept(l))) return true;
    close();
    return false;
}

bool RowFile::readXbaseHeader() {
    char bytes[XbaseRows::MostHeaderBytes];
    std::size_t got = 0;
    const os::FileError error = os::readUpTo(handle_, 0, bytes, sizeof bytes, got);
    if (error != os::FileError::None) return RefuseRead(error);
    if (xbase_ == nullptr) xbase_ = std::make_unique<XbaseRows>();
    if (!xbase_->read({bytes, got})) return false;
    headerBytes_ = xbase_->headerSize();
    rowBytes_ = xbase_->rowBytes();
    return true;
}

os::FileError RowFile::close() {
    if (!isOpen()) return os::FileError::None;
    const os::Handle handle = handle_;
    handle_ = -1;
    return os::files().close(handle);
}

// ---- bytes ----

bool RowFile::read(std::int32_t position, std::int32_t rows, std::string& bytes) {
    const std::size_t before = bytes.size();
    const std::size_t count = static_cast<std::size_t>(rows) * static_cast<std::size_t>(rowBytes_);
    bytes.resize(before + count);
    std::size_t got = 0;
    const os::FileError error = os::readUpTo(handle_, offsetOf(position), bytes.data() + before, count, got);
    if (error != os::FileError::None) return RefuseRead(error);
    return got == count || Refuse(ERR_FILE_READ);
}

bool RowFile::readHeader(std::string& bytes) {
    bytes.assign(static_cast<std::size_t>(headerBytes_), '\0');
    std::size_t got = 0;
    const os::FileError error = os::readUpTo(handle_, 0, bytes.data(), bytes.size(), got);
    if (error != os::FileError::None) return RefuseRead(error);
    if (got != bytes.size()) return Refuse(ERR_FILE_READ);
    if (!StoresCount(format_)) return true;
    const StoredCount none = EncodeCount(format_, 0);
    std::copy(std::begin(none.bytes), std::end(none.bytes), bytes.begin() + none.offset);
    return true;
}

os::FileError RowFile::write(std::int64_t position, std::string_view rows) {
    return os::files().write(handle_, offsetOf(position), rows);
}

os::FileError RowFile::writeCount(std::int32_t count) {
    if (!StoresCount(format_)) return os::FileError::None;
    const StoredCount stored = EncodeCount(format_, count);
    const std::string_view bytes(stored.bytes, sizeof stored.bytes);
    if (format_ != RowsXbase) return os::files().write(handle_, stored.offset, bytes);
    const std::string today = XbaseDateToday();  // stands before the count
    const auto dateBytes = static_cast<std::int64_t>(today.size());
    return os::files().write(handle_, stored.offset - dateBytes, today + std::string(bytes));
}

os::FileError RowFile::cutTo(std::int64_t size) {
    return os::files().truncate(handle_, size);
}
os::FileError RowFile::size(std::int64_t& bytes) {
    return os::files().size(handle_, bytes);
}

os::FileError RowFile::sync() {
    return os::files().sync(handle_);
}

bool RowFile::hasName() const {
    os::FileInfo info;
    return os::files().infoOpen(handle_, info) == os::FileError::None && info.links != 0;
}

// Below 0 when there is none that can be.
os::FileError RowFile::readCount(std::int64_t& count) const {
    StoredCount stored = EncodeCount(format_, 0);
    std::size_t got = 0;
    const os::FileError error = os::readUpTo(handle_, stored.offset, stored.bytes, sizeof stored.bytes, got);
    count = got == sizeof stored.bytes ? DecodeCount(format_, stored.bytes) : -1;
    return error;
}

os::FileError RowFile::readEndMark(std::int64_t size, bool& there) const {
    char last = 0;
    std::size_t got = 0;
    const os::FileError error = os::readUpTo(handle_, size - 1, &last, 1, got);
    there = got == 1 && last == XbaseFileEnd;
    return error;
}

bool RowFile::measure(std::int32_t& count, std::int64_t& size, bool* trailing, std::int32_t most) {
    os::FileError error = this->size(size);
    std::int64_t rows = (size - headerBytes_) / rowBytes_, over = (size - headerBytes_) % rowBytes_;
    std::int64_t stored = rows;
    if (error == os::FileError::None && size < headerBytes_) return Refuse(ERR_FILE_SIZE);
    if (error == os::FileError::None && StoresCount(format_)) error = readCount(stored);
    // Where a row is one byte, only the count tells the mark from a row.
    const bool mark = rowBytes_ == 1 ? rows == stored + 1 : over == 1;
    if (error == os::FileError::None && trailing != nullptr && format_ == RowsXbase && mark) {
        error = readEndMark(size, *trailing);
        if (*trailing) {
            --size;
            rows = (size - headerBytes_) / rowBytes_;
            over = 0;
        }
    }
    if (error != os::FileError::None) return RefuseRead(error);
    if (over != 0 || stored < 0 || stored > INT32_MAX) return Refuse(ERR_FILE_SIZE);
    if (stored > most) return Refuse(ERR_FIXED_TABLE);
    if (stored > rows) return Refuse(ERR_FILE_SIZE);
    count = static_cast<std::int32_t>(stored);
    return true;
}

// ---- rows ----

bool RowFile::pack(const void* element, std::string& bytes) const {
    const std::size_t before = bytes.size();
    bool good = true;
    if (xbase_ != nullptr && format_ == RowsXbase)
        good = xbase_->pack(element, kind_, bytes);
    else
        Pack(element, kind_, bytes);
    if (good && bytes.size() - before != static_cast<std::size_t>(rowBytes_))
        good = Refuse(ERR_COMPONENT_TYPE);
    if (!good) bytes.resize(before);
    return good;
}

bool RowFile::unpack(std::string_view bytes, void* element) const {
    if (format_ == RowsXbase) return xbase_->unpack(bytes, element, kind_);
    return Unpack(bytes, element, kind_) || Refuse(ERR_FILE_READ);
}

void AddEmptyRows(std::string_view name, std::size_t rowBytes, std::int32_t rows, std::string& bytes) {
    if (RowFormatOf(name, UNBOUNDED) == RowsXbase) return AddEmptyXbaseRows(name, rowBytes, rows, bytes);
    bytes.resize(bytes.size() + static_cast<std::size_t>(rows) * rowBytes);
}

// ---- changes ----

namespace {

std::string& copiedBytes() {
    static std::string bytes;
    return bytes;
}

}  // namespace

RowChange::RowChange(ListDescriptor& l) : list_(l) {}

bool RowChange::begin(Know what) {
    BatchOfRows* const batch = BatchOfRows::of(list_);
    if (batch != nullptr) {
        if (!batch->prepare()) return false;
        file_ = &batch->file();
        closes_ = batch->endsWithNext();
    } else if (!own_.open(list_, os::OpenMode::ReadWrite)) {
        return false;
    }
    if (what == Know::Nothing) return true;
    if (what == Know::Size) {
        const os::FileError error = file_->size(size_);
        return error == os::FileError::None || RefuseRead(error);
    }
    std::int32_t count = 0;
    bool endMark = false;  // rows are written over it
    return file_->measure(count, size_, &endMark) && (count == list_.count || Refuse(ERR_FILE_SIZE));
}

bool RowChange::copyBefore(std::int32_t position) {
    copiedBytes().clear();
    if (!file_->read(position, 1, copiedBytes())) return false;
    copied_ = position;
    return true;
}

bool RowChange::end(os::FileError error, std::int32_t count) {
    if (error == os::FileError::None && closes_) error = file_->close();
    if (error == os::FileError::None) {
        list_.count = count;
        return true;
    }
    RefuseWrite(error);
    takeBack();
    return false;
}

void RowChange::takeBack() {
    const bool good = (file_->isOpen() || file_->open(list_, os::OpenMode::ReadWrite)) && !cut_ &&
                      restoreRows() && file_->writeCount(list_.count) == os::FileError::None;
    if (!good) recount();
    if (closes_) file_->close();
}

// Rows behind the count are nobody's, but for what they say to other programs.
bool RowChange::restoreRows() {
    const auto done = [](os::FileError error) { return error == os::FileError::None; };
    std::int64_t size = 0;
    const bool grew = size_ >= 0 && (!done(file_->size(size)) || size > size_);
    if (grew && !done(file_->cutTo(size_))) return false;
    if (copied_ != 0 && !done(file_->write(copied_, copiedBytes()))) return false;
    std::string& empty = RowBytes();
    AddEmptyRows(RowFileName(list_), static_cast<std::size_t>(file_->rowBytes()), 1, empty);
    for (std::int64_t n = firstAdded_; n != 0 && n <= lastAdded_ && file_->offsetOf(n + 1) <= size_; ++n) {
        if (!done(file_->write(n, empty))) return false;
    }
    return true;
}

void RowChange::recount() {
    std::int32_t count = 0;
    std::int64_t size = 0;
    bool endMark = false;
    const bool known = file_->isOpen() && file_->measure(count, size, &endMark);
    if (known && (!IsFixedList(list_) || count <= list_.maxlength)) list_.count = count;
}

}  // namespace tarn
