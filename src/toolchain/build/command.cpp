// SPDX-License-Identifier: Apache-2.0
#include "toolchain/build/command.h"

#include "kernel/debug/debugsettings.h"
#include "kernel/run/runtime.h"
#include "library/settings/profstr.h"
#include "library/system/system.h"
#include "os/files.h"
#include "os/paths.h"
#include "os/process.h"
#include "toolchain/build/tools.h"
#include "toolchain/language/classes.h"

namespace tarn::toolchain {
namespace {

constexpr std::string_view CompilerName = "quarn.exe";
constexpr const char* DefaultWords[] = {"/p1", "/d1", "/q", "/s3000", "^.cls"};
using namespace std::string_view_literals;
constexpr std::string_view Note = "Tarnwick\0\0\0\0quar"sv;
constexpr std::size_t NotePlace = 4096;  // it stands among the first bytes of the file

// The settings file of the environment that this user has installed; empty if none is known.
std::string installedSettings() {
    return FindSettingsFile(ProductWord, ProductVersion, ProductBuild);
}

std::string lineIn(const std::string& settings) {
    return settings.empty() || os::sizeOf(settings) < 0 ? std::string()
                                                        : PROFILESTRGET(settings, "ordo", "CLS");
}

std::vector<platform::ResourceFolder> resourceFolders(const std::string& settings,
                                                      const std::string& compilerFolder) {
    const std::string folder =
        settings.empty() ? std::string() : PROFILESTRGET(settings, "PathsOptionsDlg", "Edit5");
    return {{"<RESOURCEDIR>", folder},
            {"{RESOURCEDIR}", folder},
            {"<COMPILERDIR>", compilerFolder},
            {"{COMPILERDIR}", compilerFolder}};
}

std::string resolvedFolder(const std::string& file) {
    std::string resolved;
    if (os::files().resolve(file, resolved) != os::FileError::None) return {};
    return std::string(paths::folder(resolved));
}

bool holdsNote(const std::string& file) {
    os::Handle handle = -1;
    if (os::files().open(file, os::OpenMode::Read, 0, handle) != os::FileError::None) return false;
    std::string bytes(NotePlace, '\0');
    std::size_t got = 0;
    os::readUpTo(handle, 0, bytes.data(), bytes.size(), got);
    os::files().close(handle);
    return std::string_view(bytes).substr(0, got).find(Note) != std::string_view::npos;
}

// Another program may have been put in its place: `quarn` is told by the note that it carries.
bool isOwnCompiler(const std::string& program) {
    const std::string folder = resolvedFolder(program);
    return !folder.empty() && folder == resolvedFolder(os::executablePath()) && holdsNote(program);
}

bool isPathOption(const std::string& word) {
    return word.size() > 2 && (word[0] == '/' || word[0] == '-') && (word[1] == 'i' || word[1] == 'I') &&
           !isClassFile(word);
}

// The word with the class in the place of its mark.
std::string substituted(std::string word, const std::string& base) {
    for (std::size_t at = 0; (at = word.find('^', at)) != std::string::npos; at += base.size())
        word.replace(at, 1, base);
    return word;
}

}  // namespace

CompilerLine findCompilerLine() {
    const std::string beside = FINDTOOL(toolFolder() + std::string(CompilerName));
    std::string settings = toolFolder() + "ide.ini";
    std::string text = lineIn(settings);
    const bool isHere = !text.empty();
    if (!isHere) text = lineIn(settings = installedSettings());
    CompilerLine line;
    line.words = SPLITARGUMENTS(text);
    if (line.words.empty()) {
        line.program = toolFolder() + std::string(CompilerName);
        line.words.assign(std::begin(DefaultWords), std::end(DefaultWords));
    } else {
        line.program = line.words.front();
        line.words.erase(line.words.begin());
    }
    if (!isHere && !beside.empty()) line.program = beside;
    // A name without a folder is that of a tool beside this one, whatever folder the build is called from.
    const bool bare = paths::folder(line.program).empty();
    const std::string found = FINDTOOL((bare ? toolFolder() : std::string()) + line.program);
    if (!found.empty()) line.program = found;
    line.isOwn = isOwnCompiler(line.program);
    line.resourceFolders = resourceFolders(settings, std::string(paths::folder(line.program)));
    return line;
}

std::vector<std::string> inheritedPath(const CompilerLine& line) {
    std::vector<std::string> folders;
    for (const std::string& word : line.words)
        if (isPathOption(word))
            for (std::string& folder : splitPathList(word.substr(2))) folders.push_back(std::move(folder));
    return folders;
}

std::vector<std::string> compilerArguments(const CompilerLine& line, const std::vector<std::string>& files,
                                           const std::string& mainFolder,
                                           const std::vector<std::string>& inheritedPath) {
    std::vector<std::string> arguments;
    std::string path;
    const auto addPath = [&path](const std::string& folder) { path += (path.empty() ? "" : ";") + folder; };
    // Our own takes the folder as it is; in a list a semicolon would divide it.
    if (line.isOwn)
        arguments.push_back("-m" + mainFolder);
    else
        addPath(mainFolder);
    for (const std::string& folder : inheritedPath) addPath(folder);
    const std::string base(paths::withoutExtension(files.front()));
    for (const std::string& word : line.words) {
        if (word == "^.cls")
            arguments.insert(arguments.end(), files.begin(), files.end());
        else if (!isPathOption(word))
            arguments.push_back(substituted(word, base));
    }
    if (!path.empty()) arguments.push_back("-i" + path);
    return arguments;
}

}  // namespace tarn::toolchain
