// SPDX-License-Identifier: Apache-2.0
//
// The kernel's values under the names and types that compiled programs use. Each function passes its
// arguments on; the layouts are checked here, once.
#include "kernel/adt.h"
#include "kernel/api.h"
#include "kernel/arrays.h"
#include "kernel/convert.h"
#include "kernel/dates.h"
#include "kernel/errors.h"
#include "kernel/fixed.h"
#include "kernel/lists.h"
#include "kernel/numbers.h"
#include "kernel/padding.h"
#include "kernel/records.h"
#include "kernel/runtime.h"
#include "kernel/sets.h"
#include "kernel/string_text.h"
#include "kernel/strings.h"
#include "kernel/tables.h"

#include <array>
#include <cstddef>
#include <cstring>

namespace {

// The kernel's type of each of the interface's.
template <class Api>
struct Twin;
template <>
struct Twin<tarn_string> {
    using Type = tarn::StringDescriptor;
};
template <>
struct Twin<tarn_record> {
    using Type = tarn::RecordDescriptor;
};
template <>
struct Twin<tarn_set> {
    using Type = tarn::SetDescriptor;
};
template <>
struct Twin<tarn_array> {
    using Type = tarn::ArrayDescriptor;
};
template <>
struct Twin<tarn_list> {
    using Type = tarn::ListDescriptor;
};
template <>
struct Twin<tarn_table> {
    using Type = tarn::TableDescriptor;
};

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

template <class Api>
typename Twin<Api>::Type* in(Api* value) {
    return reinterpret_cast<typename Twin<Api>::Type*>(value);
}
template <class Api>
const typename Twin<Api>::Type* in(const Api* value) {
    return reinterpret_cast<const typename Twin<Api>::Type*>(value);
}

tarn::Kind kindOf(int32_t kind) {
    return static_cast<tarn::Kind>(kind);
}
std::string_view text(const char* chars) {
    return chars != nullptr ? chars : "";
}
void give(std::string_view bytes, tarn_string* dest) {
    tarn::StringAssignView(in(dest), bytes);
}

// Whether the caller's string is one; 756 when it is not.
bool isString(const tarn_string* s) {
    const bool is = tarn::KindOf(s) == tarn::KindString;
    if (!is) tarn::SetError(tarn::ERR_STRING_TYPE);
    return is;
}
// Its text, "" with 756 when it is none.
tarn::NarrowText text(const tarn_string* s) {
    isString(s);
    return tarn::NarrowText(in(s));
}
// Whether the caller's place for a result is there; 610 when it is not.
bool given(const void* place) {
    if (place == nullptr) tarn::SetError(tarn::ERR_COMPONENT_INVALID);
    return place != nullptr;
}

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

// A caller's array of words; null reads as `instead`.
template <std::size_t count>
std::array<int32_t, count> wordsAt(const int32_t* words, std::array<int32_t, count> instead) {
    if (words != nullptr) std::memcpy(instead.data(), words, sizeof instead);
    return instead;
}
constexpr std::array<int32_t, 6> impossibleBounds = {1, 0, 1, 0, 1, 0};

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

// ---- arrays ----

void tarn_array_init(tarn_array* a, int32_t kind, const int32_t bounds[6], const void* prototype) {
    const auto b = wordsAt(bounds, impossibleBounds);
    tarn::ArrayInit(in(a), kindOf(kind), b[0], b[1], b[2], b[3], b[4], b[5], prototype);
}
void tarn_array_init_dynamic(tarn_array* a, int32_t kind, const void* prototype) {
    tarn::ArrayInitDynamic(in(a), kindOf(kind), prototype);
}
void tarn_array_redim(tarn_array* a, const int32_t bounds[6], int32_t preserve) {
    if (bounds == nullptr) return tarn::SetError(tarn::ERR_ARRAY_TYPE);
    const auto b = wordsAt(bounds, impossibleBounds);
    tarn::ArrayRedim(in(a), b[0], b[1], b[2], b[3], b[4], b[5], preserve != 0);
}
void* tarn_array_ref(tarn_array* a, int32_t i) {
    return tarn::ArrayRef(in(a), i);
}
void* tarn_array_ref2(tarn_array* a, int32_t i, int32_t j) {
    return tarn::ArrayRef2(in(a), i, j);
}
void* tarn_array_ref3(tarn_array* a, int32_t i, int32_t j, int32_t k) {
    return tarn::ArrayRef3(in(a), i, j, k);
}
void tarn_array_get(const tarn_array* a, int32_t i, void* value, int32_t kind) {
    tarn::ArrayGet(in(a), i, value, kindOf(kind));
}
void tarn_array_get2(const tarn_array* a, int32_t i, int32_t j, void* value, int32_t kind) {
    tarn::ArrayGet2(in(a), i, j, value, kindOf(kind));
}
void tarn_array_get3(const tarn_array* a, int32_t i, int32_t j, int32_t k, void* value, int32_t kind) {
    tarn::ArrayGet3(in(a), i, j, k, value, kindOf(kind));
}
void tarn_array_put(tarn_array* a, int32_t i, const void* value, int32_t kind) {
    tarn::ArrayPut(in(a), i, value, kindOf(kind));
}
void tarn_array_put2(tarn_array* a, int32_t i, int32_t j, const void* value, int32_t kind) {
    tarn::ArrayPut2(in(a), i, j, value, kindOf(kind));
}
void tarn_array_put3(tarn_array* a, int32_t i, int32_t j, int32_t k, const void* value, int32_t kind) {
    tarn::ArrayPut3(in(a), i, j, k, value, kindOf(kind));
}
int32_t tarn_array_lower(const tarn_array* a, int32_t dimension) {
    return tarn::ArrayLowerBound(in(a), dimension);
}
int32_t tarn_array_upper(const tarn_array* a, int32_t dimension) {
    return tarn::ArrayUpperBound(in(a), dimension);
}
int32_t tarn_array_dimensions(const tarn_array* a) {
    return tarn::ArrayDimensions(in(a));
}
void tarn_array_assign(tarn_array* dest, const tarn_array* src) {
    tarn::ArrayAssign(in(dest), in(src));
}
void tarn_array_auto_assign(tarn_array* a, int32_t append, int32_t i, const void* value, int32_t kind) {
    tarn::ArrayAutoAssign(in(a), append != 0, i, value, kindOf(kind));
}

// ---- sets ----

void tarn_set_init(tarn_set* s, int32_t lower, int32_t upper) {
    tarn::SetInit(in(s), lower, upper);
}
void tarn_set_free(tarn_set* s) {
    tarn::SetFree(in(s));
}
void tarn_set_clear(tarn_set* s) {
    tarn::SetClear(in(s));
}
void tarn_set_redim(tarn_set* s, int32_t lower, int32_t upper, int32_t preserve) {
    tarn::SetRedim(in(s), lower, upper, preserve != 0);
}
void tarn_set_include(int32_t i, tarn_set* s) {
    tarn::SetInclude(i, in(s));
}
void tarn_set_include_range(int32_t lo, int32_t hi, tarn_set* s) {
    tarn::SetIncludeRange(lo, hi, in(s));
}
void tarn_set_exclude(int32_t i, tarn_set* s) {
    tarn::SetExclude(i, in(s));
}
void tarn_set_exclude_range(int32_t lo, int32_t hi, tarn_set* s) {
    tarn::SetExcludeRange(lo, hi, in(s));
}
int32_t tarn_set_contains(int32_t i, const tarn_set* s) {
    return tarn::SetContains(i, in(s)) ? 1 : 0;
}
int32_t tarn_set_lower(const tarn_set* s) {
    return tarn::SetLowerBound(in(s));
}
int32_t tarn_set_upper(const tarn_set* s) {
    return tarn::SetUpperBound(in(s));
}
void tarn_set_union(const tarn_set* a, const tarn_set* b, tarn_set* dest) {
    tarn::SetUnion(in(a), in(b), in(dest));
}
void tarn_set_intersect(const tarn_set* a, const tarn_set* b, tarn_set* dest) {
    tarn::SetIntersect(in(a), in(b), in(dest));
}
void tarn_set_difference(const tarn_set* a, const tarn_set* b, tarn_set* dest) {
    tarn::SetDifference(in(a), in(b), in(dest));
}
void tarn_set_assign(tarn_set* dest, const tarn_set* src) {
    int32_t error = 0;
    tarn::SetAssign(in(dest), in(src), error);
}
int32_t tarn_set_compare(const char* op, const tarn_set* a, const tarn_set* b) {
    return tarn::SetCompare(text(op), in(a), in(b)) ? 1 : 0;
}
void tarn_set_to_text(const tarn_set* s, int32_t dots, tarn_string* dest) {
    tarn::SetToText(in(s), dots != 0, in(dest));
}
int32_t tarn_set_from_text(const tarn_string* s, int32_t* position, tarn_set* dest) {
    if (!isString(s)) return tarn::ERR_STRING_TYPE;
    if (!given(position)) return tarn::ERR_COMPONENT_INVALID;
    int32_t at = tarn::ReadAt<int32_t>(position), error = 0;
    tarn::SetFromText(text(s).view(), at, in(dest), error);
    tarn::WriteAt(position, at);
    return error;
}

// ---- records and unions ----

void tarn_record_init(tarn_record* r, int32_t tag, const uint8_t kinds[24]) {
    tarn::FieldKinds made{};
    std::memset(&made, 0xFF, sizeof made);  // no kinds
    if (kinds != nullptr) std::memcpy(&made, kinds, sizeof made);
    tarn::RecordInit(in(r), tag, made);
}
void tarn_record_copy(const tarn_record* source, tarn_record* target) {
    tarn::RecordCopy(in(source), in(target));
}
void tarn_record_free(tarn_record* r) {
    tarn::RecordFree(in(r));
}
int32_t tarn_record_field_count(const tarn_record* r) {
    return tarn::RecordFieldCount(in(r));
}
int32_t tarn_record_field_kind(const tarn_record* r, int32_t n) {
    return tarn::RecordFieldKind(in(r), n);
}
void* tarn_record_field(tarn_record* r, int32_t n) {
    return tarn::RecordFieldAddress(in(r), n);
}
void tarn_record_put(tarn_record* r, int32_t n, const void* value, int32_t kind) {
    tarn::RecordPut(in(r), n, value, kindOf(kind));
}
void tarn_record_get(const tarn_record* r, int32_t n, void* value, int32_t kind) {
    tarn::RecordGet(in(r), n, value, kindOf(kind));
}
void tarn_record_append(tarn_record* r, const void* value, int32_t kind) {
    tarn::RecordAppend(in(r), value, kindOf(kind));
}
void tarn_record_get_as_text(const tarn_record* r, int32_t n, tarn_string* s) {
    tarn::RecordGetAsText(in(r), n, in(s));
}
void tarn_record_put_from_text(int32_t n, const tarn_string* s, tarn_record* r) {
    tarn::RecordPutFromText(n, in(s), in(r));
}

// ---- lists ----

void tarn_list_init(tarn_list* l, int32_t maxlength, const void* prototype, int32_t kind, int32_t in_file) {
    tarn::ListInit(in(l), maxlength, prototype, kindOf(kind), in_file != 0);
}
int32_t tarn_list_count(const tarn_list* l) {
    return tarn::ListCount(in(l));
}
void* tarn_list_ref(tarn_list* l, int32_t position) {
    return tarn::ListRef(in(l), position);
}
void tarn_list_get(const tarn_list* l, int32_t position, void* value, int32_t kind) {
    tarn::ListGet(in(l), position, value, kindOf(kind));
}
void tarn_list_put(const void* value, int32_t kind, int32_t position, tarn_list* l) {
    tarn::ListPut(value, kindOf(kind), position, in(l));
}
void tarn_list_append(const void* value, int32_t kind, tarn_list* l) {
    tarn::ListAppend(value, kindOf(kind), in(l));
}
void tarn_list_insert(int32_t position, const tarn_string* value, tarn_list* l) {
    tarn::ListInsert(position, in(value), in(l));
}
void tarn_list_delete(int32_t position, int32_t n, tarn_list* l) {
    tarn::ListDelete(position, n, in(l));
}
void tarn_list_remove_last(tarn_list* l) {
    tarn::ListRemoveLast(in(l));
}
void tarn_list_clear(tarn_list* l) {
    tarn::ListClear(in(l));
}
void tarn_list_resize(int32_t n, const void* fill, tarn_list* l) {
    tarn::ListResize(n, fill, in(l));
}
void tarn_list_sort(tarn_list* l, int32_t ascending, int32_t ignore_case) {
    tarn::ListSort(in(l), ascending != 0, ignore_case != 0);
}
int32_t tarn_list_string_find(const tarn_list* l, const tarn_string* s, int32_t ignore_case) {
    return tarn::ListStringFind(in(l), in(s), ignore_case != 0);
}

// ---- tables ----

void tarn_table_init(tarn_table* t, int32_t maxlength, const tarn_record* row, const int32_t key_maps[5],
                     const char* type_info, int32_t in_file) {
    constexpr tarn::KeyMaps impossibleMaps = {-1, -1, -1, -1, -1};
    const tarn::KeyMaps maps = wordsAt(key_maps, impossibleMaps);
    tarn::TableInit(in(t), maxlength, in(row), maps, text(type_info), in_file != 0);
}
void tarn_table_add(tarn_table* t, int32_t index, const tarn_record* row) {
    tarn::TableAdd(in(t), index, in(row));
}
void tarn_table_read(const tarn_table* t, int32_t index, const tarn_record* key, tarn_record* row) {
    tarn::TableRead(in(t), index, in(key), in(row));
}
int32_t tarn_table_find(const char* op, const tarn_table* t, int32_t index, const tarn_record* key,
                        tarn_record* row) {
    bool found = false;
    tarn::TableFind(text(op), in(t), index, in(key), in(row), found);
    return found ? 1 : 0;
}
void tarn_table_update(const tarn_record* row, int32_t index, const tarn_record* key, tarn_table* t) {
    tarn::TableUpdate(in(row), index, in(key), in(t));
}
void tarn_table_delete(tarn_table* t, int32_t index, const tarn_record* key) {
    tarn::TableDelete(in(t), index, in(key));
}
void tarn_table_clear(tarn_table* t) {
    tarn::TableClear(in(t));
}
void tarn_table_rebuild(tarn_table* t) {
    tarn::TableRebuild(in(t));
}
int32_t tarn_table_count(const tarn_table* t) {
    return tarn::TableCount(in(t));
}
int32_t tarn_table_index_count(const tarn_table* t) {
    return tarn::TableIndexCount(in(t));
}
int32_t tarn_table_index_for(const tarn_table* t, const tarn_record* key) {
    return tarn::TableIndexFor(in(t), in(key));
}
void tarn_table_key_from_row(const tarn_table* t, int32_t index, const tarn_record* row, tarn_record* key) {
    tarn::TableKeyFromRow(in(t), index, in(row), in(key));
}
void tarn_table_row(const tarn_table* t, int32_t number, tarn_record* row) {
    tarn::TableRow(in(t), number, in(row));
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
