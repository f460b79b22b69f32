// SPDX-License-Identifier: Apache-2.0
//
// The lock that makes a program run once for each user. The lock file stays when the lock goes: removing it
// would let two processes hold a lock on two files of the same name.
#include "os/instance.h"

#include "os/clock.h"
#include "os/paths.h"
#include "os/process.h"
#include "os/runtimefiles_internal.h"

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace tarn::os {

namespace {

// The process is kept because a fork copies the descriptor but not the right to speak for the lock.
struct Lock {
    Descriptor file;
    std::string name;
    pid_t process = 0;
};

Lock& held() {
    static Lock lock;
    return lock;
}

// FNV-1a, to tell long names with equal starts apart.
std::string hashOf(const std::string& text) {
    std::uint64_t hash = 14695981039346656037U;
    for (const char one : text) hash = (hash ^ static_cast<unsigned char>(one)) * 1099511628211U;
    std::string digits;
    for (int i = 0; i < 16; ++i, hash >>= 4U) digits += "0123456789abcdef"[hash & 15U];
    return digits;
}

LockState tryLock(int folder, const std::string& name, Descriptor& lock) {
    Descriptor file(
        ::openat(folder, name.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK, 0600));
    if (!file.valid()) return LockState::Failed;
    if (::flock(file.number(), LOCK_EX | LOCK_NB) < 0) {
        return errno == EWOULDBLOCK || errno == EINTR ? LockState::Busy : LockState::Failed;
    }
    // A cleaner of temporary files may have removed the name between opening and locking.
    struct stat locked {
    }, named{};
    const bool same = ::fstat(file.number(), &locked) == 0 &&
                      ::fstatat(folder, name.c_str(), &named, AT_SYMLINK_NOFOLLOW) == 0 &&
                      locked.st_ino == named.st_ino && locked.st_dev == named.st_dev;
    if (!same) return LockState::Busy;
    lock = std::move(file);
    return LockState::Acquired;
}

}  // namespace

Descriptor::~Descriptor() {
    if (number_ >= 0) ::close(number_);
}

Descriptor openRuntimeFolder() {
    std::string path = runtimeFolder();
    stripTrailingSlashes(path);
    if (::mkdir(path.c_str(), 0700) < 0 && errno != EEXIST) return {};
    Descriptor folder(::open(path.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
    struct stat status {};
    if (!folder.valid() || ::fstat(folder.number(), &status) < 0 || status.st_uid != ::geteuid()) return {};
    if ((status.st_mode & 0777U) != 0700 && ::fchmod(folder.number(), 0700) < 0) return {};
    return folder;
}

std::string runtimeFileName(const std::string& name, const char* extension) {
    constexpr std::size_t longest = 64;
    std::string file = name;
    std::replace_if(
        file.begin(), file.end(), [](char c) { return c == '/' || c == '\\' || c == '\0'; }, '_');
    if (file != name || file.size() > longest) file = file.substr(0, longest) + "-" + hashOf(name);
    return file + extension;
}

bool holdsInstanceLock(const std::string& name) {
    const Lock& lock = held();
    return lock.file.valid() && lock.process == ::getpid() && lock.name == name;
}

LockState acquireInstanceLock(const std::string& name, int milliseconds) {
    constexpr std::int64_t nanosecondsPerMillisecond = 1'000'000;
    constexpr std::int64_t pause = 10 * nanosecondsPerMillisecond;
    if (holdsInstanceLock(name)) return LockState::Acquired;
    releaseInstanceLock();
    const Descriptor folder = openRuntimeFolder();
    if (!folder.valid()) return LockState::Failed;
    const std::string file = runtimeFileName(name, ".lock");
    const std::int64_t end = clock().steady() + milliseconds * nanosecondsPerMillisecond;
    for (;;) {
        const LockState state = tryLock(folder.number(), file, held().file);
        if (state == LockState::Acquired) {
            held().name = name;
            held().process = ::getpid();
        }
        const std::int64_t left = end - clock().steady();
        if (state != LockState::Busy || left <= 0) return state;
        clock().sleep(std::min(left, pause));
    }
}

void releaseInstanceLock() {
    Lock& lock = held();
    if (lock.file.valid() && lock.process == ::getpid()) ::flock(lock.file.number(), LOCK_UN);
    lock = {};
}

}  // namespace tarn::os
