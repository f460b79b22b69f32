// SPDX-License-Identifier: Apache-2.0
//
// quarn: compiles one class. Its messages go to `sarn.err` beside the name that it was called by, and, unless
// it was told to be quiet, to standard output. The exit code is 0 only if nothing went wrong.
#include "os/files.h"
#include "os/process.h"
#include "toolchain/build/compile.h"
#include "toolchain/build/tools.h"

#include <cstdio>

namespace {

constexpr int Failed = 1, CannotReport = 2;

}  // namespace

int main(int argc, char** argv) {
    using namespace tarn;
    os::setCommandLine(argc, argv);
    const std::string results = toolchain::toolFolder() + std::string(toolchain::ResultFile);
    os::files().remove(results);
    toolchain::Messages messages;
    const toolchain::CompilerOptions options = toolchain::readCompilerOptions(os::commandLine(), messages);
    if (messages.empty()) toolchain::compileClass(options, messages);
    const std::string report = messages.report(options.file);
    if (!options.quiet) std::fputs(report.c_str(), stdout);
    if (!os::saveFile(results, report, os::Durability::Unsynced).ok()) {
        std::fprintf(stderr, "quarn: cannot write '%s'\n%s", results.c_str(), report.c_str());
        return CannotReport;
    }
    return messages.empty() ? 0 : Failed;
}
