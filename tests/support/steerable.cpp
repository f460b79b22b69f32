// SPDX-License-Identifier: Apache-2.0
#include "support/steerable.h"

#include <algorithm>
#include <utility>

namespace tarn::os {

// ---- The clock

namespace {

constexpr std::int64_t nanosecondsPerSecond = 1'000'000'000;
constexpr std::int64_t secondsPerDay = 86'400;

// Days since 1970-01-01 and back, in the Gregorian calendar. Years begin in March here, so that the leap day
// is last.
std::int64_t daysOf(int year, int month, int day) {
    const std::int64_t y = month <= 2 ? year - 1 : year;
    const std::int64_t era = (y >= 0 ? y : y - 399) / 400;
    const std::int64_t yearOfEra = y - era * 400;
    const std::int64_t dayOfYear = (153 * ((month + 9) % 12) + 2) / 5 + day - 1;
    return era * 146'097 + yearOfEra * 365 + yearOfEra / 4 - yearOfEra / 100 + dayOfYear - 719'468;
}

void setDay(std::int64_t days, CivilTime& time) {
    time.year = static_cast<int>(1970 + (days >= 0 ? days : days - 365) / 366) - 1;
    while (daysOf(time.year + 1, 1, 1) <= days) ++time.year;
    time.month = 12;
    while (daysOf(time.year, time.month, 1) > days) --time.month;
    time.day = static_cast<int>(days - daysOf(time.year, time.month, 1)) + 1;
}

std::int64_t floorOf(std::int64_t value, std::int64_t unit) {
    return value / unit - (value % unit < 0 ? 1 : 0);
}

}  // namespace

CivilTime SteeredClock::local(std::int64_t nanoseconds) {
    const std::int64_t seconds = floorOf(nanoseconds, nanosecondsPerSecond) + offset_;
    const std::int64_t day = floorOf(seconds, secondsPerDay);
    const int second = static_cast<int>(seconds - day * secondsPerDay);
    CivilTime time;
    setDay(day, time);
    time.hour = second / 3600;
    time.minute = second / 60 % 60;
    time.second = second % 60;
    time.nanosecond =
        static_cast<int>(nanoseconds - floorOf(nanoseconds, nanosecondsPerSecond) * nanosecondsPerSecond);
    return time;
}

void SteeredClock::setLocal(const CivilTime& time) {
    const std::int64_t seconds = daysOf(time.year, time.month, time.day) * secondsPerDay + time.hour * 3600 +
                                 time.minute * 60 + time.second - offset_;
    now_ = seconds * nanosecondsPerSecond + time.nanosecond;
}

void SteeredClock::advance(std::int64_t nanoseconds) {
    if (nanoseconds <= 0) return;
    now_ += nanoseconds;
    steady_ += nanoseconds;
}

// ---- The tree of files

namespace {

enum NodeKind { AFile, AFolder, ALink };
constexpr std::size_t longestName = 255, longestPath = 4095;
constexpr int mostLinks = 40;
constexpr std::uint32_t readBit = 4, writeBit = 2;

struct State {          // what a sync makes lasting
    std::string bytes;  // of a file; of a link its target
    std::uint32_t mode = 0, owner = SteeredFiles::user, group = SteeredFiles::user;
    std::int64_t modified = 0;
};

struct Change {
    bool cuts = false;
    std::size_t at = 0;  // of a cut: the size
    std::string bytes;
};

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

}  // namespace

struct SteeredFiles::Node {
    int kind = AFile;
    std::uint64_t inode = 0;
    std::uint32_t links = 1;
    std::int64_t changed = 0;
    State state, lasting;
    bool everSynced = false;
    std::vector<Change> unsynced;
    std::map<std::string, NodePointer> names, lastingNames;  // of a folder
};

// Where a path leads: the folder, the last part, and the node if it exists.
struct SteeredFiles::Place {
    NodePointer folder, node;
    std::string name, path;  // the full path without links
};

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

// ---- Failing and dying

void SteeredFiles::clearLog() {
    log_.clear();
    calls_ = 0;
    kindCalls_.fill(0);
}

void SteeredFiles::failAt(int call, FileError error) {
    clearLog();
    failure_ = {call, error};
}

void SteeredFiles::failAt(FileCall kind, int call, FileError error) {
    clearLog();
    kindFailures_[static_cast<std::size_t>(kind)] = {call, error};
}

void SteeredFiles::failAlways(FileCall kind, FileError error) {
    always_[static_cast<std::size_t>(kind)] = error;
}

void SteeredFiles::stopFailing() {
    failure_ = {};
    kindFailures_.fill({});
    always_.fill(FileError::None);
    freeBytes_ = std::numeric_limits<std::int64_t>::max();
    dieAt_ = 0;
}

void SteeredFiles::dieAt(int call, bool midway) {
    clearLog();
    dieAt_ = call;
    midway_ = midway;
}

void SteeredFiles::revive() {
    dead_ = dying_ = false;
    dieAt_ = 0;
    open_.clear();
}

void SteeredFiles::forget(const NodePointer& node, Names names, const Forget& forgetBytes,
                          std::vector<const Node*>& seen) {
    if (std::find(seen.begin(), seen.end(), node.get()) != seen.end()) return;
    seen.push_back(node.get());
    forgetBytes(*node);
    node->inode = nextInode_++;  // nobody knows a file from before
    if (names == Names::Lost) node->names = node->lastingNames;
    settle(*node);
    for (const auto& [name, child] : node->names) forget(child, names, forgetBytes, seen);
}

void SteeredFiles::dieAsMachine(Names names, const Forget& forgetBytes) {
    revive();
    current_ = "/";
    std::vector<const Node*> seen;
    forget(root_, names, forgetBytes, seen);
}

void SteeredFiles::afterMachineDeath(Names names, Overwritten overwritten) {
    dieAsMachine(names, [&](Node& node) {
        if (overwritten == Overwritten::Lost || !node.everSynced) node.state = node.lasting;
    });
}

void SteeredFiles::afterMachineDeath(Names names, const std::function<bool()>& keeps) {
    dieAsMachine(names, [&](Node& node) {
        if (node.kind != AFile) return;
        node.state.bytes = node.lasting.bytes;
        for (const Change& change : node.unsynced)
            if (keeps()) apply(change, node.state.bytes);
    });
}

// The failure of this call, if one was ordered for it.
FileError SteeredFiles::count(FileCall kind, const std::string& text) {
    if (dead_) throw ProcessDeath{};
    const auto at = static_cast<std::size_t>(kind);
    ++kindCalls_[at];
    if (kind < FileCall::OpenRead) {
        ++calls_;
        log_.push_back(text);
        if (dieAt_ == calls_) {
            dead_ = true;
            dying_ = midway_ && kind == FileCall::Write;
            if (!dying_) throw ProcessDeath{};
        }
        if (failure_.at == calls_) return std::exchange(failure_, {}).error;
    }
    if (kindFailures_[at].at == kindCalls_[at]) return std::exchange(kindFailures_[at], {}).error;
    return always_[at];
}

// Room on the disk for at most `bytes`; DiskFull if there is less.
FileError SteeredFiles::take(std::int64_t bytes, std::int64_t& taken) {
    taken = std::min(bytes, std::max<std::int64_t>(freeBytes_, 0));
    if (freeBytes_ != std::numeric_limits<std::int64_t>::max()) freeBytes_ -= taken;
    return taken < bytes ? FileError::DiskFull : FileError::None;
}

// Room that is given back.
void SteeredFiles::give(std::size_t bytes) {
    if (freeBytes_ != std::numeric_limits<std::int64_t>::max())
        freeBytes_ += static_cast<std::int64_t>(bytes);
}

// One name less for a file; the last one frees its room.
void SteeredFiles::unlink(Node& node) {
    if (--node.links == 0) give(node.state.bytes.size());
}

// ---- The calls

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

// ---- Processes

namespace {

class PlayedChild : public Child {
public:
    PlayedChild(const Played& played, int id)
        : played_(played), id_(id), end_(clock().steady() + played.lasts) {}

