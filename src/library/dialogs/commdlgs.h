// SPDX-License-Identifier: Apache-2.0
//
// Dialogs that programs share. Each stands in the program's own resources, so that a program gives it its own looks.
//
// The splash window `SplashDlg` is a picture with lines of text over it and, if wanted, a row of push buttons. Its
// resource holds the push buttons "pushbutton1", "pushbutton2" and so on, in one row, and the hidden label
// "lblselectedbutton", which keeps the caption of the button that was pressed. A program that wants another splash
// window than SPLASHDLG_SHOWWITHBUTTONS makes calls the steps itself, in the order in which they stand here. Cost: the
// reading of the picture, and a dozen measures for each line of text.
#pragma once

#include "kernel/windows/windowing.h"

#include <string>

namespace tarn {

inline const Object SplashDlg("SplashDlg");

// The splash window over "logo.bmp" of the application's folder with the product's name and version.
//
// Without `buttons` it is non-modal and the call waits up to 3 seconds, which a click or a key ends. With them, a
// caption on each line, it is modal, and the caption of the button pressed comes back; empty if the user left with Esc.
// A caption that begins with "*" stands on a button that cannot be pressed. Both ways the window stays loaded until
// SPLASHDLG_UNLOAD. Without a screen nothing is waited for.
std::string SPLASHDLG_SHOWWITHBUTTONS(const std::string& buttons);

// Loads the window, or clears one that is loaded, and gives each push button its line of `captions`. A button without
// a caption is hidden; captions without a button are left out.
void SPLASHDLG_LOAD(const std::string& captions);
// Gives the window the size of the picture file, in the middle of the screen, and draws the picture on it; 0xFF00FF is
// transparent. Where an SVG file of the same name lies beside it, that is drawn in the same size, sharp on every
// screen. Without a picture that can be read the window keeps its size and has a plain ground.
void SPLASHDLG_DRAWBMP(const std::string& file);
// Up to three lines, one below the other, each as large as it fits.
void SPLASHDLG_SPLASHTEXT(const std::string& line1, const std::string& line2, const std::string& line3);
// One text with its upper left corner at x, y, between StartGraph and EndGraph of the window and in the font that it
// has then. Colour: 0xBBGGRR.
void SPLASHDLG_DRAWTEXT(const std::string& text, int x, int y, int colour);
// A modal window gives the caption of the button that was pressed, any other an empty text.
std::string SPLASHDLG_SHOW(bool modal);
// Does nothing if the window is not loaded.
void SPLASHDLG_UNLOAD();

// The largest size in points, from 1 to 144, in which `text` is no wider and no higher than that, in pixels, in the
// font of the window; 1 if it is too large in any.
int GETBIGGESTFONTSIZE(const Object& window, const std::string& text, int width, int height);

}  // namespace tarn
