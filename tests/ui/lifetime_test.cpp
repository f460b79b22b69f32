// SPDX-License-Identifier: Apache-2.0
//
// What happens to windows at awkward moments: events after they were unloaded, modality that comes late,
// sizes while they are hidden, timers that were stopped.
#include "platform/model/model.h"
#include "platform/model/view.h"
#include "ui/window_fixture.h"

#include <QAccessible>
#include <QApplication>
#include <QCloseEvent>
#include <QLabel>
#include <QPointer>
#include <QResizeEvent>
#include <QTest>
#include <QTimer>

#include <algorithm>
#include <string>

namespace tarn::platform {
namespace {

constexpr char Resources[] = R"(
Main DIALOG
  CAPTION="Main"
  POSITION=0 0 320 40
  BORDERSTYLE=2
  MENU=MainMenu
  Edit edtmain 201
    POSITION=2 1 100 12
END
MainMenu MENU
  Menuitem
    POSITION=1
    CAPTION="&File"
  Menuitem file_open 101
    POSITION=2
    CAPTION="&Open..."
END
Form DIALOG
  CAPTION="Form"
  POSITION=20 20 120 60
  BORDERSTYLE=2
  Label lblname 300
    POSITION=4 4 60 10
    CAPTION="Before"
  Pushbutton btnok 301
    POSITION=4 30 60 14
    CAPTION="OK"
END
)";

const Object Main("Main"), Form("Form");
int ticks = 0, nested = 0, deepest = 0;

bool ignore(const Object&, int, const Object&, int) {
    return false;
}

bool tick(const Object&, int event, const Object&, int) {
    if (event != TIMER_EVENT) return false;
    ticks++;
    deepest = std::max(deepest, ++nested);
    WaitEvents(60, false);
    nested--;
    return true;
}

class LifetimeTest : public WindowTest {
protected:
    void SetUp() override {
        ASSERT_EQ(useResources(folder, Resources), "");
        for (const Object& window : {Main, Form}) hear(window, ignore);
        ticks = nested = deepest = 0;
    }
    static void open(const Object& window) {
        ASSERT_EQ(Load(window), Ok);
        ASSERT_EQ(Show(window, false).code, Ok);
        DoEvents();
    }
    static QWidget* frame(const Object& window) { return shownWindow(window.window()); }
};

TEST_F(LifetimeTest, AFrameOfAnUnloadedWindowHearsNothing) {
    open(Main);
    open(Form);
    const QPointer<QWidget> left = frame(Form);
    ASSERT_FALSE(left.isNull());
    Unload(Form);
    EXPECT_FALSE(IsLoaded(Form));
    open(Main);  // the model forgets what was unloaded once no event runs
    if (!left.isNull()) {
        QResizeEvent resize(QSize(50, 50), QSize(10, 10));
        QCloseEvent close;
        QApplication::sendEvent(left, &resize);
        QApplication::sendEvent(left, &close);
        QTest::keyClick(left, Qt::Key_F1);
    }
    DoEvents();
    EXPECT_TRUE(IsLoaded(Main));
}

TEST_F(LifetimeTest, AVisibleWindowCanBecomeModal) {
    open(Main);
    open(Form);
    bool checked = false;
    QTimer::singleShot(0, [&] {
        EXPECT_EQ(frame(Form)->windowModality(), Qt::ApplicationModal);
        checked = true;
        Hide(Form);
    });
    Show(Form, true);
    EXPECT_TRUE(checked);
}

TEST_F(LifetimeTest, AModalWindowStaysAboveOneThatStaysAboveAll) {
    for (const bool above : {true, false}) {
        ASSERT_EQ(Load(Main), Ok);
        findWindow(Main)->onTop = above;
        ASSERT_EQ(Show(Main, false).code, Ok);
        ASSERT_EQ(Load(Form), Ok);
        bool checked = false;
        QTimer::singleShot(0, [&] {
            EXPECT_EQ(frame(Form)->windowFlags().testFlag(Qt::WindowStaysOnTopHint), above);
            checked = true;
            Hide(Form);
        });
        Show(Form, true);
        EXPECT_TRUE(checked);
        DestroyAllWindows();
        DoEvents();
    }
}

TEST_F(LifetimeTest, AWindowThatIsDrawnOnHearsOfOtherColoursAsOfAnotherSize) {
    static int heard;
    const QPalette before = QApplication::palette();
    open(Main);
    open(Form);
    StartGraph(Form);
    EndGraph(Form);
    for (const Object& window : {Main, Form})
        RegisterWindow(window, [](const Object& object, int event, const Object&, int) {
            if (event == RESIZE_EVENT) heard += object == Form ? 1 : 100;
            return false;
        });
    QTest::qWait(1100);  // the frame has settled
    heard = 0;
    QPalette dark = before;
    dark.setColor(QPalette::Window, Qt::black);
    QApplication::setPalette(dark);
    DoEvents();
    QTest::qWait(20);
    EXPECT_EQ(heard, 1);
    QApplication::setPalette(before);
    DoEvents();
}

TEST_F(LifetimeTest, AModalWindowCanBeAnsweredWhileTheProgramIsBusy) {
    open(Main);
    ASSERT_EQ(Load(Form), Ok);
    RegisterWindow(Form, [](const Object& window, int event, const Object&, int) {
        if (event == COMMAND_EVENT) Hide(window);
        return false;
    });
    SetBusy(true);
    QTimer::singleShot(50, [] {
        QTest::mouseClick(static_cast<QWidget*>(frame(Form)->findChild<QWidget*>("btnok")), Qt::LeftButton);
    });
    Show(Form, true);
    EXPECT_FALSE(findWindow(Form)->shown);
    EXPECT_TRUE(busy());
    SetBusy(false);
}

TEST_F(LifetimeTest, AStateSetWhileHiddenDoesNotShowTheWindow) {
    open(Main);
    ASSERT_EQ(Load(Form), Ok);
    SetMaxPosition(Form, Rect{0, 0, 500, 300});
    SetWindowState(Form, 2);
    DoEvents();
    EXPECT_EQ(frame(Form), nullptr);
    Show(Form, false);
    DoEvents();
    EXPECT_EQ(GetWindowState(Form).value, 2);
    EXPECT_EQ(frame(Form)->width(), 500);
}

TEST_F(LifetimeTest, TimersDoNotNestAndStopAtOnce) {
    open(Main);
    RegisterWindow(Main, tick);
    SetTimer(Main, 10);
    WaitEvents(200, false);
    EXPECT_GT(ticks, 0);
    EXPECT_EQ(deepest, 1);
    SetTimer(Main, 0);
    const int before = ticks;
    WaitEvents(50, false);
    EXPECT_EQ(ticks, before);
}

TEST_F(LifetimeTest, AChangedCaptionIsWhatAScreenReaderSays) {
    open(Main);
    open(Form);
    SetCaption(FindControl(Form, "lblname"), "After");
    const QWidget* label = frame(Form)->findChild<QWidget*>("lblname");
    QAccessibleInterface* said = QAccessible::queryAccessibleInterface(const_cast<QWidget*>(label));
    ASSERT_NE(said, nullptr);
    EXPECT_EQ(said->text(QAccessible::Name), QStringLiteral("After"));
}

}  // namespace
}  // namespace tarn::platform
