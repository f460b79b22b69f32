// SPDX-License-Identifier: Apache-2.0
//
// Resource files: the text form (.rc) that people and the dialog editor edit, and the compiled companion
// (.rcx) from which a program loads its windows. docs/formats/rc.md describes both.
//
// Reading keeps comments, unknown statements and layout; writing one resource changes the bytes of that
// resource only, and writing it unchanged changes none. Every operation works on the whole file and keeps
// nothing open. `error` results are texts, empty on success.
#pragma once

#include "platform/object.h"

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
int ResourceValue(
    const std::string& name);  // a symbol of the application's own resources; 0 if there is none
bool ResourceCommonId(const std::string& name);  // IDOK, IDCANCEL, ...: identifiers that need no definition
bool ResourceMemoryOption(const std::string& word);  // PRELOAD, FIXED, ...: words between kind and path

// A placeholder at the start of a path in a resource file, such as "<RESOURCEDIR>", and the folder it stands
// for.
struct ResourceFolder {
    std::string placeholder, folder;
};

// Compiles the .rc files into one .rcx, which carries the bytes of all bitmaps. Relative paths start from the
// folder of their .rc file. Errors come as "file(line) : error number text" lines; nothing is written then.
std::string CompileResources(const std::vector<std::string>& rcFiles, const std::string& rcxFile,
                             const std::vector<ResourceFolder>& folders = {});

// The bytes of a picture (png, bmp, svg, ico): a BITMAP of the application's resources of that name, in any
// case, else the file, where a relative name starts from the folder of the application's resources. Code 710
// if there is none.
Answer<std::string> PictureBytes(const std::string& name);

}  // namespace tarn::platform
