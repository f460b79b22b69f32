// SPDX-License-Identifier: Apache-2.0
//
// The error cell and what belongs to it: the last error, the texts of the codes, the assertions.
#include "kernel/run/errors.h"

#include "kernel/run/runtime.h"
#include "kernel/run/state.h"

#include <algorithm>
#include <array>

extern "C" {
std::int32_t tarn_error_cell = 0;
}

namespace tarn {

namespace {

struct ErrorRow {
    std::int32_t code;
    const char* text;
};

#define TARN_ERROR_ROW(code, name, text) ErrorRow{code, text},
constexpr std::array errorRows{TARN_ERRORS(TARN_ERROR_ROW)};
#undef TARN_ERROR_ROW

constexpr bool byCode(const ErrorRow& a, const ErrorRow& b) {
    return a.code < b.code;
}
static_assert(std::is_sorted(errorRows.begin(), errorRows.end(), byCode));

constexpr std::size_t AssertTextLimit = 255;

std::int32_t lastError = 0;
char assertText[AssertTextLimit + 1] = "";

}  // namespace

const char* ErrorText(std::int32_t code) {
    if (code == ERR_NONE) return "";
    const auto* row = std::lower_bound(errorRows.begin(), errorRows.end(), ErrorRow{code, nullptr}, byCode);
    return row != errorRows.end() && row->code == code ? row->text : "Application defined error";
}

std::string ErrorMessage(std::int32_t code) {
    return ErrorText(code);
}

std::int32_t LastError() {
    return lastError;
}

void ClearError() {
    tarn_error_cell = 0;
    lastError = 0;
}

void ContinueAfterError() {
    lastError = tarn_error_cell;
    tarn_error_cell = 0;
}

void Assert(bool condition) {
    Assert(condition, {});
}

void Assert(bool condition, std::string_view text) {
    if (condition || tarn_error_cell != 0) return;
    tarn_error_cell = ERR_ASSERT;
    assertText[text.copy(assertText, AssertTextLimit)] = 0;
}

void Precondition(bool condition) {
    if (!condition) SetError(ERR_PRECONDITION);
}

void Postcondition(bool condition) {
    if (!condition) SetError(ERR_POSTCONDITION);
}

std::string AssertText() {
    return assertText;
}

}  // namespace tarn
