// SPDX-License-Identifier: Apache-2.0
//
// Looks at every byte of an index file that has a meaning. The records are read as they stand, not through a
// FileTree, so that each fault is told with its place.
#include "kernel/index/index_filecheck.h"

#include "kernel/index/index_filedisk.h"
#include "kernel/index/index_filelayout.h"
#include "kernel/index/index_tree.h"
#include "kernel/run/errors.h"
#include "kernel/run/runtime.h"

#include <algorithm>
#include <new>
#include <string>
#include <vector>

namespace tarn {

namespace {

std::string text(std::int64_t number) {
    return std::to_string(number);
}

bool isZero(const char* at, std::int32_t bytes) {
    return std::all_of(at, at + bytes, [](char c) { return c == 0; });
}

std::string codeText(std::int32_t code) {
    return "The file cannot be read: " + ErrorMessage(code) + ".";
}

class IndexCheck {
public:
    IndexCheck(const KeyLayout& layout, std::int32_t rows, const SeenNode& seen)
        : layout_(layout), rows_(rows), seen_(seen) {}

    std::string run(const std::string& path) {
        if (open(path) && checkHeader() && checkTree() && checkFree()) checkLeft();
        return wrong_;
    }

private:
    enum Use : std::uint8_t { Unseen, Linked, Free };
    struct Node {
        std::int32_t words[IndexNodeWords];
    };

    bool say(std::string what) {
        if (wrong_.empty()) wrong_ = std::move(what);
        return false;
    }

    bool open(const std::string& path);
    bool checkHeader();
    bool checkTree();
    bool checkNode(std::int32_t number, std::int32_t depth, std::int32_t& height);
    bool checkHead(std::int32_t number, const Node& node);
    bool checkKey(std::int32_t number, std::int32_t row);
    bool checkStrings(std::int32_t number, const char* key);
    bool checkOrder(std::int32_t number, const std::string& key);
    bool countRow(std::int32_t number, std::int32_t row);
    bool checkFree();
    bool checkLeft();
    bool read(std::int64_t offset, char* into, std::int32_t count);
    bool readHead(std::int32_t number, Node& node);
    bool hasRecord(std::int32_t link) const { return link >= 0 && link <= records_; }

