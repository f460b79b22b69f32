// SPDX-License-Identifier: Apache-2.0
//
// The operations on resource files, on texts that have been read: what they change is parsed again and stands in
// `parsed` then, which stays as it was on an error. `file` is what errors call the text.
//
// Cost: linear in the text, and rcwriter.h.
#pragma once

#include "platform/resources/rctext.h"
#include "platform/resources/resource.h"

#include <string>

namespace tarn::platform {

std::string readObjects(const RcFile& parsed, const std::string& file, const std::string& name,
                        ObjectArray& objects);
// Of a dialog and its menu both are written or none. `past` as ResourceWrite has it.
std::string writeObjects(RcFile& parsed, const std::string& file, const ObjectArray& dialog,
                         const ObjectArray& menu, ResourcePast& past);
inline std::string writeObjects(RcFile& parsed, const std::string& file, const ObjectArray& dialog,
                                const ObjectArray& menu) {
    ResourcePast none;
    return writeObjects(parsed, file, dialog, menu, none);
}
std::string deleteStatement(RcFile& parsed, const std::string& file, const std::string& name);
// The same of those of one kind alone, by its word; DIALOG is any window. Others of that name stay.
std::string deleteStatement(RcFile& parsed, const std::string& file, const std::string& kind,
                            const std::string& name);
std::string renameStatement(RcFile& parsed, const std::string& file, const std::string& oldName,
                            const std::string& newName);
std::string addStatement(RcFile& parsed, const std::string& file, const std::string& line);
ResourceText listStatements(const RcFile& parsed, const std::string& file, const std::string& kind,
                            const std::string& name);

}  // namespace tarn::platform
