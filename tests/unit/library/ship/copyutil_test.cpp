// SPDX-License-Identifier: Apache-2.0
//
// The ways to bring files to users: every box, in its order, and what is left when something fails.
#include "support/ship_fixture.h"

namespace tarn {
namespace {

// ---- floppy disks ----

TEST_F(ShipCopies, FloppyDisksAreAskedForOneAfterTheOther) {
    const std::string files = file("a", 450) + file("b", 500) + file("c", 600) + file("d", 0);
    answers = {"OK", "OK", "OK", "OK"};
    meanwhile = [this] {
        if (asked.size() != 3) return;  // the user changes the disks
        for (const char* name : {"to/a", "to/b"}) std::filesystem::remove(dir / name);
    };
    EXPECT_TRUE(COPYTOFLOPPY(owner, files, drive));
    ASSERT_EQ(asked.size(), 4U);
    EXPECT_EQ(asked[0].text, "You need 2 blank floppy disks");
    EXPECT_EQ(asked[1].text, "Insert floppy disk 1 and click OK, or press Cancel to stop copying.");
    EXPECT_EQ(asked[1].buttons, (std::vector<std::string>{"OK", "Cancel"}));
    EXPECT_EQ(asked[2].text, "Insert floppy disk 2 and click OK, or press Cancel to stop copying.");
    EXPECT_EQ(asked[3].text, "Successfully copied 4 file(s) to 2 floppy disk(s).");
    EXPECT_EQ(listing("to"), "c\t600\nd\t0\n");
}

TEST_F(ShipCopies, OneFloppyDiskIsNoPlural) {
    EXPECT_FALSE(COPYTOFLOPPY(owner, file("a", 1), drive)) << "the second box was closed";
    EXPECT_EQ(asked[0].text, "You need 1 blank floppy disk");
    EXPECT_EQ(asked.size(), 2U);
    EXPECT_EQ(listing("to"), "");
}

TEST_F(ShipCopies, AMissingOrTooLargeFileBlocksTheFloppy) {
    for (const std::string& files : {file("a", 1) + dir / "none\n", file("b", 1001)}) {
        EXPECT_FALSE(COPYTOFLOPPY(owner, files, drive));
        EXPECT_EQ(lastText(),
                  "Cannot copy files.\nSome of the files do not exist, or they are too large to fit on "
                  "the disk.\n(the disk size is 1000 bytes)\nTry copying to a Zip file instead.\n'" +
                      (asked.size() == 1 ? dir / "none" + "' does not exist."
                                         : dir / "files/b" + "' is too large."));
    }
    EXPECT_EQ(asked.size(), 2U);
}

TEST_F(ShipCopies, ADiskWithTooLittleRoomIsTold) {
    make("to/old", std::string(250, 'x'));  // three units
    answers = {"OK", "OK"};
    EXPECT_FALSE(COPYTOFLOPPY(owner, file("a", 750), drive));
    EXPECT_EQ(lastText(),
              "Disk 1 has 700 byte(s) free, but 800 are needed.\nTry again with another floppy disk.");
    EXPECT_EQ(listing("to"), "old\t250\n");
    drive.folder = dir / "none";
    answers = {"OK", "OK"};
    EXPECT_FALSE(COPYTOFLOPPY(owner, file("a", 750), drive));
    EXPECT_EQ(lastText(),
              "Disk 1 has 0 byte(s) free, but 800 are needed.\nTry again with another floppy disk.");
}

TEST_F(ShipCopies, ADiskThatIsNotBlankIsToldBehindTheCopying) {
    make("to/old", "x");
    answers = {"OK", "OK"};
    EXPECT_FALSE(COPYTOFLOPPY(owner, file("a", 10), drive));
    EXPECT_EQ(lastText(),
              "After copying files to Disk 1 the files on the disk do not match the file list.\nEither "
              "some of the files could not be copied, or the disk was not a blank disk.\nTry again with "
              "another blank floppy disk.");
    EXPECT_EQ(listing("to"), "a\t10\nold\t1\n") << "what was copied stays";
}

// ---- a folder ----

TEST_F(ShipCopies, AFolderGetsTheFiles) {
    EXPECT_TRUE(COPYTOFOLDER(owner, file("a b", 3) + file("c", 0), dir / "to"));
    EXPECT_EQ(asked.size(), 1U);
    EXPECT_EQ(lastText(), "Successfully copied 2 file(s) to '" + dir / "to" + "'.");
    EXPECT_EQ(listing("to"), "a b\t3\nc\t0\n");
}

TEST_F(ShipCopies, FilesThatAreThereAlreadyAreAskedAbout) {
    make("to/c", "old");
    make("to/other", "mine");
    const std::string files = file("a", 3) + file("c", 1);
    const std::string question =
        "The folder '" + dir / "to" +
        "' already contains the following file(s):\n\n\tc\n\nIf you copy to this folder, the "
        "file(s) may be overwritten.\nDo you want to continue?";
    for (const std::string answer : {"Quit", ""}) {
        answers = {answer};
        EXPECT_FALSE(COPYTOFOLDER(owner, files, dir / "to"));
        EXPECT_EQ(lastText(), question);
        EXPECT_EQ(asked.back().buttons, (std::vector<std::string>{"Quit", "Continue"}));
        EXPECT_EQ(listing("to"), "c\t3\nother\t4\n");
    }
    answers = {"Continue"};
    EXPECT_TRUE(COPYTOFOLDER(owner, files, dir / "to"));
    EXPECT_EQ(listing("to"), "a\t3\nc\t1\nother\t4\n");
}

TEST_F(ShipCopies, LongListsEndWithMore) {
    std::string files, shown;
    for (char c = 'a'; c <= 'z'; ++c) {
        files += file(std::string(1, c), 1);
        make(std::string("to/") + c, "old");
        if (c < 'a' + 19) shown += std::string("\t") + c + "\n";
    }
    EXPECT_FALSE(COPYTOFOLDER(owner, files, dir / "to"));
    EXPECT_NE(lastText().find(":\n\n" + shown + "\t...(more)...\n\nIf"), std::string::npos) << lastText();
}

TEST_F(ShipCopies, AMissingFileBlocksTheFolderBeforeItIsLookedAt) {
    make("to/a", "old");
    EXPECT_FALSE(COPYTOFOLDER(owner, file("a", 1) + dir / "none\n", dir / "to"));
    EXPECT_EQ(lastText(),
              "Cannot copy files.\nSome of the files do not exist, or they are too large to fit on the "
              "disk.\n(the disk size is 600000000 bytes)\n'" +
                  dir / "none" + "' does not exist.");
    EXPECT_EQ(asked.size(), 1U);
    EXPECT_EQ(read("to/a"), "old");
}

TEST_F(ShipCopies, MoreThanTheLargestSizeBlocksTheFolder) {
    const std::string a = make("files/a", ""), b = make("files/b", "");
    std::filesystem::resize_file(a, 300'000'000);
    std::filesystem::resize_file(b, 300'000'001);
    EXPECT_FALSE(COPYTOFOLDER(owner, a + "\n" + b + "\n", dir / "to"));
    EXPECT_NE(lastText().find("(the disk size is 600000000 bytes)"), std::string::npos) << lastText();
}

TEST_F(ShipCopies, FilesThatCannotBeCopiedAreListed) {
    const std::string files = file("a", 1) + file("b", 1);
    EXPECT_FALSE(COPYTOFOLDER(owner, files, dir / "none"));
    EXPECT_EQ(lastText(),
              "The following file(s) could not be copied:\n\n\t" + dir / "files/a" + "\n\t" +
                  dir / "files/b" + "\n\nThe file(s) could not be found, or the destination...\n'" +
                  dir / "none" +
                  "' could not be written: The file or its folder does not exist.\nChoose a folder "
                  "that is there, and try again.");
}

TEST_F(ShipCopies, AQuoteInANameIsNoReasonToFail) {
    folder("to/a \"b\"");
    answers = {"OK"};
    EXPECT_TRUE(COPYTOFOLDER(owner, file("say \"hi\".txt", 2), dir / "to/a \"b\"")) << lastText();
    EXPECT_EQ(listing("to/a \"b\""), "say \"hi\".txt\t2\n");
}

// ---- zip files ----

TEST_F(ShipCopies, AZipFileHoldsEveryFileWithoutItsFolder) {
    answers = {dir / "to/my zip.zip", "OK"};
    EXPECT_TRUE(COPYTOZIP(owner, file("a b.txt", 3) + file("c'd", 0) + file("-e", 5), ""));
    ASSERT_EQ(asked.size(), 2U);
    EXPECT_EQ(asked[0].kind, platform::Question::Kind::SaveFile);
    EXPECT_EQ(asked[0].value, dir / "out.zip");
    EXPECT_EQ(lastText(), "Successfully zipped 3 file(s) to '" + dir / "to/my zip.zip" + "'.");
    EXPECT_EQ(std::filesystem::is_empty(dir / "to"), false);
    EXPECT_EQ(listing("to").substr(0, 11), "my zip.zip\t") << listing("to");
    EXPECT_EQ(STRLINES(listing("to")), 1);
    EXPECT_TRUE(ISNAMEINLIST(read("unzip.err"), "c'd", 0)) << read("unzip.err");
}

TEST_F(ShipCopies, NamesOfOtherScriptsAreFoundInTheListing) {
    answers = {dir / "to/a.zip", "OK"};
    EXPECT_TRUE(COPYTOZIP(owner, file("\xC3\xA4\xE2\x82\xAC.txt", 3), "")) << read("unzip.err") << lastText();
}

TEST_F(ShipCopies, ASecondZipReplacesTheFirst) {
    answers = {dir / "to/a", "OK"};
    EXPECT_TRUE(COPYTOZIP(owner, file("first", 3), dir / "x.zip"));
    EXPECT_EQ(asked[0].value, dir / "x.zip");
    answers = {dir / "to/a.zip", "OK"};
    EXPECT_TRUE(COPYTOZIP(owner, file("second", 3), dir / "x.zip"));
    EXPECT_FALSE(ISNAMEINLIST(read("unzip.err"), "first", 3)) << read("unzip.err");
    EXPECT_TRUE(ISNAMEINLIST(read("unzip.err"), "second", 3));
    EXPECT_EQ(STRLINES(listing("to")), 1) << listing("to");
}

TEST_F(ShipCopies, TheZipProgramIsAskedForFirstThenUnzip) {
    const Variable path("PATH", dir / "none");
    const std::string missing = dir / "none\n";
    EXPECT_FALSE(COPYTOZIP(owner, missing, ""));
    EXPECT_EQ(lastText(),
              "This command requires the 'zip' program to compress the files.\nHowever the zip program '" +
                  dir / "program/zip.exe" + "' does not exist.");
    tool("zip", "exit 0");
    EXPECT_FALSE(COPYTOZIP(owner, missing, ""));
    EXPECT_EQ(lastText(),
              "This command requires the 'unzip' program to test the zipped files.\nHowever the unzip "
              "program '" +
                  dir / "program/unzip.exe" + "' does not exist.");
    tool("unzip.exe", "exit 0");
    EXPECT_FALSE(COPYTOZIP(owner, missing, ""));
    EXPECT_EQ(lastText(),
              "Cannot copy files.\nSome of the files do not exist, or they are too large to fit in the zip "
              "file.\n(the maximum zip file size is 600000000 bytes)\n'" +
                  dir / "none" + "' does not exist.");
    EXPECT_EQ(asked.size(), 3U);
}

TEST_F(ShipCopies, AZipThatFailsIsToldAndTheOldOneStays) {
    make("to/a.zip", "the old one");
    tool("zip", "echo half > \"$1\"; exit 3");
    answers = {dir / "to/a.zip", "OK"};
    EXPECT_FALSE(COPYTOZIP(owner, file("a", 1) + file("b", 2), ""));
    EXPECT_EQ(lastText(),
              "The following file(s) could not be zipped:\n\n\t" + dir / "files/a" + "\n\t" +
                  dir / "files/b" + "\n\nThe file(s) could not be found, or the destination...\n'" +
                  dir / "to/a.zip" + "' could not be written.\nChoose another folder, or try again.");
    EXPECT_EQ(read("to/a.zip"), "the old one");
    EXPECT_EQ(STRLINES(listing("to")), 1) << listing("to");
}

TEST_F(ShipCopies, NothingOfTheWorkIsThereAnyMoreWhenItIsToldWhatCameOfIt) {
    int boxes = 0;
    meanwhile = [&] {
        ++boxes;
        for (const auto& entry : std::filesystem::directory_iterator(dir / "to"))
            EXPECT_EQ(entry.path().filename(), "a.zip");
    };
    answers = {dir / "to/a.zip", "OK"};
    EXPECT_TRUE(COPYTOZIP(owner, file("a", 1), ""));
    std::filesystem::remove(dir / "to/a.zip");
    tool("zip", "echo half > \"$1\"; exit 3");
    answers = {dir / "to/a.zip", "OK"};
    EXPECT_FALSE(COPYTOZIP(owner, file("a", 1), ""));
    EXPECT_EQ(boxes, 4);
}

TEST_F(ShipCopies, TheZipProgramGetsACallForEachFile) {
    tool("zip", "echo \"$*\" >> " + dir / "calls");
    tool("unzip", "echo \"$*\" >> " + dir / "calls");
    answers = {dir / "to/a.zip", "OK"};
    EXPECT_FALSE(COPYTOZIP(owner, file("a b", 1) + file("c", 2), ""));
    const std::string made = dir / "to/.a-1.work/made.zip";
    const std::string look = "-Z -s --t --h " + made + "\n";
    EXPECT_EQ(read("calls"), made + " -j -9 " + dir / "files/a b" + "\n" + made + " -j -9 " +
                                 dir / "files/c" + "\n" + look + look)
        << "what is missing is looked for twice";
    EXPECT_EQ(read("unzip.err"), "");
}

TEST_F(ShipCopies, AnOldListingIsNotTakenForTheNewOne) {
    make("unzip.err", "-rw-r--r--  3.0 unx        1 tx defX 26-Nov-22 16:33 a\n");
    tool("unzip", "exit 1");
    answers = {dir / "to/a.zip", "OK"};
    EXPECT_FALSE(COPYTOZIP(owner, file("a", 1), ""));
    EXPECT_EQ(listing("to"), "");
}

TEST_F(ShipCopies, WithoutAChosenFileNothingIsZipped) {
    answers = {""};
    EXPECT_FALSE(COPYTOZIP(owner, file("a", 1), ""));
    EXPECT_EQ(asked.size(), 1U);
}

// ---- installers ----

class ShipInstallers : public ShipCopies {
protected:
    bool run(const std::string& files) {
        return COPYTOINSTALLER(owner, "Ann", "(c)", "Product", "Counts", "1.2", "1 2 0 0", "", files,
                               dir / "files/prog.cls");
    }
};

TEST_F(ShipInstallers, TheProgramIsAskedForThenTheFiles) {
    EXPECT_FALSE(run(dir / "none\n"));
    EXPECT_EQ(lastText(),
              "This command requires the 'installer' program to create the installer.\nHowever the "
              "installer program '" +
                  dir / "program/iscc.exe" + "' does not exist.");
    tool("iscc.exe", "exit 0");
    EXPECT_FALSE(run(dir / "none\n"));
    EXPECT_EQ(lastText(),
              "Cannot copy files.\nSome of the files do not exist, or they are too large to fit in the "
              "installer.\n(the maximum size of the files to be installed is 600000000 bytes)\n'" +
                  dir / "none" + "' does not exist.");
    EXPECT_EQ(asked.size(), 2U);
}

TEST_F(ShipInstallers, TheCompilerGetsTheScriptAndMakesTheFileBesideTheProgram) {
    tool("iscc.exe", "for a in \"$@\"; do echo \"$a\" >> " + dir / "calls" + "; done; echo made > " +
                         dir / "files/prog-install.exe");
    answers = {"Close"};
    EXPECT_TRUE(run(file("prog.exe", 3) + file("an.ICO", 1)));
    EXPECT_EQ(read("calls"), dir / "files/prog-install.iss" + "\n/O" + dir / "files" + "\n/Fprog-install\n");
    EXPECT_EQ(lastText(), "Created '" + dir / "files/prog-install.exe" + "'");
    EXPECT_EQ(asked.back().buttons, (std::vector<std::string>{"Close", "Show Script"}));
    EXPECT_NE(read("files/prog-install.iss")
                  .find("Source:\"" + dir / "files/an.ICO" +
                        "\"; DestDir:\"{app}\\\"; DestName:\"mainicon.ico\";\n"),
              std::string::npos)
        << "the icon among the files";
}

TEST_F(ShipInstallers, AScriptThatCannotBeWrittenIsToldAndNothingIsCompiled) {
    std::filesystem::create_directory(dir / "files/prog-install.iss");
    tool("iscc.exe", "echo made > " + dir / "files/prog-install.exe");
    answers = {"Close"};
    EXPECT_FALSE(run(file("prog.exe", 3)));
    EXPECT_EQ(ErrorCell(), 0) << "nobody else is to tell it again";
    ASSERT_EQ(asked.size(), 1U);
    EXPECT_EQ(lastText(), "Could not create '" + dir / "files/prog-install.exe" + "'\n\nThe script '" +
                              dir / "files/prog-install.iss" +
                              "' could not be written: There is a folder of that name.\nRename that folder, "
                              "and try again.");
    EXPECT_EQ(asked.back().buttons, (std::vector<std::string>{"Close", "Show Script"}));
    EXPECT_EQ(read("files/prog-install.exe"), "");
}

TEST_F(ShipInstallers, WithoutANewFileItWasNotCreatedAndTheOldOneStays) {
    make("files/prog-install.exe", "the old one");
    tool("iscc.exe", "echo 'x.iss(3) : error : something'; exit 0");
    answers = {"Close"};
    EXPECT_FALSE(run(file("prog.exe", 3)));
    EXPECT_EQ(lastText(),
              "Could not create '" + dir / "files/prog-install.exe" + "'\n\nx.iss(3) : error : something");
    EXPECT_EQ(asked.back().buttons, (std::vector<std::string>{"Close", "Show Script"}));
    EXPECT_EQ(read("files/prog-install.exe"), "the old one");
    EXPECT_EQ(STRLINES(listing("files")), 3) << "no messages beside: " << listing("files");
}

// ---- Debian packages ----

class ShipDebs : public ShipCopies {
protected:
    const DebFields fields{"prog", "1.0", "Ann Bell <ann@example.org>", "says hello", ""};
    std::string files;

