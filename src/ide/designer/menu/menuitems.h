// SPDX-License-Identifier: GPL-3.0-or-later
//
// What the menu editor does with the items of a menu. They stand in two lists of the window MenuEditDlg, which are kept
// in step: `data1` holds the property lists, `listbox1` shows them. There is no other store. Rows count from 1; row 0 is
// none. The menu's own property list is in neither.
//
//   edit1 to edit4   CAPTION, CHECKED, ENABLED and NAME of the current item
//   label5           the last action, as text
//   label6           the row of which the edits show the values; 0 or less for none
//   checkbox1        whether anything has changed
//
// Only these four properties and POSITION are ever written; all others of an item stay as they are. What is wrong is
// told in a box. Cost: each operation on a row is constant, but that names are compared with all others.
#pragma once

#include "kernel/windows/windowing.h"

#include <string>
#include <string_view>
#include <vector>

namespace tarn {

// False: the list shows the property lists as they are.
inline bool MENUITEMVIEW = true;
// The item as the list shows it: three dots for each level, then its caption; dashes for a separator.
std::string PROPLISTTOLISTITEM(std::string_view list);
// `items` has the menu in front of the rows.
void SETMENUINFO(const Object& listbox, const Object& dataList, const std::vector<std::string>& items);
// Replaces all behind the first; each then ends with LF.
void GETMENUINFO(const Object& listbox, const Object& dataList, std::vector<std::string>& items);

// Into the edits; those of no row are empty, and not checked, and enabled.
void SHOWMENUITEMPROPS(int row);

struct MenuItemCheck {
    std::string caption, checked, enabled, name;
    bool ok = false;
};
// Reads the edits and tells what is wrong with them, were they those of the row (-1: of a new one).
[[nodiscard]] MenuItemCheck CHECKMENUITEMPROPS(int row);
// False if the edits are wrong. True, and nothing is stored, where there is no such row.
[[nodiscard]] bool STOREMENUITEMPROPS(int row);
// Makes an item of the edits in front of the row, behind the last one without a row, and selects it.
void ADDMENUITEMPROPS(int row);
// The row that takes its place is selected and shown.
void DELETEMENUITEMPROPS(int row);
// By the caption of the button that was pressed.
void MOVEMENUITEMPROPS(int row, std::string_view caption);
// Puts right what cannot be a tree, and looks for items without a name. False if there is one; it is selected.
[[nodiscard]] bool PROCESSMENUITEMPROPS(const Object& dataList);

// Selects the row and remembers it in label6.
void SELECTMENUITEM(int row);

// The text without any of the characters.
std::string STRDELCHARS(std::string_view text, std::string_view characters);

}  // namespace tarn
