// SPDX-License-Identifier: Apache-2.0
//
// The path family of the system library: texts of paths, without the disk. These functions can neither fail
// nor set the error cell, and so have no frames.
//
// A drive is what stands up to a ":" in front of the first separator. A path that begins with "/" is rooted
// without one.
#include "library/system/files.h"

#include "library/system/constants.h"
#include "os/paths.h"
#include "os/text/ascii.h"

namespace tarn {
namespace {

constexpr std::size_t npos = std::string_view::npos;

bool isSeparator(char c) {
    return c == '/' || c == '\\';
}

bool allNameChars(std::string_view text) {
    for (const char c : text)
        if (!FILENAMECHAR(c)) return false;
    return true;
}

// One letter and ":"; none where the path begins with "/".
bool isDrive(std::string_view drive, std::string_view path) {
    if (drive.empty()) return path.starts_with('/');
    return drive.size() == 2 && ascii::isLetter(drive[0]);
}

// A separator, then groups of file-name characters each ended by a separator.
bool isDirectory(std::string_view directory) {
    if (directory.empty() || !isSeparator(directory[0])) return false;
    char before = directory[0];
    for (const char c : directory.substr(1)) {
        if (isSeparator(c) ? isSeparator(before) : !FILENAMECHAR(c)) return false;
        before = c;
    }
    return true;  // it ends with its last separator by the way it was split
}

bool partsAreGood(const PathParts& parts, std::string_view path) {
    return isDrive(parts.drive, path) && isDirectory(parts.directory) && allNameChars(parts.name) &&
           allNameChars(parts.extension);
}

}  // namespace

bool FILENAMECHAR(char c) {
    return static_cast<unsigned char>(c) >= 128 || FILENAMECHARS.find(c) != npos;
}

PathParts SPLITPATH(std::string_view path) {
    PathParts parts;
    const std::size_t colon = path.find_first_of(":/\\");
    if (colon != npos && path[colon] == ':') {
        parts.drive = path.substr(0, colon + 1);
        path.remove_prefix(colon + 1);
    }
    parts.directory = paths::folder(path);
    parts.name = paths::stem(path);
    parts.extension = paths::extension(path);
    return parts;
}

std::string FILEGETDRIVE(std::string_view path) {
    return SPLITPATH(path).drive;
}

std::string FILEGETDIR(std::string_view path) {
    const PathParts parts = SPLITPATH(path);
    return parts.drive + parts.directory;
}

std::string FILEGETFNAME(std::string_view path) {
    const PathParts parts = SPLITPATH(path);
    return parts.name + parts.extension;
}

std::string FILEGETEXT(std::string_view path) {
    return SPLITPATH(path).extension;
}
std::string FILEBASENAME(std::string_view path) {
    return SPLITPATH(path).name;
}

std::string FILECHANGEEXT(std::string_view path, std::string_view extension) {
    const PathParts parts = SPLITPATH(path);
    return parts.drive + parts.directory + parts.name + std::string(extension);
}

// A last name without a separator behind it counts as a folder's name.
bool DIRCHK(std::string_view path) {
    return partsAreGood(SPLITPATH(path), path);
}

bool FILECHK(std::string_view path) {
    const PathParts parts = SPLITPATH(path);
    return partsAreGood(parts, path) && !(parts.name.empty() && parts.extension.empty());
}

bool ISROOTED(std::string_view path) {
    return !SPLITPATH(path).drive.empty() || (!path.empty() && isSeparator(path[0]));
}

std::string FILEADDSEPARATOR(std::string_view directory) {
    std::string out(directory);
    if (!out.empty() && !isSeparator(out.back())) out += '/';
    return out;
}

std::string FILESUBSTITUTENAME(std::string_view line, std::string_view mark, std::string_view base) {
    if (mark.size() != 1) return std::string(line);
    std::string out;
    for (std::size_t at = 0; at < line.size();) {
        if (line[at] != mark[0]) {
            out += line[at++];
            continue;
        }
        const std::size_t start = ++at;
        while (at < line.size() && (ascii::isSymbol(line[at]) || line[at] == '.')) ++at;
        out.append("\"").append(base).append(line.substr(start, at - start)).append("\"");
    }
    return out;
}

}  // namespace tarn
