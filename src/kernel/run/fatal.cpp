// SPDX-License-Identifier: Apache-2.0
//
// The box of last resort. The text always goes to standard error. Where there is a screen, the program
// tarnwick-fatal is started with title and text as its arguments; it is a process of its own, so it works
// when everything in this one has failed. It stands beside this executable, beside the library that holds
// this code, or on PATH.
//
// Rules: from ShowFatalBox on no memory is allocated and only calls are made that are safe in a signal
// handler.

#include "kernel/run/fatal.h"

#include "os/paths.h"
#include "os/process.h"

#include <climits>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <dlfcn.h>
#include <string>
#include <sys/wait.h>
#include <unistd.h>

namespace tarn {

namespace {

constexpr const char* programName = "tarnwick-fatal";

char besideProgram[PATH_MAX] = "";
char besideLibrary[PATH_MAX] = "";
bool screen = false;

void writeAll(const char* text) {
    for (std::size_t left = std::strlen(text); left > 0;) {
        const ssize_t written = write(STDERR_FILENO, text, left);
        if (written <= 0) return;
        text += written;
        left -= static_cast<std::size_t>(written);
    }
}

[[noreturn]] void becomeBox(const char* title, const char* text) {
    sigset_t none;
    sigemptyset(&none);
    sigprocmask(SIG_SETMASK, &none, nullptr);
    char* const arguments[] = {const_cast<char*>(programName), const_cast<char*>(title),
                               const_cast<char*>(text), nullptr};
    if (besideProgram[0] != 0) execv(besideProgram, arguments);
    if (besideLibrary[0] != 0) execv(besideLibrary, arguments);
    execvp(programName, arguments);
    _exit(127);
}

void standardBox(const char* title, const char* text) {
    for (const char* part : {title, "\n", text}) writeAll(part);
    if (!screen) return;
    const pid_t child =
        _Fork();  // without the handlers of fork, which may wait for a lock that the fault left taken
    if (child == 0) becomeBox(title, text);
    int status = 0;
    while (child > 0 && waitpid(child, &status, 0) < 0 && errno == EINTR) {}
}

FatalBox fatalBox = standardBox;

void keepPath(char (&into)[PATH_MAX], const std::string& path) {
    if (path.size() < PATH_MAX) into[path.copy(into, path.size())] = 0;
}

std::string libraryFolder() {
    Dl_info info{};
    if (dladdr(reinterpret_cast<const void*>(&ShowFatalBox), &info) == 0 || info.dli_fname == nullptr)
        return {};
    return os::folderPart(info.dli_fname);
}

}  // namespace

void LocateFatalProgram() {
    keepPath(besideProgram, os::executableFolder() + programName);
    const std::string folder = libraryFolder();
    if (!folder.empty()) keepPath(besideLibrary, folder + programName);
    screen = !os::environment("DISPLAY").empty() || !os::environment("WAYLAND_DISPLAY").empty();
}

FatalBox SetFatalBox(FatalBox box) {
    const FatalBox before = fatalBox;
    fatalBox = box != nullptr ? box : standardBox;
    return before;
}

void ShowFatalBox(const char* title, const char* text) {
    fatalBox(title, text);
}

}  // namespace tarn
