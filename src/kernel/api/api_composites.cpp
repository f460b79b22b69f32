// SPDX-License-Identifier: Apache-2.0
//
// The kernel's arrays, sets, records, lists and tables under the names and types that compiled programs use.
#include "kernel/api/api_access.h"
#include "kernel/lists/lists.h"
#include "kernel/tables/tables.h"
#include "kernel/values/arrays.h"
#include "kernel/values/records.h"
#include "kernel/values/sets.h"

using namespace tarn::api;

namespace {

constexpr std::array<int32_t, 6> impossibleBounds = {1, 0, 1, 0, 1, 0};

}  // namespace

extern "C" {

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
void tarn_table_hold(tarn_table* t) {
    tarn::TableHold(in(t));
}
void tarn_table_release(tarn_table* t) {
    tarn::TableRelease(in(t));
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

}  // extern "C"
