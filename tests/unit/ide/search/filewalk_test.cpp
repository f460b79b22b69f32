// SPDX-License-Identifier: GPL-3.0-or-later
//
// Which files are searched: by their names, through links, each once, and what is passed over.
#include "ide/search/filewalk.h"

#include "ide/search/filechoices.h"
#include "ide/search/findfiles.h"
#include "support/ide_fixture.h"

#include <sys/stat.h>

namespace tarn {
namespace {

TEST(FilePatterns, FitNamesInAnyCase) {
    struct Case {
        const char *name, *patterns;
        bool fits;
    };
    for (const Case& c : {Case{"a.cls", "*.cls", true},
                          {"A.CLS", "*.cls", true},
                          {"a.cls.bak", "*.cls", false},
                          {"a.rc", "*.cls;*.rc", true},
                          {"a.rc", "*.cls *.rc", true},
                          {"a.txt", "*.cls; *.rc", false},
                          {"a.txt", "", true},
                          {"a.txt", " ; ", true},
                          {"ab.txt", "a?.*", true},
                          {"a.txt", "a?.*", false},
                          {"aXbXc", "a*b*c", true},
                          {"abc", "abc", true},
                          {"abcd", "abc", false},
                          {"", "*", true},
                          {"a", "**", true},
                          {"aaaaaaaaaaaaaaaaaaaaaaaaaaaab", "*a*a*a*a*a*a*a*a*a*c", false}})
        EXPECT_EQ(FITSPATTERNS(c.name, c.patterns), c.fits) << c.name << " " << c.patterns;
}

class FileWalk : public IdeTest {
protected:
    void SetUp() override {
        IdeTest::SetUp();
        loadWindows();
        for (const char* folder : {"p", "p/in", "p/in/deep", "q"})
            std::filesystem::create_directory(dir + folder);
    }
    // The files found below these folders, without the common beginning.
    std::string found(std::vector<std::string> folders, const char* patterns = "*.cls",
                      bool subfolders = true) {
        for (std::string& folder : folders) folder = dir + folder;
        LongWork work("");
        const FoundFiles files = FILESIN(folders, patterns, subfolders, work);
        unreadable = files.unreadableFolders;
        std::string names;
        for (const std::string& file : files.files) names += file.substr(dir.size()) + " ";
        return names;
    }
    int unreadable = 0;
};

TEST_F(FileWalk, GoesThroughFoldersByName) {
    for (const char* name : {"p/b.cls", "p/a.cls", "p/in/c.cls", "p/in/deep/d.cls", "p/a.txt"})
        write(name, "");
    EXPECT_EQ(found({"p"}), "p/a.cls p/b.cls p/in/c.cls p/in/deep/d.cls ");
    EXPECT_EQ(found({"p/"}, "*", false), "p/a.cls p/a.txt p/b.cls ");
    EXPECT_EQ(found({"p/in", "p"}), "p/in/c.cls p/in/deep/d.cls p/a.cls p/b.cls ");  // each once
    EXPECT_EQ(found({}), "");
}

TEST_F(FileWalk, FollowsLinksButNotRound) {
    write("p/a.cls", "");
    write("q/b.cls", "");
    std::filesystem::create_directory_symlink(dir + "p", dir + "p/in/round");
    std::filesystem::create_directory_symlink(dir + "q", dir + "p/in/other");
    std::filesystem::create_symlink(dir + "p/a.cls", dir + "p/same.cls");
    std::filesystem::create_symlink(dir + "gone", dir + "p/gone.cls");
    std::filesystem::create_symlink(dir + "p/self.cls", dir + "p/self.cls");
    EXPECT_EQ(found({"p"}), "p/a.cls p/in/other/b.cls ");
    EXPECT_EQ(unreadable, 0);
}

TEST_F(FileWalk, PassesOverPipes) {
    ASSERT_EQ(mkfifo((dir + "p/pipe.cls").c_str(), 0600), 0);
    EXPECT_EQ(found({"p"}), "");
}

TEST_F(FileWalk, CountsFoldersThatCannotBeRead) {
    EXPECT_EQ(found({"none", "p"}), "");
    EXPECT_EQ(unreadable, 1);
}

TEST_F(FileWalk, CountsWhatItPassesOver) {
    SkippedFiles skipped;
    std::string text;
    EXPECT_TRUE(READTEXTFILE(write("p/a", "text\xFF"), text, skipped));
    EXPECT_EQ(text, "text\xFF");
    EXPECT_TRUE(READTEXTFILE(write("p/empty", ""), text, skipped));
    EXPECT_EQ(skipped.lines(), "");
    EXPECT_FALSE(READTEXTFILE(write("p/b", std::string_view("te\0xt", 5)), text, skipped));
    EXPECT_FALSE(READTEXTFILE(write("p/c", std::string(4'000'001, ' ')), text, skipped));
    EXPECT_TRUE(READTEXTFILE(write("p/d", std::string(4'000'000, ' ')), text, skipped));
    EXPECT_FALSE(READTEXTFILE(dir + "p/none", text, skipped));
    EXPECT_FALSE(READTEXTFILE(dir + "p", text, skipped));
    EXPECT_EQ(skipped.lines(), "1 file was passed over because it held no text.\n"
                               "1 file was passed over because it had no room in the Code window.\n"
                               "2 files were passed over because they could not be read.\n");
}

TEST_F(FileWalk, ManyFoldersInFoldersComeToAnEnd) {
    std::string path = "p";
    for (int n = 0; n < 250; ++n) std::filesystem::create_directory(dir + (path += "/d"));
    write("p/a.cls", "");
    EXPECT_EQ(found({"p"}), "p/a.cls ");
}

// ---- the lines of hits ----

class FindInFiles : public FileWalk {
protected:
    std::string find(const char* text, bool word = false, bool regex = false) {
        FileChoices choices;
        choices.text = text;
        choices.matchWord = word;
        choices.regex = regex;
        choices.folders = {dir + "p"};
        choices.patterns = "*.cls";
        std::string lines = FINDINFILES(choices);
        return STRREPLACE(lines, dir, "");
    }
};

TEST_F(FindInFiles, AreMessagesThatTellPlaceAndLine) {
    write("p/a.cls", "one\n\tTwo two\r\nthree two");
    EXPECT_EQ(find("two"),
              "p/a.cls(2): 2: Two two \np/a.cls(3): 7: three two\n3 hits in 1 file; 1 file was searched.\n");
    EXPECT_EQ(find("none"), "0 hits in 0 files; 1 file was searched.\n");
    EXPECT_EQ(find("^t", false, true), "p/a.cls(3): 1: three two\n1 hit in 1 file; 1 file was searched.\n");
    EXPECT_EQ(find("hre", true), "0 hits in 0 files; 1 file was searched.\n");
}

TEST_F(FindInFiles, LongLinesShowWhatStandsAroundTheHit) {
    write("p/a.cls",
          std::string(5000, '.') + "hit" + std::string(5000, ',') + "\n" + std::string(300, ' ') + "hit\n");
    const std::string lines = find("hit");
    EXPECT_NE(
        lines.find("p/a.cls(1): 5001: ..." + std::string(60, '.') + "hit" + std::string(137, ',') + "...\n"),
        std::string::npos)
        << lines;
    EXPECT_NE(lines.find("p/a.cls(2): 301: hit\n"), std::string::npos) << lines;
}

TEST_F(FindInFiles, TheListEndsSomewhere) {
    write("p/a.cls", STRREPLACE(std::string(12'000, 'x'), "x", "x\n"));
    const std::string lines = find("x");
    EXPECT_EQ(STRLINES(lines), 10'002);
    EXPECT_EQ(STRLINE(lines, 10'002), "There may be more: the list ends here.");
}

TEST_F(FindInFiles, SearchesTheTextOfTheCodeWindowWhereItIsChanged) {
    write("p/a.cls", "one\n");
    EDITWNDOPEN(SDIEdit, dir + "p/a.cls", false, 0);
    type("two\n");
    EXPECT_EQ(find("two"), "p/a.cls(2): 1: two\n1 hit in 1 file; 1 file was searched.\n");
}

TEST_F(FindInFiles, APatternThatNeedsTooMuchTimeIsTold) {
    write("p/a.cls", std::string(100'000, 'a') + "!");
    write("p/b.cls", "aaab!\n");
    EXPECT_EQ(find("(a+)+$|b", false, true), "p/b.cls(1): 4: aaab!\n1 hit in 1 file; 2 files were "
                                             "searched.\n'p/a.cls': The pattern needs too much time.\n");
}

TEST_F(FindInFiles, APatternThatNeedsTooMuchTimeInManyFilesIsGivenUp) {
    for (int n = 0; n < 9; ++n) write("p/" + STR(n) + ".cls", std::string(100'000, 'a') + "!");
    const std::string lines = find("(a+)+$", false, true);
    EXPECT_TRUE(lines.starts_with("0 hits in 0 files; 3 files were searched.\n")) << lines;
    EXPECT_TRUE(lines.ends_with("The search was given up there.\n")) << lines;
}

}  // namespace
}  // namespace tarn
