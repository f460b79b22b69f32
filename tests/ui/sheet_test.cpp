// SPDX-License-Identifier: Apache-2.0
//
// The property sheet with real widgets: what is typed, the keys that step and choose, and what is told.
#include "kernel/run/runtime.h"
#include "library/designer/propedit_sheet.h"
#include "library/system/system.h"
#include "platform/model/model.h"
#include "platform/model/view.h"
#include "platform/resources/resource.h"
#include "support/places.h"
#include "ui/typing.h"
#include "ui/window_fixture.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QCheckBox>
#include <QElapsedTimer>
#include <QLineEdit>
#include <QListView>
#include <QPushButton>
#include <QScrollBar>
#include <QTest>
#include <QToolButton>

#include <algorithm>
#include <cmath>
#include <deque>
#include <functional>
#include <set>
#include <string>

namespace tarn {
namespace {

class SheetTest : public platform::WindowTest {
protected:
    std::deque<std::function<void()>> doings;  // what the user does in turn, each when a window waits

    void SetUp() override {
        ClearError();
        platform::SetApplicationResources(BINARY_DIR "/ide.rcx");
        platform::view().setIdle([this] {
            if (doings.empty()) return leave();
            const auto next = doings.front();
            doings.pop_front();
            next();
        });
    }
    void TearDown() override {
        platform::view().setIdle({});
        EXPECT_TRUE(doings.empty());
        EXPECT_EQ(ErrorCell(), 0) << ErrorDetails();
        WindowTest::TearDown();
    }

    // A window that nobody closes fails the test and does not hang it.
    void leave() {
        const platform::Window* const waiting = platform::topModal();
        if (waiting == nullptr || ++waited < 1000) return;
        ADD_FAILURE() << waiting->name << " still waits";
        Unload(waiting->object);
    }
    int waited = 0;

    static QWidget* top(const char* name) { return shownWindow(name); }
    template <class Widget>
    static Widget* find(const char* window, const char* name) {
        Widget* found = shownWidget<Widget>(window, name);
        EXPECT_NE(found, nullptr) << window << " " << name;
        return found;
    }
    static QLineEdit* edit(const char* name) { return find<QLineEdit>("propertiesdlg", name); }
    static void press(QWidget* to, int key, const QString& text = {}) {
        ASSERT_NE(to, nullptr);
        if (to->focusPolicy() != Qt::NoFocus) to->setFocus();
        sendKey(to, key, Qt::NoModifier, text);
    }
    // At what has the keyboard in the window.
    static void pressIn(const char* window, int key) {
        QWidget* const frame = top(window);
        ASSERT_NE(frame, nullptr) << window;
        press(frame->focusWidget() != nullptr ? frame->focusWidget() : frame, key);
    }
    static void type(QLineEdit* to, const char* text) {
        to->selectAll();
        for (const char* c = text; *c != '\0'; ++c) press(to, 0, QString(QLatin1Char(*c)));
    }

