// SPDX-License-Identifier: Apache-2.0
#include "platform/qt/qtview.h"

#include "os/files.h"
#include "os/process.h"
#include "platform/model/debugger/debugwindow.h"
#include "platform/model/model.h"
#include "platform/operations/focus.h"
#include "platform/qt/controls/widgets.h"
#include "platform/qt/drawing/pictures.h"
#include "platform/qt/drawing/printing.h"
#include "platform/qt/input/keys.h"
#include "platform/qt/input/mouse.h"
#include "platform/qt/texts.h"
#include "platform/qt/windows/frame.h"
#include "platform/qt/windows/menus.h"
#include "platform/qt/windows/popups.h"
#include "platform/qt/windows/questions.h"

#include <QAccessible>
#include <QAccessibleWidget>
#include <QApplication>
#include <QDesktopServices>
#include <QElapsedTimer>
#include <QFontDatabase>
#include <QFontMetrics>
#include <QKeyEvent>
#include <QLoggingCategory>
#include <QMenu>
#include <QMenuBar>
#include <QPainter>
#include <QScreen>
#include <QSocketNotifier>
#include <QStandardPaths>
#include <QStyle>
#include <QStyleFactory>
#include <QUrl>
#include <QWindow>

#include <algorithm>

namespace tarn::platform::qt {

namespace {

// Qt keeps references to these for as long as the application lives.
int argumentCount = 1;
char programName[] = "tarnwick";
char* arguments[] = {programName, nullptr};

std::unique_ptr<QApplication> makeApplication() {
    if (QCoreApplication::instance() != nullptr) return nullptr;
    // What a desktop lacks is nothing that a program has to say. QT_LOGGING_RULES brings it back.
    QLoggingCategory::setFilterRules(QStringLiteral("qt.qpa.theme.*=false"));
    auto application = std::make_unique<QApplication>(argumentCount, arguments);
    QApplication::setApplicationName(QStringLiteral("tarnwick"));
    QApplication::setApplicationDisplayName(QString());
    QGuiApplication::setDesktopFileName(QStringLiteral("tarnwick"));
    // A bare X server names no style; the plain "windows" one is for machines of another time.
    const QString style = QApplication::style()->name();
    if (style.isEmpty() || style == u"windows") QApplication::setStyle(QStringLiteral("fusion"));
    return application;
}

bool isInput(QEvent::Type type) {
    switch (type) {
    case QEvent::KeyPress:
    case QEvent::KeyRelease:
    case QEvent::ShortcutOverride:
    case QEvent::Shortcut:
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonRelease:
    case QEvent::MouseButtonDblClick:
    case QEvent::Wheel:
    case QEvent::TouchBegin:
    case QEvent::TouchEnd:
    case QEvent::ContextMenu:
    case QEvent::Drop:
    case QEvent::DragEnter:
    case QEvent::Close:
    case QEvent::HoverEnter:
    case QEvent::Enter: return true;
    default: return false;
    }
}

// The window whose menu holds for the whole program.
Frame* mainFrame() {
    static const Object name("Main");
    if (Window* window = findWindow(name); window != nullptr) return frameOf(*window);
    return nullptr;
}

QFont fontOf(const Control& control) {
    const Window* window = findWindow(control.object.owner());
    const Font& font = control.font == Font{} && window != nullptr ? window->font : control.font;
    const bool editor = isEditWindowType(control.type);
    const QFont base = editor ? QFontDatabase::systemFont(QFontDatabase::FixedFont) : QApplication::font();
    return font == Font{} ? base : qtFont(font, base);
}

QFontMetrics metricsOf(const Control& control) {
    const QFont font = fontOf(control);
    return control.type == Type::Printer ? printerMetrics(control.name, font) : QFontMetrics(font);
}

bool isKeyField(const Control* control) {
    return control != nullptr && control->type == Type::Edit && (control->flags & KEYFIELD) != 0;
}

bool nameKeys(Control& field, const PressedKeys& keys) {
    if (!keys.named) return true;
    field.text->setText(shortcutName(keys.shortcut));
    userChange(field);
    return true;
}

// A window that is a plain widget would be no more than a filler to screen readers.
QAccessibleInterface* makeAccessible(const QString&, QObject* object) {
    if (object == nullptr || object->metaObject() != &QWidget::staticMetaObject) return nullptr;
    auto* widget = static_cast<QWidget*>(object);
    if (!widget->isWindow()) return nullptr;
    const Frame* frame = frameOfWidget(widget);
    const bool dialog =
        frame == nullptr || (frame->window().menuItems.empty() && !isEditWindowType(frame->window().type));
    return new QAccessibleWidget(widget, dialog ? QAccessible::Dialog : QAccessible::Window);
}

class Depth {
public:
    explicit Depth(int& depth) : depth_(depth) { ++depth_; }
    ~Depth() { --depth_; }
    Depth(const Depth&) = delete;
    Depth& operator=(const Depth&) = delete;

private:
    int& depth_;
};

}  // namespace

QtView::QtView() : application_(makeApplication()) {
    QApplication::setQuitOnLastWindowClosed(false);
    QAccessible::installFactory(makeAccessible);
    qApp->installEventFilter(this);
    idleTimer_.setSingleShot(true);
    connect(&idleTimer_, &QTimer::timeout, this, [this] { runIdle(); });
    connect(qApp, &QGuiApplication::focusWindowChanged, this,
            [this] { QTimer::singleShot(0, this, [this] { activated(); }); });
}

QtView::~QtView() {
    closeQuestions();
    for (const auto& window : windows())
        if (frameOf(*window) != nullptr) unload(*window);
    progress_.reset();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QAccessible::removeFactory(makeAccessible);
    if (qApp != nullptr) qApp->removeEventFilter(this);
}

// ---- windows ----

void QtView::load(Window& window) {
    if (frameOf(window) == nullptr) new Frame(window);
}

void QtView::unload(Window& window) {
    timers_.erase(window.handle);
    for (const auto& control : window.controls) timers_.erase(control->handle);
    Frame* frame = frameOf(window);
    if (frame == nullptr) return;
    const bool active = frame->isActiveWindow();
    frame->release();
    frame->hide();
    if (active) activateBelow(frame);
    frame->deleteLater();
}

void QtView::show(Window& window) {
    if (Frame* frame = frameOf(window); frame != nullptr) bringUp(*frame);
}

// The model counts a window as active from here on; the window system follows in its own time.
void QtView::bringUp(Frame& frame) {
    noteLatest(frame);
    frame.bringUp();
}

void QtView::hide(Window& window) {
    Frame* frame = frameOf(window);
    if (frame == nullptr || !frame->isVisible()) return;
    const bool active = frame->isActiveWindow();
    frame->hide();
    if (active) activateBelow(frame);
}

void QtView::raise(Window& window) {
    Frame* frame = frameOf(window);
    if (frame == nullptr || !window.shown) return;
    bringUp(*frame);
    QApplication::alert(frame);  // where the desktop does not let a program push itself forward
}

void QtView::changed(Control& control, Property property) {
    Window* window = findWindow(control.object);
    Frame* frame = window != nullptr ? frameOf(*window) : nullptr;
    if (frame == nullptr) return;
    if (&control == window)
        frame->apply(property);
    else
        frame->applyTo(control, property);
}

void QtView::activateBelow(Frame* gone) {
    std::erase_if(order_, [gone](const QPointer<Frame>& frame) { return frame.isNull() || frame == gone; });
    for (auto frame = order_.rbegin(); frame != order_.rend(); ++frame) {
        if (!(*frame)->isVisible() || !(*frame)->windowHandle() || !takesInput((*frame)->window())) continue;
        (*frame)->raise();
        (*frame)->activateWindow();
        return;
    }
}

void QtView::activated() {
    // While a menu is open the toolkit does not follow the focus, and would name the window before.
    if (QApplication::activePopupWidget() != nullptr || programRests()) return;
    const QWindow* focus = QGuiApplication::focusWindow();
    Frame* frame = frameOfWidget(focus != nullptr ? QWidget::find(focus->winId()) : nullptr);
    const bool returns = away_ && focus != nullptr;
    away_ = focus == nullptr;
    std::erase_if(order_, [](const QPointer<Frame>& other) { return other.isNull(); });
    if (frame == nullptr || frame->window().widget == nullptr || !frame->isVisible()) return;
    if (returns && !order_.empty() && order_.back() == frame) return userReturn(frame->window());
    enter(*frame);
}

void QtView::noteLatest(Frame& frame) {
    std::erase(order_, QPointer<Frame>(&frame));
    order_.emplace_back(&frame);
}

void QtView::enter(Frame& frame) {
    if (!order_.empty() && order_.back() == &frame) return;
    noteLatest(frame);
    userActivate(frame.window());
}

// ---- loops ----

void QtView::sweep() {
    // Widgets ask for their end from inside their own signals, which have returned only out here.
    if (depth_ == 1) QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

void QtView::loop(const std::function<bool()>& until) {
    const Depth level(depth_);
    while (!until()) {
        QCoreApplication::processEvents(QEventLoop::AllEvents | QEventLoop::WaitForMoreEvents);
        sweep();
    }
}

void QtView::pump() {
    const Depth level(depth_);
    QCoreApplication::processEvents(QEventLoop::AllEvents);
    sweep();
}

void QtView::wait(int milliseconds, bool inputEnds) {
    const Depth level(depth_);
    QElapsedTimer clock;
    clock.start();
    input_ = false;
    QTimer wake;
    wake.setSingleShot(true);
    wake.setTimerType(Qt::PreciseTimer);
    wake.start(std::max(milliseconds, 0));
    QCoreApplication::processEvents(QEventLoop::AllEvents);
    while (clock.elapsed() < milliseconds && !(inputEnds && input_))
        QCoreApplication::processEvents(QEventLoop::AllEvents | QEventLoop::WaitForMoreEvents);
}

void QtView::setIdle(std::function<void()> idle) {
    idle_ = std::move(idle);
    if (idle_)
        idleTimer_.start(0);
    else
        idleTimer_.stop();
}

// The idle function may open a box whose loop needs it again, and a timer does not fire while its own handler
// runs; so the next turn is a call of its own.
void QtView::runIdle() {
    if (!idle_) return;
    QTimer::singleShot(0, this, [this] { runIdle(); });
    const auto idle = idle_;
    idle();
}

// ---- questions ----

std::string QtView::ask(const Question& question) {
    const bool busy = busy_;
    if (busy) setBusy(false);
    QWidget* const parent = askedFrom();
    const QPointer<QWidget> below(parent != nullptr && parent->isVisible() ? parent : nullptr);
    const std::string answer = askUser(question, below);
    if (busy) setBusy(true);
    if (below != nullptr && below->isVisible()) below->activateWindow();
    return answer;
}

// The debugger's window asks for itself alone.
QWidget* QtView::askedFrom() const {
    QWidget* const debugger = debugger_.window();
    QWidget* parent = QApplication::activeWindow();
    if (debugger_.stopped())
        return parent != nullptr && parent->parentWidget() != nullptr ? parent : debugger;
    if (parent == nullptr || parent == debugger) parent = order_.empty() ? nullptr : order_.back().data();
    return parent;
}

const Question* QtView::asking() {
    return qt::asking();
}

bool QtView::answer(const std::string& text) {
    return answerQuestion(text);
}

// ---- measures ----

int QtView::textWidth(const Control& control, std::string_view text) {
    return metricsOf(control).horizontalAdvance(shown(text));
}

int QtView::textHeight(const Control& control, std::string_view text) {
    const int lines = 1 + static_cast<int>(std::count(text.begin(), text.end(), '\n'));
    return metricsOf(control).height() * lines;
}

namespace {

// The screen with the active window; null if there is none.
const QScreen* activeScreen() {
    const QWidget* active = QApplication::activeWindow();
    return active != nullptr ? active->screen() : QGuiApplication::primaryScreen();
}

}  // namespace

Rect QtView::screen() {
    const QScreen* screen = activeScreen();
    if (screen == nullptr) return {0, 0, 1024, 768};
    const QRect area = screen->availableGeometry();
    return {area.x(), area.y(), area.width(), area.height()};
}

Desktop QtView::desktop() {
    const QScreen* screen = activeScreen();
    if (screen == nullptr) return {};
    const QRect area = screen->geometry();
    return {static_cast<int>(QGuiApplication::screens().size()),
            {area.x(), area.y(), area.width(), area.height()},
            QApplication::style()->pixelMetric(QStyle::PM_LargeIconSize),
            QApplication::palette().color(QPalette::Window).lightness() <
                QApplication::palette().color(QPalette::WindowText).lightness()};
}

Rect QtView::frameExtents(const Window& window) {
    const Frame* frame = frameOf(window);
    return frame != nullptr ? frame->extents() : Rect{};
}

int QtView::dpi() {
    const QScreen* screen = QGuiApplication::primaryScreen();
    return screen != nullptr ? static_cast<int>(screen->logicalDotsPerInch()) : 96;
}

// ---- system ----

void QtView::sound() {
    QApplication::beep();
}

namespace {

// Without a server, and without a device that could do without one, a player would only wait and complain.
bool canBeHeard() {
    const std::string runtime = os::environment("XDG_RUNTIME_DIR");
    return !os::environment("PULSE_SERVER").empty() || os::infoOf(runtime + "/pulse/native").exists ||
           os::infoOf(runtime + "/pipewire-0").exists || os::infoOf("/dev/snd/controlC0").exists;
}

}  // namespace

void QtView::playSound(const std::string& file) {
    if (!canBeHeard() || os::sizeOf(file) <= 0) return;
    for (const char* player : {"paplay", "aplay"}) {
        const QString path = QStandardPaths::findExecutable(QString::fromLatin1(player));
        if (path.isEmpty()) continue;
        os::StartRequest request;
        request.program = path.toStdString();
        request.arguments = {file};
        request.outputFile = "/dev/null";
        os::StartError error{};
        // The child plays on by itself; nobody waits for its end.
        static std::unique_ptr<os::Child> playing;
        playing = os::processes().start(request, error);
        return;
    }
}

void QtView::setIcon(const std::string& file) {
    const QIcon icon = iconOfFile(file);
    if (!icon.isNull()) QApplication::setWindowIcon(icon);
}

void QtView::setBusy(bool busy) {
    if (busy == busy_) return;
    busy_ = busy;
    if (busy)
        QGuiApplication::setOverrideCursor(Qt::WaitCursor);
    else
        QGuiApplication::restoreOverrideCursor();
}

void QtView::setTimer(Control& owner, int milliseconds) {
    timers_.erase(owner.handle);
    if (milliseconds <= 0) return;
    auto timer = std::make_unique<QTimer>();
    // The timer may be replaced or stopped by what it calls, so it knows the control by name only.
    connect(
        timer.get(), &QTimer::timeout, this,
        [this, object = owner.object, handle = owner.handle] {
            Control* control = timers_.count(handle) != 0 ? findControl(object) : nullptr;
            if (control != nullptr && control->handle == handle) timerFired(*control);
        },
        Qt::QueuedConnection);
    timer->start(milliseconds);
    timers_[owner.handle] = std::move(timer);
}

bool QtView::openUrl(const std::string& url) {
    return QDesktopServices::openUrl(QUrl(shown(url)));
}

void QtView::toolProgress(const std::string& text) {
    if (progress_ == nullptr && text.empty()) return;
    if (progress_ == nullptr) {
        progress_ = std::make_unique<ToolProgress>();
        progress_->gone = [this] {
            if (!order_.empty() && !order_.back().isNull() && order_.back()->isVisible())
                order_.back()->activateWindow();
        };
    }
    progress_->setText(text);
}

bool QtView::toolStopPressed() {
    return progress_ != nullptr && progress_->stopPressed();
}

void QtView::watch(int descriptor, std::function<void()> ready) {
    watched_.erase(descriptor);
    if (descriptor < 0 || !ready) return;
    auto notifier = std::make_unique<QSocketNotifier>(descriptor, QSocketNotifier::Read);
    connect(notifier.get(), &QSocketNotifier::activated, this, [ready = std::move(ready)] {
        const auto call = ready;  // the watch may end inside
        call();
    });
    watched_[descriptor] = std::move(notifier);
}

// ---- events of the whole program ----

bool QtView::eventFilter(QObject* receiver, QEvent* event) {
    if (debugger_.takes(receiver, *event)) return true;
    const auto type = event->type();
    if (type == QEvent::FocusIn) noteFocus(receiver);
    if (!isInput(type)) return false;
    if (type == QEvent::KeyPress || type == QEvent::MouseButtonPress) input_ = true;
    auto* widget = receiver->isWidgetType() ? static_cast<QWidget*>(receiver) : nullptr;
    if (widget == nullptr) return false;
    const Frame* const over = frameOfWidget(widget);
    const bool below = over != nullptr && topModal() != nullptr && topModal() != &over->window();
    if ((busy_ && over != nullptr) || below) {
        if (type == QEvent::Close) event->ignore();
        return true;
    }
    if (hearMouse(*widget, *event) || hearWheel(*widget, *event)) return true;
    // The focus follows a click in the window system's own time, which may be after the command of a button;
    // the command has to know where its user was.
    if (type == QEvent::MouseButtonPress && over != nullptr) enter(*frameOfWidget(widget));
    return type == QEvent::KeyPress && key(receiver, *static_cast<QKeyEvent*>(event));
}

void QtView::noteFocus(QObject* receiver) {
    auto* widget = receiver->isWidgetType() ? static_cast<QWidget*>(receiver) : nullptr;
    const Frame* const frame = widget != nullptr ? frameOfWidget(widget) : nullptr;
    Control* const control = frame != nullptr ? frame->controlOf(widget) : nullptr;
    if (control != nullptr) userFocus(*control);
}

bool QtView::key(QObject* receiver, QKeyEvent& event) {
    auto* widget = static_cast<QWidget*>(receiver);
    Frame* frame = frameOfWidget(widget);
    if (frame == nullptr || frame->window().widget == nullptr) return false;
    // A key that a widget ignores climbs to its parents; it is looked at once, where it starts.
    const QWidget* focus = frame->focusWidget();
    if (widget != (focus != nullptr ? focus : frame)) return false;
    const QPointer<Frame> alive(frame);
    if (Control* field = frame->controlOf(focus); isKeyField(field))
        if (const PressedKeys keys = keysPressed(event); keys.taken) return nameKeys(*field, keys);
    if (windowHears(focus, event)) {
        Control* control = frame->controlOf(focus);
        if (userKey(frame->window(), control, modelKey(event.key()))) return true;
        if (alive.isNull() || frame->window().widget == nullptr) return true;
    }
    if (focus == nullptr || !widgetNeeds(*focus, event)) {
        if (typeAhead(*frame, event)) return true;
        if (command(*frame, modelShortcut(event))) return true;
        if (openMainMenu(*frame, event)) return true;
    }
    const bool alone = focus == nullptr || focus == frame;
    return alone && windowHearsLast(event) && userKey(frame->window(), nullptr, modelShortcut(event));
}

// The window system gives a window the focus in its own time; what is typed meanwhile still comes to the main
// window, where the command was picked, and is meant for the one that the model counts as active.
bool QtView::typeAhead(Frame& frame, QKeyEvent& event) {
    Frame* next = order_.empty() ? nullptr : order_.back().data();
    if (&frame != mainFrame() || next == nullptr || next == &frame || !next->isVisible() ||
        next->window().widget == nullptr || !takesInput(next->window()))
        return false;
    QWidget* focus = next->focusWidget();
    if (focus == nullptr || !widgetNeeds(*focus, event)) return false;
    QApplication::sendEvent(focus, &event);
    return true;
}

bool QtView::command(Frame& frame, int shortcut) {
    Control* item = findShortcut(frame.window(), shortcut);
    Frame* main = mainFrame();
    // The editing keys of Main's menu would change a text in which the user is not.
    if (item == nullptr && main != nullptr && main != &frame && takesInput(main->window()) &&
        !isTextKey(shortcut))
        item = findShortcut(main->window(), shortcut);
    if (item == nullptr) return false;
    userCommand(*item);
    return true;
}

bool QtView::openMainMenu(Frame& frame, QKeyEvent& event) {
    Frame* main = mainFrame();
    if (main == nullptr || main == &frame || event.modifiers() != Qt::AltModifier ||
        !frame.window().menuItems.empty())
        return false;
    if (!main->isVisible() || !takesInput(main->window()) || event.key() < Qt::Key_A ||
        event.key() > Qt::Key_Z)
        return false;
    const QKeySequence wanted(QKeyCombination(Qt::AltModifier, static_cast<Qt::Key>(event.key())));
    for (QAction* action : main->bar().actions()) {
        if (QKeySequence::mnemonic(action->text()) != wanted || !action->isEnabled()) continue;
        main->raise();
        main->activateWindow();
        enter(*main);  // a key may pick from the menu before the window system has given the focus
        main->bar().setActiveAction(action);
        return true;
    }
    return false;
}

}  // namespace tarn::platform::qt

extern "C" __attribute__((visibility("default"))) tarn::platform::View* tarn_make_view() {
    return new tarn::platform::qt::QtView;
}
