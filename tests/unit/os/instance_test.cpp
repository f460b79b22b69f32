// SPDX-License-Identifier: Apache-2.0
//
// Two copies of a program: this process is one, a fork of it the other.
#include "os/instance.h"

#include "os/clock.h"
#include "os/files.h"
#include "os/process.h"
#include "support/tempfolder.h"

#include <csignal>
#include <fcntl.h>
#include <functional>
#include <gtest/gtest.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <unistd.h>

namespace tarn::os {
namespace {

constexpr const char* name = "IDE";

// Another copy of the program. Its result is the exit code.
class Copy {
public:
    explicit Copy(const std::function<int()>& act) : pid_(::fork()) {
        if (pid_ == 0) ::_exit(act());
    }
    Copy(const Copy&) = delete;
    Copy& operator=(const Copy&) = delete;
    ~Copy() { kill(); }
    void kill() {
        if (pid_ <= 0) return;
        ::kill(pid_, SIGKILL);
        ::waitpid(pid_, nullptr, 0);
        pid_ = 0;
    }
    int result() {
        int status = 0;
        ::waitpid(pid_, &status, 0);
        pid_ = 0;
        return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }
    // Serves until the copy has ended.
    int resultWhileServing() {
        int status = 0;
        while (::waitpid(pid_, &status, WNOHANG) == 0) {
            pollfd watched{instanceSocket(), POLLIN, 0};
            if (::poll(&watched, 1, 5) > 0) serveInstanceCommands();
        }
        serveInstanceCommands();
        pid_ = 0;
        return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }

private:
    pid_t pid_;
};

class InstanceTest : public testing::Test {
protected:
    void SetUp() override { ASSERT_EQ(::chmod(folder_.path().c_str(), 0700), 0); }
    void TearDown() override {
        stopInstanceServer();
        releaseInstanceLock();
    }
    void serve() {
        const bool started = startInstanceServer(
            name, {[](const std::string& windowClass, const std::string& caption) {
                       return windowClass == "Main.1.3.2207" && caption == "The caption";
                   },
                   [this](const InstanceCommand& command) { taken_.push_back(command); }});
        ASSERT_TRUE(started);
    }
    [[nodiscard]] std::string socketPath() const { return folder_ / "tarnwick/IDE.socket"; }
    // A client that keeps to no rules.
    [[nodiscard]] int rawClient() const {
        const int socket = ::socket(AF_UNIX, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0);
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        socketPath().copy(address.sun_path, sizeof address.sun_path - 1);
        EXPECT_EQ(::connect(socket, reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
        return socket;
    }
    static bool droppedBy(int socket) {
        char byte = 0;
        const ssize_t got = ::recv(socket, &byte, 1, MSG_DONTWAIT);
        return got == 0 || (got < 0 && errno != EAGAIN);
    }
    // A well-behaved copy still gets through.
    void expectService() {
        Copy copy([] { return findInstanceWindow(name, "Main.1.3.2207", "The caption") ? 1 : 2; });
        EXPECT_EQ(copy.resultWhileServing(), 1);
    }

    TempFolder folder_;
    Variable runtime_{"XDG_RUNTIME_DIR", folder_.path()};
    std::vector<InstanceCommand> taken_;
};

TEST_F(InstanceTest, theLockIsBusyForTheSecondCopy) {
    ASSERT_EQ(acquireInstanceLock(name, 0), LockState::Acquired);
    EXPECT_EQ(acquireInstanceLock(name, 0), LockState::Acquired);  // it is ours already
    Copy second([] { return static_cast<int>(acquireInstanceLock(name, 30)); });
    EXPECT_EQ(second.result(), static_cast<int>(LockState::Busy));
    Copy other([] { return static_cast<int>(acquireInstanceLock("OTHER", 0)); });
    EXPECT_EQ(other.result(), static_cast<int>(LockState::Acquired));
    releaseInstanceLock();
    Copy third([] { return static_cast<int>(acquireInstanceLock(name, 0)); });
    EXPECT_EQ(third.result(), static_cast<int>(LockState::Acquired));
}

TEST_F(InstanceTest, theWaitForTheLockIsAsLongAsItSays) {
    ASSERT_EQ(acquireInstanceLock(name, 0), LockState::Acquired);
    const std::int64_t start = clock().steady();
    Copy second([] { return static_cast<int>(acquireInstanceLock(name, 100)); });
    EXPECT_EQ(second.result(), static_cast<int>(LockState::Busy));
    EXPECT_GE(clock().steady() - start, 100'000'000);
    EXPECT_LT(clock().steady() - start, 3'000'000'000);
}

TEST_F(InstanceTest, theLockIsTakenWhenTheOwnerGivesItUpMeanwhile) {
    ASSERT_EQ(acquireInstanceLock(name, 0), LockState::Acquired);
    Copy second([] { return static_cast<int>(acquireInstanceLock(name, 5000)); });
    ::usleep(30'000);
    releaseInstanceLock();
    EXPECT_EQ(second.result(), static_cast<int>(LockState::Acquired));
}

TEST_F(InstanceTest, theLockOfADeadCopyIsTaken) {
    int ready[2];
    ASSERT_EQ(::pipe(ready), 0);
    Copy first([&] {
        const bool acquired = acquireInstanceLock(name, 0) == LockState::Acquired;
        const bool serving = startInstanceServer(name, {});
        const char byte = acquired && serving ? 'y' : 'n';
        if (::write(ready[1], &byte, 1) != 1) return 1;
        for (;;) ::pause();
    });
    char byte = 0;
    ASSERT_EQ(::read(ready[0], &byte, 1), 1);
    ::close(ready[0]);
    ::close(ready[1]);
    EXPECT_EQ(byte, 'y');
    EXPECT_EQ(acquireInstanceLock(name, 0), LockState::Busy);
    EXPECT_FALSE(startInstanceServer(name, {}));  // a living copy serves that name
    first.kill();
    EXPECT_TRUE(infoOf(socketPath()).exists);  // it left its socket
    EXPECT_FALSE(findInstanceWindow(name, "Main.1.3.2207", "The caption"));
    EXPECT_EQ(acquireInstanceLock(name, 0), LockState::Acquired);
    serve();
    expectService();
}

TEST_F(InstanceTest, aProgramThatIsStartedDoesNotHoldTheLock) {
    std::unique_ptr<Child> child;
    {
        ASSERT_EQ(acquireInstanceLock(name, 0), LockState::Acquired);
        serve();
        StartError error = StartError::Other;
        child = processes().start({"/bin/sleep", {"60"}, "", ""}, error);
        ASSERT_NE(child, nullptr);
    }
    stopInstanceServer();
    releaseInstanceLock();
    Copy second([] { return static_cast<int>(acquireInstanceLock(name, 0)); });
    EXPECT_EQ(second.result(), static_cast<int>(LockState::Acquired));
    child->stop(1000);
}

TEST_F(InstanceTest, everyDescriptorIsClosedInOtherPrograms) {
    const auto open = [] {
        std::vector<std::string> list;
        EXPECT_EQ(files().list("/proc/self/fd", list), FileError::None);
        return list;
    };
    const auto before = open();
    ASSERT_EQ(acquireInstanceLock(name, 0), LockState::Acquired);
    serve();
    const int client = rawClient();
    serveInstanceCommands();
    const auto after = open();
    EXPECT_GE(after.size(), before.size() + 5);  // lock, folder, listener, watch, client at both ends
    for (const std::string& one : after) {
        const bool ours = std::find(before.begin(), before.end(), one) == before.end();
        const int flags = ::fcntl(std::stoi(one), F_GETFD);
        if (ours && flags >= 0) {
            EXPECT_NE(flags & FD_CLOEXEC, 0) << one;
        }
    }
    ::close(client);
}

TEST_F(InstanceTest, aForkOfTheOwnerDoesNotSpeakForIt) {
    ASSERT_EQ(acquireInstanceLock(name, 0), LockState::Acquired);
    serve();
    Copy fork([] {
        stopInstanceServer();
        releaseInstanceLock();
        return 0;
    });
    EXPECT_EQ(fork.result(), 0);
    Copy second([] { return static_cast<int>(acquireInstanceLock(name, 0)); });
    EXPECT_EQ(second.result(), static_cast<int>(LockState::Busy));
    expectService();
}

TEST_F(InstanceTest, filesAndFolderAreTheUsersAlone) {
    ASSERT_EQ(::mkdir((folder_ / "tarnwick").c_str(), 0777), 0);
    ASSERT_EQ(::chmod((folder_ / "tarnwick").c_str(), 0777), 0);
    ASSERT_EQ(acquireInstanceLock(name, 0), LockState::Acquired);
    serve();
    EXPECT_EQ(infoOf(folder_ / "tarnwick").mode, 0700U);
    EXPECT_EQ(infoOf(folder_ / "tarnwick/IDE.lock").mode, 0600U);
    EXPECT_EQ(infoOf(socketPath()).mode, 0600U);
    stopInstanceServer();
    EXPECT_FALSE(infoOf(socketPath()).exists);
    EXPECT_EQ(instanceSocket(), -1);
}

TEST_F(InstanceTest, aFolderOfSomeoneElseIsRefused) {
    if (::geteuid() != 0) GTEST_SKIP() << "needs a second user";
    ASSERT_EQ(::mkdir((folder_ / "tarnwick").c_str(), 0777), 0);
    ASSERT_EQ(::chown((folder_ / "tarnwick").c_str(), 1234, 1234), 0);
    EXPECT_EQ(acquireInstanceLock(name, 0), LockState::Failed);
    EXPECT_FALSE(startInstanceServer(name, {}));
    EXPECT_FALSE(sendInstanceCommand(name, {}));
}

TEST_F(InstanceTest, aFolderThatIsALinkIsRefused) {
    TempFolder other;
    ASSERT_EQ(files().link(other.path(), folder_ / "tarnwick"), FileError::None);
    EXPECT_EQ(acquireInstanceLock(name, 0), LockState::Failed);
    EXPECT_FALSE(startInstanceServer(name, {}));
}

TEST_F(InstanceTest, anyNameMakesALock) {
    const std::string odd[] = {
        "../../escape", std::string(300, 'n'), std::string(300, 'n') + "m", "\xff\x01", "", "a\\b"};
    std::vector<std::string> after;
    for (const std::string& one : odd) EXPECT_EQ(acquireInstanceLock(one, 0), LockState::Acquired) << one;
    EXPECT_EQ(files().list(folder_ / "tarnwick", after), FileError::None);
    EXPECT_EQ(after.size(), std::size(odd));
    EXPECT_EQ(files().list(folder_.path(), after), FileError::None);
    EXPECT_EQ(after, std::vector<std::string>{"tarnwick"});
}

TEST_F(InstanceTest, aWindowIsFoundWhereItIsKnown) {
    serve();
    expectService();
    Copy wrong([] { return findInstanceWindow(name, "Main.1.3.2207", "Another caption") ? 1 : 2; });
    EXPECT_EQ(wrong.resultWhileServing(), 2);
    EXPECT_FALSE(findInstanceWindow("NOBODY", "Main.1.3.2207", "The caption"));
    EXPECT_TRUE(taken_.empty());
}

TEST_F(InstanceTest, aCommandArrivesByteForByte) {
    serve();
    std::string any;
    for (int i = 0; i < 512; ++i) any += static_cast<char>(i);
    const InstanceCommand commands[] = {
        {"Main.1.3.2207", "The caption", 17, "/home/u/a.cls"},
        {any, any, -1, any},
        {"", "", 2147483647, ""},
        {"", "", -2147483647 - 1, std::string(maximalInstanceMessage, 'x')},
    };
    for (const InstanceCommand& command : commands) {
        taken_.clear();
        Copy copy([&] { return sendInstanceCommand(name, command) ? 1 : 2; });
        EXPECT_EQ(copy.resultWhileServing(), 1);
        ASSERT_EQ(taken_.size(), 1U);
        EXPECT_TRUE(taken_[0].windowClass == command.windowClass && taken_[0].caption == command.caption &&
                    taken_[0].control == command.control && taken_[0].text == command.text);
    }
    EXPECT_FALSE(sendInstanceCommand(name, {"x", "", 0, std::string(maximalInstanceMessage, 'x')}));
}

TEST_F(InstanceTest, aLongPathOfTheFolderDoesNotMatter) {
    std::string deep = folder_.path();
    for (int i = 0; i < 3; ++i) deep += "/" + std::string(100, 'd');
    ASSERT_EQ(makeFolders(deep), FileError::None);
    const Variable runtime("XDG_RUNTIME_DIR", deep);
    serve();
    expectService();
}

TEST_F(InstanceTest, commandsRunInTheirOrderAlsoWhenServedMeanwhile) {
    std::vector<std::string> order;
    ASSERT_TRUE(startInstanceServer(name, {{}, [&](const InstanceCommand& command) {
                                               order.push_back(command.text + " begins");
                                               if (command.text == "1") serveInstanceCommands();
                                               order.push_back(command.text + " ends");
                                           }}));
    Copy first([] { return sendInstanceCommand(name, {"", "", 0, "1"}) ? 1 : 2; });
    pollfd watched{instanceSocket(), POLLIN, 0};
    ASSERT_EQ(::poll(&watched, 1, 5000), 1);
    ::usleep(20'000);
    Copy second([] { return sendInstanceCommand(name, {"", "", 0, "2"}) ? 1 : 2; });
    ::usleep(50'000);
    EXPECT_EQ(second.resultWhileServing(), 1);
    EXPECT_EQ(first.result(), 1);
    EXPECT_EQ(order, (std::vector<std::string>{"1 begins", "2 begins", "2 ends", "1 ends"}));
}

TEST_F(InstanceTest, aCommandMayStopTheServer) {
    int runs = 0;
    ASSERT_TRUE(startInstanceServer(name, {{}, [&](const InstanceCommand&) {
                                               ++runs;
                                               stopInstanceServer();
                                           }}));
    Copy copy([] { return sendInstanceCommand(name, {}) ? 1 : 2; });
    while (instanceSocket() >= 0) {
        pollfd watched{instanceSocket(), POLLIN, 0};
        if (::poll(&watched, 1, 5000) <= 0) break;
        serveInstanceCommands();
    }
    EXPECT_EQ(copy.result(), 1);
    EXPECT_EQ(runs, 1);
}

TEST_F(InstanceTest, aCommandWhoseSenderHasGivenUpIsNotRun) {
    serve();
    {
        Copy copy([] { return sendInstanceCommand(name, {"", "", 0, "late"}) ? 1 : 2; });
        pollfd watched{instanceSocket(), POLLIN, 0};
        ASSERT_EQ(::poll(&watched, 1, 5000), 1);
        ::usleep(20'000);  // the message is there, and nobody has read it
    }
    serveInstanceCommands();
    EXPECT_TRUE(taken_.empty());
}

TEST_F(InstanceTest, garbageIsDroppedAndHarmsNobody) {
    serve();
    const auto message = [](const std::string& rest) {
        std::string bytes;
        for (unsigned i = 0; i < 4; ++i) bytes += static_cast<char>(rest.size() >> 8U * i & 255U);
        return bytes + rest;
    };
    const std::string zeros(16, '\0');
    const std::string rows[] = {
        "GET / HTTP/1.0\r\n\r\n",
        std::string(64, '\xff'),
        std::string(64, '\0'),
        message("F"),
        message("X" + zeros),
        message("C" + zeros + "too much"),
        message("F" + zeros.substr(0, 4) + "\xff\xff\xff\xff" + zeros.substr(0, 8)),
        message("C" + zeros.substr(0, 4) + std::string("\5\0\0\0\5\0\0\0\5\0\0\0", 12) + "abcdefghi"),
        std::string("\x12\0\x10\0", 4),  // a byte more than the longest
    };
    for (const std::string& row : rows) {
        const int client = rawClient();
        EXPECT_EQ(::send(client, row.data(), row.size(), MSG_NOSIGNAL), static_cast<ssize_t>(row.size()));
        serveInstanceCommands();
        EXPECT_TRUE(droppedBy(client)) << testing::PrintToString(row);
        ::close(client);
    }
    EXPECT_TRUE(taken_.empty());
    expectService();
}

TEST_F(InstanceTest, clientsThatHangHoldUpNobody) {
    serve();
    std::vector<int> clients;
    for (int i = 0; i < 40; ++i) {
        clients.push_back(rawClient());
        if (i % 2 == 0) {
            EXPECT_EQ(::send(clients.back(), "\x20\0", 2, MSG_NOSIGNAL), 2);
        }
        serveInstanceCommands();
    }
    int dropped = 0;
    for (const int client : clients) dropped += droppedBy(client) ? 1 : 0;
    EXPECT_GE(dropped, 20);  // the oldest had to go
    expectService();
    for (const int client : clients) ::close(client);
    serveInstanceCommands();
    expectService();
    pollfd watched{instanceSocket(), POLLIN, 0};
    EXPECT_EQ(::poll(&watched, 1, 0), 0);  // nothing is left that would wake the program again and again
}

TEST_F(InstanceTest, aMessageMayComeInPieces) {
    serve();
    const int client = rawClient();
    const std::string rest = std::string("C\7\0\0\0\0\0\0\0\0\0\0\0\3\0\0\0", 17) + "abc";
    const std::string bytes = std::string("\x14\0\0\0", 4) + rest;
    for (const char byte : bytes) {
        EXPECT_TRUE(taken_.empty());
        ASSERT_EQ(::send(client, &byte, 1, MSG_NOSIGNAL), 1);
        serveInstanceCommands();
    }
    ASSERT_EQ(taken_.size(), 1U);
    EXPECT_EQ(taken_[0].control, 7);
    EXPECT_EQ(taken_[0].text, "abc");
    ::close(client);
}

TEST_F(InstanceTest, aCopyThatDoesNotAnswerIsGivenUpAfterASecond) {
    serve();
    const std::int64_t start = clock().steady();
    EXPECT_FALSE(findInstanceWindow(name, "Main.1.3.2207", "The caption"));  // nobody serves meanwhile
    EXPECT_GE(clock().steady() - start, 990'000'000);
    EXPECT_LT(clock().steady() - start, 4'000'000'000);
}

TEST_F(InstanceTest, servingWithoutAServerDoesNothing) {
    serveInstanceCommands();
    stopInstanceServer();
    EXPECT_EQ(instanceSocket(), -1);
    EXPECT_FALSE(sendInstanceCommand(name, {}));
}

}  // namespace
}  // namespace tarn::os
