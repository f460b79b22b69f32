// SPDX-License-Identifier: GPL-3.0-or-later
#include "ide/program/projitems.h"

#include "ide/build/toolrun.h"
#include "ide/designer/dlgedit.h"
#include "ide/editor/textedit.h"
#include "ide/program/members/messages.h"
#include "ide/program/progprops.h"
#include "ide/program/projwindow.h"
#include "ide/shell/idecore.h"
#include "library/dialogs/versioninfo.h"
#include "library/system/system.h"

MODULE("projedit", tarn::TOOL_ONERROR)

namespace tarn {
namespace {

bool has(const ProjectItem& item, std::string_view extension) {
    return STREQUAL(FILEGETEXT(item.file), extension);
}

// Why the item cannot be edited at all; empty if it may be.
std::string obstacleOf(const ProjectItem& item) {
    if (FileSize(item.file) < 0) return "The file does not exist or cannot be found.";
    if (item.level == 1 && has(item, ResourceExtension) && item.type != "VERSIONINFO")
        return "Choose a dialog from this file and try again.";
    return {};
}

// The paint program, or where it is not installed what the desktop has for pictures.
void paint(const std::string& file) {
    constexpr int WithoutWaiting = 16 + 1;
    EXEC("mspaint", QUOTEARGUMENT(file), WithoutWaiting);
    if (ErrorCell() != ERR_EXEC_NOT_FOUND) return;
    ClearError();
    EXEC("xdg-open", QUOTEARGUMENT(file), WithoutWaiting);
    if (ErrorCell() != ERR_EXEC_NOT_FOUND) return;
    TELLERROR(ERR_EXEC_NOT_FOUND,
              "Cannot run external program.\nNeither 'mspaint' nor 'xdg-open' is there to open '" + file +
                  "'. Install one of them, and try again.");
}

// False if there is no editor for it.
bool edit(const ProjectItem& item) {
    if (has(item, ResourceExtension) && item.type == "DIALOG")
        OPENDIALOG(item.file, item.name);
    else if (has(item, ResourceExtension) && item.type == "VERSIONINFO")
        PROGRAMPROPERTIESDIALOG(ProgramPropertiesTitle, item.file, item.name);
    else if (has(item, ".bmp"))
        paint(item.file);
    else if (has(item, ".txt") || has(item, ClassExtension))
        EDITWNDOPEN(SDIEdit, item.file, false, 0);
    else
        return false;
    return true;
}

}  // namespace

void PROJECTITEMEDIT(const Object& window) {
    FRAME(PROJECTITEMEDIT);
    STAMP();
    const ProjectRow row = PROJECTITEMINFO(window);
    if (row.row == 0) return Sound();
    STAMP();
    std::string text;
    if (const std::string reason = obstacleOf(row.item); !reason.empty())
        text = FILEMESSAGE(row.item.file, reason, "Cannot edit the following file:");
    else if (!edit(row.item))
        text = FILEMESSAGE(row.item.file, "There is no editor for this type of file.");
    STAMP();
    if (!text.empty() && IsLoaded(window)) MSGBOX(GetCaption(window), text);
}

}  // namespace tarn
