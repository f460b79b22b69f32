// SPDX-License-Identifier: GPL-3.0-or-later
//
// The File menu.
#pragma once

#include "kernel/windows/windowing.h"

#include <string>

namespace tarn {

void DO_NEW_TEXTFILE(const Object& codeLabel);
void DO_NEW_CLASS(const Object& codeLabel);
void DO_NEW_PROGRAM(const Object& programLabel, const Object& codeLabel);
void DO_OPEN(std::string name, const Object& programLabel);  // an empty name asks for one
void DO_SAVE();
void DO_SAVE_AS();
void DO_SAVE_ALL();
void DO_CLOSE_ALL();
void DO_CLOSE(const std::string& name);
void DO_MRU(const Object& first, const Object& last, const std::string& file, const Object& programLabel);
void DO_OPEN_EXAMPLES(const std::string& title, const Object& programLabel);
void DO_PRINT();                                   // the window that was active last, if it has a text
void DO_PRINTER_SETUP(const Object& printerName);  // the label with the name of the printer
void DO_EXIT();
// Unloads every window but Main; false when one of them stayed because the user chose Cancel.
bool CLOSEALL();

}  // namespace tarn
