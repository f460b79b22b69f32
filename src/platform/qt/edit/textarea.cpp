// SPDX-License-Identifier: GPL-3.0-or-later
//
//   making           fonts, and the settings of the component
//   text             bytes in and out, line ends, selection, what the user types, the mark of a change
//   look             flags, number bar, colours by the tokens, fonts, the caret's place
//   the user         lines and blocks by keys, paste, context menu, drag and drop
#include "platform/qt/edit/textarea.h"

#include "platform/model/view.h"
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

constexpr long MarkIndicator = 8;  // the first that is not the control's own
constexpr int FirstStyle = 1;      // style numbers of the rules; 0 is plain
constexpr int Gap = 6;             // pixels between number bar and text
constexpr int LongLine = 65536;    // beyond this a column is not counted in characters
constexpr int Piece = 65536;       // bytes coloured at a time
constexpr std::string_view LineEndTexts[] = {"\r\n", "\r", "\n"};  // by the control's numbers
constexpr int NearPlaces = 64;  // bytes between changes that are made as one

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
                if ((type & SC_MOD_BEFOREDELETE) != 0) onRemoval(position, bytes);
                if ((type & SC_MOD_BEFOREINSERT) != 0) onInsertion(position, bytes);
                onModified();
            });
    connect(this, &TextArea::SCN_STYLENEEDED, this, [this](int end) { onStyleNeeded(end); });
    connect(this, &TextArea::SCN_UPDATEUI, this, [this](int what) {
        if ((what & SC_UPDATE_CONTENT) != 0) applyNumberBar();
        if ((what & (SC_UPDATE_SELECTION | SC_UPDATE_CONTENT)) == 0) return;
        tellReader();
        tellCaret(*this);
        matchBrackets();
        showLine(lineOf(static_cast<int>(send(SCI_GETCURRENTPOS))));
        emit moved();
    });
    connect(this, &TextArea::SCN_SAVEPOINTLEFT, this, [this] { emit moved(); });
    connect(this, &TextArea::SCN_SAVEPOINTREACHED, this, [this] {
        applyMarks();  // looks at the line ends too
        send(SCI_MARKERDELETEALL, UnsavedMark);
        emit moved();
    });
    connect(this, &TextArea::SCN_ZOOM, this, [this] {
        digits_ = 0;
        applyNumberBar();
    });
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
    send(SCI_USEPOPUP, SC_POPUP_NEVER);  // its Paste ends a text at the first NUL; see contextMenuEvent
    send(SCI_SETUSETABS, 1);
    send(SCI_SETTABINDENTS, 0);
    send(SCI_SETBACKSPACEUNINDENTS, 0);
    send(SCI_SETENDATLASTLINE, 1);
    send(SCI_SETMULTIPLESELECTION, 1);
    send(SCI_SETADDITIONALSELECTIONTYPING, 1);
    send(SCI_SETMULTIPASTE, SC_MULTIPASTE_EACH);
    send(SCI_SETVIRTUALSPACEOPTIONS, SCVS_RECTANGULARSELECTION);
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
    applyLooks();
}

// ---- text ----

std::string_view TextArea::view(int from, int to) const {
    if (to <= from) return {};
    const auto* start = reinterpret_cast<const char*>(send(SCI_GETRANGEPOINTER, from, to - from));
    return {start, static_cast<std::size_t>(to - from)};
}

int TextArea::size() const {
    return static_cast<int>(send(SCI_GETLENGTH));
}

int TextArea::length() const {
    return size() - rows().added();
}

std::string TextArea::bytes() const {
    return rows().on() ? rows().joined(view(0, size()), 0) : std::string(view(0, size()));
}

std::string TextArea::range(int start, int length) const {
    const int from = std::clamp(start - 1, 0, this->length());
    const int to = from + std::clamp(length, 0, this->length() - from);
    if (!rows().on()) return std::string(view(from, to));
    const int first = rows().toControl(from, true), last = to > from ? rows().toControl(to, false) : first;
    return rows().joined(view(first, last), first);
}

int TextArea::lineOf(int position) const {
    return static_cast<int>(send(SCI_LINEFROMPOSITION, position));
}

int TextArea::startOfLine(int line) const {
    return static_cast<int>(send(SCI_POSITIONFROMLINE, line));
}

