// SPDX-License-Identifier: Apache-2.0
//
// The events of the mouse with their places, choosers, posted events, the clipboard.
#include "ui/drawing_fixture.h"

#include "os/files.h"
#include "platform/model/view.h"
#include "platform/operations/dragging.h"
#include "platform/operations/printjob.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QClipboard>
#include <QContextMenuEvent>
#include <QElapsedTimer>
#include <QImage>
#include <QLabel>
#include <QListView>
#include <QMimeData>
#include <QPushButton>
#include <QScreen>
#include <QTest>
#include <QTimer>

#include <string>
#include <vector>

namespace tarn::platform {

namespace {

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
    QWidget* const text = shownEditor("Code");
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
