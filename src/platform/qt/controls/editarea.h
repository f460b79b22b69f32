// SPDX-License-Identifier: Apache-2.0
//
// What the view knows of an edit window. It stands in a library of its own (libtarnwick-edit.so), which is
// loaded when the first edit window is; without it a plain text widget takes its place.
#pragma once

#include "platform/model/view.h"
#include "platform/object.h"

#include <QImage>
#include <QPoint>
#include <QString>

#include <memory>
#include <string>
#include <string_view>

class QWidget;

namespace tarn::platform::qt {

// Told what the user does in an edit window. `changed` comes once an edit is complete; it does not come for
// what was done through the store.
class EditEvents {
public:
    virtual ~EditEvents() = default;
    virtual void changed() = 0;
    virtual void doubleClicked(QPoint position) = 0;  // pixels, in the edit window
    virtual void infoAsked(QPoint position) = 0;      // right click on the status bar
    virtual void zoomed(int points) { static_cast<void>(points); }
    // A click with Ctrl on a word, at a position of the text. False: nothing comes of it.
    virtual bool nameClicked(int position) {
        static_cast<void>(position);
        return false;
    }
    // Beside a line, in the margin for marks.
    virtual void marginClicked(int line) { static_cast<void>(line); }
    // A picture of the resources, in pixels of the screen.
    virtual QImage picture(const std::string& name, int size, qreal ratio) {
        static_cast<void>(name);
        static_cast<void>(size);
        static_cast<void>(ratio);
        return {};
    }
};

class EditArea {
public:
    virtual ~EditArea() = default;
    virtual QWidget* widget() = 0;      // text, number bar and status bar; belongs to its parent widget
    virtual QWidget* textWidget() = 0;  // what takes the focus
    // A store that stays safe to call when the widget is gone (it is then empty).
    virtual std::unique_ptr<TextStore> store() = 0;
    virtual void setFlags(int flags) = 0;
    virtual void setMaxLength(int bytes) = 0;  // what the user adds beyond is refused; 0: no limit
    virtual void setTokens(std::string_view tokens) = 0;
    virtual void setFont(const Font& font) = 0;
    virtual void setName(const QString& name) = 0;  // for screen readers
    // Parts of the status bar; empty: none. What passes stands for some seconds, or until the user goes on.
    virtual void setStatus(const QString& text) = 0;
    virtual void setPassing(const QString& text) = 0;
    // What platform/operations/edits.h tells.
    virtual void setLooks(int looks, int tabWidth, int zoom) = 0;
    virtual void setMarkMargin(bool shown) = 0;  // of platform/operations/linemarks.h
    virtual void setBlocks(std::string_view rules) = 0;
    virtual void foldAll(bool folded) = 0;
    virtual void showChoices(std::string_view rows, int typed) = 0;
    virtual void showCallTip(int position, std::string_view text, const Selection& mark) = 0;
};

// Exported under the name "tarn_make_edit_area". The area belongs to its widget; `events` must outlive it.
using MakeEditArea = EditArea* (*)(QWidget* parent, EditEvents& events);

}  // namespace tarn::platform::qt
