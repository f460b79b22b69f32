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

TEST_F(Idecore, EmptyPathsAreFilledAndChosenOnesKept) {
    for (const char* key : {"Edit2", "Edit3", "Edit5"}) PROFILESTRPUT(ini(), "PathsOptionsDlg", key, "");
    PROFILESTRPUT(ini(), "PathsOptionsDlg", "Edit4", "/mine");
    PREPARESETTINGS();
    EXPECT_EQ(GETCOMPILERDIR(), dir);
    EXPECT_EQ(GETEXAMPLEDIR(), "/mine/");
}

}  // namespace
}  // namespace tarn
