// SPDX-License-Identifier: Apache-2.0
//
// Installers as programs: a home for installations, and an installer of a program that greets.
#pragma once

#include "library/ship/copylist.h"
#include "library/ship/issscript.h"
#include "support/toolchain_folder.h"

#include <sys/stat.h>

namespace tarn::toolchain {

// A home for installations: `/home/o'brien & "x"`, a folder that has to be quoted everywhere.
class AtHome : public ToolchainTest {
protected:
    std::string home, installer;

    void SetUp() override {
        ToolchainTest::SetUp();
        home = dir + "o'brien & \"x\"";
        std::filesystem::create_directories(home + "/Desktop");
    }
    // Makes `installer`, of files that stand one a line.
    void makeInstaller(const std::string& files, const std::string& main,
                       const std::string& description = "Counts words") {
        write("script.iss",
              CREATEISSSCRIPT("Ann", "(c)", "Words", description, "1.0", "1 0 0 0", files, main, ""));
        ASSERT_EQ(run(BINARY_DIR "/iscc.exe",
                      {dir + "script.iss", "/O" + dir.substr(0, dir.size() - 1), "/Fmade-install"}),
                  0)
            << output;
        installer = dir + "made-install.exe";
    }
    int withHome(const std::string& program, std::vector<std::string> arguments) {
        arguments.insert(arguments.begin(), {"-i", "HOME=" + home, "XDG_RUNTIME_DIR=" + dir, program});
        return run("/usr/bin/env", arguments);
    }
    std::unique_ptr<os::Child> startInstaller() {
        os::StartError error = os::StartError::None;
        return os::processes().start(
            {"/usr/bin/env", {"-i", "HOME=" + home, "XDG_RUNTIME_DIR=" + dir, installer, "--quiet"}, dir, ""},
            error);
    }
    // Starts a program on a terminal of its own and types there, each line when there was time to ask.
    void typing(const std::string& lines, const std::string& program) {
        write("start", "exec env -i HOME=\"$HOME\" XDG_RUNTIME_DIR=\"$XDG_RUNTIME_DIR\" \"$PROGRAM\"\n");
        write("type", "for word in " + lines + "; do sleep 0.5; echo \"$word\"; done; sleep 20\n");
        run("/usr/bin/env", {"HOME=" + home, "XDG_RUNTIME_DIR=" + dir, "PROGRAM=" + program, "sh", "-c",
                             "sh type | { script -qec 'sh start' /dev/null; echo \"code $?\"; kill 0; }"});
    }
    std::string allIn(const std::string& folder) {
        std::string names;
        for (const auto& entry : std::filesystem::recursive_directory_iterator(folder))
            names += entry.path().string().substr(folder.size()) + "\n";
        return STRSORT(names);
    }
};

// An installer of a program that greets.
class SmallInstaller : public AtHome {
protected:
    void SetUp() override {
        AtHome::SetUp();
        const std::string program = write("small/small.exe", "#!/bin/sh\necho greets\n");
        makeInstaller(program + "\n" + write("small/data.txt", "data") + "\n", program);
        app = home + "/.local/opt/small";
    }
    void expectRunsAt(const std::string& folder) {
        EXPECT_EQ(run("/usr/bin/env", {"-i", folder + "/small.exe"}), 0) << output;
        EXPECT_EQ(output, "greets\n");
    }
    // It says that it is damaged, and nothing else happens.
    void expectRefuses(const std::string& name, const std::string& bytes) {
        write("damaged.exe", bytes);
        ::chmod((dir + "damaged.exe").c_str(), 0755);
        EXPECT_EQ(withHome(dir + "damaged.exe", {"--quiet"}), 1) << name;
        EXPECT_EQ(output, "This installer is damaged or incomplete. Get it again.\n") << name;
    }
    std::string app;
};

}  // namespace tarn::toolchain
