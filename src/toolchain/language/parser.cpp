// SPDX-License-Identifier: Apache-2.0
//
// The class and its functions. parser_internal.h tells where the other rules stand.
#include "toolchain/language/parser.h"

#include "kernel/run/runtime.h"
#include "os/text/ascii.h"
#include "toolchain/language/parser_internal.h"

#include <algorithm>
#include <utility>

namespace tarn::toolchain {

constexpr std::size_t MostSignature = 657;

// ---- the class ----

void Parser::parse(ClassTree& tree) {
    tree_ = &tree;
    if (!header()) return;
    uses();
    while (!atEnd() && !atClassEnd()) declaration();
    tree.endLine = here().line;
    bool closed = expect(Word::End) && expect(Word::Class);
    for (; closed && nested_ > 0 && atClassEnd(); --nested_) advance(), advance();
    if (closed && !atEnd()) report(Problem::TextBehindClass);
}

bool Parser::header() {
    const bool product = isName() && ascii::equal(here().text, ProductWord);
    if (!product || peek(1).word != Word::Class) {
        report(Problem::NoClass, {ProductWord});
        return false;
    }
    advance();
    advance();
    tree_->line = here().line;
    return name(tree_->name, "the name of the class");
}

void Parser::uses() {
    if (!accept(Word::Uses)) return;
    while (isName()) {
        tree_->uses.push_back({std::string(here().text), here().line, nullptr});
        advance();
        if (!isSymbol(",")) continue;
        if (!std::exchange(commaTold_, true))
            tell(Problem::Expected, {"a blank between the names of used classes", found()});
        advance();
    }
}

void Parser::declaration() {
    const std::size_t begin = position_;
    isPublic_ = isWord(Word::Public);
    const bool hasScope = isPublic_ || isWord(Word::Private);
    if (hasScope) advance();
    if (isWord(Word::Const))
        constant(isPublic_, begin);
    else if (isWord(Word::Type))
        type(isPublic_, begin);
    else if (isWord(Word::Function) || isWord(Word::Callback) || atForeignFunction())
        function(isPublic_, begin);
    else if (isWord(Word::Var) && hasScope)
        classVariables(isPublic_, begin);
    else if (isWord(Word::Var))
        report(Problem::BareClassVariable);
    else if (!foreignDeclaration())
        report(Problem::Expected, {"a declaration or 'end class'", found()});
    if (panic_) synchroniseDeclaration(begin);
}

void Parser::synchroniseDeclaration(std::size_t begin) {
    if (position_ == begin) advance();
    while (!atEnd() && !(here().firstOnLine && beginsDeclaration(here().word)) && !atClassEnd()) advance();
    panic_ = false;
}

std::string Parser::textBetween(std::size_t begin, std::size_t end) const {
    std::string text;
    for (std::size_t i = begin; i < end && text.size() < MostSignature; ++i) {
        const bool tight = i == begin || tokens_[i].text == "(" || tokens_[i].text == ")" ||
                           tokens_[i].text == "," || tokens_[i].text == "[" || tokens_[i].text == "]" ||
                           tokens_[i - 1].text == "(" || tokens_[i - 1].text == "[";
        if (!tight) text += ' ';
        text += tokens_[i].text;
    }
    return text.substr(0, MostSignature);
}

std::unique_ptr<Declaration> Parser::declare(DeclarationKind kind, const std::string& text, int line,
                                             bool isPublic) {
    auto result = std::make_unique<Declaration>();
    result->kind = kind;
    result->name = text;
    result->line = line;
    result->isPublic = isPublic;
    result->owner = tree_;
    return result;
}

void Parser::addToClass(std::unique_ptr<Declaration> item) {
    const auto [place, isNew] = tree_->names.emplace(ascii::lowered(item->name), item.get());
    const bool forms = !isNew && item->kind == DeclarationKind::Function &&
                       place->second->kind == DeclarationKind::Function && !item->function->isOnerror;
    if (forms) {
        Declaration* last = place->second;
        while (last->nextForm != nullptr) last = last->nextForm;
        last->nextForm = item.get();
    } else if (!isNew) {
        const std::string line = std::to_string(place->second->line);
        messages_.add(path_, item->line, Problem::DeclaredTwice, {item->name, line});
        tree_->complete = false;
    }
    tree_->declarations.push_back(std::move(item));
}

void Parser::constant(bool isPublic, std::size_t begin) {
    advance();
    const int line = here().line;
    std::string text;
    if (!newName(text)) return;
    auto item = declare(DeclarationKind::Constant, text, line, isPublic);
    if (accept(":")) item->typeNode = typeReference();
    if (!panic_ && expect("=")) item->initial = expression();
    item->signature = textBetween(begin, position_);
    if (panic_) forget(*item);
    addToClass(std::move(item));
}

// The name is known and no more: uses of it give no further message.
void Parser::forget(Declaration& item) {
    item.typeNode.reset();
    item.type = plainType(Kind::Unknown);
    item.initial.reset();
    item.resolving = item.evaluation = Progress::Done;
}

void Parser::type(bool isPublic, std::size_t begin) {
    advance();
    const int line = here().line;
    std::string text;
    if (!newName(text)) return;
    auto item = declare(DeclarationKind::Type, text, line, isPublic);
    if (expect(":")) item->typeNode = typeReference();
    item->signature = textBetween(begin, position_);
    if (panic_)
        forget(*item);
    else if (item->typeNode->kind == Kind::Enum)
        item->typeNode->name = text;
    addToClass(std::move(item));
}

// The names of an enum are constants of the class, wherever the enum is written.
void Parser::enumNames(const TypeNodePtr& node, bool isPublic) {
    for (std::size_t i = 0; i < node->names.size(); ++i) {
        auto item = declare(DeclarationKind::Constant, node->names[i], node->line, isPublic);
        item->typeNode = node;
        item->enumOrdinal = static_cast<int>(i);
        item->signature = "const " + node->names[i] + " = " + std::to_string(i);
        addToClass(std::move(item));
    }
}

// One `name, name : type [:= value]`.
bool Parser::variableLine(DeclarationKind kind, bool isPublic, std::size_t begin,
                          std::vector<std::unique_ptr<Declaration>>& items) {
    std::vector<std::pair<std::string, int>> names;
    do {
        const int line = here().line;
        std::string text;
        if (typeInFront() || !newName(text)) return false;
        names.emplace_back(text, line);
    } while (accept(","));
    if (isSymbol("=") || isSymbol(":=")) {
        tell(Problem::Expected, {"':' and a type", found()});
        advance();
        expression();
        items.push_back(declare(kind, names.back().first, names.back().second, isPublic));
        forget(*items.back());
        return !panic_;
    }
    const TypeNodePtr node = expect(":") ? typeReference() : nullptr;
    const std::size_t end = position_;
    for (const auto& [text, line] : names) {
        items.push_back(declare(kind, text, line, isPublic));
        items.back()->typeNode = node;
        items.back()->signature = textBetween(begin, end);
        if (panic_) forget(*items.back());
    }
    if (panic_ || !(accept(":=") || (isSymbol("=") && takeInstead(":=")))) return !panic_;
    if (names.size() > 1) {
        --position_;
        reportExpected("the end of the declaration");
        return false;
    }
    items.back()->initial = expression();
    return !panic_;
}

bool Parser::atVariableLine() const {
    return isName() && peek(1).kind == TokenKind::Symbol && (peek(1).text == ":" || peek(1).text == ",");
}

void Parser::classVariables(bool isPublic, std::size_t begin) {
    advance();
    std::vector<std::unique_ptr<Declaration>> items;
    while (variableLine(DeclarationKind::ClassVariable, isPublic, begin, items) && atVariableLine())
        begin = position_;
    for (auto& item : items) addToClass(std::move(item));
}

// ---- functions ----

void Parser::function(bool isPublic, std::size_t begin) {
    const bool isCallback = accept(Word::Callback);
    foreignHead_ = atForeignFunction();
    if (foreignHead_) {
        tell(Problem::Foreign, {here().text, "'function'"});
        advance();
    } else if (!expect(Word::Function)) {
        return;
    }
    const std::size_t first = position_;
    const int line = here().line;
    auto item = declare(DeclarationKind::Function, std::string(here().text), line, isPublic);
    item->function = std::make_unique<Function>();
    Function& head = *item->function;
    head.isCallback = isCallback;
    head.isOnerror = accept(Word::Onerror);
    if (!head.isOnerror && !newName(item->name)) return;
    functionHead(*item);
    item->signature = textBetween(begin, position_);
    const std::size_t before = messages_.count();
    if (panic_) {
        // The body is read all the same, so that its own errors come in the same run.
        head.headHasErrors = true;
        synchronise();
    }
    if (accept(Word::External))
        externalBody(head);
    else if (!atForwardEnd())
        body(*item);
    const bool broken = std::any_of(tokens_.begin() + static_cast<std::ptrdiff_t>(first),
                                    tokens_.begin() + static_cast<std::ptrdiff_t>(position_),
                                    [](const Token& token) { return token.kind == TokenKind::Bad; });
    head.hasErrors = head.headHasErrors || foreignHead_ || broken || messages_.count() != before;
    addFunction(std::move(item));
}

void Parser::externalBody(Function& head) {
    if (here().kind != TokenKind::String) return reportExpected("the name of a C function in quotes");
    head.external = stringValue(here().text);
    advance();
}

void Parser::functionHead(Declaration& item) {
    Function& head = *item.function;
    parameters(item);
    if (panic_ || resultInstead(head) || valueWithoutType()) return;
    if (accept(Word::Return)) head.resultNode = typeReference();
    if (!panic_ && head.isOnerror && accept(Word::From)) errorRange(head);
}

bool Parser::atForwardEnd() {
    if ((isWord(Word::Const) || isWord(Word::Type)) && functionEndAhead()) return false;
    return atEnd() || beginsDeclaration(here().word) || atClassEnd();
}

void Parser::errorRange(Function& head) {
    head.hasRange = true;
    for (std::int32_t* code : {&head.firstCode, &head.lastCode}) {
        if (here().kind != TokenKind::Integer) return reportExpected("an error number");
        *code = static_cast<std::int32_t>(here().number);
        advance();
        if (code == &head.firstCode && !expect(Word::To)) return;
    }
}

void Parser::parameters(Declaration& item) {
    if (!expect("(")) return;
    if (accept(")")) return;
    do
        if (!parameter(item)) return;
    while (accept(",") || (isSymbol(";") && takeInstead(",")));
    expect(")");
}

// Each parameter has a mode and a type of its own. False where the list cannot be read on.
bool Parser::parameter(Declaration& item) {
    auto& list = item.function->parameters;
    const Mode mode = accept(Word::Out) ? Mode::Out : accept(Word::Inout) ? Mode::Inout : Mode::In;
    if (mode == Mode::In) accept(Word::In);
    if (isWord(Word::Var)) takeInstead("inout");
    if (isWord(Word::Const)) takeInstead("in");
    const int line = here().line;
    std::string text;
    if (typeInFront() || !newName(text)) return false;
    if (isSymbol(",")) {
        reportExpected("':' and a type, for each parameter of its own,");
        return false;
    }
    if (!accept(":") && !takeInstead(":")) {
        reportExpected("':' and a type");
        return false;
    }
    auto result = declare(DeclarationKind::Parameter, text, line, false);
    result->mode = mode;
    result->typeNode = typeReference();
    if (panic_) return false;
    list.push_back(std::move(result));
    return true;
}

void Parser::body(Declaration& item) {
    Function& head = *item.function;
    head.bodyLine = item.line;
    functionItem_ = &item;
    ifs_ = loops_ = selects_ = braces_ = 0;
    result_ = head.resultNode != nullptr;
    headKnown_ = !head.headHasErrors;
    for (;;) {
        const int line = here().line;
        if (accept(Word::Precond))
            head.preconditions.push_back({line, expression()});
        else if (accept(Word::Postcond))
            head.postconditions.push_back({line, expression()});
        else
            break;
        if (panic_) synchronise();
    }
    const bool brace = isSymbol("{") && takeBrace("nothing: the end is 'end function'");
    while (accept(Word::Var)) variables(head);
    block(head.body);
    head.endLine = here().line;
    if (!closeBrace(brace)) closeBlock(Word::Function, item.line);
    functionItem_ = nullptr;
}

void Parser::variables(Function& head) {
    std::vector<std::unique_ptr<Declaration>> items;
    do {
        const std::size_t begin = position_;
        if (variableLine(DeclarationKind::Variable, false, begin, items)) continue;
        synchronise();
    } while (atVariableLine());
    for (auto& item : items) {
        if (item->initial) {
            auto statement = make(StatementKind::Assign, item->line);
            statement->target = makeName(item->name, item->line);
            statement->value = std::move(item->initial);
            statement->isInitial = true;
            head.body.push_back(std::move(statement));
        }
        head.variables.push_back(std::move(item));
    }
}

namespace {

std::string headOf(const Declaration& item) {
    const std::string folded = ascii::lowered(item.signature);
    const std::size_t begin = folded.find("function ");
    return folded.substr(begin == std::string::npos ? 0 : begin);
}

}  // namespace

// A function may be declared ahead of its body, once, with the same head.
void Parser::addFunction(std::unique_ptr<Declaration> item) {
    Declaration* ahead = nullptr;
    for (Declaration* form = findDeclaration(*tree_, ascii::lowered(item->name)); form != nullptr;
         form = form->nextForm) {
        const bool waits = form->kind == DeclarationKind::Function && form->function->bodyLine == 0 &&
                           form->function->external.empty();
        if (waits && (ahead == nullptr || headOf(*form) == headOf(*item))) ahead = form;
    }
    const bool completes =
        ahead != nullptr && item->function->bodyLine != 0 && !item->function->headHasErrors;
    if (!completes) return addToClass(std::move(item));
    if (headOf(*ahead) != headOf(*item)) {
        const std::string line = std::to_string(ahead->line);
        messages_.add(path_, item->line, Problem::ForwardDiffers, {item->name, line});
        tree_->complete = false;
    }
    ahead->function = std::move(item->function);
}

std::unique_ptr<ClassTree> parseClass(std::string_view source, const std::string& path, Messages& messages) {
    auto tree = std::make_unique<ClassTree>();
    tree->path = path;
    const std::size_t before = messages.count();
    Parser(source, path, messages).parse(*tree);
    if (messages.count() != before) tree->complete = false;
    return tree;
}

}  // namespace tarn::toolchain
