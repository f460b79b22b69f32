// SPDX-License-Identifier: Apache-2.0
//
// The stack of call frames, the debug mode that says whether there is one, and the tables of the debugger
// that calls of a program fill: variables and classes.
#include "kernel/run/debughooks.h"
#include "kernel/run/runtime.h"
#include "kernel/run/state.h"
#include "os/files.h"
#include "os/text/ascii.h"

#include <cstdlib>
#include <cstring>
#include <cxxabi.h>
#include <utility>

extern "C" {
std::int32_t tarn_current_line = 0;
void* tarn_debugger_window = nullptr;
tarn::FrameStack* tarn_quick_frames = nullptr;
}

namespace tarn {

FrameStack* frameStack = nullptr;
DeepFrames* deepFrames = nullptr;
VariableTable* variableTable = nullptr;
ClassTable* classTable = nullptr;
std::int32_t variablesEndAt = 0;
ThrownPlace lastThrown;

namespace {

constinit const unsigned noExceptions = 0;  // for functions that run ahead of this module's own start

}  // namespace

constinit const unsigned* exceptionsUnderWay = &noExceptions;

namespace {

// What the language's run time keeps for each thread, as the C++ ABI of the machine lays it out.
struct ThreadExceptions {
    void* caught;
    unsigned underWay;
};

// From here on frames look at the exceptions of the thread that calls this.
bool watchThisThread() {
    exceptionsUnderWay = &reinterpret_cast<const ThreadExceptions*>(abi::__cxa_get_globals())->underWay;
    return true;
}
const bool watched = watchThisThread();

std::int32_t debugMode = 0;
DebuggerHooks debuggerHooks;

template <class Table>
void allocateTable(Table*& table) {
    if (table == nullptr) table = static_cast<Table*>(std::calloc(1, sizeof(Table)));
}
template <class Table>
void freeTable(Table*& table) {
    std::free(table);
    table = nullptr;
}

bool recorded(std::int32_t count) {
    return count >= 1 && count <= MaxFrames;
}
FrameRecord& frameAt(std::int32_t count) {
    return frameStack->frames[count - 1];
}

// Where a frame of that depth is recorded while it is the top one; null: nowhere.
FrameRecord* recordAt(std::int32_t depth) {
    if (recorded(depth)) return &frameAt(depth);
    return depth > MaxFrames && deepFrames != nullptr ? &deepFrames->frames[depth % MaxDeepFrames] : nullptr;
}

void lowerCase(char* text) {
    for (; *text != 0; ++text) *text = ascii::lower(*text);
}

void pushFrame(const char* className, const char* functionName, std::int32_t line) {
    if (FrameRecord* const caller = recordAt(frameStack->count)) caller->savedLine = tarn_current_line;
    FrameRecord* const record = recordAt(++frameStack->count);
    if (record == nullptr) return;
    FrameRecord& frame = *record;
    frame.literalClass = nullptr;
    CopyName(frame.copiedClass, className);
    CopyName(frame.copiedFunction, functionName);
    lowerCase(frame.copiedFunction);
    frame.firstLine = line;
    frame.savedLine = 0;
    frame.debugClass = RuntimeFrame;
    const bool hasVariables = variableTable != nullptr && recorded(frameStack->count);
    frame.firstVariable = hasVariables ? variableTable->count + 1 : 0;
}

// Drops the variables from number `first` on.
void dropVariables(std::int32_t first) {
    if (variableTable == nullptr || first < 1) return;
    for (std::int32_t i = first; i <= variableTable->count; ++i) variableTable->entries[i - 1] = {};
    variableTable->count = first - 1;
}

void traceCall(const char* className, const char* functionName, std::int32_t line) {
    std::string text = className != nullptr ? className : "";
    text += ':';
    text += functionName != nullptr ? functionName : "";
    text += '(' + std::to_string(line) + ')';
    Trace(text);
}

}  // namespace

void FunctionEnter(const char* className, const char* functionName, std::int32_t line) {
    if (frameStack != nullptr) pushFrame(className, functionName, line);
    tarn_current_line = line;
    if (GetTraceMode() != 0) [[unlikely]]
        traceCall(className, functionName, line);
}

void EnterProgramFunction(const char* className, const char* functionName, std::int32_t line) {
    FunctionEnter(className, functionName, line);
    if (frameStack == nullptr) return;
    if (FrameRecord* const frame = recordAt(frameStack->count)) frame->debugClass = 0;
}

void FunctionLeave() {
    if (frameStack == nullptr) return;
    if (FrameRecord* const frame = recordAt(frameStack->count)) {
        dropVariables(frame->firstVariable);
        std::memset(frame, 0, sizeof *frame);
    }
    if (--frameStack->count < variablesEndAt) variablesEndAt = 0;
    tarn_current_line = 0;
    if (recorded(frameStack->count)) {
        FrameRecord& caller = frameAt(frameStack->count);
        tarn_current_line = caller.savedLine;
        caller.savedLine = 0;
    }
}

// Frames leave one after the other while an exception travels; the deepest tells where it was thrown.
void NoteThrown() {
    const FrameRecord* top = TopFrame();
    if (top == nullptr) return;
    const std::int32_t depth = frameStack->count;
    const bool travels = lastThrown.depth == depth + 1 && lastThrown.callerLine == tarn_current_line;
    if (!travels) {
        lastThrown.frame = *top;
        lastThrown.line = tarn_current_line;
    }
    lastThrown.depth = depth;
    lastThrown.callerLine = recorded(depth - 1) ? frameAt(depth - 1).savedLine : 0;
}

std::string CurrentFunctionName() {
    const FrameRecord* top = TopFrame();
    return top != nullptr ? top->functionName() : "";
}

std::string CurrentClassName() {
    const FrameRecord* top = TopFrame();
    return top != nullptr ? top->className() : "";
}

// A deeper frame has emptied the place when it left, so that what stands there is the frame of this depth.
FrameRecord* FrameAtDepth(std::int32_t depth) {
    if (depth < 1 || depth > FrameCount() || (depth > MaxFrames && depth <= FrameCount() - MaxDeepFrames))
        return nullptr;
    FrameRecord* const frame = recordAt(depth);
    const bool gone = depth > MaxFrames && frame != nullptr && frame->className()[0] == 0;
    return gone ? nullptr : frame;
}

std::int32_t FrameCount() {
    return frameStack != nullptr ? frameStack->count : 0;
}

void DebugStart(std::int32_t mode, std::string_view product, std::string_view version, std::string_view build,
                std::string_view mainSource) {
    if (mode < 0 || mode > 2) return;
    watchThisThread();
    // A program that has left its source behind has nothing to show in a debugger.
    if (mode == 2 && os::sizeOf(os::native(mainSource)) <= 0) mode = 1;
    debugMode = mode;
    if (mode >= 1) allocateTable(frameStack);
    ChooseFrames();
    if (mode == 2) {
        allocateTable(deepFrames);
        allocateTable(variableTable);
        allocateTable(classTable);
        if (debuggerHooks.start != nullptr) debuggerHooks.start(product, version, build, mainSource);
    }
}

void DebugEnd() {
    if (debugMode == 2 && debuggerHooks.end != nullptr) debuggerHooks.end();
    freeTable(frameStack);
    freeTable(deepFrames);
    freeTable(variableTable);
    freeTable(classTable);
    variablesEndAt = 0;
    debugMode = 0;
    ChooseFrames();
}

void ChooseFrames() {
    const bool quick = debugMode == 1 && GetTraceMode() == 0;
    tarn_quick_frames = quick ? frameStack : nullptr;
}

DebuggerHooks UseDebuggerHooks(const DebuggerHooks& hooks) {
    return std::exchange(debuggerHooks, hooks);
}

const DebuggerHooks& TheDebuggerHooks() {
    return debuggerHooks;
}

std::int32_t DebugMode() {
    return debugMode;
}

void RegisterClass(std::string_view sourcePath, std::string_view className) {
    if (classTable == nullptr || sourcePath.empty() || className.empty()) return;
    if (classTable->count >= MaxClasses) {
        if (debuggerHooks.classLeftOut != nullptr) debuggerHooks.classLeftOut(className);
        return;
    }
    ClassEntry& entry = classTable->entries[classTable->count++];
    entry.className[className.copy(entry.className, MaxName)] = 0;
    entry.sourcePath[sourcePath.copy(entry.sourcePath, MaxSourcePath)] = 0;
    if (debuggerHooks.classAdded != nullptr) debuggerHooks.classAdded(entry.sourcePath, entry.className);
}

void RegisterVariable(std::string_view name, char role, std::int32_t kind, void* address) {
    constexpr std::string_view roles = "CINOV";
    if (variableTable == nullptr) return;
    if (role == 0 || roles.find(role) == std::string_view::npos) return;
    if (kind < 1 || kind > 12 || address == nullptr) return;
    // Nobody would drop one of a frame beyond MaxFrames when that frame leaves.
    if (variableTable->count >= MaxVariables || FrameCount() > MaxFrames) {
        if (variablesEndAt == 0) variablesEndAt = FrameCount();
        return;
    }
    VariableEntry& entry = variableTable->entries[variableTable->count++];
    entry.name[name.copy(entry.name, MaxName)] = 0;
    entry.role = role;
    entry.kind = kind;
    entry.address = address;
    entry.expanded = false;
}

}  // namespace tarn
