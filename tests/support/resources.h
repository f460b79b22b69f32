// SPDX-License-Identifier: Apache-2.0
//
// Resource text of a test's own as what the program has for resources.
#pragma once

#include "os/files.h"
#include "platform/resources/resource.h"
#include "platform/windowing.h"
#include "support/tempfolder.h"

#include <string>

namespace tarn {

// Compiles the text in the folder, from `a.rc` to `a.rcx`, and has it as the program's resources. Empty, or what is
// wrong with it.
inline std::string useResources(const TempFolder& folder, const std::string& text) {
    const std::string rc = folder / "a.rc", rcx = folder / "a.rcx";
    if (!os::saveFile(rc, text, os::Durability::Unsynced).ok()) return rc + " cannot be written.";
    std::string messages = platform::CompileResources({rc}, rcx);
    if (messages.empty()) platform::SetApplicationResources(rcx);
    return messages;
}

}  // namespace tarn
