// SPDX-License-Identifier: Apache-2.0
#include "os/process.h"

#include "os/files.h"
#include "support/tempfolder.h"

#include <chrono>
#include <csignal>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/ptrace.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace tarn::os {
namespace {

constexpr int longEnough = 10'000;  // milliseconds; no test waits that long unless it fails

class ProcessTest : public testing::Test {
protected:
    void SetUp() override { ASSERT_EQ(realFiles().resolve(folder_.path(), root_), FileError::None); }
    [[nodiscard]] std::string at(const std::string& name) const { return root_ + "/" + name; }
    void program(const std::string& name, const std::string& text, mode_t mode = 0755) const {
        ASSERT_TRUE(saveFile(at(name), text, Durability::Unsynced).ok());
        ASSERT_EQ(::chmod(at(name).c_str(), mode), 0);
    }
    [[nodiscard]] std::string get(const std::string& name) const {
        std::string bytes;
        readFile(at(name), bytes);
        return bytes;
    }
    static std::unique_ptr<Child> shell(const std::string& command, const std::string& output = "") {
        StartError error = StartError::Other;
        auto child = processes().start({"/bin/sh", {"-c", command}, "", output}, error);
        EXPECT_EQ(error, StartError::None);
        return child;
    }
    static StartError startError(const StartRequest& request) {
        StartError error = StartError::Other;
        const auto child = processes().start(request, error);
        EXPECT_EQ(child == nullptr, error != StartError::None);
        if (child) child->wait(longEnough);
        return error;
    }
    // Waits for a file that a child writes; its text without the line's end.
    [[nodiscard]] std::string awaited(const std::string& name) const {
        for (int i = 0; i < longEnough && !get(name).ends_with('\n'); ++i) ::usleep(1000);
        const std::string text = get(name);
        return text.substr(0, text.find('\n'));
    }
    // Whether a process runs; a dead one that waits to be reaped does not.
    static bool runs(const std::string& pid) {
        std::string status;
        if (pid.empty() || readFile("/proc/" + pid + "/stat", status) != FileError::None) return false;
        return status[status.rfind(')') + 2] != 'Z';
    }
    static bool endsSoon(const std::string& pid) {
        for (int i = 0; i < 2000 && runs(pid); ++i) ::usleep(1000);
        return !runs(pid);
    }

