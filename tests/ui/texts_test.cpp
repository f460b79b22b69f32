// SPDX-License-Identifier: Apache-2.0
//
// Texts, rows and small windows under what users do to them: limits, line ends, long lists, stray clicks, and
// what a screen reader is told.
#include "platform/model/model.h"
#include "ui/typing.h"
#include "ui/window_fixture.h"

#include <QAbstractItemView>
#include <QAccessible>
#include <QApplication>
#include <QClipboard>
#include <QElapsedTimer>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QTest>
#include <QTimer>

#include <string>

namespace tarn::platform {

namespace {

using namespace std::string_literals;

constexpr char Resources[] = R"(
Form DIALOG
  CAPTION="Form"
  POSITION=0 0 220 160
  MENU=FormMenu
  Edit edtname 301
    POSITION=70 4 100 12
  Edit edtlines 302
    POSITION=70 20 100 30
    MULTILINE=1
  Combobox cmbedit 304
    POSITION=70 70 100 40
  Iconlist lstrows 305
    POSITION=4 20 60 80
    ROWS="a\nb\nc"
    USETABSTOPS=1
  Checkbox chkon 306
    POSITION=4 104 60 10
    CAPTION="&On"
END
FormMenu MENU
  Menuitem
    POSITION=1
    CAPTION="&Edit"
  Menuitem edit_delete 101
    POSITION=2
    CAPTION="&Delete"
    SHORTCUT="Del"
END
Code EDITWINDOW
  CAPTION="Code"
  POSITION=10 20 200 100
END
)";

int doubles = 0, commands = 0;
bool listen(const Object&, int event, const Object& control, int) {
    if (event == DBLCLICK_EVENT) ++doubles;
    if (event == COMMAND_EVENT && control.number() == 101) ++commands;
    return event == CLOSE_EVENT;
}

const Object Form("Form"), Code("Code");
const Object Line("Form", 301), Lines("Form", 302), Combo("Form", 304), List("Form", 305), Check("Form", 306);

class TextsTest : public WindowTest {
protected:
    void SetUp() override {
        ASSERT_EQ(useResources(folder, Resources), "");
        ASSERT_TRUE(open({Form, Code}, listen));
        doubles = commands = 0;
    }
    template <class Widget>
    static Widget* find(const char* name) {
        return shownWidget<Widget>("Form", name);
    }
    static void type(QWidget* to, const QString& text) {
        sendText(to, text);
        DoEvents();
    }
    static QWidget* editor() { return shownEditor("Code"); }
};

TEST_F(TextsTest, ALongLineStaysWholeWhenTheUserTypes) {
    const std::string text(100000, 'x');
    for (const Object& object : {Line, Combo}) {
        SetText(object, text);
        if (object == Combo) SetCombotext(object, text);
        auto* line =
            object == Line ? find<QLineEdit>("edtname") : find<QWidget>("cmbedit")->findChild<QLineEdit*>();
        ASSERT_NE(line, nullptr);
        line->setFocus();
        line->end(false);
        type(line, QStringLiteral("y"));
        EXPECT_EQ(line->text().size(), 100001);
    }
    EXPECT_EQ(GetText(Line).value, text + "y");
}

TEST_F(TextsTest, TheLimitOfALineCountsBytes) {
    auto* line = find<QLineEdit>("edtname");
    SetMaxLength(Line, 4);
    SetText(Line, "");
    line->setFocus();
    type(line, QStringLiteral("\u00e9\u00e9x"));
    EXPECT_EQ(GetText(Line).value, "\xC3\xA9\xC3\xA9");
    SetText(Line, "longer than that");
    EXPECT_EQ(GetText(Line).value, "longer than that") << "the program may";
    line->end(false);
    type(line, QStringLiteral("x"));
    EXPECT_EQ(GetText(Line).value, "longer than that");
    QTest::keyClick(line, Qt::Key_Backspace);
    EXPECT_EQ(GetText(Line).value, "longer than tha");
    SetText(Line, "\xE9\xE9\xE9");
    line->end(false);
    type(line, QStringLiteral("\u00e8\u00e8"));
    EXPECT_EQ(GetText(Line).value, "\xE9\xE9\xE9\xE8") << "a byte for each character of Latin-1";
    SetMaxLength(Line, 0);
    type(line, QStringLiteral("abc"));
    EXPECT_EQ(GetText(Line).value, "\xE9\xE9\xE9\xE8"
                                   "abc");
}

TEST_F(TextsTest, TheLimitHoldsInSeveralLines) {
    auto* lines = find<QPlainTextEdit>("edtlines");
    SetMaxLength(Lines, 6);
    SetText(Lines, "a\r\nb");
    lines->setFocus();
    lines->moveCursor(QTextCursor::End);
    type(lines, QStringLiteral("\n\n"));
    EXPECT_EQ(GetText(Lines).value, "a\r\nb\r\n");
    type(lines, QStringLiteral("x"));
    EXPECT_EQ(GetText(Lines).value, "a\r\nb\r\n");
    QApplication::clipboard()->setText(QStringLiteral("pasted"));
    lines->paste();
    EXPECT_EQ(GetText(Lines).value, "a\r\nb\r\n");
    lines->selectAll();
    lines->paste();
    EXPECT_EQ(GetText(Lines).value, "pasted");
    SetText(Lines, "far too long");
    EXPECT_EQ(GetText(Lines).value, "far too long");
}

TEST_F(TextsTest, TheLimitHoldsInTheEditWindow) {
    QWidget* text = editor();
    ASSERT_NE(text, nullptr);
    SetMaxLength(Code, 5);
    SetText(Code, "");
    type(text, QStringLiteral("abc\nde"));
    EXPECT_EQ(GetText(Code).value, "abc\nd");
    QApplication::clipboard()->setText(QStringLiteral("123456"));
    SetSelection(Code, 1, 2);
    QTest::keyClick(text, Qt::Key_V, Qt::ControlModifier);
    EXPECT_EQ(GetText(Code).value, "abc\nd") << "what was selected stays";
    QApplication::clipboard()->setText(QStringLiteral("12"));
    QTest::keyClick(text, Qt::Key_V, Qt::ControlModifier);
    EXPECT_EQ(GetText(Code).value, "12c\nd");
    SetSelText(Code, "by the program");
    EXPECT_EQ(GetText(Code).value, "12by the programc\nd");
    SetMaxLength(Code, 0);
    type(text, QStringLiteral("z"));
    EXPECT_EQ(GetText(Code).value, "12by the programzc\nd");
}

TEST_F(TextsTest, LinesThatNobodyChangedKeepTheirBytes) {
    struct Case {
        std::string before;
        int at;  // 1-based byte
        QString typed;
        std::string after;
    };
    const Case cases[] = {
        {"a\r\nb\nc", 6, QStringLiteral("x"), "a\r\nb\nxc"},
        {"a\r\nb\nc", 1, QStringLiteral("x"), "xa\r\nb\nc"},
        {"a\r\nb\r\n", 2, QStringLiteral("\n"), "a\r\n\r\nb\r\n"},
        {"a\r\nb\n", 6, QStringLiteral("\n"), "a\r\nb\n\n"},
        {"a\nb\n", 2, QStringLiteral("\n"), "a\n\nb\n"},
        {"a\rb", 4, QStringLiteral("x"), "a\rbx"},
        {"1\xC2\xA0"
         "2\nz",
         6, QStringLiteral("x"),
         "1\xC2\xA0"
         "2\nxz"},
        {"\xE2\x80\xA8"
         "a",
         5, QStringLiteral("x"),
         "\xE2\x80\xA8"
         "ax"},
        {"\xEF\xBB\xBF"
         "a\r\n",
         4, QStringLiteral("x"),
         "\xEF\xBB\xBF"
         "xa\r\n"},
        {"\xE9\r\n\xE9\n", 2, QStringLiteral("\u00e8"), "\xE9\xE8\r\n\xE9\n"},
        {"\xE9\r\n\xE9\n", 2, QStringLiteral("\u20ac"), "\xC3\xA9\xE2\x82\xAC\r\n\xC3\xA9\n"},
        {"\xF0\x9F\x98\x80\r\nb\n", 5, QStringLiteral("x"), "\xF0\x9F\x98\x80x\r\nb\n"},
    };
    auto* lines = find<QPlainTextEdit>("edtlines");
    lines->setFocus();
    for (const auto& [before, at, typed, after] : cases) {
        SetText(Lines, before);
        SetSelection(Lines, at, 0);
        EXPECT_EQ(GetSelection(Lines).value.start, at) << before;
        type(lines, typed);
        EXPECT_EQ(GetText(Lines).value, after) << before;
    }
    SetText(Lines, "a\r\nb\nc");
    SetSelection(Lines, 1, 6);
    QTest::keyClick(lines, Qt::Key_Delete);
    EXPECT_EQ(GetText(Lines).value, "");
}

TEST_F(TextsTest, ManyRowsAreAddedInNoTime) {
    QElapsedTimer clock;
    clock.start();
    for (int i = 0; i < 3000; ++i) AddItem(List, "row\t" + std::to_string(i) + "\tmore");
    SetListIndex(List, 2500);
    DoEvents();
    EXPECT_LT(clock.elapsed(), 1500);
    auto* list = find<QAbstractItemView>("lstrows");
    EXPECT_EQ(list->model()->rowCount(), 3003);
    EXPECT_EQ(list->currentIndex().row(), 2499);
}

TEST_F(TextsTest, AKeyMeetsTheRowsAsTheyAre) {
    auto* list = find<QAbstractItemView>("lstrows");
    list->setFocus();
    SetListIndex(List, 3);
    AddItem(List, "d");
    QTest::keyClick(list, Qt::Key_Down);
    EXPECT_EQ(GetListIndex(List).value, 4);
}

TEST_F(TextsTest, OnlyRowsAreDoubleClicked) {
    auto* list = find<QAbstractItemView>("lstrows");
    const QRect last = list->visualRect(list->model()->index(2, 0));
    QTest::mouseDClick(list->viewport(), Qt::LeftButton, {}, last.center() + QPoint(0, 2 * last.height()));
    EXPECT_EQ(doubles, 0);
    QTest::mouseDClick(list->viewport(), Qt::LeftButton, {}, last.center());
    EXPECT_EQ(doubles, 1);
}

TEST_F(TextsTest, CtrlDoesNotUnselectARow) {
    auto* list = find<QAbstractItemView>("lstrows");
    const QPoint at = list->visualRect(list->model()->index(1, 0)).center();
    QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, at);
    const auto holds = [&] {
        const auto rows = list->selectionModel()->selectedRows();
        return GetListIndex(List).value == 2 && rows.size() == 1 && rows[0].row() == 1;
    };
    EXPECT_TRUE(holds());
    QTest::mouseClick(list->viewport(), Qt::LeftButton, Qt::ControlModifier, at);
    EXPECT_TRUE(holds());
    QTest::keyClick(list, Qt::Key_Space, Qt::ControlModifier);
    EXPECT_TRUE(holds());
}

