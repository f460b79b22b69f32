// SPDX-License-Identifier: Apache-2.0
#include "platform/qt/controls/gridpeer.h"

#include "platform/qt/controls/rowsview.h"
#include "platform/qt/drawing/pictures.h"
#include "platform/qt/texts.h"

#include <QAbstractTableModel>
#include <QHeaderView>
#include <QMouseEvent>
#include <QScrollBar>
#include <QStyle>
#include <QStyledItemDelegate>
#include <QTimer>
#include <QTreeView>

#include <algorithm>
#include <charconv>
#include <string_view>
#include <vector>

namespace tarn::platform::qt {

namespace {

constexpr std::size_t Sample = 500;   // rows that are looked at for widths and numbers
constexpr int WidestCharacters = 50;  // of a column that the user has not changed
constexpr int LongText = 40;          // what is longer may be cut, so it shows itself as a hint

// The cell at `column` (from 0) of a line; empty behind the last one.
std::string_view cellOf(std::string_view line, int column) {
    for (; column > 0; --column) {
        const std::size_t end = line.find('\t');
        if (end == std::string_view::npos) return {};
        line.remove_prefix(end + 1);
    }
    return line.substr(0, line.find('\t'));
}

int cellCount(std::string_view line) {
    return static_cast<int>(std::count(line.begin(), line.end(), '\t')) + 1;
}

std::string_view trimmed(std::string_view text) {
    const std::size_t first = text.find_first_not_of(' ');
    if (first == std::string_view::npos) return {};
    return text.substr(first, text.find_last_not_of(' ') - first + 1);
}

bool isNumber(std::string_view text) {
    double value = 0;
    const char* const end = text.data() + text.size();
    const auto [at, error] = std::from_chars(text.data(), end, value);
    return error == std::errc() && at == end;
}

// The rows that are looked at: some hundred, spread from the first to the last.
template <class Visit>
void eachSampleRow(const std::vector<Row>& rows, Visit visit) {
    const std::size_t count = std::min(rows.size(), Sample);
    for (std::size_t i = 0; i < count; ++i) visit(rows[count == 1 ? 0 : i * (rows.size() - 1) / (count - 1)]);
}
template <class Visit>
void eachSample(const std::vector<Row>& rows, Visit visit) {
    eachSampleRow(rows, [&](const Row& row) { visit(std::string_view(row.text)); });
}

// The names of the columns, from a title line that may begin and end with a tab.
std::string_view titleLine(const Control& control) {
    std::string_view line = control.caption;
    if (line.starts_with('\t')) line.remove_prefix(1);
    if (line.ends_with('\t')) line.remove_suffix(1);
    return line;
}

// Keeps a number at the right edge of its column away from the next one. The blank must not be one that a
// line end swallows.
QString spaced(const QString& number) {
    return number + QChar(QChar::Nbsp);
}

// The rows of a control, read where they stand.
class GridModel : public QAbstractTableModel {
public:
    GridModel(Control& control, QObject* parent) : QAbstractTableModel(parent), control_(&control) {}
    int rowCount(const QModelIndex& parent = {}) const override { return parent.isValid() ? 0 : rows_; }
    int columnCount(const QModelIndex& parent = {}) const override {
        return parent.isValid() ? 0 : static_cast<int>(numeric_.size());
    }
    QVariant data(const QModelIndex& index, int role) const override {
        const auto row = static_cast<std::size_t>(index.row());
        if (!index.isValid() || control_ == nullptr || row >= control_->rows.size()) return {};
        const Row& line = control_->rows[row];
        if (role == Qt::DisplayRole) return shown(cellOf(line.text, index.column()));
        if (role == Qt::TextAlignmentRole) return alignment(index.column());
        if (role == Qt::DecorationRole && index.column() == 0 && !line.picture.empty())
            return iconOf(line.picture);
        if (role != Qt::ToolTipRole) return {};
        const QString text = shown(cellOf(line.text, index.column()));
        return text.size() > LongText ? text : QVariant();
    }
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override {
        if (orientation != Qt::Horizontal || control_ == nullptr) return {};
        if (role == Qt::TextAlignmentRole) return alignment(section);
        if (role != Qt::DisplayRole && role != Qt::AccessibleTextRole) return {};
        const QString title = shown(trimmed(cellOf(titleLine(*control_), section)));
        return role == Qt::DisplayRole && isNumeric(section) ? spaced(title) : title;
    }
    bool isNumeric(int column) const {
        const auto index = static_cast<std::size_t>(column);
        return index < numeric_.size() && numeric_[index];
    }
    void refresh() {
        beginResetModel();
        rows_ = static_cast<int>(control_->rows.size());
        numeric_ = numericColumns();
        endResetModel();
    }
    void detach() {
        control_ = nullptr;
        beginResetModel();
        rows_ = 0;
        endResetModel();
    }

private:
    QVariant alignment(int column) const {
        const bool right =
            static_cast<std::size_t>(column) < numeric_.size() && numeric_[static_cast<std::size_t>(column)];
        return QVariant((right ? Qt::AlignRight : Qt::AlignLeft) | Qt::AlignVCenter);
    }
    // One flag for each column: its cells, as far as they are looked at, are numbers, and there are some.
    std::vector<bool> numericColumns() const {
        int columns = cellCount(titleLine(*control_));
        eachSample(control_->rows,
                   [&](std::string_view row) { columns = std::max(columns, cellCount(row)); });
        std::vector<bool> numeric;
        for (int column = 0; column < columns; ++column) numeric.push_back(holdsNumbers(column));
        return numeric;
    }
    bool holdsNumbers(int column) const {
        bool some = false, all = true;
        eachSample(control_->rows, [&](std::string_view row) {
            const std::string_view cell = cellOf(row, column);
            if (cell.empty() || !all) return;
            all = isNumber(cell);
            some = true;
        });
        return some && all;
    }

