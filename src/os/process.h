// SPDX-License-Identifier: Apache-2.0
//
// Child processes, and facts about this one. Programs start with argument lists, never through a shell.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace tarn::os {

enum class StartError {
    None,
    NotFound,       // no such program or path
    NotExecutable,  // it is there and may not be run
    BadFormat,      // it is no program, or a damaged one
    WontRun,        // what it needs to run is not there, or it is being written
    NoMemory,
    BadArguments,  // an argument list that is too long
    BadOutput,     // the file for the output cannot be written
    BadInput,      // the file for the input cannot be read
    Other,
};

struct StartRequest {
    std::string program;                 // full path; `/` or `\` separates in paths, arguments go as they are
    std::vector<std::string> arguments;  // without the program's name
    std::string folder;                  // to start in; empty: this process's
    std::string outputFile;  // standard output and error go there (made or emptied); empty: inherited
    // False: the child stays in this process's group, so that whoever stops this process stops it too.
    bool ownGroup = true;
    std::string inputFile = {};  // standard input comes from there; empty: there is none
    // Where no file is named, standard output and error go into one pipe, and standard input comes from another; see
    // Child. The child hears nothing when nobody reads its output any more: it goes on, and writes to nobody.
    bool piped = false;
};

struct ExitState {
    bool ended = false;
    int code = 0;    // exit code when it ended by itself
    int signal = 0;  // the signal that ended it, 0 if none
};

// A child that was started. Destroying it does not end the child. What the system keeps of an ended child
// (its number, so that `stop` can never hit a stranger) goes with this object, or when the next program is
// started.
class Child {
public:
    virtual ~Child() = default;
    virtual ExitState poll() = 0;                  // never waits
    virtual ExitState wait(int milliseconds) = 0;  // waits at most that long
    // Ends the child and everything it started: asks first, and forces after `graceMilliseconds`. Also ends
    // what a child that has ended left running. Only processes that left the child's process group escape; of
    // a child without a group of its own nothing but itself is ended. Returns at most a second after the
    // grace.
    virtual void stop(int graceMilliseconds) = 0;
    [[nodiscard]] virtual int id() const = 0;

    // Of a child with pipes; without one there is nothing to read, and nobody who takes anything. None of them waits.
    // Appends at most `most` bytes of what the child has written, and tells how many; -1 when no more can come.
    virtual int readOutput(std::string& into, std::size_t most);
    // How many of the bytes the child's pipe has taken; -1 when nobody reads it.
    virtual int writeInput(std::string_view bytes);
    virtual void endInput();  // the child's input ends behind what was written
};

class Processes {
public:
    virtual ~Processes() = default;
    // Null on failure, with the reason in `error`. The child leads a process group of its own (unless the
    // request says otherwise), reads what the request says, else nothing, and inherits no open file but the
    // standard ones, no signal mask and no ignored signal.
    virtual std::unique_ptr<Child> start(const StartRequest& request, StartError& error) = 0;
};

Processes& processes();
Processes* useProcesses(Processes* processes);  // returns the one before; null means the real one

struct RunningProcess {
    int id = 0;
    std::string name;  // of its program, at most 15 characters
};
// All processes of the machine that this user may see, by number. Cost: a file read for each.
std::vector<RunningProcess> runningProcesses();
// Waits at most that long until the process has ended, a child or another. True also for a number that is no
// process's.
bool waitForProcess(int id, int milliseconds);

// Full path of this program as it was called (links not followed); where that cannot be told, with links
// followed.
std::string executablePath();
std::string executableFolder();                 // its folder, with "/" at the end
const std::vector<std::string>& commandLine();  // arguments, without the program's name; see setCommandLine
void setCommandLine(int argc, char** argv);     // once, at the start of main
std::string environment(const char* name);      // empty if unset
bool debuggerAttached();
void debugOutput(const std::string& text);  // standard error

// Ends this process at once: no destructor runs.
[[noreturn]] void endProcess(int code);
// Tests put a function here that is called instead; it must not return (throw).
using EndHook = void (*)(int code);
EndHook useEndHook(EndHook hook);

// Folders of this user: settings ($XDG_CONFIG_HOME/tarnwick/), state ($XDG_STATE_HOME/tarnwick/) and run time
// ($XDG_RUNTIME_DIR/tarnwick/, else one of this user's alone under the temporary folder). With "/" at the
// end. They need not exist. A variable that is unset or no full path counts as its usual value in the home
// folder; a run-time folder that belongs to someone else is not used.
std::string settingsFolder();
std::string stateFolder();
std::string runtimeFolder();

}  // namespace tarn::os