    void SetUp() override {
        ShipCopies::SetUp();
        std::filesystem::copy_file("/bin/true", dir / "files/prog.exe");  // linked to the C library alone
        files = dir / "files/prog.exe" + "\n" + file("a \"b\".txt", 3);
        make("to/prog.deb", "the old one");
    }
    bool run() {
        return COPYTODEB(owner, fields, "(c) Ann", "", files, dir / "files/prog.exe",
                         dir / "to/proposed.deb");
    }
    // Nothing but what was there before the command.
    void expectOldOne() {
        EXPECT_EQ(read("to/prog.deb"), "the old one");
        EXPECT_EQ(std::distance(std::filesystem::directory_iterator(dir / "to"), {}), 1);
    }
};

TEST_F(ShipDebs, ThePackageTakesTheChosenPlaceAndTellsWhatItNeeds) {
    answers = {dir / "to/prog", "OK"};
    ASSERT_TRUE(run()) << lastText();
    EXPECT_EQ(asked[0].kind, platform::Question::Kind::SaveFile);
    EXPECT_EQ(asked[0].value, dir / "to/proposed.deb");
    EXPECT_TRUE(lastText().starts_with("Created '" + dir / "to/prog.deb" +
                                       "'\n\nIt needs these packages:\nlibc6 (>= "))
        << lastText();
    EXPECT_TRUE(read("to/prog.deb").starts_with("!<arch>\n"));
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(dir / "to"), {}), 1);
}

