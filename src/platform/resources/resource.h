// SPDX-License-Identifier: Apache-2.0
//
// Resource files: the text form (.rc) that people and the dialog editor edit, and the compiled companion
// (.rcx) from which a program loads its windows. docs/formats/rc.md describes both.
//
// Reading keeps comments, unknown statements and layout; writing one resource changes the bytes of that
// resource only, and writing it unchanged changes none. A statement with a fault hides no other one: the fault is
// the error of an operation that asks for that statement. Every operation works on the whole file and keeps
// nothing open; a file that does not exist is empty. `error` results are texts, empty on success.
//
// Cost: each operation reads and parses the whole file (some 2 ms for 100 dialogs of 20 controls).
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

// A window, else a menu of that name. On an error all objects are empty.
std::string ResourceRead(const std::string& file, const std::string& name, ObjectArray& objects);
// Writes or replaces a window and its menu, both or none; an empty first element of `menu` means no menu.
std::string ResourceWrite(const ObjectArray& dialog, const ObjectArray& menu, const std::string& file);
// What writes have taken out of a file, so that it can come back as it was: texts of statements, the last one last, of at
// most 8 MB. A write that takes objects out adds the statement as it was before; an object that comes back, by its name
// and type, gets its block from there, with comments, layout and number.
using ResourcePast = std::vector<std::string>;
std::string ResourceWrite(const ObjectArray& dialog, const ObjectArray& menu, const std::string& file,
                          ResourcePast& past);
// Lines ended by LF. `kind` and `name` "*": all names; a kind and "*": its lines; a kind and a name: that line, of a
// version block the whole text; CONTROLS and a window's name: name and number of each control and menu item.
// DIALOG is any window, and "*" with a name any kind. The tokens of a file's line are its name, its id, the kind,
// its options (of a DBFILE always one) and its path.
ResourceText ResourceInfo(const std::string& file, const std::string& kind, const std::string& name);
// One line for each property: its name, a blank, and its options text. Empty for what is no type of an object.
std::string ResourceTypelist(const std::string& type);
std::string ResourceDelete(const std::string& file, const std::string& name);
// With the references of this file: menus of windows, pictures of controls, and its symbol.
std::string ResourceRename(const std::string& file, const std::string& oldName, const std::string& newName);
// Appends one statement, or puts it into the place of the one of its name and kind. It is written as it is given, but with
// the line ends of the file.
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
