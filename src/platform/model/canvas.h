// SPDX-License-Identifier: Apache-2.0
//
// Where drawing goes: the picture behind the controls of a window, an image, or the pages of a printer. A view
// makes canvases, the model draws on them. Coordinates are pixels, on a printer dots; colours 0xBBGGRR. A fore
// colour of -1 is the desktop's, a back colour of -1 is none.
#pragma once

#include "platform/object.h"

#include <memory>
#include <string>
#include <string_view>

namespace tarn::platform {

class Window;

struct Ink {
    int fore = -1, back = -1;
};

class Canvas {
public:
    virtual ~Canvas() = default;
    virtual void line(int x1, int y1, int x2, int y2, Ink ink) = 0;  // both ends included
    virtual void point(int x, int y, Ink ink) = 0;
    virtual void shape(ShapeKind kind, const Rect& rect, Ink ink) = 0;
    virtual void text(int x, int y, std::string_view line, const Font& font,
                      Ink ink) = 0;  // upper left corner
    virtual void picture(const Rect& rect, const std::string& name) = 0;
    virtual void window(int x, int y, const Window& window) = 0;
    // A control of that property list; `font` is its window's.
    virtual void control(const Rect& rect, std::string_view properties, const Font& font) = 0;
    virtual bool newPage() { return false; }  // printers: false if it failed
    // Shows what was drawn, or ends the document. False if something could not be written.
    virtual bool finish() { return true; }
    virtual void discard() {}  // printers: ends the document, and nothing shall come of it
};

// A page of a printer, in dots.
struct Paper {
    int width = 0, height = 0;  // the printable area
    int sheetWidth = 0, sheetHeight = 0;
    int offsetX = 0, offsetY = 0;  // of the printable area on the sheet
    int dpiX = 96, dpiY = 96;
};

}  // namespace tarn::platform
