// SPDX-License-Identifier: Apache-2.0
//
// Expressions to C. An expression becomes a C expression without side effects on the program's variables, and
// C statements ahead of it that make its calls, in order from left to right.
#pragma once

#include "toolchain/output/functiongen.h"

#include <string>

namespace tarn::toolchain {

class ExpressionGenerator {
public:
    explicit ExpressionGenerator(Shared& shared) : shared_(shared) {}

    // The C statements made so far; taking them leaves none.
    std::string takeLines();
    void line(const std::string& text);  // adds one, indented
    void indent(int by) { indent_ += by; }

    // Temporary strings of earlier statements may be used again.
    void freeTemporaries() { inUse_ = 0; }
    [[nodiscard]] int temporaries() const { return most_; }
    std::string newName();  // of a C variable of this function

    std::string number(const Expression& item);  // an integer or boolean value
    std::string text(const Expression& item);    // a pointer to a string
    void textInto(const Expression& item, const std::string& destination);
    void call(const Expression& item);  // a call without a result
    // The place of a variable: a C lvalue, of a string a pointer.
    std::string place(const Declaration& item);
    // The number of an element, kept while `later` is computed.
    std::string numberBefore(const Expression& item, const Expression& later);

private:
    unsigned effects(const Expression& item) const;
    bool changes(const Expression& item, unsigned effects) const;
    std::string keptNumber(const Expression& item, unsigned later);
    std::string keptText(const Expression& item, unsigned later);
    std::string newTemporary();
    std::string callText(const Expression& item, const std::string& result);
    std::string argument(const Expression& item, std::size_t index, Mode mode, unsigned later);
    std::string chain(const Expression& item);
    std::string comparison(const Expression& item);
    std::string truthChain(const Expression& item);
    std::string numberChain(const Expression& item);
    void textChain(const Expression& item, const std::string& destination);

    Shared& shared_;
    std::string lines_;
    int indent_ = 1;
    int inUse_ = 0, most_ = 0, names_ = 0;
};

}  // namespace tarn::toolchain
