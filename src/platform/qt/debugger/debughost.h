// SPDX-License-Identifier: Apache-2.0
//
// What the view does for the debugger: it holds the window, keeps the program's own windows deaf while the program is
// stopped, and lets the user in while it is busy.
//
// While the program is stopped, all windows that are not the debugger's or opened from there are painted and hear nothing;
// what is typed there is lost. While it is busy, what is typed there waits until it comes to an event loop.
#pragma once

#include "platform/model/debugger/debugwindow.h"

#include <QObject>
#include <QPointer>

#include <deque>
#include <functional>
#include <memory>

class QEvent;
class QWidget;

namespace tarn::platform::qt {

class DebugView;

class DebugHost : public QObject {
public:
    DebugHost();
    ~DebugHost() override;
    void changed(DebugWindow& window, DebugPart part);
    void stop(const std::function<void()>& loop);
    void pump();
    [[nodiscard]] bool stopped() const { return stopped_; }
    [[nodiscard]] QWidget* window() const;  // null if there is none
    // An event of the program, before anybody else sees it. True: it goes no further.
    bool takes(QObject* receiver, QEvent& event);

private:
    struct Kept {
        QPointer<QObject> receiver;
        std::unique_ptr<QEvent> event;
    };
    [[nodiscard]] bool isOurs(const QObject* receiver) const;
    bool keep(QObject* receiver, const QEvent& event);
    void handOn();  // what was kept, if the program hears now

    DebugView* view_ = nullptr;
    bool stopped_ = false, pumping_ = false;
    std::deque<Kept> kept_;
};

}  // namespace tarn::platform::qt
