// SPDX-License-Identifier: Apache-2.0
//
// Drawing on real widgets: the pixels that operations leave, printed files, dragging with the mouse, and the
// events of the mouse with their places.
#include "os/files.h"
#include "platform/model/model.h"
#include "platform/model/view.h"
#include "platform/operations/dragging.h"
#include "platform/operations/printjob.h"
#include "platform/resources/resource.h"
#include "platform/windowing.h"
#include "support/tempfolder.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QClipboard>
#include <QContextMenuEvent>
#include <QElapsedTimer>
#include <QFrame>
#include <QImage>
#include <QKeyEvent>
#include <QLabel>
#include <QListView>
#include <QMimeData>
#include <QMouseEvent>
#include <QProgressBar>
#include <QPushButton>
#include <QRubberBand>
#include <QScreen>
#include <QScrollBar>
#include <QTest>
#include <QTimer>
#include <QToolButton>

#include <algorithm>
#include <functional>
#include <string>
#include <vector>

namespace tarn::platform {

namespace {

constexpr char Resources[] = R"(
Draw DIALOG
  CAPTION="Draw"
  POSITION=0 0 200 150
  Pushbutton ok 101
    POSITION=10 120 40 14
    CAPTION="OK"
  Label lbl 102
    POSITION=60 120 40 14
    CAPTION="Text"
  Listbox lst 103
    POSITION=100 100 60 40
    ROWS="a\nb"
  Image img 104
    POSITION=10 80 20 20
  Shape shp 105
    POSITION=40 80 20 20
    SHAPE=0
    FORECOLOUR=0x0000FF
    BACKCOLOUR=0xFF0000
    BORDERSTYLE=1
  Progressbar bar 106
    POSITION=70 80 60 10
    VALUE=50
    FORECOLOUR=0x00FF00
  Pushbutton off 107
    POSITION=10 100 40 14
    ENABLED=0
  Iconlist grid 108
    POSITION=140 80 40 16
    ROWS="x\ty"
    USETABSTOPS=1
  Edit edt 109
    POSITION=10 60 40 14
END
Code EDITWINDOW
  CAPTION="Code"
  POSITION=10 20 200 100
END
)";

struct Heard {
    int event, control, x, y;
    friend bool operator==(const Heard&, const Heard&) = default;
    friend std::ostream& operator<<(std::ostream& out, const Heard& one) {
        return out << one.event << " of " << one.control << " at " << one.x << ", " << one.y;
    }
};
std::vector<Heard> heard;
std::function<bool(int, const Object&)> answer;

bool listen(const Object&, int event, const Object& control, int parameter) {
    if (event == MOUSEDOWN_EVENT || event == DBLCLICK_EVENT || event == INFO_EVENT)
        heard.push_back({event, control.number(), static_cast<std::int16_t>(parameter & 0xFFFF),
                         static_cast<std::int16_t>(parameter >> 16 & 0xFFFF)});
    return answer && answer(event, control);
}

const Object Draw("Draw"), Code("Code");

class DrawTest : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(os::saveFile(folder / "a.rc", Resources, os::Durability::Unsynced).ok());
        ASSERT_EQ(CompileResources({folder / "a.rc"}, folder / "a.rcx"), "");
        SetApplicationResources(folder / "a.rcx");
        for (const Object& window : {Draw, Code}) RegisterWindow(window, listen);
        ASSERT_EQ(Load(Draw), Ok);
        Show(Draw, false);
        settle();
    }
    void TearDown() override {
        answer = nullptr;
        SetCaption(Sysprinter, "");
        DestroyAllWindows();
        settle();
    }
    static void settle() {
        for (int i = 0; i < 3; ++i) DoEvents();
        heard.clear();
    }
    static Object in(int number) { return Object("Draw", number); }
    static QWidget* top(const Object& window = Draw) {
        for (QWidget* widget : QApplication::topLevelWidgets())
            if (widget->objectName().toStdString() == window.window() && !widget->isHidden()) return widget;
        return nullptr;
    }
    // What the window shows, and its client area in the window.
    static QImage seen() {
        DoEvents();
        return top()->grab().toImage().convertToFormat(QImage::Format_RGB32);
    }
    static int at(int x, int y) {
        const QImage image = seen();
        const qreal ratio = image.devicePixelRatio();
        const QRgb pixel = image.pixel(static_cast<int>(x * ratio), static_cast<int>(y * ratio));
        return qBlue(pixel) << 16 | qGreen(pixel) << 8 | qRed(pixel);
    }
    template <class Widget>
    static Widget* find(const char* name) {
        return top()->findChild<Widget*>(QString::fromLatin1(name));
    }
    static QWidget* client() { return find<QPushButton>("ok")->parentWidget(); }
    static void ink(int fore, int back) {
        SetForeColour(Draw, fore);
        SetBackColour(Draw, back);
    }

    TempFolder folder;
};

