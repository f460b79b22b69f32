// SPDX-License-Identifier: Apache-2.0
#include "toolchain/tools.h"

#include "os/files.h"
#include "os/process.h"
#include "toolchain/classes.h"

#include <array>

namespace tarn::toolchain {
namespace {

constexpr std::string_view LibraryFile = "libtarnwick.so";
constexpr std::array<std::string_view, 3> SystemFolders = {"../lib/tarnwick/", "../lib/", "../"};
constexpr int Forever = 3600 * 1000;  // a wait is taken up again until the tool ends

const char* describeStart(os::StartError error) {
    switch (error) {
    case os::StartError::NotFound: return "the program is not found";
    case os::StartError::NotExecutable: return "the file is not a program";
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

bool isProgram(const std::string& path) {
    const os::FileInfo info = os::infoOf(path);
    return info.exists && !info.folder && (info.mode & 0111U) != 0;
}

}  // namespace

ToolRun runTool(const std::string& program, const std::vector<std::string>& arguments, const std::string& outputFile) {
    ToolRun run;
    os::StartError error = os::StartError::None;
    const auto child = os::processes().start({program, arguments, {}, outputFile}, error);
    if (child == nullptr) {
        run.failure = describeStart(error);
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

std::string toolFolder() { return os::executableFolder(); }

std::string libraryFolder() {
    std::string resolved;
    os::files().resolve(os::executablePath(), resolved);
    std::vector<std::string> folders = {toolFolder(), folderOf(resolved)};
    for (const std::string_view folder : SystemFolders) folders.push_back(folderOf(resolved) + std::string(folder));
    for (const std::string& folder : folders)
        if (os::sizeOf(folder + std::string(LibraryFile)) > 0) return folder.substr(0, folder.size() - 1);
    return {};
}

std::string workFolder(const std::string& classFile) { return folderOf(classFile) + ".tarnwick/"; }
std::string objectFile(const std::string& classFile) { return workFolder(classFile) + stemOf(classFile) + ".o"; }
std::string generatedFile(const std::string& classFile) { return workFolder(classFile) + stemOf(classFile) + ".c"; }

}  // namespace tarn::toolchain
