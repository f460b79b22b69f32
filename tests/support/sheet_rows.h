// SPDX-License-Identifier: Apache-2.0
//
// The property sheet opened on rows of text, as the user of a script sees it.
#pragma once

#include <string>

namespace tarn {

// Shows the sheet on rows "name|options|value", one a line, and waits until it is closed. `outcome` is a line
// "OK" or "Cancel", and the values, one a line. False if a row is not of that form; nothing is shown then.
bool showSheet(const std::string& title, const std::string& rows, std::string& outcome);

}  // namespace tarn
