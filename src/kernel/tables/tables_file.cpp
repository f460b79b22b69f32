// SPDX-License-Identifier: Apache-2.0
//
// Operations on tables whose rows stand in a file. All indexes are prepared in memory first; then the rows
// are written, then the indexes.
#include "kernel/run/errorcell.h"
#include "kernel/tables/tables_file_places.h"
#include "kernel/tables/tables_ops_internal.h"

#include "kernel/run/errors.h"
#include "kernel/tables/tables_file_fill.h"
#include "kernel/tables/tables_file_guard.h"
#include "kernel/values/adt_kinds.h"
#include "kernel/values/owned.h"

#include <limits>

namespace tarn {

namespace {

// A row that was read from the file, to be checked before anybody sees it.
class ReadCopy {
public:
    explicit ReadCopy(const TableHeader& header) : header_(header) {}
    bool read(std::int32_t number) {
        return InitValue(row_.get(), &RowShape(header_), KindRecord) &&
               ReadRow(header_.rows, number, row_.get());
    }
    // Its key in an index. Rows that were read have one.
    [[nodiscard]] KeyView key(std::int32_t index) const {
        KeyView view;
        KeyOfRow(*row_.get(), header_.keyMaps[index], view);
        return view;
    }
    [[nodiscard]] const RecordDescriptor* get() const { return row_.get(); }

private:
    const TableHeader& header_;
    RecordValue row_;
};

bool seekNode(const FileTree& tree, const TreeSeek& seek, const KeyView& key, FileTree::Ref& node) {
    bool good = false;
    if (seek.end != 0)
        good = FindEnd(tree, seek.end > 0, node);
    else
        good = seek.nearest == 0 ? FindEqual(tree, key, node) : FindNearest(tree, seek, key, node);
    return (good && tree.failure() == 0) || RefuseTree(tree);
}

// The row of a node, which must be there and have the node's key.
bool readRowOf(const FileTree& tree, FileTree::Ref node, const TableHeader& header, std::int32_t index,
               ReadCopy& row) {
    const std::int32_t number = tree.row(node);
    if (!HasRow(header, number)) return Refuse(ERR_INDEX_TYPE);
    if (!row.read(number)) return false;
    return (tree.order(row.key(index), node) == 0 && tree.failure() == 0) || RefuseTree(tree);
}

// Opens the index that a row is looked for in; 604 when it is not there.
FileTree* openAtRow(IndexChanges& changes, const TableHeader& header, std::int32_t index, const KeyView& key,
                    ReadCopy& row, std::int32_t& number) {
    FileTree* tree = changes.open(index);
    FileTree::Ref node = 0;
    if (tree == nullptr || !seekNode(*tree, {}, key, node)) return nullptr;
    if (node == 0) return Refuse(ERR_TABLE_NOT_FOUND), nullptr;
    if (!readRowOf(*tree, node, header, index, row)) return nullptr;
    number = tree->row(node);
    return tree;
}

// Calls `change` with each index, first with the one that is open.
template <class Change>
bool eachIndex(const TableHeader& header, std::int32_t open, const Change& change) {
    if (!change(open)) return false;
    for (std::int32_t i = 0; i < IndexesOf(header); ++i) {
        if (i != open && !change(i)) return false;
    }
    return true;
}

bool replaceEntry(FileTree& tree, const KeyView& before, const KeyView& after, std::int32_t row) {
    FilePath path;
    if (!FindFileKey(tree, after, path)) return false;
    if (path.found) return Refuse(ERR_DUPLICATE_FIELDS);
    return RemoveEntry(tree, before, row) && InsertEntry(tree, after, row);
}

}  // namespace

bool FileTableFind(const TableDescriptor& t, std::int32_t indexNumber, const TreeSeek& seek,
                   const KeyView& key, RecordDescriptor* row, bool& found) {
    const TableHeader& header = HeaderOf(t);
    const std::int32_t index = indexNumber - 1;
    FileTree tree;
    FileTree::Ref node = 0;
    ReadCopy read(header);
    found = false;
    if (!tree.open(IndexFileName(RowFileName(header.rows), indexNumber), IndexKeyShape(header, index),
                   os::OpenMode::Read))
        return false;
    if (!seekNode(tree, seek, key, node)) return false;
    if (node == 0) return true;
    found = readRowOf(tree, node, header, index, read) && CopyValue(read.get(), row, KindRecord);
    return found;
}

bool FileTableAdd(TableDescriptor& t, const RecordDescriptor& row) {
    TableHeader& header = HeaderOf(t);
    if (header.rows.count == std::numeric_limits<std::int32_t>::max()) return Refuse(ERR_FIXED_TABLE);
    const std::int32_t number = header.rows.count + 1;
    IndexChanges changes(t);
    for (std::int32_t i = 0; i < IndexesOf(header); ++i) {
        KeyView key;
        if (!KeyOfRow(row, header.keyMaps[i], key)) return Refuse(ERR_COMPONENT_INVALID);
        FileTree* tree = changes.open(i);
        if (tree == nullptr || !InsertEntry(*tree, key, number)) return false;
    }
    bool good = AppendRow(header.rows, &row);
    if (good && !changes.commit()) {
        RemoveLastRow(header.rows);
        good = false;
    }
    t.count = header.rows.count;
    return good;
}

bool FileTableUpdate(TableDescriptor& t, std::int32_t indexNumber, const KeyView& key,
                     const RecordDescriptor& row) {
    TableHeader& header = HeaderOf(t);
    const std::int32_t index = indexNumber - 1;
    std::int32_t number = 0;
    IndexChanges changes(t);
    RowBatch rows(header.rows, RowBatch::Use::ShareHandle);
    ReadCopy old(header);
    FileTree* found = openAtRow(changes, header, index, key, old, number);
    if (found == nullptr) return false;
    const bool good = eachIndex(header, index, [&](std::int32_t i) {
        KeyView after;
        if (!KeyOfRow(row, header.keyMaps[i], after)) return Refuse(ERR_COMPONENT_INVALID);
        if (CompareKeys(old.key(i), after) == 0) return true;
        FileTree* tree = i == index ? found : changes.open(i);
        return tree != nullptr && replaceEntry(*tree, old.key(i), after, number);
    });
    RowGuard guard(t);
    if (!good || !guard.begin(number, 0)) return false;
    rows.endWithNext();
    const bool replaced = ReplaceRow(header.rows, number, &row);
    if (replaced && changes.commit()) return true;
    if (replaced) WriteRow(header.rows, number, old.get());
    guard.takeBack();
    return false;
}

bool FileTableDelete(TableDescriptor& t, std::int32_t indexNumber, const KeyView& key) {
    TableHeader& header = HeaderOf(t);
    const std::int32_t index = indexNumber - 1, last = header.rows.count;
    std::int32_t number = 0;
    IndexChanges changes(t);
    RowBatch rows(header.rows, RowBatch::Use::ShareHandle);
    ReadCopy row(header), moved(header);
    FileTree* found = openAtRow(changes, header, index, key, row, number);
    const bool moves = number != last;
    if (found == nullptr || (moves && !moved.read(last))) return false;
    const bool good = eachIndex(header, index, [&](std::int32_t i) {
        FileTree* tree = i == index ? found : changes.open(i);
        return tree != nullptr && RemoveEntry(*tree, row.key(i), number) &&
               (!moves || RenumberEntry(*tree, moved.key(i), last, number));
    });
    RowGuard guard(t);
    if (!good || !guard.begin(number, moves ? last : 0)) return false;
    const bool replaced = !moves || ReplaceRow(header.rows, number, moved.get());
    const bool committed = replaced && (!moves || guard.beforeCut()) && changes.commit();
    rows.endWithNext();
    if (!committed || !RemoveLastRow(header.rows)) {
        if (committed) changes.revert();
        if (moves && replaced) WriteRow(header.rows, number, row.get());
        guard.takeBack();
        return false;
    }
    t.count = header.rows.count;
    return true;
}

namespace {

// Rows that are cut off do not come back when the file then cannot be closed.
bool clearRows(ListDescriptor& rows) {
    const OwnErrors errors;
    if (!ClearRows(rows) && rows.count != 0) return false;
    OwnErrors::forget();
    return true;
}

}  // namespace

// Where the indexes stay the files that they are, the rows go first: a table without rows opens with indexes
// of any content, which are emptied then. So they also stay gone when an index can then neither be emptied
// nor made anew, which is told.
bool FileTableClear(TableDescriptor& t) {
    TableHeader& header = HeaderOf(t);
    if (!EndGuard(t)) return false;
    if (CanEmptyTableIndexes(t)) {
        if (!AcceptIndexPlaces(RowFileName(header.rows), IndexesOf(header)) || !clearRows(header.rows))
            return false;
        t.count = header.rows.count;
        return StartTableIndexes(t);
    }
    IndexExchange exchange(t);
    if (!exchange.setAside() || !MakeTableIndexes(t) || !clearRows(header.rows)) return false;
    exchange.drop();
    t.count = header.rows.count;
    return true;
}

namespace {

// The indexes of a table whose rows are open, made anew in its files.
class Refilling {
public:
    explicit Refilling(TableDescriptor& t) : table_(t), header_(HeaderOf(t)), last_(header_.rows.count) {}
    Filled run() {
        const Filled result = MakeTableIndexes(table_) ? fillAll() : Filled::Failed;
        return result != Filled::Whole || dropLast() ? result : Filled::Failed;
    }

private:
    Filled fillAll();
    Filled fill(std::int32_t index, ListReader& rows, RowProgress& progress);
    bool dropLast();

