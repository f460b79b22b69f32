// SPDX-License-Identifier: GPL-3.0-or-later
#include "ide/search/filewalk.h"

#include "ide/editor/textedit.h"
#include "ide/shell/windows.h"
#include "os/files.h"
#include "os/text/ascii.h"

#include <cstring>
#include <set>
#include <utility>

MODULE("editmenu")

namespace tarn {
namespace {

constexpr std::size_t MostDepth = 200;  // folders in folders

class Walk {
public:
    Walk(std::string_view patterns, bool subfolders, LongWork& work)
        : patterns_(patterns), subfolders_(subfolders), work_(work) {}

    void folder(const std::string& path, std::size_t depth) {
        os::FileInfo info;
        std::vector<std::string> names;
        if (os::files().info(path, info) != os::FileError::None || !info.exists || !info.folder ||
            os::files().list(path, names) != os::FileError::None) {
            ++found.unreadableFolders;
            return;
        }
        if (!seen_.emplace(info.device, info.inode).second) return;
        std::vector<std::string> below;
        for (const std::string& name : names) {
            if (!work_.go()) return;
            entry(FILEADDSEPARATOR(path) + name, name, below);
        }
        if (!subfolders_ || depth >= MostDepth) return;
        for (const std::string& one : below) folder(one, depth + 1);
    }

    FoundFiles found;

private:
    void entry(const std::string& path, const std::string& name, std::vector<std::string>& below) {
        const bool wanted = FITSPATTERNS(name, patterns_);
        if (!wanted && !subfolders_) return;
        os::FileInfo info;
        if (os::files().info(path, info) != os::FileError::None || !info.exists) return;
        if (info.folder)
            below.push_back(path);
        else if (wanted && !info.special && seen_.emplace(info.device, info.inode).second)
            found.files.push_back(path);
    }

    std::string_view patterns_;
    bool subfolders_;
    LongWork& work_;
    std::set<std::pair<std::uint64_t, std::uint64_t>> seen_;  // device and number
};

void addLine(std::string& lines, int count, const char* why) {
    if (count == 0) return;
    lines += std::to_string(count) +
             (count == 1 ? " file was passed over because it " : " files were passed over because they ") +
             why + ".\n";
}

}  // namespace

bool FITSPATTERNS(std::string_view name, std::string_view patterns) {
    bool any = false;
    for (std::size_t at = 0; at < patterns.size();) {
        const std::size_t end = std::min(patterns.find_first_of("; \t", at), patterns.size());
        const std::string_view pattern = patterns.substr(at, end - at);
        if (!pattern.empty() && ascii::matches(name, pattern)) return true;
        any = any || !pattern.empty();
        at = end + 1;
    }
    return !any;
}

FoundFiles FILESIN(const std::vector<std::string>& folders, std::string_view patterns, bool subfolders,
                   LongWork& work) {
    FRAME(FILESIN);
    Walk walk(patterns, subfolders, work);
    for (const std::string& folder : folders) {
        STAMP();
        if (!work.stopped()) walk.folder(folder, 1);
    }
    return std::move(walk.found);
}

std::string SkippedFiles::lines() const {
    std::string lines;
    addLine(lines, binary, "held no text");
    addLine(lines, tooLarge, "had no room in the Code window");
    addLine(lines, unreadable, "could not be read");
    return lines;
}

bool READTEXTFILE(const std::string& file, std::string& text, SkippedFiles& skipped) {
    FRAME(READTEXTFILE);
    const std::int64_t size = os::sizeOf(file);
    if (size > EDITWNDGETMAXLENGTH(SDIEdit)) return ++skipped.tooLarge, false;
    if (size < 0 || os::readFile(file, text) != os::FileError::None) return ++skipped.unreadable, false;
    if (std::memchr(text.data(), 0, text.size()) != nullptr) return ++skipped.binary, false;
    return true;
}

}  // namespace tarn
