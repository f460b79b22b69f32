// SPDX-License-Identifier: Apache-2.0
//
// Drawing on real widgets: the pixels that operations leave, and printed files.
#include "ui/drawing_fixture.h"

#include "os/files.h"
#include "platform/model/model.h"
#include "platform/model/view.h"
#include "platform/operations/dragging.h"
#include "platform/operations/printjob.h"

#include <gtest/gtest.h>

#include <QImage>
#include <QLabel>
#include <QProgressBar>

#include <string>

namespace tarn::platform {

namespace {

// ---- pixels ----

TEST_F(DrawTest, ALineHasBothItsEnds) {
    const int ground = at(5, 5);
    struct Case {
        int x1, y1, x2, y2;
    };
    for (const Case& one : {Case{5, 5, 20, 5},
                            {20, 8, 5, 8},
                            {5, 12, 5, 30},
                            {9, 30, 9, 12},
                            {20, 20, 40, 40},
                            {60, 20, 50, 35}}) {
        StartGraph(Draw);
        ink(Red, -1);
        DrawLine(Draw, one.x1, one.y1, one.x2, one.y2);
        EndGraph(Draw);
        EXPECT_EQ(at(one.x1, one.y1), Red) << one.x1 << " " << one.y1;
        EXPECT_EQ(at(one.x2, one.y2), Red) << one.x2 << " " << one.y2;
    }
    EXPECT_EQ(at(4, 5), ground);
    EXPECT_EQ(at(21, 5), ground);
    EXPECT_EQ(at(5, 6), ground);
    EXPECT_EQ(at(5, 31), ground);
}

TEST_F(DrawTest, AShapeCoversItsRectangleAndNoMore) {
    const int ground = at(5, 5);
    StartGraph(Draw, 2, 3);
    ink(Red, Blue);
    DrawShape(Draw, RECTANGLE_SHAPE, 8, 7, 20, 10);
    ink(Green, -1);
    DrawShape(Draw, RECTANGLE_SHAPE, 38, 7, 20, 10);
    ink(Red, Blue);
    DrawShape(Draw, ELLIPSE_SHAPE, 68, 7, 20, 10);
    DrawShape(Draw, ROUNDRECTANGLE_SHAPE, 98, 7, 30, 30);
    DrawShape(Draw, HORIZONTALLINE_SHAPE, 8, 37, 21, 11);
    DrawShape(Draw, VERTICALLINE_SHAPE, 38, 37, 11, 21);
    ink(Green, Green);
    DrawShape(Draw, RECTANGLE_SHAPE, 68, 37, 3, 3);
    DrawShape(Draw, RECTANGLE_SHAPE, 78, 37, 0, 3);
    DrawShape(Draw, RECTANGLE_SHAPE, 88, 37, 1, 1);
    DrawPoint(Draw, 95, 40);
    EndGraph(Draw);
    struct Case {
        int x, y, colour;
        const char* what;
    };
    for (const Case& one : {Case{10, 10, Red, "the first pixel"},
                            {29, 19, Red, "the last pixel"},
                            {11, 11, Blue, "inside"},
                            {28, 18, Blue, "inside at the end"},
                            {9, 10, ground, "left of it"},
                            {30, 10, ground, "right of it"},
                            {10, 20, ground, "below it"},
                            {40, 10, Green, "an outline"},
                            {45, 15, ground, "nothing inside"},
                            {70, 10, ground, "the corner of an ellipse"},
                            {80, 15, Blue, "the middle of an ellipse"},
                            {100, 10, ground, "a round corner"},
                            {115, 25, Blue, "inside a round rectangle"},
                            {10, 45, Red, "a horizontal line begins"},
                            {30, 45, Red, "and ends"},
                            {10, 44, ground, "above it"},
                            {45, 40, Red, "a vertical line begins"},
                            {45, 60, Red, "and ends"},
                            {44, 40, ground, "beside it"},
                            {70, 40, Green, "one colour"},
                            {72, 42, Green, "to the last"},
                            {73, 40, ground, "beside it"},
                            {80, 40, ground, "no width, no shape"},
                            {90, 40, Green, "one pixel"},
                            {97, 43, Green, "a point"}})
        EXPECT_EQ(at(one.x, one.y), one.colour) << one.what;
}

TEST_F(DrawTest, WhatIsDrawnStaysUntilItIsCleared) {
    StartGraph(Draw);
    ink(Red, Red);
    DrawShape(Draw, RECTANGLE_SHAPE, 5, 5, 20, 20);
    EndGraph(Draw);
    static_cast<void>(Hide(Draw));
    Show(Draw, false);
    EXPECT_EQ(at(10, 10), Red) << "shown again";
    Rect place = GetPosition(Draw, WINDOW_UNIT).value;
    place.w += 200;
    place.h += 100;
    SetPosition(Draw, WINDOW_UNIT, place);
    EXPECT_EQ(at(10, 10), Red) << "in a larger window";
    const Rect room = GetPosition(Draw, CLIENT_UNIT).value;
    StartGraph(Draw);
    ink(Blue, Blue);
    DrawShape(Draw, RECTANGLE_SHAPE, room.w - 9, room.h - 9, 30, 30);
    EndGraph(Draw);
    EXPECT_EQ(at(10, 10), Red) << "drawing adds";
    EXPECT_EQ(at(room.w - 1, room.h - 1), Blue) << "to the last pixel, and cut off behind it";
    EXPECT_EQ(Clear(Draw), Ok);
    EXPECT_NE(at(10, 10), Red);
    EXPECT_NE(at(room.w - 1, room.h - 1), Blue);
}

TEST_F(DrawTest, ControlsStandBeforeTheDrawing) {
    const Rect button = GetPosition(in(101), WINDOW_UNIT).value;
    const int face = at(button.x + 10, button.y + 5);
    StartGraph(Draw);
    ink(Red, Red);
    DrawShape(Draw, RECTANGLE_SHAPE, 0, 0, 500, 500);
    EndGraph(Draw);
    EXPECT_EQ(at(button.x + 10, button.y + 5), face);
    EXPECT_EQ(at(button.x - 2, button.y), Red);
}

TEST_F(DrawTest, ATextIsAsLargeAsItIsMeasured) {
    StartGraph(Draw);
    SetFontSize(Draw, 20);
    ink(Red, Blue);
    SetCurrentX(Draw, 10);
    SetCurrentY(Draw, 10);
    const int width = TextWidth(Draw, "Hg").value, height = TextHeight(Draw, "Hg").value;
    DrawTextstr(Draw, "Hg");
    EXPECT_EQ(GetCurrentY(Draw).value, 10 + height);
    EndGraph(Draw);
    EXPECT_EQ(at(10, 10), Blue);
    EXPECT_EQ(at(10 + width - 1, 10 + height - 1), Blue);
    EXPECT_NE(at(10 + width, 10), Blue);
    EXPECT_NE(at(10, 10 + height), Blue);
    const QImage image = seen();
    const int ratio = static_cast<int>(image.devicePixelRatio());
    int red = 0;
    for (int y = 10; y < 10 + height; ++y)
        for (int x = 10; x < 10 + width; ++x) red += image.pixel(x * ratio, y * ratio) == qRgb(255, 0, 0);
    EXPECT_GT(red, 20) << "letters";
    EXPECT_LT(TextHeight(Draw, "Hg").value, height) << "the window's own font is back";
}

TEST_F(DrawTest, PicturesAreDrawnScaledAndWithoutMagenta) {
    QImage image(4, 2, QImage::Format_RGB32);
    image.fill(qRgb(0, 0, 255));
    image.setPixel(0, 0, qRgb(255, 0, 255));
    for (const char* name : {"p.bmp", "p.png"}) {
        const std::string file = folder / name;
        ASSERT_TRUE(image.save(QString::fromStdString(file)));
        Clear(Draw);
        const int ground = at(10, 10);
        StartGraph(Draw);
        EXPECT_EQ(DrawPicture(Draw, file, 10, 10), Ok);
        EXPECT_EQ(DrawPicture(Draw, LoadPicture(file).value, 30, 10, 40, 20), Ok);
        EndGraph(Draw);
        EXPECT_EQ(at(10, 10), ground) << name;
        EXPECT_EQ(at(12, 11), Blue);
        EXPECT_EQ(at(13, 11), Blue);
        EXPECT_EQ(at(14, 11), ground);
        EXPECT_EQ(at(69, 29), Blue);
        EXPECT_EQ(at(70, 29), ground);
    }
}

TEST_F(DrawTest, APictureIsSavedInTheFormatOfTheName) {
    const std::string svg = "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"6\" height=\"4\">"
                            "<rect width=\"3\" height=\"4\" fill=\"#0000ff\"/></svg>";
    ASSERT_TRUE(os::saveFile(folder / "p.svg", svg, os::Durability::Unsynced).ok());
    const Picture picture = LoadPicture(folder / "p.svg").value;
    for (const char* name : {"q.png", "q.bmp", "q.ico"}) {
        ASSERT_EQ(SavePicture(picture, folder / name), Ok) << name;
        const QImage image(QString::fromStdString(folder / name));
        EXPECT_EQ(image.size(), QSize(6, 4)) << name;
        EXPECT_EQ(image.pixel(1, 1), qRgb(0, 0, 255)) << name;
        EXPECT_EQ(LoadPicture(folder / name).value.width, 6) << name;
    }
    EXPECT_EQ(SavePicture(picture, folder / "q.svg"), Ok);
    EXPECT_EQ(SavePicture(picture, folder / "q.what"), BitmapInvalid);
    EXPECT_EQ(SavePicture(TBITMAP(48, 64, "Save", folder / "q.png"), folder / "face.png"), Ok);
    EXPECT_EQ(QImage(QString::fromStdString(folder / "face.png")).size(), QSize(48, 64));
}

TEST_F(DrawTest, AnotherWindowIsDrawn) {
    ASSERT_EQ(Load(Code), Ok);
    StartGraph(Draw);
    SetCurrentX(Draw, 150);
    SetCurrentY(Draw, 20);
    EXPECT_EQ(DrawWindow(Draw, Draw), Ok);
    EndGraph(Draw);
    const Rect shape = GetPosition(in(105), WINDOW_UNIT).value;
    EXPECT_EQ(at(150 + shape.x, 20 + shape.y), Red);
    EXPECT_EQ(at(151 + shape.x, 21 + shape.y), Blue);
}

TEST_F(DrawTest, AnImageIsDrawnOnToo) {
    const Rect place = GetPosition(in(104), WINDOW_UNIT).value;
    StartGraph(in(104));
    SetForeColour(in(104), Red);
    SetBackColour(in(104), Red);
    DrawShape(in(104), RECTANGLE_SHAPE, 2, 2, 5, 5);
    EndGraph(in(104));
    EXPECT_EQ(at(place.x + 2, place.y + 2), Red);
    EXPECT_NE(at(place.x + 8, place.y + 8), Red);
    Clear(in(104));
    EXPECT_NE(at(place.x + 2, place.y + 2), Red);
}

TEST_F(DrawTest, AWindowThatGoesWhileItIsDrawnOnHarmsNothing) {
    StartGraph(Draw);
    DrawPoint(Draw, 1, 1);
    RegisterWindow(Draw, nullptr);
    static_cast<void>(Unload(Draw));
    settle();
    EXPECT_EQ(DrawPoint(Draw, 1, 1), WindowNotLoaded);
}

// ---- controls ----

TEST_F(DrawTest, ColoursOfControlsFollowTheModel) {
    const Rect shape = GetPosition(in(105), WINDOW_UNIT).value;
    EXPECT_EQ(at(shape.x, shape.y), Red) << "the outline";
    EXPECT_EQ(at(shape.x + 5, shape.y + 5), Blue) << "the fill";
    SetBackColour(in(105), Green);
    EXPECT_EQ(at(shape.x + 5, shape.y + 5), Green);
    EXPECT_EQ(find<QProgressBar>("bar")->palette().color(QPalette::Highlight), QColor(0, 255, 0));
    SetForeColour(in(102), Red);
    EXPECT_EQ(find<QLabel>("lbl")->palette().color(QPalette::WindowText), QColor(255, 0, 0));
    SetBackColour(Draw, Blue);
    EXPECT_EQ(at(1, 1), Blue);
    SetBackColour(Draw, -1);
    EXPECT_NE(at(1, 1), Blue);
}

TEST_F(DrawTest, AnImageFillsItsPlaceInItsOwnProportions) {
    QImage image(4, 2, QImage::Format_RGB32);
    image.fill(qRgb(0, 0, 255));
    ASSERT_TRUE(image.save(QString::fromStdString(folder / "p.bmp")));
    SetPosition(in(104), WINDOW_UNIT, {10, 10, 40, 40});
    const int ground = at(60, 12);
    SetPicture(in(104), LoadPicture(folder / "p.bmp").value);
    EXPECT_EQ(at(11, 30), Blue);
    EXPECT_EQ(at(48, 30), Blue);
    EXPECT_EQ(at(30, 12), ground) << "above it";
    EXPECT_EQ(at(30, 48), ground) << "below it";
    ASSERT_TRUE(os::saveFile(folder / "p.svg",
                             "<svg xmlns=\"http://www.w3.org/2000/svg\" viewBox=\"0 0 20 40\">"
                             "<rect width=\"20\" height=\"40\" fill=\"#ff0000\"/></svg>",
                             os::Durability::Unsynced)
                    .ok());
    SetPicture(in(104), folder / "p.svg");
    EXPECT_EQ(at(30, 12), Red);
    EXPECT_EQ(at(30, 48), Red);
    EXPECT_EQ(at(12, 30), ground);
    EXPECT_EQ(at(48, 30), ground);
}

// ---- printing ----

// How many pages a PDF has.
int pagesOf(const std::string& file) {
    std::string bytes;
    if (os::readFile(file, bytes) != os::FileError::None || !bytes.starts_with("%PDF")) return -1;
    const std::size_t at = bytes.find("/Count ");
    return at == std::string::npos ? 0 : std::atoi(bytes.c_str() + at + 7);
}

TEST_F(DrawTest, PagesArePrintedToAFile) {
    const Object printer = PrinterList().back();
    EXPECT_EQ(GetName(printer).value, "Print to file");
    EXPECT_EQ(GetDpiX(printer).value, 600);
    EXPECT_EQ(GetPhysicalWidth(printer).value - GetPageWidth(printer).value,
              2 * GetPhysicalOffsetX(printer).value);
    SetCaption(printer, folder / "report");
    SetFontName(printer, "DejaVu Sans Mono");
    SetFontSize(printer, 10);
    ASSERT_EQ(StartPrint(printer), Ok);
    EXPECT_NEAR(TextHeight(printer, "x").value, 10.0 / 72 * 600 * 1.2, 20) << "in the printer's dots";
    const int lines = GetPageHeight(printer).value / TextHeight(printer, "x").value;
    for (int i = 0; i < lines + 1; ++i) DrawTextstr(printer, "line " + std::to_string(i));
    EXPECT_EQ(GetPage(printer).value, 2);
    EXPECT_EQ(DrawLine(printer, 0, 0, 500, 500), Ok);
    EXPECT_EQ(DrawShape(printer, ELLIPSE_SHAPE, 0, 0, 500, 500), Ok);
    EXPECT_EQ(NewPage(printer), Ok);
    EXPECT_EQ(DrawWindow(printer, Draw), Ok);
    EXPECT_EQ(EndPrint(printer), Ok);
    EXPECT_EQ(pagesOf(folder / "report.pdf"), 3);
    SetCaption(printer, folder / "none/report");
    EXPECT_EQ(StartPrint(printer), PrinterFailed) << "a folder that is not there";
    SetCaption(printer, folder / "again");
    EXPECT_EQ(StartPrint(printer), Ok);
    EXPECT_EQ(EndPrint(printer), Ok);
    EXPECT_EQ(pagesOf(folder / "again.pdf"), 1);
    EXPECT_EQ(pagesOf(folder / "report.pdf"), 3);
    SetFontName(printer, "");
    SetFontSize(printer, 0);
}

TEST_F(DrawTest, AFileThatIsPrintedToIsReplacedWholeOrNotAtAll) {
    const Object printer = PrinterList().back();
    const std::string file = folder / "kept.pdf";
    SetCaption(printer, folder / "kept");
    const auto print = [&](int pages) {
        ASSERT_EQ(StartPrint(printer, {"a heading", 0, 0, 1}), Ok);
        for (int i = 1; i < pages; ++i) NewPage(printer);
        DrawTextstr(printer, "x");
    };
    print(2);
    EXPECT_EQ(os::sizeOf(file), -1) << "nothing before the end";
    EXPECT_EQ(EndPrint(printer), Ok);
    EXPECT_EQ(pagesOf(file), 2);
    print(3);
    EXPECT_EQ(CancelPrint(printer), Ok);
    EXPECT_EQ(pagesOf(file), 2);
    print(3);
    EXPECT_EQ(pagesOf(file), 2);
    EXPECT_EQ(EndPrint(printer), Ok);
    EXPECT_EQ(pagesOf(file), 3);
    ASSERT_EQ(StartPrint(printer, {"", 2, 3, 1}), Ok);
    for (int i = 1; i < 5; ++i) NewPage(printer);
    EXPECT_EQ(EndPrint(printer), Ok);
    EXPECT_EQ(pagesOf(file), 2) << "the part that is wanted";
}

}  // namespace

}  // namespace tarn::platform
