// SPDX-License-Identifier: Apache-2.0
#include "toolchain/language/hints.h"

#include "os/text/ascii.h"

#include <algorithm>
#include <array>

namespace tarn::toolchain {
namespace {

struct Conversion {
    Kind from, to;
    std::string_view here;
};
constexpr auto Conversions = std::to_array<Conversion>({
    {Kind::Boolean, Kind::String, "STR(...)"},
    {Kind::Enum, Kind::String, "STR(...)"},
    {Kind::Integer, Kind::String, "STR(...)"},
    {Kind::Fixed, Kind::String, "STR(...)"},
    {Kind::Real, Kind::String, "STR(...)"},
    {Kind::Set, Kind::String, "STR(...)"},
    {Kind::Enum, Kind::Integer, "ORD(...)"},
    {Kind::Fixed, Kind::Integer, "CVTI(...)"},
    {Kind::Real, Kind::Integer, "CVTI(...)"},
    {Kind::String, Kind::Integer, "CVTI(...), or ORD(...) for the code of a character"},
    {Kind::Integer, Kind::Enum, "the name of the enum's type in front of it, as in TColour(2)"},
    {Kind::Real, Kind::Fixed, "CVTF(...)"},
    {Kind::String, Kind::Fixed, "CVTF(...)"},
    {Kind::String, Kind::Real, "CVTR(...)"},
    {Kind::Integer, Kind::Boolean, "a comparison, such as '<> 0'"},
    {Kind::Fixed, Kind::Boolean, "a comparison, such as '<> 0'"},
    {Kind::Real, Kind::Boolean, "a comparison, such as '<> 0'"},
    {Kind::String, Kind::Boolean, "a comparison, such as '<> \"\"'"},
});

struct Method {
    Kind kind;  // Unknown: of any kind
    std::string_view name, before, behind;
};
constexpr auto Methods = std::to_array<Method>({
    {Kind::Unknown, "length", "LENGTH(", ")"},
    {Kind::Unknown, "len", "LENGTH(", ")"},
    {Kind::Unknown, "size", "LENGTH(", ")"},
    {Kind::Unknown, "count", "LENGTH(", ")"},
    {Kind::Unknown, "tostring", "STR(", ")"},
    {Kind::List, "add", "LISTADD(", ", ...)"},
    {Kind::List, "append", "LISTADD(", ", ...)"},
    {Kind::List, "push", "LISTADD(", ", ...)"},
    {Kind::List, "remove", "LISTDELETE(", ", place)"},
    {Kind::List, "clear", "LISTCLEAR(", ")"},
    {Kind::Table, "add", "TABADD(", ", row)"},
    {Kind::Table, "remove", "TABDELETE(", ", key)"},
    {Kind::Table, "clear", "TABCLEAR(", ")"},
    {Kind::Set, "add", "SETINCLUDE(", ", ...)"},
    {Kind::Set, "remove", "SETEXCLUDE(", ", ...)"},
    {Kind::Set, "clear", "SETCLEAR(", ")"},
    {Kind::String, "upper", "STRUPPER(", ")"},
    {Kind::String, "toupper", "STRUPPER(", ")"},
    {Kind::String, "lower", "STRLOWER(", ")"},
    {Kind::String, "tolower", "STRLOWER(", ")"},
    {Kind::String, "trim", "STRTRIM(", ")"},
    {Kind::String, "replace", "STRREPLACE(", ", what, with)"},
    {Kind::String, "split", "STRSPLIT(", ", separator, 0)"},
    {Kind::String, "substr", "STRMID(", ", place, count)"},
    {Kind::String, "substring", "STRMID(", ", place, count)"},
});

bool isCharacter(const Expression& item) {
    return item.kind == ExpressionKind::Index && item.operands[0]->type->kind == Kind::String;
}

}  // namespace

std::string conversionHint(const Type* from, const Type* to) {
    const auto found = std::find_if(Conversions.begin(), Conversions.end(), [&](const Conversion& entry) {
        return entry.from == from->kind && entry.to == to->kind;
    });
    return found == Conversions.end() ? "" : ": write " + std::string(found->here);
}

std::string operandHint(Operator op, const Expression& left, const Expression& right) {
    const Type *a = left.type, *b = right.type;
    const bool leftText = a->kind == Kind::String, rightText = b->kind == Kind::String;
    if (op == Operator::Add && leftText != rightText)
        return leftText ? conversionHint(b, a) : conversionHint(a, b);
    const bool character = (isCharacter(left) && rightText) || (isCharacter(right) && leftText);
    return character ? ": write ORD(...) of the text" : "";
}

std::string methodHint(std::string_view method, const std::string& object, Kind kind) {
    if (isRecord(kind) || kind == Kind::Unknown) return {};
    for (const Method& entry : Methods)
        if (ascii::equal(entry.name, method) && (entry.kind == kind || entry.kind == Kind::Unknown))
            return std::string(entry.before) + object + std::string(entry.behind);
    return {};
}

}  // namespace tarn::toolchain