    TableDescriptor& table_;
    TableHeader& header_;
    std::int32_t last_;  // that the indexes get: all but one that stands twice
};

Filled Refilling::fill(std::int32_t index, ListReader& rows, RowProgress& progress) {
    IndexFill fill(header_, index);
    if (!fill.open(IndexFileName(RowFileName(header_.rows), index + 1))) return Filled::Failed;
    Filled result = fill.run(rows, 1, last_, &progress);
    if (result == Filled::Duplicate && IsLastRowAgain(header_, fill.duplicate())) {
        --last_;
        result = Filled::Whole;
    }
    return fill.close() ? result : Filled::Failed;
}

Filled Refilling::fillAll() {
    ListReader rows(header_.rows);
    RowProgress progress(header_, IndexesOf(header_));
    for (std::int32_t i = 0; i < IndexesOf(header_); ++i) {
        const Filled result = fill(i, rows, progress);
        if (result != Filled::Whole) return result;
    }
    return Filled::Whole;
}

// The last row goes when the indexes without it are there, and its other place is on the disk.
bool Refilling::dropLast() {
    if (last_ == header_.rows.count) return true;
    if (!SyncTableIndexes(table_) || !RemoveLastRow(header_.rows)) return false;
    table_.count = header_.rows.count;
    return true;
}

}  // namespace

bool FileTableRebuild(TableDescriptor& t) {
    IndexExchange exchange(t);
    if (!AcceptRows(HeaderOf(t).rows) || !exchange.setAside()) return false;
    const Filled result = Refilling(t).run();
    const bool stays = result == Filled::Whole || result == Filled::Duplicate;
    stays ? exchange.drop() : exchange.putBack();
    if (result == Filled::Duplicate) return Refuse(ERR_UNIQUE_INDEX);
    return result != Filled::Failed;
}

}  // namespace tarn
