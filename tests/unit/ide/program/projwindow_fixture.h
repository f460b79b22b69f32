// SPDX-License-Identifier: Apache-2.0
//
// The Program Window over a program of a few files, as a make tool tells them, on the object model alone.
#pragma once

#include "ide/program/projedit.h"
#include "ide/program/projeditor.h"
#include "ide/program/projitems.h"
#include "ide/program/projwindow.h"
#include "support/ide_fixture.h"

#include <filesystem>
#include <string>
#include <vector>

namespace tarn {

class ProjWindow : public IdeTest {
protected:
    static constexpr const char* MainClass =
        "Tarnwick Class Main\n\nfunction main()\nend function\nEnd class\n";
    static constexpr const char* OtherClass = "Tarnwick Class Other\nEnd class\n";

    // The make tool answers /fs with these files, which stand in the folder of the test.
    void answerWith(const std::vector<std::string>& names) {
        std::string text;
        for (const std::string& name : names) text += (name[0] == '/' ? "" : dir) + name + "\n";
        write("deps", text);
        makeTool("cat \"" + dir + "deps\" >\"" + dir + "ordo.err\"\n");
    }
    void makeTool(const std::string& script) {
        const std::string tool = write("ordo.exe", "#!/bin/sh\n" + script);
        std::filesystem::permissions(tool, std::filesystem::perms::owner_all);
    }
    static std::string dialog(const std::string& name) {
        return name + " DIALOG\n  POSITION=0 0 10 10\n  CAPTION=\"x\"\nEND\n\n";
    }
    // Main, its twin of two dialogs, and another class.
    void open() {
        file = write("main.cls", MainClass);
        write("main.rc", dialog("First") + dialog("Second"));
        write("other.cls", OtherClass);
        answerWith({"main.cls", "main.rc", "other.cls"});
        PROFILESTRPUT(ini(), "GenOptionsDlg", "ShowFiles", "0");
        start({file});
        ASSERT_TRUE(IsLoaded(ProjectEditorDlg)) << lastText();
        asked.clear();
    }
    static Object rows() { return FINDCONTROL(ProjectEditorDlg, "iconlist1"); }
    static Object map() { return FINDCONTROL(ProjectEditorDlg, "maplist1"); }
    static Object data() { return FINDCONTROL(ProjectEditorDlg, "datalist1"); }
    // The texts of the rows without bold, the selected one in brackets.
    static std::string shownRows() {
        std::string text;
        for (int row = 1; row <= GetListCount(rows()); ++row) {
            std::string title = GetList(rows(), row);
            std::erase(title, BOLD_MARK);
            text += row == GetListIndex(rows()) ? "[" + title + "]|" : title + "|";
        }
        return text;
    }
    static std::string numbers() {
        std::string text;
        for (int row = 1; row <= GetListCount(map()); ++row) text += GetList(map(), row) + " ";
        return text;
    }
    static bool key(int code) { return PROJECTEDITORDLG(ProjectEditorDlg, KEYPRESS_EVENT, rows(), code); }
    static void choose(int row) { SetListIndex(rows(), row); }
    static void doubleClick() { PROJECTEDITORDLG(ProjectEditorDlg, DBLCLICK_EVENT, rows(), 0); }
    // Items of levels, such as "1 2 2 1"; the titles are their numbers.
    void fill(const std::string& levels, ProjectPlace place = {}) {
        std::vector<std::string> items;
        std::string text;
        for (int n = 1; n <= STRWORDCOUNT(levels); ++n) {
            bool ok = false;
            ADDPROJECTITEM({CVTI(STRWORD(levels, n), ok), "t" + STR(n), "T", "n" + STR(n), dir + "f" + STR(n),
                            "", "p.bmp", "o.bmp"},
                           items);
        }
        for (const std::string& item : items) text += item + "\n";
        UPDATEPROJECTWINDOW(ProjectEditorDlg, dir + "main.cls", text, place);
    }
    std::string file;
};

}  // namespace tarn
