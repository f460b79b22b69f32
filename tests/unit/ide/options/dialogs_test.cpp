// SPDX-License-Identifier: GPL-3.0-or-later
//
// What all dialogs of the options have in common.
#include "support/ide_fixture.h"

namespace tarn {
namespace {

std::string shownTopic;
bool noteTopic(const std::string&, const std::string& key) {
    shownTopic = key;
    return true;
}

struct Dialog {
    const char *name, *item, *caption, *topic;
};
void PrintTo(const Dialog& dialog, std::ostream* out) {
    *out << dialog.name;
}

class OptionsDialog : public IdeTest, public ::testing::WithParamInterface<Dialog> {
protected:
    void SetUp() override {
        IdeTest::SetUp();
        PROFILESTRPUT(ini(), "GenOptionsDlg", "HelpFileTypes", "qch");
        PROFILESTRPUT(ini(), "PathsOptionsDlg", "Edit2", dir);
        write(std::string(ProductWord) + ".qch", "help");
        SetHelpViewer(noteTopic);
        shownTopic.clear();
        start();
    }
    void TearDown() override {
        SetHelpViewer(nullptr);
        platform::view().setIdle({});
        EXPECT_EQ(ErrorCell(), 0) << ErrorDetails();
        IdeTest::TearDown();
    }
    [[nodiscard]] Object window() const { return Object(GetParam().name); }
    [[nodiscard]] Object in(std::string_view control) const { return FINDCONTROL(window(), control); }
    void load() {
        Load(window());
        ASSERT_TRUE(IsLoaded(window())) << ErrorDetails();
        Show(window(), false);
    }
    void key(int code) { platform::userKey(*platform::findWindow(window()), nullptr, code); }
    void press(std::string_view button) { platform::userCommand(*platform::findControl(in(button))); }
};

TEST_P(OptionsDialog, IsOpenedByItsMenuItemAndWaitsForTheUser) {
    int seen = 0;
    platform::view().setIdle([&] {
        if (!ISSHOWN(window())) return;
        ++seen;
        EXPECT_TRUE(IsModal(window()));
        EXPECT_EQ(GetCaption(window()), GetParam().caption);
        press("pushbutton2");
    });
    EXPECT_TRUE(isEnabled(GetParam().item));
    pick(GetParam().item);
    EXPECT_EQ(seen, 1);
    EXPECT_FALSE(IsLoaded(window()));
}

TEST_P(OptionsDialog, HasHelpOnItsCaption) {
    load();
    key(KEY_F1);
    EXPECT_EQ(shownTopic, GetParam().topic);
    shownTopic.clear();
    press("pushbutton3");
    EXPECT_EQ(shownTopic, GetParam().topic);
    EXPECT_TRUE(IsLoaded(window()));
}

TEST_P(OptionsDialog, IsLeftByEscWithNothingStored) {
    const std::string before = read(ini());
    load();
    key(KEY_ESCAPE);
    EXPECT_FALSE(IsLoaded(window()));
    EXPECT_EQ(read(ini()), before);
}

TEST_P(OptionsDialog, StoresTheSameTwice) {
    for (const char* path : {"Edit1", "Edit2", "Edit3", "Edit4", "Edit5"})
        PROFILESTRPUT(ini(), "PathsOptionsDlg", path, dir);
    load();
    press("pushbutton1");
    EXPECT_FALSE(IsLoaded(window())) << lastText();
    const std::string once = read(ini());
    load();
    press("pushbutton1");
    EXPECT_EQ(read(ini()), once);
}

TEST_P(OptionsDialog, LoadsWithoutSettings) {
    std::filesystem::remove(ini());
    load();
    press("pushbutton2");
    EXPECT_FALSE(IsLoaded(window()));
}

TEST_P(OptionsDialog, HasNothingOfItsPlaceOrFontInTheSettings) {
    PROFILESTRPUT(ini(), GetParam().name, "_Position", "1 2 3 4");
    PROFILESTRPUT(ini(), GetParam().name, "_Fontname", "Odd");
    PROFILESTRPUT(ini(), GetParam().name, "_Fontsize", "30");
    load();
    EXPECT_EQ(GetFontName(window()), "");
    EXPECT_NE(GetPosition(window(), WINDOW_UNIT).w, 3);
}

const Dialog dialogs[] = {
    {"CompOptionsDlg", "tools_options_comp", "Tools-Options-Compiler", "Tools_Options_Compiler"},
    {"EditorOptionsDlg", "tools_options_editor", "Tools-Options-Editor", "Tools_Options_Editor"},
    {"DebugOptionsDlg", "tools_options_debug", "Tools-Options-Debug", "Tools_Options_Debug"},
    {"GenOptionsDlg", "tools_options_gen", "Tools-Options-General", "Tools_Options_General"},
    {"PathsOptionsDlg", "tools_options_paths", "Tools-Options-Paths", "Tools_Options_Paths"},
    {"KeysOptionsDlg", "tools_options_keys", "Tools-Options-Keyboard", "Tools_Options_Keyboard"}};
INSTANTIATE_TEST_SUITE_P(All, OptionsDialog, ::testing::ValuesIn(dialogs));

}  // namespace
}  // namespace tarn
