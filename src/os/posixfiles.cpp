// SPDX-License-Identifier: Apache-2.0
//
// The real file system. Calls that a signal interrupts are begun again, partial reads and writes are
// continued, and every descriptor is closed in programs that are started.
#include "os/files.h"

#include "os/paths.h"
#include "os/pipesignal_internal.h"
#include "os/tinylimits.h"

#include <algorithm>
#include <cerrno>
#include <climits>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <dirent.h>
#include <fcntl.h>
#include <limits>
#include <poll.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <unistd.h>

namespace tarn::os {

namespace {

struct Mapping {
    int number;
    FileError error;
};

constexpr Mapping mappings[] = {
    {ENOENT, FileError::NotFound},  {ENOTDIR, FileError::NotFolder},    {EEXIST, FileError::Exists},
    {ENOTEMPTY, FileError::Exists}, {EACCES, FileError::Denied},        {EPERM, FileError::Denied},
    {EROFS, FileError::Denied},     {ETXTBSY, FileError::Denied},       {EBUSY, FileError::Denied},
    {EISDIR, FileError::IsFolder},  {ENOSPC, FileError::DiskFull},      {EDQUOT, FileError::DiskFull},
    {EFBIG, FileError::DiskFull},   {ENAMETOOLONG, FileError::BadName}, {ELOOP, FileError::BadName},
    {EILSEQ, FileError::BadName},   {ESTALE, FileError::Vanished},      {EPIPE, FileError::NoReader},
};

// The error of the call that has just failed; `otherwise` says which way the bytes went.
FileError lastError(FileError otherwise) {
    const int number = errno;
    for (const Mapping& one : mappings) {
        if (one.number == number) return one.error;
    }
    return otherwise;
}

FileError readResult(long result) {
    return result < 0 ? lastError(FileError::ReadFailed) : FileError::None;
}
FileError writeResult(long result) {
    return result < 0 ? lastError(FileError::WriteFailed) : FileError::None;
}

template <class Call>
auto uninterrupted(Call call) {
    auto result = call();
    while (result < 0 && errno == EINTR) result = call();
    return result;
}

constexpr std::int64_t nanosecondsPerSecond = 1'000'000'000;

timespec toTimespec(std::int64_t nanoseconds) {
    timespec time{};
    time.tv_sec = nanoseconds / nanosecondsPerSecond;
    time.tv_nsec = nanoseconds % nanosecondsPerSecond;
    if (time.tv_nsec < 0) {
        time.tv_nsec += nanosecondsPerSecond;
        --time.tv_sec;
    }
    return time;
}

// A moment too far away for the range is the nearest end of it.
std::int64_t toNanoseconds(const timespec& time) {
    constexpr std::int64_t last = std::numeric_limits<std::int64_t>::max() / nanosecondsPerSecond - 1;
    const std::int64_t seconds = std::clamp<std::int64_t>(time.tv_sec, -last, last);
    return seconds * nanosecondsPerSecond + time.tv_nsec;
}

// A path as the system takes it. A zero byte would end it early and name another file.
class Name {
public:
    explicit Name(const std::string& path) : text_(native(path)) {}
    [[nodiscard]] bool bad() const { return text_.empty() || text_.find('\0') != std::string::npos; }
    [[nodiscard]] const char* c_str() const { return text_.c_str(); }
    [[nodiscard]] const std::string& text() const { return text_; }

private:
    std::string text_;
};

FileInfo infoIn(const struct stat& status) {
    FileInfo info;
    info.exists = true;
    info.folder = S_ISDIR(status.st_mode);
    info.special = !info.folder && !S_ISREG(status.st_mode);
    info.size = status.st_size;
    info.modified = toNanoseconds(status.st_mtim);
    info.changed = toNanoseconds(status.st_ctim);
    info.mode = status.st_mode & 07777U;
    info.device = status.st_dev;
    info.inode = status.st_ino;
    info.links = static_cast<std::uint32_t>(status.st_nlink);
    info.owner = status.st_uid;
    info.group = status.st_gid;
    return info;
}

int openFlags(OpenMode mode) {
    // Without waiting: a pipe that nobody serves must not hold up the program.
    constexpr int always = O_CLOEXEC | O_NOCTTY | O_NONBLOCK;
    switch (mode) {
    case OpenMode::Read: return always | O_RDONLY;
    case OpenMode::CreateNew: return always | O_RDWR | O_CREAT | O_EXCL;
    case OpenMode::Truncate: return always | O_RDWR | O_CREAT | O_TRUNC;
    case OpenMode::Append: return always | O_WRONLY | O_CREAT | O_APPEND;
    case OpenMode::ReadWrite: return always | O_RDWR;
    case OpenMode::Write: return always | O_WRONLY;
    }
    return always | O_RDONLY;
}

// Follows a last part that is a link to something that does not exist; `path` becomes what it names. False if
// the last part is no link.
bool followDangling(std::string& path) {
    char target[PATH_MAX];
    const ssize_t length = ::readlink(path.c_str(), target, sizeof target);
    if (length < 0) return false;
    const std::string to(target, static_cast<std::size_t>(length));
    path = !to.empty() && to.front() == '/' ? to : joined(folderOf(path), to);
    return true;
}

bool realPath(const std::string& path, std::string& resolved) {
    char* const found = ::realpath(path.c_str(), nullptr);
    if (found == nullptr) return false;
    resolved = found;
    std::free(found);
    return true;
}

// A pipe has room when its reader takes something; one that takes nothing for so long is given up.
ssize_t writeToPipe(Handle handle, std::string_view bytes) {
    constexpr int longestWait = limits::LongestWait;  // milliseconds
    const PipeSignalAside aside;
    for (;;) {
        const ssize_t result = ::write(handle, bytes.data(), bytes.size());
        if (result >= 0 || errno != EAGAIN) return result;
        pollfd waiting{handle, POLLOUT, 0};
        if (uninterrupted([&] { return ::poll(&waiting, 1, longestWait); }) == 0) {
            errno = EIO;
            return -1;
        }
    }
}

class RealFiles : public FileSystem {
public:
    // A limit on the size of files must be an error of the write, not the end of the program.
    RealFiles() { std::signal(SIGXFSZ, SIG_IGN); }