constexpr int Red = 0x0000FF, Blue = 0xFF0000, Green = 0x00FF00;

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

// ---- dragging ----

void mouse(QWidget* to, QEvent::Type type, QPoint at, Qt::MouseButton button = Qt::LeftButton,
           Qt::KeyboardModifiers keys = Qt::NoModifier) {
    const Qt::MouseButtons held = type == QEvent::MouseButtonRelease ? Qt::NoButton : Qt::LeftButton;
    QMouseEvent event(type, at, to->mapToGlobal(at), type == QEvent::MouseMove ? Qt::NoButton : button, held,
                      keys);
    QApplication::sendEvent(to, &event);
}

class TrackTest : public DrawTest {
protected:
    Rect result;
    TrackMode mode = TRACK_MOVE;
    DragGuides guides;
    // Presses at a point of the window, whose function then tracks, and does the steps meanwhile.
    void drag(QPoint from, const std::vector<std::function<void()>>& steps) {
        int next = 0;
        QTimer timer;
        timer.callOnTimeout([&] {
            if (next < static_cast<int>(steps.size())) steps[static_cast<std::size_t>(next++)]();
        });
        answer = [&](int event, const Object&) {
            if (event != MOUSEDOWN_EVENT) return false;
            timer.start(1);
            result = TrackRect(Draw, mode, {4, 12, 12, 1}, {0, 0, 100, 100}, {20, 20, 40, 30}, guides).value;
            return true;
        };
        QTest::mousePress(client(), Qt::LeftButton, {}, from);
        answer = nullptr;
    }
    static std::function<void()> moveTo(int x, int y) {
        return [=] { mouse(client(), QEvent::MouseMove, {x, y}); };
    }
    static std::function<void()> release(int x, int y) {
        return [=] { mouse(client(), QEvent::MouseButtonRelease, {x, y}); };
    }
    static void TearDownMouse() { QTest::mouseRelease(client(), Qt::LeftButton, {}, {0, 0}); }
};

TEST_F(TrackTest, ARectangleIsDraggedAndResized) {
    drag({40, 35}, {moveTo(45, 38), moveTo(50, 40), release(50, 40)});
    EXPECT_EQ(result, (Rect{30, 25, 40, 30}));
    TearDownMouse();
    drag({59, 49}, {moveTo(70, 60), release(500, 500)});
    EXPECT_EQ(result, (Rect{20, 20, 80, 80}));
    TearDownMouse();
    mode = TRACK_NEW;
    drag({5, 6}, {moveTo(70, 60), release(35, 46)});
    EXPECT_EQ(result, (Rect{5, 6, 30, 40}));
    TearDownMouse();
}

