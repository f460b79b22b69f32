// SPDX-License-Identifier: Apache-2.0
//
// Printing the text of a window, and choosing a printer.
#pragma once

#include "kernel/windows/windowing.h"

#include <string>

namespace tarn {

// Asks for a printer and prints the text of an edit window, or what is marked in it if the user wants that, in the
// window's font, or in Courier New of 10 points if it names none. Each page begins with the window's caption and the
// page's number, long lines go on below themselves. `printer` is the one that is chosen at first, empty: the system's
// default one. For the printer to a file a file is asked for, which is written whole or not at all.
//
// Nothing to print, a printer that fails and pages that the text does not have are told in a box. A long text shows how
// far it is, and can be stopped; then nothing comes of it. True if it has been printed.
bool PRINT(const Object& window, const std::string& printer = {});

// Asks for the PDF file that pages go to, and before one without the extension is replaced. The file without its
// extension, which the printer adds; empty if the user wants none.
std::string PRINTFILEDIALOG(const std::string& proposed);

// The name of the printer that the user chose out of a list; empty if none.
std::string PRINTERSETUPDIALOG();

}  // namespace tarn
