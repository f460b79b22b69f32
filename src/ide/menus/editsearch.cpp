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

// What a dialog asks for, each under its key of the dialog's section.
template <class Choice>
struct Key {
    std::string_view name;
    bool Choice::*ticked = nullptr;
    std::string Choice::*text = nullptr;
};

constexpr Key<FindChoice> findKeys[] = {{"FindString", nullptr, &FindChoice::text},
                                        {"MatchWord", &FindChoice::matchWord},
                                        {"MatchCase", &FindChoice::matchCase},
                                        {"FromStart", &FindChoice::fromStart}};
constexpr Key<ReplaceChoice> replaceKeys[] = {
    {"OldString", nullptr, &ReplaceChoice::oldText}, {"NewString", nullptr, &ReplaceChoice::newText},
    {"MatchWord", &ReplaceChoice::matchWord},        {"MatchCase", &ReplaceChoice::matchCase},
    {"FromStart", &ReplaceChoice::fromStart},        {"ConfirmEach", &ReplaceChoice::confirmEach}};

template <class Choice, std::size_t Count>
Choice readChoice(std::string_view section, const Key<Choice> (&keys)[Count]) {
    Choice choice;
    for (const Key<Choice>& key : keys) {
        const std::string value = PROFILESTRGET(GETIDEINIFILE(), section, key.name);
        if (key.text != nullptr)
            choice.*key.text = value;
        else
            choice.*key.ticked = value == "1";
    }
    return choice;
}

// A text that stands in quotes gets a pair around them, since the reading of settings takes one away.
template <class Choice, std::size_t Count>
void writeChoice(std::string_view section, const Key<Choice> (&keys)[Count], const Choice& choice) {
    for (const Key<Choice>& key : keys) {
        std::string value = key.text != nullptr ? choice.*key.text : choice.*key.ticked ? "1" : "0";
        if (value.size() > 1 && value.starts_with('"') && value.ends_with('"')) value = STRADDQUOTES(value);
        PROFILESTRPUT(GETIDEINIFILE(), section, key.name, value);
    }
}

}  // namespace

void DO_FIND() {
    FRAME(DO_FIND);
    STAMP();
    FindChoice choice = readChoice(FindSection, findKeys);
    STAMP();
    const SearchDialogs extras(FindSection);
    FINDDIALOG("Edit-Find", SDIEdit, GETHELPFILE(), "Edit-Find", choice);
    STAMP();
    writeChoice(FindSection, findKeys, choice);
    STAMP();
}

void DO_FIND_NEXT() {
    FRAME(DO_FIND_NEXT);
    STAMP();
    const FindChoice choice = readChoice(FindSection, findKeys);
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
    ReplaceChoice choice = readChoice(ReplaceSection, replaceKeys);
    STAMP();
    const SearchDialogs extras(ReplaceSection);
    REPLACEDIALOG("Edit-Replace", SDIEdit, GETHELPFILE(), "Edit-Replace", choice);
    STAMP();
    writeChoice(ReplaceSection, replaceKeys, choice);
    STAMP();
}

void DO_FIND_MARKS() {
    FRAME(DO_FIND_MARKS);
    STAMP();
    const FindChoice choice = readChoice(FindSection, findKeys);
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
