// SPDX-License-Identifier: GPL-3.0-or-later
//
// Marks of whole lines (platform/operations/linemarks.h): their margin, their looks, and what becomes of them.
#include "platform/operations/linemarks.h"

#include "platform/qt/edit/colours.h"
#include "platform/qt/edit/textarea.h"

#include <QApplication>

#include <array>

namespace tarn::platform::qt {

namespace {

constexpr int MarginWidth = 16;    // pixels
constexpr long CurrentShade = 70;  // of 255

}  // namespace

void TextArea::setMarkMargin(bool shown) {
    markMargin_ = shown;
    applyMarkMargin();
}

// Without the margin no mark may be defined for it: the control would show it behind the text.
void TextArea::applyMarkMargin() {
    const bool shown = markMargin_ && !parts_.on();  // rows are no lines
    send(SCI_SETMARGINTYPEN, MarkMargin, SC_MARGIN_SYMBOL);
    // What stands behind the text is drawn there only if a margin has it, which itself shows nothing of it.
    send(SCI_SETMARGINMASKN, MarkMargin, MarginMask | 1 << CurrentLineMark);
    send(SCI_SETMARGINSENSITIVEN, MarkMargin, 1);
    send(SCI_SETMARGINWIDTHN, MarkMargin, shown ? MarginWidth : 0);
    if (!shown) setLineMarks({});
}

void TextArea::defineLineMarks() {
    const QPalette palette = QApplication::palette(this);
    const QColor paper = palette.color(QPalette::Base);
    const auto define = [this](int number, long symbol, const QColor& edge, const QColor& fill) {
        send(SCI_MARKERDEFINE, number, symbol);
        SendScintilla(SCI_MARKERSETFORE, static_cast<unsigned long>(number), edge);
        SendScintilla(SCI_MARKERSETBACK, static_cast<unsigned long>(number), fill);
    };
    const QColor red = readable(QColor(0xD0, 0x30, 0x30), paper),
                 amber = readable(QColor(0xE0, 0x9A, 0x00), paper), ink = palette.color(QPalette::Text);
    define(BreakpointMark, SC_MARK_CIRCLE, red, red);
    define(RuleMark, SC_MARK_CIRCLE, red, amber);
    define(CurrentMark, SC_MARK_ARROW, ink, amber);
    define(CurrentLineMark, SC_MARK_BACKGROUND, amber, amber);
    send(SCI_MARKERSETALPHA, CurrentLineMark, CurrentShade);
}

void TextArea::setLineMarks(const std::vector<LineMark>& marks) {
    for (const int mark : {BreakpointMark, RuleMark, CurrentMark, CurrentLineMark})
        send(SCI_MARKERDELETEALL, mark);
    placed_.clear();
    if (!markMargin_ || parts_.on()) return;
    const long lines = send(SCI_GETLINECOUNT);
    for (const LineMark& mark : marks) {
        PlacedMark& placed = placed_.emplace_back();
        placed.kinds = mark.kinds;
        if (mark.line < 1 || mark.line > lines) continue;
        const auto add = [&](int number) {
            placed.handles.push_back(send(SCI_MARKERADD, mark.line - 1, number));
        };
        for (int bit = 0; bit < 3; ++bit)
            if ((mark.kinds & 1 << bit) != 0) add(BreakpointMark + bit);
        if ((mark.kinds & LINEMARK_CURRENT) != 0) add(CurrentLineMark);
    }
}

std::vector<LineMark> TextArea::lineMarks() const {
    std::vector<LineMark> marks;
    for (const PlacedMark& placed : placed_) {
        const long line =
            placed.handles.empty() ? -1 : send(SCI_MARKERLINEFROMHANDLE, placed.handles.front());
        marks.push_back({static_cast<int>(line) + 1, placed.kinds});
    }
    return marks;
}

// The control would give the marks of a line that goes to the one that takes its place.
void TextArea::dropLineMarks(int position, int bytes) {
    const int first = lineOf(position), last = lineOf(position + bytes);
    long line = position == startOfLine(first) ? first : first + 1;
    while ((line = send(SCI_MARKERNEXT, line, MarginMask)) >= 0 && line < last)
        for (const int mark : {BreakpointMark, RuleMark, CurrentMark, CurrentLineMark})
            send(SCI_MARKERDELETE, line, mark);
}

}  // namespace tarn::platform::qt
