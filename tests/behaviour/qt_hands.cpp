// SPDX-License-Identifier: GPL-3.0-or-later
//
// The user's keys and mouse on real widgets: as events offscreen, through the X server on a display.
#include "behaviour/hands.h"

#include "os/process.h"

#include <QAbstractButton>
#include <QApplication>
#include <QKeyEvent>
#include <QKeySequence>
#include <QMouseEvent>
#include <QWindow>

#include <cstdlib>

namespace tarn {
namespace {

using namespace platform;

QString decoded(const std::string& bytes) { return QString::fromUtf8(bytes.data(), static_cast<int>(bytes.size())); }

// The widget that gets the keys; a program without an active window, as offscreen after a dialog, gets one.
QWidget* keyTarget() {
    QWidget* modal = QApplication::activeModalWidget();
    QWidget* window = modal != nullptr ? modal : QApplication::activeWindow();
    if (window == nullptr) {
        for (QWidget* candidate : QApplication::topLevelWidgets()) {
            if (candidate->isVisible() && candidate->isWindow()) window = candidate;
        }
    }
    if (window == nullptr) return nullptr;
    return window->focusWidget() != nullptr ? window->focusWidget() : window;
}

void sendKey(QWidget* target, int key, Qt::KeyboardModifiers modifiers, const QString& text) {
    // Through the window system's queue, so that shortcuts see it as they see a real key.
    QWindow* window = target->window()->windowHandle();
    QKeyEvent shortcut(QEvent::ShortcutOverride, key, modifiers, text);
    QApplication::sendEvent(target, &shortcut);
    QKeyEvent press(QEvent::KeyPress, key, modifiers, text);
    QKeyEvent release(QEvent::KeyRelease, key, modifiers, text);
    if (window != nullptr) {
        QApplication::sendEvent(window, &press);
        QApplication::sendEvent(window, &release);
    } else {
        QApplication::sendEvent(target, &press);
        QApplication::sendEvent(target, &release);
    }
}

class QtHands : public Hands {
public:
    explicit QtHands(bool onScreen) : onScreen_(onScreen) {}

    bool key(const std::string& name) override {
        if (onScreen_) return std::system(("xdotool key --clearmodifiers '" + xName(name) + "'").c_str()) == 0;
        const QKeySequence sequence = QKeySequence::fromString(decoded(name));
        QWidget* target = keyTarget();
        if (sequence.isEmpty() || target == nullptr) return false;
        const QKeyCombination combination = sequence[0];
        sendKey(target, combination.key(), combination.keyboardModifiers(), {});
        return true;
    }

    bool type(const std::string& text) override {
        if (onScreen_) return std::system(("xdotool type --delay 5 '" + text + "'").c_str()) == 0;
        for (const QChar c : decoded(text)) {
            QWidget* target = keyTarget();
            if (target != nullptr) sendKey(target, c.toUpper().unicode(), Qt::NoModifier, QString(c));
        }
        return true;
    }

    bool click(const Object& object) override {
        const Control* control = findControl(object);
        auto* widget = static_cast<QWidget*>(control->widget);
        if (widget == nullptr) return false;
        const QPoint middle = widget->rect().center();
        if (onScreen_) {
            const QPoint place = widget->mapToGlobal(middle);
            return std::system(("xdotool mousemove " + std::to_string(place.x()) + " " + std::to_string(place.y()) +
                                " click 1").c_str()) == 0;
        }
        for (const QEvent::Type kind : {QEvent::MouseButtonPress, QEvent::MouseButtonRelease}) {
            QMouseEvent event(kind, middle, widget->mapToGlobal(middle), Qt::LeftButton, Qt::LeftButton, Qt::NoModifier);
            QApplication::sendEvent(widget, &event);
        }
        return true;
    }

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
            if (window->objectName() == "splash" && window->isVisible())
                sendKey(window, Qt::Key_Space, Qt::NoModifier, " ");
        }
    }

    void screenshot(const std::string& path) override {
        if (onScreen_) static_cast<void>(std::system(("import -window root '" + path + "'").c_str()));
    }

private:
    bool onScreen_;

    static std::string xName(std::string name) {
        const std::pair<std::string, std::string> names[] = {
            {"Ctrl+", "ctrl+"}, {"Alt+", "alt+"}, {"Shift+", "shift+"}, {"Esc", "Escape"}, {"Return", "Return"},
            {"Del", "Delete"}};
        for (const auto& [from, to] : names) {
            const std::size_t at = name.find(from);
            if (at != std::string::npos) name.replace(at, from.size(), to);
        }
        return name.size() > 1 && name[name.size() - 2] == '+' ? name.substr(0, name.size() - 1) +
                                                                      static_cast<char>(std::tolower(name.back()))
                                                                : name;
    }
};

}  // namespace

std::unique_ptr<Hands> makeQtHands(bool onScreen) {
    if (!onScreen) {
        setenv("QT_QPA_PLATFORM", "offscreen", 1);
        unsetenv("DISPLAY");
    }
    return std::make_unique<QtHands>(onScreen);
}

}  // namespace tarn
