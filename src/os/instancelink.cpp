// SPDX-License-Identifier: Apache-2.0
//
// How a later copy of a program speaks to the first: a stream socket in the run-time folder, one question for
// each connection, answered by one byte, 'Y' or 'N'. Numbers have their least byte first.
//
//     offset  size  meaning
//     0       4     length of what follows
//     4       1     what is asked: 'F' whether a window is known, 'C' to take a command
//     5       4     number of the control
//     9       4     length of the class
//     13      4     length of the caption
//     17      4     length of the text
//     21            class, caption, text
//
// The server never waits: it reads what is there, and a client is dropped when its message is not whole after
// five seconds, is too long, has another form, or when others come and it is the oldest of too many.
#include "os/instance.h"

#include "os/runtimefiles_internal.h"

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <cstring>
#include <deque>
#include <fcntl.h>
#include <memory>
#include <poll.h>
#include <sys/epoll.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <time.h>
#include <unistd.h>
#include <vector>

namespace tarn::os {

namespace {

constexpr std::size_t lengthSize = 4;
constexpr std::size_t headSize = 17;  // without the length
constexpr char askWindow = 'F', askCommand = 'C', yes = 'Y', no = 'N';
constexpr int findMilliseconds = 1000, commandMilliseconds = 5000, clientMilliseconds = 5000;

std::int64_t millisecondsNow() {
    timespec time{};
    ::clock_gettime(CLOCK_MONOTONIC, &time);
    return time.tv_sec * 1000 + time.tv_nsec / 1'000'000;
}

// ---- Messages

struct Question {
    char kind = 0;
    InstanceCommand command;
};

void putNumber(std::string& bytes, std::uint32_t number) {
    for (int i = 0; i < 4; ++i, number >>= 8U) bytes += static_cast<char>(number & 255U);
}

std::uint32_t numberAt(const std::string& bytes, std::size_t at) {
    std::uint32_t number = 0;
    for (std::size_t i = 4; i-- > 0;) number = number << 8U | static_cast<unsigned char>(bytes[at + i]);
    return number;
}

bool fits(const InstanceCommand& command) {
    const std::size_t sizes[] = {command.windowClass.size(), command.caption.size(), command.text.size()};
    std::size_t left = maximalInstanceMessage;
    for (const std::size_t size : sizes) {
        if (size > left) return false;
        left -= size;
    }
    return true;
}

std::string encode(const Question& question) {
    const InstanceCommand& command = question.command;
    std::string rest(1, question.kind);
    putNumber(rest, static_cast<std::uint32_t>(command.control));
    for (const std::string* one : {&command.windowClass, &command.caption, &command.text}) {
        putNumber(rest, static_cast<std::uint32_t>(one->size()));
    }
    rest += command.windowClass + command.caption + command.text;
    std::string bytes;
    putNumber(bytes, static_cast<std::uint32_t>(rest.size()));
    return bytes + rest;
}

// The size of the message that `bytes` begins, as far as it can be told; 0 if it cannot be one.
std::size_t messageSize(const std::string& bytes) {
    if (bytes.size() < lengthSize) return lengthSize;
    const std::size_t size = numberAt(bytes, 0);
    return size < headSize || size > headSize + maximalInstanceMessage ? 0 : lengthSize + size;
}

bool decode(const std::string& bytes, Question& question) {
    question.kind = bytes[lengthSize];
    if (question.kind != askWindow && question.kind != askCommand) return false;
    InstanceCommand& command = question.command;
    command.control = static_cast<int>(numberAt(bytes, lengthSize + 1));
    std::size_t at = lengthSize + headSize, field = lengthSize + 5;
    for (std::string* one : {&command.windowClass, &command.caption, &command.text}) {
        const std::size_t size = numberAt(bytes, field);
        if (size > bytes.size() - at) return false;
        *one = bytes.substr(at, size);
        at += size;
        field += 4;
    }
    return at == bytes.size();
}

// ---- Sockets

// The address goes through the folder's descriptor, so that a long path of the folder does not matter.
sockaddr_un addressOf(int folder, const std::string& name) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    const std::string path = "/proc/self/fd/" + std::to_string(folder) + "/" + name;
    path.copy(address.sun_path, sizeof address.sun_path - 1);
    return address;
}

bool ofThisUser(int socket) {
    ucred other{};
    socklen_t size = sizeof other;
    return ::getsockopt(socket, SOL_SOCKET, SO_PEERCRED, &other, &size) == 0 && other.uid == ::geteuid();
}

Descriptor newSocket() {
    return Descriptor(::socket(AF_UNIX, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0));
}

// ---- The server

struct Client {
    Descriptor socket;
    std::string bytes;
    std::int64_t since = 0;
};

class Server {
public:
    Server(std::string file, InstanceServer handlers)
        : handlers_(std::move(handlers)), file_(std::move(file)) {}
    Server(const Server&) = delete;
    Server& operator=(const Server&) = delete;
    ~Server();
    bool open(bool mayTakeOver);
    [[nodiscard]] int watched() const { return watch_.number(); }
    void receive();
    bool next(InstanceCommand& command);
    [[nodiscard]] std::function<void(const InstanceCommand&)> runner() const { return handlers_.run; }

private:
    bool watch(int socket);
    void acceptClients();
    bool keepReading(Client& client);
    bool readSome(Client& client, std::size_t size);
    void answer(Client& client);

