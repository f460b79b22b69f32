// SPDX-License-Identifier: GPL-3.0-or-later
#include "ide/designer/properties/propshared.h"

#include "ide/designer/dlgstep.h"
#include "ide/designer/objects/dlgobjects.h"
#include "ide/designer/properties/proplines.h"
#include "library/designer/propedit_rows.h"
#include "library/settings/profstr.h"
#include "library/system/system.h"

#include <algorithm>

MODULE("dlgedit")

namespace tarn {
namespace {

bool isOfOneOnly(std::string_view name) {
    return STREQUAL(name, "NAME") || STREQUAL(name, "TYPEOF");
}

std::vector<SharedProperty> propertiesOf(int object) {
    std::vector<SharedProperty> properties;
    for (const PropertyLine& line : PROPERTYLINES(DESIGNITEM(object), object == 1))
        if (!STREQUAL(STRWORD(line.options, 1), "HIDDEN"))
            properties.push_back({line.name, line.options, SHOWNPROPERTY(line.options, line.value)});
    return properties;
}

// Leaves what the other object has too, and forgets the values in which they differ.
void share(std::vector<SharedProperty>& properties, const std::vector<SharedProperty>& other) {
    std::erase_if(properties, [&](SharedProperty& mine) {
        const auto same = std::find_if(other.begin(), other.end(), [&](const SharedProperty& one) {
            return STREQUAL(one.name, mine.name) && one.options == mine.options;
        });
        if (same == other.end()) return true;
        mine.differs = mine.differs || same->shown != mine.shown;
        if (mine.differs) mine.shown.clear();
        return false;
    });
}

void change(int object, const std::string& name, const std::string& value) {
    FRAME(CHANGE);
    const std::string before = DESIGNITEM(object);
    std::string after;
    STAMP();
    for (const PropertyLine& line : PROPERTYLINES(before, object == 1))
        after += (STREQUAL(line.name, name) ? PROPERTYLINE(line, value) : line.line) + "\n";
    STAMP();
    if (after == before) return;
    const Object datalist = DATALIST();
    SETDESIGNITEM(datalist, object, after);
    STAMP();
    POSTEDITCHECK(datalist, object);
    STAMP();
}

}  // namespace

std::vector<SharedProperty> SHAREDPROPERTIES(const std::vector<int>& objects) {
    FRAME(SHAREDPROPERTIES);
    STAMP();
    if (objects.empty() || objects[0] < 1) return {};
    std::vector<SharedProperty> properties = propertiesOf(objects[0]);
    if (objects.size() > 1) std::erase_if(properties, [](const auto& one) { return isOfOneOnly(one.name); });
    STAMP();
    for (std::size_t i = 1; i < objects.size(); ++i) share(properties, propertiesOf(objects[i]));
    STAMP();
    return properties;
}

bool CHANGESHAREDPROPERTY(const std::vector<int>& objects, const std::string& name,
                          const std::string& value) {
    FRAME(CHANGESHAREDPROPERTY);
    STAMP();
    return DESIGNSTEP([&] {
        for (const int object : objects) change(object, name, value);
    });
}

}  // namespace tarn
