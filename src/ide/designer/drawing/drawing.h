// SPDX-License-Identifier: GPL-3.0-or-later
//
// The picture of a dialog: painted from its property lists on the window of the dialog editor, never made of real
// controls. It shows what the running window will show: fonts, colours and pictures of the dialog, in the desktop's own
// style (dlgdraw.h).
//
// Errors: what cannot be read is a default (a list without POSITION has no size and does not show), and a picture that is
// not there is a crossed box with its name; a window that is not loaded sets the error cell. Cost: a redraw of 255
// controls of which few have changed takes less than 255 plain widgets take to paint; the first one makes their widgets and
// takes some three times as long as making plain ones.
#pragma once

#include "ide/designer/drawing/geometry.h"
#include "kernel/windows/resources.h"

#include <string>
#include <vector>

namespace tarn {

struct DesignPicture {
    ObjectArray dialog, menu;
    std::string grid;  // width and height in resource units; "0 0" draws none
    Margin margin;
    int mode = FULL_FRAME;
    bool link = false;                  // the window takes the size of the picture
    int mostWidth = 0, mostHeight = 0;  // of its client area then; 0: no limit
    Rect corner;  // pixels of the window that its scroll bars leave free, and nothing shows
    std::string resourceFolder, compilerFolder;  // of pictures' paths
    int selection = 0;                           // as GETCLICKINDEX has it
    std::string resourceFile;                    // that declares pictures by name; empty: they are paths
    std::vector<int> others;                     // controls that are selected too
    std::vector<int> locked;                     // these have a mark
    std::vector<int> tabOrder;  // if not empty, controls show their places in it, and no handles
    std::size_t clicked = 0;    // how many of these places the user has chosen already
    bool running = false;  // as its program shows it, on the desktop's ground: without what only a design has
    int largerFont = 0;    // points by which its letters are larger
};
// The window, which may be an image as well, has the dialog's font from then on: all measures go by it. A scale and colours
// of its own (kernel/windows/drawscale.h) hold for the picture.
void DRAWWINDOW(const Object& window, const DesignPicture& picture);
// Without drawing: the font, and the size of the picture in pixels of the screen, which the window takes if it is linked.
void USEDESIGNFONT(const Object& window, const DesignPicture& picture);
Rect FITDESIGN(const Object& window, const DesignPicture& picture);

}  // namespace tarn
