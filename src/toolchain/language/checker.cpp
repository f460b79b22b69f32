// SPDX-License-Identifier: Apache-2.0
//
// Gives every name of a parsed class its declaration and every expression its type, and folds constants.
// Ahead of Checker stands the arithmetic of constants, which is that of the run-time. Its parts stand in this
// order:
//
//     types         which fits which, and what is said when none does
//     names         scopes, look-up, guesses at what was meant
//     the class     constants, variables, heads of functions
//     statements    a function for each
//     expressions   operators, literals, conditions
//     calls         of functions of classes and of the library, which has several forms of one name
//
#include "toolchain/language/checker.h"

#include "os/text/ascii.h"
#include "toolchain/language/classes.h"
#include "toolchain/language/library.h"
#include "toolchain/language/words.h"

#include <algorithm>
#include <set>

namespace tarn::toolchain {
namespace {

constexpr int MaxConstantDepth = 200;  // of constants that are named in constants

std::int32_t wrap(std::int64_t number) {
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(number));
}

std::int64_t floorDiv(std::int64_t a, std::int64_t b) {
    const std::int64_t quotient = a / b;
    return a % b != 0 && (a < 0) != (b < 0) ? quotient - 1 : quotient;
}

bool foldNumbers(Operator op, std::int32_t& left, std::int32_t right) {
    const std::int64_t a = left, b = right;
    switch (op) {
    case Operator::Add: left = wrap(a + b); return true;
    case Operator::Subtract: left = wrap(a - b); return true;
    case Operator::Multiply: left = wrap(a * b); return true;
    case Operator::And: left = left & right; return true;
    case Operator::Or: left = left | right; return true;
    case Operator::Div:
    case Operator::Mod: break;
    default: return false;
    }
    if (b == 0) return false;
    left = wrap(op == Operator::Div ? floorDiv(a, b) : a - b * floorDiv(a, b));
    return true;
}

bool relationHolds(Operator op, int order) {
    switch (op) {
    case Operator::Eq: return order == 0;
    case Operator::Ne: return order != 0;
    case Operator::Lt: return order < 0;
    case Operator::Le: return order <= 0;
    case Operator::Gt: return order > 0;
    default: return order >= 0;
    }
}

int compareValues(const Value& a, const Value& b) {
    if (a.type == Type::String) return a.text.compare(b.text);
    return a.number < b.number ? -1 : a.number > b.number ? 1 : 0;
}

bool isComparison(Operator op) {
    return op >= Operator::Eq;
}

class Checker {
public:
    Checker(ClassTree& tree, Messages& messages) : tree_(tree), messages_(messages) {}

    void run() {
        declareTypes();
        for (auto& item : tree_.declarations)
            if (item->kind == DeclarationKind::Constant) evaluate(*item, 0);
        for (auto& item : tree_.declarations) classItem(*item);
        // A constant that another class asked for first was evaluated without a word.
        for (auto& item : tree_.declarations)
            if (item->kind == DeclarationKind::Constant && !item->value && messages_.empty())
                add(item->line, Problem::ConstantNeeded, {});
    }

    // Types of all declarations, also inside functions' heads. Done once for each class.
    void declareTypes() {
        if (tree_.checked) return;
        tree_.checked = true;
        for (auto& item : tree_.declarations) {
            resolve(item->type);
            if (!item->function) continue;
            resolve(item->function->result);
            for (auto& parameter : item->function->parameters) resolve(parameter->type);
            for (auto& variable : item->function->variables) resolve(variable->type);
        }
    }

    void evaluate(Declaration& item, int depth) {
        if (item.evaluation != Declaration::Evaluation::Not) {
            if (item.evaluation == Declaration::Evaluation::Running)
                add(item.line, Problem::ConstantCycle, {item.name});
            return;
        }
        if (depth > MaxConstantDepth) return add(item.line, Problem::TooDeep, {});
        item.evaluation = Declaration::Evaluation::Running;
        const int saved = std::exchange(constantDepth_, depth + 1);
        check(*item.initial);
        constantDepth_ = saved;
        item.evaluation = Declaration::Evaluation::Done;
        finishConstant(item);
    }

private:
    void add(int line, Problem problem, std::initializer_list<std::string_view> values) {
        messages_.add(tree_.path, line, problem, values);
    }

