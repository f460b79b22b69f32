// SPDX-License-Identifier: Apache-2.0
//
// Starting and ending programs.
//
// An ended child is looked at without being reaped until its object goes: as long as it is not reaped, the
// system gives its number to nobody else, so that the signals of `stop` reach this child's group and no
// other.
#include "os/process.h"

#include "os/files.h"
#include "os/pipesignal_internal.h"
#include "os/runtimefiles_internal.h"

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <dirent.h>
#include <fcntl.h>
#include <spawn.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <time.h>
#include <unistd.h>

#include <utility>

namespace tarn::os {

namespace {

struct Mapping {
    int number;
    StartError error;
};

constexpr Mapping mappings[] = {
    {ENOENT, StartError::NotFound},      {ENOTDIR, StartError::NotFound},
    {ELOOP, StartError::NotFound},       {ENAMETOOLONG, StartError::NotFound},
    {EACCES, StartError::NotExecutable}, {EPERM, StartError::NotExecutable},
    {ENOEXEC, StartError::BadFormat},    {EISDIR, StartError::NotExecutable},
    {ETXTBSY, StartError::WontRun},      {ELIBBAD, StartError::WontRun},
    {ENOMEM, StartError::NoMemory},      {EAGAIN, StartError::NoMemory},
    {E2BIG, StartError::BadArguments},
};

StartError startError(int number, const std::string& program) {
    // The system gives the same error when the interpreter is what is missing.
    if (number == ENOENT && infoOf(program).exists) return StartError::WontRun;
    for (const Mapping& one : mappings) {
        if (one.number == number) return one.error;
    }
    return StartError::Other;
}

std::int64_t millisecondsNow() {
    timespec time{};
    ::clock_gettime(CLOCK_MONOTONIC, &time);
    return time.tv_sec * 1000 + time.tv_nsec / 1'000'000;
}

// Asks `done` until it is true or the time is over; false if it is over. The pauses grow with the time that
// has gone, from a quarter of a millisecond to five.
template <class Done>
bool waitUntil(int milliseconds, Done done) {
    const std::int64_t start = millisecondsNow();
    for (;;) {
        if (done()) return true;
        const std::int64_t gone = millisecondsNow() - start;
        if (gone >= milliseconds) return false;
        const std::int64_t microseconds = std::clamp<std::int64_t>(gone * 1000 / 8, 250, 5000);
        const timespec pause{0, static_cast<long>(microseconds * 1000)};
        ::nanosleep(&pause, nullptr);
    }
}

// Children whose objects have gone while they ran; each start reaps those that have ended since.
std::vector<pid_t>& abandoned() {
    static std::vector<pid_t> list;
    return list;
}

void reapAbandoned() {
    std::erase_if(abandoned(), [](pid_t pid) { return ::waitpid(pid, nullptr, WNOHANG) != 0; });
}

struct Status {
    char state = '\0';  // '\0': there is no such process
    int group = 0;
    // Ended ones are there until their parent reaps them, which the first process of a container may do late or
    // never.
    [[nodiscard]] bool runs() const { return state != '\0' && state != 'Z' && state != 'X'; }
};

Status statusOf(const std::string& process) {
    char text[512];
    std::size_t got = 0;
    Handle handle = -1;
    const std::string path = "/proc/" + process + "/stat";
    if (realFiles().open(path, OpenMode::Read, 0, handle) != FileError::None) return {};
    realFiles().read(handle, 0, text, sizeof text - 1, got);
    realFiles().close(handle);
    text[got] = '\0';
    const char* const name = std::strrchr(text, ')');  // the program's own name may hold anything
    Status status;
    int parent = 0;
    if (name == nullptr || std::sscanf(name + 1, " %c %d %d", &status.state, &parent, &status.group) != 3)
        return {};
    return status;
}

bool groupRuns(pid_t group) {
    std::vector<std::string> names;
    realFiles().list("/proc", names);
    return std::any_of(names.begin(), names.end(), [&](const std::string& name) {
        if (name.front() < '0' || name.front() > '9') return false;
        const Status status = statusOf(name);
        return status.runs() && status.group == group;
    });
}

// Both ends of a pipe; this process keeps one of them, which waits for nothing.
struct Pipe {
    Descriptor read, write;
};

bool makePipe(Pipe& pipe) {
    int ends[2];
    if (::pipe2(ends, O_CLOEXEC) != 0) return false;
    pipe.read = Descriptor(ends[0]);
    pipe.write = Descriptor(ends[1]);
    return true;
}

// Of an output, so that a child that writes much does not wait for each look at it; the system may allow less.
constexpr int OutputBytes = 1 << 20;

Descriptor kept(Descriptor& end) {
    ::fcntl(end.number(), F_SETFL, ::fcntl(end.number(), F_GETFL) | O_NONBLOCK);
    return std::move(end);
}

bool mayComeLater() {
    return errno == EAGAIN || errno == EWOULDBLOCK || errno == EINTR;
}

class RealChild : public Child {
public:
    RealChild(pid_t pid, bool ownGroup, Descriptor input, Descriptor output)
        : pid_(pid), all_(ownGroup ? -pid : pid), input_(std::move(input)), output_(std::move(output)) {}
    RealChild(const RealChild&) = delete;
    RealChild& operator=(const RealChild&) = delete;
    ~RealChild() override {
        if (!reaped_ && ::waitpid(pid_, nullptr, WNOHANG) == 0) abandoned().push_back(pid_);
    }

