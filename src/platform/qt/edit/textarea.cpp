// SPDX-License-Identifier: GPL-3.0-or-later
//
//   making           fonts, and the settings of the component
//   text             bytes in and out, line ends, selection, what the user types, the mark of a change
//   look             flags, number bar, colours by the tokens, fonts, the caret's place
//   the user         lines and blocks by keys, paste, context menu, drag and drop
#include "platform/qt/edit/textarea.h"

#include "platform/operations/textedits.h"
#include "platform/qt/edit/accessible.h"
#include "platform/qt/edit/colours.h"
#include "platform/qt/input/xclipboard.h"
#include "platform/qt/texts.h"

#include <QAccessible>
#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QContextMenuEvent>
#include <QDragEnterEvent>
#include <QFontDatabase>
#include <QFontInfo>
#include <QInputMethodEvent>
#include <QKeyEvent>
#include <QMenu>
#include <QMimeData>
#include <QTimer>

#include <algorithm>
#include <cmath>
#include <utility>

namespace tarn::platform::qt {

namespace {

constexpr int TabWidth = 4;
constexpr long MarkIndicator = 8;  // the first that is not the control's own
constexpr int FirstStyle = 1;    // style numbers of the rules; 0 is plain
constexpr int Gap = 6;           // pixels between number bar and text
constexpr int LongLine = 65536;  // beyond this a column is not counted in characters
constexpr int Piece = 65536;     // bytes coloured at a time
constexpr std::string_view LineEnds[] = {"\r\n", "\r", "\n"};  // by the control's numbers
constexpr int NearPlaces = 64;   // bytes between changes that are made as one

const QColor MarkColour(240, 150, 0);

// Columns stand below each other whatever the desktop's fonts are: its fixed one, unless that is none.
QString fixedFamily() {
    const QFont desktop = QFontDatabase::systemFont(QFontDatabase::FixedFont);
    if (QFontInfo(desktop).fixedPitch()) return desktop.family();
    QFont any(QStringLiteral("monospace"));
    any.setStyleHint(QFont::Monospace);
    any.setFixedPitch(true);
    if (QFontInfo(any).fixedPitch()) return QFontInfo(any).family();
    for (const QString& family : QFontDatabase::families())
        if (QFontDatabase::isFixedPitch(family)) return family;
    return desktop.family();
}

// A font that is not there would be replaced by any other.
QString familyOf(const Font& font) {
    const QString family = QString::fromStdString(font.name);
    return !family.isEmpty() && QFontDatabase::hasFamily(family) ? family : fixedFamily();
}

QColor colourOf(const TokenStyle& rule) {
    return {rule.colour & 0xFF, rule.colour >> 8 & 0xFF, rule.colour >> 16 & 0xFF};
}

}  // namespace

TextArea::TextArea(QWidget* parent) : QsciScintillaBase(parent) {
    setFrameShape(QFrame::NoFrame);
    // The mark keeps its colour when another window, or program, takes the selection of the X server.
    disconnect(QGuiApplication::clipboard(), nullptr, this, nullptr);
    configure();
    applyColours();
    connect(this,
            qOverload<int, int, const char*, int, int, int, int, int, int, int>(&TextArea::SCN_MODIFIED),
            this, [this](int position, int type, const char*, int bytes) {
                if ((type & SC_MOD_INSERTCHECK) != 0) return checkInsertion(bytes);
                tellReader();
                if ((type & SC_MOD_BEFOREDELETE) != 0) tellRemoval(*this, position, bytes);
                if ((type & SC_MOD_BEFOREINSERT) != 0) added_ = {position + 1, bytes};
                onModified();
            });
    connect(this, &TextArea::SCN_STYLENEEDED, this, [this](int end) { onStyleNeeded(end); });
    connect(this, &TextArea::SCN_UPDATEUI, this, [this](int what) {
        if ((what & SC_UPDATE_CONTENT) != 0) applyNumberBar();
        if ((what & (SC_UPDATE_SELECTION | SC_UPDATE_CONTENT)) == 0) return;
        tellReader();
        tellCaret(*this);
        emit moved();
    });
    connect(this, &TextArea::SCN_SAVEPOINTLEFT, this, [this] { emit moved(); });
    connect(this, &TextArea::SCN_SAVEPOINTREACHED, this, [this] { emit moved(); });
}

long TextArea::send(unsigned message, long w, long l) const {
    return SendScintilla(message, static_cast<unsigned long>(w), l);
}

long TextArea::sendBytes(unsigned message, long w, const char* bytes) const {
    return SendScintilla(message, static_cast<uintptr_t>(w), bytes);
}

void TextArea::configure() {
    send(SCI_SETCODEPAGE, SC_CP_UTF8);
    // Told before, not after: the control answers an insertion by counting the characters in front of it for
    // screen readers, which at the end of 4,000,000 bytes costs 20 ms a key.
    send(SCI_SETMODEVENTMASK, SC_MOD_BEFOREINSERT | SC_MOD_BEFOREDELETE | SC_MOD_INSERTCHECK);
    send(SCI_SETLAYOUTCACHE, SC_CACHE_PAGE);
    send(SCI_SETWRAPMODE, SC_WRAP_NONE);
    send(SCI_SETSCROLLWIDTH, 1);
    send(SCI_SETSCROLLWIDTHTRACKING, 1);
    send(SCI_SETTABWIDTH, TabWidth);
    send(SCI_USEPOPUP, SC_POPUP_NEVER);  // its Paste ends a text at the first NUL; see contextMenuEvent
    send(SCI_SETUSETABS, 1);
    send(SCI_SETTABINDENTS, 0);
    send(SCI_SETBACKSPACEUNINDENTS, 0);
    send(SCI_SETENDATLASTLINE, 1);
    send(SCI_SETMULTIPLESELECTION, 0);
    send(SCI_SETCARETWIDTH, 2);
    send(SCI_SETMOUSEDWELLTIME, 10000000);
    for (int margin = 0; margin < 5; ++margin) send(SCI_SETMARGINWIDTHN, margin, 0);
    send(SCI_SETMARGINTYPEN, 0, SC_MARGIN_NUMBER);
    send(SCI_SETMARGINLEFT, 0, Gap);
    // Keys of the control that write control characters or change the text in ways that nobody here asked
    // for.
    for (const int key :
         {'D', 'L', 'T', 'U', 'B', 'E', 'F', 'G', 'H', 'I', 'J', 'K', 'M', 'N', 'O', 'P', 'Q', 'R', 'S', 'W'})
        for (const long modifiers : {long(SCMOD_CTRL), long(SCMOD_CTRL) | long(SCMOD_SHIFT)})
            send(SCI_CLEARCMDKEY, key + (modifiers << 16));
}

// ---- text ----

std::string_view TextArea::range(int from, int to) const {
    const auto* start = reinterpret_cast<const char*>(send(SCI_GETRANGEPOINTER, from, to - from));
    return {start, static_cast<std::size_t>(to - from)};
}

int TextArea::length() const {
    return static_cast<int>(send(SCI_GETLENGTH));
}

std::string TextArea::bytes() const {
    const int size = length();
    if (size == 0) return {};
    return std::string(range(0, size));
}

int TextArea::lineOf(int position) const {
    return static_cast<int>(send(SCI_LINEFROMPOSITION, position));
}

int TextArea::startOfLine(int line) const {
    return static_cast<int>(send(SCI_POSITIONFROMLINE, line));
}

// New lines end as most do in the first part of the file.
void TextArea::adoptLineEnd(std::string_view text) {
    text = text.substr(0, 65536);
    long pairs = 0, feeds = 0, returns = 0;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '\n')
            ++feeds;
        else if (text[i] == '\r' && i + 1 < text.size() && text[i + 1] == '\n')
            ++pairs, ++i;
        else if (text[i] == '\r')
            ++returns;
    }
    const long mode = pairs > feeds && pairs >= returns ? SC_EOL_CRLF
                      : returns > feeds                 ? SC_EOL_CR
                                                        : SC_EOL_LF;
    send(SCI_SETEOLMODE, mode);
}

