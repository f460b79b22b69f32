// SPDX-License-Identifier: Apache-2.0
//
// The nodes of an index file (index_file.h tells its format), as one operation sees them.
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
#include <memory>
#include <string>

namespace tarn {

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
    // Closes the file, keeps what was read and changed: commit and revert open it again. Anything else that
    // needs the file then fails (661). When closing fails, what was written may not have arrived: the last commit
    // is then taken back.
    bool close();
    // Leaves the file open, when this tree is closed, for the next one of the same file. One file is left so
    // at a time: opening another closes it, and LetGoOfIndex (index_filedisk.h).
    void leaveOpen();
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

}  // namespace tarn
