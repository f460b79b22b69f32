// SPDX-License-Identifier: GPL-3.0-or-later
#include "ide/debug/codemarks.h"

#include "ide/debug/breakpointlist.h"
#include "ide/debug/ruledlg.h"
#include "ide/editor/textedit.h"
#include "ide/shell/idecore.h"
#include "ide/shell/statusline.h"
#include "ide/shell/windows.h"
#include "kernel/debug/codelines.h"
#include "kernel/debug/debugsettings.h"
#include "kernel/windows/linemarks.h"
#include "library/settings/profstr.h"
#include "library/source/symbols.h"
#include "library/system/system.h"
#include "os/files.h"

#include <algorithm>
#include <map>
#include <set>
#include <vector>

MODULE("textedit", tarn::TEXTEDIT_ONERROR)

namespace tarn {
namespace {

// What the margin of the Code window shows. Its marks stand in the same order, that of the current line last.
struct Shown {
    std::string className;
    std::vector<Breakpoint> stored;  // with the lines that they have in the settings
    int current = 0;                 // where the program stands, as it was told; 0: nowhere
};

Shown& shown() {
    static Shown one;
    return one;
}

bool isOfClass(const Breakpoint& one) {
    return STREQUAL(one.className, shown().className);
}

std::vector<DebugRule> storedRules() {
    return ParseDebugRules(PROFILESTRGET(GETIDEINIFILE(), DebugSection, DebugRulesKey));
}

void storeRules(const std::vector<DebugRule>& rules) {
    const std::string ini = GETIDEINIFILE(), value = FormatDebugRules(rules);
    if (PROFILESTRGET(ini, DebugSection, DebugRulesKey) != value)
        PROFILESTRPUT(ini, DebugSection, DebugRulesKey, value);
}

// Where the breakpoints stand now, in the order of `stored`; 0: gone with its line.
std::vector<int> linesNow(const Object& window) {
    const std::vector<LineMark> marks = GetLineMarks(window);
    std::vector<int> lines;
    for (std::size_t i = 0; i < shown().stored.size(); i++)
        lines.push_back(i < marks.size() ? marks[i].line : shown().stored[i].line);
    return lines;
}

int currentNow(const Object& window) {
    const std::vector<LineMark> marks = GetLineMarks(window);
    return shown().current > 0 && marks.size() > shown().stored.size() ? marks.back().line : shown().current;
}

void mark(const Object& window, const std::vector<int>& lines) {
    std::set<int> ruledLines;
    for (const DebugRule& rule : storedRules())
        if (STREQUAL(rule.className, shown().className)) ruledLines.insert(rule.line);
    std::vector<LineMark> marks;
    for (std::size_t i = 0; i < lines.size(); i++) {
        const bool ruled = ruledLines.contains(shown().stored[i].line);
        marks.push_back({lines[i], ruled ? LINEMARK_RULE : LINEMARK_BREAKPOINT});
    }
    if (shown().current > 0) marks.push_back({shown().current, LINEMARK_CURRENT});
    SetLineMarks(window, marks);
}

// The lines of breakpoints that the settings have now: what the window knows stays where its text has taken it.
std::vector<int> linesOf(const std::vector<Breakpoint>& stored, const std::vector<Breakpoint>& known,
                         const std::vector<int>& knownLines) {
    std::map<int, int> now;
    for (std::size_t i = 0; i < known.size(); i++) now.try_emplace(known[i].line, knownLines[i]);
    std::vector<int> lines;
    for (const Breakpoint& one : stored) {
        const auto found = now.find(one.line);
        lines.push_back(found == now.end() ? one.line : found->second);
    }
    return lines;
}

}  // namespace

std::string CLASSINWINDOW(const Object& window) {
    FRAME(CLASSINWINDOW);
    STAMP();
    const std::string file = EDITWNDGETFILENAME(window);
    if (!ISCLASSFILE(file)) return {};
    const std::string name = SYMGETCLASSNAME(0, GetText(window), ProductWord);
    return name.empty() ? FILEBASENAME(file) : name;
}

int CARETLINE(const Object& window) {
    FRAME(CARETLINE);
    STAMP();
    const std::string before = GetTextRange(window, 1, GetSelection(window).start - 1);
    return 1 + static_cast<int>(std::count(before.begin(), before.end(), '\n'));
}

void SHOWBREAKPOINTS(const Object& window) {
    FRAME(SHOWBREAKPOINTS);
    STAMP();
    if (!IsLoaded(window)) return;
    const std::string className = CLASSINWINDOW(window);
    const bool same = !className.empty() && className == shown().className && !GetLineMarks(window).empty();
    const std::vector<Breakpoint> known = same ? shown().stored : std::vector<Breakpoint>();
    const std::vector<int> lines = same ? linesNow(window) : std::vector<int>();
    const int current = same ? currentNow(window) : 0;
    STAMP();
    SetMarkMargin(window, !className.empty());
    shown() = {className, {}, current};
    STAMP();
    if (className.empty()) return;
    for (Breakpoint& one : STOREDBREAKPOINTS())
        if (isOfClass(one)) shown().stored.push_back(std::move(one));
    STAMP();
    mark(window, linesOf(shown().stored, known, lines));
    STAMP();
}

void MARKCURRENTLINE(const Object& window, int line) {
    FRAME(MARKCURRENTLINE);
    STAMP();
    if (!IsLoaded(window) || shown().className.empty() || shown().current == line) return;
    const std::vector<int> lines = linesNow(window);
    shown().current = line;
    mark(window, lines);
    STAMP();
}

// ---- what goes to the settings ----

namespace {

// The rules of breakpoints that have moved, under their new lines; those of breakpoints that have gone are dropped.
std::vector<DebugRule> movedRules(const std::vector<int>& lines, const std::string& className) {
    std::map<int, int> moved;
    for (std::size_t i = 0; i < lines.size(); i++) moved.try_emplace(shown().stored[i].line, lines[i]);
    std::vector<DebugRule> left;
    for (DebugRule& rule : storedRules()) {
        const auto owner = moved.find(rule.line);
        if (STREQUAL(rule.className, shown().className) && owner != moved.end()) {
            rule.line = owner->second;
            rule.className = className;
        }
        if (rule.line > 0) left.push_back(std::move(rule));
    }
    return left;
}

// Those of other classes, and in the place of the first of this one those that it has now.
std::vector<Breakpoint> withThese(const std::vector<Breakpoint>& now) {
    std::vector<Breakpoint> all;
    bool put = false;
    for (const Breakpoint& one : STOREDBREAKPOINTS()) {
        const bool own = isOfClass(one);
        if (own && !put) all.insert(all.end(), now.begin(), now.end());
        put = put || own;
        if (!own) all.push_back(one);
    }
    if (!put) all.insert(all.end(), now.begin(), now.end());
    return all;
}

// Each line once, in order.
std::vector<Breakpoint> breakpointsAt(std::vector<int> lines, const std::string& className) {
    std::sort(lines.begin(), lines.end());
    lines.erase(std::unique(lines.begin(), lines.end()), lines.end());
    std::vector<Breakpoint> result;
    for (const int line : lines)
        if (line > 0) result.push_back({className, line});
    return result;
}

}  // namespace

void KEEPBREAKPOINTS(const Object& window) {
    FRAME(KEEPBREAKPOINTS);
    STAMP();
    const std::string className = CLASSINWINDOW(window);
    if (className.empty() || shown().className.empty()) return SHOWBREAKPOINTS(window);
    const std::vector<int> lines = linesNow(window);
    STAMP();
    storeRules(movedRules(lines, className));
    STAMP();
    const std::vector<Breakpoint> now = breakpointsAt(lines, className);
    STOREBREAKPOINTS(withThese(now));
    STAMP();
    shown() = {className, now, currentNow(window)};
    mark(window, linesOf(now, {}, {}));
    STAMP();
}

// ---- one breakpoint ----

namespace {

void refuse(const std::string& why) {
    Sound();
    TELLSTATUS(why);
}

// Whether the compiler has told which lines of the text have code; what it told of an older text counts no more.
bool knowsCodeLines(const Object& window, const std::string& file) {
    const os::FileInfo source = os::infoOf(os::native(file)),
                       told = os::infoOf(os::native(FILECHANGEEXT(file, ".sym")));
    return !GetModify(window) && source.exists && told.exists && told.modified >= source.modified;
}

// The line that can have a breakpoint, told if it is another one; 0, and told, if none can.
int lineWithCode(const Object& window, int line) {
    const std::string file = EDITWNDGETFILENAME(window);
    if (!knowsCodeLines(window, file)) return line;
    CodeLineSet code;
    LoadCodeLines(shown().className, file, code);
    if (code.has(line)) return line;
    const int next = code.next(line);
    const std::string none = "No code was generated at line " + STR(line);
    if (next == 0)
        refuse(none + ".");
    else
        TELLSTATUS(none + ": line " + STR(next) + " is taken.");
    return next;
}

bool has(const std::vector<int>& lines, int line) {
    return std::find(lines.begin(), lines.end(), line) != lines.end();
}

void dropRule(int line) {
    std::vector<DebugRule> rules = storedRules();
    PutDebugRule(rules, DebugRule{shown().className, line, {}, 0, {}});
    storeRules(rules);
}

// More of them only where they have room; fewer always, since settings may hold too many already.
void put(const Object& window, const std::vector<int>& lines) {
    const std::vector<Breakpoint> all = withThese(breakpointsAt(lines, shown().className));
    const bool grows = all.size() > STOREDBREAKPOINTS().size();
    const std::string fault = grows ? BREAKPOINTSFAULT(all) : std::string();
    if (!fault.empty()) return refuse(fault);
    STOREBREAKPOINTS(all);
    SHOWBREAKPOINTS(window);
}

// The window's breakpoints, with the settings brought after the text; false, with a beep, if it shows no class.
bool ready(const Object& window, std::vector<int>& lines) {
    if (CLASSINWINDOW(window).empty()) return refuse("Breakpoints are set in classes."), false;
    KEEPBREAKPOINTS(window);
    lines = linesNow(window);
    return true;
}

}  // namespace

void TOGGLEBREAKPOINT(const Object& window, int line) {
    FRAME(TOGGLEBREAKPOINT);
    STAMP();
    std::vector<int> lines;
    if (!ready(window, lines)) return;
    TELLSTATUS("");
    STAMP();
    if (!has(lines, line)) line = lineWithCode(window, line);
    if (line == 0) return;
    if (has(lines, line)) {
        lines.erase(std::find(lines.begin(), lines.end(), line));
        dropRule(line);
    } else {
        lines.push_back(line);
    }
    STAMP();
    put(window, lines);
    STAMP();
}

void ASKBREAKPOINTRULE(const Object& window, int line) {
    FRAME(ASKBREAKPOINTRULE);
    STAMP();
    std::vector<int> lines;
    if (!ready(window, lines)) return;
    if (!has(lines, line)) line = lineWithCode(window, line);
    if (line == 0) return;
    STAMP();
    std::vector<DebugRule> rules = storedRules();
    const DebugRule* const before = FindDebugRule(rules, shown().className, line);
    DebugRule rule = before != nullptr ? *before : DebugRule();
    rule.className = shown().className;
    rule.line = line;
    if (!RULEDIALOG(rule)) return;
    STAMP();
    if (!has(lines, line)) lines.push_back(line);
    PutDebugRule(rules, rule);
    storeRules(rules);
    STAMP();
    put(window, lines);
    STAMP();
}

}  // namespace tarn
