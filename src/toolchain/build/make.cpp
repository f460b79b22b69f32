// SPDX-License-Identifier: Apache-2.0
#include "toolchain/build/make.h"

#include "kernel/run/runtime.h"
#include "library/settings/profstr.h"
#include "library/system/system.h"
#include "os/files.h"
#include "os/paths.h"
#include "platform/registry.h"
#include "platform/resources/resource.h"
#include "toolchain/build/tools.h"
#include "toolchain/language/classes.h"
#include "toolchain/language/words.h"
#include "toolchain/output/generator.h"

namespace tarn::toolchain {
namespace {

// ---- the compiler's line ----

// The settings file of the environment that this user has installed; empty if none is known.
std::string settingsFile() {
    const std::string key = "SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\App Paths\\";
    const std::string program = std::string(ProductWord) + " v" + std::string(ProductVersion) + " " +
                                std::string(ProductBuild) + ".exe";
    for (const std::string& name : {program, std::string("ide.exe")}) {
        const std::string path = platform::RegGetSetting(key + name, "");
        if (!path.empty()) return std::string(paths::folder(path)) + "ide.ini";
    }
    return {};
}

std::string compilerLine() {
    const std::string settings = settingsFile();
    const std::string line = settings.empty() ? std::string() : PROFILESTRGET(settings, "ordo", "CLS");
    return line.empty() ? "\"" + toolFolder() + "quarn.exe\" /p1 /d1 /q /s3000 ^.cls" : line;
}

// What the placeholders of paths in resource files stand for.
std::vector<platform::ResourceFolder> resourceFolders(const std::string& compilerFolder) {
    const std::string settings = settingsFile();
    const std::string folder =
        settings.empty() ? std::string() : PROFILESTRGET(settings, "PathsOptionsDlg", "Edit5");
    return {{"<RESOURCEDIR>", folder},
            {"{RESOURCEDIR}", folder},
            {"<COMPILERDIR>", compilerFolder},
            {"{COMPILERDIR}", compilerFolder}};
}

bool isPathOption(const std::string& word) {
    return word.size() > 2 && (word[0] == '/' || word[0] == '-') && (word[1] == 'i' || word[1] == 'I') &&
           !isClassFile(word);
}

struct Command {
    std::string program;
    std::vector<std::string> arguments;
};

// The line for one class. The folder of the main class leads the inherited path, so that every class of the
// program finds the others from wherever it is compiled.
Command commandFor(const std::string& line, const std::string& file, const std::string& mainFolder,
                   const std::vector<std::string>& inheritedPath) {
    const std::string base = std::string(paths::withoutExtension(file));
    std::vector<std::string> words = SPLITARGUMENTS(FILESUBSTITUTENAME(line, "^", base));
    Command command;
    std::string path = mainFolder;
    for (const std::string& folder : inheritedPath) path += ";" + folder;
    for (std::size_t i = 0; i < words.size(); ++i) {
        if (i == 0)
            command.program = words[i];
        else if (isPathOption(words[i]))
            path += inheritedPath.empty() ? ";" + words[i].substr(2) : "";
        else
            command.arguments.push_back(words[i] == base + ".cls" ? file : words[i]);
    }
    command.arguments.push_back("-i" + path);
    const std::string found = FINDTOOL(command.program);
    if (!found.empty()) command.program = found;
    return command;
}

// ---- one compile ----

// The messages of a compile that failed; empty if it went well.
std::string compile(const Command& command, const std::string& file) {
    const std::string results = std::string(paths::folder(command.program)).append(ResultFile);
    os::files().remove(results);
    const ToolRun run = runTool(command.program, command.arguments);
    std::string text;
    const bool written = os::readFile(results, text) == os::FileError::None;
    const bool success = text.empty() ? written : text.find(SuccessMark) != std::string::npos;
    if (run.failure.empty() && success) return {};
    if (!text.empty() && !success && run.signal == 0) return text;
    Messages messages;
    messages.add(file, 0, Problem::ToolFailed, {run.failure.empty() ? "it left no message" : run.failure});
    return (success ? std::string() : text) + messages.report(file);
}

// A result is not older than what it was made of, also when that has a time in the future.
void notOlder(const std::string& result, const std::string& input) {
    const std::int64_t time = os::infoOf(input).modified;
    if (os::infoOf(result).modified < time) os::files().setModified(result, time);
}

// ---- the whole build ----

class Builder {
public:
    Builder(const MakeOptions& options, const Sources& sources)
        : options_(options), sources_(sources), main_(sources.classes.back()), line_(compilerLine()) {}

