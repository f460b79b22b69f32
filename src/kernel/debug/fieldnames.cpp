// SPDX-License-Identifier: Apache-2.0
#include "kernel/debug/fieldnames.h"

#include "os/text/ascii.h"

#include <algorithm>
#include <charconv>

namespace tarn {
namespace {

// By the number of the variable. The place tells whether that variable is still the one that they were told for: each
// that may have names tells them anew.
struct Told {
    const void* address;
    const char* names;
    std::int32_t kind;
};
Told told[MaxVariables];

// The length of the names that the text begins with.
std::size_t lengthOf(std::string_view text) {
    if (text.starts_with('#')) return std::min(text.find_first_not_of("0123456789", 1), text.size());
    if (text.empty() || (text.front() != '(' && text.front() != '[')) return 0;
    int open = 0;
    for (std::size_t at = 0; at < text.size(); ++at) {
        if (text[at] == '(' || text[at] == '[') ++open;
        if ((text[at] == ')' || text[at] == ']') && --open == 0) return at + 1;
    }
    return text.size();
}

// Calls `take` with the number, the name and the names of each field until it says that it was that one.
template <class Take>
void eachField(std::string_view names, Take take) {
    if (!names.starts_with('(')) return;
    names.remove_prefix(1);
    for (std::int32_t number = 1; !names.empty(); ++number) {
        const std::size_t end = std::min(names.find_first_of("([,)]#"), names.size());
        const std::string_view name = names.substr(0, end);
        names.remove_prefix(end);
        const std::size_t inner = lengthOf(names);
        if (take(number, name, names.substr(0, inner))) return;
        names.remove_prefix(inner);
        if (!names.starts_with(',')) return;
        names.remove_prefix(1);
    }
}

}  // namespace

void NameFields(const void* address, const char* names) {
    if (variableTable == nullptr || variableTable->count < 1) return;
    const VariableEntry& last = variableTable->entries[variableTable->count - 1];
    if (last.address != address) return;
    told[variableTable->count - 1] = {address, names, last.kind};
}

std::string_view FieldNames(const VariableEntry& entry) {
    if (variableTable == nullptr || &entry < variableTable->entries ||
        &entry >= variableTable->entries + variableTable->count)
        return {};
    const Told& one = told[&entry - variableTable->entries];
    return one.address == entry.address && one.kind == entry.kind && one.names != nullptr
               ? one.names
               : std::string_view();
}

FieldPlace FindField(std::string_view names, std::string_view field) {
    FieldPlace found;
    eachField(names, [&](std::int32_t number, std::string_view name, std::string_view inner) {
        const bool same = !field.empty() && ascii::equal(name, field);
        if (same) found = {number, inner};
        return same;
    });
    return found;
}

std::string_view FieldNamesAt(std::string_view names, std::int32_t number) {
    std::string_view found;
    eachField(names, [&](std::int32_t at, std::string_view, std::string_view inner) {
        if (at == number) found = inner;
        return at == number;
    });
    return found;
}

std::int32_t HighestOrdinal(std::string_view names) {
    std::int32_t highest = 0;
    const bool told =
        names.starts_with('#') &&
        std::from_chars(names.data() + 1, names.data() + names.size(), highest).ec == std::errc();
    return told ? std::min(highest, std::int32_t{UINT8_MAX}) : UINT8_MAX;
}

std::string_view ElementNames(std::string_view names) {
    const std::size_t length = lengthOf(names);
    return names.starts_with('[') && length > 2 && names[length - 1] == ']' ? names.substr(1, length - 2)
                                                                            : std::string_view();
}

}  // namespace tarn
