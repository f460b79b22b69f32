// SPDX-License-Identifier: Apache-2.0
//
// Index files: the nodes of an index on disk. All integers are big-endian:
//
//   offset  size  field
//        0     4  size of this header, 1104
//        4     4  reserved, 0
//        8    41  the table file's name without its folder, NUL-terminated, at most 40 characters
//       49  1025  a "record" type information text of the key fields, NUL-terminated
//     1074     6  unused, 0
//     1080    24  six words: 0, 0, the root's record number, the first free record, 0, 0
//     1104     n  node records; number k stands at 1104 + (k - 1) * record size
//
//   a node     6 words (row, balance, 0, 0, left, right; a record number, or 0 for none), then the key fields
//   a key      boolean, enum 1; integer 4; fixed 8; real 8, as in memory; string 4 of its length and its
//              capacity of characters, the tail zero; array of characters its bytes
//   a free     balance -999; left is the free record before it, right the one behind it
//
// A file is open for one operation at a time: a FileTree is what one operation sees of it. Nodes are read
// when they are touched, and checked. What an operation changes stays in memory until `commit` writes it, so
// that an operation that fails has changed nothing; what was written can be taken back by `revert`.
//
// When the process dies in the commit of one inserted or deleted key, links lead to nodes, and a search finds
// its key or notices that a change is half done (763). Where several change together, add nodes before others
// are released: a record that is used again loses its old place first.
//
// Cost: at most one read of a node that is touched for the first time (of a large one its first kilobyte);
// one write of each that has changed. A FileTree that only reads keeps a bounded number of nodes in memory.
#pragma once

#include "kernel/index/index_keys.h"
#include "kernel/index/index_tree.h"
#include "os/files.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

namespace tarn {

inline constexpr std::int32_t IndexHeaderBytes = 1104, IndexNodeHeadBytes = 24, MaxIndexTableName = 40,
                              MaxIndexText = 1024, FreeNodeBalance = -999;

// "folder/orders.tab" and 2: "folder/orders.i2". A name without an extension gets one. The number of a
// scratch file, whose extension begins with '~', stands behind that: "orders.~sv2", since orders.tab may have
// indexes.
std::string IndexFileName(std::string_view tableFile, std::int32_t index);
// A file beside an index: "~n" and "orders.i2" give "orders.~n2", and "orders.~sv2" gives "orders.~sv~n2". A
// name that would be longer than a disk takes is shortened, and told from others by a checksum.
std::string MarkedIndexName(std::string_view indexFile, std::string_view mark);
// The bytes of a node record with a key of this shape; 0 for one that cannot stand in a file: a string
// without a capacity, or more than MostPackedBytes (data/packing.h).
std::int32_t IndexRecordSize(const KeyView& key);

// Makes an empty index file, which takes the place of one that may be there: whole, and not written through
// a link. It gets the permissions of the table file, and its owner where this user can give it away. False,
// with the error set (652, 654, 657), when that failed: what stood there is as it was. Names and texts that
// are too long are cut, a text behind a line.
bool CreateIndexFile(const std::string& path, std::string_view tableFile, std::string_view keyText);
// Whether a file is such as CreateIndexFile makes.
bool IsEmptyIndexFile(const std::string& path, std::string_view tableFile, std::string_view keyText);
// Whether an index can be emptied where it stands: it begins as one, may be written and has no second name.
bool CanEmptyIndexFile(const std::string& path);
// Empties one. Needs neither a folder that may be written nor room on the disk. Sets no error: what fails may
// be half done, and a new file can take its place.
bool EmptyIndexFile(const std::string& path, std::string_view tableFile, std::string_view keyText);
// Moves an index to the name that belongs to another table file, and writes that file's name into it.
bool RenameIndexFile(const std::string& from, const std::string& to, std::string_view tableFile);
// The text at offset 49; empty when the file is no index file.
std::string IndexFileText(const std::string& path);
// The name at offset 8; likewise.
std::string IndexTableName(const std::string& path);

struct KeyLayout;  // index_filelayout.h

// Operations give false when they failed; the error is then set: 653 the file is gone, 651 and 652 it cannot
// be read or written, 654 the disk is full, 656 its size is not that of whole nodes, 636 a key that does not
// fit, 763 damage, 802.
class FileTree {
public:
    using Ref = std::int32_t;  // a record number

