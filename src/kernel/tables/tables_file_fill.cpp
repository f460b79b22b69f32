// SPDX-License-Identifier: Apache-2.0
#include "kernel/tables/tables_file_fill.h"

#include "kernel/index/index_filebuild.h"
#include "kernel/lists/packing.h"
#include "kernel/run/errorcell.h"
#include "kernel/run/progress.h"
#include "kernel/tables/tables_file_mend.h"
#include "kernel/values/adt_kinds.h"
#include "kernel/values/owned.h"
#include "os/tinylimits.h"

#include <algorithm>
#include <new>

namespace tarn {

namespace {

// How many rows are entered before nodes are written: so many that those near the root are read seldom, and
// so few that memory does not notice them.
std::int32_t rowsPerCommit(std::int32_t recordSize) {
    constexpr std::int32_t least = limits::LeastGathered, most = limits::MostGathered;
    constexpr std::int32_t bytes = limits::GatheredBytes;
    return std::clamp(bytes / recordSize, least, most);
}

}  // namespace

RowProgress::RowProgress(const TableHeader& header, std::int32_t indexes)
    : rowBytes_(std::max<std::int64_t>(PackedLength(&RowShape(header), KindRecord), 1)),
      total_(rowBytes_ * header.rows.count * indexes), next_(ProgressStep) {}

bool IsLastRowAgain(const TableHeader& header, const DuplicateKey& duplicate) {
    if (duplicate.row != header.rows.count) return false;
    RecordValue rows[2];
    const std::int32_t numbers[] = {duplicate.row, duplicate.first};
    for (const int i : {0, 1}) {
        const bool read = InitValue(rows[i].get(), &RowShape(header), KindRecord) &&
                          ReadRow(header.rows, numbers[i], rows[i].get());
        if (!read) return false;
    }
    return EqualValues(rows[0].get(), rows[1].get(), KindRecord);
}

// What is done in one way after another had failed counts again.
bool RowProgress::step(std::int32_t times) {
    halves_ += rowBytes_ * times;
    const std::int64_t done = std::min(halves_ / 2, total_);
    if (done < next_) return true;
    next_ = done + ProgressStep;
    return Progress(done, total_);
}

// ---- at once ----

namespace {

// The keys of the first rows of a table, sorted and written into its empty index. There is no result where
// this is not the way, because a row cannot be read, the scratch file cannot be written or memory is short:
// the index is then empty still, and no error is set.
class SortedFill {
public:
    SortedFill(const TableHeader& header, std::int32_t index, const KeyLayout& layout, std::string path,
               RowProgress* progress)
        : header_(header), index_(index), layout_(layout), path_(std::move(path)), progress_(progress) {}
    std::optional<Filled> run(ListReader& rows, std::int32_t count, std::size_t sortBytes);
    [[nodiscard]] const DuplicateKey& duplicate() const { return duplicate_; }

private:
    std::optional<Filled> gather(KeySort& sort, ListReader& rows, std::int32_t count);
    std::optional<Filled> write(KeySort& sort, std::int32_t count, std::int32_t last);
    std::optional<Filled> writeSorted(KeySort& sort, std::int32_t count, std::int32_t last,
                                      IndexBuild& build);
    bool step() { return progress_ == nullptr || progress_->step(1); }

