// SPDX-License-Identifier: Apache-2.0
//
// One recursive descent over the tokens of a class, a member function a rule of the grammar
// (docs/language.md). The parts stand in a source each:
//
//     parser_tokens.cpp       looking at the next token, taking it, telling what was expected instead, finding
//                             the way on behind an error
//     parser.cpp              the class: its head, what it uses, constants, variables, functions
//     parser_types.cpp        types as they are written
//     parser_foreign.cpp      what newcomers bring from other languages, and how it is read on: words and statements
//     parser_foreign_blocks.cpp   ... where blocks begin and end
//     parser_foreign_names.cpp    ... declarations, heads, types, names
//     parser_statements.cpp   a function for each; blocks end where a word ends them
//     parser_expressions.cpp  by levels of operators, loosest first; items, literals
#pragma once

#include "toolchain/language/lexer.h"
#include "toolchain/language/parser.h"

#include <initializer_list>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace tarn::toolchain {

bool beginsDeclaration(Word word);
bool endsBlock(Word word);
bool beginsStatement(Word word);

inline bool isNumberToken(const Token& token) {
    return token.kind == TokenKind::Integer || token.kind == TokenKind::Fixed ||
           token.kind == TokenKind::Real;
}

struct ForeignEnd;

class Parser {
public:
    Parser(std::string_view source, const std::string& path, Messages& messages)
        : path_(path), messages_(messages), tokens_(scan(source, path, messages)) {}

    void parse(ClassTree& tree);

private:
    // ---- tokens ----

    const Token& here() const { return tokens_[position_]; }
    const Token& peek(std::size_t ahead) const;
    bool atEnd() const { return here().kind == TokenKind::End; }
    bool isWord(Word word) const { return here().word == word; }
    bool isSymbol(std::string_view text) const {
        return here().kind == TokenKind::Symbol && here().text == text;
    }
    bool isName() const { return here().kind == TokenKind::Name; }
    bool atClassEnd() const { return isWord(Word::End) && peek(1).word == Word::Class; }
    void advance() {
        if (!atEnd()) ++position_;
    }
    bool accept(Word word);
    bool accept(std::string_view symbol);
    std::string found() const;
    void report(Problem problem, std::initializer_list<std::string_view> values = {});
    void reportAt(int line, Problem problem, std::initializer_list<std::string_view> values = {});
    void reportExpected(std::string_view what);
    void tell(Problem problem, std::initializer_list<std::string_view> values);  // and go on
    bool expect(Word word);
    bool expect(std::string_view symbol);
    void synchronise();
    bool name(std::string& text, std::string_view what);
    bool newName(std::string& text);
    bool enter();  // one level deeper; false when that is too deep
    void leave() { --depth_; }

    // ---- what newcomers bring: told once, and read as what is meant ----

    bool takeInstead(std::string_view expected);
    bool isOnLine(Word word) const;
    std::size_t behindParentheses(std::size_t ahead) const;
    bool takeBrace(std::string_view right);
    bool closeBrace(bool opened);
    bool openBlock(Word word);  // whether a brace opens it
    bool skipTo(Word word);
    const ForeignEnd* foreignEnd() const;
    bool takeForeignEnd(Word word);
    bool atForeignElseif() const;
    bool atBlockEnd() const;
    bool endIsAlone() const;
    bool functionEndAhead();
    bool strayEnd();
    bool misplaced();
    bool atVariableList() const;
    bool atForeignFunction() const;
    bool foreignDeclaration();
    StatementPtr foreignStatement(bool& taken);
    bool foreignChange(const Expression& target);
    StatementPtr foreignLoop(int line);
    StatementPtr foreignFor(int line);
    StatementPtr foreignBlock();
    StatementPtr foreignTry(std::string_view right);
    StatementPtr foreignWord();
    ExpressionPtr foreignName(ExpressionPtr item);
    bool foreignType(TypeNode& node);
    bool isDeclared(std::string_view text);
    bool isDeclaredSomewhere(std::string_view text) const;
    bool resultInstead(Function& head);
    bool returnsValue() const;
    bool valueWithoutType() const;
    bool typeInFront(std::string_view lead = {});

    // ---- the class ----