void TextArea::setBytes(std::string_view text) {
    setting_ = true;
    send(SCI_SETREADONLY, 0);
    send(SCI_SETUNDOCOLLECTION, 0);
    send(SCI_CLEARALL);
    send(SCI_SETSCROLLWIDTH, 1);
    sendBytes(SCI_ADDTEXT, static_cast<long>(text.size()), text.data());
    send(SCI_SETUNDOCOLLECTION, 1);
    send(SCI_EMPTYUNDOBUFFER);
    send(SCI_SETSAVEPOINT);
    send(SCI_GOTOPOS, 0);
    send(SCI_SETREADONLY, (flags_ & READONLY) != 0);
    adoptLineEnd(text);
    marked_ = false;
    setting_ = false;
    tellReader();
    changed_ = false;
    applyNumberBar();
    emit moved();
}

Selection TextArea::selection() const {
    const int start = static_cast<int>(send(SCI_GETSELECTIONSTART)),
              end = static_cast<int>(send(SCI_GETSELECTIONEND));
    return {start + 1, end - start};
}

void TextArea::select(int start, int length) {
    const int size = this->length();
    const int from = std::clamp(start - 1, 0, size);
    const int to = std::clamp(from + std::max(length, 0), from, size);
    send(SCI_SETSELECTION, to, from);
    // A line that is out of sight comes to the upper third, so that what follows it shows.
    const long line = send(SCI_VISIBLEFROMDOCLINE, lineOf(from));
    const long first = send(SCI_GETFIRSTVISIBLELINE), shown = std::max(send(SCI_LINESONSCREEN), 1L);
    if (line < first || line >= first + shown) send(SCI_SETFIRSTVISIBLELINE, std::max(0L, line - shown / 3));
    sendBytes(SCI_SCROLLRANGE, to, reinterpret_cast<const char*>(static_cast<std::intptr_t>(from)));
    tellCaret(*this);  // the control itself tells only when it paints
    emit moved();      // the control itself tells only when it paints
}

