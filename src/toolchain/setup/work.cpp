// SPDX-License-Identifier: Apache-2.0
#include "os/paths.h"
#include "toolchain/setup/install.h"
#include "toolchain/setup/work_internal.h"

#include <algorithm>
#include <cstdlib>

namespace tarn::setup {
namespace {

constexpr const char* Saved = ".saved";

os::FileError removeFlat(const std::string& folder) {
    std::vector<std::string> names;
    os::files().list(folder, names);
    for (const std::string& name : names) os::files().remove(folder + "/" + name);
    return os::files().removeFolder(folder);
}

bool isFolder(const std::string& path) {
    const os::FileInfo info = os::infoOf(path);
    return info.exists && info.folder;
}

// A folder under the name of a file is the user's.
bool isChanged(const std::string& file, const InstalledFile& installed) {
    std::uint64_t sum = 0;
    if (isFolder(file)) return true;
    return os::sizeOf(file) >= 0 &&
           (os::sizeOf(file) != installed.size || !sumOf(file, sum) || sum != installed.sum);
}

// Under which nothing stands in the folder.
std::string freeName(const std::string& folder, const std::string& name) {
    std::string free = name;
    for (int i = 2; exists(folder + "/" + free); ++i) free = name + std::to_string(i);
    return free;
}

}  // namespace

bool exists(const std::string& path) {
    return os::infoOf(path).exists;
}

// ---- the work folder ----

WorkFolder::WorkFolder(const std::string& app)
    : path_(os::joined(os::folderOf(app), "." + os::nameOf(app) + ".setup")) {}

std::string WorkFolder::keptEntry(std::size_t number) const {
    return path_ + "/entry" + std::to_string(number);
}

void WorkFolder::remove() const {
    if (!exists(path_)) return;
    Installed before;
    static_cast<void>(readInstalled(old(), before));
    static_cast<void>(removeInstalled(old(), before));
    removeFlat(fresh());
    removeFlat(path_);
}

// ---- the journal ----

std::string textOf(const Journal& journal) {
    std::string text = journal.had ? "had\n" : "";
    for (std::size_t i = 0; i < journal.entries.size(); ++i) {
        const Journal::Entry& entry = journal.entries[i];
        text += (entry.kept ? "kept " + std::to_string(i) + " " : std::string("entry ")) + entry.path + "\n";
    }
    return text;
}

Journal readJournal(const std::string& text) {
    Journal journal;
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t end = std::min(text.find('\n', at), text.size());
        const std::string line = text.substr(at, end - at);
        const std::size_t slash = line.find('/');
        if (line == "had") journal.had = true;
        if (slash != std::string::npos)
            journal.entries.push_back({line.substr(slash), line.starts_with("kept ")});
        at = end + 1;
    }
    return journal;
}

// ---- files that are not the installation's ----

os::FileError moveStrangers(const std::string& from, const Installed& list, const std::string& to) {
    std::vector<std::string> names;
    os::FileError error = os::files().list(from, names);
    for (const std::string& name : names) {
        const InstalledFile* const own = list.find(name);
        const bool changed = own != nullptr && isChanged(from + "/" + name, *own);
        if (list.owns(name) && !changed) continue;
        const bool taken = changed || exists(to + "/" + name);
        if (error == os::FileError::None)
            error =
                os::files().rename(from + "/" + name, to + "/" + (taken ? freeName(to, name + Saved) : name));
    }
    return error;
}

os::FileError moveStrangersBack(const std::string& from, const Installed& list, const std::string& to) {
    std::vector<std::string> names;
    os::FileError error = os::files().list(from, names);
    for (const std::string& name : names) {
        if (list.owns(name)) continue;
        const std::size_t saved = name.rfind(Saved);
        const std::string before = saved == std::string::npos ? name : name.substr(0, saved);
        const bool wasBefore = before != name && !exists(to + "/" + before);
        if (error == os::FileError::None)
            error = os::files().rename(from + "/" + name, to + "/" + (wasBefore ? before : name));
    }
    return error;
}

// ---- desktop entries ----

namespace {

std::string besideEntry(const std::string& path) {
    return os::joined(os::folderOf(path), "." + os::nameOf(path) + ".setup");
}

}  // namespace

os::FileError writeEntry(const std::string& path, std::string_view text, std::uint32_t mode) {
    const std::string made = besideEntry(path);
    os::Handle handle = -1;
    os::files().remove(made);
    os::FileError error = os::files().open(made, os::OpenMode::CreateNew, mode, handle);
    if (error != os::FileError::None) return error;
    error = os::files().write(handle, 0, text);
    if (error == os::FileError::None) error = os::files().sync(handle);
    const os::FileError closed = os::files().close(handle);
    if (error == os::FileError::None) error = closed;
    if (error == os::FileError::None) error = os::files().setMode(made, mode);
    if (error == os::FileError::None) error = os::files().rename(made, path);
    if (error != os::FileError::None) os::files().remove(made);
    return error;
}

// ---- removing ----