TEST_F(ShipDebs, EachToolIsAskedForThenTheFilesThenAName) {
    const Variable path("PATH", dir / "none");
    std::string order;
    files = dir / "none\n";
    for (const char* name : {"dpkg-deb", "dpkg-query", "dpkg", "objdump", "ldd", "md5sum", "gzip"}) {
        EXPECT_FALSE(run());
        EXPECT_TRUE(
            lastText().starts_with("This command requires the '" + std::string(name) + "' program to "))
            << lastText();
        EXPECT_TRUE(lastText().ends_with("\nHowever the " + std::string(name) + " program '" +
                                         dir / "program/" + name + "' does not exist."));
        tool(name, "exit 0");
    }
    EXPECT_FALSE(run());
    EXPECT_EQ(lastText(),
              "Cannot copy files.\nSome of the files do not exist, or they are too large to fit in the "
              "package.\n(the maximum size of the files to be packed is 600000000 bytes)\n'" +
                  dir / "none" + "' does not exist.");
    files = file("a", 1);
    answers = {""};
    EXPECT_FALSE(run());
    EXPECT_EQ(asked.size(), 9U);
    expectOldOne();
}

TEST_F(ShipDebs, AToolThatFailsIsToldWithWhatItWroteAndTheOldOneStays) {
    for (const char* name : {"gzip", "md5sum", "dpkg", "dpkg-deb"}) {
        tool(name, "echo that went wrong; exit 2");
        answers = {dir / "to/prog.deb", "OK"};
        EXPECT_FALSE(run());
        EXPECT_EQ(lastText(), "Could not create '" + dir / "to/prog.deb" + "'\n\nThe program '" + name +
                                  "' failed.\nthat went wrong");
        expectOldOne();
        std::filesystem::remove(dir / "program/" + name);
    }
}

