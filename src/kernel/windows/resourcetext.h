// SPDX-License-Identifier: Apache-2.0
//
// A window of a resource file as a text by itself, in memory: what ResourceWrite would add to an empty file, and what
// ResourceRead would give for it. For texts that come from elsewhere than files, such as the clipboard, which may be anything.
//
// Neither touches the error cell. Cost: linear in the text.
#pragma once

#include "kernel/windows/resources.h"

#include <string>
#include <vector>

namespace tarn {

// The statement of a window and its controls. Empty if no resource file can hold them.
std::string ResourceStatement(const std::vector<std::string>& objects);
// Its objects, of which there may be more than a window can have. Empty unless the text is the statement of that window and
// has no fault.
std::vector<std::string> ResourceStatementObjects(const std::string& text, const std::string& name);

}  // namespace tarn
