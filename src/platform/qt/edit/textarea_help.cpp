// SPDX-License-Identifier: GPL-3.0-or-later
//
// Help while one types: the list of words, the hint at a call, and the click on a name.
#include "platform/qt/edit/colours.h"
#include "platform/qt/edit/textarea.h"

#include <QApplication>
#include <QMouseEvent>

#include <algorithm>
#include <utility>

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

// The control looks for the screen on which the word begins, and does not expect that there is none.
bool TextArea::isOnScreen(long position) {
    const QPoint place(static_cast<int>(send(SCI_POINTXFROMPOSITION, 0, position)),
                       static_cast<int>(send(SCI_POINTYFROMPOSITION, 0, position)));
    return QGuiApplication::screenAt(viewport()->mapToGlobal(place)) != nullptr;
}

void TextArea::showChoices(std::string_view rows, int typed) {
    const long begin = send(SCI_GETCURRENTPOS) - typed;
    if (rows.empty() || (flags_ & READONLY) != 0 || !isOnScreen(begin))
        return static_cast<void>(send(SCI_AUTOCCANCEL));
    std::string list;
    list.reserve(rows.size());
    while (!rows.empty()) {
        const std::string_view row = rows.substr(0, rows.find('\n'));
        rows.remove_prefix(std::min(row.size() + 1, rows.size()));
        const std::size_t tab = row.find('\t');
        if (!list.empty()) list += '\n';
        list += row.substr(0, tab);
        if (tab != std::string_view::npos)
            list.append(1, PictureMark)
                .append(std::to_string(pictureNumber(std::string(row.substr(tab + 1)))));
    }
    send(SCI_AUTOCSETSEPARATOR, '\n');
    send(SCI_AUTOCSETTYPESEPARATOR, PictureMark);
    send(SCI_AUTOCSETIGNORECASE, 1);
    send(SCI_AUTOCSETORDER, SC_ORDER_PRESORTED);
    send(SCI_AUTOCSETCASEINSENSITIVEBEHAVIOUR, SC_CASEINSENSITIVEBEHAVIOUR_IGNORECASE);
    // The control cannot drop what is left of several words.
    const bool several = send(SCI_GETSELECTIONS) > 1;
    send(SCI_AUTOCSETDROPRESTOFWORD, !several);
    send(SCI_AUTOCSETMULTI, several ? SC_MULTIAUTOC_EACH : SC_MULTIAUTOC_ONCE);
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
    const int at = rows().toControl(std::clamp(position - 1, 0, length()), true);
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

int TextArea::placeAt(QPoint at) const {
    return static_cast<int>(send(SCI_POSITIONFROMPOINT, at.x(), at.y()));
}

// A click with Ctrl goes to the declaration of a name; with a drag, or where nothing comes of it, it is one more
// selection. A drag with Alt marks a rectangle, which the control knows by Ctrl.
void TextArea::mousePressEvent(QMouseEvent* event) {
    emit goesOn();
    const bool left = event->button() == Qt::LeftButton;
    ctrl_ = left && event->modifiers() == Qt::ControlModifier ? CtrlDrag::Pressed : CtrlDrag::None;
    pressed_ = event->pos();
    if (ctrl_ != CtrlDrag::None) return setFocus();
    if (!left || event->modifiers() != Qt::AltModifier) return QsciScintillaBase::mousePressEvent(event);
    QMouseEvent rectangle(event->type(), event->position(), event->globalPosition(), event->button(),
                          event->buttons(), Qt::ControlModifier);
    QsciScintillaBase::mousePressEvent(&rectangle);
}

void TextArea::mouseMoveEvent(QMouseEvent* event) {
    if (ctrl_ == CtrlDrag::None) return QsciScintillaBase::mouseMoveEvent(event);
    if (ctrl_ == CtrlDrag::Pressed) {
        if ((event->pos() - pressed_).manhattanLength() < QApplication::startDragDistance()) return;
        ctrl_ = CtrlDrag::Dragging;
        send(SCI_ADDSELECTION, placeAt(pressed_), placeAt(pressed_));
    }
    send(SCI_SETSELECTIONNCARET, send(SCI_GETMAINSELECTION), placeAt(event->pos()));
}

void TextArea::mouseReleaseEvent(QMouseEvent* event) {
    if (ctrl_ == CtrlDrag::None) return QsciScintillaBase::mouseReleaseEvent(event);
    const bool click = std::exchange(ctrl_, CtrlDrag::None) == CtrlDrag::Pressed;
    int position = 0;
    if (!click || (nameClicked && wordAt(pressed_, position) && nameClicked(rows().toText(position) + 1)))
        return;
    send(SCI_ADDSELECTION, placeAt(pressed_), placeAt(pressed_));
}

}  // namespace tarn::platform::qt
