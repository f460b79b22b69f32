// SPDX-License-Identifier: Apache-2.0
//
// The operations on resource files as modules call them. Their errors are texts, empty on success, so none of
// them touches the error cell; the answers have the sizes of the buffers that programs have for them. The
// objects of a window may also stand in an array of the kernel: kernel/values/objectarrays.h.
//
// Cost: each reads the whole file.
#pragma once

#include "platform/resources/resource.h"

#include <string>

namespace tarn {

using platform::CompileResources;
using platform::MAX_CONTROLS;
using platform::ObjectArray;
using platform::ResourceCommonId;
using platform::ResourceFolder;
using platform::ResourceMemoryOption;
using platform::ResourcePast;
using platform::ResourceText;
using platform::ResourceTypelist;
using platform::ResourceValue;

inline constexpr std::size_t RESOURCE_TEXT_SIZE = 65535;    // characters of a list
inline constexpr std::size_t RESOURCE_ERROR_SIZE = 1024;    // characters of an error text
inline constexpr std::int32_t RESOURCE_OBJECT_SIZE = 1024;  // characters of an element of an object array

// An error text is cut where its buffer ends.
std::string CutResourceError(std::string error);
// A list that is too long ends behind its last line that fits, and the error says so.
ResourceText CutResourceText(ResourceText answer, const std::string& file);

inline std::string ResourceRead(const std::string& file, const std::string& name, ObjectArray& objects) {
    return CutResourceError(platform::ResourceRead(file, name, objects));
}
inline std::string ResourceWrite(const ObjectArray& dialog, const ObjectArray& menu,
                                 const std::string& file) {
    return CutResourceError(platform::ResourceWrite(dialog, menu, file));
}
inline std::string ResourceWrite(const ObjectArray& dialog, const ObjectArray& menu, const std::string& file,
                                 ResourcePast& past) {
    return CutResourceError(platform::ResourceWrite(dialog, menu, file, past));
}
inline ResourceText ResourceInfo(const std::string& file, const std::string& kind, const std::string& name) {
    return CutResourceText(platform::ResourceInfo(file, kind, name), file);
}
inline std::string ResourceDelete(const std::string& file, const std::string& name) {
    return CutResourceError(platform::ResourceDelete(file, name));
}
inline std::string ResourceRename(const std::string& file, const std::string& oldName,
                                  const std::string& newName) {
    return CutResourceError(platform::ResourceRename(file, oldName, newName));
}
inline std::string ResourceWriteText(const std::string& file, const std::string& line) {
    return CutResourceError(platform::ResourceWriteText(file, line));
}

}  // namespace tarn
