// SPDX-License-Identifier: Apache-2.0
//
// A serial port over a pseudo terminal, which takes settings and bytes as a port does.
#include "os/serial.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cstdlib>
#include <fcntl.h>
#include <poll.h>
#include <termios.h>
#include <unistd.h>

namespace tarn::os {
namespace {

class SerialTest : public ::testing::Test {
protected:
    int far = -1;  // what hangs on the other end of the line
    std::string device;

    void SetUp() override {
        far = ::posix_openpt(O_RDWR | O_NOCTTY);
        ASSERT_GE(far, 0);
        ASSERT_EQ(::grantpt(far), 0);
        ASSERT_EQ(::unlockpt(far), 0);
        device = ::ptsname(far);
    }
    void TearDown() override { hangUp(); }
    void hangUp() {
        if (far >= 0) ::close(far);
        far = -1;
    }
    std::string heard(std::size_t count) const {
        std::string bytes(count, '\0');
        std::size_t got = 0;
        for (pollfd one{far, POLLIN, 0}; got<count&& ::poll(&one, 1, 1000)> 0;) {
            const ssize_t some = ::read(far, bytes.data() + got, count - got);
            if (some <= 0) break;
            got += static_cast<std::size_t>(some);
        }
        bytes.resize(got);
        return bytes;
    }
    void say(std::string_view bytes) const {
        ASSERT_EQ(::write(far, bytes.data(), bytes.size()), static_cast<ssize_t>(bytes.size()));
    }
    std::unique_ptr<SerialPort> open(const SerialSettings& settings = {}) const {
        SerialError error{};
        auto port = openSerial(device, settings, error);
        EXPECT_EQ(error, SerialError::None);
        EXPECT_NE(port, nullptr);
        return port;
    }
};

const std::string allBytes = [] {
    std::string bytes;
    for (int i = 0; i < 256; ++i) bytes += static_cast<char>(i);
    return bytes;
}();

TEST_F(SerialTest, EveryByteGoesBothWaysAsItIs) {
    const auto port = open();
    EXPECT_TRUE(port->write(allBytes, 1000));
    EXPECT_EQ(heard(256), allBytes);
    say(allBytes);
    std::string bytes = "before ";
    EXPECT_TRUE(port->read(bytes, 256, 1000));
    EXPECT_EQ(bytes, "before " + allBytes);
}

TEST_F(SerialTest, ReadingEndsWithTheTime) {
    const auto port = open();
    say("ab");
    std::string bytes;
    const auto start = std::chrono::steady_clock::now();
    EXPECT_TRUE(port->read(bytes, 10, 60));
    EXPECT_EQ(bytes, "ab");
    EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(60));
    bytes.clear();
    EXPECT_TRUE(port->read(bytes, 10, 0)) << "what is there, at once";
    EXPECT_EQ(bytes, "");
    EXPECT_TRUE(port->read(bytes, 0, 1000));
}

TEST_F(SerialTest, ALineThatTakesNothingEndsTheWriting) {
    const auto port = open();
    EXPECT_FALSE(port->write(std::string(1 << 20, 'x'), 50));
}

TEST_F(SerialTest, FlushingForgetsWhatWasNotRead) {
    const auto port = open();
    say("old");
    std::string bytes;
    ::usleep(20000);
    EXPECT_TRUE(port->flush(100));
    say("new");
    EXPECT_TRUE(port->read(bytes, 3, 1000));
    EXPECT_EQ(bytes, "new");
    int bits = 99;
    EXPECT_TRUE(port->errors(bits));
    EXPECT_EQ(bits, 0);
}

TEST_F(SerialTest, AnEndThatHasGoneFails) {
    const auto port = open();
    hangUp();
    std::string bytes;
    EXPECT_FALSE(port->read(bytes, 1, 1000));
    EXPECT_FALSE(port->write("x", 100));
}

TEST_F(SerialTest, SettingsReachTheLineAndGoBack) {
    const int line = ::open(device.c_str(), O_RDWR | O_NOCTTY);
    termios before{}, now{};
    ::tcgetattr(line, &before);
    SerialSettings settings;
    settings.speed = 19200;
    settings.stopBits = 2;
    settings.flow = SerialFlow::Software;
    {
        const auto port = open(settings);
        ::tcgetattr(line, &now);
        EXPECT_EQ(::cfgetospeed(&now), static_cast<speed_t>(B19200));
        EXPECT_NE(now.c_cflag & CSTOPB, 0U);
        EXPECT_NE(now.c_iflag & IXON, 0U);
        EXPECT_EQ(now.c_lflag & (ICANON | ECHO | ISIG), 0U);
    }
    ::tcgetattr(line, &now);
    EXPECT_EQ(now.c_lflag, before.c_lflag);
    EXPECT_EQ(now.c_cflag, before.c_cflag);
    ::close(line);
}

TEST_F(SerialTest, WhatCannotBeOpenedSaysWhy) {
    struct Case {
        std::string device;
        int speed, bits;
        SerialError error;
    };
    for (const Case& one :
         {Case{"/dev/no-such-port", 9600, 8, SerialError::NotFound},
          Case{"/dev/null/x", 9600, 8, SerialError::NotFound}, Case{"/dev/null", 9600, 8, SerialError::Other},
          Case{device, 12345, 8, SerialError::BadSettings}, Case{device, 9600, 9, SerialError::BadSettings},
          Case{device, 9600, 4, SerialError::BadSettings}}) {
        SerialSettings settings;
        settings.speed = one.speed;
        settings.dataBits = one.bits;
        SerialError error{};
        EXPECT_EQ(openSerial(one.device, settings, error), nullptr);
        EXPECT_EQ(error, one.error) << one.device;
    }
}

TEST_F(SerialTest, APortIsOpenedOnce) {
    const auto port = open();
    SerialError error{};
    EXPECT_EQ(openSerial(device, {}, error), nullptr);
    EXPECT_EQ(error, SerialError::InUse);
}

}  // namespace
}  // namespace tarn::os
