// SPDX-License-Identifier: GPL-3.0-or-later
//
// Rescue of unsaved text. Before a halt that an error, the end of the session or the loss of the screen causes,
// the changed text of the Code window goes to the rescue folder: `NAME.PID.name` with the full path of its file
// and then `NAME.PID.text` with the bytes. A changed dialog goes there as the text of its resource file with the changes in
// it. The next start offers each pair, and each copy that an interrupted save has left there; what the user leaves
// stays for the start after that. A restored text keeps its pair until it has been saved or thrown away.
#pragma once

#include <string>

namespace tarn {

void RESCUETEXT();        // of the Code window and of the dialog editor, two files for each that is changed
bool OFFERRESCUEDTEXT();  // true if the Code window holds one of the texts now
void DROPRESCUEDTEXT(const std::string& file);  // the pairs of this file, which is saved or was given up

}  // namespace tarn
