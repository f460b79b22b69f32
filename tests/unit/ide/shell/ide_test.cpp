// SPDX-License-Identifier: GPL-3.0-or-later
#include "ide/shell/commands.h"
#include "support/ide_fixture.h"

namespace tarn {
namespace {

using Settings = IdeTest;

constexpr const char* required[] = {"Edit_Find",
                                    "Edit_Replace",
                                    "ordo",
                                    "Compoptionsdlg",
                                    "Debugoptionsdlg",
                                    "Editoroptionsdlg",
                                    "Genoptionsdlg",
                                    "Pathsoptionsdlg",
                                    "Sdiedit",
                                    "Viewdlg",
                                    "Projecteditordlg",
                                    "Main",
                                    "Gotofuncdlg",
                                    "debug",
                                    "Argumentsdlg",
                                    "Confirmremovedlg",
                                    "BrowseInfoDlg",
                                    "MRU",
                                    "Hilite.cls",
                                    "Template.NewNonMainClass.cls",
                                    "Template.NewMainClass.cls",
                                    "Template.NewDialog.cls",
                                    "Template.FunctionBody.cls",
                                    "Template.DialogBody.cls",
                                    "Template.DataViewDialog.cls",
                                    "Template.TableDeclaration.cls",
                                    "Template.DatabaseDialog.cls"};

TEST_F(Settings, ThatShipHaveEverySection) {
    EXPECT_EQ(CHECKINIFILE(ini()), "");
}

TEST_F(Settings, ThatAreMissingLackEverySectionInOrder) {
    std::string all;
    for (const char* section : required) all += std::string(section) + "\n";
    EXPECT_EQ(CHECKINIFILE(dir + "absent.ini"), all);
}

TEST_F(Settings, MayWriteTheirSectionsInAnyCase) {
    std::string text;
    for (const char* section : required) text += "[" + STRUPPER(section) + "]\r\n";
    EXPECT_EQ(CHECKINIFILE(write("upper.ini", text)), "");
}

TEST_F(Settings, CutInHalfLackTheSectionsBehindTheCut) {
    const std::string text = read(ini());
    const std::string missing = CHECKINIFILE(write("half.ini", text.substr(0, text.size() / 2)));
    EXPECT_NE(missing, "");
    EXPECT_LT(STRLINES(missing), 27);
}

TEST(Commands, WithoutAHandlerAreKnown) {
    EXPECT_TRUE(HASHANDLER("file_open"));
    EXPECT_TRUE(HASHANDLER("btnfile_open"));
    EXPECT_TRUE(HASHANDLER("program_add_class"));
    EXPECT_FALSE(HASHANDLER("program_add_database"));
    EXPECT_FALSE(HASHANDLER("no_such_control"));
}

TEST(LongLists, AreCutOnceTheyPassFortyLines) {
    std::string forty;
    for (int i = 1; i <= 40; i++) forty += STR(i) + "\n";
    EXPECT_EQ(LIMITLINES(forty), forty);
    const std::string cut = LIMITLINES(forty + "41\n");
    EXPECT_TRUE(cut.starts_with("1\n"));
    EXPECT_NE(cut.find("\n39\n...(more)..."), std::string::npos) << cut;
    EXPECT_EQ(cut.find("\n40\n"), std::string::npos);
}

}  // namespace
}  // namespace tarn
