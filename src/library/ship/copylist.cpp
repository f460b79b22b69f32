// SPDX-License-Identifier: Apache-2.0
#include "library/ship/copylist.h"

#include "library/settings/profstr.h"
#include "library/system/copyfile.h"
#include "library/system/system.h"
#include "os/files.h"
#include "os/process.h"
#include "os/text/ascii.h"

#include <algorithm>
#include <limits>
#include <map>
#include <set>

MODULE("copyutil", tarn::DefaultErrorHandler, tarn::LeaveErrors)

namespace tarn {
namespace {

constexpr std::int32_t Largest = std::numeric_limits<std::int32_t>::max();

std::int32_t fitting(std::int64_t size) {
    return static_cast<std::int32_t>(std::min<std::int64_t>(size, Largest));
}

std::int64_t roundedUp(std::int64_t size, std::int64_t unit) {
    const std::int64_t rest = size % unit;
    return rest == 0 ? size : size - rest + unit;
}

// Two paths of one name that lead to one file. (A file under two names is two.)
bool isSameFile(const std::string& one, const std::string& other) {
    if (one == other) return true;
    const os::FileInfo a = os::infoOf(os::native(one)), b = os::infoOf(os::native(other));
    return a.exists && b.exists && a.device == b.device && a.inode == b.inode;
}

// The lines of a list that have a path, those of a file that was there already left out. What was is asked of the disk only
// for files of one name.
template <class Take>
void eachFile(std::string_view files, const Take& take) {
    std::map<std::string, std::vector<std::string>> byName;
    while (!files.empty()) {
        const std::size_t end = std::min(files.find('\n'), files.size());
        const std::string_view line = files.substr(0, end);
        files.remove_prefix(std::min(end + 1, files.size()));
        const std::string path = COPYPATH(line);
        std::vector<std::string>& known = byName[FILEGETFNAME(path)];
        if (path.empty() || std::any_of(known.begin(), known.end(),
                                        [&](const std::string& one) { return isSameFile(one, path); }))
            continue;
        known.push_back(path);
        take(line, path);
    }
}

std::vector<std::string> pathsOf(std::string_view files) {
    std::vector<std::string> paths;
    eachFile(files, [&](std::string_view, const std::string& path) { paths.push_back(path); });
    return paths;
}

std::string listLine(const std::string& name, std::int64_t size) {
    return name + "\t" + std::to_string(size) + "\n";
}

}  // namespace

// ---- the placed files ----

std::int64_t CopyList::roundedSize(int disk) const {
    std::int64_t size = 0;
    for (const CopyFile& file : files)
        if (file.Disk == disk) size += file.Rounded;
    return size;
}

std::string CopyList::paths(int disk) const {
    std::string lines;
    for (const CopyFile& file : files)
        if (file.Disk == disk) lines += file.Name + "\n";
    return lines;
}

// ---- lines ----

std::string COPYPATH(std::string_view line) {
    FRAME(COPYPATH);
    return STRRTRIMCRLF(line.substr(0, std::min(line.find('\t'), line.size())));
}

std::string STRSORT(std::string_view text) {
    FRAME(STRSORT);
    std::vector<std::string_view> lines;
    while (!text.empty()) {
        const std::size_t end = std::min(text.find('\n'), text.size());
        lines.push_back(text.substr(0, end));
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    std::sort(lines.begin(), lines.end());
    std::string sorted;
    for (const std::string_view line : lines) sorted.append(line) += '\n';
    return sorted;
}

std::string STRPLURAL(int count) {
    FRAME(STRPLURAL);
    return count == 1 ? "" : "s";
}

std::string FILELISTONCE(const std::string& files) {
    FRAME(FILELISTONCE);
    std::string lines;
    eachFile(files, [&](std::string_view line, const std::string&) { lines.append(line) += '\n'; });
    return lines;
}

std::string GETEXTNFILELIST(const std::string& files, std::string_view extension) {
    FRAME(GETEXTNFILELIST);
    std::string found;
    for (const std::string& path : pathsOf(files))
        if (STREQUAL(FILEGETEXT(path), extension)) found += path + "\n";
    return found;
}

std::string SAMENAMEDFILES(const std::string& files) {
    FRAME(SAMENAMEDFILES);
    std::map<std::string, std::vector<std::string>> byName;
    for (const std::string& path : pathsOf(files)) byName[FILEGETFNAME(path)].push_back(path);
    std::string same;
    for (const auto& [name, paths] : byName)
        if (paths.size() > 1)
            for (const std::string& path : paths) same += path + "\n";
    return same;
}

bool ISNAMEINLIST(const std::string& text, const std::string& name, std::int64_t size) {
    FRAME(ISNAMEINLIST);
    // -rw-r--r--  3.0 unx     1234 tx defX 26-Nov-22 16:33 the name
    constexpr int SizeWord = 4, TimeWord = 8;
    const std::string lines = text + "\n";
    for (int i = 1; i <= STRLINES(lines); ++i) {
        const std::string line = STRRTRIMCRLF(STRLINE(lines, i)), time = STRWORD(line, TimeWord);
        const auto place = static_cast<std::size_t>(STRWORDPOS(line, TimeWord)) + time.size();
        if (!time.empty() && place <= line.size() && line.substr(place) == name &&
            STRWORD(line, SizeWord) == std::to_string(size))
            return true;
    }
    return false;
}

// ---- files ----

CopyList GETSEGMENTEDFILELIST(const std::string& files, std::int64_t diskSize, std::int64_t allocationUnit) {
    FRAME(GETSEGMENTEDFILELIST);
    CopyList list;
    std::int32_t disk = 1;
    std::int64_t free = diskSize;
    for (const std::string& path : pathsOf(files)) {
        STAMP();
        const std::int64_t size = FileSize(path);
        const std::int64_t rounded = roundedUp(size, std::max<std::int64_t>(allocationUnit, 1));
        if (size < 0 || rounded > diskSize) return {-1, {}};
        if (rounded > free) {
            ++disk;
            free = diskSize;
        }
        free -= rounded;
        list.files.push_back({path, fitting(size), fitting(rounded), disk});
    }
    return list;
}

std::string GETDISKFILELIST(const std::string& folder, std::string_view pattern) {
    FRAME(GETDISKFILELIST);
    std::vector<std::string> names;
    os::files().list(os::native(folder), names);
    std::string lines;
    for (const std::string& name : names) {
        const std::int64_t size = FileSize(FILEADDSEPARATOR(folder) + name);
        if (size >= 0 && (pattern == "*.*" || ascii::matches(name, pattern))) lines += listLine(name, size);
    }
    return lines;
}

std::string FILELISTLINES(const std::string& files) {
    FRAME(FILELISTLINES);
    std::string lines;
    for (const std::string& path : pathsOf(files)) lines += listLine(FILEGETFNAME(path), FileSize(path));
    return lines;
}

CopyFailure COPYFILES(const std::string& files, const std::string& folder, CopyProgress go, void* context) {
    FRAME(COPYFILES);
    const std::vector<std::string> paths = pathsOf(files);
    CopyFailure failed;
    std::set<std::string> names;  // a second file of one name would take the place of the first
    bool goesOn = true;
    std::int64_t done = 0;
    for (const std::string& path : paths) {
        STAMP();
        goesOn = goesOn && (go == nullptr || go(context, done++, static_cast<std::int64_t>(paths.size())));
        const std::string name = FILEGETFNAME(path);
        const bool isFirst = names.insert(name).second;
        if (goesOn && isFirst && COPYANYFILE(path, FILEADDSEPARATOR(folder) + name)) continue;
        if (failed.code == 0) failed.code = ErrorCell();
        ClearError();
        failed.files += path + "\n";
    }
    return failed;
}

std::string FILECOPYLIST(const std::string& files, const std::string& folder, CopyProgress go,
                         void* context) {
    FRAME(FILECOPYLIST);
    STAMP();
    return COPYFILES(files, folder, go, context).files;
}

std::string FILEDELETELIST(const std::string& files) {
    FRAME(FILEDELETELIST);
    std::string left;
    for (const std::string& path : pathsOf(files)) {
        STAMP();
        FILEDELETE(path);
        ClearError();
        if (FileSize(path) >= 0) left += path + "\n";
    }
    return left;
}

std::string GETCOMMANDPROCESSOR() {
    FRAME(GETCOMMANDPROCESSOR);
    return os::environment("COMSPEC");
}

}  // namespace tarn
