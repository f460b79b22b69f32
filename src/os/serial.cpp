// SPDX-License-Identifier: Apache-2.0
#include "os/serial.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <fcntl.h>
#include <linux/serial.h>
#include <poll.h>
#include <sys/file.h>
#include <sys/ioctl.h>
#include <termios.h>
#include <unistd.h>

namespace tarn::os {

namespace {

struct Speed {
    int bits;
    speed_t code;
};

constexpr Speed speeds[] = {
    {110, B110},       {300, B300},       {600, B600},       {1200, B1200},     {2400, B2400},
    {4800, B4800},     {9600, B9600},     {19200, B19200},   {38400, B38400},   {57600, B57600},
    {115200, B115200}, {230400, B230400}, {460800, B460800}, {921600, B921600},
};

const Speed* speedOf(int bits) {
    const auto* const place = std::find_if(std::begin(speeds), std::end(speeds),
                                           [=](const Speed& one) { return one.bits == bits; });
    return place == std::end(speeds) ? nullptr : place;
}

class Deadline {
public:
    explicit Deadline(int milliseconds) : end_(now() + std::chrono::milliseconds(milliseconds)) {}
    [[nodiscard]] int left() const {
        const auto rest = std::chrono::ceil<std::chrono::milliseconds>(end_ - now()).count();
        return static_cast<int>(std::max<std::int64_t>(rest, 0));
    }

private:
    using Clock = std::chrono::steady_clock;
    static Clock::time_point now() { return Clock::now(); }
    Clock::time_point end_;
};

void apply(termios& line, const SerialSettings& settings, speed_t speed) {
    static constexpr tcflag_t sizes[] = {CS5, CS6, CS7, CS8};
    ::cfmakeraw(&line);
    line.c_cflag &= ~static_cast<tcflag_t>(CSIZE | PARENB | PARODD | CSTOPB | CRTSCTS);
    line.c_cflag |= CLOCAL | CREAD | sizes[settings.dataBits - 5];
    if (settings.stopBits == 2) line.c_cflag |= CSTOPB;
    if (settings.parity != SerialParity::None) line.c_cflag |= PARENB;
    if (settings.parity == SerialParity::Odd) line.c_cflag |= PARODD;
    if (settings.flow == SerialFlow::Hardware) line.c_cflag |= CRTSCTS;
    line.c_iflag &= ~static_cast<tcflag_t>(IXON | IXOFF | IXANY);
    if (settings.flow == SerialFlow::Software) line.c_iflag |= IXON | IXOFF;
    line.c_cc[VMIN] = 0;
    line.c_cc[VTIME] = 0;
    ::cfsetispeed(&line, speed);
    ::cfsetospeed(&line, speed);
}

class Port : public SerialPort {
public:
    Port(int descriptor, const termios& before) : descriptor_(descriptor), before_(before) {
        counters_ = counters();
    }
    ~Port() override {
        ::tcsetattr(descriptor_, TCSANOW, &before_);
        ::ioctl(descriptor_, TIOCNXCL);
        ::close(descriptor_);
    }
    Port(const Port&) = delete;
    Port& operator=(const Port&) = delete;

    bool read(std::string& bytes, std::size_t most, int milliseconds) override {
        const Deadline deadline(milliseconds);
        for (std::size_t got = 0; got < most;) {
            if (!ready(POLLIN, deadline.left())) return !failed_;
            char buffer[4096];
            const ssize_t count = ::read(descriptor_, buffer, std::min(most - got, sizeof buffer));
            if (count < 0 && (errno == EAGAIN || errno == EINTR)) continue;
            if (count <= 0) return false;  // the other end has gone
            bytes.append(buffer, static_cast<std::size_t>(count));
            got += static_cast<std::size_t>(count);
        }
        return true;
    }

