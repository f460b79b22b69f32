// SPDX-License-Identifier: Apache-2.0
//
// F1 in a box that waits for an answer. The toolkit's boxes are no windows of the program, so no window function hears
// their keys; whoever has help says here what to do.
#pragma once

#include <string>

namespace tarn::platform {

struct Question;

using BoxHelp = void (*)(const std::string& title, const std::string& text);
void SetBoxHelp(BoxHelp help);               // null: F1 does nothing
void userBoxHelp(const Question& question);  // for views: the user has pressed F1 there

}  // namespace tarn::platform
