// SPDX-License-Identifier: Apache-2.0
//
// Runs tarn-data, and the programs it is compared with, in a folder of the test's own.
#pragma once

#include "os/files.h"
#include "os/process.h"
#include "support/places.h"
#include "support/tempfolder.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace tarn::datatool {

class TarnData : public ::testing::Test {
protected:
    TempFolder dir;
    std::string output, errors;  // of the last program

    void write(const std::string& name, std::string_view text) {
        ASSERT_TRUE(os::saveFile(dir / name, text, os::Durability::Unsynced).ok());
    }
    [[nodiscard]] std::string read(const std::string& name) const {
        std::string bytes;
        os::readFile(dir / name, bytes);
        return bytes;
    }
    [[nodiscard]] bool exists(const std::string& name) const { return os::sizeOf(dir / name) >= 0; }
    // A line of the shell; 128 + n after signal n.
    int shell(const std::string& line) {
        os::StartError error = os::StartError::None;
        const std::string command = "{ " + line + "\n} >.output 2>.errors";
        const auto child =
            os::processes().start({"/bin/sh", {"-c", command}, dir.path(), dir / ".sh"}, error);
        if (child == nullptr) return -1;
        const os::ExitState state = child->wait(120000);
        if (!state.ended) child->stop(0);
        EXPECT_TRUE(state.ended);
        output = read(".output");
        errors = read(".errors") + read(".sh");
        return state.signal != 0 ? 128 + state.signal : state.code;
    }
    int tarnData(const std::string& words) { return shell(program() + " " + words); }
    static std::string program() { return BINARY_DIR "/tarn-data"; }
    // A script beside this file.
    int python(const std::string& script, const std::string& words) {
        return shell("/usr/bin/python3 " SOURCE_DIR "/tests/tarn_data/" + script + " " + words);
    }
};

}  // namespace tarn::datatool
