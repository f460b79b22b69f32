// SPDX-License-Identifier: GPL-3.0-or-later
//
// The window function of a dialog, from the template Template.FunctionBody.cls, put into the text of a class.
// Errors are texts, empty on success; the text stays then. Cost: linear in the text.
#pragma once

#include <string>

namespace tarn {

// The line ends become those of new texts; ADOPTLINEENDS gives them those of the class. The arguments are lined up. A class
// that has a function of that name already is an error.
[[nodiscard]] std::string ADDWINDOWFUNCTION(const std::string& name, std::string& text);
// The same for several, one name a line: all of them or none. It costs no more walks over the text than one does.
[[nodiscard]] std::string ADDWINDOWFUNCTIONS(const std::string& names, std::string& text);

// All names that a function of the class has, one a line.
std::string FUNCTIONNAMES(const std::string& text);

}  // namespace tarn