    FileError open(const std::string& path, OpenMode mode, std::uint32_t permissions,
                   Handle& handle) override {
        handle = -1;
        const Name name(path);
        if (name.bad()) return FileError::BadName;
        const FileError otherwise = mode == OpenMode::Read ? FileError::ReadFailed : FileError::WriteFailed;
        const int opened = uninterrupted([&] { return ::open(name.c_str(), openFlags(mode), permissions); });
        if (opened < 0 && mode == OpenMode::Write && errno == ENXIO) return FileError::NoReader;
        if (opened < 0) return lastError(otherwise);
        struct stat status {};
        if (mode == OpenMode::Read && ::fstat(opened, &status) == 0 && S_ISDIR(status.st_mode)) {
            ::close(opened);
            return FileError::IsFolder;
        }
        handle = opened;
        return FileError::None;
    }

    FileError read(Handle handle, std::int64_t offset, char* into, std::size_t count,
                   std::size_t& got) override {
        const ssize_t result = uninterrupted([&] { return ::pread(handle, into, count, offset); });
        got = result < 0 ? 0 : static_cast<std::size_t>(result);
        return readResult(result);
    }

    FileError write(Handle handle, std::int64_t offset, std::string_view bytes) override {
        while (!bytes.empty()) {
            const ssize_t result = uninterrupted([&] { return writeSome(handle, offset, bytes); });
            if (result < 0) return lastError(FileError::WriteFailed);
            if (result == 0) return FileError::WriteFailed;
            bytes.remove_prefix(static_cast<std::size_t>(result));
            offset += result;
        }
        return FileError::None;
    }

