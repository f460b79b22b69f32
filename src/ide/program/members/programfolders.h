// SPDX-License-Identifier: GPL-3.0-or-later
//
// Where the classes of a program are found: the folder of its main file, and the inherited folders of the settings. A file
// that lies elsewhere is added by a longer list of folders, or by a copy.
//
// Cost: a look at the disk for each folder.
#pragma once

#include "ide/program/members/programchanges.h"

#include <string>

namespace tarn {

// Whether both names are those of one file on the disk, or the same name.
bool ISSAMEFILE(const std::string& one, const std::string& other);

// Whether a file of that name and extension, in any case, is in the list of the open program.
bool ISINPROGRAM(const std::string& file);

struct FolderSearch {
    bool inside = false;  // the file itself lies in one of the folders
    bool other = false;   // another file of its name does
};
FolderSearch FINDINFOLDERS(const std::string& mainFile, const std::string& file);

enum class Placing { Cancel, UpdateFolders, CopyFile };
// Asks what to do with a file that lies elsewhere. `what` is "class" or "resource file", `copied` what a copy takes along.
Placing ASKPLACING(const std::string& title, const std::string& what, const std::string& copied,
                   const std::string& file, const std::string& mainFile);

// The changes, and before them the folder of the class among the inherited ones: a folder more changes no program, so that
// a death between the two leaves it as it was. An error text, with the old folders, where either is not possible.
[[nodiscard]] std::string COMMITWITHFOLDER(ProgramChanges& changes, const std::string& title,
                                           const std::string& classFile);

// Gives a copy the time of its source, as far as that is possible.
void KEEPTIME(const std::string& source, const std::string& copy);

}  // namespace tarn
