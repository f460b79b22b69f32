// SPDX-License-Identifier: Apache-2.0
//
// The rows of the Program Window, its keys and clicks, and its place.
#include "ide/designer/dlgedit.h"
#include "unit/ide/program/projwindow_fixture.h"

namespace tarn {
namespace {

// ---- opening ----

TEST_F(ProjWindow, AMainClassOpensWithItsProgram) {
    open();
    EXPECT_EQ(GetCaption(ProjectEditorDlg), "Program Window");
    EXPECT_EQ(PROJECTGETMAINFILE(), file);
    EXPECT_EQ(shownRows(), "[Main Class Main]|Dialogs|Class Other|");
    EXPECT_EQ(numbers(), "1 2 5 ");
    EXPECT_EQ(GetListCount(data()), 5);
    EXPECT_EQ(GetCaption(MAINCONTROL("programlabel")), file);
    EXPECT_EQ(EDITWNDGETFILENAME(SDIEdit), file);
    EXPECT_EQ(PROJECTGETLIST(ProjectEditorDlg), file + "\n" + dir + "main.rc\n" + dir + "other.cls\n");
}

TEST_F(ProjWindow, TheMainClassIsSelectedWhereverItStands) {
    file = write("main.cls", MainClass);
    write("other.cls", OtherClass);
    answerWith({"other.cls", "main.cls"});
    PROFILESTRPUT(ini(), "GenOptionsDlg", "ShowFiles", "0");
    start({file});
    EXPECT_EQ(shownRows(), "Class Other|[Main Class Main]|");
}

TEST_F(ProjWindow, AClassWithoutMainOpensNoProgram) {
    answerWith({});
    start({write("other.cls", OtherClass)});
    EXPECT_FALSE(IsLoaded(ProjectEditorDlg));
    EXPECT_EQ(PROJECTGETMAINFILE(), "");
}

TEST_F(ProjWindow, ADependencyListThatFailsClosesTheWindowAtOpening) {
    makeTool("printf 'no such class\\n' >\"" + dir + "ordo.err\"\nexit 1\n");
    start({write("main.cls", MainClass)});
    EXPECT_EQ(lastText(), "The Program Window cannot be opened or updated.\nno such class");
    EXPECT_FALSE(IsLoaded(ProjectEditorDlg));
    EXPECT_EQ(EDITWNDGETFILENAME(SDIEdit), dir + "main.cls") << "the text is there all the same";
}

TEST_F(ProjWindow, AMissingMakeToolIsTold) {
    start({write("main.cls", MainClass)});
    EXPECT_EQ(lastText(), "The Program Window cannot be opened or updated.\nThe file '" + dir +
                              "ordo.exe' was not found.");
    EXPECT_FALSE(IsLoaded(ProjectEditorDlg));
}

TEST_F(ProjWindow, ItIsClosedIfItIsThere) {
    open();
    PROJECTCLOSE(ProjectEditorDlg);
    EXPECT_FALSE(IsLoaded(ProjectEditorDlg));
    PROJECTCLOSE(ProjectEditorDlg);
    EXPECT_EQ(PROJECTGETMAINFILE(), "");
    EXPECT_EQ(COMPILERGETMAINFILE(), file) << "the file in the Code window";
}

TEST_F(ProjWindow, TheMainFileIsCompiledWhateverTheCodeWindowShows) {
    open();
    EDITWNDOPEN(SDIEdit, dir + "other.cls", false, 0);
    EXPECT_EQ(EDITWNDGETFILENAME(SDIEdit), dir + "other.cls");
    EXPECT_EQ(COMPILERGETMAINFILE(), file);
}

// ---- a window that lacks a control ----

TEST_F(ProjWindow, AnyOtherWindowCountsAsEmpty) {
    open();
    for (const Object& window : {SDIEdit, Main, ViewDlg, Object(), Object("Nowhere")}) {
        UPDATEPROJECTWINDOW(window, "x", "1 \"a\"\n", {});
        EXPECT_EQ(PROJECTGETMAINFILE(window), "");
        EXPECT_EQ(PROJECTITEMINFO(window).row, 0);
        EXPECT_EQ(PROJECTITEMINFO(window).item.file, "");
        EXPECT_EQ(PROJECTITEMGETPOS(window, 1), (ProjectPlace{0, 0}));
        EXPECT_EQ(PROJECTITEMGETPARENT(window, 1), "");
        EXPECT_EQ(PROJECTGETLIST(window), "");
        EXPECT_FALSE(PROJECTITEMSELECT(window, rows(), 1));
    }
    EXPECT_EQ(ErrorCell(), 0);
    EXPECT_EQ(shownRows(), "[Main Class Main]|Dialogs|Class Other|");
}

// ---- rows ----

TEST_F(ProjWindow, ARowIsItsItem) {
    open();
    choose(2);
    const ProjectRow row = PROJECTITEMINFO(ProjectEditorDlg);
    EXPECT_EQ(row.row, 2);
    EXPECT_EQ(row.number, 2);
    EXPECT_EQ(row.item.type, "DIALOG");
    EXPECT_EQ(row.item.name, "Main");
    EXPECT_EQ(row.item.file, dir + "main.rc");
    choose(0);
    EXPECT_EQ(PROJECTITEMINFO(ProjectEditorDlg).row, 0);
}

TEST_F(ProjWindow, RowsAndTheirPlaces) {
    open();
    const struct {
        std::string levels;
        ProjectPlace place;
        std::string rows;
    } cases[] = {
        {"1 1 2 2 1", {1, 0}, "[t1]|t2|t5|"},
        {"1 1 2 2 1", {2, 0}, "t1|[t2]|t5|"},
        {"1 1 2 2 1", {2, 1}, "t1|t2|[t3]|t4|t5|"},
        {"1 1 2 2 1", {2, 2}, "t1|t2|t3|[t4]|t5|"},
        {"1 1 2 2 1", {2, 9}, "t1|t2|t3|[t4]|t5|"},
        {"1 1 2 2 1", {3, 2}, "t1|t2|[t5]|"},
        {"1 1 2 2 1", {9, 0}, "t1|t2|[t5]|"},
        {"1 1 2 2 1", {9, 9}, "t1|t2|[t5]|"},
        {"", {1, 0}, ""},
        {"1", {0, 0}, "t1|"},
        {"2 2 1", {1, 0}, "[t3]|"},
        {"1 2", {1, 1}, "t1|[t2]|"},
    };
    for (const auto& c : cases) {
        fill(c.levels, c.place);
        EXPECT_EQ(shownRows(), c.rows) << c.levels << " at " << c.place.top << ", " << c.place.sub;
    }
}

TEST_F(ProjWindow, ThePlaceOfARowLeadsBackToIt) {
    open();
    fill("1 1 2 2 1 2", {2, 1});
    const ProjectPlace places[] = {{1, 0}, {2, 0}, {2, 1}, {2, 2}, {3, 0}};
    for (int row = 1; row <= 5; ++row)
        EXPECT_EQ(PROJECTITEMGETPOS(ProjectEditorDlg, row), places[row - 1]) << row;
    for (const int row : {-1, 0, 6, 1000})
        EXPECT_EQ(PROJECTITEMGETPOS(ProjectEditorDlg, row), (ProjectPlace{0, 0}));
}

TEST_F(ProjWindow, ATopItemOpensAndCloses) {
    open();
    fill("1 1 2 2 1 2");
    EXPECT_FALSE(PROJECTITEMSELECT(ProjectEditorDlg, rows(), 1)) << "without children nothing changes";
    EXPECT_TRUE(PROJECTITEMSELECT(ProjectEditorDlg, rows(), 2));
    EXPECT_TRUE(PROJECTITEMISOPEN(ProjectEditorDlg, 2));
    EXPECT_EQ(numbers(), "1 2 3 4 5 ");
    EXPECT_TRUE(PROJECTITEMSELECT(ProjectEditorDlg, rows(), 5)) << "several may be open";
    EXPECT_EQ(numbers(), "1 2 3 4 5 6 ");
    EXPECT_FALSE(PROJECTITEMSELECT(ProjectEditorDlg, rows(), 3)) << "a child has none";
    EXPECT_TRUE(PROJECTITEMSELECT(ProjectEditorDlg, rows(), 2));
    EXPECT_EQ(numbers(), "1 2 5 6 ");
    EXPECT_FALSE(PROJECTITEMISOPEN(ProjectEditorDlg, 2));
    for (const int row : {-1, 0, 5, 1000}) EXPECT_FALSE(PROJECTITEMSELECT(ProjectEditorDlg, rows(), row));
}

TEST_F(ProjWindow, OnlyTheNextLevelOpens) {
    open();
    fill("1 2 3 3 2 1");
    EXPECT_TRUE(PROJECTITEMSELECT(ProjectEditorDlg, rows(), 1));
    EXPECT_EQ(numbers(), "1 2 5 6 ");
    EXPECT_TRUE(PROJECTITEMSELECT(ProjectEditorDlg, rows(), 1));
    EXPECT_EQ(numbers(), "1 6 ");
}

TEST_F(ProjWindow, AnOpenItemHasItsOwnPicture) {
    open();
    const auto picture = [](int row) {
        return platform::findControl(rows())->rows[static_cast<std::size_t>(row - 1)].picture;
    };
    EXPECT_EQ(picture(2), "resource1");
    EXPECT_TRUE(PROJECTITEMSELECT(ProjectEditorDlg, rows(), 2));
    EXPECT_EQ(picture(2), "resource2");
    EXPECT_EQ(picture(3), "resource3");
    EXPECT_EQ(picture(4), "resource4");
    EXPECT_TRUE(PROJECTITEMSELECT(ProjectEditorDlg, rows(), 2));
    EXPECT_EQ(picture(2), "resource1");
    choose(2);
    PROJECTREFRESH(ProjectEditorDlg);
    EXPECT_EQ(picture(2), "resource1");
    EXPECT_TRUE(PROJECTITEMSELECT(ProjectEditorDlg, rows(), 2));
    choose(3);
    PROJECTREFRESH(ProjectEditorDlg);
    EXPECT_EQ(picture(2), "resource2");
    for (const char* name :
         {"class0", "resource0", "resource1", "resource2", "resource3", "resource4", "versioninfo0", "file1",
          "file2", "file3", "file4", "database1", "database2", "database3", "database4"})
        EXPECT_EQ(platform::PictureBytes(name).code, 0) << name;
}

TEST_F(ProjWindow, TheOwnerIsTheNearestClassAbove) {
    open();
    EXPECT_TRUE(PROJECTITEMSELECT(ProjectEditorDlg, rows(), 2));
    EXPECT_EQ(shownRows(), "[Main Class Main]|Dialogs|DIALOG First|DIALOG Second|Class Other|");
    for (int row = 1; row <= 4; ++row) EXPECT_EQ(PROJECTITEMGETPARENT(ProjectEditorDlg, row), file) << row;
    EXPECT_EQ(PROJECTITEMGETPARENT(ProjectEditorDlg, 5), dir + "other.cls");
    EXPECT_EQ(PROJECTITEMGETPARENT(ProjectEditorDlg, 0), "");
    UPDATEPROJECTWINDOW(ProjectEditorDlg, file, "1 \"Dialogs\" \"DIALOG\" \"A\" \"/a.rc\"\n", {});
    EXPECT_EQ(PROJECTITEMGETPARENT(ProjectEditorDlg, 1), "");
}

TEST_F(ProjWindow, AFileOfTheListThatHasGoneIsABrokenPromise) {
    open();
    std::filesystem::remove(dir + "main.rc");
    answers = {"Continue"};
    EXPECT_EQ(PROJECTGETLIST(ProjectEditorDlg), file + "\n" + dir + "other.cls\n");
    EXPECT_NE(lastText().find("'" + dir + "main.rc' should be a full path."), std::string::npos)
        << lastText();
}

// ---- keys and clicks ----

TEST_F(ProjWindow, LeftAndRight) {
    open();
    choose(2);
    EXPECT_TRUE(key(KEY_LEFT));
    EXPECT_EQ(shownRows(), "Main Class Main|[Dialogs]|Class Other|") << "a closed item stays";
    EXPECT_TRUE(key(KEY_RIGHT));
    EXPECT_EQ(shownRows(), "Main Class Main|[Dialogs]|DIALOG First|DIALOG Second|Class Other|");
    key(KEY_RIGHT);
    key(KEY_RIGHT);
    EXPECT_EQ(shownRows(), "Main Class Main|Dialogs|DIALOG First|[DIALOG Second]|Class Other|");
    key(KEY_RIGHT);
    EXPECT_EQ(shownRows(), "Main Class Main|Dialogs|DIALOG First|[DIALOG Second]|Class Other|")
        << "the last one";
    key(KEY_LEFT);
    EXPECT_EQ(shownRows(), "Main Class Main|[Dialogs]|Class Other|")
        << "a child goes to its item, which closes";
    choose(3);
    for (const int code : {KEY_LEFT, KEY_RIGHT}) key(code);
    EXPECT_EQ(shownRows(), "Main Class Main|Dialogs|[Class Other]|");
    choose(0);
    for (const int code : {KEY_LEFT, KEY_RIGHT}) EXPECT_TRUE(key(code));
    EXPECT_EQ(shownRows(), "Main Class Main|Dialogs|Class Other|");
}

TEST_F(ProjWindow, ADoubleClickOpensTheItemOrItsEditor) {
    open();
    choose(2);
    doubleClick();
    EXPECT_EQ(shownRows(), "Main Class Main|[Dialogs]|DIALOG First|DIALOG Second|Class Other|");
    choose(5);
    doubleClick();
    EXPECT_EQ(EDITWNDGETFILENAME(SDIEdit), dir + "other.cls");
    choose(2);
    doubleClick();
    EXPECT_EQ(shownRows(), "Main Class Main|[Dialogs]|Class Other|");
    choose(0);
    doubleClick();
    EXPECT_TRUE(asked.empty());
}

TEST_F(ProjWindow, OtherKeysAndButtonsKeepTheirs) {
    open();
    const Object button = FINDCONTROL(ProjectEditorDlg, "bitmapbutton1");
    EXPECT_FALSE(PROJECTEDITORDLG(ProjectEditorDlg, KEYPRESS_EVENT, button, KEY_RETURN));
    EXPECT_FALSE(key('A'));
    EXPECT_FALSE(key(KEY_ESCAPE));
    EXPECT_TRUE(IsLoaded(ProjectEditorDlg));
}

TEST_F(ProjWindow, ARightClickTellsTheFactsOfTheRow) {
    open();
    EXPECT_TRUE(PROJECTITEMSELECT(ProjectEditorDlg, rows(), 2));
    choose(4);
    PROJECTEDITORDLG(ProjectEditorDlg, INFO_EVENT, rows(), 0);
    const std::string rc = dir + "main.rc";
    EXPECT_EQ(lastText(), "CtlName = Iconlist1 (4)\nMainFile = " + file +
                              "\nItemType = DIALOG\nItemName = Second\nItemFile = " + rc +
                              "\nItemFileSize = " + std::to_string(FileSize(rc)) +
                              "\nItemFileDate = " + FILETIME(rc) +
                              "\nSelItemIdx = 4\nItemPos = 2\nItemSubPos = 2\nParentFile = " + file +
                              "\nParentFileSize = " + std::to_string(FileSize(file)) +
                              "\nParentFileDate = " + FILETIME(file));
    asked.clear();
    choose(0);
    PROJECTEDITORDLG(ProjectEditorDlg, INFO_EVENT, rows(), 0);
    EXPECT_TRUE(asked.empty()) << "only about a row";
}

TEST_F(ProjWindow, ButtonsWithoutACommandAreDisabled) {
    open();
    const bool enabled[] = {true, true, true, true, true, false, true};
    for (int n = 1; n <= 7; ++n)
        EXPECT_EQ(GetEnabled(FINDCONTROL(ProjectEditorDlg, "bitmapbutton" + STR(n))), enabled[n - 1]) << n;
    const Picture face = LoadPicture(GetPicture(FINDCONTROL(ProjectEditorDlg, "bitmapbutton1")));
    EXPECT_EQ(face.width, 48);
    EXPECT_EQ(face.height, 64);
    for (const char* icon : {"refresh", "bin", "default", "code4", "dialog03", "disk10", "help95"})
        EXPECT_EQ(platform::PictureBytes(icon).code, 0) << icon;
}

// ---- its place ----

TEST_F(ProjWindow, ItsPlaceIsKept) {
    open();
    const Rect first = GetPosition(ProjectEditorDlg, WINDOW_UNIT), main = GetPosition(Main, WINDOW_UNIT);
    EXPECT_GE(first.y, main.y + main.h) << "the menu stays free";
    const Rect chosen{70, 90, first.w + 100, first.h + 50};
    SetPosition(ProjectEditorDlg, WINDOW_UNIT, chosen);
    PROJECTCLOSE(ProjectEditorDlg);
    EXPECT_EQ(PROFILESTRGET(ini(), "Projecteditordlg", "_Position"),
              "70 90 " + STR(chosen.w) + " " + STR(chosen.h));
    PROJECTOPEN(ProjectEditorDlg, "Program Window", file);
    EXPECT_EQ(GetPosition(ProjectEditorDlg, WINDOW_UNIT), chosen);
    const Rect client = GetPosition(ProjectEditorDlg, CLIENT_UNIT), list = GetPosition(rows(), CLIENT_UNIT);
    EXPECT_EQ(list.x * 2 + list.w, client.w) << "the list fills the window";
    EXPECT_EQ(list.y + list.h + list.x, client.h);
}

TEST_F(ProjWindow, FiveThousandRows) {
    open();
    std::string levels;
    for (int n = 0; n < 2500; ++n) levels += "1 2 ";
    fill(levels);
    EXPECT_EQ(GetListCount(rows()), 2500);
    for (int row = 2500; row > 0; --row) EXPECT_TRUE(PROJECTITEMSELECT(ProjectEditorDlg, rows(), row));
    EXPECT_EQ(GetListCount(rows()), 5000);
    EXPECT_EQ(PROJECTITEMGETPOS(ProjectEditorDlg, 5000), (ProjectPlace{2500, 1}));
}

TEST_F(ProjWindow, AMainFileThatHasGoneIsToldAtARefreshAndTheRowsStay) {
    open();
    const std::string before = shownRows();
    std::filesystem::remove(file);
    PROJECTREFRESH(ProjectEditorDlg);
    Stamp(0, ReportErrors, DefaultErrorHandler);
    ASSERT_EQ(asked.size(), 1U);
    EXPECT_EQ(lastText(),
              "It is not possible to open/update the window.\nThe file '" + file + "' was not found.");
    EXPECT_EQ(shownRows(), before);
}

}  // namespace
}  // namespace tarn
