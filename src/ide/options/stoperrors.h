// SPDX-License-Identifier: GPL-3.0-or-later
//
// The errors at which the debugger stops: the value `StopCodes` of the settings (kernel/debug/debugsettings.h) and the
// dialog that chooses them. An empty value stands for every error.
//
// What the value names beside the errors of the system are codes of programs' own. A range that holds any of those stays
// one, with the system's errors in it, until the user takes one of them out. What is no code stands in the dialog as it
// was stored, and has to be mended there before the choice is taken.
#pragma once

#include "kernel/windows/windowing.h"

#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace tarn {

struct StopChoice {
    std::set<int> errors;  // of the system's table, those of the ranges among them
    std::string others;    // codes that are not in that table, and ranges that hold any
    bool operator==(const StopChoice&) const = default;
};
StopChoice PARSESTOPCODES(std::string_view value);
// In order, neighbours as ranges.
std::string FORMATSTOPCODES(const StopChoice& choice);
// Why a text is no list of codes; empty if it is one.
std::string OTHERCODESFAULT(std::string_view text);
// The system's errors whose code or text holds `text`, in any case, by their codes.
std::vector<int> FINDERRORS(std::string_view text);
std::string STOPCODESTEXT(const std::string& value);  // how many errors stop, for a user

bool STOPERRORSDLG(const Object& window, int event, const Object& control, int parameter);
// Lets the user choose; true, and `value` is what was chosen, unless they cancel.
bool STOPERRORSDIALOG(std::string& value);

}  // namespace tarn
