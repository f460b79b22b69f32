// SPDX-License-Identifier: Apache-2.0
//
// The kernel's numbers, dates, strings and values of any kind under the names and types that compiled
// programs use. Each function passes its arguments on; the layouts of all values are checked here, once.
#include "kernel/api/api_access.h"
#include "kernel/text/dates.h"
#include "kernel/text/fixed.h"
#include "kernel/text/numbers.h"
#include "kernel/text/padding.h"
#include "kernel/values/adt.h"
#include "kernel/values/convert.h"

using namespace tarn::api;

namespace {

template <class Api>
constexpr bool sameHead = sizeof(Api) == sizeof(typename Twin<Api>::Type) &&
                          alignof(Api) == alignof(typename Twin<Api>::Type) &&
                          offsetof(Api, size) == offsetof(typename Twin<Api>::Type, size) &&
                          offsetof(Api, tag) == offsetof(typename Twin<Api>::Type, tag) &&
                          offsetof(Api, data) == offsetof(typename Twin<Api>::Type, data);
static_assert(sameHead<tarn_string> && sameHead<tarn_record> && sameHead<tarn_set> && sameHead<tarn_array> &&
              sameHead<tarn_list> && sameHead<tarn_table>);

#define TARN_SAME_PLACE(api, kernel, member)                                                                 \
    static_assert(offsetof(api, member) == offsetof(tarn::kernel, member) &&                                 \
                  sizeof(api::member) == sizeof(tarn::kernel::member))
TARN_SAME_PLACE(tarn_string, StringDescriptor, maxlength);
TARN_SAME_PLACE(tarn_string, StringDescriptor, length);
TARN_SAME_PLACE(tarn_string, StringDescriptor, reserved);
TARN_SAME_PLACE(tarn_record, RecordDescriptor, kinds);
TARN_SAME_PLACE(tarn_set, SetDescriptor, maxlength);
TARN_SAME_PLACE(tarn_set, SetDescriptor, lower);
TARN_SAME_PLACE(tarn_set, SetDescriptor, upper);
TARN_SAME_PLACE(tarn_set, SetDescriptor, unused);
TARN_SAME_PLACE(tarn_set, SetDescriptor, reserved);
TARN_SAME_PLACE(tarn_array, ArrayDescriptor, maxlength);
TARN_SAME_PLACE(tarn_array, ArrayDescriptor, bounds);
TARN_SAME_PLACE(tarn_array, ArrayDescriptor, prototype);
TARN_SAME_PLACE(tarn_list, ListDescriptor, maxlength);
TARN_SAME_PLACE(tarn_list, ListDescriptor, count);
TARN_SAME_PLACE(tarn_list, ListDescriptor, prototype);
TARN_SAME_PLACE(tarn_table, TableDescriptor, maxlength);
TARN_SAME_PLACE(tarn_table, TableDescriptor, count);
TARN_SAME_PLACE(tarn_table, TableDescriptor, reserved);
#undef TARN_SAME_PLACE
static_assert(TARN_UNBOUNDED == tarn::UNBOUNDED && TARN_DYNAMIC_BOUNDS == tarn::DYNAMIC_BOUNDS &&
              TARN_NO_DIMENSION == tarn::NO_DIMENSION);
static_assert(int{TARN_BOOLEAN} == int{tarn::KindBoolean} && int{TARN_ENUM} == int{tarn::KindEnum} &&
              int{TARN_INTEGER} == int{tarn::KindInteger} && int{TARN_FIXED} == int{tarn::KindFixed} &&
              int{TARN_REAL} == int{tarn::KindReal} && int{TARN_STRING} == int{tarn::KindString} &&
              int{TARN_RECORD} == int{tarn::KindRecord} && int{TARN_UNION} == int{tarn::KindUnion} &&
              int{TARN_SET} == int{tarn::KindSet} && int{TARN_ARRAY} == int{tarn::KindArray} &&
              int{TARN_LIST} == int{tarn::KindList} && int{TARN_TABLE} == int{tarn::KindTable});
static_assert(TARN_TAG_RECORD == tarn::TagRecord && TARN_TAG_UNION == tarn::TagUnion);

// Reads `text` by one of the kernel's readers into the caller's place, which may stand at any address.
template <class Stored, class Number>
int32_t readInto(const tarn_string* s, void* place, void read(std::string_view, Number&, bool&)) {
    if (!isString(s) || !given(place)) return 0;
    Number value{};
    bool ok = false;
    read(text(s).view(), value, ok);
    if (ok) tarn::WriteAt(place, Stored{value});
    return ok ? 1 : 0;
}

void readBoolean(std::string_view text, bool& value, bool& ok) {
    tarn::BooleanFromText(tarn::Unpadded(text), value, ok);
}

}  // namespace

