// SPDX-License-Identifier: Apache-2.0
//
// Bringing files to users where something is against it: names that clash, links, targets that are sources, disks that are
// full, and files that change between the look at them and the copying.
#include "support/ship_fixture.h"
#include "support/steerable.h"

#include <sys/resource.h>

namespace tarn {
namespace {

using os::FileError;

class ShipHostile : public ShipCopies {
protected:
    // A list of two files of one name, and a third one.
    std::string clashing() {
        folder("files/x"), folder("files/y");
        return file("x/data.txt", 1) + file("other", 1) + file("y/data.txt", 2);
    }
    [[nodiscard]] std::string clash() const {
        return "Cannot copy files.\nSome of the files have the same name, and would take each other's "
               "place:\n\n\t" +
               dir / "files/x/data.txt" + "\n\t" + dir / "files/y/data.txt" + "\n";
    }
    void link(const std::string& target, const std::string& name) {
        std::filesystem::create_symlink(target, dir / name);
    }
    bool toInstaller(const std::string& files) {
        return COPYTOINSTALLER(owner, "Ann", "(c)", "Product", "Counts", "1.2", "1 2 0 0", "", files,
                               dir / "files/prog.cls");
    }
    bool toDeb(const std::string& files) {
        return COPYTODEB(owner, {"prog", "1.0", "Ann <ann@example.org>", "says hello", ""}, "", "", files,
                         dir / "files/prog.exe", dir / "to/prog.deb");
    }
};

// ---- files of one name ----

TEST_F(ShipHostile, TwoFilesOfOneNameAreToldAheadOfAnyCopying) {
    const std::string files = clashing();
    tool("iscc.exe", "exit 1");
    EXPECT_FALSE(COPYTOFOLDER(owner, files, dir / "to"));
    EXPECT_EQ(lastText(), clash());
    EXPECT_FALSE(COPYTOZIP(owner, files, ""));
    EXPECT_EQ(lastText(), clash());
    EXPECT_FALSE(toInstaller(files));
    EXPECT_EQ(lastText(), clash());
    EXPECT_FALSE(toDeb(files));
    EXPECT_EQ(lastText(), clash());
    EXPECT_EQ(asked.size(), 4U);
    EXPECT_EQ(listing("to"), "");
    EXPECT_EQ(listing("files"), "other\t1\n") << "no script of an installer";
}

TEST_F(ShipHostile, OneOfTheClashingFilesIsNotOverwrittenByTheOther) {
    const std::string files = file("other", 1) + clashing();
    EXPECT_FALSE(COPYTOFOLDER(owner, files, dir / "files/y"));
    EXPECT_EQ(read("files/y/data.txt").size(), 2U);
}

TEST_F(ShipHostile, FilesOfOneNameMayGoToTwoFloppyDisksButNotToOne) {
    const std::string files = clashing();
    EXPECT_FALSE(COPYTOFLOPPY(owner, files, drive));
    EXPECT_EQ(lastText(), clash());
    drive.capacity = 200;  // two files on each
    answers = {"OK"};
    EXPECT_FALSE(COPYTOFLOPPY(owner, files, drive)) << "the disk is not put in";
    EXPECT_EQ(asked[1].text, "You need 2 blank floppy disks");
}

TEST_F(ShipHostile, AFileThatIsListedTwiceIsCopiedOnce) {
    const std::string one = file("a", 3);
    EXPECT_TRUE(COPYTOFOLDER(owner, one + one, dir / "to")) << lastText();
    EXPECT_EQ(listing("to"), "a\t3\n");
    answers = {dir / "to/z.zip", "OK"};
    EXPECT_TRUE(COPYTOZIP(owner, one + one, "")) << lastText();
    EXPECT_EQ(lastText(), "Successfully zipped 1 file(s) to '" + dir / "to/z.zip" + "'.");
}

TEST_F(ShipHostile, AFileThatIsListedTwiceIsInstalledAndPackedOnce) {
    std::filesystem::copy_file("/bin/true", dir / "files/prog.exe");
    const std::string exe = dir / "files/prog.exe" + "\n", icon = file("mainicon.ico", 2);
    tool("iscc.exe", "echo made > " + dir / "files/prog-install.exe");
    answers = {"Close"};
    EXPECT_TRUE(toInstaller(exe + icon + exe + icon)) << lastText();
    const std::string script = read("files/prog-install.iss");
    for (const char* name : {"prog.exe", "mainicon.ico"}) {
        const std::string line = "Source:\"" + dir / "files/" + name;
        EXPECT_NE(script.find(line), std::string::npos) << script;
        EXPECT_EQ(script.find(line), script.rfind(line)) << script;
    }
    answers = {dir / "to/prog.deb", "OK"};
    EXPECT_TRUE(toDeb(exe + icon + exe)) << lastText();
}

TEST_F(ShipHostile, AScriptWithAByteOrderMarkKeepsIt) {
    tool("iscc.exe", "echo made > " + dir / "files/prog-install.exe");
    make("files/prog-install.iss", "\xEF\xBB\xBF[Setup]\n");
    answers = {"Close"};
    EXPECT_TRUE(toInstaller(file("prog.exe", 3))) << lastText();
    EXPECT_TRUE(read("files/prog-install.iss").starts_with("\xEF\xBB\xBF[Setup]\nAppName=prog\n"));
}

// ---- where the files come from, and go to ----

TEST_F(ShipHostile, TheFolderOfTheFilesThemselvesKeepsThemAsTheyAre) {
    const std::string files = file("a", 3) + file("b", 0);
    answers = {"Continue", "OK"};
    EXPECT_TRUE(COPYTOFOLDER(owner, files, dir / "files"));
    EXPECT_EQ(lastText(), "Successfully copied 2 file(s) to '" + dir / "files" + "'.");
    EXPECT_EQ(read("files/a"), "xxx");
    EXPECT_EQ(listing("files"), "a\t3\nb\t0\n");
    link(dir / "files", "to/same");
    answers = {"Continue", "OK"};
    EXPECT_TRUE(COPYTOFOLDER(owner, files, dir / "to/same")) << "under another name";
    EXPECT_EQ(listing("files"), "a\t3\nb\t0\n");
}

TEST_F(ShipHostile, AFolderWithinThatOfTheFilesIsLikeAnyOther) {
    folder("files/in");
    EXPECT_TRUE(COPYTOFOLDER(owner, file("a", 3), dir / "files/in"));
    EXPECT_EQ(listing("files/in"), "a\t3\n");
}

TEST_F(ShipHostile, NoFileTakesThePlaceOfOneThatIsHandedOver) {
    std::filesystem::copy_file("/bin/true", dir / "files/prog.exe");
    const std::string files = dir / "files/prog.exe" + "\n" + file("old.zip", 3) + file("old.deb", 3);
    answers = {dir / "files/old.zip"};
    EXPECT_FALSE(COPYTOZIP(owner, files, ""));
    EXPECT_EQ(lastText(), "Cannot copy files.\n'" + dir / "files/old.zip" + "' is one of them.");
    link(dir / "files", "to/same");
    answers = {dir / "to/same/prog.exe"};
    EXPECT_FALSE(COPYTOZIP(owner, files, ""));
    EXPECT_EQ(lastText(), "Cannot copy files.\n'" + dir / "to/same/prog.exe" + "' is one of them.");
    answers = {dir / "files/old.deb"};
    EXPECT_FALSE(toDeb(files));
    EXPECT_EQ(lastText(), "Cannot copy files.\n'" + dir / "files/old.deb" + "' is one of them.");
    for (const char* name : {"files/old.zip", "files/old.deb"}) EXPECT_EQ(read(name), "xxx") << name;
    EXPECT_TRUE(read("files/prog.exe").starts_with("\177ELF"));
}

TEST_F(ShipHostile, AnInstallerAndItsScriptAreNoFilesThatAreInstalled) {
    tool("iscc.exe", "echo made > " + dir / "files/prog-install.exe");
    for (const char* name : {"prog-install.exe", "prog-install.iss"}) {
        EXPECT_FALSE(toInstaller(file("prog.exe", 3) + file(name, 4)));
        EXPECT_EQ(lastText(), "Cannot copy files.\n'" + dir / "files/" + name + "' is one of them.");
        EXPECT_EQ(read(std::string("files/") + name), "xxxx");
        std::filesystem::remove(dir / "files/" + name);
    }
    EXPECT_EQ(listing("files"), "prog.exe\t3\n") << "nothing else was made";
}

TEST_F(ShipHostile, AFolderUnderTheNameOfWhatIsMadeStaysAndIsTold) {
    std::filesystem::copy_file("/bin/true", dir / "files/prog.exe");
    folder("to/a.zip"), folder("to/a.deb"), folder("files/prog-install.exe");
    answers = {dir / "to/a.zip"};
    EXPECT_FALSE(COPYTOZIP(owner, file("a", 1), ""));
    const std::string why =
        "' could not be written: There is a folder of that name.\nChoose another name, and try again.";
    EXPECT_TRUE(lastText().ends_with("'" + dir / "to/a.zip" + why)) << lastText();
    answers = {dir / "to/a.deb"};
    EXPECT_FALSE(toDeb(dir / "files/prog.exe" + "\n"));
    EXPECT_TRUE(lastText().ends_with("'" + dir / "to/a.deb" + why)) << lastText();
    tool("iscc.exe", "echo 'it is a folder'");
    EXPECT_FALSE(toInstaller(dir / "files/prog.exe" + "\n"));
    EXPECT_EQ(lastText(), "Could not create '" + dir / "files/prog-install.exe" + "'\n\nit is a folder");
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(dir / "to"), {}), 2) << "nothing else";
    EXPECT_TRUE(std::filesystem::is_directory(dir / "to/a.zip"));
}

