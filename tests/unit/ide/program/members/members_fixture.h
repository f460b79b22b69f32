// SPDX-License-Identifier: GPL-3.0-or-later
//
// A program in the folder `prog` of a test, shown in the Program Window, with a make tool that answers with a list; beside
// it an inherited folder `lib`, the library, and a folder `far` that is none of the program.
#pragma once

#include "ide/program/projeditor.h"
#include "ide/program/projwindow.h"
#include "library/source/symbols.h"
#include "support/doings_fixture.h"

#include <algorithm>
#include <filesystem>

namespace tarn {

inline const Object OpenResourceDlg("OpenResourceDlg"), ConfirmRemoveDlg("ConfirmRemoveDlg");

class MembersTest : public DoingsTest {
protected:
    static constexpr const char* MainClass =
        "Tarnwick Class Main\nUses Shapes\n\nfunction main()\nend function\n\nEnd class\n";
    std::string mainFile;

    static std::string classText(const std::string& name) {
        return "Tarnwick Class " + name + "\nEnd class\n";
    }
    static std::string dialog(const std::string& name) {
        return name + " DIALOG\n  POSITION=0 0 50 50\n  CAPTION=\"" + name + "\"\nEND\n";
    }

    void SetUp() override {
        DoingsTest::SetUp();
        start();
        for (const char* folder : {"prog", "lib", "far", "tools", "res"})
            std::filesystem::create_directory(dir + folder);
        const std::pair<const char*, const char*> paths[] = {
            {"Edit1", "lib"}, {"Edit3", "tools"}, {"Edit5", "res"}};
        for (const auto& [key, folder] : paths) PROFILESTRPUT(ini(), "PathsOptionsDlg", key, dir + folder);
        PROFILESTRPUT(ini(), "GenOptionsDlg", "ShowFiles", "0");
        mainFile = write("prog/main.cls", MainClass);
        write("prog/shapes.cls", classText("Shapes"));
    }
    // Opens the program of these files of `prog`, and of full paths.
    void open(const std::vector<std::string>& files = {"main.cls", "shapes.cls"}) {
        list(files);
        PROJECTOPEN(ProjectEditorDlg, "Program Window", dir + "prog/" + files[0]);
        Stamp(0, ReportErrors, DefaultErrorHandler);
        ASSERT_TRUE(IsLoaded(ProjectEditorDlg)) << lastText();
        asked.clear();
    }
    void list(const std::vector<std::string>& files) {
        std::string deps;
        for (const std::string& file : files) deps += (file[0] == '/' ? "" : dir + "prog/") + file + "\n";
        write("deps", deps);
        makeTool("cat \"" + dir + "deps\"");
    }
    // What the script writes is what the make tool says.
    void makeTool(const std::string& script) {
        const std::string tool =
            write("tools/ordo.exe", "#!/bin/sh\n{ " + script + "\n} >\"" + dir + "tools/ordo.err\"\n");
        std::filesystem::permissions(tool, std::filesystem::perms::owner_all);
    }
    // Runs a command, and reports what it left in the error cell.
    template <class Command>
    void run(const Command& command) {
        asked.clear();
        command();
        Stamp(0, ReportErrors, DefaultErrorHandler);
    }
    // The texts of the messages, without those of the choice of a file.
    std::vector<std::string> told() const {
        std::vector<std::string> texts;
        for (const platform::Question& question : asked)
            if (question.kind != platform::Question::Kind::OpenFile) texts.push_back(question.text);
        return texts;
    }
    std::string text(const std::string& name) { return read(dir + name); }
    bool there(const std::string& name) const { return std::filesystem::exists(dir + name); }
    std::string uses(const std::string& name) { return SYMGETUSES(1, dir + name); }
    std::string inherited() const { return PROFILESTRGET(ini(), "PathsOptionsDlg", "Edit1"); }
    // All files of the folders of the program with their contents, to see that nothing has changed.
    std::string everything() {
        std::string all = inherited() + "\n";
        for (const char* folder : {"prog", "lib", "far"}) {
            std::vector<std::string> files;
            for (const auto& entry : std::filesystem::recursive_directory_iterator(dir + folder))
                if (entry.is_regular_file()) files.push_back(entry.path().string());
            std::sort(files.begin(), files.end());
            for (const std::string& file : files) all += file + "\n" + read(file) + "\n";
        }
        return all;
    }
    static Object part(const Object& window, std::string_view name) { return FINDCONTROL(window, name); }
    static void press(const Object& window, std::string_view name) {
        platform::userCommand(*platform::findControl(part(window, name)));
    }
    static Object rows() { return part(ProjectEditorDlg, "iconlist1"); }
    // Selects the row of that text, and opens its group first if it stands in one.
    void choose(const std::string& title, const std::string& group = {}) {
        const auto find = [&](const std::string& wanted) {
            for (int row = 1; row <= GetListCount(rows()); ++row) {
                std::string shown = GetList(rows(), row);
                std::erase(shown, BOLD_MARK);
                if (shown == wanted) return row;
            }
            return 0;
        };
        if (!group.empty() && !PROJECTITEMISOPEN(ProjectEditorDlg, find(group))) {
            ASSERT_TRUE(PROJECTITEMSELECT(ProjectEditorDlg, rows(), find(group)));
        }
        ASSERT_NE(find(title), 0) << title;
        SetListIndex(rows(), find(title));
    }
};

}  // namespace tarn
