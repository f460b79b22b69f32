// SPDX-License-Identifier: GPL-3.0-or-later
#include "ide/editor/completion.h"

#include "ide/editor/names.h"
#include "ide/editor/textedit.h"
#include "ide/shell/windows.h"
#include "kernel/text/words.h"
#include "library/system/system.h"
#include "os/text/ascii.h"

#include <algorithm>
#include <map>
#include <vector>

MODULE("textedit")

namespace tarn {
namespace {

constexpr int Around = 4096;     // bytes in front of the caret that are looked at
constexpr int LettersTyped = 3;  // that bring the list
constexpr std::size_t MostForms = 4;
constexpr int LargestText = 500000;  // bytes; a longer one is looked through only when the user asks

constexpr std::string_view picturesOfKinds[] = {"symfunction", "symconst", "symtype", "symobject",
                                                "symwindow",   "symclass", "symother"};

// What stands around the caret.
struct Spot {
    int caret = 1;          // from 1
    std::string before;     // some text in front of it, from the start of a line where there is one
    std::string line;       // its line up to it
    std::string word;       // its word up to it
    std::string qualifier;  // the word in front of a "." in front of that
    bool inWord = false;    // a word goes on behind it
};

std::string wordBefore(std::string_view line) {
    std::size_t start = line.size();
    while (start > 0 && ascii::isSymbol(line[start - 1])) --start;
    return std::string(line.substr(start));
}

Spot spotOf(const Object& window) {
    Spot spot;
    spot.caret = GetSelection(window).start;
    const int from = std::max(1, spot.caret - Around);
    spot.before = GetTextRange(window, from, spot.caret - from);
    if (from > 1) spot.before.erase(0, std::min(spot.before.find('\n'), spot.before.size() - 1) + 1);
    spot.line = spot.before.substr(spot.before.find_last_of("\r\n") + 1);
    spot.word = wordBefore(spot.line);
    const std::string_view rest = std::string_view(spot.line).substr(0, spot.line.size() - spot.word.size());
    if (rest.ends_with('.')) spot.qualifier = wordBefore(rest.substr(0, rest.size() - 1));
    const std::string next = GetTextRange(window, spot.caret, 1);
    spot.inWord = !next.empty() && ascii::isSymbol(next[0]);
    return spot;
}

bool isCode(const Spot& spot) {
    const bool number = !spot.word.empty() && ascii::isDigit(spot.word[0]);
    return !number && !SYMENDSINTEXT(spot.line);
}

int lineAt(std::string_view text, int caret) {
    const auto end = text.begin() + std::min(static_cast<std::ptrdiff_t>(caret - 1), std::ssize(text));
    return static_cast<int>(std::count(text.begin(), end, '\n')) + 1;
}

bool hasClass(const Object& window) {
    return ISCLASSFILE(EDITWNDGETFILENAME(window));
}

bool startsSo(std::string_view word, std::string_view begun) {
    return word.size() >= begun.size() && ascii::equal(word.substr(0, begun.size()), begun);
}

// The heads of all forms of a function, one a line, and where the argument stands in them.
struct Hint {
    std::string text;
    HeadPart mark;
};

Hint hintFor(const NamePlace& place, const OpenCall& call) {
    Hint hint;
    std::size_t forms = 0;
    EACHNAME(place, [&](const DeclaredName& name, const std::string&) {
        if (name.kind != NameKind::Function || !STREQUAL(name.name, call.name)) return true;
        const HeadPart part = SYMGETARGUMENT(name.head, call.argument);
        if (hint.mark.length == 0 && part.length > 0)
            hint.mark = {static_cast<int>(hint.text.size()) + (hint.text.empty() ? 0 : 1) + part.start,
                         part.length};
        if (!hint.text.empty()) hint.text += '\n';
        hint.text += name.head;
        return ++forms < MostForms;
    });
    return hint;
}

}  // namespace

std::string COMPLETIONROWS(const NamePlace& place, const std::string& begun) {
    FRAME(COMPLETIONROWS);
    STAMP();
    std::map<std::string, std::string> rows;  // by the upper case of the word
    const auto add = [&](std::string_view word, NameKind kind) {
        if (!startsSo(word, begun)) return;
        rows.try_emplace(ascii::uppered(word),
                         std::string(word) + "\t" +
                             std::string(picturesOfKinds[static_cast<std::size_t>(kind)]));
    };
    EACHNAME(place, [&](const DeclaredName& name, const std::string&) {
        add(name.name, name.kind);
        return true;
    });
    STAMP();
    if (place.qualifier.empty())
        for (const std::string_view word : ReservedWords) add(word, NameKind::Word);
    std::string text;
    for (const auto& [key, row] : rows) text += row + "\n";
    return text;
}

void COMPLETEWORD(const Object& window, bool automatic) {
    FRAME(COMPLETEWORD);
    STAMP();
    if (!hasClass(window)) {
        if (!automatic) Sound();
        return;
    }
    const Spot spot = spotOf(window);
    STAMP();
    const bool wanted = !automatic || (spot.word.size() == LettersTyped && !spot.inWord);
    if (!wanted || !isCode(spot)) {
        if (!automatic) Sound();
        return;
    }
    const std::string text = GetText(window);
    STAMP();
    const NamePlace place{text, EDITWNDGETFILENAME(window), lineAt(text, spot.caret), spot.qualifier};
    const std::string rows = COMPLETIONROWS(place, spot.word);
    STAMP();
    const bool alone = automatic && ascii::equal(rows.substr(0, rows.find('\t')), spot.word);
    if (rows.empty() && !automatic) SetStatus(window, "no word begins so", StatusKind::Passes);
    STAMP();
    ShowChoices(window, alone ? "" : rows, static_cast<int>(spot.word.size()));
}

void SHOWCALLHINT(const Object& window) {
    FRAME(SHOWCALLHINT);
    STAMP();
    if (!hasClass(window)) return;
    const Spot spot = spotOf(window);
    STAMP();
    const OpenCall call = SYMENDSINTEXT(spot.line) ? OpenCall{} : SYMGETOPENCALL(spot.before);
    Hint hint;
    if (!call.name.empty()) {
        const std::string text = GetText(window);
        hint = hintFor({text, EDITWNDGETFILENAME(window), lineAt(text, spot.caret), ""}, call);
    }
    STAMP();
    const int start = spot.caret - static_cast<int>(spot.before.size());
    ShowCallTip(window, start + call.parenthesis, hint.text, hint.mark.start, hint.mark.length);
}

void OFFERHELP(const Object& window) {
    FRAME(OFFERHELP);
    STAMP();
    // What a command does from another window needs no help.
    if (ActiveWindow() != window || (GetLooks(window) & LOOK_CHOICES) == 0 || !hasClass(window)) return;
    if (GetTextLength(window) > LargestText) return;
    const int caret = GetSelection(window).start;
    STAMP();
    const std::string before = caret > 1 ? GetTextRange(window, caret - 1, 1) : std::string();
    STAMP();
    if (before.empty()) return;
    if (before == "(" || before == "," || before == ")")
        SHOWCALLHINT(window);
    else if (ascii::isSymbol(before[0]))
        COMPLETEWORD(window, true);
}

}  // namespace tarn
