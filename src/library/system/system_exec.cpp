// SPDX-License-Identifier: Apache-2.0
//
// Running programs. While a tool is waited for, events are handled every few milliseconds, and the wait ends
// as soon as the tool does. After a second the user gets a Stop button.
#include "library/system/programs.h"

#include "kernel/run/errors.h"
#include "library/system/files.h"
#include "library/system/piped.h"
#include "library/system/programs_internal.h"
#include "library/system/strings.h"
#include "os/clock.h"
#include "os/files.h"
#include "os/process.h"
#include "os/programfile.h"
#include "os/text/ascii.h"

#include <algorithm>
#include <climits>
#include <csignal>

MODULE("system", tarn::DefaultErrorHandler, tarn::LeaveErrors)

namespace tarn {
namespace {

enum WaitMode { WaitDisabled = 0, WaitIdle = 1, WaitEnabled = 2 };

constexpr int PollMilliseconds = 50;        // the longest time between two looks at the child
constexpr int SliceMilliseconds = 5;        // how long events may stay unhandled, or an end unseen
constexpr int IdleMilliseconds = 5000;      // the most that a start is waited for
constexpr int ProgressMilliseconds = 1000;  // a tool that takes longer can be stopped
constexpr int GraceMilliseconds = 2000;     // what a stopped tool has to end by itself
static_assert(2 * SliceMilliseconds <= PollMilliseconds);

// ---- where a program stands ----

using TestFile = bool (*)(const std::string& path);

bool hasContent(const std::string& path) {
    return os::sizeOf(path) > 0;
}
bool isEmpty(const std::string& path) {
    return os::sizeOf(path) == 0;
}

std::string findTool(const std::string& path, TestFile test) {
    const std::string name = os::native(path);
    if (test(name)) return name;
    if (!STREQUAL(FILEGETEXT(name), ".exe")) return {};
    const std::string bare = FILECHANGEEXT(name, "");
    return !FILEBASENAME(bare).empty() && test(bare) ? bare : std::string();
}

std::string findProgram(const std::string& program, TestFile test) {
    if (!FILEGETDIR(program).empty()) return findTool(program, test);
    const std::string path = os::environment("PATH");
    for (std::string_view rest = path; !rest.empty();) {
        const std::size_t end = std::min(rest.find(':'), rest.size());
        const std::string folder(rest.substr(0, end));
        rest.remove_prefix(std::min(end + 1, rest.size()));
        if (folder.empty()) continue;
        const std::string found = findTool(FILEADDSEPARATOR(folder) + program, test);
        if (!found.empty()) return found;
    }
    return {};
}

// Nothing else of its name is there.
bool isEmptyProgram(const std::string& program) {
    return !findProgram(program, isEmpty).empty();
}

// ---- lines ----

// What a line says: the arguments, and behind them which file stands at each mark.
struct CommandLine {
    std::vector<std::string> arguments;
    ExecFiles files;
    bool good = true;    // each mark once, and just one file behind it
    bool closed = true;  // every quote
};

// The next '<' or '>' that stands alone outside of quotes, from `from` on; the end of the line if there is
// none.
std::size_t findMark(std::string_view line, std::size_t from) {
    bool quoted = false;
    for (std::size_t at = from; at < line.size(); ++at) {
        if (line[at] == '"') quoted = !quoted;
        if (quoted || (line[at] != '>' && line[at] != '<')) continue;
        const bool alone = (at == 0 || ascii::isSpace(line[at - 1])) &&
                           (at + 1 == line.size() || ascii::isSpace(line[at + 1]));
        if (alone) return at;
    }
    return line.size();
}

CommandLine parseCommandLine(std::string_view line) {
    CommandLine command;
    command.closed = std::count(line.begin(), line.end(), '"') % 2 == 0;
    std::size_t mark = findMark(line, 0);
    command.arguments = SPLITARGUMENTS(line.substr(0, mark));
    while (mark < line.size()) {
        const std::size_t next = findMark(line, mark + 1);
        std::string& file = line[mark] == '>' ? command.files.output : command.files.input;
        const std::vector<std::string> files = SPLITARGUMENTS(line.substr(mark + 1, next - mark - 1));
        command.good = command.good && files.size() == 1 && !files.front().empty() && file.empty();
        if (!files.empty()) file = files.front();
        mark = next;
    }
    return command;
}

bool holdsNul(const std::vector<std::string>& texts) {
    return std::any_of(texts.begin(), texts.end(),
                       [](const std::string& text) { return text.find('\0') != std::string::npos; });
}

// False for what no file can be named, wherever it is looked for.
bool isProgramName(const std::string& program) {
    return !program.empty() && program.size() < PATH_MAX && program.find('\0') == std::string::npos;
}

std::int32_t errorCode(os::StartError error, const std::string& program) {
    switch (error) {
    case os::StartError::None: return 0;
    case os::StartError::NotFound: return ERR_EXEC_NOT_FOUND;
    case os::StartError::NotExecutable:
        return os::programFileAt(program) != os::ProgramFile::None ? ERR_EXEC_PERMISSIONS : ERR_EXEC_FORMAT;
    case os::StartError::BadFormat: return ERR_EXEC_FORMAT;
    case os::StartError::NoMemory: return ERR_EXEC_MEMORY;
    case os::StartError::WontRun: return ERR_EXEC_WONT_RUN;
    case os::StartError::BadArguments: return ERR_EXEC_COMMAND_LINE;
    case os::StartError::BadOutput:
    case os::StartError::BadInput: return ERR_EXEC_OUTPUT_FILE;
    case os::StartError::Other: break;
    }
    return ERR_EXEC_OTHER;
}

bool isPath(const std::string& path) {
    return path.size() < PATH_MAX && path.find('\0') == std::string::npos;
}

// Making the output would empty the input before the program reads it.
bool isOneFile(const ExecFiles& files) {
    if (files.input.empty() || files.output.empty()) return false;
    const os::FileInfo input = os::infoOf(files.input), output = os::infoOf(files.output);
    return input.exists && output.exists && !input.special && input.device == output.device &&
           input.inode == output.inode;
}

// 0, or the code of what no program can be started with.
std::int32_t findFault(const std::string& program, const std::vector<std::string>& arguments,
                       const std::string& folder, const ExecFiles& files) {
    if (!isProgramName(program) || holdsNul(arguments)) return ERR_EXEC_COMMAND_LINE;
    if (!isPath(folder) || !isPath(files.input) || !isPath(files.output) || isOneFile(files))
        return ERR_EXEC_OUTPUT_FILE;
    return 0;
}

// The same of a line.
std::int32_t findFault(const std::string& program, const CommandLine& command) {
    if (!isProgramName(program) || holdsNul(command.arguments) || !command.closed)
        return ERR_EXEC_COMMAND_LINE;
    return command.good ? 0 : std::int32_t{ERR_EXEC_OUTPUT_FILE};
}

struct Started {
    std::unique_ptr<os::Child> child;  // null, with the code, if the program was not started
    std::int32_t code = 0;
};

Started start(const std::string& program, const std::vector<std::string>& arguments,
              const std::string& folder, const ExecFiles& files, bool piped = false) {
    if (const std::int32_t fault = findFault(program, arguments, folder, files)) return {nullptr, fault};
    os::StartRequest request;
    request.program = detail::FindProgram(program);
    if (request.program.empty())
        return {nullptr, isEmptyProgram(program) ? ERR_EXEC_FORMAT : ERR_EXEC_NOT_FOUND};
    request.arguments = arguments;
    request.folder = os::native(folder);
    request.outputFile = os::native(files.output);
    request.inputFile = os::native(files.input);
    request.piped = piped;
    os::StartError error = os::StartError::None;
    std::unique_ptr<os::Child> child = os::processes().start(request, error);
    if (child != nullptr) return {std::move(child), 0};
    return {nullptr,
            errorCode(error == os::StartError::None ? os::StartError::Other : error, request.program)};
}

// Waits until the child has ended or the user has stopped it.
void waitForEnd(os::Child& child, const std::string& name, ExecResult& result, os::ExitState& state) {
    bool shown = false;
    state = child.poll();
    for (int waited = 0; !state.ended;
         waited = std::min(waited + 2 * SliceMilliseconds, ProgressMilliseconds)) {
        if (!shown && waited >= ProgressMilliseconds) {
            ShowToolProgress("Running " + name);
            shown = true;
        }
        WaitEvents(SliceMilliseconds, false);
        state = child.wait(SliceMilliseconds);
        if (state.ended || !ToolStopPressed()) continue;
        result.stopped = true;
        child.stop(GraceMilliseconds);
        state = child.wait(GraceMilliseconds);
        if (!state.ended) state.signal = SIGKILL;  // it cannot be ended: it has failed, though it still runs
        break;
    }
    if (shown) ShowToolProgress({});
}

// A process that sleeps has done what it does at its start, and waits for its user. True also if nothing can
// be learned about it.
bool isIdle(int process) {
    std::string text;
    const std::string file = "/proc/" + std::to_string(process) + "/stat";
    if (os::readFile(file, text) != os::FileError::None) return true;
    const std::size_t name = text.rfind(')');
    return name == std::string::npos || name + 2 >= text.size() || text[name + 2] == 'S';
}

// Waits until the child has come up: it sleeps at two looks in a row, or has ended.
void waitForIdle(os::Child& child, os::ExitState& state) {
    int idle = 0;
    for (int waited = 0; waited < IdleMilliseconds && idle < 2 && !state.ended; waited += PollMilliseconds) {
        WaitEvents(SliceMilliseconds, false);
        state = child.wait(PollMilliseconds - SliceMilliseconds);
        idle = isIdle(child.id()) ? idle + 1 : 0;
    }
}

void waitDisabled(os::Child& child, const std::string& name, ExecResult& result, os::ExitState& state) {
    const Object active = ActiveWindow();
    SetBusy(true);
    waitForEnd(child, name, result, state);
    SetBusy(false);
    if (!active.empty() && IsLoaded(active) && !IsModal(active) && GetVisible(active)) Show(active, false);
}

}  // namespace

std::string FINDTOOL(const std::string& path) {
    FRAME(FINDTOOL);
    STAMP();
    return findTool(path, hasContent);
}

std::string detail::FindProgram(const std::string& program) {
    return findProgram(program, hasContent);
}

bool detail::StartProgram(const std::string& program, const std::vector<std::string>& arguments) {
    return start(program, arguments, {}, {}).child != nullptr;
}

ExecResult EXEC(const std::string& program, const std::string& arguments, int mode) {
    FRAME(EXEC);
    STAMP();
    return EXEC(program, arguments, mode, std::string());
}

ExecResult EXEC(const std::string& program, const std::string& arguments, int mode,
                const std::string& folder) {
    FRAME(EXEC);
    const CommandLine command = parseCommandLine(arguments);
    STAMP();
    if (const std::int32_t fault = findFault(program, command)) {
        SetError(fault);
        return {};
    }
    return EXEC(program, command.arguments, mode, folder, command.files);
}

ExecResult EXEC(const std::string& program, const std::vector<std::string>& arguments, int mode,
                const std::string& folder, const ExecFiles& redirected) {
    FRAME(EXEC);
    ExecResult result;
    STAMP();
    const Started started = start(program, arguments, folder, redirected);
    SetError(started.code);
    if (started.child == nullptr) return result;
    os::Child& child = *started.child;
    result.started = true;
    result.process = child.id();
    os::ExitState state;
    STAMP();
    switch (mode >> 4 & 15) {
    case WaitDisabled: waitDisabled(child, FILEGETFNAME(program), result, state); break;
    case WaitEnabled: waitForEnd(child, FILEGETFNAME(program), result, state); break;
    default: waitForIdle(child, state); break;
    }
    constexpr int SignalBase = 128;  // as shells report it, so that the code alone tells the failure too
    result.signal = state.signal;
    result.code = state.signal != 0 ? SignalBase + state.signal : state.code;
    return result;
}

std::unique_ptr<os::Child> EXECPIPED(const std::string& program, const std::string& arguments,
                                     const std::string& folder) {
    FRAME(EXECPIPED);
    const CommandLine command = parseCommandLine(arguments);
    STAMP();
    if (const std::int32_t fault = findFault(program, command)) {
        SetError(fault);
        return nullptr;
    }
    Started started = start(program, command.arguments, folder, command.files, true);
    SetError(started.code);
    return std::move(started.child);
}

bool WAITFORSINGLEOBJECT_MSG(int process, int milliseconds) {
    FRAME(WAITFORSINGLEOBJECT_MSG);
    const std::int64_t start = os::clock().steady();
    constexpr std::int64_t Millisecond = 1'000'000;  // nanoseconds
    while (!os::waitForProcess(process, 0)) {
        STAMP();
        if (milliseconds >= 0 && os::clock().steady() - start >= milliseconds * Millisecond) return false;
        WaitEvents(SliceMilliseconds, false);
        os::waitForProcess(process, SliceMilliseconds);
    }
    return true;
}

}  // namespace tarn
