// SPDX-License-Identifier: Apache-2.0
//
// The class: heads, constants, variables, functions. checker_internal.h tells where the other parts stand.
#include "toolchain/language/checker.h"

#include "os/text/ascii.h"
#include "toolchain/language/checker_internal.h"
#include "toolchain/language/library.h"
#include "toolchain/language/windows.h"

#include <algorithm>
#include <utility>

namespace tarn::toolchain {
namespace {

constexpr int MaxConstantDepth = 200;  // of constants that are named in constants

bool alwaysReturns(const Block& statements);

// Whether an `exit` in these statements leaves the loop that they are the body of.
bool leavesLoop(const Block& statements) {
    return std::any_of(statements.begin(), statements.end(), [](const StatementPtr& item) {
        if (item->kind == StatementKind::Exit) return true;
        if (item->kind != StatementKind::If && item->kind != StatementKind::Select) return false;
        return std::any_of(item->branches.begin(), item->branches.end(),
                           [](const Branch& branch) { return leavesLoop(branch.body); });
    });
}

bool statementReturns(const Statement& item) {
    switch (item.kind) {
    case StatementKind::Return: return true;
    case StatementKind::Loop: return !leavesLoop(item.body);
    case StatementKind::If:
    case StatementKind::Select:
        return item.hasElse && std::all_of(item.branches.begin(), item.branches.end(),
                                           [](const Branch& branch) { return alwaysReturns(branch.body); });
    default: return false;
    }
}

bool alwaysReturns(const Block& statements) {
    return std::any_of(statements.begin(), statements.end(),
                       [](const StatementPtr& item) { return statementReturns(*item); });
}

bool sameKinds(const Function& a, const Function& b) {
    return std::equal(
        a.parameters.begin(), a.parameters.end(), b.parameters.begin(), b.parameters.end(),
        [](const auto& left, const auto& right) { return left->type->kind == right->type->kind; });
}

}  // namespace

void Checker::run() {
    declareTypes();
    for (auto& item : tree_.declarations)
        if (item->kind == DeclarationKind::Constant) evaluate(*item, 0);
    for (auto& item : tree_.declarations) classItem(*item);
    // A constant that another class asked for first was evaluated without a word.
    for (auto& item : tree_.declarations) {
        const bool lost = item->kind == DeclarationKind::Constant && !item->value && !isStoredConstant(*item);
        if (lost && messages_.empty())
            add(item->line, item->dependsOnItself ? Problem::ConstantCycle : Problem::ConstantNeeded,
                {item->name});
    }
}

void Checker::declareTypes() {
    if (tree_.typesDone) return;
    tree_.typesDone = true;
    for (auto& item : tree_.declarations) resolveHead(*item);
}

void Checker::resolveHead(Declaration& item) {
    if (item.resolving == Progress::Done) return;
    if (item.resolving == Progress::Running) {
        add(item.line, Problem::ConstantCycle, {item.name});
        item.type = plainType(Kind::Unknown);
        return;
    }
    item.resolving = Progress::Running;
    if (item.typeNode) item.type = resolve(*item.typeNode);
    if (item.function) {
        Function& head = *item.function;
        if (head.resultNode) head.result = resolve(*head.resultNode);
        for (auto* list : {&head.parameters, &head.variables})
            for (auto& local : *list)
                if (local->typeNode) local->type = resolve(*local->typeNode);
    }
    item.resolving = Progress::Done;
}

void Checker::evaluate(Declaration& item, int depth) {
    if (item.evaluation != Progress::Not) {
        if (item.evaluation == Progress::Running) add(item.line, Problem::ConstantCycle, {item.name});
        return;
    }
    if (depth > MaxConstantDepth) return add(item.line, Problem::TooDeep, {});
    item.evaluation = Progress::Running;
    resolveHead(item);
    if (item.enumOrdinal >= 0) {
        Value value;
        value.kind = Kind::Enum;
        value.number = item.enumOrdinal;
        item.value = value;
    } else {
        const int saved = std::exchange(constantDepth_, depth + 1);
        running_.push_back(&item);
        check(item.initial, item.typeNode ? item.type : nullptr);
        running_.pop_back();
        constantDepth_ = saved;
        finishConstant(item);
    }
    item.evaluation = Progress::Done;
}

void Checker::finishConstant(Declaration& item) {
    if (!item.typeNode)
        item.type = item.initial->type;
    else if (!fits(item.initial, item.type))
        item.type = plainType(Kind::Unknown);  // told
    if (item.type->kind == Kind::Unknown) return;
    if (item.type->kind == Kind::None || item.type->kind == Kind::Aggregate || item.type->isExternal)
        return add(item.line, Problem::NotStored, {typePhrase(item.type)});
    item.value = item.initial->constant;
    if (!item.value && !isStoredConstant(item) && item.initial->type->kind != Kind::Unknown)
        add(item.line, Problem::ConstantNeeded, {});
}

// ---- variables and functions ----

void Checker::classItem(Declaration& item) {
    if (item.kind == DeclarationKind::ClassVariable && item.initial) {
        check(item.initial, item.type);
        fits(item.initial, item.type);
    }
    if (item.kind == DeclarationKind::Function) function(item);
}

void Checker::function(Declaration& item) {
    Function& head = *item.function;
    functionItem_ = &item;
    function_ = &head;
    reported_.clear();
    if (head.hasErrors) return;
    functionHead(item, head);
    if (!head.external.empty()) return;
    if (head.bodyLine == 0) return add(item.line, Problem::NoBody, {item.name});
    declareLocals(head);
    for (Condition& condition : head.preconditions) truth(condition.value);
    inPostcondition_ = true;
    for (Condition& condition : head.postconditions) truth(condition.value);
    inPostcondition_ = false;
    block(head.body);
    if (head.result->kind != Kind::None && !alwaysReturns(head.body))
        add(head.endLine, Problem::ReturnMissing, {item.name});
    locals_.clear();
    reported_.clear();
    function_ = nullptr;
    functionItem_ = nullptr;
}

void Checker::functionHead(const Declaration& item, const Function& head) {
    formsDiffer(item);
    if (head.isCallback) return callbackHead(item, head);
    const bool plain = head.parameters.empty() && head.result->kind == Kind::None;
    if (ascii::equal(item.name, "main") && !plain) add(item.line, Problem::MainHeader, {});
    if (head.result->kind == Kind::String && head.result->length != Unbounded)
        add(item.line, Problem::StringResult, {});
    if (!head.isOnerror) return;
    const bool good = head.parameters.size() == 1 && head.parameters[0]->mode == Mode::In &&
                      head.parameters[0]->type->kind == Kind::Integer && head.result->kind == Kind::None;
    if (!good) add(item.line, Problem::OnerrorHeader, {});
    if (head.hasRange && head.firstCode > head.lastCode) add(item.line, Problem::EmptyErrorRange, {});
}

void Checker::callbackHead(const Declaration& item, const Function& head) {
    static constexpr Kind Kinds[] = {Kind::Integer, Kind::Record, Kind::Integer, Kind::Boolean};
    bool good = head.parameters.size() == 4 && head.result->kind == Kind::None;
    for (std::size_t i = 0; good && i < 4; ++i) {
        const Declaration& parameter = *head.parameters[i];
        good = parameter.type->kind == Kinds[i] && parameter.mode == (i < 3 ? Mode::In : Mode::Out);
    }
    if (good) good = head.parameters[1]->type == systemType("Control");
    if (!good) return add(item.line, Problem::CallbackHeader, {});
    const Declaration* window = findDeclaration(tree_, windowKey(item.name));
    if (window == nullptr && !tellWindowFaults()) add(item.line, Problem::NoWindow, {item.name});
}

bool Checker::tellWindowFaults() {
    for (const WindowFault& fault : tree_.windowFaults)
        if (reported_.insert(fault.file + ":" + std::to_string(fault.line)).second)
            messages_.add(fault.file, fault.line, Problem::ResourcesFailed, {fault.text});
    return !tree_.windowFaults.empty();
}

// Two forms of a name differ in the number or the kinds of their parameters.
void Checker::formsDiffer(const Declaration& item) {
    const Declaration* form = findDeclaration(tree_, ascii::lowered(item.name));
    for (; form != nullptr && form != &item; form = form->nextForm)
        if (form->kind == DeclarationKind::Function && sameKinds(*form->function, *item.function))
            return add(item.line, Problem::SameForm, {form->name, std::to_string(form->line)});
}

void Checker::declareLocals(Function& head) {
    for (auto* items : {&head.parameters, &head.variables})
        for (auto& item : *items) {
            const auto [place, isNew] = locals_.emplace(ascii::lowered(item->name), item.get());
            if (isNew) continue;
            const std::string line = std::to_string(place->second->line);
            add(item->line, Problem::DeclaredTwice, {item->name, line});
        }
}

void checkClass(ClassTree& tree, Messages& messages) {
    const auto before = messages.count();
    Checker checker(tree, messages);
    checker.run();
    if (messages.count() != before) tree.complete = false;
}

void resolveHead(ClassTree& tree, Declaration& item, Messages& messages) {
    Checker(tree, messages).resolveHead(item);
}

}  // namespace tarn::toolchain
