// SPDX-License-Identifier: Apache-2.0
//
// The statements of one function to C, each behind a stamp with its line.
#pragma once

#include "toolchain/output/exprgen.h"

#include <string>

namespace tarn::toolchain {

class StatementGenerator {
public:
    StatementGenerator(const Function& head, Shared& shared, ExpressionGenerator& out)
        : head_(head), shared_(shared), out_(out) {}

    void block(const Block& statements);
    void listNoLines() { listed_ = false; }  // the debugger is told of no line here
    void stamp(int line);
    void open(const std::string& text);
    void close(const std::string& text = "}");

private:
    void statement(const Statement& item);
    void ifStatement(const Statement& item);
    void loop(const Statement& item);
    void forLoop(const Statement& item);
    void forEach(const Statement& item);
    void walkElements(const Statement& item, const std::string& walked);
    void walkSet(const Statement& item, const std::string& walked);
    void walkLines(const Statement& item, const std::string& walked);
    void walkTable(const Statement& item, const std::string& walked);
    void walkIndex(const Statement& item, const std::string& walked);
    void take(const Statement& item, const std::string& source, const Type* element);
    void takeScalar(const Statement& item, const std::string& value, Kind kind);
    void round(const Statement& item);
    void leaveLoop(const Statement& item, const char* jump);
    void select(const Statement& item);
    std::string caseTest(const CaseLabel& label, const std::string& value, bool text);
    void returned(const Statement& item);
    static std::string stampText(int line);
    std::string newLabel() { return "L" + std::to_string(++labels_); }

    const Function& head_;
    Shared& shared_;
    ExpressionGenerator& out_;
    int labels_ = 0;
    bool listed_ = true;
};

}  // namespace tarn::toolchain
