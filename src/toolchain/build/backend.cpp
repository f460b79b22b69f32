// SPDX-License-Identifier: Apache-2.0
#include "toolchain/build/backend.h"

#include "os/files.h"
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

CompiledObject withMachine(const std::string& compiler, const std::string& classFile, bool best,
                           Messages& messages) {
    const std::string made = objectFile(classFile) + ".new";
    // Descriptors are seen under several types, hence without the rule of strict aliasing.
    const ToolRun run = runTool(compiler,
                                {"-std=c11", best ? "-O2" : "-O0", "-w", "-fwrapv", "-fno-strict-aliasing",
                                 "-pipe", "-c", "-o", made, generatedFile(classFile)},
                                made + ".log");
    CompiledObject object;
    if (run.failure.empty()) os::readFile(made, object.bytes);
    os::files().remove(made);
    if (object.bytes.empty())
        fail(classFile, run.failure.empty() ? "it wrote no object file" : run.failure, run.output, messages);
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
    if (!compiler.empty()) return withMachine(compiler, classFile, chosen == BackEnd::Best, messages);
    if (isFree && tccIsThere()) return withQuick(classFile, text, messages);
    messages.add(classFile, 0, Problem::NoCCompiler);
    return {};
}

}  // namespace tarn::toolchain
