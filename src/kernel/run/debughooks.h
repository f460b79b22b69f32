// SPDX-License-Identifier: Apache-2.0
//
// Where a debugger takes part in the run-time, which knows none: kernel/debug/engine.h puts itself there. Without one mode
// 2 has its tables, and nobody looks at them. The stop itself is DebugStop in report.h.
#pragma once

#include <cstdint>
#include <string_view>

namespace tarn {

// What a pending error does at a stamp under the debugger.
enum class ErrorWay {
    Handler,          // it goes to the handler of its class, as without a debugger
    Stop,             // it stops, and the program goes on behind it
    StopThenHandler,  // it stops, and goes to the handler then
};

struct DebuggerHooks {
    // At the end of DebugStart in mode 2, when the tables are there.
    void (*start)(std::string_view product, std::string_view version, std::string_view build,
                  std::string_view mainSource) = nullptr;
    void (*end)() = nullptr;  // at the beginning of DebugEnd
    void (*classAdded)(std::string_view sourcePath, std::string_view className) = nullptr;
    void (*classLeftOut)(std::string_view className) = nullptr;  // the class table is full
    ErrorWay (*wayOf)(std::int32_t code) = nullptr;              // null: each one stops
    // At a stamp of line 0, which stands behind the last statement of a function, while there is a debugger window.
    void (*functionEnds)() = nullptr;
};
DebuggerHooks UseDebuggerHooks(const DebuggerHooks& hooks);  // returns the ones before
const DebuggerHooks& TheDebuggerHooks();

}  // namespace tarn
