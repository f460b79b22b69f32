// SPDX-License-Identifier: Apache-2.0
#include "unit/kernel/runtime_fixture.h"

#include "os/files.h"
#include "support/steerable.h"
#include "support/tempfolder.h"

using namespace tarn;

namespace {

class TraceLines : public Runtime {
protected:
    void SetUp() override {
        Runtime::SetUp();
        clock_.setLocal({2007, 11, 1, 9, 8, 7, 0});
        before_ = os::useClock(&clock_);
    }
    void TearDown() override {
        Runtime::TearDown();
        os::useClock(before_);
    }
    [[nodiscard]] std::string file() const { return folder_ / "tarnwick/trace.txt"; }
    [[nodiscard]] std::string written() const {
        std::string text;
        os::readFile(file(), text);
        return text;
    }
    static std::string heading(int mode) {
        const std::string dashes(40, '-');
        return dashes + "\n" + os::executablePath() + " 2007-11-01 09:08:07 trace=" + std::to_string(mode) +
               "\n" + dashes + "\n";
    }

    TempFolder folder_;
    Variable state_{"XDG_STATE_HOME", folder_.path()};
    os::SteeredClock clock_;
    os::Clock* before_ = nullptr;
};

TEST_F(TraceLines, ModeTwoAppendsLinesToTheFile) {
    SetTraceMode(2);
    EXPECT_EQ(GetTraceMode(), 2);
    EXPECT_EQ(written(), heading(2));
    Trace("one line");
    FunctionEnter("system", "CHR", 120);
    FunctionLeave();
    EXPECT_EQ(written(), heading(2) + "one line\nsystem:CHR(120)\n");
    EXPECT_EQ(log(), (Log{"trace 2"}));
}

TEST_F(TraceLines, AnOldTraceFileIsContinued) {
    ASSERT_EQ(os::makeFolders(folder_ / "tarnwick"), os::FileError::None);
    ASSERT_TRUE(os::saveFile(file(), "old\n", os::Durability::Unsynced).ok());
    SetTraceMode(2);
    EXPECT_EQ(written(), "old\n" + heading(2));
}

TEST_F(TraceLines, ModeOneGoesToTheDebugOutput) {
    ::testing::internal::CaptureStderr();
    SetTraceMode(1);
    FunctionEnter("c", "DO_LOAD", 4);
    SetTraceMode(0);
    FunctionEnter("c", "SILENT", 4);
    EXPECT_EQ(::testing::internal::GetCapturedStderr(), heading(1) + "c:DO_LOAD(4)\n");
    EXPECT_EQ(log(), (Log{"trace 1", "trace 0"}));
}

TEST_F(TraceLines, OtherModesAreIgnored) {
    SetTraceMode(2);
    for (const std::int32_t mode : {-1, 3, INT32_MAX}) SetTraceMode(mode);
    EXPECT_EQ(GetTraceMode(), 2);
    EXPECT_EQ(log(), (Log{"trace 2"}));
}

TEST_F(TraceLines, TracingOffWritesNothing) {
    Trace("nothing");
    SetTraceMode(0);
    EXPECT_FALSE(os::infoOf(file()).exists);
    EXPECT_EQ(log(), (Log{"trace 0"}));
}

TEST_F(TraceLines, AFileThatCannotBeWrittenRaisesNoError) {
    ASSERT_EQ(os::makeFolders(folder_ / "tarnwick/trace.txt"), os::FileError::None);  // a folder in its place
    SetTraceMode(2);
    Trace("lost");
    FunctionEnter("c", "F", 1);
    EXPECT_EQ(ErrorCell(), 0);
    EXPECT_EQ(tarn_current_line, 1);
}

TEST_F(TraceLines, AFullDiskTakesNoLineAndRaisesNoError) {
    os::SteeredFiles files;
    const os::Steered steered(files);
    files.put(file(), "old\n");
    files.setFreeBytes(0);
    SetTraceMode(2);
    Trace("lost");
    FunctionEnter("c", "F", 1);
    EXPECT_EQ(files.contents(file()), "old\n");
    EXPECT_EQ(files.openHandles(), 0);
    EXPECT_EQ(ErrorCell(), 0);
    files.setFreeBytes(100);
    Trace("kept");
    EXPECT_EQ(files.contents(file()), "old\nkept\n");
}

TEST_F(TraceLines, AStateFolderThatCannotBeMadeRaisesNoError) {
    const Variable elsewhere("XDG_STATE_HOME", "/proc/none");
    SetTraceMode(2);
    Trace("lost");
    EXPECT_EQ(ErrorCell(), 0);
}

}  // namespace
