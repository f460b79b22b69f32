// SPDX-License-Identifier: Apache-2.0
#include "toolchain/build/compile.h"

#include "os/clock.h"
#include "os/files.h"
#include "toolchain/build/tools.h"
#include "toolchain/language/checker.h"
#include "toolchain/language/classes.h"
#include "toolchain/output/generator.h"
#include "toolchain/output/symfile.h"

#include <algorithm>

namespace tarn::toolchain {
namespace {

// File systems take the time of a file from a clock that goes in steps.
constexpr std::int64_t Granularity = 20'000'000;

bool save(const std::string& file, const std::string& text, const std::string& classFile,
          Messages& messages) {
    const os::SaveResult result = os::saveFile(file, text, os::Durability::Unsynced);
    if (!result.ok()) messages.add(classFile, 0, Problem::CannotWrite, {file, os::describe(result.error)});
    return result.ok();
}

bool makeWorkFolder(const std::string& file, Messages& messages) {
    const os::FileError error = os::makeFolders(workFolder(file));
    if (error == os::FileError::None) return true;
    messages.add(file, 0, Problem::CannotWrite, {workFolder(file), os::describe(error)});
    return false;
}

void countSymbols(const CompilerOptions& options, const ClassTree& tree, Messages& messages) {
    const std::size_t count = symbolsOf(tree).size();
    if (options.maxSymbols > 0 && count > static_cast<std::size_t>(options.maxSymbols))
        messages.add(tree.path, tree.line, Problem::TooManySymbols,
                     {std::to_string(count), std::to_string(options.maxSymbols)});
}

void runCCompiler(const std::string& file, bool debugged, Messages& messages) {
    const std::string compiler = findCCompiler();
    if (compiler.empty()) return messages.add(file, 0, Problem::NoCCompiler);
    // Written under another name first: what make looks at is the object of a compile that ended well.
    const std::string object = objectFile(file), made = object + ".new";
    const ToolRun run = runTool(compiler,
                                {"-std=c11", debugged ? "-O0" : "-O1", "-w", "-fwrapv", "-pipe", "-c", "-o",
                                 made, generatedFile(file)},
                                object + ".log");
    const bool whole = run.failure.empty() && os::sizeOf(made) > 0;
    if (whole && os::files().rename(made, object) == os::FileError::None) return;
    os::files().remove(made);
    const std::string why = run.failure.empty() ? "it wrote no object file" : run.failure;
    messages.add(file, 0, Problem::CCompilerFailed, {why + (run.output.empty() ? "" : "\n" + run.output)});
}

// What was made gets the time when its sources were read, not when it was written: a source that is saved
// meanwhile is newer then, and one whose time lies in the future is not newer for ever.
void stampResult(const std::string& file, std::int64_t time) {
    os::files().setModified(file, time);
}

void generate(const CompilerOptions& options, const ClassTree& tree, std::int64_t time, Messages& messages) {
    const Generated made = generateC(tree, {options.precond, options.debug});
    if (!makeWorkFolder(tree.path, messages)) return;
    if (!save(generatedFile(tree.path), made.text, tree.path, messages)) return;
    // What is stepped through is compiled often: quickly then, and without shortcuts.
    runCCompiler(tree.path, options.debug == 2, messages);
    if (!messages.empty()) return;
    save(changeExtension(tree.path, ".sym"), symbolFile(tree, describeOptions(options), made.codeLines),
         tree.path, messages);
    stampResult(changeExtension(tree.path, ".sym"), time);
    stampResult(objectFile(tree.path), time);
}

}  // namespace

void compileClass(const CompilerOptions& options, Messages& messages) {
    const std::string file = fullPath(options.file);
    os::files().remove(objectFile(file));
    const std::int64_t began = os::clock().now() - Granularity;
    ClassLoader loader(options.inheritedPath);
    ClassTree* tree = loader.load(file, messages);
    if (tree == nullptr) return;
    if (!tree->name.empty()) checkClass(*tree, messages);
    if (messages.empty()) countSymbols(options, *tree, messages);
    if (messages.empty()) generate(options, *tree, std::max(began, loader.newest()), messages);
    if (!messages.empty()) os::files().remove(objectFile(file));
}

}  // namespace tarn::toolchain
