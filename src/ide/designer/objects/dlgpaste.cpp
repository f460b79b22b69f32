// SPDX-License-Identifier: GPL-3.0-or-later
//
//   names     free ones, and the arrays that follow them
//   places    inside the dialog, and not exactly on others
//   buttons   one default button
#include "ide/designer/objects/dlgpaste.h"

#include "library/designer/propedit.h"
#include "library/designer/proputil.h"
#include "library/settings/profstr.h"
#include "library/system/system.h"

#include <algorithm>
#include <cstdint>
#include <map>
#include <set>
#include <utility>

namespace tarn {
namespace {

using Lists = std::vector<std::string>;

// ---- names ----

constexpr std::size_t longestName = 40;

// A letter or "_", then letters, digits and "_".
bool isIdentifier(const std::string& name) {
    const auto mayBe = [](char c) {
        return c == '_' || ISDIGIT(c) || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
    };
    return !name.empty() && !ISDIGIT(name[0]) && std::all_of(name.begin(), name.end(), mayBe);
}

// Of a control that is named by its number.
bool isNumber(const std::string& name) {
    bool ok = false;
    static_cast<void>(CVTI(name, ok));
    return ok && (name == "-1" || ISDIGITS(name));
}

bool mayBeName(const std::string& name) {
    if (name.empty() || name.size() > longestName) return false;
    if (STRFIND(" " + name + " ", " " + std::string(BadNames) + " ") != 0) return false;
    return isIdentifier(name) || isNumber(name);
}

// The names of a dialog and its menu, in upper case.
class Names {
public:
    explicit Names(const PasteTarget& target) {
        for (const Lists* lists : {&target.dialog, &target.menu})
            for (const std::string& list : *lists) taken_.insert(STRUPPER(GETPROPVALUE(list, "NAME")));
    }
    // The wanted name, or the next free one of those letters.
    std::string take(const std::string& wanted, const std::string& type) {
        std::string name = wanted;
        if (!mayBeName(name) || isTaken(name)) name = next(stemOf(wanted, type));
        if (isTaken(name)) name = next(STRNAMECASE(type));
        taken_.insert(STRUPPER(name));
        return name;
    }

private:
    [[nodiscard]] bool isTaken(const std::string& name) const { return taken_.count(STRUPPER(name)) != 0; }
    static std::string stemOf(const std::string& name, const std::string& type) {
        constexpr std::size_t longest = 30;
        std::string stem = name;
        while (!stem.empty() && ISDIGIT(stem.back())) stem.pop_back();
        return mayBeName(name) && isIdentifier(stem) ? stem.substr(0, longest) : STRNAMECASE(type);
    }
    // A stem with digits and "_" in it is none for GETNEXTNAME, so each stands as this letter there.
    [[nodiscard]] std::string next(const std::string& stem) const {
        std::string names;
        for (const std::string& name : taken_)
            if (name.starts_with(STRUPPER(stem))) names += "x" + name.substr(stem.size()) + "\n";
        return stem + GETNEXTNAME(names, "x").substr(1);
    }

