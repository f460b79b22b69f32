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

std::vector<Breakpoint> PARSEBREAKPOINTS(std::string_view value) {
    FRAME(PARSEBREAKPOINTS);
    std::vector<Breakpoint> found;
    std::string className;
    const int words = STRWORDCOUNT(value);
    for (int i = 1; i <= words; i++) {
        const std::string word = STRWORD(value, i);
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
