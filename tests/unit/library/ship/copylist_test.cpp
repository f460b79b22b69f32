// SPDX-License-Identifier: Apache-2.0
//
// Lists of files that are to be copied: sizes and disks, lines, copies; and the script of an installer.
#include "library/ship/copylist.h"
#include "library/ship/issscript.h"
#include "library/system/system.h"
#include "os/files.h"
#include "support/tempfolder.h"

#include <gtest/gtest.h>

namespace tarn {
namespace {

class CopyLists : public ::testing::Test {
protected:
    TempFolder dir;
    void SetUp() override { ClearError(); }
    void TearDown() override { EXPECT_EQ(ErrorCell(), 0) << ErrorDetails(); }
    std::string make(const std::string& name, std::size_t size) {
        EXPECT_TRUE(os::saveFile(dir / name, std::string(size, 'x'), os::Durability::Unsynced).ok());
        return dir / name;
    }
    // Size, rounded size and disk of each file.
    static std::string placed(const CopyList& list) {
        std::string text = list.canBeCopied() ? "" : "none";
        for (const CopyFile& file : list.files)
            text += std::to_string(file.Size) + " " + std::to_string(file.Rounded) + " " +
                    std::to_string(file.Disk) + ";";
        return text;
    }
};

TEST_F(CopyLists, FilesAreRoundedUpAndPlacedOnTheCurrentDiskOrTheNext) {
    const std::string files = make("a", 0) + "\n" + make("b", 1) + "\n" + make("c", 512) + "\n" +
                              make("d", 513) + "\n" + make("e", 10) + "\n";
    EXPECT_EQ(placed(GETSEGMENTEDFILELIST(files, 1024, 512)), "0 0 1;1 512 1;512 512 1;513 1024 2;10 512 3;");
    EXPECT_EQ(placed(GETSEGMENTEDFILELIST(files, 1024, 1)), "0 0 1;1 1 1;512 512 1;513 513 2;10 10 2;");
    EXPECT_EQ(placed(GETSEGMENTEDFILELIST(files, 1024, 0)), "0 0 1;1 1 1;512 512 1;513 513 2;10 10 2;");
    EXPECT_EQ(GETSEGMENTEDFILELIST(files, 1024, 512).disks(), 3);
    EXPECT_EQ(GETSEGMENTEDFILELIST(files, 1024, 512).roundedSize(1), 1024);
    EXPECT_EQ(GETSEGMENTEDFILELIST(files, 1024, 512).paths(2), dir / "d\n");
}

TEST_F(CopyLists, AFileAsLargeAsADiskFitsAndALargerOneMakesTheListEmpty) {
    const std::string small = make("a", 1), large = make("b", 1024);
    EXPECT_EQ(placed(GETSEGMENTEDFILELIST(small + "\n" + large, 1024, 512)), "1 512 1;1024 1024 2;");
    EXPECT_EQ(placed(GETSEGMENTEDFILELIST(small + "\n" + large, 1023, 1)), "none");
    EXPECT_EQ(GETSEGMENTEDFILELIST(large, 1023, 1).lowerBound, -1);
    EXPECT_TRUE(GETSEGMENTEDFILELIST(large, 1023, 1).files.empty());
}

TEST_F(CopyLists, AMissingFileOrAFolderMakesTheListEmpty) {
    const std::string file = make("a", 1);
    EXPECT_EQ(placed(GETSEGMENTEDFILELIST(file + "\n" + dir / "none" + "\n", 1024, 512)), "none");
    EXPECT_EQ(placed(GETSEGMENTEDFILELIST(file + "\n" + dir.path() + "\n", 1024, 512)), "none");
    EXPECT_EQ(placed(GETSEGMENTEDFILELIST("", 1024, 512)), "");
    EXPECT_EQ(GETSEGMENTEDFILELIST("", 1024, 512).disks(), 0);
}

TEST_F(CopyLists, APathEndsAtTheFirstTab) {
    const std::string file = make("a b.txt", 3);
    EXPECT_EQ(placed(GETSEGMENTEDFILELIST(file + "\t3 byte(s)\tmore\r\n\n", 1024, 1)), "3 3 1;");
    EXPECT_EQ(COPYPATH("/a b\tc"), "/a b");
    EXPECT_EQ(COPYPATH("/a b\r"), "/a b");
    EXPECT_EQ(COPYPATH("\t/a"), "");
}

TEST_F(CopyLists, AFileThatIsListedTwiceCountsOnceWhereItStandsFirst) {
    const std::string a = make("a", 3), b = make("b", 1), twice = a + "\tone\n" + b + "\n\n" + a + "\ttwo\n";
    EXPECT_EQ(placed(GETSEGMENTEDFILELIST(twice, 1024, 1)), "3 3 1;1 1 1;");
    EXPECT_EQ(FILELISTONCE(twice), a + "\tone\n" + b + "\n");
    EXPECT_EQ(FILELISTLINES(twice), "a\t3\nb\t1\n");
    EXPECT_EQ(GETEXTNFILELIST("/x.exe\n/x.exe\n", ".exe"), "/x.exe\n");
    EXPECT_EQ(SAMENAMEDFILES(twice), "");
    std::filesystem::create_directory(dir / "in");
    std::filesystem::create_symlink(dir.path(), dir / "in/up");
    const std::string more = a + "\n" + dir / "./a" + "\n" + dir / "in/up/a" + "\n" + dir / "in/../a" + "\n";
    EXPECT_EQ(placed(GETSEGMENTEDFILELIST(more, 1024, 1)), "3 3 1;") << "by other paths";
    EXPECT_EQ(FILECOPYLIST(more, dir / "in"), "");
    std::filesystem::create_hard_link(a, dir / "c");
    EXPECT_EQ(placed(GETSEGMENTEDFILELIST(a + "\n" + dir / "c", 1024, 1)), "3 3 1;3 3 1;") << "two names";
    EXPECT_EQ(FILELISTONCE("/none\n/none\n/else/none\n"), "/none\n/else/none\n");
    EXPECT_EQ(FILELISTONCE(""), "");
}

TEST_F(CopyLists, PluralsAndSortedLines) {
    EXPECT_EQ(STRPLURAL(1), "");
    for (const int count : {0, 2, -1}) EXPECT_EQ(STRPLURAL(count), "s") << count;
    EXPECT_EQ(STRSORT("b\na\nc"), "a\nb\nc\n");
    EXPECT_EQ(STRSORT(""), "");
    EXPECT_EQ(STRSORT("b\nB\n\nb\n"), "\nB\nb\nb\n");
}

TEST_F(CopyLists, FilesOfAnExtensionAreFoundInAnyCase) {
    EXPECT_EQ(GETEXTNFILELIST("/a.exe\tx\n/b.EXE\n/c.exe.txt\n/d\n", ".exe"), "/a.exe\n/b.EXE\n");
    EXPECT_EQ(GETEXTNFILELIST("", ".exe"), "");
}

TEST_F(CopyLists, ANameIsInAListingWithItsSizeAndAsAWhole) {
    const std::string text = "-rw-r--r--  3.0 unx     1234 tx defX 26-Nov-22 16:33 a b.txt\n"
                             "-rwxr-xr-x  3.0 unx        0 b- stor 26-Nov-22 16:33 empty";
    EXPECT_TRUE(ISNAMEINLIST(text, "a b.txt", 1234));
    EXPECT_TRUE(ISNAMEINLIST(text, "empty", 0));
    EXPECT_FALSE(ISNAMEINLIST(text, "a b.txt", 1235)) << "another size";
    EXPECT_FALSE(ISNAMEINLIST(text, "b.txt", 1234)) << "the end of a name";
    EXPECT_FALSE(ISNAMEINLIST(text, "a b", 1234)) << "without its extension";
    EXPECT_FALSE(ISNAMEINLIST("", "a", 0));
    EXPECT_FALSE(ISNAMEINLIST("unzip:  cannot find or open x.zip", "x", 0));
}

TEST_F(CopyLists, AFolderIsListedWithSizesByPattern) {
    make("a.txt", 1), make("b", 2), make(".c", 3);
    std::filesystem::create_directory(dir / "folder");
    EXPECT_EQ(GETDISKFILELIST(dir.path(), "*.*"), ".c\t3\na.txt\t1\nb\t2\n");
    EXPECT_EQ(GETDISKFILELIST(dir.path(), "*.txt"), "a.txt\t1\n");
    EXPECT_EQ(GETDISKFILELIST(dir / "none", "*.*"), "");
    EXPECT_EQ(FILELISTLINES(dir / "b\tx\n" + dir / "none\n"), "b\t2\nnone\t-1\n");
}

TEST_F(CopyLists, CopiesTellWhatWasNotCopiedAndGoOn) {
    const std::string a = make("a", 1), c = make("c", 3);
    std::filesystem::create_directory(dir / "to");
    EXPECT_EQ(FILECOPYLIST(a + "\n" + dir / "none" + "\n" + c + "\n", dir / "to"), dir / "none\n");
    EXPECT_EQ(GETDISKFILELIST(dir / "to", "*.*"), "a\t1\nc\t3\n");
    EXPECT_EQ(FILECOPYLIST(a + "\n", dir / "nowhere"), a + "\n");
}

TEST_F(CopyLists, NamesThatNoClassMayHaveAreCopiedToo) {
    const std::string folder = dir / "to \"them\"";
    std::filesystem::create_directory(folder);
    for (const char* name : {"say \"hi\".txt", "a|b", "what?", "*", "<x>", "\xff\xfe"}) {
        const std::string file = make(name, 4);
        EXPECT_EQ(FILECOPYLIST(file + "\n", folder), "") << name;
        EXPECT_EQ(os::sizeOf(folder + "/" + name), 4) << name;
        EXPECT_EQ(FILECOPYLIST(file + "\n", folder), "") << name << " again";
        EXPECT_EQ(FILECOPYLIST(file + "\n", dir.path()), "") << name << " onto itself";
    }
}

TEST_F(CopyLists, ASecondFileOfANameIsNotCopied) {
    std::filesystem::create_directory(dir / "sub");
    std::filesystem::create_directory(dir / "to");
    const std::string first = make("a", 1), second = make("sub/a", 2);
    EXPECT_EQ(FILECOPYLIST(first + "\n" + second + "\n", dir / "to"), second + "\n");
    EXPECT_EQ(GETDISKFILELIST(dir / "to", "*.*"), "a\t1\n");
}

TEST_F(CopyLists, AStoppedCopyTellsTheRest) {
    const std::string a = make("a", 1), b = make("b", 2);
    std::filesystem::create_directory(dir / "to");
    int asked = 0;
    const auto go = [](void* context, std::int64_t done, std::int64_t total) {
        EXPECT_EQ(total, 2);
        ++*static_cast<int*>(context);
        return done < 1;
    };
    EXPECT_EQ(FILECOPYLIST(a + "\n" + b + "\n", dir / "to", go, &asked), b + "\n");
    EXPECT_EQ(asked, 2);
    EXPECT_EQ(GETDISKFILELIST(dir / "to", "*.*"), "a\t1\n");
}

TEST_F(CopyLists, DeletingTellsWhatIsStillThere) {
    const std::string a = make("a", 1);
    EXPECT_EQ(FILEDELETELIST(a + "\n" + dir / "none" + "\n"), "");
    EXPECT_EQ(FileSize(a), -1);
}

TEST_F(CopyLists, TheCommandProcessorIsThatOfItsVariable) {
    const Variable processor("COMSPEC", "/bin/sh");
    EXPECT_EQ(GETCOMMANDPROCESSOR(), "/bin/sh");
    const Variable none("COMSPEC", nullptr);
    EXPECT_EQ(GETCOMMANDPROCESSOR(), "");
}

// ---- the script ----

constexpr const char* Head =
    "[Setup]\nAppName=prog\nAppVerName=Counts words\nAppId=prog\nDefaultDirName={pf}\\prog\n"
    "DefaultGroupName=prog\nAppPublisher=Ann & Co.\nAppCopyright=(c) Ann\nAppVersion=1.3\n"
    "WizardImageFile=compiler:wizmodernimage-is.bmp\n"
    "WizardSmallImageFile=compiler:wizmodernsmallimage-is.bmp\nCompression=lzma/normal\n\n"
    "[Dirs]\nName:\"{app}\"; Permissions:authusers-modify;\n\n"
    "[Languages]\nName:\"english\"; MessagesFile:\"compiler:Default.isl\"\n\n[Icons]\n";

TEST(InstallerScriptText, HasItsSectionsWithAnIcon) {
    EXPECT_EQ(
        CREATEISSSCRIPT("Ann & Co.", "(c) Ann", "Product", "Counts words", "1.3", "1 3 2207 0",
                        "/p/prog.exe\t12 byte(s)\n/p/prog.rcx\n", "/p/prog.cls", "/p/i.ico"),
        std::string(Head) +
            "Name:\"{group}\\prog\"; Filename:\"{app}\\prog.exe\"; WorkingDir:\"{app}\"; "
            "IconFilename:\"{app}\\mainicon.ico\";\n"
            "Name:\"{group}\\Uninstall\"; Filename:\"{uninstallexe}\";\n"
            "Name:\"{commondesktop}\\prog\"; Filename:\"{app}\\prog.exe\"; WorkingDir:\"{app}\"; "
            "IconFilename:\"{app}\\mainicon.ico\";\n\n[Files]\n"
            "Source:\"/p/i.ico\"; DestDir:\"{app}\\\"; DestName:\"mainicon.ico\";\n"
            "Source:\"/p/prog.exe\"; DestDir:\"{app}\\\";\nSource:\"/p/prog.rcx\"; DestDir:\"{app}\\\";\n");
}

TEST(InstallerScriptText, LeavesOutTheLinesThatNeedAnIcon) {
    EXPECT_EQ(CREATEISSSCRIPT("Ann & Co.", "(c) Ann", "Product", "Counts words", "", "1 3 2207 0",
                              "/p/prog.exe", "/p/prog.exe", ""),
              std::string(Head) +
                  "Name:\"{group}\\prog\"; Filename:\"{app}\\prog.exe\"; WorkingDir:\"{app}\";\n"
                  "Name:\"{group}\\Uninstall\"; Filename:\"{uninstallexe}\";\n\n[Files]\n"
                  "Source:\"/p/prog.exe\"; DestDir:\"{app}\\\";\n");
}

TEST(InstallerScriptText, QuotesInPathsStandTwice) {
    const std::string text = CREATEISSSCRIPT("", "", "", "", "", "", "/p/a \"b\".exe", "/p/a \"b\".exe", "");
    EXPECT_NE(text.find("Source:\"/p/a \"\"b\"\".exe\"; DestDir"), std::string::npos) << text;
    EXPECT_NE(text.find("Name:\"{group}\\a \"\"b\"\"\"; Filename:\"{app}\\a \"\"b\"\".exe\";"),
              std::string::npos)
        << text;
    EXPECT_NE(text.find("AppName=a \"b\"\n"), std::string::npos) << text;
}

}  // namespace
}  // namespace tarn
