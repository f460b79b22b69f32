// SPDX-License-Identifier: Apache-2.0
//
// Whether the files of a table may stand where their names say: an index must not be the file of rows, nor
// belong to another table.
#include "kernel/tables/tables_file_places.h"

#include "kernel/index/index_file.h"
#include "kernel/index/index_filedisk.h"
#include "kernel/run/errors.h"
#include "kernel/tables/tables_file_index.h"
#include "os/paths.h"
#include "os/text/ascii.h"

namespace tarn {

namespace {

constexpr std::string_view asideMark = "~i";
constexpr std::string_view marks[] = {asideMark, "~n", "~d"};

bool isFile(const os::FileInfo& info) {
    return info.exists && !info.folder && !info.special;
}

bool isSame(const os::FileInfo& a, const os::FileInfo& b) {
    return a.exists && b.exists && a.device == b.device && a.inode == b.inode;
}

// By its name, or by what stands there.
bool isRowFile(const std::string& path, std::string_view tableFile, const os::FileInfo& rows) {
    return path == tableFile || (rows.exists && isSame(os::infoOf(path), rows));
}

// The path of the other table file that an index names, which exists; "" for none.
std::string otherTable(const std::string& indexFile, std::string_view tableFile) {
    if (!isFile(os::infoOf(indexFile))) return {};
    const std::string_view own = paths::fileName(tableFile);
    const std::string named = IndexTableName(indexFile);
    const bool other = !named.empty() && named.find_first_of(paths::separators) == std::string::npos &&
                       !ascii::equal(named, own.substr(0, MaxIndexTableName));
    if (!other) return {};
    std::string path = std::string(tableFile.substr(0, tableFile.size() - own.size())) + named;
    return isFile(os::infoOf(path)) ? path : std::string();
}

bool isIndexOfOther(const std::string& path, std::string_view tableFile) {
    return !OwnerOfIndex(path, tableFile).empty();
}

}  // namespace

// An index that names another file but does not belong to it is a copy.
std::string OwnerOfIndex(const std::string& indexFile, std::string_view tableFile) {
    std::string other = otherTable(indexFile, tableFile);
    if (other.empty()) return {};
    const std::string index = IndexFileName(other, indexFile.back() - '0');
    bool belongs = indexFile == index;
    for (const std::string_view mark : marks) belongs = belongs || indexFile == MarkedIndexName(index, mark);
    return belongs ? other : std::string();
}

bool NamesOtherTable(const std::string& indexFile, std::string_view tableFile) {
    return !otherTable(indexFile, tableFile).empty();
}

bool AcceptRowPlace(std::string_view tableFile, std::int32_t indexes) {
    if (indexes == 0) return true;
    const os::FileInfo rows = os::infoOf(std::string(tableFile));
    for (std::int32_t n = 1; n <= MaxIndexes; ++n) {
        const std::string index = IndexFileName(tableFile, n);
        bool taken = isRowFile(index, tableFile, rows);
        for (const std::string_view mark : marks)
            taken = taken || isRowFile(MarkedIndexName(index, mark), tableFile, rows);
        if (taken) return Refuse(ERR_FILE_NAME);
    }
    return true;
}

bool AcceptIndexPlaces(std::string_view tableFile, std::int32_t indexes) {
    if (!AcceptRowPlace(tableFile, indexes)) return false;
    for (std::int32_t n = 1; n <= indexes; ++n) {
        const std::string index = IndexFileName(tableFile, n);
        if (os::infoOf(index).special) return Refuse(ERR_FILE_NAME);
        bool taken = isIndexOfOther(index, tableFile);
        for (const std::string_view mark : marks)
            taken = taken || isIndexOfOther(MarkedIndexName(index, mark), tableFile);
        if (taken) return Refuse(ERR_INDEX_FILE_SIZE);
    }
    return true;
}

void RemoveIndexFiles(std::string_view tableFile, std::int32_t waiting) {
    const os::FileInfo rows = os::infoOf(std::string(tableFile));
    const auto remove = [&](const std::string& path) {
        if (isRowFile(path, tableFile, rows) || isIndexOfOther(path, tableFile)) return;
        LetGoOfIndex(path);
        os::files().remove(path);
    };
    for (std::int32_t n = 1; n <= MaxIndexes; ++n) {
        const std::string index = IndexFileName(tableFile, n);
        remove(index);
        for (const std::string_view mark : marks) {
            if (mark != asideMark || n > waiting) remove(MarkedIndexName(index, mark));
        }
    }
}

}  // namespace tarn