    BuildResult run() {
        compileClasses();
        if (result_.report.empty()) compileResources();
        if (result_.report.empty() && !sources_.exe.empty()) link();
        result_.ok = result_.report.empty();
        if (result_.ok) result_.report = summaryLine(main_.path, 0);
        return result_;
    }

private:
    bool all() const { return options_.mode == MakeMode::All; }

    void compileClasses() {
        const std::string mainFolder(paths::folder(main_.path));
        result_.compilerFolder = paths::folder(commandFor(line_, main_.path, mainFolder, {}).program);
        for (const SourceClass& item : sources_.classes) {
            if (!isClassFile(item.path) || (!all() && !isOutOfDate(item))) continue;
            result_.report +=
                compile(commandFor(line_, item.path, mainFolder, options_.inheritedPath), item.path);
            compiled_ = true;
        }
    }

    void fail(Problem problem, std::initializer_list<std::string_view> values = {}) {
        Messages messages;
        messages.add(main_.path, 0, problem, values);
        result_.report += messages.report(main_.path);
    }

    void compileResources() {
        if (sources_.companion.empty() || (!all() && !companionIsOutOfDate(sources_))) return;
        std::vector<std::string> files;
        for (const SourceClass& item : sources_.classes)
            if (!item.resource.empty()) files.push_back(item.resource);
        const std::string errors =
            platform::CompileResources(files, sources_.companion, resourceFolders(result_.compilerFolder));
        if (errors.empty()) {
            for (const std::string& file : files) notOlder(sources_.companion, file);
            return;
        }
        const bool isMessage = errors.find(" : error ") != std::string::npos;
        if (isMessage)
            result_.report += errors;
        else
            fail(Problem::ResourcesFailed, {errors});
    }

    void link() {
        if (!all() && !compiled_ && !exeIsOutOfDate(sources_)) return;
        if (!main_.isMain) return fail(Problem::NotAMainClass);
        const std::string compiler = findCCompiler(), library = libraryFolder();
        if (compiler.empty()) return fail(Problem::NoCCompiler);
        if (library.empty())
            return fail(Problem::LinkFailed, {"libtarnwick.so is not found beside the tools"});
        const std::string start = workFile(main_.path, ".main.c");
        const os::SaveResult saved =
            os::saveFile(start, generateProgram(main_.name), os::Durability::Unsynced);
        if (!saved.ok()) return fail(Problem::CannotWrite, {start, os::describe(saved.error)});
        runLinker(compiler, library, start);
    }

    // The program is made under another name and put in its place, so that one that still runs is not
    // disturbed.
    void runLinker(const std::string& compiler, const std::string& library, const std::string& start) {
        const std::string made = workFile(main_.path, ".new");
        std::vector<std::string> arguments = {"-w", "-Wl,--allow-shlib-undefined", "-o", made, start};
        for (const SourceClass& item : sources_.classes) arguments.push_back(objectFile(item.path));
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
        if (!run.failure.empty() || os::sizeOf(made) <= 0) {
            os::files().remove(made);
            return fail(Problem::LinkFailed, {(run.failure.empty() ? "no program was written" : run.failure) +
                                              (run.output.empty() ? "" : "\n" + run.output)});
        }
        const os::FileError error = os::files().rename(made, sources_.exe);
        if (error != os::FileError::None)
            return fail(Problem::CannotWrite, {sources_.exe, os::describe(error)});
        for (const SourceClass& item : sources_.classes) notOlder(sources_.exe, objectFile(item.path));
    }

    const MakeOptions& options_;
    const Sources& sources_;
    const SourceClass& main_;
    const std::string line_;
    BuildResult result_;
    bool compiled_ = false;
};

}  // namespace

BuildResult build(const MakeOptions& options, const Sources& sources) {
    return Builder(options, sources).run();
}

}  // namespace tarn::toolchain
