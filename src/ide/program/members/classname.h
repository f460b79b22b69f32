// SPDX-License-Identifier: GPL-3.0-or-later
//
// Why a file cannot be a class of a program by its name.
#pragma once

#include <string>

namespace tarn {

// What is wrong with a name for a class, as a sentence; empty if it is one (ISNAME).
std::string NAMEFAULT(const std::string& stem);

}  // namespace tarn
