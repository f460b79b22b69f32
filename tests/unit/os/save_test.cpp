// SPDX-License-Identifier: Apache-2.0
//
// Saves against the death of the process and of the machine at every call, and against every error at every
// call.
#include "os/files.h"
#include "support/steerable.h"
#include "support/tempfolder.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <memory>

namespace tarn::os {
namespace {

constexpr const char* oldText = "the old contents, longer than the new";
constexpr const char* newText = "the new contents";
constexpr const char* target = "/home/u/texts/a.cls";

// A starting point: what stands on the disk, and what is saved.
struct Case {
    const char* name;
    void (*prepare)(SteeredFiles&);
    const char* saved;  // the path that is saved
    const char* file;   // the file that holds the contents
    bool existed;
    bool inPlace;
    const char* text = newText;
};

void PrintTo(const Case& one, std::ostream* out) {
    *out << one.name;
}

void onlyFolder(SteeredFiles& disk) {
    disk.putFolder("/home/u/texts");
}
void existing(SteeredFiles& disk) {
    disk.put(target, oldText, 0640);
}
void throughLink(SteeredFiles& disk) {
    disk.put("/srv/real/a.cls", oldText, 0640);
    disk.putFolder("/home/u/texts");
    disk.putLink("../../../srv/real/a.cls", target);
}
void danglingLink(SteeredFiles& disk) {
    disk.putFolder("/srv/real");
    disk.putFolder("/home/u/texts");
    disk.putLink("/srv/real/a.cls", target);
}
void closedFolder(SteeredFiles& disk) {
    disk.put(target, oldText, 0640);
    disk.putFolder("/home/u/texts", 0555);
}
void hardLinks(SteeredFiles& disk) {
    disk.put(target, oldText, 0640);
    disk.putHardLink(target, "/home/u/other.cls");
}
void strangersFile(SteeredFiles& disk) {
    disk.put(target, oldText, 0666);
    disk.putOwner(target, 77, 77);
}
void ownGroup(SteeredFiles& disk) {
    disk.addGroup(300);
    disk.put(target, oldText, 0660);
    disk.putOwner(target, SteeredFiles::user, 300);
}

constexpr const char* longerText =
    "the new contents, which are quite a bit longer than what stood there before them";

constexpr const char* real = "/srv/real/a.cls";
const Case cases[] = {
    {"NewFile", onlyFolder, target, target, false, false},
    {"ExistingFile", existing, target, target, true, false},
    {"ToNothing", existing, target, target, true, false, ""},
    {"ThroughLink", throughLink, target, real, true, false},
    {"ThroughDanglingLink", danglingLink, target, real, false, false},
    {"ClosedFolder", closedFolder, target, target, true, true},
    {"ClosedFolderLonger", closedFolder, target, target, true, true, longerText},
    {"ClosedFolderToNothing", closedFolder, target, target, true, true, ""},
    {"HardLinks", hardLinks, target, target, true, true},
    {"StrangersFile", strangersFile, target, target, true, true},
    {"OwnGroup", ownGroup, target, target, true, false},
};

class SaveTest : public testing::TestWithParam<Case> {
protected:
    void SetUp() override { begin(); }
    void TearDown() override { useFiles(nullptr); }
    // The starting point, on a new disk.
    void begin() {
        disk_ = std::make_unique<SteeredFiles>();
        useFiles(disk_.get());
        disk_->putFolder("/home/u");
        GetParam().prepare(*disk_);
        disk_->clearLog();
    }
    SaveResult save(Durability durability = Durability::Synced) {
        return saveFile(GetParam().saved, GetParam().text, durability);
    }
    // How many counted calls a save makes when nothing fails.
    int callsOfSave(Durability durability) {
        begin();
        EXPECT_TRUE(save(durability).ok());
        return disk_->calls();
    }
    [[nodiscard]] std::vector<std::string> rescueCopies() const {
        std::vector<std::string> copies;
        for (const std::string& one : disk_->allFiles()) {
            if (one.starts_with("/home/u/state/tarnwick/rescue/a.cls.")) copies.push_back(one);
        }
        return copies;
    }
    [[nodiscard]] bool oldWhole() const {
        const Case& one = GetParam();
        return one.existed ? disk_->has(one.file) && disk_->contents(one.file) == oldText
                           : !disk_->has(one.file);
    }
    [[nodiscard]] bool newWhole() const {
        return disk_->has(GetParam().file) && disk_->contents(GetParam().file) == GetParam().text;
    }
    // The old or the new contents can be read somewhere, whole.
    [[nodiscard]] bool nothingLost() const {
        if (oldWhole() || newWhole()) return true;
        const auto copies = rescueCopies();
        return GetParam().inPlace && std::any_of(copies.begin(), copies.end(), [&](const std::string& copy) {
                   return disk_->contents(copy) == GetParam().text;
               });
    }
    [[nodiscard]] std::vector<std::string> temporaries() const {
        auto all = disk_->allFiles();
        std::erase_if(all,
                      [](const std::string& one) { return one.find(".tarnwick-") == std::string::npos; });
        return all;
    }

