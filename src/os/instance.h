// SPDX-License-Identifier: Apache-2.0
//
// One running copy of a program for each user: a lock file (flock) named after the executable in the user's
// run-time folder, and a local socket beside it through which a later copy hands a command to the first.
//
// Only processes of the same user are heard, and a run-time folder that others could have made or could enter
// is not used. Messages are bounded (`maximalInstanceMessage`), and a client that says nothing, garbage or
// too much is dropped without holding up the others. None of the descriptors reaches a program that is
// started.
#pragma once

#include <cstddef>
#include <functional>
#include <string>

namespace tarn::os {

enum class LockState { Acquired, Busy, Failed };

// The bytes that the class, the caption and the text of a command may have together.
inline constexpr std::size_t maximalInstanceMessage = 1U << 20U;

// Tries to take the lock `name` for at most `milliseconds`. It is held until `releaseInstanceLock`, or until
// the process ends, however it ends. A process has one such lock: a second name gives up the first; the same
// name again is Acquired.
LockState acquireInstanceLock(const std::string& name, int milliseconds);
void releaseInstanceLock();  // nothing if it is not held

// A message of a later copy: the window it is for (a class and a caption), the number of a control, and a
// text.
struct InstanceCommand {
    std::string windowClass;
    std::string caption;
    int control = 0;
    std::string text;
};

// The first copy answers for a window: `knows` says whether that window is open here, `run` is called with
// each command. Poll with `serveInstanceCommands` (from the event loop; `instanceSocket` is the descriptor to
// watch for reading, -1 if there is none). `run` may serve again, as a dialog's event loop does, and may stop
// the server; the commands are run in the order in which they came. The one who sent a command does not wait
// for the end of `run`. `knows` only looks: it must neither serve nor stop the server.
struct InstanceServer {
    std::function<bool(const std::string& windowClass, const std::string& caption)> knows;
    std::function<void(const InstanceCommand&)> run;
};
// False if the socket cannot be made, or if another living process serves that name.
bool startInstanceServer(const std::string& name, InstanceServer server);
void stopInstanceServer();
int instanceSocket();
void serveInstanceCommands();  // handles all that wait, without blocking

// Asks the running copy whether it has such a window; false also when none answers within a second.
bool findInstanceWindow(const std::string& name, const std::string& windowClass, const std::string& caption);
// Sends a command; true when the running copy has taken it. A copy that is busy is waited for at most 5
// seconds; after a false it will not run the command later, either.
bool sendInstanceCommand(const std::string& name, const InstanceCommand& command);

}  // namespace tarn::os
