// SPDX-License-Identifier: GPL-3.0-or-later
//
// The properties of a program: which block is shown, what the sheet takes, and what is written.
#include "ide/program/progprops.h"

#include "ide/editor/seenfile.h"
#include "library/designer/propedit_sheet.h"
#include "library/dialogs/versioninfo.h"
#include "unit/ide/program/members/members_fixture.h"

namespace tarn {
namespace {

class ProgProps : public MembersTest {
protected:
    static Object value(int row) { return FINDCONTROL(PropertiesDlg, "edtvalue" + STR(row)); }
    static void ok() { press(PropertiesDlg, "idok"); }
    static void cancel() { press(PropertiesDlg, "idcancel"); }
    PropertiesResult show(const std::function<void()>& doing) {
        doings.push_back(doing);
        PropertiesResult result = PropertiesResult::Cancel;
        run([&] {
            result = PROGRAMPROPERTIESDIALOG("Program Properties", mainFile, FIRSTVERSIONINFO(mainFile));
        });
        return result;
    }
    std::string rc() { return text("prog/main.rc"); }
};

constexpr const char* Numbered =
    "1 VERSIONINFO\n FILEVERSION 1,2\n FILEFLAGS 0x1L\nBEGIN\n BLOCK \"StringFileInfo\"\n BEGIN\n"
    "  BLOCK \"040904E4\"\n  BEGIN\n   VALUE \"CompanyName\", \"Ann\"\n  END\n END\nEND\n";

TEST_F(ProgProps, ANumberedBlockIsTheOneOfTheProgram) {
    for (const std::string eol : {"\n", "\r\n"}) {
        const std::string before = STRREPLACE("Main DIALOG\nEND\n" + std::string(Numbered), "\n", eol);
        write("prog/main.rc", before);
        EXPECT_EQ(FIRSTVERSIONINFO(mainFile), "1");
        EXPECT_EQ(show([] {
                      EXPECT_EQ(GetText(value(2)), "Ann");
                      EXPECT_EQ(GetText(value(7)), "1 2 0 0");
                      ok();
                  }),
                  PropertiesResult::Ok);
        EXPECT_EQ(rc(), before) << "nothing has changed";
        EXPECT_EQ(show([] {
                      SetText(value(2), "Bob");
                      ok();
                  }),
                  PropertiesResult::Save);
        EXPECT_EQ(rc(), STRREPLACE(before, "\"Ann\"", "\"Bob\""));
        EXPECT_EQ(show([] {
                      SetText(value(7), "1 2 3 0");
                      ok();
                  }),
                  PropertiesResult::Save);
        EXPECT_EQ(rc(), STRREPLACE(STRREPLACE(before, "\"Ann\"", "\"Bob\""), "FILEVERSION 1,2",
                                   "FILEVERSION 1,2,3,0"));
    }
}

TEST_F(ProgProps, AVersionThatIsAWordStaysUntilItIsChanged) {
    const std::string before = STRREPLACE(Numbered, "1,2\n", "VER_MAJOR,VER_MINOR\n");
    write("prog/main.rc", before);
    EXPECT_EQ(show([] {
                  EXPECT_EQ(GetText(value(7)), "0 0 0 0");
                  ok();
              }),
              PropertiesResult::Ok);
    EXPECT_EQ(rc(), before);
    EXPECT_EQ(show([] {
                  SetText(value(2), "Bob");
                  ok();
              }),
              PropertiesResult::Save);
    EXPECT_EQ(rc(), STRREPLACE(before, "\"Ann\"", "\"Bob\""));
}

TEST_F(ProgProps, OfTwoBlocksTheFirstCounts) {
    const std::string other = "VS_VERSION_INFO VERSIONINFO\nBEGIN\nEND\n";
    write("prog/main.rc", Numbered + other);
    show([] {
        SetText(value(2), "Bob");
        ok();
    });
    EXPECT_EQ(rc(), STRREPLACE(Numbered, "\"Ann\"", "\"Bob\"") + other);
}

TEST_F(ProgProps, WhatIsNoVersionIsToldAndTheSheetStays) {
    write("prog/main.rc", Numbered);
    const std::string problem =
        "There is a problem with the 'VersionNumber' property.\nA list of numbers should be used.\n";
    for (const char* version :
         {"1 2 3", "1 2 3 4 5", "", "a", "1,2,3,4", "1.2.3.4", "1-2-3-4", "1 2 3 99999999999"})
        show([&] {
            SetText(value(7), version);
            ok();
            EXPECT_EQ(told(), std::vector<std::string>{problem + "(4 numbers total)\n"}) << version;
            cancel();
        });
    for (const char* version : {"-1 0 0 0", "1 2 3 65536", "1 2 70000 4"}) {
        doings.emplace_back([&] {
            SetText(value(7), version);
            ok();
        });
        EXPECT_EQ(show([&] {
                      EXPECT_EQ(told(), std::vector<std::string>{problem +
                                                                 "(4 numbers total, between 0 and 65535)\n"})
                          << version;
                      EXPECT_EQ(GetText(value(7)), version) << "it can be mended";
                      cancel();
                  }),
                  PropertiesResult::Cancel);
    }
    EXPECT_EQ(rc(), Numbered);
    show([] {
        SetText(value(7), "  +1 02  3 65535 ");
        ok();
    });
    EXPECT_EQ(rc(), STRREPLACE(Numbered, "FILEVERSION 1,2", "FILEVERSION 1,2,3,65535"));
}

TEST_F(ProgProps, AnyTextOfTheUserComesBack) {
    for (const char* text :
         {"Tom & Ann &", "\"quoted\"", " blanks ", "\xC3\xA4 \xE4", "\\0", "a\\", "END", "// x"}) {
        std::filesystem::remove(dir + "prog/main.rc");
        EXPECT_EQ(show([&] {
                      SetText(value(1), text);
                      ok();
                  }),
                  PropertiesResult::Save);
        show([&] {
            EXPECT_EQ(GetText(value(1)), text);
            cancel();
        });
    }
}

TEST_F(ProgProps, AMainClassThatHasGoneIsTold) {
    std::filesystem::remove(mainFile);
    run([&] {
        PROGRAMPROPERTIESDIALOG("Program-Edit Program Properties", mainFile, FIRSTVERSIONINFO(mainFile));
    });
    ASSERT_EQ(asked.size(), 1U);
    EXPECT_EQ(asked[0].title, "Program-Edit Program Properties");
    EXPECT_EQ(lastText(),
              "The Program Properties are not available because there is no main file.\nOpen a file in the "
              "program window then try again.");
}

TEST_F(ProgProps, AMainClassThatGoesWhileTheSheetIsUpIsTold) {
    EXPECT_EQ(show([&] {
                  SetText(value(2), "Bob");
                  std::filesystem::remove(mainFile);
                  ok();
              }),
              PropertiesResult::Ok);
    EXPECT_EQ(lastText(),
              "The Program Properties cannot be updated because there is no main file.\nOpen a file in the "
              "program window then try again.");
    EXPECT_FALSE(there("prog/main.rc"));
}

TEST_F(ProgProps, AVersionThatIsNumberedCanBeRemoved) {
    write("prog/main.rc", Numbered);
    open({"main.cls", "main.rc", "shapes.cls"});
    choose("VERSIONINFO 1");
    doings.emplace_back([] { press(ConfirmRemoveDlg, "pushbutton1"); });
    run([] {
        platform::userKey(*platform::findWindow(ProjectEditorDlg), platform::findControl(rows()), KEY_DELETE);
    });
    EXPECT_EQ(told(), std::vector<std::string>{"Removed 1 from '" + dir + "prog/main.rc'\n"});
    EXPECT_EQ(rc(), "");
}

TEST_F(ProgProps, AResourceFileInTheCodeWindowIsSavedFirstAndShowsTheBlockThen) {
    write("prog/main.rc", "Main DIALOG\nEND\n" + std::string(Numbered));
    EDITWNDOPEN(SDIEdit, dir + "prog/main.rc", false, 0);
    type("// typed\n");
    answers = {"&Cancel"};
    EXPECT_EQ(show([] { ADD_FAILURE() << "the sheet has come"; }), PropertiesResult::Cancel);
    doings.clear();
    EXPECT_TRUE(GetModify(SDIEdit));
    answers = {"&Yes"};
    EXPECT_EQ(show([] {
                  SetText(value(2), "Bob");
                  ok();
              }),
              PropertiesResult::Save);
    EXPECT_NE(rc().find("// typed"), std::string::npos);
    EXPECT_NE(rc().find("\"Bob\""), std::string::npos);
    EXPECT_EQ(GetText(SDIEdit), rc());
    EXPECT_EQ(NEWCHANGEOUTSIDE(SDIEdit, dir + "prog/main.rc"), OutsideChange::None);
}

}  // namespace
}  // namespace tarn