    FileTree();
    ~FileTree();  // closes; drops what was not committed
    FileTree(FileTree&&) noexcept;
    FileTree& operator=(FileTree&&) noexcept;

    // Opens and reads the header. `shape` is a key of the index's kinds, sizes and capacities; it is not
    // kept.
    bool open(const std::string& path, const KeyView& shape, os::OpenMode mode);
    bool open(const std::string& path, const KeyLayout& layout, os::OpenMode mode);
    // Closes the file. When that fails, what was written may not have arrived: the last commit is then taken
    // back.
    bool close();
    // Leaves the file open, when this tree is closed, for the next one of the same file. One file is kept so
    // at a time: opening another closes it, and CloseKeptIndex (index_filedisk.h).
    void keep();
    // Closes the file, keeps what was read and changed: commit and revert open it again. Anything else that
    // needs the file then fails (661).
    void suspend();
    [[nodiscard]] bool isOpen() const;
    // 0, or the error of a read that failed or of damage that was found, which is then set. The tree then
    // looks empty below such a place, so that every search and change comes to its end; what it found does
    // not count.
    [[nodiscard]] std::int32_t failure() const;
    // From now on balances are what they are, right or wrong: for measuring a tree, not for changing it.
    void takeAnyBalance();

    // ---- as index_tree.h wants a tree ----

    [[nodiscard]] Ref root() const;
    void setRoot(Ref node);
    [[nodiscard]] Ref child(Ref node, int side) const;
    void setChild(Ref node, int side, Ref child);
    [[nodiscard]] int balance(Ref node) const;
    void setBalance(Ref node, int balance);
    // A field at a time, up to the first difference. The key has the index's kinds; its strings may be of any
    // capacity.
    [[nodiscard]] int order(const KeyView& key, Ref node) const;
    [[nodiscard]] static bool checking() { return true; }
    [[nodiscard]] static bool dropsChanges() { return true; }
    [[nodiscard]] bool reachable(Ref node) const;
    [[nodiscard]] bool sound(Ref node) const;
    [[nodiscard]] std::int64_t most() const;

    // ---- nodes ----

    [[nodiscard]] std::int32_t row(Ref node) const;
    void setRow(Ref node, std::int32_t row);
    // Copies the key of a node into a key record of the index's shape (636). False (and the error set) when
    // memory is short or the bytes are damaged (763).
    bool readKey(Ref node, RecordDescriptor& key) const;
    // The bytes of a key as they stand in the file.
    bool readKeyBytes(Ref node, std::string& bytes) const;
    // A node that is not linked yet: the first free record, or a new one at the end. 0 after a failure.
    Ref add(const KeyView& key, std::int32_t row);
    // Frees a node that is not linked any more: the last record of the file goes, with all free ones before
    // it; another becomes the first of the free list.
    void release(Ref node);
    [[nodiscard]] std::int32_t records() const;  // nodes and free records

    // Writes what has changed: new records first, then nodes, then the control record; then cuts the file.
    // When that fails the file is as it was before, as far as it can be written.
    bool commit();
    // Takes back the last commit; what was changed since is dropped.
    bool revert();
    // Removes all nodes at once, in the file too. This cannot be taken back.
    bool clear();

    struct State;  // index_filestate.h

private:
    std::unique_ptr<State> state_;
};

using FilePath = TreePath<FileTree::Ref>;

// The path to a key, of the index's kinds, or to its place. 763 and the codes of reading.
bool FindFileKey(const FileTree& tree, const KeyView& key, FilePath& path);

// "" or what is wrong with an index file: sizes, header, links, balances, order, the free list, nodes that
// are neither linked nor free. `rows` -1, or the number of rows: each must have exactly one node. `seen`,
// unless empty, is called with the row and key bytes of each node in order; what it gives, unless "", is the
// result. No error is set.
using SeenNode = std::function<std::string(std::int32_t row, std::string_view key)>;
std::string CheckIndexFile(const std::string& path, const KeyView& shape, std::int32_t rows,
                           const SeenNode& seen = {});

}  // namespace tarn
