/* SPDX-License-Identifier: Apache-2.0
 *
 * The start of every compiled program. It is made once, when the tools are built, and they carry the object.
 * The object of the main class points tarn_main_program to its program record; see compile.h.
 */
#include <stddef.h>
#include <sys/resource.h>

struct tarn_program;
extern const struct tarn_program* const tarn_main_program;
int tarn_run(int argc, char** argv, const struct tarn_program* program);

/* The last place of the stack from where an error can still be reported. */
char* quarn_stack_end;

/* The end of the stack is found once. A stack without a limit is taken for 1 GiB, so that endless recursion ends
   in its report and not in the memory of the machine. */
int main(int argc, char** argv) {
    struct rlimit limit;
    char here;
    if (getrlimit(RLIMIT_STACK, &limit) == 0) {
        const size_t most = (size_t)1 << 30;
        const size_t size = limit.rlim_cur < most ? (size_t)limit.rlim_cur : most;
        const size_t kept = size / 4 < 1048576 ? size / 4 : 1048576;
        quarn_stack_end = &here - (size - kept);
    }
    return tarn_run(argc, argv, tarn_main_program);
}

#ifdef __x86_64__
/* The entry of a program that is linked without the start files of the C library. Those have one as well, and
   theirs counts then. The stack holds argc and argv; rdx the function that the loader wants called at the end. */
__asm__(".text\n"
        ".weak _start\n"
        ".type _start, @function\n"
        "_start:\n"
        "    xorl %ebp, %ebp\n"
        "    movq %rdx, %r9\n"
        "    popq %rsi\n"
        "    movq %rsp, %rdx\n"
        "    andq $-16, %rsp\n"
        "    pushq %rax\n"
        "    pushq %rsp\n"
        "    xorl %r8d, %r8d\n"
        "    xorl %ecx, %ecx\n"
        "    movq main@GOTPCREL(%rip), %rdi\n"
        "    call __libc_start_main@PLT\n"
        "    hlt\n"
        ".size _start, . - _start\n");
#endif