    void finishConstant(Declaration& item) {
        const Expression& initial = *item.initial;
        if (item.type.type == Type::None)
            item.type.type = initial.type;
        else
            require(initial, item.type.type);
        item.value = initial.constant;
        if (!item.value && initial.type != Type::Unknown) add(item.line, Problem::ConstantNeeded, {});
    }

    // ---- types ----

    void resolve(TypeRef& reference) {
        for (int steps = 0; !reference.name.empty(); ++steps) {
            const Declaration* item =
                steps > MaxNesting ? nullptr : lookUp({}, reference.name, reference.line);
            if (item == nullptr || item->kind != DeclarationKind::Type) {
                if (item != nullptr)
                    wrongKind(*item, "a type", reference.line);
                else if (steps > MaxNesting)
                    add(reference.line, Problem::ConstantCycle, {reference.name});
                reference.type = Type::Unknown;
                reference.name.clear();
                return;
            }
            reference.type = item->type.type;
            reference.maxLength = item->type.maxLength;
            reference.name = item->type.name;
        }
    }

    void wrongKind(const Declaration& item, const char* needed, int line) {
        add(line, Problem::NotThatKind, {item.name, declarationName(item.kind), needed});
    }

    // ---- names ----

    // Null when nothing is found; a message was given then, unless `quiet`.
    const Declaration* lookUp(const std::string& qualifier, const std::string& name, int line,
                              bool quiet = false) {
        const std::string folded = ascii::lowered(name);
        const Declaration* found = nullptr;
        if (qualifier.empty()) {
            const auto local = locals_.find(folded);
            found = local != locals_.end() ? local->second : findDeclaration(tree_, folded);
            if (found == nullptr) found = lookUpUsed(folded, name, line);
        } else {
            found = lookUpIn(qualifier, folded, name, line);
        }
        if (found != nullptr) {
            if (found->useLine == 0) found->useLine = line;
        } else if (!quiet) {
            unknown(name, line);
        }
        return found;
    }

    const Declaration* lookUpUsed(const std::string& folded, const std::string& name, int line) {
        const Declaration* found = nullptr;
        for (const UsedClass& used : tree_.uses) {
            if (used.tree == nullptr || used.tree == &tree_) continue;
            Declaration* item = findDeclaration(*used.tree, folded);
            if (item == nullptr || !item->isPublic || item == found) continue;
            if (found != nullptr) {
                add(line, Problem::Ambiguous, {name, found->owner->name, item->owner->name});
                return found;
            }
            prepare(*used.tree, *item, line);
            found = item;
        }
        return found;
    }

    const Declaration* lookUpIn(const std::string& qualifier, const std::string& folded,
                                const std::string& name, int line) {
        if (ascii::equal(qualifier, tree_.name)) return findDeclaration(tree_, folded);
        for (const UsedClass& used : tree_.uses) {
            if (!ascii::equal(qualifier, used.name)) continue;
            Declaration* item = used.tree != nullptr ? findDeclaration(*used.tree, folded) : nullptr;
            if (item == nullptr || !item->isPublic) return nullptr;
            prepare(*used.tree, *item, line);
            return item;
        }
        add(line, Problem::NotInUses, {qualifier});
        reported_.insert(ascii::lowered(name));
        return nullptr;
    }

    // What this class needs to know of an item of another one. Errors there are that class's own.
    void prepare(ClassTree& owner, Declaration& item, int line) {
        Messages silent;
        Checker other(owner, silent);
        other.declareTypes();
        if (item.kind == DeclarationKind::Constant && item.evaluation == Declaration::Evaluation::Not)
            other.evaluate(item, constantDepth_);
        if (item.kind == DeclarationKind::Constant && !item.value) item.type.type = Type::Unknown;
        bool known = item.type.type != Type::Unknown;
        if (item.function) {
            known = item.function->result.type != Type::Unknown;
            for (const auto& parameter : item.function->parameters)
                known = known && parameter->type.type != Type::Unknown;
        }
        if (!known) add(line, Problem::UsedClassHasErrors, {owner.name});
    }

    // One message for each name, and none while a used class cannot be read to its end.
    void unknown(const std::string& name, int line) {
        const bool guess = std::any_of(tree_.uses.begin(), tree_.uses.end(), [](const UsedClass& used) {
            return used.tree != nullptr ? !used.tree->complete : !isBuiltInClass(used.name);
        });
        if (!guess && reported_.insert(ascii::lowered(name)).second) add(line, Problem::UnknownName, {name});
    }