    std::string
        names = "NAME\nSIDE\nFLAGS\nCOLOUR\nSIZE\n",
        options =
            "NAME(1:8)\nENUM(Left,Right,Centre)\nINTEGER{1-\"One\",2-\"Two\"}\nCOLOUR(0:15)\nINTEGER(0:9)\n",
        values = "ok\n1\n1\n0x0000FF\n5\n";
    bool show() { return PROPERTIESDIALOG("ok:Pushbutton", "help.htm", "Topic", names, options, values); }
};

// As eyes see it, from 1 for none to 21.
double contrast(const QColor& a, const QColor& b) {
    const auto light = [](const QColor& colour) {
        const auto part = [](double c) {
            return c <= 0.03928 ? c / 12.92 : std::pow((c + 0.055) / 1.055, 2.4);
        };
        return 0.2126 * part(colour.redF()) + 0.7152 * part(colour.greenF()) + 0.0722 * part(colour.blueF());
    };
    const double one = light(a) + 0.05, other = light(b) + 0.05;
    return std::max(one, other) / std::min(one, other);
}

void expectReadable(const QLineEdit* edit) {
    ASSERT_NE(edit, nullptr);
    EXPECT_FALSE(edit->isEnabled());
    const QPalette colours = edit->palette();
    EXPECT_GE(contrast(colours.color(QPalette::Disabled, QPalette::Text),
                       colours.color(QPalette::Disabled, QPalette::Base)),
              4.5);
}

TEST_F(SheetTest, AValueThatCannotBeEditedCanBeReadInLightAndDark) {
    const QPalette before = QApplication::palette();
    options = "CONST\nENUM(Left,Right,Centre)\nINTEGER{1-\"One\",2-\"Two\"}\nCOLOUR(0:15)\nINTEGER(0:9)\n";
    doings = {
        [] { expectReadable(edit("edtvalue1")); },
        [] { QApplication::setPalette(QPalette(QColor(49, 54, 59), QColor(49, 54, 59))); },
        [] { expectReadable(edit("edtvalue1")); },
        [&before] { QApplication::setPalette(before); },
        [] { expectReadable(edit("edtvalue1")); },
        [] { pressIn("propertiesdlg", Qt::Key_Escape); },
    };
    EXPECT_FALSE(show());
}

TEST_F(SheetTest, ValuesAreTypedSteppedCheckedAndTaken) {
    doings = {
        [] {
            type(edit("edtvalue1"), "longer_than_8");
            EXPECT_EQ(edit("edtvalue1")->text().toStdString(), "longer_t");
            press(edit("edtvalue2"), Qt::Key_Down);
            EXPECT_EQ(edit("edtvalue2")->text().toStdString(), "2-Centre");
            press(edit("edtvalue2"), Qt::Key_Down);
            press(edit("edtvalue2"), Qt::Key_Up);
            press(edit("edtvalue2"), Qt::Key_Up);
            EXPECT_EQ(edit("edtvalue2")->text().toStdString(), "1-Right");
            type(edit("edtvalue5"), "17");
            press(edit("edtvalue5"), Qt::Key_Return);
        },
        [] {
            const platform::Question* const told = platform::view().asking();
            ASSERT_NE(told, nullptr);
            EXPECT_EQ(told->text, "There is a problem with the 'SIZE' property.\nA number should be "
                                  "used.\n(between 0 and 9)\n");
            EXPECT_TRUE(platform::view().answer("OK"));
        },
        [] {
            ASSERT_NE(top("propertiesdlg"), nullptr);
            type(edit("edtvalue5"), "7");
            press(edit("edtvalue5"), Qt::Key_Return);
        },
    };
    EXPECT_TRUE(show());
    EXPECT_EQ(values, "longer_t\n1\n1\n0x0000FF\n7\n");
}

TEST_F(SheetTest, ChoicesAreMadeInTheirWindows) {
    doings = {
        [] { press(edit("edtvalue2"), Qt::Key_F4); },
        [] {
            auto* list = find<QListView>("exclusiveboxdlg", "lstoptions");
            EXPECT_FALSE(list->verticalScrollBar()->isVisible());
            press(list, Qt::Key_Down);
            press(list, Qt::Key_Return);
        },
        [] {
            EXPECT_EQ(edit("edtvalue2")->text().toStdString(), "2-Centre");
            QTest::mouseClick(find<QToolButton>("propertiesdlg", "btndrop3"), Qt::LeftButton);
            EXPECT_EQ(top("propertiesdlg")->focusWidget(), edit("edtvalue2"))
                << "the keyboard stays in the values";
        },
        [] {
            find<QCheckBox>("inclusiveboxdlg", "chkoption2")->click();
            press(find<QCheckBox>("inclusiveboxdlg", "chkoption2"), Qt::Key_Return);
        },
        [] { find<QToolButton>("propertiesdlg", "btndrop4")->click(); },
        [] { pressIn("colorboxdlg", Qt::Key_Up); },
        [] { pressIn("colorboxdlg", Qt::Key_Return); },
        [] {
            EXPECT_EQ(edit("edtvalue4")->text().toStdString(), "0x000080");
            find<QToolButton>("propertiesdlg", "btndrop4")->click();
        },
        [] { find<QToolButton>("colorboxdlg", "btncolour16")->click(); },
        [] { find<QPushButton>("propertiesdlg", "idok")->click(); },
    };
    EXPECT_TRUE(show());
    EXPECT_EQ(values, "ok\n2\n3\n0xFFFFFF\n5\n");
}

TEST_F(SheetTest, EscapeLeavesEachWindow) {
    doings = {
        [] { press(edit("edtvalue2"), Qt::Key_F4); },
        [] { press(find<QListView>("exclusiveboxdlg", "lstoptions"), Qt::Key_Escape); },
        [] { press(edit("edtvalue3"), Qt::Key_F4); },
        [] { press(find<QCheckBox>("inclusiveboxdlg", "chkoption1"), Qt::Key_Escape); },
        [] { press(edit("edtvalue4"), Qt::Key_F4); },
        [] { pressIn("colorboxdlg", Qt::Key_Escape); },
        [] { press(edit("edtvalue1"), Qt::Key_Escape); },
    };
    const std::string before = values;
    EXPECT_FALSE(show());
    EXPECT_EQ(values, before);
}

TEST_F(SheetTest, RowsAreNamedReachedInOrderAndLineUp) {
    doings = {[] {
        EXPECT_EQ(edit("edtvalue1")->accessibleName().toStdString(), "NAME");
        EXPECT_EQ(edit("edtvalue5")->accessibleName().toStdString(), "SIZE");
        EXPECT_EQ(find<QToolButton>("propertiesdlg", "btndrop2")->accessibleName().toStdString(),
                  "Choose (F4)");
        EXPECT_EQ(top("propertiesdlg")->focusWidget(), edit("edtvalue1"));
        for (int row = 2; row <= 5; ++row) {
            QTest::keyClick(top("propertiesdlg")->focusWidget(), Qt::Key_Tab);
            EXPECT_EQ(top("propertiesdlg")->focusWidget()->objectName().toStdString(), "edtvalue" + STR(row));
        }
        std::set<QChar> marks;
        for (const QPushButton* button : top("propertiesdlg")->findChildren<QPushButton*>()) {
            const qsizetype at = button->text().indexOf(u'&');
            EXPECT_TRUE(at < 0 || marks.insert(button->text()[at + 1].toLower()).second);
        }
        const QWidget* label = top("propertiesdlg")->findChild<QWidget*>(QStringLiteral("lblname3"));
        const QWidget *value = edit("edtvalue3"), *button = find<QToolButton>("propertiesdlg", "btndrop3");
        EXPECT_EQ(label->y(), value->y());
        EXPECT_EQ(label->height(), value->height());
        EXPECT_EQ(button->y(), value->y());
        EXPECT_LT(label->geometry().right(), value->x());
        EXPECT_LT(value->geometry().right(), button->x());
        press(edit("edtvalue1"), Qt::Key_Escape);
    }};
    EXPECT_FALSE(show());
}

TEST_F(SheetTest, AFullSheetOpensAtOnce) {
    names = options = values = "";
    for (int i = 0; i < 32; ++i) {
        names += "P\n";
        options += "ENUM(a,b,c)\n";
        values += "1\n";
    }
    QElapsedTimer clock;
    clock.start();
    doings = {[&] {
        RecordProperty("milliseconds", static_cast<int>(clock.elapsed()));
        EXPECT_LT(clock.elapsed(), 1000);
        press(edit("edtvalue32"), Qt::Key_Escape);
    }};
    EXPECT_FALSE(show());
}

}  // namespace
}  // namespace tarn
