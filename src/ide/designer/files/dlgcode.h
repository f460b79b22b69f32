// SPDX-License-Identifier: GPL-3.0-or-later
//
// From the objects of a dialog to the functions of its class, which stands beside the resource file under the same
// stem.
//
// What is not there is told in a box. Cost: a scan of the class.
#pragma once

#include <string>

namespace tarn {

// Opens the class of the resource file at the function of the object, at the case of its usual event where it has one.
void SHOWCODEFILE(const std::string& resourceFile, const std::string& objectName,
                  const std::string& windowType, const std::string& objectType);
// Asks whether the window function shall follow the dialog's new name, and renames it.
void CHECKRENAMEFUNCTION(const std::string& classFile, const std::string& oldName,
                         const std::string& newName);

}  // namespace tarn
