// SPDX-License-Identifier: Apache-2.0
#include "kernel/debug/pointrule_internal.h"
#include "os/process.h"

#include <limits>

namespace tarn::debug {

bool PointRule::stops(std::int32_t frame, std::string& fault) {
    if (!compiled_) compile();
    if (!fault_.empty()) {
        fault = fault_;
        return true;
    }
    if (condition_ != nullptr && !condition_->holds(frame)) return false;
    if (hits_ < std::numeric_limits<std::int32_t>::max()) ++hits_;
    if (hits_ < rule_.hits) return false;
    if (rule_.log.empty()) return true;
    write(frame);
    return false;
}

void PointRule::compile() {
    compiled_ = true;
    if (!rule_.condition.empty()) {
        std::string error;
        condition_ = DebugExpression::compile(rule_.condition, error);
        if (condition_ == nullptr)
            fault_ = "The condition '" + rule_.condition + "' of this breakpoint cannot be tested. " + error;
    }
    compileLog();
}

namespace {

// The "}" behind `from` that stands in no text of the expression, else the first one at all; npos: there is none.
std::size_t endOfExpression(std::string_view text, std::size_t from) {
    bool inside = false;
    for (std::size_t i = from; i < text.size(); ++i) {
        if (text[i] == '}' && !inside) return i;
        inside = inside != (text[i] == '"');
    }
    return text.find('}', from);
}

}  // namespace

// "{" begins an expression, which "}" ends; "{{" is the brace itself. One that is not ended is text.
void PointRule::compileLog() {
    const std::string_view text = rule_.log;
    const std::size_t lastEnd = text.rfind('}');
    for (std::size_t i = 0; i < text.size(); ++i) {
        const bool begins = text[i] == '{' && lastEnd != std::string_view::npos && i < lastEnd;
        if (text.substr(i, 2) == "{{") {
            addText(text[++i]);
        } else if (begins) {
            const std::size_t end = endOfExpression(text, i);
            addExpression(text.substr(i + 1, end - i - 1));
            i = end;
        } else {
            addText(text[i]);
        }
    }
}

void PointRule::addText(char c) {
    if (log_.empty() || log_.back().expression != nullptr) log_.emplace_back();
    log_.back().text += c;
}

void PointRule::addExpression(std::string_view text) {
    std::string error;
    LogPart part;
    part.expression = DebugExpression::compile(text, error);
    if (part.expression == nullptr) part.text = "(" + error + ")";
    log_.push_back(std::move(part));
}

void PointRule::write(std::int32_t frame) const {
    std::string line;
    for (const LogPart& part : log_)
        line += part.expression != nullptr ? part.expression->text(frame, false) : part.text;
    os::debugOutput(line + "\n");
}

}  // namespace tarn::debug
