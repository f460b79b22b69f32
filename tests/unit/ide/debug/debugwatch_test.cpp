// SPDX-License-Identifier: GPL-3.0-or-later
//
// The environment beside programs under the debugger, whose notes this test writes in their place.
#include "ide/debug/debugwatch.h"

#include "ide/debug/codemarks.h"
#include "kernel/debug/stopnotice.h"
#include "kernel/windows/linemarks.h"
#include "os/runtimenotes.h"
#include "support/ide_fixture.h"
#include "support/tempfolder.h"

#include <sys/stat.h>
#include <unistd.h>

namespace tarn {
namespace {

class DebugWatch : public IdeTest {
protected:
    void SetUp() override {
        ASSERT_EQ(::chmod(runtimeFolder_.path().c_str(), 0700), 0);
        IdeTest::SetUp();
        start();
        const std::string text =
            "Tarnwick Class Sums\nfunction main()\nPRINT(\"1\")\nPRINT(\"2\")\nend function\nEnd class\n";
        file = write("sums.cls", text);
        other = write("other.cls", text);
        EDITWNDOPEN(SDIEdit, file, false, 0);
    }
    void TearDown() override {
        EndStopNotice();
        FORGETPROGRAM(self);
        IdeTest::TearDown();
    }
    void stopAt(const std::string& path, int line, int error = 0) {
        NoteStopped({"Sums", "main", path, line, error});
        FOLLOWPROGRAM(self, "sums.exe");
    }
    // Another program, whose note is written in its place.
    void otherStopsAt(int process, const std::string& path, int line) {
        os::putNote("debug-" + std::to_string(process), "tarnwick debug 1\nstopped\n1\n\nSums\nmain\n" +
                                                            path + "\n" + std::to_string(line) + "\n0\n");
        FOLLOWPROGRAM(process, "p" + std::to_string(process));
    }
    static std::string marks() {
        std::string text;
        for (const LineMark& mark : GetLineMarks(SDIEdit)) text += std::to_string(mark.line) + " ";
        return text;
    }
    static std::string status() { return GetCaption(MAINCONTROL("lblstatus")); }

