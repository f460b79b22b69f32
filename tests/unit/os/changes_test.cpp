// SPDX-License-Identifier: Apache-2.0
//
// Several files changed together, against the death of the process and of the machine at every call, every error at every
// call, and disks that fill up: all of the files are old, or all are new once the next start has finished.
#include "os/changes.h"
#include "support/steerable.h"
#include "support/tempfolder.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <memory>

namespace tarn::os {
namespace {

using Kind = FileChange::Kind;

constexpr const char *mainFile = "/home/u/p/main.cls", *newFile = "/home/u/p/new.cls",
                     *resources = "/home/u/p/main.rc", *goneFile = "/home/u/p/gone.cls";
constexpr const char *oldMain = "Class main\nUses gone\nEnd class\n",
                     *newMain = "Class main\nUses new and much longer than before\nEnd class\n";

// How the main file stands on the disk.
struct Case {
    const char* name;
    void (*prepare)(SteeredFiles&);
};
void PrintTo(const Case& one, std::ostream* out) {
    *out << one.name;
}

void plain(SteeredFiles& disk) {
    disk.put(mainFile, oldMain, 0640);
}
void hardLinks(SteeredFiles& disk) {
    plain(disk);
    disk.putHardLink(mainFile, "/home/u/other.cls");
}
void throughLink(SteeredFiles& disk) {
    disk.put("/srv/main.cls", oldMain, 0640);
    disk.putFolder("/home/u/p");
    disk.putLink("/srv/main.cls", mainFile);
}
void stateThere(SteeredFiles& disk) {
    plain(disk);
    disk.putFolder("/home/u/state/tarnwick/changes");
}
const Case cases[] = {
    {"Plain", plain}, {"HardLinks", hardLinks}, {"ThroughLink", throughLink}, {"StateThere", stateThere}};

class ChangesTest : public testing::TestWithParam<Case> {
protected:
    void SetUp() override { begin(); }
    void TearDown() override { useFiles(nullptr); }
    void begin() {
        disk_ = std::make_unique<SteeredFiles>();
        useFiles(disk_.get());
        disk_->putFolder("/home/u");
        GetParam().prepare(*disk_);
        disk_->put(resources, "Main DIALOG\nEND\n");
        disk_->put(goneFile, "Class gone\nEnd class\n");
        disk_->clearLog();
    }
    static ChangeResult change() {
        return changeFiles({{newFile, "Class new\nEnd class\n", Kind::Create},
                            {mainFile, newMain, Kind::Write},
                            {goneFile, "", Kind::Remove},
                            {resources, "", Kind::Write}});
    }
    int callsOfChange() {
        begin();
        EXPECT_TRUE(change().ok());
        return disk_->calls();
    }
    [[nodiscard]] bool allOld() const {
        return disk_->contents(mainFile) == oldMain && !disk_->has(newFile) &&
               disk_->contents(goneFile) == "Class gone\nEnd class\n" &&
               disk_->contents(resources) == "Main DIALOG\nEND\n";
    }
    [[nodiscard]] bool allNew() const {
        return disk_->contents(mainFile) == newMain && disk_->contents(newFile) == "Class new\nEnd class\n" &&
               !disk_->has(goneFile) && disk_->has(resources) && disk_->contents(resources).empty();
    }
    // What is neither a file of the program nor a text kept for the user.
    [[nodiscard]] std::vector<std::string> litter() const {
        auto all = disk_->allFiles();
        std::erase_if(all, [](const std::string& one) {
            return one.find(".tarnwick-") == std::string::npos && one.find("/changes/") == std::string::npos;
        });
        std::erase_if(all, [](const std::string& one) { return one.find("/rescue/") != std::string::npos; });
        return all;
    }
    // The next start.
    static FinishedChanges nextStart() { return finishChanges(); }

