// SPDX-License-Identifier: Apache-2.0
//
// Names of keys, and the keys and hints of items and controls.
#include "platform/model/model.h"
#include "platform/model/state.h"
#include "platform/resources/resource.h"
#include "platform/windowing.h"
#include "support/tempfolder.h"

#include "os/files.h"

#include <gtest/gtest.h>

#include <set>

namespace tarn::platform {
namespace {

TEST(ShortcutNames, EveryNameLeadsToItsKeysAndBack) {
    std::set<std::string> seen;
    for (int modifiers = 0; modifiers < 8; modifiers++) {
        for (int key = 1; key < 0x1000; key++) {
            const int keys = key | modifiers << 12;
            const std::string name = shortcutName(keys);
            if (name.empty()) continue;
            EXPECT_TRUE(seen.insert(name).second) << name;
            EXPECT_EQ(shortcutFromText(name), keys) << name;
            EXPECT_EQ(ShortcutName(name), name);
        }
    }
    EXPECT_GE(seen.size(), 8U * (26 + 10 + 24 + 17));
    EXPECT_EQ(shortcutName(0), "");
}

TEST(ShortcutNames, AreReadInAnyCaseAndOrderAndByTheirOtherNames) {
    const struct {
        const char *text, *name;
    } cases[] = {{"ctrl+s", "Ctrl+S"},
                 {"SHIFT+CTRL+f9", "Ctrl+Shift+F9"},
                 {"Alt+Shift+Ctrl+x", "Ctrl+Shift+Alt+X"},
                 {"Delete", "Del"},
                 {"return", "Enter"},
                 {"Ctrl+PageDown", "Ctrl+PgDn"},
                 {"F24", "F24"},
                 {"5", "5"},
                 {"Esc", "Escape"},
                 {"ctrl+plus", "Ctrl+Plus"},
                 {"MINUS", "Minus"},
                 {"Ctrl+Ctrl+A", "Ctrl+A"}};
    for (const auto& one : cases) EXPECT_EQ(ShortcutName(one.text), one.name);
    for (const char* none : {"", "Ctrl", "Ctrl+", "Ctrl++", "+", ".", "Ctrl+.", "F0", "F25", "Fx", "Super+A",
                             "A+Ctrl", " Ctrl+A", "Ctrl+A ", "Ctrl +A", "\xC3\xA4", "Ctrl+ab"})
        EXPECT_EQ(ShortcutName(none), "") << none;
}

TEST(ShortcutNames, TextsKeepTheirKeysForThemselves) {
    for (const char* kept :
         {"Ctrl+A",   "Ctrl+C",    "Ctrl+V",         "Ctrl+X",     "Ctrl+Z", "Ctrl+Y",    "Ctrl+Shift+Z",
          "Ctrl+Ins", "Shift+Ins", "Shift+Del",      "Ins",        "Del",    "Backspace", "Ctrl+Backspace",
          "Ctrl+Del", "Home",      "Ctrl+Shift+End", "Shift+PgUp", "Left",   "Ctrl+Down"})
        EXPECT_TRUE(IsTextKey(kept)) << kept;
    for (const char* free : {"Ctrl+S", "F3", "Alt+Home", "Alt+Left", "Ctrl+Enter", "Ctrl+Shift+C",
                             "Ctrl+Space", "Ctrl+Plus", "Ctrl+Minus", "Ctrl+0", "", "x y"})
        EXPECT_FALSE(IsTextKey(free)) << free;
}

class MenuKeys : public ::testing::Test {
protected:
    const TempFolder folder;
    const Object window{"Keys"}, item{"Keys", 11}, inner{"Keys", 13}, edit{"Keys", 1}, label{"Keys", 2};
    std::unique_ptr<View> before;
    void SetUp() override {
        before = useView(makeHeadlessView());
        ASSERT_TRUE(os::saveFile(folder / "k.rc",
                                 "Keys DIALOG\n  MENU=KeysMenu\n"
                                 "  Edit edit1 1\n    HINT=\"A hint\"\n  Label label1 2\nEND\n"
                                 "KeysMenu MENU\n"
                                 "  Menuitem a 10\n    POSITION=1\n    CAPTION=\"A\"\n"
                                 "  Menuitem b 11\n    POSITION=2\n    CAPTION=\"B\"\n"
                                 "    SHORTCUT=\"Ctrl+B\"\n"
                                 "  Menuitem c 12\n    POSITION=2\n    CAPTION=\"C\"\n"
                                 "  Menuitem d 13\n    POSITION=3\n    CAPTION=\"D\"\nEND\n")
                        .ok());
        ASSERT_EQ(Load(window, folder / "k.rc", "Keys"), "");
    }
    void TearDown() override {
        DestroyAllWindows();
        useView(std::move(before));
    }
};

TEST_F(MenuKeys, AnItemHasItsKeysAndGetsOthers) {
    EXPECT_EQ(GetShortcut(item).value, "Ctrl+B");
    EXPECT_EQ(GetShortcut(inner).value, "");
    EXPECT_EQ(SetShortcut(item, "shift+f5"), Ok);
    EXPECT_EQ(GetShortcut(item).value, "Shift+F5");
    EXPECT_EQ(SetShortcut(item, "nothing"), Ok);
    EXPECT_EQ(GetShortcut(item).value, "");
}

TEST_F(MenuKeys, AControlHasNone) {
    EXPECT_EQ(SetShortcut(edit, "F5"), Ok);
    EXPECT_EQ(GetShortcut(edit).value, "");
    EXPECT_EQ(GetShortcut(window).code, Ok);
}

TEST_F(MenuKeys, TheLevelOfAnItemIsKnown) {
    EXPECT_EQ(GetMenulevel(Object("Keys", 10)).value, 1);
    EXPECT_EQ(GetMenulevel(item).value, 2);
    EXPECT_EQ(GetMenulevel(inner).value, 3);
    EXPECT_EQ(GetMenulevel(edit).value, 0);
}

TEST_F(MenuKeys, AHintIsReadAndChanged) {
    EXPECT_EQ(GetHint(edit).value, "A hint");
    EXPECT_EQ(SetHint(edit, "Another"), Ok);
    EXPECT_EQ(GetHint(edit).value, "Another");
    EXPECT_EQ(GetHint(label).value, "");
}

TEST_F(MenuKeys, AnEditTakesTheFlagOfKeysAndNoOther) {
    EXPECT_EQ(SetFlags(edit, int{KEYFIELD} | int{READONLY} | int{STATUSBAR}), Ok);
    EXPECT_EQ(GetFlags(edit).value, KEYFIELD);
    EXPECT_FALSE(GetReadonly(edit).value);
    EXPECT_EQ(SetFlags(label, KEYFIELD), Ok);
    EXPECT_EQ(GetFlags(label).value, 0);
}

}  // namespace
}  // namespace tarn::platform
