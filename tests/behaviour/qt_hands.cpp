// SPDX-License-Identifier: GPL-3.0-or-later
//
// The user's keys and mouse on real widgets: as events offscreen, through the X server on a display.
#include "behaviour/design_places.h"
#include "behaviour/hands.h"
#include "ide/designer/dlgedit.h"
#include "ide/help/helpviewer.h"
#include "ide/shell/windows.h"
#include "os/process.h"

#include <QAbstractButton>
#include <QAbstractScrollArea>
#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QContextMenuEvent>
#include <QElapsedTimer>
#include <QKeySequence>
#include <QMouseEvent>
#include <QTest>
#include <QThread>
#include <QTimer>
#include <QWidget>

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <cstdlib>

namespace tarn {
namespace {

using namespace platform;

QString decoded(const std::string& bytes) {
    return QString::fromUtf8(bytes.data(), static_cast<int>(bytes.size()));
}

// The widget that gets the keys; a program without an active window, as offscreen after a dialog, gets one.
QWidget* keyTarget() {
    if (QWidget* popup = QApplication::activePopupWidget(); popup != nullptr) return popup;
    QWidget* modal = QApplication::activeModalWidget();
    QWidget* window = QApplication::activeWindow();
    const bool help = window != nullptr && window->objectName() == "HelpWindow";  // which no dialog holds up
    if (modal != nullptr && !help) window = modal;
    if (window == nullptr) {
        for (QWidget* candidate : QApplication::topLevelWidgets()) {
            if (candidate->isVisible() && candidate->isWindow()) window = candidate;
        }
    }
    if (window == nullptr) return nullptr;
    return window->focusWidget() != nullptr ? window->focusWidget() : window;
}

class QtHands : public Hands {
public:
    explicit QtHands(bool onScreen) : onScreen_(onScreen) {}

    // The window manager places and focuses windows in its own time, and real input goes where they are.
    int patience() override { return onScreen_ ? 400 : 0; }

    bool key(const std::string& name) override {
        if (onScreen_)
            return std::system(("xdotool key --clearmodifiers '" + xName(name) + "'").c_str()) == 0;
        const QKeySequence sequence = QKeySequence::fromString(decoded(name));
        QWidget* target = keyTarget();
        if (sequence.isEmpty() || target == nullptr) return false;
        const QKeyCombination combination = sequence[0];
        QTest::keyClick(target, combination.key(), combination.keyboardModifiers());
        return true;
    }

    bool type(const std::string& text) override {
        if (onScreen_) return std::system(("xdotool type --delay 5 '" + text + "'").c_str()) == 0;
        QTest::keyClicks(keyTarget(), decoded(text));
        return true;
    }

    bool click(const Object& object) override {
        const QWidget* window = topOf(object.owner());
        const QString name = decoded(findControl(object)->name);
        auto* widget = window != nullptr ? window->findChild<QWidget*>(name) : nullptr;
        return widget != nullptr && press(*widget, widget->rect().center(), 1);
    }

    bool mouse(const Object& window, int x, int y, int clicks) override {
        auto* widget = static_cast<QWidget*>(findWindow(window)->widget);
        if (widget == nullptr) return false;
        auto* area = qobject_cast<QAbstractScrollArea*>(widget);
        if (area == nullptr) area = widget->findChild<QAbstractScrollArea*>();
        return area != nullptr && press(*area->viewport(), QPoint(x, y), clicks);
    }

    bool design(const std::string& file, const std::string& dialog) override {
        OPENDIALOG(file, dialog);
        return true;
    }

    bool point(const std::string& object, const std::string& how) override {
        Point at;
        if (!designPoint(object, false, at)) return false;
        QWidget* const client = clientAt(at);
        if (how != "right") {
            dragTo(*client, at, at, how == "shift");
            if (how == "2") onScreen_ ? pressAndMove(*client, at, at) : doubleClick(*client, at);
            return true;
        }
        const QPoint place = within(*client, at), global = client->mapToGlobal(place);
        if (onScreen_) {
            holds_ = true;
            QTimer::singleShot(arrival, [this] { holds_ = false; });
            return run("mousemove " + text(global) + " click 3");
        }
        QContextMenuEvent event(QContextMenuEvent::Mouse, place, global);
        QApplication::sendEvent(client, &event);
        return true;
    }

    bool drag(const std::string& object, bool corner, int dx, int dy) override {
        Point at;
        if (!designPoint(object, corner, at)) return false;
        const Point by = designDistance(dx, dy);
        dragTo(*clientAt(at), at, {at.x + by.x, at.y + by.y});
        return true;
    }

    bool holdsButton() override { return holds_ || settles(); }

    bool stopTool() override {
        for (QWidget* window : QApplication::topLevelWidgets()) {
            auto* button = window->findChild<QAbstractButton*>("toolstop");
            if (button == nullptr || !button->isVisible()) continue;
            button->click();
            return true;
        }
        return false;
    }

    void endSplash() override {
        for (QWidget* window : QApplication::topLevelWidgets()) {
            if (window->objectName() == "SplashDlg" && window->isVisible())
                QTest::keyClick(window, Qt::Key_Space);
        }
    }

