// SPDX-License-Identifier: GPL-3.0-or-later
//
// Files that a resource file names by paths from its own folder, such as its pictures: a copy of it in another folder
// names what may not be there. And pictures that a copied dialog names.
//
// Cost: reads the resource file, and looks for each file that it names.
#pragma once

#include <string>
#include <vector>

namespace tarn {

struct NamedFile {
    std::string source, copy;
};

// Asks whether the files that `folder` lacks shall come along with a copy of the resource file; those that shall. Without
// such files nothing is asked.
std::vector<NamedFile> ASKNAMEDFILES(const std::string& title, const std::string& resourceFile,
                                     const std::string& folder);
// The pictures of a dialog that neither its program has nor a file beside it is, one a line.
std::string MISSINGPICTURES(const std::string& resourceFile, const std::string& dialog);

}  // namespace tarn
