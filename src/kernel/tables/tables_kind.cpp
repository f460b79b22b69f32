// SPDX-License-Identifier: Apache-2.0
//
// Tables as values: what the generic operations need of them.
#include "kernel/lists/list_access.h"
#include "kernel/lists/rowfile.h"
#include "kernel/run/errors.h"
#include "kernel/run/runtime.h"
#include "kernel/tables/table_access.h"
#include "kernel/tables/table_mirrors.h"
#include "kernel/tables/tables_file_check.h"
#include "kernel/tables/tables_file_index.h"
#include "kernel/tables/tables_ops_internal.h"
#include "kernel/values/adt_kinds.h"
#include "kernel/values/records.h"

#include <algorithm>
#include <cstring>
#include <string>

namespace tarn {

bool IsTable(const TableDescriptor* t) {
    return WholeHeader(t) != nullptr;
}

bool IsKeyMap(const RecordDescriptor& row, std::int32_t keyMap) {
    KeyView view;
    if (!KeyOfRow(row, keyMap, view)) return false;
    return std::all_of(view.parts, view.parts + view.count, [](const KeyPart& part) {
        return part.kind != KindArray || ReadAt<ArrayDescriptor>(part.field).maxlength == 0;
    });
}

bool MakeTable(TableDescriptor& t, ListDescriptor rows, const KeyMaps& keyMaps, std::string_view typeInfo) {
    t = {0, TagTable, 0, rows.maxlength, 0, 0};
    RecordDescriptor record{};
    TableHeader header{rows, {}, {}, {}};
    StringInit(&header.typeInfo, TypeInfoCapacity);
    for (RecordDescriptor& root : header.roots) IndexInit(&root);
    for (std::size_t i = 0; i < keyMaps.size(); ++i) header.keyMaps[i] = keyMaps[i];
    RecordInit(&record, TagRecord, TableHeaderKinds);
    if (header.typeInfo.data == 0 || record.data == 0 || !AllocateData(t, sizeof record)) {
        FreeData(record);
        FreeData(header.typeInfo);
        FreeValue(&header.rows, KindList);
        t = {};
        return false;
    }
    StringAssignView(&header.typeInfo, typeInfo);
    WriteAt(At(record.data), header);
    WriteAt(At(t.data), record);
    return true;
}

void EmptyTable(TableDescriptor& t) {
    TableHeader& header = HeaderOf(t);
    FreeTableTrees(header);
    EmptyList(header.rows);
    t.count = 0;
}

void FreeTable(TableDescriptor& t) {
    if (IsTable(&t)) {
        ReleaseTableIndexes(t);
        FreeTableTrees(HeaderOf(t));
        FreeValue(At(t.data), KindRecord);
    }
    FreeData(t);
}

namespace {

const TableDescriptor& tableAt(const void* value) {
    return *static_cast<const TableDescriptor*>(value);
}

bool isWhole(const TableDescriptor& t) {
    if (IsTable(&t)) return true;
    SetError(ERR_TABLE_TYPE);
    return false;
}

KeyMaps keyMapsOf(const TableHeader& header) {
    KeyMaps maps{};
    for (std::size_t i = 0; i < maps.size(); ++i) maps[i] = header.keyMaps[i];
    return maps;
}

// An empty table of the same shape.
bool shapeLike(TableDescriptor& made, const TableDescriptor& like) {
    const TableHeader& header = HeaderOf(like);
    ListDescriptor rows{};
    if (!InitValue(&rows, &header.rows, KindList)) return false;
    if (!MakeTable(made, rows, keyMapsOf(header), {})) return false;
    StringAssign(&HeaderOf(made).typeInfo, &header.typeInfo);
    return true;
}

bool sameRowType(const TableHeader& a, const TableHeader& b) {
    return keyMapsOf(a) == keyMapsOf(b) && SameShape(&RowShape(a), &RowShape(b), KindRecord);
}

bool isUnopened(const TableDescriptor& t) {
    const ListDescriptor& rows = HeaderOf(t).rows;
    return IsHeldInFile(rows) && RowFileName(rows).empty();
}

// The rows of a file with a tree for each index.
bool fillFromFile(TableDescriptor& made, const TableHeader& from) {
    ListReader rows(from.rows);
    const std::int32_t indexNumber = from.keyMaps[0] != 0 ? 1 : 0;
    for (std::int32_t i = 0; i < from.rows.count; ++i) {
        const auto* row = static_cast<const RecordDescriptor*>(rows.at(i));
        if (row != nullptr) TableAdd(&made, indexNumber, row);
        if (made.count != i + 1) return false;
    }
    return true;
}

bool fill(TableDescriptor& made, const TableHeader& from) {
    if (IsHeldInFile(from.rows)) return fillFromFile(made, from);
    TableHeader& header = HeaderOf(made);
    if (!CopyValue(&from.rows, &header.rows, KindList)) return false;
    for (std::int32_t i = 0; i < MaxIndexes; ++i) {
        if (!CopyTableTree(from, i, header.roots[i])) return false;
    }
    made.count = header.rows.count;
    return true;
}

// ---- the operations ----

bool initTable(void* target, const void* like) {
    TableDescriptor made{};
    const bool good = isWhole(tableAt(like)) && shapeLike(made, tableAt(like));
    std::memcpy(target, &made, sizeof made);
    return good;
}

// A table that is held in a file and not open has nothing to copy.
bool acceptCopy(const TableDescriptor& from, const TableDescriptor& to) {
    const bool nothing = isUnopened(from) && isUnopened(to);
    if (!nothing && (!AcceptTable(&from) || !AcceptTable(&to))) return false;
    if (!sameRowType(HeaderOf(from), HeaderOf(to))) return Refuse(ERR_TABLE_TYPE);
    const bool fits = to.maxlength == UNBOUNDED || from.count <= to.maxlength;
    return fits || Refuse(ERR_FIXED_TABLE);
}

bool copyTable(const void* source, void* target) {
    const TableDescriptor& from = tableAt(source);
    auto& to = *static_cast<TableDescriptor*>(target);
    if (!isWhole(from) || !isWhole(to) || !acceptCopy(from, to)) return false;
    if (isUnopened(to)) return true;
    if (IsHeldInFile(HeaderOf(to).rows)) return CopyIntoFileTable(from, to);
    TableDescriptor made{};
    if (!shapeLike(made, to)) return false;
    if (!fill(made, HeaderOf(from))) {
        FreeTable(made);
        return false;
    }
    FreeTable(to);
    to = made;
    return true;
}

void freeTable(void* value) {
    FreeTable(*static_cast<TableDescriptor*>(value));
}

bool equalTables(const void* a, const void* b) {
    const TableDescriptor &left = tableAt(a), &right = tableAt(b);
    return IsTable(&left) && IsTable(&right) &&
           EqualValues(&HeaderOf(left).rows, &HeaderOf(right).rows, KindList);
}

bool sameTableShape(const void* a, const void* b) {
    const TableDescriptor &left = tableAt(a), &right = tableAt(b);
    return IsTable(&left) && IsTable(&right) && left.maxlength == right.maxlength &&
           HeaderOf(left).rows.tag == HeaderOf(right).rows.tag &&
           sameRowType(HeaderOf(left), HeaderOf(right));
}

// ---- checking ----

bool isLinkOf(const RecordDescriptor& link, const KeyView& key) {
    if (link.data == 0) return link.tag == TagRecord && link.size == 0;
    const FieldKinds kinds = NodeKinds(key);
    return link.tag == TagRecord && link.size == NodeHeadBytes + KeyBytes(key) &&
           std::memcmp(&link.kinds, &kinds, sizeof kinds) == 0;
}

// What is wrong with a node, whose key must come behind that of `before` (0 for none).
std::string checkNode(const TableHeader& header, std::int32_t index, Offset node, Offset before) {
    const std::int32_t number = NodeRow(node);
    if (!HasRow(header, number)) return "a node has no row";
    KeyView rowKey;
    if (!KeyOfRow(RowAt(header, number), header.keyMaps[index], rowKey)) return "a row has no key";
    for (const int at : {16, 52}) {
        if (!isLinkOf(ReadAt<RecordDescriptor>(At(node) + at), rowKey)) return "a link is damaged";
    }
    if (ReadAt<std::int64_t>(At(node) + 8) != 0) return "the reserved words of a node are not 0";
    const FieldKinds kinds = NodeKinds(rowKey);
    const KeyView key = KeyOfNode(NodeKey(node), kinds);
    if (!SameKeyShape(key, rowKey)) return "the key of a node has another shape than its row's";
    if (CompareKeys(key, rowKey) != 0) return "the key of a node is not that of its row";
    if (before != 0 && CompareKeys(KeyOfNode(NodeKey(before), kinds), key) >= 0)
        return "the keys are out of order";
    return {};
}

std::string checkTree(const TableHeader& header, std::int32_t index, const RecordDescriptor& root) {
    KeyView shape;
    KeyOfRow(RowShape(header), header.keyMaps[index], shape);
    if (!isLinkOf(root, shape)) return "the root is no link";
    const MemoryTree tree(const_cast<RecordDescriptor&>(root));
    std::string wrong;
    std::int32_t count = 0;
    Offset before = 0;
    const bool walked = WalkInOrder(tree, [&](Offset node) {
        wrong = checkNode(header, index, node, before);
        before = node;
        ++count;
        return wrong.empty();
    });
    if (!walked) return wrong.empty() ? "the links are damaged" : wrong;
    if (count != header.rows.count) return "there are not as many nodes as rows";
    std::int64_t left = tree.most();
    std::int32_t height = 0;
    Offset bad = 0;
    if (!MeasureHeight(tree, tree.root(), left, 0, height, bad)) return "the links are damaged";
    return bad == 0 ? "" : "a balance is not that of its subtrees";
}

// A tree without nodes is looked at as it would be shown.
std::string checkIndex(const TableHeader& header, std::int32_t index) {
    if (!IsNodeless(header, index)) return checkTree(header, index, header.roots[index]);
    RecordDescriptor shown{};
    if (!CopyTableTree(header, index, shown)) return "memory is short";
    const std::string wrong = checkTree(header, index, shown);
    FreeTree(shown);
    return wrong;
}

std::string checkHeader(const TableDescriptor& t, const TableHeader& header) {
    if (t.maxlength != header.rows.maxlength) return "table: another capacity than its rows";
    if (t.count != header.rows.count) return "table: another count than its rows";
    if (header.typeInfo.tag != TagString || header.typeInfo.maxlength != TypeInfoCapacity)
        return "table: the type text is no string of its capacity";
    const std::int32_t indexes = IndexesOf(header);
    for (std::int32_t i = 0; i < MaxIndexes; ++i) {
        if (i < indexes && !IsKeyMap(RowShape(header), header.keyMaps[i]))
            return "table: a key map does not fit the rows";
        if (i >= indexes &&
            (header.keyMaps[i] != 0 || !isLinkOf(header.roots[i], {}) || header.roots[i].data != 0))
            return "table: something stands in the place of an index that is not there";
    }
    return {};
}

std::string checkTable(const void* value) {
    const TableDescriptor& t = tableAt(value);
    if (!IsTable(&t)) return "table: no row header";
    const TableHeader& header = HeaderOf(t);
    std::string wrong = CheckValue(&header.rows, KindList);
    if (wrong.empty()) wrong = checkHeader(t, header);
    if (wrong.empty()) wrong = CheckValue(&header.typeInfo, KindString);
    if (wrong.empty() && IsHeldInFile(header.rows)) return isUnopened(t) ? wrong : CheckIndexFiles(t);
    for (std::int32_t i = 0; wrong.empty() && i < IndexesOf(header); ++i) {
        wrong = checkIndex(header, i);
        if (!wrong.empty()) wrong = "table index " + std::to_string(i + 1) + ": " + wrong;
    }
    return wrong.empty() ? CheckTableMirrors(HeaderOf(t)) : wrong;
}

// A table that is held in a file is not touched: its rows are not here.
void emptyTable(void* value) {
    auto& t = *static_cast<TableDescriptor*>(value);
    if (IsTable(&t) && !IsHeldInFile(HeaderOf(t).rows)) EmptyTable(t);
}

const ListDescriptor* rowsOfTable(const void* value) {
    return TableRows(static_cast<const TableDescriptor*>(value));
}

}  // namespace

const KindOperations TableOperations = {initTable,      copyTable,  freeTable,  equalTables,
                                        sameTableShape, checkTable, emptyTable, rowsOfTable};

}  // namespace tarn
