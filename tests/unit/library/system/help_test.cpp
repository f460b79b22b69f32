// SPDX-License-Identifier: Apache-2.0
//
// Help files, pages of the web and what the registry says about them.
#include "library/system/system.h"

#include "os/files.h"
#include "platform/model/model.h"
#include "platform/model/view.h"
#include "platform/operations/dialogs.h"
#include "support/errorcell.h"
#include "support/steerable.h"
#include "support/tempfolder.h"

#include <gtest/gtest.h>

namespace tarn {
namespace {

std::vector<std::string> viewed;
bool viewHelp(const std::string& file, const std::string& key) {
    if (!file.ends_with(".chm") && !file.ends_with(".qch")) return false;
    viewed.push_back(file + "#" + key);
    return true;
}

class Help : public ::testing::Test {
protected:
    void SetUp() override {
        ClearError();
        viewed.clear();
        before_ = platform::useView(platform::makeHeadlessView([this](const platform::Question& question) {
            asked.push_back(question);
            return std::string();
        }));
    }
    void TearDown() override {
        SetHelpViewer(nullptr);
        platform::useView(std::move(before_));
        EXPECT_EQ(takeError(), 0);
    }
    std::string put(const std::string& name, std::string_view bytes = "x") {
        EXPECT_TRUE(os::saveFile(folder / name, bytes).ok());
        return folder / name;
    }
    std::string lastText() { return asked.empty() ? "" : asked.back().text; }

