// SPDX-License-Identifier: Apache-2.0
#include "toolchain/language/constants.h"

#include "kernel/text/fixed.h"
#include "kernel/text/numbers.h"

namespace tarn::toolchain {
namespace {

std::int32_t wrap(std::int64_t number) {
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(number));
}

std::int64_t floorDiv(std::int64_t a, std::int64_t b) {
    const std::int64_t quotient = a / b;
    return a % b != 0 && (a < 0) != (b < 0) ? quotient - 1 : quotient;
}

bool relationHolds(Operator op, int order) {
    switch (op) {
    case Operator::Eq: return order == 0;
    case Operator::Ne: return order != 0;
    case Operator::Lt: return order < 0;
    case Operator::Le: return order <= 0;
    case Operator::Gt: return order > 0;
    default: return order >= 0;
    }
}

bool foldIntegers(Operator op, std::int64_t& a, std::int64_t b) {
    switch (op) {
    case Operator::Add: a = wrap(a + b); return true;
    case Operator::Subtract: a = wrap(a - b); return true;
    case Operator::Multiply: a = wrap(a * b); return true;
    case Operator::Div:
    case Operator::Mod: break;
    default: return false;
    }
    if (b == 0) return false;
    a = wrap(op == Operator::Div ? floorDiv(a, b) : a - b * floorDiv(a, b));
    return true;
}

bool foldFixed(Operator op, std::int64_t& a, std::int64_t b) {
    const auto left = static_cast<std::uint64_t>(a), right = static_cast<std::uint64_t>(b);
    switch (op) {
    case Operator::Add: a = static_cast<std::int64_t>(left + right); return true;
    case Operator::Subtract: a = static_cast<std::int64_t>(left - right); return true;
    case Operator::Multiply: FixedMul(a, b, a); return true;
    case Operator::Divide:
        if (b == 0) return false;
        FixedDiv(a, b, a);
        return true;
    default: return false;
    }
}

bool foldReals(Operator op, double& a, double b) {
    switch (op) {
    case Operator::Add: a += b; return true;
    case Operator::Subtract: a -= b; return true;
    case Operator::Multiply: a *= b; return true;
    case Operator::Divide:
        if (b == 0) return false;
        a /= b;
        return true;
    default: return false;
    }
}

bool foldTruth(Operator op, std::int64_t& a, std::int64_t b) {
    if (op == Operator::And)
        a = a & b;
    else if (op == Operator::Or)
        a = a | b;
    else
        return false;
    return true;
}

bool foldOne(Operator op, Value& left, const Value& right) {
    if (op >= Operator::Eq && op <= Operator::Ge) {
        left = booleanValue(relationHolds(op, compareValues(left, right)));
        return true;
    }
    switch (left.kind) {
    case Kind::Boolean: return foldTruth(op, left.number, right.number);
    case Kind::Integer: return foldIntegers(op, left.number, right.number);
    case Kind::Fixed: return foldFixed(op, left.number, right.number);
    case Kind::Real: return foldReals(op, left.real, right.real);
    case Kind::String: left.text += right.text; return op == Operator::Add;
    default: return false;
    }
}

}  // namespace

Value booleanValue(bool value) {
    Value result;
    result.kind = Kind::Boolean;
    result.number = value ? 1 : 0;
    return result;
}

Value integerValue(std::int64_t number) {
    Value result;
    result.kind = Kind::Integer;
    result.number = wrap(number);
    return result;
}

Value textValue(std::string text) {
    Value result;
    result.kind = Kind::String;
    result.text = std::move(text);
    return result;
}

Value convertValue(const Value& value, Kind to) {
    Value result = value;
    result.kind = to;
    if (value.kind == Kind::Integer && to == Kind::Fixed) FixedFromInteger(wrap(value.number), result.number);
    if (value.kind == Kind::Integer && to == Kind::Real) result.real = static_cast<double>(value.number);
    if (value.kind == Kind::Fixed && to == Kind::Real) result.real = FixedToReal(value.number);
    return result;
}

Value negateValue(const Value& value) {
    Value result = value;
    if (value.kind == Kind::Integer) result.number = wrap(-value.number);
    if (value.kind == Kind::Fixed)
        result.number = static_cast<std::int64_t>(0U - static_cast<std::uint64_t>(value.number));
    if (value.kind == Kind::Real) result.real = -value.real;
    return result;
}

int compareValues(const Value& a, const Value& b) {
    if (a.kind == Kind::String) {
        const int order = a.text.compare(b.text);
        return order < 0 ? -1 : order > 0 ? 1 : 0;
    }
    if (a.kind == Kind::Real) return a.real < b.real ? -1 : a.real > b.real ? 1 : 0;
    return a.number < b.number ? -1 : a.number > b.number ? 1 : 0;
}

bool foldChain(const Expression& chain, Value& result) {
    result = *chain.operands[0]->constant;
    for (std::size_t i = 0; i < chain.operators.size(); ++i)
        if (!foldOne(chain.operators[i], result, *chain.operands[i + 1]->constant)) return false;
    return true;
}

}  // namespace tarn::toolchain
