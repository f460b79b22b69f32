// SPDX-License-Identifier: GPL-3.0-or-later
//
// Templates by hand, beyond what a user's script can tell: files that are not there, and templates with faults.
#include "ide/program/testtemplate.h"

#include "support/ide_fixture.h"

namespace tarn {
namespace {

class TestTemplate : public IdeTest {
protected:
    void SetUp() override {
        IdeTest::SetUp();
        start();
        asked.clear();
        platform::view().setIdle([] { platform::QuitMainLoop(); });  // a window that waits is left at once
    }
    void TearDown() override {
        platform::view().setIdle({});
        EXPECT_EQ(ErrorCell(), 0) << ErrorDetails();
        IdeTest::TearDown();
    }
};

TEST_F(TestTemplate, AFileThatIsNotThereOrEmptyIsTold) {
    for (const std::string& file : {dir + "none.ini", write("empty.ini", "")}) {
        const TemplateChoice choice = OPENTEMPLATEDIALOG(file);
        EXPECT_EQ(choice.section, "");
        EXPECT_EQ(lastText(), "Can't load INI file '" + file + "'\nFile is empty or does not exist.");
    }
}

TEST_F(TestTemplate, AFileWithoutTemplatesIsTold) {
    const std::string file = write("other.ini", "[Templates]\r\n1=x\r\n");
    EXPECT_EQ(OPENTEMPLATEDIALOG(file).section, "");
    EXPECT_EQ(lastText(), "INI file '" + file + "' contains no templates.");
}

TEST_F(TestTemplate, AsksForAFileInTheFolderOfTheSettings) {
    answers = {"", ""};
    EXPECT_EQ(OPENTEMPLATEDIALOG().filename, "");
    ASSERT_EQ(asked.size(), 1U);
    EXPECT_EQ(asked[0].filter, "Template files (*.ini)|*.ini|");
    EXPECT_EQ(asked[0].value, dir + "*.ini");
}

TEST_F(TestTemplate, OffersTheTemplatesOfTheFileAlone) {
    answers = {"TEMPLATE.b"};
    const std::string file =
        write("own.ini", "[Template.a]\r\n1=x\r\n\r\n[Other]\r\n1=x\r\n\r\n[TEMPLATE.b]\r\n1=y\r\n");
    const TemplateChoice choice = OPENTEMPLATEDIALOG(file);
    ASSERT_EQ(asked.size(), 1U);
    EXPECT_EQ(asked[0].text, "Choose a template from the list below:");
    EXPECT_EQ(asked[0].rows, (std::vector<std::string>{"Template.a", "TEMPLATE.b"}));
    EXPECT_EQ(choice.filename, file);
    EXPECT_EQ(choice.section, "TEMPLATE.b");
    answers = {""};
    EXPECT_EQ(OPENTEMPLATEDIALOG(file).filename, "");
}

TEST_F(TestTemplate, ATemplateThatCannotBeLoadedIsTold) {
    const std::string file = write("own.ini", "[Template.a]\r\n1=#FOR %i% = 1 TO 2000000000\r\n2=x\r\n");
    EXPECT_EQ(TESTTEMPLATE(file, "Template.a"), "");
    EXPECT_EQ(lastText(), "Cannot create Template.a, it was too complex and caused a string overflow.");
    EXPECT_EQ(TESTTEMPLATE(file, "Template.b"), "");
    EXPECT_EQ(lastText(), "Cannot create Template.b, it was not in \"" + file + "\".");
    EXPECT_FALSE(IsLoaded(Object("TemplateTextDlg")));
}

TEST_F(TestTemplate, GivesAndShowsTheText) {
    const std::string file = write("own.ini", "[Template.a]\r\n1=#UCASE(x)\r\n2=y\r\n");
    EXPECT_EQ(TESTTEMPLATE(file, "Template.a"), "X\ny\n");
    ASSERT_TRUE(IsLoaded(Object("TemplateTextDlg")));
    EXPECT_EQ(GetText(FINDCONTROL(Object("TemplateTextDlg"), "edit1")), "X\ny\n");
}

}  // namespace
}  // namespace tarn
