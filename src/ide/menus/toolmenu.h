// SPDX-License-Identifier: GPL-3.0-or-later
//
// The Tools menu.
#pragma once

namespace tarn {

// Asks for a data file and shows its rows. The settings of delimited text are asked for first.
void DO_EXPLORE_DB();
// Asks for a bitmap and shows it as a text for a source.
void DO_CONVERT_BMP();

}  // namespace tarn
