// SPDX-License-Identifier: GPL-3.0-or-later
#include "ide/editor/bitmaptext.h"

#include "library/source/bmptotxt.h"
#include "support/bitmap.h"
#include "support/ide_fixture.h"

#include <functional>

namespace tarn {
namespace {

class ConvertBitmap : public IdeTest {
protected:
    std::function<void()> doing;  // once the window waits
    const std::string bytes = bitmap(4, 4, 0x102030);

    void SetUp() override {
        IdeTest::SetUp();
        start();
        asked.clear();
        platform::view().setIdle([this] {
            const auto next = std::exchange(doing, nullptr);
            if (next == nullptr) return platform::QuitMainLoop();
            next();
        });
    }
    void TearDown() override {
        platform::view().setIdle({});
        EXPECT_EQ(doing, nullptr);
        IdeTest::TearDown();
    }
    static Object in(std::string_view name) { return FINDCONTROL(ConvertBmpDlg, name); }
    static void press(std::string_view name) { platform::userCommand(*platform::findControl(in(name))); }
    void convert(const std::string& file) {
        answers.push_front(file);
        pick("tools_convert_bmp");
    }
};

TEST_F(ConvertBitmap, ShowsTheTextAndItsFile) {
    const std::string file = write("a.bmp", bytes);
    doing = [&] {
        EXPECT_EQ(GetCaption(in("label2")), file);
        EXPECT_EQ(GetText(in("edit1")), BYTESTRINGTOLITERAL(bytes));
        EXPECT_TRUE(GetReadonly(in("edit1")));
        EXPECT_FALSE(GetEnabled(in("pushbutton4")));  // no text to put it into
        press("pushbutton2");
    };
    convert(file);
    ASSERT_EQ(asked.size(), 1U);
    EXPECT_EQ(asked[0].title, "Tools-Convert Bitmap");
    EXPECT_EQ(asked[0].filter, "Bitmaps (*.bmp)|*.bmp|All files (*)|*|");
    EXPECT_FALSE(IsLoaded(ConvertBmpDlg));
}

TEST_F(ConvertBitmap, CopyPutsItOntoTheClipboardAndStays) {
    doing = [&] {
        press("pushbutton1");
        EXPECT_TRUE(IsLoaded(ConvertBmpDlg));
        press("pushbutton2");
    };
    convert(write("a.bmp", bytes));
    EXPECT_EQ(LITERALTOBYTESTRING(GetText(clipboard)), bytes);
    EXPECT_EQ(GetText(clipboard), STRNL2CRNL(BYTESTRINGTOLITERAL(bytes)));
}

TEST_F(ConvertBitmap, InsertPutsItAtTheCaretAndCloses) {
    EDITWNDOPEN(SDIEdit, write("a.cls", "const A = \r\n"), false, 0);
    SetSelection(SDIEdit, 11, 0);
    doing = [&] { press("pushbutton4"); };
    convert(write("a.bmp", bytes));
    EXPECT_FALSE(IsLoaded(ConvertBmpDlg));
    EXPECT_EQ(GetText(SDIEdit), "const A = " + STRNL2CRNL(BYTESTRINGTOLITERAL(bytes)) + "\r\n");
    EXPECT_TRUE(GetModify(SDIEdit));
}

TEST_F(ConvertBitmap, EscapeLeaves) {
    doing = [&] { platform::userKey(*platform::findWindow(ConvertBmpDlg), nullptr, KEY_ESCAPE); };
    convert(write("a.bmp", bytes));
    EXPECT_FALSE(IsLoaded(ConvertBmpDlg));
}

TEST_F(ConvertBitmap, AFileThatCannotBeConvertedIsToldWithoutTheWindow) {
    const std::string large = write("large.bmp", std::string(7501, 'x'));
    convert(large);
    EXPECT_EQ(lastText(), "Bitmap file is too large to be converted.");
    convert(dir + "none.bmp");
    EXPECT_EQ(lastText(), "The following bitmap file:\t" + dir + "none.bmp\n\nis empty or does not exist.");
    std::filesystem::create_directory(dir + "folder.bmp");
    convert(dir + "folder.bmp");
    EXPECT_FALSE(IsLoaded(ConvertBmpDlg));
    EXPECT_EQ(ErrorCell(), 0);
}

TEST_F(ConvertBitmap, NoFileChosenDoesNothing) {
    convert("");
    EXPECT_EQ(asked.size(), 1U);
    EXPECT_FALSE(IsLoaded(ConvertBmpDlg));
}

}  // namespace
}  // namespace tarn
