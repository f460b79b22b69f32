// SPDX-License-Identifier: Apache-2.0
//
// The lines of a script, read and checked for their form.
#include "support/script_lines.h"

#include <algorithm>
#include <map>
#include <set>

namespace tarn {

namespace {

// What each line may be: the least number of words behind its name, and whether it needs real input.
struct LineForm {
    std::size_t least;
    bool realInput = false;
};
const std::map<std::string, LineForm> forms = {
    {"command", {1}},     {"press", {2}},       {"set", {3}},       {"edit", {2}},
    {"select", {1}},      {"dblclick", {2}},    {"close", {1}},     {"answer", {1}},
    {"choose-file", {1}}, {"input", {1}},       {"pick", {1}},      {"start", {1}},
    {"stop-tool", {0}},   {"clock", {1}},       {"key", {1, true}}, {"type", {1, true}},
    {"click", {2, true}}, {"mouse", {4, true}}, {"maximise", {1}},  {"screenshot", {1}},
    {"dump", {1}},        {"wait", {1}},        {"expect", {1}},    {"run", {1}},
    {"strike", {3}},      {"sheet", {2}},       {"restart", {0}},   {"tick", {1}},
    {"activate", {1}},    {"design", {2}},      {"point", {1}},     {"drag", {3}},
    {"margin", {1}},      {"front", {1, true}}};

const std::set<std::string> answerLines = {"answer", "choose-file", "input", "pick"};

char unescape(char c) {
    return c == 'n' ? '\n' : c == 't' ? '\t' : c == 'r' ? '\r' : c == 'b' ? '\2' : c;
}

// Splits a line into its words; false when a quote stays open.
bool splitWords(const std::string& line, ScriptWords& words) {
    std::size_t at = 0;
    while (true) {
        while (at < line.size() && (line[at] == ' ' || line[at] == '\t')) at++;
        if (at == line.size()) return true;
        std::string word;
        if (line[at] != '"') {
            while (at < line.size() && line[at] != ' ' && line[at] != '\t') word += line[at++];
        } else {
            for (at++; at < line.size() && line[at] != '"'; at++)
                word += line[at] == '\\' && at + 1 < line.size() ? unescape(line[++at]) : line[at];
            if (at++ == line.size()) return false;
        }
        words.push_back(word);
    }
}

void substitute(std::string& text, const std::string& mark, const std::string& value) {
    for (std::size_t at = 0; (at = text.find(mark, at)) != std::string::npos; at += value.size())
        text.replace(at, mark.size(), value);
}

// Of "REAL or MEANING" keeps the one that this mode does.
void chooseAlternative(ScriptWords& words, bool realInput) {
    const auto middle = std::find(words.begin(), words.end(), "or");
    if (middle == words.end()) return;
    if (realInput)
        words.erase(middle, words.end());
    else
        words.erase(words.begin(), middle + 1);
}

// What other programs than this one show.
bool isOfOthers(const ScriptWords& words) {
    return words[0] == "front" || (words[0] == "expect" && (words[1] == "front" || words[1] == "clipboard"));
}

std::string lineFault(const ScriptWords& words) {
    const auto form = forms.find(words[0]);
    if (form == forms.end()) return "there is no '" + words[0] + "'";
    if (words.size() <= form->second.least) return "'" + words[0] + "' lacks a word";
    return {};
}

}  // namespace

bool needsRealInput(const std::string& name) {
    return forms.at(name).realInput;
}

bool isAnswer(const std::string& name) {
    return answerLines.count(name) != 0;
}

Script parseScript(const std::string& text, const std::string& dir, const std::string& profile,
                   bool realInput) {
    Script script;
    int number = 0;
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t end = std::min(text.find('\n', at), text.size());
        ScriptLine line{++number, {}};
        const bool whole = splitWords(text.substr(at, end - at), line.words);
        at = end + 1;
        if (line.words.empty() || line.words[0][0] == '#') continue;
        chooseAlternative(line.words, realInput);
        for (std::string& word : line.words) {
            substitute(word, "{dir}", dir);
            substitute(word, "{profile}", profile);
        }
        if (line.words[0] == "args") {
            script.arguments.assign(line.words.begin() + 1, line.words.end());
            continue;
        }
        if (line.words[0] == "setting" && line.words.size() == 4) {
            script.settings.push_back({line.words[1], line.words[2], line.words[3]});
            continue;
        }
        if (line.words[0] == "needs-screen" || line.words[0] == "hide-screen") {
            (line.words[0] == "needs-screen" ? script.needsScreen : script.hidesScreen) = true;
            continue;
        }
        const std::string fault = whole ? lineFault(line.words) : "a quote stays open";
        if (!fault.empty() && script.error.empty())
            script.error = "line " + std::to_string(number) + ": " + fault;
        if (fault.empty()) script.needsRealInput |= forms.at(line.words[0]).realInput;
        if (fault.empty()) script.needsScreen |= isOfOthers(line.words);
        script.lines.push_back(line);
    }
    return script;
}

}  // namespace tarn
