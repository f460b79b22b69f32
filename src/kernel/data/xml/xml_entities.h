// SPDX-License-Identifier: Apache-2.0
//
// The entities of an XML file: what "&name;" stands for. Sorted by reference; the first definition of a name
// binds. A replacement text is not looked at again: references in it stay as they are.
//
// Cost: a look is a binary search of at most 100 entries.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

namespace tarn {

inline constexpr std::int32_t MaxEntities = 100, MaxEntityText = 500;

struct EntityTable {
    std::int32_t count;
    // Each the reference with '&' and ';', a character 1, the replacement and a NUL.
    std::array<std::array<char, MaxEntityText + 1>, MaxEntities> entries;
};

// The five that every file has: &amp; &lt; &gt; &apos; &quot;
void EntityInit(EntityTable& table);
// "", or what is wrong (671): a full table, or a reference and replacement that reach 500 characters. A
// reference that is there keeps its text, and that is no failure.
std::string EntityAdd(EntityTable& table, std::string_view reference, std::string_view replacement);
// False for one that is not there. `replacement` points into the table.
bool EntityFind(const EntityTable& table, std::string_view reference, std::string_view& replacement);

}  // namespace tarn
