// SPDX-License-Identifier: Apache-2.0
//
// What an expression is compiled to: instructions for a stack of operands, in the order in which they are done.
#pragma once

#include "kernel/debug/expression.h"
#include "kernel/lists/list_access.h"
#include "kernel/text/fixed.h"
#include "kernel/values/owned.h"
#include "kernel/values/values.h"

#include <cstdint>
#include <deque>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tarn {

enum class Op : std::uint8_t {
    Constant,  // the operand of this number
    Variable,  // the name of this number
    Index,     // takes this many subscripts and what they belong to
    Field,     // the field whose name has this number
    Negate,
    Not,
    Add,
    Subtract,
    Multiply,
    Divide,
    Div,
    Mod,
    Equal,
    Different,
    Less,
    LessOrEqual,
    Greater,
    GreaterOrEqual,
    In,
    // Behind the left operand of `and`, `or`: goes on at this instruction if that decides.
    And,
    Or,
    Truth,  // what is no boolean cannot be told
};

struct Instruction {
    Op op;
    std::int32_t number = 0;
};

struct ExpressionOperand {
    enum class Type : std::uint8_t { None, Boolean, Integer, Fixed, Real, Text, Place };
    Type type = Type::None;
    Kind kind = KindNone;  // of a place
    union {
        std::int64_t whole = 0;  // booleans, integers, fixed numbers
        double real;
        const void* place;
    };
    std::string_view text;
    std::string_view names;  // of a place: those of its fields (fieldnames.h)
};

// A name of a variable, and where it was found last.
struct ExpressionName {
    std::string text;        // as it is written
    std::string registered;  // as the table of variables has it
    std::int32_t offset = -1;
    std::string constantOf;  // the class for which it was looked for among the constants
    std::optional<std::int32_t> constant;
};

struct ExpressionParts {
    std::vector<Instruction> code;
    std::vector<ExpressionOperand> constants;
    std::vector<ExpressionName> names;
    std::vector<std::string> fields;
    std::deque<std::string> texts;  // of constants
    std::deque<OwnedSet> sets;      // of constants
    std::vector<ExpressionOperand> stack;
    std::deque<ElementBeside> elements;  // read from files, for one evaluation
    std::deque<std::string> wide;        // texts of wide characters, for one evaluation
    std::deque<OwnedSet> made;           // sets of other sets, for one evaluation
};

// Why an expression has no value.
enum class Trouble : std::uint8_t {
    None,
    NoName,      // `detail` is it
    NoFields,    // `detail` is the field's name
    NoElement,   // `index` is the subscript
    NotIndexed,  // not an array, list, table or text, or another number of subscripts
    Operands,    // `detail` is the operator
    Zero,
    Unreadable,
    NoBoolean,
};

struct ExpressionResult {
    Trouble trouble = Trouble::None;
    std::string_view detail;
    std::int32_t index = 0;
    ExpressionOperand value;
};

// The error cell is clear before and afterwards to be forgotten. What the value points to is valid until the next.
ExpressionResult Evaluate(ExpressionParts& parts, std::int32_t frame);

}  // namespace tarn
