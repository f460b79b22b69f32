// SPDX-License-Identifier: GPL-3.0-or-later
//
// The properties of an object as a sheet takes them: each line of its list with what may be its value. A property that
// the user leaves as it is keeps its line, byte for byte.
//
// Cost: linear in the list; the options come from the table of the object's type.
#pragma once

#include "library/settings/placeholders.h"

#include <string>
#include <string_view>
#include <vector>

namespace tarn {

struct PropertyLine {
    std::string name, line;  // the line as it stands in the list
    std::string options;     // "HIDDEN" for what the type does not know
    std::string value;       // as the user sees it: a path as it is on this machine
};

// In the order of the list. The dialog itself may become a window of another type.
std::vector<PropertyLine> PROPERTYLINES(const std::string& list, bool isWindow);
// The line of a property with a value that comes from a sheet.
std::string PROPERTYLINE(const PropertyLine& property, const std::string& value);

PlaceholderFolders DESIGNFOLDERS();  // of the open dialog

}  // namespace tarn
