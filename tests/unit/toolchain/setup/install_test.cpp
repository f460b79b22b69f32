// SPDX-License-Identifier: Apache-2.0
//
// Installations against the death of the process and every error at every call that changes the disk.
#include "support/steerable.h"
#include "toolchain/setup/install.h"
#include "toolchain/setup/make.h"

#include <gtest/gtest.h>
#include <map>

namespace tarn::setup {
namespace {

using os::FileError;
using os::SteeredFiles;
using Snapshot = std::map<std::string, std::string>;

const Places places = {"/home/u/.local/opt/prog", "/home/u/.local/share/applications", "/home/u/Desktop"};

std::string inApp(const std::string& name) {
    return places.app + "/" + name;
}

std::string scriptOf(const std::string& files) {
    return "[Setup]\nAppName=prog\nAppVerName=Says hello\nAppId=prog\nDefaultDirName={pf}\\prog\n"
           "Compression=lzma/normal\n\n[Icons]\n"
           "Name:\"{group}\\prog\"; Filename:\"{app}\\prog.exe\"; WorkingDir:\"{app}\";\n"
           "Name:\"{group}\\Uninstall\"; Filename:\"{uninstallexe}\";\n"
           "Name:\"{commondesktop}\\prog\"; Filename:\"{app}\\prog.exe\"; "
           "WorkingDir:\"{app}\";\n\n[Files]\n" +
           files;
}

std::string fileLine(const std::string& name) {
    return "Source:\"/src/" + name + "\"; DestDir:\"{app}\\\";\n";
}

Snapshot homeOf(const SteeredFiles& disk) {
    Snapshot files;
    for (const std::string& file : disk.allFiles())
        if (file.starts_with("/home/")) files[file] = disk.contents(file);
    return files;
}

// What stays beside files of the user.
constexpr const char* ListOfNoFiles =
    "tarnwick installed 1\nname prog\nfolder /home/u/.local\nfolder /home/u/.local/opt\n"
    "folder /home/u/.local/share\nfolder /home/u/.local/share/applications\n";

// The files that only one of them has, or that differ.
std::string different(const Snapshot& a, const Snapshot& b) {
    std::string text;
    for (const auto& [file, bytes] : a)
        if (b.count(file) == 0 || b.at(file) != bytes) text += "\n- " + file;
    for (const auto& [file, bytes] : b)
        if (a.count(file) == 0) text += "\n+ " + file;
    return text;
}

// A disk with two versions of an installer on it.
class Machine {
public:
    Machine() : steered_(disk) {
        disk.put("/bin/setup", "the program that installs", 0755);
        disk.put("/src/prog.exe", "first", 0755);
        disk.put("/src/data.txt", "as shipped");
        disk.put("/src/gone.txt", "only in the first");
        disk.putFolder("/out");
        disk.putFolder("/home/u/Desktop");
        make("first", fileLine("prog.exe") + fileLine("data.txt") + fileLine("gone.txt"));
        disk.put("/src/prog.exe", "second", 0755);
        disk.put("/src/new.txt", "only in the second");
        make("second", fileLine("prog.exe") + fileLine("data.txt") + fileLine("new.txt"));
        for (const char* version : {"first", "second"}) open(version);
    }
    std::string install(const std::string& version) { return setup::install(installers_[version], places); }
    // The first version is there, and its user has worked with it.
    void useFirst() {
        ASSERT_EQ(install("first"), "");
        disk.put(inApp("notes.txt"), "the user's");
        disk.put(inApp("new.txt"), "the user's too");
        disk.put(inApp("data.txt"), "changed by the user");
    }

