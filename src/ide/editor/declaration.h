// SPDX-License-Identifier: GPL-3.0-or-later
//
// The way from a name to its declaration, and back. The last places that were left so are kept.
#pragma once

#include "kernel/windows/windowing.h"

namespace tarn {

// Selects the declaration of the name at the caret: in the open class, or in a used one, which is opened in its place
// (the user is asked about changes). Of a name of the library its help is shown. False if there is none; `quiet`: that
// is not told.
bool GOTODECLARATION(const Object& window, bool quiet);
// To the place that was left last, in its file; tells when there is none. If the user keeps the window's text instead, the
// place is not forgotten.
void GOBACK(const Object& window);

}  // namespace tarn
