// SPDX-License-Identifier: Apache-2.0
#include "kernel/text/systeminfo.h"

#include "os/files.h"
#include "os/process.h"
#include "os/text/ascii.h"
#include "platform/model/view.h"
#include "platform/registry.h"
#include "support/steerable.h"
#include "support/tempfolder.h"

#include <gtest/gtest.h>

#include <map>
#include <vector>

namespace tarn {
namespace {

class SystemInfoText : public ::testing::Test {
protected:
    void SetUp() override { before_ = platform::useView(platform::makeHeadlessView()); }
    void TearDown() override { platform::useView(std::move(before_)); }
    static std::vector<std::string> lines() {
        const std::string text = SystemInformation();
        std::vector<std::string> lines;
        for (std::string_view rest = text; !rest.empty();)
            lines.emplace_back(ascii::withoutLineEnd(ascii::takeLine(rest)));
        return lines;
    }
    static std::string value(const std::string& name) {
        for (const std::string& line : lines())
            if (line.starts_with(name + " = ")) return line.substr(name.size() + 3);
        return "(no such line)";
    }

    TempFolder folder;
    const Variable settings{"XDG_CONFIG_HOME", folder.path()};

private:
    std::unique_ptr<platform::View> before_;
};

TEST_F(SystemInfoText, HasALineForEachNameInThisOrder) {
    const char* const names[] = {"Application directory = ",
                                 "Application name = ",
                                 "Clean boot = ",
                                 "Command processor = ",
                                 "Computer name = ",
                                 "Current disk and directory = ",
                                 "Date/Time = ",
                                 "Debug Windows = ",
                                 "Desktop wallpaper = ",
                                 "Disk free space = ",
                                 "Disk label = ",
                                 "Disk serial number = ",
                                 "Icon size = ",
                                 "Memory (physical) = ",
                                 "Memory (stack space) = ",
                                 "Memory (total available) = ",
                                 "Monitor count = ",
                                 "Mouse present = ",
                                 "Mouse wheel present = ",
                                 "Network = ",
                                 "NtfsDisable8dot3NameCreation = ",
                                 "Operating system = ",
                                 "Program arguments = ",
                                 "Registered Organization = ",
                                 "Registered Owner = ",
                                 "Screen size = ",
                                 "Screen saver available = ",
                                 "Screen saver running = ",
                                 "Screen saver timeout = ",
                                 "Screen work area = ",
                                 "Windows directory = ",
                                 "Windows Product Id = "};
    const std::vector<std::string> found = lines();
    ASSERT_EQ(found.size(), std::size(names));
    for (std::size_t i = 0; i < found.size(); ++i) EXPECT_TRUE(found[i].starts_with(names[i])) << found[i];
    EXPECT_TRUE(SystemInformation().ends_with("\n"));
}

TEST_F(SystemInfoText, WhatLinuxDoesNotHaveOrTellIsSaidAsSuch) {
    const Variable windir("WINDIR", nullptr);
    for (const char* name :
         {"Clean boot", "Debug Windows", "NtfsDisable8dot3NameCreation", "Registered Organization",
          "Registered Owner", "Windows directory", "Windows Product Id"})
        EXPECT_EQ(value(name), "not on Linux") << name;
    for (const char* name :
         {"Desktop wallpaper", "Screen saver available", "Screen saver running", "Screen saver timeout"})
        EXPECT_EQ(value(name), "unknown") << name;
}

TEST_F(SystemInfoText, WithoutAScreenNothingIsKnownOfIt) {
    EXPECT_EQ(value("Monitor count"), "0");
    for (const char* name : {"Icon size", "Screen size", "Screen work area"})
        EXPECT_EQ(value(name), "unknown") << name;
}

TEST_F(SystemInfoText, FactsOfTheMachineComeFromItsFiles) {
    os::SteeredFiles files;
    os::SteeredClock clock;
    const os::Steered steeredFiles(files), steeredClock(clock);
    clock.setLocal({2024, 2, 29, 3, 4, 5, 6});
    files.put("/proc/sys/kernel/hostname", "box\n");
    files.put("/proc/meminfo", "MemTotal: 16000 kB\nMemAvailable: 4000 kB\n");
    files.put("/proc/bus/input/devices", "H: Handlers=mouse0\nB: REL=143\n\n");
    files.put("/sys/class/net/eth0/operstate", "down\n");
    files.put("/etc/os-release", "PRETTY_NAME=\"An OS 12\"\n");
    files.putFolder("/a/line\nend");
    files.setCurrentFolder("/a/line\nend");
    files.setFreeBytes(7 * 1024 * 1024 + 5);
    const std::map<std::string, std::string> expected = {{"Computer name", "box"},
                                                         {"Date/Time", "2024-02-29 03:04:05"},
                                                         {"Current disk and directory", "/a/line end"},
                                                         {"Disk free space", "7 MB"},
                                                         {"Disk label", "unknown"},
                                                         {"Memory (physical)", "16000 KB"},
                                                         {"Memory (total available)", "4000 KB"},
                                                         {"Mouse present", "True"},
                                                         {"Mouse wheel present", "True"},
                                                         {"Network", "False"},
                                                         {"Operating system", "An OS 12"}};
    for (const auto& [name, text] : expected) EXPECT_EQ(value(name), text) << name;
}

TEST_F(SystemInfoText, VariablesAndTheRegistryAreAsked) {
    const Variable comspec("COMSPEC", nullptr), shell("SHELL", "/bin/zsh"), windir("WINDIR", "/w");
    EXPECT_EQ(value("Command processor"), "/bin/zsh");
    EXPECT_EQ(value("Windows directory"), "/w");
    {
        const Variable named("COMSPEC", "/bin/mine");
        EXPECT_EQ(value("Command processor"), "/bin/mine");
    }
    const std::string version = "SOFTWARE\\Microsoft\\Windows NT\\CurrentVersion";
    ASSERT_EQ(platform::RegSaveSetting(version, "RegisteredOwner", "A\nB"), "");
    ASSERT_EQ(platform::RegSaveSetting(version, "RegisteredOrganization", "Firm"), "");
    ASSERT_EQ(platform::RegSaveSetting(version, "ProductId", "1-2"), "");
    ASSERT_EQ(platform::RegSaveSetting("SYSTEM\\CurrentControlSet\\Control\\FileSystem",
                                       "NtfsDisable8dot3NameCreation", "1"),
              "");
    EXPECT_EQ(value("Registered Owner"), "A B") << "each value is one line";
    EXPECT_EQ(value("Registered Organization"), "Firm");
    EXPECT_EQ(value("Windows Product Id"), "1-2");
    EXPECT_EQ(value("NtfsDisable8dot3NameCreation"), "1");
}

TEST_F(SystemInfoText, TheProgramTellsOfItself) {
    EXPECT_EQ(value("Application name"), "kernel_test");
    EXPECT_TRUE(value("Application directory").ends_with("/"));
    const std::string stack = value("Memory (stack space)");
    EXPECT_TRUE(stack == "unlimited" || stack.ends_with(" KB")) << stack;
}

}  // namespace
}  // namespace tarn