TEST_F(TrackTest, EachHandleMovesItsEdgesAndHasItsPointer) {
    struct Case {
        QPoint press;
        Qt::CursorShape pointer;
        Rect result;  // 10 to the right and 6 down
    };
    for (const Case& one : {Case{{20, 20}, Qt::SizeFDiagCursor, {30, 26, 30, 24}},
                            Case{{40, 20}, Qt::SizeVerCursor, {20, 26, 40, 24}},
                            Case{{59, 20}, Qt::SizeBDiagCursor, {20, 26, 50, 24}},
                            Case{{20, 35}, Qt::SizeHorCursor, {30, 20, 30, 30}},
                            Case{{59, 35}, Qt::SizeHorCursor, {20, 20, 50, 30}},
                            Case{{20, 49}, Qt::SizeBDiagCursor, {30, 20, 30, 36}},
                            Case{{40, 49}, Qt::SizeVerCursor, {20, 20, 40, 36}},
                            Case{{59, 49}, Qt::SizeFDiagCursor, {20, 20, 50, 36}},
                            Case{{40, 35}, Qt::SizeAllCursor, {30, 26, 40, 30}}}) {
        const QPoint to = one.press + QPoint(10, 6);
        Qt::CursorShape pointer = Qt::ArrowCursor;
        drag(one.press, {moveTo(to.x(), to.y()),
                         [&] {
                             if (const QCursor* over = QApplication::overrideCursor())
                                 pointer = over->shape();
                         },
                         release(to.x(), to.y())});
        EXPECT_EQ(result, one.result) << one.press.x() << " " << one.press.y();
        EXPECT_EQ(pointer, one.pointer) << one.press.x() << " " << one.press.y();
        EXPECT_EQ(QApplication::overrideCursor(), nullptr) << "the pointer as it was";
        TearDownMouse();
    }
}

TEST_F(TrackTest, AClickMovesNothing) {
    drag({40, 35}, {moveTo(41, 36), release(41, 36)});
    EXPECT_EQ(result, (Rect{20, 20, 40, 30}));
    TearDownMouse();
    drag({40, 35}, {moveTo(60, 35), moveTo(41, 35), release(41, 35)});
    EXPECT_EQ(result, (Rect{21, 20, 40, 30})) << "one that went farther counts every pixel";
    TearDownMouse();
}

TEST_F(TrackTest, ABandAndALabelFollowTheMouse) {
    const auto band = [] { return client()->findChild<QRubberBand*>(); };
    const auto label = [] { return client()->findChild<QLabel*>(QStringLiteral("track")); };
    QRect outline, text;
    QString told;
    bool early = true;
    drag({40, 35}, {[&] { early = band()->isVisible() || label()->isVisible(); }, moveTo(50, 40),
                    [&] {
                        outline = band()->geometry();
                        text = label()->geometry();
                        told = label()->text();
                    },
                    release(50, 40)});
    EXPECT_FALSE(early) << "nothing shows before the mouse has moved";
    EXPECT_EQ(outline, QRect(30, 25, 40, 30));
    EXPECT_EQ(told.toStdString(), "30, 25   40 \xC3\x97 30");
    EXPECT_FALSE(text.contains(50, 40)) << "the pointer is not covered";
    EXPECT_EQ(band(), nullptr);
    EXPECT_EQ(label(), nullptr);
    TearDownMouse();
}

TEST_F(TrackTest, AGuideDrawsTheRectangleAndShowsUnlessAltIsDown) {
    guides.x = {33};
    const auto lines = [] {
        int shown = 0;
        for (const QFrame* line : client()->findChildren<QFrame*>(QStringLiteral("guide")))
            shown += line->isVisible() ? 1 : 0;
        return shown;
    };
    int near = 0, free = 0;
    QRect place;
    drag({40, 35}, {moveTo(50, 35),
                    [&] {
                        near = lines();
                        for (const QFrame* line : client()->findChildren<QFrame*>(QStringLiteral("guide")))
                            if (line->isVisible()) place = line->geometry();
                    },
                    release(50, 35)});
    EXPECT_EQ(result, (Rect{33, 20, 40, 30}));
    EXPECT_EQ(near, 1);
    EXPECT_EQ(place, QRect(33, 0, 1, 100));
    TearDownMouse();
    const auto withAlt = [](QEvent::Type type) {
        mouse(client(), type, {50, 35}, Qt::LeftButton, Qt::AltModifier);
    };
    drag({40, 35}, {[&] { withAlt(QEvent::MouseMove); }, [&] { free = lines(); },
                    [&] { withAlt(QEvent::MouseButtonRelease); }});
    EXPECT_EQ(result, (Rect{30, 20, 40, 30}));
    EXPECT_EQ(free, 0);
    EXPECT_TRUE(client()->findChildren<QFrame*>(QStringLiteral("guide")).isEmpty());
    TearDownMouse();
}

