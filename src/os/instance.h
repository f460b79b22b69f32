// SPDX-License-Identifier: Apache-2.0
//
// One running copy of a program for each user: a lock file (flock) named after the executable in the user's
// run-time folder, and a local socket beside it through which a later copy hands a command to the first.
#pragma once

#include <functional>
#include <string>

namespace tarn::os {

enum class LockState { Acquired, Busy, Failed };

// Tries to take the lock `name` for at most `milliseconds`. It is held until `releaseInstanceLock`, or until the
// process ends, however it ends.
LockState acquireInstanceLock(const std::string& name, int milliseconds);
void releaseInstanceLock();  // nothing if it is not held

// A message of a later copy: the window it is for (a class and a caption), the number of a control, and a text.
struct InstanceCommand {
    std::string windowClass;
    std::string caption;
    int control = 0;
    std::string text;
};

// The first copy answers for a window: `knows` says whether that window is open here, `run` is called with each
// command. Poll with `serveInstanceCommands` (from the event loop; `instanceSocket` is the descriptor to watch,
// -1 if there is none).
struct InstanceServer {
    std::function<bool(const std::string& windowClass, const std::string& caption)> knows;
    std::function<void(const InstanceCommand&)> run;
};
bool startInstanceServer(const std::string& name, InstanceServer server);
void stopInstanceServer();
int instanceSocket();
void serveInstanceCommands();  // handles all that wait, without blocking

// Asks the running copy whether it has such a window; false also when none answers within a second.
bool findInstanceWindow(const std::string& name, const std::string& windowClass, const std::string& caption);
// Sends a command; true when the running copy has taken it.
bool sendInstanceCommand(const std::string& name, const InstanceCommand& command);

}  // namespace tarn::os
