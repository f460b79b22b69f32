// SPDX-License-Identifier: GPL-3.0-or-later
//
// The packager: the window that hands the output files of a program to its users, on floppy disks, in a folder, in a zip
// file, as an installer or as a Debian package (library/ship/copyutil.h does it), and proves what was made. The main class and the list stand in the window.
//
// The folder that stands for the floppy disk drive is the setting PackagerDlg/FloppyFolder; FloppyCapacity and FloppyUnit
// are the bytes of a disk and of its allocation unit. Without a folder the user is asked for it, once.
#pragma once

#include "kernel/windows/windowing.h"

#include <string>

namespace tarn {

inline const Object PackagerDlg("PackagerDlg");

bool PACKAGERDLG(const Object& window, int event, const Object& control, int parameter);
// `files` has a line for each file: its path, which ends at the first tab, and whatever else; `text` tells what the files
// are. Returns when the window is closed.
void PACKAGERDIALOG(const Object& owner, const std::string& mainClass, const std::string& files,
                    const std::string& text);

// A row for each file, with its size and a tick, or a cross for one that does not exist.
void LISTBOXADDFILES(const Object& control, const std::string& files);
int LISTBOXCOUNTFILES(const Object& control);

// Program-Copy EXE File: the output files of the main class, brought up to date if the user wants that.
void COPYEXE(const std::string& title, const std::string& mainClass);
// The files of the run-time library that a program needs beside it and that are not in the list, one a line.
std::string GETLIBRARYFILES(const std::string& files);

}  // namespace tarn
