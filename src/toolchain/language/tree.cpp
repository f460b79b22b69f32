// SPDX-License-Identifier: Apache-2.0
#include "toolchain/language/tree.h"

namespace tarn::toolchain {

const char* typeName(Type type) {
    switch (type) {
    case Type::Boolean: return "boolean";
    case Type::Integer: return "integer";
    case Type::String: return "string";
    case Type::None: return "call without a value";
    case Type::Unknown: break;
    }
    return "value";
}

std::string typePhrase(Type type) {
    return (type == Type::Integer ? "an " : "a ") + std::string(typeName(type));
}

const char* operatorText(Operator op) {
    static constexpr const char* Texts[] = {"+", "-",  "*", "div", "mod", "and", "or",
                                            "=", "<>", "<", "<=",  ">",   ">="};
    return Texts[static_cast<int>(op)];
}

const char* declarationName(DeclarationKind kind) {
    switch (kind) {
    case DeclarationKind::Constant: return "a constant";
    case DeclarationKind::Type: return "a type";
    case DeclarationKind::Function: return "a function";
    case DeclarationKind::Parameter: return "a parameter of mode in";
    case DeclarationKind::ClassVariable:
    case DeclarationKind::Variable: break;
    }
    return "a variable";
}

Declaration* findDeclaration(const ClassTree& tree, const std::string& foldedName) {
    const auto found = tree.names.find(foldedName);
    return found == tree.names.end() ? nullptr : found->second;
}

}  // namespace tarn::toolchain