extern "C" {

// ---- strings ----

void tarn_string_init(tarn_string* s, int32_t maxlength) {
    tarn::StringInit(in(s), maxlength);
}
void tarn_string_free(tarn_string* s) {
    tarn::StringFree(in(s));
}
void tarn_string_assign(tarn_string* dest, const tarn_string* src) {
    tarn::StringAssign(in(dest), in(src));
}
void tarn_string_assign_bytes(tarn_string* dest, const char* bytes, int32_t count) {
    const bool empty = bytes == nullptr || count < 1;
    give(empty ? std::string_view() : std::string_view(bytes, static_cast<std::size_t>(count)), dest);
}
void tarn_string_concat(const tarn_string* a, const tarn_string* b, tarn_string* dest) {
    tarn::StringConcat(in(a), in(b), in(dest));
}
int32_t tarn_string_compare(const tarn_string* a, const tarn_string* b) {
    int32_t result = 0;
    tarn::StringCompare(in(a), in(b), false, result);
    return result;
}
int32_t tarn_string_length(const tarn_string* s) {
    return tarn::StringLength(in(s));
}
int32_t tarn_string_get(const tarn_string* s, int32_t position) {
    return tarn::StringGetChar(in(s), position);
}
void tarn_string_put(tarn_string* s, int32_t position, int32_t character) {
    tarn::StringPutChar(in(s), position, character);
}

// ---- values of any kind ----

void tarn_adt_init(void* target, const void* like, int32_t kind) {
    tarn::AdtInit(target, like, kindOf(kind));
}
void tarn_adt_copy(const void* source, void* target, int32_t kind) {
    tarn::AdtCopy(source, target, kindOf(kind));
}
void tarn_adt_free(void* value, int32_t kind) {
    tarn::AdtFree(value, kindOf(kind));
}
void tarn_adt_clear(void* value, int32_t kind) {
    tarn::AdtClear(value, kindOf(kind));
}
int32_t tarn_adt_compare(const char* op, const void* a, const void* b, int32_t kind) {
    return tarn::AdtCompare(text(op), a, b, kindOf(kind)) ? 1 : 0;
}
int32_t tarn_adt_convert(const void* source, int32_t source_kind, void* target, int32_t target_kind) {
    bool ok = false;
    tarn::AdtConvert(source, kindOf(source_kind), target, kindOf(target_kind), ok);
    return ok ? 1 : 0;
}

// ---- numbers ----

int32_t tarn_integer_div(int32_t a, int32_t b) {
    return tarn::IntegerDiv(a, b);
}
int32_t tarn_integer_mod(int32_t a, int32_t b) {
    return tarn::IntegerMod(a, b);
}
int64_t tarn_fixed_from_real(double x) {
    tarn::Fixed f = 0;
    tarn::FixedFromReal(x, f);
    return f;
}
double tarn_fixed_to_real(int64_t f) {
    return tarn::FixedToReal(f);
}
int64_t tarn_fixed_from_integer(int32_t i) {
    return i * tarn::FixedOne;
}
int32_t tarn_fixed_to_integer(int64_t f) {
    return tarn::FixedToInteger(f);
}
int64_t tarn_fixed_mul(int64_t a, int64_t b) {
    tarn::Fixed r = 0;
    tarn::FixedMul(a, b, r);
    return r;
}
int64_t tarn_fixed_div(int64_t a, int64_t b) {
    tarn::Fixed r = 0;
    tarn::FixedDiv(a, b, r);
    return r;
}
double tarn_real_div(double a, double b) {
    return tarn::RealDiv(a, b);
}
void tarn_integer_to_text(int32_t value, int32_t width, int32_t base, tarn_string* s) {
    give(tarn::IntegerToText(value, width, base), s);
}
void tarn_boolean_to_text(int32_t value, int64_t format, tarn_string* s) {
    give(tarn::BooleanToText(value != 0, format), s);
}
void tarn_fixed_to_text(int64_t f, int64_t format, tarn_string* s) {
    give(tarn::FixedToText(f, format), s);
}
void tarn_real_to_text(double x, int64_t format, tarn_string* s) {
    give(tarn::RealToFormat(x, format), s);
}
int32_t tarn_integer_from_text(const tarn_string* s, int32_t* value) {
    return readInto<int32_t>(s, value, tarn::IntegerFromWholeText);
}
int32_t tarn_boolean_from_text(const tarn_string* s, int32_t* value) {
    return readInto<int32_t>(s, value, readBoolean);
}
int32_t tarn_fixed_from_text(const tarn_string* s, int64_t* f) {
    return readInto<int64_t>(s, f, tarn::FixedFromText);
}
int32_t tarn_real_from_text(const tarn_string* s, double* x) {
    return readInto<double>(s, x, tarn::RealFromText);
}
uint32_t tarn_crc32(const void* buffer, int32_t size, uint32_t before) {
    return buffer != nullptr && size > 0 ? tarn::Crc32(buffer, static_cast<std::size_t>(size), before)
                                         : before;
}

// ---- dates ----

void tarn_date_make(int32_t year, int32_t month, int32_t day, int32_t hour, int32_t minute, int32_t second,
                    int32_t fraction, tarn_string* s) {
    char made[tarn::DateSize];
    tarn::DateMake(year, month, day, hour, minute, second, fraction, made, tarn::DateSize);
    give(made, s);
}
void tarn_date_split(const tarn_string* s, int32_t parts[7]) {
    if (!isString(s) || !given(parts)) return;
    std::array<int32_t, 7> p{};
    tarn::DateSplit(text(s).view(), p[0], p[1], p[2], p[3], p[4], p[5], p[6]);
    tarn::WriteAt(parts, p);
}
int64_t tarn_date_to_seconds(const tarn_string* s) {
    tarn::Fixed seconds = 0;
    tarn::DateToSeconds(text(s).view(), seconds);
    return seconds;
}
void tarn_date_from_seconds(int64_t seconds, tarn_string* s) {
    char made[tarn::DateSize];
    tarn::DateFromSeconds(seconds, made, tarn::DateSize);
    give(made, s);
}
int32_t tarn_date_valid(int32_t year, int32_t month, int32_t day, int32_t hour, int32_t minute,
                        int32_t second, int32_t fraction) {
    return tarn::DateValid(year, month, day, hour, minute, second, fraction) ? 1 : 0;
}
int32_t tarn_days_in_month(int32_t year, int32_t month) {
    return tarn::DaysInMonth(year, month);
}
void tarn_date_add(const tarn_string* unit, int32_t n, const tarn_string* s, tarn_string* result) {
    const tarn::NarrowText name = text(unit), date = text(s);
    char made[tarn::DateSize];
    tarn::DateAdd(name.view(), n, date.view(), made, tarn::DateSize);
    give(made, result);
}
int32_t tarn_date_part(const tarn_string* unit, const tarn_string* s) {
    return tarn::DatePart(text(unit).view(), text(s).view());
}
int32_t tarn_date_parse(const tarn_string* s, tarn_string* result) {
    std::string made;
    bool ok = false;
    tarn::DateParse(text(s).view(), made, ok);
    give(made, result);
    return ok ? 1 : 0;
}
void tarn_date_now(tarn_string* s) {
    char made[tarn::DateSize];
    tarn::DateNow(made, tarn::DateSize);
    give(made, s);
}
void tarn_file_time_text(const tarn_string* path, tarn_string* s) {
    std::string made;
    tarn::FileTimeText(text(path).view(), made);
    give(made, s);
}

}  // extern "C"
