// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/qt/edit/accessible.h"

#include "platform/qt/edit/textarea.h"
#include "platform/qt/edit/units.h"

#include <QAccessible>
#include <QAccessibleWidget>
#include <QTextBoundaryFinder>

#include <algorithm>

namespace tarn::platform::qt {

namespace {

using Sci = QsciScintillaBase;

long send(const TextArea& area, unsigned message, long w = 0, long l = 0) {
    return area.SendScintilla(message, static_cast<unsigned long>(w), l);
}

std::string_view bytesOf(const TextArea& area, int from, int to) {
    if (to <= from) return {};
    const auto* start = reinterpret_cast<const char*>(send(area, Sci::SCI_GETRANGEPOINTER, from, to - from));
    return {start, static_cast<std::size_t>(to - from)};
}

void needIndex(const TextArea& area) {
    if ((send(area, Sci::SCI_GETLINECHARACTERINDEX) & Sci::SC_LINECHARACTERINDEX_UTF16) == 0)
        send(area, Sci::SCI_ALLOCATELINECHARACTERINDEX, Sci::SC_LINECHARACTERINDEX_UTF16);
}

int lineStart(const TextArea& area, int line) {
    return static_cast<int>(send(area, Sci::SCI_POSITIONFROMLINE, line));
}

int offsetOfLine(const TextArea& area, int line) {
    return static_cast<int>(
        send(area, Sci::SCI_INDEXPOSITIONFROMLINE, line, Sci::SC_LINECHARACTERINDEX_UTF16));
}

int lineCount(const TextArea& area) {
    return static_cast<int>(send(area, Sci::SCI_GETLINECOUNT));
}

// What stands between rows counts in these.
int rowOffsetOf(const TextArea& area, int position) {
    needIndex(area);
    const int line = static_cast<int>(send(area, Sci::SCI_LINEFROMPOSITION, position));
    return offsetOfLine(area, line) + unitsIn(bytesOf(area, lineStart(area, line), position));
}

int rowLineAt(const TextArea& area, int offset) {
    needIndex(area);
    const long line = send(area, Sci::SCI_LINEFROMINDEXPOSITION, offset, Sci::SC_LINECHARACTERINDEX_UTF16);
    return std::clamp(static_cast<int>(line), 0, lineCount(area) - 1);
}

int sizeOf(const TextArea& area) {
    return static_cast<int>(send(area, Sci::SCI_GETLENGTH));
}

int lineEnd(const TextArea& area, int line) {  // behind its end mark
    return line + 1 < lineCount(area) ? lineStart(area, line + 1) : sizeOf(area);
}

int rowPositionOf(const TextArea& area, int offset) {
    const int line = rowLineAt(area, offset), start = lineStart(area, line);
    return start + bytesOfUnits(bytesOf(area, start, lineEnd(area, line)), offset - offsetOfLine(area, line));
}

int offsetOf(const TextArea& area, int position) {
    return rowOffsetOf(area, position) - (position - area.rows().toText(position));
}

int positionOf(const TextArea& area, int offset) {
    const std::vector<int>& places = area.rows().places();
    std::size_t low = 0, high = places.size();
    while (low < high) {
        const std::size_t middle = (low + high) / 2;
        if (rowOffsetOf(area, places[middle]) - static_cast<int>(middle) <= offset)
            low = middle + 1;
        else
            high = middle;
    }
    return rowPositionOf(area, offset + static_cast<int>(low));
}

int lineAt(const TextArea& area, int offset) {
    return static_cast<int>(send(area, Sci::SCI_LINEFROMPOSITION, positionOf(area, offset)));
}

QString unitsBetween(const TextArea& area, int from, int to) {
    const std::string_view bytes = bytesOf(area, from, to);
    return area.rows().on() ? unitsOf(area.rows().joined(bytes, from)) : unitsOf(bytes);
}

int unitCount(const TextArea& area) {
    return offsetOf(area, sizeOf(area));
}

struct Piece {
    int start = -1, end = -1;  // units; -1: there is none
};

// The part of the text around an offset: its line and those before and after, or of an endless line what stands
// around. Pieces of it are found here, since the toolkit's own search does not end at the end of a text.
class Excerpt {
public:
    Excerpt(const TextArea& area, int offset) {
        constexpr int longest = 65536;  // bytes
        const int line = lineAt(area, offset);
        const int around = area.rows().on() ? longest / Rows::RowBytes / 2 : 1;
        const int first = std::max(line - around, 0), last = std::min(line + around, lineCount(area) - 1);
        int from = lineStart(area, first), to = lineEnd(area, last);
        if (to - from > longest) {
            const int middle = positionOf(area, offset);
            from = positionOf(area, offsetOf(area, std::max(from, middle - longest / 2)));
            to = positionOf(area, offsetOf(area, std::min(to, middle + longest / 2)));
        }
        base_ = offsetOf(area, from);
        text_ = unitsBetween(area, from, to);
    }
    [[nodiscard]] Piece at(int offset, QAccessible::TextBoundaryType type) const {
        return shifted(pieceAt(offset - base_, type));
    }
    [[nodiscard]] Piece before(int offset, QAccessible::TextBoundaryType type) const {
        Piece piece = pieceAt(offset - base_, type);
        do piece = piece.start > 0 ? pieceAt(piece.start - 1, type) : Piece();
        while (skips(piece, type));
        return shifted(piece);
    }
    [[nodiscard]] Piece after(int offset, QAccessible::TextBoundaryType type) const {
        Piece piece = pieceAt(offset - base_, type);
        do piece = piece.end >= 0 && piece.end < size() ? pieceAt(piece.end, type) : Piece();
        while (skips(piece, type));
        return shifted(piece);
    }

private:
    [[nodiscard]] int size() const { return static_cast<int>(text_.size()); }
    [[nodiscard]] Piece shifted(Piece piece) const {
        return piece.start < 0 ? piece : Piece{piece.start + base_, piece.end + base_};
    }
    // From word to word the blanks between them do not count.
    [[nodiscard]] bool skips(Piece piece, QAccessible::TextBoundaryType type) const {
        return type == QAccessible::WordBoundary && piece.end > piece.start &&
               text_.mid(piece.start, piece.end - piece.start).trimmed().isEmpty();
    }
    [[nodiscard]] Piece pieceAt(int at, QAccessible::TextBoundaryType type) const {
        at = std::clamp(at, 0, size());
        if (type == QAccessible::LineBoundary || type == QAccessible::ParagraphBoundary) {
            const auto start = at == 0 ? 0 : text_.lastIndexOf(u'\n', at - 1) + 1;
            const auto end = text_.indexOf(u'\n', at);
            return {static_cast<int>(start), end < 0 ? size() : static_cast<int>(end) + 1};
        }
        if (at == size()) return {at, at};
        const auto finds = type == QAccessible::CharBoundary   ? QTextBoundaryFinder::Grapheme
                           : type == QAccessible::WordBoundary ? QTextBoundaryFinder::Word
                                                               : QTextBoundaryFinder::Sentence;
        QTextBoundaryFinder finder(finds, text_);
        finder.setPosition(at);
        const auto start = finder.isAtBoundary() ? at : finder.toPreviousBoundary();
        finder.setPosition(at);
        const auto end = finder.toNextBoundary();
        return {std::max(static_cast<int>(start), 0), end < 0 ? size() : static_cast<int>(end)};
    }