    FileError truncate(Handle handle, std::int64_t size) override {
        return writeResult(uninterrupted([&] { return ::ftruncate(handle, size); }));
    }
    FileError size(Handle handle, std::int64_t& bytes) override {
        struct stat status {};
        const FileError error = readResult(::fstat(handle, &status));
        bytes = error == FileError::None ? status.st_size : 0;
        return error;
    }

    FileError sync(Handle handle) override {
        const int result = uninterrupted([&] { return ::fsync(handle); });
        return result < 0 && cannotBeSynced() ? FileError::None : writeResult(result);
    }

    void startSync(Handle handle) override { ::sync_file_range(handle, 0, 0, SYNC_FILE_RANGE_WRITE); }

    // Never begun again: the descriptor is gone even when a signal came.
    FileError close(Handle handle) override {
        const int result = ::close(handle);
        return result < 0 && errno == EINTR ? FileError::None : writeResult(result);
    }

    FileError rename(const std::string& from, const std::string& to) override {
        const Name name(from), target(to);
        if (name.bad() || target.bad()) return FileError::BadName;
        return writeResult(::rename(name.c_str(), target.c_str()));
    }

    FileError renameNew(const std::string& from, const std::string& to) override {
        const Name name(from), target(to);
        if (name.bad() || target.bad()) return FileError::BadName;
        const int result = ::renameat2(AT_FDCWD, name.c_str(), AT_FDCWD, target.c_str(), RENAME_NOREPLACE);
        if (result == 0 || (errno != EINVAL && errno != ENOSYS)) return writeResult(result);
        // A disk that knows no such renaming: a second name is never given over another file, and where there are no
        // second names either, looking first is what is left.
        if (::link(name.c_str(), target.c_str()) == 0) return writeResult(::unlink(name.c_str()));
        if (errno != EPERM && errno != EOPNOTSUPP && errno != EMLINK)
            return lastError(FileError::WriteFailed);
        struct stat status {};
        if (::lstat(target.c_str(), &status) == 0) return FileError::Exists;
        return writeResult(::rename(name.c_str(), target.c_str()));
    }

    FileError remove(const std::string& path) override {
        return changed(path, [](const char* name) { return ::unlink(name); });
    }
    FileError makeFolder(const std::string& path) override {
        return changed(path, [](const char* name) { return ::mkdir(name, 0777); });
    }
    FileError removeFolder(const std::string& path) override {
        return changed(path, [](const char* name) { return ::rmdir(name); });
    }
    FileError setMode(const std::string& path, std::uint32_t mode) override {
        return changed(path, [&](const char* name) { return ::chmod(name, mode); });
    }
    FileError setOwner(const std::string& path, std::uint32_t owner, std::uint32_t group) override {
        return changed(path, [&](const char* name) { return ::chown(name, owner, group); });
    }
    FileError setModified(const std::string& path, std::int64_t nanoseconds) override {
        const timespec times[2] = {{0, UTIME_OMIT}, toTimespec(nanoseconds)};
        return changed(path, [&](const char* name) { return ::utimensat(AT_FDCWD, name, times, 0); });
    }

    FileError setModifiedOpen(Handle handle, std::int64_t nanoseconds) override {
        const timespec times[2] = {{0, UTIME_OMIT}, toTimespec(nanoseconds)};
        return writeResult(::futimens(handle, times));
    }

    FileError link(const std::string& target, const std::string& path) override {
        const Name to(target);
        if (to.bad()) return FileError::BadName;
        return changed(path, [&](const char* name) { return ::symlink(to.c_str(), name); });
    }

    FileError syncFolder(const std::string& path) override {
        const Name name(path);
        if (name.bad()) return FileError::BadName;
        const int folder =
            uninterrupted([&] { return ::open(name.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC); });
        if (folder < 0 && errno == EACCES) {
            ::sync();  // a folder that may be written and not read: everything is synced instead
            return FileError::None;
        }
        if (folder < 0) return lastError(FileError::WriteFailed);
        const FileError error = sync(folder);
        ::close(folder);
        return error;
    }

