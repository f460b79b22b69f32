// SPDX-License-Identifier: Apache-2.0
//
// A settings file on a file system in memory, and what the user is told of it.
#pragma once

#include "library/settings/profstr.h"
#include "os/files.h"
#include "platform/model/view.h"
#include "support/steerable.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace tarn {

class Profile : public ::testing::Test {
protected:
    static inline const std::string File = "/home/user/ide.ini";

    void SetUp() override {
        ClearError();
        before = platform::useView(platform::makeHeadlessView([this](const platform::Question& question) {
            asked.push_back(question);
            return "OK";
        }));
        // What an earlier test was told is forgotten once the file could be read and written.
        start("[A]\r\n");
        PROFILESTRPUT(File, "A", "k", "v");
        files.putFolder("/home/user");
        os::files().remove(File);
        files.clearLog();
    }
    void TearDown() override {
        platform::useView(std::move(before));
        ClearError();
    }
    // The code that was told in a box since the last call; 0 if none was. None is ever left for the caller.
    int takeTold() {
        EXPECT_EQ(ErrorCell(), 0);
        const int code = LastError();
        EXPECT_EQ(asked.size(), code == 0 ? 0U : 1U);
        if (!asked.empty()) {
            EXPECT_EQ(asked[0].title, "Error");
            EXPECT_EQ(asked[0].buttons, std::vector<std::string>{"OK"});
            EXPECT_TRUE(
                asked[0].text.starts_with(ErrorMessage(code) + " (error " + std::to_string(code) + ").\n"))
                << asked[0].text;
            EXPECT_NE(asked[0].text.find("'" + File + "'"), std::string::npos) << asked[0].text;
        }
        asked.clear();
        ClearError();
        return code;
    }
    void start(std::string_view text) { files.put(File, text); }
    std::string text() { return files.contents(File); }
    std::string get(std::string_view section, std::string_view key) {
        return PROFILESTRGET(File, section, key);
    }

    os::SteeredFiles files;
    os::Steered steered{files};
    std::vector<platform::Question> asked;
    std::unique_ptr<platform::View> before;
};

}  // namespace tarn
