// SPDX-License-Identifier: Apache-2.0
//
// The tree of one class: what the parser makes, the checker completes and the generator reads. Chains of
// operators of one level, branches and cases are vectors, so that the depth of the tree is bounded by the
// nesting that the parser admits (MaxNesting), however long the source is.
//
// The tree owns its text; it does not refer to the source once it is made.
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace tarn::toolchain {

inline constexpr int MaxNesting = 100;
inline constexpr std::int32_t Unbounded = -1000000;
inline constexpr std::int32_t MaxStringLength = 4096000;

enum class Type : unsigned char {
    None,     // no value
    Unknown,  // a message was given already
    Boolean,
    Integer,
    String,
};
const char* typeName(Type type);
std::string
typePhrase(Type type);  // with its article  // "boolean", "integer", "string", "call without a value"

struct TypeRef {
    Type type = Type::None;
    std::int32_t maxLength = Unbounded;  // of a string
    std::string name;                    // a declared type, until it is resolved
    int line = 0;
};

struct Value {
    Type type = Type::None;
    std::int32_t number = 0;  // also 0 and 1 of a boolean
    std::string text;
};

enum class Operator : unsigned char { Add, Subtract, Multiply, Div, Mod, And, Or, Eq, Ne, Lt, Le, Gt, Ge };
const char* operatorText(Operator op);

enum class ExpressionKind : unsigned char { Literal, Name, Call, Element, Not, Negate, Chain };

struct Declaration;
struct ClassTree;
struct LibraryFunction;

struct Expression;
using ExpressionPtr = std::unique_ptr<Expression>;

struct Expression {
    ExpressionKind kind = ExpressionKind::Literal;
    int line = 0;
    std::string qualifier, name;          // Name, Call, Element (the variable)
    std::vector<ExpressionPtr> operands;  // arguments, the index, or the operands of a chain
    std::vector<Operator> operators;      // Chain: one fewer than operands; one level of precedence
    Value value;                          // Literal

    // Set by the checker.
    Type type = Type::Unknown;
    const Declaration* target = nullptr;       // Name, Element, Call of a class's function
    const LibraryFunction* library = nullptr;  // Call of a library function
    std::optional<Value> constant;
    bool isResult = false;  // the name of the function in its postcondition: its result
};

struct Statement;
using StatementPtr = std::unique_ptr<Statement>;
using Block = std::vector<StatementPtr>;

struct CaseLabel {
    ExpressionPtr from, to;  // `to` null: one value
    int line = 0;
};

struct Branch {
    int line = 0;
    ExpressionPtr condition;        // if, elseif; null for else
    std::vector<CaseLabel> labels;  // case
    Block body;
};

enum class StatementKind : unsigned char {
    Assign,
    Call,
    If,
    While,
    Loop,
    For,
    Exit,
    Iterate,
    Select,
    Return
};

struct Statement {
    StatementKind kind = StatementKind::Call;
    int line = 0;
    ExpressionPtr target;          // Assign, For: a Name or Element
    ExpressionPtr value;           // the value, condition, call, selector or start
    ExpressionPtr limit, step;     // For; step may be null
    bool down = false;             // For: downto
    bool hasElse = false;          // If, Select: the last branch is `else`
    std::vector<Branch> branches;  // If, Select
    Block body;                    // loops
};

enum class DeclarationKind : unsigned char { Constant, Type, ClassVariable, Variable, Parameter, Function };
const char* declarationName(DeclarationKind kind);

enum class Mode : unsigned char { In, Out, Inout };

struct Condition {
    int line = 0;
    ExpressionPtr value;
};

struct Function {
    std::vector<std::unique_ptr<Declaration>> parameters, variables;
    TypeRef result;
    std::vector<Condition> preconditions, postconditions;
    std::int32_t firstCode = 0, lastCode = 0;  // of onerror
    bool hasRange = false;
    Block body;
    int bodyLine = 0;  // line of the head of the body; 0: no body yet
    int endLine = 0;
    bool isOnerror = false;
    bool hasErrors = false;      // the parser gave a message for its body
    bool headHasErrors = false;  // its parameters and result are not known
};

struct Declaration {
    DeclarationKind kind = DeclarationKind::Variable;
    std::string name;
    int line = 0;  // of the (forward) declaration
    bool isPublic = false;
    TypeRef type;  // of a constant too, once it is known
    Mode mode = Mode::In;
    ExpressionPtr initial;               // of a constant or a class variable
    std::unique_ptr<Function> function;  // of a function
    const ClassTree* owner = nullptr;
    std::string signature;  // its head as written, blanks as one

    // Set by the checker.
    mutable int useLine = 0;  // of the first use
    std::optional<Value> value;
    enum class Evaluation : unsigned char { Not, Running, Done } evaluation = Evaluation::Not;
};

struct UsedClass {
    std::string name;
    int line = 0;
    ClassTree* tree = nullptr;  // null: not found, or the library
};

struct ClassTree {
    std::string path;  // full path of the file
    std::string name;
    int line = 0, endLine = 0;
    std::vector<UsedClass> uses;
    std::vector<std::unique_ptr<Declaration>> declarations;
    std::map<std::string, Declaration*> names;  // by folded name
    bool complete = true;                       // false: the text has errors
    bool checked = false;
};

Declaration* findDeclaration(const ClassTree& tree, const std::string& foldedName);

}  // namespace tarn::toolchain
