/* SPDX-License-Identifier: Apache-2.0
 *
 * What stands at the head of each generated C file: the layouts of the run-time's values and those of its
 * functions that the generator itself calls. Heads of library functions follow it, those that are called. All
 * are declared as in kernel/api/api.h.
 */
#include <stdint.h>

#ifndef TARNWICK_API_H /* a test puts the two behind each other */
#define TARN_UNBOUNDED (-1000000)
#define TARN_NO_DIMENSION (-999999)
#define TARN_PACKED __attribute__((packed))

typedef struct TARN_PACKED tarn_string {
    int32_t size, tag;
    uint32_t data;
    int32_t maxlength, length, reserved;
} tarn_string;
typedef struct TARN_PACKED tarn_record {
    int32_t size, tag;
    uint32_t data;
    uint8_t kinds[24];
} tarn_record;
typedef struct TARN_PACKED tarn_set {
    int32_t size, tag;
    uint32_t data;
    int32_t maxlength, lower, upper, unused[4], reserved;
} tarn_set;
typedef struct TARN_PACKED tarn_array {
    int32_t size, tag;
    uint32_t data;
    int32_t maxlength, bounds[6];
    uint32_t prototype;
} tarn_array;
typedef struct TARN_PACKED tarn_list {
    int32_t size, tag;
    uint32_t data;
    int32_t maxlength, count;
    uint32_t prototype;
} tarn_list;
typedef struct TARN_PACKED tarn_table {
    int32_t size, tag;
    uint32_t data;
    int32_t maxlength, count, reserved;
} tarn_table;

#endif

/* Values in records and arrays stand at any address. */
typedef uint8_t quarn_u8;
typedef int32_t __attribute__((aligned(1), may_alias)) quarn_i32;
typedef int64_t __attribute__((aligned(1), may_alias)) quarn_i64;
typedef double __attribute__((aligned(1), may_alias)) quarn_f64;

extern char* tarn_heap_base;
extern int32_t tarn_error_cell, tarn_current_line;
extern void* tarn_debugger_window;
typedef void (*tarn_error_handler)(int32_t code);
void tarn_enter(const char* class_name, const char* function_name, int32_t line);
void tarn_leave(void);
void tarn_stamp_slow(int32_t line, int32_t action, tarn_error_handler handler);
void tarn_default_onerror(int32_t code);
int32_t tarn_report_begin(void);
void tarn_report_end(void);
void tarn_register_class(const char* source_path, const char* class_name);
void tarn_register_variable(const char* name, char role, int32_t kind, void* address);
void tarn_name_fields(const void* address, const char* names);
void tarn_register_result(int32_t kind, void* address);
void tarn_precondition(int32_t condition);
void tarn_postcondition(int32_t condition);
#ifndef TARNWICK_API_H
typedef struct tarn_program {
    const char *library_version, *main_source;
    int32_t debug_mode, memory_checking, single_instance;
    void (*initialise)(void);
    void (*main)(void);
    void (*finalise)(void);
    const char *product, *build;
} tarn_program;
#endif

int32_t tarn_integer_div(int32_t a, int32_t b);
int32_t tarn_integer_mod(int32_t a, int32_t b);
int64_t tarn_fixed_mul(int64_t a, int64_t b);
int64_t tarn_fixed_div(int64_t a, int64_t b);
double tarn_fixed_to_real(int64_t f);
double tarn_real_div(double a, double b);
int32_t tarn_enum_check(int32_t ordinal, int32_t count);

void tarn_string_init(tarn_string* s, int32_t maxlength);
void tarn_string_free(tarn_string* s);
void tarn_string_assign(tarn_string* dest, const tarn_string* src);
void tarn_string_assign_bytes(tarn_string* dest, const char* bytes, int32_t count);
void tarn_string_concat(const tarn_string* a, const tarn_string* b, tarn_string* dest);
void tarn_string_append(tarn_string* dest, const tarn_string* part);
int32_t tarn_string_compare(const tarn_string* a, const tarn_string* b);
void tarn_string_put(tarn_string* s, int32_t position, int32_t character);
int32_t tarn_text_next_line(const tarn_string* text, int32_t* position, tarn_string* line);
int32_t tarn_text_previous_line(const tarn_string* text, int32_t* position, tarn_string* line);

