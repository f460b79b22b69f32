// SPDX-License-Identifier: Apache-2.0
#include "platform/qt/controls/rowspeers.h"

#include "platform/qt/controls/markedrows.h"
#include "platform/qt/controls/rowsview.h"
#include "platform/qt/controls/textstores.h"
#include "platform/qt/drawing/pictures.h"
#include "platform/qt/texts.h"

#include <QAbstractListModel>
#include <QComboBox>
#include <QLineEdit>
#include <QListView>
#include <QScrollBar>
#include <QSignalBlocker>
#include <QTimer>
#include <QVBoxLayout>

#include <algorithm>
#include <iterator>
#include <numeric>

namespace tarn::platform::qt {

namespace {

// The rows of a control, read where they stand.
class RowModel : public QAbstractListModel {
public:
    RowModel(Control& control, QObject* parent) : QAbstractListModel(parent), control_(&control) {}
    int rowCount(const QModelIndex& parent = {}) const override { return parent.isValid() ? 0 : count_; }
    QVariant data(const QModelIndex& index, int role) const override {
        const auto row = static_cast<std::size_t>(index.row());
        if (!index.isValid() || control_ == nullptr || row >= control_->rows.size()) return {};
        const std::string& text = control_->rows[row].text;
        const bool marked =
            control_->type == Type::Iconlist && text.find(char(BoldMark)) != std::string::npos;
        if (role == Qt::DisplayRole || role == Qt::EditRole)
            return marked ? shown(text).remove(QChar(BoldMark)) : shown(text);
        if (role == MarkedTextRole && marked) return shown(text);
        if (role == Qt::DecorationRole && !control_->rows[row].picture.empty())
            return iconOf(control_->rows[row].picture);
        return {};
    }
    // The rows with the longest texts, at most so many.
    std::vector<int> longest(int most) const {
        std::vector<int> rows(control_ == nullptr ? 0 : control_->rows.size());
        std::iota(rows.begin(), rows.end(), 0);
        const auto middle = rows.begin() + std::min<std::ptrdiff_t>(most, std::ssize(rows));
        std::nth_element(rows.begin(), middle, rows.end(), [this](int a, int b) {
            const auto length = [this](int row) {
                return control_->rows[static_cast<std::size_t>(row)].text.size();
            };
            return length(a) > length(b);
        });
        rows.erase(middle, rows.end());
        return rows;
    }
    void refresh() {
        beginResetModel();
        count_ = static_cast<int>(control_->rows.size());
        endResetModel();
    }
    void detach() {
        control_ = nullptr;
        beginResetModel();
        count_ = 0;
        endResetModel();
    }

private:
    Control* control_;
    int count_ = 0;
};

// Finishes a row's choice: reports it only if it is news to the model.
void reportRow(Control& control, int row) {
    if (row != control.listIndex) userRow(control, row);
}

class RowsView : public RowsViewOf<QListView> {
public:
    explicit RowsView(QWidget* parent) : RowsViewOf(parent) { setUniformItemSizes(true); }
};

// Gathers the changes of the rows: a program that adds thousands of them has them measured once.
class Refresher : public QTimer {
public:
    Refresher(QObject* parent, std::function<void()> refresh) : QTimer(parent), refresh_(std::move(refresh)) {
        setSingleShot(true);
        setInterval(0);
        callOnTimeout(this, refresh_);
    }
    // A running timer that is started anew costs more than the row.
    void soon() {
        if (!isActive()) start();
    }
    void now() {
        if (!isActive()) return;
        stop();
        refresh_();
    }

private:
    std::function<void()> refresh_;
};

class RowsPeer : public Peer {
public:
    RowsPeer(Control& control, RowsView& list)
        : Peer(control, list), list_(list), rows_(new RowModel(control, &list)) {
        list.setModel(rows_);
        applyBars(list, control);
        // The bar goes by the widest row, so each of them has to be measured.
        list.setUniformItemSizes((control.scrollBars & 1) == 0);
        list.refreshed = [this] { late_->now(); };
        if (control.type == Type::Iconlist) dressIcons();
        list.doubleClicked = [this](QPoint at) {
            at = inWindow(*list_.viewport(), at);
            if (control_ != nullptr) userDoubleClick(*control_, at.x(), at.y());
        };
        // The focus alone makes a row current, but only a choice selects it.
        connect(list.selectionModel(), &QItemSelectionModel::selectionChanged, this,
                [this](const QItemSelection& now) {
                    if (!quiet_ && control_ != nullptr && !now.isEmpty())
                        reportRow(*control_, now.first().top() + 1);
                });
    }

    void apply(Property property) override {
        if (property == Property::Rows) late_->soon();
        if (property == Property::ListIndex && !late_->isActive()) choose();
    }

    void catchUp() override { late_->now(); }
    void letGo() override {
        quiet_ = true;
        late_->stop();
        rows_->detach();
    }

private:
    // A picture that is wider than it is high, such as one that begins with the line of a tree, keeps its proportions.
    void dressIcons() {
        auto* const drawing = new MarkedRows(&list_);
        drawing->longest = [this] { return rows_->longest(Measured); };
        list_.setIconSize({60, 20});
        list_.setItemDelegate(drawing);
        list_.setUniformItemSizes(true);
    }
    void choose() {
        quiet_ = true;
        const QModelIndex row = rows_->index(control_->listIndex - 1);
        if (control_->listIndex > 0)
            list_.setCurrentIndex(row);
        else
            list_.selectionModel()->clear();
        quiet_ = false;
    }
    void refreshInPlace() {
        quiet_ = true;
        const int top = list_.verticalScrollBar()->value();
        rows_->refresh();
        list_.verticalScrollBar()->setValue(top);
        choose();
    }

