// SPDX-License-Identifier: Apache-2.0
#include "kernel/debug/breakpoints.h"

#include "kernel/debug/debugsettings.h"
#include "kernel/text/numbers.h"
#include "os/text/ascii.h"
#include "platform/text.h"

#include <algorithm>
#include <limits>

namespace tarn {
namespace {

// Goes through a text of words, blanks between them.
class Words {
public:
    explicit Words(std::string_view text) : rest_(text) { skipBlanks(); }
    [[nodiscard]] char next() const { return rest_.empty() ? '\0' : rest_.front(); }
    std::string_view take() {
        std::size_t end = 0;
        while (end < rest_.size() && !ascii::isBlank(rest_[end])) ++end;
        const std::string_view word = rest_.substr(0, end);
        rest_.remove_prefix(end);
        skipBlanks();
        return word;
    }

private:
    void skipBlanks() {
        while (!rest_.empty() && ascii::isBlank(rest_.front())) rest_.remove_prefix(1);
    }
    std::string_view rest_;
};

// A number of digits alone that is an integer.
bool readDigits(std::string_view word, std::int32_t& number) {
    if (word.empty() || !std::all_of(word.begin(), word.end(), ascii::isDigit)) return false;
    bool ok = false;
    IntegerFromWholeText(word, number, ok);
    return ok;
}

bool startsName(char c) {
    return ascii::isLetter(c) || c == '_';
}

void readBreakpoints(std::string_view value, BreakpointTable* table) {
    Words words(value.substr(0, MaxBreakpointsText));
    while (startsName(words.next())) {
        const std::string_view name = words.take();
        const bool isName = platform::isIdentifier(name) && name.size() <= MaxName;
        while (ascii::isDigit(words.next())) {
            std::int32_t line = 0;
            if (readDigits(words.take(), line) && isName) BreakpointSet(table, name, line, true);
        }
    }
}

// Far values of a damaged file stay integers.
std::int32_t sum(std::int32_t a, std::int32_t b) {
    const std::int64_t exact = std::int64_t{a} + b;
    return static_cast<std::int32_t>(std::min<std::int64_t>(exact, std::numeric_limits<std::int32_t>::max()));
}

std::int32_t readInteger(const std::string& value) {
    std::int32_t number = 0;
    bool ok = false;
    IntegerFromWholeText(value, number, ok);
    return ok ? number : 0;
}

}  // namespace

std::int32_t BreakpointFind(const BreakpointTable* table, std::string_view className, std::int32_t line) {
    if (table == nullptr) return 0;
    for (std::int32_t i = 0; i < table->count; ++i) {
        const BreakpointEntry& entry = table->entries[i];
        if (entry.line == line && ascii::equal(entry.className, className.substr(0, MaxName))) return i + 1;
    }
    return 0;
}

void BreakpointSet(BreakpointTable* table, std::string_view className, std::int32_t line, bool on) {
    if (table == nullptr) return;
    const std::int32_t found = BreakpointFind(table, className, line);
    if (found == 0 && on && table->count < MaxBreakpoints) {
        BreakpointEntry& entry = table->entries[table->count++];
        entry.className[ascii::uppered(className).copy(entry.className, MaxName)] = 0;
        entry.line = line;
        table->changed = true;
    } else if (found != 0 && !on) {
        std::copy(table->entries + found, table->entries + table->count, table->entries + found - 1);
        table->entries[--table->count] = {};
        table->changed = true;
    }
}

bool BreakpointsChanged(const BreakpointTable* table) {
    return table != nullptr && table->changed;
}

void BreakpointsSetChanged(BreakpointTable* table, bool value) {
    if (table != nullptr) table->changed = value;
}

std::string BreakpointsText(const BreakpointTable* table, const ClassTable* classes) {
    std::string text;
    if (table == nullptr || classes == nullptr) return text;
    for (std::int32_t c = 0; c < classes->count; ++c) {
        std::string head = std::string(classes->entries[c].className) + " ";
        for (std::int32_t i = 0; i < table->count; ++i) {
            const BreakpointEntry& entry = table->entries[i];
            if (!ascii::equal(entry.className, classes->entries[c].className)) continue;
            const std::string added = head + std::to_string(entry.line) + " ";
            if (text.size() + added.size() > MaxBreakpointsText) return text;
            text += added;
            head.clear();
        }
    }
    return text;
}

DebugSettings ParseDebugPosition(std::string_view value) {
    Words words(value);
    std::int32_t numbers[4] = {};
    for (std::int32_t& number : numbers) readDigits(words.take(), number);
    DebugSettings settings;
    settings.left = numbers[0];
    settings.top = numbers[1];
    settings.right = sum(numbers[0], numbers[2]);
    settings.bottom = sum(numbers[1], numbers[3]);
    return settings;
}

DebugSettings LoadDebugSettings(std::string_view file, std::string_view section, BreakpointTable* table) {
    if (table != nullptr) *table = {};
    DebugSettings settings;
    if (file.empty() || section.empty()) return settings;
    readBreakpoints(DebugSetting(file, section, BreakpointsKey), table);
    settings = ParseDebugPosition(DebugSetting(file, section, DebugPositionKey));
    settings.traceMode = readInteger(DebugSetting(file, section, TraceProgramKey));
    settings.singleStep = readInteger(DebugSetting(file, section, SingleStepKey)) != 0;
    return settings;
}

}  // namespace tarn