    ExitState poll() override {
        if (state_.ended) return state_;
        siginfo_t info{};
        if (::waitid(P_PID, static_cast<id_t>(pid_), &info, WEXITED | WNOHANG | WNOWAIT) < 0) {
            if (errno == ECHILD) state_.ended = reaped_ = true;  // somebody else has reaped it
            return state_;
        }
        if (info.si_pid == 0) return state_;
        state_.ended = true;
        (info.si_code == CLD_EXITED ? state_.code : state_.signal) = info.si_status;
        return state_;
    }

    ExitState wait(int milliseconds) override {
        waitUntil(milliseconds, [this] { return poll().ended; });
        return state_;
    }

    void stop(int graceMilliseconds) override {
        constexpr int forcedMilliseconds = 1000;  // for the system to end what was forced
        if (groupGone()) return;
        ::kill(all_, SIGTERM);
        ::kill(all_, SIGCONT);  // a process that was halted must be able to hear it
        if (waitUntil(graceMilliseconds, [this] { return groupGone(); })) return;
        ::kill(all_, SIGKILL);
        waitUntil(forcedMilliseconds, [this] { return groupGone(); });
    }

    [[nodiscard]] int id() const override { return pid_; }

    int readOutput(std::string& into, std::size_t most) override {
        if (!output_.valid()) return -1;
        const std::size_t before = into.size();
        into.resize(before + most);
        const ssize_t got = ::read(output_.number(), into.data() + before, most);
        const bool later = got < 0 && mayComeLater();
        into.resize(before + static_cast<std::size_t>(std::max<ssize_t>(got, 0)));
        if (got > 0 || later) return static_cast<int>(std::max<ssize_t>(got, 0));
        output_ = Descriptor();
        return -1;
    }

    int writeInput(std::string_view bytes) override {
        if (!input_.valid()) return -1;
        const PipeSignalAside aside;
        const ssize_t taken = ::write(input_.number(), bytes.data(), bytes.size());
        if (taken >= 0 || mayComeLater()) return static_cast<int>(std::max<ssize_t>(taken, 0));
        input_ = Descriptor();
        return -1;
    }

    void endInput() override { input_ = Descriptor(); }

private:
    // Reaps the child once it has ended; from then on the number is kept from others by the rest of the group
    // alone, so that it must not be used again when the group has been seen empty.
    bool groupGone() {
        if (gone_) return true;
        if (!poll().ended) return false;
        if (!reaped_) ::waitpid(pid_, nullptr, 0);
        reaped_ = true;
        gone_ = all_ > 0 || (::kill(all_, 0) < 0 && errno == ESRCH);
        if (!gone_ && !groupRuns(pid_)) {
            ::kill(all_, SIGKILL);  // one that was made while the others were looked at
            gone_ = true;
        }
        return gone_;
    }

