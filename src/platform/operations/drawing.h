// SPDX-License-Identifier: Apache-2.0
//
// Windowing operations: drawing on a window or an image between StartGraph and EndGraph, printing between
// StartPrint and EndPrint, and picture values.
//
// What is drawn on a window goes into a picture that stands behind its controls. EndGraph brings it to the
// screen; it stays when the window is covered or shown again, and until `Clear`. Coordinates are pixels of the client area
// from the origin of StartGraph, on a printer dots of the printable area.
//
// Fonts and colours are the object's own when drawing starts. What is set meanwhile holds for the drawing
// alone: EndGraph and EndPrint put the object's own back. Lines, outlines and texts take the fore colour,
// fills and the ground of texts the back colour, where -1 fills nothing.
//
// Without a screen nothing shows, but what is started and where the current point stands is kept. 709: the
// object cannot be drawn on, or drawing was not started. 710: no such picture.
#pragma once

#include "platform/object.h"

namespace tarn::platform {

Code StartGraph(const Object& object, int x = 0, int y = 0);  // the origin; the current point is there
Code EndGraph(const Object& object);

Code DrawLine(const Object& object, int x1, int y1, int x2, int y2);  // both ends are drawn
Code DrawPoint(const Object& object, int x, int y);
Code DrawShape(const Object& object, ShapeKind kind, int x, int y, int w, int h);
// At the current point, which is the upper left corner of the text and stands below it afterwards. Tabs go to
// the next column that is a multiple of 4. A printer breaks lines that are too wide and begins a new page
// where a line has no room.
Code DrawTextstr(const Object& object, std::string_view text);
// A picture by name (see GetPicture) or value. A size of 0 is the picture's own. The colour 0xFF00FF of a
// bitmap is transparent.
Code DrawPicture(const Object& object, std::string_view picture, int x, int y, int w = 0, int h = 0);
Code DrawPicture(const Object& object, const Picture& picture, int x, int y, int w = 0, int h = 0);
Code DrawWindow(const Object& object, const Object& window);  // its client area, at the current point
// A control as a window would show it, from its property list, with the font of the drawing for its window's. Other than
// in a real one, scroll bars stand as SCROLLBARS tells, one that is not VISIBLE is faint, and for a picture that is not
// there stands a crossed box with its name. Lines of the list that tell of its window: MENU, that there is one, which makes
// bitmap buttons flat; BUDDY, that the mnemonic of a label leads to a control; GROUND, that the window's ground covers what
// was drawn; RUNNING, that bars stand where they are needed. A window's list draws its ground, one of no object nothing.
// Cost: that of a picture, where one of the same look was drawn before.
Code DrawControl(const Object& object, std::string_view properties, int x, int y, int w, int h);
Answer<int> GetCurrentX(const Object& object);
Code SetCurrentX(const Object& object, int x);
Answer<int> GetCurrentY(const Object& object);
Code SetCurrentY(const Object& object, int y);

// ---- pictures ----

// A picture of the resources by its name, or a BMP, ICO, PNG or SVG file. Equal pictures have one handle,
// which holds until the program ends; so loading one again costs its reading alone.
Answer<Picture> LoadPicture(std::string_view name);
// In the format that the extension tells: bmp, png, ico; svg only if it is one. 652: it cannot be written.
Code SavePicture(const Picture& picture, const std::string& file);
Answer<int> PictureWidth(const Picture& picture);
Answer<int> PictureHeight(const Picture& picture);
Answer<Picture> GetBitmapInfo(int handle);
// The face of a button: the picture of the icon file above the text, in the colours of the desktop. An icon
// file that cannot be read leaves the text alone.
Picture TBITMAP(int width, int height, std::string_view text, std::string_view iconFile);
std::string PictureName(const Picture& picture);  // by which SetPicture and AddItem know it

// ---- printing ----

// The printers of the system, the default one first, and behind them one that prints to a file: PDF, or plain
// text without a screen. An object that has been listed keeps its printer.
std::vector<Object> PrinterList();
// The document has the name that the printer's caption is. The printer to a file writes `document`.pdf in the
// current folder, or the path if it is rooted. 922: not ready; 923: it cannot be started, or is started.
Code StartPrint(const Object& printer);
Code EndPrint(const Object& printer);                 // 924: not started. 923: something could not be written
Code NewPage(const Object& printer);                  // the current point is in the corner of the new page
Answer<int> GetPage(const Object& printer);           // the number of the current page; 0 if not started
Answer<int> GetPrinterStatus(const Object& printer);  // a PrinterStatus
// The sheet of paper in dots, and where on it the printable area begins.
Answer<int> GetPhysicalWidth(const Object& printer);
Answer<int> GetPhysicalHeight(const Object& printer);
Answer<int> GetPhysicalOffsetX(const Object& printer);
Answer<int> GetPhysicalOffsetY(const Object& printer);

}  // namespace tarn::platform