    TempFolder folder_;
    std::string root_;
};

TEST_F(ProcessTest, theExitCodeIsTold) {
    for (const int code : {0, 1, 7, 255}) {
        const auto child = shell("exit " + std::to_string(code));
        const ExitState state = child->wait(longEnough);
        EXPECT_TRUE(state.ended);
        EXPECT_EQ(state.code, code);
        EXPECT_EQ(state.signal, 0);
        EXPECT_EQ(child->poll().code, code);
    }
}

TEST_F(ProcessTest, theSignalThatEndedItIsTold) {
    for (const int number : {SIGKILL, SIGTERM, SIGSEGV, SIGPIPE, SIGINT}) {
        const auto child = shell("ulimit -c 0; kill -" + std::to_string(number) + " $$");
        const ExitState state = child->wait(longEnough);
        EXPECT_TRUE(state.ended);
        EXPECT_EQ(state.signal, number);
        EXPECT_EQ(state.code, 0);
    }
}

TEST_F(ProcessTest, whatCannotBeStartedGivesItsReason) {
    program("plain", "echo hello\n", 0644);
    program("nonsense", "\x01\x02\x03 no program", 0755);
    program("lost", "#!/no/such/interpreter\n", 0755);
    program("good", "#!/bin/sh\nexit 0\n", 0755);
    const struct {
        StartRequest request;
        StartError error;
    } rows[] = {
        {{at("good"), {}, "", ""}, StartError::None},
        {{"", {}, "", ""}, StartError::NotFound},
        {{at("none"), {}, "", ""}, StartError::NotFound},
        {{at("none/x"), {}, "", ""}, StartError::NotFound},
        {{at("good/x"), {}, "", ""}, StartError::NotFound},
        {{at(std::string(300, 'n')), {}, "", ""}, StartError::NotFound},
        {{at(std::string("good\0x", 6)), {}, "", ""}, StartError::NotFound},
        {{at("good"), {}, at("none"), ""}, StartError::NotFound},
        {{at("good"), {}, at("plain"), ""}, StartError::NotFound},
        {{root_, {}, "", ""}, StartError::NotExecutable},
        {{at("plain"), {}, "", ""}, StartError::NotExecutable},
        {{at("nonsense"), {}, "", ""}, StartError::BadFormat},
        {{at("lost"), {}, "", ""}, StartError::WontRun},
        {{at("good"), {std::string(4'000'000, 'x')}, "", ""}, StartError::BadArguments},
        {{at("good"), {std::string("a\0b", 3)}, "", ""}, StartError::BadArguments},
        {{at("good"), {}, "", at("none/out")}, StartError::BadOutput},
        {{at("good"), {}, "", root_}, StartError::BadOutput},
    };
    for (const auto& row : rows) EXPECT_EQ(startError(row.request), row.error) << row.request.program;
}

TEST_F(ProcessTest, argumentsArriveByteForByte) {
    program("show", "#!/bin/sh\nfor a in \"$@\"; do printf '%s|' \"$a\"; done\n");
    const std::vector<std::string> arguments{"a b",  "",         "*",           "$HOME",
                                             "\"q'", "\xff\xfe", "back\\slash", "line\nfeed"};
    EXPECT_EQ(startError({at("show"), arguments, "", at("out")}), StartError::None);
    std::string expected;
    for (const std::string& one : arguments) expected += one + "|";
    EXPECT_EQ(get("out"), expected);
}

TEST_F(ProcessTest, outputAndErrorsGoToTheFileAndInputIsEmpty) {
    ASSERT_TRUE(saveFile(at("out"), "what an earlier run left, and it was long").ok());
    const auto child = shell("echo one; echo two >&2; cat; echo three", at("out"));
    EXPECT_TRUE(child->wait(longEnough).ended);
    EXPECT_EQ(get("out"), "one\ntwo\nthree\n");
}

TEST_F(ProcessTest, inputComesFromTheFileThatIsNamed) {
    ASSERT_TRUE(saveFile(at("in"), "typed\n").ok());
    StartRequest request{"/bin/cat", {}, "", at("out")};
    request.inputFile = root_ + "\\in";
    EXPECT_EQ(startError(request), StartError::None);
    EXPECT_EQ(get("out"), "typed\n");
    for (const std::string& none : {at("none"), root_, at(std::string("in\0x", 4))}) {
        request.inputFile = none;
        request.outputFile = at("untouched");
        EXPECT_EQ(startError(request), StartError::BadInput) << none;
    }
    EXPECT_EQ(sizeOf(at("untouched")), -1) << "the output is made when all else is good";
    request.inputFile = "/dev/null";
    EXPECT_EQ(startError(request), StartError::None);
    EXPECT_EQ(sizeOf(at("untouched")), 0);
}

class PipedTest : public ProcessTest {
protected:
    static std::unique_ptr<Child> piped(const std::string& command) {
        StartRequest request{"/bin/sh", {"-c", command}, "", ""};
        request.piped = true;
        StartError error = StartError::Other;
        auto child = processes().start(request, error);
        EXPECT_EQ(error, StartError::None);
        return child;
    }
    // All that it writes, to its end.
    static std::string output(Child& child) {
        std::string text;
        for (int i = 0; i < longEnough && child.readOutput(text, 1000) >= 0; ++i) ::usleep(1000);
        return text;
    }
};

TEST_F(PipedTest, outputAndErrorsAreRead) {
    const auto child = piped("echo one; echo two >&2; printf '\\377\\000'");
    EXPECT_EQ(output(*child), std::string("one\ntwo\n\xff\0", 10));
    EXPECT_TRUE(child->wait(longEnough).ended);
    std::string none;
    EXPECT_EQ(child->readOutput(none, 10), -1) << "and stays so";
}

TEST_F(PipedTest, readingDoesNotWaitAndTakesAtMostWhatIsWanted) {
    const auto child = piped("read a; printf 123456789; read b");
    std::string text;
    EXPECT_EQ(child->readOutput(text, 100), 0);
    EXPECT_EQ(child->writeInput("go\n"), 3);
    for (int i = 0; i < longEnough && child->readOutput(text, 4) == 0; ++i) ::usleep(1000);
    EXPECT_EQ(text, "1234");
    EXPECT_EQ(child->readOutput(text, 100), 5);
    EXPECT_EQ(text, "123456789");
    child->endInput();
    EXPECT_TRUE(child->wait(longEnough).ended);
}

TEST_F(PipedTest, inputArrivesAndEnds) {
    const auto child = piped("cat; echo end");
    EXPECT_EQ(child->writeInput("a b\n"), 4);
    EXPECT_EQ(child->writeInput(""), 0);
    child->endInput();
    EXPECT_EQ(output(*child), "a b\nend\n");
    EXPECT_EQ(child->writeInput("late"), -1);
}

TEST_F(PipedTest, inputThatNobodyReadsFillsThePipeAndDoesNotWait) {
    const auto child = piped("sleep 5");
    const std::string much(1 << 22, 'x');
    const int taken = child->writeInput(much);
    EXPECT_GT(taken, 0);
    EXPECT_LT(taken, 1 << 22);
    EXPECT_EQ(child->writeInput(much), 0);
    child->stop(0);
    EXPECT_EQ(child->writeInput(much), -1) << "this process lives on";
}

TEST_F(PipedTest, aChildGoesOnWhenNobodyReadsIt) {
    auto child = piped("read a; echo one; echo two; echo done > " + at("out"));
    child.reset();
    EXPECT_EQ(awaited("out"), "done");
}

TEST_F(PipedTest, aFileThatIsNamedTakesThePipesPlace) {
    StartRequest request{"/bin/sh", {"-c", "cat; echo out"}, "", at("out")};
    request.piped = true;
    StartError error = StartError::Other;
    const auto child = processes().start(request, error);
    ASSERT_EQ(error, StartError::None);
    std::string text;
    EXPECT_EQ(child->readOutput(text, 10), -1);
    child->writeInput("in\n");
    child->endInput();
    EXPECT_TRUE(child->wait(longEnough).ended);
    EXPECT_EQ(get("out"), "in\nout\n");
}

TEST_F(PipedTest, aChildWithoutPipesHasNothingToReadAndReadsNothing) {
    const auto child = shell("exit 0");
    std::string text;
    EXPECT_EQ(child->readOutput(text, 10), -1);
    EXPECT_EQ(child->writeInput("a"), -1);
    child->endInput();
    EXPECT_TRUE(child->wait(longEnough).ended);
}

TEST_F(PipedTest, noDescriptorStaysBehind) {
    const auto open = [] {
        std::vector<std::string> names;
        realFiles().list("/proc/self/fd", names);
        return names.size();
    };
    const std::size_t before = open();
    for (int i = 0; i < 20; ++i) piped("exit 0")->wait(longEnough);
    StartRequest none{at("none"), {}, "", ""};
    none.piped = true;
    StartError error = StartError::None;
    EXPECT_EQ(processes().start(none, error), nullptr);
    EXPECT_EQ(open(), before);
}

TEST_F(ProcessTest, aProcessIsWaitedForByItsNumber) {
    const auto child = shell("sleep 0.3");
    EXPECT_FALSE(waitForProcess(child->id(), 0));
    EXPECT_FALSE(waitForProcess(child->id(), 20));
    EXPECT_TRUE(waitForProcess(child->id(), longEnough));
    EXPECT_EQ(child->wait(longEnough).code, 0) << "its end is still told to whoever started it";
    for (const int none : {0, -1, -child->id(), 2'000'000'000}) EXPECT_TRUE(waitForProcess(none, 0)) << none;
    EXPECT_FALSE(waitForProcess(::getpid(), 0));
}

TEST_F(ProcessTest, theProgramStartsInItsFolderAndPathsTakeBackslashes) {
    ASSERT_EQ(files().makeFolder(at("sub")), FileError::None);
    StartError error = StartError::Other;
    const auto child = processes().start({"\\bin\\sh", {"-c", "pwd"}, at("sub\\"), at("sub\\out")}, error);
    ASSERT_NE(child, nullptr);
    EXPECT_TRUE(child->wait(longEnough).ended);
    EXPECT_EQ(get("sub/out"), at("sub") + "\n");
}

TEST_F(ProcessTest, theChildHasNoOtherOpenFilesAndHearsAllSignals) {
    const int leak = ::open("/dev/null", O_RDONLY);  // on purpose without the flag that closes it
    ASSERT_GE(leak, 0);
    std::signal(SIGUSR1, SIG_IGN);
    sigset_t blocked, before;
    ::sigemptyset(&blocked);
    ::sigaddset(&blocked, SIGUSR2);
    ::sigprocmask(SIG_BLOCK, &blocked, &before);
    const auto child =
        shell("ls /proc/self/fd | wc -l; grep -E '^Sig(Blk|Ign)' /proc/self/status", at("out"));
    EXPECT_TRUE(child->wait(longEnough).ended);
    ::sigprocmask(SIG_SETMASK, &before, nullptr);
    std::signal(SIGUSR1, SIG_DFL);
    ::close(leak);
    // Three standard files and the folder that is being listed.
    EXPECT_TRUE(get("out").starts_with("4\nSigBlk:\t0000000000000000\nSigIgn:\t")) << get("out");
    // The C library ignores 32 and 33, which are its own, in every program that it starts.
    const unsigned long long ignored =
        std::stoull(get("out").substr(get("out").rfind('\t') + 1), nullptr, 16);
    EXPECT_EQ(ignored & ~0x180000000ULL, 0U);
}

TEST_F(ProcessTest, theChildLeadsAGroupOfItsOwn) {
    const auto sleeper = shell("exec sleep 60");
    EXPECT_EQ(::getpgid(sleeper->id()), sleeper->id());
    EXPECT_NE(::getpgrp(), sleeper->id());
    sleeper->stop(longEnough);
}

TEST_F(ProcessTest, aChildWithoutAGroupOfItsOwnStaysInOursAndIsStoppedAlone) {
    StartError error = StartError::None;
    StartRequest request{"/bin/sh", {"-c", "exec sleep 60"}, {}, {}, false};
    const auto first = processes().start(request, error), second = processes().start(request, error);
    ASSERT_NE(first, nullptr);
    ASSERT_NE(second, nullptr);
    EXPECT_EQ(::getpgid(first->id()), ::getpgrp());
    first->stop(longEnough);
    EXPECT_EQ(first->poll().signal, SIGTERM);
    EXPECT_FALSE(second->poll().ended);
    second->stop(longEnough);
    EXPECT_TRUE(second->poll().ended);
}

TEST_F(ProcessTest, waitingEndsWithTheTimeOrTheChild) {
    const auto child = shell("exec sleep 60");
    EXPECT_FALSE(child->poll().ended);
    const auto start = std::chrono::steady_clock::now();
    EXPECT_FALSE(child->wait(50).ended);
    const auto gone = std::chrono::steady_clock::now() - start;
    EXPECT_GE(gone, std::chrono::milliseconds(49));
    EXPECT_LT(gone, std::chrono::seconds(5));
    child->stop(longEnough);
    const ExitState state = child->poll();
    EXPECT_TRUE(state.ended);
    EXPECT_EQ(state.signal, SIGTERM);
}

TEST_F(ProcessTest, stopEndsGrandchildrenToo) {
    const auto child = shell("sleep 60 & echo $! > " + at("pid") + "; wait");
    const std::string grandchild = awaited("pid");
    EXPECT_TRUE(runs(grandchild));
    child->stop(longEnough);
    EXPECT_TRUE(child->poll().ended);
    EXPECT_TRUE(endsSoon(grandchild));
}

TEST_F(ProcessTest, stopForcesWhatDoesNotListen) {
    const auto child = shell("trap '' TERM; (while :; do sleep 0.05; done) & echo $! > " + at("pid") +
                             "; while :; do sleep 0.05; done");
    const std::string grandchild = awaited("pid");
    const auto start = std::chrono::steady_clock::now();
    child->stop(100);
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(5));
    EXPECT_EQ(child->poll().signal, SIGKILL);
    EXPECT_TRUE(endsSoon(grandchild));
}

TEST_F(ProcessTest, stopEndsWhatAHaltedOrEndedChildLeftRunning) {
    const auto halted = shell("kill -STOP $$; sleep 60");
    ::usleep(20'000);
    halted->stop(longEnough);
    EXPECT_EQ(halted->poll().signal, SIGTERM);
    const auto child = shell("sleep 60 & echo $! > " + at("pid"));
    EXPECT_TRUE(child->wait(longEnough).ended);
    EXPECT_EQ(child->poll().code, 0);
    const std::string grandchild = awaited("pid");
    EXPECT_TRUE(runs(grandchild));
    child->stop(longEnough);
    EXPECT_TRUE(endsSoon(grandchild));
    EXPECT_EQ(child->poll().code, 0);
    child->stop(longEnough);  // nothing is left to stop
}

TEST_F(ProcessTest, noDeadChildStaysBehind) {
    const auto zombies = [] {
        std::string status;
        const std::string children = "/proc/self/task/" + std::to_string(::getpid()) + "/children";
        readFile(children, status);
        return status;
    };
    EXPECT_EQ(zombies(), "");
    shell("exit 0")->wait(longEnough);
    EXPECT_EQ(zombies(), "");
    {
        const auto stopped = shell("exec sleep 60");
        stopped->stop(longEnough);
        EXPECT_EQ(zombies(), "");
    }
    const int abandoned = shell("sleep 0.05")->id();  // its object goes at once
    EXPECT_NE(zombies(), "");
    siginfo_t info{};
    ASSERT_EQ(::waitid(P_PID, static_cast<id_t>(abandoned), &info, WEXITED | WNOWAIT), 0);
    shell("exit 0")->wait(longEnough);
    EXPECT_EQ(zombies(), "");
}

TEST_F(ProcessTest, destroyingTheObjectDoesNotEndTheChild) {
    const int pid = shell("exec sleep 60")->id();
    EXPECT_TRUE(runs(std::to_string(pid)));
    ::kill(pid, SIGKILL);
    ::waitpid(pid, nullptr, 0);
}

TEST_F(ProcessTest, exitCodesAreToldWhereDeadChildrenWereIgnored) {
    std::signal(SIGCHLD, SIG_IGN);
    const auto child = shell("exit 3");
    EXPECT_EQ(child->wait(longEnough).code, 3);
    std::signal(SIGCHLD, SIG_DFL);
}

class SelfTest : public ProcessTest {
protected:
    void SetUp() override {
        ProcessTest::SetUp();
        ASSERT_EQ(realFiles().resolve("/proc/self/exe", self_), FileError::None);
    }
    void TearDown() override { call(self_); }
    static std::string call(std::string name, std::vector<std::string> arguments = {}) {
        std::vector<char*> all{name.data()};
        for (std::string& one : arguments) all.push_back(one.data());
        all.push_back(nullptr);
        setCommandLine(static_cast<int>(all.size()) - 1, all.data());
        return executablePath();
    }
    std::string self_;
};

TEST_F(SelfTest, theProgramIsKnownAsItWasCalled) {
    const std::string before = files().currentFolder();
    ASSERT_EQ(files().link(self_, at("tool.exe")), FileError::None);
    ASSERT_EQ(files().setCurrentFolder(root_), FileError::None);
    const Variable path("PATH", "/none::" + root_ + ":/bin");
    EXPECT_EQ(call(self_), self_);
    EXPECT_EQ(call(at("tool.exe")), at("tool.exe"));
    EXPECT_EQ(executableFolder(), root_ + "/");
    EXPECT_EQ(call("./tool.exe"), at("tool.exe"));
    EXPECT_EQ(call(".//tool.exe"), at("tool.exe"));
    EXPECT_EQ(call("tool.exe"), at("tool.exe"));
    ASSERT_EQ(files().setCurrentFolder(before), FileError::None);
    EXPECT_EQ(call("tool.exe"), at("tool.exe"));
}

TEST_F(SelfTest, aNameThatIsNotThisProgramIsNotBelieved) {
    program("other", "#!/bin/sh\n");
    for (const char* const name : {"-login", "", "none", "/bin/sh", "sh", "./none"})
        EXPECT_EQ(call(name), self_) << name;
    EXPECT_EQ(call(at("other")), self_);
    setCommandLine(0, nullptr);
    EXPECT_EQ(executablePath(), self_);
    EXPECT_TRUE(commandLine().empty());
}

TEST_F(SelfTest, theCommandLineHasTheArgumentsAlone) {
    const std::vector<std::string> arguments{"a.cls", "", "two words", "\xff"};
    call(self_, arguments);
    EXPECT_EQ(commandLine(), arguments);
    call(self_);
    EXPECT_TRUE(commandLine().empty());
}

TEST_F(SelfTest, foldersOfTheUserFollowTheVariables) {
    const Variable home("HOME", "/home/u");
    {
        const Variable config("XDG_CONFIG_HOME", "/c"), state("XDG_STATE_HOME", "/s/"),
            runtime("XDG_RUNTIME_DIR", root_);
        EXPECT_EQ(settingsFolder(), "/c/tarnwick/");
        EXPECT_EQ(stateFolder(), "/s/tarnwick/");
        EXPECT_EQ(runtimeFolder(), root_ + "/tarnwick/");
        EXPECT_EQ(rescueFolder(), "/s/tarnwick/rescue/");
    }
    const std::string own = "/tmp/tarnwick-" + std::to_string(::geteuid()) + "/";
    for (const char* const value : {static_cast<const char*>(nullptr), "", "relative", "/none/at/all"}) {
        const Variable runtime("XDG_RUNTIME_DIR", value);
        EXPECT_EQ(runtimeFolder(), own);
    }
    for (const char* const value : {static_cast<const char*>(nullptr), "", "relative"}) {
        const Variable config("XDG_CONFIG_HOME", value), state("XDG_STATE_HOME", value);
        EXPECT_EQ(settingsFolder(), "/home/u/.config/tarnwick/");
        EXPECT_EQ(stateFolder(), "/home/u/.local/state/tarnwick/");
    }
    const Variable noConfig("XDG_CONFIG_HOME", nullptr), noHome("HOME", nullptr);
    EXPECT_TRUE(settingsFolder().starts_with('/') && settingsFolder().ends_with("/.config/tarnwick/"));
}

TEST_F(SelfTest, theEnvironmentIsEmptyWhereUnset) {
    const Variable set("TARNWICK_TEST", "value");
    EXPECT_EQ(environment("TARNWICK_TEST"), "value");
    EXPECT_EQ(environment("TARNWICK_TEST_NONE"), "");
}

struct Ended {
    int code;
};

TEST_F(SelfTest, endingCanBeCaughtByATestAndIsAtOnceOtherwise) {
    const EndHook before = useEndHook([](int code) { throw Ended{code}; });
    int code = -1;
    try {
        endProcess(5);
    } catch (const Ended& ended) {
        code = ended.code;
    }
    EXPECT_EQ(code, 5);
    EXPECT_NE(useEndHook(before), nullptr);
    EXPECT_EXIT(endProcess(6), testing::ExitedWithCode(6), "");
    EXPECT_EXIT((debugOutput("said before\n"), endProcess(0)), testing::ExitedWithCode(0), "said before");
}

TEST_F(SelfTest, aDebuggerIsSeen) {
    EXPECT_FALSE(debuggerAttached());
    const pid_t traced = ::fork();
    if (traced == 0) {
        ::ptrace(PTRACE_TRACEME, 0, nullptr, nullptr);
        ::_exit(debuggerAttached() ? 1 : 0);
    }
    int status = 0;
    ::waitpid(traced, &status, 0);
    EXPECT_TRUE(WIFEXITED(status));
    EXPECT_EQ(WEXITSTATUS(status), 1);
}

}  // namespace
}  // namespace tarn::os
