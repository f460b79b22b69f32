// SPDX-License-Identifier: Apache-2.0
#include "platform/windowing.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <unistd.h>

#include <cstdlib>

namespace tarn::platform {
namespace {

class CommTest : public ::testing::Test {
protected:
    int far = -1;
    std::string device;
    void SetUp() override {
        far = ::posix_openpt(O_RDWR | O_NOCTTY);
        ASSERT_GE(far, 0);
        ASSERT_EQ(::grantpt(far), 0);
        ASSERT_EQ(::unlockpt(far), 0);
        device = ::ptsname(far);
    }
    void TearDown() override {
        if (far >= 0) ::close(far);
    }
};

TEST_F(CommTest, BytesAndStringsGoOverAnOpenPort) {
    const Answer<int> port = CommOpen(device, "9600,N,8,1");
    ASSERT_EQ(port.code, Ok);
    EXPECT_GT(port.value, 0);
    EXPECT_EQ(CommWriteString(port.value, std::string_view("a\0b", 3)), Ok);
    EXPECT_EQ(CommWriteByte(port.value, 255), Ok);
    char bytes[4] = {};
    for (ssize_t got = 0, more = 0; got < 4; got += more)  // each writing may come by itself
        ASSERT_GT(more = ::read(far, bytes + got, static_cast<std::size_t>(4 - got)), 0);
    EXPECT_EQ(std::string(bytes, 4), std::string("a\0b\xFF", 4));
    ASSERT_EQ(::write(far,
                      "\xFE"
                      "xyz",
                      4),
              4);
    EXPECT_EQ(CommReadByte(port.value).value, 0xFE);
    EXPECT_EQ(CommReadString(port.value, 2).value, "xy");
    EXPECT_EQ(CommSetTimeouts(port.value, {10, 20}), Ok);
    EXPECT_EQ(CommGetTimeouts(port.value).value.read, 10);
    EXPECT_EQ(CommGetTimeouts(port.value).value.write, 20);
    EXPECT_EQ(CommReadString(port.value, 100).value, "z") << "what came in time";
    EXPECT_EQ(CommReadByte(port.value).value, -1);
    EXPECT_EQ(CommReadByte(port.value).code, Ok);
    EXPECT_EQ(CommReadString(port.value, -3).value, "");
    EXPECT_EQ(CommGetError(port.value).value, 0);
    EXPECT_EQ(CommFlush(port.value), Ok);
    EXPECT_EQ(CommOpen(device, "9600,N,8,1").code, 956) << "in use";
    EXPECT_EQ(CommClose(port.value), Ok);
    EXPECT_EQ(CommClose(port.value), 951);
    const Answer<int> again = CommOpen(device, "115200, e, 8, 2, RTS");
    EXPECT_EQ(again.code, Ok);
    EXPECT_NE(again.value, port.value) << "an old handle stays an old one";
    CommClose(again.value);
}

TEST_F(CommTest, AnEndThatHasGoneFails) {
    const int port = CommOpen(device, "9600,N,8,1").value;
    ::close(far);
    far = -1;
    EXPECT_EQ(CommReadByte(port).code, 953);
    EXPECT_EQ(CommReadByte(port).value, -1);
    EXPECT_EQ(CommWriteByte(port, 1), 954);
    CommClose(port);
}

TEST_F(CommTest, AClosedPortSaysSo) {
    for (const int handle : {0, -1, 9999})
        for (const Code code :
             {CommClose(handle), CommFlush(handle), CommGetError(handle).code, CommGetTimeouts(handle).code,
              CommSetTimeouts(handle, {}), CommReadByte(handle).code, CommReadString(handle, 1).code,
              CommWriteByte(handle, 1), CommWriteString(handle, "")})
            EXPECT_EQ(code, 951);
}

TEST_F(CommTest, WrongNamesAndSettingsAreTold) {
    struct Case {
        std::string port, settings;
        Code code;
    };
    for (const Case& one : {Case{"", "9600,N,8,1", 960},
                            {"  ", "9600,N,8,1", 960},
                            {"COM99", "9600,N,8,1", 958},
                            {"no-such-tty", "9600,N,8,1", 958},
                            {"/dev/null", "9600,N,8,1", 957},
                            {device, "", 959},
                            {device, "9600", 959},
                            {device, "9600,N,8", 959},
                            {device, "9601,N,8,1", 959},
                            {device, "9600,X,8,1", 959},
                            {device, "9600,N,9,1", 959},
                            {device, "9600,N,8,3", 959},
                            {device, "9600,N,8,1,WHAT", 959},
                            {device, "9600,N,8,1,RTS,XON", 959},
                            {device, "-9600,N,8,1", 959},
                            {device, "9600,NN,8,1", 959}})
        EXPECT_EQ(CommOpen(one.port, one.settings).code, one.code) << one.port << " " << one.settings;
}

}  // namespace
}  // namespace tarn::platform
