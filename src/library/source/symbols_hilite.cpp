// SPDX-License-Identifier: Apache-2.0
//
// The token string that colours a source file, made from the highlight section of its extension.
#include "library/source/symbols.h"

#include "library/settings/profstr.h"
#include "library/system/system.h"

MODULE("symbols", tarn::DefaultErrorHandler, tarn::LeaveErrors)

namespace tarn {
namespace {

struct Pair {
    const char *setting, *list;
};
constexpr Pair Pairs[] = {{"Keywords", "KeywordsList"},
                          {"FutureKeywords", "FutureKeywordsList"},
                          {"Strings", "StringsList"},
                          {"Comments", "CommentsList"}};

bool endsWith(std::string_view key, std::string_view end) {
    return key.size() >= end.size() && STREQUAL(key.substr(key.size() - end.size()), end);
}

std::string commentRules(std::string_view list, std::string_view setting) {
    std::string rules;
    const int words = STRWORDCOUNT(list);
    for (int n = 1; n <= words; ++n)
        rules.append(STRWORD(list, n)).append(" ##EOL ").append(setting).append("\n");
    return rules;
}

std::string wordRules(std::string_view list, std::string_view setting) {
    std::string rules;
    std::size_t position = 1;
    for (std::string word = NextWord(list, position); !word.empty(); word = NextWord(list, position))
        rules.append(word).append(" - ").append(setting).append("\n");
    return rules;
}

}  // namespace

std::string GETHILITELIST(const std::string& iniFile, std::string_view section, std::string_view settingKey,
                          std::string_view listKey) {
    FRAME(GETHILITELIST);
    STAMP();
    const std::string setting = PROFILESTRGET(iniFile, section, settingKey);
    STAMP();
    const std::string list = PROFILESTRGET(iniFile, section, listKey);
    if (endsWith(settingKey, "STRINGS")) return STRREMOVEQUOTES(list) + " - " + setting + "\n";
    if (endsWith(settingKey, "COMMENTS")) return commentRules(list, setting);
    return wordRules(list, setting);
}

std::string MAKETOKENSTR(const std::string& iniFile, std::string_view extension) {
    FRAME(MAKETOKENSTR);
    std::string ext = STRLOWER(extension);
    if (!ext.starts_with('.')) ext = "." + ext;
    if (ext.size() < 2) return {};
    const std::string section = "hilite" + ext;
    STAMP();
    if (PROFILESTRKEYS(iniFile, section).empty()) return {};
    std::string tokens;
    for (const Pair& pair : Pairs) {
        STAMP();
        tokens += GETHILITELIST(iniFile, section, pair.setting, pair.list);
    }
    return tokens;
}

}  // namespace tarn
