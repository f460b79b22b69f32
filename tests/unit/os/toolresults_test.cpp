// SPDX-License-Identifier: Apache-2.0
#include "os/toolresults.h"

#include "os/files.h"
#include "support/places.h"
#include "support/tempfolder.h"

#include <gtest/gtest.h>

#include <functional>
#include <grp.h>
#include <string>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace tarn::os {
namespace {

constexpr uid_t Nobody = 65534;

// For whom permissions count: the user of the tests, or nobody in their place.
class ToolResults : public ::testing::Test {
protected:
    TempFolder top_;
    std::string tools_ = top_ / "tools/", own_ = top_ / "run";

    void SetUp() override {
        ASSERT_EQ(::chmod(top_.path().c_str(), 0755), 0);
        ASSERT_EQ(::mkdir(tools_.c_str(), 0755), 0);
        ASSERT_EQ(::mkdir(own_.c_str(), 0700), 0);
        if (::geteuid() == 0) {
            ASSERT_EQ(::chown(own_.c_str(), Nobody, Nobody), 0);
        }
    }
    void TearDown() override { ::chmod(tools_.c_str(), 0755); }

    // Whether the result of a user without rights is `expected`.
    bool isPlace(const std::string& expected) const {
        const pid_t child = ::fork();
        if (child == 0) {
            const bool user = ::geteuid() != 0 || (::setgroups(0, nullptr) == 0 && ::setgid(Nobody) == 0 &&
                                                   ::setuid(Nobody) == 0);
            const Variable runtime("XDG_RUNTIME_DIR", own_);
            ::_exit(user && resultFile(tools_, "sarn.err") == expected ? 0 : 1);
        }
        int status = 0;
        ::waitpid(child, &status, 0);
        return WIFEXITED(status) && WEXITSTATUS(status) == 0;
    }
    std::string beside() const { return tools_ + "sarn.err"; }
    std::string second() const { return own_ + "/tarnwick/sarn.err"; }
};

TEST_F(ToolResults, StandBesideTheToolWhereTheUserMayWrite) {
    ASSERT_EQ(::chmod(tools_.c_str(), 0777), 0);
    EXPECT_TRUE(isPlace(beside()));
    ASSERT_TRUE(saveFile(beside(), "old").ok());
    ASSERT_EQ(::chmod(beside().c_str(), 0444), 0);
    EXPECT_TRUE(isPlace(beside())) << "the folder lets a file be replaced that cannot be written";
}

TEST_F(ToolResults, StandInTheUsersFolderWhereHeMayNot) {
    ASSERT_EQ(::chmod(tools_.c_str(), 0555), 0);
    EXPECT_TRUE(isPlace(second()));
    EXPECT_TRUE(infoOf(own_ + "/tarnwick").folder);
}

TEST_F(ToolResults, OfAnEarlierRunBesideTheToolDoNotCountThere) {
    ASSERT_TRUE(saveFile(beside(), "x.cls : 0 errors.\n").ok());
    ASSERT_EQ(::chmod(tools_.c_str(), 0555), 0);
    EXPECT_TRUE(isPlace(second()));
}

TEST_F(ToolResults, OfSomebodyElseInACommonFolderDoNotCount) {
    if (::geteuid() != 0) GTEST_SKIP() << "needs a second user";
    ASSERT_EQ(::chmod(tools_.c_str(), 01777), 0);
    EXPECT_TRUE(isPlace(beside()));
    ASSERT_TRUE(saveFile(beside(), "another's").ok());
    ASSERT_EQ(::chmod(beside().c_str(), 0666), 0);
    EXPECT_TRUE(isPlace(second()));
    ASSERT_EQ(::chown(beside().c_str(), Nobody, Nobody), 0);
    EXPECT_TRUE(isPlace(beside()));
}

TEST_F(ToolResults, WithoutAFolderOfTheUserStandBesideTheTool) {
    if (::geteuid() != 0) GTEST_SKIP() << "needs a second user";
    ASSERT_EQ(::mkdir((own_ + "/tarnwick").c_str(), 0777), 0);
    ASSERT_EQ(::chmod(tools_.c_str(), 0555), 0);
    EXPECT_TRUE(isPlace(beside())) << "the user's folder belongs to somebody else";
}

TEST_F(ToolResults, StandInAFolderThatIsMissing) {
    tools_ = top_ / "none/";
    EXPECT_TRUE(isPlace(beside())) << "whoever looks there is told what is missing";
}

}  // namespace
}  // namespace tarn::os
