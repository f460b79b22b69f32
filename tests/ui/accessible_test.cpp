// SPDX-License-Identifier: Apache-2.0
//
// What a screen reader gets from the edit window: the text in any encoding, caret, selection, characters, words
// and lines, what a key changes, and all of it quickly at the end of a long text.
#include "ui/edit_fixture.h"

#include <QAccessible>
#include <QElapsedTimer>

#include <dlfcn.h>

#include <algorithm>
#include <cstdio>
#include <string>
#include <vector>

namespace tarn::platform::qt {

namespace {

using namespace std::string_literals;

std::vector<std::string> events;
bool counting = false;
qint64 told = 0;

void hear(QAccessibleEvent* event) {
    ++told;
    if (counting) return;
    switch (event->type()) {
    case QAccessible::TextInserted: {
        auto* one = static_cast<QAccessibleTextInsertEvent*>(event);
        events.push_back("+" + std::to_string(one->changePosition()) + " " +
                         one->textInserted().toStdString());
        break;
    }
    case QAccessible::TextRemoved: {
        auto* one = static_cast<QAccessibleTextRemoveEvent*>(event);
        events.push_back("-" + std::to_string(one->changePosition()) + " " +
                         one->textRemoved().toStdString());
        break;
    }
    case QAccessible::TextCaretMoved:
        events.push_back("caret " +
                         std::to_string(static_cast<QAccessibleTextCursorEvent*>(event)->cursorPosition()));
        break;
    case QAccessible::TextSelectionChanged: {
        auto* one = static_cast<QAccessibleTextSelectionEvent*>(event);
        events.push_back("marked " + std::to_string(one->selectionStart()) + " to " +
                         std::to_string(one->selectionEnd()));
        break;
    }
    default: break;
    }
}

// The toolkit tells nobody of changes until the platform says that a screen reader is there, and the platform
// of these tests never does; there is no public way to say it for it.
void setScreenReader(bool here) {
    void** const integration =
        static_cast<void**>(dlsym(RTLD_DEFAULT, "_ZN22QGuiApplicationPrivate20platform_integrationE"));
    const auto accessibility = reinterpret_cast<void* (*)(const void*)>(
        dlsym(RTLD_DEFAULT, "_ZNK20QPlatformIntegration13accessibilityEv"));
    const auto setActive = reinterpret_cast<void (*)(void*, bool)>(
        dlsym(RTLD_DEFAULT, "_ZN22QPlatformAccessibility9setActiveEb"));
    if (integration != nullptr && accessibility != nullptr && setActive != nullptr)
        setActive(accessibility(*integration), here);
}

class AccessibleTest : public EditAreaTest {
protected:
    void SetUp() override {
        ASSERT_NO_FATAL_FAILURE(EditAreaTest::SetUp());
        before = QAccessible::installUpdateHandler(hear);
        face = QAccessible::queryAccessibleInterface(area->textWidget());
        ASSERT_NE(face, nullptr);
        text = face->textInterface();
        ASSERT_NE(text, nullptr);
        setScreenReader(true);  // a screen reader comes when the window is there
        events.clear();
    }
    void TearDown() override {
        QAccessible::installUpdateHandler(before);
        setScreenReader(false);
    }
    void type(const QString& letters) {
        sendText(area->textWidget(), letters);
        QApplication::processEvents();
        area->textWidget()->grab();  // the control tells of the caret when it paints
    }
    std::string at(int offset, QAccessible::TextBoundaryType boundary, int* start = nullptr,
                   int* end = nullptr) {
        int from = -9, to = -9;
        const QString found = text->textAtOffset(offset, boundary, &from, &to);
        if (start != nullptr) *start = from;
        if (end != nullptr) *end = to;
        return found.toStdString();
    }

