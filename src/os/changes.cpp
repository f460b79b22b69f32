// SPDX-License-Identifier: Apache-2.0
#include "os/changes.h"

#include "os/paths.h"
#include "os/process.h"
#include "os/save_parts.h"

#include <unistd.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <optional>
#include <string_view>

namespace tarn::os {
namespace {

constexpr std::string_view Heading = "tarnwick changes 1\n", NoteEnd = ".note", DamagedEnd = ".damaged";

// What stands in a file; nothing if it is not there.
using Contents = std::optional<std::string>;

struct Step {
    std::string path;
    Contents before, after;
    std::uint32_t mode = UsualFileMode;  // of the file that was there; not in the note
};
using Steps = std::vector<Step>;

// ---- the note ----

std::uint64_t digestOf(std::string_view bytes) {
    std::uint64_t digest = 14695981039346656037U;  // FNV-1a
    for (const char c : bytes) digest = (digest ^ static_cast<unsigned char>(c)) * 1099511628211U;
    return digest;
}

std::string sizeText(const Contents& contents) {
    return contents ? std::to_string(contents->size()) : "-1";
}

std::string noteOf(const Steps& steps) {
    std::string head, bytes;
    for (const Step& step : steps) {
        head += std::to_string(step.path.size()) + " " + sizeText(step.before) + " " + sizeText(step.after) +
                "\n";
        bytes += step.path + step.before.value_or("") + step.after.value_or("");
    }
    const std::string body = head + "\n" + bytes;
    return std::string(Heading) + std::to_string(digestOf(body)) + "\n" + body;
}

std::string_view takeLine(std::string_view& text) {
    const std::size_t end = std::min(text.find('\n'), text.size());
    const std::string_view line = text.substr(0, end);
    text.remove_prefix(std::min(end + 1, text.size()));
    return line;
}

template <class Number>
bool takeNumber(std::string_view& text, Number& number) {
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc()) return false;
    text.remove_prefix(static_cast<std::size_t>(end - text.data()));
    if (!text.empty() && text.front() == ' ') text.remove_prefix(1);
    return true;
}

// The bytes of that size, -1 for none; false if there are not so many.
bool takeBytes(std::string_view& text, std::int64_t size, Contents& contents) {
    if (size < -1 || size > static_cast<std::int64_t>(text.size())) return false;
    if (size < 0) return true;
    contents = text.substr(0, static_cast<std::size_t>(size));
    text.remove_prefix(static_cast<std::size_t>(size));
    return true;
}

using Sizes = std::array<std::int64_t, 3>;  // of the path and of both contents

bool takeSizes(std::string_view line, Sizes& sizes) {
    return std::all_of(sizes.begin(), sizes.end(),
                       [&](std::int64_t& size) { return takeNumber(line, size); }) &&
           line.empty() && sizes[0] > 0;
}

bool takeStep(std::string_view& bytes, const Sizes& sizes, Step& step) {
    Contents path;
    if (!takeBytes(bytes, sizes[0], path) || !takeBytes(bytes, sizes[1], step.before) ||
        !takeBytes(bytes, sizes[2], step.after))
        return false;
    step.path = *path;
    return true;
}

// False for a note that is none.
bool readNote(std::string_view note, Steps& steps) {
    if (!note.starts_with(Heading)) return false;
    note.remove_prefix(Heading.size());
    std::string_view line = takeLine(note);
    std::uint64_t digest = 0;
    if (!takeNumber(line, digest) || !line.empty() || digest != digestOf(note)) return false;
    std::vector<Sizes> sizes;
    for (line = takeLine(note); !line.empty(); line = takeLine(note))
        if (!takeSizes(line, sizes.emplace_back())) return false;
    return std::all_of(sizes.begin(), sizes.end(),
                       [&](const Sizes& one) { return takeStep(note, one, steps.emplace_back()); }) &&
           note.empty();
}

// ---- one file ----

FileError read(const std::string& path, Contents& contents) {
    std::string bytes;
    const FileError error = readFile(path, bytes);
    if (error == FileError::None) contents = std::move(bytes);
    return error == FileError::NotFound ? FileError::None : error;
}

FileError removeFile(const std::string& path) {
    const FileError error = files().remove(native(path));
    if (error != FileError::None && error != FileError::NotFound) return error;
    return files().syncFolder(folderOf(native(path)));
}

// The note has the bytes too, so that nobody needs the copy that a save leaves when it fails half-way.
FileError replaceFile(const std::string& path, const std::string& bytes) {
    const SaveResult result = saveFile(path, bytes);
    if (!result.rescueCopy.empty()) {
        files().remove(result.rescueCopy);
        files().remove(rescueNameFile(result.rescueCopy));
    }
    return result.error;
}

// A file that is to be new is never put over one that somebody has made meanwhile.
FileError put(const Step& step, const Contents& before, const Contents& after) {
    if (before == after) return FileError::None;
    if (!after) return removeFile(step.path);
    return before ? replaceFile(step.path, *after) : saveNewFile(step.path, *after, step.mode);
}

// What an interrupted write in place leaves: each byte is that of the one or of the other contents.
bool isTorn(const std::string& now, const std::string& before, const std::string& after) {
    if (now.size() > std::max(before.size(), after.size())) return false;
    for (std::size_t i = 0; i < now.size(); ++i)
        if (!(i < before.size() && now[i] == before[i]) && !(i < after.size() && now[i] == after[i]))
            return false;
    return now.size() >= std::min(before.size(), after.size());
}

// ---- making changes ----

// What a change does to its file. Exists and Denied show here already, before anything is touched.
FileError stepOf(const FileChange& change, Step& step) {
    step.path = change.path;
    SaveTarget target;
    FileError error = findSaveTarget(native(change.path), target);
    if (error == FileError::None) error = read(change.path, step.before);
    if (error != FileError::None) return error;
    if (step.before) step.mode = target.info.mode;
    if (change.kind == FileChange::Kind::Create && step.before) return FileError::Exists;
    if (change.kind != FileChange::Kind::Remove) step.after = change.bytes;
    return FileError::None;
}

ChangeResult stepsOf(const std::vector<FileChange>& changes, Steps& steps) {
    for (const FileChange& change : changes) {
        Step step;
        if (const FileError error = stepOf(change, step); error != FileError::None)
            return {error, change.path, false};
        if (step.before != step.after) steps.push_back(std::move(step));
    }
    return {};
}

FileError removeNote(const std::string& note) {
    const FileError error = files().remove(note);
    // Unless the folder is synced a death of the machine brings the note back; it would find all files changed.
    if (error == FileError::None) files().syncFolder(changesFolder());
    return error == FileError::NotFound ? FileError::None : error;
}

std::string newNoteName() {
    static unsigned count = 0;
    const std::string start = changesFolder() + std::to_string(::getpid()) + "-";
    std::string name;
    do {
        name = start + std::to_string(++count) + std::string(NoteEnd);
    } while (infoOf(name).exists);
    return name;
}

// A note that could not be written whole must not be there, or the next start would make its changes.
ChangeResult writeNote(const Steps& steps, std::string& note) {
    FileError error = makeFolders(changesFolder(), Durability::Synced);
    note = newNoteName();
    if (error == FileError::None) error = saveNewFile(note, noteOf(steps), PrivateFileMode);
    if (error == FileError::None) return {};
    return {error, note, removeNote(note) != FileError::None && infoOf(note).exists};
}

// Puts the old contents back, the last first; false if that failed too. A file that somebody else has made meanwhile in the
// place of a new one stays.
bool undo(const Steps& steps, std::size_t done) {
    for (std::size_t i = done; i-- > 0;) {
        Contents now;
        if (read(steps[i].path, now) != FileError::None) return false;
        if (!steps[i].before && now != steps[i].after) continue;
        if (put(steps[i], now, steps[i].before) != FileError::None) return false;
    }
    return true;
}

}  // namespace