// What the names of files and folders may be, for each way.
TEST_F(ShipHostile, NamesOfAllKindsGoThroughEachWay) {
    std::filesystem::copy_file("/bin/true", dir / "files/prog.exe");
    tool("iscc.exe", "for a; do echo \"$a\" >> " + dir / "calls" +
                         "; done; echo made > \"$(dirname \"$1\")/prog-install.exe\"");
    const std::string names[] = {"-rf",        " a b ", "it's",  "say \"hi\"", "$HOME", "`id`",
                                 "a;b&c|d",    "[1]*?", "%s%n",  "#x",         "~",     "\xC3\xA4",
                                 "\xff\x80\n", "{a}",   "@list", "a=b",        "(x)",   "!"};
    std::string files;
    int count = 0;
    for (std::string name : names) {
        if (name.ends_with('\n')) name.pop_back();
        files += file(name, 2);
        ++count;
    }
    for (const char* place : {"to/-rf", "to/ a b ", "to/say \"hi\" & $HOME", "to/[1]*?", "to/\xff\x80"}) {
        folder(place);
        answers = {"OK"};
        EXPECT_TRUE(COPYTOFOLDER(owner, files, dir / place)) << lastText();
        EXPECT_EQ(STRLINES(listing(place)), count) << place;
        answers = {dir / place + "/-made [1].zip", "OK"};
        EXPECT_TRUE(COPYTOZIP(owner, files, "")) << place << lastText();
        EXPECT_TRUE(read(std::string(place) + "/-made [1].zip").starts_with("PK")) << place;
        answers = {dir / place + "/-made [1].deb", "OK"};
        EXPECT_TRUE(toDeb(dir / "files/prog.exe" + "\n" + files)) << place << lastText();
        EXPECT_TRUE(read(std::string(place) + "/-made [1].deb").starts_with("!<arch>")) << place;
        EXPECT_EQ(STRLINES(listing(place)), count + 2) << place << " keeps nothing else: " << listing(place);
    }
}

