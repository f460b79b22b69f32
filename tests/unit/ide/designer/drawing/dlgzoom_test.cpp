// SPDX-License-Identifier: GPL-3.0-or-later
//
// The zoom of the dialog editor, on the object model: places of the mouse are those that are seen, numbers those of 100 %.
#include "ide/designer/drawing/dlgzoom.h"

#include "ide/menus/viewmenu.h"
#include "kernel/windows/drawscale.h"
#include "os/clock.h"
#include "support/dialog_editor_fixture.h"

namespace tarn {
namespace {

constexpr int CtrlPlus = 0x1000 + 187, CtrlShiftPlus = 0x3000 + 187, CtrlMinus = 0x1000 + 189, Ctrl0 = 0x1030;

class DialogZoom : public DialogEditorTest {
protected:
    void openOne(const std::string& own = "") {
        open(
            dialog(control("LABEL", "one", "8 8 40 16") + control("EDIT", "two", "80 32 60 24"), "Dlg", own));
    }
    static void zoomTo(int percent) {
        DIALOGZOOM(0);
        for (int i = 0; i < 10 && DIALOGGETZOOM() != percent; ++i) DIALOGZOOM(percent > 100 ? 1 : -1);
        ASSERT_EQ(DIALOGGETZOOM(), percent);
    }
    // A pixel of the window that shows one of the client area of the dialog.
    static platform::Point seen(int x, int y) {
        const auto place = at(x, y);
        return {ZOOMEDPIXELS(DialogDlg, place.x), ZOOMEDPIXELS(DialogDlg, place.y)};
    }
    static void clickSeen(int x, int y) {
        const auto place = seen(x, y);
        platform::userMouseDown(*platform::findWindow(DialogDlg), place.x, place.y);
    }
    static void dragSeen(int x, int y, int dx, int dy) {
        const auto from = seen(x, y), to = seen(x + dx, y + dy);
        platform::userDrag(from, to);
        platform::userMouseDown(*platform::findWindow(DialogDlg), from.x, from.y);
    }
    static Rect client() { return GetPosition(DialogDlg, CLIENT_UNIT); }
};

TEST_F(DialogZoom, GoesInStepsAndSoundsAtTheEnds) {
    openOne();
    EXPECT_EQ(DESIGNTEXT("zoomstr"), "100");
    EXPECT_EQ(GetCaption(DialogDlg), "Dialog Editor (Dlg)");
    for (const int next : {125, 150, 200, 300, 400}) {
        EXPECT_FALSE(beeps([] { DIALOGZOOM(1); }));
        EXPECT_EQ(DESIGNTEXT("zoomstr"), STR(next));
        EXPECT_EQ(GetCaption(DialogDlg), "Dialog Editor (Dlg) " + STR(next) + " %");
        EXPECT_EQ(GetDrawScale(DialogDlg), next);
    }
    EXPECT_TRUE(beeps([] { DIALOGZOOM(1); }));
    EXPECT_EQ(DIALOGGETZOOM(), 400);
    for (const int next : {300, 200, 150, 125, 100, 75, 67, 50}) {
        DIALOGZOOM(-1);
        EXPECT_EQ(DIALOGGETZOOM(), next);
    }
    EXPECT_TRUE(beeps([] { DIALOGZOOM(-1); }));
    DIALOGZOOM(0);
    EXPECT_EQ(DIALOGGETZOOM(), 100);
    EXPECT_EQ(GetCaption(DialogDlg), "Dialog Editor (Dlg)");
    EXPECT_FALSE(beeps([] { DIALOGZOOM(0); })) << "there is nothing to do";
    EXPECT_FALSE(DIALOGGETMODIFY());
}

TEST_F(DialogZoom, StandsInFrontOfTheMarkOfChanges) {
    openOne();
    DIALOGZOOM(1);
    DIALOGSETMODIFY(true);
    EXPECT_EQ(GetCaption(DialogDlg), "Dialog Editor (Dlg) 125 % *");
    DIALOGZOOM(1);
    EXPECT_EQ(GetCaption(DialogDlg), "Dialog Editor (Dlg) 150 % *");
    DIALOGZOOM(0);
    EXPECT_EQ(GetCaption(DialogDlg), "Dialog Editor (Dlg) *");
    DIALOGZOOM(-1);
    DIALOGSETMODIFY(false);
    EXPECT_EQ(GetCaption(DialogDlg), "Dialog Editor (Dlg) 75 %");
}

TEST_F(DialogZoom, ANameThatLooksLikeAZoomStays) {
    open(dialog(control("LABEL", "one", "8 8 40 16"), "Dlg"));
    SetCaption(DialogDlg, "Design 125 %");
    DIALOGZOOM(1);
    EXPECT_EQ(GetCaption(DialogDlg), "Design 125 % 125 %");
    DIALOGZOOM(0);
    EXPECT_EQ(GetCaption(DialogDlg), "Design 125 %");
}

TEST_F(DialogZoom, AnotherDialogOpensAt100) {
    openOne();
    zoomTo(200);
    open(dialog(control("LABEL", "one", "8 8 40 16"), "Next"), 0, "Next");
    EXPECT_EQ(DIALOGGETZOOM(), 100);
    EXPECT_EQ(GetDrawScale(DialogDlg), 100);
    EXPECT_EQ(GetCaption(DialogDlg), "Dialog Editor (Next)");
}

TEST_F(DialogZoom, TheWindowIsAsLargeAsThePictureAndTheDialogKeepsItsSize) {
    openOne();
    const Rect before = client();
    for (const int zoom : {50, 67, 75, 100, 125, 150, 200, 300, 400}) {
        zoomTo(zoom);
        EXPECT_EQ(client().w, (before.w * zoom + 99) / 100) << zoom;
        EXPECT_EQ(client().h, (before.h * zoom + 99) / 100) << zoom;
        resize(0, 0);
        EXPECT_EQ(property(1, "POSITION"), "0 0 200 100") << zoom;
    }
    EXPECT_FALSE(DIALOGGETMODIFY());
}

TEST_F(DialogZoom, SizingTheWindowSizesTheDialogByWhatIsSeen) {
    struct Row {
        int zoom, dw, dh;
        const char* size;
    };
    // 4 x 8 units are 6 x 13 pixels.
    for (const Row& row : {Row{100, 60, 26, "0 0 240 116"}, Row{200, 120, 52, "0 0 240 116"},
                           Row{400, 240, 104, "0 0 240 116"}, Row{50, 30, 13, "0 0 240 116"},
                           Row{200, -60, -26, "0 0 180 92"}}) {
        openOne();
        zoomTo(row.zoom);
        resize(row.dw, row.dh);
        EXPECT_EQ(property(1, "POSITION"), row.size) << row.zoom;
        DIALOGSETMODIFY(false);
    }
}

TEST_F(DialogZoom, ASizeThatComesLateIsNotTheUsers) {
    openOne();
    const Rect first = GetPosition(DialogDlg, WINDOW_UNIT);
    DIALOGZOOM(1);
    const Rect second = GetPosition(DialogDlg, WINDOW_UNIT);
    DIALOGZOOM(1);
    for (const Rect& late : {first, second}) {
        platform::userMoved(*platform::findWindow(DialogDlg), late, 0);
        EXPECT_EQ(property(1, "POSITION"), "0 0 200 100");
        EXPECT_FALSE(DIALOGGETMODIFY());
    }
    os::clock().sleep(1'100'000'000);
    platform::userMoved(*platform::findWindow(DialogDlg), first, 0);
    EXPECT_TRUE(DIALOGGETMODIFY()) << "later on it is";
}

TEST_F(DialogZoom, WithoutTheLinkTheWindowStays) {
    openOne();
    SETDESIGNTEXT("linkstr", "0");
    const Rect before = client();
    DIALOGZOOM(1);
    EXPECT_EQ(client().w, before.w);
    resize(40, 40);
    EXPECT_EQ(property(1, "POSITION"), "0 0 200 100");
}

TEST_F(DialogZoom, AClickSelectsWhatIsSeenThere) {
    openOne();
    const Rect two = RCUNITSTOPIXELS(DialogDlg, GETPROPPOSITION(item(3)));
    for (const int zoom : {50, 67, 75, 125, 150, 200, 300, 400}) {
        zoomTo(zoom);
        clickSeen(20, 20);
        EXPECT_EQ(SELECTEDOBJECT(), 2) << zoom;
        clickSeen(two.x, two.y);
        EXPECT_EQ(SELECTEDOBJECT(), 3) << zoom;
        clickSeen(two.x + two.w + 2, two.y);
        EXPECT_EQ(SELECTEDOBJECT(), 1) << zoom;
        clickSeen(two.x - 2, two.y);
        EXPECT_EQ(SELECTEDOBJECT(), 1) << zoom;
    }
    EXPECT_FALSE(DIALOGGETMODIFY());
}

TEST_F(DialogZoom, ADragMovesAndSizesByUnitsOfTheDialog) {
    for (const int zoom : {50, 100, 200, 300, 400}) {
        openOne();
        zoomTo(zoom);
        dragSeen(30, 24, 12, 26);
        EXPECT_EQ(property(2, "POSITION"), "16 24 40 16") << zoom;
        const Rect two = RCUNITSTOPIXELS(DialogDlg, GETPROPPOSITION(item(3)));
        dragSeen(two.x + two.w - 2, two.y + two.h - 2, 12, 26);
        EXPECT_EQ(property(3, "POSITION"), "80 32 68 40") << zoom;
        dragSeen(two.x + 40, two.y + 20, -5000, -5000);
        EXPECT_EQ(property(3, "POSITION"), "0 0 68 40") << zoom;
        DIALOGSETMODIFY(false);
    }
}

TEST_F(DialogZoom, AnEdgeIsNoHarderToHitWhenItIsSmall) {
    openOne();
    zoomTo(50);
    EXPECT_EQ(HANDLEPIXELS(DialogDlg), 8);
    const Rect two = RCUNITSTOPIXELS(DialogDlg, GETPROPPOSITION(item(3)));
    dragSeen(two.x + two.w - 7, two.y + two.h / 2, 12, 0);
    EXPECT_EQ(property(3, "POSITION"), "80 32 68 24");
    zoomTo(200);
    EXPECT_EQ(HANDLEPIXELS(DialogDlg), 4);
}

TEST_F(DialogZoom, F3TellsThePixelsOf100) {
    openOne();
    SELECTOBJECT(2);
    key(KEY_F3);
    const std::string told = lastText();
    zoomTo(300);
    key(KEY_F3);
    EXPECT_EQ(lastText(), told);
    EXPECT_NE(told.find("Size of 4 x 8 RC file units in pixels = 6 13\n"), std::string::npos) << told;
}

TEST_F(DialogZoom, ComesByTheKeysOfTheWindow) {
    openOne();
    EXPECT_TRUE(key(CtrlPlus));
    EXPECT_EQ(DIALOGGETZOOM(), 125);
    EXPECT_TRUE(key(CtrlShiftPlus));
    EXPECT_EQ(DIALOGGETZOOM(), 150);
    EXPECT_TRUE(key(Ctrl0));
    EXPECT_TRUE(key(CtrlMinus));
    EXPECT_EQ(DIALOGGETZOOM(), 75);
}

TEST_F(DialogZoom, ViewZoomIsTheDesignsWhileItIsInFront) {
    openOne();
    SetCaption(FINDCONTROL(Main, "lbllastactive"), "DialogDlg");
    DO_ZOOM(1);
    EXPECT_EQ(DIALOGGETZOOM(), 125);
    EXPECT_EQ(GetZoom(SDIEdit), 0);
    SetCaption(FINDCONTROL(Main, "lbllastactive"), "SDIEdit");
    DO_ZOOM(1);
    EXPECT_EQ(DIALOGGETZOOM(), 125);
    EXPECT_EQ(GetZoom(SDIEdit), 1);
    DO_ZOOM(0);
    EXPECT_EQ(GetZoom(SDIEdit), 0);
    EXPECT_EQ(DIALOGGETZOOM(), 125);
}

TEST_F(DialogZoom, NothingHappensWithoutADialog) {
    DIALOGZOOM(1);
    DIALOGSETZOOM(200);
    EXPECT_EQ(DIALOGGETZOOM(), 100);
}

}  // namespace
}  // namespace tarn
