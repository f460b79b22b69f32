// SPDX-License-Identifier: GPL-3.0-or-later
//
// The errors at which the debugger stops: the value `StopCodes` of the settings (kernel/debug/debugsettings.h) and the
// dialog that chooses them. An empty value stands for every error.
//
// Reading and writing lose nothing: what the value names beside the errors of the system are codes of programs' own.
#pragma once

#include "kernel/windows/windowing.h"

#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace tarn {

struct StopChoice {
    std::set<int> errors;  // of the system's table
    std::string others;    // codes and ranges of codes that are not in that table
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
