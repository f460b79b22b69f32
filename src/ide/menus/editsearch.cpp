// SPDX-License-Identifier: GPL-3.0-or-later
#include "ide/menus/editsearch.h"

#include "ide/search/findfiles.h"
#include "ide/search/replacefiles.h"
#include "ide/search/searchdialogs.h"
#include "ide/shell/idecore.h"
#include "ide/shell/windows.h"
#include "library/dialogs/finddlgs.h"
#include "library/settings/profstr.h"
#include "library/system/system.h"

MODULE("editmenu")

namespace tarn {
namespace {

constexpr std::string_view FindSection = "Edit_Find", ReplaceSection = "Edit_Replace";

std::string read(std::string_view section, std::string_view key) {
    return PROFILESTRGET(GETIDEINIFILE(), section, key);
}
bool isOn(std::string_view section, std::string_view key) {
    return read(section, key) == "1";
}
// A text that stands in quotes gets a pair around them, since the reading of settings takes one away.
void write(std::string_view section, std::string_view key, const std::string& text) {
    const bool quoted = text.size() > 1 && text.starts_with('"') && text.ends_with('"');
    PROFILESTRPUT(GETIDEINIFILE(), section, key, quoted ? STRADDQUOTES(text) : text);
}
void write(std::string_view section, std::string_view key, bool on) {
    PROFILESTRPUT(GETIDEINIFILE(), section, key, on ? "1" : "0");
}

FindChoice findChoice() {
    return {read(FindSection, "FindString"), isOn(FindSection, "MatchWord"), isOn(FindSection, "MatchCase"),
            isOn(FindSection, "FromStart")};
}

}  // namespace

void DO_FIND() {
    FRAME(DO_FIND);
    STAMP();
    FindChoice choice = findChoice();
    STAMP();
    const SearchDialogs extras(FindSection);
    FINDDIALOG("Edit-Find", SDIEdit, GETHELPFILE(), "Edit-Find", choice);
    STAMP();
    write(FindSection, "FindString", choice.text);
    write(FindSection, "MatchWord", choice.matchWord);
    write(FindSection, "MatchCase", choice.matchCase);
    write(FindSection, "FromStart", choice.fromStart);
    STAMP();
}

void DO_FIND_NEXT() {
    FRAME(DO_FIND_NEXT);
    STAMP();
    const FindChoice choice = findChoice();
    STAMP();
    if (!ISREGEXCHOSEN(FindSection))
        return FINDNEXT(SDIEdit, choice.text, choice.matchWord, choice.matchCase, false);
    const auto search = MAKESEARCH(choice.text, choice.matchWord, choice.matchCase, true);
    STAMP();
    FINDNEXT(SDIEdit, *search, choice.text, false);
}

void DO_REPLACE() {
    FRAME(DO_REPLACE);
    STAMP();
    ReplaceChoice choice{read(ReplaceSection, "OldString"),   read(ReplaceSection, "NewString"),
                         isOn(ReplaceSection, "MatchWord"),   isOn(ReplaceSection, "MatchCase"),
                         isOn(ReplaceSection, "ConfirmEach"), isOn(ReplaceSection, "FromStart")};
    STAMP();
    const SearchDialogs extras(ReplaceSection);
    REPLACEDIALOG("Edit-Replace", SDIEdit, GETHELPFILE(), "Edit-Replace", choice);
    STAMP();
    write(ReplaceSection, "OldString", choice.oldText);
    write(ReplaceSection, "NewString", choice.newText);
    write(ReplaceSection, "MatchWord", choice.matchWord);
    write(ReplaceSection, "MatchCase", choice.matchCase);
    write(ReplaceSection, "FromStart", choice.fromStart);
    write(ReplaceSection, "ConfirmEach", choice.confirmEach);
    STAMP();
}

void DO_FIND_MARKS() {
    FRAME(DO_FIND_MARKS);
    STAMP();
    const FindChoice choice = findChoice();
    const auto search =
        MAKESEARCH(choice.text, choice.matchWord, choice.matchCase, ISREGEXCHOSEN(FindSection));
    STAMP();
    TOGGLEMARKS(SDIEdit, *search, choice.text);
}

void DO_FIND_FILES() {
    FRAME(DO_FIND_FILES);
    STAMP();
    FINDFILESDIALOG();
}

void DO_REPLACE_FILES() {
    FRAME(DO_REPLACE_FILES);
    STAMP();
    REPLACEFILESDIALOG();
}

}  // namespace tarn
