// SPDX-License-Identifier: GPL-3.0-or-later
//
// What a row of the Program Window stands for when it is to be removed, and why it cannot be.
// Cost: some looks at the disk; a resource file is read once.
#pragma once

#include "ide/program/projwindow.h"

#include <string>

namespace tarn {

enum class Member { ResourceFile, Dialog, VersionInfo, DataSource, Class, IncludedFile, Unknown };
Member MEMBEROF(const ProjectItem& item);

// A class of the library folder: it may leave the program, and its file stays.
bool ISLIBRARYCLASS(const ProjectItem& item);
// Whether the file stands in the Code window or the dialog editor.
bool ISOPENINEDITOR(const std::string& file);

// The file of the top item to which the row belongs.
std::string GROUPFILE(const Object& window, const ProjectRow& row);

// Why the row cannot be removed, as it is shown; empty if it can. What is wrong is wrong with the file that the removal is to
// change: of a file that the program brings along, the resource file that names it.
std::string REMOVALOBSTACLE(const Object& window, const ProjectRow& row);
// The same with a reason for a file.
std::string REMOVALMESSAGE(const std::string& file, const std::string& reason);

inline constexpr const char* OpenInEditor =
    "The file is currently open in an editor.\nPlease close the editor window, then try again.";

}  // namespace tarn
