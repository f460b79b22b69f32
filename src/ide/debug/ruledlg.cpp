// SPDX-License-Identifier: GPL-3.0-or-later
#include "ide/debug/ruledlg.h"

#include "ide/shell/idecore.h"
#include "ide/shell/windowtable.h"
#include "kernel/debug/expression.h"
#include "library/dialogs/dialogshape.h"
#include "library/system/system.h"

MODULE("toolmenu")

namespace tarn {
namespace {

const Object RuleDlg("BreakpointRuleDlg");

Object in(const Object& window, std::string_view control) {
    return FINDCONTROL(window, control);
}

std::string textIn(const Object& window, std::string_view control) {
    return STRTRIM(GetText(in(window, control)));
}

// The hits may be left out.
bool readHits(const Object& window, int& hits) {
    const std::string text = textIn(window, "edthits");
    bool ok = true;
    hits = text.empty() ? 0 : CVTI(text, ok);
    return ok && hits >= 0;
}

std::string problem(const Object& window) {
    int hits = 0;
    if (!readHits(window, hits)) return "The number of the hit must be a whole number from 1 on.";
    const std::string condition = textIn(window, "edtcondition");
    std::string fault;
    if (condition.empty() || DebugExpression::compile(condition, fault) != nullptr) return {};
    return "The condition cannot be read.\n" + fault;
}

constexpr DialogShape shape{.showHelp = SHOWWINDOWHELP, .problem = problem, .hides = true};
const RegisteredWindow registered("BreakpointRuleDlg", BREAKPOINTRULEDLG);

void fill(const DebugRule& rule) {
    SetCaption(in(RuleDlg, "lblplace"), "Breakpoint at line " + STR(rule.line) + " of " + rule.className);
    SetText(in(RuleDlg, "edtcondition"), rule.condition);
    SetText(in(RuleDlg, "edthits"), rule.hits > 1 ? STR(rule.hits) : "");
    SetText(in(RuleDlg, "edtlog"), rule.log);
}

void take(DebugRule& rule) {
    rule.condition = textIn(RuleDlg, "edtcondition");
    readHits(RuleDlg, rule.hits);
    rule.log = textIn(RuleDlg, "edtlog");
}

}  // namespace

bool BREAKPOINTRULEDLG(const Object& window, int event, const Object& control, int parameter) {
    FRAME(BREAKPOINTRULEDLG);
    STAMP();
    const bool result = DIALOGSHAPEEVENT(shape, window, event, control, parameter);
    STAMP();
    return result;
}

bool RULEDIALOG(DebugRule& rule) {
    FRAME(RULEDIALOG);
    STAMP();
    Load(RuleDlg);
    fill(rule);
    STAMP();
    Show(RuleDlg, true);
    STAMP();
    if (!IsLoaded(RuleDlg)) return false;  // cancelled
    take(rule);
    STAMP();
    Unload(RuleDlg);
    return true;
}

}  // namespace tarn
