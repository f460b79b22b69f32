// SPDX-License-Identifier: Apache-2.0
#include "os/runtimenotes.h"

#include "support/places.h"
#include "support/tempfolder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>

namespace tarn::os {
namespace {

class RuntimeNotes : public ::testing::Test {
protected:
    TempFolder top_;
    Variable runtime_{"XDG_RUNTIME_DIR", top_.path()};

    void SetUp() override { ASSERT_EQ(::chmod(top_.path().c_str(), 0700), 0); }
};

TEST_F(RuntimeNotes, AreReadAsTheyWereWritten) {
    const std::string text("one\ntwo\0three", 13);
    EXPECT_TRUE(putNote("debug-1", text));
    EXPECT_EQ(getNote("debug-1"), text);
    EXPECT_TRUE(putNote("debug-1", "shorter"));
    EXPECT_EQ(getNote("debug-1"), "shorter");
}

TEST_F(RuntimeNotes, ThatAreNotThereAreEmpty) {
    EXPECT_EQ(getNote("debug-1"), "");
    putNote("debug-1", "x");
    dropNote("debug-1");
    EXPECT_EQ(getNote("debug-1"), "");
    dropNote("debug-1");
}

TEST_F(RuntimeNotes, AreListedByTheStartOfTheirNames) {
    for (const char* name : {"debug-1", "debug-22", "other-1"}) putNote(name, "x");
    std::vector<std::string> names = notesWith("debug-");
    std::sort(names.begin(), names.end());
    EXPECT_EQ(names, (std::vector<std::string>{"debug-1", "debug-22"})) << "and no drafts";
}

TEST_F(RuntimeNotes, HaveNamesThatLeadNowhereElse) {
    for (const std::string name : {"", "../x", "a/b", "1", ".x", "a b", "a\n"})
        EXPECT_FALSE(putNote(name, "x")) << name;
    EXPECT_FALSE(putNote(std::string(101, 'a'), "x"));
    EXPECT_TRUE(putNote(std::string(100, 'a'), "x"));
    EXPECT_FALSE(putNote(std::string("a\0b", 3), "x"));
}

TEST_F(RuntimeNotes, AreBounded) {
    const std::string most(MaximalNote, 'x');
    EXPECT_TRUE(putNote("a", most));
    EXPECT_EQ(getNote("a"), most);
    EXPECT_FALSE(putNote("a", most + "x"));
    EXPECT_EQ(getNote("a"), most);
}

TEST_F(RuntimeNotes, ThatAreNoFilesAreNotFollowed) {
    putNote("a", "x");
    const std::string folder = top_ / "tarnwick/";
    ASSERT_EQ(::symlink((folder + "a").c_str(), (folder + "b").c_str()), 0);
    ASSERT_EQ(::mkfifo((folder + "c").c_str(), 0600), 0);
    EXPECT_EQ(getNote("b"), "");
    EXPECT_EQ(getNote("c"), "");
    EXPECT_TRUE(putNote("b", "y"));
    EXPECT_EQ(getNote("a"), "x");
    EXPECT_EQ(getNote("b"), "y");
}

TEST_F(RuntimeNotes, AreReadWholeWhileTheyAreWritten) {
    const std::string a(5000, 'a'), b(300, 'b');
    putNote("n", a);
    std::thread writer([&] {
        for (int i = 0; i < 500; ++i) putNote("n", i % 2 == 0 ? b : a);
    });
    for (int i = 0; i < 500; ++i) {
        const std::string now = getNote("n");
        EXPECT_TRUE(now == a || now == b);
    }
    writer.join();
}

TEST_F(RuntimeNotes, AreNotWrittenIntoAFolderOfSomebodyElse) {
    if (::geteuid() != 0) GTEST_SKIP() << "needs a second user";
    ASSERT_EQ(::mkdir((top_ / "tarnwick").c_str(), 0700), 0);
    ASSERT_EQ(::chown((top_ / "tarnwick").c_str(), 65534, 65534), 0);
    EXPECT_FALSE(putNote("a", "x"));
    EXPECT_EQ(getNote("a"), "");
    EXPECT_TRUE(notesWith("a").empty());
}

}  // namespace
}  // namespace tarn::os
