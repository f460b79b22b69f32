// SPDX-License-Identifier: GPL-3.0-or-later
#include "ide/designer/files/dlgcode.h"

#include "ide/editor/lineends.h"
#include "ide/editor/sourcefile.h"
#include "ide/editor/textedit.h"
#include "ide/shell/windows.h"
#include "library/settings/profstr.h"
#include "library/source/symbols.h"
#include "library/system/system.h"
#include "os/files.h"

#include <algorithm>
#include <array>

MODULE("dlgedit")

namespace tarn {
namespace {

constexpr const char* Title = "Dialog Editor";
constexpr const char* RenameTitle = "Rename Function";
// What SYMSCANSOURCE lists, and the mode in its low bits.
constexpr int FromText = 0, FromFile = 1, WithParentheses = 1024, WithLines = 2048, WithEvents = 4096;

// The class where it is at its newest: the text of the Code window, or the file.
struct ClassSource {
    explicit ClassSource(const std::string& classFile)
        : open(ISINEDITOR(classFile)), mode(open ? FromText : FromFile),
          source(open ? GetText(SDIEdit) : classFile) {}
    bool open;
    int mode;
    std::string source;
};

constexpr std::array<std::string_view, 3> loaded = {"Dialog", "Editwindow", "Richeditwindow"};
constexpr std::array<std::string_view, 5> changed = {"Edit", "Combobox", "Listbox", "Iconlist", "Scrollbar"};
constexpr std::array<std::string_view, 5> pressed = {"Pushbutton", "Radiobutton", "Checkbox", "Bitmapbutton",
                                                     "Menuitem"};

// The event that an object of the type raises first of all; empty if it raises none.
std::string_view eventOf(std::string_view type) {
    const auto isOneOf = [&](const auto& types) {
        return std::any_of(types.begin(), types.end(), [&](auto one) { return STREQUAL(one, type); });
    };
    return isOneOf(loaded)    ? "LOAD_EVENT"
           : isOneOf(changed) ? "CHANGE_EVENT"
           : isOneOf(pressed) ? "COMMAND_EVENT"
                              : "";
}

// The source line of the entry of that name in a list "name start end"; 0 if there is none.
int lineOf(const std::string& list, const std::string& name) {
    for (int n = 1; n <= STRLINES(list); ++n) {
        const std::string line = STRLINE(list, n);
        bool ok = false;
        if (STREQUAL(STRTOKEN(line, 1), name)) return CVTI(STRTOKEN(line, 2), ok);
    }
    return 0;
}

void tellMissing(const std::string& classFile, const std::string& name) {
    Sound();
    const std::string reason =
        FileSize(classFile) < 0
            ? "but the file does not exist."
            : "but the file does not contain an event handler for the object.\nThe event handler "
              "should be declared 'callback function " +
                  name + "()'.";
    MSGBOX(Title, "It is not possible to view code for the window object '" + name +
                      "'.\nThe code should be in the following file:\n\n\t" + classFile + "\n\n" + reason);
}

bool asksToRename(const ClassSource& from, const std::string& classFile, const std::string& oldName,
                  const std::string& newName) {
    const std::string place = from.open ? "the code editor" : "file '" + classFile + "'";
    return MSGBOX(RenameTitle,
                  "You changed the dialog name from " + oldName + " to " + newName +
                      ".\nThe window function for " + oldName + " is in " + place +
                      ".\nDo you also want to rename the window function to " + newName + "?",
                  "Yes\nNo", BoxIcon::Question) == "Yes";
}

// The class with the function of the new name, and the line ends that it had. The result is an error text.
std::string RENAMEIN(const ClassSource& from, const std::string& classFile, const std::string& oldName,
                     const std::string& newName) {
    FRAME(RENAMEIN);
    std::string before = from.open ? from.source : "";
    const os::FileError unread =
        from.open ? os::FileError::None : os::readFile(os::native(classFile), before);
    if (unread != os::FileError::None) return std::string(os::describe(unread));
    std::string text = before;
    STAMP();
    std::string error = SYMRENAMEFUNCTION(oldName, newName, FromText, text);
    STAMP();
    if (!error.empty()) return error;
    text = ADOPTLINEENDS(text, before);
    STAMP();
    if (from.open) return EDITWNDCHANGETEXT(SDIEdit, text), "";
    const os::SaveResult saved = os::saveFile(os::native(classFile), text);
    return saved.ok()
               ? ""
               : "The file '" + classFile + "' could not be saved. " + std::string(os::describe(saved.error));
}

}  // namespace

void SHOWCODEFILE(const std::string& resourceFile, const std::string& objectName, const std::string&,
                  const std::string& objectType) {
    FRAME(SHOWCODEFILE);
    STAMP();
    const std::string classFile = TWINFILE(resourceFile, ClassExtension);
    const ClassSource from(classFile);
    const std::string list = SYMSCANSOURCE(from.source, from.mode | WithParentheses | WithLines | WithEvents);
    STAMP();
    int line = lineOf(list, objectName + "()");
    if (line == 0) return tellMissing(classFile, objectName);
    const std::string_view event = eventOf(objectType);
    const int handler = event.empty() ? 0 : lineOf(list, objectName + "()." + std::string(event));
    STAMP();
    EDITWNDOPEN(SDIEdit, from.open ? EDITWNDGETFILENAME(SDIEdit) : classFile, false,
                handler != 0 ? handler : line);
    STAMP();
    if (IsLoaded(Main)) SetCaption(MAINCONTROL("CodeLabel"), EDITWNDGETFILENAME(SDIEdit));
}

void CHECKRENAMEFUNCTION(const std::string& classFile, const std::string& oldName,
                         const std::string& newName) {
    FRAME(CHECKRENAMEFUNCTION);
    STAMP();
    if (oldName.empty() || newName.empty() || !ISCLASSFILE(classFile) || FileSize(classFile) < 0) return;
    const ClassSource from(classFile);
    std::string kind;
    STAMP();
    const bool found = SYMFINDFUNCTION(oldName, from.mode, from.source, kind);
    STAMP();
    if (!found || STRLOWER(kind).find("callback") == std::string::npos) return;
    if (!asksToRename(from, classFile, oldName, newName)) return;
    STAMP();
    const std::string error = RENAMEIN(from, classFile, oldName, newName);
    STAMP();
    if (!error.empty()) MSGBOX(RenameTitle, error + "\nCould not rename " + oldName + " to " + newName + ".");
}

}  // namespace tarn