    std::set<std::string> taken_;
};

void giveNames(Lists& controls, const PasteTarget& target) {
    Names names(target);
    std::map<std::string, std::string> renamed;  // by the old name in upper case
    for (std::string& list : controls) {
        const std::string before = GETPROPVALUE(list, "NAME");
        const std::string after = names.take(before, GETPROPVALUE(list, "TYPEOF"));
        SETPROPVALUE("NAME", after, list);
        if (!before.empty()) renamed.emplace(STRUPPER(before), after);
    }
    for (std::string& list : controls) {
        const std::string array = GETPROPVALUE(list, "ARRAY");
        const auto first = renamed.find(STRUPPER(array));
        if (first != renamed.end() && first->second != array)
            SETPROPVALUE("ARRAY", STRADDQUOTES(first->second), list);
    }
}

// ---- places ----

// Positions may be anywhere in the integers, so sums of them are wider.
struct Spot {
    std::int64_t x = 0, y = 0, w = 0, h = 0;
};
using Spots = std::vector<Spot>;

constexpr std::int64_t largest = 32767;

Spot spotOf(const std::string& list) {
    const UnitRect at = GETPROPPOSITION(list);
    return {at.x, at.y, std::clamp<std::int64_t>(at.w, 0, largest),
            std::clamp<std::int64_t>(at.h, 0, largest)};
}

std::int64_t inside(std::int64_t place, std::int64_t size, std::int64_t room) {
    return std::clamp<std::int64_t>(place, 0, std::max<std::int64_t>(room - size, 0));
}

// Moves them by as much, but no further than the dialog goes; those that do not fit together go in each for itself.
Spots movedInto(Spots spots, const Spot& dialog, std::int64_t dx, std::int64_t dy) {
    Spot least = spots.front(), all = least;
    for (const Spot& one : spots) {
        least.x = std::min(least.x, one.x);
        least.y = std::min(least.y, one.y);
    }
    all.w = all.h = 0;
    for (const Spot& one : spots) {
        all.w = std::max(all.w, one.x + one.w - least.x);
        all.h = std::max(all.h, one.y + one.h - least.y);
    }
    const std::int64_t right = inside(least.x + dx, all.w, dialog.w) - least.x;
    const std::int64_t down = inside(least.y + dy, all.h, dialog.h) - least.y;
    for (Spot& one : spots) {
        one.x = inside(one.x + right, one.w, dialog.w);
        one.y = inside(one.y + down, one.h, dialog.h);
    }
    return spots;
}

std::int64_t gridStep(const std::string& grid, int word) {
    constexpr std::int64_t usual = 4;
    bool ok = false;
    const int step = CVTI(STRWORD(grid, word), ok);
    return ok && step > 0 ? std::min<std::int64_t>(step, largest) : usual;
}

// Down a slope until none lies exactly on another; where the slope ends, the last place.
void givePlaces(Lists& controls, const PasteTarget& target) {
    const Spot dialog = spotOf(target.dialog[0]);
    std::set<std::pair<std::int64_t, std::int64_t>> taken;
    for (std::size_t i = 1; i < target.dialog.size(); ++i) {
        const Spot one = spotOf(target.dialog[i]);
        taken.emplace(one.x, one.y);
    }
    const auto hitsOne = [&](const Spots& spots) {
        return std::any_of(spots.begin(), spots.end(), [&](const Spot& one) {
            return taken.count({one.x, one.y}) != 0;
        });
    };
    Spots start;
    for (const std::string& list : controls) start.push_back(spotOf(list));
    const std::int64_t right = gridStep(target.grid, 1), down = gridStep(target.grid, 2);
    Spots spots = movedInto(start, dialog, 0, 0);
    while (hitsOne(spots)) {
        Spots next = movedInto(spots, dialog, right, down);
        const bool stays = std::equal(next.begin(), next.end(), spots.begin(),
                                      [](const Spot& a, const Spot& b) { return a.x == b.x && a.y == b.y; });
        if (stays) break;
        spots = std::move(next);
    }
    for (std::size_t i = 0; i < controls.size(); ++i) {
        const Spot& at = spots[i];
        SETPROPPOSITION(controls[i], {static_cast<int>(at.x), static_cast<int>(at.y), static_cast<int>(at.w),
                                      static_cast<int>(at.h)});
    }
}

// ---- buttons ----

bool isDefault(const std::string& list) {
    return STREQUAL(GETPROPVALUE(list, "TYPEOF"), "Pushbutton") && GETPROPINT(list, "DEFAULT") == 1;
}

void leaveOneDefault(Lists& controls, const PasteTarget& target) {
    bool has = std::any_of(target.dialog.begin(), target.dialog.end(), isDefault);
    for (std::string& list : controls) {
        if (!isDefault(list)) continue;
        if (has) SETPROPINT("DEFAULT", 0, list);
        has = true;
    }
}

}  // namespace

std::vector<std::string> FITTEDCONTROLS(std::vector<std::string> controls, const PasteTarget& target) {
    if (controls.empty() || target.dialog.empty()) return {};
    giveNames(controls, target);
    givePlaces(controls, target);
    leaveOneDefault(controls, target);
    return controls;
}

}  // namespace tarn