    void maximise(const Object& object) override {
        if (auto* widget = topOf(object); widget != nullptr) widget->showMaximized();
    }

    Rect frameOf(const Object& object) override {
        const QWidget* widget = topOf(object);
        return widget != nullptr && widget->isVisible() ? rectOf(widget->frameGeometry()) : Rect{};
    }

    Rect boxFrame() override {
        const QWidget* box = QApplication::activeModalWidget();
        return box != nullptr ? rectOf(box->frameGeometry()) : Rect{};
    }

    Rect stopFrame() override {
        for (const QWidget* window : QApplication::topLevelWidgets())
            if (window->objectName() == "toolprogress" && window->isVisible())
                return rectOf(window->frameGeometry());
        return {};
    }

    bool statusText(std::string& text) override {
        const QWidget* window = topOf(Object("SDIEdit"));
        const auto* bar = window != nullptr ? window->findChild<QWidget*>("statusbar") : nullptr;
        if (bar == nullptr) return false;
        text = bar->accessibleDescription().toStdString();
        return true;
    }

    bool menuText(const Control& item, std::string& text) override {
        const auto* action = static_cast<const QAction*>(item.widget);
        if (action != nullptr) text = action->text().toStdString();
        return action != nullptr;
    }

    bool helpTopic(std::string& topic) override {
        const QWidget* window = helpWindow();
        topic = window == nullptr ? "(no help window)" : window->property("topic").toString().toStdString();
        return true;
    }

    bool helpPage(std::string& title) override {
        const QWidget* window = helpWindow();
        title = window == nullptr ? "(no help window)" : window->windowTitle().toStdString();
        return true;
    }

    bool bringForward(const std::string& title) override {
        std::string front;
        if (frontTitle(front) && front == title) return true;
        // Without a window of that title there is none to activate, which is no fault yet.
        static_cast<void>(
            run("search --onlyvisible --name '^" + pattern(title) + "$' windowactivate 2>/dev/null"));
        return false;
    }

    bool frontTitle(std::string& title) override {
        title.clear();
        std::FILE* const out = ::popen("xdotool getactivewindow getwindowname 2>/dev/null", "r");
        if (out == nullptr) return false;
        for (int c = std::fgetc(out); c != EOF && c != '\n'; c = std::fgetc(out))
            title += static_cast<char>(c);
        ::pclose(out);
        return true;
    }

    bool clipboardText(std::string& text) override {
        text = QGuiApplication::clipboard()->text().toStdString();
        return true;
    }

    void screenshot(const std::string& path) override {
        if (onScreen_) static_cast<void>(std::system(("import -window root '" + path + "'").c_str()));
    }

private:
    static constexpr int arrival =
        300;  // milliseconds until what the server was told has come back as events
    static constexpr int doubleClickTime = 450;  // milliseconds, and a little more
    static constexpr int settleTime = 250;       // milliseconds after which a window has its place
    bool onScreen_, holds_ = false;
    QElapsedTimer pressed_, placed_;
    QRect place_;

    // The window manager places the dialog editor in its own time.
    bool settles() {
        const QWidget* const window = onScreen_ ? topOf(DialogDlg) : nullptr;
        if (window == nullptr || !window->isVisible()) return false;
        if (std::exchange(place_, window->frameGeometry()) != window->frameGeometry()) placed_.start();
        return placed_.elapsed() < settleTime;
    }

    static std::string text(const QPoint& point) {
        return std::to_string(point.x()) + " " + std::to_string(point.y());
    }
    // A regular expression that the text fits; whatever is no letter may be any.
    static std::string pattern(std::string text) {
        const auto plain = [](unsigned char c) { return std::isalnum(c) != 0 || c == ' '; };
        std::replace_if(
            text.begin(), text.end(), [&](char c) { return !plain(static_cast<unsigned char>(c)); }, '.');
        return text;
    }
    static bool run(const std::string& command) { return std::system(("xdotool " + command).c_str()) == 0; }

    static QWidget* clientAt(const Point& at) {
        QWidget* const window = topOf(DialogDlg);
        QWidget* const client = window->childAt(at.x, at.y);
        return client != nullptr ? client : window;
    }

    // A place of the window as one of the widget that is there, which may be the window itself.
    static QPoint within(const QWidget& client, const Point& at) {
        return client.mapFrom(client.window(), QPoint(at.x, at.y));
    }

    // Presses, moves and releases. What one client sends arrives in order; waiting for a move of a pointer that is there
    // already would last until it gives up. Offscreen the press returns only when a drag has ended, so the rest comes by
    // a timer.
    void dragTo(QWidget& client, const Point& from, const Point& to, bool shift = false) {
        if (onScreen_ && pressed_.isValid() && pressed_.elapsed() < doubleClickTime)
            run("sleep 0." + std::to_string(doubleClickTime));  // two presses are no double click
        pressed_.start();
        pressAndMove(client, from, to, shift);
    }

