// SPDX-License-Identifier: GPL-3.0-or-later
#include "ide/editor/sourcefile.h"

#include "ide/editor/textedit.h"
#include "ide/shell/windows.h"
#include "library/system/system.h"
#include "os/files.h"

MODULE("textedit")

namespace tarn {

std::string TWINFILE(const std::string& file, std::string_view extension) {
    FRAME(TWINFILE);
    STAMP();
    if (file.empty() || STREQUAL(FILEGETEXT(file), extension)) return file;
    std::string twin = FILECHANGEEXT(file, extension), upper = FILECHANGEEXT(file, STRUPPER(extension));
    STAMP();
    return FileSize(twin) < 0 && FileSize(upper) >= 0 ? upper : twin;
}

bool ISINEDITOR(const std::string& file) {
    FRAME(ISINEDITOR);
    STAMP();
    const std::string shown = EDITWNDGETFILENAME(SDIEdit);
    if (shown.empty() || shown == file || !FILECHK(shown)) return !shown.empty() && shown == file;
    const os::FileInfo one = os::infoOf(os::native(shown)), other = os::infoOf(os::native(file));
    return one.exists && other.exists && one.device == other.device && one.inode == other.inode;
}

bool HASNAMEINEDITOR(const std::string& file) {
    FRAME(HASNAMEINEDITOR);
    STAMP();
    const std::string shown = EDITWNDGETFILENAME(SDIEdit);
    if (!STREQUAL(shown, file)) return false;
    return shown == file || FileSize(shown) < 0 || FileSize(file) < 0 || ISINEDITOR(file);
}

}  // namespace tarn
