// SPDX-License-Identifier: Apache-2.0
//
// The kernel under the names and types that compiled programs use. Each function passes its arguments on; the
// layouts are checked here, once.
#include "kernel/api.h"

#include "kernel/errors.h"
#include "kernel/numbers.h"
#include "kernel/process.h"
#include "kernel/report.h"
#include "kernel/runtime.h"
#include "kernel/strings.h"
#include "os/process.h"

#include <cstddef>

static_assert(sizeof(tarn_string) == sizeof(tarn::StringDescriptor));
static_assert(alignof(tarn_string) == alignof(tarn::StringDescriptor));
static_assert(offsetof(tarn_string, size) == offsetof(tarn::StringDescriptor, size));
static_assert(offsetof(tarn_string, tag) == offsetof(tarn::StringDescriptor, tag));
static_assert(offsetof(tarn_string, data) == offsetof(tarn::StringDescriptor, data));
static_assert(offsetof(tarn_string, maxlength) == offsetof(tarn::StringDescriptor, maxlength));
static_assert(offsetof(tarn_string, length) == offsetof(tarn::StringDescriptor, length));
static_assert(offsetof(tarn_string, reserved) == offsetof(tarn::StringDescriptor, reserved));
static_assert(TARN_UNBOUNDED == tarn::UNBOUNDED);
static_assert(static_cast<int>(TARN_BOOLEAN) == static_cast<int>(tarn::KindBoolean));
static_assert(static_cast<int>(TARN_STRING) == static_cast<int>(tarn::KindString));
static_assert(static_cast<int>(TARN_TABLE) == static_cast<int>(tarn::KindTable));

namespace {

tarn::StringDescriptor* string(tarn_string* s) {
    return reinterpret_cast<tarn::StringDescriptor*>(s);
}
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
    tarn::DebugStart(program.debug_mode, tarn::ProductWord, tarn::ProductVersion, tarn::ProductBuild,
                     text(program.main_source));
    if (text(program.library_version) != tarn::ProductVersion) tarn::SetError(tarn::ERR_LIBRARY_VERSION);
    call(program.initialise);
    call(program.main);
    call(program.finalise);
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
    return tarn::BeginReport() ? 1 : 0;
}
void tarn_report_end(void) {
    tarn::EndReport();
    tarn::ContinueAfterError();
}
void tarn_register_class(const char* source_path, const char* class_name) {
    tarn::RegisterClass(text(source_path), text(class_name));
}
void tarn_register_variable(const char* name, char role, int32_t kind, void* address) {
    tarn::RegisterVariable(text(name), role, kind, address);
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
    tarn::os::setCommandLine(argc, argv);
    running = program;
    tarn::RunProtected(runProgram);
    return 0;
}

int32_t tarn_integer_div(int32_t a, int32_t b) {
    return tarn::IntegerDiv(a, b);
}
int32_t tarn_integer_mod(int32_t a, int32_t b) {
    return tarn::IntegerMod(a, b);
}

void tarn_string_init(tarn_string* s, int32_t maxlength) {
    tarn::StringInit(string(s), maxlength);
}
void tarn_string_free(tarn_string* s) {
    tarn::StringFree(string(s));
}
void tarn_string_assign(tarn_string* dest, const tarn_string* src) {
    tarn::StringAssign(string(dest), string(src));
}
void tarn_string_assign_bytes(tarn_string* dest, const char* bytes, int32_t count) {
    const bool empty = bytes == nullptr || count < 1;
    tarn::StringAssignView(string(dest), empty ? std::string_view()
                                               : std::string_view(bytes, static_cast<std::size_t>(count)));
}
void tarn_string_concat(const tarn_string* a, const tarn_string* b, tarn_string* dest) {
    tarn::StringConcat(string(a), string(b), string(dest));
}
int32_t tarn_string_compare(const tarn_string* a, const tarn_string* b) {
    int32_t result = 0;
    tarn::StringCompare(string(a), string(b), false, result);
    return result;
}
int32_t tarn_string_length(const tarn_string* s) {
    return tarn::StringLength(string(s));
}
int32_t tarn_string_get(const tarn_string* s, int32_t position) {
    return tarn::StringGetChar(string(s), position);
}
void tarn_string_put(tarn_string* s, int32_t position, int32_t character) {
    tarn::StringPutChar(string(s), position, character);
}

}  // extern "C"
