// SPDX-License-Identifier: Apache-2.0
#include "platform/qt/debugger/debugrows.h"

#include "platform/qt/debugger/debugpictures.h"
#include "platform/qt/texts.h"

#include <QPainter>
#include <QStyle>

#include <algorithm>
#include <cmath>

namespace tarn::platform::qt {

namespace {

constexpr int tabStop = 4;
constexpr qsizetype mostLetters = 4096;
constexpr int extentBehind = 30;  // pixels
constexpr int gap = 4;

struct MarkPicture {
    int flag;
    const char *picture, *spoken;
};
// In the order of drawing, one above the other, but for the last one, which has a place of its own.
constexpr MarkPicture marks[] = {
    {DEBUG_BREAKPOINT, "markbreak", "breakpoint"},
    {DEBUG_RULE, "markrule", "breakpoint with a rule"},
    {DEBUG_CURRENT, "markcurrent", "current line"},
    {DEBUG_CHANGED, "markchanged", "changed"},
};

bool isPlain(std::string_view bytes) {
    return std::all_of(bytes.begin(), bytes.end(), [](char c) { return static_cast<signed char>(c) >= 0; });
}

int plainColumns(std::string_view bytes) {
    int columns = 0;
    for (const char c : bytes) columns += c == '\t' ? tabStop - columns % tabStop : 1;
    return columns;
}

QColor blend(const QColor& from, const QColor& to, int percent) {
    const auto part = [=](int a, int b) { return a + (b - a) * percent / 100; };
    return {part(from.red(), to.red()), part(from.green(), to.green()), part(from.blue(), to.blue())};
}

// What a screen reader says in front of the text.
QString spokenMarks(const DebugWindow& window, int line) {
    QStringList words;
    for (const MarkPicture& mark : marks) {
        if ((window.lines.flags(line) & mark.flag) == 0) continue;
        if (mark.flag == DEBUG_BREAKPOINT && (window.lines.flags(line) & DEBUG_RULE) != 0) continue;
        words << QLatin1String(mark.spoken);
    }
    if (window.lines.marker(line) == DebugMarker::Expand) words << QStringLiteral("collapsed");
    if (window.lines.marker(line) == DebugMarker::Collapse) words << QStringLiteral("expanded");
    return words.join(QStringLiteral(", "));
}

}  // namespace

QString shownDebugLine(std::string_view bytes) {
    if (bytes.ends_with('\r')) bytes.remove_suffix(1);
    const QString text = shown(bytes.substr(0, mostLetters * 4));
    QString line;
    line.reserve(text.size());
    for (const QChar c : text) {
        if (c == u'\t')
            line += QString(tabStop - line.size() % tabStop, u' ');
        else if (c.unicode() < 32)
            line += QChar(0x2400 + c.unicode());  // its picture
        else
            line += c;
    }
    if (line.size() > mostLetters) line = line.left(mostLetters) + QChar(0x2026);
    return line;
}

// ---- the model ----

void DebugRows::setWindow(const DebugWindow* window) {
    beginResetModel();
    window_ = window;
    endResetModel();
}

int DebugRows::rowCount(const QModelIndex& parent) const {
    return window_ == nullptr || parent.isValid() ? 0 : window_->lines.count();
}

QVariant DebugRows::data(const QModelIndex& index, int role) const {
    if (window_ == nullptr || !index.isValid()) return {};
    const int line = index.row() + 1;
    if (role == Qt::DisplayRole) return shownDebugLine(window_->lines.text(line));
    if (role != Qt::AccessibleTextRole) return {};
    QString text = shownDebugLine(window_->lines.text(line));
    if (window_->numbers) text = QStringLiteral("%1: %2").arg(line).arg(text);
    const QString words = spokenMarks(*window_, line);
    return words.isEmpty() ? text : words + QStringLiteral(", ") + text;
}

// ---- drawing ----

int DebugRowPainter::side() const {
    return std::max(list_.fontMetrics().height() - 2, 8);
}

DebugColumns DebugRowPainter::columns() const {
    const DebugWindow* const window = rows_.window();
    DebugColumns columns;
    columns.numbers = side() * 3 / 2 + gap;
    columns.markers = columns.numbers;
    if (window == nullptr) return columns;
    if (window->numbers) {
        const auto digits = QString::number(std::max(window->lines.count(), 100)).size();
        columns.markers += list_.fontMetrics().horizontalAdvance(QString(digits, u'8')) + gap;
    }
    columns.text = columns.markers + (window->lines.hasMarkers() ? side() : 0) + gap;
    return columns;
}

int DebugRowPainter::longest() const {
    if (rows_.window() == nullptr) return 0;
    const DebugLines& lines = rows_.window()->lines;
    const QFontMetrics metrics = list_.fontMetrics();
    int columns = 0, pixels = 0;
    for (int line = 1; line <= lines.count(); ++line) {
        const std::string_view text = lines.text(line);
        if (isPlain(text))
            columns = std::max(columns, plainColumns(text));
        else
            pixels = std::max(pixels, metrics.horizontalAdvance(shownDebugLine(text)));
    }
    columns = std::min(columns, static_cast<int>(mostLetters) + 1);
    const qreal letter = QFontMetricsF(list_.font(), &list_).horizontalAdvance(u'x');
    return std::max(pixels, static_cast<int>(std::ceil(letter * columns)));
}

QSize DebugRowPainter::sizeHint(const QStyleOptionViewItem&, const QModelIndex&) const {
    const bool wide = rows_.window() != nullptr && rows_.window()->extent;
    return {wide ? columns().text + longest() + extentBehind : 1, list_.fontMetrics().height() + 2};
}

void DebugRowPainter::paintGround(QWidget& viewport) const {
    QPainter painter(&viewport);
    painter.fillRect(0, 0, columns().text - gap, viewport.height(),
                     list_.palette().color(QPalette::AlternateBase));
}

// The margin covers what of the text is scrolled under it.
void DebugRowPainter::paintMargin(QPainter& painter, const QRect& row, int line) const {
    const DebugWindow& window = *rows_.window();
    const DebugColumns columns = this->columns();
    const QPalette palette = list_.palette();
    const QRect margin(0, row.top(), columns.text - gap, row.height());
    painter.fillRect(margin, palette.color(QPalette::AlternateBase));
    const int flags = window.lines.flags(line), top = row.top() + (row.height() - side()) / 2;
    for (const MarkPicture& mark : marks) {
        if ((flags & mark.flag) == 0) continue;
        QRect place(1, top, side(), side());
        if (mark.flag == DEBUG_CURRENT) place.moveLeft(side() / 2);
        debugPicture(QLatin1String(mark.picture)).paint(&painter, place);
    }
    if (window.numbers) {
        painter.setPen(blend(palette.color(QPalette::Base), palette.color(QPalette::Text), 60));
        const QRect place(columns.numbers, row.top(), columns.markers - columns.numbers - gap, row.height());
        painter.drawText(place, Qt::AlignRight | Qt::AlignVCenter, QString::number(line));
    }
    const DebugMarker marker = window.lines.marker(line);
    if (marker == DebugMarker::None) return;
    const auto* const name = marker == DebugMarker::Expand ? "markexpand" : "markcollapse";
    debugPicture(QLatin1String(name)).paint(&painter, {columns.markers, top, side(), side()});
}

void DebugRowPainter::paint(QPainter* painter, const QStyleOptionViewItem& option,
                            const QModelIndex& index) const {
    const int line = index.row() + 1;
    const bool selected = option.state.testFlag(QStyle::State_Selected);
    const bool current = (rows_.window()->lines.flags(line) & DEBUG_CURRENT) != 0;
    const auto group = option.state.testFlag(QStyle::State_Active) ? QPalette::Active : QPalette::Inactive;
    const QPalette& palette = option.palette;
    const QColor ground = palette.color(group, QPalette::Base),
                 mark = palette.color(group, QPalette::Highlight);
    QRect row = option.rect;
    row.setRight(std::max(row.right(), list_.width()));
    painter->save();
    painter->setFont(list_.font());
    painter->fillRect(row, selected ? mark : current ? blend(ground, mark, 25) : ground);
    painter->setPen(palette.color(group, selected ? QPalette::HighlightedText : QPalette::Text));
    painter->drawText(row.adjusted(columns().text, 0, 0, 0),
                      Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine,
                      index.data(Qt::DisplayRole).toString());
    paintMargin(*painter, row, line);
    if (option.state.testFlag(QStyle::State_HasFocus)) {
        QStyleOptionFocusRect focus;
        focus.QStyleOption::operator=(option);
        focus.rect.setLeft(columns().text - gap);
        focus.rect.setRight(list_.width() - 1);
        list_.style()->drawPrimitive(QStyle::PE_FrameFocusRect, &focus, painter, &list_);
    }
    painter->restore();
}

}  // namespace tarn::platform::qt
