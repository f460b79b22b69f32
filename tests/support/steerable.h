// SPDX-License-Identifier: Apache-2.0
//
// Twins of the interfaces of src/os that a test steers: a clock that is set, a file system in memory that
// fails, dies and forgets when told, and processes that are played by functions. Each puts itself in force
// with `Steered`.
#pragma once

#include "os/clock.h"
#include "os/files.h"
#include "os/process.h"

#include <array>
#include <functional>
#include <limits>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace tarn::os {

// A clock that stands still unless told to move. It begins at 2001-02-03 04:05:06 UTC.
class SteeredClock : public Clock {
public:
    std::int64_t now() override { return now_; }
    std::int64_t steady() override { return steady_; }
    CivilTime local(std::int64_t nanoseconds) override;
    void sleep(std::int64_t nanoseconds) override { advance(nanoseconds); }

    void set(std::int64_t nanoseconds) { now_ = nanoseconds; }  // the wall clock alone
    void setLocal(const CivilTime& time);                       // so that local(now()) is `time`
    void setOffset(int secondsEast) { offset_ = secondsEast; }  // of local time
    void advance(std::int64_t nanoseconds);                     // both clocks; nothing if not above 0

private:
    std::int64_t now_ = 981'173'106'000'000'000;
    std::int64_t steady_ = 1'000'000'000;
    int offset_ = 0;
};

// The kinds of calls that can be made to fail. Those from `OpenRead` on change nothing: they are counted for
// their kind alone, are not in the log, and no process dies at them.
enum class FileCall {
    Open,
    Write,
    Truncate,
    Sync,
    Close,
    Rename,
    Remove,
    MakeFolder,
    RemoveFolder,
    SyncFolder,
    SetMode,
    SetOwner,
    SetModified,
    Link,
    OpenRead,
    Read,
    List,
};
inline constexpr std::size_t fileCallKinds = 17;

// Thrown by the call at which the process "dies", and by all calls until `revive`.
struct ProcessDeath {};

// A file system in memory, of one user (number 1000, groups 1000 and those added). Every change is first
// volatile: contents, mode and owner of a file until it is synced, names in a folder until the folder is.
class SteeredFiles : public FileSystem {
public:
    static constexpr std::uint32_t user = 1000;

    SteeredFiles();
    ~SteeredFiles() override;
    SteeredFiles(const SteeredFiles&) = delete;
    SteeredFiles& operator=(const SteeredFiles&) = delete;

    // Preparing and looking: not counted, never failing, no permission needed; what they make is synced.
    void put(const std::string& path, std::string_view bytes, std::uint32_t mode = 0644);  // with its folders
    void putFolder(const std::string& path, std::uint32_t mode = 0755);                    // with those above
    void putLink(const std::string& target, const std::string& path);
    void putHardLink(const std::string& existing, const std::string& path);
    void putOwner(const std::string& path, std::uint32_t owner, std::uint32_t group);
    void addGroup(std::uint32_t group) { groups_.push_back(group); }
    [[nodiscard]] bool has(const std::string& path) const;              // links followed
    [[nodiscard]] std::string contents(const std::string& path) const;  // of a file; "" if there is none
    [[nodiscard]] std::vector<std::string> allFiles() const;  // full paths of files and links, sorted

    // Failing. Calls that change something are counted from 1, beginning now; each order holds for one call
    // and replaces the one before.
    void failAt(int call, FileError error);
    void failAt(FileCall kind, int call, FileError error);
    void failAlways(FileCall kind, FileError error);  // None ends it
    // The disk takes that many more bytes; the write that meets the end writes what fits and is DiskFull, and
    // so is everything that makes a file or a folder while no byte is left. Removing and shrinking free
    // space.
    void setFreeBytes(std::int64_t bytes) { freeBytes_ = bytes; }
    void stopFailing();

    // Dying: before the call, or (`midway`) in the middle of it if it is a write.
    void dieAt(int call, bool midway = false);
    [[nodiscard]] bool dead() const { return dead_; }
    void revive();  // a new process: nothing is open

    // What is on the disk when the machine has died, of what was not synced: the changed names of files, and
    // what was written over contents that had been synced. A file that was never synced is empty in any case.
    enum class Names { Lost, Kept };
    enum class Overwritten { Lost, Kept };
    void afterMachineDeath(Names names, Overwritten overwritten = Overwritten::Lost);  // also revives
    // Each writing and each cut that was not synced is there or not, by itself, as `keeps` says; those that
    // are there are in their order. Gaps are zeros.
    void afterMachineDeath(Names names, const std::function<bool()>& keeps);

    [[nodiscard]] int calls() const { return calls_; }  // counted since the last order or `clearLog`
    [[nodiscard]] const std::vector<std::string>& log() const { return log_; }
    void clearLog();
    [[nodiscard]] int openHandles() const;

