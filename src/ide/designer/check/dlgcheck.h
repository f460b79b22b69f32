// SPDX-License-Identifier: GPL-3.0-or-later
//
// The dialog check: reads a dialog as its users will and tells what gets in their way. It looks at the property lists
// and at the widths of texts alone, and changes nothing.
//
//   keys      a mnemonic that is missing or that two have, in the dialog and in each level of its menu; no default button
//   order     a control that comes in the tab order behind one that is read after it
//   room      a caption that is cut off at 100, 150 or 200 %, or in a font a step larger; controls that cover each other
//             or reach out of the client area
//   reading   fields without a label before them, pictures without a name, colours without contrast
//
// What is not visible at first is not looked at, for a program may show it anywhere, and neither is a caption that the
// program sets.
#pragma once

#include "kernel/windows/resources.h"
#include "kernel/windows/windowing.h"

#include <string>
#include <vector>

namespace tarn {

inline const Object DlgCheckDlg("DlgCheckDlg");

struct DialogFinding {
    bool inMenu = false;  // the object is an item of the menu
    int index = 0;        // of its list, from 1, where the dialog and the menu stand
    std::string text;     // what is wrong, and what to do
    std::string repair;   // the property list that puts it right; empty where none is safe
};
// In the order of the objects, the menu behind the dialog. Texts are measured in `window`, a dialog; while it is not
// loaded, no caption is cut off. Cost: grows with the square of the number of controls.
std::vector<DialogFinding> CHECKDIALOG(const Object& window, const ObjectArray& dialog,
                                       const ObjectArray& menu);

// Shows the findings in the dialog that is open in the dialog editor; beeps without one.
void CHECKDIALOGDLG();
bool DLGCHECKDLG(const Object& window, int event, const Object& control, int parameter);

}  // namespace tarn