    Variable state_{"XDG_STATE_HOME", "/home/u/state"};
    std::unique_ptr<SteeredFiles> disk_;
};

INSTANTIATE_TEST_SUITE_P(All, SaveTest, testing::ValuesIn(cases),
                         [](const auto& one) { return std::string(one.param.name); });

TEST_P(SaveTest, replacesTheContentsAndLeavesNothingElse) {
    for (const Durability durability : {Durability::Synced, Durability::Unsynced}) {
        begin();
        const auto before = disk_->allFiles();
        const SaveResult result = save(durability);
        EXPECT_EQ(result.error, FileError::None);
        EXPECT_EQ(result.inPlace, GetParam().inPlace);
        EXPECT_EQ(result.rescueCopy, "");
        EXPECT_TRUE(newWhole());
        auto expected = before;
        if (!GetParam().existed) expected.emplace_back(GetParam().file);
        std::sort(expected.begin(), expected.end());
        expected.erase(std::unique(expected.begin(), expected.end()), expected.end());
        EXPECT_EQ(disk_->allFiles(), expected);
        EXPECT_EQ(disk_->openHandles(), 0);
    }
}

TEST_P(SaveTest, keepsModeOwnerAndLinks) {
    const FileInfo old = infoOf(GetParam().file);
    ASSERT_TRUE(save().ok());
    const FileInfo now = infoOf(GetParam().file);
    EXPECT_EQ(now.mode, GetParam().existed ? old.mode : 0644U);
    if (!GetParam().existed) return;
    EXPECT_EQ(now.owner, old.owner);
    EXPECT_EQ(now.group, old.group);
    EXPECT_EQ(now.links, old.links);
    EXPECT_EQ(now.inode == old.inode, GetParam().inPlace);
}

TEST_P(SaveTest, isOnTheDiskWhenTheMachineDiesAfterIt) {
    for (const auto names : {SteeredFiles::Names::Lost, SteeredFiles::Names::Kept}) {
        begin();
        ASSERT_TRUE(save().ok());
        disk_->afterMachineDeath(names);
        EXPECT_TRUE(newWhole());
    }
}

TEST_P(SaveTest, losesNothingWhenTheProcessDiesAtAnyCall) {
    for (const Durability durability : {Durability::Synced, Durability::Unsynced}) {
        const int calls = callsOfSave(durability);
        ASSERT_GT(calls, 3);
        for (const bool midway : {false, true}) {
            for (int call = 1; call <= calls; ++call) {
                SCOPED_TRACE(testing::Message() << "death at call " << call << (midway ? " midway" : ""));
                begin();
                disk_->dieAt(call, midway);
                EXPECT_THROW((void)save(durability), ProcessDeath);
                EXPECT_THROW((void)files().remove("/x"), ProcessDeath);
                disk_->revive();
                EXPECT_TRUE(nothingLost());
            }
        }
    }
}

TEST_P(SaveTest, losesNothingWhenTheMachineDiesAtAnyCall) {
    using Names = SteeredFiles::Names;
    using Overwritten = SteeredFiles::Overwritten;
    const int calls = callsOfSave(Durability::Synced);
    for (int death = 0; death < 8 * calls; ++death) {
        const int call = death / 8 + 1;
        const bool midway = (death & 1) != 0;
        const Names names = (death & 2) != 0 ? Names::Kept : Names::Lost;
        const Overwritten overwritten = (death & 4) != 0 ? Overwritten::Kept : Overwritten::Lost;
        SCOPED_TRACE(testing::Message() << "death " << death % 8 << " at call " << call);
        begin();
        disk_->dieAt(call, midway);
        EXPECT_THROW((void)save(), ProcessDeath);
        disk_->afterMachineDeath(names, overwritten);
        EXPECT_TRUE(nothingLost());
    }
}

TEST_P(SaveTest, anErrorAtAnyCallIsToldAndLosesNothing) {
    const FileError errors[] = {FileError::DiskFull, FileError::WriteFailed, FileError::Denied,
                                FileError::Vanished};
    const int calls = callsOfSave(Durability::Synced);
    for (const FileError error : errors) {
        for (int call = 1; call <= calls; ++call) {
            SCOPED_TRACE(testing::Message() << describe(error) << " at call " << call);
            begin();
            disk_->failAt(call, error);
            const SaveResult result = save();
            const std::string failed = disk_->log().at(static_cast<std::size_t>(call - 1));
            disk_->stopFailing();
            EXPECT_EQ(disk_->openHandles(), 0);
            EXPECT_TRUE(temporaries().empty() || failed.starts_with("remove")) << failed;
            if (result.ok()) {
                // Only what has another way, or clears away what is not needed, may fail unheard.
                const std::string& after =
                    disk_->log().at(std::min(disk_->log().size() - 1, std::size_t(call)));
                const bool clearing = failed.starts_with("remove") || after.ends_with(".tmp");
                EXPECT_TRUE(error == FileError::Denied || clearing) << failed;
                EXPECT_TRUE(newWhole());
                EXPECT_EQ(result.rescueCopy, "");
            } else if (!result.rescueCopy.empty()) {
                EXPECT_EQ(disk_->contents(result.rescueCopy), GetParam().text);
                EXPECT_TRUE(result.inPlace);
            } else {
                EXPECT_TRUE(oldWhole() || failed.starts_with("syncfolder")) << failed;
                EXPECT_TRUE(oldWhole() || newWhole());
            }
            for (const std::string& copy : rescueCopies()) {
                EXPECT_TRUE(copy == result.rescueCopy || failed.starts_with("remove")) << copy;
            }
        }
    }
}

TEST_P(SaveTest, aDiskThatFillsUpAtAnyByteIsToldAndLosesNothing) {
    const auto size = static_cast<std::int64_t>(std::string(GetParam().text).size());
    for (std::int64_t room = 0; room <= 2 * size; ++room) {
        SCOPED_TRACE(testing::Message() << room << " bytes free");
        begin();
        disk_->setFreeBytes(room);
        const SaveResult result = save();
        disk_->stopFailing();
        EXPECT_EQ(temporaries(), std::vector<std::string>{});
        EXPECT_EQ(disk_->openHandles(), 0);
        if (result.ok()) {
            EXPECT_TRUE(newWhole());
            EXPECT_GE(room, size);
        } else {
            EXPECT_EQ(result.error, FileError::DiskFull);
            EXPECT_TRUE(oldWhole());
        }
        EXPECT_EQ(rescueCopies(), std::vector<std::string>{});
    }
}

class SaveRules : public testing::Test {
protected:
    Variable state_{"XDG_STATE_HOME", "/home/u/state"};
    SteeredFiles disk_;
    Steered steered_{disk_};
};

TEST_F(SaveRules, aFileThatMayNotBeWrittenIsRefusedUnchanged) {
    disk_.put(target, oldText, 0444);
    const SaveResult result = saveFile(target, newText);
    EXPECT_EQ(result.error, FileError::Denied);
    EXPECT_EQ(disk_.contents(target), oldText);
    EXPECT_EQ(disk_.calls(), 0);
}

TEST_F(SaveRules, aFileThatOnlyOthersMayWriteIsRefusedUnchanged) {
    disk_.put(target, oldText, 0644);
    disk_.putOwner(target, 77, 77);
    EXPECT_EQ(saveFile(target, newText).error, FileError::Denied);
    EXPECT_EQ(disk_.contents(target), oldText);
    EXPECT_EQ(disk_.calls(), 0);
}

TEST_F(SaveRules, aNewFileInAClosedFolderIsDenied) {
    disk_.putFolder("/home/u/texts", 0555);
    const SaveResult result = saveFile(target, newText);
    EXPECT_EQ(result.error, FileError::Denied);
    EXPECT_EQ(disk_.allFiles(), std::vector<std::string>{});
}

TEST_F(SaveRules, aRescueCopyThatCannotBeMadeLeavesTheFileAlone) {
    closedFolder(disk_);
    disk_.failAlways(FileCall::MakeFolder, FileError::Denied);
    const SaveResult result = saveFile(target, newText);
    EXPECT_EQ(result.error, FileError::Denied);
    EXPECT_EQ(disk_.contents(target), oldText);
}

TEST_F(SaveRules, aFailureInPlaceNamesTheCopyOfTheNewContents) {
    closedFolder(disk_);
    disk_.failAt(FileCall::Write, 3, FileError::WriteFailed);
    const SaveResult result = saveFile(target, newText);
    EXPECT_EQ(result.error, FileError::WriteFailed);
    EXPECT_TRUE(result.inPlace);
    EXPECT_TRUE(result.rescueCopy.starts_with("/home/u/state/tarnwick/rescue/a.cls.")) << result.rescueCopy;
    EXPECT_EQ(disk_.contents(result.rescueCopy), newText);
    EXPECT_EQ(infoOf(result.rescueCopy).mode, 0600U);
    EXPECT_EQ(disk_.contents(rescueNameFile(result.rescueCopy)), target);
    disk_.afterMachineDeath(SteeredFiles::Names::Lost);
    EXPECT_EQ(disk_.contents(result.rescueCopy), newText);
}

TEST_F(SaveRules, allNamesOfAFileWithHardLinksHaveTheNewContents) {
    hardLinks(disk_);
    ASSERT_TRUE(saveFile(target, newText).ok());
    EXPECT_EQ(disk_.contents("/home/u/other.cls"), newText);
}

TEST_F(SaveRules, theStepsComeInTheSafeOrder) {
    existing(disk_);
    ASSERT_TRUE(saveFile(target, newText).ok());
    std::vector<std::string> words;
    for (const std::string& line : disk_.log()) words.push_back(line.substr(0, line.find(' ')));
    const std::vector<std::string> expected{"open",  "write",  "setmode",   "sync",
                                            "close", "rename", "syncfolder"};
    EXPECT_EQ(words, expected);
}

TEST_F(SaveRules, anUnsyncedSaveDoesNotWaitForTheDisk) {
    existing(disk_);
    ASSERT_TRUE(saveFile(target, newText, Durability::Unsynced).ok());
    for (const std::string& line : disk_.log()) EXPECT_FALSE(line.starts_with("sync")) << line;
}

TEST_F(SaveRules, temporariesOfDeadProcessesAreNotInTheWay) {
    existing(disk_);
    disk_.dieAt(5);
    EXPECT_THROW((void)saveFile(target, newText), ProcessDeath);
    disk_.revive();
    disk_.failAt(FileCall::Open, 1, FileError::Exists);
    EXPECT_TRUE(saveFile(target, newText).ok());
    EXPECT_EQ(disk_.contents(target), newText);
}

TEST_F(SaveRules, aNameThatIsNotAFileIsTold) {
    disk_.putFolder("/home/u/texts");
    disk_.put("/home/u/file", "x");
    disk_.putLink("/home/u/loop2", "/home/u/loop1");
    disk_.putLink("/home/u/loop1", "/home/u/loop2");
    const struct {
        std::string path;
        FileError error;
    } rows[] = {
        {"", FileError::BadName},
        {"/home/u/texts", FileError::IsFolder},
        {"/home/u/texts/", FileError::IsFolder},
        {"/home/u/new/", FileError::NotFound},
        {"/home/u/none/a.cls", FileError::NotFound},
        {"/home/u/file/a.cls", FileError::NotFolder},
        {"/home/u/loop1", FileError::BadName},
        {"/home/u/" + std::string(256, 'n'), FileError::BadName},
        {std::string("/home/u/a\0b", 11), FileError::BadName},
    };
    const auto before = disk_.allFiles();
    for (const auto& row : rows) EXPECT_EQ(saveFile(row.path, newText).error, row.error) << row.path;
    EXPECT_EQ(disk_.allFiles(), before);
}

TEST_F(SaveRules, aFolderThatGoesDuringTheSaveHasVanished) {
    existing(disk_);
    disk_.failAt(FileCall::Rename, 1, FileError::NotFound);
    EXPECT_EQ(saveFile(target, newText).error, FileError::Vanished);
    EXPECT_EQ(disk_.contents(target), oldText);
}

// ---- files that must not exist yet ----

class NewFileTest : public SaveRules {};

TEST_F(NewFileTest, isThereWholeWithItsMode) {
    disk_.putFolder("/home/u/texts");
    ASSERT_EQ(saveNewFile(target, newText, 0600), FileError::None);
    EXPECT_EQ(disk_.contents(target), newText);
    EXPECT_EQ(infoOf(target).mode, 0600U);
    EXPECT_EQ(disk_.allFiles(), std::vector<std::string>{target});
}

TEST_F(NewFileTest, goesOverNothing) {
    existing(disk_);
    disk_.put("/srv/real", "real");
    disk_.putLink("/srv/real", "/home/u/texts/link");
    disk_.putLink("/srv/absent", "/home/u/texts/dangling");
    disk_.putFolder("/home/u/texts/folder");
    const auto before = disk_.allFiles();
    for (const char* name : {"a.cls", "link", "dangling", "folder"})
        EXPECT_EQ(saveNewFile(std::string("/home/u/texts/") + name, newText, 0600), FileError::Exists)
            << name;
    EXPECT_EQ(disk_.allFiles(), before);
    EXPECT_EQ(disk_.contents(target), oldText);
    EXPECT_EQ(disk_.contents("/srv/real"), "real");
}

TEST_F(NewFileTest, isThereWholeOrNotAtAllAfterAnyFailureAndAnyDeath) {
    int calls = 0;
    for (int n = 1; n < 30; n++) {
        for (const bool death : {false, true}) {
            SteeredFiles disk;
            const Steered steered(disk);
            disk.putFolder("/home/u/texts");
            disk.clearLog();
            if (death)
                disk.dieAt(n, n % 2 == 0);
            else
                disk.failAt(n, FileError::DiskFull);
            FileError error = FileError::None;
            try {
                error = saveNewFile(target, newText, 0600);
            } catch (const ProcessDeath&) {
                disk.afterMachineDeath(SteeredFiles::Names::Kept);
            }
            calls = disk.calls();
            EXPECT_TRUE(!disk.has(target) || disk.contents(target) == newText ||
                        (death && disk.contents(target).empty()))
                << n;
            EXPECT_EQ(disk.openHandles(), 0) << n;
            EXPECT_TRUE(death || error == FileError::None || disk.allFiles().size() <= 1U) << n;
        }
    }
    EXPECT_GE(calls, 6);
}

TEST(RealNewFile, goesOverNothing) {
    const TempFolder folder;
    const std::string one = folder.path() + "/one", two = folder.path() + "/two",
                      link = folder.path() + "/link";
    ASSERT_EQ(saveNewFile(one, "1", 0600), FileError::None);
    EXPECT_EQ(saveNewFile(one, "2", 0600), FileError::Exists);
    ASSERT_EQ(files().link(two, link), FileError::None);
    EXPECT_EQ(saveNewFile(link, "2", 0600), FileError::Exists);
    EXPECT_EQ(files().renameNew(one, link), FileError::Exists);
    EXPECT_EQ(files().renameNew(one, two), FileError::None);
    EXPECT_EQ(files().renameNew(one, two), FileError::NotFound);
    std::string bytes;
    ASSERT_EQ(readFile(two, bytes), FileError::None);
    EXPECT_EQ(bytes, "1");
    std::vector<std::string> names;
    ASSERT_EQ(files().list(folder.path(), names), FileError::None);
    EXPECT_EQ(names, (std::vector<std::string>{"link", "two"}));
}

}  // namespace
}  // namespace tarn::os
