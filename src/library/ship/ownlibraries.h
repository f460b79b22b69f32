// SPDX-License-Identifier: Apache-2.0
//
// The run-time library among the files of a program. What a debugger reads in it makes it several times as large, and no
// user of the program has a debugger of ours: copies go without it.
#pragma once

#include <string>

namespace tarn {

bool ISOWNLIBRARY(const std::string& file);  // by its name

// The list (copylist.h) with each file of the run-time library replaced by a copy of the same name without what a debugger
// reads. The copies stand in the user's state folder and are made when the file is another one than they were made of. A file
// stays as it is where the program `strip` is not there or does not know it. Cost: a run of `strip` for each that is made.
std::string WITHSMALLLIBRARIES(const std::string& files);

}  // namespace tarn
