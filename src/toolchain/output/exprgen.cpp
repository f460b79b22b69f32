// SPDX-License-Identifier: Apache-2.0
#include "toolchain/output/exprgen.h"

#include "os/text/ascii.h"
#include "toolchain/language/library.h"
#include "toolchain/language/words.h"
#include "toolchain/output/names.h"

#include <utility>

namespace tarn::toolchain {
namespace {

// What a call may change while an earlier operand waits.
enum Effects : unsigned {
    None = 0,
    ChangesShared = 1,  // class variables, and what parameters of mode out and inout stand for
    ChangesLocals = 2,  // a variable is passed for it to be changed
};

bool isShared(const Declaration& item) {
    return item.kind == DeclarationKind::ClassVariable ||
           (item.kind == DeclarationKind::Parameter && item.mode != Mode::In);
}

std::string literalNumber(std::int32_t number) {
    return number == INT32_MIN ? "(-2147483647 - 1)" : std::to_string(number);
}

constexpr std::size_t MostJoined = 65536;  // characters of constants that become one literal
constexpr std::size_t MostNested = 16;     // C operations in one another, which the C compiler must bear

}  // namespace

std::string ExpressionGenerator::takeLines() {
    return std::exchange(lines_, {});
}

void ExpressionGenerator::line(const std::string& text) {
    lines_.append(static_cast<std::size_t>(indent_ < 20 ? indent_ : 20) * 4, ' ').append(text).append("\n");
}

std::string ExpressionGenerator::newName() {
    return "n" + std::to_string(++names_);
}

std::string ExpressionGenerator::newTemporary() {
    const std::string name = "&t[" + std::to_string(inUse_++) + "]";
    if (inUse_ > most_) most_ = inUse_;
    return name;
}

std::string ExpressionGenerator::place(const Declaration& item) {
    if (item.kind == DeclarationKind::ClassVariable) {
        shared_.foreign.insert(&item);
        return (item.type.type == Type::String ? "&" : "") + itemSymbol(item);
    }
    const std::string name = "v_" + ascii::lowered(item.name);
    const bool reference = item.kind == DeclarationKind::Parameter && item.mode != Mode::In;
    if (item.type.type != Type::String) return reference ? "(*" + name + ")" : name;
    const bool passed =
        item.kind == DeclarationKind::Parameter && (reference || item.type.maxLength == Unbounded);
    return passed ? name : "&" + name;
}

// ---- order of evaluation ----

unsigned ExpressionGenerator::effects(const Expression& item) const {
    unsigned result = None;
    if (item.constant) return result;
    for (const ExpressionPtr& operand : item.operands) result |= effects(*operand);
    if (item.kind != ExpressionKind::Call) return result;
    if (item.library == nullptr) {
        result |= ChangesShared;
        for (const auto& parameter : item.target->function->parameters)
            if (parameter->mode != Mode::In) result |= ChangesLocals;
        return result;
    }
    for (const LibraryParameter& parameter : item.library->parameters)
        if (parameter.mode != Mode::In) result |= ChangesShared | ChangesLocals;
    return result;
}

bool ExpressionGenerator::changes(const Expression& item, unsigned effects) const {
    if (item.constant || item.kind != ExpressionKind::Name || item.isResult) return false;
    const Declaration& target = *item.target;
    if (isShared(target)) return effects != None;
    return target.kind == DeclarationKind::Variable && (effects & ChangesLocals) != 0;
}

std::string ExpressionGenerator::keptNumber(const Expression& item, unsigned later) {
    std::string value = number(item);
    if (item.constant || later == None) return value;
    const std::string name = newName();
    line("const int32_t " + name + " = " + value + ";");
    return name;
}

std::string ExpressionGenerator::numberBefore(const Expression& item, const Expression& later) {
    return keptNumber(item, effects(later));
}

std::string ExpressionGenerator::keptText(const Expression& item, unsigned later) {
    std::string value = text(item);
    if (!changes(item, later)) return value;
    const std::string copy = newTemporary();
    line("tarn_string_assign(" + copy + ", " + value + ");");
    return copy;
}

// ---- values ----

std::string ExpressionGenerator::number(const Expression& item) {
    if (item.constant) return literalNumber(item.constant->number);
    switch (item.kind) {
    case ExpressionKind::Name: return item.isResult ? "r" : place(*item.target);
    case ExpressionKind::Element: {
        const std::string index = number(*item.operands[0]);
        return "tarn_string_get(" + place(*item.target) + ", " + index + ")";
    }
    case ExpressionKind::Not: return "!" + number(*item.operands[0]);
    case ExpressionKind::Negate: return "tarn_integer_neg(" + number(*item.operands[0]) + ")";
    case ExpressionKind::Call: {
        const std::string value = callText(item, {});
        const std::string name = newName();
        line("const int32_t " + name + " = " + value + ";");
        return name;
    }
    default: return chain(item);
    }
}

std::string ExpressionGenerator::text(const Expression& item) {
    if (item.constant) return shared_.literals.pointerTo(item.constant->text);
    if (item.kind == ExpressionKind::Name) return item.isResult ? "result" : place(*item.target);
    const std::string destination = newTemporary();
    textInto(item, destination);
    return destination;
}

void ExpressionGenerator::textInto(const Expression& item, const std::string& destination) {
    if (item.constant || item.kind == ExpressionKind::Name)
        line("tarn_string_assign(" + destination + ", " + text(item) + ");");
    else if (item.kind == ExpressionKind::Call)
        line(callText(item, destination) + ";");
    else
        textChain(item, destination);
}

// ---- chains ----

std::string ExpressionGenerator::chain(const Expression& item) {
    const Operator op = item.operators[0];
    if (op >= Operator::Eq) return comparison(item);
    if (op == Operator::And || op == Operator::Or) return truthChain(item);
    return numberChain(item);
}

std::string ExpressionGenerator::comparison(const Expression& item) {
    const std::string op = item.operators[0] == Operator::Eq   ? "=="
                           : item.operators[0] == Operator::Ne ? "!="
                                                               : operatorText(item.operators[0]);
    const Expression& left = *item.operands[0];
    const Expression& right = *item.operands[1];
    if (left.type != Type::String) {
        const std::string first = keptNumber(left, effects(right));
        return "(" + first + " " + op + " " + number(right) + ")";
    }
    const std::string first = keptText(left, effects(right));
    return "(tarn_string_compare(" + first + ", " + text(right) + ") " + op + " 0)";
}

// An operand whose calls need statements is computed in a block of its own, which is entered only if it
// counts.
std::string ExpressionGenerator::truthChain(const Expression& item) {
    const bool isAnd = item.operators[0] == Operator::And;
    std::string value = number(*item.operands[0]);
    for (std::size_t i = 1; i < item.operands.size(); ++i) {
        std::string before = takeLines();
        ++indent_;
        const std::string next = number(*item.operands[i]);
        std::string made = takeLines();
        --indent_;
        lines_ = std::move(before);
        if (made.empty() && i % MostNested != 0) {
            value = "(" + value + (isAnd ? " && " : " || ") + next + ")";
            continue;
        }
        const std::string name = newName();
        line("int32_t " + name + " = " + value + ";");
        line(std::string("if (") + (isAnd ? "" : "!") + name + ") {");
        lines_ += made;
        line("    " + name + " = " + next + ";");
        line("}");
        value = name;
    }
    return value;
}

std::string ExpressionGenerator::numberChain(const Expression& item) {
    static constexpr const char* Names[] = {"add", "sub", "mul", "div", "mod"};
    std::vector<unsigned> later(item.operands.size(), None);
    for (std::size_t i = item.operands.size() - 1; i-- > 0;)
        later[i] = later[i + 1] | effects(*item.operands[i + 1]);
    std::string value = keptNumber(*item.operands[0], later[0]);
    for (std::size_t i = 1; i < item.operands.size(); ++i) {
        const std::string right = number(*item.operands[i]);
        value = std::string("tarn_integer_") + Names[static_cast<int>(item.operators[i - 1])] + "(" + value +
                ", " + right + ")";
        if (later[i] == None && i % MostNested != 0) continue;
        const std::string name = newName();
        line("const int32_t " + name + " = " + value + ";");
        value = name;
    }
    return value;
}

void ExpressionGenerator::textChain(const Expression& item, const std::string& destination) {
    std::string value;
    const std::size_t count = item.operands.size();
    std::string temporary;
    for (std::size_t i = 0; i < count;) {
        std::string constant, next;
        const std::size_t begin = i;
        for (; i < count && item.operands[i]->constant; ++i) {
            const std::string& part = item.operands[i]->constant->text;
            if (i > begin && constant.size() + part.size() > MostJoined) break;
            constant += part;
        }
        if (i == begin) ++i;
        const unsigned later = begin == 0 && i < count ? effects(*item.operands[i]) : None;
        next = item.operands[begin]->constant ? shared_.literals.pointerTo(constant)
                                              : keptText(*item.operands[begin], later);
        if (begin == 0) {
            value = next;
            continue;
        }
        // Only the last step may touch the destination, which can be an operand.
        if (i < count && temporary.empty()) temporary = newTemporary();
        const std::string& into = i < count ? temporary : destination;
        line("tarn_string_concat(" + value + ", " + next + ", " + into + ");");
        value = into;
    }
}

// ---- calls ----

void ExpressionGenerator::call(const Expression& item) {
    line(callText(item, {}) + ";");
}

std::string ExpressionGenerator::argument(const Expression& item, std::size_t index, Mode mode,
                                          unsigned later) {
    const Expression& value = *item.operands[index];
    if (mode != Mode::In) {
        const std::string where = place(*value.target);
        return value.type == Type::String ? where : "&" + where;
    }
    return value.type == Type::String ? keptText(value, later) : keptNumber(value, later);
}

// A string argument is read by the called function while it runs, so what the call itself changes counts too;
// a number is copied when the call is made.
std::string ExpressionGenerator::callText(const Expression& item, const std::string& result) {
    const std::size_t count = item.operands.size();
    unsigned own = None;
    std::vector<Mode> modes;
    for (std::size_t i = 0; i < count; ++i) {
        modes.push_back(item.library != nullptr ? item.library->parameters[i].mode
                                                : item.target->function->parameters[i]->mode);
        if (modes.back() != Mode::In) own |= ChangesShared | ChangesLocals;
    }
    if (item.library == nullptr) own |= ChangesShared;
    std::vector<unsigned> later(count + 1, None);
    for (std::size_t i = count; i-- > 0;) later[i] = later[i + 1] | effects(*item.operands[i]);

    std::string arguments;
    for (std::size_t i = 0; i < count; ++i) {
        const unsigned kept = later[i + 1] | (item.operands[i]->type == Type::String ? own : None);
        arguments += (i == 0 ? "" : ", ") + argument(item, i, modes[i], kept);
    }
    if (!result.empty()) arguments += (count == 0 ? "" : ", ") + result;
    if (item.library == nullptr) shared_.foreign.insert(item.target);
    const std::string name = item.library != nullptr ? item.library->cName : itemSymbol(*item.target);
    return name + "(" + arguments + ")";
}

}  // namespace tarn::toolchain
