// SPDX-License-Identifier: GPL-3.0-or-later
//
// The disk and the process fail at each call of each command that changes a program: it is the old program or the new one
// then, at the latest when the next start has finished what was begun.
#include "ide/designer/files/dlgtest.h"
#include "ide/program/members/addclass.h"
#include "ide/program/members/adddialog.h"
#include "ide/program/members/addfile.h"
#include "ide/program/members/addresource.h"
#include "ide/program/members/removeitem.h"
#include "ide/program/progprops.h"

#include "library/designer/propedit_sheet.h"
#include "os/changes.h"
#include "support/steerable.h"
#include "unit/ide/program/members/members_fixture.h"

#include <map>

namespace tarn {
namespace {

using Files = std::map<std::string, std::string>;

constexpr const char* MainText = "Tarnwick Class Main\nUses Shapes\n\nfunction main()\nend function\n\n"
                                 "callback function Ask(in anEvent : integer)\nend function\n\nEnd class\n";

const Files Program = {{"/w/main.cls", MainText},
                       {"/w/main.rc", "Ask DIALOG\n  POSITION=0 0 50 50\nEND\nnote INCFILE \"note.txt\"\n"
                                      "1 VERSIONINFO\nFILEVERSION 1,2,3,4\nBEGIN\nEND\n"},
                       {"/w/note.txt", "note"},
                       {"/w/shapes.cls", "Tarnwick Class Shapes\nUses Lists\nEnd class\n"},
                       {"/w/shapes.rc", "// resources\n"},
                       {"/w/other.cls", "Tarnwick Class Other\nUses Shapes Lists\nEnd class\n"},
                       {"/lib/tools.cls", "Tarnwick Class Tools\nEnd class\n"},
                       {"/lib/forms.rc", "Form DIALOG\n  POSITION=0 0 50 50\nEND\n"},
                       {"/far/round.cls", "Tarnwick Class Round\nEnd class\n"},
                       {"/far/round.rc", "// its resources\n"},
                       {"/far/boxes.rc", "New DIALOG\n  POSITION=9000 9000 50 50\nEND\n"},
                       {"/far/pic.bmp", "picture"}};

// What the user answers, and does. The dialog that is added lies off the screen, which is told before anything is written.
struct Command {
    const char* name;
    std::deque<std::string> answers;
    void (*run)();
    const char* row = "";   // the selected one: type and name of its item
    bool tickBoth = false;  // in the question before a removal
};
const Command commands[] = {
    {"copy a class", {"/far/round.cls", "Copy file"}, [] { PROJECTADDCLASS("T"); }},
    {"add a folder for a class", {"/far/round.cls", "Update folders"}, [] { PROJECTADDCLASS("T"); }},
    {"copy a resource file", {"/far/boxes.rc", "Copy file"}, [] { PROJECTADDRESOURCE("T"); }},
    {"add a folder for a resource file",
     {"/far/boxes.rc", "Update folders"},
     [] { PROJECTADDRESOURCE("T"); }},
    {"add a class of a folder", {"/lib/tools.cls"}, [] { PROJECTADDCLASS("T"); }},
    {"add a resource file of a folder", {"/lib/forms.rc"}, [] { PROJECTADDRESOURCE("T"); }},
    {"add a dialog", {"OK"}, [] { PROJECTADDDIALOG("T"); }, "DIALOG Main"},
    {"add a file", {"/far/pic.bmp"}, [] { PROJECTADDFILE("T"); }, "DIALOG Main"},
    {"remove a dialog", {}, [] { PROJECTITEMDELETE(ProjectEditorDlg); }, "DIALOG Ask", true},
    {"remove a class", {}, [] { PROJECTITEMDELETE(ProjectEditorDlg); }, "Class Shapes", true},
    {"remove a file", {}, [] { PROJECTITEMDELETE(ProjectEditorDlg); }, "INCFILE note", true},
    {"remove a resource file", {}, [] { PROJECTITEMDELETE(ProjectEditorDlg); }, "DIALOG Shapes", true},
    {"remove a version", {}, [] { PROJECTITEMDELETE(ProjectEditorDlg); }, "VERSIONINFO 1"},
    {"change the properties", {}, [] { PROGRAMPROPERTIESDIALOG("T", "/w/main.cls", "1"); }, "VERSIONINFO 1"},
};

class MemberDeaths : public DoingsTest {
protected:
    os::SteeredFiles disk;
    std::string settings;