void TextArea::replaceSelection(std::string_view text) {
    flush();
    insert(text);
    changed_ = false;
}

void TextArea::replaceRange(int start, int length, std::string_view text) {
    flush();
    const int from = std::clamp(start - 1, 0, this->length());
    const int to = std::clamp(from + std::max(length, 0), from, this->length());
    const auto moved = [&, size = static_cast<int>(text.size())](long position) {
        if (position <= from) return position;
        return position >= to ? position - (to - from) + size : std::min<long>(position, from + size);
    };
    const long anchor = moved(send(SCI_GETANCHOR)), caret = moved(send(SCI_GETCURRENTPOS));
    free_ = true;
    send(SCI_SETREADONLY, 0);
    send(SCI_BEGINUNDOACTION);
    send(SCI_SETTARGETRANGE, from, to);
    sendBytes(SCI_REPLACETARGET, static_cast<long>(text.size()), text.data());
    send(SCI_ENDUNDOACTION);
    send(SCI_SETANCHOR, anchor);
    send(SCI_SETCURRENTPOS, caret);
    send(SCI_SETREADONLY, (flags_ & READONLY) != 0);
    free_ = false;
    tellReader();
    changed_ = false;
}

bool TextArea::canUndo() const {
    return (flags_ & READONLY) == 0 && send(SCI_CANUNDO) != 0;
}

bool TextArea::canRedo() const {
    return (flags_ & READONLY) == 0 && send(SCI_CANREDO) != 0;
}

void TextArea::step(unsigned message) {
    flush();
    free_ = true;
    send(message);
    free_ = false;
    tellReader();
    changed_ = false;
}

void TextArea::undo() {
    step(SCI_UNDO);
}

