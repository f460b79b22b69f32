// SPDX-License-Identifier: Apache-2.0
//
// What of the library reaches windows: dialogs kept in settings files, boxes,
// help, and tools that are waited for, on the object model without a screen.
#include "library/settings/profstr.h"
#include "library/system/system.h"
#include "os/clock.h"
#include "os/files.h"
#include "platform/model/model.h"
#include "platform/model/view.h"
#include "support/places.h"
#include "support/steerable.h"
#include "support/tempfolder.h"

#include <gtest/gtest.h>

#include <functional>

namespace tarn {
namespace {

const char* const Resources = "TestDlg DIALOG\n"
                              "    POSITION=10 10 200 100\n"
                              "    BORDERSTYLE=2\n"
                              "    Checkbox checkOne\n"
                              "    Radiobutton radioOne\n"
                              "    Edit editone\n"
                              "    Combobox comboFree\n"
                              "        COMBOSTYLE=1\n"
                              "    Combobox comboList\n"
                              "        COMBOSTYLE=2\n"
                              "    Label labelone\n"
                              "        CAPTION=\"kept\"\n"
                              "    Checkbox checkHidden\n"
                              "        VISIBLE=0\n"
                              "    Checkbox checkGone\n"
                              "        VISIBLE=0\n"
                              "        ENABLED=0\n"
                              "END\n"
                              "FixedDlg DIALOG\n"
                              "    POSITION=10 10 200 100\n"
                              "    BORDERSTYLE=1\n"
                              "END\n";

class Windows : public ::testing::Test {
protected:
    void SetUp() override {
        ClearError();
        before = platform::useView(platform::makeHeadlessView([this](const platform::Question& question) {
            asked.push_back(question);
            return answer;
        }));
        ini = folder / "x.ini";
        ASSERT_TRUE(os::saveFile(folder / "x.rc", Resources).ok());
    }
    void TearDown() override {
        platform::DestroyAllWindows();
        platform::useView(std::move(before));
        EXPECT_EQ(ErrorCell(), 0);
        ClearError();
    }
    void load(const Object& window) { ASSERT_EQ(Load(window, folder / "x.rc", window.window()), ""); }
    void write(std::string_view text) { ASSERT_TRUE(os::saveFile(ini, text, os::Durability::Unsynced).ok()); }
    Object control(std::string_view name) { return FINDCONTROL(dialog, name); }
    std::string get(std::string_view key) { return PROFILESTRGET(ini, "Testdlg", key); }

