// SPDX-License-Identifier: GPL-3.0-or-later
#include "ide/help/window/helpwindow.h"

#include <QApplication>
#include <QCloseEvent>
#include <QDateTime>
#include <QFileInfo>
#include <QHelpContentWidget>
#include <QHelpEngine>
#include <QHelpIndexWidget>
#include <QLabel>
#include <QLayout>
#include <QLineEdit>
#include <QListWidget>
#include <QScreen>
#include <QSplitter>
#include <QTabBar>
#include <QTabWidget>
#include <QWindow>

#include <algorithm>

namespace tarn::help {

namespace {

constexpr int MoveWait = 500;  // milliseconds without a move until the place is kept
constexpr char FirstTopic[] = "help_file_contents", IndexTopic[] = "help_index";
constexpr std::size_t MostShown = 20;  // of the pages that a page which is not there names

}  // namespace

HelpWindow::HelpWindow(std::function<void(const QString&)> keepPlace,
                       std::function<bool(const QString&, PrintTarget&)> choosePrinter)
    : keepPlace_(std::move(keepPlace)), choosePrinter_(std::move(choosePrinter)) {
    setObjectName(QStringLiteral("HelpWindow"));
    setWindowTitle(tr("Help"));
    page_ = new Page(this);
    page_->setObjectName(QStringLiteral("helppage"));
    makeTools();
    makeKeys();
    side_ = new QTabWidget(this);
    side_->setDocumentMode(true);
    side_->addTab(makeContents(), tr("&Contents"));
    side_->addTab(makeIndex(), tr("&Index"));
    side_->addTab(makeSearch(), tr("&Search"));
    side_->setUsesScrollButtons(false);
    // The letter of a tab leads to what is worked there, not to the tab.
    connect(side_, &QTabWidget::currentChanged, this, [this](int tab) { focusSide(tab); });
    side_->setMinimumWidth(side_->tabBar()->sizeHint().width() + 4);
    split_ = new QSplitter(this);
    split_->addWidget(side_);
    split_->addWidget(makeReading());
    split_->setStretchFactor(1, 1);
    split_->setChildrenCollapsible(false);
    setCentralWidget(split_);
    placeTimer_.setSingleShot(true);
    placeTimer_.setInterval(MoveWait);
    connect(&placeTimer_, &QTimer::timeout, this, [this] { keepPlace_(place()); });
    // The page itself still names the one before while it tells of the change.
    connect(page_, &QTextBrowser::sourceChanged, this, [this](const QUrl& url) { pageChanged(url); });
}

HelpWindow::~HelpWindow() {
    delete contents_.data();  // they work on the engine's models
    delete index_.data();
}

// ---- the file ----

QString HelpWindow::useFile(const QString& file) {
    const QDateTime time = QFileInfo(file).lastModified();
    if (collection_ != nullptr && file == file_ && time == fileTime_) return {};
    QString problem;
    auto opened = Collection::open(file, problem);
    if (opened == nullptr) return problem;
    delete contents_.data();
    delete index_.data();
    search_.reset();
    collection_ = std::move(opened);
    page_->setCollection(collection_.get());
    search_ = std::make_unique<Search>(*collection_);
    file_ = file;
    fileTime_ = time;
    fillSide();
    return {};
}

void HelpWindow::fillSide() {
    QHelpEngine& engine = collection_->engine();
    QHelpContentWidget* contents = engine.contentWidget();
    contents->setAccessibleName(tr("Contents"));
    contents->setHeaderHidden(true);
    side_->widget(ContentsTab)->layout()->addWidget(contents);
    connect(contents, &QHelpContentWidget::linkActivated, this,
            [this](const QUrl& url) { page_->show(url); });
    connect(contents, &QTreeView::clicked, this, [this, contents](const QModelIndex& row) {
        const QHelpContentItem* item = collection_->engine().contentModel()->contentItemAt(row);
        if (item != nullptr && row.isValid() && contents->isVisible()) page_->show(item->url());
    });
    connect(engine.contentModel(), &QHelpContentModel::contentsCreated, this, [this] { markContents(); });
    QHelpIndexWidget* index = engine.indexWidget();
    index->setAccessibleName(tr("Index"));
    side_->widget(IndexTab)->layout()->addWidget(index);
    const auto open = [this, index](const QModelIndex& row) {
        page_->show(collection_->pageOfKeyword(index->model()->data(row).toString()));
    };
    connect(index, &QListView::activated, this, open);
    connect(index, &QListView::clicked, this, open);
    contents_ = contents;
    index_ = index;
}

// ---- pages ----

void HelpWindow::showTopic(const QString& topic) {
    setProperty("topic", topic);
    const QUrl url = collection_->pageOf(topic.isEmpty() ? QString::fromLatin1(FirstTopic) : topic);
    if (url.isEmpty())
        showNotFound(topic);
    else
        page_->show(url);
    if (topic.compare(QLatin1String(IndexTopic), Qt::CaseInsensitive) == 0) focusSide(IndexTab);
}

void HelpWindow::showNotFound(const QString& topic) {
    const QString words = QString(topic).replace(u'_', u' ');
    side_->setCurrentIndex(SearchTab);
    searchLine_->setText(words);
    QString html = QStringLiteral("<html><head><title>%1</title></head><body><h1>%1</h1><p>%2</p>")
                       .arg(words.toHtmlEscaped(),
                            hits_.empty() ? tr("The help has nothing on this word. The index and the "
                                               "search on the left may lead further.")
                                          : tr("There is no page of this name. These pages tell of it:"));
    for (const Hit& hit :
         std::vector<Hit>(hits_.begin(), hits_.begin() + std::ptrdiff_t(std::min(hits_.size(), MostShown))))
        html += QStringLiteral("<p><a href=\"%1\">%2</a></p>")
                    .arg(hit.page.toString(), hit.title.toHtmlEscaped());
    page_->showText(html + QStringLiteral("</body></html>"));
}

void HelpWindow::pageChanged(const QUrl& url) {
    shown_ = url;
    page_->setExtraSelections({});
    const QString title = page_->documentTitle();
    setWindowTitle(title.isEmpty() ? tr("Help") : title + QStringLiteral(" - ") + tr("Help"));
    if (findBar_->isVisible()) findState_->clear();
    markContents();
}

// Shows in the contents where the page stands; the engine makes them in its own time.
void HelpWindow::markContents() {
    auto* contents = qobject_cast<QHelpContentWidget*>(contents_.data());
    if (contents == nullptr) return;
    const QModelIndex row = contents->indexOf(shown_);
    if (row.isValid()) contents->setCurrentIndex(row);
    if (row.isValid()) contents->scrollTo(row);
}

// ---- search ----

void HelpWindow::search(const QString& words) {
    hits_ = search_ == nullptr ? std::vector<Hit>() : search_->find(words);
    found_->clear();
    QHash<QString, int> titles;
    for (const Hit& hit : hits_) titles[hit.title]++;
    for (const Hit& hit : hits_) {
        const QString chapter = titles[hit.title] > 1 ? chapterOf(hit.page) : QString();
        found_->addItem(chapter.isEmpty() ? hit.title : hit.title + QStringLiteral(" - ") + chapter);
    }
    if (!hits_.empty()) found_->setCurrentRow(0);
    const QString one = tr("1 page"), more = tr("%1 pages").arg(hits_.size());
    count_->setText(words.trimmed().isEmpty() ? QString() : hits_.size() == 1 ? one : more);
}

// Empty while the engine still makes the contents, and for a page that is a chapter itself.
QString HelpWindow::chapterOf(const QUrl& page) const {
    auto* contents = qobject_cast<QHelpContentWidget*>(contents_.data());
    return contents == nullptr ? QString() : contents->indexOf(page).parent().data().toString();
}

void HelpWindow::showHit(int row) {
    if (row < 0 || row >= int(hits_.size())) return;
    page_->show(hits_[std::size_t(row)].page);
    QStringList words = searchLine_->text().split(u' ', Qt::SkipEmptyParts);
    words.removeDuplicates();
    page_->mark(words);
}

void HelpWindow::focusSide(int tab) {
    side_->setCurrentIndex(tab);
    QWidget* const targets[] = {contents_, indexLine_, searchLine_};
    if (targets[tab] == nullptr) return;
    targets[tab]->setFocus();
    if (auto* line = qobject_cast<QLineEdit*>(targets[tab]); line != nullptr) line->selectAll();
}

// ---- find in the page ----

void HelpWindow::openFind() {
    findBar_->show();
    findLine_->setFocus();
    findLine_->selectAll();
}

void HelpWindow::closeFind() {
    findBar_->hide();
    page_->setFocus();
}

void HelpWindow::findText(bool backward) {
    if (!findBar_->isVisible()) return openFind();
    findState_->clear();
    const QString text = findLine_->text();
    if (text.isEmpty()) return;
    const auto flags = backward ? QTextDocument::FindBackward : QTextDocument::FindFlags();
    if (page_->find(text, flags)) return;
    const QTextCursor before = page_->textCursor();
    page_->moveCursor(backward ? QTextCursor::End : QTextCursor::Start);
    if (page_->find(text, flags)) {
        findState_->setText(tr("From the other end"));
        return;
    }
    page_->setTextCursor(before);
    findState_->setText(tr("Not in this page"));
}

// ---- the window ----

// A window that is no dialog's own takes no input while the dialog waits; so it belongs to the dialog that waits when
// help is asked for, as far as the window system is concerned.
void HelpWindow::bringUp() {
    winId();
    QWindow* const waiting = QGuiApplication::modalWindow();
    if (windowHandle()->transientParent() != waiting) {
        hide();
        for (QWindow* one = waiting; one != nullptr; one = one->transientParent())
            if (one->transientParent() == windowHandle()) one->setTransientParent(nullptr);  // else a ring
        windowHandle()->setTransientParent(waiting);
    }
    if (isMinimized()) showNormal();
    show();
    raise();
    activateWindow();
}

void HelpWindow::closeEvent(QCloseEvent* event) {
    placeTimer_.stop();
    keepPlace_(place());
    QMainWindow::closeEvent(event);
}

void HelpWindow::moveEvent(QMoveEvent* event) {
    if (isVisible()) placeTimer_.start();
    QMainWindow::moveEvent(event);
}

void HelpWindow::resizeEvent(QResizeEvent* event) {
    if (isVisible()) placeTimer_.start();
    QMainWindow::resizeEvent(event);
}

void HelpWindow::keyPressEvent(QKeyEvent* event) {
    if (event->key() != Qt::Key_Escape) return QMainWindow::keyPressEvent(event);
    if (findBar_->isVisible())
        closeFind();
    else
        close();
}

// In the lines of index and search the arrows walk the rows below.
bool HelpWindow::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() != QEvent::KeyPress) return false;
    const int key = static_cast<QKeyEvent*>(event)->key();
    const bool walks =
        key == Qt::Key_Down || key == Qt::Key_Up || key == Qt::Key_PageDown || key == Qt::Key_PageUp;
    QWidget* const rows = watched == indexLine_ ? index_.data() : found_;
    if (!walks || rows == nullptr) return false;
    QApplication::sendEvent(rows, event);
    return true;
}

