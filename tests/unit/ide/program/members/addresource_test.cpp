// SPDX-License-Identifier: GPL-3.0-or-later
//
// Adding a resource file: the class that is made for it, what is refused, and what the three answers change.
#include "ide/program/members/addresource.h"

#include "unit/ide/program/members/members_fixture.h"

namespace tarn {
namespace {

class AddResource : public MembersTest {
protected:
    void add(const std::string& file, std::deque<std::string> more = {}) {
        answers = std::move(more);
        answers.push_front(file);
        run([] { PROJECTADDRESOURCE("Program-Add Resource File"); });
        answers.clear();
    }
    static bool hasFunction(const std::string& text, const std::string& name) {
        return SYMFINDFUNCTION(name, 0, text).bodyStart != 0;
    }
};

TEST_F(AddResource, MakesAClassWithAFunctionForEachDialog) {
    open();
    write("prog/boxes.rc", dialog("ask") + dialog("tell") + "pic BITMAP \"x.bmp\"\n");
    add(dir + "prog/boxes.rc");
    EXPECT_TRUE(told().empty()) << lastText();
    const std::string made = text("prog/boxes.cls");
    EXPECT_EQ(SYMGETCLASSNAME(0, made, ProductWord), "boxes");
    EXPECT_TRUE(hasFunction(made, "ask"));
    EXPECT_TRUE(hasFunction(made, "tell"));
    EXPECT_FALSE(hasFunction(made, "pic"));
    EXPECT_NE(
        made.find(
            "callback function ask(in  anEvent : integer,\n                          aControl : Control,\n"),
        std::string::npos)
        << made;
    EXPECT_EQ(made.find('\r'), std::string::npos);
    EXPECT_EQ(uses("prog/main.cls"), "Shapes boxes");
    EXPECT_EQ(asked[0].value, "*.rc");
}

TEST_F(AddResource, AFileWithoutDialogsGetsAClassToo) {
    open();
    add(write("prog/plain.rc", "pic BITMAP \"x.bmp\"\n"));
    EXPECT_TRUE(SYMISCLASS(1, dir + "prog/plain.cls", ProductWord, "CLASS"));
    EXPECT_EQ(uses("prog/main.cls"), "Shapes plain");
}

// Each file has the fault of its row and those below it.
TEST_F(AddResource, ChecksInItsOrder) {
    open();
    const std::string same = "cannot be added, because a file or a class with the same name already "
                             "exists.\nThe existing file is in an "
                             "inherited folder, or in the folder containing the main program.\nChoose a "
                             "different class or rename the "
                             "existing file.";
    const std::string badName = "cannot be added to the program, as its filename is not a valid class "
                                "name.\nMake a copy of the file, "
                                "remove underscores and spaces from its name and try again.\n";
    const std::string part =
        "cannot be added to the program. The resource file must have a\ndifferent name from all "
        "other classes and resource files in the program.";
    const std::string bad = "D DIALOG\n  Label 17\n    CAPTION=\"a\"\nEND\n";
    write("prog/Main.cls", "");  // not in the program, only of that name
    std::filesystem::remove(dir + "prog/Main.cls");
    write("lib/taken.cls", classText("Taken"));
    write("lib/pair.rc", "");
    const struct {
        std::string name, contents, begin;
    } cases[] = {
        {"far/a.txt", bad, "cannot be added to the program, because it is not a resource file."},
        {"far/a_b.rc", bad, "cannot be added to the program, because of the following error:\n(Dialog D) "},
        {"far/my shapes.rc", dialog("D"), badName},
        {"far/a_b.rc", dialog("D"), badName},
        {"far/9to5.rc", dialog("D"), badName},
        {"far/table.rc", dialog("D"), badName},
        {"far/" + std::string(41, 'x') + ".rc", dialog("D"), badName},
        {"far/SHAPES.rc", dialog("D"), part},
        {"far/taken.rc", dialog("D"), same},
        {"far/pair.rc", dialog("D"), same},
    };
    for (const auto& c : cases) {
        const std::string file = write(c.name, c.contents), before = everything();
        add(file);
        ASSERT_EQ(told().size(), 1U) << c.name;
        const std::string head = "The following file:\n\n\t'" + file + "'\n\n";
        EXPECT_TRUE(told()[0].starts_with(head + c.begin)) << c.name << ": " << told()[0];
        EXPECT_EQ(everything(), before) << c.name;
    }
}

TEST_F(AddResource, AClassBesideTheFileIsOneInAnyCase) {
    open();
    write("far/BOXES.Cls", "// all my work\n");
    const std::string file = write("far/boxes.rc", dialog("D")), before = everything();
    add(file, {"Update folders"});
    ASSERT_EQ(told().size(), 1U);
    EXPECT_TRUE(told()[0].find("because a file or a class with the same name already exists") !=
                std::string::npos)
        << told()[0];
    EXPECT_EQ(everything(), before);
}

TEST_F(AddResource, ANameOfTheCoreOfTheLibraryIsRefused) {
    open();
    for (const char* name : {"far/Lib.rc", "prog/SYSTEM.rc"}) {
        const std::string file = write(name, dialog("D")), before = everything();
        add(file);
        EXPECT_EQ(told(), std::vector<std::string>{"The following file:\n\n\t'" + file +
                                                   "'\n\ncannot be added, because its name is that of a core "
                                                   "run time library class.\nMake a copy of "
                                                   "the file with another name and try again.\n"});
        EXPECT_EQ(everything(), before);
    }
}

TEST_F(AddResource, NamesWithOtherSignsAreRefused) {
    open();
    const std::string rule =
        " A name has the letters A to Z, digits and underscores, and begins with a letter.\n";
    const std::pair<std::string, std::string> names[] = {{"B\xC3\xBC\x63her", "It holds '\xC3\xBC'." + rule},
                                                         {"a\xE4", "It holds '\xE4'." + rule},
                                                         {"a\xFF", "It holds '\xFF'." + rule},
                                                         {" a", ""},
                                                         {"a ", ""},
                                                         {"a_b", ""},
                                                         {"a&b", "It holds '&'." + rule},
                                                         {"a\"b c", "It holds '\"'." + rule},
                                                         {"a.b", "It holds '.'." + rule},
                                                         {"9 to 5", "It begins with '9'." + rule}};
    for (const auto& [name, fault] : names) {
        const std::string file = write("far/" + name + ".rc", dialog("D")), before = everything();
        add(file);
        EXPECT_EQ(told(), std::vector<std::string>{
                              "The following file:\n\n\t'" + file +
                              "'\n\ncannot be added to the program, as its filename is not a valid class "
                              "name.\nMake a copy of "
                              "the file, remove underscores and spaces from its name and try again.\n" +
                              fault});
        EXPECT_EQ(everything(), before);
    }
}

TEST_F(AddResource, AClassBesideTheFileIsNeverWrittenOver) {
    open();
    for (const char* folder : {"prog/", "far/"}) {
        write(folder + std::string("own.cls"), "// all my work\n");
        const std::string file = write(folder + std::string("own.rc"), dialog("D")), before = everything();
        add(file, {"Update folders"});
        EXPECT_EQ(told().size(), 1U);
        EXPECT_EQ(everything(), before);
        std::filesystem::remove(dir + folder + "own.cls");
    }
}

TEST_F(AddResource, AFileElsewhereIsAskedAbout) {
    open();
    const std::string file = write("far/boxes.rc", dialog("ask")), before = everything();
    add(file, {"Cancel"});
    EXPECT_EQ(told(), std::vector<std::string>{
                          "The resource file being added (boxes.rc) is not currently in one of the inherited "
                          "folders.\nYou can update the inherited folder list to include the new path (" +
                          dir + "far/)\nOr you can copy the resource file to the main program folder (" +
                          dir + "prog/)\nWhat do you want to do?\n"});
    EXPECT_EQ(everything(), before);
    add(file, {"Copy file"});
    EXPECT_EQ(text("prog/boxes.rc"), dialog("ask"));
    EXPECT_TRUE(hasFunction(text("prog/boxes.cls"), "ask"));
    EXPECT_FALSE(there("far/boxes.cls"));
    EXPECT_EQ(uses("prog/main.cls"), "Shapes boxes");
    EXPECT_EQ(inherited(), dir + "lib");
    const std::string other = write("far/other.rc", dialog("more"));
    add(other, {"Update folders"});
    EXPECT_TRUE(hasFunction(text("far/other.cls"), "more"));
    EXPECT_FALSE(there("prog/other.rc"));
    EXPECT_EQ(inherited(), dir + "lib;" + dir + "far/");
}

TEST_F(AddResource, ATemplateThatIsMissingIsTold) {
    open();
    const std::string file = write("prog/boxes.rc", dialog("ask"));
    for (const char* name : {"Template.FunctionBody.cls", "Template.NewNonMainClass.cls"}) {
        PROFILESTRDEL(ini(), name, "");
        const std::string before = everything();
        add(file);
        EXPECT_EQ(told(),
                  std::vector<std::string>{"Cannot create new class.\nCannot create " + std::string(name) +
                                           ", it was not in \"" + ini() + "\".\n"});
        EXPECT_EQ(everything(), before);
    }
}

// What would make a program that does not build is refused, and nothing is changed.
TEST_F(AddResource, NamesThatTheProgramCannotHaveAreRefused) {
    write("prog/main.rc", dialog("Ask") + "logo BITMAP \"logo.bmp\"\n");
    open({"main.cls", "main.rc", "shapes.cls"});
    const std::string head = "cannot be added to the program, because of the following error:\n",
                      used = "' is already used in '" + dir + "prog/main.rc'.";
    const std::pair<std::string, std::string> cases[] = {
        {dialog("free") + dialog("Main"), "(Dialog Main) The program already has a function called 'main'."},
        {dialog("table"), "(Dialog table) Its name is not a valid identifier."},
        {dialog("free") + dialog("ASK"), "The name 'ASK" + used},
        {dialog("logo"), "The name 'logo" + used},
        {"Logo BITMAP \"logo.bmp\"\n", "The name 'Logo" + used},
    };
    for (const auto& [contents, reason] : cases) {
        const std::string file = write("far/boxes.rc", contents), before = everything();
        add(file);
        EXPECT_EQ(told(),
                  std::vector<std::string>{"The following file:\n\n\t'" + file + "'\n\n" + head + reason});
        EXPECT_EQ(everything(), before) << contents;
    }
}

// Its window function could have no name.
TEST_F(AddResource, ADialogThatIsNumberedIsRefusedWithItsLine) {
    open();
    const std::string cases[] = {dialog("free") + dialog("7"), dialog("free") + "7 EDITWINDOW\nEND\n",
                                 dialog("free") + "0x10 dialog\nEND\n", dialog("free") + dialog("-1")};
    for (const std::string& contents : cases) {
        const std::string file = write("far/boxes.rc", contents), before = everything();
        const std::string name = STRWORD(contents.substr(dialog("free").size()), 1);
        add(file, {"Copy file"});
        EXPECT_EQ(told(),
                  std::vector<std::string>{
                      "The following file:\n\n\t'" + file +
                      "'\n\ncannot be added to the program, because of the following error:\n(Dialog " +
                      name + ") '" + file + "', line 5: '" + name +
                      "' is a number; give the window a name that begins with a letter."});
        EXPECT_EQ(everything(), before) << contents;
    }
}

TEST_F(AddResource, ADialogNamedLikeAFunctionOfTheTemplateIsRefused) {
    open();
    const std::string file = write("prog/boxes.rc", dialog("ask") + dialog("Description")),
                      before = everything();
    add(file);
    EXPECT_EQ(told(),
              std::vector<std::string>{"Cannot create new class.\nThe class already contains a function "
                                       "called 'Description'.\n"});
    EXPECT_EQ(everything(), before);
}

TEST_F(AddResource, AFileOf255DialogsGetsAllFunctions) {
    open();
    std::string all;
    for (int n = 1; n <= 255; ++n) all += dialog("dlg" + STR(n));
    add(write("prog/many.rc", all));
    EXPECT_TRUE(told().empty()) << lastText();
    const std::string made = text("prog/many.cls");
    for (const int n : {1, 2, 128, 255}) EXPECT_TRUE(hasFunction(made, "dlg" + STR(n))) << n;
}

TEST_F(AddResource, FilesThatItNamesAreCopiedIfTheUserSaysSo) {
    open();
    write("far/x.bmp", "picture");
    const std::string file = write("far/pics.rc", "x BITMAP \"x.bmp\"\n" + dialog("ask"));
    add(file, {"Copy file", "Yes"});
    ASSERT_EQ(told().size(), 2U);
    EXPECT_TRUE(
        told()[1].starts_with("The resource file (pics.rc) names the following file(s), which are not in "
                              "the main program folder:\n\n\tx.bmp\n"));
    EXPECT_EQ(text("prog/x.bmp"), "picture");
    EXPECT_EQ(uses("prog/main.cls"), "Shapes pics");
}

}  // namespace
}  // namespace tarn
