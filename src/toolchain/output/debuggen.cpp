// SPDX-License-Identifier: Apache-2.0
#include "toolchain/output/debuggen.h"

#include "toolchain/output/names.h"

namespace tarn::toolchain {
namespace {

constexpr std::size_t MostNames =
    4000;  // bytes; records within records have more fields than anybody asks for by name
constexpr std::int32_t AllOrdinals = 256;

std::string placeOf(const Declaration& item, ExpressionGenerator& out) {
    return (isScalar(item.type->kind) ? "&" : "") + out.place(item);
}

bool holdsElements(Kind kind) {
    return kind == Kind::Array || kind == Kind::List || kind == Kind::Table;
}
bool mayHaveNames(Kind kind) {
    return isRecord(kind) || holdsElements(kind) || kind == Kind::Enum;
}

void registerVariable(const Declaration& item, char role, ExpressionGenerator& out) {
    const Kind kind = item.type->kind;
    const std::string place = "(void *)" + placeOf(item, out);
    out.line("tarn_register_variable(" + cString(item.name) + ", '" + role + "', " + cKind(kind) + ", " +
             place + ");");
    // Also without names, so that those of a variable that stood there before are gone.
    if (mayHaveNames(kind))
        out.line("tarn_name_fields(" + place + ", " + cString(fieldNames(*item.type)) + ");");
}

// Grows `text` no further than it takes to see that it has become too long.
void addNames(const Type& type, std::string& text) {
    if (text.size() > MostNames) return;
    if (type.element != nullptr && holdsElements(type.kind)) {
        std::string inner;
        addNames(*type.element, inner);
        if (!inner.empty()) text += "[" + inner + "]";
    } else if (type.kind == Kind::Enum && type.enumCount < AllOrdinals) {
        text += "#" + std::to_string(type.enumCount - 1);
    } else if (isRecord(type.kind)) {
        char before = '(';
        for (const Field& field : type.fields) {
            text += before + field.name;
            addNames(*field.type, text);
            before = ',';
        }
        if (before == ',') text += ")";
    }
}

}  // namespace

void registerClassVariables(const ClassTree& tree, ExpressionGenerator& out) {
    for (const auto& item : tree.declarations)
        if (item->kind == DeclarationKind::ClassVariable) registerVariable(*item, 'C', out);
}

void registerVariables(const Declaration& function, ExpressionGenerator& out) {
    static constexpr char Roles[] = {'I', 'O', 'N'};
    const Function& head = *function.function;
    for (const auto& item : head.parameters)
        registerVariable(*item, Roles[static_cast<int>(item->mode)], out);
    for (const auto& item : head.variables) registerVariable(*item, 'V', out);
    registerClassVariables(*function.owner, out);
    const Kind kind = head.result->kind;
    if (kind != Kind::None)
        out.line("tarn_register_result(" + cKind(kind) + ", " + (isScalar(kind) ? "&r" : "result") + ");");
}

std::string fieldNames(const Type& type) {
    std::string text;
    addNames(type, text);
    return text.size() <= MostNames ? text : std::string();
}

}  // namespace tarn::toolchain
