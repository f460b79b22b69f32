// SPDX-License-Identifier: Apache-2.0
//
// The real file system: its calls, their errors, and saves on a real disk.
#include "os/files.h"
#include "support/tempfolder.h"

#include <chrono>
#include <csignal>
#include <fcntl.h>
#include <functional>
#include <grp.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace tarn::os {
namespace {

class FilesTest : public testing::Test {
protected:
    void SetUp() override {
        ASSERT_NE(folder_.path(), "");
        ASSERT_EQ(realFiles().resolve(folder_.path(), root_), FileError::None);
    }
    [[nodiscard]] std::string at(const std::string& name) const { return root_ + "/" + name; }
    void put(const std::string& name, const std::string& bytes, mode_t mode = 0644) const {
        ASSERT_TRUE(saveFile(at(name), bytes, Durability::Unsynced).ok());
        ASSERT_EQ(::chmod(at(name).c_str(), mode), 0);
    }
    [[nodiscard]] std::string get(const std::string& name) const {
        std::string bytes;
        EXPECT_EQ(readFile(at(name), bytes), FileError::None);
        return bytes;
    }
    [[nodiscard]] std::vector<std::string> names() const {
        std::vector<std::string> list;
        EXPECT_EQ(files().list(root_, list), FileError::None);
        return list;
    }

