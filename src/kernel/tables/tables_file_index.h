// SPDX-License-Identifier: Apache-2.0
//
// The index files of a table whose rows stand in a file: their life, and their changes. Indexes are counted
// from 0 here, as in the row header; their files are numbered from 1 (index_file.h tells their format). Only
// the modules of tables and data files include this, and tools.
//
// The rows of `t` are open: the rows list in the row header holds the file's name and the count of rows, and
// so does the table its count. Its key maps tell which indexes there are; a table without any has nothing to
// do here. Operations that give false have set the error.
#pragma once

#include "kernel/index/index_filetree.h"
#include "kernel/tables/table_access.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace tarn {

// ---- the files ----

// Makes the files of all indexes, empty; what stood in their places has stepped aside. When one of them
// cannot be made, those that were made are gone again. 652, 654, 657.
bool MakeTableIndexes(TableDescriptor& t);
// For a row file that was just made or has no rows: empty indexes. Indexes that are as they should be are not
// touched, and others emptied where they stand, if all can be, so that the folder need not be one that can be
// written. Else what stands in their places steps aside and is gone when all are made; it is back when one
// cannot be. 652, 654, 657, 656 for the index of another table.
bool StartTableIndexes(TableDescriptor& t);
// For a row file with rows: every index must be there, its size that of whole nodes, and not too short for
// the rows, and must not name another table file that stands beside: 656. A copy under another name still
// names the file of which it is one, and serves when that is not there. Only reads, so that tables in folders
// that cannot be written open too. 651.
bool AcceptTableIndexes(TableDescriptor& t);
// Brings the index files to the disk; called before the name is blanked. 651, 652, 653, 654.
bool SyncTableIndexes(const TableDescriptor& t);
// The end of a table, before its rows end: the indexes of a scratch file are deleted, those of another file
// brought to the disk. Nothing for a table in memory, or not open, or whose file is gone.
void ReleaseTableIndexes(const TableDescriptor& t);
// Whether all indexes of a table can be emptied where they stand.
bool CanEmptyTableIndexes(const TableDescriptor& t);

// ---- keys ----

// The keys of an index in its shape; the text of the key fields that its file holds.
KeyView IndexKeyShape(const TableHeader& header, std::int32_t index);
std::string IndexKeyText(const TableDescriptor& t, std::int32_t index);
// 660 for a key that cannot stand in a file: one with a string without a capacity, or of too many bytes.
bool AcceptIndexKeys(const TableDescriptor& t);
// 0, or the code of what is wrong with the size of an index file: 656, 651.
std::int32_t IndexSizeError(const std::string& path, std::int32_t recordSize, std::int32_t rows);

// ---- entries ----

// What failed in a tree: its own failure, or damage.
bool RefuseTree(const FileTree& tree);
// The path to the entry of a row. A row has none in an index that could not be built: then the path has not
// found it.
bool FindEntry(const FileTree& tree, const KeyView& key, std::int32_t row, FilePath& path);
// 635 for a key that is there.
bool InsertEntry(FileTree& tree, const KeyView& key, std::int32_t row);
// Nothing for a row without an entry.
bool RemoveEntry(FileTree& tree, const KeyView& key, std::int32_t row);
bool RenumberEntry(FileTree& tree, const KeyView& key, std::int32_t row, std::int32_t newRow);

// ---- changes of several indexes ----

// The trees of one operation. Their changes stay in memory until all are made, as no file may change unless
// all can. Their files are open until then.
class IndexChanges {
public:
    explicit IndexChanges(const TableDescriptor& t);
    // The tree of an index; each may be opened once. Null when it cannot be opened.
    FileTree* open(std::int32_t index);
    // False, with no file changed, when one of them cannot be written.
    bool commit();
    void revert();  // what was committed

private:
    void revert(std::int32_t from);

    const TableHeader& header_;
    std::string file_;
    FileTree trees_[MaxIndexes];
    std::int32_t opened_[MaxIndexes] = {}, count_ = 0;
};

// The index files of a table step aside for new ones, and come back when those were of no use. Files that
// are left over, after a death, are named like indexes with a '~' behind the dot: orders.~i1 for orders.i1
// while new files stand in their places, orders.~n1 for one that is being made.
class IndexExchange {
public:
    explicit IndexExchange(const TableDescriptor& t);
    ~IndexExchange();  // puts back what was not dropped
    IndexExchange(const IndexExchange&) = delete;
    IndexExchange& operator=(const IndexExchange&) = delete;
    bool setAside();
    void putBack();
    void drop();  // the new ones stay; nothing is left over

    // New files are made under names of their own, and then take the places of the old ones.
    [[nodiscard]] std::string newName(std::int32_t index) const;
    bool install(std::int32_t index);
    void dropNew();

private:
    [[nodiscard]] std::string name(std::int32_t index) const;
    [[nodiscard]] std::string asideName(std::int32_t index) const;
    [[nodiscard]] os::FileError moveAside(std::int32_t index) const;

    std::string file_;
    std::int32_t count_;
    std::int32_t aside_ = 0;  // how many have stepped aside
    bool there_[MaxIndexes] = {};
};

}  // namespace tarn
