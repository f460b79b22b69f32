// SPDX-License-Identifier: GPL-3.0-or-later
//
// The lists of a program's files: what is told when there are none, and what becomes of a chosen line.
#include "ide/menus/progmenu.h"

#include "unit/ide/program/members/members_fixture.h"

namespace tarn {
namespace {

struct Command {
    void (*run)();
    std::string title, word, meaning, option;
};
const Command commands[] = {
    {DO_SHOW_INPUT, "Program-Show Input Files", "input",
     "(the input files are the source code files and\nresource files used when compiling the program)\n",
     "/fs"},
    {DO_SHOW_OUTPUT, "Program-Show Output Files", "output",
     "(the output files are the binary files and\nfiles that must be distributed to run the program)\n",
     "/ft"},
};

class ShowFiles : public MembersTest {
protected:
    void show(const Command& command, const std::string& row = {}) {
        answers = {row};
        run(command.run);
    }
};

TEST_F(ShowFiles, AListOfAllFilesComesAndTheChosenLineGoesToTheClipboard) {
    for (const Command& command : commands) {
        std::vector<std::string> files = {"main.cls"};
        for (int n = 1; n <= 50; ++n) files.push_back("c" + STR(n) + ".cls");
        for (const std::string& file : files)
            write("prog/" + file, file == "main.cls" ? MainClass : classText("C"));
        open(files);
        makeTool("case \"$1\" in " + command.option + ") cat \"" + dir + "deps\";; esac");
        SetText(clipboard, "old");
        show(command);
        ASSERT_EQ(asked.size(), 1U);
        EXPECT_EQ(asked[0].kind, platform::Question::Kind::List);
        EXPECT_EQ(asked[0].title, command.title);
        EXPECT_EQ(asked[0].text, "The program '" + mainFile + "'\nhas the following " + command.word +
                                     " files:\n" + command.meaning);
        EXPECT_EQ(asked[0].rows.size(), 51U);
        EXPECT_EQ(GetText(clipboard), "old");
        show(command, dir + "prog/c50.cls");
        EXPECT_EQ(GetText(clipboard), dir + "prog/c50.cls");
    }
}

TEST_F(ShowFiles, AnErrorComesBeforeAFileThatIsNoMainClass) {
    EDITWNDOPEN(SDIEdit, dir + "prog/shapes.cls", false, 0);
    for (const Command& command : commands) {
        makeTool("echo no such class; exit 1");
        show(command);
        EXPECT_EQ(told(), std::vector<std::string>{"It is not possible to view the list of " + command.word +
                                                   " files.\nno such class"});
        list({"shapes.cls"});
        show(command);
        EXPECT_EQ(told(), std::vector<std::string>{"File '" + dir +
                                                   "prog/shapes.cls' is not a main class.\nIt is only "
                                                   "possible to view the " +
                                                   command.word + " files of a main class."});
    }
}

TEST_F(ShowFiles, WithoutAProgramThereIsNothingToList) {
    for (const Command& command : commands) {
        show(command);
        EXPECT_EQ(told(), std::vector<std::string>{"It is not possible to view the list of " + command.word +
                                                   " files.\nNo file has been specified."});
    }
}

}  // namespace
}  // namespace tarn
