// SPDX-License-Identifier: Apache-2.0
#include "toolchain/build/backend.h"

#include "os/files.h"
#include "os/paths.h"
#include "os/process.h"
#include "toolchain/build/tcc.h"
#include "toolchain/build/tools.h"

#include <algorithm>
#include <iterator>

namespace tarn::toolchain {
namespace {

constexpr const char* Variable = "TARNWICK_CC";

struct Name {
    const char* text;
    BackEnd backEnd;
};
constexpr Name Names[] = {{"tcc", BackEnd::Quick}, {"gcc-O0", BackEnd::Plain}, {"gcc-O2", BackEnd::Best}};

void fail(const std::string& classFile, const std::string& why, const std::string& output,
          Messages& messages) {
    messages.add(classFile, 0, Problem::CCompilerFailed, {why + (output.empty() ? "" : "\n" + output)});
}

CompiledObject withQuick(const std::string& classFile, const std::string& text, Messages& messages) {
    Made made = tccCompile(text);
    if (made.failure.empty()) return {std::move(made.bytes), true};
    fail(classFile, made.failure, {}, messages);
    return {};
}

// The C compiler writes the name of its source into the object, without its folder. So that an object depends on its text
// alone, the source has the class's name in a folder of this process.
CompiledObject withMachine(const std::string& compiler, const std::string& classFile, const std::string& text,
                           bool best, Messages& messages) {
    const std::string folder = scratchFile(classFile, "") + "/";
    const std::string source = folder + std::string(paths::stem(classFile)) + ".c", made = source + ".o";
    static_cast<void>(os::files().makeFolder(folder));
    CompiledObject object;
    const os::SaveResult saved = os::saveFile(source, text, os::Durability::Unsynced);
    if (saved.ok()) {
        // Descriptors are seen under several types, hence without the rule of strict aliasing.
        const ToolRun run = runTool(compiler,
                                    {"-std=c11", best ? "-O2" : "-O0", "-w", "-fwrapv",
                                     "-fno-strict-aliasing", "-pipe", "-c", "-o", made, source},
                                    made + ".log");
        if (run.failure.empty()) os::readFile(made, object.bytes);
        if (object.bytes.empty())
            fail(classFile, run.failure.empty() ? "it wrote no object file" : run.failure, run.output,
                 messages);
    } else {
        messages.add(classFile, 0, Problem::CannotWrite, {source, os::describe(saved.error)});
    }
    os::files().remove(made);
    os::files().remove(source);
    os::files().removeFolder(folder);
    return object;
}

}  // namespace

BackEnd chooseBackEnd(int debug) {
    const std::string named = os::environment(Variable);
    const auto found = std::find_if(std::begin(Names), std::end(Names),
                                    [&](const Name& name) { return named == name.text; });
    if (found != std::end(Names)) return found->backEnd;
    if (!named.empty()) return BackEnd::Unknown;
    if (debug == 0) return BackEnd::Best;
    return tccIsThere() ? BackEnd::Quick : BackEnd::Plain;
}

CompiledObject compileObject(const std::string& classFile, const std::string& text, int debug,
                             Messages& messages) {
    const BackEnd chosen = chooseBackEnd(debug);
    const bool isFree = os::environment(Variable).empty();
    if (chosen == BackEnd::Unknown) {
        messages.add(classFile, 0, Problem::NoSuchBackEnd, {os::environment(Variable)});
        return {};
    }
    if (chosen == BackEnd::Quick) {
        Messages own;
        CompiledObject object = withQuick(classFile, text, own);
        if (own.empty()) return object;
        if (!isFree || findCCompiler().empty()) {
            messages = std::move(own);
            return {};
        }
    }
    const std::string compiler = findCCompiler();
    if (!compiler.empty()) return withMachine(compiler, classFile, text, chosen == BackEnd::Best, messages);
    if (isFree && tccIsThere()) return withQuick(classFile, text, messages);
    messages.add(classFile, 0, Problem::NoCCompiler);
    return {};
}

}  // namespace tarn::toolchain
