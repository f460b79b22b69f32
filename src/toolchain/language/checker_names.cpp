// SPDX-License-Identifier: Apache-2.0
//
// Scopes and look-up: a name is looked for in the function, in the class, in the used classes, then in the
// library.
#include "os/text/ascii.h"
#include "toolchain/language/checker_internal.h"
#include "toolchain/language/classes.h"
#include "toolchain/language/library.h"
#include "toolchain/language/windows.h"

#include <algorithm>

namespace tarn::toolchain {

void Checker::wrongKind(const Declaration& item, const char* needed, int line) {
    add(line, Problem::NotThatKind, {item.name, declarationName(item.kind), needed});
}

// Null when nothing is found; a message was given then, unless `quiet`.
const Declaration* Checker::lookUp(const std::string& qualifier, const std::string& name, int line,
                                   bool quiet) {
    const std::string folded = ascii::lowered(name);
    const Declaration* found = nullptr;
    if (qualifier.empty()) {
        const auto local = locals_.find(folded);
        found = local != locals_.end() ? local->second : findDeclaration(tree_, folded);
        if (found == nullptr && function_ != nullptr && function_->isCallback)
            found = findDeclaration(tree_, windowKey(functionItem_->name, name));
        if (found == nullptr) found = findDeclaration(tree_, windowKey(name));
        if (found == nullptr) found = lookUpUsed(folded, name, line);
        if (found == nullptr && !isSystem(tree_)) {
            Declaration* item = findDeclaration(systemClass(), folded);
            if (item != nullptr) prepare(systemClass(), *item, line);
            found = item;
        }
    } else {
        found = lookUpIn(qualifier, folded, name, line);
    }
    if (found != nullptr) {
        if (found->useLine == 0) found->useLine = line;
    } else if (!quiet) {
        unknown(name, line);
    }
    return found;
}

const Declaration* Checker::lookUpUsed(const std::string& folded, const std::string& name, int line) {
    const Declaration* found = nullptr;
    for (const UsedClass& used : tree_.uses) {
        if (used.tree == nullptr || used.tree == &tree_) continue;
        Declaration* item = findDeclaration(*used.tree, folded);
        if (item == nullptr || !item->isPublic) item = findDeclaration(*used.tree, folded + "#");
        if (item == nullptr || !item->isPublic || item == found) continue;
        if (found != nullptr) {
            add(line, Problem::Ambiguous, {name, found->owner->name, item->owner->name});
            return found;
        }
        prepare(*used.tree, *item, line);
        found = item;
    }
    return found;
}

const Declaration* Checker::lookUpIn(const std::string& qualifier, const std::string& folded,
                                     const std::string& name, int line) {
    if (ascii::equal(qualifier, tree_.name)) return findDeclaration(tree_, folded);
    if (isBuiltInClass(qualifier)) {
        Declaration* item = findDeclaration(systemClass(), folded);
        if (item != nullptr) prepare(systemClass(), *item, line);
        return item;
    }
    for (const UsedClass& used : tree_.uses) {
        if (!ascii::equal(qualifier, used.name)) continue;
        Declaration* item = used.tree != nullptr ? findDeclaration(*used.tree, folded) : nullptr;
        if (item == nullptr || !item->isPublic) return nullptr;
        prepare(*used.tree, *item, line);
        return item;
    }
    if (const Declaration* item = lookUp({}, qualifier, line, true); item != nullptr)
        wrongKind(*item, "the name of a class", line);
    else
        add(line, Problem::NotInUses, {qualifier});
    reported_.insert(ascii::lowered(name));
    return nullptr;
}

bool Checker::isClassName(const std::string& name) const {
    if (ascii::equal(name, tree_.name) || isBuiltInClass(name)) return true;
    return std::any_of(tree_.uses.begin(), tree_.uses.end(),
                       [&](const UsedClass& used) { return ascii::equal(name, used.name); });
}

// What this class needs to know of an item of another one. Errors there are that class's own.
void Checker::prepare(ClassTree& owner, Declaration& item, int line) {
    Messages silent;
    Checker other(owner, silent);
    for (Declaration* form = &item; form != nullptr; form = form->nextForm) other.resolveHead(*form);
    if (item.kind == DeclarationKind::Constant && item.evaluation == Progress::Not)
        other.evaluate(item, constantDepth_);
    if (item.kind == DeclarationKind::Constant && item.evaluation == Progress::Running)
        item.dependsOnItself = true;
    if (item.dependsOnItself) {
        // The way back goes over this class: its constant is part of the circle, too.
        if (!running_.empty()) running_.back()->dependsOnItself = true;
        add(line, Problem::ConstantCycle, {owner.name + "." + item.name});
        item.type = plainType(Kind::Unknown);
        return;
    }
    if (item.kind == DeclarationKind::Constant && !item.value && !isStoredConstant(item))
        item.type = plainType(Kind::Unknown);
    bool known = item.type->kind != Kind::Unknown;
    if (item.function) {
        known = item.function->result->kind != Kind::Unknown;
        for (const auto& parameter : item.function->parameters)
            known = known && parameter->type->kind != Kind::Unknown;
    }
    if (!known) add(line, Problem::UsedClassHasErrors, {owner.name});
}

// One message for each name, and none while a used class cannot be read to its end, or the windows of this one.
void Checker::unknown(const std::string& name, int line) {
    const bool guess = std::any_of(tree_.uses.begin(), tree_.uses.end(), [](const UsedClass& used) {
        return used.tree != nullptr ? !used.tree->complete : !isBuiltInClass(used.name);
    });
    if (!guess && !tellWindowFaults() && reported_.insert(ascii::lowered(name)).second)
        add(line, Problem::UnknownName, {name});
}

}  // namespace tarn::toolchain
