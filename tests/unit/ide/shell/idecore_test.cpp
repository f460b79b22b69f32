// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/ide_fixture.h"

namespace tarn {
namespace {

using Idecore = IdeTest;

TEST_F(Idecore, CommandLineFileGetsItsExtensionAndFolder) {
    std::filesystem::current_path(dir);
    const struct {
        std::vector<std::string> arguments;
        std::string file;
    } rows[] = {{{}, ""},
                {{"abc"}, dir + "abc.cls"},
                {{"abc.txt"}, dir + "abc.txt"},
                {{"/x/abc"}, "/x/abc.cls"},
                {{"sub/abc.rc"}, dir + "sub/abc.rc"},
                {{"\"with blank.cls\""}, dir + "with blank.cls"},
                {{"with", "blank.cls"}, dir + "with blank.cls"}};
    for (const auto& row : rows) {
        std::vector<std::string> all{dir + "ide"};
        all.insert(all.end(), row.arguments.begin(), row.arguments.end());
        std::vector<char*> pointers;
        for (std::string& argument : all) pointers.push_back(argument.data());
        os::setCommandLine(static_cast<int>(pointers.size()), pointers.data());
        EXPECT_EQ(GETCOMMANDLINEFILE(), row.file);
    }
}

TEST_F(Idecore, PathsComeWithASeparatorAndMayBeEmpty) {
    PROFILESTRPUT(ini(), "PathsOptionsDlg", "Edit1", "/a;/b/; ;/c");
    PROFILESTRPUT(ini(), "PathsOptionsDlg", "Edit3", "/tools");
    PROFILESTRPUT(ini(), "PathsOptionsDlg", "Edit4", "");
    EXPECT_EQ(GETINHERITEDPATHS(), "/a;/b/; ;/c");
    EXPECT_EQ(GETINHERITEDPATHSML(), "/a/\n/b/\n/c/\n");
    EXPECT_EQ(GETINHERITEDLIBPATH(), "/a");
    EXPECT_EQ(GETCOMPILERDIR(), "/tools/");
    EXPECT_EQ(GETEXAMPLEDIR(), "");
}

TEST_F(Idecore, HelpFileIsTheFirstTypeThatExists) {
    PROFILESTRPUT(ini(), "PathsOptionsDlg", "Edit2", dir);
    PROFILESTRPUT(ini(), "GenOptionsDlg", "HelpFileTypes", "QCH;htm,html");
    EXPECT_EQ(GETHELPFILE(), dir + "Tarnwick.qch");
    write("Tarnwick.html", "x");
    EXPECT_EQ(GETHELPFILE(), dir + "Tarnwick.html");
    write("Tarnwick.htm", "");
    EXPECT_EQ(GETHELPFILE(), dir + "Tarnwick.htm");
}

TEST_F(Idecore, HelpThatIsMissingIsToldWithWhatToDo) {
    PROFILESTRPUT(ini(), "PathsOptionsDlg", "Edit2", dir + "none/");
    PROFILESTRPUT(ini(), "GenOptionsDlg", "HelpFileTypes", "qch");
    const std::string told = "Help file '" + dir + "none/Tarnwick.qch' was empty or not found.\n\n";
    SHOWHELP("Help_Index");
    ASSERT_EQ(asked.size(), 1U);
    EXPECT_EQ(asked[0].title, "MultiHelp");
    EXPECT_EQ(asked[0].text, told +
                                 "Install the program again, or name the folder of the help at Help files in "
                                 "Tools-Options-Paths.");
    std::filesystem::create_directories(dir + "help");
    SHOWHELP("Help_Index");
    ASSERT_EQ(asked.size(), 2U);
    EXPECT_EQ(asked[1].text, told + "The help that came with the program lies in '" + dir +
                                 "help/': name this folder at Help files in Tools-Options-Paths.");
}

TEST_F(Idecore, ATopicIsTheCaptionOfItsDialog) {
    EXPECT_EQ(HELPTOPIC("Tools-Options-Paths"), "Tools_Options_Paths");
    EXPECT_EQ(HELPTOPIC("Edit-Undo (restore from backup)"), "Edit_Undo")
        << "without what stands in parentheses";
    EXPECT_EQ(HELPTOPIC("More Information"), "More Information");
    EXPECT_EQ(HELPTOPIC(""), "");
    EXPECT_EQ(HELPTOPIC("(a)"), "");
}

TEST_F(Idecore, EmptyPathsAreFilledAndChosenOnesKept) {
    for (const char* key : {"Edit2", "Edit3", "Edit5"}) PROFILESTRPUT(ini(), "PathsOptionsDlg", key, "");
    PROFILESTRPUT(ini(), "PathsOptionsDlg", "Edit4", "/mine");
    PREPARESETTINGS();
    EXPECT_EQ(GETCOMPILERDIR(), dir);
    EXPECT_EQ(GETEXAMPLEDIR(), "/mine/");
}

TEST_F(Idecore, WhereNoSettingsCanBeMadeThoseBesideTheProgramAreReadAndTheUserIsToldOnce) {
    namespace fs = std::filesystem;
    const std::string before = read(dir + "ide.ini");
    setenv("XDG_CONFIG_HOME", "/proc/nobody/can/write/here", 1);
    fs::permissions(dir + "ide.ini", fs::perms(0444));
    fs::permissions(dir, fs::perms(0555));
    if (!os::infoOf(dir).writable) {
        EXPECT_EQ(GETIDEINIFILE(), dir + "ide.ini");
        EXPECT_EQ(GETMAINCAPTIONSTR(), "Tarnwick Developer Studio v1.3");
        answers = {"OK", "OK"};
        PREPARESETTINGS();
        PROFILESTRPUT(GETIDEINIFILE(), "Main", "LastPath", "/");
        EXPECT_EQ(asked.size(), 1U);
        EXPECT_EQ(read(dir + "ide.ini"), before);
    }
    fs::permissions(dir, fs::perms(0755));
}

}  // namespace
}  // namespace tarn