void tarn_adt_init(void* target, const void* like, int32_t kind);
void tarn_adt_copy(const void* source, void* target, int32_t kind);
void tarn_adt_free(void* value, int32_t kind);
void tarn_adt_clear(void* value, int32_t kind);
int32_t tarn_adt_compare(const char* op, const void* a, const void* b, int32_t kind);
void tarn_sys_record_assign(tarn_record* dest, const tarn_record* src);
void tarn_record_init(tarn_record* r, int32_t tag, const uint8_t kinds[24]);
void* tarn_scratch(int32_t kind, const void* like);
void tarn_array_init(tarn_array* a, int32_t kind, const int32_t bounds[6], const void* prototype);
void tarn_array_init_dynamic(tarn_array* a, int32_t kind, const void* prototype);
void* tarn_array_element(tarn_array* a, int32_t dimensions, int32_t i, int32_t j, int32_t k);
void tarn_array_assign(tarn_array* dest, const tarn_array* src);
void tarn_array_auto_assign(tarn_array* a, int32_t append, int32_t i, const void* value, int32_t kind);
void tarn_set_init(tarn_set* s, int32_t lower, int32_t upper);
void tarn_set_include(int32_t i, tarn_set* s);
void tarn_set_include_range(int32_t lo, int32_t hi, tarn_set* s);
int32_t tarn_set_contains(int32_t i, const tarn_set* s);
void tarn_set_union(const tarn_set* a, const tarn_set* b, tarn_set* dest);
void tarn_set_intersect(const tarn_set* a, const tarn_set* b, tarn_set* dest);
void tarn_set_difference(const tarn_set* a, const tarn_set* b, tarn_set* dest);
void tarn_set_assign(tarn_set* dest, const tarn_set* src);
int32_t tarn_set_compare(const char* op, const tarn_set* a, const tarn_set* b);
void tarn_list_init(tarn_list* l, int32_t maxlength, const void* prototype, int32_t kind, int32_t in_file);
void* tarn_list_element(tarn_list* l, int32_t position);
void tarn_list_get(const tarn_list* l, int32_t position, void* value, int32_t kind);
void tarn_list_put(const void* value, int32_t kind, int32_t position, tarn_list* l);
void tarn_list_append(const void* value, int32_t kind, tarn_list* l);
int32_t tarn_list_count(const tarn_list* l);
void tarn_table_init(tarn_table* t, int32_t maxlength, const tarn_record* row, const int32_t key_maps[5],
                     const char* type_info, int32_t in_file);
void tarn_table_add(tarn_table* t, int32_t index, const tarn_record* row);
int32_t tarn_table_find(const char* op, const tarn_table* t, int32_t index, const tarn_record* key,
                        tarn_record* row);
void tarn_table_key_from_row(const tarn_table* t, int32_t index, const tarn_record* row, tarn_record* key);
void tarn_table_row(const tarn_table* t, int32_t number, tarn_record* row);
int32_t tarn_table_count(const tarn_table* t);
void tarn_assert(int32_t condition, const tarn_string* text);
void tarn_object_bind(tarn_record* object, const char* window, const char* control);
void tarn_control_element(const tarn_record* array, int32_t index, tarn_record* element);
void tarn_window_register(const char* window,
                          int32_t (*function)(const tarn_record* me, int32_t event,
                                              const tarn_record* control, int32_t parameter));
void tarn_window_main(const char* window);

#ifndef TARNWICK_API_H
static inline void tarn_stamp(int32_t line, int32_t action, tarn_error_handler handler) {
    if (tarn_error_cell != 0 || tarn_debugger_window != 0)
        tarn_stamp_slow(line, action, handler);
    else if (line != 0)
        tarn_current_line = line;
}
static inline int32_t tarn_integer_add(int32_t a, int32_t b) {
    return (int32_t)((uint32_t)a + (uint32_t)b);
}
static inline int32_t tarn_integer_sub(int32_t a, int32_t b) {
    return (int32_t)((uint32_t)a - (uint32_t)b);
}
static inline int32_t tarn_integer_mul(int32_t a, int32_t b) {
    return (int32_t)((uint32_t)a * (uint32_t)b);
}
static inline int32_t tarn_integer_neg(int32_t a) {
    return (int32_t)(0u - (uint32_t)a);
}
static inline int64_t tarn_fixed_add(int64_t a, int64_t b) {
    return (int64_t)((uint64_t)a + (uint64_t)b);
}
static inline int64_t tarn_fixed_sub(int64_t a, int64_t b) {
    return (int64_t)((uint64_t)a - (uint64_t)b);
}
static inline int64_t tarn_fixed_neg(int64_t a) {
    return (int64_t)(0u - (uint64_t)a);
}
#endif
#define tarn_fixed_from_integer(i) ((int64_t)(i)*10000)

