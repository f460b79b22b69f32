// SPDX-License-Identifier: Apache-2.0
//
// Operators, literals, items. Behind the check every chain has operands of one type: where an integer meets a
// fixed or real number it is wrapped in a conversion.
#include "os/text/ascii.h"
#include "toolchain/language/checker_internal.h"
#include "toolchain/language/constants.h"
#include "toolchain/language/hints.h"
#include "toolchain/language/library.h"
#include "toolchain/language/windows.h"

#include <algorithm>
#include <utility>

namespace tarn::toolchain {
namespace {

bool isKnown(const ExpressionPtr& item) {
    return item->type->kind != Kind::Unknown;
}

bool isComparison(Operator op) {
    return op >= Operator::Eq && op <= Operator::Ge;
}

// Which operators work on two operands of one kind.
bool operatorFits(Operator op, Kind kind) {
    switch (op) {
    case Operator::And:
    case Operator::Or: return kind == Kind::Boolean;
    case Operator::Eq:
    case Operator::Ne: return kind >= Kind::Boolean && kind <= Kind::Table;
    case Operator::Lt:
    case Operator::Le:
    case Operator::Gt:
    case Operator::Ge:
        return isNumber(kind) || kind == Kind::String || kind == Kind::Enum || kind == Kind::Set;
    case Operator::Add: return isNumber(kind) || kind == Kind::String || kind == Kind::Set;
    case Operator::Subtract:
    case Operator::Multiply: return isNumber(kind) || kind == Kind::Set;
    case Operator::Divide: return kind == Kind::Fixed || kind == Kind::Real;
    case Operator::Div:
    case Operator::Mod: return kind == Kind::Integer;
    case Operator::In: break;
    }
    return false;
}

// The kind that both numbers become; None where there is none.
Kind commonKind(Operator op, Kind a, Kind b) {
    if (!isNumber(a) || !isNumber(b)) return Kind::None;
    const Kind wider = std::max(a, b);
    return op == Operator::Divide && wider == Kind::Integer ? Kind::Fixed : wider;
}

ExpressionPtr makeChain(Expression& from, std::size_t steps) {
    auto result = std::make_unique<Expression>();
    result->kind = ExpressionKind::Chain;
    result->line = from.line;
    result->type = from.operands[0]->type;
    for (std::size_t i = 0; i <= steps; ++i) result->operands.push_back(std::move(from.operands[i]));
    result->operators.assign(from.operators.begin(),
                             from.operators.begin() + static_cast<std::ptrdiff_t>(steps));
    from.operands.erase(from.operands.begin(),
                        from.operands.begin() + static_cast<std::ptrdiff_t>(steps) + 1);
    from.operators.erase(from.operators.begin(), from.operators.begin() + static_cast<std::ptrdiff_t>(steps));
    return result;
}

}  // namespace

const Declaration* rootOf(const Expression& item) {
    switch (item.kind) {
    case ExpressionKind::Name: return item.target;
    case ExpressionKind::Field:
    case ExpressionKind::Index: return rootOf(*item.operands[0]);
    default: return nullptr;
    }
}

// ---- what is needed and what is there ----

void Checker::convert(ExpressionPtr& item, const Type* type) {
    if (item->type->kind == type->kind) return;
    auto result = std::make_unique<Expression>();
    result->kind = ExpressionKind::Convert;
    result->line = item->line;
    result->type = type;
    result->name = item->name;
    if (item->constant) result->constant = convertValue(*item->constant, type->kind);
    result->operands.push_back(std::move(item));
    item = std::move(result);
}

// Converts the value where that is all it takes. False, and a message, if it has another type.
bool Checker::fits(ExpressionPtr& item, const Type* type) {
    if (!isKnown(item) || type->kind == Kind::Unknown) return false;
    const Fit fit = fitOf(item->type, type);
    if (fit == Fit::Convert) convert(item, type);
    if (fit != Fit::None) return true;
    if (item->type->kind == Kind::None)
        add(item->line, Problem::NoValue, {item->name});
    else if (item->type->kind == Kind::Aggregate)
        add(item->line, Problem::AggregateType, {});
    else
        add(item->line, Problem::TypeMismatch,
            {typePhrase(type), typePhrase(item->type) + conversionHint(item->type, type)});
    return false;
}

bool Checker::requireKind(ExpressionPtr& item, Kind kind) {
    return fits(item, plainType(kind));
}

void Checker::truth(ExpressionPtr& item) {
    check(item);
    requireKind(item, Kind::Boolean);
}

// Whether `item` can be assigned to; says why not if `tell`.
bool Checker::isVariable(const Expression& item, bool tell) {
    const Declaration* root = rootOf(item);
    if (root == nullptr) {
        if (tell && item.type->kind != Kind::Unknown)
            add(item.line, Problem::CannotAssign, {item.name.empty() ? "me" : item.name, "no variable"});
        return false;
    }
    const bool constant = root->kind == DeclarationKind::Constant ||
                          root->kind == DeclarationKind::Function || root->kind == DeclarationKind::Type ||
                          root->kind == DeclarationKind::Window ||
                          (root->kind == DeclarationKind::Parameter && root->mode == Mode::In);
    if (constant && tell) add(item.line, Problem::CannotAssign, {root->name, declarationName(root->kind)});
    return !constant;
}

// ---- expressions ----

void Checker::check(ExpressionPtr& item, const Type* expected) {
    // Fields and indexes nest to the left without the parser's depth.
    if (++depth_ > 4 * MaxNesting)
        add(item->line, Problem::TooDeep, {});
    else
        checkOne(item, expected);
    --depth_;
}

void Checker::checkOne(ExpressionPtr& item, const Type* expected) {
    switch (item->kind) {
    case ExpressionKind::Literal:
        item->type = plainType(item->value.kind);
        if (isKnown(item)) constantText(*item, item->value);
        return;
    case ExpressionKind::Name: return name(*item);
    case ExpressionKind::Me:
        item->type =
            function_ != nullptr && function_->isCallback ? systemType("Control") : plainType(Kind::Unknown);
        if (!isKnown(item)) add(item->line, Problem::UnknownName, {"me"});
        return;
    case ExpressionKind::Field: return field(item);
    case ExpressionKind::Index: return index(*item);
    case ExpressionKind::Call: return call(item);
    case ExpressionKind::Not:
    case ExpressionKind::Negate: return unary(*item);
    case ExpressionKind::Chain: return chain(*item);
    case ExpressionKind::Set: return setLiteral(*item);
    case ExpressionKind::Aggregate: return aggregate(*item, expected);
    case ExpressionKind::Convert: return;
    }
}

void Checker::name(Expression& item) {
    if (inPostcondition_ && item.qualifier.empty() && ascii::equal(item.name, functionItem_->name)) {
        item.isResult = true;
        item.type = function_->result;
        if (item.type->kind == Kind::None) add(item.line, Problem::NoValue, {item.name});
        return;
    }
    item.target = lookUp(item.qualifier, item.name, item.line);
    if (item.target == nullptr) return;
    if (item.target->kind == DeclarationKind::Function && item.target->function->isCallback) {
        const Declaration* window = findDeclaration(*item.target->owner, windowKey(item.name));
        if (window != nullptr) item.target = window;
    }
    const Declaration& target = *item.target;
    if (target.kind == DeclarationKind::Function || target.kind == DeclarationKind::Type) {
        item.target = nullptr;
        return wrongKind(target, "a value", item.line);
    }
    if (target.kind == DeclarationKind::Constant) constantName(item, const_cast<Declaration&>(target));
    item.type = target.type;
    item.isWindow = target.kind == DeclarationKind::Window;
}

void Checker::constantName(Expression& item, Declaration& target) {
    if (target.owner == &tree_) {
        if (target.evaluation == Progress::Running) target.dependsOnItself = true;
        evaluate(target, constantDepth_);
    }
    item.constant = target.value;
    if (!item.constant && !isStoredConstant(target)) target.type = plainType(Kind::Unknown);
}

// A field of a record, or an item of a class.
void Checker::field(ExpressionPtr& item) {
    Expression& base = *item->operands[0];
    const bool plain = base.kind == ExpressionKind::Name && base.qualifier.empty();
    const std::string folded = ascii::lowered(base.name);
    const bool own = plain && (locals_.count(folded) > 0 || findDeclaration(tree_, folded) != nullptr);
    if (plain && !own && isClassName(base.name)) {
        item->kind = ExpressionKind::Name;
        item->qualifier = base.name;
        item->operands.clear();
        return name(*item);
    }
    check(item->operands[0]);
    if (item->operands[0]->isWindow && item->operands[0]->target->control.empty()) return control(*item);
    const Type* type = item->operands[0]->type;
    if (type->kind == Kind::Unknown) return;
    if (!isRecord(type->kind)) return noRecord(*item);
    item->number = fieldNumber(*type, item->name);
    if (item->number == 0) return add(item->line, Problem::NoSuchField, {typePhrase(type), item->name});
    item->type = type->fields[static_cast<std::size_t>(item->number) - 1].type;
}

// `text.length`: told with the function that gives it here.
void Checker::noRecord(const Expression& item) {
    const Expression& base = *item.operands[0];
    const std::string here =
        methodHint(item.name, base.kind == ExpressionKind::Name ? base.name : "...", base.type->kind);
    if (here.empty()) return add(item.line, Problem::TypeMismatch, {"a record", typePhrase(base.type)});
    add(item.line, Problem::Foreign, {"." + item.name, here});
}

// `Dialog.name`: a control of a window.
void Checker::control(Expression& item) {
    const Declaration& window = *item.operands[0]->target;
    const Declaration* found = findDeclaration(*window.owner, windowKey(window.name, item.name));
    if (found == nullptr) return add(item.line, Problem::NoControl, {window.name, item.name});
    item.kind = ExpressionKind::Name;
    item.operands.clear();
    item.target = found;
    item.type = found->type;
    item.isWindow = true;
}

void Checker::index(Expression& item) {
    check(item.operands[0]);
    if (item.operands[0]->isWindow) return element(item);
    for (std::size_t i = 1; i < item.operands.size(); ++i) {
        check(item.operands[i]);
        requireKind(item.operands[i], Kind::Integer);
    }
    const Type* base = item.operands[0]->type;
    std::size_t count = 1;
    switch (base->kind) {
    case Kind::Unknown: return;
    case Kind::String: item.type = plainType(Kind::Integer); break;
    case Kind::Array: count = base->dimensions; [[fallthrough]];
    case Kind::List: item.type = base->element; break;
    default: return add(item.line, Problem::NoElements, {typePhrase(base)});
    }
    if (item.operands.size() - 1 == count) return foldCharacter(item);
    add(item.line, Problem::IndexCount,
        {typePhrase(base), std::to_string(count), std::to_string(item.operands.size() - 1)});
    item.type = plainType(Kind::Unknown);
}

// A character of a constant text is a constant.
void Checker::foldCharacter(Expression& item) {
    const auto& text = item.operands[0]->constant;
    const auto& place = item.operands[1]->constant;
    if (!text || !place || text->kind != Kind::String) return;
    const auto size = static_cast<std::int64_t>(text->text.size());
    const bool inside = place->number >= 1 && place->number <= size;
    item.constant = integerValue(
        inside ? static_cast<unsigned char>(text->text[static_cast<std::size_t>(place->number) - 1]) : 0);
}

// `array[i]`: one control of several that share a name.
void Checker::element(Expression& item) {
    const Declaration& array = *item.operands[0]->target;
    check(item.operands[1]);
    requireKind(item.operands[1], Kind::Integer);
    if (item.operands.size() != 2 || array.upper < array.lower)
        return add(item.line, Problem::NoElements, {"'" + array.name + "'"});
    item.type = array.type;
}

void Checker::unary(Expression& item) {
    check(item.operands[0]);
    const Expression& operand = *item.operands[0];
    const bool isNot = item.kind == ExpressionKind::Not;
    item.name = operand.name;
    if (isNot) {
        if (requireKind(item.operands[0], Kind::Boolean)) item.type = plainType(Kind::Boolean);
    } else if (isNumber(operand.type->kind)) {
        item.type = operand.type;
    } else {
        requireKind(item.operands[0], Kind::Integer);
    }
    if (item.type->kind == Kind::Unknown || !operand.constant) return;
    item.constant = isNot ? booleanValue(operand.constant->number == 0) : negateValue(*operand.constant);
}

// ---- chains ----

void Checker::chain(Expression& item) {
    for (ExpressionPtr& operand : item.operands) {
        const bool later = operand->kind == ExpressionKind::Aggregate || operand->kind == ExpressionKind::Set;
        if (!later) check(operand);
    }
    if (item.operators[0] == Operator::In) return membership(item);
    const auto typed =
        std::find_if(item.operands.begin(), item.operands.end(), [](const ExpressionPtr& operand) {
            return operand->kind != ExpressionKind::Aggregate && operand->kind != ExpressionKind::Set;
        });
    const Type* expected = typed == item.operands.end() ? nullptr : (*typed)->type;
    for (ExpressionPtr& operand : item.operands)
        if (operand->kind == ExpressionKind::Aggregate || operand->kind == ExpressionKind::Set)
            check(operand, expected);
    for (std::size_t step = 0; step < item.operators.size();) {
        const std::size_t before = item.operators.size();
        if (!stepFits(item, step)) return;
        step = item.operators.size() == before ? step + 1 : 1;
    }
    const bool truth = isComparison(item.operators[0]);
    item.type = truth ? plainType(Kind::Boolean) : item.operands[0]->type;
    if (item.type->kind == Kind::String || item.type->kind == Kind::Set)
        item.type = plainType(item.type->kind);
    foldIfConstant(item);
}

// Operands 0 to `step` are of one type already. Makes the next one fit; where its kind is wider, those before
// it become an operand of their own.
bool Checker::stepFits(Expression& item, std::size_t step) {
    const Operator op = item.operators[step];
    ExpressionPtr& right = item.operands[step + 1];
    if (!isKnown(item.operands[0]) || !isKnown(right)) return false;
    const Kind left = item.operands[0]->type->kind;
    const Kind common = commonKind(op, left, right->type->kind);
    const bool same = common != Kind::None || fitOf(right->type, item.operands[0]->type) == Fit::Same ||
                      fitOf(item.operands[0]->type, right->type) == Fit::Same;
    const Kind kind = common != Kind::None ? common : left;
    if (!same || !operatorFits(op, kind)) {
        add(right->line, Problem::OperandType,
            {operatorText(op), typePhrase(item.operands[0]->type),
             typePhrase(right->type) + operandHint(op, *item.operands[step], *right)});
        return false;
    }
    if (common == Kind::None) return true;
    convert(right, plainType(common));
    if (left == common) return true;
    if (step > 0) {
        ExpressionPtr before = makeChain(item, step);
        foldIfConstant(*before);
        item.operands.insert(item.operands.begin(), std::move(before));
    }
    convert(item.operands[0], plainType(common));
    return true;
}

// `x in set`: a literal on the right is never made as a set.
void Checker::membership(Expression& item) {
    for (ExpressionPtr& operand : item.operands)
        if (operand->kind == ExpressionKind::Set) check(operand);
    if (item.operands[0]->kind == ExpressionKind::Aggregate) return check(item.operands[0]);
    if (item.operands[1]->kind == ExpressionKind::Aggregate)
        return add(item.operands[1]->line, Problem::Foreign,
                   {"{", "'[' and ']' around the members of a set"});
    const bool ordinal = item.operands[0]->type->kind == Kind::Enum;
    const bool good = (ordinal || requireKind(item.operands[0], Kind::Integer)) &&
                      isKnown(item.operands[1]) && item.operands[1]->type->kind == Kind::Set;
    if (good) {
        item.type = plainType(Kind::Boolean);
    } else if (isKnown(item.operands[0]) && isKnown(item.operands[1])) {
        add(item.operands[1]->line, Problem::OperandType,
            {"in", typePhrase(item.operands[0]->type), typePhrase(item.operands[1]->type)});
    }
}

void Checker::foldIfConstant(Expression& item) {
    const bool constant =
        std::all_of(item.operands.begin(), item.operands.end(),
                    [](const ExpressionPtr& operand) { return operand->constant.has_value(); });
    if (!constant) return;
    Value value;
    if (foldChain(item, value)) {
        constantText(item, std::move(value));
    } else if (constantDepth_ > 0) {
        add(item.line, Problem::ConstantArithmetic, {});
        item.type = plainType(Kind::Unknown);
    }
}

// A constant text that no string can hold would fail before the program begins, without its line.
void Checker::constantText(Expression& item, Value value) {
    if (value.text.size() > static_cast<std::size_t>(MaxStringLength)) {
        add(item.line, Problem::TextTooLong, {});
        item.type = plainType(Kind::Unknown);
        return;
    }
    item.constant = std::move(value);
}

// ---- literals of composite values ----

void Checker::setLiteral(Expression& item) {
    item.type =
        plainType(Kind::Set);  // as wide as its members; what does not fit is told where it is assigned
    for (ExpressionPtr& member : item.operands) {
        if (member == nullptr) continue;
        check(member);
        if (member->type->kind != Kind::Enum && !requireKind(member, Kind::Integer))
            item.type = plainType(Kind::Unknown);
    }
}

// The values in braces take the types of the fields, elements or rows that they become.
void Checker::aggregate(Expression& item, const Type* expected) {
    const Kind kind = expected == nullptr ? Kind::None : expected->kind;
    const bool open =
        kind == Kind::Adt ||
        (expected != nullptr && (expected->isOpen || (isRecord(kind) && expected->fields.empty())));
    if (open) return freeAggregate(item);
    if (isRecord(kind)) return recordAggregate(item, expected);
    const bool elements =
        (kind == Kind::Array && expected->dimensions == 1) || kind == Kind::List || kind == Kind::Table;
    if (!elements) {
        for (ExpressionPtr& operand : item.operands) check(operand);
        item.type = plainType(kind == Kind::Unknown ? Kind::Unknown : Kind::Aggregate);
        if (expected == nullptr) add(item.line, Problem::AggregateType, {});
        if (expected == nullptr) item.type = plainType(Kind::Unknown);
        return;
    }
    item.type = expected;
    for (ExpressionPtr& operand : item.operands) {
        check(operand, expected->element);
        if (!fits(operand, expected->element)) item.type = plainType(Kind::Unknown);
    }
}

void Checker::recordAggregate(Expression& item, const Type* expected) {
    const std::size_t count = expected->fields.size();
    if (item.operands.size() != count) {
        add(item.line, Problem::AggregateCount,
            {typePhrase(expected), std::to_string(count), std::to_string(item.operands.size())});
        return;
    }
    item.type = expected;
    for (std::size_t i = 0; i < count; ++i) {
        check(item.operands[i], expected->fields[i].type);
        if (!fits(item.operands[i], expected->fields[i].type)) item.type = plainType(Kind::Unknown);
    }
}

// A record whose fields have the types of the values: what the library takes as options or parameters.
void Checker::freeAggregate(Expression& item) {
    Type type;
    type.kind = Kind::Record;
    bool known = item.operands.size() <= MaxFields;
    if (!known) add(item.line, Problem::TooManyParts, {"record", std::to_string(MaxFields), "fields"});
    for (std::size_t i = 0; i < item.operands.size() && known; ++i) {
        ExpressionPtr& operand = item.operands[i];
        const bool nested = operand->kind == ExpressionKind::Aggregate;
        check(operand, nested ? plainType(Kind::Adt) : nullptr);
        known = isScalar(operand->type->kind) || isComposite(operand->type->kind);
        if (!known && isKnown(operand)) add(operand->line, Problem::NoValue, {operand->name});
        type.fields.push_back({"f" + std::to_string(i + 1), operand->type, 0});
    }
    if (known) item.type = internType(std::move(type));
}

}  // namespace tarn::toolchain
