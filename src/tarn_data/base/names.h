// SPDX-License-Identifier: Apache-2.0
//
// Names of columns that the language accepts.
#pragma once

#include <string>

namespace tarn::datatool {

// "first name" : ... becomes first_name : ..., and no name stands twice.
std::string withRepairedNames(const std::string& columns);
// What a declaration can be called that stands for a file.
std::string fileIdentifier(std::string_view name);

}  // namespace tarn::datatool
