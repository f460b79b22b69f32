// SPDX-License-Identifier: Apache-2.0
//
// Paths in files that are moved from one machine to another name two folders by placeholders, each in two forms:
//
//   <RESOURCEDIR>\  {RESOURCEDIR}\   the resource directory
//   <COMPILERDIR>\  {COMPILERDIR}\   the compiler directory
//
// Behind the bracket either separator may stand, and the words may be in any case. Cost: linear in the text.
#pragma once

#include <string>

namespace tarn {

// With a separator at their end; an empty one is not known, and its placeholders stay.
struct PlaceholderFolders {
    std::string resources, compiler;
};

// The text with each placeholder replaced by its folder.
std::string FILERESOLVEPATHS(const std::string& text, const PlaceholderFolders& folders);
// A path that begins with one of the folders, the longer one first, with the placeholder in angle brackets in its place;
// any other as it is.
std::string FILEUNRESOLVEPATHS(const std::string& path, const PlaceholderFolders& folders);

}  // namespace tarn
