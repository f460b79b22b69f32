// SPDX-License-Identifier: GPL-3.0-or-later
#include "ide/designer/dlgchanges.h"

#include "ide/designer/dlgedit.h"
#include "ide/designer/dlghistory.h"
#include "ide/designer/dlgstep.h"
#include "ide/designer/files/scratch.h"
#include "ide/editor/difference.h"
#include "ide/editor/linediff.h"
#include "ide/shell/idecore.h"
#include "ide/shell/statusline.h"
#include "kernel/windows/resources.h"
#include "library/designer/proputil.h"
#include "library/system/system.h"
#include "os/files.h"

MODULE("dlgedit")

namespace tarn {
namespace {

constexpr const char* Title = "Edit-What a Save Changes";

std::string lines(int number) {
    return STR(number) + (number == 1 ? " line" : " lines");
}

// As a save does it: first the name, then the lists. A dialog that is not there any more is added.
std::string saveInto(const std::string& scratch) {
    const std::string old = DIALOGGETDLGNAME(), name = GETPROPVALUE(DESIGNITEM(1), "NAME");
    ObjectArray there;
    const bool renames = !STREQUAL(name, old) && ResourceRead(scratch, old, there).empty();
    const std::string error = renames ? ResourceRename(scratch, old, name) : "";
    if (!error.empty()) return error;
    ResourcePast past = DIALOGHISTORYPAST();
    return ResourceWrite(TSTRINGARRAY(DATALIST()), TSTRINGARRAY(MENULIST()), scratch, past);
}

}  // namespace

std::string FILETEXT(const std::string& file) {
    FRAME(FILETEXT);
    STAMP();
    std::string text;
    const bool read = os::readFile(os::native(file), text) == os::FileError::None;
    return read ? text : std::string();
}

SaveTexts SAVETEXTS() {
    FRAME(SAVETEXTS);
    STAMP();
    if (DESIGNITEM(1).empty()) return {};
    SaveTexts texts;
    texts.before = FILETEXT(DIALOGGETFILENAME());
    ScratchFile scratch;
    STAMP();
    texts.error = scratch.makeOf(GETIDEINIFILE(), texts.before);
    STAMP();
    if (texts.error.empty()) texts.error = saveInto(scratch.path());
    STAMP();
    if (texts.error.empty()) texts.after = FILETEXT(scratch.path());
    return texts;
}

void SHOWSAVECHANGES() {
    FRAME(SHOWSAVECHANGES);
    STAMP();
    if (DESIGNITEM(1).empty()) return Sound();
    const SaveTexts texts = SAVETEXTS();
    const std::string file = DIALOGGETFILENAME();
    STAMP();
    if (!texts.error.empty()) return MSGBOX(Title, "What a save changes cannot be told. " + texts.error);
    const int changed = LINESCHANGED(texts.before, texts.after);
    STAMP();
    if (changed == 0)
        return MSGBOX(Title,
                      "There is nothing to change: the following file has the dialog as it is.\n\n\t" + file);
    SHOWDIFFERENCE({Title, file + "\nA save now changes " + lines(changed) + ".",
                    "&Lines of the file as it is (-) and as a save now leaves it (+):", texts.before,
                    texts.after});
    STAMP();
}

void TELLSAVED(const std::string& before, const std::string& file) {
    FRAME(TELLSAVED);
    STAMP();
    const int changed = LINESCHANGED(before, FILETEXT(file));
    TELLSTATUS(changed == 0 ? "nothing to save: the file has it already"
                            : "this save changed " + lines(changed));
    STAMP();
}

}  // namespace tarn