// "x y width height side zoom"
QString HelpWindow::place() const {
    const QRect at = normalGeometry().isValid() && isMaximized() ? normalGeometry() : geometry();
    return QStringLiteral("%1 %2 %3 %4 %5 %6")
        .arg(at.x())
        .arg(at.y())
        .arg(at.width())
        .arg(at.height())
        .arg(split_->sizes().value(0))
        .arg(page_->zoomSteps());
}

void HelpWindow::setPlace(const QString& place) {
    const QStringList parts = place.split(u' ', Qt::SkipEmptyParts);
    const QRect screen = QGuiApplication::primaryScreen()->availableGeometry();
    QRect at(0, 0, std::min(screen.width() * 9 / 10, 1000), std::min(screen.height() * 8 / 10, 760));
    at.moveCenter(screen.center());
    int side = at.width() * 32 / 100;
    if (parts.size() >= 4) {
        const QRect kept(parts[0].toInt(), parts[1].toInt(), parts[2].toInt(), parts[3].toInt());
        const bool seen = kept.width() >= 200 && kept.height() >= 150 &&
                          QGuiApplication::screenAt(kept.topLeft() + QPoint(40, 10)) != nullptr;
        if (seen) at = kept & QRect(kept.topLeft(), screen.size());
        side = std::clamp(parts.value(4).toInt(), 120, std::max(at.width() - 120, 120));
        page_->zoom(parts.value(5).toInt());
    }
    setGeometry(at);
    split_->setSizes({side, at.width() - side});
}

}  // namespace tarn::help
