// SPDX-License-Identifier: GPL-3.0-or-later
//
// The View menu.
#pragma once

#include "kernel/windows/windowing.h"

#include <string_view>

namespace tarn {

void DO_LINE();
void DO_FUNCTION_LIST();
void DO_BROWSE_INFO();
void DO_ERRORS();
// Brings the Program Window forward; without one opens it for the main class in the Code window.
void DO_PROGRAM_WINDOW(const Object& programLabel);
void DO_DECLARATION();
void DO_BACK();
void DO_COMPLETE();
void DO_FOLD_ALL(bool folded);
void DO_LOOK(std::string_view setting);  // of the section EditorOptionsDlg
void DO_TAB_WIDTH(int columns);
void DO_ZOOM(int points);  // 0: the size of the font; the design has steps of its own
void DO_LINE_ENDS(int ends);
void DO_TOOLBOX(const Object& menuItem);  // shows or hides it; a sound without a dialog
void DO_PROPERTY_WINDOW();                // the same of the Properties window
void DO_STD_TOOLBAR(const Object& mainWindow, const Object& label, const Object& menuItem);

}  // namespace tarn
