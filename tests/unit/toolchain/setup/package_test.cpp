// SPDX-License-Identifier: Apache-2.0
//
// Installers as files: what they hold, and that no damage goes unnoticed.
#include "os/savestream.h"
#include "support/steerable.h"
#include "toolchain/setup/install.h"
#include "toolchain/setup/make.h"

#include <gtest/gtest.h>

namespace tarn::setup {
namespace {

using os::SteeredFiles;

constexpr const char* Script =
    "[Setup]\nAppName=prog\nDefaultDirName={pf}\\prog\n[Icons]\n"
    "Name:\"{group}\\prog\"; Filename:\"{app}\\prog.exe\";\n[Files]\nSource:\"/src/prog.exe\"; "
    "DestDir:\"{app}\\\";\nSource:\"/src/empty\"; DestDir:\"{app}\\\"; DestName:\"a 'b'.txt\";\n";

class Packages : public ::testing::Test {
protected:
    SteeredFiles disk;
    os::Steered steered{disk};

    void SetUp() override {
        disk.put("/bin/setup", "the program that installs", 0755);
        disk.put("/src/prog.exe", std::string(3000, 'p'), 0755);
        disk.put("/src/empty", "");
        disk.put("/src/script", Script);
        disk.putFolder("/out");
    }
    std::string make() { return makeInstaller({"/src/script", "/out/a.exe", "/bin/setup"}); }
    Whole check() {
        Layout layout;
        return checkInstaller("/out/a.exe", layout);
    }
};

TEST_F(Packages, AnInstallerIsOneExecutableFileOfTheProgramAndThePackage) {
    ASSERT_EQ(make(), "");
    EXPECT_TRUE(disk.contents("/out/a.exe").starts_with("the program that installs"));
    EXPECT_EQ(os::infoOf("/out/a.exe").mode & 0777U, 0755U);
    Layout layout;
    Installer installer;
    ASSERT_EQ(checkInstaller("/out/a.exe", layout), Whole::Yes);
    ASSERT_EQ(openInstaller("/out/a.exe", layout, installer), "");
    EXPECT_EQ(installer.package.name, "prog");
    ASSERT_EQ(installer.package.files.size(), 2U);
    EXPECT_EQ(installer.package.files[1].name, "a 'b'.txt");
    EXPECT_EQ(installer.package.size(), 3000);
    EXPECT_EQ(disk.openHandles(), 0);
}

TEST_F(Packages, WhatIsStartedStandsInFrontOfTheProgramThatInstalls) {
    ASSERT_EQ(makeInstaller({"/src/script", "/out/a.exe", "/bin/setup", "", "starts it"}), "");
    EXPECT_TRUE(disk.contents("/out/a.exe").starts_with("starts itthe program that installs"));
    Layout layout;
    Installer installer;
    ASSERT_EQ(checkInstaller("/out/a.exe", layout), Whole::Yes);
    EXPECT_EQ(layout.first, 9);
    EXPECT_EQ(layout.packageAt(), 34);
    EXPECT_EQ(openInstaller("/out/a.exe", layout, installer), "");
    EXPECT_EQ(installer.package.name, "prog");
}

TEST_F(Packages, OneFlippedBitAnywhereIsNoticed) {
    ASSERT_EQ(make(), "");
    const std::string whole = disk.contents("/out/a.exe");
    for (std::size_t at = 0; at < whole.size(); ++at) {
        std::string flipped = whole;
        flipped[at] = static_cast<char>(flipped[at] ^ 1 << at % 8);
        disk.put("/out/a.exe", flipped);
        ASSERT_NE(check(), Whole::Yes) << at;
    }
}

TEST_F(Packages, EveryTruncationIsNoticed) {
    ASSERT_EQ(make(), "");
    const std::string whole = disk.contents("/out/a.exe");
    for (std::size_t size = 0; size < whole.size(); ++size) {
        disk.put("/out/a.exe", whole.substr(0, size));
        ASSERT_NE(check(), Whole::Yes) << size;
    }
    disk.put("/out/a.exe", whole + "x");
    EXPECT_NE(check(), Whole::Yes);
}

TEST_F(Packages, AFailureAtAnyCallKeepsTheInstallerThatWasThere) {
    disk.put("/out/a.exe", "the old one");
    for (int call = 1; call < 100; ++call) {
        disk.failAt(call, os::FileError::DiskFull);
        const std::string failure = make();
        const bool harmed = disk.calls() >= call;
        disk.stopFailing();
        if (!harmed) break;
        // Behind the replacing the new one is whole.
        EXPECT_TRUE(failure.empty() || disk.contents("/out/a.exe") == "the old one" || check() == Whole::Yes)
            << call << failure;
        for (const std::string& file : disk.allFiles())
            EXPECT_TRUE(!file.starts_with("/out/") || file == "/out/a.exe") << call << " left " << file;
        disk.put("/out/a.exe", "the old one");
    }
}

TEST_F(Packages, AFileThatIsNotThereIsToldAndNothingIsMade) {
    disk.put("/src/script", std::string(Script) +
                                "Source:\"/src/none\"; DestDir:\"{app}\\\";\n"
                                "Source:\"/src\"; DestDir:\"{app}\\\"; DestName:\"folder\";\n");
    EXPECT_EQ(make(), "/src/script(0) : error : the file '/src/none' does not exist\n"
                      "/src/script(0) : error : the file '/src' does not exist\n");
    EXPECT_FALSE(disk.has("/out/a.exe"));
}

TEST_F(Packages, ThePartsThatItIsMadeOfMustBeThere) {
    EXPECT_EQ(makeInstaller({"/src/none", "/out/a.exe", "/bin/setup"}),
              "/src/none(0) : error : the script cannot be read\n");
    EXPECT_EQ(makeInstaller({"/src/script", "/out/a.exe", "/bin/none"}),
              "/src/script(0) : error : the program that installs, '/bin/none', cannot be read\n");
    EXPECT_FALSE(disk.has("/out/a.exe"));
}

TEST_F(Packages, NothingThatItIsMadeOfIsReplaced) {
    const auto before = [&] {
        return disk.contents("/src/prog.exe") + disk.contents("/src/script") + disk.contents("/bin/setup");
    };
    const std::string all = before();
    for (const std::string made : {"/src/prog.exe", "/src/empty", "/src/script", "/bin/setup"}) {
        EXPECT_EQ(makeInstaller({"/src/script", made, "/bin/setup"}),
                  "/src/script(0) : error : '" + made + "' cannot be made of itself\n");
        EXPECT_EQ(before(), all) << made;
    }
}

TEST_F(Packages, APlaceThatIsNotThereIsToldAsThat) {
    for (const std::size_t size : {std::size_t{10}, 3 * os::SaveStreamBytes}) {
        disk.put("/bin/setup", std::string(size, 's'), 0755);
        const std::string report = makeInstaller({"/src/script", "/not/there/a.exe", "/bin/setup"});
        EXPECT_TRUE(report.starts_with("/src/script(0) : error : '/not/there/a.exe' cannot be written: "))
            << size << report;
    }
}

TEST_F(Packages, WhatAsksInWindowsGoesAlongInFrontWhereItsLibrariesDo) {
    disk.put("/bin/ask", "asks", 0755);
    for (const char* library : {"libtarnwick.so", "libtarnwick-qt.so"})
        disk.put(std::string("/src/") + library, library);
    const MakeRequest request{"/src/script", "/out/a.exe", "/bin/setup", "/bin/ask"};
    const auto files = [&] {
        Layout layout;
        Installer installer;
        EXPECT_EQ(makeInstaller(request), "");
        EXPECT_EQ(checkInstaller("/out/a.exe", layout), Whole::Yes);
        EXPECT_EQ(openInstaller("/out/a.exe", layout, installer), "");
        std::string names;
        for (const PackedFile& file : installer.package.files) names += file.name + ";";
        return names;
    };
    EXPECT_EQ(files(), "prog.exe;a 'b'.txt;");
    disk.put("/src/script", std::string(Script) +
                                "Source:\"/src/libtarnwick.so\"; DestDir:\"{app}\\\";\n"
                                "Source:\"/src/libtarnwick-qt.so\"; DestDir:\"{app}\\\";\n");
    EXPECT_EQ(files(), "libtarnwick-qt.so;libtarnwick.so;tarnwick-ask;prog.exe;a 'b'.txt;");
}

// ---- heads ----

TEST(PackageHead, IsReadAsItWasWritten) {
    Package package{"prog", "Says  hello", "Prog: one", "Ann & Co.", "(c)", "1.0", "prog.exe", {}, {}};
    package.shortcuts = {{Shortcut::Place::Menu, Shortcut::Kind::Icon},
                         {Shortcut::Place::Desktop, Shortcut::Kind::Uninstall}};
    package.files = {{"prog.exe", 3, true}, {" a b ", 600'000'000 - 3, false}};
    Package again;
    EXPECT_EQ(readHead(headOf(package), again), "");
    EXPECT_EQ(headOf(again), headOf(package));
}

TEST(PackageHead, NamesThatLeadElsewhereAndUnknownLinesAreRefused) {
    for (const char* line :
         {"file x 1 ../a", "file x 1 a/b", "file x 1 ..", "file x 1 ", "file x -1 a", "file y 1 a",
          "file x 1x a", "file x 600000001 a", "file x 1 prog.exe", "shortcut menu", "else a",
          "shortcut menu other", "file x 99999999999999999999 a"}) {
        Package package;
        EXPECT_NE(readHead("tarnwick setup 1\nname prog\nprogram prog.exe\nfile x 1 prog.exe\n" +
                               std::string(line) + "\n\n",
                           package),
                  "")
            << line;
    }
    for (const char* head :
         {"", "tarnwick setup 2\n\n", "tarnwick setup 1\n\n", "tarnwick setup 1\nname ../x\n\n",
          "tarnwick setup 1\nname prog\nprogram other\nfile x 1 prog.exe\n\n"}) {
        Package package;
        EXPECT_NE(readHead(head, package), "") << head;
    }
}

TEST(PackageNames, AreThoseOfFilesAlone) {
    for (const char* good : {"a", "a b'c\"d", "..a", "...", ".hidden", "\xC3\xA4", "-rf"})
        EXPECT_TRUE(isPlainName(good)) << good;
    for (const char* bad : {"", ".", "..", "a/b", "/a", "a\\b", "a\nb", "a\tb"})
        EXPECT_FALSE(isPlainName(bad)) << bad;
    EXPECT_FALSE(isPlainName(std::string(300, 'a')));
}

}  // namespace
}  // namespace tarn::setup
