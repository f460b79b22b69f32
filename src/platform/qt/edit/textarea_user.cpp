// SPDX-License-Identifier: GPL-3.0-or-later
//
// What the user does: lines and blocks by keys, paste, context menu, drag and drop.
#include "platform/model/view.h"
#include "platform/qt/edit/textarea.h"
#include "platform/qt/input/xclipboard.h"
#include "platform/qt/texts.h"

#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QContextMenuEvent>
#include <QDragEnterEvent>
#include <QInputMethodEvent>
#include <QKeyEvent>
#include <QMenu>
#include <QMimeData>

#include <algorithm>

namespace tarn::platform::qt {

namespace {

constexpr std::string_view LineEndTexts[] = {"\r\n", "\r", "\n"};  // by the control's numbers

}  // namespace

bool TextArea::event(QEvent* event) {
    const bool handled = QsciScintillaBase::event(event);
    flush();
    return handled;
}

bool TextArea::viewportEvent(QEvent* event) {
    const bool handled = QsciScintillaBase::viewportEvent(event);
    flush();
    return handled;
}

void TextArea::newLine() {
    if (send(SCI_GETSELECTIONS) > 1) {
        send(SCI_NEWLINE);
        return;
    }
    std::string text(LineEndTexts[std::clamp(send(SCI_GETEOLMODE), 0L, 2L)]);
    if ((flags_ & AUTOINDENT) != 0) {
        const int caret = static_cast<int>(send(SCI_GETSELECTIONSTART));
        const int start = startOfLine(lineOf(caret));
        const std::string_view head = caret > start ? view(start, caret) : std::string_view();
        text += head.substr(0, std::min(head.find_first_not_of(" \t"), head.size()));
    }
    insertTyped(text);
    send(SCI_CHOOSECARETX);
}

// Moves the lines of a selection that spans several by one tab.
bool TextArea::shiftBlock(bool left) {
    const int start = static_cast<int>(send(SCI_GETSELECTIONSTART)),
              end = static_cast<int>(send(SCI_GETSELECTIONEND));
    const int first = lineOf(start);
    int last = lineOf(end);
    if (last > first && end == startOfLine(last)) --last;
    const bool whole = lineOf(end) > first;
    if (!whole && !left) return false;
    send(SCI_BEGINUNDOACTION);
    for (int line = first; line <= last; ++line) {
        const int at = startOfLine(line), stop = static_cast<int>(send(SCI_GETLINEENDPOSITION, line));
        if (!left) {
            if (stop > at) sendBytes(SCI_INSERTTEXT, at, "\t");
            continue;
        }
        const std::string_view text = stop > at ? view(at, stop) : std::string_view();
        const auto blanks = std::min(text.find_first_not_of(' '), text.size());
        const long remove = !text.empty() && text[0] == '\t'
                                ? 1
                                : static_cast<long>(std::min(blanks, static_cast<std::size_t>(tabWidth_)));
        if (remove > 0) send(SCI_DELETERANGE, at, remove);
    }
    send(SCI_ENDUNDOACTION);
    if (whole)
        send(SCI_SETSELECTION, last + 1 < send(SCI_GETLINECOUNT) ? startOfLine(last + 1) : size(),
             startOfLine(first));
    return true;
}

// Keys that do something else here than in the control; true: done.
bool TextArea::lineKey(const QKeyEvent& event) {
    const auto modifiers = event.modifiers() & ~Qt::KeypadModifier;
    const bool plain = modifiers == Qt::NoModifier, shift = modifiers == Qt::ShiftModifier;
    const bool writable = (flags_ & READONLY) == 0, choosing = send(SCI_AUTOCACTIVE) != 0;
    switch (event.key()) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
        if (choosing && takesChoice()) return true;
        if (!writable || (!plain && !shift)) return false;
        newLine();
        return true;
    case Qt::Key_Tab:
        if (!writable || !plain) return false;
        if (choosing && takesChoice()) return true;
        if (send(SCI_GETSELECTIONS) > 1)
            send(SCI_TAB);
        else if ((flags_ & TABSHIFT) == 0 || !shiftBlock(false))
            insertTyped("\t");
        return true;
    case Qt::Key_Backtab:
        if (writable && (flags_ & TABSHIFT) != 0)
            shiftBlock(true);
        else
            QAbstractScrollArea::focusNextPrevChild(false);
        return true;
    case Qt::Key_Insert: return plain && (flags_ & ALLOWOVERWRITE) == 0;
    default: return false;
    }
}

