// SPDX-License-Identifier: Apache-2.0
//
// Calls. A composite argument is read by the called function while it runs, so what the call itself may change
// is copied first; a scalar is copied when the call is made. What stands at a place that can move (an element of
// a list) is returned through a copy.
#include "toolchain/language/library.h"
#include "toolchain/output/exprgen.h"
#include "toolchain/output/names.h"

namespace tarn::toolchain {
namespace {

// Functions that handle events meanwhile, and so run other functions of the program.
bool handlesEvents(const std::string& external) {
    return external.starts_with("tarn_win_") || external.starts_with("tarn_sys_msgbox");
}

unsigned effectsOfCall(const Declaration& target) {
    if (target.kind == DeclarationKind::Type) return NoEffects;
    const Function& head = *target.function;
    const bool isLibrary = !head.external.empty();
    unsigned result = !isLibrary || handlesEvents(head.external) ? ChangesShared : NoEffects;
    for (const auto& parameter : head.parameters)
        if (parameter->mode != Mode::In) result |= ChangesShared | ChangesLocals;
    return result;
}

// What is held in a file is the file, and has no copy. The library looks at what it is given before it changes
// anything of its own, so a table for it is not copied, however large it is.
bool passedAsItStands(const Expression& value, const Declaration& parameter) {
    return value.type->isExternal || parameter.type->isOpen;
}

}  // namespace

unsigned ExpressionGenerator::effects(const Expression& item) const {
    unsigned result = NoEffects;
    if (item.constant) return result;
    for (const ExpressionPtr& operand : item.operands)
        if (operand != nullptr) result |= effects(*operand);
    return item.kind == ExpressionKind::Call ? result | effectsOfCall(*item.target) : result;
}

void ExpressionGenerator::call(const Expression& item) {
    const std::size_t before = puts_.size();
    line(callText(item, isComposite(item.type->kind) ? temporary(item.type) : std::string()) + ";");
    flushPuts(before);
}

std::string ExpressionGenerator::enumCall(const Expression& item) {
    return "tarn_enum_check(" + scalar(*item.operands[0]) + ", " + std::to_string(item.type->enumCount) + ")";
}

ExpressionGenerator::Argument ExpressionGenerator::argument(const Expression& item, std::size_t index,
                                                            unsigned later) {
    const Expression& value = *item.operands[index];
    const Declaration& parameter = *item.target->function->parameters[index];
    const bool isLibrary = !item.target->function->external.empty();
    Argument result;
    if (parameter.mode != Mode::In)
        result = returned(value, parameter, isLibrary);
    else if (parameter.type->kind == Kind::Adt)
        result.text = isScalar(value.type->kind) ? valueAddress(value) : keptAddress(value, later);
    else
        result.text = isScalar(value.type->kind) ? keptScalar(value, later) : keptAddress(value, later);
    if (parameter.type->kind == Kind::Adt) result.text += ", " + cKind(value.type->kind);
    return result;
}

// A place that the call writes to.
ExpressionGenerator::Argument ExpressionGenerator::returned(const Expression& value,
                                                            const Declaration& parameter, bool isLibrary) {
    constexpr unsigned All = ChangesShared | ChangesLocals;
    if (isLibrary || isStable(value)) {
        writes_ = true;
        const std::string where = addressOfPlace(value, All);
        writes_ = false;
        return {where, {}};
    }
    const bool isNumber = isScalar(value.type->kind);
    writes_ = true;
    const std::string where = addressOfPlace(value, All);
    writes_ = false;
    std::string copied;
    if (isNumber) {
        const std::string name = newName();
        line(cType(value.type->kind) + " " + name + " = " + dereference(where, value.type->kind) + ";");
        copied = "&" + name;
    } else {
        copied = temporary(value.type);
        if (parameter.mode == Mode::Inout) copy(where, copied, value.type);
    }
    return {copied, copyText(copied, where, value.type)};
}

std::string ExpressionGenerator::callText(const Expression& item, const std::string& result) {
    if (item.target->kind == DeclarationKind::Type) return enumCall(item);
    const std::size_t count = item.operands.size();
    const unsigned own = effectsOfCall(*item.target);
    std::vector<unsigned> later(count + 1, NoEffects);
    for (std::size_t i = count; i-- > 0;) later[i] = later[i + 1] | effects(*item.operands[i]);

    std::string arguments;
    std::vector<std::string> back;
    for (std::size_t i = 0; i < count; ++i) {
        const bool asItStands = passedAsItStands(*item.operands[i], *item.target->function->parameters[i]);
        Argument next =
            argument(item, i,
                     asItStands ? NoEffects
                                : later[i + 1] | (isScalar(item.operands[i]->type->kind) ? NoEffects : own));
        arguments += (i == 0 ? "" : ", ") + next.text;
        if (!next.copyBack.empty()) back.push_back(next.copyBack);
    }
    if (!result.empty()) arguments += (count == 0 ? "" : ", ") + result;
    shared_.foreign.insert(item.target);
    const std::string& external = item.target->function->external;
    const std::string text = (external.empty() ? itemSymbol(*item.target) : external) + "(" + arguments + ")";
    if (back.empty()) return text;
    // The copies go home behind the call, so it is a statement here.
    std::string value;
    if (isScalar(item.type->kind)) {
        value = newName();
        line("const " + cType(item.type->kind) + " " + value + " = " + text + ";");
    } else {
        line(text + ";");
    }
    for (const std::string& statement : back) line(statement);
    return value;
}

}  // namespace tarn::toolchain
