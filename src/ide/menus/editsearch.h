// SPDX-License-Identifier: GPL-3.0-or-later
//
// The searches of the Edit menu. Each keeps its choices in the settings, so that the next one begins with them.
#pragma once

namespace tarn {

void DO_FIND();
void DO_FIND_NEXT();
void DO_REPLACE();
void DO_FIND_MARKS();
void DO_FIND_FILES();
void DO_REPLACE_FILES();

}  // namespace tarn
