// SPDX-License-Identifier: GPL-3.0-or-later
//
// The information about a program: which fault is told first, and what stands in the window.
#include "ide/build/runinfo.h"

#include "support/doings_fixture.h"

#include <filesystem>

namespace tarn {
namespace {

class RunInfo : public DoingsTest {
protected:
    std::string file;

    void SetUp() override {
        DoingsTest::SetUp();
        start();
        PROFILESTRPUT(ini(), "PathsOptionsDlg", "Edit3", dir);
        file = write("part.cls", "Tarnwick Class Part\nEnd class\n");
    }
    void makeTool(const std::string& script) {
        const std::string tool =
            write("ordo.exe", "#!/bin/sh\n{ " + script + "\n} >\"" + dir + "ordo.err\"\n");
        std::filesystem::permissions(tool, std::filesystem::perms::owner_all);
    }
    std::string told() {
        asked.clear();
        RUNINFODIALOG();
        Stamp(0, ReportErrors, DefaultErrorHandler);
        EXPECT_EQ(asked.size(), 1U);
        EXPECT_EQ(asked.empty() ? "" : asked[0].title, "Run-Program Information");
        return lastText();
    }
    static constexpr const char* Impossible = "It is not possible to see the program information.\n";
};

TEST_F(RunInfo, WhatTheMakeToolSaysComesBeforeAClassThatIsNotMain) {
    EXPECT_EQ(told(), std::string(Impossible) + "No file has been specified.");
    EDITWNDOPEN(SDIEdit, file, false, 0);
    EXPECT_EQ(told(), std::string(Impossible) + "The file '" + dir + "ordo.exe' was not found.");
    makeTool("echo 'no such class'; exit 1");
    EXPECT_EQ(told(), std::string(Impossible) + "no such class");
    makeTool("echo '" + file + "'");
    EXPECT_EQ(told(),
              "File '" + file +
                  "' is not a main class.\nIt is only possible to see program information for a main class.");
}

TEST_F(RunInfo, AClassThatHasGoneIsTold) {
    makeTool("echo '" + file + "'");
    EDITWNDOPEN(SDIEdit, file, false, 0);
    std::filesystem::remove(file);
    EXPECT_EQ(told(), std::string(Impossible) + "The file '" + file + "' was not found.");
}

}  // namespace
}  // namespace tarn
