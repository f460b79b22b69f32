// SPDX-License-Identifier: Apache-2.0
//
// What stands at the very start of an installer (package.h has the table of offsets): it reads the whole file, and only when
// that is what was made does it start the program behind it, from memory, with `--of INSTALLER` ahead of the arguments. So a
// file that was cut or changed on its way is told as such, where the loader of programs would have ended it with a signal.
//
// It has no library, no table that is filled in at the start and no second page to speak of, so that little of it can be
// damaged unseen; and it takes no number of the file before that number is known to fit into the file. Linux on x86-64 alone.
// Exit code 1: the file is damaged, or nothing can be started here.

typedef unsigned long Number;
typedef unsigned char Byte;

enum { TrailerSize = 40, SumSize = 8, Piece = 64 * 1024, LongestPath = 4096 };
enum {
    Read = 0,
    Write = 1,
    Open = 2,
    Seek = 8,
    ReadAt = 17,
    SendFile = 40,
    Exit = 60,
    ReadLink = 89,
    MakeInMemory = 319,
    Execute = 322
};
enum { CloseOnExec = 02000000, SeekEnd = 2, InMemoryCloseOnExec = 1, EmptyPath = 0x1000, Errors = 2 };

static long call(long what, long a, long b, long c, long d, long e) {
    long result;
    register long fourth __asm__("r10") = d;
    register long fifth __asm__("r8") = e;
    __asm__ volatile("syscall"
                     : "=a"(result)
                     : "a"(what), "D"(a), "S"(b), "d"(c), "r"(fourth), "r"(fifth)
                     : "rcx", "r11", "memory");
    return result;
}

static void leave(const char* text) {
    long size = 0;
    while (text[size] != 0) ++size;
    call(Write, Errors, (long)text, size, 0, 0);
    for (;;) call(Exit, 1, 0, 0, 0, 0);
}

static void damaged(void) {
    leave("This installer is damaged or incomplete. Get it again.\n");
}

// `count` bytes from `at` on; the file has them, or it is being changed.
static void readAll(long file, Byte* into, Number count, Number at) {
    while (count > 0) {
        const long got = call(ReadAt, file, (long)into, (long)count, (long)at, 0);
        if (got <= 0) damaged();
        into += got, count -= (Number)got, at += (Number)got;
    }
}

static Number numberAt(const Byte* bytes) {
    Number number = 0;
    for (int i = 8; i-- > 0;) number = number << 8 | bytes[i];
    return number;
}

// CRC-64 of the first bytes of the file.
static Number sumOf(long file, Number count) {
    Number table[256], sum = ~0UL;
    Byte piece[Piece];
    for (int i = 0; i < 256; ++i) {
        Number rest = (Number)i;
        for (int bit = 0; bit < 8; ++bit) rest = rest >> 1 ^ (rest & 1 ? 0xC96C5795D7870F42UL : 0);
        table[i] = rest;
    }
    for (Number at = 0; at < count;) {
        const Number size = count - at < Piece ? count - at : Piece;
        readAll(file, piece, size, at);
        for (Number i = 0; i < size; ++i) sum = table[(sum ^ piece[i]) & 0xFF] ^ sum >> 8;
        at += size;
    }
    return ~sum;
}

// A file in memory with the program that installs.
static long programOf(long file) {
    Byte trailer[TrailerSize];
    const char* const magic = "TARNPKG2";
    const long size = call(Seek, file, 0, SeekEnd, 0, 0);
    if (size < TrailerSize) damaged();
    const Number rest = (Number)size - TrailerSize;
    readAll(file, trailer, TrailerSize, rest);
    for (int i = 0; i < 8; ++i)
        if (trailer[i] != (Byte)magic[i]) damaged();
    const Number first = numberAt(trailer + 8), program = numberAt(trailer + 16);
    const Number package = numberAt(trailer + 24), sum = numberAt(trailer + 32);
    if (first > rest || program > rest - first || package != rest - first - program) damaged();
    if (sumOf(file, (Number)size - SumSize) != sum) damaged();
    const long memory = call(MakeInMemory, (long)"setup", InMemoryCloseOnExec, 0, 0, 0);
    Number at = first;
    while (memory >= 0 && at < first + program)
        if (call(SendFile, memory, file, (long)&at, (long)(first + program - at), 0) <= 0) return -1;
    return memory;
}

// `stack` is what the system puts there: the count of the arguments, they themselves, 0, and the environment.
__attribute__((used, noreturn)) static void run(long* stack) {
    char path[LongestPath];
    const long count = stack[0];
    char** const arguments = (char**)(stack + 1);
    const long file = call(Open, (long)"/proc/self/exe", CloseOnExec, 0, 0, 0);
    const long length = call(ReadLink, (long)"/proc/self/exe", (long)path, LongestPath - 1, 0, 0);
    if (file < 0 || length <= 0) leave("This installer cannot read itself: /proc is missing.\n");
    path[length] = 0;
    const long program = programOf(file);
    char* words[count + 4];
    long next = 0;
    words[next++] = count > 0 ? arguments[0] : path;
    words[next++] = (char*)"--of";
    words[next++] = path;
    for (long i = 1; i < count; ++i) words[next++] = arguments[i];
    words[next] = 0;
    if (program >= 0) call(Execute, program, (long)"", (long)words, (long)(arguments + count + 1), EmptyPath);
    for (;;) leave("This installer cannot be started here.\n");
}

__asm__(".globl _start\n_start:\n  xor %ebp, %ebp\n  mov %rsp, %rdi\n  and $-16, %rsp\n  call run\n");
