// SPDX-License-Identifier: Apache-2.0
#include "toolchain/build/tools.h"

#include "os/files.h"
#include "os/paths.h"
#include "os/process.h"
#include "toolchain/language/classes.h"

#include <algorithm>
#include <array>
#include <unistd.h>

namespace tarn::toolchain {
namespace {

constexpr std::string_view LibraryFile = "libtarnwick.so";
constexpr std::array<std::string_view, 3> SystemFolders = {"../lib/tarnwick/", "../lib/", "../"};
constexpr int MostOutputLines = 20;
constexpr int Forever = 3600 * 1000;  // a wait is taken up again until the tool ends

std::string describeStart(os::StartError error, const std::string& program) {
    switch (error) {
    case os::StartError::NotFound: return "the program is not found";
    case os::StartError::NotExecutable:
        return "its file may not be run: make it executable (chmod +x '" + program + "')";
    case os::StartError::BadFormat: return "the file is not a program";
    case os::StartError::WontRun: return "what it needs to run is missing, or it is being written";
    case os::StartError::NoMemory: return "memory is exhausted";
    case os::StartError::BadArguments: return "the command line is too long";
    case os::StartError::BadOutput: return "its output file cannot be written";
    default: return "the program cannot be started";
    }
}

std::string describeEnd(const os::ExitState& state) {
    if (state.signal != 0) return "it was ended by signal " + std::to_string(state.signal);
    return state.code != 0 ? "it ended with code " + std::to_string(state.code) : std::string();
}

// What a person reads of a tool's output; a linker can write thousands of lines.
std::string firstLines(const std::string& text) {
    std::size_t end = 0;
    for (int line = 0; line < MostOutputLines && end < text.size(); ++line)
        end = std::min(text.find('\n', end), text.size() - 1) + 1;
    return end < text.size() ? text.substr(0, end) + "...(more)...\n" : text;
}

bool isProgram(const std::string& path) {
    const os::FileInfo info = os::infoOf(path);
    return info.exists && !info.folder && (info.mode & 0111U) != 0;
}

}  // namespace

ToolRun runTool(const std::string& program, const std::vector<std::string>& arguments,
                const std::string& outputFile) {
    ToolRun run;
    os::StartError error = os::StartError::None;
    const auto child = os::processes().start({program, arguments, {}, outputFile, false}, error);
    if (child == nullptr) {
        run.failure = describeStart(error, program);
        return run;
    }
    run.started = true;
    os::ExitState state;
    while (!state.ended) state = child->wait(Forever);
    run.code = state.code;
    run.signal = state.signal;
    run.failure = describeEnd(state);
    if (!outputFile.empty()) {
        os::readFile(outputFile, run.output);
        run.output = firstLines(run.output);
        os::files().remove(outputFile);
    }
    return run;
}

std::string findCCompiler() {
    std::string path = os::environment("PATH");
    if (path.empty()) path = "/usr/local/bin:/usr/bin:/bin";
    for (const char* name : {"cc", "gcc", "clang"})
        for (std::size_t begin = 0; begin <= path.size();) {
            const std::size_t end = std::min(path.find(':', begin), path.size());
            const std::string file = path.substr(begin, end - begin) + "/" + name;
            if (end > begin && isProgram(file)) return file;
            begin = end + 1;
        }
    return {};
}

std::string toolFolder() {
    return os::executableFolder();
}

std::string libraryFolder() {
    std::string resolved;
    os::files().resolve(os::executablePath(), resolved);
    const std::string own(paths::folder(resolved));
    std::vector<std::string> folders = {toolFolder(), own};
    for (const std::string_view folder : SystemFolders) folders.push_back(own + std::string(folder));
    for (const std::string& folder : folders)
        if (os::sizeOf(folder + std::string(LibraryFile)) > 0) return folder.substr(0, folder.size() - 1);
    return {};
}

std::string workFolder(const std::string& classFile) {
    return std::string(paths::folder(classFile)) + ".tarnwick/";
}
std::string workFile(const std::string& classFile, std::string_view extension) {
    return workFolder(classFile).append(paths::stem(classFile)).append(extension);
}
std::string scratchFile(const std::string& classFile, std::string_view extension) {
    return workFile(classFile, "." + std::to_string(::getpid())).append(extension);
}
std::string objectFile(const std::string& classFile) {
    return workFile(classFile, ".o");
}
std::string generatedFile(const std::string& classFile) {
    return workFile(classFile, ".c");
}

}  // namespace tarn::toolchain
