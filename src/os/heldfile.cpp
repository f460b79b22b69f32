// SPDX-License-Identifier: Apache-2.0
#include "os/heldfile.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace tarn::os {

HeldFile::~HeldFile() {
    if (descriptor_ >= 0) ::close(descriptor_);
}

HeldFile::Taken HeldFile::take(const std::string& path) {
    // A pipe would be waited for otherwise.
    descriptor_ = ::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK);
    struct stat opened {
    }, named{};
    if (descriptor_ < 0) return errno == ENOENT ? Taken::No : Taken::Failed;
    if (::fstat(descriptor_, &opened) < 0 || !S_ISREG(opened.st_mode)) return Taken::Failed;
    if (::flock(descriptor_, LOCK_EX | LOCK_NB) < 0)
        return errno == EWOULDBLOCK || errno == EINTR ? Taken::No : Taken::Failed;
    const bool same =
        ::lstat(path.c_str(), &named) == 0 && named.st_ino == opened.st_ino && named.st_dev == opened.st_dev;
    return same ? Taken::Yes : Taken::No;
}

}  // namespace tarn::os
