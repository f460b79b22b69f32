// SPDX-License-Identifier: Apache-2.0
//
// Which files a program is made of, and which of them are out of date.
#include "os/files.h"
#include "os/paths.h"
#include "toolchain/build/make.h"
#include "toolchain/build/tools.h"
#include "toolchain/language/classes.h"
#include "toolchain/language/parser.h"
#include "toolchain/language/windows.h"
#include "toolchain/output/generator.h"

#include <algorithm>
#include <map>

namespace tarn::toolchain {
namespace {

std::int64_t timeOf(const std::string& file) {
    const os::FileInfo info = os::infoOf(file);
    return info.exists ? info.modified : -1;
}

// Reads the classes breadth first, then puts them in order.
class Finder {
public:
    Finder(const std::string& mainFile, const std::vector<std::string>& inheritedPath)
        : path_(inheritedPath) {
        path_.emplace(path_.begin(), paths::folder(mainFile));
        add(mainFile);
        for (std::size_t i = 0; i < found_.size(); ++i) read(i);
        findNewest();
    }

    std::vector<SourceClass> ordered() {
        std::vector<std::size_t> order;
        std::vector<char> state(found_.size(), 0);  // 1: its used classes are being listed, 2: listed
        std::vector<std::size_t> stack{0};
        while (!stack.empty()) {
            const std::size_t number = stack.back();
            if (state[number] == 0) {
                state[number] = 1;
                const auto& uses = found_[number].uses;
                for (auto used = uses.rbegin(); used != uses.rend(); ++used)
                    if (state[*used] == 0) stack.push_back(*used);
                continue;
            }
            stack.pop_back();
            if (state[number] == 2) continue;
            state[number] = 2;
            order.push_back(number);
        }
        return renumbered(order);
    }

private:
    std::size_t add(const std::string& file) {
        const auto [place, isNew] = numbers_.emplace(file, found_.size());
        if (isNew) {
            found_.emplace_back();
            found_.back().path = file;
        }
        return place->second;
    }

    void read(std::size_t number) {
        const std::string file = found_[number].path;
        SourceClass item = found_[number];
        std::string text;
        item.readable = os::readFile(file, text) == os::FileError::None;
        Messages silent;
        const auto tree = parseClass(text, file, silent);
        item.name = tree->name;
        item.isMain = hasMain(*tree);
        item.resource = twinOf(file);
        item.newest = timeOf(file);
        for (const UsedClass& used : tree->uses) {
            if (isBuiltInClass(used.name)) continue;
            const std::string place = findClassFile(used.name, std::string(paths::folder(file)), path_);
            if (place.empty())
                item.missingUse = true;
            else if (place != file)
                item.uses.push_back(add(place));
        }
        found_[number] = std::move(item);
    }

    void findNewest() {
        for (bool changed = true; changed;) {
            changed = false;
            for (SourceClass& item : found_)
                for (const std::size_t used : item.uses) {
                    if (found_[used].newest <= item.newest) continue;
                    item.newest = found_[used].newest;
                    changed = true;
                }
        }
    }

    std::vector<SourceClass> renumbered(const std::vector<std::size_t>& order) {
        std::vector<std::size_t> place(order.size());
        for (std::size_t i = 0; i < order.size(); ++i) place[order[i]] = i;
        std::vector<SourceClass> result;
        for (const std::size_t number : order) {
            result.push_back(std::move(found_[number]));
            for (std::size_t& used : result.back().uses) used = place[used];
        }
        return result;
    }

    std::vector<std::string> path_;
    std::vector<SourceClass> found_;
    std::map<std::string, std::size_t> numbers_;
};

bool hasResources(const Sources& sources) {
    return !sources.companion.empty();
}

std::string changedFiles(const Sources& sources) {
    std::string text;
    for (const SourceClass& item : sources.classes)
        if (isOutOfDate(item)) text += item.path + "\n";
    if (companionIsOutOfDate(sources))
        for (const SourceClass& item : sources.classes)
            if (!item.resource.empty() && timeOf(item.resource) > timeOf(sources.companion))
                text += item.resource + "\n";
    if (text.empty() && exeIsOutOfDate(sources)) text = sources.exe + "\n";
    return text;
}

std::string allFiles(const Sources& sources, bool withResources) {
    std::string text;
    for (const SourceClass& item : sources.classes) {
        if (item.readable) text += item.path + "\n";
        if (withResources && !item.resource.empty()) text += item.resource + "\n";
    }
    return text;
}

// What a copy of the program needs; objects and symbol files stay with the sources.
std::string targets(const Sources& sources) {
    return sources.exe + "\n" + (hasResources(sources) ? sources.companion + "\n" : "");
}

}  // namespace

Sources findSources(const std::string& mainFile, const std::vector<std::string>& inheritedPath) {
    Sources sources;
    if (isClassFile(mainFile)) {
        sources.classes = Finder(mainFile, inheritedPath).ordered();
        sources.exe = changeExtension(mainFile, ".exe");
    } else {
        SourceClass resource;
        resource.path = resource.resource = mainFile;
        sources.classes.push_back(resource);
    }
    const bool resources = std::any_of(sources.classes.begin(), sources.classes.end(),
                                       [](const SourceClass& item) { return !item.resource.empty(); });
    if (resources) sources.companion = changeExtension(mainFile, ".rcx");
    return sources;
}

bool isOutOfDate(const SourceClass& item) {
    if (!isClassFile(item.path)) return false;
    if (item.missingUse || !item.readable) return true;
    const std::int64_t object = timeOf(objectFile(item.path));
    return object < 0 || object < item.newest || timeOf(changeExtension(item.path, ".sym")) < item.newest;
}

bool companionIsOutOfDate(const Sources& sources) {
    if (!hasResources(sources)) return false;
    const std::int64_t companion = timeOf(sources.companion);
    return std::any_of(sources.classes.begin(), sources.classes.end(), [&](const SourceClass& item) {
        return !item.resource.empty() && timeOf(item.resource) > companion;
    });
}

bool exeIsOutOfDate(const Sources& sources) {
    if (sources.exe.empty()) return false;
    const std::int64_t exe = timeOf(sources.exe);
    if (exe < 0 || os::sizeOf(sources.exe) == 0) return true;
    return std::any_of(sources.classes.begin(), sources.classes.end(),
                       [exe](const SourceClass& item) { return timeOf(objectFile(item.path)) > exe; });
}

std::string answerQuery(const MakeOptions& options, const Sources& sources) {
    const bool isProgram = !sources.exe.empty();
    switch (options.mode) {
    case MakeMode::Quick:
    case MakeMode::Make: return changedFiles(sources);
    case MakeMode::All: return isProgram ? allFiles(sources, false) : std::string();
    case MakeMode::Sources: return isProgram ? allFiles(sources, true) : sources.classes[0].path + "\n";
    case MakeMode::Targets: return isProgram ? targets(sources) : sources.companion + "\n";
    }
    return {};
}

}  // namespace tarn::toolchain
