// SPDX-License-Identifier: Apache-2.0
#include "platform/qt/debugger/debugview.h"

#include "platform/operations/system.h"
#include "platform/qt/debugger/debuglist.h"
#include "platform/qt/debugger/debugpictures.h"
#include "platform/qt/debugger/debugplace.h"
#include "platform/qt/texts.h"

#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QCloseEvent>
#include <QHBoxLayout>
#include <QPlainTextEdit>
#include <QScreen>
#include <QStyle>
#include <QToolButton>
#include <QVBoxLayout>
#include <QWindow>

#include <algorithm>
#include <utility>

namespace tarn::platform::qt {

namespace {

constexpr int firstCommand = 101;
constexpr int usualWidth = 640, usualHeight = 480;
constexpr QSize smallest(360, 200);  // that can be worked with
constexpr int statusLines = 6;       // at most; longer ones scroll
constexpr int runningAfter = 150;    // milliseconds

unsigned bit(DebugPart part) {
    return 1U << static_cast<unsigned>(part);
}

// Whether the title of a window there could be taken hold of.
bool isOnScreen(const QRect& frame) {
    const QRect title(frame.left(), frame.top(), frame.width(), 24);
    const auto screens = QGuiApplication::screens();
    return std::any_of(screens.begin(), screens.end(), [&](const QScreen* screen) {
        const QRect seen = screen->availableGeometry() & title;
        return seen.width() >= 48 && seen.height() >= 12;
    });
}

QRect rectOf(const DebugPlace& place) {
    return {place.left, place.top, std::max(place.width, 0), std::max(place.height, 0)};
}

QRect roomFor(const QRect& frame) {
    const QScreen* screen = QGuiApplication::screenAt(frame.center());
    if (screen == nullptr) screen = QGuiApplication::primaryScreen();
    return screen->availableGeometry();
}

bool belongsTo(const QWindow* window, const QWindow* owner) {
    for (; window != nullptr; window = window->transientParent())
        if (window == owner) return true;
    return false;
}

}  // namespace

DebugView::DebugView(DebugWindow& window)
    : QWidget(nullptr, Qt::Window), window_(&window), list_(new DebugList(window, this)),
      status_(new QPlainTextEdit(this)) {
    setObjectName(QStringLiteral("IntegratedDebugger"));
    setAttribute(Qt::WA_QuitOnClose, false);
    setWindowIcon(debugPicture(shown(window.icon)));
    makeStatus();
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(4, 4, 4, 4);
    layout->setSpacing(4);
    layout->addWidget(makeToolbar());
    layout->addWidget(status_);
    layout->addWidget(list_, 1);
    makeActions();
    makeMenu();
    list_->opened = [this](int line) { send(DebugMessage::DoubleClick, line); };
    list_->openedByKey = [this] { send(DebugMessage::DoubleClick, 0); };
    list_->typed = [this](const QKeyEvent& key) { return takeEarly(key); };
    // Another line may be selected at the next stop.
    list_->margined = [this](int) {
        if (hearsDebug(*window_)) send(DebugMessage::Command, DEBUG_BREAKPOINT_COMMAND);
    };
    list_->rested = [this](int line, const std::string& word) { send(DebugMessage::Hover, line, word); };
    soon_.setSingleShot(true);
    running_.setSingleShot(true);
    connect(&soon_, &QTimer::timeout, this, [this] { refresh(); });
    connect(&running_, &QTimer::timeout, this, [this] { showLive(false); });
    showLive(false);
    for (const DebugPart part : {DebugPart::Caption, DebugPart::Status}) note(part);
    refresh();
    place();
    list_->setFocus();
}

void DebugView::release() {
    window_ = nullptr;
    list_->release();
    soon_.stop();
    running_.stop();
}

// ---- toolbar, keys and menu ----

QAction* DebugView::addKey(const QString& title, const QKeySequence& keys) {
    auto* action = new QAction(title, this);
    action->setShortcut(keys);
    action->setToolTip(keys.isEmpty() ? title : QStringLiteral("%1 (%2)").arg(title, keys.toString()));
    addAction(action);
    return action;
}

QAction* DebugView::addCommand(int number, const QString& picture) {
    const DebugCommand* const known = debugCommand(number);
    QAction* action = known == nullptr ? addKey(picture, {})
                                       : addKey(tr(known->title), QKeySequence(QLatin1String(known->keys)));
    action->setIcon(debugPicture(picture));
    action->setObjectName(QString::number(number));
    if (number != DEBUG_STOP)
        makeLive(action, DebugMessage::Command, number);
    else
        connect(action, &QAction::triggered, this, [this] { send(DebugMessage::Command, DEBUG_STOP); });
    return action;
}

QWidget* DebugView::makeToolbar() {
    auto* bar = new QWidget(this);
    auto* row = new QHBoxLayout(bar);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(2);
    const int side = style()->pixelMetric(QStyle::PM_SmallIconSize) + 4;
    const auto addButton = [&](QAction* action) {
        auto* button = new QToolButton(bar);
        button->setDefaultAction(action);
        button->setIconSize({side, side});
        button->setAutoRaise(true);
        button->setFocusPolicy(Qt::TabFocus);
        button->setAccessibleName(action->text());
        button->setObjectName(action->objectName());
        row->addWidget(button);
    };
    int number = firstCommand;
    for (const std::string& picture : window_->pictures) {
        if (picture.empty())
            row->addSpacing(side / 2);
        else
            addButton(addCommand(number++, shown(picture)));
    }
    row->addSpacing(side / 2);
    break_ = addKey(tr("Break into the program"), {});
    break_->setToolTip(tr("Break into the program (Ctrl+Break)"));
    break_->setIcon(debugPicture(QStringLiteral("pause")));
    break_->setObjectName(QStringLiteral("break"));
    break_->setCheckable(true);  // pressed until the program has come to a statement
    connect(break_, &QAction::triggered, this, [this] {
        if (window_ != nullptr) userDebugBreak(*window_);
        break_->setChecked(true);
    });
    addButton(break_);
    row->addStretch();
    return bar;
}

// What has no button stands in the menu of the list, and has a key.
void DebugView::makeActions() {
    for (const DebugCommand& command : debugCommands)
        if (findChild<QAction*>(QString::number(command.number)) == nullptr) addCommand(command.number, {});
    const auto onKey = [this](const QString& title, const QKeySequence& keys, auto act) {
        QAction* action = addKey(title, keys);
        connect(action, &QAction::triggered, this, act);
    };
    makeLive(addKey(tr("Change the value or the rule"), QKeySequence(Qt::Key_F2)), DebugMessage::Edit, 0);
    makeLive(addKey(tr("Help"), QKeySequence(Qt::Key_F1)), DebugMessage::Help, 0);
    onKey(tr("Copy the line"), QKeySequence(Qt::CTRL | Qt::Key_C), [this] { copy(false); });
    onKey(tr("Copy all"), QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_C), [this] { copy(true); });
}