    Control* control_;
    int rows_ = 0;
    std::vector<bool> numeric_;
};

class CellDelegate : public QStyledItemDelegate {
public:
    using QStyledItemDelegate::QStyledItemDelegate;

protected:
    void initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const override {
        QStyledItemDelegate::initStyleOption(option, index);
        if (option->displayAlignment.testFlag(Qt::AlignRight)) option->text = spaced(option->text);
        // The end of a path tells more than its beginning.
        if (option->text.startsWith('/') || option->text.startsWith("\"/"))
            option->textElideMode = Qt::ElideLeft;
    }
    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override {
        constexpr int lead = 4;  // pixels between rows
        return QStyledItemDelegate::sizeHint(option, index) + QSize(0, lead);
    }
};

class GridView : public RowsViewOf<QTreeView> {
public:
    explicit GridView(QWidget* parent) : RowsViewOf(parent) {
        setRootIsDecorated(false);
        setItemsExpandable(false);
        setUniformRowHeights(true);
        setAllColumnsShowFocus(true);
        setAlternatingRowColors(true);
        header()->setSectionsMovable(false);
        header()->setStretchLastSection(true);
    }

protected:
    // Every second row is a little nearer to the text's colour. Not every desktop tells a colour for that:
    // dark ones may leave the toolkit's light one.
    void initViewItemOption(QStyleOptionViewItem* option) const override {
        RowsViewOf::initViewItemOption(option);
        constexpr float share = 0.05F;
        const QColor paper = palette().color(QPalette::Base), ink = palette().color(QPalette::Text);
        const auto between = [](float a, float b) { return a + (b - a) * share; };
        option->palette.setColor(QPalette::AlternateBase,
                                 QColor::fromRgbF(between(paper.redF(), ink.redF()),
                                                  between(paper.greenF(), ink.greenF()),
                                                  between(paper.blueF(), ink.blueF())));
    }
};

class GridPeer : public Peer {
public:
    GridPeer(Control& control, GridView& grid)
        : Peer(control, grid), grid_(grid), rows_(new GridModel(control, &grid)) {
        grid.setModel(rows_);
        applyBars(grid, control);
        grid.setIconSize({20, 20});
        grid.setItemDelegate(new CellDelegate(&grid));
        grid.setHeaderHidden(true);
        grid.refreshed = [this] { catchUp(); };
        grid.doubleClicked = [this](QPoint at) {
            at = inWindow(*grid_.viewport(), at);
            if (control_ != nullptr) userDoubleClick(*control_, at.x(), at.y());
        };
        late_->setSingleShot(true);
        late_->setInterval(0);
        late_->callOnTimeout(this, [this] { refresh(); });
        // The last column changes with the window too.
        connect(grid.header(), &QHeaderView::sectionResized, this, [this](int column) {
            if (!quiet_ && column + 1 < rows_->columnCount()) ownWidths_ = true;
        });
        // The focus alone makes a row current, but only a choice selects it.
        connect(grid.selectionModel(), &QItemSelectionModel::selectionChanged, this,
                [this](const QItemSelection& now) {
                    if (quiet_ || control_ == nullptr || now.isEmpty()) return;
                    const int row = now.first().top() + 1;
                    if (row != control_->listIndex) userRow(*control_, row);
                });
    }