void TextArea::redo() {
    step(SCI_REDO);
}

void TextArea::insert(std::string_view text) {
    const long start = send(SCI_GETSELECTIONSTART), end = send(SCI_GETSELECTIONEND);
    free_ = true;
    send(SCI_SETREADONLY, 0);
    send(SCI_BEGINUNDOACTION);
    send(SCI_SETTARGETRANGE, start, end);
    sendBytes(SCI_REPLACETARGET, static_cast<long>(text.size()), text.data());
    send(SCI_ENDUNDOACTION);
    send(SCI_SETEMPTYSELECTION, start + static_cast<long>(text.size()));
    send(SCI_SETREADONLY, (flags_ & READONLY) != 0);
    send(SCI_SCROLLCARET);
    free_ = false;
}

void TextArea::replaceRange(long start, long end, std::string_view text) {
    send(SCI_SETTARGETRANGE, start, end);
    sendBytes(SCI_REPLACETARGET, static_cast<long>(text.size()), text.data());
}

// Each place is changed by itself, so that what stands between them is not moved and undo keeps the changes alone; those
// that nearly touch are one, since a change costs more than the few bytes between them. Where the last of them ends.
long TextArea::changePlaces(const std::vector<TextEdit>& edits) {
    long shift = -1;  // from a 1-based place of the text before to where that stands now
    for (auto edit = edits.begin(); edit != edits.end();) {
        const int first = edit->start;
        int end = first;
        std::string comes;
        do {
            if (edit->start > end)
                comes += range(static_cast<int>(end + shift), static_cast<int>(edit->start + shift));
            comes += edit->text;
            end = edit->start + edit->length;
        } while (++edit != edits.end() && edit->start - end <= NearPlaces);
        replaceRange(first + shift, end + shift, comes);
        shift += static_cast<long>(comes.size()) - (end - first);
    }
    return edits.back().start + edits.back().length + shift;
}

// The control's notes of the changes are of use to a screen reader only, and cost more than the changes.
void TextArea::replaceParts(const std::vector<TextEdit>& edits) {
    flush();
    free_ = true;
    const long mask = send(SCI_GETMODEVENTMASK);
    const bool heard = QAccessible::isActive(), before = blockSignals(!heard);
    if (!heard) send(SCI_SETMODEVENTMASK, 0);
    send(SCI_SETREADONLY, 0);
    send(SCI_SETLAYOUTCACHE, SC_CACHE_NONE);  // which each change would go through
    send(SCI_BEGINUNDOACTION);
    const long end = changePlaces(edits);
    send(SCI_ENDUNDOACTION);
    send(SCI_SETLAYOUTCACHE, SC_CACHE_PAGE);
    send(SCI_SETMODEVENTMASK, mask);
    blockSignals(before);
    send(SCI_SETEMPTYSELECTION, end);
    send(SCI_SETREADONLY, (flags_ & READONLY) != 0);
    send(SCI_SCROLLCARET);
    free_ = false;
    changed_ = false;
    applyNumberBar();
    emit moved();
}

void TextArea::setMarks(const std::vector<Selection>& places) {
    send(SCI_SETINDICATORCURRENT, MarkIndicator);
    send(SCI_INDICATORCLEARRANGE, 0, length());
    const int size = length();
    for (const Selection& place : places) {
        const int from = std::clamp(place.start - 1, 0, size);
        send(SCI_INDICATORFILLRANGE, from, std::clamp(place.length, 0, size - from));
    }
}

// Places that touch each other are one.
std::vector<Selection> TextArea::marks() const {
    std::vector<Selection> places;
    const int size = length();
    for (int at = 0; at < size;) {
        const int end = static_cast<int>(send(SCI_INDICATOREND, MarkIndicator, at));
        if (end <= at) break;  // there are no marks at all
        if (send(SCI_INDICATORVALUEAT, MarkIndicator, at) != 0) places.push_back({at + 1, end - at});
        at = end;
    }
    return places;
}

