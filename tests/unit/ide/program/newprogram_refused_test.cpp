// SPDX-License-Identifier: GPL-3.0-or-later
//
// New classes and programs that are refused: each by its words and in its order.
#include "ide/program/newclass.h"
#include "unit/ide/program/newprogram_fixture.h"

namespace tarn {
namespace {

// ---- refusals ----

class NewProgramRefused : public NewProgram {
protected:
    std::string path() { return dir + "work/Books"; }
    // A new program Books with a window in the folder work.
    void tryBooks(const std::string& folder = "work") {
        asked.clear();
        fill({{"Name", "Books"}, {"Directory", dir + folder}});
        // The folder of the sheet must exist when it is left.
        static_cast<void>(folder);
        const NewClass made =
            NEWCLASSDIALOG(MAINCONTROL("codelabel"), "New Program", dir + "work/App1.cls", false, WithWindow);
        Stamp(0, ReportErrors, DefaultErrorHandler);
        EXPECT_TRUE(made.empty());
        ASSERT_EQ(asked.size(), 1U);
        EXPECT_EQ(asked[0].title, "New Program");
    }
    std::string libraryWords() {
        return "The new class cannot be created, it conflicts with a library file of the same name.\n"
               "The existing library file is: " +
               dir + "lib/Books.cls\nChoose a different name for the new class.\n";
    }
};

constexpr const char *ClassThere = "The new class cannot be created, this class file already exists.\n"
                                   "Choose a different name, or rename the existing file.\n",
                     *DialogThere = "The new class cannot be created, this dialog file already exists.\n"
                                    "Choose a different name, or rename the existing file.\n";

TEST_F(NewProgramRefused, EachByItsWordsAndInTheirOrder) {
    write("work/Books.rc", "");
    tryBooks();
    EXPECT_EQ(lastText(), "'" + path() + ".rc'\n" + DialogThere);
    write("work/Books.cls", "");
    tryBooks();
    EXPECT_EQ(lastText(), "'" + path() + ".cls'\n" + ClassThere);
    write("lib/bOOKS.CLS", "");
    tryBooks();
    EXPECT_EQ(lastText(), "'" + path() + ".cls'\n" + libraryWords());
}

TEST_F(NewProgramRefused, ANameThatIsThereInAnotherCase) {
    write("work/bookS.rc", "");
    tryBooks();
    EXPECT_EQ(lastText(), "'" + path() + ".rc'\n" + DialogThere);
    write("work/BOOKS.cls", "");
    tryBooks();
    EXPECT_EQ(lastText(), "'" + path() + ".cls'\n" + ClassThere);
    EXPECT_FALSE(has("work/Books.cls"));
}

TEST_F(NewProgramRefused, AWordOfTheLanguage) {
    fill({{"Name", "Function"}});
    newClass();
    EXPECT_EQ(lastText(),
              "'" + dir +
                  "work/Function.cls'\nThe new class cannot be created, its name is a word of the "
                  "language.\nChoose a different name for the new class.\n");
    EXPECT_FALSE(has("work/Function.cls"));
}

TEST_F(NewProgramRefused, ANameOfTheCoreOfTheLibrary) {
    for (const std::string name : {"Lib", "SYSTEM", "system", "lIB"}) {
        fill({{"Name", name}});
        newClass();
        EXPECT_EQ(lastText(),
                  "'" + dir + "work/" + name +
                      ".cls'\nThe new class cannot be created, its name is that of a core run time library "
                      "class.\nChoose a different name for the new class.\n");
        fill({{"Name", name}});
        newProgram(true);
        EXPECT_TRUE(lastText().find("core run time library class") != std::string::npos) << lastText();
    }
    EXPECT_TRUE(std::filesystem::is_empty(dir + "work"));
    fill({{"Name", "Library"}});
    newClass();
    EXPECT_TRUE(has("work/Library.cls"));
}

TEST_F(NewProgramRefused, AFolderThatGoesMeanwhile) {
    std::filesystem::create_directory(dir + "gone");
    doings.emplace_back([this] {
        SetText(row("Name"), "Books");
        SetText(row("Directory"), dir + "gone/");
        platform::userCommand(*platform::findControl(FINDCONTROL(PropertiesDlg, "idok")));
        std::filesystem::remove(dir + "gone");
    });
    const NewClass made = NEWCLASSDIALOG({}, "New Program", dir + "work/App1.cls", false, WithWindow);
    EXPECT_TRUE(made.empty());
    EXPECT_EQ(lastText(), "'" + dir +
                              "gone/Books.cls'\nThe new class cannot be created, this directory does not "
                              "exist.\nChoose a directory that exists.\n");
}

TEST_F(NewProgramRefused, ATemplateThatIsMissingIsToldWithoutTheSheet) {
    write("lib/App1.cls", "");  // a fault behind it is not reached
    const auto message = [&](const char* what, const char* name) {
        return "'" + dir + "work/App1.cls'\nCannot create new " + what + ".\nCannot create Template." + name +
               ".cls, it was not in \"" + ini() + "\".\n";
    };
    PROFILESTRDEL(ini(), "Template.NewDialog.cls", "");
    newProgram(true);
    EXPECT_EQ(lastText(), message("dialog", "NewDialog"));
    newProgram(false);
    EXPECT_EQ(lastText(), message("dialog", "NewDialog"));
    PROFILESTRDEL(ini(), "Template.NewMainClass.cls", "");
    newProgram(true);
    EXPECT_EQ(lastText(), message("class", "NewMainClass"));
    newProgram(false);
    EXPECT_EQ(lastText(), message("class", "NewMainClass"));
    EXPECT_FALSE(has("work/App1.cls"));
}

TEST_F(NewProgramRefused, WithoutAskingALibraryNameIsRefusedToo) {
    write("lib/app1.cls", "");
    newProgram(false);
    EXPECT_EQ(lastText(),
              "'" + dir +
                  "work/App1.cls'\nThe new class cannot be created, it conflicts with a library file of "
                  "the same name.\nThe existing library file is: " +
                  dir + "lib/App1.cls\nChoose a different name for the new class.\n");
}

TEST_F(NewProgramRefused, APlainClassNeedsNoResourceFile) {
    write("work/Books.rc", "");
    fill({{"Name", "Books"}});
    newClass();
    EXPECT_TRUE(asked.empty()) << lastText();
    EXPECT_TRUE(has("work/Books.cls"));
}

TEST_F(NewProgramRefused, ANameThatIsNoneStaysInTheSheet) {
    for (const std::string& name :
         {std::string(), std::string("two words"), std::string("1a"), std::string("a/b"), std::string("a\"b"),
          std::string("\xC3\xA4"), std::string("a\xE4"), std::string("a\xFF"), std::string(" a"),
          std::string("a "), std::string("a\tb"), std::string("_a"), std::string("a-b"), std::string("a.b"),
          std::string("a&b"), std::string(41, 'a')}) {
        asked.clear();
        doings.emplace_back([this, name] {
            SetText(row("Name"), name);
            platform::userCommand(*platform::findControl(FINDCONTROL(PropertiesDlg, "idok")));
            ASSERT_EQ(asked.size(), 1U) << name;
            EXPECT_EQ(lastText(),
                      "There is a problem with the 'Name' property.\nA name should be used.\n(consisting of "
                      "letters, numbers, or '_' with length of 1 to 40)\n")
                << name;
            platform::userCommand(*platform::findControl(FINDCONTROL(PropertiesDlg, "idcancel")));
        });
        newClass();
    }
    EXPECT_TRUE(std::filesystem::is_empty(dir + "work"));
}

// ---- icons that cannot be ----

TEST_F(NewProgramRefused, IconsThatAreNotThere) {
    write("work/empty.ico", "");
    write("work/q\"q.ico", "icon");
    const std::string begin =
                          "'" + dir + "work/Books.cls'\nThe new class cannot be created, its program icon '",
                      end = "Choose another icon, or none.\n";
    const std::pair<std::string, const char*> cases[] = {
        {dir + "work/gone.ico", "does not exist or is empty.\n"},
        {"gone.ico", "does not exist or is empty.\n"},
        {dir + "work/empty.ico", "does not exist or is empty.\n"},
        {dir + "work/q\"q.ico", "has a quote or a line end in its path.\n"}};
    for (const auto& [icon, reason] : cases) {
        asked.clear();
        fill({{"Name", "Books"}, {"Directory", dir + "work"}, {"Program Icon", icon}});
        const NewClass made = NEWCLASSDIALOG({}, "New Program", dir + "work/App1.cls", false, WithWindow);
        EXPECT_TRUE(made.empty());
        EXPECT_EQ(lastText(), begin + icon + "' " + reason + end);
    }
    write("work/there.ico", "icon");
    fill({{"Name", "Books"}, {"Directory", dir + "work"}, {"Program Icon", "there.ico"}});
    EXPECT_FALSE(NEWCLASSDIALOG({}, "New Program", dir + "work/App1.cls", false, WithWindow).empty())
        << "a path without a root starts from the folder of the class";
}

}  // namespace
}  // namespace tarn
