// SPDX-License-Identifier: GPL-3.0-or-later
#include "ide/editor/seenfile.h"

#include "os/files.h"

#include <map>

MODULE("seenfile", tarn::DefaultErrorHandler, tarn::LeaveErrors)

namespace tarn {
namespace {

struct Seen {
    std::string file;
    os::FileInfo info;
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
    seen()[window.window()] = {file, os::infoOf(os::native(file))};
}

bool CHANGEDOUTSIDE(const Object& window, const std::string& file) {
    FRAME(CHANGEDOUTSIDE);
    STAMP();
    const auto known = seen().find(window.window());
    if (known == seen().end() || known->second.file != file || !known->second.info.exists) return false;
    const os::FileInfo now = os::infoOf(os::native(file));
    return now.exists && !sameContent(now, known->second.info);
}

}  // namespace tarn