TEST_F(TrackTest, BandsShowWhatGoesAlong) {
    guides.along = {{70, 60, 20, 20}, {20, 60, 20, 20}};
    std::vector<QRect> bands;
    drag({40, 35}, {moveTo(45, 38),
                    [&] {
                        for (const QRubberBand* band : client()->findChildren<QRubberBand*>())
                            bands.push_back(band->geometry());
                    },
                    moveTo(500, 38), release(500, 38)});
    EXPECT_EQ(bands.size(), 3U);
    EXPECT_EQ(std::count(bands.begin(), bands.end(), QRect(75, 63, 20, 20)), 1);
    EXPECT_EQ(std::count(bands.begin(), bands.end(), QRect(25, 63, 20, 20)), 1);
    EXPECT_EQ(result, (Rect{30, 23, 40, 30})) << "the first of them is at the edge";
    EXPECT_TRUE(client()->findChildren<QRubberBand*>().isEmpty());
    TearDownMouse();
}

TEST_F(TrackTest, ThePressTellsWhichKeysAreHeldDown) {
    struct Case {
        Qt::KeyboardModifiers keys;
        int expected;
    };
    for (const Case& one : {Case{Qt::NoModifier, 0}, Case{Qt::ShiftModifier, MOUSE_SHIFT},
                            Case{Qt::ControlModifier, MOUSE_CTRL},
                            Case{Qt::ShiftModifier | Qt::ControlModifier, MOUSE_SHIFT | MOUSE_CTRL}}) {
        QTest::mouseClick(client(), Qt::LeftButton, one.keys, {3, 4});
        EXPECT_EQ(GetMouseKeys(), one.expected);
    }
}

TEST_F(TrackTest, EscapeAndAWindowThatGoesEndTheDrag) {
    drag({40, 35}, {moveTo(60, 60), [] {
                        QKeyEvent key(QEvent::KeyPress, Qt::Key_Escape, Qt::NoModifier);
                        QApplication::sendEvent(client(), &key);
                    }});
    EXPECT_EQ(result, (Rect{20, 20, 40, 30}));
    TearDownMouse();
    drag({40, 35}, {moveTo(60, 60), [] { static_cast<void>(Hide(Draw)); }});
    EXPECT_FALSE(GetVisible(Draw).value);
    Show(Draw, false);
    TearDownMouse();
    EXPECT_EQ(TrackRect(Draw, TRACK_MOVE, {}, {0, 0, 99, 99}, {1, 2, 30, 40}).value, (Rect{1, 2, 30, 40}))
        << "no button is down";
}

// ---- events ----

