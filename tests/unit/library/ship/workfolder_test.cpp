// SPDX-License-Identifier: Apache-2.0
//
// Folders for what stands only while something is made: they go with their work, and those of dead processes with the next
// one; nothing else goes.
#include "library/ship/workfolder.h"
#include "support/ship_fixture.h"
#include "support/steerable.h"

#include <csignal>
#include <sys/stat.h>
#include <sys/wait.h>

namespace tarn::ship {
namespace {

constexpr const char* Owner = "tarnwick-packager";

class WorkFolders : public ShipCopies {
protected:
    // The names in the folder `to`, each with a blank behind it.
    std::string names() const {
        std::vector<std::string> all;
        os::files().list(dir / "to", all);
        std::string text;
        for (const std::string& name : all) text += name + " ";
        return text;
    }
    // What a process of its own does, which is killed behind it.
    template <class Work>
    void inAKilledProcess(const Work& work) {
        const pid_t child = ::fork();
        if (child == 0) {
            work();
            ::kill(::getpid(), SIGKILL);
            ::_exit(0);
        }
        int status = 0;
        ASSERT_EQ(::waitpid(child, &status, 0), child);
        ASSERT_TRUE(WIFSIGNALED(status));
    }
    // A folder with files and folders in it, whose process is dead.
    void leaveOne() {
        inAKilledProcess([this] {
            const WorkFolder work(dir / "to/prog.deb");
            std::filesystem::create_directories(work.path() + "tree/usr/bin");
            make("to/.prog-1.work/tree/usr/bin/prog", "half");
            std::filesystem::create_symlink(dir / "files", work.path() + "tree/link");
            ::kill(::getpid(), SIGKILL);
        });
        ASSERT_EQ(names(), ".prog-1.work ");
    }
};

TEST_F(WorkFolders, StandBesideTheFileAndGoWithAllThatIsInThem) {
    {
        const WorkFolder work(dir / "to/prog.deb");
        EXPECT_EQ(work.path(), dir / "to/.prog-1.work/");
        EXPECT_EQ(work.error(), os::FileError::None);
        std::filesystem::create_directories(work.path() + "a/b");
        make("to/.prog-1.work/a/b/c", "x");
    }
    EXPECT_EQ(names(), "");
}

TEST_F(WorkFolders, OfALivingProcessStayAndTheNextGetsAnotherName) {
    const WorkFolder first(dir / "to/prog.deb");
    make("to/.prog-1.work/half", "x");
    int told[2] = {-1, -1}, go[2] = {-1, -1};
    ASSERT_EQ(::pipe(told) + ::pipe(go), 0);
    const pid_t child = ::fork();
    if (child == 0) {
        const WorkFolder other(dir / "to/prog.deb");
        char byte = other.path() == dir / "to/.prog-2.work/" ? 'y' : 'n';
        const bool heard = ::write(told[1], &byte, 1) == 1 && ::read(go[0], &byte, 1) == 1;
        if (!heard) ::_exit(1);
        ::kill(::getpid(), SIGKILL);
    }
    char answer = 0;
    ASSERT_EQ(::read(told[0], &answer, 1), 1);
    EXPECT_EQ(answer, 'y');
    {
        const WorkFolder third(dir / "to/other.zip");
        EXPECT_EQ(names(), ".other-1.work .prog-1.work .prog-2.work ") << "both live";
    }
    ASSERT_EQ(::write(go[1], &answer, 1), 1);
    int status = 0;
    ASSERT_EQ(::waitpid(child, &status, 0), child);
    REMOVEDEADWORK(dir / "to");
    EXPECT_EQ(names(), ".prog-1.work ") << "the other is dead now";
    EXPECT_EQ(read("to/.prog-1.work/half"), "x");
    for (const int end : {told[0], told[1], go[0], go[1]}) ::close(end);
}

TEST_F(WorkFolders, OfADeadProcessGoWithTheNextRunThere) {
    make("files/kept", "far");
    leaveOne();
    {
        const WorkFolder next(dir / "to/another.zip");
        EXPECT_EQ(names(), ".another-1.work ");
    }
    EXPECT_EQ(read("files/kept"), "far") << "a link goes, not what it leads to";
}

TEST_F(WorkFolders, OfADeadProcessGoAlsoFromTheCurrentFolder) {
    leaveOne();
    std::filesystem::current_path(dir / "to");
    REMOVEDEADWORK("");
    EXPECT_EQ(names(), "");
}

TEST_F(WorkFolders, OneThatIsOnlyCalledSoStays) {
    // No owner's file, another's file, a folder or a pipe in its place, names that are none of ours.
    for (const char* name : {".prog-1.work", ".prog-2.work", ".prog-3.work", ".prog-4.work", "prog-5.work",
                             ".prog.work", ".prog-6.work.old", ".-.work", "..work"})
        folder("to/" + std::string(name));
    make("to/.prog-1.work/mine", "x");
    make("to/.prog-2.work/owner", "x");
    folder("to/.prog-3.work/" + std::string(Owner));
    ASSERT_EQ(::mkfifo((dir / "to/.prog-4.work/" + Owner).c_str(), 0600), 0);
    for (const char* name : {"prog-5.work/", ".prog.work/", ".prog-6.work.old/", ".-.work/", "..work/"})
        make("to/" + std::string(name) + Owner, "");
    make("to/.prog-7.work", "a file");
    make("to/.prog-1.zip", "a file");
    const std::string before = names();
    REMOVEDEADWORK(dir / "to");
    EXPECT_EQ(names(), before);
    EXPECT_EQ(read("to/.prog-1.work/mine"), "x");
}

TEST_F(WorkFolders, ALinkToOneOfADeadProcessIsNotFollowed) {
    leaveOne();
    folder("elsewhere");
    std::filesystem::create_symlink(dir / "to/.prog-1.work", dir / "elsewhere/.prog-1.work");
    REMOVEDEADWORK(dir / "elsewhere");
    EXPECT_EQ(names(), ".prog-1.work ");
    EXPECT_EQ(read("to/.prog-1.work/tree/usr/bin/prog"), "half");
    std::filesystem::create_symlink(dir / "to", dir / "there");
    REMOVEDEADWORK(dir / "there");
    EXPECT_EQ(names(), "") << "a folder that is reached by a link is that folder";
}

TEST_F(WorkFolders, TheNameMayBeAsLongAsAFileHasOne) {
    for (const std::string& name : {std::string(251, 'n'), std::string("-rf $HOME\n"), std::string()}) {
        const WorkFolder work(dir / "to/" + name + ".deb");
        EXPECT_FALSE(work.path().empty()) << name;
        EXPECT_TRUE(std::filesystem::is_directory(work.path()));
    }
    EXPECT_EQ(names(), "");
}

TEST_F(WorkFolders, WhereNoneCanStandItIsToldWhy) {
    const WorkFolder work(dir / "none/prog.deb");
    EXPECT_EQ(work.path(), "");
    EXPECT_EQ(work.error(), os::FileError::NotFound);
    os::SteeredFiles disk;
    const os::Steered steered(disk);
    disk.putFolder("/to", 0555);
    disk.putOwner("/to", 0, 0);
    const WorkFolder denied("/to/prog.deb");
    EXPECT_EQ(denied.error(), os::FileError::Denied);
}

TEST_F(WorkFolders, AFullDiskLeavesNothing) {
    for (const os::FileCall call : {os::FileCall::MakeFolder, os::FileCall::Open}) {
        os::SteeredFiles disk;
        const os::Steered steered(disk);
        disk.putFolder("/to");
        disk.clearLog();
        disk.failAt(call, 1, os::FileError::DiskFull);
        const WorkFolder work("/to/prog.deb");
        EXPECT_EQ(work.path(), "");
        EXPECT_EQ(work.error(), os::FileError::DiskFull);
        std::vector<std::string> left;
        disk.list("/to", left);
        EXPECT_TRUE(left.empty()) << left[0];
    }
}

// ---- the packager, killed ----

TEST_F(WorkFolders, APackagerThatIsKilledLeavesNothingForEver) {
    std::filesystem::copy_file("/bin/true", dir / "files/prog.exe");
    const std::string files = dir / "files/prog.exe" + "\n" + file("data", 3);
    const auto deb = [&] {
        answers = {dir / "to/prog.deb", "OK"};
        return COPYTODEB(owner, {"prog", "1.0", "Ann <ann@example.org>", "says hello", ""}, "", "", files,
                         dir / "files/prog.exe", "");
    };
    const auto zip = [&] {
        answers = {dir / "to/prog.zip", "OK"};
        return COPYTOZIP(owner, files, "");
    };
    const std::pair<const char*, bool> tools[] = {
        {"dpkg-deb", true}, {"gzip", true}, {"zip", false}, {"unzip", false}};
    for (const auto& [name, isDeb] : tools) {
        tool(name, "kill -9 $KILLED");
        inAKilledProcess([&] {
            ::setenv("KILLED", std::to_string(::getpid()).c_str(), 1);
            static_cast<void>(isDeb ? deb() : zip());
        });
        answers.clear();
        std::filesystem::remove(dir / "program/" + name);
        EXPECT_NE(names(), "") << name << ": it was killed in the middle";
        EXPECT_TRUE(isDeb ? zip() : deb()) << name << lastText();
        EXPECT_EQ(names(), isDeb ? "prog.zip " : "prog.deb ") << name;
        for (const char* made : {"to/prog.zip", "to/prog.deb"}) std::filesystem::remove(dir / made);
    }
}

}  // namespace
}  // namespace tarn::ship