// In groups by what they are for; what no group names comes behind them.
void DebugView::makeMenu() {
    const std::vector<int> groups[] = {{102, 103, 104, 112, 113},
                                       {DEBUG_BREAKPOINT_COMMAND, 114},
                                       {106, 107, 108, 109, 110, 111},
                                       {DEBUG_STOP}};
    QList<QAction*> rest = actions();
    rest.removeOne(break_);
    for (const std::vector<int>& group : groups) {
        for (const int number : group) {
            auto* const action = findChild<QAction*>(QString::number(number));
            list_->addAction(action);
            rest.removeOne(action);
        }
        auto* const line = new QAction(this);
        line->setSeparator(true);
        list_->addAction(line);
    }
    list_->addActions(rest);
    list_->setContextMenuPolicy(Qt::ActionsContextMenu);
}

void DebugView::copy(bool whole) {
    if (!whole && status_->hasFocus()) return status_->copy();
    const QString text = whole ? status_->toPlainText() + u'\n' + list_->wholeText() : list_->selectedText();
    QGuiApplication::clipboard()->setText(text);
}

void DebugView::send(DebugMessage message, int number, const std::string& text) {
    if (window_ != nullptr) userDebug(*window_, {message, number, text});
}

void DebugView::makeLive(QAction* action, DebugMessage message, int number) {
    connect(action, &QAction::triggered, this, [this, message, number] { send(message, number); });
    live_.push_back({action, message, number});
}

bool DebugView::takeEarly(const QKeyEvent& key) {
    if (window_ == nullptr || hearsDebug(*window_)) return false;
    const QKeySequence typed(key.keyCombination());
    for (const LiveAction& one : live_) {
        if (one.action->isEnabled() || one.action->shortcut() != typed) continue;
        send(one.message, one.number);
        return true;
    }
    return false;
}

void DebugView::keyPressEvent(QKeyEvent* event) {
    if (!takeEarly(*event)) QWidget::keyPressEvent(event);
}

// ---- what the model has changed ----

void DebugView::note(DebugPart part) {
    parts_ |= bit(part);
    if (!soon_.isActive()) soon_.start(0);
}

void DebugView::refresh() {
    soon_.stop();
    if (window_ == nullptr) return;
    const unsigned parts = std::exchange(parts_, 0);
    const auto has = [=](DebugPart part) { return (parts & bit(part)) != 0; };
    if (has(DebugPart::Caption)) setWindowTitle(shown(window_->caption));
    if (has(DebugPart::Status)) showStatus();
    if (has(DebugPart::Lines)) list_->showLines();
    if (has(DebugPart::Lines) || has(DebugPart::Extent)) list_->showWidth();
    if (has(DebugPart::Lines) || has(DebugPart::Top)) list_->showTop();
    if (has(DebugPart::Lines) || has(DebugPart::Selection)) list_->showSelection();
    if (has(DebugPart::Marks)) list_->showMarks();
}

