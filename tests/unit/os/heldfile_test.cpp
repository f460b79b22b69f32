// SPDX-License-Identifier: Apache-2.0
//
// A file that is held by a process that lives, and by none that has died.
#include "os/heldfile.h"
#include "support/tempfolder.h"

#include <csignal>
#include <fstream>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>

namespace tarn::os {
namespace {

using Taken = HeldFile::Taken;

class HeldFiles : public testing::Test {
protected:
    TempFolder dir;
    std::string make(const std::string& name) {
        std::ofstream(dir / name) << "x";
        return dir / name;
    }
};

TEST_F(HeldFiles, OneIsHeldByOneAlone) {
    const std::string file = make("a");
    HeldFile other;
    {
        HeldFile first;
        EXPECT_EQ(first.take(file), Taken::Yes);
        EXPECT_EQ(HeldFile().take(file), Taken::No);
        std::filesystem::create_hard_link(file, dir / "b");
        EXPECT_EQ(HeldFile().take(dir / "b"), Taken::No) << "under another name";
    }
    EXPECT_EQ(other.take(file), Taken::Yes);
}

TEST_F(HeldFiles, ADeadProcessHoldsNothing) {
    const std::string file = make("a");
    const pid_t child = ::fork();
    if (child == 0) {
        HeldFile held;
        if (held.take(file) == Taken::Yes) ::kill(::getpid(), SIGKILL);
        ::_exit(1);
    }
    int status = 0;
    ASSERT_EQ(::waitpid(child, &status, 0), child);
    EXPECT_TRUE(WIFSIGNALED(status));
    EXPECT_EQ(HeldFile().take(file), Taken::Yes);
}

TEST_F(HeldFiles, WhatIsNoFileIsNotTakenNorWaitedFor) {
    const std::string file = make("a");
    std::filesystem::create_symlink(file, dir / "link");
    ASSERT_EQ(::mkfifo((dir / "pipe").c_str(), 0600), 0);
    EXPECT_EQ(HeldFile().take(dir / "none"), Taken::No);
    for (const char* name : {"link", "pipe", "."})
        EXPECT_EQ(HeldFile().take(dir / name), Taken::Failed) << name;
}

}  // namespace
}  // namespace tarn::os
