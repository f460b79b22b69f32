// SPDX-License-Identifier: Apache-2.0
//
// The twins behave as the real ones do, and fail as they are told: what tests rest on them is worth no more
// than this.
#include "support/steerable.h"

#include <gtest/gtest.h>

namespace tarn::os {
namespace {

class SteeredFilesTest : public testing::Test {
protected:
    Handle make(const std::string& path, std::string_view bytes) {
        Handle handle = -1;
        EXPECT_EQ(disk_.open(path, OpenMode::CreateNew, 0644, handle), FileError::None);
        EXPECT_EQ(disk_.write(handle, 0, bytes), FileError::None);
        return handle;
    }
    SteeredFiles disk_;
};

TEST_F(SteeredFilesTest, contentsThatWereNotSyncedAreLostWithTheMachine) {
    disk_.put("/f", "old");
    Handle handle = -1;
    ASSERT_EQ(disk_.open("/f", OpenMode::Truncate, 0, handle), FileError::None);
    ASSERT_EQ(disk_.write(handle, 0, "new"), FileError::None);
    EXPECT_EQ(disk_.contents("/f"), "new");
    disk_.afterMachineDeath(SteeredFiles::Names::Lost);
    EXPECT_EQ(disk_.contents("/f"), "old");
}

TEST_F(SteeredFilesTest, aNewFileNeedsTheSyncOfItselfAndOfItsFolder) {
    disk_.close(make("/unsynced", "x"));
    Handle handle = make("/fileOnly", "x");
    disk_.sync(handle);
    disk_.afterMachineDeath(SteeredFiles::Names::Lost);
    EXPECT_EQ(disk_.allFiles(), std::vector<std::string>{});
    disk_.close(make("/folderOnly", "x"));
    disk_.syncFolder("/");
    handle = make("/both", "x");
    disk_.sync(handle);
    disk_.syncFolder("/");
    disk_.afterMachineDeath(SteeredFiles::Names::Lost);
    EXPECT_TRUE(disk_.has("/folderOnly"));
    EXPECT_EQ(disk_.contents("/folderOnly"), "");
    EXPECT_EQ(disk_.contents("/both"), "x");
}

TEST_F(SteeredFilesTest, namesMayOutliveContents) {
    disk_.put("/f", "old");
    disk_.close(make("/t", "new"));
    ASSERT_EQ(disk_.rename("/t", "/f"), FileError::None);
    disk_.afterMachineDeath(SteeredFiles::Names::Kept);
    EXPECT_TRUE(disk_.has("/f"));
    EXPECT_EQ(disk_.contents("/f"), "");
}

TEST_F(SteeredFilesTest, whatWasWrittenOverSyncedContentsMayStay) {
    disk_.put("/f", "old");
    Handle handle = -1;
    ASSERT_EQ(disk_.open("/f", OpenMode::ReadWrite, 0, handle), FileError::None);
    ASSERT_EQ(disk_.write(handle, 0, "ne"), FileError::None);
    disk_.close(make("/g", "never synced"));
    disk_.afterMachineDeath(SteeredFiles::Names::Kept, SteeredFiles::Overwritten::Kept);
    EXPECT_EQ(disk_.contents("/f"), "ned");
    EXPECT_EQ(disk_.contents("/g"), "");
}

TEST_F(SteeredFilesTest, anyPartOfWhatWasNotSyncedMayStay) {
    // What is there of two writings, a cut and a writing, by which of them are kept.
    const std::pair<const char*, std::string> cases[] = {
        {"0000", "old one"}, {"1111", std::string("X\0!", 3)},
        {"1000", "Xld one"}, {"0010", "o"},
        {"0001", "ol! one"}, {"0101", "ol! onY"},
        {"0110", "o"},       {"0011", std::string("o\0!", 3)},
    };
    for (const auto& [keeps, expected] : cases) {
        disk_.put("/f", "old one");
        Handle handle = -1;
        ASSERT_EQ(disk_.open("/f", OpenMode::ReadWrite, 0, handle), FileError::None);
        ASSERT_EQ(disk_.write(handle, 0, "X"), FileError::None);
        ASSERT_EQ(disk_.write(handle, 6, "Y"), FileError::None);
        ASSERT_EQ(disk_.truncate(handle, 1), FileError::None);
        ASSERT_EQ(disk_.write(handle, 2, "!"), FileError::None);
        const char* next = keeps;
        disk_.afterMachineDeath(SteeredFiles::Names::Kept, [&] { return *next++ == '1'; });
        EXPECT_EQ(disk_.contents("/f"), expected) << keeps;
        disk_.afterMachineDeath(SteeredFiles::Names::Kept, [] { return false; });
        EXPECT_EQ(disk_.contents("/f"), expected) << "what is left is on the disk";
    }
}

TEST_F(SteeredFilesTest, renamesAndRemovalsComeBackUnlessTheFolderIsSynced) {
    disk_.put("/a", "1");
    disk_.put("/b", "2");
    disk_.rename("/a", "/c");
    disk_.remove("/b");
    EXPECT_EQ(disk_.allFiles(), std::vector<std::string>{"/c"});
    disk_.afterMachineDeath(SteeredFiles::Names::Lost);
    EXPECT_EQ(disk_.allFiles(), (std::vector<std::string>{"/a", "/b"}));
    disk_.rename("/a", "/c");
    disk_.remove("/b");
    disk_.syncFolder("/");
    disk_.afterMachineDeath(SteeredFiles::Names::Lost);
    EXPECT_EQ(disk_.allFiles(), std::vector<std::string>{"/c"});
}

TEST_F(SteeredFilesTest, aDeadProcessDoesNothingMore) {
    disk_.put("/f", "x");
    Handle handle = -1;
    ASSERT_EQ(disk_.open("/f", OpenMode::ReadWrite, 0, handle), FileError::None);
    disk_.dieAt(2);
    EXPECT_EQ(disk_.write(handle, 0, "y"), FileError::None);
    EXPECT_THROW((void)disk_.remove("/f"), ProcessDeath);
    EXPECT_TRUE(disk_.dead());
    FileInfo info;
    std::string text;
    EXPECT_THROW((void)disk_.info("/f", info), ProcessDeath);
    EXPECT_THROW((void)disk_.close(handle), ProcessDeath);
    EXPECT_THROW((void)disk_.resolve("/f", text), ProcessDeath);
    disk_.revive();
    EXPECT_EQ(disk_.contents("/f"), "y");
    EXPECT_EQ(disk_.openHandles(), 0);
}

TEST_F(SteeredFilesTest, deathMidwayWritesHalf) {
    const Handle handle = make("/f", "");
    disk_.dieAt(1, true);
    EXPECT_THROW((void)disk_.write(handle, 0, "12345678"), ProcessDeath);
    disk_.revive();
    EXPECT_EQ(disk_.contents("/f"), "1234");
}

TEST_F(SteeredFilesTest, theTwinFailsTheCallThatWasNamed) {
    disk_.failAt(2, FileError::WriteFailed);
    EXPECT_EQ(disk_.makeFolder("/a"), FileError::None);
    EXPECT_EQ(disk_.makeFolder("/b"), FileError::WriteFailed);
    EXPECT_EQ(disk_.makeFolder("/b"), FileError::None);
    disk_.failAt(FileCall::Remove, 1, FileError::Denied);
    EXPECT_EQ(disk_.makeFolder("/c"), FileError::None);
    EXPECT_EQ(disk_.remove("/none"), FileError::Denied);
    EXPECT_EQ(disk_.remove("/none"), FileError::NotFound);
    disk_.failAlways(FileCall::MakeFolder, FileError::DiskFull);
    EXPECT_EQ(disk_.makeFolder("/d"), FileError::DiskFull);
    EXPECT_EQ(disk_.makeFolder("/d"), FileError::DiskFull);
    disk_.stopFailing();
    EXPECT_EQ(disk_.makeFolder("/d"), FileError::None);
}

TEST_F(SteeredFilesTest, readingFailsWhenToldAndIsNotCountedWithTheChanges) {
    disk_.put("/f", std::string(10'000, 'x'));
    const Steered inForce(disk_);
    std::string bytes;
    disk_.failAt(FileCall::Read, 2, FileError::ReadFailed);
    EXPECT_EQ(readFile("/f", bytes), FileError::ReadFailed);
    EXPECT_EQ(bytes, "");
    disk_.failAt(FileCall::OpenRead, 1, FileError::Denied);
    EXPECT_EQ(readFile("/f", bytes), FileError::Denied);
    disk_.failAt(FileCall::OpenRead, 1, FileError::NotFound);
    EXPECT_EQ(readFile("/f", bytes), FileError::Vanished);
    EXPECT_EQ(readFile("/f", bytes), FileError::None);
    EXPECT_EQ(bytes.size(), 10'000U);
    EXPECT_EQ(disk_.calls(), 0);
    EXPECT_EQ(disk_.openHandles(), 0);
}

TEST_F(SteeredFilesTest, aFullDiskTakesWhatFits) {
    const Handle handle = make("/f", "");
    disk_.setFreeBytes(5);
    EXPECT_EQ(disk_.write(handle, 0, "1234567"), FileError::DiskFull);
    EXPECT_EQ(disk_.contents("/f"), "12345");
    EXPECT_EQ(disk_.makeFolder("/folder"), FileError::DiskFull);
    EXPECT_EQ(disk_.write(handle, 0, "abc"), FileError::None);  // takes no room
    EXPECT_EQ(disk_.truncate(handle, 3), FileError::None);
    std::int64_t bytes = -1;
    EXPECT_EQ(disk_.freeSpace("/", bytes), FileError::None);
    EXPECT_EQ(bytes, 2);
    EXPECT_EQ(disk_.write(handle, 3, "de"), FileError::None);
    EXPECT_EQ(disk_.remove("/f"), FileError::None);
    EXPECT_EQ(disk_.freeSpace("/", bytes), FileError::None);
    EXPECT_EQ(bytes, 5);
}

TEST_F(SteeredFilesTest, permissionsCount) {
    disk_.put("/folder/f", "x", 0444);
    disk_.putFolder("/folder", 0555);
    Handle handle = -1;
    EXPECT_EQ(disk_.open("/folder/f", OpenMode::ReadWrite, 0, handle), FileError::Denied);
    EXPECT_EQ(disk_.open("/folder/g", OpenMode::CreateNew, 0644, handle), FileError::Denied);
    EXPECT_EQ(disk_.remove("/folder/f"), FileError::Denied);
    EXPECT_EQ(disk_.rename("/folder/f", "/f"), FileError::Denied);
    FileInfo info;
    EXPECT_EQ(disk_.info("/folder/f", info), FileError::None);
    EXPECT_FALSE(info.writable);
    disk_.putOwner("/folder/f", 5, 5);
    EXPECT_EQ(disk_.setMode("/folder/f", 0666), FileError::Denied);
    EXPECT_EQ(disk_.setOwner("/folder/f", SteeredFiles::user, 5), FileError::Denied);
}

// What the twin and the real file system answer to the same questions.
TEST_F(SteeredFilesTest, pathsLeadWhereTheyDoOnARealDisk) {
    disk_.put("/real/f", "x");
    disk_.putLink("real", "/folder");
    disk_.putLink("folder/f", "/file");
    disk_.putLink("folder/new", "/dangling");
    disk_.putLink("/none/new", "/lost");
    disk_.putLink("loop", "/loop");
    const struct {
        const char* path;
        const char* expected;
        FileError error;
    } rows[] = {
        {"/file", "/real/f", FileError::None},
        {"/folder/n", "/real/n", FileError::None},
        {"\\folder\\f", "/real/f", FileError::None},
        {"/dangling", "/real/new", FileError::None},
        {"/lost", "", FileError::NotFound},
        {"/loop", "", FileError::BadName},
        {"/real/f/x", "", FileError::NotFolder},
        {"/n/", "", FileError::NotFound},
        {"/real/../n", "/n", FileError::None},
        {"n", "/n", FileError::None},
        {"", "", FileError::BadName},
    };
    for (const auto& row : rows) {
        std::string resolved;
        EXPECT_EQ(disk_.resolve(row.path, resolved), row.error) << row.path;
        EXPECT_EQ(resolved, row.expected) << row.path;
    }
    EXPECT_EQ(disk_.setCurrentFolder("/folder"), FileError::None);
    EXPECT_EQ(disk_.currentFolder(), "/real");
    std::vector<std::string> names;
    EXPECT_EQ(disk_.list(".", names), FileError::None);
    EXPECT_EQ(names, std::vector<std::string>{"f"});
}

TEST_F(SteeredFilesTest, theLogTellsTheCalls) {
    disk_.clearLog();
    const Handle handle = make("/f", "abc");
    disk_.sync(handle);
    disk_.close(handle);
    disk_.rename("/f", "/g");
    const std::vector<std::string> expected{"open /f new", "write 3", "sync", "close", "rename /f /g"};
    EXPECT_EQ(disk_.log(), expected);
    EXPECT_EQ(disk_.calls(), 5);
}

TEST(SteeredProcessesTest, aPlayedProgramLastsAndEnds) {
    SteeredClock time;
    SteeredProcesses programs;
    const Steered clockInForce(time), programsInForce(programs);
    programs.play([](const StartRequest& request) {
        Played played;
        played.code = static_cast<int>(request.arguments.size());
        played.lasts = 2'000'000'000;
        return played;
    });
    StartError error = StartError::Other;
    const auto child = processes().start({"/bin/tool", {"a", "b"}, "", ""}, error);
    ASSERT_NE(child, nullptr);
    EXPECT_EQ(error, StartError::None);
    EXPECT_FALSE(child->poll().ended);
    EXPECT_FALSE(child->wait(1500).ended);
    const ExitState state = child->wait(1500);
    EXPECT_TRUE(state.ended);
    EXPECT_EQ(state.code, 2);
    EXPECT_EQ(programs.started().size(), 1U);
    EXPECT_EQ(programs.started()[0].program, "/bin/tool");
}

TEST(SteeredProcessesTest, aHangingProgramEndsWhenStopped) {
    SteeredClock time;
    SteeredProcesses programs([](const StartRequest& request) {
        Played played;
        played.hangs = true;
        played.deaf = request.program == "/bin/deaf";
        return played;
    });
    const Steered clockInForce(time), programsInForce(programs);
    for (const bool deaf : {false, true}) {
        StartError error = StartError::Other;
        const auto child = processes().start({deaf ? "/bin/deaf" : "/bin/tool", {}, "", ""}, error);
        ASSERT_NE(child, nullptr);
        EXPECT_FALSE(child->wait(60'000).ended);
        child->stop(100);
        EXPECT_TRUE(child->poll().ended);
        EXPECT_EQ(child->poll().signal, deaf ? 9 : 15);
    }
}

TEST(SteeredProcessesTest, aProgramThatDoesNotStartGivesItsReason) {
    SteeredProcesses programs([](const StartRequest&) {
        Played played;
        played.error = StartError::NotFound;
        return played;
    });
    const Steered inForce(programs);
    StartError error = StartError::None;
    EXPECT_EQ(processes().start({"/bin/none", {}, "", ""}, error), nullptr);
    EXPECT_EQ(error, StartError::NotFound);
}

}  // namespace
}  // namespace tarn::os
