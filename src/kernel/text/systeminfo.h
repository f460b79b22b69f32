// SPDX-License-Identifier: Apache-2.0
//
// What the system is and how it stands, for reports about errors: the debugger's information view and the
// About box show it.
#pragma once

#include <string>
#include <string_view>

namespace tarn {

// Stands for what this system has no such thing of, and for what it has and does not tell.
inline constexpr std::string_view NotOnThisSystem = "not on Linux", NotTold = "unknown";

// One line a name: the name, " = " and the value, always all names and in the same order. Values have no line
// ends. Cost: some milliseconds; files of the system, the registry and the view are asked.
std::string SystemInformation();

}  // namespace tarn