    const TableHeader& header_;
    std::int32_t index_;
    const KeyLayout& layout_;
    std::string path_;
    RowProgress* progress_;
    DuplicateKey duplicate_;
};

std::optional<Filled> SortedFill::gather(KeySort& sort, ListReader& rows, std::int32_t count) {
    const OwnErrors errors;
    for (std::int32_t i = 0; i < count; ++i) {
        KeyView key;
        const auto* row = static_cast<const RecordDescriptor*>(rows.at(i));
        bool good = row != nullptr && KeyOfRow(*row, header_.keyMaps[index_], key), fits = false;
        good = good && sort.add(key, fits) && fits;
        if (!good) return OwnErrors::forget(), std::nullopt;
        if (!step()) return Filled::Stopped;
    }
    return Filled::Whole;
}

// Once a duplicate was found, nothing more is written: it is only looked for others.
std::optional<Filled> SortedFill::writeSorted(KeySort& sort, std::int32_t count, std::int32_t last,
                                              IndexBuild& build) {
    duplicate_ = {};
    std::int32_t firstOfKey = 0, code = build.open(path_, layout_, last);
    if (code == 0 && !sort.start()) return std::nullopt;
    for (std::int32_t i = 0; i < count && code == 0; ++i) {
        KeySort::Entry entry;
        if (!sort.next(entry)) return std::nullopt;
        if (!entry.again) firstOfKey = entry.row;
        if (entry.row > last) continue;
        if (entry.again && (duplicate_.row == 0 || entry.row < duplicate_.row))
            duplicate_ = {index_ + 1, entry.row, firstOfKey};
        if (duplicate_.row == 0) code = build.add(entry.key, entry.row);
        if (code == 0 && !step()) return Filled::Stopped;
    }
    if (duplicate_.row != 0 && code == 0) return Filled::Duplicate;
    if (code == 0) code = build.finish();
    if (code == 0) return Filled::Whole;
    Refuse(code);
    return Filled::Failed;
}

// Those of `count` keys that belong to rows up to `last`.
std::optional<Filled> SortedFill::write(KeySort& sort, std::int32_t count, std::int32_t last) {
    IndexBuild build;
    std::optional<Filled> result;
    try {
        result = writeSorted(sort, count, last, build);
    } catch (const std::bad_alloc&) {}
    if (result != Filled::Whole) build.drop();
    return result;
}

std::optional<Filled> SortedFill::run(ListReader& rows, std::int32_t count, std::size_t sortBytes) {
    KeySort sort(layout_, path_, count, sortBytes);
    std::optional<Filled> result = gather(sort, rows, count);
    if (result != Filled::Whole) return result;
    result = write(sort, count, count);
    if (result != Filled::Duplicate) return result;
    const DuplicateKey found = duplicate_;
    result = write(sort, count, found.row - 1);
    duplicate_ = found;
    return result == Filled::Whole ? Filled::Duplicate : result;
}

}  // namespace

std::optional<Filled> IndexFill::runAtOnce(ListReader& rows, std::int32_t last, RowProgress* progress) {
    if (!tree_.close()) return Filled::Failed;
    SortedFill fill(header_, index_, layout_, path_, progress);
    std::optional<Filled> result;
    try {
        result = fill.run(rows, last, sortBytes_);
    } catch (const std::bad_alloc&) {}
    duplicate_ = fill.duplicate();
    const bool goesOn = !result || result == Filled::Duplicate;
    return !goesOn || tree_.open(path_, layout_, os::OpenMode::ReadWrite) ? result : Filled::Failed;
}

// ---- row by row ----

bool IndexFill::open(const std::string& path) {
    path_ = path;
    if (!LayoutOfKey(IndexKeyShape(header_, index_), layout_)) layout_.recordSize = 0;
    rowsPerCommit_ = rowsPerCommit(std::max(layout_.recordSize, IndexNodeHeadBytes));
    return tree_.open(path, layout_, os::OpenMode::ReadWrite);
}

Filled IndexFill::insert(const RecordDescriptor& row, std::int32_t number) {
    KeyView key;
    FilePath path;
    if (!KeyOfRow(row, header_.keyMaps[index_], key)) {
        Refuse(ERR_COMPONENT_TYPE);
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

Filled IndexFill::runByRow(ListReader& rows, std::int32_t first, std::int32_t last, RowProgress* progress) {
    for (std::int32_t at = first - 1; at < last; ++at) {
        const std::int32_t number = at + 1;
        const auto* row = static_cast<const RecordDescriptor*>(rows.at(at));
        if (row == nullptr) badRow_ = number;
        const Filled result = row != nullptr ? insert(*row, number) : Filled::Failed;
        if (result == Filled::Duplicate && !tree_.commit()) return Filled::Failed;
        if (result != Filled::Whole) return result;
        if (progress != nullptr && !progress->step(2)) return Filled::Stopped;
        if (number % rowsPerCommit_ == 0 && !tree_.commit()) return Filled::Failed;
    }
    return tree_.commit() ? Filled::Whole : Filled::Failed;
}

Filled IndexFill::run(ListReader& rows, std::int32_t first, std::int32_t last, RowProgress* progress) {
    const bool atOnce = first == 1 && last >= leastAtOnce && tree_.records() == 0 &&
                        layout_.recordSize - IndexNodeHeadBytes <= KeySort::mostKeyBytes;
    const std::optional<Filled> result = atOnce ? runAtOnce(rows, last, progress) : std::nullopt;
    return result ? *result : runByRow(rows, first, last, progress);
}

}  // namespace tarn
