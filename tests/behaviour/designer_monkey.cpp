// SPDX-License-Identifier: GPL-3.0-or-later
#include "behaviour/designer_monkey.h"

#include "behaviour/design_places.h"
#include "ide/designer/dlgchanges.h"
#include "ide/designer/dlgedit.h"
#include "ide/designer/files/scratch.h"
#include "ide/shell/windows.h"
#include "library/designer/proputil.h"
#include "platform/model/model.h"
#include "platform/resources/resource.h"
#include "unit/platform/generated_dialog.h"

#include <QApplication>
#include <QContextMenuEvent>
#include <QMouseEvent>
#include <QPointer>
#include <QTest>
#include <QTimer>
#include <QWidget>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <numeric>

namespace tarn {
namespace {

namespace fs = std::filesystem;
using platform::DialogMaker;
using platform::findWindow;
using platform::userClose;
using platform::Window;

constexpr int MadeFiles = 4;

void put(const std::string& path, const std::string& text) {
    std::ofstream(path, std::ios::binary) << text;
}

QWidget* editor() {
    const Window* window = findWindow(DialogDlg);
    return window != nullptr && window->shown ? static_cast<QWidget*>(window->widget) : nullptr;
}

QWidget& clientAt(QWidget& window, const QPoint& at) {
    QWidget* const client = window.childAt(at);
    return client != nullptr ? *client : window;
}

std::vector<std::string> linesOf(const std::string& text) {
    std::vector<std::string> lines;
    for (std::size_t at = 0, end = 0; at < text.size(); at = end + 1) {
        end = std::min(text.find('\n', at), text.size());
        if (end > at) lines.push_back(text.substr(at, end - at));
    }
    return lines;
}

}  // namespace

void prepareDesignerMonkey(const std::string& sources, const std::string& folder) {
    fs::copy(sources + "/src/ide", folder + "ide", fs::copy_options::recursive);
    fs::copy(sources + "/examples", folder + "samples", fs::copy_options::recursive);
    fs::create_directories(folder + "made");
}

void DesignerMonkey::makeFiles() {
    DialogMaker maker(static_cast<unsigned>(below(1 << 30)));
    for (int file = 0; file < MadeFiles; ++file) {
        const std::string path = folder() + "made/made" + std::to_string(file) + ".rc";
        put(path, "");
        for (int dialog = 0; dialog < 3; ++dialog) {
            const std::string name = "Made" + std::to_string(dialog), menu = dialog == 0 ? "" : name + "Menu";
            const ObjectArray items = menu.empty() ? ObjectArray{} : maker.menu(menu);
            // What the writer refuses the user could not have either.
            static_cast<void>(platform::ResourceWrite(maker.dialog(name, menu), items, path));
        }
    }
    for (const auto& entry : fs::recursive_directory_iterator(folder()))
        if (entry.path().extension() == ".rc")
            files_[entry.path().string()] = FILETEXT(entry.path().string());
}

// ---- what is done next ----

struct DesignerMonkey::Action {
    int weight;
    void (DesignerMonkey::*doIt)();
};

const std::vector<DesignerMonkey::Action>& DesignerMonkey::actions() {
    static const std::vector<Action> all = {
        {20, &DesignerMonkey::point},     {14, &DesignerMonkey::drag},       {5, &DesignerMonkey::rightClick},
        {24, &DesignerMonkey::designKey}, {8, &DesignerMonkey::toolbox},     {18, &DesignerMonkey::menu},
        {8, &DesignerMonkey::property},   {1, &DesignerMonkey::resize},      {1, &DesignerMonkey::outside},
        {1, &DesignerMonkey::undoAll},    {1, &DesignerMonkey::closeEditor}, {1, &DesignerMonkey::open}};
    return all;
}

void DesignerMonkey::act() {
    const Window* const main = findWindow(Main);
    if (QApplication::activePopupWidget() != nullptr) return key(keyReceiver());
    if (!platform::takesInput(*main)) return inDialog();
    if (INDESIGNSTEP()) return;
    if (files_.empty()) makeFiles();
    if (const std::string fault = watch_.look(); !fault.empty()) return fail(fault);
    if (editor() == nullptr) return open();
    const auto& all = actions();
    int chosen = below(
        std::accumulate(all.begin(), all.end(), 0, [](int sum, const Action& a) { return sum + a.weight; }));
    for (const Action& action : all) {
        chosen -= action.weight;
        if (chosen < 0) return (this->*action.doIt)();
    }
}

// The property sheet, the menu editor, a dialog under test and others that hold up the editor.
void DesignerMonkey::inDialog() {
    static const std::vector<Qt::Key> keys = {Qt::Key_Tab,    Qt::Key_Down,   Qt::Key_Up,    Qt::Key_F4,
                                              Qt::Key_Return, Qt::Key_F2,     Qt::Key_Space, Qt::Key_Escape,
                                              Qt::Key_Insert, Qt::Key_Delete, Qt::Key_Right, Qt::Key_Left};
    QWidget* const to = keyReceiver();
    switch (below(8)) {
    case 0: return type(to);
    case 1:
    case 2: return Monkey::press();
    case 3: return mouse();
    case 4: return below(3) == 0 ? closeWindow() : type(to);
    default: break;
    }
    if (to == nullptr) return closeWindow();
    const Qt::Key code = one(keys);
    log("key " + std::to_string(code) + " to " + to->objectName().toStdString());
    QTest::keyClick(to, code, below(5) == 0 ? Qt::ControlModifier : Qt::NoModifier);
}

void DesignerMonkey::answered(const std::string& title, const std::string& text) {
    if (title == "Save Changes?" && text == "&No") watch_.fileIsForeign();
}

// ---- opening and closing ----

void DesignerMonkey::open() {
    std::vector<std::string> names;
    for (const auto& [name, text] : files_) names.push_back(name);
    const std::string file = one(names);
    const std::vector<std::string> dialogs = linesOf(RESOURCENAMES(file, "DIALOG").text);
    if (dialogs.empty()) return put(file, files_[file]);
    const std::string dialog = one(dialogs);
    const int flags =
        below(10) == 0 ? one(std::vector<int>{OPEN_MODAL, OPEN_LOCK_DELETION, OPEN_AS_CHANGED}) : 0;
    log("open " + dialog + " of " + file + " with " + std::to_string(flags));
    OPENDIALOG(file, dialog, flags);
}

void DesignerMonkey::closeEditor() {
    log("close the editor");
    userClose(*findWindow(DialogDlg));
}

// ---- the mouse ----

// On an object, on the corner of one, or anywhere.
QPoint DesignerMonkey::place(QWidget& window) {
    const int objects = GetListCount(DESIGNCONTROL("datalist"));
    platform::Point at;
    const std::string name = GETPROPVALUE(DESIGNITEM(1 + below(std::max(objects, 1))), "NAME");
    if (below(3) > 0 && designPoint(name, below(3) == 0, at) && window.rect().contains(at.x, at.y))
        return {at.x, at.y};
    return {below(std::max(window.width(), 1)), below(std::max(window.height(), 1))};
}

// A press returns only when the drag that it begins has ended, so the rest comes by a timer.
void DesignerMonkey::press(QWidget& client, const QPoint& from, const QPoint& to, int modifiers) {
    const auto keys = Qt::KeyboardModifiers(modifiers);
    const QPointer<QWidget> alive(&client);
    const bool cancel = below(15) == 0;
    holds_ = true;
    const auto send = [=, this](QEvent::Type type, const QPoint& at) {
        const bool up = type == QEvent::MouseButtonRelease;
        if (up) holds_ = false;
        if (alive.isNull()) return;
        if (cancel && !up) QTest::keyClick(alive.data(), Qt::Key_Escape);
        if (alive.isNull()) return;
        QMouseEvent event(type, at, alive->mapToGlobal(at), up ? Qt::LeftButton : Qt::NoButton,
                          up ? Qt::NoButton : Qt::LeftButton, keys);
        QApplication::sendEvent(alive.data(), &event);
    };
    QTimer::singleShot(1, [=] { send(QEvent::MouseMove, (from + to) / 2); });
    QTimer::singleShot(2, [=] { send(QEvent::MouseMove, to); });
    QTimer::singleShot(3, [=] { send(QEvent::MouseButtonRelease, to); });
    QTest::mousePress(&client, Qt::LeftButton, keys, from);
}

void DesignerMonkey::point() {
    QWidget& window = *editor();
    const QPoint at = place(window);
    QWidget& client = clientAt(window, at);
    const int modifiers = below(3) == 0   ? Qt::ShiftModifier
                          : below(8) == 0 ? Qt::ControlModifier
                                          : Qt::NoModifier;
    log("click " + std::to_string(at.x()) + " " + std::to_string(at.y()) + " with " +
        std::to_string(modifiers));
    const QPoint inside = client.mapFrom(&window, at);
    if (below(40) == 0) return QTest::mouseDClick(&client, Qt::LeftButton, {}, inside);
    press(client, inside, inside, modifiers);
}

void DesignerMonkey::drag() {
    QWidget& window = *editor();
    const QPoint at = place(window);
    const int reach = below(4) == 0 ? 400 : 40;
    const QPoint by(below(2 * reach) - reach, below(2 * reach) - reach);
    QWidget& client = clientAt(window, at);
    log("drag " + std::to_string(at.x()) + " " + std::to_string(at.y()) + " by " + std::to_string(by.x()) +
        " " + std::to_string(by.y()));
    const QPoint inside = client.mapFrom(&window, at);
    press(client, inside, inside + by, below(4) == 0 ? Qt::ShiftModifier : Qt::NoModifier);
}

void DesignerMonkey::rightClick() {
    QWidget& window = *editor();
    const QPoint at = place(window);
    QWidget& client = clientAt(window, at);
    log("right click " + std::to_string(at.x()) + " " + std::to_string(at.y()));
    const QPoint inside = client.mapFrom(&window, at);
    QContextMenuEvent event(QContextMenuEvent::Mouse, inside, client.mapToGlobal(inside));
    QApplication::sendEvent(&client, &event);
}

void DesignerMonkey::resize() {
    const QSize size(40 + below(900), 40 + below(700));
    log("resize " + std::to_string(size.width()) + " " + std::to_string(size.height()));
    editor()->resize(size);
}

// ---- keys and commands ----

void DesignerMonkey::designKey() {
    static const std::vector<int> plain = {
        Qt::Key_Left,   Qt::Key_Right, Qt::Key_Up, Qt::Key_Down,   Qt::Key_Tab, Qt::Key_Delete, Qt::Key_F2,
        Qt::Key_Escape, Qt::Key_F3,    Qt::Key_F4, Qt::Key_Return, Qt::Key_F6,  Qt::Key_Tab,    Qt::Key_F1};
    static const std::vector<int> withCtrl = {Qt::Key_Left, Qt::Key_Right, Qt::Key_Up,    Qt::Key_Down,
                                              Qt::Key_A,    Qt::Key_Plus,  Qt::Key_Minus, Qt::Key_0,
                                              Qt::Key_Z,    Qt::Key_Y,     Qt::Key_X,     Qt::Key_C,
                                              Qt::Key_V,    Qt::Key_D,     Qt::Key_S};
    editor()->activateWindow();
    const bool ctrl = below(2) == 0;
    const int code = one(ctrl ? withCtrl : plain);
    int modifiers = ctrl ? Qt::ControlModifier : Qt::NoModifier;
    if (below(8) == 0) modifiers |= Qt::ShiftModifier;
    log("design key " + std::to_string(code) + " with " + std::to_string(modifiers));
    QTest::keyClick(editor(), static_cast<Qt::Key>(code), Qt::KeyboardModifiers(modifiers));
}

void DesignerMonkey::menu() {
    static const std::vector<std::string> own = {"edit_dialog_", "edit_undo_typing", "edit_redo_typing",
                                                 "edit_cut",     "edit_copy",        "edit_paste",
                                                 "edit_delete",  "edit_select_all",  "edit_properties"};
    static const std::vector<std::string> rare = {"file_save",          "tools_test_dialog",
                                                  "tools_check_dialog", "window_dialog",
                                                  "tools_test_rcfile",  "edit_dialog_changes"};
    command(below(4) == 0 ? std::vector<std::string>{one(rare)} : own);
}

void DesignerMonkey::toolbox() {
    Monkey::press("ToolboxDlg");
}

// In the Properties window: a value typed and entered, left or taken back.
void DesignerMonkey::property() {
    const Window* const window = findWindow(Object("PropertyDlg"));
    if (window == nullptr || !window->shown) return command({"edit_dialog_properties"});
    auto* const widget = static_cast<QWidget*>(window->widget);
    widget->activateWindow();
    switch (below(6)) {
    case 0: return Monkey::press("PropertyDlg");
    case 1: return key(keyReceiver());
    case 2: return type(keyReceiver());
    default: break;
    }
    std::vector<QWidget*> fields;
    for (QWidget* child : widget->findChildren<QWidget*>())
        if (child->isVisible() && child->focusPolicy() != Qt::NoFocus) fields.push_back(child);
    if (fields.empty()) return;
    const QPointer<QWidget> field(one(fields));
    field->setFocus();
    type(field);
    static const std::vector<Qt::Key> ends = {Qt::Key_Return, Qt::Key_Tab, Qt::Key_Down, Qt::Key_Escape};
    const Qt::Key end = one(ends);
    log("end it by " + std::to_string(end));
    if (!field.isNull()) QTest::keyClick(field.data(), end);
}

// ---- others ----

// A resource file as another program may leave it.
std::string DesignerMonkey::another(const std::string& text) {
    std::string changed = text;
    switch (below(4)) {
    case 0: return text + "// by another program\n";
    case 1: return text.substr(0, text.size() / 2);
    default: break;
    }
    for (std::size_t at = 0; (at = changed.find("CAPTION=\"", at)) != std::string::npos; at += 10)
        if (below(4) == 0) changed.insert(at + 9, "X");
    return changed;
}

void DesignerMonkey::outside() {
    const std::string file = DIALOGGETFILENAME();
    const int how = below(5);
    log("another program changes " + file + " by " + std::to_string(how));
    if (how == 0)
        fs::remove(file);
    else if (how == 1)
        put(file, files_[file]);
    else
        put(file, another(FILETEXT(file)));
    watch_.fileIsForeign();
}

void DesignerMonkey::undoAll() {
    log("undo all");
    if (const std::string fault = watch_.undoAll(); !fault.empty()) fail(fault);
    startClock();
}

}  // namespace tarn