    // ---- the class ----

    void classItem(Declaration& item) {
        if (item.kind == DeclarationKind::ClassVariable && item.initial) {
            check(*item.initial);
            require(*item.initial, item.type.type);
        }
        if (item.kind == DeclarationKind::Function) function(item);
    }

    void function(Declaration& item) {
        Function& head = *item.function;
        functionItem_ = &item;
        function_ = &head;
        reported_.clear();
        if (head.hasErrors) return;
        functionHead(item, head);
        if (head.bodyLine == 0) return add(item.line, Problem::NoBody, {item.name});
        declareLocals(head);
        for (Condition& condition : head.preconditions) truth(*condition.value);
        inPostcondition_ = true;
        for (Condition& condition : head.postconditions) truth(*condition.value);
        inPostcondition_ = false;
        block(head.body);
        if (head.result.type != Type::None && !alwaysReturns(head.body))
            add(head.endLine, Problem::ReturnMissing, {item.name});
        locals_.clear();
        reported_.clear();
        function_ = nullptr;
        functionItem_ = nullptr;
    }

    void functionHead(const Declaration& item, const Function& head) {
        const bool plain = head.parameters.empty() && head.result.type == Type::None;
        if (ascii::equal(item.name, "main") && !plain) add(item.line, Problem::MainHeader, {});
        if (head.result.maxLength != Unbounded) add(item.line, Problem::StringResult, {});
        if (!head.isOnerror) return;
        const bool good = head.parameters.size() == 1 && head.parameters[0]->mode == Mode::In &&
                          head.parameters[0]->type.type == Type::Integer && head.result.type == Type::None;
        if (!good) add(item.line, Problem::OnerrorHeader, {});
        if (head.hasRange && head.firstCode > head.lastCode) add(item.line, Problem::EmptyErrorRange, {});
    }

    void declareLocals(Function& head) {
        for (auto* items : {&head.parameters, &head.variables})
            for (auto& item : *items) {
                const auto [place, isNew] = locals_.emplace(ascii::lowered(item->name), item.get());
                if (isNew) continue;
                const std::string line = std::to_string(place->second->line);
                add(item->line, Problem::DeclaredTwice, {item->name, line});
            }
    }

    static bool alwaysReturns(const Block& statements) {
        return std::any_of(statements.begin(), statements.end(), [](const StatementPtr& item) {
            switch (item->kind) {
            case StatementKind::Return: return true;
            case StatementKind::Loop: return !leavesLoop(item->body);
            case StatementKind::If:
            case StatementKind::Select:
                return item->hasElse &&
                       std::all_of(item->branches.begin(), item->branches.end(),
                                   [](const Branch& branch) { return alwaysReturns(branch.body); });
            default: return false;
            }
        });
    }
    // Whether an `exit` of this loop stands in its body.
    static bool leavesLoop(const Block& statements) {
        return std::any_of(statements.begin(), statements.end(), [](const StatementPtr& item) {
            if (item->kind == StatementKind::Exit) return true;
            return std::any_of(item->branches.begin(), item->branches.end(),
                               [](const Branch& branch) { return leavesLoop(branch.body); });
        });
    }

    // ---- statements ----

    void block(Block& statements) {
        for (StatementPtr& item : statements) statement(*item);
    }

    void statement(Statement& item) {
        switch (item.kind) {
        case StatementKind::Assign: return assignment(item);
        case StatementKind::Call:
            check(*item.value);
            if (item.value->type != Type::None && item.value->type != Type::Unknown)
                add(item.line, Problem::ResultUnused, {item.value->name});
            return;
        case StatementKind::If:
            for (Branch& branch : item.branches) {
                if (branch.condition) truth(*branch.condition);
                block(branch.body);
            }
            return;
        case StatementKind::While: truth(*item.value); return loop(item);
        case StatementKind::Loop: return loop(item);
        case StatementKind::For: return forLoop(item);
        case StatementKind::Exit:
        case StatementKind::Iterate:
            if (loops_ == 0)
                add(item.line, Problem::OutsideLoop, {item.kind == StatementKind::Exit ? "exit" : "iterate"});
            if (item.value) truth(*item.value);
            return;
        case StatementKind::Select: return select(item);
        case StatementKind::Return: return returned(item);
        }
    }

