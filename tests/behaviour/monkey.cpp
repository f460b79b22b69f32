// SPDX-License-Identifier: GPL-3.0-or-later
#include "behaviour/monkey.h"

#include "behaviour/hands.h"
#include "os/process.h"

#include <QApplication>
#include <QMenu>
#include <QMessageBox>
#include <QTest>
#include <QWidget>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <thread>
#include <unistd.h>

namespace tarn {

namespace {

namespace fs = std::filesystem;
using namespace platform;

constexpr int FrozenSeconds = 60;

std::atomic<int> beat{0};

// Ends the process when no step has come for long.
void watchForFreeze(const std::string& logFile) {
    std::thread([logFile] {
        for (int last = -1, quiet = 0; quiet < FrozenSeconds;) {
            std::this_thread::sleep_for(std::chrono::seconds(1));
            quiet = beat == last ? quiet + 1 : 0;
            last = beat;
        }
        std::printf("frozen at step %d; the steps are in %s\n", beat.load(), logFile.c_str());
        std::fflush(nullptr);
        _exit(3);
    }).detach();
}

const std::vector<int>& keys() {
    static const std::vector<int> all = {
        Qt::Key_Return, Qt::Key_Escape, Qt::Key_Tab,      Qt::Key_Backtab,   Qt::Key_Up,   Qt::Key_Down,
        Qt::Key_Left,   Qt::Key_Right,  Qt::Key_Home,     Qt::Key_End,       Qt::Key_F1,   Qt::Key_F2,
        Qt::Key_F8,     Qt::Key_F9,     Qt::Key_F10,      Qt::Key_F12,       Qt::Key_Menu, Qt::Key_Delete,
        Qt::Key_Insert, Qt::Key_PageUp, Qt::Key_PageDown, Qt::Key_Backspace, Qt::Key_Space};
    return all;
}

std::vector<const Window*> shownWindows() {
    std::vector<const Window*> all;
    for (const auto& window : windows())
        if (window->shown && takesInput(*window)) all.push_back(window.get());
    return all;
}

void put(const std::string& path, const std::string& text) {
    std::ofstream(path, std::ios::binary) << text;
}

}  // namespace

QWidget* keyReceiver() {
    if (QWidget* popup = QApplication::activePopupWidget(); popup != nullptr) return popup;
    QWidget* window = QApplication::activeModalWidget();
    if (window == nullptr) window = QApplication::activeWindow();
    if (window == nullptr) return nullptr;
    return window->focusWidget() != nullptr ? window->focusWidget() : window;
}

void prepareMonkey(const std::string& examples, const std::string& folder, const std::string& profile) {
    fs::create_directories(folder);
    fs::copy(examples, folder, fs::copy_options::recursive);
    put(folder + "plain.txt", "one\ntwo\nthree\n");
    put(folder + "star.txt *", "star\n");
    put(folder + "odd.bin", std::string("\0\xff\xfe\r\nx\rline\n\xc3", 13));
    put(folder + "long.txt", std::string(100000, 'x') + "\n" + std::string(3000, '\n'));
    put(folder + "people.csv", "name,age\nAnn,31\n\"Bob, jr\",4\n,\n");
    put(folder + "broken.csv", "a;b;c\n1;2\n\"open;3\n");
    put(folder + "stock.xml", "<d><r><c>7</c></r><r><c>9</c></r></d>");
    put(folder + "broken.xml", "<data><row></data>");
    put(folder + "empty.cls", "");
    put(folder + "broken.cls", "Tarnwick Class other\nfunction f(\n");
    // Tools that end at once: one time in three with messages.
    for (const char* tool : {"ordo.exe", "quarn.exe"}) {
        fs::remove(profile + tool);
        put(profile + tool, "#!/bin/sh\ncase $$ in *[147]) echo \"" + folder +
                                "wordcount.cls(7) : error 12 text\" > \"${0%/*}/sarn.err\" ;;\n"
                                "*2) exit 3 ;;\n*) echo ': 0 errors.' > \"${0%/*}/sarn.err\" ;; esac\n");
        fs::permissions(profile + tool, fs::perms(0755));
    }
}

Monkey::Monkey(unsigned seed, int steps, std::string folder, const std::string& logFile)
    : random_(seed), steps_(steps), folder_(std::move(folder)), logFile_(logFile) {
    put(logFile_, "seed " + std::to_string(seed) + "\n");
    watchForFreeze(logFile_);
}

void Monkey::log(const std::string& what) {
    std::ofstream(logFile_, std::ios::app) << step_ << " " << what << "\n";
}

void Monkey::lookForErrors() {
    const Question* const question = view().asking();
    const bool own = question->title.starts_with("Error 7") || question->title.starts_with("Error 8") ||
                     question->text.find("(error 7") != std::string::npos;
    if (own) fail(question->title + "\n" + question->text);
}

void Monkey::fail(const std::string& what) {
    if (failure_.empty()) failure_ = "step " + std::to_string(step_) + ": " + what;
}

// The time since the step before.
void Monkey::lookAtClock() {
    constexpr long Promise = 1000;
    const auto passed =
        std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::steady_clock::now() - last_);
    if (passed.count() > Promise)
        ++slow_, log("the step before took " + std::to_string(passed.count()) + " ms");
    if (passed.count() > longest_) longest_ = passed.count(), longestStep_ = step_;
}

