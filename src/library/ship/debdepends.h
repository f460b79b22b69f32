// SPDX-License-Identifier: Apache-2.0
//
// What packages of the system a program needs: the libraries that its files are linked to and that are not among them, and
// the package that each of these came with. The texts are what the tools objdump, ldd and dpkg-query write.
#pragma once

#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace tarn {

using NameList = std::vector<std::string>;  // sorted, each once

// ---- texts ----
NameList NEEDEDLIBRARIES(const std::string& objdump);  // `objdump -p` of any number of files
// `ldd` of any number of files: where each library is. One that is not found has an empty path.
std::map<std::string, std::string> LIBRARYPATHS(const std::string& ldd);
// `dpkg-query -S`: the package of each path.
std::map<std::string, std::string> PACKAGESOFFILES(const std::string& search);
// A package's file `shlibs`: what it says who is linked to that library depends on; empty if it says nothing.
std::string SHLIBSDEPENDENCY(const std::string& shlibs, std::string_view library);

// ---- files ----
struct DebDepends {
    std::string packages;  // ", " between them
    std::string problem;   // why they cannot be told; empty if they can
    bool stopped = false;  // by the user
};
// Of the files of a list (copylist.h). What the tools write goes to files in `folder`, with "/" at its end.
DebDepends FINDDEPENDS(const std::string& files, const std::string& folder);

}  // namespace tarn
