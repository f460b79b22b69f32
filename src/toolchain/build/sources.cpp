// SPDX-License-Identifier: Apache-2.0
//
// Which files a program is made of, and which of them are out of date.
#include "os/files.h"
#include "os/paths.h"
#include "os/text/ascii.h"
#include "toolchain/build/link.h"
#include "toolchain/build/make.h"
#include "toolchain/build/targets.h"
#include "toolchain/build/tools.h"
#include "toolchain/language/classes.h"
#include "toolchain/language/windows.h"

#include <algorithm>
#include <cstdint>
#include <map>
#include <unordered_set>
#include <utility>

namespace tarn::toolchain {
namespace {

std::int64_t timeOf(const std::string& file) {
    const os::FileInfo info = os::infoOf(file);
    return info.exists ? info.modified : -1;
}

// The last `most` bytes of a file, all if it is shorter; its time, -1 if it cannot be read.
std::int64_t readEnd(const std::string& file, std::int64_t most, std::string& bytes) {
    bytes.clear();
    const os::FileInfo info = os::infoOf(file);
    os::Handle handle = -1;
    if (!info.exists || info.folder ||
        os::files().open(file, os::OpenMode::Read, 0, handle) != os::FileError::None)
        return -1;
    const std::int64_t begin = std::max<std::int64_t>(info.size - most, 0);
    bytes.resize(static_cast<std::size_t>(info.size - begin));
    std::size_t got = 0;
    const bool success = os::readUpTo(handle, begin, bytes.data(), bytes.size(), got) == os::FileError::None;
    os::files().close(handle);
    bytes.resize(success ? got : 0);
    return success ? info.modified : -1;
}

constexpr std::int64_t WholeFile = INT64_MAX;
constexpr std::int64_t RecordSize = 2048;  // a line of a symbol file with a full comment is shorter

// What lies in the folders, each listed once: it is less work than to ask for each file.
class Folders {
public:
    bool holds(const std::string& file) {
        const std::string folder(paths::folder(file));
        const auto [place, isNew] = names_.try_emplace(folder);
        if (isNew) {
            std::vector<std::string> names;
            os::files().list(folder, names);
            place->second.insert(names.begin(), names.end());
        }
        return place->second.count(std::string(paths::fileName(file))) != 0;
    }
    std::string twinOf(const std::string& file) {
        for (const char* extension : {".rc", ".RC"}) {
            std::string twin = changeExtension(file, extension);
            if (holds(twin) && os::sizeOf(twin) >= 0) return twin;
        }
        return {};
    }

private:
    std::map<std::string, std::unordered_set<std::string>> names_;
};

// Reads the classes breadth first, then puts them in order.
class Finder {
public:
    Finder(const std::string& mainFile, const std::vector<std::string>& inheritedPath)
        : path_(inheritedPath) {
        path_.emplace(path_.begin(), paths::folder(mainFile));
        add(mainFile);
        for (std::size_t i = 0; i < found_.size(); ++i) read(i);
        findNewest();
        findReached();
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
        SourceClass item = found_[number];
        std::string text;
        item.modified = item.newest = readEnd(item.path, WholeFile, text);
        item.readable = item.modified >= 0;
        item.resource = folders_.twinOf(item.path);
        std::string resources;
        if (!item.resource.empty()) static_cast<void>(os::readFile(item.resource, resources));
        resources = windowNames(resources);
        item.source = sourceDigest(item.path, text, resources);
        readResults(item);
        for (const std::string& used : usesOf(item, text, resources)) {
            if (isBuiltInClass(used)) continue;
            const std::string place = find(used, std::string(paths::folder(item.path)));
            if (place.empty())
                item.missingUse = true;
            else if (place != item.path)
                item.uses.push_back(add(place));
        }
        found_[number] = std::move(item);
    }

    void readResults(SourceClass& item) {
        const std::string object = objectFile(item.path), symbols = changeExtension(item.path, ".sym");
        if (folders_.holds(symbols)) item.results = readEnd(symbols, RecordSize, bytes_);
        if (item.results >= 0) item.record = findRecord(bytes_);
        const std::int64_t time = folders_.holds(object) ? readEnd(object, WholeFile, item.objectBytes) : -1;
        if (time >= 0) item.object = digestOf(item.objectBytes);
        item.results = std::min(item.results, time);
    }

    // Fills in what the text says. A source that has not changed since its compile said it then.
    static std::vector<std::string> usesOf(SourceClass& item, const std::string& text,
                                           const std::string& resources) {
        if (item.record && item.record->source == item.source && item.record->uses) {
            item.name = item.record->name;
            item.isMain = item.record->isMain;
            item.heads = item.record->heads;
            return *item.record->uses;
        }
        Outline outline = outlineOf(text, resources);
        item.name = outline.name;
        item.isMain = outline.isMain;
        item.heads = outline.heads;
        return outline.uses;
    }

