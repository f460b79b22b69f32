// SPDX-License-Identifier: Apache-2.0
//
// A breakpoint's rule at work: its expressions are compiled when they are wanted first, and its hits are counted.
#pragma once

#include "kernel/debug/debugsettings.h"
#include "kernel/debug/expression.h"

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace tarn::debug {

class PointRule {
public:
    explicit PointRule(DebugRule rule) : rule_(std::move(rule)) {}
    [[nodiscard]] const DebugRule& rule() const { return rule_; }

    // The breakpoint is reached in the frame. A condition that cannot be read stops, and `fault` says why.
    bool stops(std::int32_t frame, std::string& fault);

private:
    struct LogPart {
        std::string text;                             // as it stands, or why there is no expression
        std::unique_ptr<DebugExpression> expression;  // null: the text
    };
    void compile();
    void compileLog();
    void addExpression(std::string_view text);
    void addText(char c);
    void write(std::int32_t frame) const;

    DebugRule rule_;
    std::int32_t hits_ = 0;
    bool compiled_ = false;
    std::unique_ptr<DebugExpression> condition_;  // null: it holds, or `fault_` says why there is none
    std::string fault_;
    std::vector<LogPart> log_;
};

}  // namespace tarn::debug