TEST_F(DrawTest, TheMouseIsHeardWithPlacesOfTheWindow) {
    QTest::mouseClick(client(), Qt::LeftButton, {}, {3, 4});
    EXPECT_EQ(heard, (std::vector<Heard>{{MOUSEDOWN_EVENT, 0, 3, 4}}));
    heard.clear();
    auto* label = find<QLabel>("lbl");
    QTest::mouseClick(label, Qt::LeftButton, {}, {2, 1});
    EXPECT_EQ(heard, (std::vector<Heard>{{MOUSEDOWN_EVENT, 102, label->x() + 2, label->y() + 1}}));
    heard.clear();
    QTest::mouseDClick(label, Qt::LeftButton, {}, {2, 1});
    ASSERT_FALSE(heard.empty());
    EXPECT_EQ(heard.back(), (Heard{DBLCLICK_EVENT, 102, label->x() + 2, label->y() + 1}));
    heard.clear();
    QTest::mouseClick(client(), Qt::MiddleButton, {}, {3, 4});
    EXPECT_TRUE(heard.empty());
    auto* off = find<QPushButton>("off");
    QTest::mouseClick(off, Qt::LeftButton, {}, {5, 5});
    EXPECT_EQ(heard, (std::vector<Heard>{{MOUSEDOWN_EVENT, 0, off->x() + 5, off->y() + 5}}))
        << "a control that is off leaves it to the window";
    heard.clear();
    const Rect shape = GetPosition(in(105), WINDOW_UNIT).value;
    QTest::mouseDClick(client(), Qt::LeftButton, {}, {shape.x + 1, shape.y + 1});
    EXPECT_EQ(heard.back(), (Heard{DBLCLICK_EVENT, 0, shape.x + 1, shape.y + 1}));
}

TEST_F(DrawTest, RowsTellADoubleClickWithThePlaceInTheWindow) {
    for (const auto& [name, number] : {std::pair("lst", 103), {"grid", 108}}) {
        auto* list = find<QAbstractItemView>(name);
        QWidget* rows = list->viewport();
        QTest::mouseDClick(rows, Qt::LeftButton, {}, {4, 4});
        ASSERT_FALSE(heard.empty());
        const QPoint at = rows->mapTo(client(), QPoint(4, 4));
        EXPECT_EQ(heard.back(), (Heard{DBLCLICK_EVENT, number, at.x(), at.y()}));
        heard.clear();
    }
}

void askMenu(QWidget* to, QPoint at, QContextMenuEvent::Reason reason = QContextMenuEvent::Mouse) {
    QContextMenuEvent event(reason, at, to->mapToGlobal(at));
    QApplication::sendEvent(to, &event);
}

TEST_F(DrawTest, ARightClickAsksForInformation) {
    askMenu(client(), {7, 8});
    EXPECT_EQ(heard, (std::vector<Heard>{{INFO_EVENT, 0, 7, 8}}));
    heard.clear();
    QWidget* rows = find<QListView>("lst")->viewport();
    QTest::mouseClick(rows, Qt::RightButton, {}, {4, 4});
    EXPECT_EQ(GetListIndex(in(103)).value, 1) << "the row that it meets is selected first";
    askMenu(rows, {4, 4});
    const QPoint at = rows->mapTo(client(), QPoint(4, 4));
    EXPECT_EQ(heard, (std::vector<Heard>{{INFO_EVENT, 103, at.x(), at.y()}}))
        << "once, though nothing handles it";
    heard.clear();
    auto* line = find<QWidget>("edt");
    line->setFocus();
    answer = [](int event, const Object&) { return event == INFO_EVENT; };
    askMenu(line, {1, 1}, QContextMenuEvent::Keyboard);
    EXPECT_EQ(heard.size(), 1U);
    EXPECT_EQ(heard[0].control, 109);
    EXPECT_EQ(QApplication::activePopupWidget(), nullptr) << "handled, so it has no menu";
}

TEST_F(DrawTest, AHandledPressDoesNotReachTheControl) {
    int commands = 0;
    answer = [&](int event, const Object&) {
        commands += event == COMMAND_EVENT;
        return event == MOUSEDOWN_EVENT;
    };
    auto* button = find<QPushButton>("ok");
    QTest::mouseClick(button, Qt::LeftButton);
    EXPECT_EQ(commands, 0);
    answer = [&](int event, const Object&) {
        commands += event == COMMAND_EVENT;
        return false;
    };
    QTest::mouseClick(button, Qt::LeftButton);
    EXPECT_EQ(commands, 1);
}

