// SPDX-License-Identifier: Apache-2.0
#include "library/dialogs/commdlgs_about.h"

#include "library/system/system.h"
#include "os/files.h"
#include "os/process.h"
#include "platform/model/view.h"
#include "support/tempfolder.h"

#include <gtest/gtest.h>

namespace tarn {
namespace {

TEST(AboutDialogInfo, HasALineForEachNameAndNoValueIsEmptyWithoutReason) {
    const std::string text = ABOUTDIALOGINFO(120);
    ASSERT_GT(STRLINES(text), 30);
    for (int i = 1; i <= STRLINES(text); i++) {
        const std::string line = STRLINE(text, i);
        const std::size_t at = line.find(" = ");
        ASSERT_NE(at, std::string::npos) << line;
        if (!line.starts_with("Program arguments = ")) {
            EXPECT_GT(line.size(), at + 3) << line;
        }
        EXPECT_LE(line.size(), at + 3 + 120) << line;
    }
    for (const char* name :
         {"Application directory = ", "Application name = ", "Clean boot = ", "Command processor = ",
          "Computer name = ", "Current disk and directory = ", "Date/Time = ", "Debug Windows = ",
          "Desktop wallpaper = ", "Disk free space = ", "Disk label = "})
        EXPECT_NE(("\n" + text).find("\n" + std::string(name)), std::string::npos) << name;
}

TEST(AboutDialogInfo, CutsValuesAndShortensPaths) {
    const std::string path = os::executableFolder();
    for (const int width : {10, 3, 0}) {
        const std::string text = ABOUTDIALOGINFO(width);
        for (int i = 1; i <= STRLINES(text); i++) {
            const std::string line = STRLINE(text, i);
            EXPECT_LE(line.size(), line.find(" = ") + 3 + static_cast<std::size_t>(width)) << line;
        }
        const std::string folder = STRLINE(text, 1).substr(std::string("Application directory = ").size());
        EXPECT_EQ(folder.find("..."), width == 10 || width == 3 ? folder.find('.') : std::string::npos)
            << folder;
        EXPECT_EQ(folder == "...", width == 3) << folder;
    }
}

TEST(AboutDialogInfo, ButtonsAreAListOfCaptionsAndActions) {
    const AboutButtons buttons = TBUTTONS({{"Close", "Unload", ""}, {"Help", "a.htm", "Help_About"}});
    ASSERT_EQ(buttons.size(), 2U);
    EXPECT_EQ(buttons[0].caption, "Close");
    EXPECT_EQ(buttons[0].action, "Unload");
    EXPECT_EQ(buttons[1].topic, "Help_About");
    EXPECT_TRUE(TBUTTONS({}).empty());
}

}  // namespace
}  // namespace tarn