std::string Monkey::slowness() const {
    return std::to_string(slow_) + " steps over a second; the longest, step " + std::to_string(longestStep_) +
           ", took " + std::to_string(longest_) + " ms";
}

void Monkey::idle() {
    if (finished() || waits()) return;
    if (step_ > 0) lookAtClock();
    startClock();
    beat = ++step_;
    if (QApplication::instance() == nullptr) return fail("there are no real widgets: is the Qt view built?");
    for (QWidget* window : QApplication::topLevelWidgets())
        if (window->objectName() == u"SplashDlg" && window->isVisible())
            QTest::keyClick(window, Qt::Key_Space);
    if (view().asking() != nullptr) {
        lookForErrors();
        return answer();
    }
    const Window* const main = findWindow(Object("Main"));
    if (main != nullptr && main->shown) act();
}

void Monkey::act() {
    switch (below(10)) {
    case 0:
    case 1: return command();
    case 2: return press();
    case 3:
    case 4: return key(keyReceiver());
    case 5:
    case 6: return type(keyReceiver());
    case 7:
    case 8: return mouse();
    default: return closeWindow();
    }
}

std::string Monkey::file(bool toSave) {
    std::vector<std::string> names{"", "/nowhere/at/all.txt",
                                   folder_ + "new" + std::to_string(below(5)) + ".txt"};
    for (const auto& entry : fs::directory_iterator(folder_))
        if (entry.is_regular_file()) names.push_back(entry.path().string());
    std::sort(names.begin(), names.end());
    std::string name = one(names);
    if (toSave && below(4) == 0) name += ".cls";
    return name;
}

// Every question gets an answer at last; what would end the program is never chosen.
void Monkey::answer() {
    // A box of the toolkit's own over the question: a file that is not there, or one to be replaced.
    if (auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget()); box != nullptr)
        return QTest::keyClick(box, below(2) == 0 ? Qt::Key_Return : Qt::Key_Escape);
    const Question* const question = view().asking();
    const bool message = question->kind == Question::Kind::Message;
    if (message && below(3) == 0 && question->title != "File-Exit" && question->title != "Error")
        return key(keyReceiver());
    std::string text;
    switch (question->kind) {
    case Question::Kind::Message:
        text = one(question->buttons.empty() ? std::vector<std::string>{"OK"} : question->buttons);
        if (question->title == "File-Exit") text = "&No";
        if (text == "Halt") text = "Continue";
        break;
    case Question::Kind::Input: text = below(2) == 0 ? "" : "typed"; break;
    case Question::Kind::List:
        text = question->rows.empty() || below(3) == 0 ? "" : one(question->rows);
        break;
    default: text = file(question->kind == Question::Kind::SaveFile); break;
    }
    const bool error = question->title.starts_with("Error ");
    log("answer '" + question->title + "' with '" + text + "'" + (error ? ": " + question->text : ""));
    answered(question->title, text);
    if (!view().answer(text)) static_cast<void>(view().answer(""));
}

