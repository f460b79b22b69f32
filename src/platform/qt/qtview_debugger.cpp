// SPDX-License-Identifier: Apache-2.0
//
// The part of the view that lets the user debug the program: stops, in which only the debugger's window hears.
#include "platform/model/debugger/debugwindow.h"
#include "platform/qt/qtview.h"

#include <QSocketNotifier>

namespace tarn::platform::qt {

void QtView::restWatches(bool rest) {
    for (const auto& [descriptor, notifier] : watched_) notifier->setEnabled(!rest);
}

void QtView::debugChanged(DebugWindow& window, DebugPart part) {
    debugger_.changed(window, part);
}

void QtView::debugLoop(DebugWindow&, const std::function<bool()>& until) {
    const bool busy = busy_;
    if (busy) setBusy(false);
    restWatches(true);
    debugger_.stop([&] { loop(until); });
    restWatches(false);
    if (busy) setBusy(true);
    // The focus may have moved while nobody was told.
    QTimer::singleShot(0, this, [this] { activated(); });
}

void QtView::debugPump() {
    restWatches(true);
    debugger_.pump();
    restWatches(false);
}

}  // namespace tarn::platform::qt
