// SPDX-License-Identifier: GPL-3.0-or-later
//
// Controls as they stand on the clipboard: a line that tells what the text is, and a dialog of the resource text that holds
// them. So they can be read by people, and pasted by another copy of the environment.
//
// What comes from a clipboard may be anything. Only a text that this module could have written gives controls, each of which
// a resource file can hold; their names may be taken or bad, and their positions anywhere.
// Cost: linear in the text.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace tarn {

inline constexpr std::string_view ClipHead = "// Controls of a dialog, for the dialog editor";

struct ClipControls {
    std::vector<std::string> lists;  // property lists, each with LF at its end
    std::string fault;               // why there are none
};

// With CR LF, as all that is put onto the clipboard. Empty if a control cannot stand in a resource file.
std::string CONTROLSTEXT(const std::vector<std::string>& lists);
ClipControls TEXTCONTROLS(const std::string& text);
// What a resource file makes of controls; none if it cannot hold them.
std::vector<std::string> STOREDCONTROLS(const std::vector<std::string>& lists);

}  // namespace tarn