    InstanceServer handlers_;
    std::string file_;
    Descriptor folder_, listener_, watch_;
    struct stat made_ {};
    pid_t process_ = ::getpid();
    std::vector<Client> clients_;  // oldest first
    std::deque<InstanceCommand> waiting_;
};

Server::~Server() {
    struct stat now {};
    if (!listener_.valid() || process_ != ::getpid()) return;
    if (::fstatat(folder_.number(), file_.c_str(), &now, AT_SYMLINK_NOFOLLOW) == 0 &&
        now.st_ino == made_.st_ino) {
        ::unlinkat(folder_.number(), file_.c_str(), 0);
    }
}

bool answersAt(const sockaddr_un& address) {
    const Descriptor socket = newSocket();
    return ::connect(socket.number(), reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0 ||
           errno == EAGAIN;
}

// Without the lock, a socket behind which a living process stands is left to it; a socket of a dead one is
// replaced.
bool Server::open(bool mayTakeOver) {
    constexpr int backlog = 16;
    folder_ = openRuntimeFolder();
    if (!folder_.valid()) return false;
    const sockaddr_un address = addressOf(folder_.number(), file_);
    if (!mayTakeOver && answersAt(address)) return false;
    ::unlinkat(folder_.number(), file_.c_str(), 0);
    Descriptor socket = newSocket();
    watch_ = Descriptor(::epoll_create1(EPOLL_CLOEXEC));
    if (::bind(socket.number(), reinterpret_cast<const sockaddr*>(&address), sizeof address) < 0)
        return false;
    ::fchmodat(folder_.number(), file_.c_str(), 0600, 0);
    ::fstatat(folder_.number(), file_.c_str(), &made_, AT_SYMLINK_NOFOLLOW);
    listener_ = std::move(socket);
    return ::listen(listener_.number(), backlog) == 0 && watch(listener_.number());
}

bool Server::watch(int socket) {
    epoll_event event{};
    event.events = EPOLLIN;
    return ::epoll_ctl(watch_.number(), EPOLL_CTL_ADD, socket, &event) == 0;
}

void Server::receive() {
    acceptClients();
    std::erase_if(clients_, [this](Client& client) {
        if (keepReading(client)) return false;
        ::epoll_ctl(watch_.number(), EPOLL_CTL_DEL, client.socket.number(), nullptr);
        return true;
    });
}

void Server::acceptClients() {
    constexpr std::size_t mostClients = 16;
    constexpr int mostAtOnce = 64;  // others are found by the next call
    for (int i = 0; i < mostAtOnce; ++i) {
        Descriptor socket(::accept4(listener_.number(), nullptr, nullptr, SOCK_NONBLOCK | SOCK_CLOEXEC));
        if (!socket.valid()) return;
        if (!ofThisUser(socket.number()) || !watch(socket.number())) continue;
        Client client{std::move(socket), {}, millisecondsNow()};
        if (keepReading(client)) clients_.push_back(std::move(client));
        if (clients_.size() > mostClients) clients_.erase(clients_.begin());
    }
}

// False when the client is done with or is to be dropped.
bool Server::keepReading(Client& client) {
    for (;;) {
        const std::size_t size = messageSize(client.bytes);
        if (size == 0) return false;
        if (client.bytes.size() == size && size > lengthSize) {
            answer(client);
            return false;
        }
        if (!readSome(client, size)) {
            const bool waits = errno == EAGAIN;
            return waits && millisecondsNow() - client.since < clientMilliseconds;
        }
    }
}

// False at the end, on an error, and (errno EAGAIN) when nothing is there yet.
bool Server::readSome(Client& client, std::size_t size) {
    char bytes[65536];
    const std::size_t count = std::min(sizeof bytes, size - client.bytes.size());
    ssize_t got = 0;
    do {
        errno = 0;
        got = ::recv(client.socket.number(), bytes, count, MSG_DONTWAIT);
    } while (got < 0 && errno == EINTR);
    if (got <= 0) return false;
    client.bytes.append(bytes, static_cast<std::size_t>(got));
    return true;
}

// A command is run only if its sender was still there to hear that it was taken.
void Server::answer(Client& client) {
    constexpr std::size_t mostWaiting = 64;
    Question question;
    if (!decode(client.bytes, question)) return;
    const InstanceCommand& command = question.command;
    const bool isCommand = question.kind == askCommand;
    const bool known = isCommand ? waiting_.size() < mostWaiting
                                 : handlers_.knows && handlers_.knows(command.windowClass, command.caption);
    const char byte = known ? yes : no;
    const bool heard = ::send(client.socket.number(), &byte, 1, MSG_DONTWAIT | MSG_NOSIGNAL) == 1;
    if (isCommand && known && heard) waiting_.push_back(std::move(question.command));
}

bool Server::next(InstanceCommand& command) {
    if (waiting_.empty()) return false;
    command = std::move(waiting_.front());
    waiting_.pop_front();
    return true;
}

std::unique_ptr<Server>& running() {
    static std::unique_ptr<Server> server;
    return server;
}

// ---- The client

class Asker {
public:
    explicit Asker(int milliseconds) : end_(millisecondsNow() + milliseconds) {}
    bool ask(const std::string& name, const Question& question);

private:
    [[nodiscard]] int left() const {
        return static_cast<int>(std::max<std::int64_t>(end_ - millisecondsNow(), 0));
    }
    bool connect(const std::string& name);
    bool ready(short events);
    bool send(std::string_view bytes);
    bool hear();

    std::int64_t end_;
    Descriptor socket_ = newSocket();
};

bool Asker::connect(const std::string& name) {
    const Descriptor folder = openRuntimeFolder();
    if (!folder.valid()) return false;
    const sockaddr_un address = addressOf(folder.number(), runtimeFileName(name, ".socket"));
    while (::connect(socket_.number(), reinterpret_cast<const sockaddr*>(&address), sizeof address) < 0) {
        const bool crowded = errno == EAGAIN || errno == EINTR;
        if (!crowded || left() == 0) return false;
        ::poll(nullptr, 0, 5);
    }
    return ofThisUser(socket_.number());
}

bool Asker::ready(short events) {
    pollfd watched{socket_.number(), events, 0};
    int count = 0;
    do count = ::poll(&watched, 1, left());
    while (count < 0 && errno == EINTR);
    return count > 0;
}

bool Asker::send(std::string_view bytes) {
    while (!bytes.empty()) {
        const ssize_t sent = ::send(socket_.number(), bytes.data(), bytes.size(), MSG_NOSIGNAL);
        if (sent > 0) bytes.remove_prefix(static_cast<std::size_t>(sent));
        if (sent < 0 && errno == EAGAIN && ready(POLLOUT)) continue;
        if (sent < 0 && errno != EINTR) return false;
    }
    return true;
}

bool Asker::hear() {
    char byte = no;
    return ready(POLLIN) && ::recv(socket_.number(), &byte, 1, 0) == 1 && byte == yes;
}

bool Asker::ask(const std::string& name, const Question& question) {
    return fits(question.command) && connect(name) && send(encode(question)) && hear();
}

}  // namespace

bool startInstanceServer(const std::string& name, InstanceServer server) {
    stopInstanceServer();
    auto made = std::make_unique<Server>(runtimeFileName(name, ".socket"), std::move(server));
    if (!made->open(holdsInstanceLock(name))) return false;
    running() = std::move(made);
    return true;
}

void stopInstanceServer() {
    running().reset();
}

int instanceSocket() {
    return running() ? running()->watched() : -1;
}

void serveInstanceCommands() {
    if (!running()) return;
    running()->receive();
    InstanceCommand command;
    while (running() && running()->next(command)) {
        const auto run = running()->runner();  // a copy, as the command may stop the server
        if (run) run(command);
    }
}

bool findInstanceWindow(const std::string& name, const std::string& windowClass, const std::string& caption) {
    return Asker(findMilliseconds).ask(name, {askWindow, {windowClass, caption, 0, {}}});
}

bool sendInstanceCommand(const std::string& name, const InstanceCommand& command) {
    return Asker(commandMilliseconds).ask(name, {askCommand, command});
}

}  // namespace tarn::os
