// SPDX-License-Identifier: Apache-2.0
//
// The view of the object model on Qt widgets. It makes the application object when it is made itself, and
// holds everything that is no single window's: loops, keys that go to the program as a whole, busy state,
// timers, activation.
#pragma once

#include "platform/model/view.h"
#include "platform/qt/debugger/debughost.h"

#include <QElapsedTimer>
#include <QObject>
#include <QPointer>
#include <QTimer>

#include <map>
#include <memory>

class QApplication;
class QKeyEvent;
class QSocketNotifier;

namespace tarn::platform::qt {

class Frame;
class ToolProgress;
class Tracker;

class QtView : public QObject, public View {
public:
    QtView();
    ~QtView() override;

    void load(Window& window) override;
    void unload(Window& window) override;
    void show(Window& window) override;
    void hide(Window& window) override;
    void changed(Control& control, Property property) override;

    void loop(const std::function<bool()>& until) override;
    void pump() override;
    void wait(int milliseconds, bool inputEnds) override;
    void setIdle(std::function<void()> idle) override;

    std::string ask(const Question& question) override;
    const Question* asking() override;
    bool answer(const std::string& text) override;

    int textWidth(const Control& control, std::string_view text) override;
    int textHeight(const Control& control, std::string_view text) override;
    Rect screen() override;
    Desktop desktop() override;
    Rect frameExtents(const Window& window) override;
    int dpi() override;

    std::unique_ptr<Canvas> canvas(Control& control) override;
    void wipe(Control& control) override;
    Rect track(Window& window, Track track) override;
    Picture measured(std::string_view bytes) override;
    std::string encoded(const std::string& picture, const std::string& extension) override;
    std::vector<std::string> printers() override;
    PrinterStatus printerStatus(const std::string& printer) override;
    Paper paper(const std::string& printer) override;
    std::unique_ptr<Canvas> startDocument(const std::string& printer, const std::string& document,
                                          int copies) override;
    std::string clipboard() override;
    void setClipboard(std::string_view text) override;

    void sound() override;
    void playSound(const std::string& file) override;
    void setIcon(const std::string& file) override;
    void setBusy(bool busy) override;
    void setTimer(Control& owner, int milliseconds) override;
    bool openUrl(const std::string& url) override;
    void toolProgress(const std::string& text) override;
    bool toolStopPressed() override;
    void watch(int descriptor, std::function<void()> ready) override;
    void raise(Window& window) override;
    void debugChanged(DebugWindow& window, DebugPart part) override;
    void debugLoop(DebugWindow& window, const std::function<bool()>& until) override;
    void debugPump() override;

protected:
    // Sees every event of the program first.
    bool eventFilter(QObject* receiver, QEvent* event) override;

private:
    void noteFocus(QObject* receiver);               // it has got the focus
    bool key(QObject* receiver, QKeyEvent& event);   // true: handled
    bool typeAhead(Frame& frame, QKeyEvent& event);  // a key for the window that is about to get the focus
    bool command(Frame& frame, int shortcut);        // a menu's shortcut, this window's or the main window's
    bool openMainMenu(Frame& frame, QKeyEvent& event);  // Alt and the letter of a menu of the main window
    void bringUp(Frame& frame);
    void noteLatest(Frame& frame);
    void enter(Frame& frame);          // the user works there now: tells the model, if that is news
    void activated();                  // after the focus has moved
    bool insists(const Frame& frame);  // it has got the focus that the program has just given to another one
    void activateBelow(Frame* gone);   // after a window has gone, the one before it
    void sweep();                      // deletes what asked to be deleted, at the outermost level

    [[nodiscard]] QWidget* askedFrom() const;  // the window over which a box opens; null: none
    void restWatches(bool rest);               // while the program rests

    std::unique_ptr<QApplication> application_;  // null if the program had made one before
    DebugHost debugger_;
    std::function<void()> idle_;
    void runIdle();
    QTimer idleTimer_;
    bool away_ = false;                              // another program has the focus
    std::map<int, std::unique_ptr<QTimer>> timers_;  // by the owner's handle
    std::map<int, std::unique_ptr<QSocketNotifier>> watched_;
    std::unique_ptr<ToolProgress> progress_;
    Tracker* tracking_ = nullptr;         // the drag that is under way
    std::vector<QPointer<Frame>> order_;  // the active window and those before it, latest last
    QPointer<Frame> broughtUp_;           // by the program, and the user has done nothing since
    QElapsedTimer sinceBroughtUp_;
    int timesInsisted_ = 0;
    int depth_ = 0;  // loops, one inside the other
    bool busy_ = false;
    bool input_ = false;  // a key or a click since the wait began
};

}  // namespace tarn::platform::qt
