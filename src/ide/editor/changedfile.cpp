// SPDX-License-Identifier: GPL-3.0-or-later
#include "ide/editor/changedfile.h"

#include "ide/editor/difference.h"
#include "ide/editor/seenfile.h"
#include "ide/editor/textedit.h"
#include "ide/shell/idecore.h"
#include "ide/shell/windows.h"
#include "library/system/system.h"
#include "os/files.h"

#include <algorithm>
#include <vector>

MODULE("textedit", tarn::TEXTEDIT_ONERROR)

namespace tarn {
namespace {

void showDifference(const Object& window, const std::string& file) {
    FRAME(SHOWDIFFERENCE);
    std::string onDisk;
    STAMP();
    const bool read = LOADFILE(file, onDisk);
    STAMP();
    if (!read) return;
    SHOWDIFFERENCE({"File-Show Difference", file,
                    "&Lines of the window alone (-) and of the file on the disk alone (+):", GetText(window),
                    onDisk});
    STAMP();
}

// ---- the answers ----

void keep(const Object& window) {
    SetModify(window, true);
    SETMODIFYPRIVATE(window, true);
    DRAWMODIFYINDICATOR(window);
}

void reload(const Object& window, const std::string& file) {
    FRAME(RELOAD);
    STAMP();
    const int most = EDITWNDGETMAXLENGTH(window);
    if (FileSize(file) > most) {
        MSGBOX("File-Open", "The following file is too big to be loaded:\n\n\t" + file +
                                "\n\nThe maximum size is " + STR(most) + " bytes.");
        return keep(window);
    }
    std::string text;
    STAMP();
    const bool read = LOADFILE(file, text);
    STAMP();
    if (!read) return keep(window);
    EDITWNDCHANGETEXT(window, text);
    STAMP();
    EDITWNDNOTELOADED(window, file);
    STAMP();
}

void askAboutGone(const Object& window, const std::string& file) {
    const std::string answer = MsgBox(
        "File Deleted",
        "The following file was deleted or renamed by another program:\n\n\t" + file +
            "\n\nIts text is still in the window. Keep it there as a change that is not saved, or close it?",
        "&Keep\n&Close", BoxIcon::Question);
    if (answer == "&Close") return EDITWNDCLOSE(window, true);
    keep(window);
}

void askAboutChange(const Object& window, const std::string& file) {
    const std::string own =
        GetModify(window) ? "The text in the window has changes that are not saved. They would leave it. "
                          : "";
    std::string answer = "&Show difference";
    while (answer == "&Show difference") {
        answer = MsgBox(
            "File Changed",
            "The following file was changed by another program:\n\n\t" + file + "\n\n" + own +
                "Reload it from the disk (Edit-Undo Change brings this text back), or keep the text that "
                "is in the window?",
            "&Reload\n&Keep\n&Show difference", BoxIcon::Question);
        if (answer == "&Show difference") showDifference(window, file);
    }
    if (answer == "&Reload") return reload(window, file);
    keep(window);
}

// The disk has what the window shows: only its date is another.
bool showsTheFile(const Object& window, const std::string& file) {
    std::string onDisk;
    return FileSize(file) == GetTextLength(window) &&
           os::readFile(os::native(file), onDisk) == os::FileError::None && onDisk == GetText(window);
}

bool somethingIsAsked() {
    const std::vector<Object> windows = WindowList();
    return FileWork::goesOn() || std::any_of(windows.begin(), windows.end(),
                                             [](const Object& one) { return ISSHOWN(one) && IsModal(one); });
}

}  // namespace

void ASKABOUTCHANGEOUTSIDE(const Object& window) {
    FRAME(ASKABOUTCHANGEOUTSIDE);
    STAMP();
    if (!ISSHOWN(window) || somethingIsAsked()) return;
    STAMP();
    const std::string file = EDITWNDGETFILENAME(window);
    const OutsideChange change = NEWCHANGEOUTSIDE(window, file);
    if (change == OutsideChange::None) return;
    const FileWork work;
    NOTECHANGEASKED(window, file);
    STAMP();
    if (change == OutsideChange::Gone) return askAboutGone(window, file);
    if (!showsTheFile(window, file)) return askAboutChange(window, file);
    STAMP();
    NOTEFILESEEN(window, file);
}

}  // namespace tarn
