// SPDX-License-Identifier: GPL-3.0-or-later
#include "ide/designer/properties/proplines.h"

#include "ide/designer/dlgstep.h"
#include "library/designer/propedit.h"
#include "library/designer/proputil.h"
#include "library/settings/profstr.h"
#include "library/system/system.h"

#include <algorithm>

MODULE("dlgedit")

namespace tarn {
namespace {

// The options of a property in the type's description.
std::string optionsOf(const std::string& types, const std::string& name) {
    for (int n = 1; n <= STRLINES(types); ++n) {
        const std::string line = STRLINE(types, n), word = STRWORD(line, 1);
        if (STREQUAL(word, name)) return STRTRIM(line.substr(std::min(line.size(), word.size())));
    }
    return "HIDDEN";
}

bool isQuoted(const PropertyLine& property) {
    return (property.options.starts_with("STRING") || property.options.starts_with("FILENAME")) &&
           !STREQUAL(property.name, "TYPEOF");
}

// What the sheet makes of a value that it is given, so that only what the user has done counts as a change.
std::string asShown(const PropertyLine& property) {
    if (property.options == "HIDDEN") return property.value;
    const std::string value = GETNEXTVALUE(property.options, property.value, 0);
    return CHECKVALUE(property.options, value).message.empty() ? value : "\n";
}

}  // namespace

PlaceholderFolders DESIGNFOLDERS() {
    return {DESIGNTEXT("resourcedir"), DESIGNTEXT("compilerdir")};
}

std::vector<PropertyLine> PROPERTYLINES(const std::string& list, bool isWindow) {
    FRAME(PROPERTYLINES);
    STAMP();
    const std::string types = GETOBJECTTYPELIST(GETPROPVALUE(list, "TYPEOF"));
    const std::string names = GETPROPNAMES(list), values = GETPROPVALUE(list, "");
    std::vector<PropertyLine> lines;
    for (int n = 1; n <= STRLINES(names); ++n) {
        PropertyLine one{STRLINE(names, n), STRLINE(list, n), "", STRLINE(values, n)};
        one.options = isWindow && STREQUAL(one.name, "TYPEOF")
                          ? R"(STRING("Dialog","Editwindow","Richeditwindow"))"
                          : optionsOf(types, one.name);
        if (STREQUAL(one.name, "PICTURE") && one.value.find('<') != std::string::npos)
            one.value = FILERESOLVEPATHS(one.value, DESIGNFOLDERS());
        lines.push_back(std::move(one));
    }
    STAMP();
    return lines;
}

std::string PROPERTYLINE(const PropertyLine& property, const std::string& value) {
    FRAME(PROPERTYLINE);
    STAMP();
    if (value == property.value || value == asShown(property)) return property.line;
    return property.name + "=" + (isQuoted(property) ? STRADDQUOTES(value) : value);
}

}  // namespace tarn
