// SPDX-License-Identifier: Apache-2.0
#include "kernel/data/xml/xml_entities.h"

#include <algorithm>
#include <cstring>
#include <string>

namespace tarn {

namespace {

constexpr char separator = '\1';

using Entry = std::array<char, MaxEntityText + 1>;

std::string_view referenceOf(const Entry& entry) {
    const std::string_view text = entry.data();
    return text.substr(0, text.find(separator));
}

// The first entry that is not below `reference`.
std::size_t placeOf(const EntityTable& table, std::string_view reference) {
    const auto* const begin = table.entries.data();
    const auto* const place = std::lower_bound(
        begin, begin + table.count, reference,
        [](const Entry& entry, std::string_view wanted) { return referenceOf(entry) < wanted; });
    return static_cast<std::size_t>(place - begin);
}

bool standsAt(const EntityTable& table, std::size_t place, std::string_view reference) {
    return place < static_cast<std::size_t>(table.count) && referenceOf(table.entries[place]) == reference;
}

}  // namespace

void EntityInit(EntityTable& table) {
    constexpr struct {
        std::string_view reference, character;
    } predefined[] = {{"&amp;", "&"}, {"&lt;", "<"}, {"&gt;", ">"}, {"&apos;", "'"}, {"&quot;", "\""}};
    table.count = 0;
    for (const auto& entity : predefined) EntityAdd(table, entity.reference, entity.character);
}

std::string EntityAdd(EntityTable& table, std::string_view reference, std::string_view replacement) {
    const std::size_t place = placeOf(table, reference);
    if (standsAt(table, place, reference)) return {};
    if (table.count == MaxEntities)
        return "Too many entities, the maximum number is " + std::to_string(MaxEntities);
    if (reference.size() + replacement.size() >= std::size_t{MaxEntityText})
        return "Entity and replacement text is too long, max combined length is " +
               std::to_string(MaxEntityText);
    Entry* const entry = table.entries.data() + place;
    std::memmove(entry + 1, entry, (static_cast<std::size_t>(table.count) - place) * sizeof(Entry));
    char* at = std::copy(reference.begin(), reference.end(), entry->data());
    *at++ = separator;
    *std::copy(replacement.begin(), replacement.end(), at) = '\0';
    ++table.count;
    return {};
}

bool EntityFind(const EntityTable& table, std::string_view reference, std::string_view& replacement) {
    const std::size_t place = placeOf(table, reference);
    if (!standsAt(table, place, reference)) return false;
    replacement = std::string_view(table.entries[place].data()).substr(reference.size() + 1);
    return true;
}

}  // namespace tarn
