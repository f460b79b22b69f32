// SPDX-License-Identifier: GPL-3.0-or-later
//
// What a save of the dialog changes: shown before it, told after it, and the same lines both times.
#include "ide/designer/dlgchanges.h"

#include "ide/editor/linediff.h"
#include "ide/shell/idecore.h"
#include "ide/shell/statusline.h"
#include "support/dialog_editor_fixture.h"

#include <sys/stat.h>

namespace tarn {
namespace {

class SaveChanges : public DialogEditorTest {
protected:
    std::string lines, label, caption, prompt;  // of the window of differences

    void openOne() {
        open("// above\n" +
             dialog(control("LABEL", "one", "8 8 40 16", "    CAPTION=\"One\"  // kept\n") +
                    control("EDIT", "two", "80 32 60 24")) +
             "Other DIALOG\n  POSITION=0 0 9 9\nEND\n");
    }
    static void put(int index, const std::string& name, const std::string& value) {
        std::string list = DESIGNITEM(index);
        SETPROPVALUE(name, value, list);
        DESIGNSTEP([&] { SETDESIGNITEM(DATALIST(), index, list); });
    }
    void show() {
        doings.emplace_back([this] {
            lines = GetText(FINDCONTROL(DifferenceDlg, "edit1"));
            label = GetCaption(FINDCONTROL(DifferenceDlg, "label1"));
            prompt = GetCaption(FINDCONTROL(DifferenceDlg, "label2"));
            caption = GetCaption(DifferenceDlg);
            platform::userCommand(*platform::findControl(FINDCONTROL(DifferenceDlg, "pushbutton1")));
        });
        SHOWSAVECHANGES();
        EXPECT_FALSE(IsLoaded(DifferenceDlg));
    }
    static std::string told() { return GetCaption(FINDCONTROL(Main, "lblstatus")); }
};

TEST_F(SaveChanges, AreShownLineByLineAndTheFileStays) {
    openOne();
    put(2, "POSITION", "8 8 44 16");
    const std::string before = read(file);
    show();
    EXPECT_EQ(lines, "Line 5:\n"
                     "    FONTNAME=\"Sans\"\n"
                     "    LABEL one\n"
                     "-     POSITION=8 8 40 16\n"
                     "+     POSITION=8 8 44 16\n"
                     "      CAPTION=\"One\"  // kept\n"
                     "    EDIT two\n");
    EXPECT_EQ(label, file + "\nA save now changes 1 line.");
    EXPECT_EQ(caption, "Edit-What a Save Changes");
    EXPECT_EQ(prompt, "&Lines of the file as it is (-) and as a save now leaves it (+):");
    EXPECT_EQ(read(file), before);
    EXPECT_TRUE(DIALOGGETMODIFY());
    EXPECT_TRUE(asked.empty());
}

TEST_F(SaveChanges, OfAnUnchangedDialogAreNone) {
    openOne();
    SHOWSAVECHANGES();
    EXPECT_EQ(lastText(),
              "There is nothing to change: the following file has the dialog as it is.\n\n\t" + file);
    EXPECT_FALSE(IsLoaded(DifferenceDlg));
}

TEST_F(SaveChanges, ThatComeBackToWhatTheFileHasAreNone) {
    openOne();
    put(2, "POSITION", "8 8 44 16");
    put(2, "POSITION", "8 8 40 16");
    SHOWSAVECHANGES();
    EXPECT_EQ(lastText().substr(0, 26), "There is nothing to change");
    DIALOGSAVE();
    EXPECT_EQ(told(), "nothing to save: the file has it already");
}

TEST_F(SaveChanges, AreToldAfterTheSaveUntilTheNextChange) {
    openOne();
    EXPECT_EQ(told(), "");
    put(2, "POSITION", "8 8 44 16");
    DIALOGSAVE();
    EXPECT_EQ(told(), "this save changed 1 line");
    put(2, "POSITION", "8 8 45 16");
    EXPECT_EQ(told(), "");
    put(3, "POSITION", "80 32 61 24");
    put(1, "CAPTION", "\"Other title\"");
    DIALOGSAVE();
    EXPECT_EQ(told(), "this save changed 3 lines");
    DIALOGSAVE();
    EXPECT_EQ(told(), "nothing to save: the file has it already");
}

TEST_F(SaveChanges, AreThoseThatTheSaveMakes) {
    const auto changes = std::vector<std::function<void()>>{
        [] { put(2, "POSITION", "1 2 3 4"); },
        [] { put(1, "NAME", "Renamed"); },
        [] { put(2, "NAME", "uno"); },
        [] { put(2, "CAPTION", "\"a \\\"quote\\\"\""); },
        [] { DESIGNSTEP([] { RemoveItem(DATALIST(), 3); }); },
        [] { DESIGNSTEP([] { AddItem(DATALIST(), "NAME=new\nTYPEOF=Label\nPOSITION=1 1 9 9"); }); },
    };
    for (const auto& change : changes) {
        openOne();
        change();
        const SaveTexts texts = SAVETEXTS();
        EXPECT_EQ(texts.error, "");
        EXPECT_EQ(texts.before, read(file));
        const int count = LINESCHANGED(texts.before, texts.after);
        EXPECT_GT(count, 0);
        DIALOGSAVE();
        EXPECT_EQ(read(file), texts.after);
        EXPECT_FALSE(DIALOGGETMODIFY());
        EXPECT_EQ(told(), "this save changed " + STR(count) + (count == 1 ? " line" : " lines"));
    }
}

TEST_F(SaveChanges, OfAFileThatHasGoneAreAllItsLines) {
    openOne();
    ASSERT_EQ(os::files().remove(file), os::FileError::None);
    const SaveTexts texts = SAVETEXTS();
    EXPECT_EQ(texts.error, "");
    EXPECT_EQ(texts.before, "");
    EXPECT_EQ(texts.after.substr(0, 10), "Dlg DIALOG");
    EXPECT_FALSE(os::infoOf(file).exists);
}

TEST_F(SaveChanges, LeaveWhatAnotherProgramHasWrittenElsewhere) {
    openOne();
    put(2, "POSITION", "8 8 44 16");
    write("a.rc", read(file) + "// added outside\n");
    const SaveTexts texts = SAVETEXTS();
    EXPECT_EQ(LINESCHANGED(texts.before, texts.after), 1);
    EXPECT_TRUE(texts.after.ends_with("// added outside\n"));
}

TEST_F(SaveChanges, AreShownInAFolderThatCannotBeWritten) {
    openOne();
    put(2, "POSITION", "8 8 44 16");
    const std::string folder = FILEGETDIR(file);
    ASSERT_EQ(chmod(folder.c_str(), 0555), 0);
    const SaveTexts texts = SAVETEXTS();
    ASSERT_EQ(chmod(folder.c_str(), 0755), 0);
    EXPECT_EQ(texts.error, "");
    EXPECT_EQ(LINESCHANGED(texts.before, texts.after), 1);
}

TEST_F(SaveChanges, LeaveNoScratchFileBehind) {
    openOne();
    put(2, "POSITION", "8 8 44 16");
    static_cast<void>(SAVETEXTS());
    for (const std::string& folder : {FILEGETDIR(file), FILEGETDIR(GETIDEINIFILE())}) {
        std::vector<std::string> names;
        os::files().list(folder, names);
        for (const std::string& name : names) EXPECT_NE(name.substr(0, 8), "~dlgtest") << folder << name;
    }
}

TEST_F(SaveChanges, OfASaveThatEndsEarlyAreNotTold) {
    openOne();
    put(2, "NAME", "two");  // as another
    TELLSTATUS("before");
    DIALOGSAVE();
    EXPECT_TRUE(DIALOGGETMODIFY());
    EXPECT_EQ(told(), "before");
}

TEST_F(SaveChanges, SoundWithoutADialog) {
    EXPECT_TRUE(beeps([] { SHOWSAVECHANGES(); }));
    EXPECT_EQ(SAVETEXTS().before + SAVETEXTS().after + SAVETEXTS().error, "");
}

}  // namespace
}  // namespace tarn
