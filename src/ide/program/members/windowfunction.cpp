// SPDX-License-Identifier: GPL-3.0-or-later
#include "ide/program/members/windowfunction.h"

#include "ide/program/projwindow.h"
#include "ide/shell/idecore.h"
#include "library/settings/profstr.h"
#include "library/source/codewiz.h"
#include "library/source/symbols.h"
#include "library/system/system.h"
#include "os/text/ascii.h"

#include <set>

MODULE("projedit", tarn::PROJECT_ONERROR)

namespace tarn {

namespace {

// The function as it is to stand in the class. It is lined up before it comes there: what else the class has stays.
TemplateText MAKEFUNCTION(const std::string& name, const std::string& body) {
    FRAME(MAKEFUNCTION);
    STAMP();
    TemplateText function = FUNCTIONFROMTEMPLATE(name, body);
    STAMP();
    if (function.message.empty()) function.message = SYMINDENTFUNCHEADER(name, 0, function.text);
    return function;
}

// The first of the names that a function has already, in any case; empty if all are free.
std::string TAKENNAME(const std::string& names, const std::string& text) {
    FRAME(TAKENNAME);
    std::set<std::string> taken;
    STAMP();
    const std::string functions = FUNCTIONNAMES(text);
    for (std::string_view rest = functions; !rest.empty();)
        taken.insert(STRUPPER(ascii::withoutLineEnd(ascii::takeLine(rest))));
    for (std::string_view rest = names; !rest.empty();) {
        std::string name(ascii::withoutLineEnd(ascii::takeLine(rest)));
        if (!taken.insert(STRUPPER(name)).second) return name;
    }
    return {};
}

}  // namespace

std::string ADDWINDOWFUNCTIONS(const std::string& names, std::string& text) {
    FRAME(ADDWINDOWFUNCTIONS);
    STAMP();
    const TemplateText body = LOADTEMPLATE(GETIDEINIFILE(), "Template.FunctionBody.cls");
    if (!body.message.empty() || names.empty()) return body.message;
    STAMP();
    const std::string taken = TAKENNAME(names, text);
    if (!taken.empty()) return "The class already contains a function called '" + taken + "'.";
    std::string functions;
    for (std::string_view rest = names; !rest.empty();) {
        STAMP();
        const std::string name(ascii::withoutLineEnd(ascii::takeLine(rest)));
        const TemplateText function = MAKEFUNCTION(name, body.text);
        if (!function.message.empty()) return function.message;
        functions += (functions.empty() ? "" : "\n\n") + STRRTRIMCRLF(function.text);
    }
    STAMP();
    return SYMADDFUNCTION(functions, 0, text);
}

std::string ADDWINDOWFUNCTION(const std::string& name, std::string& text) {
    FRAME(ADDWINDOWFUNCTION);
    STAMP();
    return ADDWINDOWFUNCTIONS(name + "\n", text);
}

std::string FUNCTIONNAMES(const std::string& text) {
    FRAME(FUNCTIONNAMES);
    constexpr int FromText = 0;
    STAMP();
    return SYMSCANSOURCE(text, FromText);
}

}  // namespace tarn
