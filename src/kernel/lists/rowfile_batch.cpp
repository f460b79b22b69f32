// SPDX-License-Identifier: Apache-2.0
//
// Batches stand in a chain; there are hardly ever more than two.
#include "kernel/lists/rowfile_access.h"
#include "kernel/run/errorcell.h"

#include <algorithm>

namespace tarn {

namespace {

BatchOfRows* first = nullptr;

}  // namespace

BatchOfRows::BatchOfRows(ListDescriptor& l, RowBatch::Use use)
    : list_(&l), name_(l.data), use_(use), next_(first) {
    first = this;
}

BatchOfRows::~BatchOfRows() {
    BatchOfRows** link = &first;
    while (*link != this) link = &(*link)->next_;
    *link = next_;
}

BatchOfRows* BatchOfRows::of(const ListDescriptor& l) {
    BatchOfRows* batch = first;
    while (batch != nullptr && batch->name_ != l.data) batch = batch->next_;
    return batch;
}

bool BatchOfRows::finishAll(const ListDescriptor& l) {
    bool good = true;
    for (BatchOfRows* batch = first; batch != nullptr; batch = batch->next_) {
        if (batch->name_ == l.data) good = batch->finish() && good;
    }
    return good;
}

void BatchOfRows::forgetAll(const ListDescriptor& l) {
    for (BatchOfRows* batch = of(l); batch != nullptr; batch = of(l)) batch->forget();
}

void BatchOfRows::closeForgotten() {
    for (BatchOfRows* batch = first; batch != nullptr; batch = batch->next_) {
        if (batch->name_ == 0) (void)batch->file_.close();
    }
}

// ---- reading ----

// A held file may have given way to another.
void BatchOfRows::lookAgain() {
    if (use_ == RowBatch::Use::Hold && file_.isOpen() && !file_.hasName()) (void)file_.close();
}

bool BatchOfRows::openToRead() {
    lookAgain();
    if (file_.isOpen()) return true;
    if (!gathers()) {
        const ErrorCellAside aside;
        if (file_.open(*list_, os::OpenMode::ReadWrite)) return true;
    }
    return file_.open(*list_, os::OpenMode::Read);
}

// Rows from `position` on: one, or as many as a block holds when it follows the last that was read.
bool BatchOfRows::fillBlock(std::int32_t position) {
    const auto rowBytes = static_cast<std::size_t>(file_.rowBytes());
    const auto perBlock = static_cast<std::int32_t>(std::max<std::size_t>(RowBlockBytes / rowBytes, 1));
    const std::int32_t rows = position - 1 == lastRead_ ? std::min(perBlock, written() - position + 1) : 1;
    block_.clear();
    blockRows_ = 0;
    if (!file_.read(position, rows, block_)) return false;
    blockFirst_ = position;
    blockRows_ = rows;
    return true;
}

bool BatchOfRows::read(const ListDescriptor& l, std::int32_t position, void* element) {
    const auto rowAt = [&](const std::string& rows, std::int32_t index) {
        const auto rowBytes = static_cast<std::size_t>(file_.rowBytes());
        return std::string_view(rows).substr(static_cast<std::size_t>(index) * rowBytes, rowBytes);
    };
    if (!gathers()) {
        std::string& row = RowBytes();
        return openToRead() && file_.read(position, 1, row) && file_.unpack(row, element);
    }
    const std::int32_t before = l.count - gatheredRows_;
    if (position > before) return file_.unpack(rowAt(gathered_, position - before - 1), element);
    if (!openToRead()) return false;
    const bool there = position >= blockFirst_ && position < blockFirst_ + blockRows_;
    if (!there && !fillBlock(position)) return false;
    lastRead_ = position;
    return file_.unpack(rowAt(block_, position - blockFirst_), element);
}

// ---- writing ----

// Another operation may change the rows that follow.
bool BatchOfRows::prepare() {
    if (!flush()) return false;
    blockRows_ = 0;
    lookAgain();
    return file_.canWrite() || file_.open(*list_, os::OpenMode::ReadWrite);
}

bool BatchOfRows::append(ListDescriptor& l, const void* element) {
    if (gatheredRows_ == 0 && !accepted_) {
        std::int32_t count = 0;
        std::int64_t size = 0;
        bool endMark = false;
        if (!prepare() || !file_.measure(count, size, &endMark)) return false;
        if (count != l.count) return Refuse(ERR_FILE_SIZE);
        accepted_ = true;
    }
    if (!file_.pack(element, gathered_)) return false;
    ++gatheredRows_;
    ++l.count;
    return gathered_.size() < RowBlockBytes || flush();
}

bool BatchOfRows::flush() {
    if (gatheredRows_ == 0) return true;
    const std::int32_t count = list_->count;
    list_->count = written();
    gatheredRows_ = 0;
    RowChange change(*list_);
    bool good = change.begin(RowChange::Know::Size);
    if (good) {
        change.adding(list_->count + 1, count);
        os::FileError error = file_.write(list_->count + 1, gathered_);
        if (error == os::FileError::None) error = file_.writeCount(count);
        good = change.end(error, count);
    }
    gathered_.clear();
    return good;
}

void BatchOfRows::forget() {
    list_->count = written();
    gathered_.clear();
    gatheredRows_ = 0;
    blockRows_ = 0;
    accepted_ = false;
    name_ = 0;
}

bool BatchOfRows::finish() {
    const bool flushed = flush();
    const bool wrote = file_.canWrite();
    const os::FileError error = file_.close();
    blockRows_ = 0;
    accepted_ = false;
    return flushed && (!wrote || error == os::FileError::None || RefuseWrite(error));
}

// ---- for loaders ----

namespace {

std::unique_ptr<BatchOfRows> makeBatch(ListDescriptor& l, RowBatch::Use use) {
    if (RowFileName(l).empty()) return nullptr;
    const BatchOfRows* const there = BatchOfRows::of(l);
    if (there != nullptr && (there->gathers() || use != RowBatch::Use::Gather)) return nullptr;
    return std::unique_ptr<BatchOfRows>(new (std::nothrow) BatchOfRows(l, use));
}

}  // namespace

RowBatch::RowBatch(ListDescriptor& l, Use use) : batch_(makeBatch(l, use)) {}
RowBatch::RowBatch(const ListDescriptor& l)
    : batch_(makeBatch(const_cast<ListDescriptor&>(l), Use::Gather)) {}

// What a batch that shares a handle has to write was written.
RowBatch::~RowBatch() {
    try {
        if (batch_ != nullptr && !batch_->gathers())
            (void)batch_->file().close();
        else
            finish();
    } catch (...) {  // the end of the process, in a test
    }
}

void RowBatch::endWithNext() {
    if (batch_ != nullptr) batch_->endWithNext();
}

bool RowBatch::finish() {
    return batch_ == nullptr || WithMemory([&] { return batch_->finish(); });
}

}  // namespace tarn
