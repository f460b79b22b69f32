// SPDX-License-Identifier: Apache-2.0
//
// Frames, errors and the run of a program under the names that compiled programs use. The values are in
// api_values.cpp.
#include "kernel/api/api.h"

#include "kernel/debug/engine.h"
#include "kernel/debug/fieldnames.h"
#include "kernel/debug/results.h"
#include "kernel/run/errors.h"
#include "kernel/run/report.h"
#include "kernel/run/runtime.h"
#include "kernel/run/state.h"
#include "kernel/start/process.h"
#include "kernel/values/strings.h"
#include "os/process.h"

#include <cstddef>

static_assert(sizeof(tarn_frame) == sizeof(tarn::FrameRecord) &&
              sizeof(tarn_frame_stack) == sizeof(tarn::FrameStack));
static_assert(offsetof(tarn_frame, first_line) == offsetof(tarn::FrameRecord, firstLine) &&
              offsetof(tarn_frame, copies) == offsetof(tarn::FrameRecord, copiedClass));

namespace {

const tarn::StringDescriptor* string(const tarn_string* s) {
    return reinterpret_cast<const tarn::StringDescriptor*>(s);
}

std::string_view text(const char* chars) {
    return chars != nullptr ? chars : "";
}

const tarn_program* running = nullptr;

void call(void (*step)()) {
    if (step != nullptr) step();
}

void runProgram() {
    const tarn_program& program = *running;
    tarn::ProcessStart({program.memory_checking != 0, program.single_instance != 0});
    const auto own = [](const char* named, std::string_view library) {
        return named != nullptr ? std::string_view(named) : library;
    };
    tarn::UseDebugger();
    tarn::AddExitHook(tarn::EndDebugger);
    tarn::DebugStart(program.debug_mode, own(program.product, tarn::ProductWord), text(program.library_version),
                     own(program.build, tarn::ProductBuild), text(program.main_source));
    if (text(program.library_version) != tarn::ProductVersion) tarn::SetError(tarn::ERR_LIBRARY_VERSION);
    call(program.initialise);
    call(program.main);
    call(program.finalise);
    tarn_scratch_release();
    tarn::DebugEnd();
    tarn::ProcessStop();
}

}  // namespace

extern "C" {

void tarn_enter(const char* class_name, const char* function_name, int32_t line) {
    tarn::FunctionEnter(class_name, function_name, line);
}
void tarn_leave(void) {
    tarn::FunctionLeave();
}
void tarn_stamp_slow(int32_t line, int32_t action, tarn_error_handler handler) {
    tarn::StampSlow(line, action, handler);
}
void tarn_default_onerror(int32_t code) {
    tarn::DefaultErrorHandler(code);
}
int32_t tarn_report_begin(void) {
    return tarn::BeginHandler() ? 1 : 0;
}
void tarn_report_end(void) {
    tarn::EndHandler();
}
void tarn_register_class(const char* source_path, const char* class_name) {
    tarn::RegisterClass(text(source_path), text(class_name));
}
void tarn_register_variable(const char* name, char role, int32_t kind, void* address) {
    tarn::RegisterVariable(text(name), role, kind, address);
}
void tarn_name_fields(const void* address, const char* names) {
    tarn::NameFields(address, names);
}
void tarn_register_result(int32_t kind, void* address) {
    tarn::RegisterResult(kind, address);
}
void tarn_clear_error(void) {
    tarn::ClearError();
}
void tarn_assert(int32_t condition, const tarn_string* s) {
    if (condition == 0) tarn::Assert(false, s != nullptr ? tarn::StringView(string(s)) : std::string_view());
}
void tarn_precondition(int32_t condition) {
    tarn::Precondition(condition != 0);
}
void tarn_postcondition(int32_t condition) {
    tarn::Postcondition(condition != 0);
}

int tarn_run(int argc, char** argv, const tarn_program* program) {
    // The one argument that is the kernel's own, where it stands first; the program does not see it.
    if (argc > 1 && std::string_view(argv[1]) == "--strict") {
        tarn::ExitStrictly();
        argv[1] = argv[0];
        ++argv;
        --argc;
    }
    tarn::os::setCommandLine(argc, argv);
    running = program;
    tarn::RunProtected(runProgram);
    return 0;
}

}  // extern "C"