void TextArea::insertTyped(std::string_view text) {
    if (!refuses(text)) insert(text);
}

bool TextArea::refuses(std::string_view text) {
    const long marked = send(SCI_GETSELECTIONEND) - send(SCI_GETSELECTIONSTART);
    if (limit_ == 0 || length() - marked + static_cast<long>(text.size()) <= limit_) return false;
    refuse();
    return true;
}

void TextArea::refuse() {
    QApplication::beep();
    emit refused(limit_);
}

void TextArea::checkInsertion(int bytes) {
    if (limit_ == 0 || free_ || setting_ || length() + bytes <= limit_) return;
    sendBytes(SCI_CHANGEINSERTION, 0, "");
    refuse();
}

bool TextArea::modified() const {
    return marked_ || send(SCI_GETMODIFY) != 0;
}

void TextArea::setModified(bool modified) {
    if (!modified) send(SCI_SETSAVEPOINT);
    marked_ = modified;
    emit moved();
}

// What was put in can be read only when it is in.
void TextArea::tellReader() {
    const Selection added = std::exchange(added_, Selection());
    if (added.length > 0) tellInsertion(*this, added.start - 1, added.length);
}

void TextArea::onModified() {
    if (setting_ || changed_) return;
    changed_ = true;
    // Whatever changed the text, a menu or a drop too, is reported when it is over.
    QTimer::singleShot(0, this, [this] { flush(); });
}

void TextArea::flush() {
    tellReader();
    if (!changed_) return;
    changed_ = false;
    emit edited();
}

// ---- look ----

void TextArea::setFlags(int flags) {
    const int changed = flags_ ^ flags;
    flags_ = flags;
    send(SCI_SETREADONLY, (flags & READONLY) != 0);
    if ((flags & ALLOWOVERWRITE) == 0) send(SCI_SETOVERTYPE, 0);
    send(SCI_SETCARETLINEVISIBLE, (flags & READONLY) == 0);
    digits_ = 0;
    applyNumberBar();
    if ((changed & HILITE) != 0) colourAnew();
    emit moved();
}

void TextArea::applyNumberBar() {
    if ((flags_ & NUMBERBAR) == 0) {
        send(SCI_SETMARGINWIDTHN, 0, 0);
        digits_ = 0;
        return;
    }
    const int digits = std::max(3, static_cast<int>(std::to_string(send(SCI_GETLINECOUNT)).size()));
    if (digits == digits_) return;
    digits_ = digits;
    const std::string widest(static_cast<std::size_t>(digits), '8');
    send(SCI_SETMARGINWIDTHN, 0, sendBytes(SCI_TEXTWIDTH, STYLE_LINENUMBER, widest.c_str()) + 2 * Gap);
}

void TextArea::setTokens(std::string_view tokens) {
    if (tokens == tokens_) return;
    tokens_ = tokens;
    rules_ = TokenRules(tokens);
    applyColours();
    colourAnew();
}

// Clearing the styles counts the whole text as coloured; starting at 0 lets the next paint ask for them
// again.
void TextArea::colourAnew() {
    send(SCI_CLEARDOCUMENTSTYLE);
    send(SCI_STARTSTYLING, 0);
}

void TextArea::setTextFont(const Font& font) {
    font_ = font;
    applyColours();
    digits_ = 0;
    applyNumberBar();
}

