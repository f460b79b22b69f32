// SPDX-License-Identifier: Apache-2.0
//
// The About box: an icon, a text that can be marked and copied, and a row of buttons. Its window `AboutDlg` stands in the
// program's resources, with the icon "icon1", the edit "edit1" of several lines that cannot be changed, and the push
// buttons "pushbutton1" and so on; a button too many is hidden. Esc closes it, and F1 is the button that shows help.
#pragma once

#include "kernel/windows/windowing.h"

#include <string>
#include <vector>

namespace tarn {

inline const Object AboutDlg("AboutDlg");

// What a button does: "Unload" closes the box, "Copy" puts the text on the clipboard; an action with a topic is the help
// file that is opened on it; any other is the address of a page. An empty one does nothing, so its button is disabled.
struct AboutButton {
    std::string caption, action, topic;
};
using AboutButtons = std::vector<AboutButton>;

// A list of buttons of pairs of caption and action, from the left.
AboutButtons TBUTTONS(std::initializer_list<AboutButton> pairs);

// The report of the system, one name, " = " and value a line: always all names, in one order. A value of more than `width`
// bytes is cut there; one that is a path is shortened as FILESHORTENNAME does.
std::string ABOUTDIALOGINFO(int width);

// Shows the box and returns when it is closed.
void ABOUTDIALOG(const std::string& caption, const std::string& icon, const std::string& text,
                 const AboutButtons& buttons);

}  // namespace tarn