TEST_F(TextsTest, PunctuationIsNoNamedKey) {
    auto* list = find<QAbstractItemView>("lstrows");
    list->setFocus();
    for (const int key :
         {Qt::Key_Period, Qt::Key_Minus, Qt::Key_Percent, Qt::Key_BraceLeft, Qt::Key_ParenLeft})
        QTest::keyClick(list, static_cast<Qt::Key>(key));
    EXPECT_EQ(commands, 0);
    QTest::keyClick(list, Qt::Key_Delete);
    EXPECT_EQ(commands, 1);
}

TEST_F(TextsTest, AScreenReaderReadsTheCaptionOfToday) {
    SetCaption(Check, "&Off");
    const QString name =
        QAccessible::queryAccessibleInterface(find<QWidget>("chkon"))->text(QAccessible::Name);
    EXPECT_EQ(name.toStdString(), "Off");
}

// How many pixels of a box's text are drawn.
int inkOfBox(const std::string& text) {
    int ink = 0;
    QTimer::singleShot(0, [&] {
        QWidget* box = QApplication::activeModalWidget();
        const QImage seen = box->findChild<QWidget*>("text")->grab().toImage();
        const QRgb paper = seen.pixel(0, 0);
        for (int y = 0; y < seen.height(); ++y)
            for (int x = 0; x < seen.width(); ++x) ink += seen.pixel(x, y) != paper;
        QTest::keyClick(box, Qt::Key_Escape);
    });
    MsgBox("t", text, "OK\n");
    return ink;
}

