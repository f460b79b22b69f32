// SPDX-License-Identifier: Apache-2.0
//
// ordo: builds a program from its main class, or answers what it consists of. The answer, or the result of
// the build, goes to the file of -o, else to standard output. After a build the compiler's messages of the
// whole run stand in the compiler's `sarn.err`. The exit code is 0 only if nothing went wrong.
#include "os/files.h"
#include "os/instance.h"
#include "os/process.h"
#include "os/toolresults.h"
#include "platform/model/view.h"
#include "toolchain/build/make.h"
#include "toolchain/language/classes.h"

#include <cstdio>

namespace {

using namespace tarn;

constexpr int Failed = 1, CannotReport = 2;

bool write(const std::string& file, const std::string& text) {
    if (file.empty()) return std::fputs(text.c_str(), stdout) >= 0;
    if (os::saveFile(file, text, os::Durability::Unsynced).ok()) return true;
    std::fprintf(stderr, "ordo: cannot write '%s'\n%s", file.c_str(), text.c_str());
    return false;
}

// Builds of one user go one after the other: they share the compiler's result file, and often objects. False
// if another one does not end; a lock that cannot be made stops nobody.
bool waitForOthers() {
    constexpr int Patience = 10 * 60 * 1000;
    return os::acquireInstanceLock("ordo", Patience) != os::LockState::Busy;
}

}  // namespace

int main(int argc, char** argv) {
    os::setCommandLine(argc, argv);
    // What the library tells in boxes goes to standard error.
    platform::useView(platform::makeHeadlessView());
    toolchain::Messages messages;
    toolchain::MakeOptions options = toolchain::readMakeOptions(os::commandLine(), messages);
    // A stale result goes first; a device such as /dev/null is no result, and must stay.
    if (!options.outputFile.empty() && !os::infoOf(options.outputFile).special)
        os::files().remove(options.outputFile);
    options.file = toolchain::fullPath(options.file);
    if (messages.empty() && os::sizeOf(options.file) < 0)
        messages.add(options.file, 0, toolchain::Problem::CannotRead,
                     {os::describe(os::FileError::NotFound)});
    if (!messages.empty()) {
        write(options.outputFile, messages.report("ordo"));
        return Failed;
    }
    if (!options.query && !waitForOthers()) {
        messages.add(options.file, 0, toolchain::Problem::ToolFailed, {"another build does not end"});
        write(options.outputFile, messages.report(options.file));
        return Failed;
    }
    const toolchain::CompilerLine line = toolchain::findCompilerLine();
    if (options.inheritedPath.empty()) options.inheritedPath = toolchain::inheritedPath(line);
    const toolchain::Sources sources = toolchain::findSources(options.file, options.inheritedPath);
    if (options.query)
        return write(options.outputFile, toolchain::answerQuery(options, line, sources)) ? 0 : CannotReport;
    const toolchain::BuildResult result = toolchain::build(options, line, sources);
    const bool written = write(options.outputFile, result.report);
    const bool reported = write(os::resultFile(result.compilerFolder, toolchain::ResultFile), result.report);
    return !written || !reported ? CannotReport : result.ok ? 0 : Failed;
}
