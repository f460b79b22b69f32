// SPDX-License-Identifier: Apache-2.0
//
// Keys as the toolkit sends them to a widget, with any text; those of the toolkit's own tests make ASCII letters alone.
// They are done when a function returns; what they cause may still wait.
#pragma once

#include <QApplication>
#include <QKeyEvent>
#include <QString>
#include <QWidget>

namespace tarn {

inline void sendKey(QWidget* to, int key, Qt::KeyboardModifiers modifiers = Qt::NoModifier,
                    const QString& text = {}) {
    QKeyEvent down(QEvent::KeyPress, key, modifiers, text);
    QApplication::sendEvent(to, &down);
}

// Letter by letter; a line feed is the Return key.
inline void sendText(QWidget* to, const QString& text) {
    for (const QChar c : text) {
        if (c == u'\n')
            sendKey(to, Qt::Key_Return, Qt::NoModifier, QStringLiteral("\r"));
        else
            sendKey(to, 0, Qt::NoModifier, QString(c));
    }
}

}  // namespace tarn
