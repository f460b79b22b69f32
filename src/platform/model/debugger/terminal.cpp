// SPDX-License-Identifier: Apache-2.0
#include "platform/model/debugger/terminal.h"

#include "os/process.h"
#include "platform/model/debugger/userbreak.h"
#include "platform/operations/system.h"
#include "platform/text.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <optional>
#include <string_view>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace tarn::platform {

namespace {

constexpr int around = 5;  // lines shown on each side of the selected one
constexpr int page = 20;   // lines of `list`; a list that is no longer is shown whole
constexpr int longest = 4096;

bool working = false;
struct stat ended {};  // the standard input whose end was seen
int listed = 0;        // the last line that was shown

void write(const std::string& text) {
    os::debugOutput(text);
}

bool somebodyThere() {
    struct stat info {};
    if (::fstat(STDIN_FILENO, &info) != 0) return false;
    if (info.st_ino == ended.st_ino && info.st_dev == ended.st_dev) return false;
    return S_ISFIFO(info.st_mode) || S_ISREG(info.st_mode) || S_ISSOCK(info.st_mode) ||
           ::isatty(STDIN_FILENO) == 1;
}

// Byte by byte: what stands behind the line is the program's.
std::optional<std::string> readLine() {
    std::string line;
    for (char c = 0;;) {
        const ssize_t got = ::read(STDIN_FILENO, &c, 1);
        if (got < 0 && errno == EINTR) continue;
        if (got <= 0) {
            ::fstat(STDIN_FILENO, &ended);
            return line.empty() ? std::nullopt : std::optional(line);
        }
        if (c == '\n') break;
        if (line.size() < longest) line += c;
    }
    if (line.ends_with('\r')) line.pop_back();
    return line;
}

std::string lower(std::string_view text) {
    std::string result(text);
    for (char& c : result)
        if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
    return result;
}

// ---- the interrupt key ----

struct sigaction formerInterrupt {};

// The program may not have come to a statement since the last one, and whoever is at the prompt wants to go.
void onInterrupt(int number) {
    if (working || userBreakWord() == 1) {
        ::sigaction(SIGINT, &formerInterrupt, nullptr);
        ::raise(number);
        return;
    }
    SetUserBreak(1);
}

}  // namespace

void hearInterrupt(bool on) {
    static bool hears = false;
    if (on == hears || (on && !somebodyThere())) return;
    hears = on;
    struct sigaction action {};
    action.sa_handler = onInterrupt;
    action.sa_flags = SA_RESTART;
    if (on)
        ::sigaction(SIGINT, &action, &formerInterrupt);
    else
        ::sigaction(SIGINT, &formerInterrupt, nullptr);
}

