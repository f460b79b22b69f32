// SPDX-License-Identifier: Apache-2.0
#include "library/settings/placeholders.h"

#include "library/system/system.h"

MODULE("system", tarn::DefaultErrorHandler, tarn::LeaveErrors)

namespace tarn {
namespace {

struct Place {
    std::string_view word;
    std::string PlaceholderFolders::*folder;
};
constexpr Place places[] = {{"RESOURCEDIR", &PlaceholderFolders::resources},
                            {"COMPILERDIR", &PlaceholderFolders::compiler}};

bool isSeparator(char c) {
    return c == '/' || c == '\\';
}

// The placeholder that begins the text, and how long it is with its separator; null if none does.
struct Found {
    const Place* place = nullptr;
    std::size_t length = 0;
};
Found placeholderAt(std::string_view text) {
    if (text.empty() || (text.front() != '<' && text.front() != '{')) return {};
    const char close = text.front() == '<' ? '>' : '}';
    for (const Place& place : places) {
        const std::size_t length = place.word.size() + 3;
        if (text.size() >= length && text[length - 2] == close && isSeparator(text[length - 1]) &&
            STREQUAL(text.substr(1, place.word.size()), place.word))
            return {&place, length};
    }
    return {};
}

}  // namespace

std::string FILERESOLVEPATHS(const std::string& text, const PlaceholderFolders& folders) {
    FRAME(FILERESOLVEPATHS);
    std::string out;
    for (std::size_t at = 0; at < text.size();) {
        const Found found = placeholderAt(std::string_view(text).substr(at));
        const bool known = found.place != nullptr && !(folders.*found.place->folder).empty();
        if (known)
            out += folders.*found.place->folder;
        else
            out += text[at];
        at += known ? found.length : 1;
    }
    return out;
}

std::string FILEUNRESOLVEPATHS(const std::string& path, const PlaceholderFolders& folders) {
    FRAME(FILEUNRESOLVEPATHS);
    const Place* longest = nullptr;
    for (const Place& place : places) {
        const std::string& folder = folders.*place.folder;
        const bool begins = !folder.empty() && path.starts_with(folder);
        if (begins && (longest == nullptr || folder.size() > (folders.*longest->folder).size()))
            longest = &place;
    }
    if (longest == nullptr) return path;
    return "<" + std::string(longest->word) + ">\\" + path.substr((folders.*longest->folder).size());
}

}  // namespace tarn
