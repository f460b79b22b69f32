// SPDX-License-Identifier: Apache-2.0
#include "kernel/debug/debugsettings.h"

#include "kernel/text/numbers.h"
#include "os/files.h"
#include "os/paths.h"
#include "os/text/ascii.h"
#include "os/text/initext.h"
#include "platform/registry.h"
#include "platform/text.h"

#include <algorithm>
#include <array>
#include <unordered_map>

namespace tarn {
namespace {

constexpr std::size_t npos = std::string_view::npos;

// The next word, without the blanks around it; empty at the end.
std::string_view takeWord(std::string_view& rest) {
    rest = platform::trim(rest);
    std::size_t end = 0;
    while (end < rest.size() && !ascii::isBlank(rest[end])) ++end;
    const std::string_view word = rest.substr(0, end);
    rest.remove_prefix(end);
    return word;
}

bool readNumber(std::string_view text, std::int32_t& number) {
    if (text.empty() || !std::all_of(text.begin(), text.end(), ascii::isDigit)) return false;
    bool ok = false;
    IntegerFromWholeText(text, number, ok);
    return ok;
}

// ---- texts in double quotes ----

std::string quoted(std::string_view text) {
    std::string result = "\"";
    for (const char c : text) result.append(c == '"' ? 2 : 1, c);
    return result + '"';
}

// Behind the closing quote of a text that begins with one; npos if it is not closed.
std::size_t quotedEnd(std::string_view text) {
    for (std::size_t i = 1; i < text.size(); ++i) {
        if (text[i] != '"') continue;
        if (text.substr(i, 2) != "\"\"") return i + 1;
        ++i;
    }
    return npos;
}

// A text that stands in quotes as a whole is what is between them.
std::string plainText(std::string_view text) {
    if (!text.starts_with('"') || quotedEnd(text) != text.size()) return std::string(text);
    std::string result;
    for (std::size_t i = 1; i + 1 < text.size(); ++i) {
        result += text[i];
        if (text[i] == '"') ++i;
    }
    return result;
}

// Takes what stands ahead of the next ";" outside of quotes. Quotes that are not closed reach to the end.
std::string_view takeItem(std::string_view& rest) {
    bool inside = false;
    std::size_t end = 0;
    for (; end < rest.size() && (inside || rest[end] != ';'); ++end) inside = inside != (rest[end] == '"');
    const std::string_view item = rest.substr(0, end);
    rest.remove_prefix(std::min(end + 1, rest.size()));
    return platform::trim(item);
}

// ---- the parts of a rule ----

enum Part { Condition, Hits, Log, Parts };
constexpr std::array<std::string_view, Parts> PartWords = {"if", "hits", "log"};

std::size_t partOf(std::string_view word) {
    const auto same = [&](std::string_view one) { return ascii::equal(one, word); };
    return static_cast<std::size_t>(std::find_if(PartWords.begin(), PartWords.end(), same) -
                                    PartWords.begin());
}

// The text of a part up to the word of the next one, which stands outside of quotes; that of `log` is all the rest.
std::string_view takePart(std::string_view& rest, std::size_t part) {
    rest = platform::trim(rest);
    std::size_t end = part == Log ? rest.size() : 0;
    bool inside = false;
    while (end < rest.size()) {
        const std::size_t stop = std::min(rest.find_first_of(" \t", end), rest.size());
        const std::string_view word = rest.substr(end, stop - end);
        if (!inside && partOf(word) != Parts) break;
        inside = inside != (std::count(word.begin(), word.end(), '"') % 2 != 0);
        end = std::min(stop + 1, rest.size());
    }
    const std::string_view text = platform::trim(rest.substr(0, end));
    rest.remove_prefix(end);
    return text;
}

std::string hitsRefusal(std::string_view text) {
    return "'" + std::string(text) + "' is no number of hits: it must be a whole number from 1 up.";
}

// Puts the text of a part into the rule, or says why it is none.
std::string setPart(DebugRule& rule, std::size_t part, std::string_view text) {
    const std::string word(PartWords[part]);
    if (text.empty()) return "There is nothing behind '" + word + "'.";
    if (part == Condition) rule.condition = plainText(text);
    if (part == Log) rule.log = plainText(text);
    if (part == Hits && (!readNumber(text, rule.hits) || rule.hits < 1)) return hitsRefusal(text);
    return {};
}

bool sameLine(const DebugRule& rule, std::string_view className, std::int32_t line) {
    return rule.line == line && ascii::equal(rule.className, className);
}

// "NAME LINE parts"; a plain rule if it is none.
DebugRule ruleIn(std::string_view item) {
    DebugRule rule;
    rule.className = takeWord(item);
    const std::string_view line = takeWord(item);
    if (!platform::isIdentifier(rule.className) || !readNumber(line, rule.line)) return {};
    if (!ParseRuleParts(item, rule).empty()) return {};
    return rule;
}

bool readRange(std::string_view word, CodeRange& range) {
    const std::size_t dash = word.find('-');
    if (!readNumber(word.substr(0, dash), range.first) || range.first == 0) return false;  // 0 is no error
    range.last = range.first;
    return dash == npos || (readNumber(word.substr(dash + 1), range.last) && range.first <= range.last);
}

}  // namespace

std::string ParseRuleParts(std::string_view text, DebugRule& rule) {
    DebugRule read{rule.className, rule.line, {}, 0, {}};
    std::array<bool, Parts> seen{};
    for (std::string_view rest = platform::trim(text); !rest.empty(); rest = platform::trim(rest)) {
        const std::string_view word = takeWord(rest);
        const std::size_t part = partOf(word);
        if (part == Parts) return "'" + std::string(word) + "' is none of the words if, hits and log.";
        if (seen[part]) return "'" + std::string(PartWords[part]) + "' stands there twice.";
        seen[part] = true;
        if (std::string refusal = setPart(read, part, takePart(rest, part)); !refusal.empty()) return refusal;
    }
    rule = std::move(read);
    return {};
}

std::string FormatRuleParts(const DebugRule& rule) {
    std::string text;
    const auto add = [&text](Part part, const std::string& value) {
        text.append(text.empty() ? "" : " ").append(PartWords[part]).append(" ").append(value);
    };
    if (!rule.condition.empty()) add(Condition, quoted(rule.condition));
    if (rule.hits > 1) add(Hits, std::to_string(rule.hits));
    if (!rule.log.empty()) add(Log, quoted(rule.log));
    return text;
}

std::vector<DebugRule> ParseDebugRules(std::string_view value) {
    std::vector<DebugRule> rules;
    std::unordered_map<std::string, std::size_t> places;  // by class and line
    while (!value.empty()) {
        DebugRule rule = ruleIn(takeItem(value));
        if (rule.plain()) continue;
        const std::string owner = ascii::uppered(rule.className) + " " + std::to_string(rule.line);
        const auto [place, isNew] = places.try_emplace(owner, rules.size());
        if (isNew)
            rules.push_back(std::move(rule));
        else
            rules[place->second] = std::move(rule);
    }
    return rules;
}

std::string FormatDebugRules(const std::vector<DebugRule>& rules) {
    std::string text;
    for (const DebugRule& rule : rules)
        text += (text.empty() ? "" : " ") + rule.className + " " + std::to_string(rule.line) + " " +
                FormatRuleParts(rule) + " ;";
    return text;
}

const DebugRule* FindDebugRule(const std::vector<DebugRule>& rules, std::string_view className,
                               std::int32_t line) {
    const auto found = std::find_if(rules.begin(), rules.end(),
                                    [&](const DebugRule& rule) { return sameLine(rule, className, line); });
    return found != rules.end() ? &*found : nullptr;
}

void PutDebugRule(std::vector<DebugRule>& rules, const DebugRule& rule) {
    const auto found = std::find_if(rules.begin(), rules.end(), [&](const DebugRule& one) {
        return sameLine(one, rule.className, rule.line);
    });
    if (found == rules.end()) {
        if (!rule.plain()) rules.push_back(rule);
    } else if (rule.plain()) {
        rules.erase(found);
    } else {
        *found = rule;
    }
}

// ---- errors that stop, watches ----

std::vector<CodeRange> ParseStopCodes(std::string_view value) {
    std::string refused;
    return ParseStopCodes(value, refused);
}

std::vector<CodeRange> ParseStopCodes(std::string_view value, std::string& refused) {
    std::string words(value);
    std::replace(words.begin(), words.end(), ',', ' ');
    std::vector<CodeRange> codes;
    refused.clear();
    std::string_view rest = words;
    for (std::string_view word = takeWord(rest); !word.empty(); word = takeWord(rest)) {
        if (CodeRange range; readRange(word, range))
            codes.push_back(range);
        else
            refused.append(refused.empty() ? "" : " ").append(word);
    }
    return codes;
}

std::string FormatStopCodes(const std::vector<CodeRange>& codes) {
    std::string text;
    for (const CodeRange& range : codes) {
        text += (text.empty() ? "" : " ") + std::to_string(range.first);
        if (range.last != range.first) text += "-" + std::to_string(range.last);
    }
    return text;
}

bool IsStopCode(const std::vector<CodeRange>& codes, std::int32_t code) {
    return codes.empty() || std::any_of(codes.begin(), codes.end(), [code](const CodeRange& range) {
               return code >= range.first && code <= range.last;
           });
}

std::vector<std::string> ParseWatches(std::string_view value) {
    std::vector<std::string> watches;
    while (!value.empty()) {
        const std::string_view watch = takeItem(value);
        const bool closed = std::count(watch.begin(), watch.end(), '"') % 2 == 0;
        if (!watch.empty() && closed) watches.emplace_back(watch);
    }
    return watches;
}

std::string FormatWatches(const std::vector<std::string>& watches) {
    std::string text;
    for (const std::string& watch : watches) text += (text.empty() ? "" : " ") + watch + " ;";
    return text;
}

// ---- the file ----

std::string FindSettingsFile(std::string_view product, std::string_view version, std::string_view build) {
    const std::string key = "SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\App Paths\\";
    const std::string program = std::string(product).append(" v").append(version).append(build) + ".exe";
    for (const std::string& name : {program, std::string("ide.exe")}) {
        const std::string path = platform::RegGetSetting(key + name, "");
        if (!path.empty()) return std::string(paths::folder(path)) + "ide.ini";
    }
    return {};
}

std::string DebugSetting(std::string_view file, std::string_view section, std::string_view key) {
    std::string text;
    if (file.empty() || os::readFile(os::native(file), text) != os::FileError::None) return {};
    return std::string(ini::get(text, section, key));
}

std::string SaveDebugSettings(std::string_view file, const std::vector<DebugChange>& changes) {
    const std::string path = os::native(file);
    std::string text;
    const os::FileError error = os::readFile(path, text);
    if (error != os::FileError::None) return std::string(os::describe(error));
    const std::string before = text;
    for (const DebugChange& change : changes) ini::put(text, DebugSection, change.key, change.value);
    if (text == before) return {};
    return std::string(os::describe(os::saveFile(path, text, os::Durability::Unsynced).error));
}

}  // namespace tarn
