// SPDX-License-Identifier: GPL-3.0-or-later
//
// What stands around the text of an edit window:
//   looks        the caret's line, blanks, tabs, size, flags, number bar and margins
//   brackets     the partner of the one at the caret
//   changes      marks in the margin
//   line ends    which the text has, and other ones
#include "platform/model/view.h"
#include "platform/qt/edit/colours.h"
#include "platform/qt/edit/textarea.h"

#include <QApplication>
#include <QKeyEvent>
#include <QWheelEvent>

#include <algorithm>

namespace tarn::platform::qt {

namespace {

constexpr int FarthestPartner = 32768;          // bytes that are looked through for it
constexpr int ChangeWidth = 4, FoldWidth = 14;  // pixels

// By LineEnds.
constexpr long ControlEnds[] = {QsciScintillaBase::SC_EOL_LF, QsciScintillaBase::SC_EOL_CRLF,
                                QsciScintillaBase::SC_EOL_CR};

bool isBracket(char c) {
    return c != '\0' && std::string_view("()[]{}").find(c) != std::string_view::npos;
}

char otherBracket(char c) {
    static constexpr std::string_view brackets = "()[]{}";
    return brackets[brackets.find(c) ^ 1U];
}

}  // namespace

// ---- looks ----

void TextArea::setLooks(int looks, int tabWidth, int zoom) {
    looks_ = looks;
    tabWidth_ = tabWidth;
    applyLooks();
    send(SCI_SETZOOM, zoom);
    scanLater(0, lineOf(size()));
}

void TextArea::applyLooks() {
    const auto shows = [this](int look) { return (looks_ & look) != 0; };
    send(SCI_SETTABWIDTH, tabWidth_);
    send(SCI_SETCARETLINEVISIBLE, shows(LOOK_LINE) && (flags_ & READONLY) == 0);
    send(SCI_SETVIEWWS, shows(LOOK_BLANKS) ? SCWS_VISIBLEALWAYS : SCWS_INVISIBLE);
    send(SCI_SETMARGINTYPEN, ChangeMargin, SC_MARGIN_SYMBOL);
    send(SCI_SETMARGINMASKN, ChangeMargin, 1 << UnsavedMark | 1 << SavedMark);
    send(SCI_SETMARGINWIDTHN, ChangeMargin, shows(LOOK_CHANGES) ? ChangeWidth : 0);
    send(SCI_SETMARGINTYPEN, FoldMargin, SC_MARGIN_SYMBOL);
    send(SCI_SETMARGINMASKN, FoldMargin, static_cast<int>(SC_MASK_FOLDERS));
    send(SCI_SETMARGINSENSITIVEN, FoldMargin, 1);
    send(SCI_SETAUTOMATICFOLD, SC_AUTOMATICFOLD_SHOW | SC_AUTOMATICFOLD_CLICK | SC_AUTOMATICFOLD_CHANGE);
    send(SCI_SETFOLDFLAGS, SC_FOLDFLAG_LINEAFTER_CONTRACTED);
    const bool folds = shows(LOOK_FOLDS) && !blocks_.empty() && !parts_.on();
    if (!folds && send(SCI_GETMARGINWIDTHN, FoldMargin) > 0) foldAll(false);
    send(SCI_SETMARGINWIDTHN, FoldMargin, folds ? FoldWidth : 0);
    applyMarkMargin();
    matchBrackets();
}

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
        send(SCI_SETMARGINWIDTHN, NumberMargin, 0);
        digits_ = 0;
        return;
    }
    const int digits = std::max(3, static_cast<int>(std::to_string(send(SCI_GETLINECOUNT)).size()));
    if (digits == digits_) return;
    digits_ = digits;
    const std::string widest(static_cast<std::size_t>(digits), '8');
    send(SCI_SETMARGINWIDTHN, NumberMargin,
         sendBytes(SCI_TEXTWIDTH, STYLE_LINENUMBER, widest.c_str()) + 2 * NumberGap);
}

