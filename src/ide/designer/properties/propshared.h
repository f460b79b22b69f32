// SPDX-License-Identifier: GPL-3.0-or-later
//
// The properties that several objects of the open dialog have in common, and the change of one of them in all. Cost: linear in
// the property lists of the objects.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace tarn {

struct SharedProperty {
    std::string name, options;
    std::string shown;     // the value as a sheet shows it
    bool differs = false;  // the objects have different values, and `shown` is empty
};

// What all objects have with the same options, in the order of the first one, but for what a sheet does not show. Of several
// objects the name and the type are left out. Empty for the menu (-1).
std::vector<SharedProperty> SHAREDPROPERTIES(const std::vector<int>& objects);
// Gives all of them the value, which their options allow, and puts right what that leaves. True if anything has changed.
bool CHANGESHAREDPROPERTY(const std::vector<int>& objects, const std::string& name, const std::string& value);

}  // namespace tarn
