// SPDX-License-Identifier: GPL-3.0-or-later
//
// The files of a program as the make tool knows them, in a list: what it is compiled from, and what must be handed on with
// it. A chosen line goes to the clipboard. Cost: a run of the make tool.
#pragma once

#include <string>

namespace tarn {

void SHOWINPUTFILES(const std::string& title, const std::string& mainFile);
void SHOWOUTPUTFILES(const std::string& title, const std::string& mainFile);

}  // namespace tarn