    ExitState poll() override {
        if (!state_.ended && !played_.hangs && clock().steady() >= end_) end(played_.code, played_.signal);
        return state_;
    }

    ExitState wait(int milliseconds) override {
        constexpr std::int64_t nanosecondsPerMillisecond = 1'000'000;
        if (poll().ended) return state_;
        const std::int64_t most = milliseconds * nanosecondsPerMillisecond;
        clock().sleep(played_.hangs ? most : std::min(most, end_ - clock().steady()));
        return poll();
    }

    void stop(int graceMilliseconds) override {
        constexpr int asked = 15, forced = 9;
        if (poll().ended) return;
        if (played_.deaf) wait(graceMilliseconds);
        if (!state_.ended) end(0, played_.deaf ? forced : asked);
    }

    [[nodiscard]] int id() const override { return id_; }

private:
    void end(int code, int signal) { state_ = {true, code, signal}; }

    Played played_;
    int id_;
    std::int64_t end_;
    ExitState state_;
};

}  // namespace

std::unique_ptr<Child> SteeredProcesses::start(const StartRequest& request, StartError& error) {
    started_.push_back(request);
    const Played played = program_ ? program_(request) : Played{};
    error = played.error;
    if (error != StartError::None) return nullptr;
    constexpr int firstId = 1000;
    return std::make_unique<PlayedChild>(played, firstId + static_cast<int>(started_.size()));
}

Steered::~Steered() {
    switch (kind_) {
    case Kind::Files: useFiles(files_); break;
    case Kind::Clock: useClock(clock_); break;
    case Kind::Processes: useProcesses(processes_); break;
    }
}

}  // namespace tarn::os
