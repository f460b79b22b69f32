// SPDX-License-Identifier: Apache-2.0
//
// A window of the model on the screen: menu bar, client area and its controls at the places that the model
// gives. It reports moves, changes of state and the wish to close; it decides nothing.
#pragma once

#include "platform/model/model.h"

#include <QPointer>
#include <QTimer>
#include <QWidget>

class QMenuBar;
class QScrollBar;

namespace tarn::platform::qt {

class Peer;
class SurfaceWidget;

class Frame : public QWidget {
public:
    explicit Frame(Window& window);
    ~Frame() override;

    [[nodiscard]] Window& window() const { return *window_; }
    [[nodiscard]] Window* model() const { return window_; }  // null once the window has gone
    [[nodiscard]] QMenuBar& bar() const { return *bar_; }
    [[nodiscard]] SurfaceWidget& client() const { return *client_; }  // what is inside frame and menu bar
    void apply(Property property);                                    // of the window itself
    void applyTo(Control& control, Property property);                // of one of its controls
    void bringUp();                                                   // shows, raises and activates
    void showQuietly(bool behind);                                    // without activating
    void menuChanged();                  // items came or went; rebuilt once for a burst
    [[nodiscard]] Rect extents() const;  // see View::frameExtents
    [[nodiscard]] Control* controlOf(const QWidget* widget) const;  // null: the window itself
    void release();                                                 // before the model's window goes

protected:
    void closeEvent(QCloseEvent* event) override;
    void moveEvent(QMoveEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void changeEvent(QEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;

private:
    void open();   // shows, as its state says
    void begin();  // when it is seen from now on
    void makeControls();
    void makeEditor();
    void nameControls();
    void orderTabs();
    void place();  // the model's position and limits to the screen
    void placeControl(Control& control);
    void layOut();
    void applyState();
    void applyLimits();
    void applyTitle();
    void leaveRing();
    void applyModality();
    void applyKind();
    void coloursChanged();
    void applyColours(Control& control);
    void settleLarge();  // once the window system has done its part of that
    [[nodiscard]] QSize largestSize() const;
    void maximiseWithin();  // to the largest position, which may be less than the screen
    void goBack();          // from there
    void noteNormal();      // where it stands, once it has come to rest
    void waitForFrame();    // the window system is about to give frame and size, one after the other
    void report();          // the frame's place, if it is news to the model
    void settle();          // after the window system has told how wide the frame is
    void takeMargins(const QMargins& margins, bool keepsClient);
    [[nodiscard]] bool capped() const;  // has a largest position
    [[nodiscard]] int barHeight() const;
    void focusFirst();
    [[nodiscard]] QSize contentSize() const;  // of bar and client area
    [[nodiscard]] bool mayScroll() const;
    [[nodiscard]] QSize fitted(const QSize& content) const;
    [[nodiscard]] bool isCut() const;  // smaller than its content, which scrolls
    void keepInReach();
    void makeScrollBars();
    void layOutScrolled(int bar);
    void scrollTo(const QWidget& widget);

    Window* window_;
    QMenuBar* bar_;
    SurfaceWidget* client_;
    QRect normal_;           // where a window at its largest position came from
    QTimer calm_;            // until it has not moved for a while
    int waits_ = 0;          // for frame and size: how many of them
    bool large_ = false;     // at its largest position
    bool applying_ = false;  // what happens now is the model's doing
    bool rebuild_ = false;
    bool seen_ = false;
    Rect first_;        // where the resources put the window: position, and size of the client area
    QMargins assumed_;  // of the frame, while the window system has not told
    QScrollBar *down_ = nullptr, *across_ = nullptr;  // of a dialog that is larger than the screen
};

bool staysOnTop();  // a window is shown that stays above all others: a modal one that opens has to stay above it
Frame* frameOf(const Window& window);         // null if it has none
Frame* frameOfWidget(const QWidget* widget);  // the frame that holds it; null if none does

}  // namespace tarn::platform::qt
