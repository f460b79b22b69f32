// SPDX-License-Identifier: Apache-2.0
//
// Copies of files on a real disk, and on one that fails at every call.
#include "library/system/system.h"

#include "os/files.h"
#include "platform/model/model.h"
#include "platform/model/view.h"
#include "support/errorcell.h"
#include "support/steerable.h"
#include "support/tempfolder.h"

#include <gtest/gtest.h>

#include <csignal>
#include <fcntl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

namespace tarn {
namespace {

// No file may grow beyond that while it lives: a full disk for those that write.
class FileLimit {
public:
    explicit FileLimit(rlim_t bytes) {
        ::getrlimit(RLIMIT_FSIZE, &before_);
        rlimit limit = before_;
        limit.rlim_cur = bytes;
        handler_ = std::signal(SIGXFSZ, SIG_IGN);
        ::setrlimit(RLIMIT_FSIZE, &limit);
    }
    ~FileLimit() {
        ::setrlimit(RLIMIT_FSIZE, &before_);
        std::signal(SIGXFSZ, handler_);
    }
    FileLimit(const FileLimit&) = delete;
    FileLimit& operator=(const FileLimit&) = delete;

private:
    rlimit before_{};
    void (*handler_)(int) = SIG_DFL;
};

class Copies : public ::testing::Test {
protected:
    void SetUp() override {
        ClearError();
        before_ = platform::useView(platform::makeHeadlessView());
    }
    void TearDown() override {
        platform::useView(std::move(before_));
        EXPECT_EQ(takeError(), 0);
    }
    std::string put(const std::string& name, std::string_view bytes) {
        EXPECT_TRUE(os::saveFile(folder / name, bytes).ok());
        return folder / name;
    }
    std::string get(const std::string& name) {
        std::string text;
        os::readFile(folder / name, text);
        return text;
    }
    // The names in the folder, so that nothing is left behind unseen.
    std::string names() {
        std::vector<std::string> list;
        os::files().list(folder.path(), list);
        std::string text;
        for (const std::string& name : list) text += name + " ";
        return text;
    }

