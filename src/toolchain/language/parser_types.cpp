// SPDX-License-Identifier: Apache-2.0
//
// Types as they are written.
#include "toolchain/language/parser_internal.h"

#include <array>

namespace tarn::toolchain {
namespace {

struct TypeWord {
    Word word;
    Kind kind;
};

constexpr auto TypeWords = std::to_array<TypeWord>({
    {Word::Boolean, Kind::Boolean},
    {Word::Integer, Kind::Integer},
    {Word::Fixed, Kind::Fixed},
    {Word::Real, Kind::Real},
    {Word::Adt, Kind::Adt},
    {Word::String, Kind::String},
    {Word::Enum, Kind::Enum},
    {Word::Record, Kind::Record},
    {Word::Union, Kind::Union},
    {Word::Set, Kind::Set},
    {Word::Array, Kind::Array},
    {Word::List, Kind::List},
    {Word::Table, Kind::Table},
    {Word::Index, Kind::Integer},
});

}  // namespace

TypeNodePtr Parser::makeType(Kind kind) {
    auto node = std::make_shared<TypeNode>();
    node->kind = kind;
    node->line = here().line;
    return node;
}

// Never null.
TypeNodePtr Parser::typeReference() {
    TypeNodePtr node = makeType(Kind::None);
    if (!enter()) return node;
    node->isExternal = accept(Word::External);
    if (node->isExternal && !isWord(Word::List) && !isWord(Word::Table))
        reportExpected("'list' or 'table'");
    else
        typeBody(*node);
    leave();
    if (node->kind == Kind::Enum && !node->names.empty()) enumNames(node, isPublic_);
    return node;
}

void Parser::typeBody(TypeNode& node) {
    for (const TypeWord& entry : TypeWords) {
        if (!accept(entry.word)) continue;
        node.kind = entry.kind;
        if (entry.kind == Kind::Enum) return enumType(node);
        if (entry.kind == Kind::Record || entry.kind == Kind::Union) return fields(node, entry.word);
        if (entry.word == Word::Index && !isWord(Word::Of)) return reportExpected("'of'");
        if (entry.word == Word::Index || entry.word == Word::Adt) return partOf(node);
        return simpleType(node);
    }
    if (isName()) return namedType(node);
    reportExpected("a type");
}

// What stands behind the word of a type that has no body of its own.
void Parser::simpleType(TypeNode& node) {
    switch (node.kind) {
    case Kind::String:
    case Kind::Set:
        if (isSymbol("[")) ranges(node);
        return;
    case Kind::Array:
    case Kind::List:
    case Kind::Table:
        if (isSymbol("[")) ranges(node);
        return element(node);
    default:
        if (isSymbol("[") && !here().firstOnLine) reportExpected("'array[...] of' in front of the type");
        return;
    }
}

// Of a library parameter: `adt of l` is an element of the parameter l, `index of t` the name of an index.
void Parser::partOf(TypeNode& node) {
    if (accept(Word::Of)) name(node.partOf, "the name of a parameter");
}

void Parser::namedType(TypeNode& node) {
    if (foreignType(node)) return;
    name(node.name, "a type");
    if (accept(".")) {
        node.qualifier = std::move(node.name);
        node.name.clear();
        if (!name(node.name, "a type")) return;
    }
    if (isSymbol("[")) ranges(node);
}

void Parser::enumType(TypeNode& node) {
    const bool brace = isSymbol("{") && takeInstead("(");
    if (!brace && !accept("(")) return;
    do {
        std::string text;
        if (!newName(text)) return;
        node.names.push_back(text);
    } while (accept(","));
    if (!brace || !accept("}")) expect(")");
}

void Parser::fields(TypeNode& node, Word closing) {
    const int line = here().line;
    while (isName()) {
        const std::size_t first = node.fields.size();
        do {
            FieldNode field;
            field.line = here().line;
            if (!newName(field.name)) return;
            node.fields.push_back(std::move(field));
        } while (accept(","));
        if (!expect(":")) return;
        const TypeNodePtr type = typeReference();
        if (panic_) return;
        for (std::size_t i = first; i < node.fields.size(); ++i) node.fields[i].type = type;
    }
    if (!isWord(Word::End)) return reportExpected("a field or 'end " + std::string(spelling(closing)) + "'");
    advance();
    if (accept(closing)) return;
    --position_;
    const std::string what(spelling(closing));
    report(Problem::NotClosed, {what, std::to_string(line), "end " + what,
                                "'end " + std::string(peek(1).text.substr(0, 40)) + "'"});
}

void Parser::ranges(TypeNode& node) {
    node.hasRanges = true;
    advance();
    do {
        RangeNode range;
        if (!accept("*")) {
            range.lower = expression();
            if (!panic_ && (accept(":") || (isSymbol("..") && takeInstead(":")))) range.upper = expression();
        }
        if (panic_) return;
        node.ranges.push_back(std::move(range));
    } while (accept(","));
    expect("]");
}

void Parser::element(TypeNode& node) {
    if (panic_) return;
    if (isSymbol("<")) return reportExpected("'of' and a type");
    node.isOpen = !accept(Word::Of);
    if (node.isOpen) return;
    node.element = typeReference();
    if (!panic_ && node.kind == Kind::Table) indexes(node);
}

void Parser::indexes(TypeNode& node) {
    while (!panic_ && accept(Word::Index)) {
        IndexNode index;
        index.line = here().line;
        if (isName()) name(index.name, "a name");
        if (!expect("(")) return;
        do {
            std::string field;
            if (!name(field, "the name of a field")) return;
            index.fields.push_back(field);
        } while (accept(","));
        if (!expect(")")) return;
        node.indexes.push_back(std::move(index));
    }
}

}  // namespace tarn::toolchain
