// SPDX-License-Identifier: Apache-2.0
//
// The library as compiled programs see it. These functions have no frame and no stamp of their own, so that
// an error is reported on the line of the caller. A result may be the same string as an argument: it is
// assigned last.
#include "kernel/api/api.h"

#include "kernel/run/errors.h"
#include "kernel/start/process.h"
#include "kernel/values/strings.h"
#include "kernel/values/texttransform.h"
#include "library/system/system.h"

#include <cstdio>
#include <cstring>

namespace {

using namespace tarn;

static_assert(sizeof(tarn_string) == sizeof(StringDescriptor));

// A null or foreign descriptor sets 756 in the kernel and reads as empty.
std::string_view view(const tarn_string* s) {
    return StringView(reinterpret_cast<const StringDescriptor*>(s));
}
std::string text(const tarn_string* s) {
    return std::string(view(s));
}
void assign(tarn_string* dest, std::string_view value) {
    StringAssignView(reinterpret_cast<StringDescriptor*>(dest), value);
}

}  // namespace

extern "C" {

void tarn_sys_msgbox(const tarn_string* title, const tarn_string* message, const tarn_string* buttons,
                     tarn_string* answer) {
    assign(answer, MsgBox(text(title), text(message), text(buttons)));
}

void tarn_sys_loadfile(const tarn_string* file, tarn_string* value) {
    std::string bytes;
    LOADFILE(text(file), bytes);
    assign(value, bytes);
}

void tarn_sys_savefile(const tarn_string* file, const tarn_string* value) {
    SAVEFILE(text(file), view(value));
}

void tarn_sys_str_integer(int32_t value, tarn_string* result) {
    assign(result, STR(value));
}
void tarn_sys_str_boolean(int32_t value, tarn_string* result) {
    assign(result, value != 0 ? "True" : "False");
}

int32_t tarn_sys_cvti(const tarn_string* s) {
    int32_t value = 0;
    if (tarn_integer_from_text(s, &value) == 0) SetError(ERR_INTEGER_CONVERSION);
    return value;
}

void tarn_sys_chr(int32_t code, tarn_string* result) {
    const char c = static_cast<char>(code);
    assign(result, std::string_view(&c, 1));
}

int32_t tarn_sys_ord(const tarn_string* s) {
    const std::string_view characters = view(s);
    return characters.empty() ? 0 : static_cast<unsigned char>(characters[0]);
}

int32_t tarn_sys_strfind(const tarn_string* s, const tarn_string* what, int32_t from, int32_t ignore_case) {
    return STRFIND(view(what), view(s), from, ignore_case != 0);
}

void tarn_sys_strmid(const tarn_string* s, int32_t position, int32_t count, tarn_string* result) {
    const std::string whole = text(s);
    const bool outside = position < 1 || static_cast<std::size_t>(position) > whole.size();
    assign(result,
           outside ? std::string()
                   : STRLEFT(std::string_view(whole).substr(static_cast<std::size_t>(position) - 1), count));
}

void tarn_sys_strleft(const tarn_string* s, int32_t count, tarn_string* result) {
    assign(result, STRLEFT(view(s), count));
}
void tarn_sys_strright(const tarn_string* s, int32_t count, tarn_string* result) {
    assign(result, STRRIGHT(view(s), count));
}
void tarn_sys_strtrim(const tarn_string* s, tarn_string* result) {
    assign(result, STRTRIM(view(s)));
}
void tarn_sys_strltrim(const tarn_string* s, tarn_string* result) {
    assign(result, STRLTRIM(view(s)));
}
void tarn_sys_strrtrim(const tarn_string* s, tarn_string* result) {
    assign(result, STRRTRIM(view(s)));
}
void tarn_sys_strupper(const tarn_string* s, tarn_string* result) {
    assign(result, STRUPPER(view(s)));
}
void tarn_sys_strlower(const tarn_string* s, tarn_string* result) {
    assign(result, STRLOWER(view(s)));
}

void tarn_sys_strreplace(const tarn_string* what, const tarn_string* with, int32_t ignore_case,
                         tarn_string* s) {
    assign(s, STRREPLACE(view(s), view(what), view(with), ignore_case != 0));
}

int32_t tarn_sys_strlines(const tarn_string* s) {
    return STRLINES(view(s));
}
void tarn_sys_strline(const tarn_string* s, int32_t line, tarn_string* result) {
    assign(result, STRLINE(view(s), line));
}

void tarn_sys_strmake(int32_t count, int32_t character, tarn_string* result) {
    if (count > MaxBlock) SetError(ERR_BLOCK_TOO_LARGE);
    assign(result, count > MaxBlock ? std::string() : STRMAKE(count, character));
}

int32_t tarn_sys_filesize(const tarn_string* file) {
    const std::int64_t size = FileSize(text(file));
    return size > INT32_MAX ? INT32_MAX : static_cast<int32_t>(size);
}

void tarn_sys_arguments(tarn_string* result) {
    assign(result, JoinedArguments());
}

void tarn_sys_errormessage(int32_t code, tarn_string* result) {
    assign(result, ErrorMessage(code));
}
void tarn_sys_errordetails(tarn_string* result) {
    assign(result, ErrorDetails());
}

void tarn_sys_print(const tarn_string* s) {
    const std::string_view line = view(s);
    if (!line.empty()) std::fwrite(line.data(), 1, line.size(), stdout);
    std::fputc('\n', stdout);
    std::fflush(stdout);
}

void tarn_sys_msgbox_ok(const tarn_string* title, const tarn_string* message) {
    MsgBox(text(title), text(message), {});
}
void tarn_sys_assert(int32_t condition) {
    tarn_assert(condition, nullptr);
}

// ---- values of any kind in files ----

void tarn_sys_loadfile_options(const tarn_string* path, int32_t format, const tarn_record* options,
                               void* value, int32_t kind) {
    LOADFILE(text(path), format, reinterpret_cast<const RecordDescriptor*>(options), value,
             static_cast<Kind>(kind));
}
void tarn_sys_loadfile_format(const tarn_string* path, int32_t format, void* value, int32_t kind) {
    LOADFILE(text(path), format, value, static_cast<Kind>(kind));
}
void tarn_sys_loadfile_value(const tarn_string* path, void* value, int32_t kind) {
    LOADFILE(text(path), value, static_cast<Kind>(kind));
}
void tarn_sys_savefile_options(const tarn_string* path, int32_t format, const tarn_record* options,
                               const void* value, int32_t kind) {
    SAVEFILE(text(path), format, reinterpret_cast<const RecordDescriptor*>(options), value,
             static_cast<Kind>(kind));
}
void tarn_sys_savefile_format(const tarn_string* path, int32_t format, const void* value, int32_t kind) {
    SAVEFILE(text(path), format, value, static_cast<Kind>(kind));
}
void tarn_sys_savefile_value(const tarn_string* path, const void* value, int32_t kind) {
    SAVEFILE(text(path), value, static_cast<Kind>(kind));
}

// ---- texts in parts ----

void tarn_sys_splitpath(const tarn_string* path, tarn_string* drive, tarn_string* directory,
                        tarn_string* stem, tarn_string* extension) {
    const PathParts parts = SPLITPATH(text(path));
    assign(drive, parts.drive);
    assign(directory, parts.directory);
    assign(stem, parts.name);
    assign(extension, parts.extension);
}
void tarn_sys_strsplit(const tarn_string* s, const tarn_string* separator, tarn_string* left,
                       tarn_string* right) {
    const StringPair parts = STRSPLIT(text(s), text(separator));
    assign(left, parts.left);
    assign(right, parts.right);
}
void tarn_sys_strsplit_blanks(const tarn_string* s, tarn_string* left, tarn_string* right) {
    const StringPair parts = STRSPLIT(text(s));
    assign(left, parts.left);
    assign(right, parts.right);
}
void tarn_sys_setvalue(const tarn_string* s, tarn_set* set, uint8_t* ok) {
    bool done = false;
    SETVALUE(view(s), reinterpret_cast<SetDescriptor*>(set), done);
    *ok = done ? 1 : 0;
}
void tarn_sys_cvts(const void* value, int32_t kind, tarn_string* result) {
    assign(result, CVTS(value, static_cast<Kind>(kind)));
}
void tarn_sys_nextword(const tarn_string* s, int32_t* position, tarn_string* word) {
    int32_t place = 0;
    std::memcpy(&place, position, sizeof place);
    const std::string all = text(s);
    std::size_t at = place < 1 ? 1 : static_cast<std::size_t>(place);
    const std::string found = NextWord(all, at);
    place = static_cast<int32_t>(at);
    std::memcpy(position, &place, sizeof place);
    assign(word, found);
}
void tarn_sys_texttransform(const tarn_string* key, int32_t mode, const tarn_string* s, tarn_string* result) {
    TextTransform(reinterpret_cast<const StringDescriptor*>(key), mode,
                  reinterpret_cast<const StringDescriptor*>(s), reinterpret_cast<StringDescriptor*>(result));
}

// ---- texts of values ----

int32_t tarn_sys_ord_enum(int32_t value) {
    return value;
}
int32_t tarn_sys_strfind_plain(const tarn_string* s, const tarn_string* what) {
    return STRFIND(view(what), view(s), 1, false);
}
void tarn_sys_str_enum(int32_t value, tarn_string* result) {
    assign(result, STR(static_cast<std::uint8_t>(value)));
}
void tarn_sys_str_fixed(int64_t value, tarn_string* result) {
    assign(result, STR(FixedValue(value)));
}
void tarn_sys_str_real(double value, tarn_string* result) {
    assign(result, STR(value));
}
void tarn_sys_str_set(const tarn_set* value, tarn_string* result) {
    tarn_set_to_text(value, 1, result);
}
void tarn_sys_str_integer_width(int32_t value, int32_t width, tarn_string* result) {
    assign(result, STR(value, width));
}
void tarn_sys_str_fixed_format(int64_t value, int64_t format, tarn_string* result) {
    assign(result, STR(FixedValue(value), FixedValue(format)));
}
void tarn_sys_str_real_format(double value, int64_t format, tarn_string* result) {
    assign(result, STR(value, FixedValue(format)));
}

// ---- numbers ----

int32_t tarn_sys_cvti_fixed(int64_t value) {
    return CVTI(FixedValue(value));
}
int32_t tarn_sys_cvti_real(double value) {
    return CVTI(value);
}
int64_t tarn_sys_cvtf(const tarn_string* s) {
    return CVTF(view(s)).word;
}
int64_t tarn_fixed_from_integer_call(int32_t value) {
    return CVTF(value).word;
}
double tarn_sys_cvtr(const tarn_string* s) {
    return CVTR(view(s));
}
int32_t tarn_sys_abs_integer(int32_t value) {
    return ABS(value);
}
int64_t tarn_sys_abs_fixed(int64_t value) {
    return ABS(FixedValue(value)).word;
}
double tarn_sys_abs_real(double value) {
    return ABS(value);
}
int64_t tarn_sys_sqr_fixed(int64_t value) {
    return SQR(FixedValue(value)).word;
}
double tarn_sys_sqr_real(double value) {
    return SQR(value);
}
double tarn_sys_pwr(double base, double exponent) {
    return PWR(base, exponent);
}
int32_t tarn_sys_random(int32_t most) {
    return RANDOM(most);
}
int32_t tarn_sys_minval(int32_t a, int32_t b) {
    return MINVAL(a, b);
}
int32_t tarn_sys_maxval(int32_t a, int32_t b) {
    return MAXVAL(a, b);
}
int32_t tarn_sys_iif_integer(int32_t condition, int32_t a, int32_t b) {
    return condition != 0 ? a : b;
}
int64_t tarn_sys_iif_fixed(int32_t condition, int64_t a, int64_t b) {
    return condition != 0 ? a : b;
}
double tarn_sys_iif_real(int32_t condition, double a, double b) {
    return condition != 0 ? a : b;
}
int32_t tarn_sys_iif_boolean(int32_t condition, int32_t a, int32_t b) {
    return condition != 0 ? a : b;
}
void tarn_sys_iif_string(int32_t condition, const tarn_string* a, const tarn_string* b, tarn_string* result) {
    tarn_string_assign(result, condition != 0 ? a : b);
}

}  // extern "C"
