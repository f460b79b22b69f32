// SPDX-License-Identifier: Apache-2.0
//
// Files that are brought to users: a folder with `program/`, which counts as this program's own, `files/` and `to/`; answers
// to the boxes in turn, and what was asked.
#pragma once

#include "library/ship/copyutil.h"
#include "library/system/system.h"
#include "os/files.h"
#include "os/process.h"
#include "platform/model/model.h"
#include "platform/model/view.h"
#include "support/errorcell.h"
#include "support/tempfolder.h"

#include <deque>
#include <functional>
#include <gtest/gtest.h>

namespace tarn {

class ShipCopies : public ::testing::Test {
protected:
    TempFolder dir;
    std::deque<std::string> answers;  // to the questions in turn; closed boxes when none is left
    std::vector<platform::Question> asked;
    std::function<void()> meanwhile;  // while a box is open

    void SetUp() override {
        ClearError();
        before_ = platform::useView(platform::makeHeadlessView([this](const platform::Question& question) {
            asked.push_back(question);
            if (meanwhile) meanwhile();
            if (answers.empty()) return std::string();
            std::string answer = answers.front();
            answers.pop_front();
            return answer;
        }));
        folder("program"), folder("files"), folder("to");
        std::string program =
            dir / "program/ide";  // a name of this program, so that the folder counts as its own
        std::filesystem::create_symlink(std::filesystem::read_symlink("/proc/self/exe"), program);
        char* arguments[] = {program.data(), nullptr};
        os::setCommandLine(1, arguments);
        std::filesystem::current_path(dir.path());
        drive = {dir / "to", 1000, 100};
    }
    void TearDown() override {
        std::filesystem::current_path("/");
        platform::useView(std::move(before_));
        EXPECT_EQ(takeError(), 0);
        EXPECT_TRUE(answers.empty());
    }
    void folder(const std::string& name) { std::filesystem::create_directory(dir / name); }
    std::string make(const std::string& name, const std::string& bytes) {
        EXPECT_TRUE(os::saveFile(dir / name, bytes, os::Durability::Unsynced).ok());
        return dir / name;
    }
    // A line of a list for a new file of that size.
    std::string file(const std::string& name, std::size_t size) {
        return make("files/" + name, std::string(size, 'x')) + "\t" + std::to_string(size) + " byte(s)\n";
    }
    void tool(const std::string& name, const std::string& script) {
        make("program/" + name, "#!/bin/sh\n" + script + "\n");
        std::filesystem::permissions(dir / "program/" + name, std::filesystem::perms::owner_all);
    }
    [[nodiscard]] std::string lastText() const { return asked.empty() ? "" : asked.back().text; }
    [[nodiscard]] std::string listing(const std::string& name) const {
        return GETDISKFILELIST(dir / name, "*.*");
    }
    std::string read(const std::string& name) {
        std::string bytes;
        os::readFile(dir / name, bytes);
        return bytes;
    }

    FloppyDrive drive;
    const Object owner;

private:
    std::unique_ptr<platform::View> before_;
};

}  // namespace tarn
