// SPDX-License-Identifier: GPL-3.0-or-later
#include "ide/debug/breakpointlist.h"

#include "ide/build/toolrun.h"
#include "ide/shell/idecore.h"
#include "kernel/debug/breakpoints.h"
#include "kernel/debug/debugsettings.h"
#include "library/settings/profstr.h"
#include "library/system/system.h"

MODULE("toolmenu", tarn::TOOL_ONERROR)

namespace tarn {
namespace {

// The next word of the text, which is behind it then; as STRWORD, without going through the words before it again.
std::string takeWord(std::string_view& text) {
    const std::string word = STRWORD(text, 1);
    const int at = STRWORDPOS(text, 1);
    text.remove_prefix(at == 0 ? text.size() : static_cast<std::size_t>(at) - 1 + word.size());
    return word;
}

}  // namespace

std::vector<Breakpoint> PARSEBREAKPOINTS(std::string_view value) {
    FRAME(PARSEBREAKPOINTS);
    std::vector<Breakpoint> found;
    std::string className;
    while (!value.empty()) {
        const std::string word = takeWord(value);
        if (word.empty()) break;
        bool whole = false;
        const int line = CVTI(word, whole);
        if (!whole)
            className = word;
        else if (line > 0 && !className.empty())
            found.push_back({className, line});
    }
    return found;
}

std::string FORMATBREAKPOINTS(const std::vector<Breakpoint>& breakpoints) {
    FRAME(FORMATBREAKPOINTS);
    std::string value, className;
    for (const Breakpoint& one : breakpoints) {
        if (!STREQUAL(one.className, className)) value += (value.empty() ? "" : " ") + one.className;
        className = one.className;
        value += " " + STR(one.line);
    }
    return STRTRIM(value);
}

std::vector<Breakpoint> STOREDBREAKPOINTS() {
    FRAME(STOREDBREAKPOINTS);
    STAMP();
    return PARSEBREAKPOINTS(PROFILESTRGET(GETIDEINIFILE(), DebugSection, BreakpointsKey));
}

void STOREBREAKPOINTS(const std::vector<Breakpoint>& breakpoints) {
    FRAME(STOREBREAKPOINTS);
    STAMP();
    const std::string ini = GETIDEINIFILE(), value = FORMATBREAKPOINTS(breakpoints);
    if (PROFILESTRGET(ini, DebugSection, BreakpointsKey) != value)
        PROFILESTRPUT(ini, DebugSection, BreakpointsKey, value);
    STAMP();
}

std::string BREAKPOINTSFAULT(const std::vector<Breakpoint>& breakpoints) {
    FRAME(BREAKPOINTSFAULT);
    if (breakpoints.size() > MaxBreakpoints)
        return "A program takes at most " + STR(MaxBreakpoints) + " breakpoints.";
    if (FORMATBREAKPOINTS(breakpoints).size() > MaxBreakpointsText)
        return "The breakpoints have no room in the settings: there are " +
               STR(static_cast<int>(MaxBreakpointsText)) + " characters for them.";
    return {};
}

bool ISCLASSNAME(std::string_view word) {
    FRAME(ISCLASSNAME);
    return !word.empty() && word.size() <= MaxName && STRTOIDENTIFIER(word, "_", "_") == word &&
           !ISRESERVEDWORD(word);
}

}  // namespace tarn
