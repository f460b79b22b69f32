// SPDX-License-Identifier: GPL-3.0-or-later
//
// What the help window is made of: its tools and keys, and the pages of its side.
#include "ide/help/window/helpwindow.h"

#include <QAction>
#include <QHelpIndexWidget>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QShortcut>
#include <QTabWidget>
#include <QToolBar>
#include <QToolButton>
#include <QVBoxLayout>

namespace tarn::help {
namespace {

QLineEdit* makeLine(const QString& name, QWidget* parent) {
    auto* line = new QLineEdit(parent);
    line->setPlaceholderText(name);
    line->setAccessibleName(name);
    line->setClearButtonEnabled(true);
    return line;
}

QVBoxLayout* columnOf(QWidget* parent) {
    auto* column = new QVBoxLayout(parent);
    column->setContentsMargins(4, 6, 4, 4);
    column->setSpacing(6);
    return column;
}

}  // namespace

QAction* HelpWindow::addTool(QToolBar& bar, const QString& name, const QString& keys, const QString& tip,
                             std::function<void()> act) {
    auto* action = new QAction(name, this);
    QList<QKeySequence> shortcuts;
    for (const QString& key : keys.split(u' ')) shortcuts << QKeySequence(key);
    action->setShortcuts(shortcuts);
    action->setToolTip(tip + QStringLiteral(" (") +
                       shortcuts.constFirst().toString(QKeySequence::NativeText) + u')');
    connect(action, &QAction::triggered, this, std::move(act));
    bar.addAction(action);
    return action;
}

void HelpWindow::makeTools() {
    auto* bar = new QToolBar(tr("Tools"), this);
    bar->setMovable(false);
    bar->setContextMenuPolicy(Qt::PreventContextMenu);
    bar->setToolButtonStyle(Qt::ToolButtonTextOnly);
    back_ = addTool(*bar, tr("Back"), QStringLiteral("Alt+Left"), tr("The page before"),
                    [this] { page_->backward(); });
    forward_ = addTool(*bar, tr("Forward"), QStringLiteral("Alt+Right"), tr("The page that was left by Back"),
                       [this] { page_->forward(); });
    addTool(*bar, tr("Contents"), QStringLiteral("Alt+Home"), tr("The first page"),
            [this] { showTopic(QString()); });
    bar->addSeparator();
    addTool(*bar, tr("Find"), QStringLiteral("Ctrl+F"), tr("Find in this page"), [this] { openFind(); });
    addTool(*bar, tr("Print"), QStringLiteral("Ctrl+P"), tr("Print this page"), [this] { print(); });
    bar->addSeparator();
    addTool(*bar, tr("Smaller"), QStringLiteral("Ctrl+-"), tr("Smaller letters"),
            [this] { page_->zoom(page_->zoomSteps() - 1), placeTimer_.start(); });
    addTool(*bar, tr("Larger"), QStringLiteral("Ctrl++ Ctrl+="), tr("Larger letters"),
            [this] { page_->zoom(page_->zoomSteps() + 1), placeTimer_.start(); });
    addToolBar(bar);
    for (QToolButton* button : bar->findChildren<QToolButton*>()) button->setFocusPolicy(Qt::TabFocus);
    back_->setEnabled(false);
    forward_->setEnabled(false);
    connect(page_, &QTextBrowser::backwardAvailable, back_, &QAction::setEnabled);
    connect(page_, &QTextBrowser::forwardAvailable, forward_, &QAction::setEnabled);
}

void HelpWindow::makeKeys() {
    addKey(QStringLiteral("Ctrl+0"), [this] { page_->zoom(0), placeTimer_.start(); });
    addKey(QStringLiteral("F1"), [this] { focusSide(SearchTab); });
    addKey(QStringLiteral("F3"), [this] { findText(false); });
    addKey(QStringLiteral("Shift+F3"), [this] { findText(true); });
    addKey(QStringLiteral("F6"), [this] {
        if (page_->hasFocus())
            focusSide(side_->currentIndex());
        else
            page_->setFocus();
    });
}

void HelpWindow::addKey(const QString& keys, std::function<void()> act) {
    connect(new QShortcut(QKeySequence(keys), this), &QShortcut::activated, this, std::move(act));
}

QWidget* HelpWindow::makeReading() {
    auto* reading = new QWidget(this);
    auto* column = new QVBoxLayout(reading);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    column->addWidget(page_, 1);
    column->addWidget(makeFindBar());
    return reading;
}

QWidget* HelpWindow::makeContents() {
    auto* tab = new QWidget(this);
    columnOf(tab);
    return tab;
}

QWidget* HelpWindow::makeIndex() {
    auto* tab = new QWidget(this);
    indexLine_ = makeLine(tr("Word of the index"), tab);
    indexLine_->setObjectName(QStringLiteral("indexline"));
    columnOf(tab)->addWidget(indexLine_);
    connect(indexLine_, &QLineEdit::textChanged, this, [this](const QString& text) {
        if (auto* index = qobject_cast<QHelpIndexWidget*>(index_.data()); index != nullptr)
            index->filterIndices(text);
    });
    connect(indexLine_, &QLineEdit::returnPressed, this, [this] {
        if (auto* index = qobject_cast<QHelpIndexWidget*>(index_.data()); index != nullptr)
            page_->show(collection_->pageOfKeyword(index->currentIndex().data().toString()));
    });
    indexLine_->installEventFilter(this);
    return tab;
}

QWidget* HelpWindow::makeSearch() {
    auto* tab = new QWidget(this);
    searchLine_ = makeLine(tr("Words to search for"), tab);
    searchLine_->setObjectName(QStringLiteral("searchline"));
    found_ = new QListWidget(tab);
    found_->setObjectName(QStringLiteral("searchhits"));
    found_->setAccessibleName(tr("Pages found"));
    count_ = new QLabel(tab);
    auto* column = columnOf(tab);
    column->addWidget(searchLine_);
    column->addWidget(found_, 1);
    column->addWidget(count_);
    connect(searchLine_, &QLineEdit::textChanged, this, [this](const QString& text) { search(text); });
    connect(searchLine_, &QLineEdit::returnPressed, this, [this] { showHit(found_->currentRow()); });
    connect(found_, &QListWidget::itemActivated, this, [this] { showHit(found_->currentRow()); });
    connect(found_, &QListWidget::itemClicked, this, [this] { showHit(found_->currentRow()); });
    searchLine_->installEventFilter(this);
    return tab;
}

QWidget* HelpWindow::makeFindBar() {
    findBar_ = new QWidget(this);
    findBar_->setObjectName(QStringLiteral("findbar"));
    auto* row = new QHBoxLayout(findBar_);
    row->setContentsMargins(8, 4, 8, 4);
    findLine_ = makeLine(tr("Find in this page"), findBar_);
    findLine_->setObjectName(QStringLiteral("findline"));
    findState_ = new QLabel(findBar_);
    auto* close = new QToolButton(findBar_);
    close->setText(tr("Close"));
    row->addWidget(findLine_, 1);
    row->addWidget(findState_);
    row->addWidget(close);
    connect(findLine_, &QLineEdit::textChanged, this, [this] {
        page_->moveCursor(QTextCursor::Start);
        findText(false);
    });
    connect(findLine_, &QLineEdit::returnPressed, this, [this] { findText(false); });
    connect(close, &QToolButton::clicked, this, [this] { closeFind(); });
    findBar_->hide();
    return findBar_;
}

}  // namespace tarn::help
