// SPDX-License-Identifier: Apache-2.0
//
// One recursive descent over the tokens of a class, a member function a rule of the grammar
// (docs/language.md). The parts stand in a source each:
//
//     parser_tokens.cpp       looking at the next token, taking it, telling what was expected instead, finding
//                             the way on behind an error
//     parser.cpp              the class: its head, what it uses, constants, variables, functions
//     parser_types.cpp        types as they are written
//     parser_statements.cpp   a function for each; blocks end where a word ends them
//     parser_expressions.cpp  by levels of operators, loosest first; items, literals
#pragma once

#include "toolchain/language/lexer.h"
#include "toolchain/language/parser.h"

#include <initializer_list>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace tarn::toolchain {

bool beginsDeclaration(Word word);
bool endsBlock(Word word);

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
    bool expect(Word word);
    bool expect(std::string_view symbol);
    void synchronise();
    bool name(std::string& text, std::string_view what);
    bool newName(std::string& text);
    bool enter();  // one level deeper; false when that is too deep
    void leave() { --depth_; }

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
    bool atForwardEnd() const;
    void errorRange(Function& head);
    void parameters(Declaration& item);
    bool parameter(Declaration& item, Mode& mode);
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
    bool foreignStatement();
    StatementPtr ifStatement(int line);
    void elseBranch(Statement& statement);
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
    ExpressionPtr expression() { return chain(0); }  // never null, also after an error
    bool operatorAt(int level, Operator& op) const;
    ExpressionPtr chain(int level);
    ExpressionPtr negation();
    ExpressionPtr sign();
    ExpressionPtr literal(Kind kind);
    ExpressionPtr number(bool minus);
    ExpressionPtr primary();
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
};

}  // namespace tarn::toolchain