    TempFolder folder;

private:
    std::unique_ptr<platform::View> before_;
};

TEST_F(Copies, ALargeFileIsCopiedInPieces) {
    std::string bytes(5'000'001, '\0');
    for (std::size_t i = 0; i < bytes.size(); ++i) bytes[i] = static_cast<char>(i * 7 >> 3);
    const std::string source = put("large", bytes);
    os::files().setModified(source, 1'000'000'000);
    EXPECT_TRUE(FILECOPY(source, folder / "copy"));
    EXPECT_EQ(get("copy"), bytes);
    EXPECT_EQ(os::infoOf(folder / "copy").modified, 1'000'000'000);
    EXPECT_EQ(names(), "copy large ");
}

TEST_F(Copies, AnEmptyFileIsCopied) {
    const std::string source = put("empty", "");
    put("copy", "old");
    EXPECT_TRUE(FILECOPY(source, folder / "copy"));
    EXPECT_EQ(FileSize(folder / "copy"), 0);
}

TEST_F(Copies, OnAFullDiskTheOldFileStaysWhole) {
    const std::string source = put("source", std::string(3'000'000, 'x'));
    put("dest", "old");
    for (const rlim_t bytes : {rlim_t{1000}, rlim_t{1'500'000}, rlim_t{2'999'999}}) {
        const FileLimit limit(bytes);
        EXPECT_FALSE(FILECOPY(source, folder / "dest")) << bytes;
        EXPECT_EQ(takeError(), 654) << bytes;
        EXPECT_EQ(get("dest"), "old") << bytes;
        EXPECT_FALSE(FILECOPY(source, folder / "new")) << bytes;
        EXPECT_EQ(takeError(), 654) << bytes;
        EXPECT_EQ(names(), "dest source ") << bytes;
        EXPECT_NE(STRFIND("disk is full", SAVEFILEREPORT()), 0) << SAVEFILEREPORT();
    }
    EXPECT_TRUE(FILECOPY(source, folder / "dest"));
    EXPECT_EQ(SAVEFILEREPORT(), "");
}

TEST_F(Copies, AReadOnlyDestinationStaysAsItIs) {
    const std::string source = put("source", "new"), dest = put("dest", "old");
    ASSERT_EQ(::chmod(dest.c_str(), 0444), 0);
    EXPECT_FALSE(FILECOPY(source, dest));
    EXPECT_EQ(takeError(), 652);
    EXPECT_EQ(get("dest"), "old");
    EXPECT_EQ(os::infoOf(dest).mode & 0777, 0444U);
    EXPECT_EQ(names(), "dest source ");
}

TEST_F(Copies, AReadOnlySourceGivesAReadOnlyCopy) {
    const std::string source = put("source", "text");
    ASSERT_EQ(::chmod(source.c_str(), 0444), 0);
    EXPECT_TRUE(FILECOPY(source, folder / "copy"));
    EXPECT_EQ(os::infoOf(folder / "copy").mode & 0777, 0444U);
    EXPECT_EQ(get("copy"), "text");
}

TEST_F(Copies, ACopyDoesNotRunAsItsOwner) {
    const std::string source = put("source", "text");
    ASSERT_EQ(::chmod(source.c_str(), 06755), 0);
    EXPECT_TRUE(FILECOPY(source, folder / "copy"));
    EXPECT_EQ(os::infoOf(folder / "copy").mode & 07777, 0755U);
}

TEST_F(Copies, OntoItselfUnderAnyNameNothingChanges) {
    const std::string source = put("source", "text");
    ASSERT_EQ(::symlink(source.c_str(), (folder / "link").c_str()), 0);
    ASSERT_EQ(::link(source.c_str(), (folder / "hard").c_str()), 0);
    os::files().setModified(source, 3'000'000'000);
    const std::uint64_t inode = os::infoOf(source).inode;
    for (const std::string& dest : {source, folder / "link", folder / "hard", std::string("source"),
                                    folder.path() + "/", folder.path() + "\\source"})
        EXPECT_TRUE(FILECOPY(source, dest)) << dest;
    EXPECT_TRUE(FILECOPY(folder / "link", source));
    EXPECT_EQ(get("source"), "text");
    EXPECT_EQ(os::infoOf(source).inode, inode);
    EXPECT_EQ(os::infoOf(source).modified, 3'000'000'000);
    EXPECT_EQ(names(), "hard link source ");
}

TEST_F(Copies, OverALinkTheFileBehindItIsReplacedAndTheLinkStays) {
    const std::string source = put("source", "new");
    put("behind", "old");
    ASSERT_EQ(::symlink("behind", (folder / "link").c_str()), 0);
    EXPECT_TRUE(FILECOPY(source, folder / "link"));
    EXPECT_EQ(get("behind"), "new");
    struct stat status {};
    ASSERT_EQ(::lstat((folder / "link").c_str(), &status), 0);
    EXPECT_TRUE(S_ISLNK(status.st_mode));
    ASSERT_EQ(::symlink("made", (folder / "dangling").c_str()), 0);
    EXPECT_TRUE(FILECOPY(source, folder / "dangling"));
    EXPECT_EQ(get("made"), "new");
}

TEST_F(Copies, OverOneOfSeveralNamesAllOfThemHaveTheNewText) {
    const std::string source = put("source", "new"), dest = put("dest", "old");
    ASSERT_EQ(::link(dest.c_str(), (folder / "other").c_str()), 0);
    EXPECT_TRUE(FILECOPY(source, dest));
    EXPECT_EQ(get("other"), "new");
    EXPECT_EQ(os::infoOf(dest).links, 2U);
}

TEST_F(Copies, WhatIsNoFileOfADiskIsNotCopied) {
    ASSERT_EQ(os::files().makeFolder(folder / "folder"), os::FileError::None);
    ASSERT_EQ(::mkfifo((folder / "pipe").c_str(), 0644), 0);
    for (const std::string& source : {folder / "folder", folder / "pipe", std::string("/dev/zero")}) {
        EXPECT_FALSE(FILECOPY(source, folder / "copy")) << source;
        EXPECT_EQ(takeError(), 651) << source;
    }
    EXPECT_FALSE(FILECOPY("/proc/self/status", folder / "copy")) << "its size is not that of its text";
    EXPECT_EQ(takeError(), 659);
    const std::string source = put("source", "text");
    EXPECT_FALSE(FILECOPY(source, folder / "folder"));
    EXPECT_EQ(takeError(), 652) << "a folder stands there";
    EXPECT_FALSE(FILECOPY(source, folder / "none/copy"));
    EXPECT_NE(takeError(), 0);
    EXPECT_EQ(names(), "folder pipe source ");
}

TEST_F(Copies, WithoutAQuestionUnlessOneIsAskedFor) {
    const std::string source = put("source", "new"), dest = put("dest", "old");
    EXPECT_TRUE(FILECOPY(source, dest));
    put("dest", "old");
    EXPECT_FALSE(FILECOPY(source, dest, true)) << "the box is closed without an answer";
    EXPECT_EQ(get("dest"), "old");
}

TEST_F(Copies, AtEveryFailureTheDestinationIsOldOrNew) {
    os::SteeredFiles files;
    const os::Steered steered(files);
    const std::string bytes(3'000'000, 'n');
    files.put("/a/source", bytes);
    files.put("/b/dest", "old");
    files.clearLog();
    ASSERT_TRUE(FILECOPY("/a/source", "/b/dest"));
    const int calls = files.calls();
    ASSERT_GT(calls, 3);
    for (int call = 1; call <= calls; ++call) {
        files.put("/b/dest", "old");
        files.failAt(call, os::FileError::WriteFailed);
        const bool copied = FILECOPY("/a/source", "/b/dest");
        files.stopFailing();
        const int code = takeError();
        const std::string now = files.contents("/b/dest");
        EXPECT_TRUE(now == "old" || now == bytes) << call;
        EXPECT_TRUE(!copied || now == bytes) << call;
        EXPECT_TRUE(copied || code != 0) << call;
        EXPECT_EQ(files.allFiles(), (std::vector<std::string>{"/a/source", "/b/dest"})) << call;
        EXPECT_EQ(files.openHandles(), 0) << call;
    }
}

TEST_F(Copies, ADeathAtAnyCallLeavesTheOldOrTheNewFile) {
    os::SteeredFiles files;
    const os::Steered steered(files);
    const std::string bytes(3'000'000, 'n');
    files.put("/a/source", bytes);
    for (int call = 1; call < 40; ++call) {
        files.put("/b/dest", "old");
        files.dieAt(call);
        bool died = false;
        try {
            static_cast<void>(FILECOPY("/a/source", "/b/dest"));
        } catch (const os::ProcessDeath&) {
            died = true;
        }
        files.revive();
        ClearError();
        const std::string now = files.contents("/b/dest");
        EXPECT_TRUE(now == "old" || now == bytes) << call;
        if (!died) break;
        ASSERT_LT(call, 39);
    }
}

// A clock of which each look is a second later.
class Hurried : public os::SteeredClock {
public:
    std::int64_t steady() override {
        advance(1'000'000'000);
        return SteeredClock::steady();
    }
};

TEST_F(Copies, TheUserCanStopALongCopy) {
    const std::string source = put("source", std::string(8'000'000, 'x'));
    put("dest", "old");
    Hurried clock;
    const os::Steered steered(clock);
    platform::view().setIdle([] { platform::pressToolStop(); });
    EXPECT_FALSE(FILECOPY(source, folder / "dest"));
    platform::view().setIdle(nullptr);
    EXPECT_EQ(takeError(), 652);
    EXPECT_EQ(get("dest"), "old");
    EXPECT_EQ(names(), "dest source ");
    EXPECT_FALSE(platform::busy());
}

// ---- shortcuts ----

TEST_F(Copies, AShortcutToAProgramStartsItWithItsArguments) {
    const std::string program = put("my tool", "#!/bin/sh\n");
    ASSERT_EQ(::chmod(program.c_str(), 0755), 0);
    EXPECT_TRUE(FILECREATESHORTCUT(folder / "Tool.lnk", program, "-x \"a $b\" \"50%\" \"q\"\"q\"",
                                   folder.path(), "tool-icon"));
    EXPECT_EQ(get("Tool.desktop"), "[Desktop Entry]\nType=Application\nName=Tool\nExec=\"" + program +
                                       "\" \"-x\" \"a \\\\$b\" \"50%%\" \"q\\\\\"q\"\nPath=" + folder.path() +
                                       "\nTerminal=false\nIcon=tool-icon\n");
    EXPECT_NE(os::infoOf(folder / "Tool.desktop").mode & 0100, 0U)
        << "desktops start only what may be executed";
    EXPECT_TRUE(FILECREATESHORTCUT(folder / "Plain", program));
    EXPECT_EQ(get("Plain.desktop"),
              "[Desktop Entry]\nType=Application\nName=Plain\nExec=\"" + program + "\"\nTerminal=false\n");
    EXPECT_TRUE(FILECREATESHORTCUT(folder / "Again.desktop", program, "a\\b"));
    EXPECT_NE(get("Again.desktop").find("\"a\\\\\\\\b\"\n"), std::string::npos) << get("Again.desktop");
    EXPECT_EQ(names(), "Again.desktop Plain.desktop Tool.desktop my tool ");
}

TEST_F(Copies, AShortcutToAnyOtherFileOpensIt) {
    const std::string page = put("a page.htm", "x");
    EXPECT_TRUE(FILECREATESHORTCUT(folder / "Page", page));
    EXPECT_EQ(get("Page.desktop"),
              "[Desktop Entry]\nType=Link\nName=Page\nURL=file://" + folder.path() + "/a%20page.htm\n");
    EXPECT_TRUE(FILECREATESHORTCUT(folder / "Folder", folder.path()));
    EXPECT_NE(get("Folder.desktop").find("Type=Link"), std::string::npos);
}

TEST_F(Copies, AShortcutNeedsAFullPathThatExists) {
    const std::string program = put("tool", "x");
    EXPECT_FALSE(FILECREATESHORTCUT("Tool", program));
    EXPECT_EQ(takeError(), 657);
    EXPECT_FALSE(FILECREATESHORTCUT(folder / "Tool", "tool"));
    EXPECT_EQ(takeError(), 657);
    EXPECT_FALSE(FILECREATESHORTCUT(folder / "Tool", folder / "none"));
    EXPECT_EQ(takeError(), 651);
    EXPECT_FALSE(FILECREATESHORTCUT(folder / "none/Tool", program));
    EXPECT_NE(takeError(), 0);
    EXPECT_EQ(names(), "tool ");
}

}  // namespace
}  // namespace tarn
