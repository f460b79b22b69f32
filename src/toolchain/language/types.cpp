// SPDX-License-Identifier: Apache-2.0
#include "toolchain/language/types.h"

#include "os/text/ascii.h"

#include <algorithm>
#include <map>
#include <memory>

namespace tarn::toolchain {
namespace {

struct KindRow {
    const char* name;
    std::int32_t bytes;
};

constexpr KindRow Kinds[] = {
    {"call without a value", 0},
    {"boolean", 1},
    {"enum", 1},
    {"integer", 4},
    {"fixed", 8},
    {"real", 8},
    {"string", 24},
    {"record", 36},
    {"union", 36},
    {"set", 44},
    {"array", 44},
    {"list", 24},
    {"table", 24},
    {"adt", 0},
    {"value", 0},
    {"value in braces", 0},
};

const KindRow& rowOf(Kind kind) {
    return Kinds[static_cast<std::size_t>(kind)];
}

void spell(std::string& key, const Type* part) {
    key.append(1, '@').append(std::to_string(reinterpret_cast<std::uintptr_t>(part)));
}

std::string keyOf(const Type& type) {
    std::string key = std::to_string(static_cast<int>(type.kind));
    if (type.isExternal) key += 'x';
    if (type.isOpen) key += 'o';
    key.append(1, ',')
        .append(std::to_string(type.length))
        .append(1, ',')
        .append(std::to_string(type.dimensions));
    for (const Range& range : type.bounds)
        key.append(1, '[')
            .append(std::to_string(range.lower))
            .append(1, ':')
            .append(std::to_string(range.upper));
    if (type.element != nullptr) spell(key, type.element);
    for (const Field& field : type.fields) {
        key.append(1, ';').append(ascii::lowered(field.name));
        spell(key, field.type);
    }
    for (const Index& index : type.indexes) {
        key.append(1, '#').append(ascii::lowered(index.name));
        for (const int field : index.fields) key.append(1, '.').append(std::to_string(field));
    }
    return key.append(1, '=').append(ascii::lowered(type.enumName));
}

// Bounds and capacities do not matter here: the run-time sees to them.
bool sameShape(const Type* a, const Type* b);

bool sameFields(const Type& a, const Type& b) {
    return std::equal(a.fields.begin(), a.fields.end(), b.fields.begin(), b.fields.end(),
                      [](const Field& left, const Field& right) {
                          return ascii::equal(left.name, right.name) && sameShape(left.type, right.type);
                      });
}

bool sameIndexes(const Type& a, const Type& b) {
    return std::equal(a.indexes.begin(), a.indexes.end(), b.indexes.begin(), b.indexes.end(),
                      [](const Index& left, const Index& right) { return left.fields == right.fields; });
}

bool sameEnum(const Type& a, const Type& b) {
    return a.enumName.empty() || b.enumName.empty() || a.enumName == b.enumName;
}

bool sameShape(const Type* a, const Type* b) {
    if (a == b) return true;
    if (a->kind != b->kind || a->isExternal != b->isExternal) return false;
    switch (a->kind) {
    case Kind::Enum: return sameEnum(*a, *b);
    case Kind::Record:
    case Kind::Union: return sameFields(*a, *b);
    case Kind::Array: return a->dimensions == b->dimensions && sameShape(a->element, b->element);
    case Kind::List: return sameShape(a->element, b->element);
    case Kind::Table: return sameShape(a->element, b->element) && sameIndexes(*a, *b);
    default: return true;
    }
}

bool converts(Kind from, Kind to) {
    return (from == Kind::Integer && (to == Kind::Fixed || to == Kind::Real)) ||
           (from == Kind::Fixed && to == Kind::Real);
}

std::string plural(const Type* type) {
    const std::string name = kindName(type->kind);
    return name == "fixed" || name == "real" ? name + " numbers" : name + "s";
}

}  // namespace

std::int32_t sizeOf(Kind kind) {
    return rowOf(kind).bytes;
}

const char* kindName(Kind kind) {
    return rowOf(kind).name;
}

const Type* internType(Type parts) {
    static std::map<std::string, std::unique_ptr<Type>> types;
    std::int32_t offset = 0;
    for (Field& field : parts.fields) {
        field.offset = offset;
        offset += sizeOf(field.type->kind);
    }
    parts.key = keyOf(parts);
    std::unique_ptr<Type>& place = types[parts.key];
    if (!place) {
        parts.number = types.size();
        place = std::make_unique<Type>(std::move(parts));
    }
    return place.get();
}

const Type* plainType(Kind kind) {
    static const Type* types[std::size(Kinds)] = {};
    const Type*& type = types[static_cast<std::size_t>(kind)];
    if (type == nullptr) {
        Type parts;
        parts.kind = kind;
        type = internType(std::move(parts));
    }
    return type;
}

const Type* stringType(std::int32_t length) {
    Type parts;
    parts.kind = Kind::String;
    parts.length = length;
    return internType(std::move(parts));
}

const Type* openType(Kind kind) {
    Type parts;
    parts.kind = kind;
    parts.isOpen = true;
    return internType(std::move(parts));
}

std::string typePhrase(const Type* type) {
    const std::string name = kindName(type->kind);
    const bool vowel = name.find_first_of("aeio") == 0;
    std::string phrase = (vowel ? "an " : "a ") + name;
    if (type->kind == Kind::Fixed || type->kind == Kind::Real) phrase += " number";
    if (type->isExternal) phrase = "an external " + name;
    if (type->kind == Kind::Enum && !type->enumName.empty())
        phrase += " of " + type->enumName.substr(type->enumName.find('.') + 1);
    const bool parts = type->kind == Kind::Array || type->kind == Kind::List;
    if (parts && type->element != nullptr) phrase += " of " + plural(type->element);
    return phrase;
}

int fieldNumber(const Type& type, std::string_view name) {
    for (std::size_t i = 0; i < type.fields.size(); ++i)
        if (ascii::equal(type.fields[i].name, name)) return static_cast<int>(i) + 1;
    return 0;
}

int indexNumber(const Type& table, std::string_view name) {
    for (std::size_t i = 0; i < table.indexes.size(); ++i)
        if (!name.empty() && ascii::equal(table.indexes[i].name, name)) return static_cast<int>(i) + 1;
    return 0;
}

Fit fitOf(const Type* from, const Type* to) {
    if (to->kind == Kind::Adt) return isComposite(from->kind) ? Fit::Open : Fit::None;
    if (to->isOpen)
        return from->kind == to->kind || (isRecord(to->kind) && isRecord(from->kind)) ? Fit::Open : Fit::None;
    if (sameShape(from, to)) return from->kind == Kind::None ? Fit::None : Fit::Same;
    return converts(from->kind, to->kind) ? Fit::Convert : Fit::None;
}

}  // namespace tarn::toolchain
