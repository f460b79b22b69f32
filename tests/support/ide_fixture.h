// SPDX-License-Identifier: Apache-2.0
//
// The environment on the object model alone, in a folder of its own: private settings, scripted answers, no
// screen.
#pragma once

#include "ide/editor/textedit.h"
#include "ide/shell/ide.h"
#include "ide/shell/idecore.h"
#include "ide/shell/windows.h"
#include "ide/shell/windowtable.h"
#include "library/settings/profstr.h"
#include "library/system/system.h"
#include "os/files.h"
#include "os/process.h"
#include "platform/model/model.h"
#include "platform/model/view.h"
#include "support/places.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <deque>
#include <filesystem>
#include <string>
#include <vector>

namespace tarn {

class IdeTest : public ::testing::Test {
protected:
    std::string dir;                  // with a "/" at its end
    std::deque<std::string> answers;  // given to the questions in turn; closed boxes when none is left
    std::vector<platform::Question> asked;

    void SetUp() override {
        std::string pattern = (std::filesystem::temp_directory_path() / "ide-test-XXXXXX").string();
        dir = std::string(mkdtemp(pattern.data())) + "/";
        std::filesystem::copy_file(SOURCE_DIR "/src/ide/ide.ini", dir + "ide.ini");
        PROFILESTRPUT(dir + "ide.ini", "Welcome", "AtStart", "0");
        std::filesystem::copy_file(BINARY_DIR "/ide.rcx", dir + "ide.rcx");
        std::filesystem::create_symlink(BINARY_DIR "/system.cls", dir + "system.cls");
        setenv("XDG_STATE_HOME", (dir + "state").c_str(), 1);
        setenv("XDG_CONFIG_HOME", (dir + "config").c_str(), 1);
        std::string program = dir + "ide";  // a name of this program, so that the folder counts as its own
        std::filesystem::create_symlink(std::filesystem::read_symlink("/proc/self/exe"), program);
        char* arguments[] = {program.data(), nullptr};
        os::setCommandLine(1, arguments);
        platform::SetApplicationResources(dir + "ide.rcx");
        before_ = platform::useView(platform::makeHeadlessView([this](const platform::Question& question) {
            asked.push_back(question);
            if (answers.empty()) return std::string();
            std::string answer = answers.front();
            answers.pop_front();
            return answer;
        }));
        ClearError();
        DebugStart(1, ProductWord, ProductVersion, ProductBuild, "");
    }

    void TearDown() override {
        platform::DestroyAllWindows();
        platform::useView(std::move(before_));
        ClearError();
        std::filesystem::current_path("/");
        std::filesystem::remove_all(dir);
    }

    // The Code window alone.
    void loadWindows() {
        REGISTERWINDOWS();
        Load(SDIEdit);
        ASSERT_TRUE(IsLoaded(SDIEdit)) << ErrorDetails();
    }

    // The whole start up to the event loop, with the given arguments.
    void start(std::vector<std::string> arguments = {}) {
        arguments.insert(arguments.begin(), dir + "ide");
        std::vector<char*> pointers;
        for (std::string& argument : arguments) pointers.push_back(argument.data());
        os::setCommandLine(static_cast<int>(pointers.size()), pointers.data());
        REGISTERWINDOWS();
        Load(Main);
        Stamp(0, ReportErrors, DefaultErrorHandler);
        ASSERT_TRUE(IsLoaded(Main)) << ErrorDetails();
    }
    static void pick(const std::string& control) {
        platform::userCommand(*platform::findControl(MAINCONTROL(control)));
    }
    static bool isEnabled(const std::string& control) { return GetEnabled(MAINCONTROL(control)); }
    static void type(const std::string& text) {
        SetSelection(SDIEdit, GetTextLength(SDIEdit) + 1, 0);
        SetSelText(SDIEdit, text);
    }

    std::string write(const std::string& name, std::string_view bytes) {
        EXPECT_TRUE(os::saveFile(dir + name, bytes, os::Durability::Unsynced).ok());
        return dir + name;
    }
    std::string read(const std::string& path) {
        std::string bytes;
        os::readFile(path, bytes);
        return bytes;
    }
    std::string ini() const { return dir + "ide.ini"; }
    std::string lastText() const { return asked.empty() ? "" : asked.back().text; }

private:
    std::unique_ptr<platform::View> before_;
};

}  // namespace tarn
