// SPDX-License-Identifier: GPL-3.0-or-later
//
// The properties of a program, which are its version block (library/dialogs/versioninfo.h), in the property sheet. Cost:
// the resource file read and written, and the Program Window made anew.
#pragma once

#include <string>

namespace tarn {

enum class PropertiesResult { Cancel, Ok, Save };

// Shows the block of that name in the resource file beside the main file; where there is none, that of a new program. What
// the user has changed is saved: Save. Ok: there was nothing to save, or it could not be.
PropertiesResult PROGRAMPROPERTIESDIALOG(const std::string& title, const std::string& mainFile,
                                         const std::string& name);

// The name of the first version block beside the main file; empty if there is none.
std::string FIRSTVERSIONINFO(const std::string& mainFile);

}  // namespace tarn