    Variable state_{"XDG_STATE_HOME", "/home/u/state"};
    std::unique_ptr<SteeredFiles> disk_;
};

INSTANTIATE_TEST_SUITE_P(All, ChangesTest, testing::ValuesIn(cases),
                         [](const auto& one) { return std::string(one.param.name); });

TEST_P(ChangesTest, areAllMadeAndNothingElseIsLeft) {
    const ChangeResult result = change();
    EXPECT_TRUE(result.ok()) << result.path;
    EXPECT_TRUE(allNew());
    EXPECT_EQ(litter(), std::vector<std::string>{});
    EXPECT_EQ(disk_->openHandles(), 0);
    const FinishedChanges finished = nextStart();
    EXPECT_TRUE(finished.written.empty() && finished.left.empty() && finished.failed.empty());
    EXPECT_TRUE(allNew());
}

TEST_P(ChangesTest, areAllMadeOrNoneWhenTheProcessDiesAtAnyCall) {
    const int calls = callsOfChange();
    ASSERT_GT(calls, 20);
    int old = 0, made = 0;
    for (const bool midway : {false, true}) {
        for (int call = 1; call <= calls; ++call) {
            SCOPED_TRACE(testing::Message() << "death at call " << call << (midway ? " midway" : ""));
            begin();
            disk_->dieAt(call, midway);
            EXPECT_THROW((void)change(), ProcessDeath);
            disk_->revive();
            const FinishedChanges finished = nextStart();
            EXPECT_TRUE(finished.left.empty() && finished.failed.empty() && finished.damaged.empty());
            EXPECT_TRUE(allOld() || allNew());
            EXPECT_EQ(litter(), std::vector<std::string>{});
            ++(allOld() ? old : made);
        }
    }
    EXPECT_GT(old, 0);
    EXPECT_GT(made, 0);
}

TEST_P(ChangesTest, areFinishedByTheThirdStartWhenTheSecondDiesToo) {
    const int calls = callsOfChange();
    for (int call = 1; call <= calls; ++call) {
        for (int second = 1; second < 100; ++second) {
            begin();
            disk_->dieAt(call);
            EXPECT_THROW((void)change(), ProcessDeath);
            disk_->revive();
            disk_->dieAt(second);
            bool died = false;
            try {
                static_cast<void>(nextStart());
            } catch (const ProcessDeath&) {
                died = true;
            }
            disk_->revive();
            static_cast<void>(nextStart());
            EXPECT_TRUE(allOld() || allNew()) << call << " " << second;
            if (!died) break;
        }
    }
}

TEST_P(ChangesTest, areAllMadeOrNoneWhenTheMachineDiesAtAnyCall) {
    using Names = SteeredFiles::Names;
    using Overwritten = SteeredFiles::Overwritten;
    const int calls = callsOfChange();
    for (int death = 0; death < 8 * calls; ++death) {
        SCOPED_TRACE(testing::Message() << "death " << death % 8 << " at call " << death / 8 + 1);
        begin();
        disk_->dieAt(death / 8 + 1, (death & 1) != 0);
        EXPECT_THROW((void)change(), ProcessDeath);
        disk_->afterMachineDeath((death & 2) != 0 ? Names::Kept : Names::Lost,
                                 (death & 4) != 0 ? Overwritten::Kept : Overwritten::Lost);
        static_cast<void>(nextStart());
        EXPECT_TRUE(allOld() || allNew());
    }
}

TEST_P(ChangesTest, areOnTheDiskWhenTheMachineDiesBehindThem) {
    ASSERT_TRUE(change().ok());
    disk_->afterMachineDeath(SteeredFiles::Names::Lost);
    static_cast<void>(nextStart());
    EXPECT_TRUE(allNew());
}

TEST_P(ChangesTest, anErrorAtAnyCallIsToldAndAllIsAsItWas) {
    const FileError errors[] = {FileError::DiskFull, FileError::WriteFailed, FileError::Denied,
                                FileError::Vanished};
    const int calls = callsOfChange();
    for (const FileError error : errors) {
        for (int call = 1; call <= calls; ++call) {
            SCOPED_TRACE(testing::Message() << describe(error) << " at call " << call);
            begin();
            disk_->failAt(call, error);
            const ChangeResult result = change();
            const std::string failed = disk_->log().at(static_cast<std::size_t>(call - 1));
            disk_->stopFailing();
            EXPECT_EQ(disk_->openHandles(), 0);
            // Only what has another way, or clears away what is not needed, may fail unheard.
            if (result.ok())
                EXPECT_TRUE(allNew()) << failed;
            else
                EXPECT_TRUE(result.pending || allOld()) << failed;
            static_cast<void>(nextStart());
            EXPECT_TRUE(result.ok() || result.pending ? allNew() : allOld()) << failed;
        }
    }
}

TEST_P(ChangesTest, aDiskThatFillsUpIsToldAndAllIsAsItWasOrIsFinishedLater) {
    for (std::int64_t room = 0; room <= 700; room += 3) {
        SCOPED_TRACE(testing::Message() << room << " bytes free");
        begin();
        disk_->setFreeBytes(room);
        const ChangeResult result = change();
        if (result.ok()) {
            EXPECT_TRUE(allNew());
            continue;
        }
        EXPECT_EQ(result.error, FileError::DiskFull);
        disk_->setFreeBytes(100000);
        static_cast<void>(nextStart());
        EXPECT_TRUE(result.pending ? allNew() : allOld());
        EXPECT_EQ(litter(), std::vector<std::string>{});
    }
}

// ---- rules ----

class ChangesRules : public testing::Test {
protected:
    Variable state_{"XDG_STATE_HOME", "/home/u/state"};
    SteeredFiles disk_;
    Steered steered_{disk_};

