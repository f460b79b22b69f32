// SPDX-License-Identifier: Apache-2.0
//
// The end of the session, or of this process at somebody's wish: the signals SIGTERM, SIGHUP and SIGINT. They
// may come while memory is being allocated, so that nothing can be saved from their handler; they are handed
// to the event loop, and only a loop that does not come round within `LateSeconds` is passed over.
#pragma once

namespace tarn::os {

inline constexpr unsigned LateSeconds = 4;  // less than what sessions wait before they force an end

// From now on the signals are heard. `late` is called in a signal handler, and must end the process.
void listenForEnd(void (*late)(int signal));
void stopListeningForEnd();  // the signals are again what they were
int endDescriptor();         // readable once a signal has come; -1: nobody listens
int takeEndSignal();         // the signal that has come, 0 if none; the loop has come round

}  // namespace tarn::os
