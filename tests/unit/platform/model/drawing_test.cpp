// SPDX-License-Identifier: Apache-2.0
//
// Drawing, printing and pictures without a screen: what is started and where the current point stands is kept,
// documents become plain text, pictures are measured by their heads.
#include "os/files.h"
#include "platform/model/model.h"
#include "platform/model/view.h"
#include "platform/operations/printjob.h"
#include "platform/windowing.h"
#include "support/resources.h"
#include "support/tempfolder.h"

#include <gtest/gtest.h>

namespace tarn::platform {
namespace {

const std::string resources = R"(
Main DIALOG
  POSITION=0 0 100 100
  Image image 101
    POSITION=0 0 40 40
  Pushbutton ok 102
  Listbox list 103
END
Other DIALOG
END
Editor EDITWINDOW
END
)";

class DrawingTest : public ::testing::Test {
protected:
    const Object main{"Main"}, other{"Other"}, image{"Main", 101}, button{"Main", 102};
    TempFolder folder;
    std::unique_ptr<View> before;
    std::string folderBefore;

    void SetUp() override {
        ASSERT_EQ(useResources(folder, resources), "");
        before = useView(makeHeadlessView());
        ASSERT_EQ(Load(main), Ok);
        folderBefore = os::files().currentFolder();
        ASSERT_EQ(os::files().setCurrentFolder(folder.path()), os::FileError::None);
    }
    void TearDown() override {
        os::files().setCurrentFolder(folderBefore);
        SetCaption(Sysprinter, "");
        DestroyAllWindows();
        useView(std::move(before));
        SetApplicationResources("");
    }
    std::string written(const std::string& name) const {
        std::string text;
        os::readFile(folder / name, text);
        return text;
    }
    void write(const std::string& name, std::string_view bytes) const {
        ASSERT_TRUE(os::saveFile(folder / name, bytes, os::Durability::Unsynced).ok());
    }
};

// ---- windows ----

TEST_F(DrawingTest, OnlyWindowsAndImagesAreDrawnOn) {
    Load(Object("Editor"));
    EXPECT_EQ(StartGraph(main), Ok);
    EXPECT_EQ(StartGraph(image), Ok);
    for (const Object& one :
         {button, Object("Main", 103), Object("Editor"), Sysscreen, Sysclipboard, Sysprinter})
        EXPECT_EQ(StartGraph(one), GraphicsNotStarted) << GetTypeof(one);
    EXPECT_EQ(StartGraph(other), WindowNotLoaded);
    EXPECT_EQ(StartGraph(Object("Main", 999)), ControlInvalid);
}

TEST_F(DrawingTest, NothingIsDrawnBeforeTheStartAndAfterTheEnd) {
    const auto codes = [&] {
        return std::vector<Code>{DrawLine(main, 0, 0, 1, 1),
                                 DrawPoint(main, 0, 0),
                                 DrawShape(main, ELLIPSE_SHAPE, 0, 0, 5, 5),
                                 DrawTextstr(main, "a"),
                                 DrawWindow(main, main),
                                 GetCurrentX(main).code,
                                 SetCurrentX(main, 3),
                                 GetCurrentY(main).code,
                                 SetCurrentY(main, 3),
                                 DrawControl(main, "TYPEOF=Edit\n", 0, 0, 9, 9)};
    };
    for (const Code code : codes()) EXPECT_EQ(code, GraphicsNotStarted);
    EXPECT_EQ(EndGraph(main), GraphicsNotStarted);
    ASSERT_EQ(StartGraph(main), Ok);
    for (const Code code : codes()) EXPECT_EQ(code, Ok);
    EXPECT_EQ(EndGraph(main), Ok);
    for (const Code code : codes()) EXPECT_EQ(code, GraphicsNotStarted);
    EXPECT_EQ(EndGraph(main), GraphicsNotStarted);
}

TEST_F(DrawingTest, AControlOfAPropertyListHasWhatTheListTellsAndTheDefaultsOfItsType) {
    const auto edit = makeLoose("NAME=Some1\nTYPEOF=Edit\nTEXT=\"a\\nb\"\nMULTILINE=1\nREADONLY=1\n");
    ASSERT_NE(edit, nullptr);
    EXPECT_EQ(edit->name, "Some1");
    EXPECT_EQ(edit->text->text(), "a\nb");
    EXPECT_EQ(edit->multiline, 1);
    EXPECT_TRUE(edit->readonly);
    EXPECT_EQ(edit->border, 1) << "not told";
    EXPECT_EQ(makeLoose("typeof=LABEL\n")->type, Type::Label);
    for (const char* none : {"", "NAME=x\n", "TYPEOF=Dialog\n", "TYPEOF=Editwindow\n", "TYPEOF=Menuitem\n",
                             "TYPEOF=Screen\n", "TYPEOF=Spinner\n", "rubbish"})
        EXPECT_EQ(makeLoose(none), nullptr) << none;
}

TEST_F(DrawingTest, TheCurrentPointIsBelowTheTextAndWhereItWasSet) {
    StartGraph(main, 30, 40);
    EXPECT_EQ(GetCurrentX(main).value, 0) << "from the origin";
    SetCurrentX(main, 7);
    SetCurrentY(main, -2);
    DrawTextstr(main, "one");
    EXPECT_EQ(GetCurrentX(main).value, 7);
    EXPECT_EQ(GetCurrentY(main).value, 11);
    DrawTextstr(main, "two\nthree\r\n");
    EXPECT_EQ(GetCurrentY(main).value, 37) << "a line end at the end begins no line";
    DrawTextstr(main, "");
    EXPECT_EQ(GetCurrentY(main).value, 50);
    StartGraph(main);
    EXPECT_EQ(GetCurrentY(main).value, 0) << "started again";
    EndGraph(main);
}

TEST_F(DrawingTest, FontsAndColoursOfADrawingEndWithIt) {
    SetForeColour(main, 0x112233);
    SetFontName(main, "Own");
    StartGraph(main);
    EXPECT_EQ(GetForeColour(main).value, 0x112233) << "it begins with the window's";
    SetForeColour(main, 5);
    SetBackColour(main, 6);
    SetFontName(main, "Drawn");
    SetFontSize(main, 30);
    EXPECT_EQ(GetFontName(main).value, "Drawn");
    EndGraph(main);
    EXPECT_EQ(GetForeColour(main).value, 0x112233);
    EXPECT_EQ(GetBackColour(main).value, -1);
    EXPECT_EQ(GetFontName(main).value, "Own");
    EXPECT_EQ(GetFontSize(main).value, 0);
}

TEST_F(DrawingTest, AWindowThatGoesTakesItsDrawingAlong) {
    StartGraph(main);
    Unload(main);
    EXPECT_EQ(DrawPoint(main, 1, 1), WindowNotLoaded);
    EXPECT_EQ(EndGraph(main), WindowNotLoaded);
    Load(main);
    EXPECT_EQ(DrawPoint(main, 1, 1), GraphicsNotStarted);
}

TEST_F(DrawingTest, AWindowThatIsNotLoadedIsNotDrawn) {
    StartGraph(main);
    EXPECT_EQ(DrawWindow(main, other), WindowNotLoaded);
    EXPECT_EQ(DrawPicture(main, "none.bmp", 0, 0), BitmapInvalid);
    EXPECT_EQ(DrawPicture(main, Picture{1, 1, 4711}, 0, 0), BitmapInvalid);
}

TEST_F(DrawingTest, ColoursAreThreeBytesOrTheDesktops) {
    for (const auto& [given, kept] :
         {std::pair(0, 0), {0xFFFFFF, 0xFFFFFF}, {0x1FFFFFF, 0xFFFFFF}, {-1, -1}, {-77, -1}}) {
        EXPECT_EQ(SetForeColour(button, given), Ok);
        EXPECT_EQ(SetBackColour(button, given), Ok);
        EXPECT_EQ(GetForeColour(button).value, kept);
        EXPECT_EQ(GetBackColour(button).value, kept);
    }
}

// ---- printing ----

TEST_F(DrawingTest, ThereIsAlwaysAPrinterToAFile) {
    const std::vector<Object> list = PrinterList();
    ASSERT_EQ(list.size(), 1U);
    EXPECT_EQ(GetTypeof(list[0]), "Printer");
    EXPECT_EQ(GetName(list[0]).value, "Print to file");
    EXPECT_EQ(GetName(Sysprinter).value, "Print to file") << "the default one";
    EXPECT_EQ(PrinterList(), list) << "an object keeps its printer";
    EXPECT_EQ(GetPrinterStatus(Sysprinter).value, PRINTER_READY);
    EXPECT_EQ(GetTypeof(Object("Sysprinter", 99)), "");
    EXPECT_EQ(StartPrint(Object("Sysprinter", 99)), ControlInvalid);
}

TEST_F(DrawingTest, APrinterTellsItsPaper) {
    EXPECT_EQ(GetPhysicalWidth(Sysprinter).value, 794);
    EXPECT_EQ(GetPhysicalHeight(Sysprinter).value, 1123);
    EXPECT_EQ(GetPageWidth(Sysprinter).value + 2 * GetPhysicalOffsetX(Sysprinter).value, 794);
    EXPECT_EQ(GetPageHeight(Sysprinter).value + 2 * GetPhysicalOffsetY(Sysprinter).value, 1123);
    EXPECT_EQ(GetDpiX(Sysprinter).value, 96);
    EXPECT_EQ(GetDpiY(Sysprinter).value, 96);
    for (const Object& none : {main, button, Sysscreen})
        for (const Code code :
             {GetPhysicalWidth(none).code, GetPhysicalOffsetX(none).code, StartPrint(none), EndPrint(none),
              NewPage(none), GetPage(none).code, GetPrinterStatus(none).code})
            EXPECT_EQ(code, ControlInvalid) << GetTypeof(none);
}

TEST_F(DrawingTest, ADocumentIsPrintedBetweenStartAndEnd) {
    for (const Code code : {EndPrint(Sysprinter), NewPage(Sysprinter), DrawTextstr(Sysprinter, "a"),
                            DrawLine(Sysprinter, 0, 0, 1, 1), GetCurrentX(Sysprinter).code})
        EXPECT_EQ(code, PrintNotStarted);
    EXPECT_EQ(GetPage(Sysprinter).value, 0);
    EXPECT_EQ(StartPrint(Sysprinter), PrinterFailed) << "a document to a file needs a name";
    SetCaption(Sysprinter, "report");
    ASSERT_EQ(StartPrint(Sysprinter), Ok);
    EXPECT_EQ(StartPrint(Sysprinter), PrinterFailed) << "it is started";
    EXPECT_EQ(GetPage(Sysprinter).value, 1);
    DrawTextstr(Sysprinter, "first\nline\ttab");
    EXPECT_EQ(NewPage(Sysprinter), Ok);
    EXPECT_EQ(GetPage(Sysprinter).value, 2);
    EXPECT_EQ(GetCurrentY(Sysprinter).value, 0);
    DrawTextstr(Sysprinter, "second");
    EXPECT_EQ(EndPrint(Sysprinter), Ok);
    EXPECT_EQ(EndPrint(Sysprinter), PrintNotStarted);
    EXPECT_EQ(written("report.txt"), "first\nline    tab\n\fsecond\n");
}

TEST_F(DrawingTest, AFullPageEndsByItselfAndALongLineIsBroken) {
    SetCaption(Sysprinter, "long");
    ASSERT_EQ(StartPrint(Sysprinter), Ok);
    const int lines = GetPageHeight(Sysprinter).value / 13, letters = GetPageWidth(Sysprinter).value / 6;
    for (int i = 0; i <= lines; ++i) DrawTextstr(Sysprinter, "x");
    EXPECT_EQ(GetPage(Sysprinter).value, 2);
    DrawTextstr(Sysprinter, std::string(static_cast<std::size_t>(letters * 2), 'y') + "\xC3\xA4z");
    EndPrint(Sysprinter);
    const std::string text = written("long.txt"), row(static_cast<std::size_t>(letters), 'y');
    EXPECT_EQ(text.find('\f'), static_cast<std::size_t>(lines * 2));
    EXPECT_TRUE(text.ends_with("\fx\n" + row + "\n" + row + "\n\xC3\xA4z\n")) << text.substr(text.find('\f'));
}

TEST_F(DrawingTest, ALineWithoutEndIsBrokenBetweenCharactersAndLosesNone) {
    const int letters = GetPageWidth(Sysprinter).value / 6;
    for (const std::string letter : {"y", "\xC3\xA4", "\xE2\x82\xAC", "\xF0\x9F\x98\x80", "\x80", "\xFF"}) {
        SetCaption(Sysprinter, "long");
        ASSERT_EQ(StartPrint(Sysprinter), Ok);
        std::string line;
        for (int i = 0; i < letters * 300 + 7; ++i) line += letter;
        DrawTextstr(Sysprinter, line);
        EndPrint(Sysprinter);
        std::string text, rest = written("long.txt");
        int whole = 0;
        for (std::size_t end = 0; (end = rest.find('\n')) != std::string::npos; rest.erase(0, end + 1)) {
            const std::string row =
                rest.substr(rest.starts_with('\f') ? 1 : 0, end - (rest.starts_with('\f') ? 1 : 0));
            EXPECT_EQ(row.size() % letter.size(), 0U) << letter;
            whole += row.size() == letter.size() * static_cast<std::size_t>(letters);
            text += row;
        }
        EXPECT_EQ(text, line) << letter;
        EXPECT_TRUE(whole == 300 || letter == "\x80" || letter == "\xFF") << letter << whole;
    }
}

TEST_F(DrawingTest, EachPageHasItsHeadingWithItsNumber) {
    SetCaption(Sysprinter, "headed");
    PrintJob job;
    job.heading = "/some/where/a.txt";
    ASSERT_EQ(StartPrint(Sysprinter, job), Ok);
    EXPECT_GT(GetCurrentY(Sysprinter).value, 13) << "the heading has its room";
    const int first = GetCurrentY(Sysprinter).value;
    DrawTextstr(Sysprinter, "one");
    NewPage(Sysprinter);
    EXPECT_EQ(GetCurrentY(Sysprinter).value, first);
    DrawTextstr(Sysprinter, "two");
    EXPECT_EQ(EndPrint(Sysprinter), Ok);
    const std::string text = written("headed.txt");
    const std::size_t end = text.find('\n'), page = text.find('\f');
    EXPECT_TRUE(text.starts_with("/some/where/a.txt  "));
    EXPECT_EQ(text.substr(end - 6, 12), "Page 1\none\n\f");
    EXPECT_EQ(end, static_cast<std::size_t>(GetPageWidth(Sysprinter).value / 6)) << "over the whole width";
    EXPECT_NE(text.find("Page 2\ntwo\n", page), std::string::npos);
}

TEST_F(DrawingTest, AHeadingThatIsTooWideLosesItsBeginning) {
    SetCaption(Sysprinter, "wide");
    PrintJob job;
    for (int i = 0; i < 40; ++i) job.heading += "folder\xC3\xA4/";
    job.heading += "end.txt";
    ASSERT_EQ(StartPrint(Sysprinter, job), Ok);
    EXPECT_EQ(EndPrint(Sysprinter), Ok);
    const std::string line = written("wide.txt");
    EXPECT_TRUE(line.starts_with("...")) << line;
    EXPECT_NE(line.find("/end.txt  Page 1\n"), std::string::npos) << line;
}

TEST_F(DrawingTest, APartOfThePagesIsPrinted) {
    const struct {
        int from, to;
        const char* result;
    } cases[] = {{0, 0, "1\n\f2\n\f3\n"}, {1, 1, "1\n"}, {2, 0, "2\n\f3\n"},
                 {2, 2, "2\n"},           {3, 9, "3\n"}, {4, 0, ""}};
    for (const auto& one : cases) {
        SetCaption(Sysprinter, "part");
        PrintJob job;
        job.from = one.from;
        job.to = one.to;
        ASSERT_EQ(StartPrint(Sysprinter, job), Ok);
        for (int page = 1; page <= 3; ++page) {
            if (page > 1) NewPage(Sysprinter);
            EXPECT_EQ(GetPage(Sysprinter).value, page);
            DrawTextstr(Sysprinter, std::to_string(page));
        }
        EXPECT_EQ(EndPrint(Sysprinter), Ok);
        EXPECT_EQ(written("part.txt"), one.result) << one.from << " " << one.to;
    }
}

TEST_F(DrawingTest, ADocumentThatIsCancelledLeavesTheOldOne) {
    EXPECT_EQ(CancelPrint(Sysprinter), PrintNotStarted);
    EXPECT_EQ(CancelPrint(main), ControlInvalid);
    SetCaption(Sysprinter, "kept");
    ASSERT_EQ(StartPrint(Sysprinter), Ok);
    DrawTextstr(Sysprinter, "old");
    ASSERT_EQ(EndPrint(Sysprinter), Ok);
    ASSERT_EQ(StartPrint(Sysprinter), Ok);
    DrawTextstr(Sysprinter, "new");
    EXPECT_EQ(CancelPrint(Sysprinter), Ok);
    EXPECT_EQ(GetPage(Sysprinter).value, 0);
    EXPECT_EQ(written("kept.txt"), "old\n");
    EXPECT_EQ(StartPrint(Sysprinter), Ok) << "the printer is free";
    EXPECT_EQ(CancelPrint(Sysprinter), Ok);
}

TEST_F(DrawingTest, ADocumentThatCannotBeWrittenFails) {
    SetCaption(Sysprinter, folder / "none/deep");
    ASSERT_EQ(StartPrint(Sysprinter), Ok);
    DrawTextstr(Sysprinter, "lost");
    EXPECT_EQ(EndPrint(Sysprinter), PrinterFailed);
    EXPECT_EQ(GetPage(Sysprinter).value, 0) << "and has ended";
}

// ---- pictures ----

// A bitmap of one colour, 24 bits a pixel.
std::string bitmap(int width, int height) {
    const auto little = [](int value, int count) {
        std::string bytes;
        for (int i = 0; i < count; ++i) bytes += static_cast<char>(value >> 8 * i & 255);
        return bytes;
    };
    const int row = (width * 3 + 3) / 4 * 4, size = row * std::abs(height);
    return "BM" + little(54 + size, 4) + little(0, 4) + little(54, 4) + little(40, 4) + little(width, 4) +
           little(height, 4) + little(1, 2) + little(24, 2) + little(0, 4) + little(size, 4) +
           std::string(16, '\0') + std::string(static_cast<std::size_t>(size), '\x40');
}

TEST_F(DrawingTest, PicturesAreMeasuredByTheirHeads) {
    struct Case {
        std::string bytes;
        int width, height;
    };
    using namespace std::string_literals;
    const Case cases[] = {
        {bitmap(7, 5), 7, 5},
        {bitmap(7, -5), 7, 5},
        {"\x89PNG\r\n\x1a\n\0\0\0\rIHDR\0\0\1\x02\0\0\0\x03"s, 258, 3},
        {"\0\0\1\0\2\0\x10\x10\0\0\0\0\0\0\0\0\0\0\0\0\0\0\x20\x30\0\0\0\0\0\0\0\0\0\0\0\0\0\0"s, 32, 48},
        {"\0\0\1\0\1\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0"s, 256, 256},
        {"<?xml version='1.0'?>\n<svg xmlns=\"x\" width=\"24px\"\n height=\"10.6\">", 24, 11},
        {"<svg viewBox=\"0 0 48 32\">", 48, 32},
        {"<svg width=\"100%\" height=\"100%\" viewBox=\"0,0,20,30\">", 20, 30},
    };
    for (const Case& one : cases) {
        write("p", one.bytes);
        const Answer<Picture> picture = LoadPicture(folder / "p");
        EXPECT_EQ(picture.code, Ok);
        EXPECT_EQ(picture.value.width, one.width);
        EXPECT_EQ(picture.value.height, one.height);
        EXPECT_EQ(PictureWidth(picture.value).value, one.width);
        EXPECT_EQ(PictureHeight(picture.value).value, one.height);
        EXPECT_EQ(GetBitmapInfo(picture.value.handle).value, picture.value);
    }
}

TEST_F(DrawingTest, WhatIsNoPictureIsRefused) {
    for (const std::string& bytes :
         {std::string("BM"), std::string("\x89PNG"), std::string("text"), std::string("<svg"), bitmap(0, 0),
          std::string("<svg width=\"1e300\" height=\"3\">")}) {
        write("p", bytes);
        EXPECT_EQ(LoadPicture(folder / "p").code, BitmapInvalid) << bytes;
    }
    EXPECT_EQ(LoadPicture("").code, BitmapInvalid);
    EXPECT_EQ(LoadPicture("none.png").code, BitmapInvalid);
    for (const int handle : {0, -1, 1 << 30}) {
        EXPECT_EQ(GetBitmapInfo(handle).code, BitmapInvalid);
        EXPECT_EQ(PictureWidth({1, 1, handle}).code, BitmapInvalid);
        EXPECT_EQ(SavePicture({1, 1, handle}, folder / "q.bmp"), BitmapInvalid);
    }
}

TEST_F(DrawingTest, EqualPicturesHaveOneHandle) {
    write("a.bmp", bitmap(3, 3));
    write("b.bmp", bitmap(3, 3));
    write("c.bmp", bitmap(3, 4));
    const Picture a = LoadPicture(folder / "a.bmp").value;
    EXPECT_EQ(LoadPicture(folder / "b.bmp").value, a);
    EXPECT_EQ(LoadPicture(PictureName(a)).value, a);
    EXPECT_NE(LoadPicture(folder / "c.bmp").value.handle, a.handle);
    EXPECT_EQ(PictureName({}), "");
}

TEST_F(DrawingTest, APictureIsSavedAsItWas) {
    write("a.bmp", bitmap(3, 3));
    const Picture a = LoadPicture(folder / "a.bmp").value;
    EXPECT_EQ(SavePicture(a, folder / "copy.BMP"), Ok);
    EXPECT_EQ(written("copy.BMP"), bitmap(3, 3));
    EXPECT_EQ(SavePicture(a, folder / "none/copy.bmp"), FileNotWritten);
    EXPECT_EQ(SavePicture(a, folder / "copy.png"), BitmapInvalid) << "nothing makes one without a screen";
}

TEST_F(DrawingTest, AButtonsFaceIsAPicture) {
    write("i.bmp", bitmap(3, 3));
    const Picture face = TBITMAP(48, 64, "&Save", folder / "i.bmp");
    EXPECT_EQ(face.width, 48);
    EXPECT_EQ(face.height, 64);
    EXPECT_EQ(TBITMAP(48, 64, "&Save", folder / "i.bmp"), face);
    EXPECT_NE(TBITMAP(48, 64, "&Save", "none").handle, face.handle);
    EXPECT_EQ(SetPicture(button, face), Ok);
    EXPECT_EQ(GetPicture(button).value, PictureName(face));
    EXPECT_EQ(LoadPicture(GetPicture(button).value).value, face);
    EXPECT_EQ(TBITMAP(0, -5, "", "").height, 1);
}

}  // namespace
}  // namespace tarn::platform
