// SPDX-License-Identifier: GPL-3.0-or-later
//
// The examples that are installed beside the environment.
#pragma once

#include <string>

namespace tarn {

// Browses the examples, and opens or runs the one that the user chooses. Where they cannot be written the user is asked
// whether to work on a copy, since a program is built beside its class.
void BROWSEEXAMPLES(const std::string& title);

// Opens the main file of an example, asking about a copy as above. The title is that of the questions.
void OPENEXAMPLE(const std::string& title, const std::string& file);

}  // namespace tarn
