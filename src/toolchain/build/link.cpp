// SPDX-License-Identifier: Apache-2.0
#include "toolchain/build/link.h"

#include "os/files.h"
#include "toolchain/build/tcc.h"
#include "toolchain/build/tools.h"
#include "toolchain/output/messages.h"

#include <algorithm>

namespace tarn::toolchain {
namespace {

std::string save(const std::string& file, std::string_view bytes) {
    const os::SaveResult result = os::saveFile(file, bytes, os::Durability::Unsynced);
    if (result.ok()) return {};
    return "the file '" + file + "' cannot be written: " + std::string(os::describe(result.error));
}

std::string inMemory(const std::vector<LinkInput>& inputs, const std::string& library,
                     const std::string& made) {
    std::vector<std::string_view> objects{startObject()};
    for (const LinkInput& input : inputs) objects.push_back(input.bytes);
    const Made program = tccLink(objects, library + "/libtarnwick.so");
    if (!program.failure.empty()) return program.failure;
    const std::string failure = save(made, program.bytes);
    if (!failure.empty()) return failure;
    constexpr std::uint32_t Executable = 0111;
    const std::uint32_t mode = os::infoOf(made).mode;
    // Who may read it may run it.
    const os::FileError error = os::files().setMode(made, mode | ((mode & 0444U) >> 2 & Executable));
    return std::string(os::describe(error));
}

// Files of the bytes that the linker gets, removed at the end. It gets no others: what stands in the place of an object by
// then may be another build's.
class Files {
public:
    explicit Files(std::string scratch) : scratch_(std::move(scratch)) {}
    ~Files() {
        for (const std::string& name : names_) os::files().remove(name);
    }
    Files(const Files&) = delete;
    Files& operator=(const Files&) = delete;

    // What went wrong; empty on success.
    std::string add(std::string_view bytes) {
        names_.push_back(scratch_ + "." + std::to_string(names_.size()) + ".o");
        return save(names_.back(), bytes);
    }
    const std::vector<std::string>& names() const { return names_; }

private:
    std::string scratch_;
    std::vector<std::string> names_;
};

std::string byMachine(const std::vector<LinkInput>& inputs, const std::string& library,
                      const std::string& scratch, const std::string& made) {
    const std::string compiler = findCCompiler();
    if (compiler.empty()) return problemText(Problem::NoCCompiler, {});
    Files files(scratch);
    std::string failure = files.add(startObject());
    for (const LinkInput& input : inputs)
        if (failure.empty()) failure = files.add(input.bytes);
    if (!failure.empty()) return failure;
    std::vector<std::string> arguments = {"-w", "-Wl,--allow-shlib-undefined", "-Wl,-z,noexecstack", "-o",
                                          made};
    arguments.insert(arguments.end(), files.names().begin(), files.names().end());
    // A word of its own for each path: a comma would divide one behind -Wl.
    for (const std::string& word :
         {"-L" + library, std::string("-ltarnwick"), std::string("-Wl,-rpath,$ORIGIN"),
          std::string("-Xlinker"), std::string("-rpath"), std::string("-Xlinker"), library})
        arguments.push_back(word);
#ifdef __SANITIZE_ADDRESS__
    // The kernel of such a build needs its run-time to be the first library of the program.
    arguments.push_back("-fsanitize=address");
#endif
    const ToolRun run = runTool(compiler, arguments, made + ".log");
    if (run.failure.empty() && os::sizeOf(made) > 0) return {};
    return (run.failure.empty() ? "no program was written" : run.failure) +
           (run.output.empty() ? "" : "\n" + run.output);
}

}  // namespace

std::string linkProgram(const std::vector<LinkInput>& inputs, const std::string& library,
                        const std::string& scratch, const std::string& made) {
    const bool quick =
        std::all_of(inputs.begin(), inputs.end(), [](const LinkInput& one) { return one.quick; });
    if (!quick || !tccIsThere()) return byMachine(inputs, library, scratch, made);
    const std::string failure = inMemory(inputs, library, made);
    return failure.empty() || findCCompiler().empty() ? failure : byMachine(inputs, library, scratch, made);
}

}  // namespace tarn::toolchain
