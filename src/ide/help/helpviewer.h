// SPDX-License-Identifier: GPL-3.0-or-later
//
// The help window of the environment, which shows compiled help (.qch). Its code and the help engine stand in a view
// library of their own, libtarnwick-help.so beside the program, which is loaded when help is asked for first.
#pragma once

#include <string>
#include <string_view>

namespace tarn {

// From here on HtmlHelpApi opens .qch files in the help window; other files are left to others. Called once, by a
// program that has a screen.
void USEHELPWINDOW();
// F1 in a message box, and in a window that does nothing with it, opens help from here on.
void USEBOXHELP();
// What the help has on a box: the page of the error or message whose number its text tells, else the topic of its
// title, as that of a dialog.
std::string BOXTOPIC(std::string_view title, std::string_view text);

}  // namespace tarn
