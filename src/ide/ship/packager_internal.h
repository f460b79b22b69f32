// SPDX-License-Identifier: GPL-3.0-or-later
//
// What the window of the packager and its commands share.
#pragma once

#include "kernel/windows/windowing.h"

#include <string>

namespace tarn::packager {

std::string mainClassOf(const Object& window);
std::string filesOf(const Object& window);
void setFiles(const Object& window, const std::string& files);  // and shows them

// The buttons.
void copyToFloppy(const Object& window);
void copyToFolder(const Object& window);
void copyToZip(const Object& window);
void createInstaller(const Object& window);

}  // namespace tarn::packager
