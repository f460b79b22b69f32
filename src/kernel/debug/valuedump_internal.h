// SPDX-License-Identifier: Apache-2.0
//
// The text of the debugger's list of values (showvalues.h), with what each line shows.
#pragma once

#include "kernel/run/state.h"
#include "kernel/values/values.h"

#include <cstddef>
#include <cstdint>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace tarn {

// What a line shows: a variable, as its index in the list of variables, and of that an element, from 0.
struct ShownLine {
    static constexpr std::int32_t NoElement = -1, NoValue = -2;  // the whole variable; neither
    std::int32_t variable = 0, element = NoElement;
    bool continues = false;  // the line before
};

// What the user has asked for beyond what is shown of itself.
struct HowShown {
    std::int32_t page = -1;  // the first element of PageElements that are shown alone; below 0: all are
    std::set<std::int32_t> whole{};  // elements, or NoElement, whose limits do not count
};

class ValueDump {
public:
    ValueDump(bool hex, std::size_t capacity) : hex_(hex), capacity_(capacity) {}

    void add(const VariableEntry& entry, const HowShown& how = {});

    [[nodiscard]] const std::string& text() const { return text_; }
    [[nodiscard]] const std::vector<ShownLine>& lines() const { return lines_; }

private:
    void variable(const void* at, Kind kind, bool whole);
    [[nodiscard]] ShownLine lineOf(std::int32_t element, bool continues = false) const;
    void elements(const void* at, Kind kind, const HowShown& how);
    bool element(const void* at, Kind kind, std::int32_t index, bool whole, bool last);
    void wholeValue(const void* at, Kind kind, std::int32_t element, std::string_view indent);
    void dropLinesFor(std::size_t size);
    void endLine(std::int32_t element, bool continues = false);
    [[nodiscard]] bool full() const { return text_.size() >= capacity_; }

    bool hex_;
    std::size_t capacity_;
    std::string text_;
    std::vector<ShownLine> lines_;
    std::int32_t variables_ = 0;  // that were added
};

// What stands in front of a variable's value: "x : Integer".
std::string VariableHead(const VariableEntry& entry);

// A number, or a descriptor that is of its kind or all zero.
bool HoldsValue(const void* at, Kind kind);

// The flags for values in one line.
std::uint32_t OneLineFlags(bool hex);
// A value in one line, within the limits of one.
void AppendOneLine(std::string& text, const void* at, Kind kind, bool hex);
inline std::string OneLineValue(const void* at, Kind kind, bool hex) {
    std::string text;
    AppendOneLine(text, at, kind, hex);
    return text;
}

}  // namespace tarn
