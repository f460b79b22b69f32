// SPDX-License-Identifier: Apache-2.0
//
// Events that wait for an event loop. A descriptor that can be read while any of them waits wakes the loops of
// every view; one event is sent at a time, so that a loop inside of its handler goes on with the next.
#include "platform/model/access_internal.h"
#include "platform/model/debugger/debugwindow.h"
#include "platform/operations/life.h"

#include <deque>
#include <sys/eventfd.h>
#include <unistd.h>

namespace tarn::platform {

namespace {

struct Posted {
    int window = 0;  // its handle: a window of the same name that is loaded later is another one
    Object object;
    int event = 0, parameter = 0;
};

std::deque<Posted>& queue() {
    static std::deque<Posted> waiting;
    return waiting;
}

int wakeDescriptor() {
    static const int descriptor = ::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK | EFD_SEMAPHORE);
    return descriptor;
}

void sendNext() {
    if (programRests()) return;
    std::uint64_t count = 0;
    static_cast<void>(!::read(wakeDescriptor(), &count, sizeof count));
    if (queue().empty()) return;
    const Posted next = queue().front();
    queue().pop_front();
    if (queue().empty()) view().watch(wakeDescriptor(), {});
    if (const Window* const window = windowOfHandle(next.window))
        sendEvent(window->object, next.event, next.object, next.parameter);
}

}  // namespace

Code PostMessage(const Object& object, int event, int parameter) {
    const Window* const window = findWindow(object);
    if (window == nullptr) return WindowNotLoaded;
    view().watch(wakeDescriptor(), sendNext);  // it may be another view than when the last event was posted
    queue().push_back({window->handle, object, event, parameter});
    const std::uint64_t one = 1;
    static_cast<void>(!::write(wakeDescriptor(), &one, sizeof one));
    return Ok;
}

}  // namespace tarn::platform
