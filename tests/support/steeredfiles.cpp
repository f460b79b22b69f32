// SPDX-License-Identifier: Apache-2.0
//
// The tree of files: walking paths, preparing and looking.
#include "support/steeredfiles_nodes.h"

#include <algorithm>
#include <utility>

namespace tarn::os {

void apply(const Change& change, std::string& bytes) {
    if (change.cuts) return bytes.resize(change.at);
    if (change.bytes.empty()) return;
    bytes.resize(std::max(bytes.size(), change.at + change.bytes.size()));
    bytes.replace(change.at, change.bytes.size(), change.bytes);
}

std::vector<std::string> partsOf(const std::string& path) {
    std::vector<std::string> parts;
    for (std::size_t at = 0; at < path.size();) {
        const std::size_t end = std::min(path.find('/', at), path.size());
        if (end > at) parts.push_back(path.substr(at, end - at));
        at = end + 1;
    }
    return parts;
}

SteeredFiles::SteeredFiles() {
    root_ = newNode(AFolder, 0755);
}
SteeredFiles::~SteeredFiles() = default;

SteeredFiles::NodePointer SteeredFiles::newNode(int kind, std::uint32_t mode) {
    auto node = std::make_shared<Node>();
    node->kind = kind;
    node->inode = nextInode_++;
    node->state.mode = mode;
    touch(*node);
    if (kind != AFile) settle(*node);
    return node;
}

// A walk along a path: the parts that are left, and the nodes that were passed (the last may be none).

struct SteeredFiles::Walk {
    std::vector<std::string> left;
    std::vector<std::pair<std::string, NodePointer>> passed;
    int links = 0;
};

// Takes one part. The parts of a link are put before those that are left.
FileError SteeredFiles::step(Walk& walk, bool followLast) const {
    const std::string part = walk.left.front();
    walk.left.erase(walk.left.begin());
    if (part.size() > longestName) return FileError::BadName;
    const NodePointer folder = walk.passed.back().second;
    if (folder == nullptr) return FileError::NotFound;
    if (folder->kind != AFolder) return FileError::NotFolder;
    if (part == ".") return FileError::None;
    if (part == "..") {
        if (walk.passed.size() > 1) walk.passed.pop_back();
        return FileError::None;
    }
    const auto found = folder->names.find(part);
    const NodePointer node = found == folder->names.end() ? nullptr : found->second;
    if (node == nullptr || node->kind != ALink || (walk.left.empty() && !followLast)) {
        walk.passed.emplace_back(part, node);
        return FileError::None;
    }
    if (++walk.links > mostLinks) return FileError::BadName;
    const std::vector<std::string> parts = partsOf(node->state.bytes);
    walk.left.insert(walk.left.begin(), parts.begin(), parts.end());
    if (node->state.bytes.front() == '/') walk.passed.resize(1);
    return FileError::None;
}

FileError SteeredFiles::find(const std::string& path, bool followLast, Place& place) const {
    const std::string name = native(path);
    const bool holdsZero = name.find('\0') != std::string::npos;
    if (name.empty() || name.size() > longestPath || holdsZero) return FileError::BadName;
    Walk walk{partsOf(name.front() == '/' ? name : current_ + "/" + name), {{"", root_}}};
    place = {};
    while (!walk.left.empty()) {
        if (const FileError error = step(walk, followLast); error != FileError::None) return error;
    }
    const auto& passed = walk.passed;
    place.name = passed.back().first;
    place.node = passed.back().second;
    place.folder = passed.size() > 1 ? passed[passed.size() - 2].second : root_;
    for (std::size_t i = 1; i < passed.size(); ++i) place.path += "/" + passed[i].first;
    if (place.path.empty()) place.path = "/";
    const bool file = place.node != nullptr && place.node->kind == AFile;
    return file && name.back() == '/' ? FileError::NotFolder : FileError::None;
}

FileError SteeredFiles::findNode(const std::string& path, NodePointer& node) const {
    Place place;
    if (const FileError error = find(path, true, place); error != FileError::None) return error;
    node = place.node;
    return node == nullptr ? FileError::NotFound : FileError::None;
}

// An entry that is to be changed in its folder: it exists, and the folder may be written.
FileError SteeredFiles::findEntry(const std::string& path, Place& place) const {
    if (const FileError error = find(path, false, place); error != FileError::None) return error;
    if (place.node == nullptr) return FileError::NotFound;
    if (place.node == root_) return FileError::Denied;
    return may(*place.folder, writeBit) ? FileError::None : FileError::Denied;
}

bool SteeredFiles::may(const Node& node, std::uint32_t bits) const {
    const State& state = node.state;
    if (state.owner == user) return (state.mode >> 6U & bits) == bits;
    const bool inGroup = std::find(groups_.begin(), groups_.end(), state.group) != groups_.end();
    return ((inGroup ? state.mode >> 3U : state.mode) & bits) == bits;
}

// ---- Preparing and looking

void SteeredFiles::touch(Node& node) {
    node.state.modified = node.changed = clock().now();
}

void SteeredFiles::settle(Node& node) {
    node.lasting = node.state;
    node.lastingNames = node.names;
    node.everSynced = true;
    node.unsynced.clear();
}

SteeredFiles::Place SteeredFiles::prepare(const std::string& path) {
    const std::string full = native(path);
    if (const std::size_t slash = full.rfind('/'); slash != std::string::npos && slash > 0) {
        putFolder(full.substr(0, slash));
    }
    Place place;
    (void)find(full, false, place);
    return place;
}

void SteeredFiles::putFolder(const std::string& path, std::uint32_t mode) {
    Place there;
    if (find(path, true, there) == FileError::None && there.node != nullptr) {
        there.node->state.mode = mode;
        return settle(*there.node);
    }
    std::string folder;
    NodePointer node = root_;
    for (const std::string& part : partsOf(native(path))) {
        folder += "/" + part;
        Place place;
        (void)find(folder, true, place);
        if (place.node == nullptr) {
            place.node = node->names[part] = newNode(AFolder, 0755);
            node->lastingNames[part] = place.node;
        }
        node = place.node;
    }
    node->state.mode = mode;
    settle(*node);
}

void SteeredFiles::put(const std::string& path, std::string_view bytes, std::uint32_t mode) {
    const Place place = prepare(path);
    const NodePointer node = place.node != nullptr ? place.node : newNode(AFile, mode);
    node->state.bytes = bytes;
    node->state.mode = mode;
    node->changed = clock().now();
    settle(*node);
    place.folder->names[place.name] = place.folder->lastingNames[place.name] = node;
}

void SteeredFiles::putLink(const std::string& target, const std::string& path) {
    const Place place = prepare(path);
    const NodePointer node = newNode(ALink, 0777);
    node->state.bytes = target;
    settle(*node);
    place.folder->names[place.name] = place.folder->lastingNames[place.name] = node;
}

void SteeredFiles::putHardLink(const std::string& existing, const std::string& path) {
    const Place place = prepare(path);
    NodePointer node;
    if (findNode(existing, node) != FileError::None) return;
    ++node->links;
    place.folder->names[place.name] = place.folder->lastingNames[place.name] = node;
}

void SteeredFiles::putOwner(const std::string& path, std::uint32_t owner, std::uint32_t group) {
    NodePointer node;
    if (findNode(path, node) != FileError::None) return;
    node->state.owner = node->lasting.owner = owner;
    node->state.group = node->lasting.group = group;
}

bool SteeredFiles::has(const std::string& path) const {
    NodePointer node;
    return findNode(path, node) == FileError::None;
}

std::string SteeredFiles::contents(const std::string& path) const {
    NodePointer node;
    return findNode(path, node) == FileError::None && node->kind == AFile ? node->state.bytes : std::string();
}

void SteeredFiles::collect(const Node& node, const std::string& path, std::vector<std::string>& paths) const {
    for (const auto& [name, child] : node.names) {
        const std::string full = path + "/" + name;
        if (child->kind == AFolder) {
            collect(*child, full, paths);
        } else {
            paths.push_back(full);
        }
    }
}

std::vector<std::string> SteeredFiles::allFiles() const {
    std::vector<std::string> paths;
    collect(*root_, "", paths);
    std::sort(paths.begin(), paths.end());
    return paths;
}

int SteeredFiles::openHandles() const {
    return static_cast<int>(open_.size());
}

}  // namespace tarn::os
