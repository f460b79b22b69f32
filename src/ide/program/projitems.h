// SPDX-License-Identifier: GPL-3.0-or-later
//
// The commands on the selected row of the Program Window.
#pragma once

#include "kernel/windows/windowing.h"

namespace tarn {

// Opens the row in the editor of its kind: a class or a text in the Code window, a dialog in the dialog editor, a version
// block as the properties of the program, a picture in the system's paint program. What has no editor is told. Beeps if
// nothing is selected.
void PROJECTITEMEDIT(const Object& window);

}  // namespace tarn
