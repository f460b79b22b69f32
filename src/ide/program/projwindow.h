// SPDX-License-Identifier: GPL-3.0-or-later
//
// The Program Window as a store: what the program is made of, as rows of one level of children. Four controls hold all
// of it, and are read at each use:
//
//   Mainfile    Label, hidden      the full path of the program's main file
//   Iconlist1   Iconlist           the rows on screen
//   Maplist1    Iconlist, hidden   for each row the number of its item
//   Datalist1   Iconlist, hidden   the items of the whole list (projlist.h)
//
// A window that lacks one of them, or has one of another type, counts as empty: nothing happens then, and results are
// those of no row. Rows and items count from 1.
//
// Cost: opening and refreshing run the make tool and read the resource files; the other operations read the items that
// they pass, some microseconds each.
#pragma once

#include "ide/program/projlist.h"
#include "ide/shell/windows.h"
#include "kernel/windows/windowing.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace tarn {

// ---- the window ----

// Shows the program of a main file. A dependency list that fails is told and closes the window. `label` gets the main
// file if it is a Label.
void PROJECTOPEN(const Object& window, const std::string& caption, const std::string& mainFile,
                 const Object& label = {});
void PROJECTCLOSE(const Object& window);
// Reads everything again; a row at the same place is selected. Beeps if the window is not loaded; a dependency list
// that fails is told, and the rows stay.
void PROJECTREFRESH(const Object& window);
// The same with a place to select; the error of the dependency list, which nobody is told then.
[[nodiscard]] std::string PROJECTRELOAD(const Object& window, const ProjectPlace& place);
std::string PROJECTGETMAINFILE(const Object& window = ProjectEditorDlg);  // empty if it is not loaded

// The error handler of modules that work on the open program: a make tool that cannot be asked (901 to 909) and a file that
// cannot be read or written (651 to 659) are told in a box, and the environment goes on; all else is IDE_ONERROR's.
void PROJECT_ONERROR(std::int32_t code);

// ---- rows ----

struct ProjectRow {
    int row = 0, number = 0;  // of the row and of its item; 0 if nothing is selected
    ProjectItem item;
};
ProjectRow PROJECTITEMINFO(const Object& window);               // the selected row
ProjectRow PROJECTITEMAT(const Object& window, int row);        // any row
ProjectPlace PROJECTITEMGETPOS(const Object& window, int row);  // 0, 0 for what is no row
// The class that owns the row: the nearest one above it, or the row itself; empty if there is none.
std::string PROJECTITEMGETPARENT(const Object& window, int row);
// Opens or closes the item of a row; false if it has no children.
bool PROJECTITEMSELECT(const Object& window, const Object& iconlist, int row);
bool PROJECTITEMISOPEN(const Object& window, int row);  // its children are shown

// The files of the top items, one a line. One that does not exist is a broken promise (687).
std::string PROJECTGETLIST(const Object& window);
// The same of those that exist, for commands that mend a program of which a file has gone.
std::string PROJECTGETFILES(const Object& window);

// ---- filling ----

// Puts new items, one a line, in place of the old ones and selects.
void UPDATEPROJECTWINDOW(const Object& window, const std::string& mainFile, std::string_view items,
                         const ProjectPlace& place);
// Makes the rows of the items: the top ones, and the children of top item `place.top` if `place.sub` is above 0. The
// number of those children.
int UPDATEITEMS(const Object& iconlist, const Object& maplist, const Object& datalist,
                const ProjectPlace& place);

}  // namespace tarn