// New lines end as most do in the first part of the file.
void TextArea::adoptLineEnd(std::string_view text) {
    endsKnown_ = false;
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
    parts_.stop();
    arrived_ = {0, 0};
    if (Rows::needed(text) && Rows::possible(text)) parts_.start(text);
    const std::string rows = parts_.on() ? parts_.parted(text) : std::string();
    const std::string_view shown = parts_.on() ? rows : text;
    sendBytes(SCI_ADDTEXT, static_cast<long>(shown.size()), shown.data());
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
    changes_.clear();
    kinds_ = 0;
    send(SCI_MARKERDELETEALL, UnsavedMark);
    send(SCI_MARKERDELETEALL, SavedMark);
    scanned_ = false;
    scanLater(0, lineOf(size()));
    digits_ = 0;
    applyNumberBar();
    emit moved();
}

Selection TextArea::selection() const {
    const int start = rows().toText(static_cast<int>(send(SCI_GETSELECTIONSTART))),
              end = rows().toText(static_cast<int>(send(SCI_GETSELECTIONEND)));
    return {start + 1, end - start};
}

void TextArea::select(int start, int length) {
    const Selection place = inControl(start, length);
    const int from = place.start, to = from + place.length;
    send(SCI_SETSELECTION, to, from);
    showLine(lineOf(to));
    showLine(lineOf(from));
    // A line that is out of sight comes to the upper third, so that what follows it shows.
    const long line = send(SCI_VISIBLEFROMDOCLINE, lineOf(from));
    const long first = send(SCI_GETFIRSTVISIBLELINE), shown = std::max(send(SCI_LINESONSCREEN), 1L);
    if (line < first || line >= first + shown) send(SCI_SETFIRSTVISIBLELINE, std::max(0L, line - shown / 3));
    sendBytes(SCI_SCROLLRANGE, to, reinterpret_cast<const char*>(static_cast<std::intptr_t>(from)));
    tellCaret(*this);  // the control itself tells only when it paints
    emit moved();      // the control itself tells only when it paints
}

bool TextArea::reloads(int start, int length, std::string_view text) {
    if (!rows().on() || rows().fits(text)) return false;
    std::string all = bytes();
    all.replace(static_cast<std::size_t>(start - 1), static_cast<std::size_t>(length), text);
    setBytes(all);
    setModified(true);
    return true;
}

Selection TextArea::inControl(int start, int length) const {
    const int size = this->length();
    const int begin = std::clamp(start - 1, 0, size), end = begin + std::clamp(length, 0, size - begin);
    const int from = rows().toControl(begin, true), to = end > begin ? rows().toControl(end, false) : from;
    return {from, to - from};
}

void TextArea::replaceSelection(std::string_view text) {
    flush();
    const Selection at = selection();
    if (reloads(at.start, at.length, text)) return select(at.start + static_cast<int>(text.size()), 0);
    insert(text);
    settle();
}

void TextArea::replaceRange(int start, int length, std::string_view text) {
    flush();
    const int from = std::clamp(start - 1, 0, this->length()),
              to = from + std::clamp(length, 0, this->length() - from);
    const auto moved = [&, size = static_cast<int>(text.size())](long place) {
        const int position = rows().toText(static_cast<int>(place));
        if (position <= from) return position;
        return position >= to ? position - (to - from) + size : std::min(position, from + size);
    };
    const int anchor = moved(send(SCI_GETANCHOR)), caret = moved(send(SCI_GETCURRENTPOS));
    if (!reloads(from + 1, to - from, text)) {
        std::string store;
        const std::string_view comes = inRows(rows().toControl(from, true), text, store);
        const Selection place = inControl(from + 1, to - from);
        free_ = true;
        send(SCI_SETREADONLY, 0);
        send(SCI_BEGINUNDOACTION);
        put(place.start, place.start + place.length, comes);
        send(SCI_ENDUNDOACTION);
        send(SCI_SETREADONLY, (flags_ & READONLY) != 0);
        free_ = false;
    }
    send(SCI_SETANCHOR, rows().toControl(anchor, true));
    send(SCI_SETCURRENTPOS, rows().toControl(caret, true));
    settle();
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
    settle();
}

void TextArea::undo() {
    step(SCI_UNDO);
}

void TextArea::redo() {
    step(SCI_REDO);
}