    bool write(std::string_view bytes, int milliseconds) override {
        const Deadline deadline(milliseconds);
        while (!bytes.empty()) {
            if (!ready(POLLOUT, deadline.left())) return false;
            const ssize_t count = ::write(descriptor_, bytes.data(), bytes.size());
            if (count < 0 && (errno == EAGAIN || errno == EINTR)) continue;
            if (count < 0) return false;
            bytes.remove_prefix(static_cast<std::size_t>(count));
        }
        return true;
    }

    bool flush(int milliseconds) override {
        const Deadline deadline(milliseconds);
        for (int waiting = 0;; ::usleep(1000)) {
            if (::ioctl(descriptor_, TIOCOUTQ, &waiting) != 0) return false;
            if (waiting == 0) break;
            if (deadline.left() == 0) return false;
        }
        return ::tcflush(descriptor_, TCIFLUSH) == 0;
    }

    bool errors(int& bits) override {
        const serial_icounter_struct now = counters();
        termios line{};
        if (::tcgetattr(descriptor_, &line) != 0) return false;
        bits = (now.overrun != counters_.overrun || now.buf_overrun != counters_.buf_overrun ? SerialOverrun
                                                                                             : 0) |
               (now.parity != counters_.parity ? SerialBadParity : 0) |
               (now.frame != counters_.frame ? SerialBadFrame : 0) |
               (now.brk != counters_.brk ? SerialBreak : 0);
        counters_ = now;
        return true;
    }

private:
    // False when the time is over or the port fails.
    bool ready(short what, int milliseconds) {
        pollfd one{descriptor_, what, 0};
        int count = 0;
        do count = ::poll(&one, 1, milliseconds);
        while (count < 0 && errno == EINTR);
        failed_ = count < 0 || (count > 0 && (one.revents & what) == 0);
        return count > 0 && !failed_;
    }
    [[nodiscard]] serial_icounter_struct counters() const {
        serial_icounter_struct counted{};
        if (::ioctl(descriptor_, TIOCGICOUNT, &counted) != 0) counted = {};
        return counted;
    }

    int descriptor_;
    termios before_;
    serial_icounter_struct counters_{};
    bool failed_ = false;
};

SerialError errorOf(int number) {
    switch (number) {
    case ENOENT:
    case ENXIO:
    case ENODEV:
    case ENOTDIR: return SerialError::NotFound;
    case EBUSY:
    case EWOULDBLOCK: return SerialError::InUse;
    default: return SerialError::Other;
    }
}

}  // namespace

bool isSerialSpeed(int bitsPerSecond) {
    return speedOf(bitsPerSecond) != nullptr;
}

std::unique_ptr<SerialPort> openSerial(const std::string& device, const SerialSettings& settings,
                                       SerialError& error) {
    const Speed* const speed = speedOf(settings.speed);
    const bool sound = speed != nullptr && settings.dataBits >= 5 && settings.dataBits <= 8;
    if (!sound) return error = SerialError::BadSettings, nullptr;
    const int descriptor = ::open(device.c_str(), O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC);
    if (descriptor < 0) return error = errorOf(errno), nullptr;
    const auto fail = [&](SerialError reason) -> std::unique_ptr<SerialPort> {
        error = reason;
        ::close(descriptor);
        return nullptr;
    };
    termios before{};
    if (::tcgetattr(descriptor, &before) != 0) return fail(SerialError::Other);  // no serial port
    // The lock tells programs of this user, the exclusive mode all others.
    if (::flock(descriptor, LOCK_EX | LOCK_NB) != 0) return fail(errorOf(errno));
    if (::ioctl(descriptor, TIOCEXCL) != 0) return fail(SerialError::Other);
    termios line = before;
    apply(line, settings, speed->code);
    if (::tcsetattr(descriptor, TCSANOW, &line) != 0) return fail(SerialError::BadSettings);
    error = SerialError::None;
    return std::make_unique<Port>(descriptor, before);
}

}  // namespace tarn::os
