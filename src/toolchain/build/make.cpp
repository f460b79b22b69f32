// SPDX-License-Identifier: Apache-2.0
#include "toolchain/build/make.h"

#include "os/files.h"
#include "os/paths.h"
#include "os/toolresults.h"
#include "platform/resources/resource.h"
#include "toolchain/build/link.h"
#include "toolchain/build/tools.h"
#include "toolchain/language/classes.h"

#include <algorithm>
#include <set>
#include <unistd.h>
#include <utility>

namespace tarn::toolchain {
namespace {

constexpr std::size_t MostClassesACall = 200;  // command lines have a limit
constexpr int MostRounds = 4;

// ---- one call of the compiler ----

struct Compile {
    std::string report;  // the messages of a call that failed; empty if it went well
    bool broke = false;  // the compiler did not end as one that tells what is wrong
};

Compile compile(const CompilerLine& line, const std::vector<std::string>& arguments,
                const std::string& file) {
    const std::string results = os::resultFile(std::string(paths::folder(line.program)), ResultFile);
    os::files().remove(results);
    const ToolRun run = runTool(line.program, arguments);
    std::string text;
    const bool written = os::readFile(results, text) == os::FileError::None;
    const bool success = text.empty() ? written : text.find(SuccessMark) != std::string::npos;
    if (run.failure.empty() && success) return {};
    if (!text.empty() && !success && run.signal == 0) return {text, false};
    Messages messages;
    messages.add(file, 0, Problem::ToolFailed, {run.failure.empty() ? "it left no message" : run.failure});
    return {(success ? std::string() : text) + messages.report(file), true};
}

// A result is not older than what it was made of, also when that has a time in the future.
void notOlder(const std::string& result, const std::string& input) {
    const std::int64_t time = os::infoOf(input).modified;
    if (os::infoOf(result).modified < time) os::files().setModified(result, time);
}

// Notes what a result was made of; without a note it is made again. `bytes` are those that were made: in the place of
// the result another build may have put its own meanwhile.
void writeNote(const std::string& result, Digest inputs, std::string_view bytes) {
    if (!os::infoOf(workFolder(result)).exists) return;
    static_cast<void>(
        os::saveFile(noteFile(result), noteText({inputs, digestOf(bytes)}), os::Durability::Unsynced));
}

// ---- the whole build ----

// One pass over the sources as they were found.
class Builder {
public:
    Builder(const MakeOptions& options, Sources& sources, const CompilerLine& line, bool all, bool last)
        : options_(options), sources_(sources), main_(sources.classes.back()), line_(line), all_(all),
          last_(last) {}

    BuildResult run() {
        result_.compilerFolder = paths::folder(line_.program);
        compileClasses();
        if (result_.report.empty()) compileResources();
        if (result_.report.empty() && !sources_.exe.empty()) link();
        result_.ok = result_.report.empty();
        if (result_.ok) result_.report = successes();
        return result_;
    }
    // A line for each class that was compiled, as the compiler writes it; for the program, where none was.
    std::string successes() const {
        std::string lines;
        for (const SourceClass& item : sources_.classes)
            if (compiled_.count(item.path) != 0) lines += summaryLine(item.path, 0);
        return lines.empty() ? summaryLine(main_.path, 0) : lines;
    }
    // Something changed under the build's hands; what is out of date has to be found anew.
    bool again() const { return again_; }

private:
    void compileClasses() {
        std::vector<std::string> files;
        for (const SourceClass& item : sources_.classes)
            if (isClassFile(item.path) && (all_ || isOutOfDate(item))) files.push_back(item.path);
        compiled_.insert(files.begin(), files.end());
        const std::size_t most = line_.isOwn ? MostClassesACall : 1;
        for (std::size_t at = 0; at < files.size(); at += most)
            compile({files.begin() + static_cast<std::ptrdiff_t>(at),
                     files.begin() + static_cast<std::ptrdiff_t>(std::min(at + most, files.size()))});
    }

    // A compiler that breaks over several classes is called for each of them: so it is told over which it breaks, and
    // what is wrong with the others.
    void compile(const std::vector<std::string>& files) {
        const std::string folder(paths::folder(main_.path));
        std::vector<std::string> arguments = compilerArguments(line_, files, folder, options_.inheritedPath);
        if (line_.isOwn) arguments.insert(arguments.begin(), "/q");  // the whole report comes from here, once
        const Compile made = toolchain::compile(line_, arguments, files.front());
        if (!made.broke || files.size() == 1) {
            result_.report += made.report;
            return;
        }
        for (const std::string& file : files) compile(std::vector<std::string>{file});
    }

    void fail(Problem problem, std::initializer_list<std::string_view> values = {}) {
        Messages messages;
        messages.add(main_.path, 0, problem, values);
        result_.report += messages.report(main_.path);
    }

