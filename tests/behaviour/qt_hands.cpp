// SPDX-License-Identifier: GPL-3.0-or-later
//
// The user's hands on real widgets: buttons by their captions, keys as key events, offscreen or on a display.
#include "behaviour/hands.h"

#include "os/process.h"

#include <QAbstractButton>
#include <QApplication>
#include <QDialog>
#include <QFileDialog>
#include <QKeyEvent>
#include <QKeySequence>
#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QMessageBox>
#include <QMouseEvent>
#include <QPixmap>
#include <QPushButton>
#include <QScreen>
#include <QTimer>
#include <QWindow>

#include <cstdlib>

namespace tarn {
namespace {

using namespace platform;

QString decoded(const std::string& bytes) { return QString::fromUtf8(bytes.data(), static_cast<int>(bytes.size())); }
std::string encoded(const QString& text) { return text.toStdString(); }

// The modal question of the toolkit: a message, file, input or list box, as opposed to a dialog of the program.
QDialog* questionDialog() {
    auto* dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget());
    const bool ofProgram = dialog != nullptr && findWindow(Object(encoded(dialog->objectName()))) != nullptr &&
                           !dialog->objectName().isEmpty();
    if (ofProgram || (dialog != nullptr && dialog->objectName() == "answered")) return nullptr;
    return dialog;
}

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

    std::optional<ShownQuestion> question() override {
        QDialog* dialog = questionDialog();
        if (dialog == nullptr) return std::nullopt;
        ShownQuestion shown;
        shown.title = encoded(dialog->windowTitle());
        if (const auto* box = qobject_cast<QMessageBox*>(dialog)) shown.text = encoded(box->text());
        else if (const auto* label = dialog->findChild<QLabel*>("question")) shown.text = encoded(label->text());
        for (const QAbstractButton* button : dialog->findChildren<QAbstractButton*>()) {
            if (!button->text().isEmpty()) shown.buttons.push_back(encoded(button->text()));
        }
        return shown;
    }

    bool answer(const std::string& caption) override {
        QDialog* dialog = questionDialog();
        for (QAbstractButton* button : dialog->findChildren<QAbstractButton*>()) {
            if (encoded(button->text()) != caption || !button->isVisible()) continue;
            QTimer::singleShot(0, button, &QAbstractButton::click);
            settle(dialog);
            return true;
        }
        return false;
    }

    bool enter(const std::string& text) override {
        QDialog* dialog = questionDialog();
        if (text.empty()) {
            QTimer::singleShot(0, dialog, &QDialog::reject);
        } else if (auto* files = qobject_cast<QFileDialog*>(dialog)) {
            if (auto* name = files->findChild<QLineEdit*>("fileNameEdit")) name->setText(decoded(text));
            QTimer::singleShot(0, files, [files] { QMetaObject::invokeMethod(files, "accept"); });
        } else if (auto* list = dialog->findChild<QListView*>()) {
            const auto found = list->model()->match(list->model()->index(0, 0), Qt::DisplayRole, decoded(text), 1,
                                                    Qt::MatchExactly);
            if (found.isEmpty()) return false;
            list->setCurrentIndex(found.front());
            QTimer::singleShot(0, dialog, &QDialog::accept);
        } else if (auto* line = dialog->findChild<QLineEdit*>()) {
            line->setText(decoded(text));
            QTimer::singleShot(0, dialog, &QDialog::accept);
        } else {
            return false;
        }
        settle(dialog);
        return true;
    }

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

    // The next line must not take this box for its own: it waits until the box has gone.
    static void settle(QDialog* dialog) { dialog->setObjectName("answered"); }

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
