// SPDX-License-Identifier: Apache-2.0
//
// What one operation knows of an index file: the nodes that it has touched, as they stand in the file and as
// they are to be. index_filestate.cpp reads and changes nodes, index_filecommit.cpp writes them.
#pragma once

#include "kernel/index/index_filedisk.h"
#include "kernel/index/index_filelayout.h"
#include "kernel/index/index_filetree.h"
#include "os/tinylimits.h"

#include <algorithm>
#include <cstdint>
#include <string>
#include <vector>

namespace tarn {

// Records that are free are nodes here, too.
struct FileNode {
    std::int32_t number = 0;
    std::int32_t now[IndexNodeWords] = {}, was[IndexNodeWords] = {};
    std::uint32_t fresh = 0;  // of a record that is not in the file: its place in `fresh`, from 1
    std::int32_t parent = 0;  // while changes are written: the node that is linked to it anew
    bool pending = false;     // it is still to be written
    bool linksFit = false;    // the links lead to records, or nowhere
    bool sound = false;       // it can be a node of a tree

    [[nodiscard]] bool isFree() const { return now[WordBalance] == FreeNodeBalance; }
    [[nodiscard]] bool differs() const { return !std::equal(now, now + IndexNodeWords, was); }
};

struct FileTree::State {
    static constexpr std::size_t mostNodes = limits::MostIndexNodes;  // in memory, while nothing has changed
    // What is read of a record at once.
    static constexpr std::int32_t nearBytes = std::min(1024, IndexDisk::mostPeek);

    State() {}  // leaves the buffer of the disk as it is
    bool open(const std::string& path, const KeyLayout& keys, os::OpenMode mode);
    bool fail(std::int32_t code);  // false

    // A record; null after a failure. Valid until the next one is loaded.
    FileNode* load(Ref number);
    // A node of the tree.
    FileNode* live(Ref number);
    void change(FileNode& node, std::int32_t word, std::int32_t value);
    int order(const KeyView& key, Ref number);
    bool keyBytes(Ref number, std::string& bytes);
    void forgetNodes();

    Ref add(const KeyView& key, std::int32_t row);
    void release(Ref number);

    bool commit();
    bool revert();
    bool clear();

    IndexDisk disk;
    KeyLayout layout;
    std::int32_t nearKey = 0;  // the bytes of a key that stand in memory with its node
    std::int32_t failure = 0;
    std::int32_t records = 0, root = 0, firstFree = 0;
    // The same as they stand in the file, and as they did before the last commit.
    std::int32_t recordsInFile = 0, rootInFile = 0, firstFreeInFile = 0;
    std::int32_t rootBefore = 0, firstFreeBefore = 0;
    bool changed = false, committed = false, anyBalance = false;
    std::vector<FileNode> nodes;
    std::vector<std::string> fresh;  // whole records

private:
    std::uint32_t& placeOf(Ref number);
    FileNode* inMemory(Ref number);
    FileNode& enter(Ref number);
    FileNode* fetch(Ref number);
    int orderFar(const KeyPart& part, const IndexKeyField& field, Ref number, std::int32_t at);

    FileNode* loadFree(Ref number);
    bool takeFree(Ref& number);
    bool unlinkFree(const FileNode& free);
    bool linkFree(Ref number);

    std::int32_t writeChanges();
    std::int32_t writeFresh();
    std::int32_t writeHead(const FileNode& node);
    std::int32_t writeNodes();
    void orderNodes();
    void orderRoot(std::int32_t depth);
    void orderLinkTo(Ref number, std::int32_t depth);
    void orderNode(Ref number, std::int32_t depth);
    bool sinks(const FileNode& node, const FileNode& parent);
    std::int32_t writeFree();
    std::int32_t writeControl(Ref newRoot, Ref newFirstFree);
    std::int32_t finishCommit(bool wasOpen, std::int32_t code);
    void settle();

    std::vector<char> nearKeys;         // of nodes[i] at i * nearKey
    std::vector<std::uint32_t> places;  // by hash of the number: where in nodes, from 1; 0 for none
    Ref lastNumber = 0;                 // the node that was loaded last,
    std::uint32_t lastPlace = 0;        // where it stands
    std::vector<Ref> toWrite;           // in the order of their writing; 0 is the root
    bool rootPending = false;
};

}  // namespace tarn
