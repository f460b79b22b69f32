// SPDX-License-Identifier: Apache-2.0
//
// The property sheet: one window that edits any set of properties, each by its options text (propedit.h), and
// the windows in which a value is chosen.
//
// The windows come from the resources of the application:
//
//   propertiesdlg    control arrays with one member for each row, named by their first members lblname1,
//                    edtvalue1, btndrop1, edtoptions1 (hidden) and linerow1; shpframe around the rows, shpcolumn1
//                    and shpcolumn2 between their columns; the hidden labels lbltitle, lblhelpfile and
//                    lblhelpkey; idok, idcancel and idhelp
//   colorboxdlg      btncolour1, an array of 16 in rows of eight; shpmark; the hidden label lblcolour
//   exclusiveboxdlg  lstoptions
//   inclusiveboxdlg  chkoption1, an array; idok and idcancel
//
// A sheet shows as many rows as the arrays have; what is behind them keeps its value.
#pragma once

#include "kernel/windows/windowing.h"

#include <string>
#include <string_view>

namespace tarn {

inline const Object PropertiesDlg("propertiesdlg");
inline const Object ColorBoxDlg("colorboxdlg");
inline const Object ExclusiveBoxDlg("exclusiveboxdlg");
inline const Object InclusiveBoxDlg("inclusiveboxdlg");

// Shows the properties; names, options and values have one line for each. On OK `values` has the new ones and
// the result is true; otherwise it stays. A value that its options do not allow is shown as their default.
// The keys: Up and Down step through a list of choices, F4 opens it, F1 is help.
[[nodiscard]] bool PROPERTIESDIALOG(const std::string& title, const std::string& helpFile,
                                    const std::string& helpKey, std::string_view names,
                                    std::string_view options, std::string& values);
bool PROPERTIESDLG(const Object& window, int event, const Object& control, int parameter);

// Brings the values of all visible rows to the form in which they are stored, and checks them, given any
// member of each array. The first that is wrong is told in a box, and its row is the result; 0 if none is.
[[nodiscard]] int CHECKALLVALUES(const Object& labels, const Object& edits, const Object& options);

// Whether there is something to choose from: colours, files, folders, a list.
bool EXTRAPROPS(std::string_view options);
// Lets the user choose, in a window with that title, near x and y on the screen. The choice goes to `value`,
// which else stays. False where there is nothing to choose from.
bool EXTRAPROPS(std::string_view options, const Object& window, int x, int y, const std::string& title,
                std::string& value);

bool COLORBOXDLG(const Object& window, int event, const Object& control, int parameter);
bool EXCLUSIVEBOXDLG(const Object& window, int event, const Object& control, int parameter);
bool INCLUSIVEBOXDLG(const Object& window, int event, const Object& control, int parameter);

}  // namespace tarn