    void SetUp() override {
        disk_.put("/p/a", "old a");
        disk_.put("/p/b", "old b");
    }
    // A process that has died behind its note.
    void dieBehindTheNote() {
        disk_.failAlways(FileCall::Remove, FileError::Denied);
        ASSERT_TRUE(changeFiles({{"/p/a", "new a", Kind::Write}, {"/p/b", "new b", Kind::Write}}).ok());
        disk_.failAlways(FileCall::Remove, FileError::None);
        ASSERT_EQ(notes().size(), 1U);
    }
    [[nodiscard]] std::vector<std::string> notes() const {
        auto all = disk_.allFiles();
        std::erase_if(all, [](const std::string& one) { return one.find("/changes/") == std::string::npos; });
        return all;
    }
};

TEST_F(ChangesRules, aFileThatMustNotExistIsRefusedBeforeAnythingIsTouched) {
    disk_.clearLog();
    const ChangeResult result = changeFiles({{"/p/b", "new b"}, {"/p/a", "x", Kind::Create}});
    EXPECT_EQ(result.error, FileError::Exists);
    EXPECT_EQ(result.path, "/p/a");
    EXPECT_EQ(disk_.calls(), 0);
    EXPECT_EQ(disk_.contents("/p/b"), "old b");
}

// Somebody makes a file in the very moment in which it is to be made.
class SomebodyElse : public SteeredFiles {
public:
    FileError renameNew(const std::string& from, const std::string& to) override {
        if (to.ends_with("/new")) put(to, "mine");
        return SteeredFiles::renameNew(from, to);
    }
};

TEST_F(ChangesRules, aFileThatAppearsWhenItIsToBeMadeStaysAndAllIsAsItWas) {
    SomebodyElse disk;
    const Steered steered(disk);
    for (const bool last : {false, true}) {
        disk.put("/p/a", "old a"), disk.put("/p/b", "old b");
        std::vector<FileChange> changes = {{"/p/a", "new a"}, {"/p/new", "x", Kind::Create}};
        if (!last) changes.push_back({"/p/b", "new b"});
        const ChangeResult result = changeFiles(changes);
        EXPECT_EQ(result.error, FileError::Exists);
        EXPECT_EQ(result.path, "/p/new");
        EXPECT_FALSE(result.pending);
        EXPECT_EQ(disk.contents("/p/new"), "mine") << last;
        EXPECT_EQ(disk.contents("/p/a"), "old a");
        EXPECT_EQ(disk.contents("/p/b"), "old b");
        EXPECT_EQ(disk.remove("/p/new"), FileError::None);
    }
}

TEST_F(ChangesRules, aFileThatMayNotBeWrittenIsRefusedBeforeAnythingIsTouched) {
    disk_.put("/p/c", "old c", 0444);
    disk_.clearLog();
    for (const Kind kind : {Kind::Write, Kind::Remove}) {
        const ChangeResult result = changeFiles({{"/p/b", "new b"}, {"/p/c", "x", kind}});
        EXPECT_EQ(result.error, FileError::Denied);
        EXPECT_EQ(result.path, "/p/c");
        EXPECT_EQ(disk_.calls(), 0);
    }
}

TEST_F(ChangesRules, aFolderIsNoFile) {
    disk_.putFolder("/p/folder");
    EXPECT_EQ(changeFiles({{"/p/folder", "x"}}).error, FileError::IsFolder);
    EXPECT_EQ(changeFiles({{"/p/a/b", "x"}}).error, FileError::NotFolder);
    EXPECT_EQ(changeFiles({{"", "x"}}).error, FileError::BadName);
}

TEST_F(ChangesRules, aFolderThatIsNotThereUndoesTheOthers) {
    const ChangeResult result = changeFiles({{"/p/a", "new a"}, {"/none/c", "x"}});
    EXPECT_EQ(result.error, FileError::NotFound);
    EXPECT_FALSE(result.pending);
    EXPECT_EQ(disk_.contents("/p/a"), "old a");
    EXPECT_EQ(notes(), std::vector<std::string>{});
}

TEST_F(ChangesRules, nothingToChangeTouchesNothing) {
    disk_.clearLog();
    EXPECT_TRUE(changeFiles({}).ok());
    EXPECT_TRUE(changeFiles({{"/p/a", "old a"}, {"/p/none", "", Kind::Remove}}).ok());
    EXPECT_EQ(disk_.calls(), 0);
}

TEST_F(ChangesRules, anyBytesAreKept) {
    std::string bytes;
    for (int i = 0; i < 512; ++i) bytes += static_cast<char>(i);
    disk_.failAlways(FileCall::Remove, FileError::Denied);
    const std::string odd = "/p/odd \" \n \xE4 -1 2";
    EXPECT_TRUE(changeFiles({{odd, bytes, Kind::Create}, {"/p/a", ""}}).ok());
    disk_.failAlways(FileCall::Remove, FileError::None);
    ASSERT_EQ(files().remove(odd), FileError::None);
    disk_.put("/p/a", "old a");
    const FinishedChanges finished = finishChanges();
    EXPECT_EQ(finished.written, (std::vector<std::string>{odd, "/p/a"}));
    EXPECT_EQ(disk_.contents(odd), bytes);
    EXPECT_EQ(disk_.contents("/p/a"), "");
}

TEST_F(ChangesRules, aFileThatSomebodyHasChangedSinceStays) {
    dieBehindTheNote();
    disk_.put("/p/a", "old a");
    disk_.put("/p/b", "mine");
    const FinishedChanges finished = finishChanges();
    EXPECT_EQ(finished.written, std::vector<std::string>{"/p/a"});
    EXPECT_EQ(finished.left, std::vector<std::string>{"/p/b"});
    EXPECT_EQ(disk_.contents("/p/a"), "new a");
    EXPECT_EQ(disk_.contents("/p/b"), "mine");
    EXPECT_EQ(notes(), std::vector<std::string>{});
}

TEST_F(ChangesRules, aNoteOfChangesThatWereMadeGoesWithoutAWord) {
    dieBehindTheNote();
    disk_.put("/p/b", "worked on since");
    const FinishedChanges finished = finishChanges();
    EXPECT_TRUE(finished.written.empty() && finished.left.empty());
    EXPECT_EQ(disk_.contents("/p/b"), "worked on since");
    EXPECT_EQ(notes(), std::vector<std::string>{});
}

TEST_F(ChangesRules, whatCannotBeWrittenIsTriedAgain) {
    dieBehindTheNote();
    disk_.put("/p/a", "old a");
    disk_.failAlways(FileCall::Rename, FileError::DiskFull);
    EXPECT_EQ(finishChanges().failed, std::vector<std::string>{"/p/a"});
    EXPECT_EQ(notes().size(), 1U);
    disk_.failAlways(FileCall::Rename, FileError::None);
    EXPECT_EQ(finishChanges().written, std::vector<std::string>{"/p/a"});
    EXPECT_EQ(notes(), std::vector<std::string>{});
}

TEST_F(ChangesRules, aDamagedNoteChangesNothingAndIsKept) {
    dieBehindTheNote();
    const std::string note = notes()[0], whole = disk_.contents(note);
    for (std::size_t i = 0; i < whole.size(); ++i) {
        for (const bool cut : {false, true}) {
            std::string bytes = cut ? whole.substr(0, i) : whole;
            if (!cut) bytes[i] = static_cast<char>(bytes[i] ^ 1);
            disk_.put(note, bytes);
            disk_.put("/p/a", "old a");
            disk_.put("/p/b", "old b");
            const FinishedChanges finished = finishChanges();
            EXPECT_EQ(finished.damaged, std::vector<std::string>{note + ".damaged"}) << i;
            EXPECT_EQ(disk_.contents(note + ".damaged"), bytes);
            EXPECT_EQ(disk_.contents("/p/a") + disk_.contents("/p/b"), "old aold b") << i;
            EXPECT_TRUE(finishChanges().damaged.empty());
        }
    }
}

TEST_F(ChangesRules, permissionsAreKeptAlsoByAnUndo) {
    disk_.put("/p/a", "old a", 0600);
    ASSERT_TRUE(changeFiles({{"/p/a", "new a"}, {"/p/b", "new b"}}).ok());
    EXPECT_EQ(infoOf("/p/a").mode, 0600U);
    ASSERT_FALSE(changeFiles({{"/p/a", "", Kind::Remove}, {"/none/c", "x"}}).ok());
    EXPECT_EQ(disk_.contents("/p/a"), "new a");
    EXPECT_EQ(infoOf("/p/a").mode, 0600U);
}

}  // namespace
}  // namespace tarn::os
