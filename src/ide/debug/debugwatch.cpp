// SPDX-License-Identifier: GPL-3.0-or-later
#include "ide/debug/debugwatch.h"

#include "ide/debug/codemarks.h"
#include "ide/editor/textedit.h"
#include "ide/shell/ide.h"
#include "ide/shell/idecore.h"
#include "ide/shell/statusline.h"
#include "ide/shell/windows.h"
#include "kernel/debug/stopnotice.h"
#include "library/system/system.h"

#include <algorithm>
#include <vector>

MODULE("runexe", tarn::IDE_ONERROR)

namespace tarn {
namespace {

struct Program {
    int process = 0;
    std::string name;
    StopNotice seen;
    int stoppedAs = 0;  // the count of all stops that were seen, with this one
};

// Those that were seen under the debugger, the one that was started last at the end. They cannot stand in a control.
std::vector<Program>& programs() {
    static std::vector<Program> all;
    return all;
}
int shownProcess = 0;  // whose line is marked
int stopsSeen = 0;

Program* find(int process) {
    const auto found = std::find_if(programs().begin(), programs().end(),
                                    [process](const Program& one) { return one.process == process; });
    return found == programs().end() ? nullptr : &*found;
}

std::string placeText(const StopPlace& place) {
    return place.line == 0
               ? std::string()
               : " in " + place.className + "." + place.functionName + ", line " + STR(place.line);
}

void unmark() {
    shownProcess = 0;
    MARKCURRENTLINE(SDIEdit, 0);
}

std::string stopText(const Program& program) {
    const StopPlace& place = program.seen.place;
    const std::string why = place.error == 0 ? " is stopped" : " is stopped by error " + STR(place.error);
    return program.name + why + placeText(place);
}

void showStop(const Program& program) {
    const StopPlace& place = program.seen.place;
    TELLSTATUS(stopText(program));
    unmark();
    if (place.sourcePath.empty() || !EDITWNDFOLLOW(SDIEdit, place.sourcePath, place.line)) return;
    shownProcess = program.process;
    MARKCURRENTLINE(SDIEdit, place.line);
}

void showRunning(const Program& program) {
    TELLSTATUS(program.name + " runs in the debugger");
    if (shownProcess == program.process) unmark();
}

// The one that stopped last of those that are stopped; null: none is.
const Program* lastStopped() {
    const Program* last = nullptr;
    for (const Program& one : programs())
        if (one.seen.state == DebugState::Stopped && (last == nullptr || one.stoppedAs > last->stoppedAs))
            last = &one;
    return last;
}

// Nothing of the program that has ended is shown any more: another one may wait for the user.
void showOther(const std::string& ended) {
    const Program* const other = lastStopped();
    if (other == nullptr) return;
    if (shownProcess == 0) showStop(*other);
    TELLSTATUS(stopText(*other) + "; " + ended);
}

void show(const Program& program) {
    if (program.seen.state == DebugState::Stopped)
        showStop(program);
    else
        showRunning(program);
}

}  // namespace

void FOLLOWPROGRAM(int process, const std::string& name) {
    FRAME(FOLLOWPROGRAM);
    STAMP();
    const StopNotice now = ReadStopNotice(process);
    if (now.state == DebugState::None) return;
    Program* program = find(process);
    if (program == nullptr) program = &programs().emplace_back(Program{process, name, {}});
    if (now == program->seen) return;
    program->seen = now;
    if (now.state == DebugState::Stopped) program->stoppedAs = ++stopsSeen;
    STAMP();
    show(*program);
    STAMP();
}

bool ISDEBUGGED(int process) {
    FRAME(ISDEBUGGED);
    STAMP();
    return find(process) != nullptr;
}

void FORGETPROGRAM(int process) {
    FRAME(FORGETPROGRAM);
    STAMP();
    const Program* const program = find(process);
    if (program == nullptr) return;
    if (shownProcess == process) unmark();
    const std::string ended = program->name + " has ended";
    TELLSTATUS(ended);
    std::erase_if(programs(), [process](const Program& one) { return one.process == process; });
    DropStopNotice(process);
    STAMP();
    SHOWBREAKPOINTS(SDIEdit);
    STAMP();
    showOther(ended);
    STAMP();
}

void BREAKDEBUGGED() {
    FRAME(BREAKDEBUGGED);
    STAMP();
    for (auto program = programs().rbegin(); program != programs().rend(); ++program)
        if (program->seen.state == DebugState::Running && BreakInto(program->process)) return;
    Sound();
    TELLSTATUS("No program runs in the debugger.");
    STAMP();
}

}  // namespace tarn
