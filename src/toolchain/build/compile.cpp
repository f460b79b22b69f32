// SPDX-License-Identifier: Apache-2.0
#include "toolchain/build/compile.h"

#include "os/clock.h"
#include "os/files.h"
#include "toolchain/build/backend.h"
#include "toolchain/build/digest.h"
#include "toolchain/build/reading.h"
#include "toolchain/build/tools.h"
#include "toolchain/language/checker.h"
#include "toolchain/language/classes.h"
#include "toolchain/language/windows.h"
#include "toolchain/output/generator.h"
#include "toolchain/output/names.h"
#include "toolchain/output/symfile.h"

#include <algorithm>
#include <map>
#include <memory>
#include <set>

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

// For results that are read by what knows whether they are whole. A new file takes half the time of a replaced one.
bool saveAnew(const std::string& file, const std::string& text, const std::string& classFile,
              Messages& messages) {
    constexpr std::uint32_t Permissions = 0666;
    os::files().remove(file);
    os::Handle handle = -1;
    os::FileError error = os::files().open(file, os::OpenMode::Truncate, Permissions, handle);
    if (error == os::FileError::None) {
        error = os::files().write(handle, 0, text);
        const os::FileError closed = os::files().close(handle);
        if (error == os::FileError::None) error = closed;
    }
    if (error != os::FileError::None)
        messages.add(classFile, 0, Problem::CannotWrite, {file, os::describe(error)});
    return error == os::FileError::None;
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

// What was made gets the time when its sources were read, not when it was written: a source that is saved
// meanwhile is newer then, and one whose time lies in the future is not newer for ever.
void stampResult(const std::string& file, std::int64_t time) {
    os::files().setModified(file, time);
}

// The start object finds the program by this name. It is weak, since a class with `main` can be used by others.
std::string programPointer(const ClassTree& tree) {
    if (!hasMain(tree)) return {};
    return "const tarn_program *const tarn_main_program __attribute__((weak)) = &" +
           classSymbol(tree.name, "program") + ";\n";
}

// A loader with the digests of what it has read.
class Reader {
public:
    Reader(const std::vector<std::string>& path, ReadingFiles& files) : loader_(path), files_(files) {}

    // Null if the class cannot be read.
    ClassTree* load(const std::string& file, Messages& messages) {
        ClassTree* tree = loader_.load(file, messages);
        if (tree != nullptr) note(*tree);
        return tree;
    }
    bool knows(const std::string& file) const { return known_.count(file) != 0; }
    std::int64_t newest() const { return loader_.newest(); }

    CompileRecord recordOf(const ClassTree& tree) const {
        const std::size_t number = numbers_.at(&tree);
        CompileRecord record;
        record.source = facts_[number].source;
        record.heads = facts_[number].heads;
        record.reach = reachOf(
            number, facts_.size(), [this](std::size_t n) -> const auto& { return facts_[n].uses; },
            [this](std::size_t n) -> const auto& { return facts_[n].tree->path; },
            [this](std::size_t n) { return facts_[n].heads; });
        record.isMain = hasMain(tree);
        record.name = tree.name;
        record.uses.emplace();
        for (const UsedClass& used : tree.uses) record.uses->push_back(used.name);
        return record;
    }

private:
    struct Facts {
        Digest source = 0;
        Heads heads;
        std::vector<std::size_t> uses;
        const ClassTree* tree = nullptr;
    };

    // All that the class reaches has been read with it; so it is known as a whole, or not at all.
    void note(const ClassTree& first) {
        std::vector<const ClassTree*> list{&first};
        while (!list.empty()) {
            const ClassTree* tree = list.back();
            list.pop_back();
            if (!numbers_.emplace(tree, facts_.size()).second) continue;
            const std::string& text = files_.textOf(tree->path);
            const std::string twin = twinOf(tree->path);
            std::string resources;
            if (!twin.empty()) static_cast<void>(os::readFile(twin, resources));
            resources = windowNames(resources);
            facts_.push_back(
                {sourceDigest(tree->path, text, resources), outlineOf(text, resources).heads, {}, tree});
            known_.insert(tree->path);
            for (const UsedClass& used : tree->uses)
                if (used.tree != nullptr) list.push_back(used.tree);
        }
        for (Facts& facts : facts_)
            if (facts.uses.empty())
                for (const UsedClass& used : facts.tree->uses)
                    if (used.tree != nullptr && used.tree != facts.tree)
                        facts.uses.push_back(numbers_.at(used.tree));
    }

    ClassLoader loader_;
    ReadingFiles& files_;
    std::map<const ClassTree*, std::size_t> numbers_;
    std::vector<Facts> facts_;
    std::set<std::string> known_;
};

// One run of the compiler.
class Compiler {
public:
    explicit Compiler(const CompilerOptions& options)
        : options_(options), path_(options.inheritedPath), began_(os::clock().now() - Granularity) {
        if (!options.mainFolder.empty()) path_.insert(path_.begin(), options.mainFolder);
        shared_ = std::make_unique<Reader>(path_, files_);
    }

    // A class that was read before as one that others use was read without its messages, and after an error the
    // trees are not whole: such a class is read anew, so that its messages are those of a run of its own.
    void compile(ClassResult& result) {
        os::files().remove(objectFile(result.file));
        if (failed_ || shared_->knows(result.file)) {
            Reader own(path_, files_);
            compile(own, result);
        } else {
            compile(*shared_, result);
        }
        failed_ = failed_ || !result.messages.empty();
        if (!result.messages.empty()) os::files().remove(objectFile(result.file));
    }

private:
    void compile(Reader& reader, ClassResult& result) {
        const ReadingFiles::InForce reading(files_);
        Messages& messages = result.messages;
        ClassTree* tree = reader.load(result.file, messages);
        if (tree == nullptr) return;
        if (!tree->name.empty()) checkClass(*tree, messages);
        if (messages.empty()) countSymbols(options_, *tree, messages);
        if (messages.empty())
            generate(*tree, reader.recordOf(*tree), std::max(began_, reader.newest()), messages);
    }

    void generate(const ClassTree& tree, CompileRecord record, std::int64_t time, Messages& messages) {
        Generated made = generateC(tree, {options_.precond, options_.debug});
        made.text += programPointer(tree);
        if (!makeWorkFolder(tree.path, messages)) return;
        if (!saveAnew(generatedFile(tree.path), made.text, tree.path, messages)) return;
        const CompiledObject object = compileObject(tree.path, made.text, options_.debug, messages);
        if (!messages.empty() || !saveAnew(objectFile(tree.path), object.bytes, tree.path, messages)) return;
        record.object = digestOf(object.bytes);
        record.quick = object.quick;
        const std::string symbols = symbolFile(tree, describeOptions(options_), made.codeLines);
        const std::string file = changeExtension(tree.path, ".sym");
        if (!save(file, symbols + recordLine(record), tree.path, messages)) return;
        stampResult(file, time);
        stampResult(objectFile(tree.path), time);
    }

    const CompilerOptions options_;
    std::vector<std::string> path_;
    const std::int64_t began_;
    ReadingFiles files_;
    std::unique_ptr<Reader> shared_;
    bool failed_ = false;
};

}  // namespace

std::vector<ClassResult> compileClasses(const CompilerOptions& options) {
    std::vector<ClassResult> results;
    // It stays until the next call: to give all trees back takes time that a process at its end does not need.
    static std::unique_ptr<Compiler> last;
    last = std::make_unique<Compiler>(options);
    Compiler& compiler = *last;
    for (const std::string& file : options.files) {
        results.push_back({fullPath(file), {}});
        compiler.compile(results.back());
    }
    return results;
}

std::string reportOf(const std::vector<ClassResult>& results) {
    const bool clean = std::all_of(results.begin(), results.end(),
                                   [](const ClassResult& one) { return one.messages.empty(); });
    std::string text;
    for (const ClassResult& one : results)
        if (clean || !one.messages.empty()) text += one.messages.report(one.file);
    return text;
}

}  // namespace tarn::toolchain
