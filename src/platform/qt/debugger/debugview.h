// SPDX-License-Identifier: Apache-2.0
//
// The debugger's window on the screen: a toolbar, a status text and the list. It shows what the model has (see
// platform/model/debugger/debugwindow.h) when `refresh` is called, so that a step that changes it ten times is seen once,
// and tells the model what the user does.
#pragma once

#include "platform/model/debugger/debugwindow.h"

#include <QTimer>
#include <QWidget>

#include <vector>

class QAction;
class QPlainTextEdit;

namespace tarn::platform::qt {

class DebugList;

class DebugView : public QWidget {
public:
    explicit DebugView(DebugWindow& window);
    void release();             // before the model's window goes
    void note(DebugPart part);  // it will be seen after `refresh`, which comes by itself in an event loop
    void refresh();
    void bringUp();  // a stop begins: to the front
    void
    setStopped(bool stopped);  // a program that runs for a moment only, as in a step, is not shown as running
    void noteBusy();           // the program runs, and no timer of this window does
    void showTip();
    [[nodiscard]] DebugList& list() const { return *list_; }

protected:
    bool event(QEvent* event) override;
    void closeEvent(QCloseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void moveEvent(QMoveEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    QAction* addCommand(int number, const QString& picture);
    QAction* addKey(const QString& title, const QKeySequence& keys);
    QWidget* makeToolbar();
    void makeActions();
    void makeMenu();
    void makeStatus();
    void send(DebugMessage message, int number, const std::string& text = {});
    void makeLive(QAction* action, DebugMessage message, int number);
    // Takes the key of a command that is not possible now, which belongs to the next stop.
    bool takeEarly(const QKeyEvent& key);
    void showStatus();
    void showLive(bool live);
    void copy(bool whole);
    void place();   // where the program wants it
    void settle();  // once the width of the frame is known
    void notePlace();
    void endSettling();
    void leaveModal();  // a window of the program that is shown modally does not block this one

    DebugWindow* window_;
    DebugList* list_;
    QPlainTextEdit* status_;
    // What is possible while the program is stopped, and what it tells the model.
    struct LiveAction {
        QAction* action;
        DebugMessage message;
        int number;
    };
    std::vector<LiveAction> live_;
    QAction* break_ = nullptr;
    QTimer soon_, running_;
    unsigned parts_ = 0;  // to be refreshed, a bit for each part
    QRect frame_;         // where it shall stand; empty: wherever the desktop puts it
    bool settled_ = false;
};

}  // namespace tarn::platform::qt
