// SPDX-License-Identifier: GPL-3.0-or-later
//
// Each topic that the sources ask for stands in the help: the topics that are written out, the captions of dialogs with
// "_" for "-", the titles of boxes; and the keys of the menu stand on the page of the keys. The pages for a browser
// have the same anchors as the compiled help, which tests/ui/help_test.cpp holds against them.
#include "ide/shell/idecore.h"
#include "support/ide_fixture.h"

#include <filesystem>
#include <regex>
#include <set>

namespace tarn {
namespace {

std::string textOf(const std::filesystem::path& path) {
    std::string bytes;
    os::readFile(path.string(), bytes);
    return bytes;
}

// What the pattern's group finds in the files of an extension.
std::set<std::string> foundIn(const std::string& folder, const std::string& extension, const char* pattern) {
    const std::regex regex(pattern);
    std::set<std::string> found;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(folder)) {
        if (entry.path().extension() != extension) continue;
        const std::string text = textOf(entry.path());
        for (std::sregex_iterator hit(text.begin(), text.end(), regex), end; hit != end; ++hit)
            found.insert((*hit)[1].str());
    }
    return found;
}

bool hasTopic(const std::string& pages, const std::string& topic) {
    return pages.find("id=\"" + STRLOWER(STRREPLACE(topic, " ", "_")) + "\"") != std::string::npos;
}

TEST(HelpTopics, OfTheSourcesStandInTheHelp) {
    const std::string pages = textOf(BINARY_DIR "/help/Tarnwick.htm");
    std::set<std::string> topics = foundIn(SOURCE_DIR "/src/ide", ".cpp", R"re(SHOWHELP\("([^"]+)"\))re");
    EXPECT_GE(topics.size(), 11U);
    EXPECT_TRUE(topics.contains("Help_Run-time Errors"));
    for (const std::string& topic : topics) EXPECT_TRUE(hasTopic(pages, topic)) << topic;
}

TEST(HelpTopics, OfTheDialogsStandInTheHelp) {
    const std::string pages = textOf(BINARY_DIR "/help/Tarnwick.htm");
    const auto captions = foundIn(SOURCE_DIR "/src/ide", ".rc", "\n  CAPTION=\"([^\"]+)\"");
    EXPECT_GE(captions.size(), 10U);
    EXPECT_TRUE(captions.contains("Run-Arguments"));
    for (const std::string& caption : captions)
        EXPECT_TRUE(hasTopic(pages, HELPTOPIC(caption))) << HELPTOPIC(caption);
}

TEST(HelpTopics, OfTheBoxesStandInTheHelp) {
    const std::string pages = textOf(BINARY_DIR "/help/Tarnwick.htm");
    const auto titles =
        foundIn(SOURCE_DIR "/src/ide", ".cpp", R"re((?:MSGBOX|MsgBox|ListBox|LISTBOX)\("([^"$]+)",)re");
    EXPECT_GE(titles.size(), 5U);
    for (const std::string& title : titles) {
        const bool ours = title != "MultiHelp" && !title.starts_with("Error ");
        EXPECT_TRUE(!ours || hasTopic(pages, HELPTOPIC(title))) << title;
    }
}

TEST(HelpTopics, ThePageOfTheKeysHasTheKeysOfTheMenu) {
    const std::string page = textOf(SOURCE_DIR "/docs/help/keyboard.md");
    const auto keys = foundIn(SOURCE_DIR "/src/ide/shell", ".rc", "SHORTCUT=\"([^\"]+)\"");
    EXPECT_GE(keys.size(), 15U);
    for (const std::string& key : keys)
        EXPECT_NE(page.find("<kbd>" + key + "</kbd>"), std::string::npos) << key;
}

}  // namespace
}  // namespace tarn
