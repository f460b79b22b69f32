// SPDX-License-Identifier: Apache-2.0
//
// What has to be handed on so that a program runs: the program and the companion of its resources, the run-time library
// from where it stands for the tools, and the files that the resource files of the program name. Objects and symbol files
// stay with the sources, and so do pictures, which the companion holds.
//
//   INCFILE, ICON   always, so that whoever hands the program on learns that one is not there
//   DBFILE          one that is there: the place of a table may be known only where the program runs
//
// Cost: reads each resource file.
#pragma once

#include "platform/resources/resource.h"
#include "toolchain/build/make.h"

#include <string>
#include <vector>

namespace tarn::toolchain {

// One path a line, each once.
std::string targetsOf(const Sources& sources, const std::vector<platform::ResourceFolder>& folders);

}  // namespace tarn::toolchain