void TextArea::keyPressEvent(QKeyEvent* event) {
    const auto modifiers = event->modifiers() & ~Qt::KeypadModifier;
    const bool plain = modifiers == Qt::NoModifier, shift = modifiers == Qt::ShiftModifier;
    const bool writable = (flags_ & READONLY) == 0;
    emit goesOn();
    if (writable && event->matches(QKeySequence::Paste) && pasteBytes()) return;
    if (zoomKey(*event)) return;
    if (writable && parts_.on() && (plain || shift) && eraseInRows(event->key())) return;
    if (lineKey(*event)) return;
    // Refused here and not by the control, which would take the empty insertion for a change.
    const bool isText = !event->text().isEmpty() && event->text()[0].isPrint() &&
                        (modifiers & (Qt::ControlModifier | Qt::AltModifier)) == 0;
    if (writable && isText && !overwriting() && refuses(event->text().toStdString())) return;
    QsciScintillaBase::keyPressEvent(event);
    if (event->key() == Qt::Key_Insert) emit moved();
}

void TextArea::inputMethodEvent(QInputMethodEvent* event) {
    const QString text = event->commitString();
    if ((flags_ & READONLY) != 0 || text.isEmpty() || !refuses(text.toStdString()))
        QsciScintillaBase::inputMethodEvent(event);
}

// With the line ends that the text has.
std::string TextArea::withOwnEnds(std::string_view text) const {
    static constexpr int ends[] = {ENDS_CRLF, ENDS_CR, ENDS_LF};  // by the control's numbers
    return withLineEnds(text, ends[std::clamp(send(SCI_GETEOLMODE), 0L, 2L)]);
}

// The control would fetch all of it before anybody could see how much it is. One that is larger than a text can be is
// refused.
bool TextArea::pasteForeign() {
    const QClipboard* board = QGuiApplication::clipboard();
    if (QGuiApplication::platformName() != u"xcb" || board->ownsClipboard()) return false;
    const QMimeData* data = board->mimeData();
    if (data != nullptr && data->hasFormat(QStringLiteral("text/x-qscintilla-rectangular"))) return false;
    const auto text = foreignClipboard(LargestText + 1);
    if (!text) return false;
    if (text->size() > LargestText) {
        QApplication::beep();
        return true;
    }
    if (send(SCI_GETSELECTIONS) > 1) return false;  // it goes to each of them, which the control does
    if (!text->empty()) insertTyped(withOwnEnds(*text));
    return true;
}

// The control ends a pasted text at its first NUL.
bool TextArea::pasteBytes() {
    if (pasteForeign()) return true;
    const QMimeData* data = QGuiApplication::clipboard()->mimeData();
    const QByteArray bytes = data != nullptr ? data->data(QString::fromLatin1(BytesType)) : QByteArray();
    if (bytes.contains('\0')) {
        insertTyped({bytes.constData(), static_cast<std::size_t>(bytes.size())});
        return true;
    }
    // What makes a line endless is parted, and then has the line ends of the others.
    if (data != nullptr && (rows().on() || data->text().size() > Rows::LongLine) &&
        send(SCI_GETSELECTIONS) == 1) {
        const QByteArray text = bytes.isEmpty() ? data->text().toUtf8() : bytes;
        insertTyped(withOwnEnds({text.constData(), static_cast<std::size_t>(text.size())}));
        return true;
    }
    // Refused here, the text in the selection is not lost.
    return limit_ > 0 && data != nullptr &&
           refuses(bytes.isEmpty() ? data->text().toStdString()
                                   : std::string(bytes.constData(), static_cast<std::size_t>(bytes.size())));
}

