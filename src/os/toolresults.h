// SPDX-License-Identifier: Apache-2.0
//
// Where the compiler and the make tool leave what they say, for them and for whoever starts them. Both find the place
// by themselves, and find the same one because both run for one user.
//
// It is the folder of the tool, by the name that it was called by. Where that user cannot write a result there (an
// installation of the system, a file of somebody else), it is the user's run-time folder, and what lies beside the
// tool is somebody else's and not this run's.
#pragma once

#include <string>
#include <string_view>

namespace tarn::os {

// The result `name` of a tool in `folder`, which ends with a separator. The run-time folder is made if need be.
// Cost: two questions to the file system.
std::string resultFile(const std::string& folder, std::string_view name);

}  // namespace tarn::os
