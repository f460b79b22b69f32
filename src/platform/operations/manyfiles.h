// SPDX-License-Identifier: Apache-2.0
//
// The dialog in which the user chooses any number of files at once. A header of its own, since few need it.
#pragma once

#include <string>
#include <vector>

namespace tarn::platform {

// As OpenFileDialog: full paths, none on Cancel. Files with a line feed in their names cannot be chosen.
std::vector<std::string> OpenFilesDialog(const std::string& title, const std::string& start,
                                         const std::string& filter);

}  // namespace tarn::platform
