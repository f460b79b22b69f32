// SPDX-License-Identifier: Apache-2.0
#include "os/runtimenotes.h"

#include "os/runtimefiles_internal.h"
#include "os/text/ascii.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <dirent.h>
#include <fcntl.h>
#include <memory>
#include <unistd.h>

namespace tarn::os {
namespace {

constexpr std::size_t MostName = 100;

bool isName(std::string_view name) {
    return !name.empty() && name.size() <= MostName && ascii::isLetter(name.front()) &&
           std::all_of(name.begin(), name.end(), [](char c) {
               return ascii::isLetter(c) || ascii::isDigit(c) || c == '-' || c == '_' || c == '.';
           });
}

bool writeAll(int file, std::string_view text) {
    while (!text.empty()) {
        const ssize_t written = ::write(file, text.data(), text.size());
        if (written < 0 && errno == EINTR) continue;
        if (written <= 0) return false;
        text.remove_prefix(static_cast<std::size_t>(written));
    }
    return true;
}

std::string readAll(int file) {
    std::string text(MaximalNote + 1, '\0');
    std::size_t size = 0;
    while (size < text.size()) {
        const ssize_t got = ::read(file, text.data() + size, text.size() - size);
        if (got < 0 && errno == EINTR) continue;
        if (got < 0) return {};
        if (got == 0) break;
        size += static_cast<std::size_t>(got);
    }
    text.resize(size <= MaximalNote ? size : 0);
    return text;
}

struct CloseFolder {
    void operator()(DIR* folder) const { ::closedir(folder); }
};

}  // namespace

bool putNote(const std::string& name, std::string_view text) {
    if (!isName(name) || text.size() > MaximalNote) return false;
    const Descriptor folder = openRuntimeFolder();
    if (!folder.valid()) return false;
    // Two processes may write a note of one name at once; each has a file of its own until it is whole.
    const std::string draft = "draft-" + std::to_string(::getpid()) + "-" + name;
    const Descriptor file(::openat(folder.number(), draft.c_str(),
                                   O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC | O_NOFOLLOW, 0600));
    if (!file.valid()) return false;
    if (writeAll(file.number(), text) &&
        ::renameat(folder.number(), draft.c_str(), folder.number(), name.c_str()) == 0)
        return true;
    ::unlinkat(folder.number(), draft.c_str(), 0);
    return false;
}

std::string getNote(const std::string& name) {
    if (!isName(name)) return {};
    const Descriptor folder = openRuntimeFolder();
    const Descriptor file(folder.valid() ? ::openat(folder.number(), name.c_str(),
                                                    O_RDONLY | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK)
                                         : -1);
    return file.valid() ? readAll(file.number()) : std::string();
}

void dropNote(const std::string& name) {
    if (!isName(name)) return;
    const Descriptor folder = openRuntimeFolder();
    if (folder.valid()) ::unlinkat(folder.number(), name.c_str(), 0);
}

std::vector<std::string> notesWith(std::string_view start) {
    std::vector<std::string> names;
    const Descriptor folder = openRuntimeFolder();
    const int copy = folder.valid() ? ::openat(folder.number(), ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC) : -1;
    if (copy < 0) return names;
    const std::unique_ptr<DIR, CloseFolder> list(::fdopendir(copy));
    if (list == nullptr) {
        ::close(copy);
        return names;
    }
    while (const dirent* entry = ::readdir(list.get())) {
        const std::string_view name = entry->d_name;
        if (name.starts_with(start) && isName(name)) names.emplace_back(name);
    }
    return names;
}

}  // namespace tarn::os
