// SPDX-License-Identifier: Apache-2.0
//
// Expressions of the debugger: what watches show and conditions of breakpoints test. They are written as in the language:
// names of variables in any case, fields, elements, literals, `+ - * / div mod`, comparisons, `in` for members of a set,
// `and`, `or`, `not`, brackets. There are no calls, so that nothing is changed by looking.
//
//   count > 100 and names[count] = "end"          prices[i, 2] * 1.19          not (c in [1, 5..9])
//
// Of two sets `+` has the members of either, `*` those of both, and `-` those of the first alone.
//
// Types are looked at when the expression is evaluated. An enum counts as its ordinal, an array of characters as its text
// up to its first NUL; rows of a table are its elements. `/` of integers is fixed, as in the language.
//
// The names of fields are those that the program has told (fieldnames.h). What is no variable may be an integer or enum
// constant of the classes (declaredconstants.h).
//
// Compiled once: a name becomes its place in the variables of its function, so that testing a condition allocates
// nothing, unless it reads what stands in a file or makes a set of two.
//
// Cost of a test: some ten nanoseconds for a comparison of integers (see the benchmark).
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace tarn {

struct ExpressionParts;

class DebugExpression {
public:
    // `error` says what does not fit and where, in words for the user; null is then the result.
    static std::unique_ptr<DebugExpression> compile(std::string_view text, std::string& error);
    ~DebugExpression();
    DebugExpression(const DebugExpression&) = delete;
    DebugExpression& operator=(const DebugExpression&) = delete;

    // With the variables of the frame (1 is the bottom). A condition that cannot be told (a name that is not there, an
    // index outside the bounds, a division by zero, a value that is no boolean) holds, so that the program stops where
    // the user can see why.
    [[nodiscard]] bool holds(std::int32_t frame);
    // The value as text, as the list shows values in one line; nothing if there is none. The error cell stays as it was.
    [[nodiscard]] std::optional<std::string> value(std::int32_t frame, bool hex);
    // The same, or why there is none, in brackets.
    [[nodiscard]] std::string text(std::int32_t frame, bool hex);

private:
    friend class ExpressionCompiler;
    explicit DebugExpression(std::unique_ptr<ExpressionParts> parts);
    std::unique_ptr<ExpressionParts> parts_;
};

}  // namespace tarn