    SteeredFiles disk;

private:
    void make(const std::string& name, const std::string& files) {
        disk.put("/src/script", scriptOf(files));
        ASSERT_EQ(makeInstaller({"/src/script", "/out/" + name, "/bin/setup"}), "");
    }
    void open(const std::string& name) {
        Layout layout;
        ASSERT_EQ(checkInstaller("/out/" + name, layout), Whole::Yes);
        ASSERT_EQ(openInstaller("/out/" + name, layout, installers_[name]), "");
    }
    os::Steered steered_;
    std::map<std::string, Installer> installers_;
};

Snapshot firstInstalled() {
    Machine machine;
    EXPECT_EQ(machine.install("first"), "");
    return homeOf(machine.disk);
}
Snapshot secondOverFirst() {
    Machine machine;
    machine.useFirst();
    EXPECT_EQ(machine.install("second"), "");
    return homeOf(machine.disk);
}

TEST(Install, PutsFilesEntriesAndTheUninstallerInTheirPlaces) {
    Machine machine;
    ASSERT_EQ(machine.install("first"), "");
    EXPECT_EQ(machine.disk.contents(inApp("prog.exe")), "first");
    EXPECT_EQ(machine.disk.contents(inApp("data.txt")), "as shipped");
    EXPECT_EQ(machine.disk.contents(inApp("uninstall")), "the program that installs");
    EXPECT_EQ(os::infoOf(inApp("prog.exe")).mode & 0777U, 0755U);
    EXPECT_EQ(os::infoOf(inApp("data.txt")).mode & 0777U, 0644U);
    EXPECT_EQ(installedName(places.app), "prog");
    EXPECT_TRUE(machine.disk.has(places.menu + "/prog.desktop"));
    EXPECT_TRUE(machine.disk.has(places.menu + "/prog-uninstall.desktop"));
    EXPECT_EQ(os::infoOf(places.desktop + "/prog.desktop").mode & 0777U, 0755U);
    EXPECT_FALSE(os::infoOf("/home/u/.local/opt/.prog.setup").exists);
    EXPECT_EQ(machine.disk.openHandles(), 0);
}

TEST(Install, UninstallLeavesNothingOfItAndNoFolder) {
    Machine machine;
    ASSERT_EQ(machine.install("first"), "");
    bool stayed = true;
    EXPECT_EQ(uninstall(places.app, stayed), "");
    EXPECT_FALSE(stayed);
    EXPECT_EQ(homeOf(machine.disk), Snapshot());
    EXPECT_FALSE(os::infoOf("/home/u/.local").exists);
    EXPECT_TRUE(os::infoOf("/home/u/Desktop").exists) << "it was there before";
    EXPECT_EQ(uninstall(places.app, stayed), "There is nothing installed in '" + places.app + "'.");
}

TEST(Install, UninstallKeepsFilesOfTheUser) {
    Machine machine;
    machine.useFirst();
    bool stayed = false;
    EXPECT_EQ(uninstall(places.app, stayed), "");
    EXPECT_TRUE(stayed);
    EXPECT_EQ(homeOf(machine.disk), (Snapshot{{inApp("notes.txt"), "the user's"},
                                              {inApp("new.txt"), "the user's too"},
                                              {inApp("uninstall.list"), ListOfNoFiles}}));
}

// A folder of the user's under the name of an installed file is his, whatever comes or goes.
TEST(Install, AFolderInThePlaceOfAFileStaysAndIsNeverInTheWay) {
    const auto useFolder = [](Machine& machine) {
        os::files().remove(inApp("data.txt"));
        machine.disk.put(inApp("data.txt/mine"), "the user's");
    };
    Machine machine;
    ASSERT_EQ(machine.install("first"), "");
    useFolder(machine);
    ASSERT_EQ(machine.install("second"), "");
    EXPECT_EQ(machine.disk.contents(inApp("data.txt")), "as shipped");
    EXPECT_EQ(machine.disk.contents(inApp("data.txt.saved/mine")), "the user's");
    EXPECT_FALSE(os::infoOf("/home/u/.local/opt/.prog.setup").exists);
    useFolder(machine);
    bool stayed = false;
    EXPECT_EQ(uninstall(places.app, stayed), "");
    EXPECT_TRUE(stayed);
    EXPECT_EQ(homeOf(machine.disk), (Snapshot{{inApp("data.txt/mine"), "the user's"},
                                              {inApp("data.txt.saved/mine"), "the user's"},
                                              {inApp("uninstall.list"), ListOfNoFiles}}));
    EXPECT_EQ(machine.install("first"), "");
    EXPECT_EQ(machine.disk.contents(inApp("data.txt")), "as shipped");
}

TEST(Install, WhatAnUninstallLeftIsTakenAgainAndGoesWithTheLastFile) {
    Machine machine;
    machine.useFirst();
    bool stayed = false;
    ASSERT_EQ(uninstall(places.app, stayed), "");
    ASSERT_EQ(uninstall(places.app, stayed), "") << "again";
    EXPECT_TRUE(stayed);
    ASSERT_EQ(machine.install("second"), "");
    EXPECT_EQ(machine.disk.contents(inApp("prog.exe")), "second");
    EXPECT_EQ(machine.disk.contents(inApp("notes.txt")), "the user's");
    EXPECT_EQ(machine.disk.contents(inApp("new.txt.saved")), "the user's too");
    os::files().remove(inApp("notes.txt"));
    os::files().remove(inApp("new.txt.saved"));
    ASSERT_EQ(uninstall(places.app, stayed), "");
    EXPECT_FALSE(stayed);
    EXPECT_FALSE(os::infoOf("/home/u/.local").exists) << "the first installation had made it";
}

TEST(Install, WhatAnotherProgramsUninstallLeftIsRefused) {
    Machine machine;
    machine.disk.put(inApp("notes.txt"), "mine");
    machine.disk.put(inApp("uninstall.list"), "tarnwick installed 1\nname other\n");
    EXPECT_EQ(machine.install("first"), "'" + places.app + "' holds another program, 'other'.");
}

TEST(Install, ALaterVersionTakesThePlaceOfTheFirstAndKeepsWhatTheUserMade) {
    Machine machine;
    machine.useFirst();
    ASSERT_EQ(machine.install("second"), "");
    EXPECT_EQ(machine.disk.contents(inApp("prog.exe")), "second");
    EXPECT_FALSE(machine.disk.has(inApp("gone.txt")));
    EXPECT_EQ(machine.disk.contents(inApp("notes.txt")), "the user's");
    EXPECT_EQ(machine.disk.contents(inApp("data.txt")), "as shipped");
    EXPECT_EQ(machine.disk.contents(inApp("data.txt.saved")), "changed by the user");
    EXPECT_EQ(machine.disk.contents(inApp("new.txt")), "only in the second");
    EXPECT_EQ(machine.disk.contents(inApp("new.txt.saved")), "the user's too");
    bool stayed = false;
    EXPECT_EQ(uninstall(places.app, stayed), "");
    EXPECT_FALSE(machine.disk.has(places.menu + "/prog.desktop")) << "the folders of the first are known";
}

// ---- refusals ----

TEST(Install, AFolderThatIsSomebodyElsesIsRefused) {
    Machine machine;
    machine.disk.put(inApp("letter.txt"), "mine");
    const Snapshot before = homeOf(machine.disk);
    EXPECT_EQ(machine.install("first"),
              "'" + places.app + "' is there already and was not made by this installer.");
    EXPECT_EQ(homeOf(machine.disk), before);
}

TEST(Install, AnEmptyFolderIsTaken) {
    Machine machine;
    machine.disk.putFolder(places.app);
    machine.disk.setFreeBytes(1000);
    EXPECT_NE(machine.install("first"), "");
    EXPECT_TRUE(os::infoOf(places.app).folder) << "it stays when nothing comes into it";
    machine.disk.setFreeBytes(100'000'000);
    EXPECT_EQ(machine.install("first"), "");
}

TEST(Install, AFileInThePlaceIsRefused) {
    Machine machine;
    machine.disk.put(places.app, "mine");
    EXPECT_EQ(machine.install("first"), "'" + places.app + "' is a file.");
    EXPECT_EQ(machine.disk.contents(places.app), "mine");
}

TEST(Install, AnotherProgramInThePlaceIsRefused) {
    Machine machine;
    machine.disk.put(inApp("uninstall.list"), "tarnwick installed 1\nname other\n");
    EXPECT_EQ(machine.install("first"), "'" + places.app + "' holds another program, 'other'.");
}

TEST(Install, TooLittleSpaceIsToldBeforeAnythingIsWritten) {
    Machine machine;
    machine.disk.setFreeBytes(1000);
    EXPECT_TRUE(machine.install("first").starts_with("There is not enough space in '/home/u/.local/opt': "))
        << machine.install("first");
    EXPECT_EQ(homeOf(machine.disk), Snapshot());
    EXPECT_FALSE(os::infoOf("/home/u/.local").exists);
}

TEST(Install, AFolderThatMayNotBeWrittenIsTold) {
    Machine machine;
    machine.disk.putFolder("/home/u/.local/opt", 0555);
    machine.disk.putOwner("/home/u/.local/opt", 0, 0);
    EXPECT_NE(machine.install("first").find("permission"), std::string::npos) << machine.install("first");
    EXPECT_EQ(homeOf(machine.disk), Snapshot());
}

TEST(Install, AStopLeavesNothing) {
    Machine machine;
    Layout layout;
    Installer installer;
    ASSERT_EQ(checkInstaller("/out/first", layout), Whole::Yes);
    ASSERT_EQ(openInstaller("/out/first", layout, installer), "");
    int asked = 0;
    EXPECT_EQ(install(installer, places, [&](std::int64_t, std::int64_t) { return ++asked < 2; }),
              "The installation was stopped.");
    EXPECT_EQ(homeOf(machine.disk), Snapshot());
    EXPECT_FALSE(os::infoOf("/home/u/.local").exists);
}

// ---- deaths and errors ----

// The calls from the first on, each in a machine of its own, until nothing happens any more.
template <class Prepare, class Harm, class Check>
int atEachCall(const Prepare& prepare, const Harm& harm, const Check& check) {
    constexpr int Most = 1000;
    int call = 1;
    for (bool harmed = true; harmed && call < Most; ++call) {
        Machine machine;
        prepare(machine);
        harmed = harm(machine, call);
        SCOPED_TRACE("call " + std::to_string(call));
        check(machine);
        if (::testing::Test::HasFailure()) break;
    }
    return call;
}

bool dies(Machine& machine, int call, const std::string& version) {
    machine.disk.dieAt(call);
    try {
        static_cast<void>(machine.install(version));
    } catch (const os::ProcessDeath&) {}
    const bool dead = machine.disk.dead();
    machine.disk.revive();
    machine.disk.stopFailing();
    return dead;
}

TEST(Install, ADeathAtAnyCallIsUndoneByTheNextRun) {
    const Snapshot whole = firstInstalled();
    const int calls =
        atEachCall([](Machine&) {}, [](Machine& machine, int call) { return dies(machine, call, "first"); },
                   [&](Machine& machine) {
                       EXPECT_EQ(undoUnfinished(places.app), "");
                       const Snapshot now = homeOf(machine.disk);
                       EXPECT_TRUE(now.empty() || now == whole) << different(whole, now);
                       EXPECT_TRUE(!now.empty() || !os::infoOf("/home/u/.local").exists) << "its folders";
                       EXPECT_EQ(machine.install("first"), "");
                       EXPECT_EQ(machine.disk.contents(inApp("prog.exe")), "first");
                       EXPECT_FALSE(os::infoOf("/home/u/.local/opt/.prog.setup").exists);
                   });
    EXPECT_GT(calls, 30);
}

TEST(Install, AnUninstallBehindADeathAtAnyCallLeavesNothing) {
    atEachCall([](Machine&) {}, [](Machine& machine, int call) { return dies(machine, call, "first"); },
               [&](Machine& machine) {
                   if (!machine.disk.has(inApp("uninstall"))) return;  // then nobody can start it
                   bool stayed = true;
                   EXPECT_EQ(uninstall(places.app, stayed), "");
                   EXPECT_FALSE(stayed);
                   EXPECT_EQ(homeOf(machine.disk), Snapshot());
                   EXPECT_FALSE(os::infoOf("/home/u/.local").exists);
               });
}

TEST(Install, AnUninstallThatDiesAtAnyCallCanBeDoneAgainOrInstalledOver) {
    for (const bool again : {true, false})
        atEachCall([](Machine& machine) { machine.useFirst(); },
                   [](Machine& machine, int call) {
                       machine.disk.dieAt(call);
                       bool stayed = false;
                       try {
                           static_cast<void>(uninstall(places.app, stayed));
                       } catch (const os::ProcessDeath&) {}
                       const bool dead = machine.disk.dead();
                       machine.disk.revive();
                       machine.disk.stopFailing();
                       return dead;
                   },
                   [&](Machine& machine) {
                       bool stayed = false;
                       EXPECT_EQ(again ? uninstall(places.app, stayed) : machine.install("second"), "");
                       EXPECT_EQ(machine.disk.contents(inApp("notes.txt")), "the user's");
                       EXPECT_EQ(machine.disk.has(inApp("prog.exe")), !again);
                       EXPECT_FALSE(again && machine.disk.has(inApp("uninstall")));
                   });
}

TEST(Install, ADeathWhileALaterVersionComesLeavesTheFirstOrTheLater) {
    const Snapshot later = secondOverFirst();
    Snapshot before;
    atEachCall(
        [&](Machine& machine) {
            machine.useFirst();
            before = homeOf(machine.disk);
        },
        [](Machine& machine, int call) { return dies(machine, call, "second"); },
        [&](Machine& machine) {
            EXPECT_EQ(undoUnfinished(places.app), "");
            const Snapshot now = homeOf(machine.disk);
            EXPECT_TRUE(now == before || now == later) << different(before, now);
        });
}

TEST(Install, ADeathWithAFolderInThePlaceOfAFileIsUndoneToo) {
    Snapshot before;
    const auto prepare = [&](Machine& machine) {
        ASSERT_EQ(machine.install("first"), "");
        os::files().remove(inApp("data.txt"));
        machine.disk.put(inApp("data.txt/mine"), "the user's");
        before = homeOf(machine.disk);
    };
    Machine whole;
    prepare(whole);
    ASSERT_EQ(whole.install("second"), "");
    const Snapshot later = homeOf(whole.disk);
    atEachCall(
        prepare, [](Machine& machine, int call) { return dies(machine, call, "second"); },
        [&](Machine& machine) {
            EXPECT_EQ(undoUnfinished(places.app), "");
            const Snapshot now = homeOf(machine.disk);
            EXPECT_TRUE(now == before || now == later) << different(before, now);
        });
}

TEST(Install, ADeathWhileUndoingIsUndoneAsWell) {
    Machine probe;
    probe.useFirst();
    probe.disk.clearLog();
    ASSERT_EQ(probe.install("second"), "");
    const int last = probe.disk.calls();
    for (int first = last / 2; first < last; ++first)
        for (int second = 1; second < 12; ++second) {
            Machine machine;
            machine.useFirst();
            const Snapshot before = homeOf(machine.disk);
            dies(machine, first, "second");
            machine.disk.dieAt(second);
            try {
                static_cast<void>(undoUnfinished(places.app));
            } catch (const os::ProcessDeath&) {}
            machine.disk.revive();
            machine.disk.stopFailing();
            EXPECT_EQ(undoUnfinished(places.app), "");
            const Snapshot now = homeOf(machine.disk);
            ASSERT_TRUE(now == before || now.at(inApp("prog.exe")) == "second")
                << first << " " << second << different(before, now);
            ASSERT_EQ(now.count(inApp("notes.txt")), 1U) << first << " " << second;
        }
}

TEST(Install, AnErrorAtAnyCallLeavesWhatWasThere) {
    for (const FileError error : {FileError::DiskFull, FileError::Denied}) {
        Snapshot before;
        std::string failure;
        const Snapshot later = secondOverFirst();
        atEachCall(
            [&](Machine& machine) {
                machine.useFirst();
                before = homeOf(machine.disk);
            },
            [&](Machine& machine, int call) {
                machine.disk.failAt(call, error);
                failure = machine.install("second");
                const bool harmed = machine.disk.calls() >= call;
                machine.disk.stopFailing();
                return harmed;
            },
            [&](Machine& machine) {
                const Snapshot now = homeOf(machine.disk);
                EXPECT_TRUE(failure.empty() ? now.at(inApp("prog.exe")) == "second" : now == before)
                    << failure;
                EXPECT_EQ(now.count(inApp("notes.txt")), 1U);
            });
    }
}

}  // namespace
}  // namespace tarn::setup
