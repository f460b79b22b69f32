// SPDX-License-Identifier: GPL-3.0-or-later
//
// What the commands say when the main class has gone from the disk since it was opened: each under its own title, with the
// file that is missing, and nothing else is changed.
#include "ide/menus/progmenu.h"
#include "ide/menus/runmenu.h"
#include "ide/program/newdialog.h"
#include "ide/program/newprogram.h"

#include "library/designer/propedit_sheet.h"
#include "unit/ide/program/members/members_fixture.h"

namespace tarn {
namespace {

class GoneMainClass : public MembersTest {
protected:
    void open() {
        write("prog/main.cls", MainClass);
        write("prog/main.rc", dialog("Ask"));
        MembersTest::open({"main.cls", "main.rc", "shapes.cls"});
        choose("Class Shapes");
        std::filesystem::remove(mainFile);
    }
    std::string notFound() const { return "The file '" + mainFile + "' was not found."; }
    static void quickBuild() {
        bool ok = true;
        DO_QUICKBUILD(true, ok);
        EXPECT_FALSE(ok);
    }
};

TEST_F(GoneMainClass, IsToldByEachCommandThatNeedsIt) {
    write("far/round.cls", classText("Round"));
    write("far/boxes.rc", dialog("New"));
    const auto build = [](const std::string& title) {
        return "It is not possible to use the '" + title +
               "' command.\nThe following file:\n\n\t'%'\n\nis empty or does not exist.";
    };
    const struct {
        std::string title, text;  // "%" is the main class
        std::function<void()> run;
        std::deque<std::string> answers = {};
        bool asks = false;  // by the sheet
    } commands[] = {
        {"New Class",
         "The new class cannot be added to the Uses clause of '%'.\nThe file was not found.",
         [] { PROJECTNEWNONMAIN({}, "New Class"); },
         {},
         true},
        {"Program-Add Class",
         "The file '%' was not found.",
         DO_ADD_CLASS,
         {dir + "far/round.cls", "Copy file"}},
        {"Program-Add Resource File",
         "The file '%' was not found.",
         DO_ADD_RCFILE,
         {dir + "far/boxes.rc", "Copy file"}},
        {"Program-Edit Program Properties",
         "The Program Properties are not available because there is no main file.\nOpen a file in the "
         "program window then "
         "try again.",
         DO_EDIT_PROPERTIES},
        {"Program Window", "It is not possible to open/update the window.\nThe file '%' was not found.",
         DO_REFRESH},
        {"Program-Show Input Files",
         "It is not possible to view the list of input files.\nThe file '%' was not found.", DO_SHOW_INPUT},
        {"Program-Show Output Files",
         "It is not possible to view the list of output files.\nThe file '%' was not found.", DO_SHOW_OUTPUT},
        {"Program-Copy EXE File", "It is not possible to copy the EXE file.\nThe file '%' was not found.",
         DO_COPY_EXE},
        {"Run-Program Information",
         "It is not possible to see the program information.\nThe file '%' was not found.", DO_INFO},
        {"Run-Quickbuild", build("Run-Quickbuild"), quickBuild},
        {"Run-Full Rebuild", build("Run-Full Rebuild"), DO_REBUILD},
        {"Run-Start", build("Run-Start"), DO_START},
    };
    for (const auto& command : commands) {
        open();
        const std::string before = everything();
        answers = command.answers;
        if (command.asks) doings.emplace_back([] { press(PropertiesDlg, "idok"); });
        run(command.run);
        ASSERT_FALSE(asked.empty()) << command.title;
        EXPECT_EQ(asked.back().title, command.title);
        EXPECT_EQ(lastText(), STRREPLACE(command.text, "%", mainFile));
        EXPECT_EQ(everything(), before) << command.title;
    }
}

TEST_F(GoneMainClass, StopsNoCommandThatDoesNotNeedIt) {
    write("far/pic.bmp", "x");
    write("prog/shapes.rc", "// none yet\n");
    open();
    answers = {dir + "far/pic.bmp"};
    run(DO_ADD_FILE);
    EXPECT_EQ(told(),
              (std::vector<std::string>{"It is not possible to open/update the window.\n" + notFound(),
                                        "Added " + dir + "far/pic.bmp to '" + dir + "prog/shapes.rc'"}));
    open();
    run(PROJECTNEWDIALOG);
    EXPECT_EQ(told(),
              std::vector<std::string>{"It is not possible to open/update the window.\n" + notFound()});
    EXPECT_TRUE(text("prog/shapes.rc").find("Dialog1 DIALOG") != std::string::npos);
}

}  // namespace
}  // namespace tarn
