// SPDX-License-Identifier: Apache-2.0
//
// The tree of one class: what the parser makes, the checker completes and the generator reads. Chains of
// operators of one level, branches and cases are vectors, so that the depth of the tree is bounded by the
// nesting that the parser admits (MaxNesting), however long the source is.
//
// The tree owns its text; it does not refer to the source once it is made.
#pragma once

#include "toolchain/language/types.h"

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace tarn::toolchain {

inline constexpr int MaxNesting = 100;

// A value that is known while compiling. Sets, records and the like are never: they are made when the program
// begins.
struct Value {
    Kind kind = Kind::None;
    std::int64_t number = 0;  // 0 and 1 of a boolean, the ordinal of an enum, 10000 times a fixed number
    double real = 0;
    std::string text;
};

enum class Operator : unsigned char {
    Add,
    Subtract,
    Multiply,
    Divide,
    Div,
    Mod,
    And,
    Or,
    Eq,
    Ne,
    Lt,
    Le,
    Gt,
    Ge,
    In
};
const char* operatorText(Operator op);

enum class ExpressionKind : unsigned char {
    Literal,
    Name,
    Me,
    Field,  // operand 0 and a name
    Index,  // operand 0, then one index for each dimension
    Call,   // the operands are the arguments
    Not,
    Negate,
    Chain,
    Set,  // pairs of operands, the second null for a single member
    Aggregate,
    Convert,  // made by the checker: operand 0 as `type`
};

struct Declaration;
struct ClassTree;

struct Expression;
using ExpressionPtr = std::unique_ptr<Expression>;

struct Expression {
    ExpressionKind kind = ExpressionKind::Literal;
    int line = 0;
    std::string qualifier, name;  // Name, Call; Field (name alone)
    std::vector<ExpressionPtr> operands;
    std::vector<Operator> operators;  // Chain: one fewer than operands; one level of precedence
    Value value;                      // Literal

    // Set by the checker.
    const Type* type = plainType(Kind::Unknown);
    const Declaration* target = nullptr;  // Name, Call
    std::optional<Value> constant;
    int number = 0;         // Field: its number; the name of an index: its number
    bool isResult = false;  // the name of the function in its postcondition: its result
    bool isWindow = false;  // the name of a window or control
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
    ForEach,
    Exit,
    Iterate,
    Select,
    Return
};

struct Statement {
    StatementKind kind = StatementKind::Call;
    int line = 0;
    ExpressionPtr target;       // Assign; the variable of For and ForEach
    ExpressionPtr value;        // the value, condition, call, selector, start, or what is walked
    ExpressionPtr limit, step;  // For; step may be null
    ExpressionPtr where;        // ForEach; may be null
    std::string through;        // ForEach: the name of an index
    int index = 1;              // ForEach over a table: the number of the index, set by the checker; 0: none
    bool down = false;          // For: downto; ForEach: desc
    bool hasElse = false;       // If, Select: the last branch is `else`
    bool isInitial = false;     // Assign: the start value of a variable
    std::vector<Branch> branches;  // If, Select
    Block body;                    // loops
};

// ---- types as they are written ----

struct RangeNode {
    ExpressionPtr lower, upper;  // `upper` null: 1 to `lower`; both null: `*`
};

struct TypeNode;

struct FieldNode {
    std::string name;
    int line = 0;
    std::shared_ptr<TypeNode> type;
};

struct IndexNode {
    std::string name;
    int line = 0;
    std::vector<std::string> fields;
};

struct TypeNode {
    Kind kind = Kind::None;  // None: a named type
    int line = 0;
    std::string qualifier, name;  // of a named type; of an enum with names what it is called
    bool isExternal = false;
    bool hasRanges = false;
    bool isOpen = false;  // without `of`: any shape
    std::vector<RangeNode> ranges;
    std::vector<FieldNode> fields;
    std::vector<std::string> names;  // of an enum
    std::vector<IndexNode> indexes;
    std::shared_ptr<TypeNode> element;
    std::string partOf;  // of a library parameter: the parameter whose element, row or index this is
    const Type* resolved = nullptr;
};
using TypeNodePtr = std::shared_ptr<TypeNode>;

// ---- declarations ----

enum class DeclarationKind : unsigned char {
    Constant,
    Type,
    ClassVariable,
    Variable,
    Parameter,
    Function,
    Window
};
const char* declarationName(DeclarationKind kind);

enum class Mode : unsigned char { In, Out, Inout };

struct Condition {
    int line = 0;
    ExpressionPtr value;
};

struct Function {
    std::vector<std::unique_ptr<Declaration>> parameters, variables;
    TypeNodePtr resultNode;  // null: no result
    const Type* result = plainType(Kind::None);
    std::vector<Condition> preconditions, postconditions;
    std::int32_t firstCode = 0, lastCode = 0;  // of onerror
    bool hasRange = false;
    Block body;
    int bodyLine = 0;  // line of the head of the body; 0: no body yet
    int endLine = 0;
    std::string external;  // the C function that is its body; empty: it has one of its own
    bool isOnerror = false;
    bool isCallback = false;
    bool hasErrors = false;      // the parser gave a message for its body
    bool headHasErrors = false;  // its parameters and result are not known
};

enum class Progress : unsigned char { Not, Running, Done };

struct Declaration {
    DeclarationKind kind = DeclarationKind::Variable;
    std::string name;
    int line = 0;  // of the (forward) declaration
    bool isPublic = false;
    TypeNodePtr typeNode;                      // null: a constant that takes the type of its value
    const Type* type = plainType(Kind::None);  // once it is resolved
    Mode mode = Mode::In;
    ExpressionPtr initial;               // of a constant or a class variable
    std::unique_ptr<Function> function;  // of a function
    const ClassTree* owner = nullptr;
    std::string signature;            // its head as written, blanks as one
    Declaration* nextForm = nullptr;  // another function of the same name

    // A window, a menu's item or a control: what the resource file calls it.
    std::string window, control, controlType;
    std::int32_t lower = 0, upper = -1;  // of a control array

    // Set by the checker.
    mutable int useLine = 0;     // of the first use
    std::optional<Value> value;  // of a constant that is known while compiling
    Progress resolving = Progress::Not, evaluation = Progress::Not;
    int enumOrdinal = -1;  // of the name of an enum
    bool dependsOnItself = false;
};

struct UsedClass {
    std::string name;
    int line = 0;
    ClassTree* tree = nullptr;  // null: not found, or the library
};

// A window that the class's resource file does not tell, because of a fault.
struct WindowFault {
    std::string file, text;
    int line = 0;
};

struct ClassTree {
    std::string path;  // full path of the file
    std::string name;
    int line = 0, endLine = 0;
    std::vector<UsedClass> uses;
    std::vector<std::unique_ptr<Declaration>> declarations;
    std::map<std::string, Declaration*> names;  // by folded name; further forms hang on the first
    std::vector<WindowFault> windowFaults;
    bool complete = true;    // false: the text has errors
    bool typesDone = false;  // the types of all heads are resolved
};

Declaration* findDeclaration(const ClassTree& tree, const std::string& foldedName);
// A constant whose value is no number and no text: a variable that nobody can change.
bool isStoredConstant(const Declaration& item);
// The function that starts a program: main without parameters, or as the function of the window Main.
const Declaration* findMain(const ClassTree& tree);

}  // namespace tarn::toolchain
