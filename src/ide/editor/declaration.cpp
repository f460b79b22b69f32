// SPDX-License-Identifier: GPL-3.0-or-later
#include "ide/editor/declaration.h"

#include "ide/editor/names.h"
#include "ide/editor/textedit.h"
#include "ide/shell/idecore.h"
#include "ide/shell/windows.h"
#include "library/dialogs/finddlgs.h"
#include "library/system/system.h"
#include "os/text/ascii.h"

#include <algorithm>
#include <vector>

MODULE("textedit")

namespace tarn {
namespace {

constexpr std::size_t MostPlaces = 50;

struct Place {
    std::string file;
    int start = 1;
};

std::vector<Place>& places() {
    static std::vector<Place> kept;
    return kept;
}

void keepPlace(const Object& window) {
    if (places().size() == MostPlaces) places().erase(places().begin());
    places().push_back({EDITWNDGETFILENAME(window), GetSelection(window).start});
}

// The word in front of a "." in front of the word at the caret.
std::string qualifierOf(std::string_view text, int caret) {
    std::size_t start = std::min(static_cast<std::size_t>(caret - 1), text.size());
    while (start > 0 && ascii::isSymbol(text[start - 1])) --start;
    if (start == 0 || text[start - 1] != '.') return {};
    std::size_t from = --start;
    while (from > 0 && ascii::isSymbol(text[from - 1])) --from;
    return std::string(text.substr(from, start - from));
}

struct Target {
    DeclaredName name;
    std::string file;
    bool found = false;
};

// What has a body goes before a head that only declares it ahead.
Target find(const NamePlace& place, const std::string& word) {
    Target target;
    EACHNAME(place, [&](const DeclaredName& name, const std::string& file) {
        if (!STREQUAL(name.name, word)) return true;
        if (target.found && (file != target.file || name.head != target.name.head)) return true;
        target = {name, file, true};
        return true;
    });
    return target;
}

// Selects the name in its line.
void selectName(const Object& window, const DeclaredName& name) {
    const std::string text = GetText(window);
    std::string_view rest = text;
    for (int line = 1; line < name.line; ++line) ascii::takeLine(rest);
    const auto start = static_cast<int>(text.size() - rest.size());
    const std::string line = ascii::uppered(ascii::takeLine(rest)), wanted = ascii::uppered(name.name);
    for (std::size_t at = line.find(wanted); at != std::string::npos; at = line.find(wanted, at + 1)) {
        const std::size_t end = at + wanted.size();
        if ((at > 0 && ascii::isSymbol(line[at - 1])) || (end < line.size() && ascii::isSymbol(line[end])))
            continue;
        SetSelection(window, start + static_cast<int>(at) + 1, 0);
        return SetSelection(window, start + static_cast<int>(at) + 1, static_cast<int>(wanted.size()));
    }
    EDITWNDSELECTLINE(window, name.line);
}

// Shows a file in the window; false if the user keeps the one that is there.
bool openFile(const Object& window, const std::string& file) {
    if (!STREQUAL(EDITWNDGETFILENAME(window), file)) EDITWNDOPEN(window, file, false, 0);
    return STREQUAL(EDITWNDGETFILENAME(window), file);
}

// A new text that was left, or a file that was deleted, has no place to go back to.
bool isGone(const Object& window, const std::string& file) {
    return !STREQUAL(EDITWNDGETFILENAME(window), file) && FileSize(file) < 0;
}

// A window or control stands in the resource file alone, and a symbol file is no source.
bool hasSource(const Target& target) {
    return target.found && target.name.kind != NameKind::Window &&
           (target.file.empty() || ISCLASSFILE(target.file));
}

}  // namespace

bool GOTODECLARATION(const Object& window, bool quiet) {
    FRAME(GOTODECLARATION);
    STAMP();
    const std::string file = EDITWNDGETFILENAME(window), word = GETWORDATCURSOR(window);
    STAMP();
    Target target;
    if (ISCLASSFILE(file) && !word.empty()) {
        const std::string text = GetText(window);
        const int caret = GetSelection(window).start;
        const auto end = text.begin() + std::min(static_cast<std::ptrdiff_t>(caret - 1), std::ssize(text));
        const int line = static_cast<int>(std::count(text.begin(), end, '\n')) + 1;
        target = find({text, file, line, qualifierOf(text, caret)}, word);
    }
    STAMP();
    if (!hasSource(target)) {
        if (!quiet) SetStatus(window, "no declaration found", StatusKind::Passes);
        return false;
    }
    if (target.file.empty()) {
        SHOWHELP(target.name.name);
        return true;
    }
    keepPlace(window);
    STAMP();
    if (openFile(window, target.file))
        selectName(window, target.name);
    else
        places().pop_back();
    STAMP();
    return true;
}

void GOBACK(const Object& window) {
    FRAME(GOBACK);
    STAMP();
    while (!places().empty() && isGone(window, places().back().file)) places().pop_back();
    STAMP();
    if (places().empty()) return SetStatus(window, "no place to go back to", StatusKind::Passes);
    const Place place = places().back();
    if (!openFile(window, place.file)) return;
    STAMP();
    places().pop_back();
    SetSelection(window, place.start, 0);
    STAMP();
    Show(window, false);
    STAMP();
}

}  // namespace tarn
