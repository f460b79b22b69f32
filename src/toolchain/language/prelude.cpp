// SPDX-License-Identifier: Apache-2.0
//
// The C text that stands in front of every generated class: what it calls of the run-time.
#include "toolchain/output/interface.h"

namespace tarn::toolchain {

const std::string_view PreludeText = R"(
extern char *quarn_stack_end; /* the last place from where an error can still be reported; see main() */
/* Frames beyond 500 are counted and have no names, so the frames above are left first: the one that is found then
   has its line again. The program ends with the report. */
static void quarn_stack_is_full(const char *class_name, const char *function_name, int32_t line)
{
    int32_t most = 1 << 25;
    do
        tarn_leave();
    while (tarn_current_line == 0 && --most > 0);
    tarn_leave();
    tarn_enter(class_name, function_name, line);
    tarn_error_cell = 803;
    tarn_stamp_slow(line, 0, tarn_default_onerror);
}
static inline void quarn_enter(const char *class_name, const char *function_name, int32_t line)
{
    char here;
    tarn_enter(class_name, function_name, line);
    if (&here < quarn_stack_end)
        quarn_stack_is_full(class_name, function_name, line);
}
static inline void quarn_msgbox(const tarn_string *title, const tarn_string *text)
{
    tarn_string buttons, answer;
    tarn_string_init(&buttons, TARN_UNBOUNDED);
    tarn_string_init(&answer, TARN_UNBOUNDED);
    tarn_sys_msgbox(title, text, &buttons, &answer);
    tarn_string_free(&answer);
    tarn_string_free(&buttons);
}
static inline void quarn_assert(int32_t condition)
{
    tarn_assert(condition, 0);
}
static inline int32_t quarn_strfind(const tarn_string *text, const tarn_string *what)
{
    return tarn_sys_strfind(text, what, 1, 0);
}
)";

}  // namespace tarn::toolchain
