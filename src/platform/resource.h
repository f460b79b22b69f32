// SPDX-License-Identifier: Apache-2.0
//
// Resource files: the text form (.rc) that people and the dialog editor edit, and the compiled companion (.rcx)
// from which a program loads its windows. docs/formats/resource.md describes both.
//
// Reading keeps comments, unknown statements and layout; writing one resource changes the bytes of that resource
// only, and writing it unchanged changes none. Every operation works on the whole file and keeps nothing open.
// `error` results are texts, empty on success.
#pragma once

#include <array>
#include <string>
#include <vector>

namespace tarn::platform {

inline constexpr int MAX_CONTROLS = 255;
// Element 0 is the property list of the dialog or menu, then its controls or items; an empty element ends it.
using ObjectArray = std::array<std::string, MAX_CONTROLS + 1>;

struct ResourceText {
    std::string text, error;
};

std::string ResourceRead(const std::string& file, const std::string& name, ObjectArray& objects);
std::string ResourceWrite(const ObjectArray& dialog, const ObjectArray& menu, const std::string& file);
ResourceText ResourceInfo(const std::string& file, const std::string& kind, const std::string& name);
std::string ResourceTypelist(const std::string& type);
std::string ResourceDelete(const std::string& file, const std::string& name);
std::string ResourceRename(const std::string& file, const std::string& oldName, const std::string& newName);
std::string ResourceWriteText(const std::string& file, const std::string& line);
int ResourceValue(const std::string& name);  // a symbol of the application's own resources; 0 if there is none

// Compiles the .rc files into one .rcx. Errors come as "file(line) : error number text" lines.
std::string CompileResources(const std::vector<std::string>& rcFiles, const std::string& rcxFile);

}  // namespace tarn::platform
