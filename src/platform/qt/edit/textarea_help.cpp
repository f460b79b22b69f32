// SPDX-License-Identifier: GPL-3.0-or-later
//
// Help while one types: the list of words, the hint at a call, and the click on a name.
#include "platform/qt/edit/colours.h"
#include "platform/qt/edit/textarea.h"

#include <QApplication>
#include <QMouseEvent>

#include <algorithm>

namespace tarn::platform::qt {

namespace {

constexpr char PictureMark = '\x01';  // between a word and the number of its picture
constexpr int ListRows = 12;          // that show at once

}  // namespace

// ---- the list ----

int TextArea::pictureNumber(const std::string& name) {
    const auto [found, isNew] = pictures_.try_emplace(name, static_cast<int>(pictures_.size()) + 1);
    if (!isNew || !picture) return found->second;
    const QImage image = picture(name, fontMetrics().height(), devicePixelRatioF());
    if (image.isNull()) return found->second;
    send(SCI_RGBAIMAGESETWIDTH, image.width());
    send(SCI_RGBAIMAGESETHEIGHT, image.height());
    SendScintilla(SCI_REGISTERRGBAIMAGE, static_cast<unsigned long>(found->second), image);
    return found->second;
}

void TextArea::showChoices(std::string_view rows, int typed) {
    if (rows.empty() || (flags_ & READONLY) != 0) return static_cast<void>(send(SCI_AUTOCCANCEL));
    std::string list;
    list.reserve(rows.size());
    while (!rows.empty()) {
        const std::string_view row = rows.substr(0, rows.find('\n'));
        rows.remove_prefix(std::min(row.size() + 1, rows.size()));
        const std::size_t tab = row.find('\t');
        if (!list.empty()) list += '\n';
        list += row.substr(0, tab);
        if (tab != std::string_view::npos)
            list.append(1, PictureMark).append(std::to_string(pictureNumber(std::string(row.substr(tab + 1)))));
    }
    send(SCI_AUTOCSETSEPARATOR, '\n');
    send(SCI_AUTOCSETTYPESEPARATOR, PictureMark);
    send(SCI_AUTOCSETIGNORECASE, 1);
    send(SCI_AUTOCSETORDER, SC_ORDER_PRESORTED);
    send(SCI_AUTOCSETDROPRESTOFWORD, 1);
    send(SCI_AUTOCSETMULTI, SC_MULTIAUTOC_EACH);
    send(SCI_AUTOCSETMAXHEIGHT, ListRows);
    sendBytes(SCI_AUTOCSHOW, typed, list.c_str());
}

// A key that takes what is offered does its own work where that would change nothing.
bool TextArea::takesChoice() {
    const auto length = send(SCI_AUTOCGETCURRENTTEXT);
    std::string choice(static_cast<std::size_t>(length) + 1, '\0');
    SendScintilla(SCI_AUTOCGETCURRENTTEXT, 0UL, static_cast<void*>(choice.data()));
    choice.resize(static_cast<std::size_t>(length));
    const int caret = static_cast<int>(send(SCI_GETCURRENTPOS));
    const auto from = static_cast<int>(send(SCI_WORDSTARTPOSITION, caret, 1)),
               to = static_cast<int>(send(SCI_WORDENDPOSITION, caret, 1));
    const bool same = view(from, to) == choice;
    send(same ? SCI_AUTOCCANCEL : SCI_AUTOCCOMPLETE);
    return !same;
}

// ---- the hint ----

void TextArea::showCallTip(int position, std::string_view text, const Selection& mark) {
    if (text.empty()) return static_cast<void>(send(SCI_CALLTIPCANCEL));
    const int at = parts_.toControl(std::clamp(position - 1, 0, length()), true);
    sendBytes(SCI_CALLTIPSHOW, at, std::string(text).c_str());
    send(SCI_CALLTIPSETHLT, mark.start - 1, mark.start - 1 + mark.length);
}

void TextArea::styleHelp() {
    const QPalette palette = QApplication::palette(this);
    const QColor paper = palette.color(QPalette::ToolTipBase), ink = palette.color(QPalette::ToolTipText);
    SendScintilla(SCI_CALLTIPSETBACK, paper);
    SendScintilla(SCI_CALLTIPSETFORE, readable(mixed(ink, paper, 0.25), paper));
    SendScintilla(SCI_CALLTIPSETFOREHLT, readable(palette.color(QPalette::Highlight), paper));
    pictures_.clear();  // those of the old palette are drawn anew when they are needed
    send(SCI_CLEARREGISTEREDIMAGES);
}

// ---- the click on a name ----

bool TextArea::wordAt(QPoint at, int& position) const {
    position = static_cast<int>(send(SCI_CHARPOSITIONFROMPOINTCLOSE, at.x(), at.y()));
    if (position < 0) return false;
    const long start = send(SCI_WORDSTARTPOSITION, position, 1), end = send(SCI_WORDENDPOSITION, position, 1);
    return end > start;
}

// A click with Ctrl goes to the declaration of a name; with a drag, or where nothing comes of it, it is one more
// selection.
void TextArea::mousePressEvent(QMouseEvent* event) {
    emit goesOn();
    int position = 0;
    clicking_ = event->button() == Qt::LeftButton && event->modifiers() == Qt::ControlModifier &&
                nameClicked && wordAt(event->pos(), position);
    pressed_ = event->pos();
    if (!clicking_) QsciScintillaBase::mousePressEvent(event);
}

void TextArea::mouseMoveEvent(QMouseEvent* event) {
    if (clicking_ && (event->pos() - pressed_).manhattanLength() >= QApplication::startDragDistance()) {
        clicking_ = false;
        QMouseEvent press(QEvent::MouseButtonPress, pressed_, viewport()->mapToGlobal(pressed_), Qt::LeftButton,
                          Qt::LeftButton, Qt::ControlModifier);
        QsciScintillaBase::mousePressEvent(&press);
    }
    if (!clicking_) QsciScintillaBase::mouseMoveEvent(event);
}

void TextArea::mouseReleaseEvent(QMouseEvent* event) {
    if (!clicking_) return QsciScintillaBase::mouseReleaseEvent(event);
    clicking_ = false;
    int position = 0;
    if (wordAt(pressed_, position) && nameClicked(parts_.toText(position) + 1)) return;
    QMouseEvent press(QEvent::MouseButtonPress, pressed_, viewport()->mapToGlobal(pressed_), Qt::LeftButton,
                      Qt::LeftButton, Qt::ControlModifier);
    QsciScintillaBase::mousePressEvent(&press);
    QsciScintillaBase::mouseReleaseEvent(event);
}

}  // namespace tarn::platform::qt
