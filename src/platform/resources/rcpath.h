// SPDX-License-Identifier: Apache-2.0
//
// Where the file of a resource statement lies: paths start from the folder of their resource file, and placeholders stand
// for folders that only the one who compiles or hands on knows. Touches no disk.
#pragma once

#include "platform/resources/resource.h"

#include <string>
#include <vector>

namespace tarn::platform {

// The file that is written so in `rcFile`.
std::string ResourceFilePath(const std::string& rcFile, const std::string& written,
                             const std::vector<ResourceFolder>& folders);

}  // namespace tarn::platform
