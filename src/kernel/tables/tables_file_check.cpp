// SPDX-License-Identifier: Apache-2.0
//
// Whether the files of a table fit each other and its declaration.
#include "kernel/tables/tables_file_check.h"

#include "kernel/data/format.h"
#include "kernel/data/typeinfo/typeinfo.h"
#include "kernel/index/index_file.h"
#include "kernel/index/index_filecheck.h"
#include "kernel/index/index_filetree.h"
#include "kernel/lists/rowfile.h"
#include "kernel/lists/rowformat.h"
#include "kernel/run/errorcell.h"
#include "kernel/run/errors.h"
#include "kernel/tables/tables_file_guard.h"
#include "kernel/tables/tables_file_index.h"
#include "kernel/values/adt_kinds.h"
#include "kernel/values/owned.h"

namespace tarn {

namespace {

// Whether each node has the key of its row. The index is sound, and has as many nodes as there are rows.
std::string checkKeys(const TableHeader& header, std::int32_t index, const std::string& path) {
    FileTree tree;
    ListReader rows(header.rows);
    std::string wrong;
    if (!tree.open(path, IndexKeyShape(header, index), os::OpenMode::Read)) return "it cannot be opened";
    const bool walked = WalkInOrder(tree, [&](FileTree::Ref node) {
        KeyView key;
        const std::int32_t number = tree.row(node);
        const void* row = HasRow(header, number) ? rows.at(number - 1) : nullptr;
        if (row == nullptr ||
            !KeyOfRow(*static_cast<const RecordDescriptor*>(row), header.keyMaps[index], key))
            wrong = "a node has no row";
        else if (tree.order(key, node) != 0)
            wrong = "the key of a node is not that of its row";
        return wrong.empty();
    });
    return walked && tree.failure() == 0 ? "" : wrong.empty() ? "it cannot be read" : wrong;
}

std::string checkIndex(const TableHeader& header, std::int32_t index, const std::string& path) {
    const std::string wrong = CheckIndexFile(path, IndexKeyShape(header, index), header.rows.count);
    return wrong.empty() ? checkKeys(header, index, path) : wrong;
}

}  // namespace

bool HasAllGuardedRows(const TableDescriptor& t) {
    if (!HasGuardedRows(t)) return true;
    const ErrorCellAside aside;
    const TableHeader& header = HeaderOf(t);
    FileTree tree;
    RecordValue row;
    // The index may be of other rows.
    const auto isThere = [&](const RecordDescriptor& guarded) {
        KeyView key, own;
        FileTree::Ref node = 0;
        return KeyOfRow(guarded, header.keyMaps[0], key) && FindEqual(tree, key, node) && node != 0 &&
               HasRow(header, tree.row(node)) && ReadRow(header.rows, tree.row(node), row.get()) &&
               KeyOfRow(*row.get(), header.keyMaps[0], own) && tree.order(own, node) == 0;
    };
    return InitValue(row.get(), &RowShape(header), KindRecord) &&
           tree.open(IndexFileName(RowFileName(header.rows), 1), IndexKeyShape(header, 0),
                     os::OpenMode::Read) &&
           EachGuardedRow(t, isThere);
}

bool MissesGuardedRows(TableDescriptor& t, std::string_view fileName) {
    const ErrorCellAside aside;
    ListDescriptor& rows = HeaderOf(t).rows;
    bool created = false, misses = false;
    if (os::infoOf(std::string(fileName)).exists && OpenRows(rows, fileName, {}, created)) {
        misses = WithMemory([&] { return !HasAllGuardedRows(t); });
        DropRows(rows);
    }
    return misses;
}

std::string CheckIndexFiles(const TableDescriptor& t) {
    const OwnErrors errors;
    const TableHeader& header = HeaderOf(t);
    std::string wrong;
    const bool good = WithMemory([&] {
        const std::string file(RowFileName(header.rows));
        for (std::int32_t i = 0; wrong.empty() && i < IndexesOf(header); ++i) {
            wrong = checkIndex(header, i, IndexFileName(file, i + 1));
            if (!wrong.empty()) wrong = "table index " + std::to_string(i + 1) + ": " + wrong;
        }
        if (wrong.empty() && !HasAllGuardedRows(t))
            wrong = "table: a row that a deletion has moved is missing";
        return true;
    });
    OwnErrors::forget();
    return good ? wrong : "table: memory is short";
}

// The text is the lines of the fields, or the whole declaration of the row. Names of columns that are no
// identifiers stand in quotes there; the kinds are what counts here.
bool AcceptTypeText(const TableDescriptor& t, std::string text) {
    const RecordDescriptor* const row = &RowShape(HeaderOf(t));
    const auto matches = [&] {
        return TypeInfoMatchesValue(TypeInfoFixNames(text, MaxTypeInfoName), row) == 0;
    };
    if (text.empty() || matches()) return true;
    TypeInfoStripOuter(text, MaxTypeInfo);
    return matches() || Refuse(ERR_TABLE_TYPE);
}

std::string CheckTableFile(const TableDescriptor& t) {
    if (!IsTable(&t) || !IsHeldInFile(HeaderOf(t).rows)) return "table: not held in a file";
    return RowFileName(HeaderOf(t).rows).empty() ? "table: not open" : CheckValue(&t, KindTable);
}

}  // namespace tarn