TEST_F(ShipHostile, ANameWithALineEndIsNoFileOfAList) {
    make("files/a\nb", "x");
    EXPECT_FALSE(COPYTOFOLDER(owner, dir / "files/a\nb" + "\n", dir / "to"));
    EXPECT_TRUE(lastText().starts_with("Cannot copy files.\nSome of the files do not exist")) << lastText();
    EXPECT_EQ(listing("to"), "");
}

// ---- links ----

TEST_F(ShipHostile, ALinkAmongTheFilesIsCopiedAsTheFileItLeadsTo) {
    make("secret", "far");
    link("../secret", "files/a");
    EXPECT_TRUE(COPYTOFOLDER(owner, dir / "files/a" + "\n", dir / "to"));
    EXPECT_FALSE(std::filesystem::is_symlink(dir / "to/a"));
    EXPECT_EQ(read("to/a"), "far");
}

TEST_F(ShipHostile, ALinkThatLeadsOutOfTheFolderIsToldAndNothingIsWrittenThere) {
    make("secret", "far");
    link("../secret", "to/a");
    link("../nowhere", "to/b");
    EXPECT_FALSE(COPYTOFOLDER(owner, file("a", 1) + file("b", 1) + file("c", 1), dir / "to"));
    EXPECT_EQ(lastText(), "Cannot copy files.\nThe folder '" + dir / "to" +
                              "' has links of these names, which lead out of it:\n\n\ta\n\tb\n");
    EXPECT_EQ(asked.size(), 1U);
    EXPECT_EQ(read("secret"), "far");
    EXPECT_FALSE(std::filesystem::exists(dir / "nowhere"));
    EXPECT_EQ(listing("to"), "a\t3\n") << "only what the link led to before";
}

