// SPDX-License-Identifier: Apache-2.0
//
// Windowing operations: common dialogs. Each waits for the user. An owner that is named must be loaded (702);
// an empty object is no owner.
#pragma once

#include "platform/object.h"

namespace tarn::platform {

// `buttons`: a caption on each line, empty for one "OK". The answer is the caption of the button pressed,
// with its "&", or empty if the box was closed. The first button is the default one, unless `defaultButton`
// (1-based).
std::string MsgBox(const std::string& title, const std::string& text, const std::string& buttons,
                   BoxIcon icon = BoxIcon::None, int defaultButton = 1);
// The numeric form. Flags: 0 OK, 1 OK Cancel, 3 Yes No Cancel, 4 Yes No, 5 Retry Cancel; 16 error, 32
// question, 48 warning, 64 information; 256 second button default, 512 third. Answers: 1 OK, 2 Cancel, 4
// Retry, 6 Yes, 7 No.
int MsgBoxEx(const std::string& title, const std::string& text, int flags);
std::string InputBox(const std::string& title, const std::string& prompt, const std::string& value);
std::string ListBox(const std::string& title, const std::string& prompt, const std::string& rows);
// `filter` rows have the form "Text (*.ext)|*.ext|". The answer is a full path, empty on Cancel.
std::string OpenFileDialog(const std::string& title, const std::string& start, const std::string& filter);
std::string SaveAsDialog(const std::string& title, const std::string& start, const std::string& filter);
std::string OpenFolderDialog(const std::string& title, const std::string& start);
// The font or colour chosen; on Cancel the one that was given.
Answer<Font> FontDialog(const Object& owner, const Font& font);
Answer<int> ColourDialog(const Object& owner, int colour);
// `flags`: PRINT_SELECTION offers to print the selection alone. The answer's printer is empty on Cancel, and
// its flags tell what was chosen.
Answer<PrintChoice> PrintDialog(const Object& owner, int flags);

// Opens the topic `key` of a help file: with the help window, if the program has one (SetHelpViewer), else a
// page in the desktop's browser. False if neither can.
bool HtmlHelpApi(const std::string& file, const std::string& key);
using HelpViewer = bool (*)(const std::string& file, const std::string& key);
void SetHelpViewer(HelpViewer viewer);  // null: none

}  // namespace tarn::platform
