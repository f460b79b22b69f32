// SPDX-License-Identifier: Apache-2.0
//
// Values that are computed into places: texts joined, sets, values in braces.
#include "toolchain/output/exprgen.h"
#include "toolchain/output/names.h"

#include <algorithm>

namespace tarn::toolchain {
namespace {

constexpr std::size_t MostJoined = 65536;  // characters of constants that become one literal

bool names(const Expression& item, const Declaration& variable) {
    if (item.constant) return false;
    if (item.kind == ExpressionKind::Name) return item.target == &variable;
    return std::any_of(item.operands.begin(), item.operands.end(), [&](const ExpressionPtr& operand) {
        return operand != nullptr && names(*operand, variable);
    });
}

}  // namespace

void ExpressionGenerator::into(const Expression& item, const std::string& destination) {
    if (!item.constant) {
        switch (item.kind) {
        case ExpressionKind::Call: line(callText(item, destination) + ";"); return flushPuts(0);
        case ExpressionKind::Chain:
            return item.type->kind == Kind::Set ? setChain(item, destination) : textChain(item, destination);
        case ExpressionKind::Set: return setLiteral(item, destination);
        case ExpressionKind::Index: {
            if (!item.operands[0]->isWindow) break;
            const std::string index = scalar(*item.operands[1]);
            return line("tarn_control_element(" + address(*item.operands[0]) + ", " + index + ", " +
                        destination + ");");
        }
        case ExpressionKind::Aggregate: return aggregate(item, destination);
        default: break;
        }
    }
    copy(address(item), destination, item.type);
}

// ---- texts ----

void ExpressionGenerator::textChain(const Expression& item, const std::string& destination) {
    std::string value, partial;
    const std::size_t count = item.operands.size();
    for (std::size_t i = 0; i < count;) {
        std::string constant, next;
        const std::size_t begin = i;
        for (; i < count && item.operands[i]->constant; ++i) {
            const std::string& text = item.operands[i]->constant->text;
            if (i > begin && constant.size() + text.size() > MostJoined) break;
            constant += text;
        }
        if (i == begin) ++i;
        const unsigned later = begin == 0 && i < count ? effects(*item.operands[i]) : NoEffects;
        next = item.operands[begin]->constant ? shared_.literals.pointerTo(constant)
                                              : keptAddress(*item.operands[begin], later);
        if (begin == 0) {
            value = next;
            continue;
        }
        // Only the last step may touch the destination, which can be an operand.
        if (i < count && partial.empty()) partial = temporary(item.type);
        const std::string& into = i < count ? partial : destination;
        line("tarn_string_concat(" + value + ", " + next + ", " + into + ");");
        value = into;
    }
}

// `s := s + a + b` adds to s where it stands, unless what is added looks at s on the way.
bool ExpressionGenerator::appendsInPlace(const Expression& target, const Expression& value) {
    const bool chained =
        value.kind == ExpressionKind::Chain && value.type->kind == Kind::String && !value.constant;
    if (!chained || target.kind != ExpressionKind::Name || target.type->kind != Kind::String) return false;
    const Expression& first = *value.operands[0];
    if (first.kind != ExpressionKind::Name || first.target != target.target || first.isResult) return false;
    unsigned all = NoEffects;
    for (std::size_t i = 1; i < value.operands.size(); ++i) {
        all |= effects(*value.operands[i]);
        if (names(*value.operands[i], *target.target)) return false;
    }
    if (changes(target, all)) return false;
    std::vector<std::string> parts;
    unsigned later = all;
    for (std::size_t i = 1; i < value.operands.size(); ++i)
        parts.push_back(keptAddress(*value.operands[i], later));
    for (const std::string& part : parts)
        line("tarn_string_append(" + place(*target.target) + ", " + part + ");");
    return true;
}

// ---- sets ----

void ExpressionGenerator::setChain(const Expression& item, const std::string& destination) {
    static constexpr const char* Names[] = {"union", "difference", "intersect"};
    const std::size_t count = item.operands.size();
    std::string value = keptAddress(*item.operands[0], effects(*item.operands[1]));
    std::string partial;
    for (std::size_t i = 1; i < count; ++i) {
        const std::string next = address(*item.operands[i]);
        if (i + 1 < count && partial.empty()) partial = temporary(plainType(Kind::Set));
        const std::string& into = i + 1 < count ? partial : destination;
        line(std::string("tarn_set_") + Names[static_cast<int>(item.operators[i - 1])] + "(" + value + ", " +
             next + ", " + into + ");");
        value = into;
    }
}

void ExpressionGenerator::setLiteral(const Expression& item, const std::string& destination) {
    for (std::size_t i = 0; i < item.operands.size(); i += 2) {
        const Expression* last = item.operands[i + 1].get();
        const std::string from = keptScalar(*item.operands[i], last == nullptr ? NoEffects : effects(*last));
        if (last == nullptr)
            line("tarn_set_include(" + from + ", " + destination + ");");
        else
            line("tarn_set_include_range(" + from + ", " + scalar(*last) + ", " + destination + ");");
    }
}

// ---- values in braces ----

std::string ExpressionGenerator::valueAddress(const Expression& item) {
    if (!isScalar(item.type->kind)) return address(item);
    const std::string value = scalar(item), name = newName();
    line(cType(item.type->kind) + " " + name + " = " + value + ";");
    return "&" + name;
}

void ExpressionGenerator::part(const Expression& value, const std::string& destination, const Type* type) {
    const bool fresh = value.kind == ExpressionKind::Aggregate;
    if (isScalar(type->kind)) {
        const std::string text = scalar(value);
        line(dereference(destination, type->kind) + " = " + text + ";");
    } else if (fresh) {
        into(value, "(" + cPlace(type->kind) + " *)" + destination);
    } else {
        copy(address(value), "(" + cPlace(type->kind) + " *)" + destination, type);
    }
}

void ExpressionGenerator::aggregate(const Expression& item, const std::string& destination) {
    const Type& type = *item.type;
    if (isRecord(type.kind)) {
        for (std::size_t i = 0; i < item.operands.size(); ++i)
            part(*item.operands[i],
                 "quarn_field(" + destination + ", " + std::to_string(type.fields[i].offset) + ")",
                 type.fields[i].type);
        return;
    }
    const std::string kind = cKind(type.element->kind);
    const std::int32_t first = type.bounds.empty() ? 1 : type.bounds[0].lower;
    for (std::size_t i = 0; i < item.operands.size(); ++i) {
        const std::string value = valueAddress(*item.operands[i]);
        if (type.kind == Kind::Array)
            line("tarn_array_auto_assign(" + destination + ", 1, " +
                 std::to_string(first + static_cast<std::int32_t>(i)) + ", " + value + ", " + kind + ");");
        else if (type.kind == Kind::List)
            line("tarn_list_append(" + value + ", " + kind + ", " + destination + ");");
        else
            line("tarn_table_add(" + destination + ", " + (type.indexes.empty() ? "0" : "1") + ", " + value +
                 ");");
    }
}

}  // namespace tarn::toolchain
