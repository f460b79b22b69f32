// SPDX-License-Identifier: Apache-2.0
//
// What the text of the language becomes beside the operations of the kernel: elements that are not there, texts
// that grow in place, and the operations with their arguments in the order of the language.
#include "kernel/api/api_access.h"
#include "kernel/lists/lists.h"
#include "kernel/tables/filevalues.h"
#include "kernel/tables/tables.h"
#include "kernel/values/adt.h"
#include "kernel/values/arrays.h"
#include "kernel/values/sets.h"

#include <algorithm>
#include <array>
#include <cstring>

using namespace tarn::api;

namespace {

// ---- scratch values ----

struct Scratch {
    alignas(8) char bytes[sizeof(tarn::ArrayDescriptor)];
    tarn::Kind kind;
};
std::array<Scratch, 64> scratches;
std::size_t nextScratch = 0;

void release(Scratch& place) {
    if (tarn::IsAdtKind(place.kind)) tarn::AdtFree(place.bytes, place.kind);
    place = {};
}

const void* prototypeOf(tarn::Offset offset) {
    return tarn::At(offset);
}

tarn::Kind elementKind(std::int32_t tag) {
    return static_cast<tarn::Kind>(tag > tarn::TagInFile ? tag - tarn::TagInFile : tag);
}

// ---- rows ----

bool isRecordKind(int32_t kind) {
    if (kind == tarn::KindRecord) return true;
    tarn::SetError(tarn::ERR_COMPONENT_TYPE);
    return false;
}

tarn_record* row(void* value) {
    return static_cast<tarn_record*>(value);
}
const tarn_record* row(const void* value) {
    return static_cast<const tarn_record*>(value);
}

}  // namespace