    const KeyLayout& layout_;
    const std::int32_t rows_;
    const SeenNode& seen_;
    IndexDisk disk_;
    std::string wrong_;
    std::int32_t records_ = 0, root_ = 0, firstFree_ = 0, nodes_ = 0;
    std::vector<std::uint8_t> uses_;  // of record number i + 1
    std::vector<bool> rowSeen_;
    std::string before_, key_;  // the key of the node before, and of this one
    std::int32_t numberBefore_ = 0;
};

bool IndexCheck::read(std::int64_t offset, char* into, std::int32_t count) {
    if (count <= IndexDisk::mostPeek) {
        std::int32_t code = 0;
        const char* bytes = disk_.peek(offset, count, code);
        if (bytes == nullptr) return say(codeText(code));
        std::copy(bytes, bytes + count, into);
        return true;
    }
    const std::int32_t code = disk_.read(offset, into, count);
    return code == 0 || say(codeText(code));
}

bool IndexCheck::readHead(std::int32_t number, Node& node) {
    char head[IndexNodeHeadBytes];
    if (!read(IndexRecordAt(number, layout_.recordSize), head, IndexNodeHeadBytes)) return false;
    for (std::int32_t i = 0; i < IndexNodeWords; ++i) node.words[i] = WordAt(head + i * WordBytes);
    return true;
}

bool IndexCheck::open(const std::string& path) {
    const std::int32_t code = disk_.open(path, os::OpenMode::Read);
    if (code == ERR_FILE_VANISHED) return say("There is no such file.");
    if (code != 0) return say(codeText(code));
    const std::int64_t size = disk_.size();
    if (size < IndexHeaderBytes)
        return say("The file has " + text(size) + " bytes, fewer than its header (" + text(IndexHeaderBytes) +
                   ").");
    records_ = IndexRecordsOf(size, layout_.recordSize);
    if (records_ >= 0) return true;
    const std::int64_t over = (size - IndexHeaderBytes) % layout_.recordSize;
    return say("The file has " + text(over) + (over == 1 ? " byte" : " bytes") + " too many for records of " +
               text(layout_.recordSize) + ".");
}

bool IndexCheck::checkHeader() {
    char header[IndexHeaderBytes];
    const std::int32_t code = disk_.read(0, header, IndexHeaderBytes);
    if (code != 0) return say(codeText(code));
    if (WordAt(header) != IndexHeaderBytes)
        return say("The header says that it has " + text(WordAt(header)) + " bytes, not " +
                   text(IndexHeaderBytes) + ".");
    if (WordAt(header + WordBytes) != 0) return say("The reserved word of the header is not 0.");
    if (header[IndexTextAt - 1] != 0) return say("The name of the table file has no end.");
    if (header[IndexUnusedAt - 1] != 0) return say("The text of the key has no end.");
    if (!isZero(header + IndexUnusedAt, IndexControlAt - IndexUnusedAt))
        return say("The unused bytes of the header are not 0.");
    for (const std::int32_t word : {0, 1, 4, 5}) {
        if (WordAt(header + IndexControlAt + word * WordBytes) != 0)
            return say("Word " + text(word + 1) + " of the tree control record is not 0.");
    }
    const IndexControl control = ControlAt(header + IndexControlAt);
    root_ = control.root;
    firstFree_ = control.firstFree;
    if (!hasRecord(root_)) return say("The root is record " + text(root_) + " of " + text(records_) + ".");
    return hasRecord(firstFree_) ||
           say("The first free record is " + text(firstFree_) + " of " + text(records_) + ".");
}

// ---- the tree ----

bool IndexCheck::checkTree() {
    uses_.assign(static_cast<std::size_t>(records_), Unseen);
    if (rows_ >= 0) rowSeen_.assign(static_cast<std::size_t>(rows_), false);
    std::int32_t height = 0;
    if (!checkNode(root_, 0, height)) return false;
    if (rows_ < 0 || nodes_ == rows_) return true;
    const auto missing = std::find(rowSeen_.begin(), rowSeen_.end(), false) - rowSeen_.begin();
    return say("Row " + text(missing + 1) + " has no node.");
}

bool IndexCheck::checkNode(std::int32_t number, std::int32_t depth, std::int32_t& height) {
    height = 0;
    if (number == 0) return true;
    if (depth == MaxTreeDepth) return say("The tree is more than " + text(MaxTreeDepth) + " nodes high.");
    std::uint8_t& use = uses_[static_cast<std::size_t>(number) - 1];
    if (use != Unseen) return say("More than one link leads to node " + text(number) + ".");
    use = Linked;
    ++nodes_;
    Node node{};
    std::int32_t heights[2] = {0, 0};
    if (!readHead(number, node) || !checkHead(number, node)) return false;
    if (!checkNode(node.words[WordLeft], depth + 1, heights[0])) return false;
    if (!checkKey(number, node.words[WordRow])) return false;
    if (!checkNode(node.words[WordRight], depth + 1, heights[1])) return false;
    height = 1 + std::max(heights[0], heights[1]);
    return node.words[WordBalance] == heights[1] - heights[0] ||
           say("Node " + text(number) + " has balance " + text(node.words[WordBalance]) +
               ", but its subtrees are " + text(heights[0]) + " and " + text(heights[1]) + " high.");
}

bool IndexCheck::checkHead(std::int32_t number, const Node& node) {
    const std::int32_t balance = node.words[WordBalance];
    if (balance == FreeNodeBalance) return say("Node " + text(number) + " is linked and free.");
    if (balance < -1 || balance > 1)
        return say("Node " + text(number) + " has balance " + text(balance) + ".");
    if (node.words[2] != 0 || node.words[3] != 0)
        return say("The reserved words of node " + text(number) + " are not 0.");
    for (const std::int32_t word : {WordLeft, WordRight}) {
        if (!hasRecord(node.words[word]))
            return say("Node " + text(number) + " is linked to record " + text(node.words[word]) + " of " +
                       text(records_) + ".");
    }
    return true;
}

bool IndexCheck::checkStrings(std::int32_t number, const char* key) {
    for (std::int32_t i = 0; i < layout_.count; ++i) {
        const IndexKeyField& field = layout_.fields[i];
        if (field.kind == KindString) {
            const std::int32_t length = WordAt(key);
            const std::string of = "Key field " + text(i + 1) + " of node " + text(number);
            if (!FitsField(field, length))
                return say(of + " has " + text(length) + " characters of " +
                           text(field.bytes / CharacterWidth) + ".");
            const std::int32_t used = length * CharacterWidth;
            if (!isZero(key + WordBytes + used, field.bytes - used))
                return say(of + " is not 0 behind its text.");
        }
        key += PackedFieldBytes(field);
    }
    return true;
}

bool IndexCheck::checkOrder(std::int32_t number, const std::string& key) {
    if (numberBefore_ == 0) return true;
    DecodedKey before;
    DecodeKey(layout_, before_.data(), before);
    int order = 0;
    const char* field = key.data();
    for (std::int32_t i = 0; i < layout_.count && order == 0; ++i) {
        order = ComparePacked(before.view.parts[i], layout_.fields[i], field);
        field += PackedFieldBytes(layout_.fields[i]);
    }
    return order < 0 || say("The key of node " + text(number) + " does not come behind that of node " +
                            text(numberBefore_) + ".");
}

bool IndexCheck::countRow(std::int32_t number, std::int32_t row) {
    if (rows_ < 0) return true;
    if (row < 1 || row > rows_)
        return say("Node " + text(number) + " has row " + text(row) + " of " + text(rows_) + ".");
    const auto index = static_cast<std::size_t>(row) - 1;
    if (rowSeen_[index]) return say("Row " + text(row) + " has more than one node.");
    rowSeen_[index] = true;
    return true;
}

bool IndexCheck::checkKey(std::int32_t number, std::int32_t row) {
    const std::int32_t size = layout_.recordSize - IndexNodeHeadBytes;
    key_.resize(static_cast<std::size_t>(size));
    const std::int64_t offset = IndexRecordAt(number, layout_.recordSize) + IndexNodeHeadBytes;
    if (!read(offset, key_.data(), size) || !checkStrings(number, key_.data())) return false;
    if (!checkOrder(number, key_) || !countRow(number, row)) return false;
    if (seen_) {
        const std::string said = seen_(row, key_);
        if (!said.empty()) return say(said);
    }
    std::swap(before_, key_);
    numberBefore_ = number;
    return true;
}

// ---- other records ----

bool IndexCheck::checkFree() {
    std::int32_t before = 0;
    for (std::int32_t number = firstFree_; number != 0;) {
        Node node{};
        std::uint8_t& use = uses_[static_cast<std::size_t>(number) - 1];
        if (use == Linked) return say("Node " + text(number) + " is in the list of free records.");
        if (use == Free) return say("The list of free records comes back to record " + text(number) + ".");
        use = Free;
        if (!readHead(number, node)) return false;
        if (node.words[WordBalance] != FreeNodeBalance)
            return say("Free record " + text(number) + " has balance " + text(node.words[WordBalance]) + ".");
        if (node.words[WordLeft] != before)
            return say("Free record " + text(number) + " stands behind record " + text(before) + ", not " +
                       text(node.words[WordLeft]) + ".");
        if (!hasRecord(node.words[WordRight]))
            return say("Free record " + text(number) + " is linked to record " + text(node.words[WordRight]) +
                       " of " + text(records_) + ".");
        before = number;
        number = node.words[WordRight];
    }
    return true;
}

bool IndexCheck::checkLeft() {
    const auto unseen = std::find(uses_.begin(), uses_.end(), Unseen);
    if (unseen != uses_.end())
        return say("Record " + text(unseen - uses_.begin() + 1) + " is neither linked nor free.");
    return uses_.empty() || uses_.back() == Linked ||
           say("The last record, " + text(records_) + ", is free.");
}

}  // namespace

std::string CheckIndexFile(const std::string& path, const KeyView& shape, std::int32_t rows,
                           const SeenNode& seen) {
    KeyLayout layout;
    if (!LayoutOfKey(shape, layout)) return "The key cannot stand in a file.";
    try {
        return IndexCheck(layout, rows, seen).run(path);
    } catch (const std::bad_alloc&) {
        return "There is not enough memory to check the file.";
    }
}

bool IsPackedKey(const KeyView& key, std::string_view bytes) {
    KeyLayout layout;
    const auto size = static_cast<std::int32_t>(bytes.size());
    if (!LayoutOfKey(key, layout) || size != layout.recordSize - IndexNodeHeadBytes ||
        !HasFittingStrings(layout, bytes.data(), size))
        return false;
    const char* field = bytes.data();
    for (std::int32_t i = 0; i < layout.count; ++i) {
        if (ComparePacked(key.parts[i], layout.fields[i], field) != 0) return false;
        field += PackedFieldBytes(layout.fields[i]);
    }
    return true;
}

}  // namespace tarn