namespace {

// ---- showing ----

// Selected, current, breakpoint or one with a rule, changed, expandable or expanded; then the number.
std::string shownLine(const DebugWindow& window, int line) {
    const int flags = window.lines.flags(line);
    const DebugMarker marker = window.lines.marker(line);
    std::string text{line == window.selected ? '>' : ' ', (flags & DEBUG_CURRENT) != 0 ? '=' : ' ',
                     (flags & DEBUG_RULE) != 0         ? '?'
                     : (flags & DEBUG_BREAKPOINT) != 0 ? '*'
                                                       : ' ',
                     (flags & DEBUG_CHANGED) != 0 ? '!' : ' ',
                     marker == DebugMarker::Expand     ? '+'
                     : marker == DebugMarker::Collapse ? '-'
                                                       : ' '};
    char number[16] = "";
    std::snprintf(number, sizeof number, "%5d  ", line);
    return text + number + std::string(window.lines.text(line)) + "\n";
}

void showLines(const DebugWindow& window, int from, int to) {
    std::string text;
    for (int line = std::max(from, 1); line <= std::min(to, window.lines.count()); ++line)
        text += shownLine(window, line);
    listed = std::min(to, window.lines.count());
    write(text);
}

// Of a list without a selection, from its top: who asked for it is to know that more follows.
void showPage(const DebugWindow& window) {
    showLines(window, window.top, window.top + page - 1);
    const int more = window.lines.count() - listed;
    if (more > 0)
        write("(" + std::to_string(more) +
              (more == 1 ? " more line: list shows it.)\n" : " more lines: list shows the next ones.)\n"));
}

void showAround(const DebugWindow& window) {
    if (window.lines.count() <= page) return showLines(window, 1, page);
    if (window.selected == 0) return showPage(window);
    showLines(window, window.selected - around, window.selected + around);
}

void showStop(const DebugWindow& window) {
    write(window.caption + ": " + window.status + "\n");
    showAround(window);
}

// ---- the words ----

using Action = void (*)(DebugWindow& window, int number);
struct Word {
    const char* word;
    const char* title;
    Action action;
};

void selectLine(DebugWindow& window, int number) {
    if (!window.lines.has(number)) return write("There is no such line.\n");
    DebugSelect(window, number, true);
    showAround(window);
}
void listLines(DebugWindow& window, int number) {
    const int from = number > 0 ? number : listed + 1;
    showLines(window, from, from + page - 1);
}
// On the line of that number, which is then selected; 0: on the selected one.
void onLine(DebugWindow& window, int number, DebugMessage message) {
    if (number != 0 && !window.lines.has(number)) return write("There is no such line.\n");
    if (number != 0) DebugSelect(window, number, true);
    if (window.selected == 0) return write("No line is selected.\n");
    userDebug(window, {message, window.selected, ""});
    if (!window.left) showAround(window);
}

void showWords(DebugWindow& window, int number);

constexpr std::array<Word, 5> words{{
    {"line", "Selects the line of that number; the number alone will do", selectLine},
    {"list", "Twenty lines from that number on, or the next ones", listLines},
    {"open", "Opens the selected line, or that of a number, as a double click does",
     [](DebugWindow& window, int number) { onLine(window, number, DebugMessage::DoubleClick); }},
    {"edit", "Changes the value of the selected line, or that of a number, or the rule of its breakpoint",
     [](DebugWindow& window, int number) { onLine(window, number, DebugMessage::Edit); }},
    {"?", "These words", showWords},
}};

void showWords(DebugWindow&, int) {
    std::string text;
    const auto add = [&](const char* word, const char* title) {
        text += std::string(word) + std::string(10 - std::string_view(word).size(), ' ') + title + "\n";
    };
    for (const DebugCommand& command : debugCommands) add(command.word, command.title);
    for (const Word& word : words) add(word.word, word.title);
    write(text);
}

void sendCommand(DebugWindow& window, int number) {
    userDebug(window, {DebugMessage::Command, number, ""});
    if (!window.left) showAround(window);
}

// Of one table or the other; `exact`, or the beginning of a single one.
struct Found {
    const DebugCommand* command = nullptr;
    const Word* word = nullptr;
    std::string names;  // of all that begin so
    int count = 0;
};

Found findWord(std::string_view typed) {
    Found found;
    const auto look = [&](const auto& all, auto Found::*field) {
        for (const auto& one : all) {
            const std::string_view name = one.word;
            if (name == typed) {
                found = Found{};
                found.*field = &one;
                found.count = 1;
                return true;
            }
            if (!name.starts_with(typed)) continue;
            ++found.count;
            found.*field = &one;
            found.names += (found.names.empty() ? "" : ", ") + std::string(name);
        }
        return false;
    };
    if (!look(debugCommands, &Found::command)) look(words, &Found::word);
    return found;
}

void obey(DebugWindow& window, std::string_view line) {
    if (line.empty()) return;
    if (const auto alone = wholeNumber(line)) return selectLine(window, *alone);
    const std::size_t blank = std::min(line.find(' '), line.size());
    const std::string typed = lower(line.substr(0, blank));
    const int number = wholeNumber(trim(line.substr(blank))).value_or(0);
    const Found found = findWord(typed);
    if (found.count > 1) return write("That may be " + found.names + ".\n");
    if (found.count == 0) return write("There is no \"" + typed + "\"; ? shows the words.\n");
    if (found.word != nullptr) return found.word->action(window, number);
    if (number > 0 && !window.lines.has(number)) return write("There is no such line.\n");
    if (number > 0) DebugSelect(window, number, true);
    sendCommand(window, found.command->number);
}

std::string withoutMark(std::string_view caption) {
    std::string text(caption);
    std::erase(text, '&');
    return text;
}

// The button or row that is written so, or the only one that begins so.
std::string choiceOf(const std::vector<std::string>& from, std::string_view typed) {
    const std::string text = lower(typed);
    const std::string* only = nullptr;
    int fitting = 0;
    for (const std::string& one : from) {
        const std::string name = lower(withoutMark(one));
        if (name == text) return one;
        if (text.empty() || !name.starts_with(text)) continue;
        only = &one;
        ++fitting;
    }
    return fitting == 1 ? *only : std::string();
}

}  // namespace

void debugAtTerminal(DebugWindow& window, const std::function<bool()>& until) {
    if (!somebodyThere()) return;
    const auto alive = window.shared_from_this();
    working = true;
    showStop(window);
    while (!until()) {
        write("debug> ");
        const auto line = readLine();
        if (!line) break;
        obey(window, trim(*line));
    }
    working = false;
}

bool isAtTerminal() {
    return working;
}

std::string askAtTerminal(const Question& question) {
    const bool message = question.kind == Question::Kind::Message,
               list = question.kind == Question::Kind::List;
    const std::vector<std::string>& from = list ? question.rows : question.buttons;
    std::string offered;
    for (const std::string& one : from)
        offered += list ? "  " + one + "\n" : (offered.empty() ? "" : "/") + withoutMark(one);
    write(question.title + (question.title.empty() ? "" : ": ") + question.text + "\n" +
          (list ? offered : ""));
    // One button leaves nothing to choose, and the next line is the next command.
    if (message && from.size() == 1) return from.front();
    write(message ? "[" + offered + "] " : "> ");
    const auto line = readLine();
    if (!line) return {};
    return message || list ? choiceOf(from, trim(*line)) : *line;
}

}  // namespace tarn::platform
