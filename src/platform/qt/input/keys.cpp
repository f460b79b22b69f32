// SPDX-License-Identifier: Apache-2.0
#include "platform/qt/input/keys.h"

#include "platform/model/model.h"

#include <QAbstractItemView>
#include <QAbstractScrollArea>
#include <QAbstractSlider>
#include <QComboBox>
#include <QKeyEvent>
#include <QKeySequence>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QRadioButton>

namespace tarn::platform::qt {

namespace {

constexpr int Ctrl = 0x1000, Shift = 0x2000, Alt = 0x4000, KeyMask = 0xFFF;

struct Pair {
    int qt, model;
};
constexpr Pair Named[] = {
    {Qt::Key_Backspace, 8}, {Qt::Key_Tab, 9},     {Qt::Key_Backtab, 9}, {Qt::Key_Return, 13},
    {Qt::Key_Enter, 13},    {Qt::Key_Escape, 27}, {Qt::Key_Space, 32},  {Qt::Key_PageUp, 33},
    {Qt::Key_PageDown, 34}, {Qt::Key_End, 35},    {Qt::Key_Home, 36},   {Qt::Key_Left, 37},
    {Qt::Key_Up, 38},       {Qt::Key_Right, 39},  {Qt::Key_Down, 40},   {Qt::Key_Insert, 45},
    {Qt::Key_Delete, 46},   {Qt::Key_Plus, 187},  {Qt::Key_Minus, 189},
};

bool isText(const QWidget& widget) {
    if (const auto* box = qobject_cast<const QComboBox*>(&widget)) return box->isEditable();
    return qobject_cast<const QLineEdit*>(&widget) != nullptr ||
           qobject_cast<const QPlainTextEdit*>(&widget) != nullptr || widget.inherits("QsciScintillaBase");
}

bool isList(const QWidget& widget) {
    return qobject_cast<const QAbstractItemView*>(&widget) != nullptr ||
           qobject_cast<const QComboBox*>(&widget) != nullptr ||
           qobject_cast<const QAbstractSlider*>(&widget) != nullptr ||
           qobject_cast<const QRadioButton*>(&widget) != nullptr;
}

// A line of text of its own, not that of a combo box, which its arrows lead through the rows.
bool isPlainLine(const QWidget& widget) {
    return qobject_cast<const QLineEdit*>(&widget) != nullptr &&
           qobject_cast<const QComboBox*>(widget.parentWidget()) == nullptr;
}

bool isArrow(int key) {
    return key >= Qt::Key_Left && key <= Qt::Key_Down;
}

}  // namespace

int modelKey(int key) {
    for (const auto& pair : Named)
        if (pair.qt == key) return pair.model;
    if (key >= Qt::Key_F1 && key <= Qt::Key_F24) return key - Qt::Key_F1 + 112;
    // The codes of punctuation are those of the named keys: '.' would be Delete.
    const bool plain = (key >= 'A' && key <= 'Z') || (key >= '0' && key <= '9');
    return plain ? key : 0;
}

int modelShortcut(const QKeyEvent& event) {
    const int key = modelKey(event.key());
    if (key == 0) return 0;
    const auto modifiers = event.modifiers();
    return key + (modifiers.testFlag(Qt::ControlModifier) ? Ctrl : 0) +
           (modifiers.testFlag(Qt::ShiftModifier) ? Shift : 0) +
           (modifiers.testFlag(Qt::AltModifier) ? Alt : 0);
}

QString shortcutText(int shortcut) {
    const int code = shortcut & KeyMask;
    if (code == 0) return {};
    int key = code >= 112 && code < 136 ? Qt::Key_F1 + code - 112 : code;
    for (const auto& pair : Named)
        if (pair.model == code && pair.qt != Qt::Key_Backtab && pair.qt != Qt::Key_Enter) key = pair.qt;
    if ((shortcut & Ctrl) != 0) key |= static_cast<int>(Qt::CTRL);
    if ((shortcut & Shift) != 0) key |= static_cast<int>(Qt::SHIFT);
    if ((shortcut & Alt) != 0) key |= static_cast<int>(Qt::ALT);
    return QKeySequence(key).toString(QKeySequence::NativeText);
}

bool widgetNeeds(const QWidget& focus, const QKeyEvent& event) {
    if (isText(focus)) {
        if (isTextKey(modelShortcut(event))) return true;
        const bool command = (event.modifiers() & (Qt::ControlModifier | Qt::AltModifier)) != 0;
        return !command && !event.text().isEmpty() && event.text()[0] >= u' ';
    }
    return isList(focus) && event.modifiers() == Qt::NoModifier &&
           (isArrow(event.key()) || event.key() == Qt::Key_Space);
}

PressedKeys keysPressed(const QKeyEvent& event) {
    const int key = modelKey(event.key());
    const auto modifiers = event.modifiers() & ~Qt::KeypadModifier;
    const bool plain = modifiers == Qt::NoModifier;
    const bool isTab = event.key() == Qt::Key_Tab || event.key() == Qt::Key_Backtab;
    const bool leaves = isTab || (plain && (key == KEY_RETURN || key == KEY_ESCAPE || key == KEY_F1));
    const bool mnemonic =
        modifiers == Qt::AltModifier && event.key() >= Qt::Key_A && event.key() <= Qt::Key_Z;
    if (leaves || mnemonic) return {};
    if (plain && (event.key() == Qt::Key_Backspace || event.key() == Qt::Key_Delete)) return {true, true, 0};
    return {true, key != 0, modelShortcut(event)};
}

bool windowHears(const QWidget* focus, const QKeyEvent& event) {
    if ((event.modifiers() & ~Qt::KeypadModifier) != 0) return false;
    const int key = event.key();
    if (key >= Qt::Key_F1 && key <= Qt::Key_F12) return true;
    if (key == Qt::Key_Escape || key == Qt::Key_Return || key == Qt::Key_Enter) return true;
    const bool text = focus != nullptr && isText(*focus);
    if (key == Qt::Key_Delete) return !text;
    if (key == Qt::Key_Left || key == Qt::Key_Right) {
        // A list has no use for them itself, so trees of rows are made of them.
        return !text && (focus == nullptr || !isList(*focus) ||
                         qobject_cast<const QAbstractItemView*>(focus) != nullptr);
    }
    if (focus != nullptr && isPlainLine(*focus)) return isArrow(key);
    // A window may have to keep what belongs to the row that the key leaves.
    if (qobject_cast<const QAbstractItemView*>(focus) != nullptr)
        return isArrow(key) || key == Qt::Key_Home || key == Qt::Key_End;
    return isArrow(key) && !text && (focus == nullptr || !isList(*focus));
}

bool windowHearsLast(const QKeyEvent& event) {
    const auto modifiers = event.modifiers() & ~Qt::KeypadModifier;
    if (modifiers.testFlag(Qt::AltModifier) || modifiers.testFlag(Qt::MetaModifier)) return false;
    const bool tab = event.key() == Qt::Key_Tab || event.key() == Qt::Key_Backtab;
    return tab || (modifiers != Qt::NoModifier && modelKey(event.key()) != 0);
}

}  // namespace tarn::platform::qt