    // A class is used from many places, and a folder in which it is not has to be listed to know that.
    std::string find(const std::string& name, const std::string& folder) {
        const auto [place, isNew] = places_.try_emplace({folder, name});
        if (isNew) place->second = findClassFile(name, folder, path_);
        return place->second;
    }

    void findReached() {
        for (std::size_t i = 0; i < found_.size(); ++i)
            found_[i].reach = reachOf(
                i, found_.size(), [this](std::size_t n) -> const auto& { return found_[n].uses; },
                [this](std::size_t n) -> const auto& { return found_[n].path; },
                [this](std::size_t n) { return found_[n].heads; });
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
    std::map<std::pair<std::string, std::string>, std::string> places_;  // by folder and name
    Folders folders_;
    std::string bytes_;
};

bool hasResources(const Sources& sources) {
    return !sources.companion.empty();
}

// What the note of a result says: that it was made of these inputs, or that it was not, or there is none.
enum class Note { None, Same, Other };
Note noteSays(const std::string& result, Digest inputs) {
    std::string bytes;
    os::readFile(noteFile(result), bytes);
    const std::optional<MakeNote> note = readNote(bytes);
    if (!note) return Note::None;
    if (note->inputs != inputs || os::readFile(result, bytes) != os::FileError::None) return Note::Other;
    return note->result == digestOf(bytes) ? Note::Same : Note::Other;
}

bool resourceIsNewer(const Sources& sources) {
    const std::int64_t companion = timeOf(sources.companion);
    return std::any_of(sources.classes.begin(), sources.classes.end(), [&](const SourceClass& item) {
        return !item.resource.empty() && timeOf(item.resource) > companion;
    });
}

std::string changedFiles(const Sources& sources) {
    std::string text;
    for (const SourceClass& item : sources.classes)
        if (isOutOfDate(item)) text += item.path + "\n";
    const bool byTime = resourceIsNewer(sources);
    if (companionIsOutOfDate(sources))
        for (const SourceClass& item : sources.classes)
            if (!item.resource.empty() && (!byTime || timeOf(item.resource) > timeOf(sources.companion)))
                text += item.resource + "\n";
    const bool isProgram = sources.classes.back().isMain;
    if (text.empty() && isProgram && exeIsOutOfDate(sources)) text = sources.exe + "\n";
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
    if (item.missingUse || !item.readable || item.results < 0) return true;
    if (!item.record) return item.results < item.newest;
    const CompileRecord& record = *item.record;
    return item.results < item.modified || record.source != item.source || record.reach != item.reach ||
           record.object != item.object;
}

bool companionIsOutOfDate(const Sources& sources) {
    if (!hasResources(sources)) return false;
    if (noteSays(sources.companion, companionInputs(sources)) == Note::Other) return true;
    return resourceIsNewer(sources);
}

bool exeIsOutOfDate(const Sources& sources) {
    if (sources.exe.empty()) return false;
    const std::int64_t exe = timeOf(sources.exe);
    if (exe < 0 || os::sizeOf(sources.exe) == 0) return true;
    const Note note = noteSays(sources.exe, programInputs(sources));
    if (note != Note::None) return note == Note::Other;
    return std::any_of(sources.classes.begin(), sources.classes.end(), [exe](const SourceClass& item) {
        return item.record || timeOf(objectFile(item.path)) > exe;
    });
}

Digest programInputs(const Sources& sources) {
    Digest digest = digestOf(digestOf(startObject()), digestOf(libraryFolder()));
    for (const SourceClass& item : sources.classes)
        digest = digestOf(digest, digestOf(digestOf(item.path), item.object));
    return digest;
}

Digest companionInputs(const Sources& sources) {
    Digest digest = 0;
    std::string bytes;
    for (const SourceClass& item : sources.classes) {
        if (item.resource.empty()) continue;
        os::readFile(item.resource, bytes);
        digest = digestOf(digest, digestOf(digestOf(item.resource), digestOf(bytes)));
    }
    return digest;
}

std::string noteFile(const std::string& result) {
    return workFolder(result).append(paths::fileName(result)).append(".note");
}

std::string answerQuery(const MakeOptions& options, const CompilerLine& line, const Sources& sources) {
    const bool isProgram = !sources.exe.empty();
    switch (options.mode) {
    case MakeMode::Quick:
    case MakeMode::Make: return changedFiles(sources);
    case MakeMode::All: return isProgram ? allFiles(sources, false) : std::string();
    case MakeMode::Sources: return isProgram ? allFiles(sources, true) : sources.classes[0].path + "\n";
    case MakeMode::Targets:
        return isProgram ? targetsOf(sources, line.resourceFolders) : sources.companion + "\n";
    }
    return {};
}

}  // namespace tarn::toolchain
