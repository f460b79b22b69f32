// SPDX-License-Identifier: Apache-2.0
//
// Lines, temporaries, scalars and chains of them.
#include "toolchain/output/exprgen.h"

#include "toolchain/output/names.h"

#include <algorithm>
#include <utility>

namespace tarn::toolchain {
namespace {

constexpr std::size_t MostNested = 16;  // C operations in one another, which the C compiler must bear

// The operators as the run-time spells them.
const char* relationName(Operator op) {
    static constexpr const char* Names[] = {"EQ", "NE", "LT", "LE", "GT", "GE"};
    return Names[static_cast<int>(op) - static_cast<int>(Operator::Eq)];
}

std::string cRelation(Operator op) {
    return op == Operator::Eq ? "==" : op == Operator::Ne ? "!=" : operatorText(op);
}

}  // namespace

// ---- lines and temporaries ----

std::string ExpressionGenerator::takeLines() {
    return std::exchange(lines_, {});
}

void ExpressionGenerator::line(const std::string& text) {
    lines_.append(static_cast<std::size_t>(std::min(indent_, 20)) * 4, ' ').append(text).append("\n");
}

std::string ExpressionGenerator::newName() {
    return "n" + std::to_string(++names_);
}

void ExpressionGenerator::freeTemporaries() {
    used_ = reserved_;
}

std::string ExpressionGenerator::rawTemporary(Kind kind) {
    return newTemporary(plainType(kind));
}

std::string ExpressionGenerator::temporary(const Type* type) {
    const Type* kept = type->kind == Kind::String ? plainType(Kind::String) : type;
    const std::string address = newTemporary(kept);
    if (kept->kind != Kind::String)
        line("quarn_shape(" + address + ", " + shared_.shapes.pointerTo(kept) + ", " + cKind(kept->kind) +
             ");");
    return address;
}

std::string ExpressionGenerator::newTemporary(const Type* kept) {
    const auto [name, isNew] = temporaryNames_.emplace(kept, std::string());
    if (isNew) name->second = kept->kind == Kind::String ? "t" : "x" + std::to_string(temporaryNames_.size());
    const int number = used_[kept]++;
    most_[kept] = std::max(most_[kept], used_[kept]);
    return "&" + name->second + "[" + std::to_string(number) + "]";
}

std::string ExpressionGenerator::temporaryDefinitions() const {
    std::string text;
    for (const auto& [type, name] : temporaryNames_) {
        const std::string count = std::to_string(most_.at(type));
        text += "    " + cType(type->kind) + " " + name + "[" + count + "]";
        if (type->kind == Kind::String)
            text += ";\n    for (int i = 0; i < " + count +
                    "; ++i)\n        tarn_string_init(&t[i], TARN_UNBOUNDED);\n";
        else
            text += " = {0};\n";
    }
    return text;
}

std::string ExpressionGenerator::temporaryRelease() const {
    std::string text;
    for (const auto& [type, name] : temporaryNames_) {
        const std::string count = std::to_string(most_.at(type));
        text += "    for (int i = " + count + "; i-- > 0;)\n        ";
        text += type->kind == Kind::String ? "tarn_string_free(&" + name + "[i]);\n"
                                           : "tarn_adt_free(&" + name + "[i], " + cKind(type->kind) + ");\n";
    }
    return text;
}

// ---- scalars ----

std::string ExpressionGenerator::keptScalar(const Expression& item, unsigned later) {
    std::string value = scalar(item);
    if (item.constant || later == NoEffects) return value;
    const std::string name = newName();
    line("const " + cType(item.type->kind) + " " + name + " = " + value + ";");
    return name;
}

std::string ExpressionGenerator::scalar(const Expression& item) {
    if (item.constant) return cNumber(*item.constant);
    switch (item.kind) {
    case ExpressionKind::Name:
    case ExpressionKind::Field: return lvalue(item, NoEffects);
    case ExpressionKind::Index:
        if (item.operands[0]->type->kind != Kind::String) return lvalue(item, NoEffects);
        {
            const std::string text = keptAddress(*item.operands[0], effects(*item.operands[1]));
            return "quarn_char(" + text + ", " + scalar(*item.operands[1]) + ")";
        }
    case ExpressionKind::Not: return "!" + scalar(*item.operands[0]);
    case ExpressionKind::Negate: {
        const std::string value = scalar(*item.operands[0]);
        if (item.type->kind == Kind::Real) return "(-" + value + ")";
        return std::string(item.type->kind == Kind::Fixed ? "tarn_fixed_neg(" : "tarn_integer_neg(") + value +
               ")";
    }
    case ExpressionKind::Call: {
        const std::string value = callText(item, {});
        const std::string name = newName();
        line("const " + cType(item.type->kind) + " " + name + " = " + value + ";");
        flushPuts(0);
        return name;
    }
    case ExpressionKind::Convert: return conversion(item);
    default: return chain(item);
    }
}

std::string ExpressionGenerator::conversion(const Expression& item) {
    const Expression& operand = *item.operands[0];
    const std::string value = scalar(operand);
    if (item.type->kind == Kind::Fixed) return "tarn_fixed_from_integer(" + value + ")";
    return (operand.type->kind == Kind::Fixed ? "tarn_fixed_to_real(" : "(double)(") + value + ")";
}

// ---- chains ----

std::string ExpressionGenerator::chain(const Expression& item) {
    const Operator op = item.operators[0];
    if (op == Operator::In) return membership(item);
    if (op >= Operator::Eq) return comparison(item);
    if (op == Operator::And || op == Operator::Or) return truthChain(item);
    return numberChain(item);
}

std::string ExpressionGenerator::comparison(const Expression& item) {
    const Operator op = item.operators[0];
    const Expression& left = *item.operands[0];
    const Expression& right = *item.operands[1];
    const Kind kind = left.type->kind;
    if (isScalar(kind)) {
        const std::string first = keptScalar(left, effects(right));
        return "(" + first + " " + cRelation(op) + " " + scalar(right) + ")";
    }
    const std::string first = keptAddress(left, effects(right));
    const std::string operands = first + ", " + address(right);
    if (kind == Kind::String) return "(tarn_string_compare(" + operands + ") " + cRelation(op) + " 0)";
    if (kind == Kind::Set)
        return "tarn_set_compare(\"" + std::string(relationName(op)) + "\", " + operands + ")";
    return "tarn_adt_compare(\"" + std::string(relationName(op)) + "\", " + operands + ", " + cKind(kind) +
           ")";
}

// A literal on the right is a row of comparisons; no set is made.
std::string ExpressionGenerator::membership(const Expression& item) {
    const Expression& right = *item.operands[1];
    if (right.kind != ExpressionKind::Set) {
        const std::string value = keptScalar(*item.operands[0], effects(right));
        return "tarn_set_contains(" + value + ", " + address(right) + ")";
    }
    const std::string value = newName();
    line("const int32_t " + value + " = " + scalar(*item.operands[0]) + ";");
    if (right.operands.empty()) return decidedTruth(value, true);
    const unsigned later = effects(right);
    std::string text;
    for (std::size_t i = 0; i < right.operands.size(); i += 2) {
        const Expression* last = right.operands[i + 1].get();
        const std::string from = keptScalar(*right.operands[i], later);
        const std::string test = last == nullptr ? value + " == " + from
                                                 : "(" + value + " >= " + from + " && " + value +
                                                       " <= " + keptScalar(*last, later) + ")";
        text += (text.empty() ? "" : " || ") + test;
    }
    return "(" + text + ")";
}

// An operand whose calls need statements is computed in a block of its own, which is entered only if it
// counts. No constant stands in the C: tcc 0.9.27 loses jumps where one does.
std::string ExpressionGenerator::truthChain(const Expression& item) {
    const bool isAnd = item.operators[0] == Operator::And;
    std::string value;  // of the operands so far; empty while they change nothing
    for (std::size_t i = 0; i < item.operands.size(); ++i) {
        const Expression& operand = *item.operands[i];
        if (operand.constant && (operand.constant->number != 0) == isAnd) continue;
        if (operand.constant) return decidedTruth(value, isAnd);
        if (value.empty())
            value = scalar(operand);
        else
            addTruth(value, operand, isAnd, i % MostNested == 0);
    }
    return value;
}

// What is behind a constant that decides is not reached; what is before it may fail.
std::string ExpressionGenerator::decidedTruth(const std::string& before, bool isAnd) {
    const std::string name = newName(), constant = isAnd ? "0" : "1";
    line("int32_t " + name + " = " + (before.empty() ? constant : "(" + before + ", " + constant + ")") +
         ";");
    return name;
}

void ExpressionGenerator::addTruth(std::string& value, const Expression& operand, bool isAnd, bool apart) {
    std::string before = takeLines();
    ++indent_;
    const std::string next = scalar(operand);
    std::string made = takeLines();
    --indent_;
    lines_ = std::move(before);
    if (made.empty() && !apart) {
        value = "(" + value + (isAnd ? " && " : " || ") + next + ")";
        return;
    }
    const std::string name = newName();
    line("int32_t " + name + " = " + value + ";");
    line(std::string("if (") + (isAnd ? "" : "!") + name + ") {");
    lines_ += made;
    line("    " + name + " = " + next + ";");
    line("}");
    value = name;
}

namespace {

std::string numberStep(Kind kind, Operator op, const std::string& left, const std::string& right) {
    static constexpr const char* Names[] = {"add", "sub", "mul", "div", "div", "mod"};
    const std::string operands = "(" + left + ", " + right + ")", name = Names[static_cast<int>(op)];
    if (kind == Kind::Integer) return "tarn_integer_" + name + operands;
    if (kind == Kind::Fixed) return "tarn_fixed_" + name + operands;
    if (op == Operator::Divide) return "tarn_real_div" + operands;
    return "(" + left + " " + operatorText(op) + " " + right + ")";
}

}  // namespace

std::string ExpressionGenerator::numberChain(const Expression& item) {
    std::vector<unsigned> later(item.operands.size(), NoEffects);
    for (std::size_t i = item.operands.size() - 1; i-- > 0;)
        later[i] = later[i + 1] | effects(*item.operands[i + 1]);
    const Kind kind = item.operands[0]->type->kind;
    std::string value = keptScalar(*item.operands[0], later[0]);
    for (std::size_t i = 1; i < item.operands.size(); ++i) {
        value = numberStep(kind, item.operators[i - 1], value, scalar(*item.operands[i]));
        if (later[i] == NoEffects && i % MostNested != 0) continue;
        const std::string name = newName();
        line("const " + cType(kind) + " " + name + " = " + value + ";");
        value = name;
    }
    return value;
}

}  // namespace tarn::toolchain
