// SPDX-License-Identifier: Apache-2.0
#include "platform/qt/controls/markedrows.h"

#include <QApplication>
#include <QPainter>
#include <QStyle>

#include <vector>

namespace tarn::platform::qt {

namespace {

struct Part {
    QString text;
    QFont font;
    int width = 0;
};

std::vector<Part> partsOf(const QString& marked, const QFont& font) {
    std::vector<Part> parts;
    bool bold = false;
    for (const QString& text : marked.split(QChar(BoldMark))) {
        QFont own = font;
        if (bold) own.setBold(true);
        if (!text.isEmpty()) parts.push_back({text, own, QFontMetrics(own).horizontalAdvance(text)});
        bold = !bold;
    }
    return parts;
}

QColor textColour(const QStyleOptionViewItem& option) {
    const bool enabled = option.state.testFlag(QStyle::State_Enabled);
    const bool active = option.state.testFlag(QStyle::State_Active);
    const auto group = !enabled ? QPalette::Disabled : active ? QPalette::Active : QPalette::Inactive;
    const bool selected = option.state.testFlag(QStyle::State_Selected);
    return option.palette.color(group, selected ? QPalette::HighlightedText : QPalette::Text);
}

// From the left to the right on one line; what has no room ends in dots.
void drawParts(QPainter& painter, const std::vector<Part>& parts, QRect room) {
    for (const Part& part : parts) {
        if (room.width() <= 0) return;
        const QString text = QFontMetrics(part.font).elidedText(part.text, Qt::ElideRight, room.width());
        painter.setFont(part.font);
        painter.drawText(room, Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine, text);
        room.setLeft(room.left() + part.width);
        if (text != part.text) return;
    }
}

}  // namespace

void MarkedRows::paint(QPainter* painter, const QStyleOptionViewItem& option,
                       const QModelIndex& index) const {
    const QString marked = index.data(MarkedTextRole).toString();
    if (marked.isEmpty()) return QStyledItemDelegate::paint(painter, option, index);
    QStyleOptionViewItem own(option);
    initStyleOption(&own, index);
    const QStyle* const style = own.widget != nullptr ? own.widget->style() : QApplication::style();
    const int margin = style->pixelMetric(QStyle::PM_FocusFrameHMargin, nullptr, own.widget) + 1;
    QRect room = style->subElementRect(QStyle::SE_ItemViewItemText, &own, own.widget);
    room.setRight(own.rect.right());
    own.text.clear();
    style->drawControl(QStyle::CE_ItemViewItem, &own, painter, own.widget);
    painter->save();
    painter->setPen(textColour(own));
    drawParts(*painter, partsOf(marked, own.font), room.adjusted(margin, 0, -margin, 0));
    painter->restore();
}

QSize MarkedRows::sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const {
    QSize size = sizeOf(option, index);
    if (longest)
        for (const int row : longest()) size = size.expandedTo(sizeOf(option, index.siblingAtRow(row)));
    return size;
}

QSize MarkedRows::sizeOf(const QStyleOptionViewItem& option, const QModelIndex& index) const {
    QSize size = QStyledItemDelegate::sizeHint(option, index);
    const QString marked = index.data(MarkedTextRole).toString();
    if (marked.isEmpty()) return size;
    int wider = -QFontMetrics(option.font).horizontalAdvance(index.data(Qt::DisplayRole).toString());
    for (const Part& part : partsOf(marked, option.font)) wider += part.width;
    return size + QSize(std::max(wider, 0), 0);
}

}  // namespace tarn::platform::qt
