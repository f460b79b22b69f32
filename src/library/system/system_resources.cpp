// SPDX-License-Identifier: Apache-2.0
//
// The resource family of the system library: the file that a resource stands for.
#include "library/system/programs.h"

#include "kernel/windows/resources.h"
#include "library/system/resourceline.h"
#include "library/system/strings.h"
#include "library/system/words.h"
#include "os/text/ascii.h"

#include <algorithm>

MODULE("system", tarn::DefaultErrorHandler, tarn::LeaveErrors)

namespace tarn {
namespace {

// Passes over one token; what is no token ends before the next blank.
std::string skipToken(const std::string& line, std::size_t& position) {
    std::string word = NextWord(line, position);
    if (word.empty()) position = std::min(line.find_first_of(" \t\n", position - 1), line.size()) + 1;
    return word;
}

// The position of the path: behind name, id and kind, and the options; a DBFILE always has one of them.
std::size_t pathPosition(const std::string& line) {
    std::size_t position = 1;
    std::string kind;
    for (int skipped = 0; skipped < 3; ++skipped) kind = skipToken(line, position);
    if (ascii::equal(kind, "DBFILE")) {
        skipToken(line, position);
        return position;
    }
    for (std::size_t next = position; IS_RESOURCE_MEMORY_OPTS(NextWord(line, next));) position = next;
    return position;
}

// A backslash stands in front of a backslash and of a quote; any other one stands for itself.
std::string withoutEscapes(std::string_view path) {
    std::string plain;
    for (std::size_t at = 0; at < path.size(); ++at) {
        const bool escapes =
            path[at] == '\\' && at + 1 < path.size() && (path[at + 1] == '\\' || path[at + 1] == '"');
        plain += path[escapes ? ++at : at];
    }
    return plain;
}

}  // namespace

std::string APPRESOURCEFILE() {
    FRAME(APPRESOURCEFILE);
    return ApplicationResources();
}

bool IS_RESOURCE_MEMORY_OPTS(const std::string& word) {
    FRAME(IS_RESOURCE_MEMORY_OPTS);
    return ResourceMemoryOption(word);
}

std::string RESOURCELINEFILENAME(const std::string& line) {
    FRAME(RESOURCELINEFILENAME);
    const std::size_t position = pathPosition(line);
    std::string path = STRTRIM(position <= line.size() ? line.substr(position - 1) : "");
    STAMP();
    if (path.size() >= 2 && path.front() == '"' && path.back() == '"') path = path.substr(1, path.size() - 2);
    return withoutEscapes(path);
}

std::string RESOURCEGETFILENAME(const std::string& file, const std::string& kind, const std::string& name) {
    FRAME(RESOURCEGETFILENAME);
    STAMP();
    const ResourceText info = ResourceInfo(file, kind, name);
    if (!info.error.empty() || info.text.empty()) return "";
    STAMP();
    return RESOURCELINEFILENAME(info.text.substr(0, info.text.find('\n')));
}

}  // namespace tarn
