// SPDX-License-Identifier: GPL-3.0-or-later
//
// The preview of a design: the dialog as its program's window looks on another desktop, a light or a dark one, at 100, 150
// or 200 %, in its own font or one that is a step larger. The design stays as it is, and its window too.
//
// The preview is a picture, drawn as the design is (drawing.h), in a window of its own. Cost: a redraw with each choice.
#pragma once

#include "kernel/windows/windowing.h"

namespace tarn {

inline const Object PreviewDlg("PreviewDlg");

void SHOWPREVIEW();  // of the dialog that is open in the dialog editor, until the user closes it; beeps without one
bool PREVIEWDLG(const Object& window, int event, const Object& control, int parameter);

}  // namespace tarn
