// SPDX-License-Identifier: GPL-3.0-or-later
//
// The picture of a dialog: painted from its property lists on the window of the dialog editor, never made of real
// controls. It shows what the running window will show.
#pragma once

#include "ide/designer/geometry.h"
#include "kernel/windows/resources.h"

#include <string>

namespace tarn {

struct DesignPicture {
    ObjectArray dialog, menu;
    std::string grid;  // width and height in resource units; "0 0" draws none
    Margin margin;
    int mode = FULL_FRAME;
    bool link = false;  // the window takes the size of the picture
    std::string resourceFolder, compilerFolder;  // of pictures' paths
    int selection = 0;  // as GETCLICKINDEX has it
};
void DRAWWINDOW(const Object& window, const DesignPicture& picture);

}  // namespace tarn