    void loop(Statement& item) {
        ++loops_;
        block(item.body);
        --loops_;
    }

    void assignment(Statement& item) {
        check(*item.value);
        check(*item.target);
        if (!isVariable(*item.target, true)) return;
        require(*item.value, item.target->type);
    }

    // Whether `item` can be assigned to; says why not if `tell`.
    bool isVariable(const Expression& item, bool tell) {
        const bool place = item.kind == ExpressionKind::Name || item.kind == ExpressionKind::Element;
        if (!place || item.target == nullptr) return false;
        const Declaration& target = *item.target;
        const bool constant = target.kind == DeclarationKind::Constant ||
                              target.kind == DeclarationKind::Function ||
                              target.kind == DeclarationKind::Type ||
                              (target.kind == DeclarationKind::Parameter && target.mode == Mode::In);
        if (constant && tell)
            add(item.line, Problem::CannotAssign, {target.name, declarationName(target.kind)});
        return !constant;
    }

    void forLoop(Statement& item) {
        check(*item.target);
        if (isVariable(*item.target, true)) require(*item.target, Type::Integer);
        for (Expression* bound : {item.value.get(), item.limit.get(), item.step.get()}) {
            if (bound == nullptr) continue;
            check(*bound);
            require(*bound, Type::Integer);
        }
        if (item.step && item.step->constant && item.step->constant->number < 1)
            add(item.line, Problem::StepNotPositive, {});
        loop(item);
    }

    struct SeenCase {
        std::int32_t last;
        int line;
    };
    using SeenCases = std::map<std::pair<std::int32_t, std::string>, SeenCase>;  // by first number and text

    void select(Statement& item) {
        check(*item.value);
        SeenCases seen;
        for (Branch& branch : item.branches) {
            for (CaseLabel& label : branch.labels) caseLabel(label, item.value->type, seen);
            block(branch.body);
        }
    }

    void caseLabel(CaseLabel& label, Type type, SeenCases& seen) {
        for (Expression* value : {label.from.get(), label.to.get()}) {
            if (value == nullptr) continue;
            check(*value);
            if (!require(*value, type)) return;
            if (!value->constant) return add(label.line, Problem::ConstantNeeded, {});
        }
        if (label.to && !require(*label.to, Type::Integer)) return;
        const Value& from = *label.from->constant;
        const std::int32_t last = label.to ? label.to->constant->number : from.number;
        if (last < from.number) return;
        // The ranges that are known do not overlap, so if any reaches into this one, the last that begins at
        // or before its end does.
        const auto behind = seen.upper_bound({last, from.text});
        if (behind != seen.begin()) {
            const auto& [begin, range] = *std::prev(behind);
            if (begin.second == from.text && range.last >= from.number)
                return add(label.line, Problem::CaseTwice, {std::to_string(range.line)});
        }
        seen.emplace(std::pair(from.number, from.text), SeenCase{last, label.line});
    }

    void returned(Statement& item) {
        if (!item.value) return;
        check(*item.value);
        require(*item.value, function_->result.type);
    }

    // ---- expressions ----

    // False, and a message, if the value has another type.
    bool require(const Expression& item, Type type) {
        if (item.type == Type::Unknown || type == Type::Unknown) return false;
        if (item.type == type) return true;
        if (item.type == Type::None)
            add(item.line, Problem::NoValue, {item.name});
        else
            add(item.line, Problem::TypeMismatch, {typePhrase(type), typePhrase(item.type)});
        return false;
    }

    void truth(Expression& item) {
        check(item);
        require(item, Type::Boolean);
    }

    void check(Expression& item) {
        for (ExpressionPtr& operand : item.operands) check(*operand);
        switch (item.kind) {
        case ExpressionKind::Literal:
            item.type = item.value.type;
            if (item.type != Type::Unknown) constantText(item, item.value);
            return;
        case ExpressionKind::Name: return name(item);
        case ExpressionKind::Element: return element(item);
        case ExpressionKind::Call: return call(item);
        case ExpressionKind::Not: return unary(item, Type::Boolean);
        case ExpressionKind::Negate: return unary(item, Type::Integer);
        case ExpressionKind::Chain: return chain(item);
        }
    }

