// SPDX-License-Identifier: Apache-2.0
#include "toolchain/tree.h"

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

const char* operatorText(Operator op) {
    static constexpr const char* Texts[] = {"+", "-",  "*", "div", "mod", "and", "or",
                                            "=", "<>", "<", "<=",  ">",   ">="};
    return Texts[static_cast<int>(op)];
}

const char* declarationName(DeclarationKind kind) {
    switch (kind) {
    case DeclarationKind::Constant: return "constant";
    case DeclarationKind::Type: return "type";
    case DeclarationKind::Function: return "function";
    case DeclarationKind::Parameter: return "parameter of mode in";
    case DeclarationKind::ClassVariable:
    case DeclarationKind::Variable: break;
    }
    return "variable";
}

Declaration* findDeclaration(const ClassTree& tree, const std::string& foldedName) {
    const auto found = tree.names.find(foldedName);
    return found == tree.names.end() ? nullptr : found->second;
}

}  // namespace tarn::toolchain