TEST_F(ShipHostile, ALinkWithinTheFolderIsWrittenThrough) {
    make("to/real", "old");
    link("real", "to/a");
    answers = {"Continue", "OK"};
    EXPECT_TRUE(COPYTOFOLDER(owner, file("a", 1), dir / "to")) << lastText();
    EXPECT_EQ(read("to/real"), "x");
}

// ---- what changes meanwhile ----

TEST_F(ShipHostile, AFileThatGoesBetweenTheLookAndTheCopyingIsTold) {
    const std::string files = file("a", 1) + file("b", 1);
    make("to/a", "old");
    meanwhile = [this] { std::filesystem::remove(dir / "files/b"); };
    answers = {"Continue"};
    EXPECT_FALSE(COPYTOFOLDER(owner, files, dir / "to"));
    EXPECT_TRUE(lastText().starts_with("The following file(s) could not be copied:\n\n\t" + dir / "files/b" +
                                       "\n\nThe file(s) could not be found"))
        << lastText();
    EXPECT_TRUE(
        lastText().ends_with("destination...\nThe file(s) could not be read.\nCheck that you may read "
                             "them, and try again."))
        << lastText();
    EXPECT_EQ(listing("to"), "a\t1\n");
    make("files/b", "x");
    answers = {dir / "to/z.zip"};
    EXPECT_FALSE(COPYTOZIP(owner, files, ""));
    EXPECT_TRUE(
        lastText().starts_with("The following file(s) could not be zipped:\n\n\t" + dir / "files/b" + "\n"))
        << lastText();
    make("files/b", "x");
    answers = {dir / "to/p.deb"};
    EXPECT_FALSE(toDeb(files));
    EXPECT_NE(lastText().find("could not be copied:\n\n\t" + dir / "files/b" + "\n"), std::string::npos)
        << lastText();
    EXPECT_EQ(listing("to"), "a\t1\n");
}

TEST_F(ShipHostile, AZipFileThatSomebodyReadsIsReplacedAndReadOn) {
    make("to/a.zip", "the old one");
    os::Handle reader = -1;
    ASSERT_EQ(os::files().open(dir / "to/a.zip", os::OpenMode::Read, 0, reader), FileError::None);
    answers = {dir / "to/a.zip", "OK"};
    EXPECT_TRUE(COPYTOZIP(owner, file("a", 1), "")) << lastText();
    std::string bytes(11, ' ');
    std::size_t got = 0;
    EXPECT_EQ(os::readUpTo(reader, 0, bytes.data(), bytes.size(), got), FileError::None);
    os::files().close(reader);
    EXPECT_EQ(bytes, "the old one");
    EXPECT_TRUE(read("to/a.zip").starts_with("PK"));
}

TEST_F(ShipHostile, TheListingGoesElsewhereWhereTheCurrentFolderCannotTakeIt) {
    folder("unzip.err");
    answers = {dir / "to/a.zip", "OK"};
    EXPECT_TRUE(COPYTOZIP(owner, file("a", 1), "")) << lastText();
    std::filesystem::remove(dir / "unzip.err");
    link("/dev/full", "unzip.err");  // a disk that takes nothing more
    answers = {dir / "to/a.zip", "OK"};
    EXPECT_TRUE(COPYTOZIP(owner, file("a", 1), "")) << lastText();
    EXPECT_EQ(STRLINES(listing("to")), 1) << listing("to");
}

// ---- disks that fail ----

class ShipFullDisk : public ShipCopies {
protected:
    os::SteeredFiles disk;

