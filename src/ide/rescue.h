// SPDX-License-Identifier: GPL-3.0-or-later
//
// Rescue of unsaved text. Before a halt that an error causes, the changed text of the Code window goes to the
// rescue folder: `NAME.PID.text` with the bytes and `NAME.PID.name` with the full path of its file. The next start
// offers each of them; what the user leaves stays for the start after that.
#pragma once

namespace tarn {

void RESCUETEXT();         // works on the object model alone, so it may run after a fault
void OFFERRESCUEDTEXT();

}  // namespace tarn
