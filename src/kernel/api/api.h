/* SPDX-License-Identifier: Apache-2.0
 *
 * The C interface of the kernel for compiled programs. A compiled class is one C file that includes this
 * header and nothing else, and is linked with libtarnwick. The layouts are those of the kernel's descriptors.
 *
 * Every function of a class does tarn_enter, then tarn_variable for each variable (debug level 2), then its
 * statements, each after tarn_stamp, then frees its locals in reverse order, then tarn_leave. No call
 * transfers control when it fails: it sets tarn_error_cell and gives a harmless value.
 *
 * Texts that are passed as char pointers are program text: operators and type information; null is "". A null
 * or foreign descriptor sets the type error of its kind (756 string, 757 record and so on, as the operation
 * says).
 */
#ifndef TARNWICK_API_H
#define TARNWICK_API_H

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/* ---- values ---- */

#define TARN_UNBOUNDED (-1000000)
#define TARN_DYNAMIC_BOUNDS (-1000001)
#define TARN_NO_DIMENSION (-999999)

/* A value in a record may stand at any address. */
#define TARN_PACKED __attribute__((packed))

typedef struct TARN_PACKED tarn_string {
    int32_t size, tag;
    uint32_t data;
    int32_t maxlength, length, reserved;
} tarn_string;

typedef struct TARN_PACKED tarn_record { /* also a union; the fields stand in data without gaps */
    int32_t size, tag;
    uint32_t data;
    uint8_t kinds[24]; /* 48 nibbles, the first field in the high one of the first byte */
} tarn_record;

typedef struct TARN_PACKED tarn_set {
    int32_t size, tag;
    uint32_t data;
    int32_t maxlength, lower, upper, unused[4], reserved;
} tarn_set;