    static constexpr int Measured = 32;  // rows whose width is looked at

    RowsView& list_;
    RowModel* rows_;
    Refresher* late_ = new Refresher(this, [this] { refreshInPlace(); });
    bool quiet_ = false;
};

// Style 1 is a line with a list to drop down, style 2 the list alone.
class DropPeer : public Peer {
public:
    DropPeer(Control& control, QComboBox& box)
        : Peer(control, box), box_(box), rows_(new RowModel(control, &box)) {
        box.setEditable(control.comboStyle != 2);
        box.setInsertPolicy(QComboBox::NoInsert);
        box.setModel(rows_);
        if (box.isEditable()) {
            box.setCompleter(nullptr);
            takeStore(control, makeLineStore(*box.lineEdit()));
            connect(box.lineEdit(), &QLineEdit::textEdited, this, [this] {
                if (control_ != nullptr) userChange(*control_);
            });
        }
        connect(&box, &QComboBox::activated, this, [this](int row) {
            if (control_ != nullptr) userRow(*control_, row + 1);
        });
    }

    void apply(Property property) override {
        const QSignalBlocker quiet(&box_);
        if (property == Property::MaxLength && box_.isEditable())
            limitLine(*box_.lineEdit(), control_->maxLength);
        if (property == Property::Rows) refresh();
        if (property == Property::ListIndex) choose();
    }
    void letGo() override {
        if (box_.isEditable()) giveBackText(*control_);
        const QSignalBlocker quiet(&box_);
        rows_->detach();
    }

private:
    void refresh() {
        const QString typed = box_.isEditable() ? box_.lineEdit()->text() : QString();
        rows_->refresh();
        choose();
        if (box_.isEditable()) keepLine(typed);
    }
    void choose() {
        const QString typed = box_.isEditable() ? box_.lineEdit()->text() : QString();
        box_.setCurrentIndex(control_->listIndex - 1);
        // The model says itself when a row's text goes into the line.
        if (box_.isEditable()) keepLine(typed);
    }
    void keepLine(const QString& text) {
        const QSignalBlocker quiet(box_.lineEdit());
        if (box_.lineEdit()->text() != text) putLine(*box_.lineEdit(), text);
    }

    QComboBox& box_;
    RowModel* rows_;
};

// Style 0: a line above a list that is always there.
class SimpleComboPeer : public Peer {
public:
    SimpleComboPeer(Control& control, QWidget& holder)
        : Peer(control, holder), line_(new QLineEdit(&holder)), list_(new RowsView(&holder)),
          rows_(new RowModel(control, &holder)) {
        auto* layout = new QVBoxLayout(&holder);
        layout->setContentsMargins(0, 0, 0, 0);
        layout->setSpacing(0);
        layout->addWidget(line_);
        layout->addWidget(list_);
        list_->setModel(rows_);
        list_->refreshed = [this] { late_->now(); };
        holder.setFocusProxy(line_);
        takeStore(control, makeLineStore(*line_));
        connect(line_, &QLineEdit::textEdited, this, [this] {
            if (control_ != nullptr) userChange(*control_);
        });
        list_->doubleClicked = [this](QPoint at) {
            at = inWindow(*list_->viewport(), at);
            if (control_ != nullptr) userDoubleClick(*control_, at.x(), at.y());
        };
        connect(list_->selectionModel(), &QItemSelectionModel::selectionChanged, this,
                [this](const QItemSelection& now) {
                    if (!quiet_ && control_ != nullptr && !now.isEmpty())
                        reportRow(*control_, now.first().top() + 1);
                });
    }
    void apply(Property property) override {
        if (property == Property::MaxLength) limitLine(*line_, control_->maxLength);
        if (property == Property::Rows) late_->soon();
        if (property == Property::ListIndex && !late_->isActive()) choose();
    }
    QWidget* focusWidget() override { return line_; }
    void catchUp() override { late_->now(); }
    void letGo() override {
        giveBackText(*control_);
        quiet_ = true;
        late_->stop();
        rows_->detach();
    }

private:
    void choose() {
        quiet_ = true;
        if (control_->listIndex > 0)
            list_->setCurrentIndex(rows_->index(control_->listIndex - 1));
        else
            list_->selectionModel()->clear();
        quiet_ = false;
    }
    void refresh() {
        quiet_ = true;
        rows_->refresh();
        choose();
    }

    QLineEdit* line_;
    RowsView* list_;
    RowModel* rows_;
    Refresher* late_ = new Refresher(this, [this] { refresh(); });
    bool quiet_ = false;
};

}  // namespace

Peer* makeRowsPeer(Control& control, QWidget* parent) {
    return new RowsPeer(control, *new RowsView(parent));
}

Peer* makeComboPeer(Control& control, QWidget* parent) {
    if (control.comboStyle == 0) return new SimpleComboPeer(control, *new QWidget(parent));
    return new DropPeer(control, *new QComboBox(parent));
}

}  // namespace tarn::platform::qt