TEST_F(TextsTest, ALineOfABoxIsShownWholeBehindATab) {
    const std::string line(20, 'H');
    const int whole = inkOfBox(line);
    EXPECT_GT(whole, 100);
    EXPECT_GE(inkOfBox("\t" + line), whole);
    EXPECT_GE(inkOfBox("x\n\t" + line) - inkOfBox("x"), whole);
}

TEST_F(TextsTest, ABoxIsDescribedByItsText) {
    std::string told;
    QTimer::singleShot(0, [&] {
        QWidget* box = QApplication::activeModalWidget();
        told = QAccessible::queryAccessibleInterface(box)->text(QAccessible::Description).toStdString();
        QTest::keyClick(box, Qt::Key_Escape);
    });
    MsgBox("t", "what it says", "OK\n");
    EXPECT_EQ(told, "what it says");
}

TEST_F(TextsTest, ToolProgressIsNamedAndStopsWithEscAndReturn) {
    for (const int key : {Qt::Key_Escape, Qt::Key_Return}) {
        ShowToolProgress("Building...");
        WaitEvents(400, false);
        QWidget* const window = shownWindow("toolprogress");
        ASSERT_NE(window, nullptr);
        EXPECT_EQ(window->windowTitle().toStdString(), "Running ...");
        EXPECT_FALSE(window->findChild<QProgressBar*>()->accessibleName().isEmpty());
        QTest::keyClick(window->findChild<QPushButton*>(), static_cast<Qt::Key>(key));
        EXPECT_TRUE(ToolStopPressed());
        ShowToolProgress("");
    }
}

}  // namespace

}  // namespace tarn::platform