void TextArea::defineMarks() {
    const QPalette palette = QApplication::palette(this);
    const QColor paper = palette.color(QPalette::Base), ink = palette.color(QPalette::Text);
    const QColor bar = mixed(paper, palette.color(QPalette::Window), 0.6);
    const auto mark = [&](long number, long symbol, const QColor& fore, const QColor& back) {
        send(SCI_MARKERDEFINE, number, symbol);
        SendScintilla(SCI_MARKERSETFORE, static_cast<unsigned long>(number), fore);
        SendScintilla(SCI_MARKERSETBACK, static_cast<unsigned long>(number), back);
    };
    const QColor unsaved = readable(QColor(0xE0, 0x8A, 0x00), paper),
                 saved = readable(QColor(0x2E, 0x9E, 0x4F), paper);
    mark(UnsavedMark, SC_MARK_FULLRECT, unsaved, unsaved);
    mark(SavedMark, SC_MARK_FULLRECT, saved, saved);
    defineLineMarks();
    const QColor line = mixed(ink, bar, 0.5);
    static constexpr std::pair<long, long> folds[] = {{SC_MARKNUM_FOLDER, SC_MARK_BOXPLUS},
                                                      {SC_MARKNUM_FOLDEROPEN, SC_MARK_BOXMINUS},
                                                      {SC_MARKNUM_FOLDEREND, SC_MARK_BOXPLUSCONNECTED},
                                                      {SC_MARKNUM_FOLDEROPENMID, SC_MARK_BOXMINUSCONNECTED},
                                                      {SC_MARKNUM_FOLDERSUB, SC_MARK_VLINE},
                                                      {SC_MARKNUM_FOLDERTAIL, SC_MARK_LCORNER},
                                                      {SC_MARKNUM_FOLDERMIDTAIL, SC_MARK_TCORNER}};
    for (const auto& [number, symbol] : folds) mark(number, symbol, bar, line);
    SendScintilla(SCI_SETFOLDMARGINCOLOUR, 1UL, bar);
    SendScintilla(SCI_SETFOLDMARGINHICOLOUR, 1UL, bar);
    const auto style = [&](long number, const QColor& fore, const QColor& back) {
        SendScintilla(SCI_STYLESETFORE, static_cast<unsigned long>(number), fore);
        SendScintilla(SCI_STYLESETBACK, static_cast<unsigned long>(number), back);
    };
    const QColor matched = mixed(paper, palette.color(QPalette::Highlight), 0.35),
                 lonely = mixed(paper, QColor(Qt::red), 0.35);
    style(STYLE_BRACELIGHT, readable(ink, matched), matched);
    style(STYLE_BRACEBAD, readable(ink, lonely), lonely);
}

void TextArea::zoomTo(int points) {
    send(SCI_SETZOOM, std::clamp(points, -8, 20));
    emit zoomed(static_cast<int>(send(SCI_GETZOOM)));
}

bool TextArea::zoomKey(const QKeyEvent& event) {
    const auto modifiers = event.modifiers() & ~(Qt::KeypadModifier | Qt::ShiftModifier);
    if (modifiers != Qt::ControlModifier) return false;
    const int now = static_cast<int>(send(SCI_GETZOOM));
    switch (event.key()) {
    case Qt::Key_Plus:
    case Qt::Key_Equal: zoomTo(now + 1); return true;
    case Qt::Key_Minus: zoomTo(now - 1); return true;
    case Qt::Key_0: zoomTo(0); return true;
    default: return false;
    }
}

void TextArea::wheelEvent(QWheelEvent* event) {
    if (event->modifiers() != Qt::ControlModifier || event->angleDelta().y() == 0)
        return QsciScintillaBase::wheelEvent(event);
    zoomTo(static_cast<int>(send(SCI_GETZOOM)) + (event->angleDelta().y() > 0 ? 1 : -1));
    event->accept();
}

// ---- brackets ----

void TextArea::matchBrackets() {
    int at = -1;
    if ((looks_ & LOOK_BRACKETS) != 0 && selection().length == 0) {
        const int caret = static_cast<int>(send(SCI_GETCURRENTPOS));
        if (caret > 0 && isBracket(static_cast<char>(send(SCI_GETCHARAT, caret - 1))))
            at = caret - 1;
        else if (isBracket(static_cast<char>(send(SCI_GETCHARAT, caret))))
            at = caret;
    }
    if (at < 0) return static_cast<void>(send(SCI_BRACEHIGHLIGHT, -1, -1));
    const int partner = partnerOf(at);
    if (partner == -1) return static_cast<void>(send(SCI_BRACEBADLIGHT, at));
    send(SCI_BRACEHIGHLIGHT, at, partner < 0 ? at : partner);
}