    void pressAndMove(QWidget& client, const Point& from, const Point& to, bool shift = false) {
        const QPoint begin = within(client, from), end = within(client, to);
        holds_ = true;
        if (onScreen_) {
            QTimer::singleShot(arrival, [this] { holds_ = false; });
            run(std::string(shift ? "keydown shift " : "") + "mousemove " + text(client.mapToGlobal(begin)) +
                " mousedown 1 mousemove " + text(client.mapToGlobal((begin + end) / 2)) + " mousemove " +
                text(client.mapToGlobal(end)) + " mouseup 1" + (shift ? " keyup shift" : ""));
            return;
        }
        const QPointer<QWidget> alive(&client);
        for (const QEvent::Type type : {QEvent::MouseMove, QEvent::MouseButtonRelease})
            QTimer::singleShot(type == QEvent::MouseMove ? 5 : 10, [=, this] {
                const bool up = type == QEvent::MouseButtonRelease;
                if (up) holds_ = false;
                if (alive.isNull()) return;
                QMouseEvent event(type, end, alive->mapToGlobal(end), up ? Qt::LeftButton : Qt::NoButton,
                                  up ? Qt::NoButton : Qt::LeftButton, Qt::NoModifier);
                QApplication::sendEvent(alive, &event);
            });
        QTest::mousePress(&client, Qt::LeftButton, shift ? Qt::ShiftModifier : Qt::NoModifier, begin);
        if (!alive.isNull()) QTest::mouseRelease(&client, Qt::LeftButton, {}, end);
    }

    static void doubleClick(QWidget& client, const Point& at) {
        QTest::mouseDClick(&client, Qt::LeftButton, {}, within(client, at));
    }

    static const QWidget* helpWindow() {
        for (const QWidget* window : QApplication::topLevelWidgets())
            if (window->objectName() == "HelpWindow" && window->isVisible()) return window;
        return nullptr;
    }
    static QWidget* topOf(const Object& object) {
        const Window* window = findWindow(object);
        return window != nullptr ? static_cast<QWidget*>(window->widget) : nullptr;
    }
    static Rect rectOf(const QRect& r) { return {r.x(), r.y(), r.width(), r.height()}; }

    // The window system takes a box that was answered away in its own time; until then the box is what a click would meet.
    static void waitUntilSeen(const QWidget& widget, const QPoint& at) {
        const std::string wanted = "WINDOW=" + std::to_string(widget.window()->winId()) + "\n";
        constexpr int tries = 60;
        for (int i = 0; i < tries; ++i) {
            std::FILE* const out = ::popen(
                ("xdotool mousemove " + text(at) + " getmouselocation --shell 2>/dev/null").c_str(), "r");
            if (out == nullptr) return;
            std::string told;
            for (int c = std::fgetc(out); c != EOF; c = std::fgetc(out)) told += static_cast<char>(c);
            ::pclose(out);
            if (told.find(wanted) != std::string::npos) return;
            QThread::msleep(20);
        }
    }

    bool press(QWidget& widget, const QPoint& place, int clicks) const {
        if (onScreen_) {
            const QPoint at = widget.mapToGlobal(place);
            waitUntilSeen(widget, at);
            return std::system(("xdotool mousemove " + std::to_string(at.x()) + " " + std::to_string(at.y()) +
                                " click --repeat " + std::to_string(std::max(clicks, 1)) + " --delay 40 " +
                                (clicks > 0 ? "1" : "3"))
                                   .c_str()) == 0;
        }
        if (clicks == 0) return rightClick(widget, place);
        QTest::mouseClick(&widget, Qt::LeftButton, {}, place);
        if (clicks == 2) QTest::mouseDClick(&widget, Qt::LeftButton, {}, place);
        return true;
    }

    static bool rightClick(QWidget& widget, const QPoint& place) {
        QTest::mouseClick(&widget, Qt::RightButton, {}, place);
        QCoreApplication::postEvent(
            &widget, new QContextMenuEvent(QContextMenuEvent::Mouse, place, widget.mapToGlobal(place)));
        return true;
    }

    static std::string xName(std::string name) {
        const std::pair<std::string, std::string> names[] = {
            {"Ctrl+", "ctrl+"}, {"Alt+", "alt+"},     {"Shift+", "shift+"},
            {"Esc", "Escape"},  {"Return", "Return"}, {"Del", "Delete"},
            {"Space", "space"}, {"++", "+plus"},      {"+-", "+minus"}};
        for (const auto& [from, to] : names) {
            const std::size_t at = name.find(from);
            if (at != std::string::npos) name.replace(at, from.size(), to);
        }
        return name.size() > 1 && name[name.size() - 2] == '+'
                   ? name.substr(0, name.size() - 1) + static_cast<char>(std::tolower(name.back()))
                   : name;
    }
};

}  // namespace

std::unique_ptr<Hands> makeQtHands(bool onScreen) {
    if (!onScreen) {
        setenv("QT_QPA_PLATFORM", "offscreen", 1);
        unsetenv("DISPLAY");
    }
    USEHELPWINDOW();
    USEBOXHELP();
    return std::make_unique<QtHands>(onScreen);
}

}  // namespace tarn