    pid_t pid_, all_;            // `all_`: whom signals go to, the group or the child alone
    Descriptor input_, output_;  // what this process writes to and reads from
    ExitState state_;
    bool reaped_ = false;
    bool gone_ = false;
};

class File {
public:
    File(const std::string& path, int flags)
        : number_(::open(path.c_str(), flags | O_CLOEXEC | O_NOCTTY, 0666)) {}
    File(const File&) = delete;
    File& operator=(const File&) = delete;
    ~File() {
        if (number_ >= 0) ::close(number_);
    }
    [[nodiscard]] int number() const { return number_; }

private:
    int number_;
};

// What the child does before it becomes the program.
class Preparation {
public:
    Preparation(bool ownGroup, bool goesOnUnread) {
        ::posix_spawnattr_init(&attributes_);
        ::posix_spawn_file_actions_init(&actions_);
        sigset_t none, all;
        ::sigemptyset(&none);
        ::sigfillset(&all);
        ::sigdelset(&all, SIGKILL);
        ::sigdelset(&all, SIGSTOP);
        if (goesOnUnread) ::sigdelset(&all, SIGPIPE);  // the child gets it as it is at the spawn
        ::posix_spawnattr_setsigmask(&attributes_, &none);
        ::posix_spawnattr_setsigdefault(&attributes_, &all);
        ::posix_spawnattr_setpgroup(&attributes_, 0);
        const int group = ownGroup ? POSIX_SPAWN_SETPGROUP : 0;
        ::posix_spawnattr_setflags(
            &attributes_, static_cast<short>(group | POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF));
    }
    Preparation(const Preparation&) = delete;
    Preparation& operator=(const Preparation&) = delete;
    ~Preparation() {
        ::posix_spawn_file_actions_destroy(&actions_);
        ::posix_spawnattr_destroy(&attributes_);
    }

    void input(int file) { ::posix_spawn_file_actions_adddup2(&actions_, file, STDIN_FILENO); }
    void output(int file) {
        ::posix_spawn_file_actions_adddup2(&actions_, file, STDOUT_FILENO);
        ::posix_spawn_file_actions_adddup2(&actions_, file, STDERR_FILENO);
    }
    void folder(const std::string& path) { ::posix_spawn_file_actions_addchdir_np(&actions_, path.c_str()); }
    void closeOthers() { ::posix_spawn_file_actions_addclosefrom_np(&actions_, STDERR_FILENO + 1); }

