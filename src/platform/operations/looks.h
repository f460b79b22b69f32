// SPDX-License-Identifier: Apache-2.0
//
// Windowing operations: fonts and colours of windows, controls and printers. Colours are 0xBBGGRR, -1 is the
// desktop's own. A control without a font of its own has that of its window. Between StartGraph and EndGraph,
// and between StartPrint and EndPrint, they are those of the drawing (see drawing.h).
#pragma once

#include "platform/object.h"

namespace tarn::platform {

Answer<std::string> GetFontName(const Object& object);  // empty: the desktop's (fixed width in edit windows)
Code SetFontName(const Object& object, std::string_view name);
Answer<int> GetFontSize(const Object& object);  // points; 0: the desktop's
Code SetFontSize(const Object& object, int points);
Answer<bool> GetFontBold(const Object& object);
Code SetFontBold(const Object& object, bool bold);
Answer<bool> GetFontItalic(const Object& object);
Code SetFontItalic(const Object& object, bool italic);
Answer<int> GetForeColour(const Object& object);
Code SetForeColour(const Object& object, int colour);  // what is above 0xFFFFFF is cut off
Answer<int> GetBackColour(const Object& object);
Code SetBackColour(const Object& object, int colour);

}  // namespace tarn::platform
