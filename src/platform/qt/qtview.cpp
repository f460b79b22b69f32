// SPDX-License-Identifier: Apache-2.0
//
// The application, windows and their order, loops, questions. Keys and the mouse are in qtview_input.cpp, measures and the
// desktop in qtview_desktop.cpp, drawing in qtview_drawing.cpp.
#include "platform/qt/qtview.h"

#include "platform/model/debugger/debugwindow.h"
#include "platform/model/model.h"
#include "platform/model/showing.h"
#include "platform/qt/windows/frame.h"
#include "platform/qt/windows/popups.h"
#include "platform/qt/windows/questions.h"

#include <QAccessible>
#include <QAccessibleWidget>
#include <QApplication>
#include <QLoggingCategory>
#include <QSocketNotifier>
#include <QStyle>
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
    Frame* const frame = frameOf(window);
    if (frame == nullptr) return;
    if (howToShow() == Showing::InFront)
        bringUp(*frame);
    else
        frame->showQuietly(howToShow() == Showing::Behind);
}

// The model counts a window as active from here on; the window system follows in its own time.
void QtView::bringUp(Frame& frame) {
    noteLatest(frame);
    broughtUp_ = &frame;
    sinceBroughtUp_.start();
    timesInsisted_ = 0;
    frame.bringUp();
}

// The window system gives the focus in its own time: to the window below a dialog that closes, or to one that was shown
// before, when the program has already brought another one up. So for a moment in which the user does nothing that one is
// asked for again. Somebody who picks a window from the desktop just then gets it at the third try.
bool QtView::insists(const Frame& frame) {
    constexpr int patience = 1000, tries = 2;  // milliseconds
    if (broughtUp_.isNull() || broughtUp_ == &frame || timesInsisted_ == tries) return false;
    if (sinceBroughtUp_.elapsed() > patience) return false;
    if (!broughtUp_->isVisible() || broughtUp_->model() == nullptr || !takesInput(broughtUp_->window()))
        return false;
    ++timesInsisted_;
    broughtUp_->activateWindow();
    return true;
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
    if (!insists(*frame)) enter(*frame);
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

}  // namespace tarn::platform::qt

extern "C" __attribute__((visibility("default"))) tarn::platform::View* tarn_make_view() {
    return new tarn::platform::qt::QtView;
}