    void compileResources() {
        if (sources_.companion.empty() || (!all_ && !companionIsOutOfDate(sources_))) return;
        std::vector<std::string> files;
        for (const SourceClass& item : sources_.classes)
            if (!item.resource.empty()) files.push_back(item.resource);
        const Digest inputs = companionInputs(sources_);
        const std::string made = sources_.companion + "." + std::to_string(::getpid());
        std::string errors = platform::CompileResources(files, made, line_.resourceFolders);
        if (const std::size_t at = errors.find(made); at != std::string::npos)
            errors.replace(at, made.size(), sources_.companion);
        std::string bytes;
        const os::FileError error = os::readFile(made, bytes);
        os::files().remove(made);
        if (errors.empty()) {
            const os::SaveResult saved = os::saveFile(sources_.companion, bytes, os::Durability::Unsynced);
            if (error != os::FileError::None || !saved.ok())
                return fail(Problem::CannotWrite,
                            {sources_.companion, os::describe(saved.ok() ? error : saved.error)});
            for (const std::string& file : files) notOlder(sources_.companion, file);
            writeNote(sources_.companion, inputs, bytes);
            return;
        }
        const bool isMessage = errors.find(" : error ") != std::string::npos;
        if (isMessage)
            result_.report += errors;
        else
            fail(Problem::ResourcesFailed, {errors});
    }

    static void readResults(SourceClass& item) {
        std::string symbols;
        os::readFile(objectFile(item.path), item.objectBytes);
        os::readFile(changeExtension(item.path, ".sym"), symbols);
        item.record = findRecord(symbols);
        item.object = digestOf(item.objectBytes);
    }

    // The objects, the main class's first. What was compiled has to belong to the sources that were found: they may
    // have been saved meanwhile, or another compile may have written over an object.
    std::vector<LinkInput> objects() {
        std::vector<LinkInput> inputs;
        for (SourceClass& item : sources_.classes) {
            if (compiled_.count(item.path) != 0) readResults(item);
            LinkInput input{std::move(item.objectBytes), false};
            if (item.record) {
                again_ = again_ || !belongs(item);
                input.quick = item.record->quick;
            }
            inputs.insert(&item == &main_ ? inputs.begin() : inputs.end(), std::move(input));
        }
        return inputs;
    }

    // In the last round the compiler's own view of what it used counts: a source that it reads otherwise than the
    // make tool does is compiled at each build, and its program is right.
    bool belongs(const SourceClass& item) const {
        return item.record->source == item.source && item.record->object == item.object &&
               (last_ || item.record->reach == item.reach);
    }

    // Another compiler's objects are not noted, and one may be as old as the program that is linked of it.
    bool timesDecide() const {
        return std::any_of(sources_.classes.begin(), sources_.classes.end(),
                           [](const SourceClass& item) { return !item.record; });
    }

    void link() {
        if (!all_ && compiled_.empty() && !exeIsOutOfDate(sources_)) return;
        if (!main_.isMain) return fail(Problem::NotAMainClass);
        const std::string library = libraryFolder();
        if (library.empty())
            return fail(Problem::LinkFailed, {"libtarnwick.so is not found beside the tools"});
        const std::vector<LinkInput> inputs = objects();
        if (again_) return;
        if (!all_ && !(!compiled_.empty() && timesDecide()) && !exeIsOutOfDate(sources_)) return;
        // The program is made under another name and put in its place, so that one that still runs is not
        // disturbed.
        const std::string made = scratchFile(main_.path, ".exe");
        const std::string failure = linkProgram(inputs, library, scratchFile(main_.path, ""), made);
        if (!failure.empty()) {
            os::files().remove(made);
            return fail(Problem::LinkFailed, {failure});
        }
        std::string bytes;
        os::readFile(made, bytes);
        const os::FileError error = os::files().rename(made, sources_.exe);
        if (error != os::FileError::None)
            return fail(Problem::CannotWrite, {sources_.exe, os::describe(error)});
        for (const SourceClass& item : sources_.classes) notOlder(sources_.exe, objectFile(item.path));
        writeNote(sources_.exe, programInputs(sources_), bytes);
    }

    const MakeOptions& options_;
    Sources& sources_;
    const SourceClass& main_;
    const CompilerLine& line_;
    const bool all_, last_;
    BuildResult result_;
    std::set<std::string> compiled_;  // in this pass
    bool again_ = false;
};

}  // namespace

BuildResult build(const MakeOptions& options, const CompilerLine& line, Sources sources) {
    const std::string file = sources.classes.back().path;
    for (int round = 1; round <= MostRounds; ++round) {
        if (round > 1) sources = findSources(file, options.inheritedPath);
        Builder builder(options, sources, line, options.mode == MakeMode::All && round == 1,
                        round == MostRounds);
        BuildResult result = builder.run();
        if (!builder.again()) return result;
    }
    Messages messages;
    messages.add(file, 0, Problem::SourcesChange);
    return {false, messages.report(file), std::string(paths::folder(line.program))};
}

}  // namespace tarn::toolchain
