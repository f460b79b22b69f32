// SPDX-License-Identifier: GPL-3.0-or-later
//
// What the window of the packager and its commands share.
#pragma once

#include "kernel/windows/windowing.h"
#include "library/dialogs/versioninfo.h"

#include <span>
#include <string>
#include <string_view>

namespace tarn::packager {

std::string mainClassOf(const Object& window);
std::string filesOf(const Object& window);
void setFiles(const Object& window, const std::string& files);  // and shows them

// The properties of the program, by its resource file or else those of a new one.
VersionFields versionOf(const std::string& mainClass);
// The first icon among the resources of the main class that has one of these extensions, with its path; empty if there is none.
std::string iconOf(const std::string& mainClass, std::span<const std::string_view> extensions);

// The buttons.
void copyToFloppy(const Object& window);
void copyToFolder(const Object& window);
void copyToZip(const Object& window);
void createInstaller(const Object& window);
void copyToDeb(const Object& window);
void proof(const Object& window);

}  // namespace tarn::packager
