// SPDX-License-Identifier: Apache-2.0
//
// Facts about this process and this user.
#include "os/files.h"
#include "os/paths.h"
#include "os/process.h"

#include <cerrno>
#include <climits>
#include <cstdlib>
#include <pwd.h>
#include <string_view>
#include <sys/stat.h>
#include <unistd.h>
#ifdef __SANITIZE_ADDRESS__
#include <sanitizer/lsan_interface.h>
#endif

namespace tarn::os {

namespace {

struct Self {
    std::vector<std::string> arguments;
    std::string path;  // empty until it is known
};

Self& self() {
    static Self one;
    return one;
}

EndHook endHook = nullptr;

std::string linkedExecutable() {
    char target[PATH_MAX];
    const ssize_t length = ::readlink("/proc/self/exe", target, sizeof target);
    return length > 0 ? std::string(target, static_cast<std::size_t>(length)) : std::string();
}

// The name by which a program was called is what its caller says; it is believed if it names the running
// file.
bool isThisProgram(const std::string& path) {
    struct stat named {
    }, running{};
    return ::stat(path.c_str(), &named) == 0 && ::stat("/proc/self/exe", &running) == 0 &&
           named.st_dev == running.st_dev && named.st_ino == running.st_ino;
}

std::string absolute(std::string path) {
    while (path.starts_with("./")) path.erase(0, path.find_first_not_of('/', 1));
    return path.starts_with('/') ? path : joined(realFiles().currentFolder(), path);
}

std::string foundOnPath(const std::string& name) {
    const std::string folders = environment("PATH");
    for (std::size_t start = 0; start <= folders.size();) {
        const std::size_t end = std::min(folders.find(':', start), folders.size());
        const std::string folder = folders.substr(start, end - start);  // empty: the current one
        const std::string path = absolute(folder.empty() ? name : joined(folder, name));
        if (isThisProgram(path)) return path;
        start = end + 1;
    }
    return {};
}

std::string asCalled(const std::string& name) {
    if (name.empty()) return linkedExecutable();
    const std::string path = name.find('/') == std::string::npos ? foundOnPath(name) : absolute(name);
    return !path.empty() && isThisProgram(path) ? path : linkedExecutable();
}

std::string homeFolder() {
    std::string home = environment("HOME");
    if (home.starts_with('/')) return home;
    const passwd* const entry = ::getpwuid(::geteuid());
    return entry != nullptr && entry->pw_dir != nullptr ? entry->pw_dir : "/";
}

std::string userFolder(const char* variable, const char* usual) {
    const std::string folder = environment(variable);
    return joined(folder.starts_with('/') ? folder : joined(homeFolder(), usual), "tarnwick/");
}

bool isFolderOfThisUser(const std::string& path) {
    struct stat status {};
    return ::stat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode) && status.st_uid == ::geteuid();
}

}  // namespace

void setCommandLine(int argc, char** argv) {
    self().arguments.assign(argc > 0 ? argv + 1 : argv, argv + argc);
    self().path = asCalled(argc > 0 ? argv[0] : "");
}

const std::vector<std::string>& commandLine() {
    return self().arguments;
}

std::string executablePath() {
    if (self().path.empty()) self().path = linkedExecutable();
    return self().path;
}

std::string executableFolder() {
    return folderPart(executablePath());
}

std::string environment(const char* name) {
    const char* const value = std::getenv(name);
    return value != nullptr ? value : "";
}

bool debuggerAttached() {
    constexpr std::string_view label = "\nTracerPid:\t";
    std::string status;
    Handle handle = -1;
    if (realFiles().open("/proc/self/status", OpenMode::Read, 0, handle) != FileError::None) return false;
    status.resize(4096);
    std::size_t got = 0;
    realFiles().read(handle, 0, status.data(), status.size(), got);
    realFiles().close(handle);
    status.resize(got);
    const std::size_t at = status.find(label);
    return at != std::string::npos && status.compare(at + label.size(), 2, "0\n") != 0;
}

void debugOutput(const std::string& text) {
    std::string_view rest = text;
    while (!rest.empty()) {
        const ssize_t written = ::write(STDERR_FILENO, rest.data(), rest.size());
        if (written < 0 && errno == EINTR) continue;
        if (written <= 0) return;  // nobody to tell
        rest.remove_prefix(static_cast<std::size_t>(written));
    }
}

void endProcess(int code) {
    if (endHook != nullptr) endHook(code);
#ifdef __SANITIZE_ADDRESS__
    // Nothing is destroyed here, so leaks would be looked for nowhere.
    if (code == 0 && __lsan_do_recoverable_leak_check() != 0) code = 1;
#endif
    ::_exit(code);
}

EndHook useEndHook(EndHook hook) {
    const EndHook before = endHook;
    endHook = hook;
    return before;
}

std::string settingsFolder() {
    return userFolder("XDG_CONFIG_HOME", ".config");
}

std::string stateFolder() {
    return userFolder("XDG_STATE_HOME", ".local/state");
}

std::string runtimeFolder() {
    const std::string folder = environment("XDG_RUNTIME_DIR");
    if (folder.starts_with('/') && isFolderOfThisUser(folder)) return joined(folder, "tarnwick/");
    return "/tmp/tarnwick-" + std::to_string(::geteuid()) + "/";
}

}  // namespace tarn::os
