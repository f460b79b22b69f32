// SPDX-License-Identifier: Apache-2.0
//
// What the modules of type information text share: one line read in place. The views point into the text that
// was read and live as long as it does.
#pragma once

#include "kernel/data/typeinfo/typeinfo.h"
#include "os/text/ascii.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace tarn::typeinfo {

constexpr std::string_view trimmed(std::string_view text) {
    while (!text.empty() && ascii::isBlank(text.front())) text.remove_prefix(1);
    while (!text.empty() && ascii::isBlank(text.back())) text.remove_suffix(1);
    return text;
}

constexpr bool isEndName(std::string_view name) {
    return ascii::equal(name, "end");
}

struct Line {
    std::string_view text;  // the whole line, with its line feed
    std::int32_t indent = 0;
    std::string_view name, typeName;
    std::size_t nameEnd = 0, typeEnd = 0;  // where in the text the name, uncut, and the type name end
    TypeBounds bounds;
    bool colon = false;  // stands between name and type
    bool whole = false;  // a name that may be read, and nothing behind the type and its bounds
    [[nodiscard]] bool isEnd() const { return isEndName(name); }
};
Line readLine(std::string_view line);
std::string_view lineOf(std::string_view text, std::int32_t number);  // empty for one that is not there
std::int32_t countLines(std::string_view text);                       // a last one without a line feed counts

// "[lb1:ub1,...]", "" when there is no first bound.
std::string boundsText(const TypeBounds& bounds);
bool opensBlock(const Line& line);  // a record, a union, a list or a table
// "end", alone or with one of those words, and nothing else. What closes a block for a reader may be more.
bool closesBlock(const Line& line);
// The text that a buffer of `size` characters can hold.
void cutTo(std::string& text, std::int32_t size);

// ---- values ----

// The least depth at which blocks are no longer built.
inline constexpr std::int32_t TooDeep = 101;
inline constexpr std::int32_t LargestKind = 44;  // the bytes of the largest kind of value

// A declaration that values are built from: at most 32767 characters, the last line ended, and the outer pair
// of "list" and "table" lines taken off.
struct Source {
    std::string text;
    std::int32_t outer = 0;  // of the pair: KindList, KindTable, 0 for none
};
Source sourceOf(std::string_view text);
// Copies the text of a string value; 756 and false for what is no string.
bool takeText(const StringDescriptor* text, std::string& taken);
// Frees the old value of a target and makes it zero. False, with nothing changed, for null and for another
// kind of value.
bool freeTarget(void* value, Kind kind);
// A list of the values that the source says. False when it says none, or cannot be made; `value` is zero
// then.
bool buildList(const Source& source, ListDescriptor& value, bool inFile);

}  // namespace tarn::typeinfo