typedef struct TARN_PACKED tarn_array {
    int32_t size, tag;
    uint32_t data;
    int32_t maxlength, bounds[6]; /* lower and upper of each dimension */
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

enum { TARN_TAG_RECORD = 14, TARN_TAG_UNION = 15 };

enum {
    TARN_BOOLEAN = 1,
    TARN_ENUM,
    TARN_INTEGER,
    TARN_FIXED,
    TARN_REAL,
    TARN_STRING,
    TARN_RECORD,
    TARN_UNION,
    TARN_SET,
    TARN_ARRAY,
    TARN_LIST,
    TARN_TABLE
};

/* ---- frames, stamps, errors ---- */

extern int32_t tarn_error_cell;
extern int32_t tarn_current_line;
extern void* tarn_debugger_window;

typedef void (*tarn_error_handler)(int32_t code);

/* The frames, while compiled code may push and pop them by itself; null while it calls tarn_enter and tarn_leave
 * (no frames are kept, calls are traced, variables are registered). A frame so pushed has literals as its names,
 * the function's in lower case, and 0 as first variable. Frames beyond 500 go through the calls. */
typedef struct tarn_frame {
    const char *class_name, *function_name;
    int32_t first_line, saved_line, first_variable;
    char copies[2][41];
} tarn_frame;
typedef struct tarn_frame_stack {
    int32_t count;
    tarn_frame frames[500];
} tarn_frame_stack;
#ifndef __cplusplus
extern tarn_frame_stack* tarn_quick_frames;
#endif

void tarn_enter(const char* class_name, const char* function_name, int32_t line);
void tarn_leave(void);
void tarn_stamp_slow(int32_t line, int32_t action, tarn_error_handler handler);
void tarn_default_onerror(int32_t code);
/* The frame of a class's onerror. 1: the pending error is the last error now, and the cell is clear for what the
   handler itself does; end with tarn_report_end(). 0: return at once. The error arose while a handler works, and has
   been reported as if there were none, or a report goes on already. */
int32_t tarn_report_begin(void);
void tarn_report_end(void);

static inline void tarn_stamp(int32_t line, int32_t action, tarn_error_handler handler) {
    if (tarn_error_cell != 0 || tarn_debugger_window != 0)
        tarn_stamp_slow(line, action, handler);
    else if (line != 0)
        tarn_current_line = line;
}
static inline void tarn_set_error(int32_t code) {
    if (tarn_error_cell == 0) tarn_error_cell = code;
}
void tarn_register_class(const char* source_path, const char* class_name);
void tarn_register_variable(const char* name, char role, int32_t kind, void* address);
/* Behind the registration of a record, union, array, list or table: the names of the fields in it, in program text; see
   kernel/debug/fieldnames.h. "" if there are none. */
void tarn_name_fields(const void* address, const char* names);
/* Behind the variables: where the function that was entered last makes its result. */
void tarn_register_result(int32_t kind, void* address);
void tarn_assert(int32_t condition, const tarn_string* text); /* 687; a null text is the empty one */
void tarn_clear_error(void);                                  /* error cell and last error := 0 */
void tarn_precondition(int32_t condition);
void tarn_postcondition(int32_t condition);

/* ---- the program ---- */

typedef struct tarn_program {
    const char*
        library_version; /* the one it was compiled for; stays the first field. Another one is error 806 */
    const char* main_source;  /* full path of the main class's source */
    int32_t debug_mode;       /* 0, 1, 2 */
    int32_t memory_checking;  /* 0 or 1 */
    int32_t single_instance;  /* 0 or 1 */
    void (*initialise)(void); /* the main class's initialiser, which runs those it uses first, each once */
    void (*main)(void);
    void (*finalise)(void);
    const char *product, *build; /* with the version: what the debugger finds its settings by; null: the library's */
} tarn_program;

/* What main() of a program calls; does not return to user code after a halt. An argument --strict, if it is the first,
 * is taken out, and makes the exit code 1 when an error was reported; else it is 0. */
int tarn_run(int argc, char** argv, const tarn_program* program);

/* ---- integers and booleans ---- */

int32_t tarn_integer_div(int32_t a, int32_t b); /* towards minus infinity; 643 for b = 0 */
int32_t tarn_integer_mod(int32_t a, int32_t b); /* the sign of the divisor; 643 for b = 0 */
/* Wrapping arithmetic: no operation traps. */
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

/* ---- strings: the operations of the kernel under their own names ---- */

void tarn_string_init(tarn_string* s, int32_t maxlength);
void tarn_string_free(tarn_string* s);
void tarn_string_assign(tarn_string* dest, const tarn_string* src);
void tarn_string_assign_bytes(tarn_string* dest, const char* bytes, int32_t count);
void tarn_string_concat(const tarn_string* a, const tarn_string* b, tarn_string* dest);
int32_t tarn_string_compare(const tarn_string* a, const tarn_string* b); /* -1, 0, 1 by unsigned characters */
int32_t tarn_string_length(const tarn_string* s);
int32_t tarn_string_get(const tarn_string* s, int32_t position);
void tarn_string_put(tarn_string* s, int32_t position, int32_t character);

/* ---- values of any kind: the address of the first byte and the kind ---- */

void tarn_adt_init(void* target, const void* like, int32_t kind);
void tarn_adt_copy(const void* source, void* target, int32_t kind);
void tarn_adt_free(void* value, int32_t kind);
void tarn_adt_clear(void* value, int32_t kind);
int32_t tarn_adt_compare(const char* op, const void* a, const void* b, int32_t kind);
/* 0, without an error, for a pair of kinds that has no conversion. 1 for all others, also when the conversion
 * failed: 983, 984 or 985 for a text that is no such number, with the target as it was; 641, with 0, for a
 * number that the target kind cannot hold; 756, 610. */
int32_t tarn_adt_convert(const void* source, int32_t source_kind, void* target, int32_t target_kind);

/* ---- arrays; the address of an element by tarn_array_ref ----
 * `bounds`: lower and upper of each dimension, TARN_NO_DIMENSION twice where there is none. A null pointer is
 * 760, as bounds that cannot be. */

void tarn_array_init(tarn_array* a, int32_t kind, const int32_t bounds[6], const void* prototype);
void tarn_array_init_dynamic(tarn_array* a, int32_t kind, const void* prototype);
void tarn_array_redim(tarn_array* a, const int32_t bounds[6], int32_t preserve);
void* tarn_array_ref(tarn_array* a, int32_t i); /* null and the error set when there is no such element */
void* tarn_array_ref2(tarn_array* a, int32_t i, int32_t j);
void* tarn_array_ref3(tarn_array* a, int32_t i, int32_t j, int32_t k);
void tarn_array_get(const tarn_array* a, int32_t i, void* value, int32_t kind);
void tarn_array_get2(const tarn_array* a, int32_t i, int32_t j, void* value, int32_t kind);
void tarn_array_get3(const tarn_array* a, int32_t i, int32_t j, int32_t k, void* value, int32_t kind);
void tarn_array_put(tarn_array* a, int32_t i, const void* value, int32_t kind);
void tarn_array_put2(tarn_array* a, int32_t i, int32_t j, const void* value, int32_t kind);
void tarn_array_put3(tarn_array* a, int32_t i, int32_t j, int32_t k, const void* value, int32_t kind);
int32_t tarn_array_lower(const tarn_array* a, int32_t dimension);
int32_t tarn_array_upper(const tarn_array* a, int32_t dimension);
int32_t tarn_array_dimensions(const tarn_array* a);
void tarn_array_assign(tarn_array* dest, const tarn_array* src);
void tarn_array_auto_assign(tarn_array* a, int32_t append, int32_t i, const void* value, int32_t kind);

/* ---- sets ---- */

void tarn_set_init(tarn_set* s, int32_t lower, int32_t upper);
void tarn_set_free(tarn_set* s);
void tarn_set_clear(tarn_set* s);
void tarn_set_redim(tarn_set* s, int32_t lower, int32_t upper, int32_t preserve);
void tarn_set_include(int32_t i, tarn_set* s);
void tarn_set_include_range(int32_t lo, int32_t hi, tarn_set* s);
void tarn_set_exclude(int32_t i, tarn_set* s);
void tarn_set_exclude_range(int32_t lo, int32_t hi, tarn_set* s);
int32_t tarn_set_contains(int32_t i, const tarn_set* s);
int32_t tarn_set_lower(const tarn_set* s);
int32_t tarn_set_upper(const tarn_set* s);
void tarn_set_union(const tarn_set* a, const tarn_set* b, tarn_set* dest);
void tarn_set_intersect(const tarn_set* a, const tarn_set* b, tarn_set* dest);
void tarn_set_difference(const tarn_set* a, const tarn_set* b, tarn_set* dest);
void tarn_set_assign(tarn_set* dest, const tarn_set* src);
int32_t tarn_set_compare(const char* op, const tarn_set* a, const tarn_set* b);
void tarn_set_to_text(const tarn_set* s, int32_t dots, tarn_string* dest);
/* 0, or 1 for what is no set, or the error that was set: 601, 616, 759 no set to read into, 802, 756 no
 * string, 610 a null position. The position counts from 1 and moves behind the set, or to what is wrong. */
int32_t tarn_set_from_text(const tarn_string* text, int32_t* position, tarn_set* dest);

/* ---- records and unions ---- */

/* All fields are zero: those of the kinds 6 to 12 are initialised in place. A null `kinds` is 757 (758), as
 * kinds that cannot be. */
void tarn_record_init(tarn_record* r, int32_t tag, const uint8_t kinds[24]);
void tarn_record_copy(const tarn_record* source, tarn_record* target);
void tarn_record_free(tarn_record* r);
int32_t tarn_record_field_count(const tarn_record* r);
int32_t tarn_record_field_kind(const tarn_record* r, int32_t n);
void* tarn_record_field(tarn_record* r, int32_t n); /* null when there is no field n */
void tarn_record_put(tarn_record* r, int32_t n, const void* value, int32_t kind);
void tarn_record_get(const tarn_record* r, int32_t n, void* value, int32_t kind);
void tarn_record_append(tarn_record* r, const void* value, int32_t kind);
void tarn_sys_record_assign(tarn_record* dest, const tarn_record* src); /* whatever their fields are */
void tarn_sys_record_add_boolean(tarn_record* r, int32_t value);
void tarn_sys_record_add_enum(tarn_record* r, int32_t value);
void tarn_sys_record_add_integer(tarn_record* r, int32_t value);
void tarn_sys_record_add_fixed(tarn_record* r, int64_t value);
void tarn_sys_record_add_real(tarn_record* r, double value);
void tarn_record_get_as_text(const tarn_record* r, int32_t n, tarn_string* text);
void tarn_record_put_from_text(int32_t n, const tarn_string* text, tarn_record* r);

/* ---- lists ---- */

void tarn_list_init(tarn_list* l, int32_t maxlength, const void* prototype, int32_t kind, int32_t in_file);
int32_t tarn_list_count(const tarn_list* l);
void* tarn_list_ref(tarn_list* l, int32_t position); /* null and 603 for a position outside */
void tarn_list_get(const tarn_list* l, int32_t position, void* value, int32_t kind);
void tarn_list_put(const void* value, int32_t kind, int32_t position, tarn_list* l);
void tarn_list_append(const void* value, int32_t kind, tarn_list* l);
void tarn_list_insert(int32_t position, const tarn_string* value, tarn_list* l);
void tarn_list_delete(int32_t position, int32_t n, tarn_list* l);
void tarn_list_remove_last(tarn_list* l);
void tarn_list_clear(tarn_list* l);
void tarn_list_resize(int32_t n, const void* fill, tarn_list* l);
void tarn_list_sort(tarn_list* l, int32_t ascending, int32_t ignore_case);
int32_t tarn_list_string_find(const tarn_list* l, const tarn_string* text, int32_t ignore_case);

/* ---- tables ---- */

/* Five key maps, each of up to four row fields, the first in the top byte; 0 for no index. Null is 762, as
 * maps that cannot be. */
void tarn_table_init(tarn_table* t, int32_t maxlength, const tarn_record* row, const int32_t key_maps[5],
                     const char* type_info, int32_t in_file);
void tarn_table_add(tarn_table* t, int32_t index, const tarn_record* row);
void tarn_table_read(const tarn_table* t, int32_t index, const tarn_record* key, tarn_record* row);
int32_t tarn_table_find(const char* op, const tarn_table* t, int32_t index, const tarn_record* key,
                        tarn_record* row); /* 1 when found */
void tarn_table_update(const tarn_record* row, int32_t index, const tarn_record* key, tarn_table* t);
void tarn_table_delete(tarn_table* t, int32_t index, const tarn_record* key);
void tarn_table_clear(tarn_table* t);
void tarn_table_rebuild(tarn_table* t);
void tarn_table_hold(tarn_table* t);
void tarn_table_release(tarn_table* t);
int32_t tarn_table_count(const tarn_table* t);
int32_t tarn_table_index_count(const tarn_table* t);
int32_t tarn_table_index_for(const tarn_table* t, const tarn_record* key);
void tarn_table_key_from_row(const tarn_table* t, int32_t index, const tarn_record* row, tarn_record* key);
void tarn_table_row(const tarn_table* t, int32_t number, tarn_record* row);

/* ---- lists and tables in files ----
 *
 * Those that were initialised with in_file: until they are opened every use is 661. */

/* Opens the file, or makes it. kind: TARN_LIST or TARN_TABLE. Errors: 660, 764, 661, 657, 658, 655, 619, 762,
 * 656, 651 to 654; the value is not open then. */
void tarn_file_open(void* value, int32_t kind, const tarn_string* name);
void tarn_file_close(void* value, int32_t kind);           /* brings the file to the disk */
int32_t tarn_file_exists(const void* value, int32_t kind); /* 1 for an open one */
int32_t tarn_file_record_length(const void* value, int32_t kind);
int32_t tarn_file_header_size(const void* value, int32_t kind);
int32_t tarn_file_format(const void* value, int32_t kind); /* 3 plain, 4 fixed, 5 Xbase; 661 when not open */

/* ---- numbers; a fixed number is the number times 10000 ---- */

int64_t tarn_fixed_from_real(double x); /* to the nearest; 641 and 0 outside the fixed numbers and for NaN */
double tarn_fixed_to_real(int64_t f);
int64_t tarn_fixed_from_integer(int32_t i);
int32_t tarn_fixed_to_integer(int64_t f); /* towards 0; outside the integers the low 32 bits, no error */
/* Towards 0; beyond the range the largest or the smallest fixed number, without an error. */
int64_t tarn_fixed_mul(int64_t a, int64_t b);
int64_t tarn_fixed_div(int64_t a, int64_t b); /* 643 and 0 for b = 0 */
/* These wrap. */
static inline int64_t tarn_fixed_add(int64_t a, int64_t b) {
    return (int64_t)((uint64_t)a + (uint64_t)b);
}
static inline int64_t tarn_fixed_sub(int64_t a, int64_t b) {
    return (int64_t)((uint64_t)a - (uint64_t)b);
}
static inline int64_t tarn_fixed_neg(int64_t a) {
    return (int64_t)(0u - (uint64_t)a);
}
double tarn_real_div(double a, double b); /* 643 and 0 for b = 0 */
/* A width fills up with blanks, on the left, or on the right when it is negative; it is at most 100 and never
 * cuts. A format is a fixed number: width, point, number of decimals (at most 20). Base 16 gives the two's
 * complement; any other base counts as 10. A fixed string that is too short gets the text cut, and 615. */
void tarn_integer_to_text(int32_t value, int32_t width, int32_t base, tarn_string* text);
void tarn_boolean_to_text(int32_t value, int64_t format, tarn_string* text);
void tarn_fixed_to_text(int64_t f, int64_t format, tarn_string* text);
void tarn_real_to_text(double x, int64_t format, tarn_string* text);
/* 1 when the whole text is such a value and the kind can hold it; else 0, without an error and with the value
 * as it was. Blanks around it, and one NUL at its end, do not matter. "NULL" is the integer 0. The value may
 * stand at any address; a null one is 610. */
int32_t tarn_integer_from_text(const tarn_string* text, int32_t* value);
int32_t tarn_boolean_from_text(const tarn_string* text, int32_t* value);
int32_t tarn_fixed_from_text(const tarn_string* text, int64_t* f);
int32_t tarn_real_from_text(const tarn_string* text, double* x);
/* `before` is the sum of the bytes that come before these, 0 for none; it is also the result for a null
 * buffer or a size below 1. */
uint32_t tarn_crc32(const void* buffer, int32_t size, uint32_t before);

/* ---- dates: texts of 24 characters, "YYYY-MM-DD hh:mm:ss.ffff" ----
 * What is no date gives "", 0 or 0 seconds, without an error; so do results outside the years 1 to 9999. One
 * NUL at the end of a text does not matter. Units, in any case: "YYYY", "MM" "M", "DD" "D", "HH" "H", "MI"
 * "N", "SS" "S", "MS". */

void tarn_date_make(int32_t year, int32_t month, int32_t day, int32_t hour, int32_t minute, int32_t second,
                    int32_t fraction, tarn_string* text);
/* Year to fraction; all 0 for what is no date. They may stand at any address; null is 610. */
void tarn_date_split(const tarn_string* text, int32_t parts[7]);
int64_t tarn_date_to_seconds(const tarn_string* text); /* a fixed number; 0 is 1600-01-01, and no date */
void tarn_date_from_seconds(int64_t seconds, tarn_string* text);
int32_t tarn_date_valid(int32_t year, int32_t month, int32_t day, int32_t hour, int32_t minute,
                        int32_t second, int32_t fraction);
int32_t tarn_days_in_month(int32_t year, int32_t month); /* 0 for no month */
void tarn_date_add(const tarn_string* unit, int32_t n, const tarn_string* text, tarn_string* result);
int32_t tarn_date_part(const tarn_string* unit, const tarn_string* text);
int32_t tarn_date_parse(const tarn_string* text, tarn_string* result); /* 1 when it is a date */
void tarn_date_now(tarn_string* text);
void tarn_file_time_text(const tarn_string* path, tarn_string* text); /* "" for no file */

/* ---- what the text of the language becomes ---- */

extern char* tarn_heap_base; /* a value's data is at this address plus its offset */

/* A value of this shape that nobody else has: what stands for an element that is not there. Each lives until
 * 64 others have been asked for. `like` may be null for the kinds 1 to 5. */
void* tarn_scratch(int32_t kind, const void* like);
void tarn_scratch_release(void); /* at the end of the program */
/* The element, or a scratch value with the error set: 602 or 603, and what else the kernel finds wrong. */
void* tarn_array_element(tarn_array* a, int32_t dimensions, int32_t i, int32_t j, int32_t k);
void* tarn_list_element(tarn_list* l, int32_t position);
int32_t tarn_enum_check(int32_t ordinal, int32_t count);             /* 682, and 0, outside 0 to count - 1 */
void tarn_string_append(tarn_string* dest, const tarn_string* part); /* `part` may be `dest` */
/* Gives the line that begins at the position, without its end, and moves the position behind it. 0 at the end
 * of the text. A line feed ends a line, with a carriage return before it or without. */
int32_t tarn_text_next_line(const tarn_string* text, int32_t* position, tarn_string* line);
/* The line in front of the position, which moves to its beginning; length + 1 is behind the last one. 0 at the
 * beginning of the text. */
int32_t tarn_text_previous_line(const tarn_string* text, int32_t* position, tarn_string* line);

/* The operations above with the arguments in the order of the language. */
int32_t tarn_sys_array_length(const tarn_array* a); /* elements of all dimensions */
int32_t tarn_sys_lbound(const tarn_array* a);
int32_t tarn_sys_ubound(const tarn_array* a);
void tarn_sys_redim(tarn_array* a, int32_t lower, int32_t upper);
void tarn_sys_redim_preserve(tarn_array* a, int32_t lower, int32_t upper, int32_t preserve);
void tarn_sys_redim2(tarn_array* a, int32_t lower, int32_t upper, int32_t lower2, int32_t upper2);
void tarn_sys_set_include(tarn_set* s, int32_t member);
void tarn_sys_set_exclude(tarn_set* s, int32_t member);
int32_t tarn_sys_set_count(const tarn_set* s);
void tarn_sys_list_add(tarn_list* l, const void* value, int32_t kind);
void tarn_sys_list_insert(tarn_list* l, int32_t position, const tarn_string* text);
void tarn_sys_list_delete(tarn_list* l, int32_t position);
void tarn_sys_list_delete_some(tarn_list* l, int32_t position, int32_t count);
void tarn_sys_list_sort(tarn_list* l); /* ascending, minding case */
void tarn_sys_list_sort_by(tarn_list* l, int32_t ascending, int32_t ignore_case);
int32_t tarn_sys_list_find(const tarn_list* l, const tarn_string* text); /* minding case */
/* A table's row is handed over with its kind, which must be that of records (611). Without an index: the first
 * one that the key fits (636). */
void tarn_sys_tab_add(tarn_table* t, const void* row, int32_t kind);
void tarn_sys_tab_read(const tarn_table* t, const tarn_record* key, void* row, int32_t kind);
void tarn_sys_tab_read_by(const tarn_table* t, const tarn_record* key, void* row, int32_t kind,
                          int32_t index);
int32_t tarn_sys_tab_find(const tarn_string* op, const tarn_table* t, const tarn_record* key, void* row,
                          int32_t kind);
int32_t tarn_sys_tab_find_by(const tarn_string* op, const tarn_table* t, const tarn_record* key, void* row,
                             int32_t kind, int32_t index);
void tarn_sys_tab_update(tarn_table* t, const tarn_record* key, const void* row, int32_t kind);
void tarn_sys_tab_update_by(tarn_table* t, const tarn_record* key, const void* row, int32_t kind,
                            int32_t index);
void tarn_sys_tab_delete(tarn_table* t, const tarn_record* key);
void tarn_sys_tab_delete_by(tarn_table* t, const tarn_record* key, int32_t index);
void tarn_sys_tab_row(const tarn_table* t, int32_t number, void* row, int32_t kind);
void tarn_sys_open_list(tarn_list* l, const tarn_string* path);
void tarn_sys_open_table(tarn_table* t, const tarn_string* path);
void tarn_sys_close_list(tarn_list* l);
void tarn_sys_close_table(tarn_table* t);

/* ---- windows: an object is a record of three integers (library/system/api_objects.h) ----
 * Beside these stands a constant pointer to a function for each line of kernel/windows/operations.h: tarn_win_
 * and the word of the line. */

/* The window, or with a control's name the control, of the program's resources; unknown ones name nothing. */
void tarn_object_bind(tarn_record* object, const char* window, const char* control);
void tarn_control_element(const tarn_record* array, int32_t index,
                          tarn_record* element); /* 602 outside, 702 */
/* The function that gets the window's events. It tells by 1 that it has handled one, or vetoes the close. */
void tarn_window_register(const char* window,
                          int32_t (*function)(const tarn_record* me, int32_t event,
                                              const tarn_record* control, int32_t parameter));
void tarn_window_main(const char* window); /* loads it, shows it and runs until it is gone */

/* ---- the library as compiled programs see it: SYSTEM functions, each with the line of its caller ----
 * An argument that the language declares `out` or `inout` is a pointer; strings are always pointers. */

void tarn_sys_msgbox(const tarn_string* title, const tarn_string* text, const tarn_string* buttons,
                     tarn_string* answer);
void tarn_sys_loadfile(const tarn_string* file, tarn_string* value);
void tarn_sys_savefile(const tarn_string* file, const tarn_string* value);
void tarn_sys_str_integer(int32_t value, tarn_string* result);
void tarn_sys_str_boolean(int32_t value, tarn_string* result);
int32_t tarn_sys_cvti(const tarn_string* text); /* as tarn_integer_from_text; 983 and 0 for no integer */
void tarn_sys_chr(int32_t code, tarn_string* result);
int32_t tarn_sys_ord(const tarn_string* text);
int32_t tarn_sys_strfind(const tarn_string* text, const tarn_string* what, int32_t from, int32_t ignore_case);
void tarn_sys_strmid(const tarn_string* text, int32_t position, int32_t count, tarn_string* result);
void tarn_sys_strleft(const tarn_string* text, int32_t count, tarn_string* result);
void tarn_sys_strright(const tarn_string* text, int32_t count, tarn_string* result);
void tarn_sys_strtrim(const tarn_string* text, tarn_string* result);
void tarn_sys_strltrim(const tarn_string* text, tarn_string* result);
void tarn_sys_strrtrim(const tarn_string* text, tarn_string* result);
void tarn_sys_strupper(const tarn_string* text, tarn_string* result);
void tarn_sys_strlower(const tarn_string* text, tarn_string* result);
void tarn_sys_strreplace(const tarn_string* what, const tarn_string* with, int32_t ignore_case,
                         tarn_string* text);
int32_t tarn_sys_strlines(const tarn_string* text);
void tarn_sys_strline(const tarn_string* text, int32_t line, tarn_string* result); /* without its line end */
void tarn_sys_strmake(int32_t count, int32_t character, tarn_string* result);
int32_t tarn_sys_filesize(const tarn_string* file);
void tarn_sys_arguments(tarn_string* result); /* the program's arguments, separated by blanks */
void tarn_sys_errormessage(int32_t code, tarn_string* result);
void tarn_sys_errordetails(tarn_string* result); /* the whole text of a report */
void tarn_sys_print(const tarn_string* text);    /* a line to standard output */

/* Values of any kind, by a format of the table of data formats or by the extension; see library/system/files.h. */
void tarn_sys_loadfile_value(const tarn_string* path, void* value, int32_t kind);
void tarn_sys_loadfile_format(const tarn_string* path, int32_t format, void* value, int32_t kind);
void tarn_sys_loadfile_options(const tarn_string* path, int32_t format, const tarn_record* options,
                               void* value, int32_t kind);
void tarn_sys_savefile_value(const tarn_string* path, const void* value, int32_t kind);
void tarn_sys_savefile_format(const tarn_string* path, int32_t format, const void* value, int32_t kind);
void tarn_sys_savefile_options(const tarn_string* path, int32_t format, const tarn_record* options,
                               const void* value, int32_t kind);
/* Tables held in data files; see library/data/dbutil.h. The short forms have no options, and closing saves. */
void tarn_sys_tabopen(const tarn_string* path, tarn_table* t);
void tarn_sys_tabopen_options(const tarn_string* path, const tarn_record* options, tarn_table* t);
void tarn_sys_tabclose(const tarn_string* path, tarn_table* t);
void tarn_sys_tabclose_options(const tarn_string* path, const tarn_record* options, int32_t save,
                               tarn_table* t);
void tarn_sys_splitpath(const tarn_string* path, tarn_string* drive, tarn_string* directory,
                        tarn_string* stem, tarn_string* extension);
void tarn_sys_strsplit(const tarn_string* text, const tarn_string* separator, tarn_string* left,
                       tarn_string* right);
void tarn_sys_strsplit_blanks(const tarn_string* text, tarn_string* left, tarn_string* right);
void tarn_sys_setvalue(const tarn_string* text, tarn_set* s, uint8_t* ok);
void tarn_sys_cvts(const void* value, int32_t kind, tarn_string* result); /* 986 */
void tarn_sys_nextword(const tarn_string* text, int32_t* position, tarn_string* word);
void tarn_sys_texttransform(const tarn_string* key, int32_t mode, const tarn_string* text,
                            tarn_string* result);
void tarn_sys_msgbox_ok(const tarn_string* title, const tarn_string* text);
void tarn_sys_assert(int32_t condition); /* 687 */
int32_t tarn_sys_ord_enum(int32_t value);
int32_t tarn_sys_strfind_plain(const tarn_string* text, const tarn_string* what); /* minds case */
void tarn_sys_str_enum(int32_t value, tarn_string* result);
void tarn_sys_str_fixed(int64_t value, tarn_string* result);
void tarn_sys_str_real(double value, tarn_string* result);
void tarn_sys_str_set(const tarn_set* value, tarn_string* result);
void tarn_sys_str_integer_width(int32_t value, int32_t width, tarn_string* result);
void tarn_sys_str_fixed_format(int64_t value, int64_t format, tarn_string* result);
void tarn_sys_str_real_format(double value, int64_t format, tarn_string* result);
int32_t tarn_sys_cvti_fixed(int64_t value); /* towards 0; 641 and 0 outside the integers, also below */
int32_t tarn_sys_cvti_real(double value);
int64_t tarn_sys_cvtf(const tarn_string* text); /* 984 and 0 for no fixed number */
int64_t tarn_fixed_from_integer_call(int32_t value);
double tarn_sys_cvtr(const tarn_string* text); /* 985 and 0 for no real number */
int32_t tarn_sys_abs_integer(int32_t value);
int64_t tarn_sys_abs_fixed(int64_t value);
double tarn_sys_abs_real(double value);
int64_t tarn_sys_sqr_fixed(int64_t value); /* the square root; 0 below 0, with 641 */
double tarn_sys_sqr_real(double value);
double tarn_sys_pwr(double base, double exponent);
int32_t tarn_sys_random(int32_t most);
int32_t tarn_sys_minval(int32_t a, int32_t b);
int32_t tarn_sys_maxval(int32_t a, int32_t b);
int32_t tarn_sys_iif_integer(int32_t condition, int32_t a, int32_t b);
int64_t tarn_sys_iif_fixed(int32_t condition, int64_t a, int64_t b);
double tarn_sys_iif_real(int32_t condition, double a, double b);
int32_t tarn_sys_iif_boolean(int32_t condition, int32_t a, int32_t b);
void tarn_sys_iif_string(int32_t condition, const tarn_string* a, const tarn_string* b, tarn_string* result);

#ifdef __cplusplus
}
#endif

#endif
