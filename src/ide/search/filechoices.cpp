// SPDX-License-Identifier: GPL-3.0-or-later
#include "ide/search/filechoices.h"

#include "ide/editor/sourcefile.h"
#include "ide/editor/textedit.h"
#include "ide/program/projedit.h"
#include "ide/search/regex.h"
#include "ide/search/searchdialogs.h"
#include "ide/shell/idecore.h"
#include "ide/shell/windows.h"
#include "library/dialogs/finddlgs.h"
#include "library/settings/profstr.h"
#include "os/files.h"

#include <algorithm>

MODULE("editmenu")

namespace tarn {
namespace {

constexpr const char* SourcePatterns = "*.cls;*.rc";
constexpr std::size_t WidestLine = 200, BeforeHit = 60;

Object in(const Object& dialog, std::string_view name) {
    return FINDCONTROL(dialog, name);
}
bool isTicked(const Object& dialog, std::string_view box) {
    return GetValue(in(dialog, box)) != 0;
}
std::string textIn(const Object& dialog, std::string_view edit) {
    return GetText(in(dialog, edit));
}

std::string programFolder() {
    const std::string main = FILEGETDIR(COMPILERGETMAINFILE());
    return !main.empty() ? main : FILEGETDIR(EDITWNDGETFILENAME(SDIEdit));
}

std::vector<std::string> chosenFolders(const Object& dialog) {
    std::vector<std::string> folders;
    if (isTicked(dialog, "radio3")) return {STRTRIM(textIn(dialog, "edit4"))};
    if (const std::string program = programFolder(); !program.empty()) folders.push_back(program);
    if (!isTicked(dialog, "radio2")) return folders;
    const std::string inherited = GETINHERITEDPATHSML();
    for (int n = 1; n <= STRLINES(inherited); ++n)
        if (!STRLINE(inherited, n).empty()) folders.push_back(STRLINE(inherited, n));
    return folders;
}

}  // namespace

FileChoices FILECHOICES(const Object& dialog) {
    FRAME(FILECHOICES);
    STAMP();
    FileChoices choices;
    choices.text = textIn(dialog, "edit1");
    if (!in(dialog, "edit2").empty()) choices.with = textIn(dialog, "edit2");
    choices.matchWord = isTicked(dialog, "check1");
    choices.matchCase = isTicked(dialog, "check2");
    choices.regex = isTicked(dialog, "check3");
    choices.subfolders = isTicked(dialog, "check4");
    choices.patterns = textIn(dialog, "edit3");
    STAMP();
    choices.folders = chosenFolders(dialog);
    STAMP();
    return choices;
}

void OFFERFILECHOICES(const Object& dialog) {
    FRAME(OFFERFILECHOICES);
    STAMP();
    const std::string word = GETWORDATCURSOR(SDIEdit);
    if (!word.empty()) SetText(in(dialog, "edit1"), word);
    SetSelection(in(dialog, "edit1"), 1, GetTextLength(in(dialog, "edit1")));
    STAMP();
    if (!PROFILESTRKEYS(GETIDEINIFILE(), GetName(dialog)).empty()) return;
    STAMP();
    SetText(in(dialog, "edit3"), SourcePatterns);
    SetValue(in(dialog, "radio1"), 1);
    SetValue(in(dialog, "check4"), 1);
    STAMP();
}

std::string FILECHOICEPROBLEM(const Object& dialog) {
    FRAME(FILECHOICEPROBLEM);
    STAMP();
    const FileChoices choices = FILECHOICES(dialog);
    if (choices.text.empty()) return "Enter the text to be found.";
    if (choices.folders.empty())
        return "There is neither a program nor a file whose folder could be searched.\nChoose a folder.";
    for (const std::string& folder : choices.folders) {
        const os::FileInfo info = os::infoOf(folder);
        if (!isTicked(dialog, "radio3") || (info.exists && info.folder)) continue;
        return folder.empty() ? "Enter the folder to be searched."
                              : "The folder '" + folder + "' does not exist.";
    }
    STAMP();
    return SEARCHOF(choices)->problem();
}

bool CHOOSEFOLDER(const Object& dialog, int event, const Object& control) {
    FRAME(CHOOSEFOLDER);
    STAMP();
    const std::string name = GetName(control);
    const bool entered = event == CHANGE_EVENT && name == "edit4";
    if (!entered && (event != COMMAND_EVENT || name != "pushbutton4")) return false;
    std::string folder = STRTRIM(textIn(dialog, "edit4"));
    if (!entered) {
        folder = OpenFolderDialog(GetCaption(dialog), folder.empty() ? programFolder() : folder);
        if (!folder.empty()) SetText(in(dialog, "edit4"), folder);
    }
    STAMP();
    if (!folder.empty()) SetValue(in(dialog, "radio3"), 1);
    STAMP();
    return true;
}

std::unique_ptr<TextSearch> SEARCHOF(const FileChoices& choices) {
    return MAKESEARCH(choices.text, choices.matchWord, choices.matchCase, choices.regex);
}

bool ISCHANGEDINEDITOR(const std::string& file) {
    FRAME(ISCHANGEDINEDITOR);
    STAMP();
    return GetModify(SDIEdit) && ISINEDITOR(file);
}

bool TEXTOFFILE(const std::string& file, std::string& text, SkippedFiles& skipped) {
    FRAME(TEXTOFFILE);
    STAMP();
    if (!ISCHANGEDINEDITOR(file)) return READTEXTFILE(file, text, skipped);
    text = GetText(SDIEdit);
    STAMP();
    return true;
}

std::string SHOWNLINE(std::string_view line, std::size_t at) {
    std::size_t from = std::min({line.find_first_not_of(" \t"), at, line.size()});
    std::string shown;
    if (at - from > WidestLine - BeforeHit) {
        from = at - BeforeHit;
        shown = "...";
    }
    shown += line.substr(from, WidestLine);
    if (line.size() - from > WidestLine) shown += "...";
    for (char& c : shown)
        if (static_cast<unsigned char>(c) < ' ') c = ' ';
    return shown;
}

}  // namespace tarn
