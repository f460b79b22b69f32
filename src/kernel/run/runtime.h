// SPDX-License-Identifier: Apache-2.0
//
// Call frames, line stamps and run-time errors: what every function of every module stands on.
//
// There is no unwinding. A failing operation sets the error cell if it is 0 and returns a harmless value; the
// next stamp reports. A module file opens with MODULE("filemenu"); each of its functions opens with
// FRAME(DO_OPEN); STAMP(); stands before each statement whose calls can set the cell, and at the head of
// loops.
//
// Cost: a stamp is two tests and one store; entering and leaving a function copies one fixed-size record.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

extern "C" {
// The state that the inline fast paths touch; compiled programs use the same words.
extern std::int32_t tarn_error_cell;    // 0: no error is pending
extern std::int32_t tarn_current_line;  // the stamped line of the running statement
extern void* tarn_debugger_window;      // null: no debugger is attached
}

namespace tarn {

// ---- errors ----

// Sets the error cell unless an earlier error is pending.
inline void SetError(std::int32_t code) {
    if (tarn_error_cell == 0) tarn_error_cell = code;
}
// The same, for functions that tell by `false` that they failed.
inline bool Refuse(std::int32_t code) {
    SetError(code);
    return false;
}
inline std::int32_t ErrorCell() {
    return tarn_error_cell;
}
std::int32_t LastError();
void ClearError();                            // error cell and last error := 0
std::string ErrorMessage(std::int32_t code);  // the text of a code; see errors.h for the names of the codes
std::string ErrorDetails();                   // the full report text, at most 1024 characters
void Assert(bool condition);
void Assert(bool condition, std::string_view text);  // 687; the text is cut to 255 characters
void Precondition(bool condition);                   // 684
void Postcondition(bool condition);                  // 685
std::string AssertText();

// ---- frames and stamps ----

void FunctionEnter(const char* className, const char* functionName, std::int32_t line);
void FunctionLeave();
std::string CurrentFunctionName();
std::string CurrentClassName();
std::int32_t FrameCount();

// What a module's `onerror` gets; DefaultErrorHandler is the frame of each such handler.
using ErrorHandler = void (*)(std::int32_t code);
void DefaultErrorHandler(std::int32_t code);
// Marks a report as going on. `entered()` is false when one goes on already: return at once then. (report.h
// has the same mark as a pair of functions, for handlers in C, where no destructor ends it.)
class Reporting {
public:
    Reporting();
    ~Reporting();
    Reporting(const Reporting&) = delete;
    Reporting& operator=(const Reporting&) = delete;
    [[nodiscard]] bool entered() const { return entered_; }

private:
    bool entered_;
};
// The Continue answer: last error := cell, cell := 0.
void ContinueAfterError();

enum StampAction : std::int32_t { ReportErrors = 0, ClearErrors = 1, LeaveErrors = 2 };

void StampSlow(std::int32_t line, std::int32_t action, ErrorHandler handler);
inline void Stamp(std::int32_t line, std::int32_t action, ErrorHandler handler) {
    if (tarn_error_cell != 0 || tarn_debugger_window != nullptr) [[unlikely]] {
        StampSlow(line, action, handler);
    } else if (line != 0) {
        tarn_current_line = line;
    }
}

struct ModuleInfo {
    const char* name;
    ErrorHandler onerror = DefaultErrorHandler;
    std::int32_t action = ReportErrors;
};

// Notes that an exception leaves the top frame: the report of one that nobody catches tells the deepest.
void NoteThrown();
// How many exceptions are under way in the thread of the modules, where the language's run time counts them:
// std::uncaught_exceptions() gives the same number for two calls through tables.
extern const unsigned* exceptionsUnderWay;

class Frame {
public:
    Frame(const ModuleInfo& module, const char* function, std::int32_t line)
        : exceptions_(*exceptionsUnderWay) {
        FunctionEnter(module.name, function, line);
    }
    ~Frame() {
        if (*exceptionsUnderWay > exceptions_) [[unlikely]]
            NoteThrown();
        FunctionLeave();
    }
    Frame(const Frame&) = delete;
    Frame& operator=(const Frame&) = delete;

private:
    unsigned exceptions_;  // under way when the function was entered
};

#define MODULE(...)                                                                                          \
    namespace {                                                                                              \
    constexpr ::tarn::ModuleInfo thisModule{__VA_ARGS__};                                                    \
    }
#define FRAME(function) const ::tarn::Frame frameOfThisFunction(thisModule, #function, __LINE__)
#define STAMP() ::tarn::Stamp(__LINE__, thisModule.action, thisModule.onerror)

// ---- trace ----

void Trace(std::string_view text);     // one line, to where the trace mode says; never fails
void SetTraceMode(std::int32_t mode);  // 0 off, 1 debug output, 2 the trace file; other values are ignored
std::int32_t GetTraceMode();

// ---- process ----

void ProcessStart(bool memoryChecking);
void ProcessStop();  // does not return
[[noreturn]] void Halt();
[[noreturn]] void RunTimeFatal(std::int32_t code, std::string_view message, std::string_view file,
                               std::string_view function, std::int32_t line, std::string_view extra);
// Runs `program` inside the frame that turns hardware faults and stray exceptions into RunTimeFatal.
void RunProtected(void (*program)());
// Called before any halt that an error causes, so that nothing the user typed is lost. Null: none.
using RescueHook = void (*)();
void SetRescueHook(RescueHook hook);
// From now on the end of the session, or a signal that asks for an end, calls the hook and halts. Makes the
// view.
void ListenForEnd();

// 0 no frames, 1 frames, 2 frames and the debugger (falls back to 1 while the main source is missing or
// empty).
void DebugStart(std::int32_t mode, std::string_view product, std::string_view version, std::string_view build,
                std::string_view mainSource);
void DebugEnd();
std::int32_t DebugMode();
void RegisterClass(std::string_view sourcePath, std::string_view className);
void RegisterVariable(std::string_view name, char role, std::int32_t kind, void* address);

inline constexpr std::string_view ProductWord = "Tarnwick";
inline constexpr std::string_view ProductVersion = "1.3";
inline constexpr std::string_view ProductBuild = "2207";

}  // namespace tarn
