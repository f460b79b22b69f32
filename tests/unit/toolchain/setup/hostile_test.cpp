// SPDX-License-Identifier: Apache-2.0
//
// Installers and what they have installed, started by users that do what nobody thought of.
#include "support/installer_fixture.h"
#include "toolchain/setup/package.h"

#include <fcntl.h>
#include <unistd.h>

namespace tarn::toolchain {
namespace {

constexpr const char* InstallerOptions = "options: --quiet, --home, --system, --folder FOLDER, --check\n";
constexpr const char* UninstallerOptions = "options: --quiet\n";

TEST_F(SmallInstaller, EachProgramTellsItsOwnOptions) {
    EXPECT_EQ(withHome(installer, {"--nonsense"}), 2);
    EXPECT_EQ(output, std::string("There is no option '--nonsense'.\n") + InstallerOptions);
    ASSERT_EQ(withHome(installer, {"--quiet"}), 0) << output;
    for (const std::vector<std::string>& arguments : {std::vector<std::string>{"--nonsense"},
                                                      {"--quiet", "--home"},
                                                      {"--quiet", "--system"},
                                                      {"--quiet", "--folder", dir},
                                                      {"--quiet", "--of", installer},
                                                      {"--check"},
                                                      {""}}) {
        EXPECT_EQ(withHome(app + "/uninstall", arguments), 2) << arguments.back();
        EXPECT_TRUE(output.starts_with("There is no option '")) << output;
        EXPECT_TRUE(output.ends_with(UninstallerOptions)) << arguments.back();
        expectRunsAt(app);
    }
    ASSERT_EQ(withHome(app + "/uninstall", {"--quiet"}), 0) << output;
    EXPECT_EQ(allIn(home), "/Desktop\n");
}

TEST_F(SmallInstaller, OptionsThatContradictEachOtherInstallNothing) {
    const std::string
        places = "It can be installed in one place only: give one of --home, --system and --folder.\n",
        check = "--check installs nothing, so it takes no place.\n",
        folder = "The folder behind --folder is missing.\n";
    const std::pair<std::vector<std::string>, std::string> cases[] = {
        {{"--home", "--folder", dir + "x"}, places},
        {{"--folder", dir + "x", "--home"}, places},
        {{"--folder", dir + "x", "--folder", dir + "y"}, places},
        {{"--system", "--home"}, places},
        {{"--folder", dir + "x", "--system"}, places},
        {{"--home", "--home"}, places},
        {{"--check", "--home"}, check},
        {{"--folder", dir + "x", "--check"}, check},
        {{"--folder"}, folder},
        {{"--folder", ""}, folder},
        {{"--folder", "--quiet"}, folder},
    };
    for (auto [arguments, problem] : cases) {
        arguments.insert(arguments.begin(), "--quiet");
        EXPECT_EQ(withHome(installer, arguments), 2) << arguments[1];
        EXPECT_EQ(output, problem + InstallerOptions) << arguments[1];
        EXPECT_EQ(allIn(home), "/Desktop\n") << arguments[1];
        EXPECT_FALSE(std::filesystem::exists(dir + "x"));
    }
    EXPECT_EQ(withHome(installer, {"--quiet", "--check"}), 0) << output;
    EXPECT_EQ(withHome(installer, {"--home", "--quiet"}), 0) << output;
    expectRunsAt(app);
    EXPECT_EQ(withHome(installer, {"--folder", "./--home", "--quiet"}), 0)
        << "a folder of that name: " << output;
}

TEST_F(SmallInstaller, AnUninstallerWithoutItsListSaysThat) {
    ASSERT_EQ(withHome(installer, {"--quiet"}), 0) << output;
    for (const char* const list : {"", "tarnwick installed 1\nname small\nwhat is this\n"}) {
        std::filesystem::remove(app + "/uninstall.list");
        if (*list != 0) {
            ASSERT_TRUE(os::saveFile(app + "/uninstall.list", list, os::Durability::Unsynced).ok());
        }
        EXPECT_EQ(withHome(app + "/uninstall", {"--quiet"}), 1);
        EXPECT_EQ(output,
                  "Nothing can be removed from '" + app +
                      "': the list of what was installed, 'uninstall.list', is missing or damaged.\n");
        expectRunsAt(app);
    }
    EXPECT_EQ(withHome(installer, {"--quiet"}), 1) << "the place is no longer known";
}

TEST_F(SmallInstaller, FilesAndFoldersOfTheUserStayAndAreTold) {
    ASSERT_EQ(withHome(installer, {"--quiet"}), 0) << output;
    std::filesystem::create_directories(app + "/mine/deep");
    ASSERT_TRUE(os::saveFile(app + "/mine/deep/notes", "the user's", os::Durability::Unsynced).ok());
    std::filesystem::remove(app + "/data.txt");
    std::filesystem::create_directories(app + "/data.txt/kept");  // in the place of a file of ours
    ASSERT_EQ(withHome(installer, {"--quiet"}), 0) << "over itself: " << output;
    EXPECT_TRUE(std::filesystem::is_directory(app + "/data.txt.saved/kept"));
    EXPECT_EQ(os::sizeOf(app + "/data.txt"), 4);
    EXPECT_EQ(allIn(home).find(".setup"), std::string::npos) << allIn(home);
    std::filesystem::remove(app + "/data.txt");
    std::filesystem::create_directories(app + "/data.txt/again");
    ASSERT_EQ(withHome(app + "/uninstall", {"--quiet"}), 0) << output;
    EXPECT_EQ(output, "Files in '" + app + "' that were not installed have stayed.\n");
    EXPECT_EQ(allIn(app), "/data.txt\n/data.txt.saved\n/data.txt.saved/kept\n/data.txt/again\n/mine\n"
                          "/mine/deep\n/mine/deep/notes\n/uninstall.list\n");
    EXPECT_EQ(os::sizeOf(app + "/mine/deep/notes"), 10);
}

TEST_F(SmallInstaller, ALinkOfTheUserIsRemovedAndNotWhatItLeadsTo) {
    const std::string far = write("far.txt", "far away");
    ASSERT_EQ(withHome(installer, {"--quiet"}), 0) << output;
    std::filesystem::remove(app + "/data.txt");
    std::filesystem::create_symlink(far, app + "/data.txt");
    ASSERT_EQ(withHome(app + "/uninstall", {"--quiet"}), 0) << output;
    EXPECT_EQ(read("far.txt"), "far away");
    EXPECT_EQ(allIn(home), "/Desktop\n");
}

TEST_F(SmallInstaller, AnInstallationThatWasMovedAndLinkedIsReplacedAndRemoved) {
    ASSERT_EQ(withHome(installer, {"--quiet"}), 0) << output;
    ASSERT_TRUE(os::saveFile(app + "/notes", "the user's", os::Durability::Unsynced).ok());
    std::filesystem::rename(app, dir + "moved");
    std::filesystem::create_symlink(dir + "moved", app);
    ASSERT_EQ(withHome(installer, {"--quiet"}), 0) << output;
    expectRunsAt(app);
    EXPECT_EQ(os::sizeOf(app + "/notes"), 10);
    EXPECT_EQ(allIn(home).find(".setup"), std::string::npos) << allIn(home);
    std::filesystem::remove(app + "/notes");
    ASSERT_EQ(withHome(app + "/uninstall", {"--quiet"}), 0) << output;
    EXPECT_EQ(allIn(home), "/Desktop\n");
}

TEST_F(SmallInstaller, NamesOfFoldersAreTakenAsTheyAre) {
    for (const char* name : {"-rf", "--quiet", " a b ", "it's", "say \"hi\"", "$HOME `id`", "%s", "\xff\x80",
                             "[1]*?", ".hidden"}) {
        const std::string place = dir + "in/" + name;
        ASSERT_EQ(withHome(installer, {"--quiet", "--folder", place}), 0) << name << output;
        expectRunsAt(place);
        ASSERT_EQ(withHome(place + "/uninstall", {"--quiet"}), 0) << name << output;
        EXPECT_FALSE(std::filesystem::exists(place)) << name;
    }
    for (const char* name : {"a\nb", "a\\b"}) {
        EXPECT_EQ(withHome(installer, {"--quiet", "--folder", dir + name}), 1);
        EXPECT_NE(output.find("is no full path of a folder."), std::string::npos) << output;
    }
    EXPECT_EQ(withHome(installer, {"--quiet", "--folder", dir + std::string(250, 'x')}), 1);
    EXPECT_NE(output.find("The name is too long"), std::string::npos) << output;
    EXPECT_EQ(withHome(installer, {"--quiet", "--folder", "/"}), 1);
    EXPECT_EQ(withHome(installer, {"--quiet", "--folder", dir}), 1) << "not an empty folder";
    EXPECT_EQ(allIn(home), "/Desktop\n");
}

TEST_F(AtHome, FilesOfAllNamesAreInstalledAndRemoved) {
    const std::string program = write("small/small.exe", "#!/bin/sh\necho greets\n");
    std::string files = program + "\n";
    for (const char* name : {"-rf", " a b ", "it's", "say \"hi\"", "$HOME `id`", "%s;x", "\xff\x80", "[1]*?",
                             "{app}", "a=b", ";"})
        files += write("small/" + std::string(name), name) + "\n";
    makeInstaller(files, program);
    ASSERT_EQ(withHome(installer, {"--quiet"}), 0) << output;
    for (const char* name : {"-rf", " a b ", "say \"hi\"", "\xff\x80", "{app}", ";"})
        EXPECT_EQ(os::sizeOf(home + "/.local/opt/small/" + name), static_cast<std::int64_t>(strlen(name)))
            << name;
    ASSERT_EQ(withHome(home + "/.local/opt/small/uninstall", {"--quiet"}), 0) << output;
    EXPECT_EQ(allIn(home), "/Desktop\n");
}

// At every thousandth place of a file that is as large as one with its libraries.
TEST_F(AtHome, AByteThatIsChangedIsFoundAtEveryThousandthPlace) {
    const std::string program = write("small/small.exe", "#!/bin/sh\necho greets\n");
    std::string noise(300'000, ' ');
    unsigned state = 1;
    for (char& c : noise) c = static_cast<char>((state = state * 1664525U + 1013904223U) >> 24U);
    makeInstaller(program + "\n" + write("small/noise", noise) + "\n", program);
    std::string bytes = read("made-install.exe");
    const std::size_t size = bytes.size(), setup = size - 300'000;
    setup::Layout layout;
    ASSERT_EQ(setup::checkInstaller(installer, layout), setup::Whole::Yes);
    const int file = ::open(installer.c_str(), O_RDWR);
    // Of the program that installs every hundredth thousandth: the checking reads the whole each time.
    for (std::size_t at = 0; at < size; at += at < setup ? 100'000 : 1000) {
        const char changed = static_cast<char>(bytes[at] ^ 0x10);
        ASSERT_EQ(::pwrite(file, &changed, 1, static_cast<off_t>(at)), 1);
        ASSERT_NE(setup::checkInstaller(installer, layout), setup::Whole::Yes) << at;
        ASSERT_EQ(::pwrite(file, &bytes[at], 1, static_cast<off_t>(at)), 1);
    }
    ::close(file);
    EXPECT_EQ(setup::checkInstaller(installer, layout), setup::Whole::Yes);
}

TEST_F(SmallInstaller, AnInstallerAndAnUninstallerAtOnceLeaveAWholeInstallationOrNone) {
    for (int i = 0; i < 5; ++i) {
        ASSERT_EQ(withHome(installer, {"--quiet"}), 0) << output;
        const auto child = startInstaller();
        ASSERT_NE(child, nullptr);
        const int code = withHome(app + "/uninstall", {"--quiet"});
        EXPECT_TRUE(child->wait(60000).ended);
        EXPECT_EQ(child->poll().code, 0);
        EXPECT_TRUE(code == 0 || code == 127 || code == 126)
            << code << output;  // it may be gone for a moment
        if (std::filesystem::exists(app)) {
            expectRunsAt(app);
            ASSERT_EQ(withHome(app + "/uninstall", {"--quiet"}), 0) << output;
        }
        EXPECT_EQ(allIn(home), "/Desktop\n");
    }
}

}  // namespace
}  // namespace tarn::toolchain
