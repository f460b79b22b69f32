// SPDX-License-Identifier: Apache-2.0
//
// Gives every name of a parsed class its declaration and every expression its type, and folds constants. The
// parts stand in a source each:
//
//     checker.cpp              the class: types of heads, constants, variables, functions
//     checker_names.cpp        scopes, look-up, guesses at what was meant
//     checker_types.cpp        types as they are written to types
//     checker_statements.cpp   a function for each
//     checker_expressions.cpp  operators, literals, items
//     checker_calls.cpp        functions of classes and of the library, which has several forms of one name
#pragma once

#include "toolchain/language/checker.h"

#include <map>
#include <set>
#include <string>
#include <vector>

namespace tarn::toolchain {

class Checker {
public:
    Checker(ClassTree& tree, Messages& messages) : tree_(tree), messages_(messages) {}

    void run();
    // The types of one head, or of all.
    void resolveHead(Declaration& item);
    void declareTypes();
    // The value of a constant.
    void evaluate(Declaration& item, int depth);

private:
    void add(int line, Problem problem, std::initializer_list<std::string_view> values) {
        messages_.add(tree_.path, line, problem, values);
    }

    // Tells the faults for which windows of the class are missing, once; false if there are none.
    bool tellWindowFaults();

    // ---- the class ----

    void finishConstant(Declaration& item);
    void classItem(Declaration& item);
    void function(Declaration& item);
    void functionHead(const Declaration& item, const Function& head);
    void callbackHead(const Declaration& item, const Function& head);
    void formsDiffer(const Declaration& item);
    void declareLocals(Function& head);

    // ---- types ----

    const Type* resolve(TypeNode& node);
    const Type* resolveNamed(TypeNode& node);
    const Type* withRanges(const Type* named, TypeNode& node);
    Type partsOf(TypeNode& node);
    bool constantRange(RangeNode& range, Range& result);
    bool constantNumber(Expression& item, std::int64_t least, std::int64_t most, std::int64_t& number);
    bool capacity(TypeNode& node, Type& type);
    bool boundsOf(TypeNode& node, Type& type);
    bool elementOf(TypeNode& node, Type& type);
    bool fieldsOf(TypeNode& node, Type& type);
    bool indexesOf(TypeNode& node, Type& type);
    bool indexFields(const IndexNode& node, const Type& row, Index& index);

    // ---- names ----

    const Declaration* lookUp(const std::string& qualifier, const std::string& name, int line,
                              bool quiet = false);
    const Declaration* lookUpUsed(const std::string& folded, const std::string& name, int line);
    const Declaration* lookUpIn(const std::string& qualifier, const std::string& folded,
                                const std::string& name, int line);
    bool isClassName(const std::string& name) const;
    void prepare(ClassTree& owner, Declaration& item, int line);
    void unknown(const std::string& name, int line);
    void wrongKind(const Declaration& item, const char* needed, int line);

    // ---- statements ----

    void block(Block& statements);
    void statement(Statement& item);
    void loop(Statement& item);
    void assignment(Statement& item);
    void callStatement(Statement& item);
    void forLoop(Statement& item);
    void forEach(Statement& item);
    const Type* walked(Statement& item);
    void walkedIndex(Statement& item);
    void ifStatement(Statement& item);
    void select(Statement& item);
    void returned(Statement& item);

    struct SeenCase {
        std::int64_t last;
        int line;
    };
    using SeenCases = std::map<std::pair<std::int64_t, std::string>, SeenCase>;  // by first number and text
    void windowLabel(const CaseLabel& label);
    void caseLabel(CaseLabel& label, const Type* type, SeenCases& seen);

    // ---- expressions ----

    bool fits(ExpressionPtr& item, const Type* type);
    bool requireKind(ExpressionPtr& item, Kind kind);
    void truth(ExpressionPtr& item);
    void convert(ExpressionPtr& item, const Type* type);
    void check(ExpressionPtr& item, const Type* expected = nullptr);
    void checkOne(ExpressionPtr& item, const Type* expected);
    void name(Expression& item);
    void constantName(Expression& item, Declaration& target);
    void field(ExpressionPtr& item);
    void noRecord(const Expression& item);
    void control(Expression& item);
    void index(Expression& item);
    void element(Expression& item);
    static void foldCharacter(Expression& item);
    void unary(Expression& item);
    void chain(Expression& item);
    bool stepFits(Expression& item, std::size_t step);
    void membership(Expression& item);
    void foldIfConstant(Expression& item);
    void constantText(Expression& item, Value value);
    void setLiteral(Expression& item);
    void aggregate(Expression& item, const Type* expected);
    void recordAggregate(Expression& item, const Type* expected);
    void freeAggregate(Expression& item);
    bool isVariable(const Expression& item, bool tell);

    // ---- calls ----

    void call(ExpressionPtr& item);
    bool isMethod(Expression& item);
    void typeCall(Expression& item, const Declaration& target);
    void checkArguments(Expression& item, const Declaration& first);
    const Declaration* formFor(const Expression& item, const Declaration& first);
    int costOf(const Expression& item, const Declaration& form) const;
    const Type* parameterType(const Expression& item, const Declaration& form, std::size_t index) const;
    void argument(Expression& item, std::size_t index, const Declaration& form);
    void noForm(Expression& item, const Declaration& first);
    void indexArgument(Expression& item, std::size_t index, const Declaration& form);
    void guardWalked(const Expression& item, const Declaration& form);
    void guardKind(const Expression& item, const Declaration& form);
    static void foldLibraryCall(Expression& item);

    ClassTree& tree_;
    Messages& messages_;
    std::map<std::string, const Declaration*> locals_;
    std::set<std::string> reported_;
    std::vector<const Declaration*> walked_;  // what `for each` walks around here
    std::vector<Declaration*> running_;       // the constants that are being evaluated
    Declaration* functionItem_ = nullptr;
    Function* function_ = nullptr;
    int loops_ = 0;
    int constantDepth_ = 0;
    int depth_ = 0;
    bool inPostcondition_ = false;
};

// The variable at the root of an item; null for anything else.
const Declaration* rootOf(const Expression& item);

}  // namespace tarn::toolchain
