// SPDX-License-Identifier: GPL-3.0-or-later
//
// The error window: the compiler's messages, or other lines in their form, as plain text. A double click or Return on a
// message opens the source at its line; F1 opens help on its number, or on the list of hits where that is shown.
#pragma once

#include "kernel/windows/windowing.h"

#include <string>
#include <string_view>

namespace tarn {

inline constexpr std::string_view FoundTitle = "Find in Files";
inline constexpr const char* ErrorsTitle = "View Errors";

bool VIEWDLG(const Object& window, int event, const Object& control, int parameter);
void VIEWDIALOG(const std::string& title, const std::string& file, const std::string& fontName, int fontSize);
// The same with a text that stands in no file, in the font of the Code window.
void VIEWTEXT(const std::string& title, const std::string& text);

}  // namespace tarn
