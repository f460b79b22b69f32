// SPDX-License-Identifier: GPL-3.0-or-later
#include "ide/editor/recentfiles.h"

#include "ide/editor/textedit.h"
#include "ide/shell/windows.h"
#include "library/settings/profstr.h"
#include "library/system/system.h"

MODULE("textedit", tarn::TEXTEDIT_ONERROR)

namespace tarn {

void LOADMRULIST(const std::string& iniFile, const std::string& section, int count, const Object& firstItem) {
    FRAME(LOADMRULIST);
    STAMP();
    const std::string files = PROFILESTRGET(iniFile, section, "");
    for (int i = 1; i <= count; i++) {
        STAMP();
        const Object item = i == 1 ? firstItem : ControlElement(firstItem, i);
        SetCaption(item, "&" + STR(i) + " " + STRLINE(files, i));
    }
}

void SAVEMRUITEM(const std::string& iniFile, const std::string& section, int limit, const std::string& name) {
    FRAME(SAVEMRUITEM);
    if (iniFile.empty() || section.empty() || name.empty() || limit < 1 || name == Untitled) return;
    if (name.find_first_of("\r\n") != std::string::npos) return;  // it would make two lines of the list
    STAMP();
    const std::string old = PROFILESTRGET(iniFile, section, "");
    std::string list = name + "\n";
    int lines = 1;
    for (int i = 1; i <= STRLINES(old) && lines < limit; i++) {
        const std::string line = STRLINE(old, i);
        if (line.empty()) break;
        if (STREQUAL(line, name)) continue;
        list += line + "\n";
        lines++;
    }
    STAMP();
    PROFILESTRPUT(iniFile, section, "", list);
    STAMP();
}

void REMOVEMRUITEM(const std::string& iniFile, const std::string& section, const std::string& name) {
    FRAME(REMOVEMRUITEM);
    STAMP();
    const std::string old = PROFILESTRGET(iniFile, section, "");
    std::string list;
    for (int i = 1; i <= STRLINES(old); i++) {
        const std::string line = STRLINE(old, i);
        if (!STREQUAL(line, name)) list += line + "\n";
    }
    STAMP();
    PROFILESTRPUT(iniFile, section, "", list);
    STAMP();
}

}  // namespace tarn