std::string changesFolder() {
    return stateFolder() + "changes/";
}

ChangeResult changeFiles(const std::vector<FileChange>& changes) {
    Steps steps;
    if (ChangeResult result = stepsOf(changes, steps); !result.ok() || steps.empty()) return result;
    if (steps.size() == 1) return {put(steps[0], steps[0].before, steps[0].after), steps[0].path, false};
    std::string note;
    if (ChangeResult result = writeNote(steps, note); !result.ok()) return result;
    for (std::size_t i = 0; i < steps.size(); ++i) {
        const FileError error = put(steps[i], steps[i].before, steps[i].after);
        if (error == FileError::None) continue;
        // The one that failed may have been written all the same: the sync of its folder comes last.
        const bool undone = undo(steps, i + 1) && removeNote(note) == FileError::None;
        return {error, steps[i].path, !undone};
    }
    // Left behind it does no harm: the next start finds its changes made.
    static_cast<void>(removeNote(note));
    return {};
}

// ---- at start ----

namespace {

// Brings one file to its new contents. False if that failed.
bool finish(const Step& step, FinishedChanges& finished) {
    Contents now;
    if (read(step.path, now) != FileError::None) return false;
    if (now == step.after) return true;
    const bool torn = now && step.before && step.after && isTorn(*now, *step.before, *step.after);
    if (now != step.before && !torn) {
        finished.left.push_back(step.path);
        return true;
    }
    if (put(step, now, step.after) != FileError::None) return false;
    finished.written.push_back(step.path);
    return true;
}

// The new files of saves that the process of this note had begun.
void removeTemporaries(const std::string& folder, const std::string& process) {
    std::vector<std::string> names;
    files().list(folder, names);
    for (const std::string& name : names)
        if (name.starts_with(".tarnwick-" + process + "-") && name.ends_with(TemporaryEnd))
            files().remove(joined(folder, name));
}

std::string processOf(std::string_view name) {
    return std::string(name.substr(0, name.find('-')));
}

// Changed by somebody since, in any of its files, is no reason to leave the others half: what is old becomes new.
// All of them changed or new: an old note whose removal was lost.
void finishNote(const std::string& name, FinishedChanges& finished) {
    const std::string note = changesFolder() + name;
    std::string bytes;
    Steps steps;
    if (readFile(note, bytes) != FileError::None) return finished.failed.push_back(note);
    if (!readNote(bytes, steps)) {
        if (files().rename(note, note + std::string(DamagedEnd)) == FileError::None)
            finished.damaged.push_back(note + std::string(DamagedEnd));
        return;
    }
    FinishedChanges mine;
    for (const Step& step : steps) {
        if (!finish(step, mine)) mine.failed.push_back(step.path);
        SaveTarget target;
        if (findSaveTarget(native(step.path), target) == FileError::None)
            removeTemporaries(folderOf(target.path), processOf(name));
    }
    if (mine.failed.empty()) static_cast<void>(removeNote(note));
    if (mine.failed.empty() && mine.written.empty()) return;
    const auto take = [](std::vector<std::string>& to, const std::vector<std::string>& from) {
        to.insert(to.end(), from.begin(), from.end());
    };
    take(finished.written, mine.written);
    take(finished.left, mine.left);
    take(finished.failed, mine.failed);
}

}  // namespace

FinishedChanges finishChanges() {
    FinishedChanges finished;
    std::vector<std::string> names;
    files().list(changesFolder(), names);
    for (const std::string& name : names) {
        if (name.ends_with(NoteEnd)) finishNote(name, finished);
        if (name.ends_with(TemporaryEnd)) files().remove(changesFolder() + name);
    }
    return finished;
}

}  // namespace tarn::os
