// SPDX-License-Identifier: Apache-2.0
//
// A folder of sources for tests of the toolchain, with tools of its own: links to the built programs, whose
// results lie beside the links, and private settings.
#pragma once

#include "os/files.h"
#include "os/process.h"
#include "support/places.h"
#include "support/tempfolder.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <deque>
#include <filesystem>
#include <string>
#include <vector>

namespace tarn::toolchain {

class ToolchainTest : public ::testing::Test {
protected:
    std::string dir;  // with "/" at its end

    void SetUp() override { useFolder("toolchain-test-XXXXXX"); }
    void TearDown() override {
        std::filesystem::permissions(dir, std::filesystem::perms::owner_all);
        std::filesystem::remove_all(dir);
    }

    void useFolder(const std::string& name) {
        std::string pattern = (std::filesystem::temp_directory_path() / name).string();
        dir = std::string(mkdtemp(pattern.data())) + "/";
        std::filesystem::create_directories(dir + "tools");
        for (const char* tool : {"quarn.exe", "ordo.exe"})
            std::filesystem::create_symlink(std::string(BINARY_DIR "/") + tool, dir + "tools/" + tool);
        variables_.emplace_back("XDG_CONFIG_HOME", dir + "config");
        variables_.emplace_back("XDG_STATE_HOME", dir + "state");
        variables_.emplace_back("XDG_RUNTIME_DIR", dir);
        for (const char* screen : {"DISPLAY", "WAYLAND_DISPLAY"}) variables_.emplace_back(screen, nullptr);
    }

    std::string write(const std::string& name, std::string_view text) {
        std::filesystem::create_directories(std::filesystem::path(dir + name).parent_path());
        EXPECT_TRUE(os::saveFile(dir + name, text, os::Durability::Unsynced).ok());
        return dir + name;
    }
    std::string read(const std::string& name) const {
        std::string bytes;
        os::readFile(dir + name, bytes);
        return bytes;
    }
    bool exists(const std::string& name) const { return os::sizeOf(dir + name) >= 0; }

    // Runs a program to its end; its output goes to `output`. 128 + n after signal n.
    int run(const std::string& program, const std::vector<std::string>& arguments) {
        os::StartError error = os::StartError::None;
        const auto child = os::processes().start({program, arguments, dir, dir + "output"}, error);
        if (child == nullptr) return -1;
        const os::ExitState state = child->wait(60000);
        if (!state.ended) child->stop(0);
        EXPECT_TRUE(state.ended);
        output = read("output");
        return state.signal != 0 ? 128 + state.signal : state.code;
    }
    int quarn(std::vector<std::string> arguments) { return run(dir + "tools/quarn.exe", arguments); }
    int ordo(std::vector<std::string> arguments) { return run(dir + "tools/ordo.exe", arguments); }
    std::string errors() const { return read("tools/sarn.err"); }

    std::string output;

private:
    std::deque<Variable> variables_;
};

}  // namespace tarn::toolchain
