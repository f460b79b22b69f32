// SPDX-License-Identifier: Apache-2.0
//
// Resources as texts in memory. A window by itself: what ResourceWrite would add to an empty file, and what ResourceRead
// would give for it; for texts that come from elsewhere than files, such as the clipboard, which may be anything. And a
// whole resource file, for commands that change several files at once.
//
// None touches the error cell. Cost: linear in the text.
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

// The operations of resources.h on the text of a file, whose name `file` stands in errors alone. What is deleted is of that
// kind, other resources of the name stay; on an error the text does.
std::string ResourceTextDelete(std::string& text, const std::string& file, const std::string& kind,
                               const std::string& name);
ResourceText ResourceTextInfo(const std::string& text, const std::string& file, const std::string& kind,
                              const std::string& name);
// The lines of all resources of a kind, however many they are.
std::string ResourceTextLines(const std::string& text, const std::string& file, const std::string& kind);

}  // namespace tarn
