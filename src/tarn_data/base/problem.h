// SPDX-License-Identifier: Apache-2.0
//
// How what is wrong is told, how far work is, and how it is stopped.
#pragma once

#include <cstdint>
#include <string>

namespace tarn::datatool {

enum ExitStatus { Well = 0, Failed = 1, WrongUsage = 2, Stopped = 128 };  // Stopped: ended by a signal

// What is wrong, where, and what the user can do. Without `what` all is well.
struct Problem {
    std::string what, next;
    ExitStatus status = Failed;
    [[nodiscard]] bool any() const { return !what.empty(); }
};
std::string fileWord(const std::string& file);  // "File 'name' "
Problem stoppedProblem();                       // no file was changed

// ---- progress ----

// For the lifetime of this, the work that is named shows how far it is, and signals stop it. On a terminal that is a line
// that changes; elsewhere nothing, or, when it is asked for, a line each second.
class Work {
public:
    explicit Work(const std::string& what);
    ~Work();
    Work(const Work&) = delete;
    Work& operator=(const Work&) = delete;
};
// Asks every so many bytes whether to go on, as the kernel's own work does.
class Steps {
public:
    explicit Steps(std::int64_t total) : total_(total) {}
    // False: the user stopped it.
    bool step(std::int64_t bytes);

private:
    std::int64_t total_, done_ = 0, told_ = 0;
};
void showProgressEverywhere();
void catchSignals();
// The signal that asked to stop, 0 for none.
int stopSignal();
// Ends this process by that signal.
[[noreturn]] void endBySignal(int signal);

}  // namespace tarn::datatool
