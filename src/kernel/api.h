/* SPDX-License-Identifier: Apache-2.0
 *
 * The C interface of the kernel for compiled programs. A compiled class is one C file that includes this
 * header and nothing else, and is linked with libtarnwick. The layouts are those of the kernel's descriptors.
 *
 * Every function of a class does tarn_enter, then tarn_variable for each variable (debug level 2), then its
 * statements, each after tarn_stamp, then frees its locals in reverse order, then tarn_leave. No call
 * transfers control when it fails: it sets tarn_error_cell and gives a harmless value.
 */
#ifndef TARNWICK_API_H
#define TARNWICK_API_H

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/* ---- values ---- */

#define TARN_UNBOUNDED (-1000000)

/* A value in a record may stand at any address. */
#define TARN_PACKED __attribute__((packed))

typedef struct TARN_PACKED tarn_string {
    int32_t size, tag;
    uint32_t data;
    int32_t maxlength, length, reserved;
} tarn_string;

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

void tarn_enter(const char* class_name, const char* function_name, int32_t line);
void tarn_leave(void);
void tarn_stamp_slow(int32_t line, int32_t action, tarn_error_handler handler);
void tarn_default_onerror(int32_t code);
/* The frame of a class's onerror: 0 when a report goes on already; after a 1 end with tarn_report_end(). */
int32_t tarn_report_begin(void);
void tarn_report_end(void); /* also: last error := cell, cell := 0 */

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
} tarn_program;

/* What main() of the generated program calls; does not return to user code after a halt. */
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

/* ---- the library as compiled programs see it: SYSTEM functions, each with the line of its caller ----
 * An argument that the language declares `out` or `inout` is a pointer; strings are always pointers. */

void tarn_sys_msgbox(const tarn_string* title, const tarn_string* text, const tarn_string* buttons,
                     tarn_string* answer);
void tarn_sys_loadfile(const tarn_string* file, tarn_string* value);
void tarn_sys_savefile(const tarn_string* file, const tarn_string* value);
void tarn_sys_str_integer(int32_t value, tarn_string* result);
void tarn_sys_str_boolean(int32_t value, tarn_string* result);
int32_t tarn_sys_cvti(const tarn_string* text); /* 983 when the text is no number */
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

#ifdef __cplusplus
}
#endif

#endif
