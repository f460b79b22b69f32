// SPDX-License-Identifier: Apache-2.0
#include "platform/registry.h"

#include "os/files.h"
#include "support/steerable.h"
#include "support/tempfolder.h"

#include <gtest/gtest.h>

namespace tarn::platform {
namespace {

constexpr const char* appPaths = "SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\App Paths";
const std::string ideKey = std::string(appPaths) + "\\ide.exe";

class RegistryTest : public testing::Test {
protected:
    [[nodiscard]] std::string text() const { return disk_.contents("/home/u/.config/tarnwick/registry.ini"); }
    void put(const std::string& contents) { disk_.put("/home/u/.config/tarnwick/registry.ini", contents); }

    Variable settings_{"XDG_CONFIG_HOME", "/home/u/.config"};
    os::SteeredFiles disk_;
    os::Steered steered_{disk_};
    void SetUp() override { disk_.putFolder("/home/u"); }
};

TEST_F(RegistryTest, aMissingFileIsAnEmptyRegistry) {
    EXPECT_FALSE(RegKeyExists(ideKey));
    EXPECT_EQ(RegGetSetting(ideKey, ""), "");
    EXPECT_EQ(RegGetAllSections(""), "");
    EXPECT_EQ(RegGetAllSettings(ideKey), "");
    EXPECT_EQ(RegDeleteSetting(ideKey, "x"), "");
    EXPECT_FALSE(disk_.has("/home/u/.config"));
}

TEST_F(RegistryTest, whatIsSavedIsRead) {
    EXPECT_EQ(RegSaveSetting(ideKey, "", "/opt/tarnwick/ide.exe"), "");
    EXPECT_EQ(RegSaveSetting(ideKey, "Path", "/opt/tarnwick"), "");
    EXPECT_EQ(RegGetSetting(ideKey, ""), "/opt/tarnwick/ide.exe");
    EXPECT_EQ(RegGetSetting(ideKey, "Path"), "/opt/tarnwick");
    EXPECT_EQ(RegGetSetting(ideKey, "Other"), "");
    EXPECT_EQ(text(), "[" + ideKey + "]\n=/opt/tarnwick/ide.exe\nPath=/opt/tarnwick\n");
    EXPECT_EQ(RegSaveSetting(ideKey, "Path", "/usr"), "");
    EXPECT_EQ(RegGetSetting(ideKey, "Path"), "/usr");
    EXPECT_EQ(text(), "[" + ideKey + "]\n=/opt/tarnwick/ide.exe\nPath=/usr\n");
}

TEST_F(RegistryTest, keysAndNamesCompareWithoutCase) {
    EXPECT_EQ(RegSaveSetting(ideKey, "Path", "a"), "");
    EXPECT_EQ(RegGetSetting("software\\MICROSOFT\\windows\\currentversion\\app paths\\IDE.EXE", "PATH"), "a");
    EXPECT_EQ(
        RegSaveSetting("\\software\\microsoft\\\\windows\\CurrentVersion\\App Paths\\Ide.exe\\", "path", "b"),
        "");
    EXPECT_EQ(text(), "[" + ideKey + "]\nPath=b\n");
    EXPECT_TRUE(RegKeyExists("SOFTWARE\\microsoft"));
    EXPECT_EQ(RegGetSetting("\xc4", ""), "");
    EXPECT_EQ(RegSaveSetting("\xc4", "", "x"), "");
    EXPECT_FALSE(RegKeyExists("\xe4"));
}

TEST_F(RegistryTest, aKeyExistsWithThoseAboveItAndNoOthers) {
    EXPECT_EQ(RegSaveSetting("A\\B\\C", "n", "v"), "");
    EXPECT_TRUE(RegKeyExists("A\\B\\C"));
    EXPECT_TRUE(RegKeyExists("A\\B"));
    EXPECT_TRUE(RegKeyExists("a"));
    EXPECT_FALSE(RegKeyExists("A\\B\\C\\D"));
    EXPECT_FALSE(RegKeyExists("A\\B\\"
                              "CC"));
    EXPECT_FALSE(RegKeyExists("A\\B\\"
                              "c\\n"));
    EXPECT_FALSE(RegKeyExists("B"));
    EXPECT_FALSE(RegKeyExists("A\\"
                              "BB"));
}

TEST_F(RegistryTest, valuesAndNamesHoldAnyBytes) {
    std::string all;
    for (int i = 0; i < 256; ++i) all += static_cast<char>(i);
    const std::string odd[] = {all,
                               "\r\n",
                               "\\",
                               "\\n",
                               "\\\\",
                               " blanks ",
                               "=",
                               "a=b",
                               "[x]",
                               ";c",
                               "#c",
                               "n",
                               "r",
                               "ends with \\",
                               "\n",
                               "\r",
                               "\n[other]\nx=y",
                               std::string(100'000, '\\')};
    for (const std::string& one : odd) {
        EXPECT_EQ(RegSaveSetting("Key", one, one + "!"), "");
        EXPECT_EQ(RegSaveSetting("Key", "v", one), "");
        EXPECT_EQ(RegGetSetting("Key", "v"), one);
    }
    for (const std::string& one : odd)
        EXPECT_EQ(RegGetSetting("Key", one), one + "!") << testing::PrintToString(one);
    EXPECT_EQ(RegGetAllSections(""), "Key");
}

TEST_F(RegistryTest, aKeyThatIsNotOneLineIsRefused) {
    for (const char* const key : {"", "\\", "\\\\\\", "a\nb", "a\rb", "a\n[b]"}) {
        EXPECT_NE(RegSaveSetting(key, "n", "v"), "") << key;
    }
    EXPECT_EQ(text(), "");
    for (const char* const key : {"a]b", "[a]", "]", "a=b", ";a", " a "}) {
        EXPECT_EQ(RegSaveSetting(key, "n", key), "") << key;
    }
    for (const char* const key : {"a]b", "[a]", "]", "a=b", ";a", " a "})
        EXPECT_EQ(RegGetSetting(key, "n"), key);
}

TEST_F(RegistryTest, deletingTakesTheValueAndLeavesTheKey) {
    EXPECT_EQ(RegSaveSetting("A", "n", "1"), "");
    EXPECT_EQ(RegSaveSetting("A", "m", "2"), "");
    EXPECT_EQ(RegDeleteSetting("a", "N"), "");
    EXPECT_EQ(RegGetSetting("A", "n"), "");
    EXPECT_EQ(RegGetSetting("A", "m"), "2");
    EXPECT_EQ(RegDeleteSetting("A", "m"), "");
    EXPECT_TRUE(RegKeyExists("A"));
    EXPECT_EQ(text(), "[A]\n");
    disk_.clearLog();
    EXPECT_EQ(RegDeleteSetting("A", "none"), "");
    EXPECT_EQ(disk_.calls(), 0);
}

TEST_F(RegistryTest, subKeysAndSettingsAreListed) {
    EXPECT_EQ(RegSaveSetting("Root\\One\\Deep", "n", "v"), "");
    EXPECT_EQ(RegSaveSetting("Root\\Two", "first", "1"), "");
    EXPECT_EQ(RegSaveSetting("ROOT\\one", "x", "y"), "");
    EXPECT_EQ(RegSaveSetting("root\\two", "second", "line\nfeed"), "");
    EXPECT_EQ(RegSaveSetting("Rooted\\Three", "n", "v"), "");
    EXPECT_EQ(RegGetAllSections("Root"), "One\nTwo");
    EXPECT_EQ(RegGetAllSections("root\\ONE"), "Deep");
    EXPECT_EQ(RegGetAllSections(""), "Root\nRooted");
    EXPECT_EQ(RegGetAllSections("Root\\Two"), "");
    EXPECT_EQ(RegGetAllSettings("Root\\Two"), "first=1\nsecond=line\\nfeed");
    EXPECT_EQ(RegGetAllSettings("Root"), "");
}

TEST_F(RegistryTest, whatOthersWroteIsKept) {
    put("; a remark\r\nstray\r\n[A]\r\n# another\r\nn=1\r\nno setting\r\n\r\n[]\n[\\]\n[B]\nm=2");
    EXPECT_EQ(RegGetSetting("A", "n"), "1");
    EXPECT_EQ(RegGetSetting("B", "m"), "2");
    EXPECT_EQ(RegSaveSetting("A", "new", "3"), "");
    EXPECT_EQ(RegSaveSetting("B", "m", "4"), "");
    EXPECT_EQ(text(), "; a remark\nstray\n[A]\n# another\nn=1\nno setting\n\n[]\n[\\]\nnew=3\n[B]\nm=4\n");
}

TEST_F(RegistryTest, ofAKeyThatStandsTwiceTheFirstValueCounts) {
    put("[A]\nn=1\n[a]\nn=2\nm=3\n");
    EXPECT_EQ(RegGetSetting("A", "n"), "1");
    EXPECT_EQ(RegGetSetting("A", "m"), "3");
    EXPECT_EQ(RegSaveSetting("A", "m", "4"), "");
    EXPECT_EQ(text(), "[A]\nn=1\n[a]\nn=2\nm=4\n");
    EXPECT_EQ(RegDeleteSetting("A", "n"), "");
    EXPECT_EQ(RegGetSetting("A", "n"), "");
}

TEST_F(RegistryTest, anUnchangedValueIsNotWritten) {
    EXPECT_EQ(RegSaveSetting("A", "n", "1"), "");
    disk_.clearLog();
    EXPECT_EQ(RegSaveSetting("a", "N", "1"), "");
    EXPECT_EQ(disk_.calls(), 0);
    EXPECT_EQ(RegSaveSetting("A", "empty", ""), "");
    EXPECT_GT(disk_.calls(), 0);
}

TEST_F(RegistryTest, aFailedSaveIsToldAndLeavesTheRegistryAsItWas) {
    EXPECT_EQ(RegSaveSetting("A", "n", "1"), "");
    const std::string before = text();
    for (int call = 1; call <= 5; ++call) {
        disk_.failAt(call, os::FileError::DiskFull);
        EXPECT_EQ(RegSaveSetting("A", "n", "2"), "The disk is full.") << call;
        disk_.stopFailing();
        EXPECT_EQ(text(), before);
        disk_.failAt(call, os::FileError::DiskFull);
        EXPECT_EQ(RegDeleteSetting("A", "n"), "The disk is full.") << call;
        disk_.stopFailing();
        EXPECT_EQ(text(), before);
    }
}

TEST_F(RegistryTest, anUnreadableRegistryIsNotOverwritten) {
    put("[A]\nn=1\n");
    EXPECT_EQ(disk_.setMode("/home/u/.config/tarnwick/registry.ini", 0200), os::FileError::None);
    EXPECT_NE(RegSaveSetting("A", "m", "2"), "");
    EXPECT_NE(RegDeleteSetting("A", "n"), "");
    EXPECT_EQ(text(), "[A]\nn=1\n");
    EXPECT_EQ(RegGetSetting("A", "n"), "");
}

TEST_F(RegistryTest, savesDoNotWaitForTheDisk) {
    disk_.clearLog();
    EXPECT_EQ(RegSaveSetting("A", "n", "1"), "");
    for (const std::string& line : disk_.log()) EXPECT_FALSE(line.starts_with("sync")) << line;
}

TEST_F(RegistryTest, AValueTellsWhatIsKnownOfIt) {
    struct Case {
        const char* value;
        std::int64_t length;
        bool number;
    };
    for (const Case& one : {Case{"", 0, false},
                            {"12", 2, true},
                            {"-7", 2, true},
                            {"+", 1, false},
                            {"1.5", 3, false},
                            {"text", 4, false},
                            {"two\nlines", 9, false}}) {
        ASSERT_EQ(RegSaveSetting("Key", "name", one.value), "");
        const RegInfo info = RegGetSettingInfo("KEY", "Name");
        EXPECT_TRUE(info.exists) << one.value;
        EXPECT_EQ(info.length, one.length) << one.value;
        EXPECT_EQ(info.number, one.number) << one.value;
    }
    EXPECT_FALSE(RegGetSettingInfo("Key", "other").exists);
    EXPECT_FALSE(RegGetSettingInfo("Other", "name").exists);
    EXPECT_EQ(RegGetSettingInfo("", "").length, 0);
}

}  // namespace
}  // namespace tarn::platform