    int spawn(const std::string& program, char* const* arguments, pid_t& pid) {
        return ::posix_spawn(&pid, program.c_str(), &actions_, &attributes_, arguments, environ);
    }

private:
    posix_spawnattr_t attributes_{};
    posix_spawn_file_actions_t actions_{};
};

bool holdsZero(const std::string& text) {
    return text.find('\0') != std::string::npos;
}

// What can be told before the system is asked. Paths are the system's own.
StartError check(const StartRequest& request) {
    if (request.program.empty() || holdsZero(request.program) || holdsZero(request.folder))
        return StartError::NotFound;
    if (std::any_of(request.arguments.begin(), request.arguments.end(), holdsZero))
        return StartError::BadArguments;
    if (holdsZero(request.outputFile)) return StartError::BadOutput;
    if (holdsZero(request.inputFile)) return StartError::BadInput;
    // A folder that is missing would give the same error as a program that is missing.
    if (!request.folder.empty() && !infoOf(request.folder).folder) return StartError::NotFound;
    return StartError::None;
}

// If this process was started with SIGCHLD ignored, exit codes would be lost.
void hearOfChildren() {
    struct sigaction action {};
    ::sigaction(SIGCHLD, nullptr, &action);
    if (action.sa_handler == SIG_IGN) std::signal(SIGCHLD, SIG_DFL);
}

// Files are opened without waiting; the program expects to wait where the file makes it wait.
void waits(int file, int mode) {
    ::fcntl(file, F_SETFL, mode);
}

// Opening a folder for reading works, and reading from it does not.
bool isReadable(int file) {
    struct stat status {};
    return file >= 0 && ::fstat(file, &status) == 0 && !S_ISDIR(status.st_mode);
}

// For the lifetime of this, programs that are started inherit that nobody who reads is no reason to end.
class PipeSignalIgnored {
public:
    explicit PipeSignalIgnored(bool wanted) : wanted_(wanted) {
        struct sigaction ignored {};
        ignored.sa_handler = SIG_IGN;
        if (wanted_) ::sigaction(SIGPIPE, &ignored, &before_);
    }
    ~PipeSignalIgnored() {
        if (wanted_) ::sigaction(SIGPIPE, &before_, nullptr);
    }
    PipeSignalIgnored(const PipeSignalIgnored&) = delete;
    PipeSignalIgnored& operator=(const PipeSignalIgnored&) = delete;

private:
    bool wanted_;
    struct sigaction before_ {};
};

// The pipes of a child, where the request wants them.
struct Pipes {
    Pipe input, output;
    bool make(const StartRequest& request) {
        if (!request.piped) return true;
        return (!request.inputFile.empty() || makePipe(input)) &&
               (!request.outputFile.empty() || makeOutput());
    }

private:
    bool makeOutput() {
        if (!makePipe(output)) return false;
        ::fcntl(output.write.number(), F_SETPIPE_SZ, OutputBytes);
        return true;
    }
};

StartError spawn(const StartRequest& request, Pipes& pipes, pid_t& pid) {
    if (const StartError error = check(request); error != StartError::None) return error;
    if (!pipes.make(request)) return StartError::Other;
    Preparation preparation(request.ownGroup, request.piped);
    const File input(request.inputFile.empty() ? "/dev/null" : request.inputFile, O_RDONLY | O_NONBLOCK);
    if (!request.inputFile.empty() && !isReadable(input.number())) return StartError::BadInput;
    if (pipes.input.read.valid()) {
        preparation.input(pipes.input.read.number());
    } else if (input.number() >= 0) {
        waits(input.number(), O_RDONLY);
        preparation.input(input.number());
    }
    const File output(request.outputFile, O_WRONLY | O_CREAT | O_TRUNC | O_NONBLOCK);
    if (!request.outputFile.empty()) {
        if (output.number() < 0) return StartError::BadOutput;
        waits(output.number(), O_WRONLY);
        preparation.output(output.number());
    }
    if (pipes.output.write.valid()) preparation.output(pipes.output.write.number());
    if (!request.folder.empty()) preparation.folder(request.folder);
    preparation.closeOthers();
    std::vector<char*> arguments{const_cast<char*>(request.program.c_str())};
    for (const std::string& one : request.arguments) arguments.push_back(const_cast<char*>(one.c_str()));
    arguments.push_back(nullptr);
    hearOfChildren();
    const PipeSignalIgnored ignored(request.piped);
    const int failed = preparation.spawn(request.program, arguments.data(), pid);
    return failed != 0 ? startError(failed, request.program) : StartError::None;
}

class RealProcesses : public Processes {
public:
    std::unique_ptr<Child> start(const StartRequest& request, StartError& error) override {
        reapAbandoned();
        StartRequest one = request;
        one.program = native(one.program);
        one.folder = native(one.folder);
        one.outputFile = native(one.outputFile);
        one.inputFile = native(one.inputFile);
        pid_t pid = 0;
        Pipes pipes;
        error = spawn(one, pipes, pid);
        if (error != StartError::None) return nullptr;
        Descriptor input, output;
        if (pipes.input.write.valid()) input = kept(pipes.input.write);
        if (pipes.output.read.valid()) output = kept(pipes.output.read);
        return std::make_unique<RealChild>(pid, one.ownGroup, std::move(input), std::move(output));
    }
};

Processes* inForce = nullptr;  // null: the real ones

}  // namespace

int Child::readOutput(std::string&, std::size_t) {
    return -1;
}
int Child::writeInput(std::string_view) {
    return -1;
}
void Child::endInput() {}

Processes& processes() {
    static RealProcesses real;
    return inForce != nullptr ? *inForce : real;
}

Processes* useProcesses(Processes* processes) {
    Processes* const before = inForce;
    inForce = processes;
    return before;
}

bool waitForProcess(int id, int milliseconds) {
    return waitUntil(milliseconds, [id] {
        if (id <= 0 || (::kill(id, 0) < 0 && errno == ESRCH)) return true;
        const Status status = statusOf(std::to_string(id));
        return status.state != '\0' && !status.runs();
    });
}

std::vector<RunningProcess> runningProcesses() {
    std::vector<RunningProcess> list;
    DIR* const folder = ::opendir("/proc");
    if (folder == nullptr) return list;
    while (const dirent* const entry = ::readdir(folder)) {
        int id = 0;
        const char* const end = entry->d_name + std::strlen(entry->d_name);
        const auto [at, error] = std::from_chars(entry->d_name, end, id);
        std::string name;
        if (error != std::errc() || at != end) continue;
        if (readFile("/proc/" + std::to_string(id) + "/comm", name) != FileError::None)
            continue;  // it has gone
        if (name.ends_with('\n')) name.pop_back();
        list.push_back({id, std::move(name)});
    }
    ::closedir(folder);
    std::sort(list.begin(), list.end(), [](const auto& a, const auto& b) { return a.id < b.id; });
    return list;
}

}  // namespace tarn::os
