// SPDX-License-Identifier: Apache-2.0
//
// What the view knows of the desktop and asks of it: measures, screens, sounds, timers, other programs.
#include "os/files.h"
#include "os/process.h"
#include "platform/model/model.h"
#include "platform/qt/controls/widgets.h"
#include "platform/qt/drawing/palettes.h"
#include "platform/qt/drawing/pictures.h"
#include "platform/qt/drawing/printing.h"
#include "platform/qt/qtview.h"
#include "platform/qt/texts.h"
#include "platform/qt/windows/frame.h"
#include "platform/qt/windows/popups.h"

#include <QApplication>
#include <QDesktopServices>
#include <QFontDatabase>
#include <QFontMetrics>
#include <QScreen>
#include <QSocketNotifier>
#include <QStandardPaths>
#include <QStyle>
#include <QUrl>

#include <algorithm>

namespace tarn::platform::qt {

namespace {

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

}  // namespace

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
            isDark(QApplication::palette())};
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

}  // namespace tarn::platform::qt
