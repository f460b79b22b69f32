// SPDX-License-Identifier: GPL-3.0-or-later
#include "ide/designer/dlgdisk.h"

#include "kernel/windows/resources.h"
#include "library/designer/proputil.h"
#include "library/system/system.h"
#include "os/files.h"

MODULE("dlgedit")

namespace tarn {
namespace {

struct Seen {
    std::string file, dialog;
    os::FileInfo info;
    std::string content;
    bool removed = false;  // by a command of the environment
};

Seen& seen() {
    static Seen last;
    return last;
}

std::string joined(const ObjectArray& objects) {
    std::string text;
    for (const std::string& one : objects) text += one;
    return text;
}

// All properties of the dialog and its menu; empty if the dialog is not there.
std::string contentOf(const std::string& file, const std::string& dialog) {
    ObjectArray objects, menu;
    if (!ResourceRead(file, dialog, objects).empty()) return {};
    const std::string name = GETPROPVALUE(objects[0], "MENU");
    const bool hasMenu = !name.empty() && ResourceRead(file, name, menu).empty();
    return joined(objects) + (hasMenu ? "\n" + joined(menu) : "");
}

}  // namespace

void NOTEDIALOGSEEN(const std::string& file, const std::string& dialog) {
    FRAME(NOTEDIALOGSEEN);
    STAMP();
    seen() = {file, dialog, os::infoOf(os::native(file)), contentOf(file, dialog), false};
}

void NOTEDIALOGREMOVED(const std::string& file, const std::string& dialog) {
    FRAME(NOTEDIALOGREMOVED);
    if (seen().file == file && STREQUAL(seen().dialog, dialog)) seen().removed = true;
}

DialogOnDisk DIALOGONDISK(const std::string& file, const std::string& dialog) {
    FRAME(DIALOGONDISK);
    STAMP();
    const Seen& last = seen();
    if (last.file != file || !STREQUAL(last.dialog, dialog)) return DialogOnDisk::AsSeen;
    const os::FileInfo now = os::infoOf(os::native(file));
    if (!now.exists) return DialogOnDisk::FileMissing;
    if (now.modified == last.info.modified && now.size == last.info.size) return DialogOnDisk::AsSeen;
    const std::string content = contentOf(file, dialog);
    if (content.empty()) return last.removed ? DialogOnDisk::Removed : DialogOnDisk::Missing;
    return content == last.content ? DialogOnDisk::AsSeen : DialogOnDisk::Changed;
}

}  // namespace tarn
