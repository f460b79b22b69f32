// SPDX-License-Identifier: GPL-3.0-or-later
#include "ide/menus/editblocks.h"

#include "ide/designer/dlgedit.h"
#include "ide/designer/objects/dlgclip.h"
#include "ide/editor/example.h"
#include "ide/editor/lineends.h"
#include "ide/editor/textedit.h"
#include "ide/menus/filemenu.h"
#include "ide/program/projwindow.h"
#include "ide/shell/windows.h"
#include "library/source/symbols.h"
#include "library/system/system.h"

#include <algorithm>
#include <vector>

MODULE("editmenu", tarn::TEXTEDIT_ONERROR)

namespace tarn {
namespace {

constexpr const char* InsertTitle = "Edit-Insert File";
constexpr const char* PasteTitle = "Edit-Paste";

bool holdsFile() {
    if (!EDITWNDGETFILENAME(SDIEdit).empty()) return true;
    Sound();
    return false;
}

std::string lastCopied;  // as it stood in the window, since the clipboard gets other line ends

// Puts the selection onto the clipboard; false if there is none.
bool copySelection() {
    const std::string text = GetSelText(SDIEdit);
    if (text.empty()) return false;
    SetText(clipboard, STRNL2CRNL(text));
    lastCopied = text;
    return true;
}

}  // namespace

// ---- selection and clipboard ----

void DO_CUT() {
    FRAME(DO_CUT);
    STAMP();
    if (DIALOGISINFRONT()) return DIALOGCUT();
    if (!holdsFile()) return;
    STAMP();
    if (copySelection()) SetSelText(SDIEdit, "");
    STAMP();
}

void DO_COPY() {
    FRAME(DO_COPY);
    STAMP();
    if (DIALOGISINFRONT()) return DIALOGCOPY();
    if (holdsFile()) copySelection();
    STAMP();
}

void DO_DELETE() {
    FRAME(DO_DELETE);
    STAMP();
    if (DIALOGISINFRONT()) return DIALOGDELETESELECTED();
    STAMP();
    if (holdsFile() && GetSelection(SDIEdit).length > 0) SetSelText(SDIEdit, "");
    STAMP();
}

void DO_SELECT_ALL() {
    FRAME(DO_SELECT_ALL);
    STAMP();
    if (DIALOGISINFRONT()) return DIALOGSELECTALL();
    if (!holdsFile()) return;
    const int length = GetTextLength(SDIEdit);
    STAMP();
    if (length > 0) SetSelection(SDIEdit, 1, length);
    STAMP();
}

std::string GETCLIPBOARDTEXT(const Object& clipboardObject) {
    FRAME(GETCLIPBOARDTEXT);
    STAMP();
    return GetText(clipboardObject);
}

namespace {

// What was copied here comes back as it was.
std::string textToPaste() {
    std::string text = GETCLIPBOARDTEXT(clipboard);
    return text == STRNL2CRNL(lastCopied) ? lastCopied : text;
}

void pasteAsText(const std::string& text) {
    if (EDITWNDGETFILENAME(SDIEdit).empty()) {
        EDITWNDNEW(SDIEdit, "");
        Show(SDIEdit, false);
    }
    if (!text.empty()) SetSelText(SDIEdit, ADOPTLINEENDS(text, GetText(SDIEdit)));
}

}  // namespace

void DO_PASTE(const Object& programLabel) {
    FRAME(DO_PASTE);
    STAMP();
    Precondition(STREQUAL(GetTypeof(programLabel), "Label"));
    STAMP();
    if (DIALOGISINFRONT()) return DIALOGPASTE();
    STAMP();
    std::string text = textToPaste();
    STAMP();
    const auto most = static_cast<std::size_t>(EDITWNDGETMAXLENGTH(SDIEdit));
    if (text.size() > most) text.resize(most);
    STAMP();
    if (ISEXAMPLE(text)) return PASTEEXAMPLE(text, programLabel);
    pasteAsText(text);
    STAMP();
}

// ---- example code ----

namespace {

std::string quotedNames(const std::string& names) {
    std::string list;
    for (int i = 1; i <= STRLINES(names); i++) list += "\t" + STRADDQUOTES(STRLINE(names, i)) + "\n";
    return LIMITLINES(list);
}

std::string askAboutExample(const std::string& names) {
    return MsgBox(PasteTitle,
                  "The clipboard contains example code:\n" + quotedNames(names) +
                      "Do you want to save the example as a new program?\n"
                      "Or do you want to paste it as normal text?",
                  "New Program\nNormal Text\nCancel", BoxIcon::Question);
}

std::vector<std::string> linesOf(std::string_view text) {
    std::vector<std::string> lines;
    while (!text.empty()) {
        const std::size_t end = std::min(text.find('\n'), text.size());
        lines.emplace_back(text.substr(0, end));
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return lines;
}

// The file to open once the files of an example are written; empty if the user has left, or one could not be written.
std::string saveExample(const std::string& text, const std::string& names) {
    std::string first, mainClass;
    for (int i = 1; i <= STRLINES(names); i++) {
        const std::string name = STRLINE(names, i);
        const std::string file = SaveAsDialog("Save File", name, "Class (*.cls)|*.cls|All files (*)|*|");
        if (file.empty() || !SAVEFILE(file, linesOf(GETEXAMPLETEXT(text, name)))) return {};
        if (first.empty()) first = file;
        if (ISMAINCLASS(file)) mainClass = file;
    }
    return mainClass.empty() ? first : mainClass;
}

}  // namespace

void PASTEEXAMPLE(const std::string& text, const Object& programLabel) {
    FRAME(PASTEEXAMPLE);
    STAMP();
    Precondition(STREQUAL(GetTypeof(programLabel), "Label"));
    STAMP();
    const std::string names = GETEXAMPLEFILENAMES(text);
    const std::string answer = STRUPPER(askAboutExample(names));
    STAMP();
    if (answer == "NORMAL TEXT") pasteAsText(text);
    STAMP();
    if (answer != "NEW PROGRAM" || !CLOSEALL()) return;
    STAMP();
    const std::string file = saveExample(text, names);
    STAMP();
    if (!file.empty()) EDITWNDOPEN(SDIEdit, file, false, 0);
    STAMP();
    if (!file.empty() && ISMAINCLASS(file))
        PROJECTOPEN(ProjectEditorDlg, "Program Window", file, programLabel);
    STAMP();
}

// ---- blocks of lines ----

namespace {

// Adds what one line becomes to the new text.
using LineChange = void (*)(std::string_view line, std::string& out);

void comment(std::string_view line, std::string& out) {
    out.append("//").append(line);
}

void uncomment(std::string_view line, std::string& out) {
    const std::size_t start = std::min(line.find_first_not_of(" \t"), line.size());
    const bool commented = line.substr(start).starts_with("//");
    out.append(line.substr(0, start)).append(line.substr(commented ? start + 2 : start));
}

std::string changedLines(std::string_view text, LineChange change) {
    std::string out;
    out.reserve(text.size() + text.size() / 8 + 2);
    while (!text.empty()) {
        const std::size_t end = text.find('\n');
        const std::string_view line = text.substr(0, end == std::string_view::npos ? end : end + 1);
        change(line, out);
        text.remove_prefix(line.size());
    }
    return out;
}

// The new lines are selected, so that the command can be repeated.
void changeBlock(LineChange change) {
    if (!holdsFile()) return;
    EDITWNDSELECTLINES(SDIEdit);
    const Selection block = GetSelection(SDIEdit);
    if (block.length < 1) return Sound();
    const std::string before = GetSelText(SDIEdit), after = changedLines(before, change);
    if (after == before) return;  // nothing to undo, and nothing to save
    SetSelText(SDIEdit, after);
    SetSelection(SDIEdit, block.start, static_cast<int>(after.size()));
}

}  // namespace

void DO_COMMENT_BLOCK() {
    FRAME(DO_COMMENT_BLOCK);
    STAMP();
    changeBlock(comment);
    STAMP();
}

void DO_UNCOMMENT_BLOCK() {
    FRAME(DO_UNCOMMENT_BLOCK);
    STAMP();
    changeBlock(uncomment);
    STAMP();
}

void DO_INSERT_FILE() {
    FRAME(DO_INSERT_FILE);
    STAMP();
    if (!holdsFile()) return;
    STAMP();
    const std::string file =
        OpenFileDialog(InsertTitle, "*.txt", "Text files (*.txt)|*.txt|Source files (*.cls)|*.cls|");
    if (file.empty()) return;
    const int most = EDITWNDGETMAXLENGTH(SDIEdit);
    if (FileSize(file) > most) {
        MSGBOX(InsertTitle, "The following file is too big to be loaded:\n\n\t" + file +
                                "\n\nThe maximum size is " + STR(most) + " bytes.");
        return;
    }
    STAMP();
    std::string text;
    if (LOADFILE(file, text)) SetSelText(SDIEdit, ADOPTLINEENDS(text, GetText(SDIEdit)));
    STAMP();
}

}  // namespace tarn