void DebugView::makeStatus() {
    status_->setObjectName(QStringLiteral("302"));
    status_->setAccessibleName(tr("Status"));
    status_->setReadOnly(true);
    status_->setFrameShape(QFrame::NoFrame);
    status_->setTabChangesFocus(true);
    status_->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    status_->document()->setDocumentMargin(2);
    QPalette palette = status_->palette();
    palette.setColor(QPalette::Base, Qt::transparent);
    palette.setBrush(QPalette::Text, palette.brush(QPalette::WindowText));
    status_->setPalette(palette);
    showStatus();
}

// As many lines as it takes, so that the list has the rest; two at least, so that the list does not jump.
void DebugView::showStatus() {
    QString text = shown(window_->status);
    while (text.endsWith(u'\n')) text.chop(1);
    if (status_->toPlainText() != text) status_->setPlainText(text);
    const int lines = std::clamp(static_cast<int>(status_->document()->size().height()), 2, statusLines);
    status_->setFixedHeight(lines * status_->fontMetrics().lineSpacing() + 6);
}

void DebugView::setStopped(bool stopped) {
    running_.stop();
    if (stopped)
        showLive(true);
    else
        running_.start(runningAfter);
}

void DebugView::noteBusy() {
    refresh();
    if (!running_.isActive() || running_.remainingTime() > 0) return;
    running_.stop();
    showLive(false);
}

void DebugView::showTip() {
    list_->showTip();
}

void DebugView::showLive(bool live) {
    for (const LiveAction& one : live_) one.action->setEnabled(live);
    break_->setEnabled(!live);
    if (live) break_->setChecked(false);
    status_->setEnabled(live);
}

// ---- showing ----

void DebugView::place() {
    const QSize usual(usualWidth, usualHeight);
    const QRect kept = rectOf(window_->wanted), beside = rectOf(window_->beside);
    const QSize least = minimumSizeHint();
    if (!kept.isEmpty())
        frame_ = fittedPlace({kept.topLeft(), kept.size().expandedTo(least)}, roomFor(kept));
    else if (!beside.isEmpty())
        frame_ = placeBeside(beside, roomFor(beside), usual, least.expandedTo(smallest));
    resize(frame_.isEmpty() ? usual.boundedTo(roomFor({}).size()) : frame_.size());
    settled_ = frame_.isEmpty();
    if (!settled_ && isOnScreen(frame_)) move(frame_.topLeft());
    setAttribute(Qt::WA_ShowWithoutActivating);
    show();
    setAttribute(Qt::WA_ShowWithoutActivating, false);
    // The window system tells the width of the frame in its own time.
    for (const int milliseconds : {60, 250}) QTimer::singleShot(milliseconds, this, [this] { settle(); });
    QTimer::singleShot(1000, this, [this] { endSettling(); });
}

void DebugView::endSettling() {
    settle();
    settled_ = true;  // there is no frame
    notePlace();
}

// What was kept is the place and the size of the frame. The toolkit takes the corner for that of the area inside until the
// window system moves or sizes the window, which it does not for one that cannot become as small as it was kept.
void DebugView::settle() {
    if (window_ == nullptr || settled_ || windowHandle() == nullptr) return;
    const QMargins margins = windowHandle()->frameMargins();
    if (margins.isNull()) return;
    settled_ = true;
    resize(frame_.width() - margins.left() - margins.right(),
           frame_.height() - margins.top() - margins.bottom());
    if (isOnScreen(frame_)) move(frame_.topLeft());
}

void DebugView::notePlace() {
    if (window_ == nullptr || !isVisible() || isMinimized() || isMaximized()) return;
    const QMargins margins = windowHandle()->frameMargins();
    if (!settled_ && margins.isNull()) return;
    if (!settled_) return settle();
    const QRect frame = frameGeometry();
    window_->place = {frame.x(), frame.y(), frame.width(), frame.height()};
}

void DebugView::bringUp() {
    refresh();
    leaveModal();
    if (isMinimized()) showNormal();
    if (!isVisible()) show();
    raise();
    if (isActiveWindow()) return;
    activateWindow();
    QApplication::alert(this);  // where the desktop does not let a program push itself forward
}

void DebugView::leaveModal() {
    QWindow* const modal = QGuiApplication::modalWindow();
    QWindow* const own = windowHandle();
    if (modal != nullptr && own != nullptr && !belongsTo(modal, own)) own->setTransientParent(modal);
}

bool DebugView::event(QEvent* event) {
    if (event->type() == QEvent::WindowBlocked) leaveModal();
    return QWidget::event(event);
}

void DebugView::closeEvent(QCloseEvent* event) {
    event->ignore();  // the handler decides
    if (window_ != nullptr) userDebugClose(*window_);
}

void DebugView::moveEvent(QMoveEvent* event) {
    QWidget::moveEvent(event);
    notePlace();
}

void DebugView::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    if (window_ != nullptr) showStatus();
    notePlace();
}

}  // namespace tarn::platform::qt
