// SPDX-License-Identifier: Apache-2.0
#include "os/savestream.h"

#include "support/steerable.h"

#include <gtest/gtest.h>

namespace tarn::os {
namespace {

constexpr const char* target = "/home/u/a.csv";

class SaveStreams : public ::testing::Test {
protected:
    void SetUp() override {
        before_ = useFiles(&disk);
        disk.put(target, "as it was", 0640);
    }
    void TearDown() override {
        EXPECT_EQ(disk.openHandles(), 0);
        useFiles(before_);
    }
    // More than is gathered, in pieces.
    static std::string contents() {
        std::string text;
        while (text.size() < 3 * SaveStreamBytes) text += "line " + std::to_string(text.size()) + "\n";
        return text;
    }
    static SaveResult save(const std::string& text) {
        SaveStream stream(target);
        for (std::size_t at = 0; at < text.size(); at += 1000)
            stream.write(std::string_view(text).substr(at, 1000));
        return stream.finish();
    }
    SteeredFiles disk;

private:
    FileSystem* before_ = nullptr;
};

TEST_F(SaveStreams, FilesOfAnyLengthAreReplacedWithTheirPermissions) {
    for (const std::string& text : {std::string(), std::string("short"), contents()}) {
        EXPECT_TRUE(save(text).ok());
        EXPECT_EQ(disk.contents(target), text);
        EXPECT_EQ(infoOf(target).mode, 0640U);
        EXPECT_EQ(disk.allFiles(), std::vector<std::string>{target});
    }
}

TEST_F(SaveStreams, WhatIsNotFinishedIsGone) {
    {
        SaveStream stream(target);
        stream.write(contents());
    }
    EXPECT_EQ(disk.contents(target), "as it was");
    EXPECT_EQ(disk.allFiles(), std::vector<std::string>{target});
}

TEST_F(SaveStreams, AFailureAtAnyCallLeavesTheOldFile) {
    const std::string text = contents();
    for (int call = 1;; ++call) {
        disk.put(target, "as it was", 0640);
        disk.failAt(call, FileError::WriteFailed);
        const SaveResult result = save(text);
        disk.stopFailing();
        if (result.ok()) break;
        const std::string now = disk.contents(target);
        EXPECT_TRUE(now == "as it was" || now == text) << call;
        ASSERT_LT(call, 10000);
    }
    EXPECT_EQ(disk.contents(target), text);
}

TEST_F(SaveStreams, ADeathAtAnyCallLeavesOneOfTheTwo) {
    const std::string text = contents();
    for (int call = 1; call < 10000; ++call) {
        disk.put(target, "as it was", 0640);
        disk.dieAt(call);
        bool ended = false;
        try {
            ended = save(text).ok();
        } catch (const ProcessDeath&) {}
        disk.revive();
        const std::string now = disk.contents(target);
        EXPECT_TRUE(now == "as it was" || now == text) << call;
        if (ended) return;
    }
    FAIL();
}

TEST_F(SaveStreams, WhereAFileCannotBeReplacedItIsWrittenInPlace) {
    disk.putHardLink(target, "/home/u/b.csv");
    const SaveResult result = save(contents());
    EXPECT_TRUE(result.ok() && result.inPlace);
    EXPECT_EQ(disk.contents("/home/u/b.csv"), contents());
}

// Some disks tell that only when the new file is there.
TEST_F(SaveStreams, WhereAFileCannotBeRenamedItIsWrittenInPlace) {
    disk.failAlways(FileCall::Rename, FileError::Denied);
    const SaveResult result = save(contents());
    EXPECT_TRUE(result.ok() && result.inPlace);
    EXPECT_EQ(disk.contents(target), contents());
    EXPECT_EQ(disk.allFiles(), std::vector<std::string>{target});
}

TEST_F(SaveStreams, AFailureInPlaceTellsWhereTheNewBytesAre) {
    const std::string text = contents();
    int rescues = 0;
    for (int call = 1; call < 10000; ++call) {
        disk.put(target, "as it was", 0640);
        disk.failAlways(FileCall::Rename, FileError::Denied);
        disk.failAt(call, FileError::WriteFailed);
        const SaveResult result = save(text);
        const bool beyond = disk.calls() < call;
        disk.stopFailing();
        if (beyond) break;
        const std::string now = disk.contents(target);
        const bool safe = !result.rescueCopy.empty() && disk.contents(result.rescueCopy) == text;
        EXPECT_TRUE(now == "as it was" || now == text || safe) << call;
        if (safe) ++rescues;
    }
    EXPECT_GT(rescues, 0);
    EXPECT_EQ(disk.contents(target), text);
}

// It may be larger than memory.
TEST_F(SaveStreams, WhatWillBeWrittenInPlaceStandsInTheRescueFolderMeanwhile) {
    disk.putHardLink(target, "/home/u/b.csv");
    {
        SaveStream stream(target);
        stream.write(contents());
        stream.write(contents());
        std::size_t there = 0;
        for (const std::string& file : disk.allFiles())
            if (file.starts_with(rescueFolder())) there = std::max(there, disk.contents(file).size());
        EXPECT_GE(there + SaveStreamBytes, 2 * contents().size());
    }
    EXPECT_EQ(disk.contents(target), "as it was");
    EXPECT_EQ(disk.allFiles().size(), 2U);
}

TEST_F(SaveStreams, AFileOfSeveralNamesLosesNothingAtAnyFailureOrDeath) {
    const std::string text = contents();
    for (const bool death : {false, true}) {
        bool ended = false;
        for (int call = 1; call < 10000 && !ended; ++call) {
            for (const std::string& file : disk.allFiles()) disk.remove(file);
            disk.put(target, "as it was", 0640);
            disk.putHardLink(target, "/home/u/b.csv");
            if (death)
                disk.dieAt(call);
            else
                disk.failAt(call, FileError::DiskFull);
            try {
                ended = save(text).ok() && disk.calls() < call;
            } catch (const ProcessDeath&) {}
            disk.revive();
            disk.stopFailing();
            const std::string now = disk.contents(target);
            bool safe = now == "as it was" || now == text;
            for (const std::string& file : disk.allFiles()) safe = safe || disk.contents(file) == text;
            EXPECT_TRUE(safe) << call << death;
        }
        EXPECT_TRUE(ended);
    }
}

}  // namespace
}  // namespace tarn::os
