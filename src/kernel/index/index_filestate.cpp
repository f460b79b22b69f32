// SPDX-License-Identifier: Apache-2.0
//
// Reading and changing nodes, in memory. Whatever a damaged file says, a node that is handed on is one of the
// file's records with links inside the file; a way down is bounded by those who walk it.
#include "kernel/index/index_filestate.h"

#include "kernel/run/errors.h"
#include "kernel/run/runtime.h"

#include <algorithm>
#include <cstring>
#include <new>

namespace tarn {

namespace {

constexpr std::size_t firstPlaces = 128, firstNodes = 32;  // more than a way down; a power of two for places

std::size_t hashOf(std::int32_t number) {
    return (static_cast<std::uint32_t>(number) * 2654435769U) >> 8U;
}

bool hasRange(std::int32_t link, std::int32_t records) {
    return link >= 0 && link <= records;
}

}  // namespace

// ---- opening ----

bool FileTree::State::fail(std::int32_t code) {
    if (failure == 0) failure = code;
    SetError(code);
    return false;
}

bool FileTree::State::open(const std::string& path, const KeyLayout& keys, os::OpenMode mode) {
    forgetNodes();
    fresh.clear();
    failure = records = root = firstFree = recordsInFile = rootInFile = firstFreeInFile = 0;
    changed = committed = anyBalance = false;
    layout = keys;
    nearKey = std::min(layout.recordSize, nearBytes) - IndexNodeHeadBytes;
    if (layout.recordSize <= IndexNodeHeadBytes) return fail(ERR_INDEX_VALUE);
    std::int32_t code = disk.open(path, mode);
    if (code != 0) return fail(code);
    recordsInFile = IndexRecordsOf(disk.size(), layout.recordSize);
    if (recordsInFile < 0) return recordsInFile = 0, fail(ERR_INDEX_FILE_SIZE);
    disk.useRecords(layout.recordSize, IndexNodeHeadBytes + nearKey);
    constexpr std::int32_t controlBytes = IndexControlWords * WordBytes;
    const char* control = disk.peekKnown(IndexControlAt, controlBytes);
    if (control == nullptr) {
        code = disk.readFront();
        const char* const header = code == 0 ? disk.peek(0, WordBytes, code) : nullptr;
        if (header == nullptr) return fail(code);
        if (WordAt(header) != IndexHeaderBytes) return fail(ERR_INDEX_TYPE);
        control = disk.peek(IndexControlAt, controlBytes, code);
    }
    if (control == nullptr) return fail(code);
    const IndexControl words = ControlAt(control);
    root = rootInFile = words.root;
    firstFree = firstFreeInFile = words.firstFree;
    records = recordsInFile;
    return (hasRange(root, records) && hasRange(firstFree, records)) || fail(ERR_INDEX_TYPE);
}

// ---- nodes in memory ----

void FileTree::State::forgetNodes() {
    nodes.clear();
    nearKeys.clear();
    std::fill(places.begin(), places.end(), 0);
    lastNumber = 0;
}

std::uint32_t& FileTree::State::placeOf(Ref number) {
    const std::size_t mask = places.size() - 1;
    std::size_t at = hashOf(number) & mask;
    while (places[at] != 0 && nodes[places[at] - 1].number != number) at = (at + 1) & mask;
    return places[at];
}

// The node with this number, a new one if it is not there yet.
FileNode& FileTree::State::enter(Ref number) {
    if (nodes.capacity() == 0) {
        nodes.reserve(firstNodes);
        nearKeys.reserve(firstNodes * static_cast<std::size_t>(nearKey));
    }
    if (places.size() < 2 * (nodes.size() + 1)) {
        places.assign(std::max(firstPlaces, places.size() * 2), 0);
        for (std::uint32_t i = 0; i < nodes.size(); ++i) placeOf(nodes[i].number) = i + 1;
    }
    std::uint32_t& place = placeOf(number);
    if (place == 0) {
        nearKeys.resize((nodes.size() + 1) * static_cast<std::size_t>(nearKey));
        nodes.emplace_back().number = number;
        place = static_cast<std::uint32_t>(nodes.size());
    }
    lastNumber = number;
    lastPlace = place - 1;
    return nodes[lastPlace];
}

FileNode* FileTree::State::fetch(Ref number) {
    std::int32_t code = 0;
    const char* bytes =
        disk.peek(IndexRecordAt(number, layout.recordSize), IndexNodeHeadBytes + nearKey, code);
    if (bytes == nullptr) return fail(code), nullptr;
    if (nodes.size() >= mostNodes && !changed) forgetNodes();
    FileNode& node = enter(number);
    for (std::int32_t i = 0; i < IndexNodeWords; ++i)
        node.now[i] = node.was[i] = WordAt(bytes + i * WordBytes);
    const char* const key = bytes + IndexNodeHeadBytes;
    std::memcpy(nearKeys.data() + lastPlace * static_cast<std::size_t>(nearKey), key,
                static_cast<std::size_t>(nearKey));
    node.linksFit =
        hasRange(node.now[WordLeft], recordsInFile) && hasRange(node.now[WordRight], recordsInFile);
    node.sound = node.linksFit && node.now[WordBalance] >= -1 && node.now[WordBalance] <= 1 &&
                 HasFittingStrings(layout, key, nearKey);
    return &node;
}

FileNode* FileTree::State::inMemory(Ref number) {
    if (nodes.empty() || number == 0) return nullptr;
    const std::uint32_t place = placeOf(number);
    return place != 0 ? &nodes[place - 1] : nullptr;
}

FileNode* FileTree::State::load(Ref number) {
    if (number == lastNumber && number != 0) return &nodes[lastPlace];
    if (number < 1 || number > records) return fail(ERR_INDEX_TYPE), nullptr;
    if (FileNode* const node = inMemory(number); node != nullptr) {
        lastNumber = number;
        lastPlace = static_cast<std::uint32_t>(node - nodes.data());
        return node;
    }
    try {
        return fetch(number);
    } catch (const std::bad_alloc&) {
        return fail(ERR_OUT_OF_MEMORY), nullptr;
    }
}

FileNode* FileTree::State::live(Ref number) {
    FileNode* const node = load(number);
    if (node == nullptr || node->sound || (anyBalance && node->linksFit)) return node;
    return fail(ERR_INDEX_TYPE), nullptr;
}

void FileTree::State::change(FileNode& node, std::int32_t word, std::int32_t value) {
    if (node.now[word] == value) return;
    node.now[word] = value;
    changed = true;
}

// ---- keys ----

int FileTree::State::order(const KeyView& key, Ref number) {
    if (live(number) == nullptr) return 0;
    const char* const near = nearKeys.data() + lastPlace * static_cast<std::size_t>(nearKey);
    std::int32_t at = 0;
    for (std::int32_t i = 0; i < std::min(layout.count, key.count); ++i) {
        const IndexKeyField& field = layout.fields[i];
        const std::int32_t size = PackedFieldBytes(field);
        const int order = at + size <= nearKey ? ComparePacked(key.parts[i], field, near + at)
                                               : orderFar(key.parts[i], field, number, at);
        if (order != 0) return order;
        at += size;
    }
    return 0;
}

// Compares with a field that is not in memory as a whole, a stretch at a time.
int FileTree::State::orderFar(const KeyPart& part, const IndexKeyField& field, Ref number, std::int32_t at) {
    char bytes[nearBytes];
    const FileNode* const node = load(number);
    const char* const record = node != nullptr && node->fresh != 0 ? fresh[node->fresh - 1].data() : nullptr;
    const std::int64_t start = IndexRecordAt(number, layout.recordSize);
    const auto read = [&](std::int32_t offset, std::int32_t count) {
        offset += IndexNodeHeadBytes;
        if (record != nullptr)
            return std::memcpy(bytes, record + offset, static_cast<std::size_t>(count)), true;
        const std::int32_t code = disk.read(start + offset, bytes, count);
        return code == 0 || fail(code);
    };
    if (field.kind != KindString && field.kind != KindArray)
        return read(at, field.bytes) ? ComparePacked(part, field, bytes) : 0;
    std::int32_t length = field.bytes;
    if (field.kind == KindString) {
        if (!read(at, WordBytes)) return 0;
        if (!FitsField(field, WordAt(bytes))) return fail(ERR_INDEX_TYPE), 0;
        length = WordAt(bytes) * CharacterWidth;
        at += WordBytes;
    }
    const std::int32_t common = std::min(part.bytes, length);
    for (std::int32_t done = 0; done < common; done += nearBytes) {
        const std::int32_t count = std::min(nearBytes, common - done);
        if (!read(at + done, count)) return 0;
        const int order = CompareStretch(field.kind, part.at + done, count, bytes, count);
        if (order != 0) return order;
    }
    return (part.bytes > length) - (part.bytes < length);
}

bool FileTree::State::keyBytes(Ref number, std::string& bytes) {
    const FileNode* const node = live(number);
    if (node == nullptr) return false;
    const std::int32_t size = layout.recordSize - IndexNodeHeadBytes;
    try {
        if (node->fresh != 0) {
            bytes.assign(fresh[node->fresh - 1], IndexNodeHeadBytes);
        } else if (size <= nearKey) {
            bytes.assign(nearKeys.data() + lastPlace * static_cast<std::size_t>(nearKey),
                         static_cast<std::size_t>(size));
        } else {
            bytes.resize(static_cast<std::size_t>(size));
            const std::int64_t start = IndexRecordAt(number, layout.recordSize);
            const std::int32_t code = disk.read(start + IndexNodeHeadBytes, bytes.data(), size);
            if (code != 0) return fail(code);
        }
    } catch (const std::bad_alloc&) {
        return fail(ERR_OUT_OF_MEMORY);
    }
    return HasFittingStrings(layout, bytes.data(), size) || fail(ERR_INDEX_TYPE);
}

// ---- new and free records ----

FileNode* FileTree::State::loadFree(Ref number) {
    FileNode* const node = load(number);
    if (node == nullptr || (node->isFree() && node->linksFit)) return node;
    return fail(ERR_INDEX_TYPE), nullptr;
}

// The record for a new node. What the first free record says of one before it does not matter.
bool FileTree::State::takeFree(Ref& number) {
    number = firstFree;
    if (number == 0) {
        if (records == INT32_MAX - 1) return fail(ERR_INDEX_FILE_SIZE);
        number = ++records;
        return true;
    }
    const FileNode* const free = loadFree(number);
    if (free == nullptr) return false;
    const Ref next = free->now[WordRight];
    if (next != 0) {
        FileNode* const follower = loadFree(next);
        if (follower == nullptr || next == number) return fail(ERR_INDEX_TYPE);
        change(*follower, WordLeft, 0);
    }
    firstFree = next;
    return true;
}

FileTree::Ref FileTree::State::add(const KeyView& key, std::int32_t row) {
    if (failure != 0) return 0;
    try {
        std::string record(IndexNodeHeadBytes, '\0');
        record.reserve(static_cast<std::size_t>(layout.recordSize));
        if (!PackKey(layout, key, record)) return fail(ERR_INDEX_VALUE), 0;
        Ref number = 0;
        if (!takeFree(number)) return 0;
        FileNode& node = enter(number);
        std::memcpy(nearKeys.data() + lastPlace * static_cast<std::size_t>(nearKey),
                    record.data() + IndexNodeHeadBytes, static_cast<std::size_t>(nearKey));
        fresh.push_back(std::move(record));
        std::fill(std::begin(node.now), std::end(node.now), 0);
        node.now[WordRow] = row;
        node.fresh = static_cast<std::uint32_t>(fresh.size());
        node.linksFit = node.sound = changed = true;
        return number;
    } catch (const std::bad_alloc&) {
        return fail(ERR_OUT_OF_MEMORY), 0;
    }
}

// Takes a record out of the list of free ones. False when it is not in it.
bool FileTree::State::unlinkFree(const FileNode& free) {
    const Ref number = free.number, before = free.now[WordLeft], next = free.now[WordRight];
    const bool first = number == firstFree;
    if (!free.linksFit || before == number || next == number || before > records || next > records)
        return false;
    if (!first) {
        FileNode* const previous = before != 0 ? load(before) : nullptr;
        if (previous == nullptr || !previous->isFree() || previous->now[WordRight] != number) return false;
        change(*previous, WordRight, next);
    } else {
        firstFree = next;
    }
    if (next == 0) return true;
    FileNode* const follower = loadFree(next);
    if (follower == nullptr) return false;
    change(*follower, WordLeft, first ? 0 : before);
    return true;
}

bool FileTree::State::linkFree(Ref number) {
    if (firstFree != 0) {
        FileNode* const follower = loadFree(firstFree);
        if (follower == nullptr) return false;
        change(*follower, WordLeft, number);
    }
    FileNode* const node = load(number);
    if (node == nullptr) return false;
    change(*node, WordBalance, FreeNodeBalance);
    change(*node, WordLeft, 0);
    change(*node, WordRight, firstFree);
    node->sound = false;
    firstFree = number;
    return true;
}

void FileTree::State::release(Ref number) {
    FileNode* const node = live(number);
    if (failure != 0 || node == nullptr) return;
    if (number != records) return static_cast<void>(linkFree(number));
    node->sound = false;
    changed = true;
    while (--records > 0) {
        const FileNode* const last = load(records);
        if (last == nullptr || !last->isFree() || !unlinkFree(*last)) return;
    }
}

}  // namespace tarn