    TempFolder runtimeFolder_;
    Variable runtime_{"XDG_RUNTIME_DIR", runtimeFolder_.path()};
    std::string file, other;
    const int self = ::getpid();
};

TEST_F(DebugWatch, TellsThatAProgramRuns) {
    FOLLOWPROGRAM(self, "sums.exe");
    EXPECT_EQ(status(), "") << "it is not under the debugger";
    EXPECT_FALSE(ISDEBUGGED(self));
    NoteRunning(file);
    FOLLOWPROGRAM(self, "sums.exe");
    EXPECT_TRUE(ISDEBUGGED(self));
    EXPECT_EQ(status(), "sums.exe runs in the debugger");
    EndStopNotice();
    FORGETPROGRAM(self);
    EXPECT_EQ(status(), "sums.exe has ended");
    EXPECT_FALSE(ISDEBUGGED(self));
}

TEST_F(DebugWatch, MarksTheLineOfAStopAndTellsThePlace) {
    stopAt(file, 3);
    EXPECT_EQ(marks(), "3 ");
    EXPECT_EQ(CARETLINE(SDIEdit), 3);
    EXPECT_EQ(status(), "sums.exe is stopped in Sums.main, line 3");
    stopAt(file, 4);
    EXPECT_EQ(marks(), "4 ");
    NoteRunning();
    FOLLOWPROGRAM(self, "sums.exe");
    EXPECT_EQ(marks(), "");
    EXPECT_EQ(status(), "sums.exe runs in the debugger");
}

TEST_F(DebugWatch, TellsTheErrorOfAStop) {
    stopAt(file, 3, 648);
    EXPECT_EQ(status(), "sums.exe is stopped by error 648 in Sums.main, line 3");
}

TEST_F(DebugWatch, SeesASecondStopAtTheSameLine) {
    stopAt(file, 3);
    EDITWNDSELECTLINE(SDIEdit, 1);
    FOLLOWPROGRAM(self, "sums.exe");
    EXPECT_EQ(CARETLINE(SDIEdit), 1) << "the user may look around meanwhile";
    stopAt(file, 3);
    EXPECT_EQ(CARETLINE(SDIEdit), 3);
}

TEST_F(DebugWatch, ShowsTheClassWhereItStopped) {
    stopAt(other, 4);
    EXPECT_EQ(EDITWNDGETFILENAME(SDIEdit), other);
    EXPECT_EQ(marks(), "4 ");
    EXPECT_TRUE(asked.empty());
}

TEST_F(DebugWatch, LeavesATextThatIsChanged) {
    type("// changed\n");
    stopAt(other, 4);
    EXPECT_EQ(EDITWNDGETFILENAME(SDIEdit), file);
    EXPECT_EQ(marks(), "");
    EXPECT_TRUE(asked.empty()) << "a stop is no moment for a question";
    EXPECT_EQ(status(), "sums.exe is stopped in Sums.main, line 4");
}

TEST_F(DebugWatch, TellsPlacesThatCannotBeShown) {
    struct Case {
        std::string path;
        int line;
        const char* status;
    };
    for (const Case& c : {Case{dir + "gone.cls", 4, "sums.exe is stopped in Sums.main, line 4"},
                          {"", 4, "sums.exe is stopped in Sums.main, line 4"},
                          {file, 99, "sums.exe is stopped in Sums.main, line 99"},
                          {file, 0, "sums.exe is stopped"}}) {
        stopAt(c.path, c.line);
        EXPECT_EQ(marks(), "") << c.path << c.line;
        EXPECT_EQ(status(), c.status);
        EXPECT_EQ(EDITWNDGETFILENAME(SDIEdit), file);
    }
}

TEST_F(DebugWatch, ShowsWhatAProgramHasLeftInTheSettings) {
    NoteRunning(file);
    FOLLOWPROGRAM(self, "sums.exe");
    PROFILESTRPUT(ini(), "debug", "breakpoints", "SUMS 3");
    EXPECT_EQ(marks(), "");
    FORGETPROGRAM(self);
    EXPECT_EQ(marks(), "3 ");
}

TEST_F(DebugWatch, ShowsTheStopOfAnotherProgramWhenTheShownOneHasEnded) {
    constexpr int Second = 99000001, Third = 99000002;
    otherStopsAt(Second, other, 4);
    otherStopsAt(Third, file, 2);
    stopAt(file, 3);
    EXPECT_EQ(marks(), "3 ");
    FORGETPROGRAM(self);
    EXPECT_EQ(marks(), "2 ") << "the one that stopped last";
    EXPECT_EQ(status(), "p99000002 is stopped in Sums.main, line 2; sums.exe has ended");
    otherStopsAt(Second, other, 5);
    EXPECT_EQ(marks(), "5 ");
    FORGETPROGRAM(Third);
    EXPECT_EQ(marks(), "5 ") << "it was not shown";
    EXPECT_EQ(status(), "p99000001 is stopped in Sums.main, line 5; p99000002 has ended");
    FORGETPROGRAM(Second);
    EXPECT_EQ(marks(), "");
    EXPECT_EQ(status(), "p99000001 has ended");
}

TEST_F(DebugWatch, ShowsNoStopOfAProgramThatHasGoneOn) {
    constexpr int Second = 99000001;
    otherStopsAt(Second, other, 4);
    NoteRunning(file);
    FOLLOWPROGRAM(self, "sums.exe");
    otherStopsAt(Second, file, 2);
    NoteRunning();
    os::putNote("debug-" + std::to_string(Second),
                "tarnwick debug 1\nrunning\n2\n\nSums\nmain\n" + file + "\n2\n0\n");
    FOLLOWPROGRAM(Second, "p");
    FORGETPROGRAM(self);
    EXPECT_EQ(marks(), "");
    EXPECT_EQ(status(), "sums.exe has ended");
    FORGETPROGRAM(Second);
}

TEST_F(DebugWatch, DropsWhatAProgramThatWasKilledHasLeft) {
    stopAt(file, 3);
    FORGETPROGRAM(self);
    EXPECT_EQ(marks(), "");
    EXPECT_EQ(ReadStopNotice(self).state, DebugState::None);
}

}  // namespace
}  // namespace tarn
