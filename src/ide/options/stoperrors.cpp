// SPDX-License-Identifier: GPL-3.0-or-later
#include "ide/options/stoperrors.h"

#include "ide/shell/idecore.h"
#include "ide/shell/windowtable.h"
#include "kernel/debug/debugsettings.h"
#include "kernel/run/errors.h"
#include "library/dialogs/dialogshape.h"
#include "library/settings/profstr.h"
#include "library/system/system.h"
#include "os/text/ascii.h"

#include <algorithm>
#include <functional>
#include <iterator>

MODULE("toolmenu")

namespace tarn {
namespace {

#define TARN_ERROR_NUMBER(code, name, text) code,
constexpr int Errors[] = {TARN_ERRORS(TARN_ERROR_NUMBER)};  // in order
#undef TARN_ERROR_NUMBER

// Whether the range has no codes but those of the system's errors.
bool isOfErrors(const CodeRange& range) {
    const auto in = [&range](int code) { return code >= range.first && code <= range.last; };
    return std::count_if(std::begin(Errors), std::end(Errors), in) ==
           std::int64_t{range.last} - range.first + 1;
}

// The parts of the ranges below and above a code.
std::vector<CodeRange> without(const std::vector<CodeRange>& ranges, int code) {
    std::vector<CodeRange> rest;
    for (const CodeRange& range : ranges) {
        if (code < range.first || code > range.last) {
            rest.push_back(range);
            continue;
        }
        if (range.first < code) rest.push_back({range.first, code - 1});
        if (code < range.last) rest.push_back({code + 1, range.last});
    }
    return rest;
}

// In order, without doubles, neighbours in one.
std::vector<CodeRange> merged(std::vector<CodeRange> ranges) {
    std::sort(ranges.begin(), ranges.end(),
              [](const CodeRange& a, const CodeRange& b) { return a.first < b.first; });
    std::vector<CodeRange> all;
    for (const CodeRange& range : ranges) {
        if (all.empty() || range.first - 1 > all.back().last)
            all.push_back(range);
        else
            all.back().last = std::max(all.back().last, range.last);
    }
    return all;
}

bool holds(const std::string& text, const std::string& part) {
    return part.empty() || ascii::uppered(text).find(part) != std::string::npos;
}

}  // namespace

StopChoice PARSESTOPCODES(std::string_view value) {
    FRAME(PARSESTOPCODES);
    STAMP();
    const std::vector<CodeRange> ranges = ParseStopCodes(value);
    StopChoice choice;
    if (ranges.empty()) return choice;
    for (const int code : Errors)
        if (IsStopCode(ranges, code)) choice.errors.insert(code);
    std::vector<CodeRange> others;
    std::copy_if(ranges.begin(), ranges.end(), std::back_inserter(others), std::not_fn(isOfErrors));
    choice.others = FormatStopCodes(merged(std::move(others)));
    return choice;
}

std::string FORMATSTOPCODES(const StopChoice& choice) {
    FRAME(FORMATSTOPCODES);
    STAMP();
    std::vector<CodeRange> ranges = ParseStopCodes(choice.others);
    for (const int code : choice.errors) ranges.push_back({code, code});
    return FormatStopCodes(merged(std::move(ranges)));
}

std::string OTHERCODESFAULT(std::string_view text) {
    FRAME(OTHERCODESFAULT);
    STAMP();
    std::string refused;
    static_cast<void>(ParseStopCodes(text, refused));
    if (refused.empty()) return {};
    return "'" + STRWORD(refused, 1) + "' is no code of an error.\nTry, for example, '1000 2000-2099'.";
}

std::vector<int> FINDERRORS(std::string_view text) {
    FRAME(FINDERRORS);
    STAMP();
    const std::string part = ascii::uppered(text);
    std::vector<int> found;
    for (const int code : Errors)
        if (holds(STR(code) + " " + ErrorMessage(code), part)) found.push_back(code);
    return found;
}

std::string STOPCODESTEXT(const std::string& value) {
    FRAME(STOPCODESTEXT);
    STAMP();
    if (ParseStopCodes(value).empty()) return "Every error stops.";
    const StopChoice choice = PARSESTOPCODES(value);
    const int count = static_cast<int>(choice.errors.size());
    if (count == 0) return "Other codes stop.";
    return STR(count) + (count == 1 ? " error stops" : " errors stop") +
           (choice.others.empty() ? "." : ", and others.");
}

// ---- the dialog ----

namespace {

const Object StopErrorsDlg("StopErrorsDlg");

std::set<int> chosen;  // in the list, as the user has them so far
std::vector<CodeRange>
    written;             // in the field of other codes, where a range may hold errors of the list, too
std::vector<int> shown;  // the codes of the rows

Object in(const Object& window, std::string_view control) {
    return FINDCONTROL(window, control);
}

std::string textIn(const Object& window, std::string_view control) {
    return STRTRIM(GetText(in(window, control)));
}

StopChoice choiceIn(const Object& window) {
    return {chosen, textIn(window, "edtothers")};
}

std::string valueIn(const Object& window) {
    return GetChecked(in(window, "chkevery")) ? std::string() : FORMATSTOPCODES(choiceIn(window));
}

bool stopsAt(int code) {
    return chosen.contains(code) || (!written.empty() && IsStopCode(written, code));
}

std::string rowOf(int code) {
    return std::string(stopsAt(code) ? "yes" : "") + "\t" + STR(code) + "\t" + ErrorMessage(code);
}

// The row of the list; 0 if none is selected.
int selected(const Object& window) {
    const int row = GetListIndex(in(window, "lsterrors"));
    return row <= static_cast<int>(shown.size()) ? row : 0;
}

void bringUpToDate(const Object& window) {
    SetEnabled(in(window, "btntoggle"), selected(window) > 0);
    for (const std::string_view button : {"btnall", "btnnone"})
        SetEnabled(in(window, button), !shown.empty());
    const bool none = !GetChecked(in(window, "chkevery")) && valueIn(window).empty();
    SetCaption(in(window, "lblcount"), none ? "No error is chosen." : STOPCODESTEXT(valueIn(window)));
}

// The errors that fit the search; the one that was selected stays so if it is among them.
void fill(const Object& window) {
    const Object list = in(window, "lsterrors");
    const int before = selected(window) > 0 ? shown[static_cast<std::size_t>(selected(window)) - 1] : 0;
    shown = FINDERRORS(textIn(window, "edtsearch"));
    Clear(list);
    for (const int code : shown) AddItem(list, rowOf(code));
    const auto at = std::find(shown.begin(), shown.end(), before);
    SetListIndex(list, shown.empty() ? 0 : at == shown.end() ? 1 : static_cast<int>(at - shown.begin()) + 1);
}

// What is no code stays for the user to mend.
void writeOthers(const Object& window, const std::vector<CodeRange>& others, const std::string& refused) {
    written = others;
    SetText(in(window, "edtothers"), STRTRIM(FormatStopCodes(others) + " " + refused));
}

void takeOut(const Object& window, int code) {
    chosen.erase(code);
    if (!stopsAt(code)) return;
    std::string refused;
    static_cast<void>(ParseStopCodes(textIn(window, "edtothers"), refused));
    writeOthers(window, without(written, code), refused);
}

// Who chooses errors wants to stop at these.
void choose(const Object& window, int row, bool stops) {
    const int code = shown[static_cast<std::size_t>(row) - 1];
    if (!stops)
        takeOut(window, code);
    else if (!stopsAt(code))
        chosen.insert(code);
    SetChecked(in(window, "chkevery"), false);
    SetList(in(window, "lsterrors"), row, rowOf(code));
}

void toggle(const Object& window) {
    const int row = selected(window);
    if (row < 1) return Sound();
    choose(window, row, !stopsAt(shown[static_cast<std::size_t>(row) - 1]));
    SetListIndex(in(window, "lsterrors"), row);
}

template <bool stops>
void chooseShown(const Object& window) {
    const int row = selected(window);
    for (int i = 1; i <= static_cast<int>(shown.size()); i++) choose(window, i, stops);
    SetListIndex(in(window, "lsterrors"), row);
}

std::string problem(const Object& window) {
    std::string fault = OTHERCODESFAULT(textIn(window, "edtothers"));
    if (fault.empty() && !GetChecked(in(window, "chkevery")) && valueIn(window).empty())
        fault = "Choose the errors at which the debugger stops, or let it stop at every error.";
    return fault;
}

constexpr DialogButton buttons[] = {
    {"btntoggle", toggle}, {"btnall", chooseShown<true>}, {"btnnone", chooseShown<false>}};
constexpr DialogShape shape{
    .showHelp = SHOWWINDOWHELP, .problem = problem, .hides = true, .buttons = buttons};
const RegisteredWindow registered("StopErrorsDlg", STOPERRORSDLG);

void show(const std::string& value) {
    StopChoice choice = PARSESTOPCODES(value);
    chosen = std::move(choice.errors);
    shown.clear();
    SetCaption(in(StopErrorsDlg, "lsterrors"), "Stops\tError\tText");
    std::string refused;
    static_cast<void>(ParseStopCodes(value, refused));
    writeOthers(StopErrorsDlg, ParseStopCodes(choice.others), refused);
    // An error of a range goes with it when the user removes that.
    if (!written.empty()) std::erase_if(chosen, [](int code) { return IsStopCode(written, code); });
    SetChecked(in(StopErrorsDlg, "chkevery"), ParseStopCodes(value).empty());
    fill(StopErrorsDlg);
    bringUpToDate(StopErrorsDlg);
}

bool isToggle(int event, const Object& control, int parameter) {
    if (GetName(control) != "lsterrors") return false;
    return event == DBLCLICK_EVENT ||
           (event == KEYPRESS_EVENT && (parameter == KEY_RETURN || parameter == ' '));
}

// The list goes with the two fields.
void changed(const Object& window, const std::string& field) {
    if (field == "edtothers") written = ParseStopCodes(textIn(window, "edtothers"));
    if (field == "edtsearch" || field == "edtothers") fill(window);
}

bool handle(const Object& window, int event, const Object& control, int parameter) {
    if (event == CHANGE_EVENT) changed(window, GetName(control));
    const bool toggles = isToggle(event, control, parameter);
    if (toggles) toggle(window);
    const bool handled =
        toggles || event == CHANGE_EVENT || DIALOGSHAPEEVENT(shape, window, event, control, parameter);
    const bool acts = toggles || event == CHANGE_EVENT || event == COMMAND_EVENT;
    if (acts && IsLoaded(window)) bringUpToDate(window);
    return handled;
}

}  // namespace

bool STOPERRORSDLG(const Object& window, int event, const Object& control, int parameter) {
    FRAME(STOPERRORSDLG);
    STAMP();
    const bool result = handle(window, event, control, parameter);
    STAMP();
    return result;
}

bool STOPERRORSDIALOG(std::string& value) {
    FRAME(STOPERRORSDIALOG);
    STAMP();
    Load(StopErrorsDlg);
    show(value);
    STAMP();
    Show(StopErrorsDlg, true);
    STAMP();
    if (!IsLoaded(StopErrorsDlg)) return false;  // cancelled
    value = valueIn(StopErrorsDlg);
    STAMP();
    Unload(StopErrorsDlg);
    return true;
}

}  // namespace tarn
