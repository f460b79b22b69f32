// SPDX-License-Identifier: GPL-3.0-or-later
//
// The round trip of a dialog: written into a file of its own, read back, compared, and loaded as a window.
#include "ide/designer/files/dlgtest.h"

#include "ide/designer/files/scratch.h"
#include "ide/shell/windows.h"
#include "library/designer/proputil.h"
#include "library/settings/profstr.h"
#include "library/system/system.h"

#include <algorithm>

MODULE("dlgedit")

namespace tarn {
namespace {

std::size_t countOf(const ObjectArray& objects) {
    const auto end = std::find(objects.begin(), objects.end(), "");
    return static_cast<std::size_t>(end - objects.begin());
}

std::string firstToken(const std::string& line) {
    std::size_t position = 1;
    return NextWord(line, position);
}

// What the words of a comparison are for the objects of a window, and for those of a menu.
struct Words {
    const char *whole, *one;
};
constexpr Words DialogWords{"Dialog", "Visual object "}, MenuWords{"Menu", "Menu item object "};

std::string differenceOf(const ObjectArray& before, const ObjectArray& after, const Words& words) {
    for (std::size_t i = 0; i < countOf(before); ++i) {
        if (before[i] == after[i]) continue;
        return words.one + STR(static_cast<int>(i)) + " (" + GETPROPVALUE(before[i], "NAME") + " of type " +
               GETPROPVALUE(before[i], "TYPEOF") + ") had different properties when reloaded (" +
               FINDDIFFERENCE(before[i], after[i]) + ")";
    }
    return {};
}

std::string WRITEANDCOMPARE(const std::string& file, const std::string& dialog, ScratchFile& scratch) {
    FRAME(WRITEANDCOMPARE);
    DialogObjects before, after;
    STAMP();
    std::string error = READOBJECTS(file, dialog, before);
    STAMP();
    if (error.empty()) error = scratch.make(file, before);
    STAMP();
    if (error.empty()) error = READOBJECTS(scratch.path(), dialog, after);
    return error.empty() ? COMPAREOBJECTS(before, after) : error;
}

// As the window that its program will show.
std::string LOADANDUNLOAD(const std::string& dialog, ScratchFile& scratch) {
    FRAME(LOADANDUNLOAD);
    STAMP();
    std::string error = scratch.rename(dialog);
    if (error.empty()) error = FIXPROPERTY_OWNER(scratch.path(), NameOfTests);
    STAMP();
    if (error.empty()) error = Load(TestDlg, scratch.path(), NameOfTests);
    if (error.empty()) Unload(TestDlg);
    STAMP();
    return error;
}

// Controls of which the number stands in the place of the name, or nowhere.
std::string FINDUNNUMBERED(const std::string& file, const std::string& dialog) {
    FRAME(FINDUNNUMBERED);
    STAMP();
    const ResourceText controls = ResourceInfo(file, "CONTROLS", dialog);
    std::string integers, undefined;
    for (int n = 1; n <= STRLINES(controls.text); ++n) {
        const std::string line = STRLINE(controls.text, n), name = STRTOKEN(line, 1);
        const bool digits = name.find_first_not_of("0123456789") == std::string::npos;
        if (digits)
            integers += name + "\n";
        else if (STRTOKEN(line, 2) == "0" && name != "-1" && !ResourceCommonId(name))
            undefined += name + "\n";
    }
    std::string error = controls.error;
    if (!integers.empty())
        error += "The following controls were defined using integer values:\n" + integers + "\n";
    if (!undefined.empty()) error += "The following controls have no #define statement:\n" + undefined + "\n";
    return error;
}

}  // namespace

std::string COMPAREOBJECTS(const DialogObjects& before, const DialogObjects& after) {
    FRAME(COMPAREOBJECTS);
    const struct {
        const ObjectArray &before, &after;
        const Words& words;
    } pairs[] = {{before.dialog, after.dialog, DialogWords}, {before.menu, after.menu, MenuWords}};
    for (const auto& pair : pairs)
        if (countOf(pair.before) != countOf(pair.after))
            return std::string(pair.words.whole) +
                   " contained a different number of Visual objects when reloaded";
    STAMP();
    const std::string difference = differenceOf(before.dialog, after.dialog, DialogWords);
    return difference.empty() ? differenceOf(before.menu, after.menu, MenuWords) : difference;
}

bool ISINRESOURCEFILE(const std::string& file, const std::string& kind, const std::string& name) {
    FRAME(ISINRESOURCEFILE);
    STAMP();
    const ResourceText info = ResourceInfo(file, kind, name);
    return !info.text.empty() && info.error.empty();
}

std::string FINDDIFFERENCE(const std::string& list1, const std::string& list2) {
    FRAME(FINDDIFFERENCE);
    STAMP();
    const std::string a = list1.ends_with('\n') ? list1 : list1 + "\n",
                      b = list2.ends_with('\n') ? list2 : list2 + "\n";
    for (int n = 1; n <= std::max(STRLINES(a), STRLINES(b)); ++n) {
        const std::string line1 = STRLINE(a, n), line2 = STRLINE(b, n);
        if (line1 == line2) continue;
        const std::string token1 = firstToken(line1), token2 = firstToken(line2);
        if (token1 == token2) return "Property " + token1;
        const bool both = !token1.empty() && !token2.empty();
        return "Property " + token1 + (both ? " or " : "") + token2 + " is missing from one of the lists";
    }
    return {};
}

PropertyTest TESTPROPERTIES(const std::string& file, const std::string& dialog, bool keep) {
    FRAME(TESTPROPERTIES);
    PropertyTest result;
    ScratchFile scratch;
    STAMP();
    result.error = WRITEANDCOMPARE(file, dialog, scratch);
    STAMP();
    if (result.error.empty()) result.error = LOADANDUNLOAD(dialog, scratch);
    STAMP();
    if (result.error.empty()) result.error = FINDUNNUMBERED(file, dialog);
    if (keep) result.scratchFile = scratch.keep();
    return result;
}

std::string TESTFILEPROPERTIES(const std::string& file) {
    FRAME(TESTFILEPROPERTIES);
    STAMP();
    const ResourceText dialogs = RESOURCENAMES(file, "DIALOG");
    if (!dialogs.error.empty()) return dialogs.error;
    for (int n = 1; n <= STRLINES(dialogs.text); ++n) {
        STAMP();
        const std::string name = STRLINE(dialogs.text, n), error = TESTPROPERTIES(file, name).error;
        if (!error.empty()) return "(Dialog " + name + ") " + error;
    }
    return {};
}

}  // namespace tarn
