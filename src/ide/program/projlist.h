// SPDX-License-Identifier: GPL-3.0-or-later
//
// The list of a program as text: what the main class reaches, a line for each class, group of resources, and resource.
// Nothing of it is kept; it is made anew from the dependency list and the resource files.
//
// An item is one line: the level as a number, then title, type, name, file, date, picture and, unless it is empty, the
// open picture, each in double quotes (two stand for one inside) and parted by one blank:
//
//     1 "Class <B>Shapes</B>" "Class" "Shapes" "/home/ann/shapes.cls" "2026-03-01 10:15:00" "class0.bmp"
//
// Cost: MAKEPROJECTLIST reads each resource file once, and once more for each of the five kinds whose word stands in it;
// the others are linear in their text.
#pragma once

#include "library/settings/placeholders.h"

#include <string>
#include <string_view>
#include <vector>

namespace tarn {

inline constexpr char BOLD_MARK = 2;  // in a row's text: bold on, bold off

struct ProjectItem {
    int level = 0;  // 1 a top item, 2 one under it
    std::string title, type, name, file, date, picture, openPicture;
};
// With the marks of the control in place of <B> and </B>. What is not there is empty, the level 0.
ProjectItem PARSEPROJECTITEM(std::string_view line);
// Composes the line and appends it.
void ADDPROJECTITEM(const ProjectItem& item, std::vector<std::string>& items);

// What the user wants to see: library classes, and behind a title the file's name or its whole path (which wins).
struct ProjectView {
    bool classes = false, files = false, paths = false;
};
ProjectView GETPROJECTVIEW();  // from the settings

// `dependencies` are full paths, one a line, in the order in which the rows come. One that is none, or that does not
// exist, is a broken promise (687) and gives no item.
std::vector<std::string> MAKEPROJECTLIST(const ProjectView& view, const std::string& mainFile,
                                         const std::string& dependencies);

// A place in the list: which top item, and how far under it (0: the top item itself).
struct ProjectPlace {
    int top = 1, sub = 0;
    bool operator==(const ProjectPlace&) const = default;
};
// The top item that stands for the file, in any case; the first one if none does.
ProjectPlace FINDMAINFILE(const std::vector<std::string>& items, std::string_view mainFile);

// The full path of the file that a line of ResourceInfo names; a relative one starts from the folder of the resource file.
std::string FILEOFRESOURCE(const std::string& file, const std::string& line,
                           const PlaceholderFolders& folders);

// The name of a file in the folder that is this one in any case; empty if there is none.
std::string NAMEINFOLDER(std::string_view folder, std::string_view name);
// Of the folders, one a line, those that hold a file of this name and extension, in any case: folder and name, one a line.
std::string FOLDERLISTFINDFILE(const std::string& folders, std::string_view file);
// Whether a class of this name, in any case, lies in the library folder.
bool ISLIBRARYFILE(std::string_view file);
// Whether the file has the name of one of the classes that every program needs, which no command removes.
bool ISCOREFILE(std::string_view file);

}  // namespace tarn
