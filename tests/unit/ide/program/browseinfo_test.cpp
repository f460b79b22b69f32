// SPDX-License-Identifier: Apache-2.0
//
// The browser beyond what a user's script can tell: its place and layout, odd names, and tools that fail.
#include "ide/menus/viewmenu.h"
#include "ide/program/browseinfo.h"
#include "support/ide_fixture.h"

namespace tarn {
namespace {

class BrowseInfo : public IdeTest {
protected:
    // A program of one class, and a make tool that knows it.
    void prepare(const std::string& name = "a.cls", const std::string& stale = "") {
        file = write(name, "Tarnwick Class A\n\nfunction main()\nend function\nEnd class\n");
        write(
            FILECHANGEEXT(name, ".sym"),
            "\"A\",1,\"\",\"class\",1,1,0,\"A\"\n\"main\",1,\"function main()\",\"function\",3,3,0,\"A\"\n");
        makeTool("/fa) printf '%s\\n' '" + file + "' ;;\n/fq) printf '" + stale + "' ;;");
        start({file});
        ASSERT_EQ(EDITWNDGETFILENAME(SDIEdit), file);
        asked.clear();
    }
    void makeTool(const std::string& answers) {
        const std::string tool =
            write("ordo.exe", "#!/bin/sh\ncase \"$1\" in\n" + answers + "\nesac >\"" + dir + "ordo.err\"\n");
        std::filesystem::permissions(tool, std::filesystem::perms::owner_all);
    }
    static Object control(const char* name) { return FINDCONTROL(BrowseInfoDlg, name); }
    std::string file;
};

TEST_F(BrowseInfo, ControlsKeepTheirDistancesToTheNearerSides) {
    prepare();
    DO_BROWSE_INFO();
    ASSERT_TRUE(IsLoaded(BrowseInfoDlg)) << lastText();
    const char* const names[] = {"label1",      "iconlist1",   "label2",
                                 "pushbutton1", "pushbutton2", "pushbutton3"};
    const Rect window = GetPosition(BrowseInfoDlg, CLIENT_UNIT);
    std::vector<Rect> before;
    for (const char* name : names) before.push_back(GetPosition(control(name), CLIENT_UNIT));
    Rect larger = window;
    for (int round = 0; round < 3; ++round) {
        larger.w += 300;
        larger.h += 200;
        SetPosition(BrowseInfoDlg, CLIENT_UNIT, larger);
        BROWSEINFODLG(BrowseInfoDlg, RESIZE_EVENT, BrowseInfoDlg, 0);
    }
    const int dx = 900, dy = 600;
    const Rect list = GetPosition(control("iconlist1"), CLIENT_UNIT);
    EXPECT_EQ(list, (Rect{before[1].x, before[1].y, before[1].w + dx, before[1].h + dy}));
    EXPECT_EQ(GetPosition(control("label1"), CLIENT_UNIT),
              (Rect{before[0].x, before[0].y, before[0].w + dx, before[0].h}));
    EXPECT_EQ(GetPosition(control("label2"), CLIENT_UNIT),
              (Rect{before[2].x, before[2].y + dy, before[2].w, before[2].h}));
    for (std::size_t i = 3; i < 6; ++i)
        EXPECT_EQ(GetPosition(control(names[i]), CLIENT_UNIT),
                  (Rect{before[i].x + dx, before[i].y + dy, before[i].w, before[i].h}))
            << names[i];
    SetPosition(BrowseInfoDlg, CLIENT_UNIT, window);
    BROWSEINFODLG(BrowseInfoDlg, RESIZE_EVENT, BrowseInfoDlg, 0);
    for (std::size_t i = 0; i < 6; ++i)
        EXPECT_EQ(GetPosition(control(names[i]), CLIENT_UNIT), before[i]) << names[i];
}

TEST_F(BrowseInfo, ItsPlaceIsKept) {
    prepare();
    DO_BROWSE_INFO();
    const Rect main = GetPosition(Main, WINDOW_UNIT), first = GetPosition(BrowseInfoDlg, WINDOW_UNIT);
    EXPECT_GT(first.y, main.y + main.h) << "the menu stays free";
    const Rect chosen{70, 90, first.w + 100, first.h + 50};
    SetPosition(BrowseInfoDlg, WINDOW_UNIT, chosen);
    Unload(BrowseInfoDlg);
    EXPECT_EQ(PROFILESTRGET(ini(), "BrowseInfoDlg", "_Position"),
              "70 90 " + STR(chosen.w) + " " + STR(chosen.h));
    DO_BROWSE_INFO();
    EXPECT_EQ(GetPosition(BrowseInfoDlg, WINDOW_UNIT), chosen);
    const Rect client = GetPosition(BrowseInfoDlg, CLIENT_UNIT),
               list = GetPosition(control("iconlist1"), CLIENT_UNIT);
    EXPECT_EQ(list.x * 2 + list.w, client.w) << "the list is laid out for the size that was kept";
}

TEST_F(BrowseInfo, WithoutAPlaceOfItsOwnItStandsWhereItStoodAtFirst) {
    prepare();
    DO_BROWSE_INFO();
    const Rect first = GetPosition(BrowseInfoDlg, WINDOW_UNIT);
    SetWindowState(BrowseInfoDlg, 2);
    Unload(BrowseInfoDlg);
    EXPECT_EQ(PROFILESTRGET(ini(), "BrowseInfoDlg", "_Position"), "0 0 0 0") << "maximised from the first";
    DO_BROWSE_INFO();
    EXPECT_EQ(GetPosition(BrowseInfoDlg, WINDOW_UNIT), first);
}

TEST_F(BrowseInfo, ControlArraysAreToldFromTheirMembers) {
    prepare();
    const std::string member = "\"W\",1,\"r1\",\"visualobject\",2,2,0,\"A\",";
    write("a.sym",
          member + "0,0,0,0,0,0,\"\",\"Radiobutton\"\n" + member + "1,3,0,0,0,0,\"\",\"Radiobutton\"\n");
    DO_BROWSE_INFO();
    const std::string line = "W.r1\tvisualobject\tA\t\"" + file + "\"\t2\tRadiobutton";
    EXPECT_EQ(GetList(control("iconlist1"), 1), line);
    EXPECT_EQ(GetList(control("iconlist1"), 2), line + "[1..3]");
}

TEST_F(BrowseInfo, OddFileNamesLeadToTheirFiles) {
    prepare("a b & \xC3\xA4 $NAME$.cls");
    DO_BROWSE_INFO();
    ASSERT_TRUE(IsLoaded(BrowseInfoDlg)) << lastText();
    EXPECT_EQ(GetListCount(control("iconlist1")), 2);
    SetListIndex(control("iconlist1"), 2);
    EDITWNDCLOSE(SDIEdit, true);
    VIEWCODE(BrowseInfoDlg, control("iconlist1"));
    EXPECT_EQ(EDITWNDGETFILENAME(SDIEdit), file);
    EXPECT_EQ(GetSelText(SDIEdit), "function main()");
    EXPECT_EQ(GetCaption(MAINCONTROL("codelabel")), file);
}

TEST_F(BrowseInfo, ALineOfAFileThatHasGoneOpensNothing) {
    prepare();
    DO_BROWSE_INFO();
    SetListIndex(control("iconlist1"), 2);
    EDITWNDCLOSE(SDIEdit, true);
    std::filesystem::remove(file);
    VIEWCODE(BrowseInfoDlg, control("iconlist1"));
    EXPECT_EQ(EDITWNDGETFILENAME(SDIEdit), "");
    EXPECT_TRUE(asked.empty());
}

TEST_F(BrowseInfo, ALineBeyondTheEndIsTold) {
    prepare();
    DO_BROWSE_INFO();
    write("a.cls", "Tarnwick Class A\nEnd class\n");
    EDITWNDCLOSE(SDIEdit, true);
    SetListIndex(control("iconlist1"), 2);
    VIEWCODE(BrowseInfoDlg, control("iconlist1"));
    EXPECT_EQ(lastText(), "File: " + file + "\nCannot hilight line 3.\nThere are 2 line(s) in the file.");
    EXPECT_TRUE(GetVisible(BrowseInfoDlg));
}

TEST_F(BrowseInfo, WithoutALineThereIsNothingToShow) {
    prepare();
    DO_BROWSE_INFO();
    const Object list = control("iconlist1");
    for (const bool empty : {false, true}) {
        if (empty) Clear(list);
        SetListIndex(list, 0);
        VIEWCODE(BrowseInfoDlg, list);
        MOREINFODIALOG("");
        EXPECT_FALSE(IsLoaded(MoreInfoDlg));
        EXPECT_EQ(EDITWNDGETFILENAME(SDIEdit), file);
    }
    EXPECT_TRUE(asked.empty());
}

TEST_F(BrowseInfo, TheWarningIsCutToFortyLines) {
    std::string stale;
    for (int n = 1; n <= 41; ++n) stale += "/p/c" + STR(n) + ".cls\\n";
    prepare("a.cls", stale);
    answers = {"&No"};
    DO_BROWSE_INFO();
    EXPECT_FALSE(IsLoaded(BrowseInfoDlg));
    ASSERT_EQ(asked.size(), 1U);
    EXPECT_NE(lastText().find("/p/c39.cls\n...(more)...\n"), std::string::npos) << lastText();
    EXPECT_EQ(lastText().find("/p/c40.cls"), std::string::npos);
    EXPECT_NE(lastText().find("\nThese classes are out of date and need to be re-compiled.\nDo you still "
                              "want to view the browse information?"),
              std::string::npos);
    EXPECT_EQ(asked[0].buttons, (std::vector<std::string>{"&Yes", "&No"}));
}

TEST_F(BrowseInfo, AMakeToolThatFailsIsTold) {
    prepare();
    makeTool("*) echo broken; exit 3 ;;");
    DO_BROWSE_INFO();
    EXPECT_FALSE(IsLoaded(BrowseInfoDlg));
    EXPECT_TRUE(lastText().starts_with("It is not possible to browse the symbols.\n")) << lastText();
    std::filesystem::remove(dir + "ordo.exe");
    DO_BROWSE_INFO();
    EXPECT_FALSE(IsLoaded(BrowseInfoDlg));
    EXPECT_EQ(lastText(),
              "It is not possible to browse the symbols.\nThe file '" + dir + "ordo.exe' was not found.");
}

TEST_F(BrowseInfo, ShowingItAgainReadsTheSymbolsAnew) {
    prepare();
    DO_BROWSE_INFO();
    EXPECT_EQ(GetListCount(control("iconlist1")), 2);
    write("a.sym", "\"A\",1,\"\",\"class\",1,1,0,\"A\"\n");
    DO_BROWSE_INFO();
    EXPECT_EQ(GetListCount(control("iconlist1")), 1);
    std::filesystem::remove(dir + "a.sym");
    DO_BROWSE_INFO();
    EXPECT_EQ(GetList(control("iconlist1"), 1), "* a\t\ta\t\"" + file + "\"\t1\t");
}

}  // namespace
}  // namespace tarn
