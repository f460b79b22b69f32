// SPDX-License-Identifier: Apache-2.0
//
// Types as they are written to types.
#include "os/text/ascii.h"
#include "toolchain/language/checker_internal.h"
#include "toolchain/language/library.h"

#include <algorithm>

namespace tarn::toolchain {
namespace {

constexpr std::int32_t MostRows = 0x7FFFFFFF;

bool canBeKey(const Type& type) {
    if (type.kind >= Kind::Boolean && type.kind <= Kind::String) return true;
    return type.kind == Kind::Array && type.dimensions == 1 && type.element->kind == Kind::Enum;
}

}  // namespace

// A node that several names share is resolved once.
const Type* Checker::resolve(TypeNode& node) {
    if (node.resolved != nullptr) return node.resolved;
    node.resolved = plainType(Kind::Unknown);
    if (node.kind == Kind::None) return node.resolved = resolveNamed(node);
    if (isScalar(node.kind) && node.kind != Kind::Enum) return node.resolved = plainType(node.kind);
    const bool inLibrary = isSystem(tree_);
    if (!inLibrary && (node.kind == Kind::Adt || node.isOpen)) {
        add(node.line, Problem::LibraryOnly,
            {std::string("'") + kindName(node.kind) + (node.isOpen ? "' without 'of'" : "'")});
        return node.resolved;
    }
    if (node.kind == Kind::Adt) return node.resolved = plainType(Kind::Adt);
    const bool openRecord = inLibrary && isRecord(node.kind) && node.fields.empty();
    if (node.isOpen || openRecord || (inLibrary && node.kind == Kind::Set && !node.hasRanges))
        return node.resolved = openType(node.kind);
    Type parts = partsOf(node);
    if (parts.kind == Kind::Unknown) return node.resolved;
    return node.resolved = internType(std::move(parts));
}

Type Checker::partsOf(TypeNode& node) {
    Type type;
    type.kind = node.kind;
    type.isExternal = node.isExternal;
    bool good = true;
    switch (node.kind) {
    case Kind::Enum:
        if (node.names.empty()) break;
        type.enumName = tree_.name + "." + (node.name.empty() ? node.names[0] : node.name);
        type.enumCount = static_cast<std::int32_t>(node.names.size());
        good = node.names.size() <= 256;
        if (!good) add(node.line, Problem::TooManyParts, {"enum", "256", "names"});
        break;
    case Kind::String: good = capacity(node, type); break;
    case Kind::Record:
    case Kind::Union: good = fieldsOf(node, type); break;
    case Kind::Set: good = boundsOf(node, type); break;
    case Kind::Array: good = elementOf(node, type) && boundsOf(node, type); break;
    case Kind::List: good = elementOf(node, type) && capacity(node, type); break;
    default: good = elementOf(node, type) && capacity(node, type) && indexesOf(node, type); break;
    }
    if (!good) type.kind = Kind::Unknown;
    return type;
}

const Type* Checker::resolveNamed(TypeNode& node) {
    if (node.name.empty()) return plainType(Kind::Unknown);
    const Declaration* item = lookUp(node.qualifier, node.name, node.line);
    if (item == nullptr) return plainType(Kind::Unknown);
    if (item->kind != DeclarationKind::Type) {
        wrongKind(*item, "a type", node.line);
        return plainType(Kind::Unknown);
    }
    if (item->owner == &tree_) resolveHead(const_cast<Declaration&>(*item));
    return node.hasRanges ? withRanges(item->type, node) : item->type;
}

// A named type without bounds takes them where it is used.
const Type* Checker::withRanges(const Type* named, TypeNode& node) {
    Type type = *named;
    bool good = type.kind == Kind::Unknown;
    switch (type.kind) {
    case Kind::String:
    case Kind::List:
    case Kind::Table: good = type.length == Unbounded && capacity(node, type); break;
    case Kind::Set:
    case Kind::Array: good = type.bounds.empty() && boundsOf(node, type); break;
    default: break;
    }
    if (good && type.kind != Kind::Unknown) return internType(std::move(type));
    if (type.kind != Kind::Unknown) add(node.line, Problem::NoBounds, {"'" + node.name + "'"});
    return plainType(Kind::Unknown);
}

// ---- numbers ----

bool Checker::constantNumber(Expression& item, std::int64_t least, std::int64_t most, std::int64_t& number) {
    const bool good = item.type->kind == Kind::Integer && item.constant && item.constant->number >= least &&
                      item.constant->number <= most;
    if (good) number = item.constant->number;
    return good;
}

bool Checker::capacity(TypeNode& node, Type& type) {
    if (!node.hasRanges) return true;
    const bool text = type.kind == Kind::String;
    RangeNode& range = node.ranges[0];
    if (node.ranges.size() == 1 && range.lower == nullptr) return true;  // `*`
    bool good = node.ranges.size() == 1;
    std::int64_t first = 1, last = 0;
    if (good) check(range.lower);
    if (good && range.upper) check(range.upper);
    const std::int64_t most = text ? MaxStringLength : MostRows;
    good = good && constantNumber(*range.lower, 1, most, last);
    if (good && range.upper) {
        first = last;
        good = constantNumber(*range.upper, 1, most, last) && first == 1;
    }
    if (good)
        type.length = static_cast<std::int32_t>(last);
    else
        add(node.line, text ? Problem::StringLength : Problem::BadBounds, {});
    return good;
}

bool Checker::constantRange(RangeNode& range, Range& result) {
    check(range.lower);
    if (range.upper) check(range.upper);
    std::int64_t lower = 1, upper = 1;
    const bool good = range.upper ? constantNumber(*range.lower, LowestBound, HighestBound, lower) &&
                                        constantNumber(*range.upper, LowestBound, HighestBound, upper)
                                  : constantNumber(*range.lower, LowestBound, HighestBound, upper);
    if (!good || lower > upper) return false;
    result = {static_cast<std::int32_t>(lower), static_cast<std::int32_t>(upper)};
    return true;
}

bool Checker::boundsOf(TypeNode& node, Type& type) {
    const std::size_t most = type.kind == Kind::Array ? 3 : 1;
    const bool named = node.kind == Kind::None;
    if (type.kind == Kind::Array && !named)
        type.dimensions = static_cast<std::uint8_t>(std::max<std::size_t>(node.ranges.size(), 1));
    if (!node.hasRanges) return true;
    if (node.ranges.size() > most) {
        add(node.line, Problem::TooManyParts, {kindName(type.kind), std::to_string(most), "pairs of bounds"});
        return false;
    }
    if (named && type.kind == Kind::Array && node.ranges.size() != type.dimensions) {
        add(node.line, Problem::IndexCount,
            {"'" + node.name + "'", std::to_string(type.dimensions), std::to_string(node.ranges.size())});
        return false;
    }
    std::size_t open = 0;
    for (RangeNode& item : node.ranges) {
        Range range;
        if (item.lower == nullptr)
            ++open;
        else if (constantRange(item, range))
            type.bounds.push_back(range);
        else {
            add(node.line, Problem::BadBounds, {});
            return false;
        }
    }
    if (open == 0 || open == node.ranges.size()) return true;
    add(node.line, Problem::BadBounds, {});
    return false;
}

// ---- parts ----

bool Checker::elementOf(TypeNode& node, Type& type) {
    type.element = resolve(*node.element);
    if (type.element->kind == Kind::Unknown) return false;
    if (type.element->isExternal) {
        add(node.line, Problem::NoBounds, {typePhrase(type.element)});
        return false;
    }
    if (type.kind != Kind::Table || type.element->kind == Kind::Record) return true;
    add(node.line, Problem::TypeMismatch, {"a record", typePhrase(type.element)});
    return false;
}

bool Checker::fieldsOf(TypeNode& node, Type& type) {
    if (node.fields.size() > MaxFields) {
        add(node.line, Problem::TooManyParts, {kindName(type.kind), std::to_string(MaxFields), "fields"});
        return false;
    }
    bool good = true;
    for (FieldNode& field : node.fields) {
        const int earlier = fieldNumber(type, field.name);
        if (earlier > 0) {
            add(field.line, Problem::DeclaredTwice,
                {field.name, std::to_string(node.fields[static_cast<std::size_t>(earlier) - 1].line)});
            good = false;
        }
        Field made{field.name, resolve(*field.type), 0};
        good = good && made.type->kind != Kind::Unknown;
        type.fields.push_back(std::move(made));
    }
    return good;
}

bool Checker::indexesOf(TypeNode& node, Type& type) {
    if (node.indexes.size() > MaxIndexes) {
        add(node.line, Problem::TooManyParts, {"table", std::to_string(MaxIndexes), "indexes"});
        return false;
    }
    for (const IndexNode& item : node.indexes) {
        Index index;
        index.name = item.name;
        if (!item.name.empty() && indexNumber(type, item.name) > 0) {
            add(item.line, Problem::DeclaredTwice, {item.name, std::to_string(node.line)});
            return false;
        }
        if (!indexFields(item, *type.element, index)) return false;
        type.indexes.push_back(std::move(index));
    }
    return true;
}

bool Checker::indexFields(const IndexNode& node, const Type& row, Index& index) {
    if (node.fields.size() > MaxKeyFields) {
        add(node.line, Problem::TooManyParts, {"index", std::to_string(MaxKeyFields), "fields"});
        return false;
    }
    for (const std::string& name : node.fields) {
        const int number = fieldNumber(row, name);
        const bool good = number > 0 && canBeKey(*row.fields[static_cast<std::size_t>(number) - 1].type);
        if (number == 0) add(node.line, Problem::NoSuchField, {"the row", name});
        if (number > 0 && !good) add(node.line, Problem::BadKey, {name});
        if (!good) return false;
        index.fields.push_back(number);
    }
    return true;
}

}  // namespace tarn::toolchain
