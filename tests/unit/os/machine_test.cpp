// SPDX-License-Identifier: Apache-2.0
#include "os/machine.h"

#include "os/files.h"
#include "support/steerable.h"

#include <gtest/gtest.h>

namespace tarn::os {
namespace {

class MachineTest : public testing::Test {
protected:
    SteeredFiles files;
    const Steered steered{files};
};

TEST_F(MachineTest, WhatNoFileTellsIsNotKnown) {
    EXPECT_EQ(computerName(), "");
    EXPECT_EQ(memory().physical, -1);
    EXPECT_EQ(memory().available, -1);
    EXPECT_EQ(diskOf("/").label, "");
    EXPECT_EQ(diskOf("/none").serial, "");
    EXPECT_EQ(pointing().mouse, -1);
    EXPECT_EQ(pointing().wheel, -1);
    EXPECT_EQ(networkUp(), -1);
}

TEST_F(MachineTest, TheNameIsTheLineOfItsFile) {
    files.put("/proc/sys/kernel/hostname", "box.example\n");
    EXPECT_EQ(computerName(), "box.example");
}

TEST_F(MachineTest, MemoryIsToldInKilobytes) {
    files.put("/proc/meminfo", "MemTotal:       16000 kB\nMemFree:  1 kB\nMemAvailable:    4000 kB\n"
                               "SwapTotal:  9 kB\nSwapFree:         500 kB\n");
    EXPECT_EQ(memory().physical, 16000 * 1024);
    EXPECT_EQ(memory().available, 4500 * 1024) << "with what can be swapped";
    files.put("/proc/meminfo", "MemTotal:\nSwapFree: 500 kB\n");
    EXPECT_EQ(memory().physical, -1);
    EXPECT_EQ(memory().available, -1) << "room for swapping alone is not all of it";
}

TEST_F(MachineTest, TheStackHasALimitOrNone) {
    EXPECT_GT(stackLimit(), 0);
}

TEST_F(MachineTest, ADiskIsThatOfTheLongestMountPoint) {
    files.put("/proc/self/mountinfo", "20 1 8:1 / / rw,relatime shared:1 - ext4 /dev/sda1 rw\n"
                                      "21 20 8:2 / /home rw shared:2 master:1 - ext4 /dev/sda2 rw\n"
                                      "22 20 8:3 / /media/my\\040disk rw - vfat /dev/sdb1 rw\n"
                                      "23 20 0:9 / /tmp rw - tmpfs tmpfs rw\n");
    files.put("/run/udev/data/b8:1", "S:disk/by-label/x\nE:ID_FS_LABEL=r\nE:ID_FS_LABEL_ENC=root\n");
    files.put("/run/udev/data/b8:2",
              "E:ID_FS_LABEL_ENC=My\\x20home\nE:ID_FS_UUID=1234-abcd\nE:ID_FS_UUID_ENC=5\n");
    files.put("/run/udev/data/b8:3", "W:1\nE:ID_FS_UUID=2E24-9B1F\n");
    for (const char* folder : {"/home/x", "/homework", "/media/my disk/y", "/tmp/z"}) files.putFolder(folder);
    struct Case {
        const char *path, *label, *serial;
    };
    const Case cases[] = {{"/", "root", ""},
                          {"/homework", "root", ""},
                          {"/home", "My home", "1234-abcd"},
                          {"/home/x", "My home", "1234-abcd"},
                          {"\\home\\x", "My home", "1234-abcd"},
                          {"/media/my disk/y", "", "2E24-9B1F"},
                          {"/tmp/z", "", ""}};
    for (const Case& c : cases) {
        EXPECT_EQ(diskOf(c.path).label, c.label) << c.path;
        EXPECT_EQ(diskOf(c.path).serial, c.serial) << c.path;
    }
}

TEST_F(MachineTest, DamagedListsTellNothingAndHarmNobody) {
    for (const char* text : {"", "\n\n", "1 2 3\n", "20 1 8:1 / / rw", "20 1 8:1 / / rw -",
                             "20 1 8:1 / / rw - ext4", "20 1 8:1 / \\0 rw - \\x /dev\\04 rw\n", "\\"}) {
        files.put("/proc/self/mountinfo", text);
        EXPECT_EQ(diskOf("/").label, "") << text;
        files.put("/proc/bus/input/devices", text);
        EXPECT_LE(pointing().mouse, 0) << text;
        files.put("/proc/meminfo", text);
        EXPECT_EQ(memory().physical, -1) << text;
    }
}

TEST_F(MachineTest, AMouseAndItsWheelAreInTheListOfDevices) {
    struct Case {
        const char* list;
        int mouse, wheel;
    };
    const char* const keyboard =
        "I: Bus=0003\nN: Name=\"Keyboard\"\nH: Handlers=sysrq kbd event0 \nB: EV=120013\n\n";
    const std::string plain =
        std::string(keyboard) + "N: Name=\"Mouse\"\nH: Handlers=mouse0 event3\nB: REL=3\n\n";
    const std::string wheeled = std::string(keyboard) + "H: Handlers=mouse0 event3 \nB: REL=143 \n\n";
    const std::string elsewhere = plain + "H: Handlers=kbd event4\nB: REL=1040\n\n";
    const std::string apart = "B: REL=143\n\nH: Handlers=kbd mouse1\nB: REL=100 3\n\n";
    for (const Case& c : {Case{keyboard, 0, 0}, Case{plain.c_str(), 1, 0}, Case{wheeled.c_str(), 1, 1},
                          Case{elsewhere.c_str(), 1, 0}, Case{apart.c_str(), 1, 0}}) {
        files.put("/proc/bus/input/devices", c.list);
        EXPECT_EQ(pointing().mouse, c.mouse) << c.list;
        EXPECT_EQ(pointing().wheel, c.wheel) << c.list;
    }
}

TEST_F(MachineTest, TheNetworkIsUpWhenAnyButTheMachinesOwnIs) {
    files.put("/sys/class/net/lo/operstate", "up\n");
    EXPECT_EQ(networkUp(), 0);
    files.put("/sys/class/net/eth0/operstate", "down\n");
    EXPECT_EQ(networkUp(), 0);
    files.put("/sys/class/net/wlan0/operstate", "up\n");
    EXPECT_EQ(networkUp(), 1);
}

}  // namespace
}  // namespace tarn::os