extern "C" {

void* tarn_scratch(int32_t kind, const void* like) {
    Scratch& place = scratches[nextScratch++ % scratches.size()];
    release(place);
    place.kind = kindOf(kind);
    if (tarn::IsAdtKind(kind) && like != nullptr) tarn::AdtInit(place.bytes, like, place.kind);
    return place.bytes;
}

void tarn_scratch_release(void) {
    for (Scratch& place : scratches) release(place);
}

void tarn_sys_record_assign(tarn_record* dest, const tarn_record* src) {
    if (dest == src) return;
    tarn::AdtFree(dest, tarn::KindRecord);
    tarn::AdtCopy(src, dest, tarn::KindRecord);
}
void tarn_sys_record_add_boolean(tarn_record* r, int32_t value) {
    const uint8_t byte = value != 0 ? 1 : 0;
    tarn_record_append(r, &byte, TARN_BOOLEAN);
}
void tarn_sys_record_add_enum(tarn_record* r, int32_t value) {
    const auto byte = static_cast<uint8_t>(value);
    tarn_record_append(r, &byte, TARN_ENUM);
}
void tarn_sys_record_add_integer(tarn_record* r, int32_t value) {
    tarn_record_append(r, &value, TARN_INTEGER);
}
void tarn_sys_record_add_fixed(tarn_record* r, int64_t value) {
    tarn_record_append(r, &value, TARN_FIXED);
}
void tarn_sys_record_add_real(tarn_record* r, double value) {
    tarn_record_append(r, &value, TARN_REAL);
}

void* tarn_array_element(tarn_array* a, int32_t dimensions, int32_t i, int32_t j, int32_t k) {
    void* element = dimensions == 1   ? tarn::ArrayRef(in(a), i)
                    : dimensions == 2 ? tarn::ArrayRef2(in(a), i, j)
                                      : tarn::ArrayRef3(in(a), i, j, k);
    return element != nullptr ? element : tarn_scratch(elementKind(a->tag), prototypeOf(a->prototype));
}

// A list with a capacity has its prototype in its first slot.
void* tarn_list_element(tarn_list* l, int32_t position) {
    void* element = tarn::ListRef(in(l), position);
    if (element != nullptr) return element;
    const void* like =
        l->prototype != 0 || l->tag > tarn::TagInFile ? prototypeOf(l->prototype) : prototypeOf(l->data);
    return tarn_scratch(elementKind(l->tag), like);
}

int32_t tarn_enum_check(int32_t ordinal, int32_t count) {
    if (ordinal >= 0 && ordinal < count) return ordinal;
    tarn::SetError(tarn::ERR_ENUM_LIMITS);
    return 0;
}

void tarn_string_append(tarn_string* dest, const tarn_string* part) {
    tarn::StringConcat(in(dest), in(part), in(dest));
}

int32_t tarn_text_next_line(const tarn_string* s, int32_t* position, tarn_string* line) {
    const std::string_view all = tarn::StringView(in(s));
    const auto begin = static_cast<std::size_t>(*position - 1);
    if (begin >= all.size()) return 0;
    std::size_t end = all.find('\n', begin);
    if (end == std::string_view::npos) end = all.size();
    *position = static_cast<int32_t>(end) + 2;
    if (end > begin && all[end - 1] == '\r') --end;
    give(all.substr(begin, end - begin), line);
    return 1;
}

int32_t tarn_text_previous_line(const tarn_string* s, int32_t* position, tarn_string* line) {
    const std::string_view all = tarn::StringView(in(s));
    if (*position < 2) return 0;
    std::size_t end = std::min(static_cast<std::size_t>(*position - 1), all.size());
    if (end > 0 && all[end - 1] == '\n') --end;
    const std::size_t before = end == 0 ? std::string_view::npos : all.rfind('\n', end - 1);
    const std::size_t begin = before == std::string_view::npos ? 0 : before + 1;
    *position = static_cast<int32_t>(begin) + 1;
    if (end > begin && all[end - 1] == '\r') --end;
    give(all.substr(begin, end - begin), line);
    return 1;
}

// ---- arrays and sets ----

int32_t tarn_sys_array_length(const tarn_array* a) {
    return tarn::ArrayElementCount(in(a));
}
int32_t tarn_sys_lbound(const tarn_array* a) {
    return tarn::ArrayLowerBound(in(a), 1);
}
int32_t tarn_sys_ubound(const tarn_array* a) {
    return tarn::ArrayUpperBound(in(a), 1);
}
void tarn_sys_redim(tarn_array* a, int32_t lower, int32_t upper) {
    tarn::ArrayRedim(in(a), lower, upper, false);
}
void tarn_sys_redim_preserve(tarn_array* a, int32_t lower, int32_t upper, int32_t preserve) {
    tarn::ArrayRedim(in(a), lower, upper, preserve != 0);
}
void tarn_sys_redim2(tarn_array* a, int32_t lower, int32_t upper, int32_t lower2, int32_t upper2) {
    tarn::ArrayRedim(in(a), lower, upper, lower2, upper2, tarn::NO_DIMENSION, tarn::NO_DIMENSION, false);
}
void tarn_sys_set_include(tarn_set* s, int32_t member) {
    tarn::SetInclude(member, in(s));
}
void tarn_sys_set_exclude(tarn_set* s, int32_t member) {
    tarn::SetExclude(member, in(s));
}
int32_t tarn_sys_set_count(const tarn_set* s) {
    return tarn::SetCount(in(s));
}

// ---- lists ----

void tarn_sys_list_add(tarn_list* l, const void* value, int32_t kind) {
    tarn::ListAppend(value, kindOf(kind), in(l));
}
void tarn_sys_list_insert(tarn_list* l, int32_t position, const tarn_string* s) {
    tarn::ListInsert(position, in(s), in(l));
}
void tarn_sys_list_delete(tarn_list* l, int32_t position) {
    tarn::ListDelete(position, 1, in(l));
}
void tarn_sys_list_delete_some(tarn_list* l, int32_t position, int32_t count) {
    tarn::ListDelete(position, count, in(l));
}
void tarn_sys_list_sort(tarn_list* l) {
    tarn::ListSort(in(l), true, false);
}
void tarn_sys_list_sort_by(tarn_list* l, int32_t ascending, int32_t ignore_case) {
    tarn::ListSort(in(l), ascending != 0, ignore_case != 0);
}
int32_t tarn_sys_list_find(const tarn_list* l, const tarn_string* s) {
    return tarn::ListStringFind(in(l), in(s), false);
}

// ---- tables ----

void tarn_sys_tab_add(tarn_table* t, const void* value, int32_t kind) {
    if (!isRecordKind(kind)) return;
    tarn::TableAdd(in(t), tarn::TableIndexCount(in(t)) > 0 ? 1 : 0, in(row(value)));
}
void tarn_sys_tab_read_by(const tarn_table* t, const tarn_record* key, void* value, int32_t kind,
                          int32_t index) {
    if (isRecordKind(kind)) tarn::TableRead(in(t), index, in(key), in(row(value)));
}
void tarn_sys_tab_read(const tarn_table* t, const tarn_record* key, void* value, int32_t kind) {
    tarn_sys_tab_read_by(t, key, value, kind, tarn::TableIndexFor(in(t), in(key)));
}
int32_t tarn_sys_tab_find_by(const tarn_string* op, const tarn_table* t, const tarn_record* key, void* value,
                             int32_t kind, int32_t index) {
    bool found = false;
    if (isRecordKind(kind)) tarn::TableFind(text(op).view(), in(t), index, in(key), in(row(value)), found);
    return found ? 1 : 0;
}
int32_t tarn_sys_tab_find(const tarn_string* op, const tarn_table* t, const tarn_record* key, void* value,
                          int32_t kind) {
    return tarn_sys_tab_find_by(op, t, key, value, kind, tarn::TableIndexFor(in(t), in(key)));
}
void tarn_sys_tab_update_by(tarn_table* t, const tarn_record* key, const void* value, int32_t kind,
                            int32_t index) {
    if (isRecordKind(kind)) tarn::TableUpdate(in(row(value)), index, in(key), in(t));
}
void tarn_sys_tab_update(tarn_table* t, const tarn_record* key, const void* value, int32_t kind) {
    tarn_sys_tab_update_by(t, key, value, kind, tarn::TableIndexFor(in(t), in(key)));
}
void tarn_sys_tab_delete_by(tarn_table* t, const tarn_record* key, int32_t index) {
    tarn::TableDelete(in(t), index, in(key));
}
void tarn_sys_tab_delete(tarn_table* t, const tarn_record* key) {
    tarn_sys_tab_delete_by(t, key, tarn::TableIndexFor(in(t), in(key)));
}
void tarn_sys_tab_row(const tarn_table* t, int32_t number, void* value, int32_t kind) {
    if (isRecordKind(kind)) tarn::TableRow(in(t), number, in(row(value)));
}

// ---- files ----

void tarn_sys_open_list(tarn_list* l, const tarn_string* path) {
    tarn_file_open(l, TARN_LIST, path);
}
void tarn_sys_open_table(tarn_table* t, const tarn_string* path) {
    tarn_file_open(t, TARN_TABLE, path);
}
void tarn_sys_close_list(tarn_list* l) {
    tarn_file_close(l, TARN_LIST);
}
void tarn_sys_close_table(tarn_table* t) {
    tarn_file_close(t, TARN_TABLE);
}

}  // extern "C"
