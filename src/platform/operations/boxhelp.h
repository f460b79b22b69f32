// SPDX-License-Identifier: Apache-2.0
//
// F1 where no window function takes it: in a box that waits for an answer, which is no window of the program, and in
// windows whose function leaves the key alone. Whoever has help says here what to do.
#pragma once

#include <string>

namespace tarn::platform {

struct Question;

using BoxHelp = void (*)(const std::string& title, const std::string& text);
void SetBoxHelp(BoxHelp help);                                   // null: F1 does nothing
void userBoxHelp(const Question& question);                      // for views: the user has pressed F1 there
bool helpOn(const std::string& title, const std::string& text);  // false: nobody has help

}  // namespace tarn::platform
