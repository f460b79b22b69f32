// SPDX-License-Identifier: GPL-3.0-or-later
//
// Fonts and colours of the text: those of the desktop, and of the words by the rules of the language (tokens.h).
#include "platform/qt/edit/colours.h"
#include "platform/qt/edit/textarea.h"

#include <QApplication>
#include <QFontDatabase>
#include <QFontInfo>

#include <algorithm>
#include <cmath>

namespace tarn::platform::qt {

namespace {

constexpr int FirstStyle = 1;  // style numbers of the rules; 0 is plain
constexpr int Piece = 65536;   // bytes coloured at a time

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
    colourMarkings(paper, ink);
}

// The caret and what is marked: by the user, or by a search.
void TextArea::colourMarkings(const QColor& paper, const QColor& ink) {
    const QPalette palette = QApplication::palette(this);
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

}  // namespace tarn::platform::qt
