// SPDX-License-Identifier: Apache-2.0
//
// The widgets of a window by their names, as the view names them.
#pragma once

#include <QApplication>
#include <QWidget>

#include <string>

namespace tarn {

// The window of that name that is shown; null if none is.
inline QWidget* shownWindow(const std::string& name) {
    for (QWidget* widget : QApplication::topLevelWidgets())
        if (widget->objectName().toStdString() == name && !widget->isHidden()) return widget;
    return nullptr;
}

// A widget in it; null if there is none.
template <class Widget>
Widget* shownWidget(const std::string& window, const char* name) {
    QWidget* const frame = shownWindow(window);
    return frame != nullptr ? frame->findChild<Widget*>(QString::fromLatin1(name)) : nullptr;
}

// Where an edit window takes keys; null if none of that name is shown.
inline QWidget* shownEditor(const std::string& window) {
    QWidget* const frame = shownWindow(window);
    if (frame == nullptr) return nullptr;
    for (QWidget* widget : frame->findChildren<QWidget*>())
        if (widget->inherits("QsciScintillaBase")) return widget;
    return nullptr;
}

}  // namespace tarn
