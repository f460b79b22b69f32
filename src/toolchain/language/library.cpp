// SPDX-License-Identifier: Apache-2.0
#include "toolchain/language/library.h"

#include "kernel/run/errors.h"
#include "os/text/ascii.h"
#include "toolchain/language/checker.h"
#include "toolchain/language/parser.h"

namespace tarn::toolchain {
namespace {

struct PredefinedObject {
    const char* word;
    const char* window;  // as the platform calls it
};
constexpr PredefinedObject Predefined[] = {
    {"printer", "Sysprinter"},
    {"screen", "Sysscreen"},
    {"clipboard", "Sysclipboard"},
};

void declarePredefined(ClassTree& tree, const char* word, const char* window) {
    auto item = std::make_unique<Declaration>();
    item->kind = DeclarationKind::Window;
    item->name = word;
    item->window = window;
    item->isPublic = true;
    item->owner = &tree;
    item->typeNode = std::make_shared<TypeNode>();
    item->typeNode->name = "Control";
    tree.names.emplace(word, item.get());
    tree.declarations.push_back(std::move(item));
}

}  // namespace

std::string errorConstants() {
    std::string text;
#define TARN_CONSTANT(code, name, words) text += "public const ERR_" #name " = " #code "\n";
    TARN_ERRORS(TARN_CONSTANT)
#undef TARN_CONSTANT
    return text;
}

std::string systemText() {
    std::string text(SystemText);
    const auto put = [&text](std::string_view mark, const std::string& lines) {
        text.replace(text.find(mark), mark.size(), lines);
    };
    put("@ERRORS@", errorConstants());
    put("@WINDOWS@", windowHeads());
    return text;
}

ClassTree& systemClass() {
    static const std::unique_ptr<ClassTree> tree = [] {
        Messages silent;
        auto made = parseClass(systemText(), "system.cls", silent);
        for (const auto& [word, window] : Predefined) declarePredefined(*made, word, window);
        return made;
    }();
    return *tree;
}

bool isSystem(const ClassTree& tree) {
    return &tree == &systemClass();
}

const Type* systemType(const char* name) {
    Declaration* item = findDeclaration(systemClass(), ascii::lowered(name));
    Messages silent;
    resolveHead(systemClass(), *item, silent);
    return item->type;
}

}  // namespace tarn::toolchain