void Monkey::command() {
    command({""});
}

void Monkey::command(const std::vector<std::string>& prefixes) {
    const auto wanted = [&](const std::string& name) {
        return name.find('_') != std::string::npos && name != "file_exit" &&
               std::any_of(prefixes.begin(), prefixes.end(),
                           [&](const std::string& p) { return name.starts_with(p); });
    };
    std::vector<Control*> items;
    for (const auto& item : findWindow(Object("Main"))->menuItems)
        if (item->enabled && item->visible && wanted(item->name)) items.push_back(item.get());
    if (items.empty() || !takesInput(*findWindow(Object("Main")))) return;
    Control* const item = one(items);
    log("command " + item->name);
    userCommand(*item);
}

void Monkey::press(const std::string& only) {
    std::vector<Control*> controls;
    for (const Window* window : shownWindows())
        for (const auto& control : window->controls)
            if (control->enabled && control->visible && (only.empty() || window->name == only))
                controls.push_back(control.get());
    if (controls.empty()) return;
    Control* const control = one(controls);
    log("press " + control->object.window() + " " + control->name);
    switch (control->type) {
    case Type::Pushbutton:
    case Type::Bitmapbutton: return userCommand(*control);
    case Type::Checkbox:
    case Type::Radiobutton: return userValue(*control, below(2));
    case Type::Listbox:
    case Type::Iconlist: return userRow(*control, below(4));
    default: break;
    }
    if (control->text == nullptr || control->readonly) return;
    control->text->setText(below(2) == 0 ? std::to_string(below(300) - 2) : "text");
    userChange(*control);
}

void Monkey::key(QWidget* to) {
    if (to == nullptr) return;
    Qt::KeyboardModifiers modifiers;
    if (below(4) == 0) modifiers |= Qt::ControlModifier;
    if (below(4) == 0) modifiers |= Qt::ShiftModifier;
    if (below(6) == 0) modifiers |= Qt::AltModifier;
    const int code = below(3) == 0 ? Qt::Key_A + below(26) : one(keys());
    log("key " + std::to_string(code) + " with " + std::to_string(modifiers.toInt()) + " to " +
        to->objectName().toStdString());
    QTest::keyClick(to, static_cast<Qt::Key>(code), modifiers);
}

void Monkey::type(QWidget* to) {
    static const std::vector<std::string> texts = {"x", "end", "\"", "// ", "function f()", "(", "0"};
    if (to == nullptr) return;
    const std::string& text = one(texts);
    log("type " + text + " to " + to->objectName().toStdString());
    // What the keys close must not get the rest of them.
    for (const char c : text)
        if (QWidget* now = keyReceiver(); now != nullptr) QTest::keyClick(now, c);
}

void Monkey::mouse() {
    std::vector<QWidget*> widgets;
    for (QWidget* window : QApplication::topLevelWidgets()) {
        if (!window->isVisible()) continue;
        widgets.push_back(window);
        for (QWidget* child : window->findChildren<QWidget*>())
            if (child->isVisible() && !child->size().isEmpty()) widgets.push_back(child);
    }
    if (widgets.empty()) return;
    QWidget* const widget = one(widgets);
    const QPoint at(below(std::max(widget->width(), 1)), below(std::max(widget->height(), 1)));
    const auto button = below(5) == 0 ? Qt::RightButton : Qt::LeftButton;
    log("mouse at " + widget->objectName().toStdString() + " (" + widget->metaObject()->className() + ")");
    if (below(6) == 0)
        QTest::mouseDClick(widget, button, {}, at);
    else
        QTest::mouseClick(widget, button, {}, at);
}

void Monkey::closeWindow() {
    std::vector<const Window*> all = shownWindows();
    std::erase_if(all, [](const Window* window) { return window->name == "Main"; });
    if (all.empty()) return command();
    const Object object = one(all)->object;
    log("close " + object.window());
    userClose(*findWindow(object));
}

}  // namespace tarn
