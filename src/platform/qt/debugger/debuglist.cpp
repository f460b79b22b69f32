// SPDX-License-Identifier: Apache-2.0
#include "platform/qt/debugger/debuglist.h"

#include "platform/qt/debugger/debugrows.h"
#include "platform/qt/texts.h"

#include <QFontDatabase>
#include <QHelpEvent>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QScrollBar>
#include <QToolTip>

#include <algorithm>
#include <utility>

namespace tarn::platform::qt {

namespace {

bool isNamePart(QChar c) {
    return c.isLetterOrNumber() || c == u'_';
}

}  // namespace

DebugList::DebugList(DebugWindow& window, QWidget* parent)
    : QListView(parent), window_(&window), rows_(new DebugRows(this)),
      painter_(new DebugRowPainter(*rows_, this)) {
    setObjectName(QStringLiteral("201"));
    setAccessibleName(tr("Lines"));
    setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    setUniformItemSizes(true);
    setSelectionMode(SingleSelection);
    setEditTriggers(NoEditTriggers);
    setVerticalScrollMode(ScrollPerItem);
    setHorizontalScrollMode(ScrollPerPixel);
    setItemDelegate(painter_);
    rows_->setWindow(&window);
    setModel(rows_);
    connect(verticalScrollBar(), &QScrollBar::valueChanged, this, [this](int value) {
        if (window_ == nullptr || showing_) return;
        window_->top = value + 1;
        keeps_ = false;
    });
}

void DebugList::release() {
    window_ = nullptr;
    rows_->setWindow(nullptr);
}

// ---- what the model has changed ----

void DebugList::showLines() {
    const bool before = std::exchange(showing_, true);
    rows_->setWindow(window_);
    showing_ = before;
}

void DebugList::showWidth() {
    scheduleDelayedItemsLayout();
}

void DebugList::showMarks() {
    viewport()->update();
}

void DebugList::showSelection() {
    if (window_ == nullptr) return;
    const bool before = std::exchange(showing_, true);
    const QModelIndex index = rows_->index(window_->selected - 1);
    if (index.isValid())
        selectionModel()->select(index, QItemSelectionModel::ClearAndSelect);
    else
        selectionModel()->clearSelection();
    selectionModel()->setCurrentIndex(index, QItemSelectionModel::NoUpdate);
    if (std::exchange(window_->scrolls, false)) {
        const QRect place = visualRect(index), all = viewport()->rect();
        if (place.top() < all.top() || place.bottom() > all.bottom()) scrollTo(index, PositionAtCenter);
        window_->top = verticalScrollBar()->value() + 1;
        keeps_ = true;
    }
    showing_ = before;
}

void DebugList::showTop() {
    if (window_ == nullptr || rows_->rowCount() == 0) return;
    const bool before = std::exchange(showing_, true);
    executeDelayedItemsLayout();
    keeps_ = false;
    verticalScrollBar()->setValue(window_->top - 1);
    window_->top = verticalScrollBar()->value() + 1;
    showing_ = before;
}

// A bar may come, and the window get another size, after the line was brought into view.
void DebugList::keepInView() {
    if (!keeps_ || window_ == nullptr || !currentIndex().isValid()) return;
    const bool before = std::exchange(showing_, true);
    scrollTo(currentIndex(), EnsureVisible);
    window_->top = verticalScrollBar()->value() + 1;
    showing_ = before;
}

void DebugList::paintEvent(QPaintEvent* event) {
    painter_->paintGround(*viewport());
    QListView::paintEvent(event);
}

void DebugList::resizeEvent(QResizeEvent* event) {
    QListView::resizeEvent(event);
    keepInView();
}

void DebugList::showTip() {
    if (window_ == nullptr) return;
    const QRect place = visualRect(indexAt(viewport()->mapFromGlobal(pointer_)));
    if (window_->tip.empty()) return QToolTip::hideText();
    // The mark in front says that it is rich text: without it the toolkit guesses, and shows "&quot;" for a quote.
    const QString lines = shown(window_->tip).toHtmlEscaped().replace(u'\n', QStringLiteral("<br>"));
    QToolTip::showText(pointer_, QStringLiteral("<qt>") + lines + QStringLiteral("</qt>"), viewport(), place);
}

QString DebugList::selectedText() const {
    return window_ != nullptr ? shown(window_->lines.text(selectedLine())) : QString();
}

QString DebugList::wholeText() const {
    QString text;
    for (int line = 1; window_ != nullptr && line <= window_->lines.count(); ++line)
        text += shown(window_->lines.text(line)) + u'\n';
    return text;
}

// ---- what the user does ----

int DebugList::selectedLine() const {
    const QModelIndexList rows = selectionModel()->selectedRows();
    return rows.isEmpty() ? 0 : rows.constFirst().row() + 1;
}

void DebugList::selectionChanged(const QItemSelection& selected, const QItemSelection& deselected) {
    QListView::selectionChanged(selected, deselected);
    if (window_ != nullptr && !showing_) window_->selected = selectedLine();
}

int DebugList::lineAt(const QPoint& place) const {
    return window_ == nullptr ? 0 : indexAt(place).row() + 1;
}

DebugList::Part DebugList::partAt(int x) const {
    const DebugColumns columns = painter_->columns();
    return x < columns.markers ? Part::Margin : x < columns.text ? Part::Marker : Part::Text;
}

// The text up to the end of the word at that place; empty for a number, and where no word is.
std::string DebugList::textToWordAt(int line, int x) const {
    if (partAt(x) != Part::Text) return {};
    const QString text = shownDebugLine(window_->lines.text(line));
    const int from = painter_->columns().text - horizontalOffset();
    qsizetype at = 0;
    while (at < text.size() && from + fontMetrics().horizontalAdvance(text, static_cast<int>(at) + 1) <= x)
        ++at;
    if (at >= text.size() || !isNamePart(text[at])) return {};
    qsizetype start = at, end = at;
    while (end < text.size() && isNamePart(text[end])) ++end;
    while (start > 0 && isNamePart(text[start - 1])) --start;
    return text[start].isDigit() ? std::string() : text.left(end).toStdString();
}

bool DebugList::openBy(int key) {
    const int line = selectedLine();
    if (window_ == nullptr || line == 0) return false;
    const DebugMarker marker = window_->lines.marker(line);
    const bool opens = key == Qt::Key_Return || key == Qt::Key_Enter ||
                       (key == Qt::Key_Right && marker == DebugMarker::Expand) ||
                       (key == Qt::Key_Left && marker == DebugMarker::Collapse);
    if (opens && openedByKey) openedByKey();
    return opens;
}

void DebugList::keyPressEvent(QKeyEvent* event) {
    if (typed && typed(*event)) return;
    const auto plain = event->modifiers() & ~Qt::KeypadModifier;
    if (plain != Qt::NoModifier || !openBy(event->key())) QListView::keyPressEvent(event);
}

void DebugList::mousePressEvent(QMouseEvent* event) {
    QListView::mousePressEvent(event);
    const int line = lineAt(event->pos());
    if (line == 0 || event->button() != Qt::LeftButton) return;
    const Part part = partAt(event->pos().x());
    if (part == Part::Margin && window_->numbers && margined) return margined(line);
    if (part == Part::Marker && window_->lines.marker(line) != DebugMarker::None && opened) opened(line);
}

// Its first click has done what a click into the margin does.
void DebugList::mouseDoubleClickEvent(QMouseEvent* event) {
    const int line = lineAt(event->pos());
    if (line == 0 || event->button() != Qt::LeftButton) return;
    const Part part = partAt(event->pos().x());
    const bool done = (part == Part::Margin && window_->numbers) ||
                      (part == Part::Marker && window_->lines.marker(line) != DebugMarker::None);
    if (!done && opened) opened(line);
}

bool DebugList::viewportEvent(QEvent* event) {
    if (event->type() != QEvent::ToolTip) return QListView::viewportEvent(event);
    const auto& help = *static_cast<QHelpEvent*>(event);
    const int line = lineAt(help.pos());
    pointer_ = help.globalPos();
    const std::string text = line > 0 ? textToWordAt(line, help.pos().x()) : std::string();
    if (text.empty())
        QToolTip::hideText();
    else if (rested)
        rested(line, text);
    return true;
}

void DebugList::changeEvent(QEvent* event) {
    QListView::changeEvent(event);
    if (event->type() == QEvent::FontChange) scheduleDelayedItemsLayout();
}

// The margin stays where it is, so that what is there cannot be moved along.
void DebugList::scrollContentsBy(int dx, int dy) {
    QListView::scrollContentsBy(dx, dy);
    if (dx != 0) viewport()->update();
}

}  // namespace tarn::platform::qt