    void apply(Property property) override {
        // Thousands of rows that are added one by one are shown once.
        if (property == Property::Rows || property == Property::Caption) late_->start();
        if (property == Property::ListIndex && !late_->isActive()) choose();
    }
    void catchUp() override {
        if (!late_->isActive()) return;
        late_->stop();
        refresh();
    }
    void letGo() override {
        quiet_ = true;
        late_->stop();
        rows_->detach();
    }

private:
    void choose() {
        quiet_ = true;
        if (control_->listIndex > 0)
            grid_.setCurrentIndex(rows_->index(control_->listIndex - 1, 0));
        else
            grid_.selectionModel()->clear();
        quiet_ = false;
    }
    void refresh() {
        if (control_ == nullptr) return;
        quiet_ = true;
        const int top = grid_.verticalScrollBar()->value();
        rows_->refresh();
        grid_.setHeaderHidden(control_->caption.empty());
        measure();
        grid_.verticalScrollBar()->setValue(top);
        choose();
    }
    // The user's own widths hold as long as the columns are the same.
    void measure() {
        if (measured_ != control_->caption) ownWidths_ = false;
        measured_ = control_->caption;
        if (ownWidths_) return;
        // The last column takes the room that is left, unless its numbers would stand far from all others.
        grid_.header()->setStretchLastSection(!rows_->isNumeric(rows_->columnCount() - 1));
        for (int column = 0; column < rows_->columnCount(); ++column)
            grid_.header()->resizeSection(column, widthOf(column));
    }
    int widthOf(int column) const {
        const QFontMetrics metrics = grid_.fontMetrics();
        const int character = metrics.averageCharWidth();
        // The blanks at the end of a title ask for room; digits and letters are wider than they are.
        const std::string_view title = cellOf(titleLine(*control_), column);
        const int width = std::max(metrics.horizontalAdvance(shown(trimmed(title))),
                                   static_cast<int>(title.size()) * character);
        int cells = 0;
        eachSample(control_->rows, [&](std::string_view row) {
            cells = std::max(cells, metrics.horizontalAdvance(shown(cellOf(row, column))));
        });
        const int most = std::min(cells, WidestCharacters * character) + (column == 0 ? pictureWidth() : 0);
        return std::max(width, most) + 3 * character;
    }
    // What a picture takes of the first column.
    int pictureWidth() const {
        bool some = false;
        eachSampleRow(control_->rows, [&](const Row& row) { some = some || !row.picture.empty(); });
        return some ? grid_.iconSize().width() + grid_.style()->pixelMetric(QStyle::PM_FocusFrameHMargin) * 2
                    : 0;
    }

    GridView& grid_;
    GridModel* rows_;
    QTimer* late_ = new QTimer(this);
    std::string measured_;
    bool ownWidths_ = false, quiet_ = false;
};

}  // namespace

Peer* makeGridPeer(Control& control, QWidget* parent) {
    return new GridPeer(control, *new GridView(parent));
}

}  // namespace tarn::platform::qt