    int base_ = 0;
    QString text_;
};

class TextAccessible : public QAccessibleWidget,
                       public QAccessibleTextInterface,
                       public QAccessibleEditableTextInterface {
public:
    explicit TextAccessible(TextArea* area) : QAccessibleWidget(area, QAccessible::EditableText) {}

    void* interface_cast(QAccessible::InterfaceType type) override {
        if (type == QAccessible::TextInterface) return static_cast<QAccessibleTextInterface*>(this);
        if (type == QAccessible::EditableTextInterface)
            return static_cast<QAccessibleEditableTextInterface*>(this);
        return QAccessibleWidget::interface_cast(type);
    }
    QAccessible::State state() const override {
        QAccessible::State state = QAccessibleWidget::state();
        state.multiLine = true;
        state.selectableText = true;
        state.readOnly = send(area(), Sci::SCI_GETREADONLY) != 0;
        state.editable = !state.readOnly;
        return state;
    }
    QString text(QAccessible::Text kind) const override {
        return kind == QAccessible::Value ? line() : QAccessibleWidget::text(kind);
    }

    // ---- reading ----

    QString text(int start, int end) const override {
        const int count = characterCount();
        start = std::clamp(start, 0, count);
        end = end < 0 ? count : std::clamp(end, start, count);
        return unitsBetween(area(), positionOf(area(), start), positionOf(area(), end));
    }
    int characterCount() const override { return unitCount(area()); }
    QString textBeforeOffset(int offset, QAccessible::TextBoundaryType type, int* start,
                             int* end) const override {
        return around(offset, type, start, end, &Excerpt::before);
    }
    QString textAfterOffset(int offset, QAccessible::TextBoundaryType type, int* start,
                            int* end) const override {
        return around(offset, type, start, end, &Excerpt::after);
    }
    QString textAtOffset(int offset, QAccessible::TextBoundaryType type, int* start,
                         int* end) const override {
        return around(offset, type, start, end, &Excerpt::at);
    }
    QString attributes(int, int* start, int* end) const override {
        *start = 0;
        *end = characterCount();
        return {};
    }

    // ---- caret and selection ----

    int cursorPosition() const override {
        return offsetOf(area(), static_cast<int>(send(area(), Sci::SCI_GETCURRENTPOS)));
    }
    void setCursorPosition(int offset) override {
        send(area(), Sci::SCI_GOTOPOS, positionOf(area(), bounded(offset)));
    }
    int selectionCount() const override { return area().selection().length > 0 ? 1 : 0; }
    void selection(int index, int* start, int* end) const override {
        const Selection marked = area().selection();
        const bool any = index == 0 && marked.length > 0;
        *start = any ? offsetOf(area(), static_cast<int>(send(area(), Sci::SCI_GETSELECTIONSTART))) : 0;
        *end = any ? offsetOf(area(), static_cast<int>(send(area(), Sci::SCI_GETSELECTIONEND))) : 0;
    }
    void addSelection(int start, int end) override { setSelection(0, start, end); }
    void removeSelection(int) override {
        send(area(), Sci::SCI_SETEMPTYSELECTION, send(area(), Sci::SCI_GETCURRENTPOS));
    }
    void setSelection(int index, int start, int end) override {
        if (index != 0) return;
        send(area(), Sci::SCI_SETSELECTION, positionOf(area(), bounded(end)),
             positionOf(area(), bounded(start)));
    }

    // ---- places ----

    QRect characterRect(int offset) const override {
        const int position = positionOf(area(), bounded(offset));
        const int next = static_cast<int>(send(area(), Sci::SCI_POSITIONAFTER, position));
        const auto x = [&](int of) {
            return static_cast<int>(send(area(), Sci::SCI_POINTXFROMPOSITION, 0, of));
        };
        const auto y = static_cast<int>(send(area(), Sci::SCI_POINTYFROMPOSITION, 0, position));
        const long line = send(area(), Sci::SCI_LINEFROMPOSITION, position);
        const auto height = static_cast<int>(send(area(), Sci::SCI_TEXTHEIGHT, line));
        const QPoint corner = area().viewport()->mapToGlobal(QPoint(x(position), y));
        return {corner, QSize(std::max(x(next) - x(position), 1), height)};
    }
    int offsetAtPoint(const QPoint& point) const override {
        const QPoint at = area().viewport()->mapFromGlobal(point);
        const long position = send(area(), Sci::SCI_CHARPOSITIONFROMPOINTCLOSE, at.x(), at.y());
        return position < 0 ? -1 : offsetOf(area(), static_cast<int>(position));
    }
    void scrollToSubstring(int start, int end) override {
        area().SendScintilla(Sci::SCI_SCROLLRANGE, static_cast<uintptr_t>(positionOf(area(), bounded(end))),
                             static_cast<long>(positionOf(area(), bounded(start))));
    }

    // ---- writing, as the user ----

    void deleteText(int start, int end) override { replaceText(start, end, QString()); }
    void insertText(int offset, const QString& text) override { replaceText(offset, offset, text); }
    void replaceText(int start, int end, const QString& text) override {
        if (send(area(), Sci::SCI_GETREADONLY) != 0) return;
        const QByteArray bytes = text.toUtf8();
        const int from = positionOf(area(), bounded(start)),
                  to = positionOf(area(), bounded(std::max(start, end)));
        send(area(), Sci::SCI_SETTARGETRANGE, from, to);
        area().SendScintilla(Sci::SCI_REPLACETARGET, static_cast<uintptr_t>(bytes.size()), bytes.constData());
    }

private:
    [[nodiscard]] TextArea& area() const { return *static_cast<TextArea*>(object()); }
    // The line with the caret, for readers that ask for a value.
    [[nodiscard]] QString line() const {
        constexpr int longest = 4096;
        const auto number =
            static_cast<int>(send(area(), Sci::SCI_LINEFROMPOSITION, send(area(), Sci::SCI_GETCURRENTPOS)));
        const int from = lineStart(area(), number), to = lineEnd(area(), number);
        return to - from > longest ? QString() : unitsOf(bytesOf(area(), from, to)).trimmed();
    }
    [[nodiscard]] int bounded(int offset) const { return std::clamp(offset, 0, characterCount()); }

    using Finder = Piece (Excerpt::*)(int, QAccessible::TextBoundaryType) const;
    QString around(int offset, QAccessible::TextBoundaryType type, int* start, int* end, Finder find) const {
        if (offset == -2) offset = cursorPosition();  // what the toolkit calls the caret
        if (offset == -1) offset = characterCount();
        offset = bounded(offset);
        const Piece piece = type == QAccessible::NoBoundary ? Piece{0, characterCount()}
                                                            : (Excerpt(area(), offset).*find)(offset, type);
        *start = piece.start;
        *end = piece.end;
        return piece.start < 0 ? QString() : text(piece.start, piece.end);
    }
};

}  // namespace

namespace {

// Whether a screen reader is there; asked for at every key.
class Listener : public QAccessible::ActivationObserver {
public:
    Listener() : here_(QAccessible::isActive()) { QAccessible::installActivationObserver(this); }
    void accessibilityActiveChanged(bool active) override { here_ = active; }
    [[nodiscard]] static bool here() {
        static Listener& one = *new Listener;  // the toolkit keeps a pointer to it
        return one.here_;
    }

private:
    bool here_;
};

}  // namespace

QAccessibleInterface* makeTextAccessible(const QString&, QObject* object) {
    auto* const area = qobject_cast<TextArea*>(object);
    static_cast<void>(Listener::here());
    return area != nullptr ? new TextAccessible(area) : nullptr;
}

void tellCaret(TextArea& area) {
    if (!Listener::here()) return;
    const Selection marked = area.selection();
    const int caret = offsetOf(area, static_cast<int>(send(area, Sci::SCI_GETCURRENTPOS)));
    if (marked.length == 0) {
        QAccessibleTextCursorEvent event(&area, caret);
        return QAccessible::updateAccessibility(&event);
    }
    const int start = offsetOf(area, static_cast<int>(send(area, Sci::SCI_GETSELECTIONSTART))),
              end = offsetOf(area, static_cast<int>(send(area, Sci::SCI_GETSELECTIONEND)));
    QAccessibleTextSelectionEvent event(&area, start, end);
    event.setCursorPosition(caret);
    QAccessible::updateAccessibility(&event);
}

void tellInsertion(TextArea& area, int position, int count) {
    if (!Listener::here()) return;
    QAccessibleTextInsertEvent event(&area, offsetOf(area, position),
                                     unitsBetween(area, position, position + count));
    QAccessible::updateAccessibility(&event);
}

void tellRemoval(TextArea& area, int position, int count) {
    if (!Listener::here() || count <= 0) return;
    QAccessibleTextRemoveEvent event(&area, offsetOf(area, position),
                                     unitsBetween(area, position, position + count));
    QAccessible::updateAccessibility(&event);
}

}  // namespace tarn::platform::qt