TEST_F(DrawTest, APressMayUnloadItsWindow) {
    answer = [](int event, const Object&) {
        if (event == MOUSEDOWN_EVENT) static_cast<void>(Unload(Draw));
        return false;
    };
    QTest::mouseClick(find<QPushButton>("ok"), Qt::LeftButton);
    settle();
    EXPECT_FALSE(IsLoaded(Draw));
}

TEST_F(DrawTest, AnEditWindowKeepsItsOwnMenu) {
    ASSERT_EQ(Load(Code), Ok);
    Show(Code, false);
    settle();
    QWidget* text = nullptr;
    for (QWidget* widget : top(Code)->findChildren<QWidget*>())
        if (widget->inherits("QsciScintillaBase")) text = widget;
    ASSERT_NE(text, nullptr);
    auto* area = static_cast<QAbstractScrollArea*>(text)->viewport();
    QTest::mouseClick(area, Qt::LeftButton, {}, {9, 9});
    ASSERT_FALSE(heard.empty());
    EXPECT_EQ(heard[0], (Heard{MOUSEDOWN_EVENT, 0, 9, 9}));
    heard.clear();
    QTimer::singleShot(0, [] {
        if (QWidget* menu = QApplication::activePopupWidget(); menu != nullptr) menu->close();
    });
    askMenu(area, {9, 9});
    EXPECT_TRUE(heard.empty());
}

TEST_F(DrawTest, ChoosersTakeAndGiveTheirValues) {
    const auto answering = [](const std::string& text) {
        QTimer::singleShot(0, [text] {
            ASSERT_NE(view().asking(), nullptr);
            EXPECT_TRUE(view().answer(text));
        });
    };
    const auto accepting = [] {
        QTimer::singleShot(0, [] {
            QWidget* box = QApplication::activeModalWidget();
            ASSERT_NE(box, nullptr);
            QMetaObject::invokeMethod(box, "accept");
        });
    };
    answering("0x102030");
    EXPECT_EQ(ColourDialog(Draw, 5).value, 0x102030);
    answering("");
    EXPECT_EQ(ColourDialog(Draw, 5).value, 5) << "cancelled";
    answering("DejaVu Sans\t17\tbi");
    EXPECT_EQ(FontDialog(Draw, {"DejaVu Sans Mono", 9, false, false}).value,
              (Font{"DejaVu Sans", 17, true, true}));
    for (const char* family : {"DejaVu Sans", "DejaVu Sans Mono", "DejaVu Serif"}) {
        for (const bool bold : {false, true}) {
            for (const bool italic : {false, true}) {
                const Font font{family, 12, bold, italic};
                answering(std::string(family) + "\t12\t" + (bold ? "b" : "") + (italic ? "i" : ""));
                EXPECT_EQ(FontDialog(Draw, {}).value, font) << family << bold << italic;
                accepting();
                EXPECT_EQ(FontDialog(Draw, font).value, font)
                    << "as it is offered: " << family << bold << italic;
            }
        }
    }
    answering("");
    EXPECT_EQ(FontDialog(Draw, {"Own", 9, false, true}).value, (Font{"Own", 9, false, true}));
    answering("Print to file\tselection\t2\t3\t4");
    const PrintChoice choice = PrintDialog(Draw, PRINT_SELECTION).value;
    EXPECT_EQ(GetName(choice.printer).value, "Print to file");
    EXPECT_EQ(choice.flags, PRINT_SELECTION);
    EXPECT_EQ(choice.from * 100 + choice.to * 10 + choice.copies, 234);
    answering("Print to file\tselection\t\t\t");
    EXPECT_EQ(PrintDialog(Draw, 0).value.flags, 0);
    answering("");
    EXPECT_TRUE(PrintDialog(Draw, 0).value.printer.empty());
}

