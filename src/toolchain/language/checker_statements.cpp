// SPDX-License-Identifier: Apache-2.0
//
// Statements: a function for each.
#include "os/text/ascii.h"
#include "toolchain/language/checker_internal.h"
#include "toolchain/language/library.h"

#include <algorithm>

namespace tarn::toolchain {

void Checker::block(Block& statements) {
    for (StatementPtr& item : statements) statement(*item);
}

void Checker::statement(Statement& item) {
    switch (item.kind) {
    case StatementKind::Assign: return assignment(item);
    case StatementKind::Call: return callStatement(item);
    case StatementKind::If: return ifStatement(item);
    case StatementKind::While: truth(item.value); return loop(item);
    case StatementKind::Loop: return loop(item);
    case StatementKind::For: return forLoop(item);
    case StatementKind::ForEach: return forEach(item);
    case StatementKind::Exit:
    case StatementKind::Iterate:
        if (loops_ == 0)
            add(item.line, Problem::OutsideLoop, {item.kind == StatementKind::Exit ? "exit" : "iterate"});
        if (item.value) truth(item.value);
        return;
    case StatementKind::Select: return select(item);
    case StatementKind::Return: return returned(item);
    }
}

void Checker::loop(Statement& item) {
    ++loops_;
    block(item.body);
    --loops_;
}

void Checker::callStatement(Statement& item) {
    check(item.value);
    const Declaration* target = item.value->target;
    const bool optional =
        target != nullptr && target->function && target->function->external.starts_with("tarn_win_");
    if (optional) return;
    const bool used = item.value->kind == ExpressionKind::Call && item.value->type->kind != Kind::None &&
                      item.value->type->kind != Kind::Unknown;
    if (used) add(item.line, Problem::ResultUnused, {item.value->name});
}

void Checker::ifStatement(Statement& item) {
    for (Branch& branch : item.branches) {
        if (branch.condition) truth(branch.condition);
        block(branch.body);
    }
}

void Checker::assignment(Statement& item) {
    check(item.target);
    check(item.value, item.target->type);
    if (!isVariable(*item.target, true)) return;
    if (std::find(walked_.begin(), walked_.end(), rootOf(*item.target)) != walked_.end() &&
        item.target->kind == ExpressionKind::Name)
        return add(item.line, Problem::WalkChanged, {item.target->name});
    fits(item.value, item.target->type);
}

void Checker::forLoop(Statement& item) {
    check(item.target);
    if (isVariable(*item.target, true)) requireKind(item.target, Kind::Integer);
    for (ExpressionPtr* bound : {&item.value, &item.limit, &item.step}) {
        if (*bound == nullptr) continue;
        check(*bound);
        requireKind(*bound, Kind::Integer);
    }
    if (item.step && item.step->constant && item.step->constant->number < 1)
        add(item.line, Problem::StepNotPositive, {});
    loop(item);
}

// ---- for each ----

// The type of what the variable takes in turn; null, and a message, when there is nothing to walk.
const Type* Checker::walked(Statement& item) {
    const Type* type = item.value->type;
    switch (type->kind) {
    case Kind::List:
    case Kind::Array:
    case Kind::Table: return type->element;
    case Kind::Set: return plainType(Kind::Integer);
    case Kind::String: return plainType(Kind::String);
    case Kind::Unknown: return nullptr;
    default: add(item.line, Problem::CannotWalk, {typePhrase(type)}); return nullptr;
    }
}

void Checker::walkedIndex(Statement& item) {
    const Type& type = *item.value->type;
    const bool isTable = type.kind == Kind::Table;
    item.index = isTable && !type.indexes.empty() ? 1 : 0;
    if (item.through.empty()) return;
    item.index = isTable ? indexNumber(type, item.through) : 0;
    if (item.index == 0) add(item.line, Problem::NoSuchIndex, {item.through});
}

void Checker::forEach(Statement& item) {
    check(item.target);
    check(item.value);
    const Type* element = walked(item);
    walkedIndex(item);
    if (isVariable(*item.target, true) && element != nullptr) {
        const Fit fit = fitOf(element, item.target->type);
        if (item.target->type->kind != Kind::Unknown && fit != Fit::Same && fit != Fit::Convert)
            add(item.line, Problem::TypeMismatch, {typePhrase(element), typePhrase(item.target->type)});
    }
    if (item.where) truth(item.where);
    walked_.push_back(rootOf(*item.value));
    loop(item);
    walked_.pop_back();
}

// ---- select and return ----

void Checker::select(Statement& item) {
    check(item.value);
    const Kind kind = item.value->type->kind;
    const bool isControl = item.value->type == systemType("Control");
    const bool good = isScalar(kind) || kind == Kind::String || kind == Kind::Unknown || isControl;
    if (!good) add(item.line, Problem::TypeMismatch, {"a number or a string", typePhrase(item.value->type)});
    SeenCases seen;
    for (Branch& branch : item.branches) {
        for (CaseLabel& label : branch.labels)
            if (good) caseLabel(label, item.value->type, seen);
        block(branch.body);
    }
}

void Checker::caseLabel(CaseLabel& label, const Type* type, SeenCases& seen) {
    for (ExpressionPtr* value : {&label.from, &label.to}) {
        if (*value == nullptr) continue;
        check(*value, type);
        if (!fits(*value, type)) return;
        if (type->kind == Kind::Record) return windowLabel(label);
        if (!(*value)->constant) return add(label.line, Problem::ConstantNeeded, {});
    }
    const bool ordered =
        type->kind != Kind::String && type->kind != Kind::Boolean && type->kind != Kind::Real;
    if (label.to && !ordered)
        return add(label.line, Problem::TypeMismatch, {"an integer", typePhrase(label.to->type)});
    const Value& from = *label.from->constant;
    if (from.kind == Kind::Real) return;
    const std::int64_t last = label.to ? label.to->constant->number : from.number;
    if (last < from.number) return;
    // The ranges that are known do not overlap, so if any reaches into this one, the last that begins at or
    // before its end does.
    const auto behind = seen.upper_bound({last, from.text});
    if (behind != seen.begin()) {
        const auto& [begin, range] = *std::prev(behind);
        if (begin.second == from.text && range.last >= from.number)
            return add(label.line, Problem::CaseTwice, {std::to_string(range.line)});
    }
    seen.emplace(std::pair(from.number, from.text), SeenCase{last, label.line});
}

// In a select over controls: the name of one, or an element of a control array.
void Checker::windowLabel(const CaseLabel& label) {
    const Expression& from = *label.from;
    const bool isElement =
        from.kind == ExpressionKind::Index && from.operands[0]->isWindow && from.operands[1]->constant;
    if ((!from.isWindow && !isElement) || label.to) add(label.line, Problem::ConstantNeeded, {});
}

void Checker::returned(Statement& item) {
    if (!item.value) return;
    check(item.value, function_->result);
    fits(item.value, function_->result);
}

}  // namespace tarn::toolchain
