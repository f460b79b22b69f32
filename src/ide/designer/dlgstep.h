// SPDX-License-Identifier: GPL-3.0-or-later
//
// What the dialog editor's window holds, and the two ways by which it changes: every change of the lists is part of a
// step, and every change of the selection goes through SELECTOBJECTS.
//
// All of these work on the window DialogDlg. While it is not loaded the texts are empty, and nothing changes.
// Cost: a step copies the lists twice.
#pragma once

#include "kernel/windows/windowing.h"

#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace tarn {

inline constexpr const char* DialogEditorTitle = "Dialog Editor";

// ---- what the window holds ----

// A control of the editor's window, and the caption of one.
Object DESIGNCONTROL(std::string_view name);
std::string DESIGNTEXT(std::string_view label);
void SETDESIGNTEXT(std::string_view label, std::string_view text);
// A label of numbers, parted by blanks; what is no number ends them.
std::vector<int> DESIGNNUMBERS(std::string_view label);
void SETDESIGNNUMBERS(std::string_view label, const std::vector<int>& numbers);

// The two lists. An entry is a property list without the LF at its end, which it has everywhere else.
Object DATALIST();
Object MENULIST();
std::string DESIGNITEM(int index);  // item n of datalist, or -1 item 1 of menulist, with LF; else empty
std::string GETDESIGNITEM(const Object& list, int item);  // with LF
void SETDESIGNITEM(const Object& list, int item, std::string properties);
void ADDDESIGNITEM(const Object& list, std::string properties);

// Shows a topic of the help.
void DESIGNHELP(const std::string& helpFile, const std::string& helpKey);

// ---- changes ----

// The lists as they stand.
struct DesignLists {
    std::vector<std::string> dialog, menu;
    int selection = 0;
    std::vector<int> others;  // that are selected beside it
    friend bool operator==(const DesignLists&, const DesignLists&) = default;
};
DesignLists DESIGNLISTS();

// Runs what one action of the user does to the lists. If they differ afterwards the locks follow their objects, the dialog
// is marked as changed, the history notes the step, and the result is true; the caller redraws. A step within a step is part
// of it. False also where the action has closed the editor or opened another dialog.
bool DESIGNSTEP(const std::function<void()>& action);
bool INDESIGNSTEP();

// ---- the selection ----

int SELECTEDOBJECT();          // as hilite1 has it
void SELECTOBJECT(int index);  // and nothing else; without a redraw; tells screen readers
// All that is selected: first what hilite1 has, then those of hilites, each once and there. Several are controls alone:
// the dialog, the menu and nothing stand by themselves. Empty if nothing is selected.
std::vector<int> SELECTEDOBJECTS();
void SELECTOBJECTS(const std::vector<int>& indexes);  // of several, what is no control is left out
std::string OBJECTTITLE(int index);                   // "name:type"; empty if there is no such object

}  // namespace tarn