    void name(Expression& item) {
        if (inPostcondition_ && item.qualifier.empty() && ascii::equal(item.name, functionItem_->name)) {
            item.isResult = true;
            item.type = function_->result.type;
            if (item.type == Type::None) add(item.line, Problem::NoValue, {item.name});
            return;
        }
        item.target = lookUp(item.qualifier, item.name, item.line);
        if (item.target == nullptr) return;
        const Declaration& target = *item.target;
        if (target.kind == DeclarationKind::Function || target.kind == DeclarationKind::Type) {
            item.target = nullptr;
            return wrongKind(target, "a value", item.line);
        }
        if (target.kind == DeclarationKind::Constant) constantName(item, const_cast<Declaration&>(target));
        item.type = target.type.type;
    }

    void constantName(Expression& item, Declaration& target) {
        if (target.owner == &tree_) evaluate(target, constantDepth_);
        item.constant = target.value;
        if (!item.constant) target.type.type = Type::Unknown;
    }

    void element(Expression& item) {
        item.target = lookUp(item.qualifier, item.name, item.line);
        item.type = Type::Integer;
        require(*item.operands[0], Type::Integer);
        if (item.target == nullptr) {
            item.type = Type::Unknown;
            return;
        }
        const Type type = item.target->type.type;
        const bool variable = item.target->kind != DeclarationKind::Function &&
                              item.target->kind != DeclarationKind::Type &&
                              item.target->kind != DeclarationKind::Constant;
        if (!variable) {
            wrongKind(*item.target, "a string variable", item.line);
            item.target = nullptr;
            item.type = Type::Unknown;
        } else if (type != Type::String && type != Type::Unknown) {
            add(item.line, Problem::TypeMismatch, {typePhrase(Type::String), typePhrase(type)});
        }
    }

    void unary(Expression& item, Type type) {
        const Expression& operand = *item.operands[0];
        item.type = require(operand, type) ? type : Type::Unknown;
        if (item.type == Type::Unknown || !operand.constant) return;
        item.constant = *operand.constant;
        item.constant->number = type == Type::Boolean
                                    ? !operand.constant->number
                                    : wrap(-static_cast<std::int64_t>(operand.constant->number));
    }

    void chain(Expression& item) {
        item.type = item.operands[0]->type;
        for (std::size_t i = 0; i < item.operators.size(); ++i) {
            const Type right = item.operands[i + 1]->type;
            if (item.type == Type::Unknown || right == Type::Unknown) {
                item.type = Type::Unknown;
                return;
            }
            if (!operandsFit(item.operators[i], item.type, right)) {
                add(item.operands[i + 1]->line, Problem::OperandType,
                    {operatorText(item.operators[i]), typePhrase(item.type), typePhrase(right)});
                item.type = Type::Unknown;
                return;
            }
            if (isComparison(item.operators[i])) item.type = Type::Boolean;
        }
        const bool constant =
            std::all_of(item.operands.begin(), item.operands.end(),
                        [](const ExpressionPtr& operand) { return operand->constant.has_value(); });
        if (!constant) return;
        Value value;
        if (foldChain(item, value))
            constantText(item, std::move(value));
        else if (constantDepth_ > 0) {
            add(item.line, Problem::ConstantArithmetic, {});
            item.type = Type::Unknown;
        }
    }

    // A constant text that no string can hold would fail before the program begins, without its line.
    void constantText(Expression& item, Value value) {
        if (value.text.size() > static_cast<std::size_t>(MaxStringLength)) {
            add(item.line, Problem::TextTooLong, {});
            item.type = Type::Unknown;
            return;
        }
        item.constant = std::move(value);
    }

    static bool operandsFit(Operator op, Type left, Type right) {
        if (left != right) return false;
        switch (op) {
        case Operator::And:
        case Operator::Or: return left == Type::Boolean;
        case Operator::Eq:
        case Operator::Ne: return left != Type::None;
        case Operator::Add: return left == Type::Integer || left == Type::String;
        case Operator::Lt:
        case Operator::Le:
        case Operator::Gt:
        case Operator::Ge: return left == Type::Integer || left == Type::String;
        default: return left == Type::Integer;
        }
    }

    // ---- calls ----

