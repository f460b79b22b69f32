// SPDX-License-Identifier: Apache-2.0
#include "toolchain/language/tree.h"

namespace tarn::toolchain {

const char* operatorText(Operator op) {
    static constexpr const char* Texts[] = {"+", "-",  "*", "/",  "div", "mod", "and", "or",
                                            "=", "<>", "<", "<=", ">",   ">=",  "in"};
    return Texts[static_cast<int>(op)];
}

const char* declarationName(DeclarationKind kind) {
    switch (kind) {
    case DeclarationKind::Constant: return "a constant";
    case DeclarationKind::Type: return "a type";
    case DeclarationKind::Function: return "a function";
    case DeclarationKind::Parameter: return "a parameter of mode in";
    case DeclarationKind::Window: return "a window or control";
    case DeclarationKind::ClassVariable:
    case DeclarationKind::Variable: break;
    }
    return "a variable";
}

Declaration* findDeclaration(const ClassTree& tree, const std::string& foldedName) {
    const auto found = tree.names.find(foldedName);
    return found == tree.names.end() ? nullptr : found->second;
}

bool isStoredConstant(const Declaration& item) {
    return item.kind == DeclarationKind::Constant && isComposite(item.type->kind) &&
           item.type->kind != Kind::String;
}

const Declaration* findMain(const ClassTree& tree) {
    for (const Declaration* item = findDeclaration(tree, "main"); item != nullptr; item = item->nextForm)
        if (item->kind == DeclarationKind::Function &&
            (item->function->parameters.empty() || item->function->isCallback))
            return item;
    return nullptr;
}

}  // namespace tarn::toolchain