    bool header();
    void uses();
    void declaration();
    void synchroniseDeclaration(std::size_t begin);
    std::string textBetween(std::size_t begin, std::size_t end) const;
    std::unique_ptr<Declaration> declare(DeclarationKind kind, const std::string& text, int line,
                                         bool isPublic);
    void addToClass(std::unique_ptr<Declaration> item);
    void constant(bool isPublic, std::size_t begin);
    static void forget(Declaration& item);
    void type(bool isPublic, std::size_t begin);
    void enumNames(const TypeNodePtr& node, bool isPublic);
    bool variableLine(DeclarationKind kind, bool isPublic, std::size_t begin,
                      std::vector<std::unique_ptr<Declaration>>& items);
    bool atVariableLine() const;
    void classVariables(bool isPublic, std::size_t begin);

    // ---- functions ----

    void function(bool isPublic, std::size_t begin);
    void functionHead(Declaration& item);
    bool atForwardEnd();
    void errorRange(Function& head);
    void parameters(Declaration& item);
    bool parameter(Declaration& item);
    void externalBody(Function& head);
    void body(Declaration& item);
    void variables(Function& head);
    void addFunction(std::unique_ptr<Declaration> item);

    // ---- types ----

    TypeNodePtr typeReference();
    TypeNodePtr makeType(Kind kind);
    void typeBody(TypeNode& node);
    void simpleType(TypeNode& node);
    void partOf(TypeNode& node);
    void namedType(TypeNode& node);
    void enumType(TypeNode& node);
    void fields(TypeNode& node, Word closing);
    void ranges(TypeNode& node);
    void element(TypeNode& node);
    void indexes(TypeNode& node);

    // ---- statements ----

    StatementPtr make(StatementKind kind, int line);
    void block(Block& statements);
    void closeBlock(Word word, int line);
    StatementPtr statement();
    StatementPtr itemStatement(int line);
    void takeValueOfNextLine(int line);
    StatementPtr ifStatement(int line);
    void elseBranch(Statement& statement, bool& brace);
    StatementPtr whileStatement(int line);
    StatementPtr loopStatement(int line);
    StatementPtr forStatement(int line);
    StatementPtr forEachStatement(int line);
    void forBounds(Statement& statement);
    void loopBody(Statement& statement);
    StatementPtr leaveStatement(StatementKind kind, int line);
    StatementPtr returnStatement(int line);
    StatementPtr selectStatement(int line);
    void withoutCase();
    void caseLabels(Branch& branch);

    // ---- expressions ----

    ExpressionPtr makeExpression(ExpressionKind kind, int line);
    ExpressionPtr makeName(const std::string& text, int line);
    ExpressionPtr expression();  // never null, also after an error
    ExpressionPtr condition();
    bool operatorAt(int level, Operator& op) const;
    ExpressionPtr chain(int level);
    ExpressionPtr negation();
    ExpressionPtr sign();
    ExpressionPtr literal(Kind kind);
    ExpressionPtr number(bool minus);
    ExpressionPtr primary();
    [[nodiscard]] std::string_view valueInstead() const;
    ExpressionPtr parentheses();
    ExpressionPtr setLiteral();
    ExpressionPtr aggregate();
    ExpressionPtr item();
    ExpressionPtr call(ExpressionPtr base);
    void list(Expression& item, std::string_view close);

    const std::string path_;
    Messages& messages_;
    std::vector<Token> tokens_;
    std::size_t position_ = 0, lastSynchronised_ = 0, lastUnclosed_ = 0;
    ClassTree* tree_ = nullptr;
    int depth_ = 0;
    int errorLine_ = 0;   // of the last message
    int elseIfLine_ = 0;  // of the last `if` that stands behind `else` on one line
    bool panic_ = false;
    bool result_ = false;    // the function being read has one
    bool headKnown_ = true;  // its head could be read
    bool isPublic_ = false;  // the declaration being read
    bool braceTold_ = false;
    bool tryTold_ = false;
    std::map<std::string, bool> declared_;   // words of the tables that the class declares as names
    int toldLine_ = 0;                       // of the last habit that was told: one a line
    bool commaTold_ = false;                 // between names of used classes
    bool foreignHead_ = false;               // the function being read begins with a word of another language
    int braces_ = 0;                         // blocks that a brace opened
    int ifs_ = 0, loops_ = 0, selects_ = 0;  // open blocks of the function being read
    bool doLoop_ = false;                    // the innermost loop began with `do` or `repeat`
    std::size_t decidedAt_ = 0;              // the token that decides functionEndAhead
    bool endDecided_ = false;
    int nested_ = 0;                       // classes that begin inside of the class
    Declaration* functionItem_ = nullptr;  // the function being read
};

}  // namespace tarn::toolchain
