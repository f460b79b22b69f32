// SPDX-License-Identifier: Apache-2.0
//
// quarn: compiles classes. Its messages go to `sarn.err` (os/toolresults.h tells where) and, unless it was told to be
// quiet, to standard output. The exit code is 0 only if nothing went wrong.
#include "os/files.h"
#include "os/process.h"
#include "os/toolresults.h"
#include "toolchain/build/compile.h"
#include "toolchain/build/tools.h"

#include <cstdio>
#include <malloc.h>

// The note by which the make tool knows this compiler from another one of its name; see isOwnCompiler.
__asm__(".pushsection .note.tarnwick, \"a\", @note\n"
        ".balign 4\n.long 9, 4, 1\n.asciz \"Tarnwick\"\n.balign 4\n.ascii \"quar\"\n"
        ".popsection\n");

namespace {

using namespace tarn;

constexpr int Failed = 1, CannotReport = 2;

int compile() {
    const std::string results = os::resultFile(toolchain::toolFolder(), toolchain::ResultFile);
    os::files().remove(results);
    toolchain::Messages messages;
    const toolchain::CompilerOptions options = toolchain::readCompilerOptions(os::commandLine(), messages);
    std::string report;
    bool clean = messages.empty();
    if (clean) {
        const auto classes = toolchain::compileClasses(options);
        report = toolchain::reportOf(classes);
        for (const auto& one : classes) clean = clean && one.messages.empty();
    } else {
        report = messages.report(options.files.empty() ? "quarn" : options.files.front());
    }
    if (!options.quiet) std::fputs(report.c_str(), stdout);
    if (!os::saveFile(results, report, os::Durability::Unsynced).ok()) {
        std::fprintf(stderr, "quarn: cannot write '%s'\n%s", results.c_str(), report.c_str());
        return CannotReport;
    }
    return clean ? 0 : Failed;
}

}  // namespace

int main(int argc, char** argv) {
    // What one class took the next one takes again; the system need not have it in between.
    constexpr int Kept = 256 << 20, Step = 8 << 20;
    mallopt(M_TRIM_THRESHOLD, Kept);
    mallopt(M_MMAP_THRESHOLD, Step);
    mallopt(M_TOP_PAD, Step);
    os::setCommandLine(argc, argv);
    const int code = compile();
    std::fflush(stdout);
    os::endProcess(code);
}