void TextArea::insert(std::string_view whole) {
    std::string store;
    const std::string_view text = inRows(static_cast<int>(send(SCI_GETSELECTIONSTART)), whole, store);
    const long start = send(SCI_GETSELECTIONSTART), end = send(SCI_GETSELECTIONEND);
    free_ = true;
    send(SCI_SETREADONLY, 0);
    send(SCI_BEGINUNDOACTION);
    send(SCI_SETTARGETRANGE, start, end);
    sendBytes(SCI_REPLACETARGET, static_cast<long>(text.size()), text.data());
    send(SCI_ENDUNDOACTION);
    send(SCI_SETEMPTYSELECTION, send(SCI_GETTARGETEND));
    send(SCI_SETREADONLY, (flags_ & READONLY) != 0);
    send(SCI_SCROLLCARET);
    free_ = false;
}

void TextArea::put(long from, long to, std::string_view text) {
    send(SCI_SETTARGETRANGE, from, to);
    sendBytes(SCI_REPLACETARGET, static_cast<long>(text.size()), text.data());
}

// Each place is changed by itself, so that what stands between them is not moved and undo keeps the changes alone; those
// that nearly touch are one, since a change costs more than the few bytes between them. `told`: the control tells of the
// changes. Where the last of them ends, in the text from 0.
int TextArea::changePlaces(const std::vector<TextEdit>& edits, bool told) {
    int shift = 0;  // from a place of the text before to where that stands now
    for (auto edit = edits.begin(); edit != edits.end();) {
        const int first = edit->start;
        int end = first;
        std::string comes;
        do {
            if (edit->start > end) comes += range(end + shift, edit->start - end);
            comes += edit->text;
            end = edit->start + edit->length;
        } while (++edit != edits.end() && edit->start - end <= NearPlaces);
        const Selection place = inControl(first + shift, end - first);
        if (!told && place.length > 0) onRemoval(place.start, place.length);
        if (!told && !comes.empty()) onInsertion(place.start, static_cast<int>(comes.size()));
        put(place.start, place.start + place.length, comes);
        shift += static_cast<int>(comes.size()) - (end - first);
    }
    return edits.back().start - 1 + edits.back().length + shift;
}

// Whether a line could become endless, or a row too long, and need to be parted.
bool TextArea::makesEndless(const std::vector<TextEdit>& edits) const {
    int line = -1;
    long length = 0;
    for (const TextEdit& edit : edits) {
        const int at = lineOf(rows().toControl(edit.start - 1, true));
        if (at != line) length = send(SCI_LINELENGTH, line = at);
        length += static_cast<long>(edit.text.size());
        if (!edit.text.empty() && length > Rows::LongLine)
            return rows().on() || Rows::possible(view(0, size()));
    }
    return false;
}

// The control's notes of the changes are of use to a screen reader only, and cost more than the changes.
bool TextArea::replaceParts(const std::vector<TextEdit>& edits) {
    flush();
    const bool fits = !rows().on() || std::all_of(edits.begin(), edits.end(), [this](const TextEdit& edit) {
        return rows().fits(edit.text);
    });
    if (!fits || makesEndless(edits)) return false;
    free_ = true;
    const long mask = send(SCI_GETMODEVENTMASK);
    const bool heard = QAccessible::isActive(), before = blockSignals(!heard);
    if (!heard) send(SCI_SETMODEVENTMASK, 0);
    send(SCI_SETREADONLY, 0);
    send(SCI_SETLAYOUTCACHE, SC_CACHE_NONE);  // which each change would go through
    send(SCI_BEGINUNDOACTION);
    const int end = changePlaces(edits, heard);
    send(SCI_ENDUNDOACTION);
    send(SCI_SETLAYOUTCACHE, SC_CACHE_PAGE);
    send(SCI_SETMODEVENTMASK, mask);
    blockSignals(before);
    send(SCI_SETEMPTYSELECTION, rows().toControl(end, false));
    send(SCI_SETREADONLY, (flags_ & READONLY) != 0);
    send(SCI_SCROLLCARET);
    free_ = false;
    settle();
    applyNumberBar();
    emit moved();
    return true;
}

void TextArea::setMarks(const std::vector<Selection>& places) {
    send(SCI_SETINDICATORCURRENT, MarkIndicator);
    send(SCI_INDICATORCLEARRANGE, 0, size());
    for (const Selection& mark : places) {
        const Selection place = inControl(mark.start, mark.length);
        send(SCI_INDICATORFILLRANGE, place.start, place.length);
    }
}

