// SPDX-License-Identifier: GPL-3.0-or-later
//
// The dialog check with the letters of a real font: the system's own dialogs have room for their captions.
#include "ide/designer/check/dlgcheck.h"
#include "library/designer/proputil.h"
#include "library/system/system.h"
#include "support/places.h"
#include "ui/window_fixture.h"

#include <gtest/gtest.h>

#include <filesystem>

namespace tarn {
namespace {

// Any dialog that is loaded.
const Object Measure("exclusiveboxdlg");

class DialogCheckTest : public platform::WindowTest {
protected:
    void SetUp() override {
        platform::SetApplicationResources(BINARY_DIR "/ide.rcx");
        ASSERT_EQ(platform::Load(Measure), platform::Ok);
    }

    static std::vector<DialogFinding> find(const std::string& controls) {
        ObjectArray dialog, menu;
        dialog[0] = "NAME=Test\nTYPEOF=Dialog\nPOSITION=0 0 400 200\n";
        dialog[1] = controls;
        return CHECKDIALOG(Measure, dialog, menu);
    }
};

TEST_F(DialogCheckTest, CaptionsAreMeasuredInTheFontOfTheDialog) {
    const std::string label =
        "NAME=l\nTYPEOF=Label\nCAPTION=\"Several words that stand in one line\"\nPOSITION=8 8 ";
    EXPECT_TRUE(find(label + "200 10\n").empty());
    const auto findings = find(label + "60 10\n");
    ASSERT_EQ(findings.size(), 1u);
    EXPECT_TRUE(findings[0].text.starts_with("The caption of Label 'l' is cut off at 100 %."))
        << findings[0].text;
    EXPECT_TRUE(find(findings[0].repair).empty()) << "the room that it asks for is enough";
}

// Units are whole pixels of the average letter, so the room of a caption differs from size to size.
TEST_F(DialogCheckTest, ACaptionMayHaveRoomAtOneSizeAndNotAtAnother) {
    int others = 0;
    for (int width = 60; width < 200; ++width)
        for (const DialogFinding& one :
             find("NAME=l\nTYPEOF=Label\nCAPTION=\"Several words that stand in one line\"\n"
                  "POSITION=8 8 " +
                  STR(width) + " 10\n"))
            others += one.text.find("at 100 %") == std::string::npos ? 1 : 0;
    EXPECT_GT(others, 0);
}

TEST_F(DialogCheckTest, MeasuringLeavesTheFontAsItWas) {
    const int height = platform::TextHeight(Measure, "X").value, size = platform::GetFontSize(Measure).value;
    static_cast<void>(find("NAME=l\nTYPEOF=Label\nCAPTION=\"x\"\nPOSITION=8 8 60 10\n"));
    EXPECT_EQ(platform::TextHeight(Measure, "X").value, height);
    EXPECT_EQ(platform::GetFontSize(Measure).value, size);
}

TEST_F(DialogCheckTest, TheSystemsOwnDialogsHaveRoomForTheirCaptions) {
    for (const auto& entry : std::filesystem::recursive_directory_iterator(SOURCE_DIR "/src/ide")) {
        if (entry.path().extension() != ".rc") continue;
        const std::string file = entry.path().string(), names = ResourceInfo(file, "DIALOG", "*").text;
        for (int n = 1; n <= STRLINES(names); ++n) {
            const std::string name = STRSPLIT(STRLINE(names, n)).left;
            ObjectArray dialog, menu;
            ASSERT_EQ(ResourceRead(file, name, dialog), "");
            for (const DialogFinding& one : CHECKDIALOG(Measure, dialog, menu))
                if (one.text.starts_with("The caption of"))
                    ADD_FAILURE() << entry.path().filename() << " " << name << " " << one.index << ": "
                                  << one.text;
        }
    }
}

}  // namespace
}  // namespace tarn
