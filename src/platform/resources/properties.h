// SPDX-License-Identifier: Apache-2.0
//
// The properties of each object type: their names in the order of a property list, what a value may be (in
// the language of options texts), and the value of one that a resource file does not mention. These tables
// alone decide what `ResourceTypelist` tells, what is read and what is written.
//
// A value has two forms. In memory it is the plain value: a text of any bytes. In a property list it stands
// on one line: texts in double quotes, and LF and NUL as "\n" and "\0". A backslash is doubled only in a run
// that stands before n or 0, so that paths keep their look and every line has exactly one meaning. Everything
// else stands for itself, blanks and carriage returns at the ends of a line too.
#pragma once

#include "platform/object.h"

#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace tarn::platform {

enum class ValueKind {
    Plain,  // a number, a word, a list of numbers
    Text,   // any bytes; quoted
    File,   // a path; quoted, and backslashes stand for themselves in a list
};

struct PropertyRow {
    std::string_view name;
    std::string_view options;
    std::string_view missing;  // the value where a resource file does not mention it
    ValueKind kind = ValueKind::Plain;
};

// The rows of a type; empty for types that no resource file holds.
std::span<const PropertyRow> propertiesOf(Type type);
const PropertyRow* findProperty(Type type,
                                std::string_view name);  // any case; null if the type has no such one

using Properties = std::vector<std::pair<std::string, std::string>>;  // upper-case name, plain value

// The value of `name`, or what stands for it where it is missing.
std::string_view valueOf(const Properties& properties, Type type, std::string_view name);

std::string toListValue(ValueKind kind, std::string_view value);
std::string fromListValue(ValueKind kind, std::string_view listValue);
ValueKind kindOf(Type type, std::string_view name);  // of a property that the type lacks: Plain

// The value as a property list tells it: the same, but for a choice, which is its number ("1-Yes", or
// "Centre" in ENUM(Left,Right,Centre)), and for line ends in a path.
std::string normalValue(Type type, std::string_view name, std::string_view value);

// Whether the property is a number or a choice.
bool isNumeric(const PropertyRow& row);

// A whole property list: NAME, TYPEOF, then all of the type in the order of its table, then what else there
// is.
std::string makePropertyList(std::string_view name, Type type, const Properties& properties);

struct ParsedList {
    std::string name;
    Type type = Type::None;
    Properties properties;  // without NAME and TYPEOF
};
ParsedList parsePropertyList(std::string_view list);

}  // namespace tarn::platform