// Places that touch each other are one.
std::vector<Selection> TextArea::marks() const {
    std::vector<Selection> places;
    const int last = size();
    for (int at = 0; at < last;) {
        const int end = static_cast<int>(send(SCI_INDICATOREND, MarkIndicator, at));
        if (end <= at) break;  // there are no marks at all
        if (send(SCI_INDICATORVALUEAT, MarkIndicator, at) != 0) {
            const int from = rows().toText(at) + 1, length = rows().toText(end) + 1 - from;
            if (!places.empty() && places.back().start + places.back().length == from)
                places.back().length += length;
            else if (length > 0)
                places.push_back({from, length});
        }
        at = end;
    }
    return places;
}

void TextArea::insertTyped(std::string_view text) {
    if (!refuses(text)) insert(text);
}

bool TextArea::refuses(std::string_view text) {
    if (limit_ == 0 || length() - selection().length + static_cast<long>(text.size()) <= limit_) return false;
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

std::string_view TextArea::inRows(int at, std::string_view text, std::string& store) {
    if (!rows().on()) {
        const int line = lineOf(at);
        const bool grows = text.find_first_of("\r\n") == std::string_view::npos &&
                           send(SCI_LINELENGTH, line) + static_cast<long>(text.size()) > Rows::LongLine;
        const bool whole =
            lineOf(size()) == 0;  // there is no line end that those in it would have to be like
        if (!grows && !Rows::needed(text)) return text;
        if (!Rows::possible(view(0, size())) || !Rows::possible(text)) return text;
        parts_.start(whole ? text : view(0, size()));
        if (!parts_.fits(text)) return parts_.stop(), text;
        forgetOddSteps();
        digits_ = 0;
        applyNumberBar();
        applyLooks();
    }
    store = parts_.parted(text);
    return store;
}

// Undoing what had line ends of another kind would bring back returns that rows take for their own.
void TextArea::forgetOddSteps() {
    applyMarks();
    const int own = parts_.pairs() ? ENDS_CRLF : ENDS_LF;
    if ((kinds_ & ~(1 << own | 1 << ENDS_NONE)) == 0) return;
    marked_ = modified();
    send(SCI_EMPTYUNDOBUFFER);
    kinds_ = 0;
}

const Rows& TextArea::rows() const {
    if (const Selection now = std::exchange(arrived_, Selection{0, 0}); now.length > 0) {
        const int end = now.start + now.length;
        parts_.inserted(now.start, view(now.start, end), static_cast<char>(send(SCI_GETCHARAT, end)));
    }
    return parts_;
}

bool TextArea::modified() const {
    return marked_ || send(SCI_GETMODIFY) != 0;
}

void TextArea::setModified(bool modified) {
    if (!modified) {
        keepMarks();
        send(SCI_SETSAVEPOINT);
    }
    marked_ = modified;
    emit moved();
}

// What was put in can be read only when it is in.
void TextArea::tellReader() {
    const Selection added = std::exchange(added_, Selection());
    if (added.length > 0) tellInsertion(*this, added.start - 1, added.length);
}

void TextArea::onRemoval(int position, int bytes) {
    tellRemoval(*this, position, bytes);
    static_cast<void>(rows());
    parts_.removing(position, bytes);
    noteChange(position, 0);
    noteEnds(view(position, position + bytes));
}

void TextArea::onInsertion(int position, int bytes) {
    added_ = {position + 1, bytes};
    static_cast<void>(rows());
    parts_.inserting(position, bytes);
    if (parts_.on()) arrived_ = {position, bytes};
    noteChange(position, bytes);
}

void TextArea::onModified() {
    if (setting_ || changed_) return;
    changed_ = true;
    // Whatever changed the text, a menu or a drop too, is reported when it is over.
    QTimer::singleShot(0, this, [this] { flush(); });
}

void TextArea::flush() {
    tellReader();
    applyMarks();
    if (!changed_) return;
    changed_ = false;
    emit edited();
}

void TextArea::settle() {
    tellReader();
    applyMarks();
    changed_ = false;
}

// ---- look ----

void TextArea::setFlags(int flags) {
    const int changed = flags_ ^ flags;
    flags_ = flags;
    send(SCI_SETREADONLY, (flags & READONLY) != 0);
    if ((flags & ALLOWOVERWRITE) == 0) send(SCI_SETOVERTYPE, 0);
    digits_ = 0;
    applyNumberBar();
    applyLooks();
    if ((changed & HILITE) != 0) colourAnew();
    emit moved();
}

void TextArea::applyNumberBar() {
    if ((flags_ & NUMBERBAR) == 0 || parts_.on()) {  // rows are no lines
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
    defineMarks();
    styleHelp();
    SendScintilla(SCI_SETCARETFORE, ink);
    SendScintilla(SCI_SETADDITIONALCARETFORE, ink);
    SendScintilla(SCI_SETCARETLINEBACK, mixed(paper, ink, 0.05));
    // Marked text has one colour, as in the desktop's own controls: those for the paper would not read well.
    const QColor markedInk = palette.color(QPalette::Active, QPalette::HighlightedText);
    SendScintilla(SCI_SETSELFORE, 1UL, markedInk);
    const QColor marking = readable(palette.color(QPalette::Active, QPalette::Highlight), markedInk);
    SendScintilla(SCI_SETSELBACK, 1UL, marking);
    SendScintilla(SCI_SETADDITIONALSELFORE, markedInk);
    SendScintilla(SCI_SETADDITIONALSELBACK, marking);
    send(SCI_SETADDITIONALSELALPHA, SC_ALPHA_NOALPHA);
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
    if (rules_.empty() || (flags_ & HILITE) == 0 || parts_.on()) {
        send(SCI_SETSTYLING, stop - from, 0);
        return;
    }
    // In pieces of whole lines, so that a jump to the end of a long text needs no second copy of it.
    for (int at = from; at < stop;) {
        const int next = startOfLine(lineOf(at) + 1);
        int last = std::min(stop, std::max(startOfLine(lineOf(std::min(stop, at + Piece))), next));
        if (last <= at) last = stop;
        rules_.colour(view(at, last), styles_);
        sendBytes(SCI_SETSTYLINGEX, static_cast<long>(styles_.size()), styles_.data());
        at = last;
    }
}

TextArea::Place TextArea::place() const {
    const int caret = static_cast<int>(send(SCI_GETCURRENTPOS));
    const int line = lineOf(caret), start = startOfLine(line);
    if (rows().on()) {
        int first = line;
        while (first > 0 && rows().isAdded(startOfLine(first) - 1)) --first;
        const int from = startOfLine(first), beginning = rows().toText(from);
        return {first + 1 - (from - beginning), rows().toText(caret) - beginning + 1};
    }
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

void TextArea::keyPressEvent(QKeyEvent* event) {
    const auto modifiers = event->modifiers() & ~Qt::KeypadModifier;
    const bool plain = modifiers == Qt::NoModifier, shift = modifiers == Qt::ShiftModifier;
    const bool writable = (flags_ & READONLY) == 0;
    emit goesOn();
    if (writable && event->matches(QKeySequence::Paste) && pasteBytes()) return;
    if (zoomKey(*event)) return;
    if (writable && parts_.on() && (plain || shift) && eraseInRows(event->key())) return;
    const bool choosing = send(SCI_AUTOCACTIVE) != 0;
    switch (event->key()) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
        if (choosing && takesChoice()) return;
        if (writable && (plain || shift)) return newLine();
        break;
    case Qt::Key_Tab:
        if (!writable || !plain) break;
        if (choosing && takesChoice()) return;
        if (send(SCI_GETSELECTIONS) > 1) return static_cast<void>(send(SCI_TAB));
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

// What stands between two rows is not there for the user: erasing it erases the character behind it too.
bool TextArea::eraseInRows(int key) {
    const bool back = key == Qt::Key_Backspace;
    if ((!back && key != Qt::Key_Delete) || selection().length > 0 || send(SCI_GETSELECTIONS) > 1)
        return false;
    const int caret = static_cast<int>(send(SCI_GETCURRENTPOS));
    send(SCI_BEGINUNDOACTION);
    if (rows().isAdded(back ? caret - 1 : caret)) send(back ? SCI_DELETEBACK : SCI_CLEAR);
    send(back ? SCI_DELETEBACK : SCI_CLEAR);
    send(SCI_ENDUNDOACTION);
    return true;
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
