// SPDX-License-Identifier: Apache-2.0
//
// The head of a class text: its name, its keyword and its Uses line. All operations share one walk over the
// tokens; comments and characters that begin no token are passed over.
#include "library/source/symbols.h"

#include "library/source/symbols_text_internal.h"
#include "library/system/system.h"
#include "os/files.h"
#include "os/text/ascii.h"

#include <algorithm>
#include <iterator>

MODULE("symbols", tarn::DefaultErrorHandler, tarn::LeaveErrors)

namespace tarn {
namespace detail {

std::string loadSource(int mode, const std::string& source) {
    if (mode != 1) return source;
    std::string text;
    if (os::readFile(source, text) != os::FileError::None) text.clear();
    return text;
}

std::string storeSource(int mode, std::string& source, std::string text) {
    if (mode != 1) {
        source = std::move(text);
        return {};
    }
    const os::SaveResult result = os::saveFile(source, text);
    if (result.ok()) return {};
    std::string error =
        "The file '" + source + "' could not be saved. " + std::string(os::describe(result.error));
    if (!result.rescueCopy.empty()) error += " The new text is in '" + result.rescueCopy + "'.";
    return error;
}

bool TokenWalk::next() {
    std::size_t before = position;
    word = NextWord(text, position);
    start = position - word.size();
    upper = STRUPPER(word);
    if (!word.empty()) return true;
    if (position > text.size()) return false;
    stop = text[position - 1];
    before = position;
    if (text.substr(before - 1).starts_with("//"))
        position = std::min(text.find_first_of(std::string_view("\n\0", 2), before - 1), text.size()) + 1;
    else
        ++position;
    return true;
}

}  // namespace detail

namespace {

constexpr std::string_view DeclarationSymbols[] = {"PUBLIC",   "PRIVATE",  "CONST", "TYPE",
                                                   "CALLBACK", "FUNCTION", "END"};

struct ClassName {
    std::string name;
    std::size_t position = 0;  // 1-based; 0: there is none
};

// The word behind "class", once the keyword has been seen too. An empty keyword counts as seen.
ClassName findClassNamePos(std::string_view text, std::string_view keyword) {
    const std::string wanted = STRUPPER(keyword);
    ClassName found;
    bool keywordSeen = wanted.empty(), classSeen = false;
    detail::TokenWalk walk(text);
    while (!(keywordSeen && classSeen) && walk.next()) {
        if (walk.word.empty() && walk.stop == '\'') break;
        if (walk.word.empty()) continue;
        if (ISDECLARATIONSYMBOL(walk.upper)) break;
        if (walk.upper == wanted) keywordSeen = true;
        if (walk.upper != "CLASS") continue;
        classSeen = true;
        if (!walk.next() || walk.word.empty() || ISDECLARATIONSYMBOL(walk.upper)) return {};
        found = {walk.word, walk.start};
    }
    return keywordSeen ? found : ClassName{};
}

}  // namespace

bool ISDECLARATIONSYMBOL(std::string_view word) {
    return std::find(std::begin(DeclarationSymbols), std::end(DeclarationSymbols), word) !=
           std::end(DeclarationSymbols);
}

std::string SYMGETUSES(int mode, const std::string& source) {
    FRAME(SYMGETUSES);
    const std::string text = detail::loadSource(mode, source);
    std::string names;
    bool collecting = false;
    for (detail::TokenWalk walk(text); walk.next();) {
        if (walk.word.empty()) continue;
        if (walk.upper == "USES") {
            collecting = true;
        } else if (ISDECLARATIONSYMBOL(walk.upper)) {
            collecting = false;
            if (!names.empty()) break;
        } else if (collecting) {
            names += (names.empty() ? "" : " ") + walk.word;
        }
    }
    return names;
}

bool SYMISCLASS(int mode, const std::string& source, std::string_view word1, std::string_view word2) {
    FRAME(SYMISCLASS);
    const std::string text = detail::loadSource(mode, source);
    const std::string first = STRUPPER(word1), second = STRUPPER(word2);
    bool firstSeen = false, secondSeen = false;
    for (detail::TokenWalk walk(text); walk.next() && !(firstSeen && secondSeen);) {
        if (walk.word.empty()) continue;
        firstSeen = firstSeen || walk.upper == first;
        secondSeen = secondSeen || walk.upper == second;
        if (ISDECLARATIONSYMBOL(walk.upper)) break;
    }
    return firstSeen && secondSeen;
}

std::string SYMGETCLASSNAME(int mode, const std::string& source, std::string_view keyword) {
    FRAME(SYMGETCLASSNAME);
    return findClassNamePos(detail::loadSource(mode, source), keyword).name;
}

std::string SYMSETCLASSNAME(const std::string& name, int mode, std::string_view keyword,
                            std::string& source) {
    FRAME(SYMSETCLASSNAME);
    std::string text = detail::loadSource(mode, source);
    if (name.empty() || text.empty())
        return "The class name is missing, or the source text does not contain a class.";
    const ClassName found = findClassNamePos(text, keyword);
    if (found.position == 0) return "The class name could not be found.";
    if (detail::Lines lines; !detail::LOADSTRINGLIST(text, lines)) return detail::TooManyLines;
    text.replace(found.position - 1, found.name.size(), name);
    STAMP();
    return detail::storeSource(mode, source, std::move(text));
}

}  // namespace tarn