void TextArea::applyColours() {
    const QFont fixed = QFontDatabase::systemFont(QFontDatabase::FixedFont);
    const QString family = familyOf(font_);
    const qreal points = font_.size > 0 ? font_.size : fixed.pointSizeF() > 0 ? fixed.pointSizeF() : 10;
    const QPalette palette = QApplication::palette(this);
    const QColor paper = palette.color(QPalette::Base), ink = palette.color(QPalette::Text);
    const auto style = [&](long number, const QColor& fore, const QColor& back, bool bold, bool italic) {
        SendScintilla(SCI_STYLESETFORE, static_cast<unsigned long>(number), fore);
        SendScintilla(SCI_STYLESETBACK, static_cast<unsigned long>(number), back);
        send(SCI_STYLESETBOLD, number, bold);
        send(SCI_STYLESETITALIC, number, italic);
    };
    sendBytes(SCI_STYLESETFONT, STYLE_DEFAULT, family.toUtf8().constData());
    send(SCI_STYLESETSIZEFRACTIONAL, STYLE_DEFAULT, std::lround(points * int(SC_FONT_SIZE_MULTIPLIER)));
    style(STYLE_DEFAULT, ink, paper, font_.bold, font_.italic);
    send(SCI_STYLECLEARALL);
    const QColor bar = mixed(paper, palette.color(QPalette::Window), 0.6);
    style(STYLE_LINENUMBER, mixed(ink, bar, 0.45), bar, false, false);
    long number = FirstStyle;
    for (const TokenStyle& rule : rules_.styles()) {
        style(number++, readable(colourOf(rule), paper), paper, rule.bold, rule.italic);
    }
    SendScintilla(SCI_SETCARETFORE, ink);
    SendScintilla(SCI_SETCARETLINEBACK, mixed(paper, ink, 0.05));
    // Marked text has one colour, as in the desktop's own controls: those for the paper would not read well.
    const QColor markedInk = palette.color(QPalette::Active, QPalette::HighlightedText);
    SendScintilla(SCI_SETSELFORE, 1UL, markedInk);
    SendScintilla(SCI_SETSELBACK, 1UL,
                  readable(palette.color(QPalette::Active, QPalette::Highlight), markedInk));
    send(SCI_SETSELALPHA, SC_ALPHA_NOALPHA);
    // Under the text, and faint, so that coloured text stays readable on it; the frame is what shows.
    send(SCI_INDICSETSTYLE, MarkIndicator, INDIC_STRAIGHTBOX);
    send(SCI_INDICSETUNDER, MarkIndicator, 1);
    send(SCI_INDICSETALPHA, MarkIndicator, 30);
    send(SCI_INDICSETOUTLINEALPHA, MarkIndicator, 255);
    SendScintilla(SCI_INDICSETFORE, static_cast<unsigned long>(MarkIndicator), MarkColour);
    SendScintilla(SCI_SETWHITESPACEFORE, 1UL, mixed(paper, ink, 0.4));
}

void TextArea::onStyleNeeded(int end) {
    const int from = startOfLine(lineOf(static_cast<int>(send(SCI_GETENDSTYLED))));
    const int line = lineOf(end);
    const int to = static_cast<int>(send(SCI_GETLINEENDPOSITION, line));
    const int stop = std::max({to, end, from});
    send(SCI_STARTSTYLING, from);
    if (rules_.empty() || (flags_ & HILITE) == 0) {
        send(SCI_SETSTYLING, stop - from, 0);
        return;
    }
    // In pieces of whole lines, so that a jump to the end of a long text needs no second copy of it.
    for (int at = from; at < stop;) {
        const int next = startOfLine(lineOf(at) + 1);
        int last = std::min(stop, std::max(startOfLine(lineOf(std::min(stop, at + Piece))), next));
        if (last <= at) last = stop;
        rules_.colour(range(at, last), styles_);
        sendBytes(SCI_SETSTYLINGEX, static_cast<long>(styles_.size()), styles_.data());
        at = last;
    }
}

TextArea::Place TextArea::place() const {
    const int caret = static_cast<int>(send(SCI_GETCURRENTPOS));
    const int line = lineOf(caret), start = startOfLine(line);
    if (caret - start > LongLine) return {line + 1, caret - start + 1};
    return {line + 1, static_cast<int>(send(SCI_GETCOLUMN, caret)) + 1};
}

bool TextArea::overwriting() const {
    return send(SCI_GETOVERTYPE) != 0;
}

