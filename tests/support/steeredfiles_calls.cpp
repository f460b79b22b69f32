// SPDX-License-Identifier: Apache-2.0
//
// The calls of the file system in memory.
#include "support/steeredfiles_nodes.h"

#include <algorithm>

namespace tarn::os {

SteeredFiles::OpenFile* SteeredFiles::opened(Handle handle) {
    if (dead_) throw ProcessDeath{};
    const auto found = open_.find(handle);
    return found == open_.end() ? nullptr : &found->second;
}

FileError SteeredFiles::make(const Place& place, const NodePointer& node) {
    if (!may(*place.folder, writeBit)) return FileError::Denied;
    if (freeBytes_ <= 0) return FileError::DiskFull;
    place.folder->names[place.name] = node;
    touch(*place.folder);
    return FileError::None;
}

FileError SteeredFiles::openNode(const Place& place, OpenMode mode, std::uint32_t permissions,
                                 NodePointer& node) {
    node = place.node;
    if (node == nullptr) {
        if (mode == OpenMode::Read || mode == OpenMode::ReadWrite || mode == OpenMode::Write)
            return FileError::NotFound;
        node = newNode(AFile, permissions & ~022U);
        return make(place, node);
    }
    if (mode == OpenMode::CreateNew) return FileError::Exists;
    if (node->kind == AFolder) return FileError::IsFolder;
    const bool reads = mode == OpenMode::Read || mode == OpenMode::ReadWrite;
    if (reads && !may(*node, readBit)) return FileError::Denied;
    if (mode != OpenMode::Read && !may(*node, writeBit)) return FileError::Denied;
    if (mode == OpenMode::Truncate) {
        give(node->state.bytes.size());
        node->state.bytes.clear();
        node->unsynced.push_back({true, 0, {}});
    }
    return FileError::None;
}

FileError SteeredFiles::open(const std::string& path, OpenMode mode, std::uint32_t permissions,
                             Handle& handle) {
    static constexpr const char* words[] = {"read", "new", "truncate", "append", "change"};
    handle = -1;
    const FileCall kind = mode == OpenMode::Read ? FileCall::OpenRead : FileCall::Open;
    FileError error = count(kind, "open " + native(path) + " " + words[static_cast<int>(mode)]);
    if (error != FileError::None) return error;
    Place place;
    // A new file does not go through a link that stands there.
    error = find(path, mode != OpenMode::CreateNew, place);
    if (error != FileError::None) return error;
    NodePointer node;
    error = openNode(place, mode, permissions, node);
    if (error != FileError::None) return error;
    handle = nextHandle_++;
    open_[handle] = {node, mode};
    return FileError::None;
}

FileError SteeredFiles::read(Handle handle, std::int64_t offset, char* into, std::size_t wanted,
                             std::size_t& got) {
    got = 0;
    const OpenFile* const file = opened(handle);
    if (const FileError error = count(FileCall::Read, ""); error != FileError::None) return error;
    if (file == nullptr || file->mode == OpenMode::Append || offset < 0) return FileError::ReadFailed;
    const std::string& bytes = file->node->state.bytes;
    if (static_cast<std::size_t>(offset) >= bytes.size()) return FileError::None;
    got = bytes.copy(into, wanted, static_cast<std::size_t>(offset));
    return FileError::None;
}

FileError SteeredFiles::write(Handle handle, std::int64_t offset, std::string_view bytes) {
    const OpenFile* const file = opened(handle);
    FileError error = count(FileCall::Write, "write " + std::to_string(bytes.size()));
    if (error != FileError::None) return error;
    if (file == nullptr || file->mode == OpenMode::Read || offset < 0) return FileError::WriteFailed;
    if (dying_) bytes = bytes.substr(0, bytes.size() / 2);
    std::string& old = file->node->state.bytes;
    const auto size = static_cast<std::int64_t>(old.size());
    if (file->mode == OpenMode::Append) offset = size;
    const std::int64_t growth = offset + static_cast<std::int64_t>(bytes.size()) - size;
    std::int64_t taken = 0;
    error = take(std::max<std::int64_t>(growth, 0), taken);
    if (error != FileError::None)
        bytes.remove_suffix(
            static_cast<std::size_t>(std::min(growth - taken, static_cast<std::int64_t>(bytes.size()))));
    const auto end = static_cast<std::size_t>(offset) + bytes.size();
    if (!bytes.empty() && end > old.size()) old.resize(end);
    if (!bytes.empty()) old.replace(static_cast<std::size_t>(offset), bytes.size(), bytes);
    file->node->unsynced.push_back({false, static_cast<std::size_t>(offset), std::string(bytes)});
    touch(*file->node);
    if (dying_) throw ProcessDeath{};
    return error;
}

FileError SteeredFiles::truncate(Handle handle, std::int64_t size) {
    const OpenFile* const file = opened(handle);
    const FileError error = count(FileCall::Truncate, "truncate " + std::to_string(size));
    if (error != FileError::None) return error;
    if (file == nullptr || file->mode == OpenMode::Read || size < 0) return FileError::WriteFailed;
    std::string& bytes = file->node->state.bytes;
    if (static_cast<std::size_t>(size) < bytes.size()) give(bytes.size() - static_cast<std::size_t>(size));
    bytes.resize(static_cast<std::size_t>(size));
    file->node->unsynced.push_back({true, static_cast<std::size_t>(size), {}});
    touch(*file->node);
    return FileError::None;
}

FileError SteeredFiles::size(Handle handle, std::int64_t& bytes) {
    const OpenFile* const file = opened(handle);
    bytes = file != nullptr ? static_cast<std::int64_t>(file->node->state.bytes.size()) : 0;
    return file != nullptr ? FileError::None : FileError::ReadFailed;
}

FileError SteeredFiles::sync(Handle handle) {
    const OpenFile* const file = opened(handle);
    const FileError error = count(FileCall::Sync, "sync");
    if (error != FileError::None) return error;
    if (file == nullptr) return FileError::WriteFailed;
    file->node->lasting = file->node->state;
    file->node->everSynced = true;
    file->node->unsynced.clear();
    return FileError::None;
}

// The descriptor is gone also when the close fails.
FileError SteeredFiles::close(Handle handle) {
    const OpenFile* const file = opened(handle);
    if (file == nullptr) return FileError::WriteFailed;
    const FileError error = file->mode == OpenMode::Read ? FileError::None : count(FileCall::Close, "close");
    open_.erase(handle);
    return error;
}

FileError SteeredFiles::renameNew(const std::string& from, const std::string& to) {
    Place there;
    const FileError looked = find(to, false, there);
    if (looked == FileError::None && there.node != nullptr) {
        const FileError counted = count(FileCall::Rename, "renamenew " + native(from) + " " + native(to));
        return counted != FileError::None ? counted : FileError::Exists;
    }
    return rename(from, to);
}

FileError SteeredFiles::rename(const std::string& from, const std::string& to) {
    FileError error = count(FileCall::Rename, "rename " + native(from) + " " + native(to));
    if (error != FileError::None) return error;
    Place old, made;
    error = findEntry(from, old);
    if (error != FileError::None) return error;
    error = find(to, false, made);
    if (error != FileError::None) return error;
    if (!may(*made.folder, writeBit)) return FileError::Denied;
    if (made.node == old.node) return FileError::None;
    if (made.node != nullptr && (made.node->kind == AFolder) != (old.node->kind == AFolder)) {
        return made.node->kind == AFolder ? FileError::IsFolder : FileError::NotFolder;
    }
    if (made.node != nullptr && !made.node->names.empty()) return FileError::Exists;
    if (made.path.starts_with(old.path + "/")) return FileError::WriteFailed;
    if (made.node != nullptr) unlink(*made.node);
    old.folder->names.erase(old.name);
    made.folder->names[made.name] = old.node;
    touch(*old.folder);
    touch(*made.folder);
    return FileError::None;
}

FileError SteeredFiles::remove(const std::string& path) {
    FileError error = count(FileCall::Remove, "remove " + native(path));
    if (error != FileError::None) return error;
    Place place;
    error = findEntry(path, place);
    if (error != FileError::None) return error;
    if (place.node->kind == AFolder) return FileError::IsFolder;
    place.folder->names.erase(place.name);
    touch(*place.folder);
    unlink(*place.node);
    return FileError::None;
}

FileError SteeredFiles::makeFolder(const std::string& path) {
    FileError error = count(FileCall::MakeFolder, "makefolder " + native(path));
    if (error != FileError::None) return error;
    Place place;
    error = find(path, false, place);
    if (error != FileError::None) return error;
    return place.node != nullptr ? FileError::Exists : make(place, newNode(AFolder, 0755));
}

FileError SteeredFiles::removeFolder(const std::string& path) {
    FileError error = count(FileCall::RemoveFolder, "removefolder " + native(path));
    if (error != FileError::None) return error;
    Place place;
    error = findEntry(path, place);
    if (error != FileError::None) return error;
    if (place.node->kind != AFolder) return FileError::NotFolder;
    if (!place.node->names.empty()) return FileError::Exists;
    place.folder->names.erase(place.name);
    return FileError::None;
}

FileError SteeredFiles::syncFolder(const std::string& path) {
    FileError error = count(FileCall::SyncFolder, "syncfolder " + native(path));
    if (error != FileError::None) return error;
    NodePointer node;
    error = findNode(path, node);
    if (error != FileError::None) return error;
    if (node->kind != AFolder) return FileError::NotFolder;
    settle(*node);
    return FileError::None;
}

FileError SteeredFiles::setMode(const std::string& path, std::uint32_t mode) {
    FileError error = count(FileCall::SetMode, "setmode " + native(path));
    if (error != FileError::None) return error;
    NodePointer node;
    error = findNode(path, node);
    if (error != FileError::None) return error;
    if (node->state.owner != user) return FileError::Denied;
    node->state.mode = mode & 07777U;
    node->changed = clock().now();
    if (node->kind == AFolder) node->lasting = node->state;
    return FileError::None;
}

FileError SteeredFiles::setOwner(const std::string& path, std::uint32_t owner, std::uint32_t group) {
    FileError error = count(FileCall::SetOwner, "setowner " + native(path));
    if (error != FileError::None) return error;
    NodePointer node;
    error = findNode(path, node);
    if (error != FileError::None) return error;
    const bool inGroup = std::find(groups_.begin(), groups_.end(), group) != groups_.end();
    if (node->state.owner != user || owner != user || !inGroup) return FileError::Denied;
    node->state.group = group;
    return FileError::None;
}

FileError SteeredFiles::setModified(const std::string& path, std::int64_t nanoseconds) {
    FileError error = count(FileCall::SetModified, "setmodified " + native(path));
    if (error != FileError::None) return error;
    NodePointer node;
    error = findNode(path, node);
    if (error != FileError::None) return error;
    if (node->state.owner != user) return FileError::Denied;
    node->state.modified = nanoseconds;
    node->changed = clock().now();
    return FileError::None;
}

FileError SteeredFiles::setModifiedOpen(Handle handle, std::int64_t nanoseconds) {
    const OpenFile* const file = opened(handle);
    const FileError error = count(FileCall::SetModified, "setmodified of an open file");
    if (error != FileError::None) return error;
    if (file == nullptr) return FileError::WriteFailed;
    if (file->node->state.owner != user) return FileError::Denied;
    file->node->state.modified = nanoseconds;
    file->node->changed = clock().now();
    return FileError::None;
}

FileError SteeredFiles::link(const std::string& target, const std::string& path) {
    FileError error = count(FileCall::Link, "link " + native(target) + " " + native(path));
    if (error != FileError::None) return error;
    if (target.empty() || target.find('\0') != std::string::npos) return FileError::BadName;
    Place place;
    error = find(path, false, place);
    if (error != FileError::None) return error;
    if (place.node != nullptr) return FileError::Exists;
    const NodePointer node = newNode(ALink, 0777);
    node->state.bytes = native(target);
    node->lasting = node->state;
    return make(place, node);
}

FileError SteeredFiles::info(const std::string& path, FileInfo& info) {
    info = {};
    if (dead_) throw ProcessDeath{};
    NodePointer node;
    const FileError error = findNode(path, node);
    if (error == FileError::NotFound || error == FileError::NotFolder) return FileError::None;
    if (error != FileError::None) return error;
    info = infoIn(*node);
    info.writable = may(*node, writeBit);
    return FileError::None;
}

FileInfo SteeredFiles::infoIn(const Node& node) {
    FileInfo info;
    info.exists = true;
    info.folder = node.kind == AFolder;
    info.size = static_cast<std::int64_t>(node.state.bytes.size());
    info.modified = node.state.modified;
    info.changed = node.changed;
    info.mode = node.state.mode;
    info.device = 1;
    info.inode = node.inode;
    info.links = node.links;
    info.owner = node.state.owner;
    info.group = node.state.group;
    return info;
}

FileError SteeredFiles::infoOpen(Handle handle, FileInfo& info) {
    info = {};
    if (dead_) throw ProcessDeath{};
    const OpenFile* const file = opened(handle);
    if (file == nullptr) return FileError::ReadFailed;
    info = infoIn(*file->node);
    return FileError::None;
}

FileError SteeredFiles::list(const std::string& path, std::vector<std::string>& names) {
    names.clear();
    if (const FileError error = count(FileCall::List, ""); error != FileError::None) return error;
    NodePointer node;
    if (const FileError error = findNode(path, node); error != FileError::None) return error;
    if (node->kind != AFolder) return FileError::NotFolder;
    if (!may(*node, readBit)) return FileError::Denied;
    for (const auto& [name, child] : node->names) names.push_back(name);
    return FileError::None;
}

FileError SteeredFiles::resolve(const std::string& path, std::string& resolved) {
    resolved.clear();
    if (dead_) throw ProcessDeath{};
    Place place;
    if (const FileError error = find(path, true, place); error != FileError::None) return error;
    if (place.node == nullptr && path.back() == '/') return FileError::NotFound;
    resolved = place.path;
    return FileError::None;
}

FileError SteeredFiles::freeSpace(const std::string& path, std::int64_t& bytes) {
    bytes = 0;
    if (dead_) throw ProcessDeath{};
    NodePointer node;
    if (const FileError error = findNode(path, node); error != FileError::None) return error;
    bytes = std::max<std::int64_t>(freeBytes_, 0);
    return FileError::None;
}

std::string SteeredFiles::currentFolder() {
    return current_;
}

FileError SteeredFiles::setCurrentFolder(const std::string& path) {
    if (dead_) throw ProcessDeath{};
    Place place;
    if (const FileError error = find(path, true, place); error != FileError::None) return error;
    if (place.node == nullptr) return FileError::NotFound;
    if (place.node->kind != AFolder) return FileError::NotFolder;
    current_ = place.path;
    return FileError::None;
}

}  // namespace tarn::os
