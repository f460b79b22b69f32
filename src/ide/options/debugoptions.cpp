// SPDX-License-Identifier: GPL-3.0-or-later
#include "ide/options/debugoptions.h"

#include "ide/build/toolrun.h"
#include "ide/debug/breakpointlist.h"
#include "ide/debug/codemarks.h"
#include "ide/debug/ruledlg.h"
#include "ide/options/stoperrors.h"
#include "ide/shell/idecore.h"
#include "ide/shell/windows.h"
#include "ide/shell/windowtable.h"
#include "kernel/debug/stopnotice.h"
#include "kernel/run/trace.h"
#include "library/dialogs/dialogshape.h"
#include "library/settings/profstr.h"
#include "library/system/system.h"

#include <algorithm>
#include <set>
#include <utility>
#include <vector>

MODULE("toolmenu", tarn::TOOL_ONERROR)

namespace tarn {
namespace {

constexpr char Separator = '\t';

Object in(const Object& window, std::string_view control) {
    return FINDCONTROL(window, control);
}

bool isList(const Object& list) {
    const std::string type = GetTypeof(list);
    return STREQUAL(type, "Iconlist") || STREQUAL(type, "Listbox");
}

std::string itemOf(const Breakpoint& one) {
    return one.className + Separator + STR(one.line);
}

// 0 for what is no whole number.
int numberOf(std::string_view text) {
    bool ok = false;
    const int number = CVTI(text, ok);
    return ok ? number : 0;
}

Breakpoint breakpointIn(const Object& list, int row) {
    const std::string item = GetList(list, row);
    return {STRTOKEN(item, 1), numberOf(STRTOKEN(item, 2))};
}

std::vector<Breakpoint> breakpointsIn(const Object& list) {
    std::vector<Breakpoint> all;
    for (int row = 1; isList(list) && row <= GetListCount(list); row++)
        all.push_back(breakpointIn(list, row));
    return all;
}

}  // namespace

void SETBREAKPOINTS(const Object& list, const std::string& value) {
    FRAME(SETBREAKPOINTS);
    STAMP();
    if (!isList(list)) return;
    Clear(list);
    for (const Breakpoint& one : PARSEBREAKPOINTS(value)) AddItem(list, itemOf(one));
    STAMP();
}

std::string GETBREAKPOINTS(const Object& list) {
    FRAME(GETBREAKPOINTS);
    STAMP();
    return FORMATBREAKPOINTS(breakpointsIn(list));
}

int FINDBREAKPOINT(const Object& list, const std::string& className, int line) {
    FRAME(FINDBREAKPOINT);
    STAMP();
    const std::vector<Breakpoint> all = breakpointsIn(list);
    for (std::size_t i = 0; i < all.size(); i++)
        if (STREQUAL(all[i].className, className) && all[i].line == line) return static_cast<int>(i) + 1;
    return -1;
}

// ---- breakpoints in the dialog ----

namespace {

std::vector<DebugRule> chosenRules;  // as the user has them so far
std::string chosenCodes;

const DebugRule* ruleOf(const Breakpoint& one) {
    return FindDebugRule(chosenRules, one.className, one.line);
}

void bringUpToDate(const Object& window) {
    const Object list = in(window, "lstbreakpoints");
    const int row = GetListIndex(list);
    const DebugRule* const rule = row > 0 ? ruleOf(breakpointIn(list, row)) : nullptr;
    SetCaption(in(window, "lblrule"), rule != nullptr ? "Rule: " + FormatRuleParts(*rule) : "");
    for (const std::string_view button : {"btnremove", "btnrule"}) SetEnabled(in(window, button), row > 0);
    SetEnabled(in(window, "btnremoveall"), GetListCount(list) > 0);
    SetCaption(in(window, "lblerrors"), STOPCODESTEXT(chosenCodes));
}

constexpr std::string_view inaccurate =
    "Warning: Breakpoints are not accurate because the debugger is running. \n"
    "Set the breakpoints using the debugger instead.";

// What the user has to know of the breakpoints in the list.
void warn(const Object& window) {
    const std::string fault = BREAKPOINTSFAULT(breakpointsIn(in(window, "lstbreakpoints")));
    SetCaption(in(window, "lblwarning"), DebuggedProcesses().empty() ? fault : std::string(inaccurate));
}

// Where the user is, as an answer to start from.
std::string proposal() {
    const std::string className = IsLoaded(SDIEdit) ? CLASSINWINDOW(SDIEdit) : "";
    return className.empty() ? "" : className + " " + STR(CARETLINE(SDIEdit));
}

// At the end of the list, unless a program would not take it.
void append(const Object& window, const Breakpoint& one) {
    const Object list = in(window, "lstbreakpoints");
    std::vector<Breakpoint> all = breakpointsIn(list);
    all.push_back(one);
    if (const std::string fault = BREAKPOINTSFAULT(all); !fault.empty()) {
        SetCaption(in(window, "lblwarning"), fault);
        return Sound();
    }
    AddItem(list, itemOf(one));
    SetListIndex(list, GetListCount(list));
}

void add(const Object& window) {
    const std::string text = STRTRIM(InputBox(
        GetCaption(window), "Enter the Class name and Line number of the new breakpoint:", proposal()));
    if (text.empty()) return;
    const Breakpoint one{STRWORD(text, 1), numberOf(STRWORD(text, 2))};
    if (STRWORDCOUNT(text) != 2 || !ISCLASSNAME(one.className) || one.line < 1)
        return MSGBOX(
            GetCaption(window),
            "'" + text +
                "' is not the name of a class and the number of a line.\nTry, for example, 'Main 10'.");
    const Object list = in(window, "lstbreakpoints");
    const int row = FINDBREAKPOINT(list, one.className, one.line);
    if (row < 0) return append(window, one);
    SetListIndex(list, row);
}

void remove(const Object& window) {
    const Object list = in(window, "lstbreakpoints");
    const int row = GetListIndex(list);
    if (row < 1) return Sound();
    RemoveItem(list, row);
    if (GetListCount(list) > 0) SetListIndex(list, std::min(row, GetListCount(list)));
    warn(window);
}

void removeAll(const Object& window) {
    Clear(in(window, "lstbreakpoints"));
    warn(window);
}

void changeRule(const Object& window) {
    const Object list = in(window, "lstbreakpoints");
    const int row = GetListIndex(list);
    if (row < 1) return Sound();
    const Breakpoint one = breakpointIn(list, row);
    const DebugRule* const before = ruleOf(one);
    DebugRule rule = before != nullptr ? *before : DebugRule{one.className, one.line, {}, 0, {}};
    if (RULEDIALOG(rule)) PutDebugRule(chosenRules, rule);
}

void changeErrors(const Object&) {
    STOPERRORSDIALOG(chosenCodes);
}

// ---- trace ----

// Each list of levels with the hidden edit that the settings keep.
constexpr std::pair<std::string_view, std::string_view> traces[] = {{"lsttraceprogram", "Traceprogram"},
                                                                    {"lsttraceide", "Traceide"}};
constexpr std::string_view levels[] = {"None", "Debug output", "Trace file"};

void showTraces(const Object& window) {
    for (const auto& [list, level] : traces) {
        for (const std::string_view text : levels) AddItem(in(window, list), text);
        SetListIndex(in(window, list), std::clamp(numberOf(GetText(in(window, level))), 0, 2) + 1);
    }
    const std::int64_t size = FileSize(TraceFile());
    SetCaption(in(window, "lbltrace"), size < 0 ? "(not there)" : std::to_string(size) + " byte(s)");
}

// True if it was one of these lists.
bool takeTrace(const Object& window, const std::string& name) {
    for (const auto& [list, level] : traces) {
        if (name != list) continue;
        SetText(in(window, level), STR(GetListIndex(in(window, list)) - 1));
        return true;
    }
    return false;
}

// The editor of that name, or where it is not installed what the desktop has for texts.
void openTrace(const Object& window) {
    FRAME(OPENTRACE);
    constexpr int WithoutWaiting = 16 + 1;
    const std::string file = TraceFile();
    if (FileSize(file) < 0) return MSGBOX(GetCaption(window), "The file '" + file + "' does not exist.");
    EXEC("notepad", QUOTEARGUMENT(file), WithoutWaiting);
    if (ErrorCell() != ERR_EXEC_NOT_FOUND) return;
    ClearError();
    EXEC("xdg-open", QUOTEARGUMENT(file), WithoutWaiting);
    STAMP();
}

// ---- the dialog ----

void load(const Object& window) {
    const std::string ini = GETIDEINIFILE();
    SetCaption(in(window, "lstbreakpoints"), "Class\tLine");
    SETBREAKPOINTS(in(window, "lstbreakpoints"), PROFILESTRGET(ini, DebugSection, BreakpointsKey));
    chosenRules = ParseDebugRules(PROFILESTRGET(ini, DebugSection, DebugRulesKey));
    chosenCodes = PROFILESTRGET(ini, DebugSection, StopCodesKey);
    warn(window);
    showTraces(window);
    SetListIndex(in(window, "lstbreakpoints"), GetListCount(in(window, "lstbreakpoints")) > 0 ? 1 : 0);
    bringUpToDate(window);
}

void accept(const Object& window) {
    const std::string ini = GETIDEINIFILE();
    const std::vector<Breakpoint> left = breakpointsIn(in(window, "lstbreakpoints"));
    STOREBREAKPOINTS(left);
    std::set<std::pair<std::string, int>> places;
    for (const Breakpoint& one : left) places.emplace(STRUPPER(one.className), one.line);
    std::erase_if(chosenRules, [&places](const DebugRule& rule) {
        return !places.contains({STRUPPER(rule.className), rule.line});
    });
    const std::string rules = FormatDebugRules(chosenRules);
    const std::pair<std::string_view, std::string> changed[] = {{DebugRulesKey, rules},
                                                                {StopCodesKey, chosenCodes}};
    for (const auto& [key, value] : changed)
        if (PROFILESTRGET(ini, DebugSection, key) != value) PROFILESTRPUT(ini, DebugSection, key, value);
    const int level = numberOf(GetText(in(window, "Traceide")));
    if (level != GetTraceMode()) SetTraceMode(level);
    SHOWBREAKPOINTS(SDIEdit);
}

constexpr DialogButton buttons[] = {
    {"btnadd", add},         {"btnremove", remove},       {"btnremoveall", removeAll},
    {"btnrule", changeRule}, {"btnerrors", changeErrors}, {"btntrace", openTrace}};
constexpr DialogShape shape{.settings = GETIDEINIFILE,
                            .showHelp = SHOWWINDOWHELP,
                            .load = load,
                            .accept = accept,
                            .buttons = buttons};
const RegisteredWindow registered("DebugOptionsDlg", DEBUGOPTIONSDLG);

bool handle(const Object& window, int event, const Object& control, int parameter) {
    if (event == CHANGE_EVENT && !takeTrace(window, GetName(control))) bringUpToDate(window);
    if (event == CHANGE_EVENT) return true;
    const bool handled = DIALOGSHAPEEVENT(shape, window, event, control, parameter);
    if (handled && event == COMMAND_EVENT && IsLoaded(window)) bringUpToDate(window);
    return handled;
}

}  // namespace

bool DEBUGOPTIONSDLG(const Object& window, int event, const Object& control, int parameter) {
    FRAME(DEBUGOPTIONSDLG);
    STAMP();
    const bool result = handle(window, event, control, parameter);
    STAMP();
    return result;
}

void DEBUGOPTIONSDIALOG() {
    FRAME(DEBUGOPTIONSDIALOG);
    STAMP();
    Load(DebugOptionsDlg);
    STAMP();
    Show(DebugOptionsDlg, true);
    STAMP();
}

}  // namespace tarn
