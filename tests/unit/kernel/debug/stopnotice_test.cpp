// SPDX-License-Identifier: Apache-2.0
#include "kernel/debug/stopnotice.h"

#include "os/runtimenotes.h"
#include "platform/operations/debugger.h"
#include "support/places.h"
#include "support/tempfolder.h"

#include <gtest/gtest.h>

#include <csignal>
#include <string>
#include <sys/stat.h>
#include <unistd.h>

namespace tarn {
namespace {

constexpr int NoProcess = 0x3fffffff;  // above the greatest number of a process

class StopNotices : public ::testing::Test {
protected:
    TempFolder top_;
    Variable runtime_{"XDG_RUNTIME_DIR", top_.path()};
    const int self_ = ::getpid();

    void SetUp() override { ASSERT_EQ(::chmod(top_.path().c_str(), 0700), 0); }
    void TearDown() override { EndStopNotice(); }
    static std::string name(int process) { return "debug-" + std::to_string(process); }
};

const StopPlace place{"Sums", "main", "/home/a b/sums.cls", 12, 648};

TEST_F(StopNotices, TellThatTheProgramRuns) {
    EXPECT_EQ(ReadStopNotice(self_).state, DebugState::None);
    NoteRunning("/home/a b/sums.cls");
    const StopNotice notice = ReadStopNotice(self_);
    EXPECT_EQ(notice.state, DebugState::Running);
    EXPECT_EQ(notice.mainSource, "/home/a b/sums.cls");
    EXPECT_EQ(notice.stop, 0);
}

TEST_F(StopNotices, TellWhereItStands) {
    NoteRunning("/a.cls");
    NoteStopped(place);
    const StopNotice notice = ReadStopNotice(self_);
    EXPECT_EQ(notice.state, DebugState::Stopped);
    EXPECT_EQ(notice.place, place);
    EXPECT_EQ(notice.mainSource, "/a.cls");
}

TEST_F(StopNotices, CountTheStops) {
    NoteRunning("/a.cls");
    NoteStopped(place);
    NoteRunning();
    NoteStopped(place);
    EXPECT_EQ(ReadStopNotice(self_).stop, 2);
    NoteRunning();
    EXPECT_EQ(ReadStopNotice(self_).stop, 2);
    EXPECT_EQ(ReadStopNotice(self_).mainSource, "/a.cls");
}

TEST_F(StopNotices, GoWithTheDebugger) {
    EndStopNotice();
    NoteRunning("/a.cls");
    EndStopNotice();
    EXPECT_EQ(ReadStopNotice(self_).state, DebugState::None);
    NoteRunning("/b.cls");
    EXPECT_EQ(ReadStopNotice(self_).stop, 0);
    EXPECT_EQ(ReadStopNotice(self_).mainSource, "/b.cls");
}

TEST_F(StopNotices, OfTheDeadGoWithTheNextProgram) {
    ASSERT_TRUE(os::putNote(name(NoProcess), "x"));
    ASSERT_TRUE(os::putNote("debug-x", "x"));
    ASSERT_TRUE(os::putNote(name(::getppid()), "x"));
    NoteRunning("/a.cls");
    EXPECT_EQ(os::getNote(name(NoProcess)), "");
    EXPECT_EQ(os::getNote("debug-x"), "");
    EXPECT_EQ(os::getNote(name(::getppid())), "x");
}

TEST_F(StopNotices, OfAnEndedProcessCanBeDropped) {
    os::putNote(name(NoProcess), "x");
    DropStopNotice(NoProcess);
    EXPECT_EQ(os::getNote(name(NoProcess)), "");
}

TEST_F(StopNotices, LetOthersBreakIntoTheProgramAlone) {
    static volatile std::sig_atomic_t heard = 0;
    const auto before = std::signal(platform::DebugBreakSignal, [](int) { heard = heard + 1; });
    EXPECT_FALSE(BreakInto(self_)) << "it is not under the debugger";
    EXPECT_FALSE(BreakInto(NoProcess));
    EXPECT_EQ(heard, 0);
    NoteRunning("/a.cls");
    EXPECT_TRUE(BreakInto(self_));
    EXPECT_EQ(heard, 1);
    std::signal(platform::DebugBreakSignal, before);
}

TEST_F(StopNotices, TellWhichProgramsThereAre) {
    EXPECT_TRUE(DebuggedProcesses().empty());
    os::putNote(name(NoProcess), "x");
    NoteRunning("/a.cls");
    os::putNote(name(NoProcess), "x");
    EXPECT_EQ(DebuggedProcesses(), std::vector<int>{self_}) << "and none that has died";
}

TEST_F(StopNotices, HoldPathsThatHaveALineEndAsEmpty) {
    NoteStopped({"A", "main", "/a\nb.cls", 1, 0});
    const StopNotice notice = ReadStopNotice(self_);
    EXPECT_EQ(notice.place.className, "A");
    EXPECT_EQ(notice.place.sourcePath, "");
    EXPECT_EQ(notice.place.line, 1);
}

TEST_F(StopNotices, ThatAreDamagedAreNone) {
    NoteStopped(place);
    const std::string whole = os::getNote(name(self_));
    for (std::size_t size = 0; size < whole.size(); ++size) {
        os::putNote(name(self_), whole.substr(0, size));
        EXPECT_EQ(ReadStopNotice(self_).state, DebugState::None) << size;
    }
    for (const std::string text :
         {"tarnwick debug 2\nstopped\n1\n\n\n\n\n1\n0\n", "tarnwick debug 1\nstanding\n1\n\n\n\n\n1\n0\n",
          "tarnwick debug 1\nstopped\nx\n\n\n\n\n1\n0\n",
          "tarnwick debug 1\nstopped\n1\n\n\n\n\n1\n0\nmore\n",
          "tarnwick debug 1\nstopped\n1\n\n\n\n\n99999999999\n0\n"}) {
        os::putNote(name(self_), text);
        EXPECT_EQ(ReadStopNotice(self_), StopNotice()) << text;
    }
}

}  // namespace
}  // namespace tarn