    void SetUp() override {
        DoingsTest::SetUp();
        start();
        PROFILESTRPUT(ini(), "PathsOptionsDlg", "Edit1", "/lib");
        settings = read(ini());
        Load(ProjectEditorDlg);
        std::vector<std::string> items;
        for (const ProjectItem& item : {ProjectItem{1, "M", "Class", "Main", "/w/main.cls", "", "p", ""},
                                        ProjectItem{1, "D", "DIALOG", "Main", "/w/main.rc", "", "p", ""},
                                        ProjectItem{2, "A", "DIALOG", "Ask", "/w/main.rc", "", "p", ""},
                                        ProjectItem{1, "I", "INCFILE", "Main", "/w/main.rc", "", "p", ""},
                                        ProjectItem{2, "N", "INCFILE", "note", "/w/note.txt", "", "p", ""},
                                        ProjectItem{1, "S", "Class", "Shapes", "/w/shapes.cls", "", "p", ""},
                                        ProjectItem{1, "O", "Class", "Other", "/w/other.cls", "", "p", ""},
                                        ProjectItem{1, "R", "DIALOG", "Shapes", "/w/shapes.rc", "", "p", ""},
                                        ProjectItem{1, "V", "VERSIONINFO", "1", "/w/main.rc", "", "p", ""}})
            ADDPROJECTITEM(item, items);
        for (const std::string& item : items) list_ += item + "\n";
        os::useFiles(&disk);
        before_ = platform::useView(platform::makeHeadlessView([this](const platform::Question& question) {
            asked.push_back(question);
            if (answers.empty()) return std::string();
            const std::string answer = answers.front();
            answers.pop_front();
            if (answers.empty()) trouble_();
            return answer;
        }));
        platform::view().setIdle([this] {
            if (doings.empty()) return platform::QuitMainLoop();
            const auto next = doings.front();
            doings.pop_front();
            next();
        });
    }
    void TearDown() override {
        os::useFiles(nullptr);
        platform::view().setIdle({});
        platform::useView(std::move(before_));
        DoingsTest::TearDown();
    }
    // Everything as at the beginning.
    void prepare(const Command& command) {
        disk.revive();
        disk.stopFailing();
        disk.setFreeBytes(100'000'000);
        for (const std::string& file : disk.allFiles()) disk.remove(file);
        disk.putFolder("/lib");
        disk.put(ini(), settings);
        for (const auto& [file, text] : Program) disk.put(file, text);
        ClearError();
        asked.clear();
        answers = command.answers;
        UPDATEPROJECTWINDOW(ProjectEditorDlg, "/w/main.cls", list_, {1, 0});
        for (const int group : {3, 2})
            static_cast<void>(
                PROJECTITEMSELECT(ProjectEditorDlg, FINDCONTROL(ProjectEditorDlg, "iconlist1"), group));
        for (int row = 1; row <= 9; ++row) {
            const ProjectItem item = PROJECTITEMAT(ProjectEditorDlg, row).item;
            if (item.type + " " + item.name == command.row)
                SetListIndex(FINDCONTROL(ProjectEditorDlg, "iconlist1"), row);
        }
    }
    // Runs it; `trouble` begins when the user has answered all questions. False if the process died.
    bool run(const Command& command, const std::function<void()>& trouble) {
        prepare(command);
        trouble_ = trouble;
        doings.clear();
        if (*command.row != '\0' && std::string(command.name) != "add a file")
            doings.push_back([&] {
                press(command);
                if (command.answers.empty()) trouble();
            });
        try {
            command.run();
            Stamp(0, ReportErrors, DefaultErrorHandler);
        } catch (const os::ProcessDeath&) {
            return false;
        }
        return true;
    }
    static void press(const Command& command) {
        if (IsLoaded(PropertiesDlg)) {
            SetText(FINDCONTROL(PropertiesDlg, "edtvalue2"), "Ann & Co.");
            return platform::userCommand(*platform::findControl(FINDCONTROL(PropertiesDlg, "idok")));
        }
        const Object window = IsLoaded(ConfirmRemoveDlg) ? ConfirmRemoveDlg : OpenResourceDlg;
        const auto part = [&](const char* name) { return FINDCONTROL(window, name); };
        if (command.tickBoth)
            for (const char* box : {"checkbox1", "checkbox2"}) SetValue(part(box), 1);
        if (window == OpenResourceDlg) {
            SetText(part("edit1"), "/far/boxes.rc");
            platform::userChange(*platform::findControl(part("edit1")));
        }
        platform::userCommand(*platform::findControl(part("pushbutton1")));
    }
    // The files of the program; no scratch files and no halves of saves, which nobody reads.
    Files now() const {
        Files files;
        for (const std::string& file : disk.allFiles())
            if ((file.starts_with("/w/") || file.starts_with("/far/") || file.starts_with("/lib/")) &&
                !file.ends_with(".tmp") && file.find("/.tarnwick-") == std::string::npos)
                files[file] = disk.contents(file);
        return files;
    }
    // Calls of the disk between the last answer and the first change of the program: a resource file is tested by a scratch
    // file, which goes in a destructor, where no test can die.
    int callsBefore(const Command& command) {
        if (command.answers != std::deque<std::string>{"/lib/forms.rc"}) return 0;
        prepare(command);
        disk.failAt(1'000'000, os::FileError::DiskFull);
        EXPECT_EQ(TESTFILEPROPERTIES("/lib/forms.rc"), "");
        const int calls = static_cast<int>(disk.calls());
        disk.stopFailing();
        return calls + 1;
    }
    // What the command makes of the program when nothing goes wrong.
    Files after(const Command& command) {
        EXPECT_TRUE(run(command, [] {}));
        return now();
    }

private:
    std::string list_;
    std::function<void()> trouble_;
    std::unique_ptr<platform::View> before_;
};

TEST_F(MemberDeaths, EachCommandChangesTheProgram) {
    for (const Command& command : commands) {
        EXPECT_NE(after(command), Program) << command.name << ": " << lastText();
        EXPECT_EQ(disk.openHandles(), 0);
    }
}

TEST_F(MemberDeaths, AKillAtAnyCallLeavesTheOldProgramOrTheNewOne) {
    for (const Command& command : commands) {
        const Files changed = after(command);
        int deaths = 0;
        for (int n = callsBefore(command) + 1; n < 400; ++n) {
            const bool lived = run(command, [&] { disk.dieAt(n, n % 2 == 0); });
            disk.revive();
            ClearError();
            os::finishChanges();
            const Files found = now();
            EXPECT_TRUE(found == Program || found == changed) << command.name << " at call " << n;
            if (lived) break;
            ++deaths;
        }
        EXPECT_GT(deaths, 2) << command.name;
    }
}

TEST_F(MemberDeaths, AFailureAtAnyCallLeavesTheOldProgramOrTheNewOne) {
    for (const os::FileError error :
         {os::FileError::WriteFailed, os::FileError::DiskFull, os::FileError::Denied})
        for (const Command& command : commands) {
            const Files changed = after(command);
            for (int n = 1; n < 400; ++n) {
                EXPECT_TRUE(run(command, [&] { disk.failAt(n, error); }));
                const bool reached = disk.calls() >= n;
                disk.stopFailing();
                const Files found = now();
                EXPECT_TRUE(found == Program || found == changed) << command.name << " at call " << n;
                EXPECT_TRUE(found == changed || !asked.empty()) << command.name << " at call " << n;
                if (!reached) break;
            }
        }
}

TEST_F(MemberDeaths, ADiskThatIsFullLeavesTheOldProgramAndSaysSo) {
    for (const Command& command : commands) {
        const Files changed = after(command);
        for (const std::int64_t room : {0, 10, 100, 300, 1000, 3000}) {
            EXPECT_TRUE(run(command, [&] { disk.setFreeBytes(room); }));
            const Files found = now();
            EXPECT_TRUE(found == Program || found == changed) << command.name << " with " << room << " bytes";
            EXPECT_TRUE(found == changed || !asked.empty()) << command.name;
        }
    }
}

}  // namespace
}  // namespace tarn
