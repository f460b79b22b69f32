// SPDX-License-Identifier: Apache-2.0
//
// Expressions of the debugger: what watches show and conditions of breakpoints test. A name of a variable, fields,
// elements, literals, arithmetic and comparisons, `and`, `or`, `not`, brackets; no calls. Compiled once: a name becomes
// its place in the variables of its function, so that testing a condition allocates nothing.
//
// Cost of a test: some ten nanoseconds for a comparison of integers (see the benchmark).
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

namespace tarn {

class DebugExpression {
public:
    // `error` says what does not fit and where, in words for the user; null is then the result.
    static std::unique_ptr<DebugExpression> compile(std::string_view text, std::string& error);
    ~DebugExpression();
    DebugExpression(const DebugExpression&) = delete;
    DebugExpression& operator=(const DebugExpression&) = delete;

    // With the variables of the frame (1 is the bottom). A condition that cannot be told (a name that is not there, an
    // index outside the bounds, a division by zero) holds, so that the program stops where the user can see why.
    [[nodiscard]] bool holds(std::int32_t frame);
    // The value as text, or why there is none, in brackets. The error cell stays as it was.
    [[nodiscard]] std::string text(std::int32_t frame, bool hex);

private:
    struct Parts;
    explicit DebugExpression(std::unique_ptr<Parts> parts);
    std::unique_ptr<Parts> parts_;
};

}  // namespace tarn
