// SPDX-License-Identifier: Apache-2.0
#include "kernel/tables_file_fill.h"

#include "kernel/data/packing.h"
#include "kernel/data/progress.h"

#include <algorithm>

namespace tarn {

namespace {

// How many rows are entered before nodes are written: so many that those near the root are read seldom, and
// so few that memory does not notice them.
std::int32_t rowsPerCommit(std::int32_t recordSize) {
#ifdef TARNWICK_TINY
    constexpr std::int32_t least = 5, most = 5, bytes = 1;
#else
    constexpr std::int32_t least = 100, most = 16000, bytes = 4 << 20;
#endif
    return std::clamp(bytes / recordSize, least, most);
}

}  // namespace

RowProgress::RowProgress(const TableHeader& header, std::int32_t passes)
    : rowBytes_(std::max<std::int64_t>(PackedLength(&RowShape(header), KindRecord), 1)),
      total_(rowBytes_ * header.rows.count * passes), next_(ProgressStep) {}

bool RowProgress::step() {
    done_ += rowBytes_;
    if (done_ < next_) return true;
    next_ = done_ + ProgressStep;
    return Progress(done_, total_);
}

bool IndexFill::open(const std::string& path) {
    const KeyView shape = IndexKeyShape(header_, index_);
    rowsPerCommit_ = rowsPerCommit(IndexRecordSize(shape));
    return tree_.open(path, shape, os::OpenMode::ReadWrite);
}

Filled IndexFill::insert(const RecordDescriptor& row, std::int32_t number) {
    KeyView key;
    FilePath path;
    if (!KeyOfRow(row, header_.keyMaps[index_], key)) {
        RefuseTable(ERR_COMPONENT_TYPE);
        return Filled::Failed;
    }
    if (!FindFileKey(tree_, key, path)) return Filled::Failed;
    if (path.found) {
        duplicate_ = {index_ + 1, number, tree_.row(path.nodes[path.at])};
        return Filled::Duplicate;
    }
    const FileTree::Ref node = tree_.add(key, number);
    if (node != 0) LinkAt(tree_, path, node);
    if (node != 0 && tree_.failure() == 0) return Filled::Whole;
    RefuseTree(tree_);
    return Filled::Failed;
}

Filled IndexFill::run(ListReader& rows, std::int32_t first, std::int32_t last, RowProgress* progress) {
    for (std::int32_t at = first - 1; at < last; ++at) {
        const std::int32_t number = at + 1;
        const auto* row = static_cast<const RecordDescriptor*>(rows.at(at));
        if (row == nullptr) badRow_ = number;
        const Filled result = row != nullptr ? insert(*row, number) : Filled::Failed;
        if (result == Filled::Duplicate && !tree_.commit()) return Filled::Failed;
        if (result != Filled::Whole) return result;
        if (progress != nullptr && !progress->step()) return Filled::Stopped;
        if (number % rowsPerCommit_ == 0 && !tree_.commit()) return Filled::Failed;
    }
    return tree_.commit() ? Filled::Whole : Filled::Failed;
}

}  // namespace tarn
