// SPDX-License-Identifier: GPL-3.0-or-later
#include "ide/editor/seenfile.h"

#include "os/files.h"

#include <map>

MODULE("seenfile", tarn::DefaultErrorHandler, tarn::LeaveErrors)

namespace tarn {
namespace {

struct Seen {
    std::string file;
    os::FileInfo info;   // as the window has it
    os::FileInfo asked;  // as it was when the user was asked about it, or the same
    bool nameAlone = false;
};

std::map<std::string, Seen>& seen() {
    static std::map<std::string, Seen> windows;
    return windows;
}

bool sameContent(const os::FileInfo& a, const os::FileInfo& b) {
    return a.modified == b.modified && a.size == b.size;
}

}  // namespace

void NOTEFILESEEN(const Object& window, const std::string& file) {
    FRAME(NOTEFILESEEN);
    STAMP();
    const os::FileInfo info = os::infoOf(os::native(file));
    seen()[window.window()] = {file, info, info, false};
}

void NOTEFILEUNSEEN(const Object& window, const std::string& file) {
    FRAME(NOTEFILEUNSEEN);
    STAMP();
    const os::FileInfo info = os::infoOf(os::native(file));
    seen()[window.window()] = {file, info, info, true};
}

bool ISFILEUNSEEN(const Object& window, const std::string& file) {
    FRAME(ISFILEUNSEEN);
    const auto known = seen().find(window.window());
    return known != seen().end() && known->second.file == file && known->second.nameAlone;
}

bool CHANGEDOUTSIDE(const Object& window, const std::string& file) {
    FRAME(CHANGEDOUTSIDE);
    STAMP();
    const auto known = seen().find(window.window());
    if (known == seen().end() || known->second.file != file) return false;
    const os::FileInfo now = os::infoOf(os::native(file));
    if (known->second.nameAlone) return now.exists;
    return known->second.info.exists && now.exists && !sameContent(now, known->second.info);
}

OutsideChange NEWCHANGEOUTSIDE(const Object& window, const std::string& file) {
    FRAME(NEWCHANGEOUTSIDE);
    STAMP();
    const auto known = seen().find(window.window());
    if (known == seen().end() || known->second.file != file || !known->second.info.exists)
        return OutsideChange::None;
    const os::FileInfo now = os::infoOf(os::native(file)), &asked = known->second.asked;
    if (!now.exists) return asked.exists ? OutsideChange::Gone : OutsideChange::None;
    return asked.exists && sameContent(now, asked) ? OutsideChange::None : OutsideChange::Changed;
}

void NOTECHANGEASKED(const Object& window, const std::string& file) {
    FRAME(NOTECHANGEASKED);
    STAMP();
    const auto known = seen().find(window.window());
    if (known != seen().end() && known->second.file == file)
        known->second.asked = os::infoOf(os::native(file));
}

}  // namespace tarn
