// SPDX-License-Identifier: Apache-2.0
//
// The text of a resource file taken apart, with the bytes that each part stands on, so that one part can be
// written again and all others keep theirs. docs/formats/rc.md describes the grammar. Cost: linear in
// the text.
#pragma once

#include "platform/object.h"
#include "platform/resources/properties.h"
#include "platform/text.h"

#include <cstddef>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace tarn::platform {

struct Span {
    std::size_t begin = 0, end = 0;  // byte offsets
};

// A fault in the text: its line (from 1), the number of the table of run-time errors, and what is wrong.
struct RcFault {
    int line = 0, number = 0;
    std::string text;
    [[nodiscard]] bool empty() const { return text.empty(); }
};

struct RcProperty {
    std::string name;   // upper case
    std::string value;  // plain
    Span line;          // with its line end
    Span valueSpan;
    int lineNumber = 0;
};

// The head of a block with the properties below it. `span` begins behind the last line of the block before
// it, so that comments belong to what they stand above.
struct RcObject {
    Type type = Type::None;
    std::string name;
    std::string number;  // as written; empty if none is
    Span span, head;     // `head`: the head's line
    Span typeSpan, nameSpan, numberSpan;
    std::vector<RcProperty> properties;
    int lineNumber = 0;
    // The NAME of its property list: a control that has a number alone is named by it.
    [[nodiscard]] const std::string& givenName() const;
    [[nodiscard]] Properties values() const;  // normal ones, the first of each name
};

enum class RcKind { Define, Window, Menu, Version, File, Unknown };

struct RcStatement {
    RcKind kind = RcKind::Unknown;
    std::string name;
    std::string kindWord;              // upper case: DIALOG, MENU, BITMAP, ...
    std::string id;                    // Define: its number; File: the id if one is written
    std::vector<std::string> options;  // File
    std::string path;                  // File
    Span span;                         // whole lines
    Span nameSpan, idSpan;
    RcObject self;                  // Window, Menu: the head and its own properties
    std::vector<RcObject> objects;  // controls or items
    int lineNumber = 0;
    RcFault fault;  // the first one in it; its span is whole then too, but its parts may be missing
};

struct RcFile {
    std::string text;
    std::vector<RcStatement> statements;
    std::map<std::string, int, LessText> symbols;  // of the #define lines; the first one of a name counts
    RcFault fault;  // of the whole text, when it is none and there are no statements

    [[nodiscard]] const RcStatement* find(RcKind kind, std::string_view name) const;  // any case
    [[nodiscard]] const RcStatement* find(std::string_view name) const;               // no Define, no Unknown
    // The number of a symbol: a #define of this file, or a common identifier; 0 if it has none.
    [[nodiscard]] int symbol(std::string_view name) const;
    // The number that an object has by its head or by a #define of its name; 0 if it has none.
    [[nodiscard]] int numberOf(const RcObject& object) const;
    [[nodiscard]] std::string_view lineEnd() const;  // what the file uses
};

inline constexpr std::size_t largestResourceText = 64U << 20U;

// A statement with a fault hides no other one: a block whose END is missing ends before the next line that
// can only begin a statement. A byte order mark at the start is passed over.
RcFile parseResourceText(std::string text);

// A fault as the operations tell it.
std::string faultText(const std::string& file, const RcFault& fault);

int commonId(std::string_view name);            // 0 if it is none
bool isMemoryOption(std::string_view word);     // PRELOAD, FIXED, ...: words between kind and path
std::string quoted(std::string_view text);      // in double quotes with escapes
std::string quotedPath(std::string_view path);  // in double quotes, backslashes doubled
std::string valueText(Type type, std::string_view name,
                      std::string_view value);  // as it stands behind the "="

}  // namespace tarn::platform