    TempFolder folder;
    const Variable settings{"XDG_CONFIG_HOME", folder.path()};
    const Variable browser{"BROWSER", nullptr};
    std::vector<platform::Question> asked;

private:
    std::unique_ptr<platform::View> before_;
};

TEST_F(Help, CompiledHelpGoesToTheHelpWindowWithItsTopic) {
    SetHelpViewer(viewHelp);
    MULTIHELP(0, put("a.chm"), 257, "A topic");
    MULTIHELP(0, put("a.QCH"), 257, "");
    EXPECT_EQ(viewed, (std::vector<std::string>{folder / "a.chm#A topic"}));
    EXPECT_EQ(lastText(), "Help file type '.qch' is not supported.") << "this window knows no such file";
}

TEST_F(Help, WithoutAClassicViewerTheUserIsToldByWhatStandsInForIt) {
    const Variable system("WINDIR", folder.path());
    const std::string help = put("a.hlp");
    SetHelpViewer(viewHelp);
    MULTIHELP(0, help, 257, "Topic");
    EXPECT_EQ(lastText(), "Help file type '.hlp' is not supported.");
    asked.clear();
    ASSERT_EQ(os::files().makeFolder(folder / "help"), os::FileError::None);
    put("help/nthelp.chm");
    MULTIHELP(0, help, 257, "Topic");
    EXPECT_EQ(viewed.back(), STRREPLACE(folder / "help\\nthelp.chm#", "\\", "\\"));
    put("viewhlp.chm");
    MULTIHELP(0, help, 257, "Topic");
    EXPECT_EQ(viewed.back(), folder / "viewhlp.chm#") << "the one beside the help file comes first";
    EXPECT_TRUE(asked.empty());
}

TEST_F(Help, AFileWithoutAnExtensionIsOfNoKnownType) {
    MULTIHELP(0, put("readme"), 257, "Topic");
    EXPECT_EQ(asked.back().title, "MultiHelp");
    EXPECT_EQ(lastText(), "Help file type '' is not supported.");
}

// ---- pages ----

TEST_F(Help, TheBrowserOfTheRegistryGetsThePage) {
    os::SteeredProcesses processes;
    const os::Steered steered(processes);
    const std::string program = put("my browser", "#!/bin/sh\n");
    struct Case {
        std::string command;
        std::vector<std::string> arguments;
    };
    const std::string url = "http://www.x.org/?a=b&c=$d;e \"f\"";
    const Case cases[] = {{QUOTEARGUMENT(program), {url}},
                          {QUOTEARGUMENT(program) + " -new", {"-new", url}},
                          {QUOTEARGUMENT(program) + " \"--url=%1\" -x", {"--url=" + url, "-x"}}};
    for (const Case& c : cases) {
        ASSERT_EQ(RegSaveSetting("http\\shell\\open\\command", "", c.command), "");
        EXPECT_EQ(REGGETBROWSER(), c.command);
        OPENBROWSER(0, url);
        ASSERT_FALSE(processes.started().empty());
        EXPECT_EQ(processes.started().back().program, program);
        EXPECT_EQ(processes.started().back().arguments, c.arguments) << c.command;
    }
    EXPECT_TRUE(asked.empty());
}

TEST_F(Help, WithoutABrowserTheUserIsToldTheAddress) {
    // One that the registry names and that is not there leaves it to the desktop.
    ASSERT_EQ(RegSaveSetting("http\\shell\\open\\command", "", folder / "none"), "");
    OPENBROWSER(0, "http://www.x.org/");
    EXPECT_TRUE(asked.empty()) << "the desktop has one";
    const bool before = platform::setHeadlessBrowser(false);
    OPENBROWSER(0, "http://www.x.org/");
    EXPECT_EQ(lastText(), "It is not possible to visit the following website: http://www.x.org/\n"
                          "The default browser cannot be found.");
    MULTIHELP(0, put("a.htm"), 257, "Getting Started");
    EXPECT_EQ(lastText(), "It is not possible to visit the following website: file://" + folder.path() +
                              "/a.htm#Getting_Started\nThe default browser cannot be found.");
    EXPECT_EQ(asked.size(), 2U) << "one box for each";
    platform::setHeadlessBrowser(before);
}

TEST_F(Help, TheBrowserIsTheRegistrysElseTheVariablesElseTheDesktops) {
    const std::string program = put("browse");
    {
        const Variable path("PATH", folder.path()), variable("BROWSER", "browse:other");
        EXPECT_EQ(REGGETBROWSER(), program);
    }
    {
        const Variable path("PATH", folder.path()), variable("BROWSER", "none:browse");
        EXPECT_EQ(REGGETBROWSER(), "");
        const std::string opener = put("xdg-open");
        EXPECT_EQ(REGGETBROWSER(), opener);
    }
}

// ---- registry ----

TEST_F(Help, TheRegistryTellsOfItsValues) {
    EXPECT_FALSE(REGGETSETTINGINFO("Key").exists);
    ASSERT_EQ(RegSaveSetting("Key", "", "12"), "");
    ASSERT_EQ(RegSaveSetting("Key", "name", "text"), "");
    const RegInfo whole = REGGETSETTINGINFO("KEY"), named = REGGETSETTINGINFO("Key", "NAME");
    EXPECT_TRUE(whole.exists);
    EXPECT_TRUE(whole.number);
    EXPECT_EQ(whole.length, 2);
    EXPECT_TRUE(named.exists);
    EXPECT_FALSE(named.number);
    EXPECT_EQ(named.length, 4);
    EXPECT_FALSE(REGGETSETTINGINFO("Key", "other").exists);
}

TEST_F(Help, VersionsAndCompatibilityAreReadFromTheirKeys) {
    EXPECT_EQ(REGGETCURRENTVERSION("ProgramFilesDir"), "");
    EXPECT_EQ(GETAPPLICATIONCOMPATIBILITYFLAGS("/t/tool"), "");
    EXPECT_EQ(GETAPPLICATIONCOMPATIBILITYFLAGS(""), "");
    ASSERT_EQ(RegSaveSetting("SOFTWARE\\Microsoft\\Windows\\CurrentVersion", "ProgramFilesDir", "/opt"), "");
    ASSERT_EQ(RegSaveSetting("SOFTWARE\\Microsoft\\Windows NT\\CurrentVersion\\AppCompatFlags\\Layers",
                             "/t/tool", "WIN95"),
              "");
    EXPECT_EQ(REGGETCURRENTVERSION("programfilesdir"), "/opt");
    EXPECT_EQ(GETAPPLICATIONCOMPATIBILITYFLAGS("/t/tool"), "WIN95");
}

TEST_F(Help, TheResourcesOfTheProgramAreThoseThatItLoadsFrom) {
    const std::string before = ApplicationResources();
    SetApplicationResources("/x/y.rcx");
    EXPECT_EQ(APPRESOURCEFILE(), "/x/y.rcx");
    SetApplicationResources(before);
}

}  // namespace
}  // namespace tarn
