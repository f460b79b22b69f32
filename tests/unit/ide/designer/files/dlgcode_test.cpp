// SPDX-License-Identifier: GPL-3.0-or-later
//
// From the objects of a dialog to its class.
#include "ide/designer/files/dlgcode.h"

#include "support/ide_fixture.h"

#include <filesystem>

namespace tarn {
namespace {

const std::string Class = "Tarnwick Class a\n\n"                            // 1, 2
                          "callback function D(in anEvent : integer)\n"     // 3
                          "    select anEvent\n"                            // 4
                          "    case LOAD_EVENT =>\n"                        // 5
                          "        x := 1\n"                                // 6
                          "    case COMMAND_EVENT =>\n"                     // 7
                          "        x := 2\n"                                // 8
                          "    end select\n"                                // 9
                          "end function\n\n"                                // 10, 11
                          "callback function idok(in anEvent : integer)\n"  // 12
                          "end function\n\n"                                // 13, 14
                          "function plain()\n"                              // 15
                          "end function\n"                                  // 16
                          "End class\n";

class DialogCode : public IdeTest {
protected:
    std::string rc, cls;
    void SetUp() override {
        IdeTest::SetUp();
        start();
        rc = dir + "a.rc";
        cls = dir + "a.cls";
    }
    void TearDown() override {
        EXPECT_EQ(ErrorCell(), 0) << ErrorDetails();
        IdeTest::TearDown();
    }
    static int line() {
        const std::string text =
            GetText(SDIEdit).substr(0, static_cast<std::size_t>(GetSelection(SDIEdit).start - 1));
        return STRLINES(text) + 1;
    }
};

TEST_F(DialogCode, AnObjectLeadsToItsFunctionAtItsUsualEvent) {
    write("a.cls", Class);
    const struct {
        const char *name, *type;
        int line;
    } cases[] = {{"D", "Dialog", 5},         {"d", "Editwindow", 5},    {"D", "Richeditwindow", 5},
                 {"D", "Menuitem", 7},       {"D", "Pushbutton", 7},    {"D", "Radiobutton", 7},
                 {"D", "Checkbox", 7},       {"D", "Bitmapbutton", 7},  {"D", "Edit", 3},
                 {"D", "Listbox", 3},        {"D", "Label", 3},         {"D", "Shape", 3},
                 {"idok", "Pushbutton", 12}, {"IDOK", "Pushbutton", 12}};
    for (const auto& one : cases) {
        SHOWCODEFILE(rc, one.name, "Dialog", one.type);
        EXPECT_EQ(EDITWNDGETFILENAME(SDIEdit), cls);
        EXPECT_EQ(line(), one.line) << one.name << " " << one.type;
    }
    EXPECT_TRUE(asked.empty());
    EXPECT_EQ(GetCaption(MAINCONTROL("codelabel")), cls);
}

TEST_F(DialogCode, TheTextOfTheCodeWindowIsNewerThanTheFile) {
    write("a.cls", Class);
    EDITWNDOPEN(SDIEdit, cls, false, 0);
    SetText(SDIEdit, "// one more line\n" + GetText(SDIEdit));
    SHOWCODEFILE(rc, "idok", "Dialog", "Pushbutton");
    EXPECT_EQ(line(), 13);
}

TEST_F(DialogCode, AClassMayHaveItsExtensionInUpperCase) {
    write("a.CLS", Class);
    SHOWCODEFILE(rc, "idok", "Dialog", "Pushbutton");
    EXPECT_EQ(EDITWNDGETFILENAME(SDIEdit), dir + "a.CLS");
}

TEST_F(DialogCode, AClassThatIsOpenByALinkStaysOpenSo) {
    write("a.cls", Class);
    std::filesystem::create_symlink(cls, dir + "link.cls");
    EDITWNDOPEN(SDIEdit, dir + "link.cls", false, 0);
    SetText(SDIEdit, "// one more line\n" + GetText(SDIEdit));
    SHOWCODEFILE(rc, "idok", "Dialog", "Pushbutton");
    EXPECT_EQ(EDITWNDGETFILENAME(SDIEdit), dir + "link.cls");
    EXPECT_EQ(line(), 13);
}

TEST_F(DialogCode, AFileOfTheSameNameInOtherCaseIsAnotherClass) {
    write("a.cls", "Tarnwick Class a\nEnd class\n");
    EDITWNDOPEN(SDIEdit, write("A.cls", Class), false, 0);
    CHECKRENAMEFUNCTION(cls, "D", "E");
    EXPECT_TRUE(asked.empty());
    EXPECT_EQ(GetText(SDIEdit), Class);
}

TEST_F(DialogCode, WhatIsNotThereIsTold) {
    const std::string head = "It is not possible to view code for the window object 'nobody'.\n"
                             "The code should be in the following file:\n\n\t" +
                             cls + "\n\n";
    const int beeps = platform::headlessBeeps();
    SHOWCODEFILE(rc, "nobody", "Dialog", "Pushbutton");
    EXPECT_EQ(lastText(), head + "but the file does not exist.");
    write("a.cls", Class);
    SHOWCODEFILE(rc, "nobody", "Dialog", "Pushbutton");
    EXPECT_EQ(lastText(), head + "but the file does not contain an event handler for the object.\n"
                                 "The event handler should be declared 'callback function nobody()'.");
    EXPECT_EQ(platform::headlessBeeps(), beeps + 2);
    EXPECT_EQ(EDITWNDGETFILENAME(SDIEdit), "");
}

// ---- another name ----

TEST_F(DialogCode, TheWindowFunctionFollowsTheNameInItsFile) {
    write("a.cls", Class);
    answers = {"Yes"};
    CHECKRENAMEFUNCTION(cls, "D", "Fresh");
    ASSERT_EQ(asked.size(), 1U);
    EXPECT_EQ(asked[0].title, "Rename Function");
    EXPECT_EQ(lastText(),
              "You changed the dialog name from D to Fresh.\nThe window function for D is in file '" + cls +
                  "'.\nDo you also want to rename the window function to Fresh?");
    EXPECT_EQ(asked[0].buttons, (std::vector<std::string>{"Yes", "No"}));
    EXPECT_NE(read(cls).find("callback function Fresh(in anEvent"), std::string::npos);
}

TEST_F(DialogCode, InTheCodeWindowItFollowsThereAlone) {
    write("a.cls", Class);
    EDITWNDOPEN(SDIEdit, cls, false, 0);
    answers = {"Yes"};
    CHECKRENAMEFUNCTION(cls, "D", "Fresh");
    EXPECT_NE(lastText().find("The window function for D is in the code editor.\n"), std::string::npos);
    EXPECT_NE(GetText(SDIEdit).find("callback function Fresh(in anEvent"), std::string::npos);
    EXPECT_TRUE(GetModify(SDIEdit));
    EXPECT_EQ(read(cls), Class);
}

TEST_F(DialogCode, TheClassKeepsItsLineEnds) {
    const auto renamed = [](std::string text) {
        return text.replace(text.find("function D("), 11, "function Fresh(");
    };
    const std::string pairs = STRNL2CRNL(Class);
    for (const std::string& text : {std::string(Class), pairs}) {
        for (const bool open : {false, true}) {
            write("a.cls", text);
            if (open) EDITWNDOPEN(SDIEdit, cls, false, 0);
            answers = {"Yes"};
            CHECKRENAMEFUNCTION(cls, "D", "Fresh");
            const std::string now = open ? GetText(SDIEdit) : read(cls);
            EXPECT_EQ(now.find("\r\n") != std::string::npos, text == pairs);
            EXPECT_EQ(STRREPLACE(now, " ", ""), STRREPLACE(renamed(text), " ", ""));
            if (open) SetModify(SDIEdit, false);
            EDITWNDCLOSE(SDIEdit, true);
        }
    }
}

TEST_F(DialogCode, NothingIsAskedWhereNoWindowFunctionIs) {
    write("a.cls", Class);
    write("a.txt", Class);
    const struct {
        std::string file, before, after;
    } cases[] = {{dir + "none.cls", "D", "E"}, {dir + "a.txt", "D", "E"}, {cls, "", "E"}, {cls, "D", ""},
                 {cls, "plain", "E"},          {cls, "nobody", "E"}};
    for (const auto& one : cases) CHECKRENAMEFUNCTION(one.file, one.before, one.after);
    EXPECT_TRUE(asked.empty());
}

TEST_F(DialogCode, NoKeepsTheFunction) {
    write("a.cls", Class);
    for (const char* answer : {"No", ""}) {
        answers = {answer};
        CHECKRENAMEFUNCTION(cls, "D", "Fresh");
        EXPECT_EQ(read(cls), Class);
    }
    EXPECT_EQ(asked.size(), 2U);
}

TEST_F(DialogCode, AnErrorOfTheRenamingIsTold) {
    write("a.cls", Class);
    answers = {"Yes"};
    CHECKRENAMEFUNCTION(cls, "D", "idok");
    ASSERT_EQ(asked.size(), 2U);
    EXPECT_EQ(lastText(),
              "Cannot rename, the text being modified already contains 'idok'\nCould not rename D to idok.");
    EXPECT_EQ(read(cls), Class);
}

}  // namespace
}  // namespace tarn