    FileError open(const std::string& path, OpenMode mode, std::uint32_t permissions,
                   Handle& handle) override;
    FileError read(Handle handle, std::int64_t offset, char* into, std::size_t count,
                   std::size_t& got) override;
    FileError write(Handle handle, std::int64_t offset, std::string_view bytes) override;
    FileError truncate(Handle handle, std::int64_t size) override;
    FileError size(Handle handle, std::int64_t& bytes) override;
    FileError sync(Handle handle) override;
    void startSync(Handle) override {}
    FileError close(Handle handle) override;
    FileError rename(const std::string& from, const std::string& to) override;
    FileError renameNew(const std::string& from, const std::string& to) override;
    FileError remove(const std::string& path) override;
    FileError makeFolder(const std::string& path) override;
    FileError removeFolder(const std::string& path) override;
    FileError syncFolder(const std::string& path) override;
    FileError setMode(const std::string& path, std::uint32_t mode) override;
    FileError setOwner(const std::string& path, std::uint32_t owner, std::uint32_t group) override;
    FileError setModified(const std::string& path, std::int64_t nanoseconds) override;
    FileError setModifiedOpen(Handle handle, std::int64_t nanoseconds) override;
    FileError link(const std::string& target, const std::string& path) override;
    FileError info(const std::string& path, FileInfo& info) override;
    FileError infoOpen(Handle handle, FileInfo& info) override;
    FileError list(const std::string& path, std::vector<std::string>& names) override;
    FileError resolve(const std::string& path, std::string& resolved) override;
    FileError freeSpace(const std::string& path, std::int64_t& bytes) override;
    std::string currentFolder() override;
    FileError setCurrentFolder(const std::string& path) override;

private:
    struct Node;
    using NodePointer = std::shared_ptr<Node>;
    struct Place;
    struct Walk;
    struct OpenFile {
        NodePointer node;
        OpenMode mode;
    };
    struct Failure {
        int at = 0;  // 0: none
        FileError error = FileError::None;
    };

    FileError step(Walk& walk, bool followLast) const;
    [[nodiscard]] FileError find(const std::string& path, bool followLast, Place& place) const;
    [[nodiscard]] FileError findNode(const std::string& path, NodePointer& node) const;
    [[nodiscard]] FileError findEntry(const std::string& path, Place& place) const;
    static FileInfo infoIn(const Node& node);
    [[nodiscard]] bool may(const Node& node, std::uint32_t bits) const;
    [[nodiscard]] OpenFile* opened(Handle handle);
    FileError count(FileCall kind, const std::string& text);
    FileError make(const Place& place, const NodePointer& node);
    FileError openNode(const Place& place, OpenMode mode, std::uint32_t permissions, NodePointer& node);
    FileError take(std::int64_t bytes, std::int64_t& taken);
    void give(std::size_t bytes);
    void unlink(Node& node);
    NodePointer newNode(int kind, std::uint32_t mode);
    Place prepare(const std::string& path);
    static void touch(Node& node);  // notes the time of a change
    static void settle(Node& node);
    using Forget = std::function<void(Node&)>;
    void forget(const NodePointer& node, Names names, const Forget& forgetBytes,
                std::vector<const Node*>& seen);
    void dieAsMachine(Names names, const Forget& forgetBytes);
    void collect(const Node& node, const std::string& path, std::vector<std::string>& paths) const;

    NodePointer root_;
    std::string current_ = "/";
    std::vector<std::uint32_t> groups_{user};
    std::map<Handle, OpenFile> open_;
    Handle nextHandle_ = 3;
    std::uint64_t nextInode_ = 1;
    std::int64_t freeBytes_ = std::numeric_limits<std::int64_t>::max();
    int calls_ = 0;
    std::array<int, fileCallKinds> kindCalls_{};
    Failure failure_;
    std::array<Failure, fileCallKinds> kindFailures_{};
    std::array<FileError, fileCallKinds> always_{};
    int dieAt_ = 0;
    bool midway_ = false;
    bool dying_ = false;  // this write is the one that is cut in half
    bool dead_ = false;
    std::vector<std::string> log_;
};

// How a program behaves when it is "started".
struct Played {
    StartError error = StartError::None;
    int code = 0;
    int signal = 0;
    std::int64_t lasts = 0;  // nanoseconds of the clock in force
    bool hangs = false;      // runs until it is stopped
    bool deaf = false;       // a stop must force it
};

// Programs are played by one function, which is called when a program starts and may do through `files()`
// what the program would do.
class SteeredProcesses : public Processes {
public:
    using Program = std::function<Played(const StartRequest&)>;
    explicit SteeredProcesses(Program program = {}) : program_(std::move(program)) {}
    void play(Program program) { program_ = std::move(program); }
    std::unique_ptr<Child> start(const StartRequest& request, StartError& error) override;
    [[nodiscard]] const std::vector<StartRequest>& started() const {
        return started_;
    }  // also those that failed

private:
    Program program_;
    std::vector<StartRequest> started_;
};

// Puts twins in force for its own lifetime.
class Steered {
public:
    explicit Steered(FileSystem& files) : files_(useFiles(&files)), kind_(Kind::Files) {}
    explicit Steered(Clock& clock) : clock_(useClock(&clock)), kind_(Kind::Clock) {}
    explicit Steered(Processes& processes) : processes_(useProcesses(&processes)), kind_(Kind::Processes) {}
    Steered(const Steered&) = delete;
    Steered& operator=(const Steered&) = delete;
    ~Steered();

private:
    enum class Kind { Files, Clock, Processes };
    FileSystem* files_ = nullptr;
    Clock* clock_ = nullptr;
    Processes* processes_ = nullptr;
    Kind kind_;
};

}  // namespace tarn::os