TEST_F(DrawTest, PostedEventsComeInOrderFromEveryLoop) {
    PostMessage(Draw, INFO_EVENT, 1);
    PostMessage(in(101), DBLCLICK_EVENT, 2);
    EXPECT_TRUE(heard.empty()) << "not at once";
    for (int i = 0; i < 100 && heard.size() < 2; ++i) DoEvents();
    EXPECT_EQ(heard, (std::vector<Heard>{{INFO_EVENT, 0, 1, 0}, {DBLCLICK_EVENT, 101, 2, 0}}));
    heard.clear();
    // A modal loop hears them too, and they may end it.
    answer = [](int event, const Object&) {
        if (event == INFO_EVENT) Hide(Draw);
        return true;
    };
    Hide(Draw);
    PostMessage(Draw, INFO_EVENT, 3);
    Show(Draw, true);
    EXPECT_EQ(heard, (std::vector<Heard>{{INFO_EVENT, 0, 3, 0}}));
    answer = nullptr;
}

TEST_F(DrawTest, TheDesktopTellsItsScreensAndTheSizeOfIcons) {
    const Desktop desktop = DesktopInfo();
    EXPECT_EQ(desktop.monitors, QGuiApplication::screens().size());
    EXPECT_EQ(desktop.screen.w, QGuiApplication::primaryScreen()->geometry().width());
    EXPECT_EQ(desktop.screen.h, QGuiApplication::primaryScreen()->geometry().height());
    EXPECT_GE(desktop.screen.h, ScreenSize().h);
    EXPECT_GT(desktop.iconSize, 8);
}

TEST_F(DrawTest, TheDesktopsClipboardIsReachedByItsObject) {
    SetText(Sysclipboard, "copied \xC3\xA9");
    EXPECT_EQ(GetText(Sysclipboard).value, "copied \xC3\xA9");
    QGuiApplication::clipboard()->setText(QStringLiteral("from elsewhere"));
    EXPECT_EQ(GetText(Sysclipboard).value, "from elsewhere");
    QGuiApplication::clipboard()->setImage(QImage(4, 4, QImage::Format_RGB32));
    EXPECT_EQ(GetText(Sysclipboard).value, "");
    QGuiApplication::clipboard()->clear();
    EXPECT_EQ(GetText(Sysclipboard).value, "");
}

TEST_F(DrawTest, TheClipboardKeepsAnyBytesOfThisProgram) {
    const std::string odd("a\xFF\xC3\0z\r\n\n", 8);
    SetText(Sysclipboard, odd);
    EXPECT_EQ(GetText(Sysclipboard).value, odd);
    // Other programs get a text, whose lines end with LF.
    EXPECT_EQ(QGuiApplication::clipboard()->text(), QString::fromLatin1("a\xFF\xC3\0z\n\n", 7));
}

TEST_F(DrawTest, ForeignBytesThatAreNoTextDoNoHarm) {
    auto* data = new QMimeData;
    data->setData(QStringLiteral("text/plain"), QByteArray("a\xFF\xC3", 3));
    QGuiApplication::clipboard()->setMimeData(data);
    EXPECT_EQ(GetText(Sysclipboard).value.substr(0, 1), "a");
}

TEST_F(DrawTest, AHundredMillionBytesOnTheClipboardTakeLessThanASecond) {
    const std::string large(100000000, 'x');
    QElapsedTimer clock;
    clock.start();
    QGuiApplication::clipboard()->setText(QString(100000000, u'x'));
    clock.start();
    EXPECT_EQ(GetText(Sysclipboard).value.size(), large.size());
    EXPECT_LT(clock.elapsed(), 1000);
    SetText(Sysclipboard, large);
    clock.start();
    EXPECT_EQ(GetText(Sysclipboard).value.size(), large.size());
    EXPECT_LT(clock.elapsed(), 1000);
    QGuiApplication::clipboard()->clear();
}

}  // namespace

}  // namespace tarn::platform
