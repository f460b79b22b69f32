// SPDX-License-Identifier: Apache-2.0
#include "kernel/tables/tables_file_index.h"

#include "kernel/data/typeinfo/typeinfo.h"
#include "kernel/index/index_file.h"
#include "kernel/index/index_filedisk.h"
#include "kernel/index/index_filetree.h"
#include "kernel/lists/rowfile.h"
#include "kernel/lists/rowformat.h"
#include "kernel/run/errors.h"
#include "kernel/run/fileerrors.h"
#include "kernel/tables/tables_file_guard.h"
#include "kernel/tables/tables_file_hold.h"
#include "kernel/tables/tables_file_places.h"

namespace tarn {

// ---- shapes and texts ----

KeyView IndexKeyShape(const TableHeader& header, std::int32_t index) {
    KeyView shape;
    KeyOfRow(RowShape(header), header.keyMaps[index], shape);
    return shape;
}

namespace {

// For a table without a type text: the fields are named by their numbers in a row.
std::string textOfKinds(const TableHeader& header, std::int32_t index) {
    std::string fields;
    auto map = static_cast<std::uint32_t>(header.keyMaps[index]);
    const KeyView shape = IndexKeyShape(header, index);
    for (std::int32_t i = 0; i < shape.count; ++i, map <<= 8U) {
        const std::string name = TypeInfoDefaultName({}, static_cast<std::int32_t>(map >> 24U));
        fields += TypeInfoFromValue(shape.parts[i].field, shape.parts[i].kind, name);
    }
    TypeInfoChangeIndent(1, fields, MaxTypeInfo);
    return "Index" + std::to_string(index + 1) + " : record\n" + fields + "end record\n";
}

}  // namespace

std::string IndexKeyText(const TableDescriptor& t, std::int32_t index) {
    const std::string text = TypeInfoIndexText(&t, index + 1);
    return text.empty() ? textOfKinds(HeaderOf(t), index) : text;
}

bool AcceptIndexKeys(const TableDescriptor& t) {
    const TableHeader& header = HeaderOf(t);
    for (std::int32_t i = 0; i < IndexesOf(header); ++i) {
        if (IndexRecordSize(IndexKeyShape(header, i)) == 0) return Refuse(ERR_TYPE_NOT_STORABLE);
    }
    return true;
}

// ---- entries ----

bool RefuseTree(const FileTree& tree) {
    return Refuse(tree.failure() != 0 ? tree.failure() : std::int32_t{ERR_INDEX_TYPE});
}

namespace {

bool whole(const FileTree& tree) {
    return tree.failure() == 0 || RefuseTree(tree);
}

}  // namespace

bool FindEntry(const FileTree& tree, const KeyView& key, std::int32_t row, FilePath& path) {
    if (!FindFileKey(tree, key, path)) return false;
    path.found = path.found && tree.row(path.nodes[path.at]) == row;
    return whole(tree);
}

bool InsertEntry(FileTree& tree, const KeyView& key, std::int32_t row) {
    FilePath path;
    if (!FindFileKey(tree, key, path)) return false;
    if (path.found) return Refuse(ERR_DUPLICATE_FIELDS);
    const FileTree::Ref node = tree.add(key, row);
    if (node == 0) return RefuseTree(tree);
    LinkAt(tree, path, node);
    return whole(tree);
}

bool RemoveEntry(FileTree& tree, const KeyView& key, std::int32_t row) {
    FilePath path;
    if (!FindEntry(tree, key, row, path)) return false;
    if (!path.found) return true;
    const FileTree::Ref node = path.nodes[path.at];
    if (!PrepareUnlink(tree, path)) return RefuseTree(tree);
    UnlinkAt(tree, path);
    tree.release(node);
    return whole(tree);
}

bool RenumberEntry(FileTree& tree, const KeyView& key, std::int32_t row, std::int32_t newRow) {
    FilePath path;
    if (!FindEntry(tree, key, row, path)) return false;
    if (path.found) tree.setRow(path.nodes[path.at], newRow);
    return whole(tree);
}

// ---- changes of several indexes ----

IndexChanges::IndexChanges(const TableDescriptor& t)
    : header_(HeaderOf(t)), file_(RowFileName(HeaderOf(t).rows)) {}

FileTree* IndexChanges::open(std::int32_t index) {
    const std::string path = IndexFileName(file_, index + 1);
    if (!trees_[index].open(path, IndexKeyShape(header_, index), os::OpenMode::ReadWrite)) return nullptr;
    opened_[count_++] = index;
    return &trees_[index];
}

bool IndexChanges::commit() {
    for (std::int32_t i = count_ - 1; i >= 0; --i) {
        FileTree& tree = trees_[opened_[i]];
        if (tree.commit() && tree.close()) continue;
        revert(i + 1);
        return false;
    }
    return true;
}

void IndexChanges::revert(std::int32_t from) {
    for (std::int32_t i = from; i < count_; ++i) trees_[opened_[i]].revert();
}

void IndexChanges::revert() {
    revert(0);
}

// ---- exchange ----

namespace {

void removeFile(const std::string& path) {
    os::files().remove(path);
}

}  // namespace

IndexExchange::IndexExchange(const TableDescriptor& t)
    : file_(RowFileName(HeaderOf(t).rows)), count_(IndexesOf(HeaderOf(t))) {}

IndexExchange::~IndexExchange() {
    try {
        putBack();
    } catch (...) {  // the end of the process, in a test
    }
}

std::string IndexExchange::name(std::int32_t index) const {
    return IndexFileName(file_, index + 1);
}
std::string IndexExchange::asideName(std::int32_t index) const {
    return MarkedIndexName(name(index), "~i");
}
std::string IndexExchange::newName(std::int32_t index) const {
    return MarkedIndexName(name(index), "~n");
}

// A file that a death has left before its first bytes must not take the place of the one that stepped aside for it, which
// alone knows the key.
os::FileError IndexExchange::moveAside(std::int32_t index) const {
    const os::FileInfo begun = os::infoOf(name(index));
    if (begun.exists && begun.size < IndexHeaderBytes && os::infoOf(asideName(index)).exists)
        return os::files().remove(name(index));
    return os::files().rename(name(index), asideName(index));
}

// A folder stays where it is, as it could not be removed later.
bool IndexExchange::setAside() {
    aside_ = 0;
    if (!AcceptIndexPlaces(file_, count_)) return false;
    for (std::int32_t i = 0; i < count_; ++i) {
        if (os::infoOf(name(i)).folder) return Refuse(FileWriteCode(os::FileError::IsFolder));
    }
    for (; aside_ < count_; ++aside_) {
        LetGoOfIndex(name(aside_));
        const os::FileError error = moveAside(aside_);
        there_[aside_] = error == os::FileError::None;
        if (there_[aside_] || IsMissing(error)) continue;
        Refuse(FileWriteCode(error));
        putBack();
        return false;
    }
    return true;
}

void IndexExchange::putBack() {
    for (; aside_ > 0; --aside_) {
        const std::int32_t index = aside_ - 1;
        LetGoOfIndex(name(index));
        if (there_[index])
            os::files().rename(asideName(index), name(index));
        else
            removeFile(name(index));
    }
}

void IndexExchange::drop() {
    for (; aside_ > 0; --aside_) removeFile(asideName(aside_ - 1));
}

bool IndexExchange::install(std::int32_t index) {
    LetGoOfIndex(name(index));
    return os::files().rename(newName(index), name(index)) == os::FileError::None;
}

void IndexExchange::dropNew() {
    for (std::int32_t i = 0; i < count_; ++i) removeFile(newName(i));
}

// ---- opening and closing tables ----

bool MakeTableIndexes(TableDescriptor& t) {
    const TableHeader& header = HeaderOf(t);
    const std::string file(RowFileName(header.rows));
    const std::int32_t count = IndexesOf(header);
    for (std::int32_t i = 0; i < count; ++i) {
        if (CreateIndexFile(IndexFileName(file, i + 1), file, IndexKeyText(t, i))) continue;
        for (std::int32_t made = 0; made < i; ++made) removeFile(IndexFileName(file, made + 1));
        return false;
    }
    return true;
}

namespace {

// Whether it is so with the name and the text of each index.
template <class Test>
bool allIndexes(const TableDescriptor& t, const Test& test) {
    const std::string file(RowFileName(HeaderOf(t).rows));
    for (std::int32_t i = 0; i < IndexesOf(HeaderOf(t)); ++i) {
        if (!test(IndexFileName(file, i + 1), file, IndexKeyText(t, i))) return false;
    }
    return true;
}

bool emptyIndex(const std::string& name, const std::string& file, const std::string& text) {
    return IsEmptyIndexFile(name, file, text) || EmptyIndexFile(name, file, text);
}

}  // namespace

bool CanEmptyTableIndexes(const TableDescriptor& t) {
    return allIndexes(t, [](const std::string& name, const auto&...) { return CanEmptyIndexFile(name); });
}

bool StartTableIndexes(TableDescriptor& t) {
    if (allIndexes(t, IsEmptyIndexFile)) return true;
    if (!AcceptIndexPlaces(RowFileName(HeaderOf(t).rows), IndexesOf(HeaderOf(t)))) return false;
    if (CanEmptyTableIndexes(t) && allIndexes(t, emptyIndex)) return true;
    IndexExchange exchange(t);
    if (!exchange.setAside() || !MakeTableIndexes(t)) return false;
    exchange.drop();
    return true;
}

std::int32_t IndexSizeError(const std::string& path, std::int32_t recordSize, std::int32_t rows) {
    os::FileInfo info;
    const os::FileError error = os::files().info(path, info);
    if (error != os::FileError::None) return FileReadCode(error);
    const std::int64_t nodes = info.size - IndexHeaderBytes;
    const bool good = info.exists && !info.folder && !info.special && nodes >= 0 && nodes % recordSize == 0 &&
                      nodes / recordSize >= rows;
    return good ? 0 : std::int32_t{ERR_INDEX_FILE_SIZE};
}

bool AcceptTableIndexes(TableDescriptor& t) {
    const TableHeader& header = HeaderOf(t);
    const std::string file(RowFileName(header.rows));
    for (std::int32_t i = 0; i < IndexesOf(header); ++i) {
        const std::int32_t recordSize = IndexRecordSize(IndexKeyShape(header, i));
        const std::string path = IndexFileName(file, i + 1);
        const std::int32_t error = IndexSizeError(path, recordSize, header.rows.count);
        if (error != 0) return Refuse(error);
        if (NamesOtherTable(path, file)) return Refuse(ERR_INDEX_FILE_SIZE);
    }
    return true;
}

namespace {

// Files that are brought to the disk together: it begins with all of them before the first is waited for.
class SyncedFiles {
public:
    void start(const std::string& path) {
        One& one = files_[count_++];
        one.opened = os::files().open(path, os::OpenMode::Read, 0, one.handle);
        if (one.opened == os::FileError::None) os::files().startSync(one.handle);
    }
    // Closes them all. 0, or the first code.
    std::int32_t finish() {
        std::int32_t first = 0;
        for (std::int32_t i = 0; i < count_; ++i) {
            const std::int32_t code = finish(files_[i]);
            if (first == 0) first = code;
        }
        count_ = 0;
        return first;
    }

private:
    struct One {
        os::Handle handle = -1;
        os::FileError opened = os::FileError::None;
    };
    static std::int32_t finish(const One& one) {
        if (one.opened != os::FileError::None)
            return IsMissing(one.opened) ? std::int32_t{ERR_FILE_VANISHED} : FileReadCode(one.opened);
        const os::FileError synced = os::files().sync(one.handle);
        os::files().close(one.handle);
        return FileWriteCode(synced);
    }
    One files_[MaxIndexes];
    std::int32_t count_ = 0;
};

}  // namespace

bool SyncTableIndexes(const TableDescriptor& t) {
    const TableHeader& header = HeaderOf(t);
    const std::string file(RowFileName(header.rows));
    SyncedFiles files;
    StartRowSync(header.rows);
    for (std::int32_t i = 0; i < IndexesOf(header); ++i) files.start(IndexFileName(file, i + 1));
    const std::int32_t code = files.finish();
    return code == 0 || Refuse(code);
}

void ReleaseTableIndexes(const TableDescriptor& t) {
    const ListDescriptor& rows = HeaderOf(t).rows;
    if (!IsHeldInFile(rows)) return;
    ReleaseTableFiles(t);
    if (RowFileName(rows).empty()) return;
    WithMemory([&] {
        if (IsScratchFile(rows)) return RemoveIndexFiles(RowFileName(rows)), true;
        if (!os::infoOf(std::string(RowFileName(rows))).exists) return true;
        const bool synced = SyncTableIndexes(t);
        return EndGuard(t) && synced;
    });
}

}  // namespace tarn
