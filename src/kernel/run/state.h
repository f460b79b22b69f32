// SPDX-License-Identifier: Apache-2.0
//
// What the files of the run-time share among themselves: the frame stack and the debugger's tables. Other
// layers use runtime.h. All tables have their full size from the start, so that no call of a program
// allocates here; a table that could not be allocated is null, and whoever uses one tests for that.
#pragma once

#include "kernel/run/runtime.h"

#include <cstddef>

namespace tarn {

inline constexpr std::int32_t MaxFrames = 500;
inline constexpr std::int32_t MaxDeepFrames = 400;  // beyond these, which the debugger sees
inline constexpr std::int32_t MaxVariables = 1000;
inline constexpr std::int32_t MaxClasses = 200;
inline constexpr std::size_t MaxName = 40;         // characters of a class, function or variable name
inline constexpr std::size_t MaxSourcePath = 255;  // characters
inline constexpr std::size_t MaxReport = 1024;     // characters of a report text

// The mark of a frame that is a function of the run-time or the library. Its lines are none that the debugger's user knows:
// no step and no breakpoint stops there, and what it does belongs to the statement that called it.
inline constexpr std::int16_t RuntimeFrame = -2;

// Compiled code whose frames need nothing else pushes and pops them by itself (api.h, tarn_quick_frames): it names
// its literals, which live as long as the program. All others are copied.
struct FrameRecord {
    const char* literalClass;     // null: the names are copies
    const char* literalFunction;  // lower-cased
    std::int32_t firstLine;       // of the function's head
    std::int32_t savedLine;       // where it called deeper; 0 while it is the top frame
    std::int32_t firstVariable;   // its first entry in the variable table, from 1; 0 without a table
    char copiedClass[MaxName + 1];
    char copiedFunction[MaxName + 1];  // A to Z lower-cased
    // The debugger's number of the class, in bytes that the C form of this record leaves unused; 0: not looked up yet.
    std::int16_t debugClass;
    [[nodiscard]] bool ofRuntime() const { return debugClass == RuntimeFrame; }

    [[nodiscard]] const char* className() const {
        return literalClass != nullptr ? literalClass : copiedClass;
    }
    [[nodiscard]] const char* functionName() const {
        return literalClass != nullptr ? literalFunction : copiedFunction;
    }
};

struct FrameStack {
    std::int32_t count;  // goes on rising above MaxFrames; the frames beyond are not recorded here
    FrameRecord frames[MaxFrames];
};

// The innermost frames above MaxFrames, by their depth: a deeper one takes the place of the one MaxDeepFrames below it.
struct DeepFrames {
    FrameRecord frames[MaxDeepFrames];
};

struct VariableEntry {
    char name[MaxName + 1];
    char role;          // C, I, N, O or V
    std::int32_t kind;  // 1 to 12
    void* address;
    bool expanded;
};

struct VariableTable {
    std::int32_t count;
    VariableEntry entries[MaxVariables];
};

struct ClassEntry {
    char className[MaxName + 1];
    char sourcePath[MaxSourcePath + 1];
};

struct ClassTable {
    std::int32_t count;
    ClassEntry entries[MaxClasses];
};

extern FrameStack* frameStack;        // null in debug mode 0
extern DeepFrames* deepFrames;        // null below debug mode 2
extern VariableTable* variableTable;  // null below debug mode 2
extern ClassTable* classTable;        // null below debug mode 2

// The depth of the outermost frame of which a variable found no room, because the table was full or the frame is beyond
// MaxFrames; 0: there is none.
extern std::int32_t variablesEndAt;

// Where the last exception that has left a function was thrown.
struct ThrownPlace {
    FrameRecord frame;
    std::int32_t line;        // in that frame
    std::int32_t depth;       // of the last frame that it has left; 0: there was none
    std::int32_t callerLine;  // where the frame below called that one
};
extern ThrownPlace lastThrown;

// FunctionEnter for a function of the program.
void EnterProgramFunction(const char* className, const char* functionName, std::int32_t line);

// Whether compiled code pushes its frames by itself: not while calls are traced or variables registered.
void ChooseFrames();

// The top frame; null when there is none, or when the count is outside 1 to MaxFrames.
inline const FrameRecord* TopFrame() {
    if (frameStack == nullptr || frameStack->count < 1 || frameStack->count > MaxFrames) return nullptr;
    return &frameStack->frames[frameStack->count - 1];
}

// The frame at a depth from 1 to the count, also one above MaxFrames; null if it is not recorded any more.
FrameRecord* FrameAtDepth(std::int32_t depth);

// Copies at most Size - 1 characters of a NUL-ended text (null: empty) and ends them.
template <std::size_t Size>
void CopyName(char (&into)[Size], const char* text) {
    std::size_t i = 0;
    if (text != nullptr) {
        for (; i < Size - 1 && text[i] != 0; ++i) into[i] = text[i];
    }
    into[i] = 0;
}

}  // namespace tarn
