// SPDX-License-Identifier: Apache-2.0
//
// Symbol tables: sorted arrays without pointers, which their owners may put anywhere.
#include "kernel/data/scanner/scanner_table_internal.h"

#include "kernel/data/scanner/scanner_bytes.h"
#include "os/text/ascii.h"

#include <algorithm>
#include <cstring>

namespace tarn {

std::uint64_t symbolTableChanges = 0;

namespace {

struct ClassName {
    std::string_view key, label, display;
};
constexpr ClassName classNames[] = {
    {"##ID", "identifier", "<Identifier>"},
    {"##XMLID", "identifier", "<XmlIdentifier>"},
    {"##SQSTR", "string", "<SingleQuoteString>"},
    {"##DQSTR", "string", "<DoubleQuoteString>"},
    {"##MLSQSTR", "MLstring", "<SingleQuoteString>"},
    {"##MLDQSTR", "MLstring", "<DoubleQuoteString>"},
    {"##WHITESPACE", "Whitespace", "<Whitespace>"},
    {"##EOL", "EndOfLine", "<EndOfLine>"},
    {"##UREAL", "real", "<RealNumber>"},
    {"##UFIXED", "fixed", "<FixedPointNumber>"},
    {"##UINT", "integer", "<Integer>"},
    {"##HEXCONST", "hex", "<Hexadecimal>"},
};
static_assert(std::size(classNames) == SymbolClassCount);

constexpr std::string_view classMark = "##", unknownName = "<Unknown>";

// Below 0, 0 or above 0, in the order of bytes.
int compareKeys(std::string_view a, std::string_view b, bool ignoreCase) {
    if (!ignoreCase) return a.compare(b);
    const std::size_t common = std::min(a.size(), b.size());
    for (std::size_t i = 0; i < common; ++i) {
        const int left = static_cast<unsigned char>(ascii::upper(a[i]));
        const int right = static_cast<unsigned char>(ascii::upper(b[i]));
        if (left != right) return left - right;
    }
    return a.size() == b.size() ? 0 : a.size() < b.size() ? -1 : 1;
}

struct Place {
    std::int32_t index;  // from 0: of the key, or where it would stand
    bool found;
};

Place placeOf(const SymbolTable& table, std::string_view key, bool ignoreCase) {
    std::int32_t low = 0, high = table.count - 1;
    while (low <= high) {
        const std::int32_t middle = low + (high - low) / 2;
        const int order = compareKeys(key, table.entries[static_cast<std::size_t>(middle)].key, ignoreCase);
        if (order == 0) return {middle, true};
        if (order < 0) {
            high = middle - 1;
        } else {
            low = middle + 1;
        }
    }
    return {low, false};
}

const SymbolEntry* findKey(const SymbolTable* table, std::string_view key, bool ignoreCase) {
    if (table == nullptr || key.empty()) return nullptr;
    const Place place = placeOf(*table, key, ignoreCase);
    return place.found ? &table->entries[static_cast<std::size_t>(place.index)] : nullptr;
}

// The first entry with that id.
const SymbolEntry* findId(const SymbolTable* table, std::int32_t id) {
    if (table == nullptr || id < 1) return nullptr;
    const SymbolEntry* const end = table->entries.data() + table->count;
    const auto* const found =
        std::find_if(table->entries.data(), end, [=](const SymbolEntry& entry) { return entry.id == id; });
    return found == end ? nullptr : found;
}

template <class Test>
bool anyWithId(const SymbolTable* table, std::int32_t id, Test test) {
    if (table == nullptr || id < 1) return false;
    return std::any_of(table->entries.data(), table->entries.data() + table->count,
                       [&](const SymbolEntry& entry) { return entry.id == id && test(entry); });
}

const ClassName* findClass(std::string_view key, bool ignoreCase) {
    const auto* const found =
        std::find_if(std::begin(classNames), std::end(classNames),
                     [=](const ClassName& name) { return compareKeys(key, name.key, ignoreCase) == 0; });
    return found == std::end(classNames) ? nullptr : found;
}

bool isKey(std::string_view key) {
    return !key.empty() && key.front() != ' ' && key.back() != ' ' &&
           std::all_of(key.begin(), key.end(), [](char c) { return c >= 32 && c <= 126; });
}

// A field of an entry: cut, upper-cased if it begins as a class does, and zeroes behind.
void storeText(char (&into)[MaxSymbolKey + 1], std::string_view text) {
    text = text.substr(0, MaxSymbolKey);
    const bool upper = text.starts_with(classMark);
    std::memset(into, 0, sizeof into);
    std::transform(text.begin(), text.end(), into, [=](char c) { return upper ? ascii::upper(c) : c; });
}

}  // namespace

std::string_view symbolClassKey(SymbolClass symbolClass) {
    return classNames[symbolClass].key;
}

std::int32_t symbolClassId(const SymbolTable* table, SymbolClass symbolClass) {
    const SymbolEntry* const entry = findKey(table, symbolClassKey(symbolClass), false);
    return entry != nullptr ? entry->id : SymbolUnknown;
}

bool SymbolAdd(SymbolTable* table, std::int32_t id, const char* key, const char* terminator) {
    if (table == nullptr || key == nullptr || terminator == nullptr) return false;
    if (id < 0 || !isKey(key) || table->count >= MaxSymbols) return false;
    SymbolEntry added{};
    storeText(added.key, key);
    storeText(added.terminator, terminator);
    added.id = id;
    const Place place = placeOf(*table, added.key, false);
    SymbolEntry* const at = table->entries.data() + place.index;
    if (!place.found) {
        std::copy_backward(at, table->entries.data() + table->count,
                           table->entries.data() + table->count + 1);
        ++table->count;
    }
    *at = added;
    ++symbolTableChanges;
    return true;
}

void SymbolRemove(SymbolTable* table, std::string_view key) {
    if (table == nullptr) return;
    const Place place = placeOf(*table, key.substr(0, MaxSymbolKey), false);
    if (!place.found) return;
    SymbolEntry* const at = table->entries.data() + place.index;
    SymbolEntry* const end = table->entries.data() + table->count;
    std::copy(at + 1, end, at);
    end[-1] = SymbolEntry{};
    --table->count;
    ++symbolTableChanges;
}

std::int32_t SymbolLookup(const SymbolTable* table, bool ignoreCase, std::string_view key) {
    const SymbolEntry* const entry = findKey(table, key, ignoreCase);
    return entry != nullptr ? entry->id : -1;
}

std::int32_t SymbolIndex(const SymbolTable* table, std::string_view key, bool ignoreCase) {
    const SymbolEntry* const entry = findKey(table, key, ignoreCase);
    return entry != nullptr ? static_cast<std::int32_t>(entry - table->entries.data()) + 1 : -1;
}

bool SymbolHasTerminator(const SymbolTable* table, std::string_view key, bool ignoreCase) {
    const SymbolEntry* const entry = findKey(table, key, ignoreCase);
    return entry != nullptr && entry->terminator[0] != '\0';
}

bool SymbolIdHasTerminator(const SymbolTable* table, std::int32_t id) {
    return anyWithId(table, id, [](const SymbolEntry& entry) { return entry.terminator[0] != '\0'; });
}

bool SymbolIdIsClass(const SymbolTable* table, std::int32_t id) {
    return anyWithId(table, id, [](const SymbolEntry& entry) {
        return std::string_view(entry.key).starts_with(classMark);
    });
}

bool SymbolIsClassName(std::string_view key, bool ignoreCase) {
    return findClass(key, ignoreCase) != nullptr;
}

std::string_view SymbolClassLabel(std::string_view key) {
    const ClassName* const name = findClass(key, true);
    return name != nullptr ? name->label : std::string_view();
}

std::int32_t SymbolDisplayName(const SymbolTable* table, std::int32_t id, char* buffer, std::int32_t size) {
    if (buffer == nullptr || size < 1) return 0;
    const SymbolEntry* const entry = findId(table, id);
    const ClassName* const name = entry != nullptr ? findClass(entry->key, false) : nullptr;
    std::string_view text = unknownName;
    if (entry != nullptr) text = name != nullptr ? name->display : std::string_view(entry->key);
    text = text.substr(0, static_cast<std::size_t>(size - 1));
    std::memcpy(buffer, text.data(), text.size());
    buffer[text.size()] = '\0';
    return static_cast<std::int32_t>(text.size());
}

}  // namespace tarn
