// SPDX-License-Identifier: Apache-2.0
#include "kernel/debug/expression.h"

#include "kernel/debug/expression_internal.h"
#include "kernel/debug/valuedump_internal.h"
#include "kernel/run/errorcell.h"
#include "kernel/run/runtime.h"
#include "kernel/values/strings.h"

namespace tarn {

namespace {

using Operand = ExpressionOperand;
using Type = Operand::Type;

std::string reason(const ExpressionResult& result) {
    const std::string detail(result.detail);
    switch (result.trouble) {
    case Trouble::NoName: return "(there is no " + detail + " here)";
    case Trouble::NoFields: return "(no field " + detail + " is known)";
    case Trouble::NoElement: return "(there is no element " + std::to_string(result.index) + ")";
    case Trouble::NotIndexed: return "(this has no such elements)";
    case Trouble::Operands:
        return detail.empty() ? "(a subscript is an integer)" : "(these values have no " + detail + ")";
    case Trouble::Zero: return "(division by zero)";
    case Trouble::NoBoolean: return "(this is neither true nor false)";
    default: return ErrorCell() != 0 ? "(" + ErrorMessage(ErrorCell()) + ")" : "(this cannot be read)";
    }
}

std::string textOf(const Operand& value, bool hex) {
    const auto whole = static_cast<std::int32_t>(value.whole);
    const auto boolean = static_cast<std::uint8_t>(value.whole);
    switch (value.type) {
    case Type::Boolean: return OneLineValue(&boolean, KindBoolean, hex);
    case Type::Integer: return OneLineValue(&whole, KindInteger, hex);
    case Type::Fixed: return OneLineValue(&value.whole, KindFixed, hex);
    case Type::Real: return OneLineValue(&value.real, KindReal, hex);
    case Type::Place: return OneLineValue(value.place, value.kind, hex);
    default: break;
    }
    const String text(value.text);
    return OneLineValue(text.get(), KindString, hex);
}

void forgetElements(ExpressionParts& parts) {
    if (!parts.elements.empty()) parts.elements.clear();
    if (!parts.wide.empty()) parts.wide.clear();
    if (!parts.made.empty()) parts.made.clear();
}

}  // namespace

DebugExpression::DebugExpression(std::unique_ptr<ExpressionParts> parts) : parts_(std::move(parts)) {}
DebugExpression::~DebugExpression() = default;

bool DebugExpression::holds(std::int32_t frame) {
    const ErrorCellAside aside;
    ExpressionResult result = Evaluate(*parts_, frame);
    Operand& value = result.value;
    const bool isPlace = value.type == Type::Place && value.kind == KindBoolean;
    if (isPlace) value.whole = ReadAt<std::uint8_t>(value.place);
    const bool known = result.trouble == Trouble::None && (isPlace || value.type == Type::Boolean);
    forgetElements(*parts_);
    return !known || value.whole != 0;
}

std::optional<std::string> DebugExpression::value(std::int32_t frame, bool hex) {
    const ErrorCellAside aside;
    const ExpressionResult result = Evaluate(*parts_, frame);
    std::optional<std::string> text;
    if (result.trouble == Trouble::None) text = textOf(result.value, hex);
    forgetElements(*parts_);
    return text;
}

std::string DebugExpression::text(std::int32_t frame, bool hex) {
    const ErrorCellAside aside;
    const ExpressionResult result = Evaluate(*parts_, frame);
    std::string text = result.trouble == Trouble::None ? textOf(result.value, hex) : reason(result);
    forgetElements(*parts_);
    return text;
}

}  // namespace tarn