void TextArea::paste() {
    if (!pasteBytes()) send(SCI_PASTE);
}

void TextArea::contextMenuEvent(QContextMenuEvent* event) {
    const bool writable = (flags_ & READONLY) == 0, marked = selection().length > 0;
    QMenu menu(this);
    const auto add = [&](const QString& caption, bool possible, auto action) {
        connect(menu.addAction(caption), &QAction::triggered, this, action);
        menu.actions().last()->setEnabled(possible);
    };
    add(tr("&Undo"), writable && send(SCI_CANUNDO) != 0, [this] { send(SCI_UNDO); });
    add(tr("&Redo"), writable && send(SCI_CANREDO) != 0, [this] { send(SCI_REDO); });
    menu.addSeparator();
    add(tr("Cu&t"), writable && marked, [this] { send(SCI_CUT); });
    add(tr("&Copy"), marked, [this] { send(SCI_COPY); });
    add(tr("&Paste"), writable && send(SCI_CANPASTE) != 0, [this] { paste(); });
    add(tr("&Delete"), writable && marked, [this] { send(SCI_CLEAR); });
    menu.addSeparator();
    add(tr("Select &All"), length() > 0, [this] { send(SCI_SELECTALL); });
    menu.exec(event->globalPos());
    flush();
}

// A drop ends a text at its first NUL, and a move would lose the rest.
void TextArea::dragEnterEvent(QDragEnterEvent* event) {
    if (event->mimeData()->data(QString::fromLatin1(BytesType)).contains('\0'))
        event->ignore();
    else
        QsciScintillaBase::dragEnterEvent(event);
}

void TextArea::focusInEvent(QFocusEvent* event) {
    QsciScintillaBase::focusInEvent(event);
    if ((flags_ & SELECTALL) != 0) send(SCI_SELECTALL);
}

void TextArea::mouseDoubleClickEvent(QMouseEvent* event) {
    QsciScintillaBase::mouseDoubleClickEvent(event);
    emit pressedTwice(event->pos());
}

void TextArea::changeEvent(QEvent* event) {
    QsciScintillaBase::changeEvent(event);
    if (event->type() == QEvent::PaletteChange || event->type() == QEvent::StyleChange) applyColours();
}

// Text leaves with its bytes beside it, so that a cut and paste inside the program keeps those that are no
// UTF-8.
QMimeData* TextArea::toMimeData(const QByteArray& text, bool rectangular) const {
    const Selection marked = selection();
    const bool whole = !rectangular && send(SCI_GETSELECTIONS) == 1 && marked.length > 0;
    const std::string bytes = whole ? range(marked.start, marked.length) : std::string();
    const auto size = static_cast<qsizetype>(bytes.size());
    if (parts_.on() && whole) {
        QMimeData* data = QsciScintillaBase::toMimeData(QByteArray(bytes.data(), size), false);
        data->setData(QString::fromLatin1(BytesType), QByteArray(bytes.data(), size));
        return data;
    }
    QMimeData* data = QsciScintillaBase::toMimeData(text, rectangular);
    // The text that comes here has blanks in the place of NUL.
    if (text.size() == size && size > 0)
        data->setData(QString::fromLatin1(BytesType), QByteArray(bytes.data(), size));
    return data;
}

QByteArray TextArea::fromMimeData(const QMimeData* source, bool& rectangular) const {
    const QByteArray text = QsciScintillaBase::fromMimeData(source, rectangular);
    const QByteArray bytes = source->data(QString::fromLatin1(BytesType));
    return bytes.isEmpty() ? text : bytes;
}

}  // namespace tarn::platform::qt
