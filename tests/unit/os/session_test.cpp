// SPDX-License-Identifier: Apache-2.0
//
// The wish that this process end, as it comes from outside.
#include "os/session.h"

#include <gtest/gtest.h>

#include <csignal>
#include <poll.h>
#include <unistd.h>

namespace tarn::os {

namespace {

void late(int signal) {
    _exit(100 + signal);
}

bool readable() {
    pollfd one{endDescriptor(), POLLIN, 0};
    return ::poll(&one, 1, 0) == 1;
}

class Session : public ::testing::Test {
protected:
    void TearDown() override { stopListeningForEnd(); }
};

TEST_F(Session, NobodyHearsUntilSomebodyListens) {
    EXPECT_EQ(endDescriptor(), -1);
    listenForEnd(late);
    EXPECT_GE(endDescriptor(), 0);
    stopListeningForEnd();
    EXPECT_EQ(endDescriptor(), -1);
}

TEST_F(Session, EachSignalIsHandedToTheLoopOnce) {
    listenForEnd(late);
    EXPECT_FALSE(readable());
    EXPECT_EQ(takeEndSignal(), 0);
    for (const int signal : {SIGTERM, SIGHUP, SIGINT}) {
        ::raise(signal);
        EXPECT_TRUE(readable());
        EXPECT_EQ(takeEndSignal(), signal);
        EXPECT_FALSE(readable());
        EXPECT_EQ(takeEndSignal(), 0);
    }
}

TEST_F(Session, ManySignalsBeforeTheLoopComesRoundAreOne) {
    listenForEnd(late);
    for (int i = 0; i < 100000; ++i) ::raise(SIGTERM);  // more than a pipe holds
    EXPECT_EQ(takeEndSignal(), SIGTERM);
    EXPECT_FALSE(readable());
}

TEST_F(Session, ASignalThatWasIgnoredStaysIgnored) {
    std::signal(SIGHUP, SIG_IGN);
    listenForEnd(late);
    ::raise(SIGHUP);
    EXPECT_FALSE(readable());
    stopListeningForEnd();
    std::signal(SIGHUP, SIG_DFL);
}

TEST_F(Session, ALoopThatDoesNotComeRoundIsPassedOver) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(
        {
            listenForEnd(late);
            ::raise(SIGTERM);
            ::alarm(1);  // sooner than in life
            for (;;) ::pause();
        },
        ::testing::ExitedWithCode(100 + SIGTERM), "");
}

TEST_F(Session, TheFormerHandlersComeBack) {
    struct sigaction before {
    }, after{};
    ::sigaction(SIGTERM, nullptr, &before);
    listenForEnd(late);
    stopListeningForEnd();
    ::sigaction(SIGTERM, nullptr, &after);
    EXPECT_EQ(before.sa_handler, after.sa_handler);
}

}  // namespace

}  // namespace tarn::os
