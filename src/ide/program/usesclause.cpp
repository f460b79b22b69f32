// SPDX-License-Identifier: GPL-3.0-or-later
#include "ide/program/usesclause.h"

#include "ide/editor/lineends.h"
#include "ide/editor/sourcefile.h"
#include "ide/editor/textedit.h"
#include "ide/program/changes.h"
#include "ide/shell/idecore.h"
#include "ide/shell/windows.h"
#include "library/source/symbols.h"
#include "library/system/system.h"

namespace tarn {
namespace {

void USESCLAUSE_ONERROR(std::int32_t code) {
    if (!ISFILEERROR(code)) return DefaultErrorHandler(code);
    TELLERROR(code, "The Uses clause was not changed. Check that you may read the class.");
}

}  // namespace
}  // namespace tarn

MODULE("projedit", tarn::USESCLAUSE_ONERROR)

namespace tarn {
namespace {

constexpr const char* Title = "Uses Clause";

// The names with one more or one less; the same ones if there is nothing to do.
std::string changedNames(const std::string& names, std::string_view operation, const std::string& name) {
    const std::string padded = " " + names + " ", word = " " + name + " ";
    const bool present = STRFIND(word, padded) > 0;
    if (STREQUAL(operation, "ADD") && !present) return STRTRIM(names + " " + name);
    if (STREQUAL(operation, "DEL") && present) return STRTRIM(STRREPLACE(padded, word, " ", true, 1, 1));
    return names;
}

void tell(const std::string& file, const std::string& error) {
    MsgBox(Title,
           "The Uses clause of the following class could not be changed:\n\n\t'" + file + "'\n\n" + error,
           "OK", BoxIcon::Error);
}

void putIntoWindow(const std::string& text) {
    EDITWNDCHANGETEXT(SDIEdit, text);
    SetModify(SDIEdit, true);
    EDITWNDSAVE(SDIEdit, false);
}

}  // namespace

UsesChange CHANGEUSESCLAUSE(const std::string& text, std::string_view operation, const std::string& name) {
    FRAME(CHANGEUSESCLAUSE);
    STAMP();
    UsesChange change{text, false, {}};
    const std::string names = SYMGETUSES(0, text), wanted = changedNames(names, operation, name);
    STAMP();
    if (name.empty() || wanted == names) return change;
    std::string changed = text;
    change.error = SYMSETUSES(wanted, 0, changed);
    if (change.error.empty() && changed == text) change.error = "It does not contain a class.";
    if (!change.error.empty()) return change;
    change.text = ADOPTLINEENDS(changed, text);
    change.changed = true;
    return change;
}

bool UPDATEUSESCLAUSE(const std::string& file, std::string_view operation, const std::string& name) {
    FRAME(UPDATEUSESCLAUSE);
    STAMP();
    if (!ISCLASSFILE(file)) return false;
    const bool inWindow = ISINEDITOR(file);
    STAMP();
    std::string text = inWindow ? GetText(SDIEdit) : "";
    const bool loaded = inWindow || LOADFILE(file, text);
    STAMP();
    if (!loaded) return false;
    const UsesChange change = CHANGEUSESCLAUSE(text, operation, name);
    STAMP();
    if (!change.error.empty()) return tell(file, change.error), false;
    if (!change.changed) return false;
    if (inWindow) return putIntoWindow(change.text), true;
    const std::string error = CHANGEFILES({{file, change.text}});
    STAMP();
    if (!error.empty()) tell(file, error);
    return error.empty();
}

}  // namespace tarn
