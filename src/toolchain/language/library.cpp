// SPDX-License-Identifier: Apache-2.0
#include "toolchain/language/library.h"

#include "os/text/ascii.h"
#include "toolchain/language/checker.h"
#include "toolchain/language/parser.h"

namespace tarn::toolchain {

std::string systemText() {
    static constexpr std::string_view Mark = "@WINDOWS@";
    std::string text(SystemText);
    return text.replace(text.find(Mark), Mark.size(), windowHeads());
}

ClassTree& systemClass() {
    static const std::unique_ptr<ClassTree> tree = [] {
        Messages silent;
        return parseClass(systemText(), "system.cls", silent);
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
