// SPDX-License-Identifier: Apache-2.0
//
// Brings the output files of a program to its users: on floppy disks, into a folder, into a zip file, as an installer or as
// a Debian package.
// `files` is a list as in copylist.h. Each command asks and tells under the caption of `owner`, shows in its label
// "lblwait", if it has one, what it is doing, and can be stopped by the user while it works. It stops at its first failure
// with a box; what stood under the name of the one file that it makes is kept then. True: all has been done.
// Ahead of any copying it refuses, with a box, files that are missing, too large or of one name, a file to be made that is one
// of them, and links in a folder under the name of a file that lead out of it.
//
// The programs that they need lie beside this one, else on PATH, as `zip.exe` or `zip`.
#pragma once

#include "kernel/windows/windowing.h"
#include "library/ship/copylist.h"
#include "library/ship/debtext.h"
#include "library/ship/issscript.h"

#include <string>

namespace tarn {

// What stands for a floppy disk drive: a folder, whose files are those on the disk.
struct FloppyDrive {
    std::string folder = "A:\\";
    std::int64_t capacity = 1'457'664;  // bytes for files on a disk of 3.5 inches
    std::int64_t allocationUnit = 512;
};
bool COPYTOFLOPPY(const Object& owner, const std::string& files, const FloppyDrive& drive = {});
bool COPYTOFOLDER(const Object& owner, const std::string& files, const std::string& folder);
// `zipFile` is proposed, the user chooses another if he likes; empty: "out.zip" in the current folder.
bool COPYTOZIP(const Object& owner, const std::string& files, const std::string& zipFile);
// Makes NAME-install.exe beside the main program, and NAME-install.iss, of which it is made.
bool COPYTOINSTALLER(const Object& owner, const std::string& company, const std::string& copyright,
                     const std::string& product, const std::string& description,
                     const std::string& versionText, const std::string& version, const std::string& iconFile,
                     const std::string& files, const std::string& mainExe);

// Makes a Debian package of the files: all of them in /usr/lib/NAME, a command, an entry for the menu, and what else a package
// has (debtext.h). `file` is proposed, the user chooses another if he likes. `icon` is a picture of the files' or another one;
// empty: none. What the program needs of the system is found by the files themselves (debdepends.h). The package takes its
// place when it is finished, and until then nothing stands there but what stood there before.
bool COPYTODEB(const Object& owner, const DebFields& fields, const std::string& copyright,
               const std::string& icon, const std::string& files, const std::string& mainExe,
               const std::string& file);

// False, and told, if a file that is to be made for the files, or beside what is made of them, is one of them.
bool ISAPART(const Object& owner, const std::string& files, const std::string& made);

// Shows a text that a double click, or Return, copies to the clipboard, and returns when the window is closed. The window
// `ScriptDlg` is an edit window in the program's resources.
void SHOWSCRIPT(const std::string& text);

}  // namespace tarn
