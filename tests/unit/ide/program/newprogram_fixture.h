// SPDX-License-Identifier: GPL-3.0-or-later
//
// The environment in a folder where new classes and programs are made: what the make tool says, and a user who fills
// the sheet.
#pragma once

#include "ide/program/newprogram.h"
#include "ide/program/projwindow.h"
#include "library/designer/propedit_sheet.h"
#include "support/doings_fixture.h"

#include <filesystem>
#include <string>
#include <utility>
#include <vector>

namespace tarn {

class NewProgram : public DoingsTest {
protected:
    static constexpr const char* Main = "Tarnwick Class A\n\nfunction main()\nend function\n\nEnd class\n";

    static std::string dialogText() {
        return "Main DIALOG\n    POSITION=20 20 240 160\n    CAPTION=\"Main\"\n    BORDERSTYLE=2\nEND\n";
    }
    void SetUp() override {
        DoingsTest::SetUp();
        start();
        asked.clear();
        std::filesystem::create_directory(dir + "work");
        std::filesystem::current_path(dir + "work");
        PROFILESTRPUT(ini(), "PathsOptionsDlg", "Edit1", dir + "lib");
        std::filesystem::create_directory(dir + "lib");
    }
    // A make tool that says what a program consists of: its main class and what lies beside it.
    void makeTool(const std::vector<std::string>& files) {
        std::string list;
        for (const std::string& file : files) list += dir + file + "\\n";
        const std::string tool =
            write("ordo.exe", "#!/bin/sh\nprintf '" + list + "' >\"" + dir + "ordo.err\"\n");
        std::filesystem::permissions(tool, std::filesystem::perms::owner_all);
    }
    void openProgram(const std::vector<std::string>& files) {
        makeTool(files);
        PROJECTOPEN(ProjectEditorDlg, "Program Window", dir + files[0]);
        ASSERT_TRUE(IsLoaded(ProjectEditorDlg)) << lastText();
        asked.clear();
    }
    static Object row(const std::string& name) {
        const Object labels = FINDCONTROL(PropertiesDlg, "lblname1");
        for (int i = ControlLbound(labels); i <= ControlUbound(labels); ++i)
            if (GetCaption(ControlElement(labels, i)) == name)
                return ControlElement(FINDCONTROL(PropertiesDlg, "edtvalue1"), i);
        ADD_FAILURE() << name;
        return {};
    }
    // Fills the sheet when it is up, and leaves it.
    void fill(const std::vector<std::pair<std::string, std::string>>& values, bool ok = true) {
        doings.emplace_back([values, ok] {
            ASSERT_TRUE(IsLoaded(PropertiesDlg));
            for (const auto& [name, value] : values) SetText(row(name), value);
            platform::userCommand(
                *platform::findControl(FINDCONTROL(PropertiesDlg, ok ? "idok" : "idcancel")));
        });
    }
    void newClass() {
        PROJECTNEWNONMAIN(MAINCONTROL("codelabel"), "New Class");
        Stamp(0, ReportErrors, DefaultErrorHandler);
    }
    void newProgram(bool ask) {
        PROJECTNEWMAIN(ProjectEditorDlg, MAINCONTROL("codelabel"), "New Program", ask);
        Stamp(0, ReportErrors, DefaultErrorHandler);
    }
    std::string text(const std::string& name) { return read(dir + name); }
    bool has(const std::string& name) { return std::filesystem::exists(dir + name); }
};

}  // namespace tarn