    TempFolder folder;
    std::string ini;
    const Object dialog{"TestDlg"}, fixed{"FixedDlg"};
    std::vector<platform::Question> asked;
    std::string answer;
    std::unique_ptr<platform::View> before;
};

TEST_F(Windows, ControlsAreLoadedByTheirKinds) {
    load(dialog);
    AddItem(control("comboList"), "Red");
    AddItem(control("comboList"), "Green");
    write("[TESTDLG]\nCheckOne=1\nRadioOne=1\nEditone=\"text\"\nComboFree="
          "free\nComboList=GREEN\n"
          "Labelone=new\nCheckHidden=1\nCheckGone=1\n");
    LOADINIFILE(ini, dialog);
    EXPECT_EQ(GetValue(control("CheckOne")), 1);
    EXPECT_EQ(GetValue(control("RadioOne")), 1);
    EXPECT_EQ(GetText(control("EditOne")), "text");
    EXPECT_EQ(GetCombotext(control("comboFree")), "free");
    EXPECT_EQ(GetListIndex(control("comboList")), 2);
    EXPECT_EQ(GetCaption(control("labelone")), "kept");
    EXPECT_EQ(GetValue(control("checkHidden")), 1);  // enabled, though hidden
    EXPECT_EQ(GetValue(control("checkGone")), 0);    // neither enabled nor visible
    write("[Testdlg]\nComboList=Blue\n");
    LOADINIFILE(ini, dialog);
    EXPECT_EQ(GetListIndex(control("comboList")),
              2);  // no match leaves the selection alone
    EXPECT_EQ(GetValue(control("CheckOne")), 0);
    EXPECT_EQ(GetText(control("EditOne")), "");
}

TEST_F(Windows, ControlsAreSavedUnderRaisedNames) {
    load(dialog);
    write("[Other]\r\nx=1\r\n");
    AddItem(control("comboList"), "Red");
    SetValue(control("checkOne"), 1);
    SetText(control("editone"), "a=b");
    SetCombotext(control("comboFree"), "free");
    SAVEINIFILE(ini, dialog);
    std::string text;
    ASSERT_TRUE(LOADFILE(ini, text));
    EXPECT_TRUE(text.starts_with("[Other]\r\nx=1\r\n\r\n[Testdlg]\r\n")) << text;
    EXPECT_EQ(PROFILESTRKEYS(ini, "Testdlg"),
              "CheckOne\nRadioOne\nEditone\nComboFree\nComboList\nCheckHidden\n");
    EXPECT_EQ(get("CheckOne"), "1");
    EXPECT_EQ(get("RadioOne"), "0");
    EXPECT_EQ(get("Editone"), "a=b");
    EXPECT_EQ(get("ComboFree"), "free");
    EXPECT_EQ(get("ComboList"), "");
    SetListIndex(control("comboList"), 1);
    SAVEINIFILE(ini, dialog);
    EXPECT_EQ(get("ComboList"), "Red");
}

TEST_F(Windows, AFileThatCannotBeReadEmptiesNoControlAndIsNotWritten) {
    load(dialog);
    SetValue(control("checkOne"), 1);
    SetText(control("editone"), "typed");
    SetPosition(dialog, WINDOW_UNIT, {11, 22, 333, 222});
    os::SteeredFiles files;
    const os::Steered steered(files);
    files.put("/x/a.ini", "[Testdlg]\r\nEditone=stored\r\n", 0000);
    LOADINIFILE("/x/a.ini", dialog, true, true);
    EXPECT_EQ(GetValue(control("checkOne")), 1);
    EXPECT_EQ(GetText(control("editone")), "typed");
    EXPECT_EQ(GetPosition(dialog, WINDOW_UNIT), (Rect{11, 22, 333, 222}));
    SAVEINIFILE("/x/a.ini", dialog, true, true);
    EXPECT_EQ(files.contents("/x/a.ini"), "[Testdlg]\r\nEditone=stored\r\n");
    ASSERT_EQ(asked.size(), 1U);
    EXPECT_TRUE(asked[0].text.starts_with("Cannot read from file (error 651).\n")) << asked[0].text;
    os::files().remove("/x/a.ini");
    LOADINIFILE("/x/a.ini", dialog);  // a file that is missing is read as empty
    EXPECT_EQ(GetText(control("editone")), "");
}

TEST_F(Windows, AWindowThatCannotBeSavedIsToldAndLeavesTheFile) {
    load(dialog);
    os::SteeredFiles files;
    const os::Steered steered(files);
    const std::string before = "[Testdlg]\r\nEditone=stored\r\n";
    files.put("/x/b.ini", before);
    files.failAlways(os::FileCall::Write, os::FileError::DiskFull);
    SetText(control("editone"), "typed");
    SAVEINIFILE("/x/b.ini", dialog);
    EXPECT_EQ(files.contents("/x/b.ini"), before);
    EXPECT_EQ(LastError(), 654);
    ASSERT_EQ(asked.size(), 1U);
    EXPECT_TRUE(asked[0].text.starts_with("Disk drive full up (error 654).\n")) << asked[0].text;
    files.failAlways(os::FileCall::Write, os::FileError::None);
    SAVEINIFILE("/x/b.ini", dialog);
    EXPECT_EQ(PROFILESTRGET("/x/b.ini", "Testdlg", "Editone"), "typed");
}

TEST_F(Windows, AWindowThatHasNotChangedIsNotWritten) {
    load(dialog);
    os::SteeredFiles files;
    const os::Steered steered(files);
    files.putFolder("/x");
    SAVEINIFILE("/x/c.ini", dialog, true, true);
    ASSERT_TRUE(files.has("/x/c.ini"));
    files.clearLog();
    SAVEINIFILE("/x/c.ini", dialog, true, true);
    EXPECT_EQ(files.calls(), 0);
    SetValue(control("checkOne"), 1);
    SAVEINIFILE("/x/c.ini", dialog, true, true);
    EXPECT_GT(files.calls(), 0);
}

TEST_F(Windows, NothingHappensWithoutANameOrAWindow) {
    LOADINIFILE(ini, dialog, true, true);
    SAVEINIFILE(ini, dialog, true, true);
    EXPECT_FALSE(os::infoOf(ini).exists);
    load(dialog);
    LOADINIFILE("", dialog, true, true);
    SAVEINIFILE("", dialog, true, true);
    EXPECT_FALSE(os::infoOf(ini).exists);
}

TEST_F(Windows, ThePositionIsKeptAndAppliedWhileItIsOnTheScreen) {
    load(dialog);
    SetPosition(dialog, WINDOW_UNIT, {11, 22, 333, 222});
    SAVEINIFILE(ini, dialog, true);
    EXPECT_EQ(get("_Position"), "11 22 333 222");
    SetPosition(dialog, WINDOW_UNIT, {5, 5, 300, 200});
    LOADINIFILE(ini, dialog, true);
    EXPECT_EQ(GetPosition(dialog, WINDOW_UNIT), (Rect{11, 22, 333, 222}));
    const Rect screen = ScreenSize();
    const std::string w = STR(screen.w), h = STR(screen.h);
    for (const std::string& outside : {w + " 5 300 200", "5 " + h + " 300 200", std::string("-300 5 300 200"),
                                       std::string("5 -200 300 200"), std::string("7 7"), std::string()}) {
        PROFILESTRPUT(ini, "Testdlg", "_Position", outside);
        LOADINIFILE(ini, dialog, true);
        EXPECT_EQ(GetPosition(dialog, WINDOW_UNIT), (Rect{11, 22, 333, 222})) << outside;
    }
    PROFILESTRPUT(ini, "Testdlg", "_Position", "-299 -199 300 200");
    LOADINIFILE(ini, dialog, true);
    EXPECT_EQ(GetPosition(dialog, WINDOW_UNIT), (Rect{-299, -199, 300, 200}));
}

TEST_F(Windows, AWindowThatCannotBeSizedKeepsItsSize) {
    load(fixed);
    SetPosition(fixed, WINDOW_UNIT, {1, 2, 300, 200});
    write("[Fixeddlg]\n_Position=30 40 999 888\n");
    LOADINIFILE(ini, fixed, true);
    EXPECT_EQ(GetPosition(fixed, WINDOW_UNIT), (Rect{30, 40, 300, 200}));
}

TEST_F(Windows, AMaximisedWindowKeepsThePositionStoredBefore) {
    load(dialog);
    write("[Testdlg]\n_Position=11 22 333 222\n");
    SetMaxPosition(dialog, {0, 0, 640, 480});
    SetPosition(dialog, WINDOW_UNIT, {0, 0, 640, 480});
    SAVEINIFILE(ini, dialog, true);
    EXPECT_EQ(get("_Position"), "11 22 333 222");
    SetPosition(dialog, WINDOW_UNIT, {0, 0, 640, 479});
    SAVEINIFILE(ini, dialog, true);
    EXPECT_EQ(get("_Position"), "0 0 640 479");
}

TEST_F(Windows, TheFontIsKeptWhereItIsNamed) {
    const auto setFont = [&](const Font& font) {
        SetFontName(dialog, font.name);
        SetFontSize(dialog, font.size);
        SetFontBold(dialog, font.bold);
        SetFontItalic(dialog, font.italic);
    };
    const auto font = [&] {
        return Font{GetFontName(dialog), GetFontSize(dialog), GetFontBold(dialog), GetFontItalic(dialog)};
    };
    load(dialog);
    setFont({"Courier", 11, true, false});
    SAVEINIFILE(ini, dialog, false, true);
    EXPECT_EQ(get("_Fontname") + get("_Fontsize") + get("_Fontbold") + get("_Fontitalic"), "Courier1110");
    setFont({"Sans", 9, false, true});
    LOADINIFILE(ini, dialog, false, true);
    EXPECT_EQ(font(), (Font{"Courier", 11, true, false}));
    PROFILESTRPUT(ini, "Testdlg", "_Fontsize", "0");
    setFont({"Sans", 9, false, true});
    LOADINIFILE(ini, dialog, false, true);
    EXPECT_EQ(font(), (Font{"Sans", 9, false, true}));
}

TEST_F(Windows, HelpThatCannotBeShownIsTold) {
    ASSERT_TRUE(os::saveFile(folder / "empty.htm", "").ok());
    for (const char* name : {"a.qch", "a.hlp", "a.chm", "a.txt", "a.php"})
        ASSERT_TRUE(os::saveFile(folder / name, "x").ok());
    const std::pair<std::string, std::string> cases[] = {
        {"", "Help file name was not provided."},
        {folder / "none.htm", "Help file '" + (folder / "none.htm") + "' was empty or not found."},
        {folder / "empty.htm", "Help file '" + (folder / "empty.htm") + "' was empty or not found."},
        {folder / "a.qch", "Help file type '.qch' is not supported."},
        {folder / "a.hlp", "Help file type '.hlp' is not supported."},
        {folder / "a.chm", "Help file type '.chm' is not supported."},
        {folder / "a.txt", "Help file type '.txt' is not supported."},
        {folder / "a.php", "Web file type '.php' is not supported."},
    };
    for (const auto& [file, text] : cases) {
        asked.clear();
        MULTIHELP(0, file, 257, "Topic");
        ASSERT_EQ(asked.size(), 1u) << file;
        EXPECT_EQ(asked[0].title, "MultiHelp");
        EXPECT_EQ(asked[0].text, text);
    }
    ASSERT_TRUE(os::saveFile(folder / "a.htm", "x").ok());
    asked.clear();
    MULTIHELP(0, folder / "a.htm", 257, "Getting Started");
    EXPECT_TRUE(asked.empty());
}

TEST_F(Windows, ReplacingAFileIsAskedFirst) {
    ASSERT_TRUE(os::saveFile(folder / "a", "new").ok());
    ASSERT_TRUE(os::saveFile(folder / "b", "old").ok());
    answer = "Cancel";
    EXPECT_FALSE(FILECOPY(folder / "a", folder / "b", true));
    ASSERT_EQ(asked.size(), 1u);
    EXPECT_EQ(asked[0].title, "Copy File");
    EXPECT_EQ(asked[0].text, "'" + (folder / "b") + "' already exists, do you want to replace it?");
    EXPECT_EQ(asked[0].buttons, (std::vector<std::string>{"Replace", "Cancel"}));
    answer = "Replace";
    EXPECT_TRUE(FILECOPY(folder / "a", folder / "b", true));
    EXPECT_TRUE(FILECOPY(folder / "a", folder / "c", true));
    EXPECT_EQ(asked.size(), 2u);
    std::string text;
    EXPECT_TRUE(LOADFILE(folder / "b", text));
    EXPECT_EQ(text, "new");
}

// ---- shipped templates ----

TEST_F(Windows, TheShippedDialogTemplatesAreResourceTextThatLoads) {
    for (const char* name : {"Template.NewDialog.cls", "Template.DialogBody.cls"}) {
        const std::string source = PROFILESTRGET(SOURCE_DIR "/src/ide/ide.ini", name, "");
        std::string text;
        for (int n = 1; n <= STRLINES(source); ++n)
            if (!STRLINE(source, n).starts_with("#")) text += STRLINE(source, n) + "\n";
        text = STRREPLACE(STRREPLACE(text, "$Name$", "Dialog1"), "$Caption$", "A caption");
        text = STRREPLACE(text, "$Program Icon$", "mainicon.ico");
        ASSERT_TRUE(os::saveFile(folder / "t.rc", text).ok());
        const Object window("Dialog1");
        ASSERT_EQ(Load(window, folder / "t.rc", "Dialog1"), "") << name;
        EXPECT_EQ(GetCaption(window), "A caption") << name;
        platform::DestroyAllWindows();
    }
}

// ---- real tools ----

TEST_F(Windows, ARealToolIsWaitedForAndItsOutputKept) {
    ASSERT_TRUE(os::saveFile(folder / "tool", "#!/bin/sh\necho \"$1\"\nexit 3\n").ok());
    ASSERT_EQ(os::files().setMode(folder / "tool", 0755), os::FileError::None);
    const std::string output = folder / "out put.txt";
    const ExecResult result = EXEC(folder / "tool.exe", "\"a b\" > \"" + output + "\"", 1);
    EXPECT_TRUE(result.started);
    EXPECT_EQ(result.code, 3);
    EXPECT_FALSE(platform::busy());
    std::string text;
    EXPECT_TRUE(LOADFILE(output, text));
    EXPECT_EQ(text, "a b\n");
}

TEST_F(Windows, ARealToolThatKillsItselfHasFailed) {
    ASSERT_TRUE(os::saveFile(folder / "tool", "#!/bin/sh\nkill -9 $$\n").ok());
    ASSERT_EQ(os::files().setMode(folder / "tool", 0755), os::FileError::None);
    const ExecResult result = EXEC(folder / "tool", "", 32 + 1);
    EXPECT_EQ(result.signal, 9);
    EXPECT_EQ(result.code, 128 + 9);
}

TEST_F(Windows, TheUserCanStopAToolThatHangs) {
    ASSERT_TRUE(os::saveFile(folder / "tool", "#!/bin/sh\n").ok());
    os::SteeredClock clock;
    os::SteeredProcesses processes([](const os::StartRequest&) { return os::Played{.hangs = true}; });
    const os::Steered steeredClock(clock), steeredProcesses(processes);
    platform::view().setIdle([] { platform::pressToolStop(); });  // as soon as there is a Stop button
    for (const int mode : {1, 32 + 1}) {
        const ExecResult result = EXEC(folder / "tool.exe", "", mode);
        EXPECT_TRUE(result.started);
        EXPECT_TRUE(result.stopped);
        EXPECT_FALSE(platform::busy());
        EXPECT_FALSE(ToolStopPressed());  // the button has gone
    }
    platform::view().setIdle(nullptr);
}

// A child that nothing ends.
class Undying : public os::Processes {
public:
    std::unique_ptr<os::Child> start(const os::StartRequest&, os::StartError& error) override {
        error = os::StartError::None;
        return std::make_unique<Immortal>();
    }

private:
    class Immortal : public os::Child {
        os::ExitState poll() override { return {}; }
        os::ExitState wait(int milliseconds) override {
            os::clock().sleep(milliseconds * std::int64_t{1'000'000});
            return {};
        }
        void stop(int) override {}
        [[nodiscard]] int id() const override { return 1; }
    };
};

TEST_F(Windows, AToolThatOutlivesItsStopHasFailed) {
    ASSERT_TRUE(os::saveFile(folder / "tool", "#!/bin/sh\n").ok());
    os::SteeredClock clock;
    Undying processes;
    const os::Steered steeredClock(clock);
    os::Processes* const processesBefore = os::useProcesses(&processes);
    platform::view().setIdle([] { platform::pressToolStop(); });
    for (const int mode : {1, 32 + 1}) {
        const ExecResult result = EXEC(folder / "tool.exe", "", mode);
        EXPECT_TRUE(result.stopped);
        EXPECT_EQ(result.signal, 9);
        EXPECT_EQ(result.code, 128 + 9);
        EXPECT_FALSE(platform::busy());
    }
    platform::view().setIdle(nullptr);
    os::useProcesses(processesBefore);
}

TEST_F(Windows, WindowsAreDisabledWhileAToolRunsInMode0Only) {
    ASSERT_TRUE(os::saveFile(folder / "tool", "#!/bin/sh\n").ok());
    os::SteeredClock clock;
    os::SteeredProcesses processes([](const os::StartRequest&) { return os::Played{.lasts = 200'000'000}; });
    const os::Steered steeredClock(clock), steeredProcesses(processes);
    for (const int mode : {1, 32 + 1}) {
        int busy = 0, free = 0;
        platform::view().setIdle([&] { ++(platform::busy() ? busy : free); });
        EXEC(folder / "tool.exe", "", mode);
        EXPECT_EQ(busy > 0, mode == 1);
        EXPECT_EQ(free > 0, mode != 1);
    }
    platform::view().setIdle(nullptr);
}

TEST_F(Windows, WhatIsNoProgramHasItsCode) {
    ASSERT_TRUE(os::saveFile(folder / "text.exe", "just text\n").ok());
    EXEC(folder / "text.exe", "", 1);
    EXPECT_EQ(ErrorCell(), 902);
    ClearError();
    ASSERT_TRUE(os::saveFile(folder / "script.exe", "#!/bin/sh\n").ok());
    EXEC(folder / "script.exe", "", 1);  // it may not be run
    EXPECT_EQ(ErrorCell(), 908);
    ClearError();
}

}  // namespace
}  // namespace tarn