    FileError info(const std::string& path, FileInfo& info) override {
        info = {};
        const Name name(path);
        if (name.bad()) return FileError::BadName;
        struct stat status {};
        if (::stat(name.c_str(), &status) < 0) {
            return errno == ENOENT || errno == ENOTDIR ? FileError::None : lastError(FileError::ReadFailed);
        }
        const bool writeBits = (status.st_mode & 0222U) != 0 || S_ISDIR(status.st_mode);
        info = infoIn(status);
        info.writable = writeBits && ::faccessat(AT_FDCWD, name.c_str(), W_OK, AT_EACCESS) == 0;
        return FileError::None;
    }

    FileError infoOpen(Handle handle, FileInfo& info) override {
        struct stat status {};
        const FileError error = readResult(::fstat(handle, &status));
        info = error == FileError::None ? infoIn(status) : FileInfo();
        return error;
    }

    FileError list(const std::string& path, std::vector<std::string>& names) override {
        names.clear();
        const Name name(path);
        if (name.bad()) return FileError::BadName;
        DIR* const folder = ::opendir(name.c_str());
        if (folder == nullptr) return lastError(FileError::ReadFailed);
        errno = 0;
        while (const dirent* const entry = ::readdir(folder)) {
            const std::string_view one = entry->d_name;
            if (one != "." && one != "..") names.emplace_back(one);
        }
        const FileError error = errno != 0 ? lastError(FileError::ReadFailed) : FileError::None;
        ::closedir(folder);
        if (error != FileError::None) names.clear();
        std::sort(names.begin(), names.end());
        return error;
    }

    FileError resolve(const std::string& path, std::string& resolved) override {
        constexpr int mostLinks = 40;  // as many as the system follows itself
        resolved.clear();
        const Name given(path);
        if (given.bad()) return FileError::BadName;
        std::string name = given.text();
        for (int links = 0; links < mostLinks; ++links) {
            if (realPath(name, resolved)) return FileError::None;
            if (errno != ENOENT) return lastError(FileError::ReadFailed);
            if (followDangling(name)) continue;
            const std::string last = nameOf(name);
            if (last.empty() || last == "." || last == "..") return FileError::NotFound;
            std::string folder = folderOf(name);
            if (!realPath(folder.empty() ? "." : folder, folder)) return lastError(FileError::ReadFailed);
            resolved = joined(folder, last);
            return FileError::None;
        }
        return FileError::BadName;
    }

    FileError freeSpace(const std::string& path, std::int64_t& bytes) override {
        bytes = 0;
        const Name name(path);
        if (name.bad()) return FileError::BadName;
        struct statvfs status {};
        if (uninterrupted([&] { return ::statvfs(name.c_str(), &status); }) < 0) {
            return lastError(FileError::ReadFailed);
        }
        constexpr auto most = static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max());
        const std::uint64_t blocks = status.f_bavail, size = status.f_frsize;
        bytes = static_cast<std::int64_t>(size != 0 && blocks > most / size ? most : blocks * size);
        return FileError::None;
    }

    std::string currentFolder() override {
        char* const found = ::getcwd(nullptr, 0);
        if (found == nullptr) return {};
        std::string folder = found;
        std::free(found);
        return folder;
    }

    FileError setCurrentFolder(const std::string& path) override {
        return changed(path, [](const char* name) { return ::chdir(name); });
    }

private:
    // Devices and pipes have no position and are written at their end.
    static ssize_t writeSome(Handle handle, std::int64_t offset, std::string_view bytes) {
        const ssize_t result = ::pwrite(handle, bytes.data(), bytes.size(), offset);
        return result < 0 && errno == ESPIPE ? writeToPipe(handle, bytes) : result;
    }

    // Devices, and folders of some file systems, have nothing that could be synced.
    static bool cannotBeSynced() { return errno == EINVAL || errno == ENOTSUP || errno == EROFS; }

    template <class Call>
    static FileError changed(const std::string& path, Call call) {
        const Name name(path);
        return name.bad() ? FileError::BadName : writeResult(call(name.c_str()));
    }
};

}  // namespace

FileSystem& realFiles() {
    static RealFiles system;
    return system;
}

}  // namespace tarn::os
