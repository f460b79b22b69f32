// SPDX-License-Identifier: GPL-3.0-or-later
#include "ide/search/searchdialogs.h"

#include "ide/search/regex.h"
#include "ide/shell/idecore.h"
#include "kernel/windows/textedits.h"
#include "library/dialogs/finddlgs.h"
#include "library/settings/profstr.h"
#include "library/system/system.h"
#include "os/clock.h"

#include <utility>

MODULE("editmenu")

namespace tarn {
namespace {

constexpr int TypingPause = 150;                       // milliseconds without a key before hits are counted
constexpr std::int64_t CountingTime = 30'000'000;      // nanoseconds
constexpr std::int64_t PatternPatience = 100'000'000;  // the same, for one pattern while the user types it
constexpr std::size_t MostMarks = 100'000;

std::string section;  // of the dialog that is shown
Object searched;      // the window that it searches

Object in(const Object& dialog, std::string_view name) {
    return FINDCONTROL(dialog, name);
}
bool isTicked(const Object& dialog, std::string_view box) {
    return GetValue(in(dialog, box)) != 0;
}

std::string withCommas(int number) {
    std::string digits = std::to_string(number);
    for (int at = static_cast<int>(digits.size()) - 3; at > 0; at -= 3)
        digits.insert(static_cast<std::size_t>(at), ",");
    return digits;
}

std::unique_ptr<TextSearch> searchOf(const Object& dialog, std::int64_t patience) {
    const std::string text = GetText(in(dialog, "edit1"));
    const bool word = isTicked(dialog, "check1"), matchCase = isTicked(dialog, "check2");
    if (isTicked(dialog, "regex")) return std::make_unique<RegexSearch>(text, word, matchCase, patience);
    return std::make_unique<PlainSearch>(text, word, matchCase);
}

void countSoon(const Object& dialog) {
    SetTimer(dialog, TypingPause);
}

void showCount(const Object& dialog) {
    SetTimer(dialog, 0);
    std::string shown;
    if (!GetText(in(dialog, "edit1")).empty())
        shown = COUNTHITS(GetText(searched), *searchOf(dialog, PatternPatience));
    SetCaption(in(dialog, "lblhits"), shown);
}

void shown(const Object& dialog, const Object& window) {
    searched = window;
    SetValue(in(dialog, "regex"), ISREGEXCHOSEN(section) ? 1 : 0);
    countSoon(dialog);
}

bool happened(const Object& dialog, int event, const Object& control, int) {
    if (event == TIMER_EVENT) {
        showCount(dialog);
        return true;
    }
    const std::string name = GetName(control);
    const bool counts = (event == CHANGE_EVENT && name == "edit1") ||
                        (event == COMMAND_EVENT && (name == "check1" || name == "check2" || name == "regex"));
    if (counts) countSoon(dialog);
    return counts;
}

// Only the form of a pattern is looked at here: what it needs shows when it is searched for.
std::string problemOf(const Object& dialog) {
    return searchOf(dialog, PatternPatience)->problem();
}

// The choice is kept here, since the dialog is gone when its caller writes the others.
std::unique_ptr<TextSearch> chosenSearch(const Object& dialog) {
    const bool regex = isTicked(dialog, "regex");
    if (regex != ISREGEXCHOSEN(section)) PROFILESTRPUT(GETIDEINIFILE(), section, "Regex", regex ? "1" : "0");
    return searchOf(dialog, UsualPatience);
}

}  // namespace

SearchDialogs::SearchDialogs(std::string_view name) {
    section = name;
    USESEARCHEXTRAS({.shown = shown, .event = happened, .problem = problemOf, .search = chosenSearch});
}

SearchDialogs::~SearchDialogs() {
    USESEARCHEXTRAS({});
}

bool ISREGEXCHOSEN(std::string_view name) {
    FRAME(ISREGEXCHOSEN);
    STAMP();
    return PROFILESTRGET(GETIDEINIFILE(), name, "Regex") == "1";
}

std::unique_ptr<TextSearch> MAKESEARCH(const std::string& text, bool matchWord, bool matchCase, bool regex) {
    FRAME(MAKESEARCH);
    if (regex) return std::make_unique<RegexSearch>(text, matchWord, matchCase);
    return std::make_unique<PlainSearch>(text, matchWord, matchCase);
}

std::string COUNTHITS(std::string_view text, TextSearch& search) {
    FRAME(COUNTHITS);
    if (!search.problem().empty()) return "Not a valid pattern";
    const std::int64_t end = os::clock().steady() + CountingTime;
    int count = 0;
    for (int from = 1;;) {
        const TextHit hit = search.next(text, from);
        if (hit.start == 0) break;
        from = hit.start + hit.length;
        ++count;
        if (count % 256 == 0 && os::clock().steady() >= end)
            return "More than " + withCommas(count) + " hits";
    }
    if (!search.problem().empty()) return "Too slow to count";
    return count == 0 ? "No hits" : withCommas(count) + (count == 1 ? " hit" : " hits");
}

void TOGGLEMARKS(const Object& window, TextSearch& search, const std::string& what) {
    FRAME(TOGGLEMARKS);
    STAMP();
    if (!GetMarks(window).empty()) return SetMarks(window, {});
    STAMP();
    if (what.empty()) return Sound();
    const std::string text = GetText(window);
    std::vector<Selection> places;
    for (TextHit hit = search.next(text, 1); hit.start != 0 && places.size() < MostMarks;
         hit = search.next(text, hit.start + hit.length))
        places.push_back({hit.start, hit.length});
    STAMP();
    SetMarks(window, places);
    STAMP();
    const std::string problem = search.problem();
    if (!problem.empty()) return MSGBOX("Find", problem);
    if (places.empty()) MSGBOX("Find", "Cannot find search string:\n'" + what + "'");
}

}  // namespace tarn