    TempFolder folder_;
    std::string root_;
    Variable state_{"XDG_STATE_HOME", folder_ / "state"};
};

// Runs `act` in a process of its own that may give up rights; its result is the exit code.
int inChild(const std::function<int()>& act) {
    const pid_t pid = ::fork();
    if (pid == 0) ::_exit(act());
    int status = 0;
    ::waitpid(pid, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

// A user for whom permissions count.
bool becomeNobody() {
    constexpr uid_t nobody = 65534;
    if (::geteuid() != 0) return true;
    return ::setgroups(0, nullptr) == 0 && ::setgid(nobody) == 0 && ::setuid(nobody) == 0;
}

TEST_F(FilesTest, AnOpenFileTellsWhatItsNameTells) {
    put("a", "abc", 0640);
    FileInfo byName, open;
    Handle handle = -1;
    ASSERT_EQ(realFiles().open(at("a"), OpenMode::ReadWrite, 0, handle), FileError::None);
    ASSERT_EQ(realFiles().info(at("a"), byName), FileError::None);
    ASSERT_EQ(realFiles().infoOpen(handle, open), FileError::None);
    EXPECT_TRUE(open.exists && !open.folder && !open.special);
    EXPECT_EQ(open.size, 3);
    EXPECT_EQ(open.mode, 0640U);
    EXPECT_EQ(open.links, 1U);
    EXPECT_EQ(open.modified, byName.modified);
    EXPECT_EQ(open.changed, byName.changed);
    EXPECT_TRUE(open.device == byName.device && open.inode == byName.inode);
    ASSERT_EQ(realFiles().setModified(at("a"), 1'000'000'000), FileError::None);
    FileInfo later;
    ASSERT_EQ(realFiles().infoOpen(handle, later), FileError::None);
    EXPECT_EQ(later.modified, 1'000'000'000);
    EXPECT_GE(later.changed, open.changed);
    EXPECT_GT(later.changed, 1'000'000'000);
    realFiles().startSync(handle);
    ASSERT_EQ(realFiles().remove(at("a")), FileError::None);
    ASSERT_EQ(realFiles().infoOpen(handle, later), FileError::None);
    EXPECT_EQ(later.links, 0U);
    EXPECT_EQ(realFiles().close(handle), FileError::None);
    EXPECT_EQ(realFiles().infoOpen(handle, later), FileError::ReadFailed);
    EXPECT_FALSE(later.exists);
}

TEST_F(FilesTest, everyErrorHasATextAndNoneHasNot) {
    EXPECT_EQ(describe(FileError::None), "");
    for (int i = 1; i <= static_cast<int>(FileError::WriteFailed); ++i) {
        EXPECT_NE(describe(static_cast<FileError>(i)), "") << i;
    }
    EXPECT_EQ(describe(FileError::DiskFull), "The disk is full.");
}

TEST_F(FilesTest, errorsOfTheSystemHaveTheirKinds) {
    put("file", "x");
    ASSERT_EQ(files().makeFolder(at("folder")), FileError::None);
    put("folder/inner", "x");
    Handle handle = -1;
    const auto open = [&](const std::string& path, OpenMode mode) {
        const FileError error = files().open(path, mode, 0644, handle);
        if (error == FileError::None) files().close(handle);
        return error;
    };
    EXPECT_EQ(open(at("none"), OpenMode::Read), FileError::NotFound);
    EXPECT_EQ(open(at("none"), OpenMode::ReadWrite), FileError::NotFound);
    EXPECT_EQ(open(at("none/x"), OpenMode::CreateNew), FileError::NotFound);
    EXPECT_EQ(open(at("file"), OpenMode::CreateNew), FileError::Exists);
    EXPECT_EQ(open(at("file/x"), OpenMode::Read), FileError::NotFolder);
    EXPECT_EQ(open(at("folder"), OpenMode::Read), FileError::IsFolder);
    EXPECT_EQ(open(at("folder"), OpenMode::Truncate), FileError::IsFolder);
    EXPECT_EQ(open(at(std::string(300, 'n')), OpenMode::Truncate), FileError::BadName);
    EXPECT_EQ(open("/" + std::string(5000, 'n'), OpenMode::Truncate), FileError::BadName);
    EXPECT_EQ(open("", OpenMode::Read), FileError::BadName);
    EXPECT_EQ(open(std::string("/etc/passwd\0x", 13), OpenMode::Read), FileError::BadName);
    EXPECT_EQ(open("/proc/sys/kernel/ostype", OpenMode::Read), FileError::None);
    EXPECT_EQ(files().removeFolder(at("folder")), FileError::Exists);
    EXPECT_EQ(files().removeFolder(at("file")), FileError::NotFolder);
    EXPECT_EQ(files().remove(at("folder")), FileError::IsFolder);
    EXPECT_EQ(files().remove(at("none")), FileError::NotFound);
    EXPECT_EQ(files().makeFolder(at("folder")), FileError::Exists);
    EXPECT_EQ(files().rename(at("none"), at("other")), FileError::NotFound);
    EXPECT_EQ(files().rename(at("file"), at("folder")), FileError::IsFolder);
    EXPECT_EQ(files().link("file", at("file")), FileError::Exists);
    EXPECT_EQ(files().setCurrentFolder(at("file")), FileError::NotFolder);
    EXPECT_EQ(files().setMode(at("none"), 0600), FileError::NotFound);
    std::vector<std::string> list{"left over"};
    EXPECT_EQ(files().list(at("file"), list), FileError::NotFolder);
    EXPECT_TRUE(list.empty());
    std::int64_t free = 1;
    EXPECT_EQ(files().freeSpace(at("none"), free), FileError::NotFound);
    EXPECT_EQ(free, 0);
}

TEST_F(FilesTest, aHandleReadsAndWritesAtPlaces) {
    Handle handle = -1;
    ASSERT_EQ(files().open(at("f"), OpenMode::CreateNew, 0600, handle), FileError::None);
    EXPECT_EQ(files().write(handle, 0, "0123456789"), FileError::None);
    EXPECT_EQ(files().write(handle, 3, "abc"), FileError::None);
    EXPECT_EQ(files().write(handle, 12, "!"), FileError::None);
    char bytes[20];
    std::size_t got = 0;
    EXPECT_EQ(files().read(handle, 2, bytes, 5, got), FileError::None);
    EXPECT_EQ(std::string(bytes, got), "2abc6");
    EXPECT_EQ(files().read(handle, 100, bytes, 5, got), FileError::None);
    EXPECT_EQ(got, 0U);
    EXPECT_EQ(files().truncate(handle, 4), FileError::None);
    EXPECT_EQ(files().sync(handle), FileError::None);
    EXPECT_EQ(files().close(handle), FileError::None);
    EXPECT_EQ(files().write(handle, 0, "x"), FileError::WriteFailed);
    EXPECT_EQ(get("f"), "012a");
    ASSERT_EQ(files().open(at("f"), OpenMode::Append, 0600, handle), FileError::None);
    EXPECT_EQ(files().write(handle, 0, "end"), FileError::None);
    EXPECT_EQ(files().close(handle), FileError::None);
    EXPECT_EQ(get("f"), "012aend");
}

TEST_F(FilesTest, backslashesSeparateInEveryCall) {
    const std::string root = [&] {
        std::string text = root_;
        for (char& c : text) c = c == '/' ? '\\' : c;
        return text;
    }();
    ASSERT_EQ(makeFolders(root + "\\a\\b"), FileError::None);
    ASSERT_TRUE(saveFile(root + "\\a\\b\\f", "text").ok());
    EXPECT_EQ(get("a/b/f"), "text");
    EXPECT_EQ(files().rename(root + "\\a\\b\\f", root + "\\a\\g"), FileError::None);
    EXPECT_EQ(sizeOf(root + "\\a\\g"), 4);
    std::string resolved;
    EXPECT_EQ(files().resolve(root + "\\a\\.\\g", resolved), FileError::None);
    EXPECT_EQ(resolved, at("a/g"));
    EXPECT_EQ(native("a\\b/c"), "a/b/c");
}

TEST_F(FilesTest, infoTellsWhatAFileIs) {
    put("f", "12345", 0640);
    ASSERT_EQ(files().link("f", at("l")), FileError::None);
    ASSERT_EQ(files().setModified(at("f"), 1'234'567'890'123'456'789), FileError::None);
    const FileInfo file = infoOf(at("f")), link = infoOf(at("l")), folder = infoOf(root_);
    EXPECT_TRUE(file.exists && file.writable && !file.folder && !file.special);
    EXPECT_EQ(file.size, 5);
    EXPECT_EQ(file.mode, 0640U);
    EXPECT_EQ(file.modified, 1'234'567'890'123'456'789);
    EXPECT_EQ(file.owner, ::geteuid());
    EXPECT_TRUE(link.inode == file.inode && link.device == file.device);
    EXPECT_TRUE(folder.exists && folder.folder);
    EXPECT_TRUE(infoOf("/dev/null").special);
    EXPECT_EQ(sizeOf(root_), -1);
    EXPECT_EQ(sizeOf(at("none")), -1);
    EXPECT_EQ(sizeOf(at("f")), 5);
    FileInfo none;
    EXPECT_EQ(files().info(at("none/x"), none), FileError::None);
    EXPECT_FALSE(none.exists);
    EXPECT_EQ(files().info(at("f/x"), none), FileError::None);
    EXPECT_FALSE(none.exists);
    ASSERT_EQ(files().setModified(at("f"), -1), FileError::None);
    EXPECT_EQ(infoOf(at("f")).modified, -1);
}

TEST_F(FilesTest, theTimeOfAnOpenFileIsSetWhateverItsNameLeadsTo) {
    put("f", "12345");
    Handle handle = -1;
    ASSERT_EQ(files().open(at("f"), OpenMode::ReadWrite, 0, handle), FileError::None);
    ASSERT_EQ(files().rename(at("f"), at("g")), FileError::None);
    put("f", "other");
    const std::int64_t other = infoOf(at("f")).modified;
    EXPECT_EQ(files().setModifiedOpen(handle, 1'234'567'890'123'456'789), FileError::None);
    EXPECT_EQ(infoOf(at("g")).modified, 1'234'567'890'123'456'789);
    EXPECT_EQ(infoOf(at("f")).modified, other);
    files().close(handle);
    EXPECT_EQ(files().setModifiedOpen(-1, 1), FileError::WriteFailed);
}

TEST_F(FilesTest, namesAreListedByTheirBytes) {
    const std::vector<std::string> expected{".hidden", "B", "a", "a b", "\x80\xff", "\xc3\xa4"};
    for (const std::string& name : expected) put(name, "x");
    EXPECT_EQ(names(), expected);
}

TEST_F(FilesTest, resolveFollowsLinksAndKeepsANewName) {
    ASSERT_EQ(files().makeFolder(at("real")), FileError::None);
    put("real/f", "x");
    ASSERT_EQ(files().link("real", at("folder")), FileError::None);
    ASSERT_EQ(files().link("folder/f", at("file")), FileError::None);
    ASSERT_EQ(files().link("folder/new", at("dangling")), FileError::None);
    ASSERT_EQ(files().link(at("none/new"), at("lost")), FileError::None);
    ASSERT_EQ(files().link("loop", at("loop")), FileError::None);
    const struct {
        const char* name;
        const char* expected;
        FileError error;
    } rows[] = {
        {"file", "real/f", FileError::None},
        {"folder/f", "real/f", FileError::None},
        {"folder/n", "real/n", FileError::None},
        {"dangling", "real/new", FileError::None},
        {"n", "n", FileError::None},
        {"real/../folder/../n", "n", FileError::None},
        {"lost", "", FileError::NotFound},
        {"none/n", "", FileError::NotFound},
        {"loop", "", FileError::BadName},
        {"n/", "", FileError::NotFound},
        {"real/f/x", "", FileError::NotFolder},
    };
    for (const auto& row : rows) {
        std::string resolved = "left over";
        EXPECT_EQ(files().resolve(at(row.name), resolved), row.error) << row.name;
        EXPECT_EQ(resolved, row.error == FileError::None ? at(row.expected) : "") << row.name;
    }
}

TEST_F(FilesTest, relativeNamesStandInTheCurrentFolder) {
    const std::string before = files().currentFolder();
    put("f", "here");
    ASSERT_EQ(files().setCurrentFolder(root_), FileError::None);
    EXPECT_EQ(files().currentFolder(), root_);
    std::string bytes, resolved;
    EXPECT_EQ(readFile("f", bytes), FileError::None);
    EXPECT_EQ(bytes, "here");
    EXPECT_EQ(files().resolve("g", resolved), FileError::None);
    EXPECT_EQ(resolved, at("g"));
    EXPECT_TRUE(saveFile("g", "new").ok());
    EXPECT_EQ(makeFolders("x/y"), FileError::None);
    EXPECT_EQ(files().setCurrentFolder(before), FileError::None);
    EXPECT_EQ(get("g"), "new");
    EXPECT_TRUE(infoOf(at("x/y")).folder);
}

TEST_F(FilesTest, foldersAreMadeOnce) {
    EXPECT_EQ(makeFolders(at("a/b/c/d/")), FileError::None);
    EXPECT_EQ(makeFolders(at("a/b/c/d")), FileError::None);
    EXPECT_EQ(makeFolders("/"), FileError::None);
    put("f", "x");
    EXPECT_EQ(makeFolders(at("f")), FileError::NotFolder);
    EXPECT_EQ(makeFolders(at("f/x/y")), FileError::NotFolder);
    EXPECT_EQ(makeFolders(at(std::string(300, 'n'))), FileError::BadName);
    std::string deep = root_;
    while (deep.size() < 1'000'000) deep += "/a";
    EXPECT_EQ(makeFolders(deep), FileError::BadName);
    EXPECT_EQ(makeFolders(""), FileError::BadName);
}

TEST_F(FilesTest, aWholeFileIsReadWhateverItsSize) {
    for (const std::size_t size : {0U, 1U, 4095U, 4096U, 4097U, 8191U, 100'000U}) {
        std::string bytes;
        for (std::size_t i = 0; i < size; ++i) bytes += static_cast<char>(i * 7 % 256);
        put("f", bytes);
        EXPECT_EQ(get("f"), bytes) << size;
    }
    std::string bytes = "left over";
    EXPECT_EQ(readFile(at("none"), bytes), FileError::NotFound);
    EXPECT_EQ(bytes, "");
    EXPECT_EQ(readFile(root_, bytes), FileError::IsFolder);
    EXPECT_EQ(readFile("/proc/self/status", bytes), FileError::None);  // gives no size
    EXPECT_NE(bytes.find("TracerPid"), std::string::npos);
}

TEST_F(FilesTest, aPipeThatNobodyServesHoldsUpNothing) {
    ASSERT_EQ(::mkfifo(at("pipe").c_str(), 0600), 0);
    std::string bytes;
    EXPECT_NE(readFile(at("pipe"), bytes), FileError::None);
    EXPECT_NE(infoOf(at("pipe")).special, false);
}

class PipeTest : public FilesTest {
protected:
    void SetUp() override {
        FilesTest::SetUp();
        ASSERT_EQ(::mkfifo(at("pipe").c_str(), 0600), 0);
    }
    // A program that reads `bytes` from the pipe, or all of it, in pieces with pauses in between.
    class Reader {
    public:
        Reader(const std::string& path, std::size_t bytes) {
            handle_ = ::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
            ::fcntl(handle_, F_SETFL, 0);
            thread_ = std::thread([this, bytes] { read(bytes); });
        }
        ~Reader() { join(); }
        Reader(const Reader&) = delete;
        Reader& operator=(const Reader&) = delete;
        const std::string& join() {
            if (thread_.joinable()) thread_.join();
            return got_;
        }

    private:
        void read(std::size_t bytes) {
            std::string piece(50'000, '\0');
            pollfd some{handle_, POLLIN, 0};
            ::poll(&some, 1, 10'000);
            while (got_.size() < bytes) {
                const ssize_t got = ::read(handle_, piece.data(), piece.size());
                if (got <= 0) break;
                got_.append(piece, 0, static_cast<std::size_t>(got));
                std::this_thread::sleep_for(std::chrono::milliseconds(2));
            }
            ::close(handle_);
        }
        int handle_;
        std::string got_;
        std::thread thread_;
    };
    [[nodiscard]] static std::string manyBytes() {
        std::string bytes;
        for (int i = 0; bytes.size() < 2'600'000; ++i) bytes += std::to_string(i) + '\n';
        return bytes;
    }
};

TEST_F(PipeTest, theReaderGetsEveryByteHoweverSlowItIs) {
    for (const std::string& text : {std::string("few"), std::string(65536, 'x'), manyBytes()}) {
        Reader reader(at("pipe"), std::string::npos);
        const SaveResult saved = saveFile(at("pipe"), text);
        EXPECT_EQ(saved.error, FileError::None);
        EXPECT_TRUE(saved.inPlace);
        EXPECT_TRUE(reader.join() == text) << reader.join().size();
    }
    EXPECT_TRUE(infoOf(at("pipe")).special);
    EXPECT_EQ(names(), std::vector<std::string>{"pipe"});
}

TEST_F(PipeTest, aPipeThatNobodyReadsIsAnError) {
    EXPECT_EQ(saveFile(at("pipe"), "text").error, FileError::NoReader);
    EXPECT_EQ(describe(FileError::NoReader), "No program reads from the pipe.");
    EXPECT_EQ(saveFile(at("pipe"), "").error, FileError::NoReader);
}

TEST_F(PipeTest, aReaderThatGoesIsAnErrorAndNotTheEndOfTheProgram) {
    Reader reader(at("pipe"), 100'000);
    EXPECT_EQ(saveFile(at("pipe"), manyBytes()).error, FileError::NoReader);
    sigset_t signals;
    ::sigpending(&signals);
    EXPECT_EQ(sigismember(&signals, SIGPIPE), 0);
    ::pthread_sigmask(SIG_BLOCK, nullptr, &signals);
    EXPECT_EQ(sigismember(&signals, SIGPIPE), 0);
}

#ifdef TARNWICK_TINY
// Where patience is short.
TEST_F(PipeTest, aReaderThatTakesNothingIsNotWaitedForForever) {
    const int reader = ::open(at("pipe").c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    EXPECT_EQ(saveFile(at("pipe"), manyBytes()).error, FileError::WriteFailed);
    ::close(reader);
}
#endif

TEST_F(FilesTest, aDeviceIsWrittenAndNotReplaced) {
    EXPECT_TRUE(saveFile("/dev/null", "text").ok());
    EXPECT_TRUE(infoOf("/dev/null").special);
    EXPECT_EQ(saveFile("/dev/full", "text").error, FileError::DiskFull);
    EXPECT_TRUE(infoOf("/dev/full").special);
}

TEST_F(FilesTest, aSaveKeepsEveryByte) {
    std::string all;
    for (int i = 0; i < 1024; ++i) all += static_cast<char>(i);
    const std::string contents[] = {"", "x", all, std::string(4'000'000, 'k'), std::string(1, '\0')};
    for (const std::string& one : contents) {
        ASSERT_TRUE(saveFile(at("f"), one).ok());
        EXPECT_TRUE(get("f") == one) << one.size();
    }
    EXPECT_EQ(names(), std::vector<std::string>{"f"});
}

TEST_F(FilesTest, aSaveTakesAnyNameThatTheDiskTakes) {
    const std::string wanted[] = {
        "\xff\xfe\x80 no valid text",
        std::string(255, 'l'),
        "a b",
        "-rf",
        "*?",
        "line\nfeed",
        ".hidden",
        "a'b\"c",
    };
    for (const std::string& name : wanted) {
        EXPECT_TRUE(saveFile(at(name), "one").ok()) << name;
        EXPECT_TRUE(saveFile(at(name), "two").ok()) << name;
        EXPECT_EQ(get(name), "two");
    }
    EXPECT_EQ(names().size(), std::size(wanted));
    EXPECT_EQ(saveFile(at(std::string(256, 'l')), "x").error, FileError::BadName);
    EXPECT_EQ(names().size(), std::size(wanted));
}

TEST_F(FilesTest, aSaveKeepsPermissionsAndLinks) {
    for (const mode_t mode : {0600U, 0644U, 0755U, 0640U, 0777U, 0200U, 04755U}) {
        put("f", "old", mode);
        ASSERT_TRUE(saveFile(at("f"), "new").ok());
        EXPECT_EQ(infoOf(at("f")).mode, mode);
    }
    put("f", "old");
    ASSERT_EQ(files().link("f", at("l")), FileError::None);
    ASSERT_EQ(files().link("l", at("m")), FileError::None);
    ASSERT_TRUE(saveFile(at("m"), "through").ok());
    EXPECT_EQ(get("f"), "through");
    struct stat status {};
    ASSERT_EQ(::lstat(at("m").c_str(), &status), 0);
    EXPECT_TRUE(S_ISLNK(status.st_mode));
    ASSERT_EQ(::link(at("f").c_str(), at("hard").c_str()), 0);
    const SaveResult result = saveFile(at("f"), "both");
    EXPECT_TRUE(result.ok() && result.inPlace);
    EXPECT_EQ(get("hard"), "both");
    std::vector<std::string> copies;
    EXPECT_EQ(files().list(rescueFolder(), copies), FileError::None);
    EXPECT_TRUE(copies.empty());
}

TEST_F(FilesTest, aSaveKeepsTheOwner) {
    if (::geteuid() != 0) GTEST_SKIP() << "only the administrator has files of others to write";
    put("f", "old", 0644);
    ASSERT_EQ(::chown(at("f").c_str(), 1234, 2345), 0);
    const SaveResult result = saveFile(at("f"), "new");
    EXPECT_TRUE(result.ok() && !result.inPlace);
    EXPECT_EQ(infoOf(at("f")).owner, 1234U);
    EXPECT_EQ(infoOf(at("f")).group, 2345U);
    EXPECT_EQ(infoOf(at("f")).mode, 0644U);
}

TEST_F(FilesTest, aNewFileHasTheUsersMask) {
    const mode_t before = ::umask(027);
    EXPECT_TRUE(saveFile(at("f"), "x").ok());
    ::umask(before);
    EXPECT_EQ(infoOf(at("f")).mode, 0640U);
}

TEST_F(FilesTest, aFileWithoutWriteBitsIsRefusedEvenForTheAdministrator) {
    put("f", "old", 0444);
    EXPECT_EQ(saveFile(at("f"), "new").error, FileError::Denied);
    EXPECT_EQ(get("f"), "old");
    EXPECT_EQ(names(), std::vector<std::string>{"f"});
    EXPECT_FALSE(infoOf(at("f")).writable);
}

TEST_F(FilesTest, inAClosedFolderTheFileIsWrittenInPlace) {
    put("f", "old, and longer", 0666);
    ASSERT_EQ(::chmod(root_.c_str(), 0777), 0);
    ASSERT_EQ(files().makeFolder(at("state")), FileError::None);
    ASSERT_EQ(::chmod(at("state").c_str(), 0777), 0);
    ASSERT_EQ(::chmod(root_.c_str(), 0555), 0);
    const int outcome = inChild([&] {
        if (!becomeNobody()) return 1;
        const SaveResult result = saveFile(at("f"), "new");
        if (!result.ok()) return 10 + static_cast<int>(result.error);
        if (!result.inPlace || !result.rescueCopy.empty()) return 2;
        std::vector<std::string> copies;
        if (files().list(rescueFolder(), copies) != FileError::None || !copies.empty()) return 3;
        return saveFile(at("other"), "new").error == FileError::Denied ? 0 : 4;
    });
    ASSERT_EQ(::chmod(root_.c_str(), 0755), 0);
    EXPECT_EQ(outcome, 0);
    EXPECT_EQ(get("f"), "new");
    EXPECT_EQ(infoOf(at("f")).mode, 0666U);
}

TEST_F(FilesTest, aFileOfAnotherUserKeepsItsOwnerAndIsRefusedWhenReadOnly) {
    if (::geteuid() != 0) GTEST_SKIP() << "needs a second user";
    put("shared", "old", 0666);
    put("closed", "old", 0644);
    ASSERT_EQ(::chmod(root_.c_str(), 0777), 0);
    ASSERT_EQ(files().makeFolder(at("state")), FileError::None);
    ASSERT_EQ(::chmod(at("state").c_str(), 0777), 0);
    const int outcome = inChild([&] {
        if (!becomeNobody()) return 1;
        const SaveResult result = saveFile(at("shared"), "new");
        if (!result.ok() || !result.inPlace) return 2;
        return saveFile(at("closed"), "new").error == FileError::Denied ? 0 : 3;
    });
    EXPECT_EQ(outcome, 0);
    EXPECT_EQ(get("shared"), "new");
    EXPECT_EQ(infoOf(at("shared")).owner, 0U);
    EXPECT_EQ(get("closed"), "old");
}

TEST_F(FilesTest, aFolderThatCannotBeReadIsSyncedAllTheSame) {
    ASSERT_EQ(files().makeFolder(at("dropbox")), FileError::None);
    ASSERT_EQ(::chmod(at("dropbox").c_str(), 0733), 0);
    ASSERT_EQ(::chmod(root_.c_str(), 0755), 0);
    if (::geteuid() != 0) {
        ASSERT_EQ(::chmod(at("dropbox").c_str(), 0333), 0);
    }
    const int outcome = inChild([&] {
        if (!becomeNobody()) return 1;
        return 10 + static_cast<int>(saveFile(at("dropbox/f"), "new").error);
    });
    EXPECT_EQ(outcome, 10);
    ASSERT_EQ(::chmod(at("dropbox").c_str(), 0755), 0);
    EXPECT_EQ(get("dropbox/f"), "new");
}

TEST_F(FilesTest, aLimitOnFileSizesIsAFullDiskAndNotTheEnd) {
    put("f", "old");
    const int outcome = inChild([&] {
        const rlimit limit{1000, 1000};
        if (::setrlimit(RLIMIT_FSIZE, &limit) != 0) return 1;
        const SaveResult result = saveFile(at("f"), std::string(4000, 'x'));
        return result.error == FileError::DiskFull && !result.inPlace ? 0 : 2;
    });
    EXPECT_EQ(outcome, 0);
    EXPECT_EQ(get("f"), "old");
    EXPECT_EQ(names(), std::vector<std::string>{"f"});
}

TEST_F(FilesTest, aKilledProgramLeavesTheOldOrTheNewFile) {
    const std::string a(300'000, 'a'), b(300'000, 'b');
    put("f", a);
    for (int i = 0; i < 20; ++i) {
        const pid_t pid = ::fork();
        if (pid == 0) {
            for (;;) {
                (void)saveFile(at("f"), b, Durability::Unsynced);
                (void)saveFile(at("f"), a, Durability::Unsynced);
            }
        }
        ::usleep(static_cast<useconds_t>(1000 + i * 137));
        ::kill(pid, SIGKILL);
        ::waitpid(pid, nullptr, 0);
        const std::string left = get("f");
        EXPECT_TRUE(left == a || left == b) << left.size();
    }
}

TEST_F(FilesTest, descriptorsDoNotReachOtherPrograms) {
    Handle handle = -1;
    ASSERT_EQ(files().open(at("f"), OpenMode::CreateNew, 0600, handle), FileError::None);
    EXPECT_NE(::fcntl(handle, F_GETFD) & FD_CLOEXEC, 0);
    files().close(handle);
}

TEST_F(FilesTest, freeSpaceIsThatOfTheDisk) {
    std::int64_t bytes = -1;
    EXPECT_EQ(files().freeSpace(root_, bytes), FileError::None);
    EXPECT_GT(bytes, 0);
}

// Not a measurement, which the benchmark is: it catches a save that waits for the disk again and again.
TEST_F(FilesTest, aDurableSaveOfFourMillionBytesIsQuick) {
    const std::string bytes(4'000'000, 'x');
    auto best = std::chrono::nanoseconds::max();
    for (int i = 0; i < 5; ++i) {
        const auto start = std::chrono::steady_clock::now();
        ASSERT_TRUE(saveFile(at("f"), bytes).ok());
        best = std::min<std::chrono::nanoseconds>(best, std::chrono::steady_clock::now() - start);
    }
    EXPECT_LT(best, std::chrono::milliseconds(500));
    RecordProperty("microseconds", static_cast<int>(best.count() / 1000));
}

}  // namespace
}  // namespace tarn::os
