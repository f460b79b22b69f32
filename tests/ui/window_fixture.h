// SPDX-License-Identifier: Apache-2.0
//
// Windows on real widgets, made from resource text of a test's own. A fixture derives from WindowTest and says in SetUp
// what it works on, which is one of
//
//     ASSERT_EQ(useResources(folder, Resources), "");
//     ASSERT_TRUE(open({Form, Code}, listen));
//
//     ASSERT_EQ(openText(Form, Resources), "");
//
// A test leaves no window, no function of one and no resources behind.
#pragma once

#include "platform/windowing.h"
#include "support/resources.h"
#include "support/tempfolder.h"
#include "ui/shownwindow.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

namespace tarn::platform {

class WindowTest : public ::testing::Test {
protected:
    TempFolder folder;

    void TearDown() override {
        DestroyAllWindows();
        settle();
        for (const Object& window : hearing_) RegisterWindow(window, nullptr);
        SetApplicationResources("");
    }
    // Until nothing waits any more: an event asks for a layout, and that for a drawing.
    static void settle() {
        for (int i = 0; i < 3; ++i) DoEvents();
    }
    // Loads windows of the program's resources, in this order, with a function that hears their events. False: one is
    // not there.
    [[nodiscard]] bool load(const std::vector<Object>& windows, WindowFunction function) {
        for (const Object& window : windows) hear(window, function);
        return std::all_of(windows.begin(), windows.end(), [](const Object& one) { return Load(one) == Ok; });
    }
    // Shows them, too.
    [[nodiscard]] bool open(const std::vector<Object>& windows, WindowFunction function) {
        const bool loaded = load(windows, function);
        for (const Object& window : windows)
            if (loaded) Show(window, false);
        settle();
        return loaded;
    }
    // The same for one dialog by a text that is not the program's resources. Empty, or what is wrong with the text.
    [[nodiscard]] std::string loadText(const Object& dialog, const std::string& text) {
        const std::string rc = folder / "a.rc";
        if (!os::saveFile(rc, text, os::Durability::Unsynced).ok()) return rc + " cannot be written.";
        return Load(dialog, rc, dialog.window());
    }
    [[nodiscard]] std::string openText(const Object& dialog, const std::string& text) {
        std::string message = loadText(dialog, text);
        if (message.empty()) Show(dialog, false);
        settle();
        return message;
    }
    void hear(const Object& window, WindowFunction function) {
        RegisterWindow(window, function);
        hearing_.push_back(window);
    }

private:
    std::vector<Object> hearing_;
};

}  // namespace tarn::platform