namespace {

constexpr std::uint32_t Plain = 0644;

bool hasStrangers(const std::string& app, const Installed& list) {
    std::vector<std::string> names;
    os::files().list(app, names);
    return std::any_of(names.begin(), names.end(), [&](const std::string& name) {
        return (!list.owns(name) || isFolder(app + "/" + name)) &&
               name != os::nameOf(besideEntry(std::string(ListName)));
    });
}

}  // namespace

os::FileError removeInstalled(const std::string& app, const Installed& list) {
    const std::string listFile = app + "/" + std::string(ListName);
    for (const InstalledFile& file : list.files) {
        const std::string path = app + "/" + file.name;
        const os::FileError error = os::files().remove(path);
        if (error != os::FileError::None && error != os::FileError::NotFound && !isFolder(path)) return error;
    }
    const bool stays = !list.name.empty() && hasStrangers(app, list);
    if (stays) {
        const os::FileError error = writeEntry(listFile, textOf({list.name, {}, {}, list.folders}), Plain);
        if (error != os::FileError::None) return error;
    }
    os::files().remove(app + "/" + std::string(UninstallName));
    if (!stays) os::files().remove(listFile);  // the last, so that it can be done again
    os::files().removeFolder(app);
    return os::FileError::None;
}

// ---- folders ----

namespace {

constexpr const char* NoteEnd = "\n";  // an empty line: a note without it is not ours

std::string noteIn(const std::string& folder, const std::string& app) {
    return os::joined(folder, "." + os::nameOf(app) + ".setup.folders");
}

void removeNoted(const std::string& note) {
    std::string text;
    os::readFile(note, text);
    std::vector<std::string> folders;
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t end = std::min(text.find('\n', at), text.size());
        if (text[at] == '/') folders.push_back(text.substr(at, end - at));
        at = end + 1;
    }
    if (text.ends_with("\n\n"))
        for (auto folder = folders.rbegin(); folder != folders.rend(); ++folder)
            os::files().removeFolder(*folder);
    os::files().remove(note);
}

}  // namespace

std::string makeNotedFolders(const std::string& app, const std::vector<std::string>& folders) {
    if (folders.empty()) return {};
    std::string base = os::folderOf(app), text;
    while (base.size() > 1 && !exists(base)) base = os::folderOf(base);
    for (const std::string& folder : folders) text += folder + "\n";
    const std::string note = noteIn(base, app);
    os::FileError error = writeEntry(note, text + NoteEnd, Plain);
    std::string path = note;
    for (auto folder = folders.begin(); error == os::FileError::None && folder != folders.end(); ++folder) {
        path = *folder;
        error = os::files().makeFolder(path);
    }
    return error == os::FileError::None ? std::string()
                                        : "'" + path + "': " + std::string(os::describe(error));
}

void removeNotedFolders(const std::string& app) {
    for (std::string folder = os::folderOf(app);; folder = os::folderOf(folder)) {
        const std::string note = noteIn(folder, app);
        if (exists(besideEntry(note))) os::files().remove(besideEntry(note));
        if (exists(note)) removeNoted(note);
        if (folder.size() <= 1) break;
    }
}

// ---- undoing ----

namespace {

// The place gets back what was there before the installation.
os::FileError undoPlace(const WorkFolder& work, const std::string& app, const Journal& journal) {
    const bool moved = exists(work.old());
    const bool placed = exists(app) && !exists(work.fresh()) && (moved || !journal.had);
    if (placed) {
        Installed list;
        static_cast<void>(readInstalled(app, list));
        os::FileError error = moved ? moveStrangersBack(app, list, work.old()) : os::FileError::None;
        if (error == os::FileError::None) error = removeInstalled(app, list);
        if (error != os::FileError::None) return error;
    }
    return moved ? os::files().rename(work.old(), app) : os::FileError::None;
}

os::FileError undoEntries(const WorkFolder& work, const Journal& journal) {
    os::FileError first = os::FileError::None;
    for (std::size_t i = 0; i < journal.entries.size(); ++i) {
        const Journal::Entry& entry = journal.entries[i];
        std::string text;
        os::files().remove(besideEntry(entry.path));
        os::FileError error = os::FileError::None;
        if (!entry.kept)
            error = os::files().remove(entry.path);
        else if (os::readFile(work.keptEntry(i), text) == os::FileError::None)
            error = writeEntry(entry.path, text, os::infoOf(work.keptEntry(i)).mode & 0777U);
        if (error != os::FileError::None && error != os::FileError::NotFound) first = error;
    }
    return first;
}

}  // namespace

std::string undoUnfinished(const std::string& app) {
    const WorkFolder work(app);
    std::string text;
    if (os::readFile(work.journal(), text) == os::FileError::None) {
        const Journal journal = readJournal(text);
        os::FileError error = undoPlace(work, app, journal);
        if (error == os::FileError::None) error = undoEntries(work, journal);
        if (error != os::FileError::None)
            return "An earlier installation was not finished, and it cannot be undone: " +
                   std::string(os::describe(error));
        os::files().remove(work.journal());
    }
    work.remove();
    removeNotedFolders(app);
    return {};
}

}  // namespace tarn::setup