    // Two files to a folder with an older one of each; the disk fails at one call after the other.
    template <class Fail>
    void expectOldOrNew(const Fail& fail) {
        bool harmed = true;
        for (int call = 1; harmed && call < 200; ++call) {
            const os::Steered steered(disk);
            for (const char* name : {"a", "b"}) {
                disk.put(std::string("/from/") + name, "new" + std::string(name));
                disk.put(std::string("/to/") + name, "old" + std::string(name));
            }
            answers = {"Continue", "OK"};
            disk.clearLog();
            fail(call);
            const bool ok = COPYTOFOLDER(owner, "/from/a\n/from/b\n", "/to");
            harmed = disk.calls() >= call;
            disk.stopFailing();
            EXPECT_TRUE(ok || lastText().starts_with("The following file(s) could not be copied:"))
                << lastText();
            for (const std::string name : {"a", "b"}) {
                const std::string now = disk.contents("/to/" + name);
                const bool told = lastText().find("/from/" + name + "\n") != std::string::npos;
                EXPECT_TRUE(now == "new" + name || (told && now == "old" + name))
                    << call << now << lastText();
            }
            EXPECT_EQ(disk.allFiles().size(), 4U) << call;
            EXPECT_EQ(disk.openHandles(), 0) << call;
        }
        EXPECT_FALSE(harmed);
    }
};

TEST_F(ShipFullDisk, AFailureAtAnyCallLeavesTheOldFilesOrTheNewOnesAndIsTold) {
    for (const FileError error : {FileError::DiskFull, FileError::Denied, FileError::WriteFailed})
        expectOldOrNew([&](int call) { disk.failAt(call, error); });
}

TEST_F(ShipFullDisk, AFullDiskIsToldAsSuch) {
    const os::Steered steered(disk);
    disk.put("/from/a", "new"), disk.putFolder("/to");
    disk.setFreeBytes(2);
    EXPECT_FALSE(COPYTOFOLDER(owner, "/from/a\n", "/to"));
    EXPECT_TRUE(
        lastText().ends_with("\n'/to' could not be written: The disk is full.\nMake room on its disk, or "
                             "choose a folder on another one, and try again."))
        << lastText();
}

// Files that grow over what the system lets them are a full disk.
TEST_F(ShipHostile, AFullDiskIsToldByEachWayThatMakesOneFile) {
    std::filesystem::copy_file("/bin/true", dir / "files/prog.exe");
    const std::string files = dir / "files/prog.exe" + "\n";
    const auto limited = [](const auto& run) {
        rlimit before{};
        ::getrlimit(RLIMIT_FSIZE, &before);
        rlimit limit = before;
        limit.rlim_cur = 4096;
        ::setrlimit(RLIMIT_FSIZE, &limit);
        run();
        ::setrlimit(RLIMIT_FSIZE, &before);
    };
    answers = {dir / "to/a.deb"};
    limited([&] { EXPECT_FALSE(toDeb(files)); });
    EXPECT_TRUE(
        lastText().ends_with("could not be written: The disk is full.\nMake room on its disk, or choose a "
                             "folder on another one, and try again."))
        << lastText();
    EXPECT_TRUE(std::filesystem::is_empty(dir / "to"));
    answers = {dir / "to/a.zip"};
    limited([&] { EXPECT_FALSE(COPYTOZIP(owner, files, "")); });
    EXPECT_TRUE(lastText().starts_with("The following file(s) could not be zipped:")) << lastText();
    EXPECT_TRUE(std::filesystem::is_empty(dir / "to"));
}

TEST_F(ShipFullDisk, AFolderThatMayNotBeWrittenTellsAllFiles) {
    const os::Steered steered(disk);
    disk.put("/from/a", "new"), disk.put("/from/b", "new");
    disk.putFolder("/to", 0555);
    disk.putOwner("/to", 0, 0);
    EXPECT_FALSE(COPYTOFOLDER(owner, "/from/a\n/from/b\n", "/to"));
    EXPECT_EQ(lastText(),
              "The following file(s) could not be copied:\n\n\t/from/a\n\t/from/b\n\nThe file(s) "
              "could not be found, or the destination...\n'/to' could not be written: There is no "
              "permission to do this, or the file is read-only.\nChoose a folder that you may write, "
              "and try again.");
    EXPECT_EQ(disk.allFiles().size(), 2U);
}

}  // namespace
}  // namespace tarn