TEST_F(ShipDebs, ALibraryThatIsMissingOrOfNoPackageIsTold) {
    tool("ldd", "echo 'libc.so.6 => not found'");
    answers = {dir / "to/prog.deb", "OK"};
    EXPECT_FALSE(run());
    EXPECT_EQ(lastText(), "Could not create '" + dir / "to/prog.deb" +
                              "'\n\nThe library 'libc.so.6' was not found on this machine.");
    tool("ldd", "echo 'libc.so.6 => /own/libc.so.6 (0x0)'");
    answers = {dir / "to/prog.deb", "OK"};
    EXPECT_FALSE(run());
    EXPECT_NE(lastText().find("The library '/own/libc.so.6' is of no package"), std::string::npos)
        << lastText();
    expectOldOne();
}

TEST_F(ShipDebs, AStopInAnyStepLeavesTheOldOneAndSaysNothing) {
    for (const char* name : {"objdump", "ldd", "dpkg-query", "gzip", "md5sum", "dpkg", "dpkg-deb"}) {
        tool(name, "sleep 20");
        platform::view().setIdle([] { platform::pressToolStop(); });
        answers = {dir / "to/prog.deb"};
        asked.clear();
        EXPECT_FALSE(run());
        EXPECT_EQ(asked.size(), 1U) << name << lastText();
        platform::view().setIdle({});
        expectOldOne();
        std::filesystem::remove(dir / "program/" + name);
    }
}

TEST_F(ShipDebs, APlaceThatCannotBeWrittenIsTold) {
    answers = {dir / "none/prog.deb", "OK"};
    EXPECT_FALSE(run());
    EXPECT_EQ(lastText(),
              "Could not create '" + dir / "none/prog.deb" + "'\n\n'" + dir / "none/prog.deb" +
                  "' could not be written: The file or its folder does not exist.\nChoose a folder "
                  "that is there, and try again.");
}

}  // namespace
}  // namespace tarn
