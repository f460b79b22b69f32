// SPDX-License-Identifier: Apache-2.0
//
// The script of an installer: sections of lines, which the installer's compiler reads (docs/formats/iss.md).
#pragma once

#include <string>

namespace tarn {

// `name` in it is that of `mainExe` without path and extension. `files` is a list as in copylist.h. Without an icon, or
// without a name for it, the lines that need one are left out. A version of four numbers is told by its first two, unless
// there is a text for it. No text can end its line early: line ends and other control characters become blanks, and a
// quote in a path stands twice.
std::string CREATEISSSCRIPT(const std::string& company, const std::string& copyright,
                            const std::string& product, const std::string& description,
                            const std::string& versionText, const std::string& version,
                            const std::string& fileList, const std::string& mainExe,
                            const std::string& iconFile);

}  // namespace tarn