// ---- the user ----

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
    std::string text(LineEnds[std::clamp(send(SCI_GETEOLMODE), 0L, 2L)]);
    if ((flags_ & AUTOINDENT) != 0) {
        const int caret = static_cast<int>(send(SCI_GETSELECTIONSTART));
        const int start = startOfLine(lineOf(caret));
        const std::string_view head = caret > start ? range(start, caret) : std::string_view();
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
        const std::string_view text = stop > at ? range(at, stop) : std::string_view();
        const auto blanks = std::min(text.find_first_not_of(' '), text.size());
        const long remove =
            !text.empty() && text[0] == '\t' ? 1 : static_cast<long>(std::min<std::size_t>(blanks, TabWidth));
        if (remove > 0) send(SCI_DELETERANGE, at, remove);
    }
    send(SCI_ENDUNDOACTION);
    if (whole)
        send(SCI_SETSELECTION, last + 1 < send(SCI_GETLINECOUNT) ? startOfLine(last + 1) : length(),
             startOfLine(first));
    return true;
}

void TextArea::keyPressEvent(QKeyEvent* event) {
    const auto modifiers = event->modifiers() & ~Qt::KeypadModifier;
    const bool plain = modifiers == Qt::NoModifier, shift = modifiers == Qt::ShiftModifier;
    const bool writable = (flags_ & READONLY) == 0;
    if (writable && event->matches(QKeySequence::Paste) && pasteBytes()) return;
    switch (event->key()) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
        if (writable && (plain || shift)) return newLine();
        break;
    case Qt::Key_Tab:
        if (!writable || !plain) break;
        if ((flags_ & TABSHIFT) == 0 || !shiftBlock(false)) insertTyped("\t");
        return;
    case Qt::Key_Backtab:
        if (writable && (flags_ & TABSHIFT) != 0)
            shiftBlock(true);
        else
            QAbstractScrollArea::focusNextPrevChild(false);
        return;
    case Qt::Key_Insert:
        if (plain && (flags_ & ALLOWOVERWRITE) == 0) return;
        break;
    default: break;
    }
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

namespace {

std::string withLineEnds(std::string_view text, std::string_view end) {
    std::string out;
    out.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] != '\r' && text[i] != '\n') {
            out += text[i];
            continue;
        }
        if (text[i] == '\r' && i + 1 < text.size() && text[i + 1] == '\n') ++i;
        out += end;
    }
    return out;
}

}  // namespace

// The control would fetch all of it before anybody could see how much it is. One that is larger than a text can be is
// refused.
bool TextArea::pasteForeign() {
    const QClipboard* board = QGuiApplication::clipboard();
    if (QGuiApplication::platformName() != u"xcb" || board->ownsClipboard()) return false;
    const QMimeData* data = board->mimeData();
    if (data != nullptr && data->hasFormat(QStringLiteral("text/x-qscintilla-rectangular"))) return false;
    const auto text = foreignClipboard(LargestText + 1);
    if (!text) return false;
    if (text->size() > LargestText)
        QApplication::beep();
    else if (!text->empty())
        insertTyped(withLineEnds(*text, LineEnds[std::clamp(send(SCI_GETEOLMODE), 0L, 2L)]));
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
    QMimeData* data = QsciScintillaBase::toMimeData(text, rectangular);
    const Selection marked = selection();
    // The text that comes here has blanks in the place of NUL.
    if (!rectangular && text.size() == marked.length && marked.length > 0) {
        const std::string_view bytes = range(marked.start - 1, marked.start - 1 + marked.length);
        data->setData(QString::fromLatin1(BytesType), QByteArray(bytes.data(), text.size()));
    }
    return data;
}

QByteArray TextArea::fromMimeData(const QMimeData* source, bool& rectangular) const {
    const QByteArray text = QsciScintillaBase::fromMimeData(source, rectangular);
    const QByteArray bytes = source->data(QString::fromLatin1(BytesType));
    return bytes.isEmpty() ? text : bytes;
}

}  // namespace tarn::platform::qt
