// SPDX-License-Identifier: GPL-3.0-or-later
//
// Each dialog that has help finds its topic in the help pages: its caption with "_" for "-", and for blanks, since an
// anchor has none.
#include "support/ide_fixture.h"

namespace tarn {
namespace {

class HelpTopics : public IdeTest {};

TEST_F(HelpTopics, OfTheDialogsStandInTheHelpPages) {
    const std::string pages = read(SOURCE_DIR "/docs/help/Tarnwick.htm");
    ASSERT_FALSE(pages.empty());
    start();
    asked.clear();
    for (const char* name :
         {"ArgumentsDlg", "FileInfoDlg", "StartupDlg", "GotoFuncDlg", "MoreInfoDlg", "DifferenceDlg"}) {
        const Object dialog(name);
        Load(dialog);
        ASSERT_TRUE(IsLoaded(dialog)) << name;
        const std::string topic = STRREPLACE(HELPTOPIC(GetCaption(dialog)), " ", "_");
        EXPECT_NE(pages.find("id=\"" + topic + "\""), std::string::npos) << name << " " << topic;
        Unload(dialog);
    }
    // What the restoring of a file shows is named after its caption up to the parentheses.
    EXPECT_NE(pages.find("id=\"Edit_Undo\""), std::string::npos);
    // The browser closes when there is nothing to browse, so its caption is taken from the box that says so.
    Load(BrowseInfoDlg);
    ASSERT_EQ(asked.size(), 1U);
    EXPECT_NE(pages.find("id=\"" + STRREPLACE(HELPTOPIC(asked[0].title), " ", "_") + "\""),
              std::string::npos);
}

}  // namespace
}  // namespace tarn
