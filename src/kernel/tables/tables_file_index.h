// SPDX-License-Identifier: Apache-2.0
//
// The index files of a table whose rows stand in a file, as the modules of such tables use them. Indexes are
// counted from 0 here, as in the row header; their files are numbered from 1.
#pragma once

#include "kernel/index/index_file.h"
#include "kernel/tables/table_access.h"
#include "kernel/tables/tables_file.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace tarn {

// The keys of an index in its shape; the text of the key fields that its file holds.
KeyView IndexKeyShape(const TableHeader& header, std::int32_t index);
std::string IndexKeyText(const TableDescriptor& t, std::int32_t index);
// 660 for a key that cannot stand in a file: one with a string without a capacity, or of too many bytes.
bool AcceptIndexKeys(const TableDescriptor& t);
// 0, or the code of what is wrong with the size of an index file: 656, 651.
std::int32_t IndexSizeError(const std::string& path, std::int32_t recordSize, std::int32_t rows);

// ---- places ----

// Whether a table of this file may have that many indexes where they belong: 657 when one of the names that
// belong to its indexes is the file itself, or a pipe or device stands at an index's place; 656 when the
// index of another table file that stands beside does (orders.tab and orders.txt have the same names of
// indexes). Nothing for a table without indexes.
bool AcceptIndexPlaces(std::string_view tableFile, std::int32_t indexes);
// The first of these alone.
bool AcceptRowPlace(std::string_view tableFile, std::int32_t indexes);
// Whether an index file names another table file, which stands beside this one.
bool NamesOtherTable(const std::string& indexFile, std::string_view tableFile);

// Whether all indexes of a table can be emptied where they stand.
bool CanEmptyTableIndexes(const TableDescriptor& t);

// "" or what is wrong with the indexes of an open table. Sets no error.
std::string CheckIndexFiles(const TableDescriptor& t);

// Whether all rows that are kept beside an open table (tables_file_kept.h) are found by the first index. Sets
// no error.
bool HasAllKeptRows(const TableDescriptor& t);

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

// The trees of one operation. Their changes stay in memory until all are made, as one file is open at a time
// and no file may change unless all can.
class IndexChanges {
public:
    explicit IndexChanges(const TableDescriptor& t);
    // The tree of an index; each may be opened once, and the one before can then be searched no more. Null
    // when it cannot be opened.
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

    std::string file_;
    std::int32_t count_;
    std::int32_t aside_ = 0;  // how many have stepped aside
    bool there_[MaxIndexes] = {};
};

}  // namespace tarn
