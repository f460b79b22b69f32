// SPDX-License-Identifier: Apache-2.0
//
// A note is lines of text, in this order:
//
//     line  meaning
//     1     "tarnwick debug 1"
//     2     "running" or "stopped"
//     3     the number of stops
//     4     full path of the main class's source
//     5     class, 6 function, 7 full path of the class's source, 8 line, 9 code of the error
//
// Any other text is no note. A path that holds a line end stands there as an empty one: there is nothing that could be
// opened by it.
#include "kernel/debug/stopnotice.h"

#include "os/process.h"
#include "os/runtimenotes.h"
#include "platform/operations/debugger.h"

#include <array>
#include <charconv>
#include <csignal>
#include <optional>
#include <system_error>
#include <unistd.h>

namespace tarn {
namespace {

constexpr std::string_view Head = "tarnwick debug 1", NotePrefix = "debug-";
constexpr std::size_t Lines = 9;

StopNotice& own() {
    static StopNotice notice;
    return notice;
}

std::string noteName(int process) {
    return std::string(NotePrefix) + std::to_string(process);
}

std::string_view oneLine(std::string_view text) {
    return text.find('\n') == std::string_view::npos ? text : std::string_view();
}

std::string textOf(const StopNotice& notice) {
    const StopPlace& place = notice.place;
    const std::array<std::string, Lines> lines = {std::string(Head),
                                                  notice.state == DebugState::Stopped ? "stopped" : "running",
                                                  std::to_string(notice.stop),
                                                  std::string(oneLine(notice.mainSource)),
                                                  std::string(oneLine(place.className)),
                                                  std::string(oneLine(place.functionName)),
                                                  std::string(oneLine(place.sourcePath)),
                                                  std::to_string(place.line),
                                                  std::to_string(place.error)};
    std::string text;
    for (const std::string& line : lines) text += line + "\n";
    return text;
}

// Null if the text has not just these lines.
std::optional<std::array<std::string_view, Lines>> linesOf(std::string_view text) {
    std::array<std::string_view, Lines> lines;
    for (std::string_view& line : lines) {
        const std::size_t end = text.find('\n');
        if (end == std::string_view::npos) return std::nullopt;
        line = text.substr(0, end);
        text.remove_prefix(end + 1);
    }
    if (!text.empty()) return std::nullopt;
    return lines;
}

bool readNumber(std::string_view text, std::int32_t& number) {
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    return error == std::errc() && end == text.data() + text.size();
}

StopNotice noticeOf(std::string_view text) {
    const auto lines = linesOf(text);
    if (!lines || (*lines)[0] != Head) return {};
    const auto at = [&lines](std::size_t i) { return std::string((*lines)[i]); };
    StopNotice notice;
    if ((*lines)[1] == "running") notice.state = DebugState::Running;
    if ((*lines)[1] == "stopped") notice.state = DebugState::Stopped;
    notice.mainSource = at(3);
    notice.place.className = at(4);
    notice.place.functionName = at(5);
    notice.place.sourcePath = at(6);
    const bool numbers = readNumber((*lines)[2], notice.stop) && readNumber((*lines)[7], notice.place.line) &&
                         readNumber((*lines)[8], notice.place.error);
    return numbers && notice.state != DebugState::None ? notice : StopNotice();
}

// The process whose note that is; 0: none that lives.
int processOf(std::string_view name) {
    std::int32_t process = 0;
    return readNumber(name.substr(NotePrefix.size()), process) && !os::waitForProcess(process, 0) ? process
                                                                                                  : 0;
}

// Processes that were ended with force have left theirs.
void dropNotesOfTheDead() {
    for (const std::string& name : os::notesWith(NotePrefix))
        if (processOf(name) == 0) os::dropNote(name);
}

void put() {
    os::putNote(noteName(::getpid()), textOf(own()));
}

}  // namespace

void NoteRunning(std::string_view mainSource) {
    if (own().state == DebugState::None) dropNotesOfTheDead();
    if (!mainSource.empty()) own().mainSource = mainSource;
    own().state = DebugState::Running;
    put();
}

void NoteStopped(const StopPlace& place) {
    own().state = DebugState::Stopped;
    ++own().stop;
    own().place = place;
    put();
}

void EndStopNotice() {
    if (own().state == DebugState::None) return;
    own() = StopNotice();
    os::dropNote(noteName(::getpid()));
}

StopNotice ReadStopNotice(int process) {
    return noticeOf(os::getNote(noteName(process)));
}

std::vector<int> DebuggedProcesses() {
    std::vector<int> processes;
    for (const std::string& name : os::notesWith(NotePrefix))
        if (const int process = processOf(name); process != 0) processes.push_back(process);
    return processes;
}

bool BreakInto(int process) {
    return ReadStopNotice(process).state != DebugState::None &&
           ::kill(process, platform::DebugBreakSignal) == 0;
}

void DropStopNotice(int process) {
    os::dropNote(noteName(process));
}

}  // namespace tarn