    QAccessibleInterface* face = nullptr;
    QAccessibleTextInterface* text = nullptr;
    QAccessible::UpdateHandler before = nullptr;
};

TEST_F(AccessibleTest, TextAndCaretCountUnits) {
    struct Case {
        const char* what;
        std::string bytes;
        QString units;
    };
    const Case cases[] = {
        {"empty", "", QString()},
        {"ascii", "one\ntwo\r\nthree", QStringLiteral("one\ntwo\r\nthree")},
        {"two bytes", "\xC3\xA9\n\xC3\xA9x", QString::fromUtf16(u"\u00E9\n\u00E9x")},
        {"four bytes", "a\xF0\x9F\x98\x80z", QString::fromUtf16(u"a\U0001F600z")},
        {"three bytes", "\xE2\x82\xAC 1\n\xE2\x82\xAC", QString::fromUtf16(u"\u20AC 1\n\u20AC")},
        {"a lone byte", "a\xE9z\xFF", QString::fromUtf16(u"a\u00E9z\u00FF")},
        {"a cut character", "\xE2\x82", QString::fromUtf16(u"\u00E2\u0082")},
        {"an overlong one", "\xC0\x80x", QString::fromUtf16(u"\u00C0\u0080x")},
        {"a surrogate", "\xED\xA0\x80x", QString::fromUtf16(u"\u00ED\u00A0\u0080x")},
        {"a noncharacter", "\xEF\xBF\xBFx\xEF\xB7\x90y", QString::fromUtf16(u"\uFFFFx\uFDD0y")},
        {"too high", "\xF4\x90\x80\x80x", QString::fromUtf16(u"\u00F4\u0090\u0080\u0080x")},
        {"a zero byte", "a\0b"s, QString::fromLatin1("a\0b", 3)},
    };
    for (const Case& one : cases) {
        SCOPED_TRACE(one.what);
        store->setText("before\n" + one.bytes + "\nlast");
        const QString all = QStringLiteral("before\n") + one.units + QStringLiteral("\nlast");
        EXPECT_EQ(text->characterCount(), all.size());
        EXPECT_EQ(text->text(0, -1), all);
        for (int i = 0; i < all.size(); ++i) {
            if (all[i].isLowSurrogate() || all[i].isHighSurrogate()) continue;
            EXPECT_EQ(text->text(i, i + 1), all.mid(i, 1)) << i;
        }
        store->select(static_cast<int>(7 + one.bytes.size()) + 1, 0);
        EXPECT_EQ(text->cursorPosition(), 7 + one.units.size());
        text->setCursorPosition(static_cast<int>(all.size()) - 2);
        EXPECT_EQ(store->selection().start, static_cast<int>(7 + one.bytes.size()) + 4);
    }
}

TEST_F(AccessibleTest, CharactersWordsAndLinesAreFound) {
    store->setText("first line\nthe \xC3\xA9t\xC3\xA9 day\nlast");
    int start = 0, end = 0;
    EXPECT_EQ(at(15, QAccessible::CharBoundary, &start, &end), "\xC3\xA9");
    EXPECT_EQ(start * 100 + end, 1516);
    EXPECT_EQ(at(16, QAccessible::WordBoundary, &start, &end), "\xC3\xA9t\xC3\xA9");
    EXPECT_EQ(start * 100 + end, 1518);
    EXPECT_EQ(at(16, QAccessible::LineBoundary, &start, &end), "the \xC3\xA9t\xC3\xA9 day\n")
        << "with its end";
    EXPECT_EQ(start, 11);
    EXPECT_EQ(at(0, QAccessible::WordBoundary), "first");
    EXPECT_EQ(at(24, QAccessible::LineBoundary), "last");
    EXPECT_EQ(at(3, QAccessible::NoBoundary, &start, &end).size(), store->text().size());
    EXPECT_EQ(end, text->characterCount());
    EXPECT_EQ(text->textAfterOffset(3, QAccessible::CharBoundary, &start, &end), QStringLiteral("t"));
    EXPECT_EQ(text->textBeforeOffset(15, QAccessible::CharBoundary, &start, &end), QStringLiteral(" "));
    EXPECT_EQ(start * 100 + end, 1415);
    EXPECT_EQ(text->textAfterOffset(0, QAccessible::WordBoundary, &start, &end), QStringLiteral("line"));
    EXPECT_EQ(text->textBeforeOffset(16, QAccessible::WordBoundary, &start, &end), QStringLiteral("the"));
    EXPECT_EQ(text->textAfterOffset(0, QAccessible::LineBoundary, &start, &end).trimmed(),
              QString::fromUtf16(u"the \u00E9t\u00E9 day"));
    EXPECT_EQ(text->textBeforeOffset(0, QAccessible::LineBoundary, &start, &end), QString());
    EXPECT_EQ(start, -1);
    for (const int offset : {-2, -1, 0, 24, 28, 99, 1 << 30})
        for (const auto boundary :
             {QAccessible::CharBoundary, QAccessible::WordBoundary, QAccessible::LineBoundary})
            at(offset, boundary, &start, &end);
}

TEST_F(AccessibleTest, SelectionsGoBothWays) {
    store->setText("a\xC3\xA9z\nlast");
    store->select(2, 3);
    int start = 0, end = 0;
    EXPECT_EQ(text->selectionCount(), 1);
    text->selection(0, &start, &end);
    EXPECT_EQ(start * 10 + end, 13);
    text->setSelection(0, 2, 6);
    EXPECT_EQ(store->selection().start, 4);
    EXPECT_EQ(store->selection().length, 4);
    text->removeSelection(0);
    EXPECT_EQ(text->selectionCount(), 0);
    text->selection(0, &start, &end);
    EXPECT_EQ(start + end, 0);
    text->addSelection(-5, 500);
    EXPECT_EQ(store->selection().length, store->length());
}

TEST_F(AccessibleTest, PlacesOnTheScreenAreKnown) {
    store->setText("wide\nline");
    window.grab();
    const QRect first = text->characterRect(0), second = text->characterRect(1),
                below = text->characterRect(5);
    EXPECT_EQ(second.left(), first.left() + first.width());
    EXPECT_GT(below.top(), first.top());
    EXPECT_EQ(below.left(), first.left());
    EXPECT_EQ(text->offsetAtPoint(below.center()), 5);
    text->scrollToSubstring(0, 4);
}

TEST_F(AccessibleTest, EditsComeInAndAreTold) {
    auto* edit = face->editableTextInterface();
    ASSERT_NE(edit, nullptr);
    store->setText("a\xC3\xA9z");
    events.clear();
    edit->insertText(2, QStringLiteral("x"));
    EXPECT_EQ(store->text(), "a\xC3\xA9xz");
    edit->replaceText(1, 3, QString::fromUtf16(u"\u20AC"));
    EXPECT_EQ(store->text(), "a\xE2\x82\xACz");
    edit->deleteText(0, 1);
    EXPECT_EQ(store->text(), "\xE2\x82\xACz");
    QApplication::processEvents();
    ASSERT_GE(events.size(), 4U);
    EXPECT_EQ(events[0], "+2 x");
    EXPECT_EQ(events[1], "-1 \xC3\xA9x");
    EXPECT_EQ(events[2], "+1 \xE2\x82\xAC");
    EXPECT_EQ(std::count(events.begin(), events.end(), "-0 a"), 1);
    area->setFlags(READONLY);
    edit->insertText(0, QStringLiteral("no"));
    EXPECT_EQ(store->text(), "\xE2\x82\xACz");
    EXPECT_TRUE(face->state().readOnly);
    EXPECT_FALSE(face->state().editable);
    EXPECT_TRUE(face->state().multiLine);
}

TEST_F(AccessibleTest, KeysTellTheirLetterAndTheCaret) {
    store->setText("\xC3\xA9");
    store->select(3, 0);
    events.clear();
    type(QStringLiteral("b"));
    EXPECT_EQ(events, (std::vector<std::string>{"+1 b", "caret 2"}));
    events.clear();
    store->select(1, 3);
    area->textWidget()->grab();
    QApplication::processEvents();
    EXPECT_GE(std::count(events.begin(), events.end(), "marked 0 to 2"), 1);
}

TEST_F(AccessibleTest, ALongLineIsReadInParts) {
    store->setText(std::string(3'000'000, 'x') + " word " + std::string(100'000, 'y'));
    EXPECT_EQ(text->characterCount(), 3'100'006);
    int start = 0;
    EXPECT_EQ(at(3'000'002, QAccessible::WordBoundary, &start), "word");
    EXPECT_EQ(start, 3'000'001);
    EXPECT_EQ(at(3'100'005, QAccessible::CharBoundary), "y");
}

TEST_F(AccessibleTest, TypingAtTheEndOfALargeTextIsQuickWithAScreenReader) {
    std::string large;
    while (large.size() < 4'000'000) large += "if total > 10 then print \"\xC3\xA9nough\" end // of it\n";
    counting = true;
    store->setText(large);
    store->select(static_cast<int>(large.size()) + 1, 0);
    window.repaint();
    QApplication::processEvents();
    std::vector<qint64> keys;
    QElapsedTimer clock;
    told = 0;
    for (int i = 0; i < 50; ++i) {
        clock.restart();
        sendText(area->textWidget(), QStringLiteral("x"));
        QApplication::processEvents();
        const int caret = text->cursorPosition();
        EXPECT_EQ(text->text(caret - 1, caret), QStringLiteral("x"));
        keys.push_back(clock.nsecsElapsed() / 1000);
    }
    counting = false;
    std::sort(keys.begin(), keys.end());
    std::printf("with a screen reader: key median %lld us, 95 of 100 %lld us\n",
                static_cast<long long>(keys[25]), static_cast<long long>(keys[47]));
    EXPECT_GE(told, 50);
    EXPECT_LT(keys[25], 20'000);
}

}  // namespace

}  // namespace tarn::platform::qt
