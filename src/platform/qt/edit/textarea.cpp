// SPDX-License-Identifier: GPL-3.0-or-later
//
//   making           what is heard of the component, and its settings
//   text             bytes in and out, line ends, selection
//   changes          what is told of them, to whom, and when
//   caret            where it stands
#include "platform/qt/edit/textarea.h"

#include "platform/operations/linemarks.h"
#include "platform/qt/edit/accessible.h"

#include <QApplication>
#include <QClipboard>
#include <QTimer>

#include <algorithm>
#include <utility>

namespace tarn::platform::qt {

namespace {

constexpr int LongColumn =
    65536;  // bytes in front of the caret, beyond which they are not counted in characters

}  // namespace

// ---- making ----

TextArea::TextArea(QWidget* parent) : QsciScintillaBase(parent) {
    setFrameShape(QFrame::NoFrame);
    // The mark keeps its colour when another window, or program, takes the selection of the X server.
    disconnect(QGuiApplication::clipboard(), nullptr, this, nullptr);
    configure();
    applyColours();
    listen();
}

void TextArea::listen() {
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
    connect(this, &TextArea::SCN_MARGINCLICK, this, [this](int position, int, int margin) {
        if (margin == MarkMargin) emit marginPressed(lineOf(position) + 1);
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
    send(SCI_SETMARGINTYPEN, NumberMargin, SC_MARGIN_NUMBER);
    send(SCI_SETMARGINMASKN, NumberMargin, 0);
    send(SCI_SETMARGINLEFT, 0, NumberGap);
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
    setLineMarks({});
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
    applyMarkMargin();
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
    // The control itself tells only when it paints.
    tellCaret(*this);
    emit moved();
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

// ---- changes ----

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
    if (!placed_.empty()) dropLineMarks(position, bytes);
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

// ---- caret ----

TextArea::Place TextArea::place() const {
    const int caret = static_cast<int>(send(SCI_GETCURRENTPOS));
    const int line = lineOf(caret), start = startOfLine(line);
    if (rows().on()) {
        int first = line;
        while (first > 0 && rows().isAdded(startOfLine(first) - 1)) --first;
        const int from = startOfLine(first), beginning = rows().toText(from);
        return {first + 1 - (from - beginning), rows().toText(caret) - beginning + 1};
    }
    if (caret - start > LongColumn) return {line + 1, caret - start + 1};
    return {line + 1, static_cast<int>(send(SCI_GETCOLUMN, caret)) + 1};
}

bool TextArea::overwriting() const {
    return send(SCI_GETOVERTYPE) != 0;
}

}  // namespace tarn::platform::qt
