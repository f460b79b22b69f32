// SPDX-License-Identifier: GPL-3.0-or-later
//
// The preview of a design, on the object model: what is chosen is what is drawn, and the design stays as it is.
#include "ide/designer/drawing/dlgpreview.h"

#include "ide/designer/dlgedit.h"
#include "ide/designer/dlgstep.h"
#include "kernel/windows/drawscale.h"
#include "library/designer/proputil.h"
#include "support/doings_fixture.h"

namespace tarn {
namespace {

class Preview : public DoingsTest {
protected:
    std::string file;

    void SetUp() override {
        DoingsTest::SetUp();
        start({write("nothing.txt", "")});
        asked.clear();
    }
    void TearDown() override {
        EXPECT_FALSE(IsLoaded(PreviewDlg));
        DoingsTest::TearDown();
    }
    void open(const std::string& position = "0 0 200 100", const std::string& more = "") {
        file = write("a.rc", "Test DIALOG\n  POSITION=" + position + "\n" + more +
                                 "  LABEL one 101\n    POSITION=8 8 60 11\n    CAPTION=\"One\"\nEND\n");
        OPENDIALOG(file, "Test");
        Stamp(0, ReportErrors, DefaultErrorHandler);
        ASSERT_TRUE(IsLoaded(DialogDlg));
    }
    void preview(const std::function<void()>& doing) {
        doings = {doing};
        pick("edit_dialog_preview");
    }
    static Object part(const char* name) { return FINDCONTROL(PreviewDlg, name); }
    static void press(const char* name) { platform::userCommand(*platform::findControl(part(name))); }
    static void choose(const char* name, int value = 1) {
        platform::userValue(*platform::findControl(part(name)), value);
    }
    static Rect place(const char* name) { return GetPosition(part(name), CLIENT_UNIT); }
    static Object picture() { return part("imgpicture"); }
};

TEST_F(Preview, BeepsWithoutADialog) {
    const int before = platform::headlessBeeps();
    SHOWPREVIEW();
    EXPECT_EQ(platform::headlessBeeps(), before + 1);
    EXPECT_FALSE(IsLoaded(PreviewDlg));
}

TEST_F(Preview, CanBeChosenOnlyWhileADialogIsOpen) {
    for (const char* item :
         {"edit_dialog_preview", "edit_dialog_changes", "edit_dialog_duplicate", "edit_dialog_properties"})
        EXPECT_FALSE(isEnabled(item)) << item;
    open();
    EXPECT_TRUE(isEnabled("edit_dialog_preview"));
    Unload(DialogDlg);
    UPDATEMAINWINDOW();
    EXPECT_FALSE(isEnabled("edit_dialog_preview"));
}

TEST_F(Preview, StandsInTheMiddleWhereItIsNarrowerThanTheWindow) {
    open("0 0 20 10");
    preview([] {
        for (const char* scale : {"optscale1", "optscale3", "optscale1"}) {
            choose(scale);
            const Rect image = place("imgpicture"), client = GetPosition(PreviewDlg, CLIENT_UNIT);
            EXPECT_GT(image.x, 40);
            EXPECT_NEAR(image.x, client.w - image.x - image.w, 1);
        }
        press("pushbutton1");
    });
}

TEST_F(Preview, BeginsWithTheColoursThatTheDesktopLacksAt100) {
    open();
    preview([] {
        EXPECT_EQ(GetValue(part("optcolours2")), 1);
        EXPECT_EQ(GetDrawColours(picture()), DARK_COLOURS);
        EXPECT_EQ(GetDrawScale(picture()), 100);
        EXPECT_EQ(GetValue(part("chklarger")), 0);
        press("pushbutton1");
    });
}

TEST_F(Preview, ShowsWhatIsChosenAndLeavesTheDesign) {
    open();
    SELECTOBJECT(2);
    const DesignLists before = DESIGNLISTS();
    const Rect window = GetPosition(DialogDlg, CLIENT_UNIT);
    preview([] {
        const Rect whole = place("imgpicture");
        choose("optcolours1");
        EXPECT_EQ(GetDrawColours(picture()), LIGHT_COLOURS);
        EXPECT_EQ(place("imgpicture"), whole);
        choose("optscale2");
        EXPECT_EQ(GetDrawScale(picture()), 150);
        EXPECT_EQ(place("imgpicture").w, (whole.w * 150 + 99) / 100);
        choose("optscale3");
        EXPECT_EQ(GetDrawScale(picture()), 200);
        EXPECT_EQ(place("imgpicture").h, whole.h * 2);
        EXPECT_EQ(GetFontSize(picture()), 0);
        choose("chklarger");
        EXPECT_GT(GetFontSize(picture()), 0);
        choose("chklarger", 0);
        EXPECT_EQ(GetFontSize(picture()), 0);
        platform::userKey(*platform::findWindow(PreviewDlg), nullptr, KEY_ESCAPE);
    });
    EXPECT_EQ(DESIGNLISTS(), before);
    EXPECT_EQ(GetPosition(DialogDlg, CLIENT_UNIT), window);
    EXPECT_FALSE(DIALOGGETMODIFY());
    EXPECT_EQ(GetDrawScale(DialogDlg), 100);
}

TEST_F(Preview, OfAFontOfTheDialogsOwnIsAPointLarger) {
    open("0 0 200 100", "  FONTNAME=\"Sans\"\n  FONTSIZE=12\n  FONTBOLD=1\n");
    preview([] {
        EXPECT_EQ(GetFontSize(picture()), 12);
        EXPECT_EQ(GetFontName(picture()), "Sans");
        EXPECT_TRUE(GetFontBold(picture()));
        choose("chklarger");
        EXPECT_EQ(GetFontSize(picture()), 13);
        press("pushbutton1");
    });
}

TEST_F(Preview, StaysOnTheScreenAndScrolls) {
    open("0 0 900 500");
    preview([] {
        EXPECT_FALSE(GetVisible(part("scldown")));
        choose("optscale3");
        const Rect screen = ScreenSize(), frame = GetPosition(PreviewDlg, WINDOW_UNIT);
        EXPECT_LE(frame.x + frame.w, screen.x + screen.w);
        EXPECT_LE(frame.y + frame.h, screen.y + screen.h);
        EXPECT_TRUE(GetVisible(part("scldown")));
        EXPECT_TRUE(GetVisible(part("sclacross")));
        const Rect image = place("imgpicture");
        EXPECT_EQ(place("scldown").x, image.x + image.w);
        EXPECT_EQ(place("sclacross").y, image.y + image.h);
        auto* const window = platform::findWindow(PreviewDlg);
        auto* const button = platform::findControl(part("pushbutton1"));
        platform::userKey(*window, button, KEY_DOWN);
        platform::userKey(*window, button, KEY_DOWN);
        platform::userKey(*window, button, KEY_RIGHT);
        EXPECT_EQ(GetValue(part("scldown")), 2);
        EXPECT_EQ(GetValue(part("sclacross")), 1);
        platform::userKey(*window, platform::findControl(part("optscale3")), KEY_UP);
        EXPECT_EQ(GetValue(part("scldown")), 2) << "there the arrows choose";
        platform::userValue(*platform::findControl(part("scldown")), 5);
        EXPECT_EQ(GetValue(part("scldown")), 5);
        choose("optscale1");
        EXPECT_FALSE(GetVisible(part("scldown")));
        EXPECT_EQ(GetValue(part("scldown")), 0);
        press("pushbutton1");
    });
}

}  // namespace
}  // namespace tarn
