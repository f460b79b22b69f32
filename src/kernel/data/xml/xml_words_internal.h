// SPDX-License-Identifier: Apache-2.0
//
// The words that the writer of XML makes: names of elements, types and escaped texts. Only its modules
// include this.
#pragma once

#include "kernel/values/values.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace tarn {

using XmlNames = std::vector<std::string>;

// One for each line; empty where a line gives none.
XmlNames XmlNamesOfLines(std::string_view lines);
// Of the fields that a table's description of its row declares.
XmlNames XmlDeclaredNames(std::string_view description);
// Names of elements for `count` fields. One that is missing, or there before, is "Field" and the number.
XmlNames XmlFieldNames(const XmlNames& given, std::int32_t count);
// "type" and "index" mean something else as attributes.
bool XmlIsReserved(std::string_view name);

// What stands in the attribute `type` of a value's element.
std::string XmlTypeOf(const void* value, Kind kind);

void XmlAppendEscaped(std::string& out, std::string_view text);

}  // namespace tarn
