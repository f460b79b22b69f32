// SPDX-License-Identifier: GPL-3.0-or-later
//
// The Program menu.
#pragma once

namespace tarn {

void DO_EDIT_PROPERTIES();
void DO_REFRESH();
void DO_COPY_EXE();

}  // namespace tarn