    void call(Expression& item) {
        const Declaration* target = lookUp(item.qualifier, item.name, item.line, true);
        if (target == nullptr && item.qualifier.empty()) {
            const auto forms = findLibraryForms(ascii::lowered(item.name));
            if (!forms.empty()) return libraryCall(item, forms);
        }
        if (target == nullptr) return unknown(item.name, item.line);
        if (target->kind != DeclarationKind::Function) return wrongKind(*target, "a function", item.line);
        item.target = target;
        const Function& head = *target->function;
        if (head.headHasErrors) return;
        item.type = head.result.type;
        if (!countFits(item, head.parameters.size())) return;
        for (std::size_t i = 0; i < head.parameters.size(); ++i)
            argument(item, i, head.parameters[i]->type.type, head.parameters[i]->mode);
    }

    bool countFits(const Expression& item, std::size_t count) {
        if (item.operands.size() == count) return true;
        add(item.line, Problem::ArgumentCount,
            {item.name, std::to_string(count), std::to_string(item.operands.size())});
        return false;
    }

    void argument(const Expression& item, std::size_t index, Type type, Mode mode) {
        const Expression& value = *item.operands[index];
        if (!require(value, type) || mode == Mode::In) return;
        if (value.kind == ExpressionKind::Name && isVariable(value, false)) return;
        add(value.line, Problem::VariableNeeded, {std::to_string(index + 1), item.name});
    }

    void libraryCall(Expression& item, const std::vector<const LibraryFunction*>& forms) {
        const LibraryFunction* form = formFor(item, forms);
        if (form == nullptr) {
            const bool counted = forms.size() == 1 && !countFits(item, forms[0]->parameters.size());
            const bool known =
                std::none_of(item.operands.begin(), item.operands.end(),
                             [](const ExpressionPtr& value) { return value->type == Type::Unknown; });
            if (forms.size() == 1 && !counted)
                form = forms[0];
            else if (!counted && known)
                add(item.line, Problem::NoForm, {item.name});
        }
        if (form == nullptr) return;
        item.library = form;
        item.type = form->result;
        for (std::size_t i = 0; i < form->parameters.size(); ++i)
            argument(item, i, form->parameters[i].type, form->parameters[i].mode);
        foldLibraryCall(item);
    }

    static const LibraryFunction* formFor(const Expression& item,
                                          const std::vector<const LibraryFunction*>& forms) {
        const auto fits = [&](const LibraryFunction* form) {
            if (form->parameters.size() != item.operands.size()) return false;
            for (std::size_t i = 0; i < item.operands.size(); ++i)
                if (item.operands[i]->type != form->parameters[i].type) return false;
            return true;
        };
        const auto found = std::find_if(forms.begin(), forms.end(), fits);
        return found == forms.end() ? nullptr : *found;
    }

    // CHR of a constant is a constant: it is how bytes that cannot stand in quotes are written.
    static void foldLibraryCall(Expression& item) {
        if (std::string_view(item.library->name) != "chr" || !item.operands[0]->constant) return;
        const std::int32_t code = item.operands[0]->constant->number;
        if (code < 0 || code > 255) return;
        item.constant = Value{Type::String, 0, std::string(1, static_cast<char>(code))};
    }

    ClassTree& tree_;
    Messages& messages_;
    std::map<std::string, const Declaration*> locals_;
    std::set<std::string> reported_;
    Declaration* functionItem_ = nullptr;
    Function* function_ = nullptr;
    int loops_ = 0;
    int constantDepth_ = 0;
    bool inPostcondition_ = false;
};

}  // namespace

bool foldChain(const Expression& chain, Value& result) {
    result = *chain.operands[0]->constant;
    for (std::size_t i = 0; i < chain.operators.size(); ++i) {
        const Operator op = chain.operators[i];
        const Value& right = *chain.operands[i + 1]->constant;
        if (isComparison(op)) {
            const bool holds = relationHolds(op, compareValues(result, right));
            result = Value{Type::Boolean, holds ? 1 : 0, {}};
        } else if (result.type == Type::String) {
            result.text += right.text;
        } else if (!foldNumbers(op, result.number, right.number)) {
            return false;
        }
    }
    return true;
}

void checkClass(ClassTree& tree, Messages& messages) {
    const auto file = messages.count();
    Checker checker(tree, messages);
    checker.run();
    if (messages.count() != file) tree.complete = false;
}

}  // namespace tarn::toolchain