#ifndef TARNWICK_API_H
typedef struct tarn_frame {
    const char *class_name, *function_name;
    int32_t first_line, saved_line, first_variable;
    char copies[2][41];
} tarn_frame;
typedef struct tarn_frame_stack {
    int32_t count;
    tarn_frame frames[500];
} tarn_frame_stack;
extern tarn_frame_stack* tarn_quick_frames;
#endif

extern char* quarn_stack_end; /* the last place from where an error can still be reported; see main() */
/* Frames beyond 500 are counted and have no names, so the frames above are left first: the one that is found then
   has its line again. The debugger knows the innermost ones. The program ends with the report. */
static void quarn_stack_is_full(const char* class_name, const char* function_name, int32_t line) {
    int32_t most = 1 << 25;
    if (tarn_debugger_window == 0) {
        do tarn_leave();
        while (tarn_current_line == 0 && --most > 0);
        tarn_leave();
        tarn_enter(class_name, function_name, line);
    }
    tarn_error_cell = 803;
    tarn_stamp_slow(line, 0, tarn_default_onerror);
}
/* The function's name in lower case, and as it is written. */
static inline void quarn_enter(const char* class_name, const char* function_name, const char* written,
                               int32_t line) {
    char here;
    tarn_frame_stack* s = tarn_quick_frames;
    if (s != 0 && (uint32_t)(s->count - 1) < 499) {
        tarn_frame* frame = &s->frames[s->count++];
        frame[-1].saved_line = tarn_current_line;
        frame->class_name = class_name;
        frame->function_name = function_name;
        frame->first_line = line;
        frame->saved_line = 0;
        frame->first_variable = 0;
        tarn_current_line = line;
    } else {
        tarn_enter(class_name, written, line);
    }
    if (&here < quarn_stack_end) quarn_stack_is_full(class_name, written, line);
}

static inline void quarn_leave(void) {
    tarn_frame_stack* s = tarn_quick_frames;
    if (s != 0 && (uint32_t)(s->count - 2) < 499) {
        tarn_frame* frame = &s->frames[--s->count - 1];
        tarn_current_line = frame->saved_line;
        frame->saved_line = 0;
    } else {
        tarn_leave();
    }
}

/* The character at a place of a text, 0 outside. */
static inline int32_t quarn_char(const tarn_string* s, int32_t place) {
    return place >= 1 && place <= s->length ? (uint8_t)tarn_heap_base[s->data + (uint32_t)place - 1] : 0;
}
/* A field; where the memory for its record was short, a place that holds no record's. */
static char quarn_no_field[48 * 44];
static inline char* quarn_field(const void* record, int32_t offset) {
    const uint32_t data = ((const tarn_record*)record)->data;
    return data != 0 ? tarn_heap_base + data + offset : quarn_no_field + offset;
}
/* An element of a size; outside the bounds it is a value that nobody else has, and the error is set. */
static inline char* quarn_at(void* array, int32_t i, int32_t size) {
    const tarn_array* a = (const tarn_array*)array;
    if (i >= a->bounds[0] && i <= a->bounds[1] && a->data != 0)
        return tarn_heap_base + a->data + (int64_t)(i - a->bounds[0]) * size;
    return (char*)tarn_array_element((tarn_array*)array, 1, i, 0, 0);
}
static inline char* quarn_at2(void* array, int32_t i, int32_t j, int32_t size) {
    const tarn_array* a = (const tarn_array*)array;
    if (i >= a->bounds[0] && i <= a->bounds[1] && j >= a->bounds[2] && j <= a->bounds[3] && a->data != 0)
        return tarn_heap_base + a->data +
               ((int64_t)(i - a->bounds[0]) * (a->bounds[3] - a->bounds[2] + 1) + (j - a->bounds[2])) * size;
    return (char*)tarn_array_element((tarn_array*)array, 2, i, j, 0);
}
static inline char* quarn_at3(void* array, int32_t i, int32_t j, int32_t k, int32_t size) {
    (void)size;
    return (char*)tarn_array_element((tarn_array*)array, 3, i, j, k);
}
static inline char* quarn_list_at(void* list, int32_t i, int32_t size) {
    const tarn_list* l = (const tarn_list*)list;
    if (i >= 1 && i <= l->count && l->tag <= 16 && l->data != 0)
        return tarn_heap_base + l->data + (int64_t)(i - 1) * size;
    return (char*)tarn_list_element((tarn_list*)list, i);
}
/* A temporary value gets its shape at its first use, and is made empty at the next ones. */
static inline void quarn_shape(void* value, const void* like, int32_t kind) {
    const quarn_i32* words = (const quarn_i32*)value;
    if ((words[0] | words[1] | words[2] | words[3]) == 0)
        tarn_adt_init(value, like, kind);
    else
        tarn_adt_clear(value, kind);
}
