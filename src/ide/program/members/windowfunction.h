// SPDX-License-Identifier: GPL-3.0-or-later
//
// The window function of a dialog, from the template Template.FunctionBody.cls, put into the text of a class.
// Errors are texts, empty on success; the text stays then. Cost: linear in the text.
#pragma once

#include <string>

namespace tarn {

// The line ends become those of new texts; ADOPTLINEENDS gives them those of the class. The arguments are lined up.
[[nodiscard]] std::string ADDWINDOWFUNCTION(const std::string& name, std::string& text);

// All names that a function of the class has, one a line.
std::string FUNCTIONNAMES(const std::string& text);

}  // namespace tarn