// Where the partner of a bracket stands: among those of its style, since one in a text or a comment is none of the
// others'. -1 if there is none, -2 if none is near enough to be looked for.
int TextArea::partnerOf(int position) const {
    const auto own = static_cast<char>(send(SCI_GETCHARAT, position)), other = otherBracket(own);
    const long style = send(SCI_GETSTYLEAT, position), styled = send(SCI_GETENDSTYLED);
    const int step = std::string_view("([{").find(own) != std::string_view::npos ? 1 : -1;
    const int from = step > 0 ? position : std::max(0, position - FarthestPartner);
    const int to = step > 0 ? std::min(size(), position + FarthestPartner) : position + 1;
    const std::string_view text = view(from, to);
    int open = 0;
    for (int at = position; at >= from && at < to; at += step) {
        const char c = text[static_cast<std::size_t>(at - from)];
        if ((c != own && c != other) || (at < styled && send(SCI_GETSTYLEAT, at) != style)) continue;
        open += c == own ? 1 : -1;
        if (open == 0) return at;
    }
    const bool ended = step > 0 ? to == size() : from == 0;
    return ended ? -1 : -2;
}

// ---- changes ----

// What is going to change; it can be marked when it has.
void TextArea::noteChange(int position, int bytes) {
    if (setting_) return;
    applyMarks();
    changes_.push_back({position, bytes});
}

void TextArea::applyMarks() {
    if (changes_.empty()) return;
    for (const Change& change : std::exchange(changes_, {})) {
        const int from = std::min(change.position, size()), to = std::min(from + change.bytes, size());
        const int first = lineOf(from), last = lineOf(to);
        for (int line = first; line <= last; ++line) send(SCI_MARKERADD, line, UnsavedMark);
        noteEnds(view(from, to));
        scanLater(first, last);
    }
}

void TextArea::keepMarks() {
    applyMarks();
    for (long line = send(SCI_MARKERNEXT, 0, 1 << UnsavedMark); line >= 0;
         line = send(SCI_MARKERNEXT, line + 1, 1 << UnsavedMark)) {
        send(SCI_MARKERDELETE, line, UnsavedMark);
        send(SCI_MARKERDELETE, line, SavedMark);
        send(SCI_MARKERADD, line, SavedMark);
    }
    send(SCI_MARKERDELETEALL, UnsavedMark);
}

// ---- line ends ----

// Ends of the kind that the others have change nothing; what else they may have changed is found when it is asked for.
void TextArea::noteEnds(std::string_view text) {
    const int ends = lineEndsOf(text);
    kinds_ |= 1 << ends;
    if (ends != ENDS_NONE && ends != ends_) endsKnown_ = false;
}

int TextArea::lineEnds() {
    applyMarks();
    if (rows().added() + 1 == send(SCI_GETLINECOUNT)) return ENDS_NONE;
    if (rows().on()) return rows().pairs() ? ENDS_CRLF : ENDS_LF;
    if (ends_ == ENDS_NONE) endsKnown_ = false;
    if (endsKnown_) return ends_;
    endsKnown_ = true;
    ends_ = lineEndsOf(view(0, size()));
    if (ends_ <= ENDS_CR) send(SCI_SETEOLMODE, ControlEnds[ends_]);
    return ends_;
}

bool TextArea::convertLineEnds(int ends, int most) {
    if (parts_.on() || lineEnds() == ends || lineEnds() == ENDS_NONE) return false;
    const auto after = withLineEnds(view(0, size()), ends).size();
    if (most > 0 && after > static_cast<std::size_t>(most)) return false;
    flush();
    free_ = true;
    send(SCI_CONVERTEOLS, ControlEnds[ends]);
    free_ = false;
    send(SCI_SETEOLMODE, ControlEnds[ends]);
    ends_ = ends;
    endsKnown_ = true;
    applyMarks();
    changed_ = false;
    emit moved();
    return true;
}

}  // namespace tarn::platform::qt
